// INI files: any bytes are read, changed and read again.
#include "fuzz_support.h"
#include "util/ini_document.h"
#include "util/text_decode.h"

using namespace zov;
using fuzz::require;

namespace {

void requireSameWhenWritten(const IniDocument& document, Qt::CaseSensitivity sectionCase) {
    const QString written = document.text();
    const IniDocument again(written, sectionCase);
    require(again.text() == written, "a file that was written reads the same");
    require(again.sections() == document.sections(), "the sections stay");
    for (const QString& section : document.sections()) {
        require(again.hasSection(section), "a section that is listed is found");
        require(again.keys(section) == document.keys(section), "the keys stay");
        for (const QString& key : document.keys(section)) {
            const std::optional<QString> value = document.value(section, key);
            require(value.has_value(), "a key that is listed has a value");
            require(again.value(section, key) == value, "the values stay");
        }
    }
}

QString onOneLine(QString text) {
    text.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
    return text.replace(u'\r', u' ').replace(u'\n', u' ');
}

/// A key as the program uses them: nothing in it that makes a line something else.
QString plainKey(const QString& text) {
    QString key;
    for (const QChar c : text)
        if (c.isLetterOrNumber() || c == u'_' || c == u'.') key += c;
    return key.isEmpty() ? QStringLiteral("Key") : key;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Fields fields(data, size);
    const auto sectionCase = size % 2 ? Qt::CaseSensitive : Qt::CaseInsensitive;
    IniDocument document(decodeText(fields.next()).text, sectionCase);
    requireSameWhenWritten(document, sectionCase);

    while (!fields.atEnd()) {
        const QString section = fields.nextText();
        const QString key = plainKey(fields.nextText());
        const QString value = fields.nextText();
        document.setValue(section, key, value);
        require(document.value(section, key) == onOneLine(value), "a value that was set is there");
        document.setValue(section, key + u'2', key);
        document.removeKey(section, key + u'2');
        document.setSection(value, {{key, section}, {QStringLiteral("Id"), key}});
        document.valuesOf(key);
    }
    requireSameWhenWritten(document, sectionCase);
    for (const QString& section : document.sections()) document.removeSection(section);
    requireSameWhenWritten(document, sectionCase);
    return 0;
}
