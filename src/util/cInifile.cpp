#include "util/cInifile.h"

#include "util/atomic_file.h"
#include "util/ini_document.h"
#include "util/text.h"

#include <cmath>
#include <limits>

namespace zov {
namespace {

constexpr qsizetype ValueBuffer = 255;
constexpr qsizetype ListBuffer = 8192;
const QString NotStored = QStringLiteral("FAIL");

QString nulTerminated(const QStringList& names) {
    QString list;
    for (const QString& name : names) {
        list += name;
        list += QChar(u'\0');
    }
    return list.left(ListBuffer);
}

QStringList splitAtNuls(const QString& list) {
    return list.split(QChar(u'\0'), Qt::SkipEmptyParts);
}

}  // namespace

IniDocument cInifile::read() {
    QByteArray bytes;
    lastError_ = readWholeFile(Path, bytes);
    return IniDocument(decodeText(bytes).text, SectionCase);
}

void cInifile::change(const std::function<void(IniDocument&)>& edit) {
    lastError_ = updateTextFile(Path, FileAccess::Default, [&](QString& text) {
        IniDocument document(text, SectionCase);
        const QString before = document.text();
        edit(document);
        const QString after = document.text();
        if (after != before) text = after;
    });
    lastReturnCode_ = lastError_.isEmpty() ? 1 : 0;
}

QString cInifile::Value() {
    const QString value = read().value(Section, Key).value_or(Default).left(ValueBuffer);
    lastReturnCode_ = qint32(value.size());
    return value;
}

void cInifile::setValue(const QString& value) {
    QString written = value;
    written.remove(QChar(u'\0'));
    change([&](IniDocument& document) { document.setValue(Section, Key, written); });
}

void cInifile::DeleteKey() {
    change([&](IniDocument& document) { document.removeKey(Section, Key); });
}

void cInifile::DeleteSection() {
    change([&](IniDocument& document) { document.removeSection(Section); });
}

QString cInifile::INISection() {
    const QString list = nulTerminated(read().keys(Section));
    lastReturnCode_ = qint32(list.size());
    return list;
}

void cInifile::setINISection(const QString& entries) {
    std::vector<std::pair<QString, QString>> pairs;
    for (const QString& entry : splitAtNuls(entries)) {
        const qsizetype equals = entry.indexOf(u'=');
        if (equals > 0) pairs.emplace_back(entry.left(equals), entry.mid(equals + 1));
    }
    change([&](IniDocument& document) { document.setSection(Section, pairs); });
}

QString cInifile::Sections() {
    const QString list = nulTerminated(read().sections());
    lastReturnCode_ = qint32(list.size());
    return list;
}

QStringList cInifile::EnumerateCurrentSection() {
    return splitAtNuls(INISection());
}

QStringList cInifile::EnumerateAllSections() {
    return splitAtNuls(Sections());
}

void cInifile::SaveFormPosition(const PlacedForm& Form) {
    if (Form.WindowState() == 1) return;
    const bool maximised = Form.WindowState() == 2;
    change([&](IniDocument& document) {
        const auto write = [&](const char* key, qint32 number) {
            document.setValue(Section, QString::fromLatin1(key), QString::number(number));
        };
        write("Maximised", maximised ? 1 : 0);
        if (maximised) return;
        write("Left", Form.Left());
        write("Top", Form.Top());
        write("Width", Form.Width());
        write("Height", Form.Height());
    });
}

void cInifile::LoadFormPosition(PlacedForm& Form) {
    const IniDocument document = read();
    const auto stored = [&](const char* key) {
        return document.value(Section, QString::fromLatin1(key)).value_or(NotStored);
    };
    const QString maximised = stored("Maximised");
    if (maximised == NotStored) return;
    const QString left = stored("Left"), top = stored("Top");
    const QString width = stored("Width"), height = stored("Height");
    if (left != NotStored && top != NotStored && width != NotStored && height != NotStored) {
        Form.Move(CLngDefault(left, Form.Left()), CLngDefault(top, Form.Top()),
                  CLngDefault(width, Form.Width()), CLngDefault(height, Form.Height()));
    }
    if (CLngDefault(maximised, 0) == 1) Form.setWindowState(2);
}

qint32 cInifile::CLngDefault(const QString& Text, qint32 Default) {
    double number = 0;
    if (!isNumeric(Text, &number)) return Default;
    const double rounded = number - std::remainder(number, 1.0);
    if (!(rounded >= double(std::numeric_limits<qint32>::min()) &&
          rounded <= double(std::numeric_limits<qint32>::max()))) {
        return Default;
    }
    return qint32(rounded);
}

}  // namespace zov
