// The SQLite tables and indexes behind catalogue tables: made from the catalogue alone, so that
// every change of a table is "change the catalogue, make the table anew".
#include "data/local/ddl.h"
#include "data/local/nesting.h"
#include "data/local/query_engine.h"
#include "data/local/server_store.h"

namespace zov::local {
namespace {

QString indexName(int tableId, int indid) {
    return quoted(QStringLiteral("zov$ix_%1_%2").arg(tableId).arg(indid));
}

const ColumnFacts* columnById(const std::vector<ColumnFacts>& columns, int colid) {
    for (const ColumnFacts& column : columns)
        if (column.colid == colid) return &column;
    return nullptr;
}

QString declaredType(const TypeFacts& type, const QString& collation) {
    switch (type.xtype) {
        case 104:
        case 48:
        case 52:
        case 56:
        case 127:
            return QStringLiteral(" INTEGER");
        case 59:
        case 62:
            return QStringLiteral(" REAL");
        case 60:
        case 106:
        case 108:
        case 122:
        case 98:
        case 240:
            return {};  // values are kept as they are given
        case 34:
        case 165:
        case 173:
        case 189:
            return QStringLiteral(" BLOB");
        case 35:
        case 99:
        case 167:
        case 175:
        case 231:
        case 239:
        case 241:
            return QStringLiteral(" TEXT COLLATE ") + Collation::named(collation)->sqlName();
        default:
            return QStringLiteral(" TEXT");
    }
}

// SQLite's form of a computed column; NULL where its expression needs what SQLite can't keep in a
// table (the clock, the user's own functions).
QString generatedColumn(Catalog& catalog, const ObjectFacts& table, const ColumnFacts& column) {
    QString expression;
    try {
        const std::vector<Token> tokens = tokenize(column.computed);
        const std::span<const Token> all(tokens);
        expression = translateForSqlite(catalog.session(), all.first(all.size() - 1), table.id);
    } catch (const DbError& error) {
        if (error.native == 191) throw;  // it can be rewritten, and would be nothing here
        expression = QStringLiteral("NULL");
    }
    const auto form = [](const QString& text) {
        return QStringLiteral(" GENERATED ALWAYS AS (") + text + QStringLiteral(") VIRTUAL");
    };
    return form(expression);
}

bool sqliteTakes(sqlite3* handle, const QString& sql) {
    sqlite3_stmt* statement = nullptr;
    const QByteArray utf8 = sql.toUtf8();
    const int code =
        sqlite3_prepare_v2(handle, utf8.constData(), int(utf8.size()), &statement, nullptr);
    sqlite3_finalize(statement);
    if (code != SQLITE_OK && isTooDeepForSqlite(QString::fromUtf8(sqlite3_errmsg(handle))))
        failTooDeep(0);
    return code == SQLITE_OK;
}

void createStorage(Catalog& catalog, const ObjectFacts& table, const QString& sqliteName) {
    const std::vector<ColumnFacts> columns = catalog.columns(table.id);
    int rowidColumn = 0;
    for (const IndexFacts& index : catalog.indexes(table.id))
        if (isRowidKey(catalog, table, index, columns)) rowidColumn = index.keys.front().colid;
    const auto statement = [&](bool withExpressions) {
        QString sql = QStringLiteral("CREATE TABLE ") + sqliteName + u'(';
        bool first = true;
        for (const ColumnFacts& column : columns) {
            if (!first) sql += QStringLiteral(", ");
            first = false;
            sql += catalog.storedColumn(column.name) + declaredType(column.type, column.collation);
            if (!column.computed.isNull()) {
                sql += withExpressions ? generatedColumn(catalog, table, column)
                                       : QStringLiteral(" GENERATED ALWAYS AS (NULL) VIRTUAL");
                continue;
            }
            if (column.colid == rowidColumn)
                sql += QStringLiteral(" PRIMARY KEY");
            else if (!column.nullable)
                sql += QStringLiteral(" NOT NULL");
        }
        return sql + u')';
    };
    QString sql = statement(true);
    bool computed = false;
    for (const ColumnFacts& column : columns) computed = computed || !column.computed.isNull();
    if (computed && !sqliteTakes(catalog.handle(), sql)) sql = statement(false);
    execSql(catalog.handle(), sql);
}

StoredValue readValue(sqlite3_stmt* statement, int column, const TypeFacts& type) {
    StoredValue value;
    value.type = columnInfo(type, true);
    switch (sqlite3_column_type(statement, column)) {
        case SQLITE_NULL:
            value.kind = StoredValue::Kind::Null;
            break;
        case SQLITE_INTEGER:
            value.kind = StoredValue::Kind::Integer;
            value.integer = sqlite3_column_int64(statement, column);
            break;
        case SQLITE_FLOAT:
            value.kind = StoredValue::Kind::Real;
            value.real = sqlite3_column_double(statement, column);
            break;
        default:
            value.kind = sqlite3_column_type(statement, column) == SQLITE_TEXT
                             ? StoredValue::Kind::Text
                             : StoredValue::Kind::Blob;
            value.bytes =
                QByteArray(static_cast<const char*>(sqlite3_column_blob(statement, column)),
                           sqlite3_column_bytes(statement, column));
            break;
    }
    return value;
}

void bindValue(sqlite3_stmt* statement, int parameter, const StoredValue& value) {
    switch (value.kind) {
        case StoredValue::Kind::Null:
            sqlite3_bind_null(statement, parameter);
            break;
        case StoredValue::Kind::Integer:
            sqlite3_bind_int64(statement, parameter, value.integer);
            break;
        case StoredValue::Kind::Real:
            sqlite3_bind_double(statement, parameter, value.real);
            break;
        case StoredValue::Kind::Text:
            sqlite3_bind_text(statement, parameter, value.bytes.constData(),
                              int(value.bytes.size()), SQLITE_TRANSIENT);
            break;
        case StoredValue::Kind::Blob:
            sqlite3_bind_blob(statement, parameter, value.bytes.constData(),
                              int(value.bytes.size()), SQLITE_TRANSIENT);
            break;
    }
}

// What a conversion must not lose: an assignment would refuse it.
void requireFits(const StoredValue& value, const TypeFacts& type) {
    const bool bytes = value.kind == StoredValue::Kind::Blob;
    if (value.isNull() || type.length < 0 ||
        (!type.isText() && type.xtype != 165 && type.xtype != 173))
        return;
    if (type.xtype == 35 || type.xtype == 99) return;
    const qsizetype size = bytes ? value.bytes.size() : QString::fromUtf8(value.bytes).size();
    if (size > type.prec.value_or(type.length))
        fail(8152, QStringLiteral("String or binary data would be truncated."));
}

class RowCopier {
 public:
    RowCopier(Catalog& catalog, const ObjectFacts& table, const QString& from, const QString& to,
              const QHash<QString, ColumnSource>& sources)
        : catalog_(catalog), table_(table), from_(from), to_(to) {
        for (const ColumnFacts& column : catalog.columns(table.id)) {
            if (!column.computed.isNull()) continue;
            const QString key = catalog.names().key(column.name);
            Column copy{column, sources.value(key), {}};
            if (!sources.contains(key)) copy.source.oldName = column.name;
            if (!copy.source.fill.isEmpty()) copy.fill = tokenize(copy.source.fill);
            columns_.push_back(std::move(copy));
        }
    }

