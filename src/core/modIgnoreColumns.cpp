#include "core/modIgnoreColumns.h"

#include "core/globals.h"
#include "core/run_account.h"
#include "shell/shell.h"
#include "util/cInifile.h"
#include "util/ini_document.h"
#include "util/numbered_error.h"

#include <QRegularExpression>

#include <algorithm>

namespace zov {
namespace {

/// Empty for a purpose that there isn't.
QString iniPath(qint32 mode) {
    const Globals& g = globals();
    switch (mode) {
        case IgnoreMode::DataComparison:
            return g.gstrIgnoredColsDataIni;
        case IgnoreMode::StructureComparison:
            return g.gstrIgnoredColsStructIni;
        case IgnoreMode::DataAnalysis:
            return g.gstrIgnoredColsDataAnalysisIni;
        default:
            return {};
    }
}

cInifile marksOf(qint32 mode) {
    cInifile ini(iniPath(mode));
    ini.SectionCase = Qt::CaseSensitive;
    return ini;
}

QStringList columnsOfSection(const IniDocument& document, const QString& section) {
    QStringList columns;
    for (const QString& key : document.keys(section))
        columns += document.value(section, key).value_or(QString());
    return columns;
}

/// The first part of `key` from `at` on, without its brackets; `at` moves behind the dot after it.
QString takePart(const QString& key, qsizetype& at) {
    if (at >= key.size()) return {};
    qsizetype end = at;
    QString part;
    if (key[at] == u'[') {
        for (end = at + 1; end < key.size(); ++end) {
            if (key[end] != u']') {
                part += key[end];
                continue;
            }
            const QChar next = end + 1 < key.size() ? key[end + 1] : QChar(u'.');
            if (next == u'.') break;
            part += next == u'r' ? QChar(u'\r') : next == u'n' ? QChar(u'\n') : next;
            ++end;
        }
        ++end;
    } else {
        end = key.indexOf(u'.', at);
        if (end < 0) end = key.size();
        part = key.mid(at, end - at);
    }
    at = std::min(end + 1, key.size());
    return part;
}

/// Where the part behind the last dot begins that stands in no brackets.
qsizetype lastPartOf(const QString& key) {
    qsizetype begin = 0;
    for (qsizetype at = 0; at < key.size(); ++at) {
        if (key[at] == u'[' && at == begin) {
            const qsizetype close = key.indexOf(u"].", at);
            if (close < 0) break;
            at = close + 1;
        }
        if (key[at] == u'.') begin = at + 1;
    }
    return begin;
}

}  // namespace

QString KeyPart(const QString& Name) {
    static const QRegularExpression unsafe(QStringLiteral("[.\\[\\]\r\n]"));
    if (!Name.contains(unsafe)) return Name;
    QString part = Name;
    part.replace(u']', QStringLiteral("]]"));
    // A line of the file can't hold these.
    part.replace(u'\r', QStringLiteral("]r")).replace(u'\n', QStringLiteral("]n"));
    return u'[' + part + u']';
}

QString GetObjectKeyName(const QString& Server, const QString& Db, const QString& TableKey) {
    const QString name = Server + u'.' + KeyPart(Db);
    return TableKey.isEmpty() ? name : name + u'.' + TableKey;
}

void GetObjectKeyParts(const QString& Key, QString& Server, QString& Db, QString& TableKey) {
    qsizetype at = 0;
    Server = takePart(Key, at);
    Db = takePart(Key, at);
    TableKey = Key.mid(at);
}

QString SectionOfKey(const IniDocument& Document, const QString& Key) {
    if (Document.hasSection(Key)) return Key;
    const qsizetype table = lastPartOf(Key);
    for (const QString& section : Document.sections())
        if (section.compare(Key, Qt::CaseInsensitive) == 0 &&
            QStringView(section).mid(table) == QStringView(Key).mid(table))
            return section;
    return Key;
}

QString GetObjectDisplayName(const QString& Server, const QString& Db, const QString& Table) {
    return Table + QStringLiteral(" (Database: ") + Db + QStringLiteral(", Server: ") + Server +
           u')';
}

qint32 GetIgnoredColumnsList(qint32 Mode, const QString& Key, QStringList& Columns,
                             QString* Failure) {
    cInifile ini = marksOf(Mode);
    const IniDocument document = ini.read();
    Columns = columnsOfSection(document, SectionOfKey(document, Key));
    if (!ini.lastError().isEmpty()) Columns.clear();
    if (!ini.lastError().isEmpty())
        addToAccount({{},
                      QStringLiteral("reading the ignored columns"),
                      ini.lastError(),
                      run_error::FileAccess});
    if (Failure) *Failure = ini.lastError();
    return qint32(Columns.size());
}

bool SaveIgnoredColumnsList(qint32 Mode, const QString& Key, const QStringList& Columns) {
    cInifile ini = marksOf(Mode);
    const auto writeColumns = [&](IniDocument& document) {
        const QString section = SectionOfKey(document, Key);
        for (qsizetype n = 0; n < Columns.size(); ++n) {
            document.setValue(section, QString::number(n), Columns[n]);
        }
    };
    // One rewrite of the file, so that a failure can't leave the table without its list.
    ini.change([&](IniDocument& document) {
        document.removeSection(SectionOfKey(document, Key));
        writeColumns(document);
    });
    if (ini.Success()) return true;
    shell().messageBox(QStringLiteral("Saving list of ignored columns - delete section failed."),
                       {}, BoxIcon::Information);
    ini.change(writeColumns);
    if (ini.Success()) return true;
    shell().messageBox(
        QStringLiteral("The list of ignored columns can't be stored. ") + ini.lastError(), {},
        BoxIcon::Exclamation);
    return false;
}

qint32 GetAllIgnoredColumns(qint32 Mode, std::vector<IgnoredColumnRow>& Rows) {
    Rows.clear();
    cInifile ini = marksOf(Mode);
    const IniDocument document = ini.read();
    for (const QString& section : document.sections()) {
        IgnoredColumnRow row;
        GetObjectKeyParts(section, row.Server, row.Db, row.Table);
        for (const QString& column : columnsOfSection(document, section)) {
            row.Column = column;
            Rows.push_back(row);
        }
    }
    return qint32(Rows.size());
}

bool IsColumnInList(const QStringList& List, const QString& Column) {
    return List.contains(Column, Qt::CaseSensitive);
}

}  // namespace zov
