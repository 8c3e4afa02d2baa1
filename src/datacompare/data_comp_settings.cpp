#include "datacompare/data_comp_settings.h"

#include "core/globals.h"
#include "core/modIgnoreColumns.h"
#include "core/run_account.h"
#include "util/atomic_file.h"
#include "util/cInifile.h"
#include "util/ini_document.h"
#include "util/numbered_error.h"

namespace zov {
namespace {

QString sectionOf(bool isSource, const QString& db, const QString& tableKey) {
    const ServerInfo& server = globals().gtCurrentServers[isSource ? SourcePanel : TargetPanel];
    return GetObjectKeyName(server.Name, db, tableKey);
}

}  // namespace

QString CompMethodToText(qint32 Method) {
    switch (Method) {
        case CompMethod::RecordByRecord:
            return QStringLiteral("Record by Record");
        case CompMethod::PrimaryKey:
            return QStringLiteral("Primary Key");
        default:
            return QStringLiteral("N/A");
    }
}

bool isKeyField(const QString& key) {
    return !key.isEmpty() && key != NoField;
}

TableCompSettings ReadTableCompSettings(bool IsSource, const QString& Db, const QString& TableKey) {
    // The file is read once: a bulk run asks for each of its tables.
    QByteArray bytes;
    const QString failure = readWholeFile(globals().gstrTablesCompsIni, bytes);
    if (!failure.isEmpty())
        addToAccount(
            {{}, QStringLiteral("reading the tables' settings"), failure, run_error::FileAccess});
    const IniDocument document(decodeText(bytes).text, Qt::CaseSensitive);
    const QString section = SectionOfKey(document, sectionOf(IsSource, Db, TableKey));
    const auto text = [&](const char* key) {
        return document.value(section, QLatin1String(key)).value_or(QString());
    };
    TableCompSettings settings;
    settings.PrimarySortKey = text("PrimarySortKey");
    settings.SecondarySortKey = text("SecondarySortKey");
    settings.TertiarySortKey = text("TertiarySortKey");
    settings.Offset = cInifile::CLngDefault(text("OffsetStartRec"), 0);
    settings.Method = cInifile::CLngDefault(text("CompMethod"), CompMethod::RecordByRecord);
    settings.CompKey = text("CompKey");
    settings.SecondaryCompKey = text("SecondaryCompKey");
    settings.TertiaryCompKey = text("TertiaryCompKey");
    return settings;
}

DataCompSettings ReadDataCompSettings(const QString& Db1, const QString& Db2,
                                      const QString& TableKey1, const QString& TableKey2) {
    const TableCompSettings source = ReadTableCompSettings(true, Db1, TableKey1);
    const TableCompSettings target = ReadTableCompSettings(false, Db2, TableKey2);
    DataCompSettings both;
    both.Method = target.Method;
    both.PrimarySortKey1 = source.PrimarySortKey;
    both.SecondarySortKey1 = source.SecondarySortKey;
    both.TertiarySortKey1 = source.TertiarySortKey;
    both.PrimarySortKey2 = target.PrimarySortKey;
    both.SecondarySortKey2 = target.SecondarySortKey;
    both.TertiarySortKey2 = target.TertiarySortKey;
    both.Offset1 = source.Offset;
    both.Offset2 = target.Offset;
    both.CompKey1 = source.CompKey;
    both.SecondaryCompKey1 = source.SecondaryCompKey;
    both.TertiaryCompKey1 = source.TertiaryCompKey;
    both.CompKey2 = target.CompKey;
    both.SecondaryCompKey2 = target.SecondaryCompKey;
    both.TertiaryCompKey2 = target.TertiaryCompKey;
    return both;
}

QString SaveTableCompSettings(bool IsSource, const QString& Db, const QString& TableKey,
                              const TableCompSettings& settings) {
    cInifile ini(globals().gstrTablesCompsIni);
    ini.SectionCase = Qt::CaseSensitive;
    ini.change([&](IniDocument& document) {
        const QString section = SectionOfKey(document, sectionOf(IsSource, Db, TableKey));
        const auto write = [&](const char* key, const QString& value) {
            document.setValue(section, QLatin1String(key), value);
        };
        write("PrimarySortKey", settings.PrimarySortKey);
        write("SecondarySortKey", settings.SecondarySortKey);
        write("TertiarySortKey", settings.TertiarySortKey);
        write("OffsetStartRec", QString::number(settings.Offset));
        // The next one and "IgnoreColumn" are read by nobody; older files have them.
        write("DbType", QStringLiteral("SQL Server"));
        write("CompMethod", QString::number(settings.Method));
        write("CompKey", settings.CompKey);
        write("SecondaryCompKey", settings.SecondaryCompKey);
        write("TertiaryCompKey", settings.TertiaryCompKey);
        if (IsSource) write("IgnoreColumn", QString());
    });
    return ini.lastError();
}

}  // namespace zov