    void run() {
        QString read, names, places;
        for (const Column& column : columns_) {
            if (!names.isEmpty()) {
                read += QStringLiteral(", ");
                names += QStringLiteral(", ");
                places += QStringLiteral(", ");
            }
            names += catalog_.storedColumn(column.facts.name);
            places += u'?';
            read += column.source.oldName.isEmpty() ? QStringLiteral("NULL")
                                                    : catalog_.storedColumn(column.source.oldName);
            plain_ = plain_ && !column.source.oldName.isEmpty() && !column.source.oldType;
        }
        if (columns_.empty()) return;
        sqlite3* handle = catalog_.handle();
        if (plain_) {
            execSql(handle, QStringLiteral("INSERT INTO %1(%2) SELECT %3 FROM %4")
                                .arg(to_, names, read, from_));
            return;
        }
        CatalogQuery select(
            handle, QStringLiteral("SELECT %1 FROM %2").arg(read, from_).toUtf8().constData());
        CatalogQuery insert(handle, QStringLiteral("INSERT INTO %1(%2) VALUES(%3)")
                                        .arg(to_, names, places)
                                        .toUtf8()
                                        .constData());
        Variables none;
        qint64 row = 0;
        while (select.step()) {
            ++row;
            insert.again();
            for (int i = 0; i < int(columns_.size()); ++i)
                copyCell(select.raw(), insert.raw(), i, row, none);
            insert.run();
        }
    }

