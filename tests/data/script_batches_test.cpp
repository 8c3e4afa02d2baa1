// Where a script falls apart into batches.
#include "data/script_batches.h"

#include <gtest/gtest.h>

namespace zov {
namespace {

std::string printed(const char* script) {
    std::string lines;
    for (const ScriptBatch& batch : splitBatches(QString::fromUtf8(script)))
        lines += std::to_string(batch.firstLine) + "x" + std::to_string(batch.repeat) + "<" +
                 batch.text.toStdString() + ">";
    return lines;
}

TEST(ScriptBatches, GoStandsAloneOnItsLine) {
    const struct {
        const char* name;
        const char* script;
        const char* batches;
    } rows[] = {
        {"none", "select 1", "1x1<select 1>"},
        {"two", "a\nGO\nb\n", "1x1<a\n>3x1<b\n>"},
        {"windows line ends stay", "a\r\nGo\r\nb\r\n", "1x1<a\r\n>3x1<b\r\n>"},
        {"empty batches fall out", "GO\n\nGO\na\nGO\nGO", "4x1<a\n>"},
        {"count", "a\n  go 3 \nb", "1x3<a\n>3x1<b>"},
        {"impossible counts", "a\nGO 99999999999\nb\nGO 0\nc", "1x0<a\n>3x0<b\n>5x1<c>"},
        {"semicolon and comment", "a\nGO;\nb\nGO -- done\nc\nGO /* x */\nd",
         "1x1<a\n>3x1<b\n>5x1<c\n>7x1<d>"},
        {"a word that begins with go", "a\nGOTO x\nGO2\n", "1x1<a\nGOTO x\nGO2\n>"},
        {"inside a block comment", "/*\nGO\n*/ a\nGO", "1x1</*\nGO\n*/ a\n>"},
        {"inside a nested comment", "/* /*\n*/\nGO\n*/a\nGO", "1x1</* /*\n*/\nGO\n*/a\n>"},
        {"inside a string", "print 'x\nGO\n''y'\nGO\nb", "1x1<print 'x\nGO\n''y'\n>5x1<b>"},
        {"inside a name", "select [a\nGO\n]\nGO", "1x1<select [a\nGO\n]\n>"},
        {"behind a bracket within a name", "select [a]]'b]\nGO\nc [d]]]\nGO\ne",
         "1x1<select [a]]'b]\n>3x1<c [d]]]\n>5x1<e>"},
        {"a quote in a line comment", "-- don't\nGO\nb", "1x1<-- don't\n>3x1<b>"},
        {"a quote in a block comment", "/* don't */\nGO\nb", "1x1</* don't */\n>3x1<b>"},
        {"comment marks in a string", "print '/*'\nGO\nprint '--'\nGO",
         "1x1<print '/*'\n>3x1<print '--'\n>"},
    };
    for (const auto& row : rows) EXPECT_EQ(printed(row.script), row.batches) << row.name;
}

}  // namespace
}  // namespace zov
