// What a terminal would act on is shown, not sent.
#include "shell/console/visible_text.h"

#include "shell/console/console_shell.h"

#include <gtest/gtest.h>

namespace zov {
namespace {

TEST(VisibleText, ShowsWhatATerminalWouldActOn) {
    struct Row {
        const char* name;
        QString text, shown;
    };
    const Row rows[] = {
        {"plain letters stay", QStringLiteral("Größe 値 \U0001F600 \\x1B"),
         QStringLiteral("Größe 値 \U0001F600 \\x1B")},
        {"escape", QStringLiteral("a\x1B[2Jb"), QStringLiteral("a\u241B[2Jb")},
        {"line breaks and tabs", QStringLiteral("a\r\n\tb"),
         QStringLiteral("a\u240D\u240A\u2409b")},
        {"nul, bell, delete", QString::fromLatin1("\0\a\x7F", 3),
         QStringLiteral("\u2400\u2407\u2421")},
        {"a terminal's other escape", QString(QChar(0x9B)) + QStringLiteral("2J"),
         QStringLiteral("<U+009B>2J")},
        {"direction", QStringLiteral("a\u202Eb\u2066c\u200F"),
         QStringLiteral("a<U+202E>b<U+2066>c<U+200F>")},
        {"separators", QStringLiteral("a\u2028b\u2029\uFEFF"),
         QStringLiteral("a<U+2028>b<U+2029><U+FEFF>")},
    };
    for (const Row& row : rows) EXPECT_EQ(visibleText(row.text), row.shown) << row.name;
    EXPECT_EQ(visibleText(QStringLiteral("a\n\tb\r\x1B"), LineBreaks::Keep),
              QStringLiteral("a\n\tb\u240D\u241B"));
}

TEST(VisibleText, MessagesAndProgressHoldNoEscapes) {
    QString written;
    ConsoleShell shell(
        QStringLiteral("prog"), [&](const QString& text) { written += text; }, true);
    shell.showError(QStringLiteral("bad \x1B]0;title\a\nforged: line"));
    EXPECT_EQ(written, QStringLiteral("prog: bad \u241B]0;title\u2407\n  forged: line\n"));
    written.clear();
    shell.showProgress(QStringLiteral("table \x1B[1mx\ny"));
    EXPECT_EQ(written, QStringLiteral("\rtable \u241B[1mx\u240Ay"));
}

}  // namespace
}  // namespace zov