 private:
    struct Column {
        ColumnFacts facts;
        ColumnSource source;
        std::vector<Token> fill;
    };

    void copyCell(sqlite3_stmt* from, sqlite3_stmt* to, int i, qint64 row, Variables& none) {
        const Column& column = columns_[size_t(i)];
        if (!column.source.oldName.isEmpty() && !column.source.oldType) {
            sqlite3_bind_value(to, i + 1, sqlite3_column_value(from, i));
            return;
        }
        StoredValue value;
        const ColumnInfo target = columnInfo(column.facts.type, column.facts.nullable);
        if (!column.source.oldName.isEmpty()) {
            value = convertValue(catalog_.session(), readValue(from, i, *column.source.oldType),
                                 target, false);
        } else if (!column.facts.seed.isNull()) {
            // A new identity column numbers the rows that are there.
            const qint64 number =
                column.facts.seed.toLongLong() + (row - 1) * column.facts.increment.toLongLong();
            value = StoredValue::ofInteger(number, SqlType::BigInt);
            CatalogQuery(catalog_.handle(),
                         "UPDATE \"zov$columns\" SET identity_last=? WHERE id=? AND colid=?")
                .add(QString::number(number))
                .add(table_.id)
                .add(column.facts.colid)
                .run();
        } else if (!column.fill.empty()) {
            const std::span<const Token> all(column.fill);
            value = convertValue(catalog_.session(),
                                 evaluate(catalog_.session(), all.first(all.size() - 1), none),
                                 target, false);
        }
        requireFits(value, column.facts.type);
        if (value.isNull() && !column.facts.nullable)
            fail(515,
                 QStringLiteral(
                     "Cannot insert the value NULL into column '%1', table '%2.%3.%4'; column "
                     "does not allow nulls. UPDATE fails.")
                     .arg(column.facts.name, catalog_.database().name, table_.schema, table_.name),
                 0, ado_error::IntegrityViolation);
        bindValue(to, i + 1, value);
    }

