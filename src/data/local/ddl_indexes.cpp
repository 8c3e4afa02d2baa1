// CREATE/ALTER/DROP INDEX and statistics.
#include "data/local/ddl.h"
#include "data/local/definitions.h"
#include "data/local/query_engine.h"
#include "data/local/server_store.h"

#include <algorithm>

namespace zov::local {
namespace {

// Indexes lie on tables, and on views that are bound to their tables.
ObjectFacts requireIndexed(const Catalog& catalog, const ObjectName& name) {
    const std::optional<ObjectFacts> found = catalog.find(name);
    if (!found || (!found->isTable() && found->xtype != QLatin1String("V")))
        fail(1088,
             QStringLiteral(
                 "Cannot find the object \"%1\" because it does not exist or you do not have "
                 "permissions.")
                 .arg(name.display()),
             name.line);
    return *found;
}

bool dropOne(Catalog& catalog, const ObjectFacts& table, const QString& name, bool ifExists,
             int line) {
    for (const IndexFacts& index : catalog.indexes(table.id)) {
        if (!catalog.sameName(index.name, name)) continue;
        if (index.constraintId != 0) {
            const auto constraint = catalog.find(index.constraintId);
            fail(3723,
                 QStringLiteral(
                     "An explicit DROP INDEX is not allowed on index '%1.%2'. It is being used "
                     "for %3 KEY constraint enforcement.")
                     .arg(table.name, index.name,
                          constraint && constraint->xtype == QLatin1String("PK")
                              ? QStringLiteral("PRIMARY")
                              : QStringLiteral("UNIQUE")),
                 line);
        }
        dropStorageIndex(catalog, table.id, index.indid);
        catalog.removeIndex(table.id, index.indid);
        catalog.touchObject(table.id);
        return true;
    }
    if (ifExists) return false;
    fail(3701,
         QStringLiteral(
             "Cannot drop the index '%1.%2', because it does not exist or you do not have "
             "permission.")
             .arg(table.name, name),
         line);
}

}  // namespace

void createIndex(SessionState& session, TokenCursor& cursor, IndexWords words) {
    TableIndexSpec index;
    index.line = cursor.peek().line;
    index.facts.name = cursor.name();
    index.facts.unique = words.unique;
    index.clustered = words.clustered;
    cursor.expect("ON");
    const ObjectName name = cursor.objectName();
    std::vector<bool> descending;
    readKeyColumns(cursor, index.columns, descending);
    for (const bool down : descending) index.facts.keys.push_back({0, down, false});
    if (cursor.accept("INCLUDE")) {
        std::vector<QString> included;
        std::vector<bool> unused;
        readKeyColumns(cursor, included, unused);
        for (const QString& column : included) {
            index.columns.push_back(column);
            index.facts.keys.push_back({0, false, true});
        }
    }
    if (cursor.accept("WHERE"))
        index.facts.filter =
            storedExpression(cursor.until({"WITH", "ON", "FILESTREAM_ON"}), DefinitionForm::Filter);
    index.facts.options = readIndexOptions(cursor);
    cursor.expectEnd();

    Catalog catalog = Catalog::forWriting(session, name);
    const ObjectFacts table = requireIndexed(catalog, name);
    if (index.facts.options.contains(QLatin1String("DROP_EXISTING=ON"))) {
        for (const IndexFacts& old : catalog.indexes(table.id)) {
            if (!catalog.sameName(old.name, index.facts.name)) continue;
            index.facts.constraintId = old.constraintId;
            dropStorageIndex(catalog, table.id, old.indid);
            catalog.removeIndex(table.id, old.indid);
        }
        QStringList kept = index.facts.options.split(u',');
        kept.removeAll(QStringLiteral("DROP_EXISTING=ON"));
        index.facts.options = kept.isEmpty() ? QString() : kept.join(u',');
    }
    writeTableIndex(catalog, table, index);
    for (const IndexFacts& written : catalog.indexes(table.id))
        if (catalog.sameName(written.name, index.facts.name))
            makeStorageIndex(catalog, table, written);
    catalog.touchObject(table.id);
}

void dropIndexes(SessionState& session, TokenCursor& cursor) {
    const bool ifExists = cursor.accept({"IF", "EXISTS"});
    do {
        ObjectName first = cursor.objectName();
        if (cursor.accept("ON")) {
            const ObjectName name = cursor.objectName();
            readIndexOptions(cursor);
            Catalog catalog = Catalog::forWriting(session, name);
            if (ifExists && !catalog.find(name)) continue;
            dropOne(catalog, requireIndexed(catalog, name), first.name, ifExists, first.line);
            continue;
        }
        // The old form: table.index
        if (first.schema.isEmpty())
            fail(159,
                 QStringLiteral(
                     "Must specify the table name and index name for the DROP INDEX statement."),
                 first.line);
        ObjectName table;
        table.name = first.schema;
        table.schema = first.database;
        table.database = first.server;
        table.line = first.line;
        Catalog catalog = Catalog::forWriting(session, table);
        if (!catalog.find(table)) {
            if (ifExists) continue;
            fail(3701,
                 QStringLiteral(
                     "Cannot drop the index '%1', because it does not exist or you do not have "
                     "permission.")
                     .arg(first.display()),
                 first.line);
        }
        dropOne(catalog, requireIndexed(catalog, table), first.name, ifExists, first.line);
    } while (cursor.accept(","));
    cursor.expectEnd();
}

void alterIndex(SessionState& session, TokenCursor& cursor) {
    const int line = cursor.peek().line;
    const bool all = cursor.peek().kind == TokenKind::Word && cursor.accept("ALL");
    const QString name = all ? QString() : cursor.name();
    cursor.expect("ON");
    const ObjectName tableName = cursor.objectName();
    Catalog catalog = Catalog::forWriting(session, tableName);
    const ObjectFacts table = requireIndexed(catalog, tableName);
    const bool disable = cursor.accept("DISABLE");
    const bool rebuild = !disable && cursor.accept("REBUILD");
    if (!disable && !rebuild) {
        if (cursor.accept("SET"))
            cursor.parenthesised();
        else if (cursor.accept("REORGANIZE"))
            readIndexOptions(cursor);
        else
            cursor.failHere();
    } else if (rebuild) {
        if (cursor.accept("PARTITION")) {
            cursor.expect("=");
            cursor.next();
        }
        readIndexOptions(cursor);
    }
    cursor.expectEnd();
    bool found = all;
    for (IndexFacts index : catalog.indexes(table.id)) {
        if (!all && !catalog.sameName(index.name, name)) continue;
        found = true;
        if ((!disable && !rebuild) || index.disabled == disable) continue;
        CatalogQuery(catalog.handle(),
                     "UPDATE \"zov$indexes\" SET is_disabled=? WHERE id=? AND indid=?")
            .add(disable)
            .add(table.id)
            .add(index.indid)
            .run();
        index.disabled = disable;
        if (disable)
            dropStorageIndex(catalog, table.id, index.indid);
        else
            makeStorageIndex(catalog, table, index);
    }
    if (!found) fail(2727, QStringLiteral("Cannot find index '%1'.").arg(name), line);
}

namespace {

bool hasStatistics(const Catalog& catalog, int tableId, const QString& name) {
    CatalogQuery query(catalog.handle(), "SELECT 1 FROM \"zov$statistics\" WHERE id=? AND name=?");
    query.add(tableId).add(name);
    return query.step();
}

}  // namespace

// Statistics steer a query optimiser that isn't here; what was asked for is kept all the same,
// since scripts ask for it before they make it.
void createStatistics(SessionState& session, TokenCursor& cursor) {
    const QString statistics = cursor.name();
    cursor.expect("ON");
    const ObjectName name = cursor.objectName();
    std::vector<QString> columns;
    std::vector<bool> unused;
    readKeyColumns(cursor, columns, unused);
    QString filter;
    if (cursor.accept("WHERE"))
        filter = storedExpression(cursor.until({"WITH"}), DefinitionForm::Filter);
    bool noRecompute = false, incremental = false;
    if (cursor.accept("WITH")) do {
            const QString option = cursor.name().toUpper();
            noRecompute = noRecompute || option == QLatin1String("NORECOMPUTE");
            if (cursor.accept("=")) {
                const QString value = cursor.nameOrText();
                if (option == QLatin1String("INCREMENTAL"))
                    incremental = value.compare(QLatin1String("ON"), Qt::CaseInsensitive) == 0;
            } else if (option == QLatin1String("SAMPLE")) {
                cursor.wholeNumber();
                if (!cursor.accept("PERCENT")) cursor.expect("ROWS");
            } else if (option == QLatin1String("STATS_STREAM")) {
                cursor.failHere();
            }
        } while (cursor.accept(","));
    cursor.expectEnd();
    Catalog catalog = Catalog::forWriting(session, name);
    const ObjectFacts table = requireIndexed(catalog, name);
    const std::vector<IndexFacts> indexes = catalog.indexes(table.id);
    const bool taken = hasStatistics(catalog, table.id, statistics) ||
                       std::any_of(indexes.begin(), indexes.end(), [&](const IndexFacts& index) {
                           return catalog.sameName(index.name, statistics);
                       });
    if (taken)
        fail(1927,
             QStringLiteral("There are already statistics on table '%1' named '%2'.")
                 .arg(name.display(), statistics),
             name.line);
    const int id = catalog.nextIndexId(table.id, false);
    CatalogQuery(
        catalog.handle(),
        "INSERT INTO \"zov$statistics\"(id, stats_id, name, no_recompute, incremental, filter)"
        " VALUES(?,?,?,?,?,?)")
        .add(table.id)
        .add(id)
        .add(statistics)
        .add(noRecompute)
        .add(incremental)
        .add(filter)
        .run();
    const std::vector<ColumnFacts> known = catalog.columns(table.id);
    int number = 0;
    for (const QString& column : columns) {
        const auto found = std::find_if(known.begin(), known.end(), [&](const ColumnFacts& facts) {
            return catalog.sameName(facts.name, column);
        });
        if (found == known.end())
            fail(1911,
                 QStringLiteral("Column name '%1' does not exist in the target table or view.")
                     .arg(column),
                 name.line);
        CatalogQuery(catalog.handle(),
                     "INSERT INTO \"zov$statcolumns\"(id, stats_id, keyno, colid) VALUES(?,?,?,?)")
            .add(table.id)
            .add(id)
            .add(++number)
            .add(found->colid)
            .run();
    }
}

void dropStatistics(SessionState& session, TokenCursor& cursor) {
    do {
        const ObjectName statistics = cursor.objectName();
        ObjectName tableName;
        tableName.name = statistics.schema;
        tableName.schema = statistics.database;
        tableName.line = statistics.line;
        Catalog catalog = Catalog::forWriting(session);
        const ObjectFacts table = requireIndexed(catalog, tableName);
        for (const IndexFacts& index : catalog.indexes(table.id))
            if (catalog.sameName(index.name, statistics.name))
                fail(3739,
                     QStringLiteral(
                         "Cannot DROP the index '%1' because it is not a statistics collection.")
                         .arg(statistics.display()),
                     statistics.line);
        if (!hasStatistics(catalog, table.id, statistics.name))
            fail(3701,
                 QStringLiteral("Cannot drop the statistics '%1', because it does not exist or you "
                                "do not have permission.")
                     .arg(statistics.display()),
                 statistics.line);
        for (const char* sql :
             {"DELETE FROM \"zov$statcolumns\" WHERE id=?1 AND stats_id=(SELECT stats_id FROM "
              "\"zov$statistics\" WHERE id=?1 AND name=?2)",
              "DELETE FROM \"zov$statistics\" WHERE id=?1 AND name=?2"})
            CatalogQuery(catalog.handle(), sql).add(table.id).add(statistics.name).run();
    } while (cursor.accept(","));
    cursor.expectEnd();
}

void updateStatistics(SessionState& session, TokenCursor& cursor) {
    const ObjectName name = cursor.objectName();
    if (cursor.is("("))
        cursor.parenthesised();
    else if (cursor.peek().isName() && !cursor.is("WITH"))
        cursor.name();
    if (cursor.accept("WITH"))
        while (!cursor.atEnd()) cursor.next();
    cursor.expectEnd();
    Catalog catalog(session, name.database.isEmpty() ? *session.current
                                                     : session.store->database(name.database));
    const std::optional<ObjectFacts> found = catalog.find(name);
    if (!found || (!found->isTable() && found->xtype != QLatin1String("V")))
        fail(2706, QStringLiteral("Table '%1' does not exist.").arg(name.display()), name.line);
}

}  // namespace zov::local
