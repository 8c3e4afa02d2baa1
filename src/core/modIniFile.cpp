#include "core/modIniFile.h"

#include "core/error_report.h"
#include "util/atomic_file.h"
#include "util/cInifile.h"
#include "util/ini_document.h"
#include "util/numbered_error.h"

#include <limits>
#include <optional>

namespace zov {
namespace {

constexpr qsizetype StringBuffer = 256;

/// The sign and digits that the text starts with, as the platform's integer reader takes them.
qint64 leadingInteger(const QString& text) {
    qsizetype at = text.startsWith(u'-') ? 1 : 0;
    while (at < text.size() && text[at] >= u'0' && text[at] <= u'9' && at < 12) ++at;
    return text.left(at).toLongLong();
}

std::optional<QString> readValue(const QString& section, const QString& key, const QString& path) {
    QByteArray bytes;
    const QString trouble = readWholeFile(path, bytes);
    if (!trouble.isEmpty()) throw NumberedError(run_error::FileAccess, trouble);
    return IniDocument(decodeText(bytes).text).value(section, key);
}

}  // namespace

qint16 INIGetSettingInteger(const QString& Section, const QString& Key, const QString& IniPath) {
    try {
        const qint64 number = leadingInteger(readValue(Section, Key, IniPath).value_or(QString()));
        if (number < std::numeric_limits<qint16>::min() ||
            number > std::numeric_limits<qint16>::max()) {
            throw NumberedError(run_error::Overflow, QStringLiteral("Overflow"));
        }
        return qint16(number);
    } catch (...) {
        showCaughtErrorTitled("INIGetSettingInteger");
        return 0;
    }
}

QString INIGetSettingString(const QString& Section, const QString& Key, const QString& IniPath) {
    try {
        return readValue(Section, Key, IniPath).value_or(QString()).left(StringBuffer);
    } catch (...) {
        showCaughtErrorTitled("INIGetSettingString");
        return {};
    }
}

bool INIWriteSetting(const QString& Section, const QString& Key, const QString& Value,
                     const QString& IniPath) {
    try {
        cInifile file(IniPath);
        file.Section = Section;
        file.Key = Key;
        file.setValue(Value);
        if (!file.Success()) throw NumberedError(run_error::FileAccess, file.lastError());
        return true;
    } catch (...) {
        showCaughtErrorTitled("INIWriteSetting");
        return false;
    }
}

}  // namespace zov