    Catalog& catalog_;
    const ObjectFacts& table_;
    QString from_;
    QString to_;
    std::vector<Column> columns_;
    bool plain_ = true;
};

}  // namespace

bool isRowidKey(const Catalog& catalog, const ObjectFacts& table, const IndexFacts& index,
                const std::vector<ColumnFacts>& columns) {
    if (index.indid != 1 || index.keys.size() != 1 || index.constraintId == 0 || !table.isTable())
        return false;
    const std::optional<ObjectFacts> constraint = catalog.find(index.constraintId);
    if (!constraint || constraint->xtype != QLatin1String("PK")) return false;
    const ColumnFacts* column = columnById(columns, index.keys.front().colid);
    return column && column->type.isInteger() && column->computed.isNull();
}

void makeStorage(Catalog& catalog, const ObjectFacts& table) {
    createStorage(catalog, table, catalog.storedTable(table.schema, table.name));
    for (const IndexFacts& index : catalog.indexes(table.id))
        makeStorageIndex(catalog, table, index);
}

void rebuildStorage(Catalog& catalog, const ObjectFacts& table, const QString& oldName,
                    const QHash<QString, ColumnSource>& sources) {
    const QString scratch = quoted(QStringLiteral("zov$rebuild"));
    sqlite3* handle = catalog.handle();
    // The query side must read the changed columns, and let go of the old table.
    catalogChanged(catalog.database());
    createStorage(catalog, table, scratch);
    RowCopier(catalog, table, oldName, scratch, sources).run();
    catalogChanged(catalog.database());
    execSql(handle, QStringLiteral("DROP TABLE ") + oldName);
    execSql(handle, QStringLiteral("ALTER TABLE %1 RENAME TO %2")
                        .arg(scratch, catalog.storedTable(table.schema, table.name)));
    for (const IndexFacts& index : catalog.indexes(table.id))
        makeStorageIndex(catalog, table, index);
}

void makeStorageIndex(Catalog& catalog, const ObjectFacts& table, const IndexFacts& index) {
    const std::vector<ColumnFacts> columns = catalog.columns(table.id);
    if (index.disabled || index.indid == 0 || !table.isTable() ||
        isRowidKey(catalog, table, index, columns))
        return;
    QString keys;
    for (const IndexKey& key : index.keys) {
        if (key.included) continue;
        const ColumnFacts* column = columnById(columns, key.colid);
        if (!column) continue;
        if (!keys.isEmpty()) keys += QStringLiteral(", ");
        keys += catalog.storedColumn(column->name);
        if (key.descending) keys += QStringLiteral(" DESC");
    }
    QString filter;
    bool unique = index.unique;
    if (!index.filter.isNull()) {
        try {
            const QString test = QStringLiteral("CASE WHEN %1 THEN 1 ELSE 0 END").arg(index.filter);
            const std::vector<Token> tokens = tokenize(test);
            const std::span<const Token> all(tokens);
            filter = QStringLiteral(" WHERE ") +
                     translateForSqlite(catalog.session(), all.first(all.size() - 1), table.id);
        } catch (const DbError&) {
            unique = false;
        }
    }
    const auto sql = [&](bool isUnique, const QString& where) {
        return QStringLiteral("CREATE %1INDEX %2 ON %3(%4)%5")
            .arg(isUnique ? QStringLiteral("UNIQUE ") : QString(), indexName(table.id, index.indid),
                 catalog.storedTable(table.schema, table.name), keys, where);
    };
    // SQLite refuses a filter over functions that may change their mind.
    if (!filter.isEmpty() && !sqliteTakes(catalog.handle(), sql(unique, filter))) {
        filter.clear();
        unique = false;
    }
    const QByteArray utf8 = sql(unique, filter).toUtf8();
    const int code = sqlite3_exec(catalog.handle(), utf8.constData(), nullptr, nullptr, nullptr);
    if ((code & 0xff) == SQLITE_CONSTRAINT)
        fail(1505,
             QStringLiteral(
                 "The CREATE UNIQUE INDEX statement terminated because a duplicate key was "
                 "found for the object name '%1' and the index name '%2'.")
                 .arg(table.display(), index.name),
             0, ado_error::IntegrityViolation);
    checkSqlite(catalog.handle(), code);
}

void dropStorageIndex(Catalog& catalog, int tableId, int indid) {
    execSql(catalog.handle(), QStringLiteral("DROP INDEX IF EXISTS ") + indexName(tableId, indid));
}

void removeConstraint(Catalog& catalog, const ObjectFacts& table, const ObjectFacts& constraint) {
    if (constraint.xtype == QLatin1String("D"))
        CatalogQuery(catalog.handle(),
                     "UPDATE \"zov$columns\" SET cdefault=0 WHERE id=? AND cdefault=?")
            .add(table.id)
            .add(constraint.id)
            .run();
    for (const IndexFacts& index : catalog.indexes(table.id)) {
        if (index.constraintId != constraint.id) continue;
        dropStorageIndex(catalog, table.id, index.indid);
        catalog.removeIndex(table.id, index.indid);
    }
    catalog.removeObject(constraint.id);
}

void removeTable(Catalog& catalog, const ObjectFacts& table) {
    for (const ObjectFacts& child : catalog.children(table.id)) catalog.removeObject(child.id);
    for (const char* sql :
         {"DELETE FROM \"zov$indexkeys\" WHERE id=?", "DELETE FROM \"zov$indexes\" WHERE id=?"})
        CatalogQuery(catalog.handle(), sql).add(table.id).run();
    for (const char* sql : {"DELETE FROM \"zov$properties\" WHERE class=7 AND major_id=?"})
        CatalogQuery(catalog.handle(), sql).add(table.id).run();
    catalog.removeObject(table.id);
    if (table.isTable())
        execSql(catalog.handle(), QStringLiteral("DROP TABLE IF EXISTS ") +
                                      catalog.storedTable(table.schema, table.name));
}

}  // namespace zov::local
