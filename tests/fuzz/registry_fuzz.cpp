// The settings file: any bytes are read, changed and read again. What the program stores comes
// back to the letter, and no line is lost that it doesn't understand.
#include "core/registry_document.h"
#include "fuzz_support.h"
#include "util/text_decode.h"

using namespace zov;
using fuzz::require;

namespace {

const QString Root = QStringLiteral("HKEY_CURRENT_USER\\Software\\ZOV");

// As the program's own keys and names are.
const QString Keys[] = {Root + QStringLiteral("\\Servers\\Server_1"),
                        Root + QStringLiteral("\\Comparisons"), Root};
const QString Names[] = {QStringLiteral("Name"), QStringLiteral("Password"),
                         QStringLiteral("MaxRowsInDiffTable")};

void requireText(const RegistryDocument& document, const QString& key, const QString& name,
                 const QString& text) {
    const std::optional<RegistryValue> stored = document.value(key, name);
    require(stored && stored->type == RegistryValue::Type::String && stored->text == text,
            "a stored text comes back");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Fields fields(data, size);
    const DecodedText decoded = decodeText(fields.next());
    RegistryDocument document(decoded.text);
    const QString written = document.text();
    const RegistryDocument again(written);
    require(again.text() == written, "a store that was written reads the same");
    require(again.brokenLineCount() == document.brokenLineCount(),
            "lines that can't be read stay lines that can't be read");

    const int broken = document.brokenLineCount();
    QStringList texts;
    for (const QString& key : Keys) {
        require(!document.hasSubkeys(key) || document.hasKey(key), "a subkey's parent is there");
        for (const QString& name : Names) {
            QString text = fields.nextText();
            document.setString(key, name, text);
            if (const qsizetype nul = text.indexOf(QChar(u'\0')); nul >= 0) text.truncate(nul);
            requireText(document, key, name, text);
            texts.append(text);
        }
    }
    const RegistryDocument changed(document.text());
    for (const QString& key : Keys)
        for (const QString& name : Names) requireText(changed, key, name, texts.takeFirst());
    document.setDWord(Keys[0], Names[0], quint32(size));
    const std::optional<RegistryValue> number =
        RegistryDocument(document.text()).value(Keys[0], Names[0]);
    require(number && number->type == RegistryValue::Type::DWord && number->number == size,
            "a stored number comes back");
    document.deleteKey(Keys[0]);
    require(!document.value(Keys[0], Names[0]), "a deleted key has no values");
    require(document.brokenLineCount() == broken, "changes keep the lines that can't be read");
    return 0;
}
