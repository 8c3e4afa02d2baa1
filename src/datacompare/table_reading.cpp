#include "datacompare/table_reading.h"

#include "catalog/modOwner.h"
#include "catalog/modSchema.h"
#include "core/globals.h"
#include "core/modIgnoreColumns.h"
#include "core/run_account.h"
#include "data/sql_names.h"
#include "util/text.h"

namespace zov {
namespace {

constexpr qint32 FirstVersionWithSchemas = 9;

}  // namespace

int GetFieldOrdinal(const Recordset& Rs, const QString& Name) {
    for (int field = 0; field < Rs.fieldCount(); ++field)
        if (Rs.field(field).Name() == Name) return field;
    return 0;
}

QString ColTypeArrayToString(const QStringList& Columns) {
    QString joined;
    for (const QString& column : Columns) {
        if (!joined.isEmpty()) joined += u',';
        joined += quoteName(column);
    }
    return joined;
}

QString QualifiedTableName(const CompareDataTable& Table) {
    ObjectRef object = Table.object();
    if (object.schema.isEmpty() && object.id > 0 &&
        GetMajorVersion(Table.Server.Version) >= FirstVersionWithSchemas) {
        if (!Db_GetObjSchemaById(Table.Server, ObjectType::Table, Table.Db, object.id,
                                 object.schema))
            object.schema.clear();
        // A list that held two of this name has put the schema in front.
        if (Table.BareName.isEmpty() && !object.schema.isEmpty() &&
            object.name.startsWith(object.schema + u'.'))
            object.name.remove(0, object.schema.size() + 1);
        return quotedName(object.schema, object.name);
    }
    const ScopedValue<bool> extended(globals().gblnExtendedNames, true);
    return GetExtendedObjectName(Table.Server, Table.Db, object);
}

std::vector<ColumnRecord> ColumnsOfTable(const CompareDataTable& Table, bool WithoutIgnored) {
    TableStructure structure;
    RunAccount asked;
    {
        const KeepAccount keep(asked);
        GetTableStructure(Table.Server, Table.Db, Table.storedName(),
                          DoubleSingleQuotes(Table.name()), structure, WithoutIgnored,
                          IgnoreMode::DataComparison, Table.ObjectId, {});
    }
    // Rows may be read by who isn't shown the texts of defaults and seeds: what failed counts here,
    // not what was kept back.
    for (const AccountEntry& entry : asked.entries())
        if (entry.number != 0) addToAccount(entry);
    return std::move(structure.columns);
}

QStringList ComparedColumns(const CompareDataTable& Table) {
    QStringList columns;
    for (const ColumnRecord& column : ColumnsOfTable(Table, true)) columns += column.strName;
    return columns;
}

QString BuildSqlSelectStringWithColumns(const CompareDataTable& Table,
                                        const QString& QualifiedTable, QString& Prefix) {
    const QStringList columns = ComparedColumns(Table);
    Prefix = QStringLiteral("SELECT ") +
             (columns.isEmpty() ? QStringLiteral("*") : ColTypeArrayToString(columns)) +
             QStringLiteral(" FROM ");
    return Prefix + QualifiedTable;
}

}  // namespace zov
