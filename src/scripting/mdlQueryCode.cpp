#include "scripting/mdlQueryCode.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "core/modIgnoreColumns.h"
#include "core/run_account.h"
#include "data/sql_names.h"
#include "util/text.h"

#include <QSet>

namespace zov {
namespace {

constexpr const char* Module = "mdlQueryCode";

std::unique_ptr<Recordset> select(const ServerInfo& server, const QString& text,
                                  const QString& dbName) {
    std::unique_ptr<Recordset> rs;
    if (GetAdoRS(server, adCmdText, text, rs, dbName) == -1 || !rs || !rs->isOpen()) return nullptr;
    return rs;
}

/// A table's name as the structure's statement has it, in two literals.
struct TableLiterals {
    QString name;
    QString identity;  ///< for ident_seed and ident_incr, which read it as a statement would
};

// A plain name of the default schema stands as it is. Blanks at the ends would get lost.
QString identityName(const ObjectRef& table) {
    const bool defaultSchema = table.schema.isEmpty() || table.schema == QLatin1StringView("dbo");
    const bool plain = !table.name.contains(u'.') && !table.name.contains(u'[') &&
                       !table.name.contains(u']') && !table.name.contains(u'"') &&
                       table.name.trimmed() == table.name;
    if (plain && defaultSchema && !table.hasNamesakes) return table.name;
    return quotedName(table.schema, table.name);
}

/// The statement's condition on the object beside its name: nothing for a name that stands once.
QString idCondition(const QString& column, const ObjectRef& object) {
    if (!object.hasNamesakes || object.id < 1) return {};
    return QStringLiteral("AND ") + column + QStringLiteral(" = %1 ").arg(object.id);
}

// Something that the catalogue names, and has no text for.
void accountForUnreadable(const ServerInfo& server, const QString& dbName, const QString& doing,
                          const QString& message) {
    addToAccount({server.Name + u'.' + dbName, doing, message, 0, true});
}

QString structureQuery(const TableLiterals& table, qint32 objectId) {
    const QString where =
        objectId < 1 ? QStringLiteral("WHERE sob.name = '") + table.name + QStringLiteral("' ")
                     : QStringLiteral("WHERE sco.id = %1 ").arg(objectId);
    return QStringLiteral(
               "SELECT sco.[name] AS [column], sco.autoval, sco.isnullable, sco.length, sco.prec, "
               "sco.scale, sty.[name] AS datatype, ident_seed('") +
           table.identity + QStringLiteral("') AS identityseed, ident_incr('") + table.identity +
           QStringLiteral(
               "') AS identityincrement, isID=case when sco.status&128=0 then '' else 'Y' end , "
               "sco.cdefault, sob.[id] AS [table_id], sco.[colid] AS [col_id] FROM sysobjects sob "
               "INNER JOIN syscolumns sco ON sob.id = sco.id INNER JOIN systypes sty ON sco.xtype "
               "= "
               "sty.xtype AND sco.xusertype = sty.xusertype ") +
           where + QStringLiteral("ORDER BY sco.colorder");
}

enum class SizeForm { None, Length, PrecisionAndScale };
SizeForm sizeFormOf(const QString& dataType) {
    static const QSet<QString> withLength = {
        QStringLiteral("nvarchar"), QStringLiteral("varchar"), QStringLiteral("binary"),
        QStringLiteral("char"),     QStringLiteral("nchar"),   QStringLiteral("varbinary")};
    const QString type = dataType.toLower();
    if (withLength.contains(type)) return SizeForm::Length;
    if (type == QLatin1StringView("decimal") || type == QLatin1StringView("numeric"))
        return SizeForm::PrecisionAndScale;
    return SizeForm::None;
}

// The fields of the structure query, by position.
enum {
    Column,
    Autoval,
    IsNullable,
    Length,
    Prec,
    Scale,
    DataType,
    IdentitySeed,
    IdentityIncrement,
    IsIdentity,
    CDefault,
    TableId,
    ColumnId
};

/// Whether a default stands on its own, bound to a column or a type: it is no table's constraint
/// and has no constraint's name.
bool isBoundDefault(const ServerInfo& server, const QString& dbName, qint32 defaultId) {
    const ScopedValue<bool> silent(globals().gblnSuppressConnErrors, true);
    const auto rs = select(server,
                           QStringLiteral("SELECT [name] FROM sys.objects WHERE object_id = %1 AND "
                                          "parent_object_id = 0")
                               .arg(defaultId),
                           dbName);
    return rs && !rs->isEof();
}

// " CONSTRAINT [name] DEFAULT value", or nothing when the column has no default. A bound one has no
// name, and its value is the statement that made it.
QString defaultClause(const ServerInfo& server, const QString& dbName, const Recordset& rs) {
    const qint32 defaultId = qint32(rs.field(CDefault).toInt64());
    const qint32 columnId = qint32(rs.field(ColumnId).toInt64());
    if (defaultId <= 0 || columnId <= 0) return {};
    const qint32 tableId = qint32(rs.field(TableId).toInt64());
    const QString value = GetDefaultValue(server, dbName, tableId, columnId);
    const QString name = GetDefaultConstraintName(server, dbName, tableId, defaultId);
    if (value.isEmpty() || (name.isEmpty() && !isBoundDefault(server, dbName, defaultId)))
        accountForUnreadable(
            server, dbName, QStringLiteral("reading a default"),
            QStringLiteral("The default of column %1 can't be read.").arg(rs.field(Column).text()));
    return QStringLiteral(" CONSTRAINT [") + name + QStringLiteral("] DEFAULT ") + value;
}

bool isSystemType(const QString& name) {
    static const QSet<QString> types = {
        QStringLiteral("bigint"),        QStringLiteral("binary"),
        QStringLiteral("bit"),           QStringLiteral("char"),
        QStringLiteral("date"),          QStringLiteral("datetime"),
        QStringLiteral("datetime2"),     QStringLiteral("datetimeoffset"),
        QStringLiteral("decimal"),       QStringLiteral("float"),
        QStringLiteral("geography"),     QStringLiteral("geometry"),
        QStringLiteral("hierarchyid"),   QStringLiteral("image"),
        QStringLiteral("int"),           QStringLiteral("json"),
        QStringLiteral("money"),         QStringLiteral("nchar"),
        QStringLiteral("ntext"),         QStringLiteral("numeric"),
        QStringLiteral("nvarchar"),      QStringLiteral("real"),
        QStringLiteral("smalldatetime"), QStringLiteral("smallint"),
        QStringLiteral("smallmoney"),    QStringLiteral("sql_variant"),
        QStringLiteral("sysname"),       QStringLiteral("text"),
        QStringLiteral("time"),          QStringLiteral("timestamp"),
        QStringLiteral("tinyint"),       QStringLiteral("uniqueidentifier"),
        QStringLiteral("varbinary"),     QStringLiteral("varchar"),
        QStringLiteral("vector"),        QStringLiteral("xml")};
    return types.contains(name);
}

// "hr].[" in front of a type's name when it isn't dbo's: types of one name may be different things.
QString typeSchema(const ServerInfo& server, const QString& dbName, const Recordset& rs) {
    if (isSystemType(rs.field(DataType).text())) return {};
    const QString owner = GetMajorVersion(server.Version) >= 9 ? QStringLiteral("SCHEMA_NAME")
                                                               : QStringLiteral("USER_NAME");
    std::unique_ptr<Recordset> found =
        select(server,
               QStringLiteral("SELECT %1(sty.uid) FROM syscolumns sco INNER JOIN systypes sty ON "
                              "sco.xusertype = sty.xusertype WHERE sco.id = %2 AND sco.colid = %3")
                   .arg(owner, rs.field(TableId).text(), rs.field(ColumnId).text()),
               dbName);
    const QString schema = found && !found->isEof() ? found->field(0).text() : QString();
    if (found && schema.isEmpty())
        accountForUnreadable(server, dbName, QStringLiteral("reading a type"),
                             QStringLiteral("The schema of column %1's type can't be read.")
                                 .arg(rs.field(Column).text()));
    return schema.isEmpty() || schema == u"dbo" ? QString() : schema + QStringLiteral("].[");
}

ColumnRecord columnOfRow(const ServerInfo& server, const QString& dbName, const Recordset& rs) {
    ColumnRecord column;
    column.strName = rs.field(Column).text();
    column.strDataType = rs.field(DataType).text();
    column.strTypeSpec = column.strDataType;
    QString& line = column.strLine;
    line = u'[' + column.strName + QStringLiteral("] [") + typeSchema(server, dbName, rs) +
           column.strDataType + QStringLiteral("] ");

    // The two forms part ways in their blanks: "[varchar] (50) " but "[decimal](18,2) ".
    switch (sizeFormOf(column.strDataType)) {
        case SizeForm::Length: {
            column.strPrecision = rs.field(Prec).text();
            const QString size = u'(' + column.strPrecision + u')';
            column.strTypeSpec += u' ' + size;
            line += size + u' ';
            break;
        }
        case SizeForm::PrecisionAndScale: {
            column.strPrecision = rs.field(Prec).text();
            const QString size =
                u'(' + column.strPrecision + u',' + rs.field(Scale).text() + QStringLiteral(") ");
            column.strTypeSpec += u' ' + size;
            line.chop(1);
            line += size;
            break;
        }
        case SizeForm::None:
            break;
    }
    if (rs.field(IsIdentity).cell().text == QLatin1StringView("Y")) {
        if (rs.field(IdentitySeed).isNull()) {
            accountForUnreadable(server, dbName, QStringLiteral("reading an identity"),
                                 QStringLiteral("The seed of identity column %1 can't be read.")
                                     .arg(column.strName));
            line += QLatin1StringView("IDENTITY ");
        } else {
            line += QStringLiteral("IDENTITY(") + rs.field(IdentitySeed).text() + u',' +
                    rs.field(IdentityIncrement).text() + QStringLiteral(") ");
        }
    }
    if (rs.field(IsNullable).toInt64() == 0) line += QLatin1StringView("NOT ");
    line += QLatin1StringView("NULL");
    // Older servers are never asked for defaults, so their texts show none.
    if (GetMajorVersion(server.Version) >= 9) line += defaultClause(server, dbName, rs);
    return column;
}

// Lower-cased; `count` is the length of the stored list.
QSet<QString> ignoredColumns(qint32 kind, const QString& key, qint32& count) {
    QStringList columns;
    count = GetIgnoredColumnsList(kind, key, columns);
    QSet<QString> names;
    for (const QString& column : columns) names.insert(column.toLower());
    return names;
}

struct StructureRequest {
    QString shownName;   ///< for what is told of the table
    QString storedName;  ///< the table in the key of its ignored columns
    TableLiterals literals;
    qint32 objectId = 0;
    bool useIgnoredColumns = false;
    qint32 ignoredColumnKind = 0;
    QString lineSuffix;
};

void readStructure(const ServerInfo& server, const QString& dbName, const StructureRequest& request,
                   TableStructure& structure) {
    QSet<QString> ignored;
    if (request.useIgnoredColumns)
        ignored = ignoredColumns(request.ignoredColumnKind,
                                 GetObjectKeyName(server.Name, dbName, request.storedName),
                                 structure.ignoredColumnCount);
    std::unique_ptr<Recordset> rs;
    {
        const ScopedValue<bool> silent(globals().gblnSuppressConnErrors, true);
        rs = select(server, structureQuery(request.literals, request.objectId), dbName);
    }
    if (rs) {
        structure.found = !rs->isEof();
        for (; !rs->isEof(); rs->MoveNext()) {
            if (!ignored.isEmpty() && ignored.contains(rs->field(Column).text().toLower()))
                continue;
            structure.columns.push_back(columnOfRow(server, dbName, *rs));
            structure.lastColumnIndex += 1;
            structure.structureText += structure.columns.back().strLine + request.lineSuffix + CRLF;
        }
        rs->Close();
        if (!structure.found && request.objectId >= 1)
            accountForUnreadable(server, dbName, QStringLiteral("reading columns"),
                                 QStringLiteral("The columns of table %1 can't be read: they are "
                                                "hidden from this login, or the table is gone.")
                                     .arg(request.shownName));
    }
    if (!structure.structureText.isEmpty()) {
        structure.structureText.chop(2);
        structure.structureText = Trim(structure.structureText);
    }
}

bool readStructureReported(const ServerInfo& server, const QString& dbName,
                           const StructureRequest& request, TableStructure& structure) {
    structure = {};
    try {
        readStructure(server, dbName, request, structure);
        return true;
    } catch (...) {
        const CaughtError error = caughtError();
        const QString message =
            QStringLiteral(
                "Error occured while attempting to get the structure of table\r\n\r\n'") +
            request.shownName + QStringLiteral("'\r\n\r\nin SQL Server database\r\n\r\n'") +
            server.Name + u'.' + dbName + QStringLiteral("'\r\n\r\nError %1 (").arg(error.number) +
            error.description + QStringLiteral(").");
        LogWrite(message);
        reportCaughtError(Module, "GetTableStructure", message);
        structure.found = false;
        return false;
    }
}

}  // namespace

bool GetTableStructure(const ServerInfo& server, const QString& dbName, const QString& tableName,
                       TableStructure& structure, bool useIgnoredColumns, qint32 ignoredColumnKind,
                       qint32 objectId, const QString& lineSuffix) {
    const StructureRequest request{tableName, KeyPart(tableName), {tableName, tableName},
                                   objectId,  useIgnoredColumns,  ignoredColumnKind,
                                   lineSuffix};
    return readStructureReported(server, dbName, request, structure);
}

bool GetTableStructure(const ServerInfo& server, const QString& dbName, const QString& storedName,
                       const QString& tableLiteral, TableStructure& structure,
                       bool useIgnoredColumns, qint32 ignoredColumnKind, qint32 objectId,
                       const QString& lineSuffix) {
    const StructureRequest request{storedName, storedName,        {tableLiteral, tableLiteral},
                                   objectId,   useIgnoredColumns, ignoredColumnKind,
                                   lineSuffix};
    return readStructureReported(server, dbName, request, structure);
}

bool GetTableStructure(const ServerInfo& server, const QString& dbName, const ObjectRef& table,
                       TableStructure& structure, bool useIgnoredColumns, qint32 ignoredColumnKind,
                       const QString& lineSuffix) {
    const TableLiterals literals{DoubleSingleQuotes(table.name),
                                 DoubleSingleQuotes(identityName(table))};
    const StructureRequest request{table.shownName.isEmpty() ? table.name : table.shownName,
                                   table.storedName(),
                                   literals,
                                   table.id,
                                   useIgnoredColumns,
                                   ignoredColumnKind,
                                   lineSuffix};
    return readStructureReported(server, dbName, request, structure);
}

qint32 GetColumnsCount(const ServerInfo& server, const QString& dbName, const QString& tableName,
                       qint32 ignoredColumnKind, qint32 objectId) {
    return guarded(Module, "GetColumnsCount", qint32(0), [&] {
        TableStructure structure;
        GetTableStructure(server, dbName, tableName, structure, false, ignoredColumnKind, objectId,
                          {});
        return structure.lastColumnIndex + 1;
    });
}

QString GetDefaultValue(const ServerInfo& server, const QString& dbName, qint32 tableId,
                        qint32 colId) {
    return guarded(Module, "GetDefaultValue", QString(), [&]() -> QString {
        const auto rs = select(
            server,
            QStringLiteral("SELECT [ctext] FROM syscomments WHERE id IN (SELECT cdefault FROM "
                           "syscolumns WHERE id = %1 AND colid = %2 AND cdefault > 0)")
                .arg(tableId)
                .arg(colId),
            dbName);
        if (!rs || rs->isEof()) return {};
        const CellView cell = rs->field(0).cell();
        if (cell.isNull) return {};
        // The catalogue keeps the characters of this binary column as UTF-16, low byte first.
        QString text(cell.bytes.size() / 2, Qt::Uninitialized);
        for (qsizetype i = 0; i < text.size(); ++i)
            text[i] =
                QChar(char16_t(quint8(cell.bytes[2 * i]) | quint8(cell.bytes[2 * i + 1]) << 8));
        return text;
    });
}

QString GetDefaultConstraintName(const ServerInfo& server, const QString& dbName, qint32 tableId,
                                 qint32 defaultId) {
    return guarded(Module, "GetDefaultConstraintName", QString(), [&]() -> QString {
        const ScopedValue<bool> silent(globals().gblnSuppressConnErrors, true);
        const auto rs =
            select(server,
                   QStringLiteral("SELECT [name] FROM sys.objects WHERE parent_object_id = %1 AND "
                                  "object_id = %2 AND type_desc LIKE 'DEFAULT_CONSTRAINT'")
                       .arg(tableId)
                       .arg(defaultId),
                   dbName);
        return rs && !rs->isEof() ? rs->field(0).text() : QString();
    });
}

QString GetIndexes(const ServerInfo& server, const QString& tableName, const QString& dbName,
                   bool clusteredOnly, const QString& nameSuffix,
                   std::vector<ColumnRecord>* indexes) {
    return GetIndexes(server, objectNamed(tableName, ObjectType::Table), dbName, clusteredOnly,
                      nameSuffix, indexes);
}

QString GetIndexes(const ServerInfo& server, const ObjectRef& table, const QString& dbName,
                   bool clusteredOnly, const QString& nameSuffix,
                   std::vector<ColumnRecord>* indexes) {
    if (indexes) indexes->clear();
    return guarded(Module, "GetIndexes", QString(), [&]() -> QString {
        const auto rs = select(
            server,
            QStringLiteral(
                "SELECT DISTINCT sc.name AS [column], si.name as [index], sk.indid, "
                "sk.keyno FROM sysobjects so INNER JOIN sysindexkeys sk ON so.parent_obj = "
                "sk.id INNER JOIN sysindexes si ON sk.id = si.id AND sk.indid = si.indid "
                "INNER JOIN syscolumns sc ON sk.id = sc.id AND sk.colid = sc.colid INNER "
                "JOIN sysobjects so2 ON so.parent_obj = so2.id WHERE so2.name = '") +
                DoubleSingleQuotes(table.name) + QStringLiteral("' ") +
                idCondition(QStringLiteral("so2.id"), table) + QStringLiteral("AND ") +
                (clusteredOnly ? QStringLiteral("si.indid = 1 AND ")
                               : QStringLiteral("si.indid BETWEEN 1 AND 254 AND ")) +
                QStringLiteral("INDEXPROPERTY(si.id, si.name, 'IsStatistics') = 0 AND "
                               "INDEXPROPERTY(si.id, si.name, 'IsHypothetical') = 0 ORDER BY "
                               "sk.indid, sk.keyno"),
            dbName);
        if (!rs || rs->isEof()) return {};

        // Whether the first index is a primary key is decided by its name alone; every later one is
        // worded as a plain index.
        qint64 openIndid = rs->field(2).toInt64();
        const QString firstName = rs->field(1).text();
        QString text;
        if (openIndid != 1)
            text = QStringLiteral("INDEX [") + firstName + QStringLiteral("] (");
        else if (firstName.startsWith(QLatin1StringView("pk"), Qt::CaseInsensitive))
            text = QStringLiteral("CONSTRAINT [") + firstName + nameSuffix +
                   QStringLiteral("] PRIMARY KEY CLUSTERED (");
        else
            text = QStringLiteral("CLUSTERED INDEX [") + firstName + nameSuffix +
                   QStringLiteral("] (");

        QString result;
        ColumnRecord record;
        while (!rs->isEof()) {
            record.strName = rs->field(1).text();
            record.strLine = rs->field(0).text();
            text += u'[' + record.strLine + QStringLiteral("], ");
            rs->MoveNext();
            if (!rs->isEof() && rs->field(2).toInt64() <= openIndid) continue;

            text.chop(2);
            text += u')';
            if (indexes) {
                record.strIndexText = text.startsWith(CRLF) ? text.mid(2) : text;
                indexes->push_back(std::exchange(record, {}));
            }
            result += text;
            if (rs->isEof()) break;
            openIndid = rs->field(2).toInt64();
            text = CRLF + QStringLiteral("INDEX [") + rs->field(1).text() + QStringLiteral("] (");
        }
        return result + CRLF;
    });
}

QString GetTableConstraints(const ServerInfo& server, const QString& tableName,
                            const QString& dbName) {
    return guarded(Module, "GetTableConstraints", QString(), [&]() -> QString {
        const auto rs =
            select(server,
                   QStringLiteral(
                       "SELECT so.name AS [constraint], sc.text AS [default], sl.name as [column] "
                       "FROM sysobjects so INNER JOIN syscomments sc ON so.id = sc.id INNER JOIN "
                       "syscolumns sl ON so.parent_obj = sl.id AND so.id = sl.cdefault WHERE "
                       "so.parent_obj IN (SELECT id FROM sysobjects WHERE name = '") +
                       DoubleSingleQuotes(tableName) + QStringLiteral("') ORDER BY info"),
                   dbName);
        if (!rs || rs->isEof()) return {};
        QString text = QStringLiteral("EXEC('ALTER TABLE ' + @Database + '.[dbo].[") + tableName +
                       QStringLiteral("] WITH NOCHECK ADD\r\n");
        for (; !rs->isEof(); rs->MoveNext()) {
            // The text stands inside two levels of quoted EXEC: each quote four times.
            QString line = QStringLiteral("CONSTRAINT [") + rs->field(0).text() +
                           QStringLiteral("] DEFAULT ") +
                           rs->field(1).text().replace(u'\'', QLatin1StringView("''''")) +
                           QStringLiteral(" FOR [") + rs->field(2).text() + QStringLiteral("],");
            line.replace(QLatin1StringView("('''''''')"), QLatin1StringView("('''')"));
            line.replace(QLatin1StringView("(''''0'''')"), QLatin1StringView("(''0'')"));
            text += line + CRLF;
        }
        text.chop(3);
        return text + QStringLiteral("')\r\nIF @@ERROR <> 0 SET @ErrorVal = @@ERROR\r\n\r\n");
    });
}

QString GetExtras(const ServerInfo& server, const QString& objectName, const QString& dbName,
                  ObjectType objectType) {
    return GetExtras(server, objectNamed(objectName, objectType), dbName);
}

QString GetExtras(const ServerInfo& server, const ObjectRef& object, const QString& dbName) {
    if (object.kind != ObjectType::View) return {};
    return guarded(Module, "GetExtras", QString(), [&]() -> QString {
        const auto rs = select(
            server,
            QStringLiteral(
                "SELECT si.name AS [index], sk.indid, sc.[name] AS [column] FROM "
                "sysindexkeys sk INNER JOIN sysindexes si ON sk.id = si.id AND sk.indid = "
                "si.indid INNER JOIN syscolumns sc ON sk.id = sc.id AND sk.colid = sc.colid "
                "INNER JOIN sysobjects so ON so.id = sk.id WHERE so.[name] = '") +
                DoubleSingleQuotes(object.name) + QStringLiteral("' ") +
                idCondition(QStringLiteral("so.id"), object) + QStringLiteral("ORDER BY sk.indid"),
            dbName);
        if (!rs || rs->isEof()) return {};
        const auto opening = [&](bool first, qint64 indid) {
            const QString kind = first && indid == 1
                                     ? QStringLiteral("EXEC('CREATE UNIQUE CLUSTERED INDEX [")
                                     : QStringLiteral("EXEC('CREATE INDEX [");
            return kind + rs->field(0).text() + QStringLiteral("] ON ' + @Database + '.[dbo].[") +
                   object.name + QStringLiteral("]\r\n(");
        };
        qint64 openIndid = rs->field(1).toInt64();
        QString result;
        QString text = opening(true, openIndid);
        while (!rs->isEof()) {
            text += u'[' + rs->field(2).text() + QStringLiteral("], ");
            rs->MoveNext();
            if (!rs->isEof() && rs->field(1).toInt64() <= openIndid) continue;
            text.chop(2);
            result += text + QStringLiteral(
                                 ") ON [PRIMARY] ')\r\nIF @@ERROR <> 0 SET @ErrorVal = "
                                 "@@ERROR\r\n\r\n");
            if (rs->isEof()) break;
            openIndid = rs->field(1).toInt64();
            text = opening(false, openIndid);
        }
        return result;
    });
}

}  // namespace zov
