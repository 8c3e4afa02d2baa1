#include "core/modIgnoreColumns.h"

#include "core/globals.h"
#include "core/run_account.h"
#include "shell/shell.h"
#include "util/cInifile.h"
#include "util/ini_document.h"
#include "util/numbered_error.h"

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

QStringList columnsOfSection(cInifile& ini, const QString& section) {
    QStringList columns;
    ini.Section = section;
    // One failure is enough: what could be read before it is no list.
    for (const QString& key : ini.EnumerateCurrentSection()) {
        if (!ini.lastError().isEmpty()) return {};
        ini.Key = key;
        columns += ini.Value();
    }
    return ini.lastError().isEmpty() ? columns : QStringList();
}

}  // namespace

QString GetObjectKeyName(const QString& Server, const QString& Db, const QString& Table) {
    const QString name = Server + u'.' + Db;
    return Table.isEmpty() ? name : name + u'.' + Table;
}

void GetObjectKeyParts(const QString& Key, QString& Server, QString& Db, QString& Table) {
    Server = Key.section(u'.', 0, 0);
    Db = Key.section(u'.', 1, 1);
    Table = Key.section(u'.', 2);
}

QString GetObjectDisplayName(const QString& Server, const QString& Db, const QString& Table) {
    return Table + QStringLiteral(" (Database: ") + Db + QStringLiteral(", Server: ") + Server +
           u')';
}

qint32 GetIgnoredColumnsList(qint32 Mode, const QString& Key, QStringList& Columns,
                             QString* Failure) {
    cInifile ini(iniPath(Mode));
    Columns = columnsOfSection(ini, Key);
    if (!ini.lastError().isEmpty())
        addToAccount({{},
                      QStringLiteral("reading the ignored columns"),
                      ini.lastError(),
                      run_error::FileAccess});
    if (Failure) *Failure = ini.lastError();
    return qint32(Columns.size());
}

bool SaveIgnoredColumnsList(qint32 Mode, const QString& Key, const QStringList& Columns) {
    cInifile ini(iniPath(Mode));
    const auto writeColumns = [&](IniDocument& document) {
        for (qsizetype n = 0; n < Columns.size(); ++n) {
            document.setValue(Key, QString::number(n), Columns[n]);
        }
    };
    // One rewrite of the file, so that a failure can't leave the table without its list.
    ini.change([&](IniDocument& document) {
        document.removeSection(Key);
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
    cInifile ini(iniPath(Mode));
    for (const QString& section : ini.EnumerateAllSections()) {
        IgnoredColumnRow row;
        GetObjectKeyParts(section, row.Server, row.Db, row.Table);
        for (const QString& column : columnsOfSection(ini, section)) {
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
