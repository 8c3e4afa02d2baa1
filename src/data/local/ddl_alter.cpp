// ALTER TABLE and ENABLE/DISABLE TRIGGER: the catalogue is changed, then the SQLite table is made
// anew from it where its columns or its key changed.
#include "data/local/ddl.h"
#include "data/local/definitions.h"
#include "data/local/query_engine.h"
#include "data/local/server_store.h"

#include <algorithm>

namespace zov::local {
namespace {

const ColumnFacts* findColumn(const Catalog& catalog, const std::vector<ColumnFacts>& columns,
                              const QString& name) {
    for (const ColumnFacts& column : columns)
        if (catalog.sameName(column.name, name)) return &column;
    return nullptr;
}

bool isEmpty(const Catalog& catalog, const ObjectFacts& table) {
    CatalogQuery query(catalog.handle(), QStringLiteral("SELECT 1 FROM %1 LIMIT 1")
                                             .arg(catalog.storedTable(table.schema, table.name))
                                             .toUtf8()
                                             .constData());
    return !query.step();
}

void addElements(Catalog& catalog, const ObjectFacts& table, TokenCursor& cursor, bool noCheck) {
    TableParts parts;
    do readTableElement(catalog, cursor, parts);
    while (cursor.accept(","));
    cursor.expectEnd();
    refuseTooManyColumns("ALTER", table.name, parts, catalog.columns(table.id).size());

    std::vector<ConstraintSpec> constraints;
    for (const ColumnSpec& column : parts.columns)
        constraints.insert(constraints.end(), column.constraints.begin(), column.constraints.end());
    constraints.insert(constraints.end(), parts.constraints.begin(), parts.constraints.end());
    for (ConstraintSpec& spec : constraints)
        spec.notTrusted =
            noCheck && (spec.kind == QLatin1String("F") || spec.kind == QLatin1String("C"));

    const QString oldName = catalog.storedTable(table.schema, table.name);
    bool rebuild = !parts.columns.empty();
    QHash<QString, ColumnSource> sources;
    if (!parts.columns.empty()) {
        const bool empty = isEmpty(catalog, table);
        writeColumns(catalog, table, parts.columns, constraints);
        for (const ColumnSpec& column : parts.columns) {
            ColumnSource source;
            for (const ConstraintSpec& spec : constraints)
                if (spec.kind == QLatin1String("D") &&
                    catalog.sameName(spec.columns.front(), column.facts.name) &&
                    (!column.facts.nullable || spec.withValues))
                    source.fill = spec.text;
            const bool fillsItself = !column.facts.seed.isNull() ||
                                     !column.facts.computed.isNull() ||
                                     column.facts.type.xtype == 189;
            if (!empty && !column.facts.nullable && source.fill.isEmpty() && !fillsItself)
                fail(4901,
                     QStringLiteral(
                         "ALTER TABLE only allows columns to be added that can contain nulls, or "
                         "have a DEFAULT definition specified, or the column being added is an "
                         "identity or timestamp column, or alternatively if none of the previous "
                         "conditions are satisfied the table must be empty to allow addition of "
                         "this column. Column '%1' cannot be added to non-empty table '%2' "
                         "because it does not satisfy these conditions.")
                         .arg(column.facts.name, table.name),
                     column.line);
            if (column.facts.type.xtype == 189) source.fill = QStringLiteral("0x0000000000000001");
            sources.insert(catalog.names().key(column.facts.name), source);
        }
    }
    std::vector<int> before;
    for (const IndexFacts& index : catalog.indexes(table.id)) before.push_back(index.indid);
    for (const ConstraintSpec& spec : constraints)
        if (spec.kind == QLatin1String("PK") || spec.kind == QLatin1String("UQ"))
            rebuild = writeConstraint(catalog, table, spec) || rebuild;
    for (const ConstraintSpec& spec : constraints)
        if (spec.kind != QLatin1String("PK") && spec.kind != QLatin1String("UQ"))
            writeConstraint(catalog, table, spec);
    for (const TableIndexSpec& index : parts.indexes) writeTableIndex(catalog, table, index);
    if (rebuild) {
        rebuildStorage(catalog, table, oldName, sources);
        return;
    }
    for (const IndexFacts& index : catalog.indexes(table.id))
        if (std::find(before.begin(), before.end(), index.indid) == before.end())
            makeStorageIndex(catalog, table, index);
}

void dropConstraint(Catalog& catalog, const ObjectFacts& table, const QString& name, bool ifExists,
                    int line, bool& rebuild) {
    for (const ObjectFacts& child : catalog.children(table.id)) {
        if (!catalog.sameName(child.name, name) || child.xtype == QLatin1String("TR")) continue;
        for (const IndexFacts& index : catalog.indexes(table.id)) {
            if (index.constraintId != child.id) continue;
            std::vector<int> wanted;
            for (const IndexKey& key : index.keys) wanted.push_back(key.colid);
            std::sort(wanted.begin(), wanted.end());
            CatalogQuery referencing(catalog.handle(),
                                     "SELECT o.name, r.rkey, r.constid FROM \"zov$references\" r"
                                     " JOIN \"zov$objects\" o ON o.id=r.constid WHERE r.rkeyid=?"
                                     " ORDER BY r.constid");
            referencing.add(table.id);
            QHash<QString, std::vector<int>> keys;
            while (referencing.step()) keys[referencing.text(0)].push_back(referencing.number(1));
            for (auto key = keys.begin(); key != keys.end(); ++key) {
                std::sort(key->begin(), key->end());
                if (*key == wanted)
                    fail(3725,
                         QStringLiteral(
                             "The constraint '%1' is being referenced by table, foreign key "
                             "constraint '%2'. Could not drop constraint.")
                             .arg(child.name, key.key()),
                         line);
            }
            rebuild = rebuild || isRowidKey(catalog, table, index, catalog.columns(table.id));
        }
        removeConstraint(catalog, table, child);
        return;
    }
    if (!ifExists)
        fail(3728,
             QStringLiteral(
                 "'%1' is not a constraint. Could not drop constraint. See previous errors.")
                 .arg(name),
             line);
}

// Objects that would be left without the column; empty when there is none.
QString dependentOn(const Catalog& catalog, const ObjectFacts& table, const ColumnFacts& column,
                    const char* kinds) {
    const QByteArray wanted(
        kinds);  // I index, D default, C check, F foreign key, X computed column
    if (wanted.contains('D') && column.cdefault != 0)
        if (const auto found = catalog.find(column.cdefault)) return found->name;
    if (wanted.contains('I')) {
        for (const IndexFacts& index : catalog.indexes(table.id))
            for (const IndexKey& key : index.keys)
                if (key.colid == column.colid) return index.name;
        CatalogQuery statistics(
            catalog.handle(),
            "SELECT s.name FROM \"zov$statcolumns\" k JOIN \"zov$statistics\" s ON s.id=k.id AND "
            "s.stats_id=k.stats_id WHERE k.id=? AND k.colid=?");
        statistics.add(table.id).add(column.colid);
        if (statistics.step()) return statistics.text(0);
    }
    const QString mention = bracketed(column.name);
    const auto sensitivity = catalog.names().tellsCase() ? Qt::CaseSensitive : Qt::CaseInsensitive;
    if (wanted.contains('C'))
        for (const ObjectFacts& child : catalog.children(table.id)) {
            if (child.xtype != QLatin1String("C")) continue;
            if (child.info == QString::number(column.colid) ||
                catalog.text(child.id).contains(mention, sensitivity))
                return child.name;
        }
    if (wanted.contains('F')) {
        CatalogQuery query(
            catalog.handle(),
            "SELECT o.name FROM \"zov$references\" r JOIN \"zov$objects\" o ON o.id=r.constid"
            " WHERE (r.fkeyid=?1 AND r.fkey=?2) OR (r.rkeyid=?1 AND r.rkey=?2)");
        query.add(table.id).add(column.colid);
        if (query.step()) return query.text(0);
    }
    if (wanted.contains('X'))
        for (const ColumnFacts& other : catalog.columns(table.id))
            if (!other.computed.isNull() && other.computed.contains(mention, sensitivity))
                return other.name;
    return {};
}

[[noreturn]] void failDependent(const QString& object, const QString& column, const char* verb,
                                int line) {
    fail(5074,
         QStringLiteral(
             "The object '%1' is dependent on column '%2'. ALTER TABLE %3 COLUMN %2 failed "
             "because one or more objects access this column.")
             .arg(object, column, QLatin1String(verb)),
         line);
}

bool dropColumn(Catalog& catalog, const ObjectFacts& table, const QString& name, bool ifExists,
                int line) {
    const std::vector<ColumnFacts> columns = catalog.columns(table.id);
    const ColumnFacts* column = findColumn(catalog, columns, name);
    if (!column) {
        if (ifExists) return false;
        fail(4924,
             QStringLiteral(
                 "ALTER TABLE DROP COLUMN failed because column '%1' does not exist in table "
                 "'%2'.")
                 .arg(name, table.name),
             line);
    }
    const QString dependent = dependentOn(catalog, table, *column, "IDCFX");
    if (!dependent.isEmpty()) failDependent(dependent, column->name, "DROP", line);
    if (columns.size() == 1)
        fail(4923,
             QStringLiteral(
                 "ALTER TABLE DROP COLUMN failed because '%1' is the only data column in table "
                 "'%2'. A table must have at least one data column.")
                 .arg(column->name, table.name),
             line);
    // The number of a column that is gone is not given again.
    int highest = 0;
    for (const ColumnFacts& other : columns) highest = std::max(highest, other.colid);
    if (column->colid == highest)
        CatalogQuery(catalog.handle(), "UPDATE \"zov$objects\" SET info=? WHERE id=?")
            .add(QStringLiteral("last_colid=%1").arg(highest))
            .add(table.id)
            .run();
    for (const char* sql :
         {"DELETE FROM \"zov$columns\" WHERE id=? AND colid=?",
          "DELETE FROM \"zov$permissions\" WHERE class=1 AND major_id=? AND minor_id=?",
          "DELETE FROM \"zov$properties\" WHERE class=1 AND major_id=? AND minor_id=?"})
        CatalogQuery(catalog.handle(), sql).add(table.id).add(column->colid).run();
    catalog.removeDetails(1, table.id, column->colid);
    return true;
}

void drop(Catalog& catalog, const ObjectFacts& table, TokenCursor& cursor) {
    const QString oldName = catalog.storedTable(table.schema, table.name);
    bool rebuild = false;
    bool columns = false;
    bool ifExists = false;
    do {
        // COLUMN, CONSTRAINT and IF EXISTS are about all names up to the next of these words.
        const bool column = cursor.accept("COLUMN");
        if (column || cursor.accept("CONSTRAINT")) {
            columns = column;
            ifExists = false;
        }
        ifExists = cursor.accept({"IF", "EXISTS"}) || ifExists;
        const int line = cursor.peek().line;
        const QString name = cursor.name();
        if (columns) {
            rebuild = dropColumn(catalog, table, name, ifExists, line) || rebuild;
        } else {
            dropConstraint(catalog, table, name, ifExists, line, rebuild);
        }
        readIndexOptions(cursor);  // WITH (ONLINE = ON, MOVE TO ...)
    } while (cursor.accept(","));
    cursor.expectEnd();
    if (rebuild) rebuildStorage(catalog, table, oldName);
}

[[noreturn]] void failTrait(const ColumnFacts& column, const QString& why, int line) {
    fail(4928, QStringLiteral("Cannot alter column '%1' because it is '%2'.").arg(column.name, why),
         line);
}

void setColumnFlag(Catalog& catalog, const ObjectFacts& table, int colid, const char* sql,
                   bool on) {
    CatalogQuery(catalog.handle(), sql).add(on).add(table.id).add(colid).run();
}

// ALTER COLUMN c {ADD | DROP} {ROWGUIDCOL | PERSISTED | NOT FOR REPLICATION | SPARSE | HIDDEN |
// MASKED}
void alterColumnTrait(Catalog& catalog, const ObjectFacts& table,
                      const std::vector<ColumnFacts>& columns, const ColumnFacts& column,
                      TokenCursor& cursor) {
    const int line = cursor.peek().line;
    const bool add = cursor.next().is("ADD");
    const auto set = [&](const char* name, const QString& value = QStringLiteral("1")) {
        catalog.setDetail(1, table.id, column.colid, name, add ? value : QString());
    };
    if (cursor.accept("ROWGUIDCOL")) {
        if (add && column.type.xtype != 36)
            failTrait(column, QStringLiteral("not uniqueidentifier"), line);
        for (const ColumnFacts& other : columns)
            if (add && other.rowguid && other.colid != column.colid)
                fail(8196, QStringLiteral("Duplicate column specified as ROWGUIDCOL."), line);
        setColumnFlag(catalog, table, column.colid,
                      "UPDATE \"zov$columns\" SET is_rowguid=? WHERE id=? AND colid=?", add);
    } else if (cursor.accept("PERSISTED")) {
        if (column.computed.isNull()) failTrait(column, QStringLiteral("not COMPUTED"), line);
        setColumnFlag(catalog, table, column.colid,
                      "UPDATE \"zov$columns\" SET is_persisted=? WHERE id=? AND colid=?", add);
    } else if (cursor.accept({"NOT", "FOR", "REPLICATION"})) {
        if (column.seed.isNull()) failTrait(column, QStringLiteral("not IDENTITY"), line);
        set("not_for_replication");
    } else if (cursor.accept("SPARSE")) {
        if (add && (!column.nullable || !column.computed.isNull() || column.rowguid))
            failTrait(column, QStringLiteral("not nullable, computed or ROWGUIDCOL"), line);
        set("sparse");
    } else if (cursor.accept("HIDDEN")) {
        set("hidden");
    } else if (cursor.accept("MASKED")) {
        const bool described = cursor.is("WITH");
        const QString mask = described || add ? readMask(cursor) : QString();
        if (add && !column.computed.isNull()) failTrait(column, QStringLiteral("COMPUTED"), line);
        if (!add && catalog.detail(1, table.id, column.colid, "mask").isNull())
            fail(16007,
                 QStringLiteral("The column '%1' does not have a data masking function.")
                     .arg(column.name),
                 line);
        set("mask", mask);
    } else {
        cursor.failHere();
    }
    cursor.expectEnd();
}

void alterColumn(Catalog& catalog, const ObjectFacts& table, TokenCursor& cursor) {
    const int line = cursor.peek().line;
    const QString name = cursor.name();
    const std::vector<ColumnFacts> columns = catalog.columns(table.id);
    const ColumnFacts* column = findColumn(catalog, columns, name);
    if (!column)
        fail(4924,
             QStringLiteral(
                 "ALTER TABLE ALTER COLUMN failed because column '%1' does not exist in table "
                 "'%2'.")
                 .arg(name, table.name),
             line);
    if (cursor.is("ADD") || cursor.is("DROP"))
        return alterColumnTrait(catalog, table, columns, *column, cursor);
    ColumnFacts changed = *column;
    changed.type = readType(catalog, cursor);
    changed.nullable = changed.type.nullable;
    changed.collation = changed.type.isText() ? catalog.fact("collation") : QString();
    for (;;) {
        if (cursor.accept("COLLATE")) {
            const QString collation = catalog.readCollation(cursor);
            if (!collation.isEmpty()) changed.collation = collation;
        } else if (cursor.accept({"NOT", "NULL"})) {
            changed.nullable = false;
        } else if (cursor.accept("NULL")) {
            changed.nullable = true;
        } else if (cursor.accept("SPARSE")) {
            changed.details.emplace_back("sparse", QStringLiteral("1"));
        } else if (cursor.accept("MASKED")) {
            changed.details.emplace_back("mask", readMask(cursor));
        } else {
            break;
        }
    }
    readIndexOptions(cursor);
    cursor.expectEnd();
    if (!column->computed.isNull() || column->type.xtype == 189)
        fail(4928,
             QStringLiteral("Cannot alter column '%1' because it is '%2'.")
                 .arg(column->name, column->computed.isNull() ? QStringLiteral("timestamp")
                                                              : QStringLiteral("COMPUTED")),
             line);
    if (!column->seed.isNull()) changed.nullable = false;
    const bool otherType = changed.type.xtype != column->type.xtype;
    const bool shorter = changed.type.length != -1 &&
                         (column->type.length == -1 || changed.type.length < column->type.length);
    QString dependent;
    if (otherType)
        dependent = dependentOn(catalog, table, *column, "IDCFX");
    else if (changed.type.isText() && changed.collation != column->collation)
        dependent = dependentOn(catalog, table, *column, "ICFX");
    else if (!changed.type.sameStorage(column->type) && (shorter || !changed.type.isText()))
        dependent = dependentOn(catalog, table, *column, "IFX");
    if (dependent.isEmpty() && changed.nullable && !column->nullable)
        for (const IndexFacts& index : catalog.indexes(table.id)) {
            const auto constraint =
                index.constraintId ? catalog.find(index.constraintId) : std::nullopt;
            if (!constraint || constraint->xtype != QLatin1String("PK")) continue;
            for (const IndexKey& key : index.keys)
                if (key.colid == column->colid) dependent = constraint->name;
        }
    if (!dependent.isEmpty()) failDependent(dependent, column->name, "ALTER", line);

    CatalogQuery(catalog.handle(), "DELETE FROM \"zov$columns\" WHERE id=? AND colid=?")
        .add(table.id)
        .add(column->colid)
        .run();
    catalog.addColumn(table.id, changed);
    ColumnSource source;
    source.oldName = column->name;
    source.oldType = column->type;
    rebuildStorage(catalog, table, catalog.storedTable(table.schema, table.name),
                   {{catalog.names().key(column->name), source}});
}

void checkConstraints(Catalog& catalog, const ObjectFacts& table, TokenCursor& cursor, bool enable,
                      bool withCheck) {
    cursor.expect("CONSTRAINT");
    const auto set = [&](const ObjectFacts& constraint) {
        // A constraint that was off is trusted again only when its rows are checked.
        CatalogQuery(
            catalog.handle(),
            enable ? withCheck
                         ? "UPDATE \"zov$objects\" SET is_disabled=0, is_not_trusted=0 WHERE id=?"
                         : "UPDATE \"zov$objects\" SET is_disabled=0 WHERE id=?"
                   : "UPDATE \"zov$objects\" SET is_disabled=1, is_not_trusted=1 WHERE id=?")
            .add(constraint.id)
            .run();
    };
    const std::vector<ObjectFacts> children = catalog.children(table.id);
    const auto checkable = [](const ObjectFacts& object) {
        return object.xtype == QLatin1String("F") || object.xtype == QLatin1String("C");
    };
    if (cursor.accept("ALL")) {
        for (const ObjectFacts& child : children)
            if (checkable(child)) set(child);
    } else {
        do {
            const int line = cursor.peek().line;
            const QString name = cursor.name();
            const auto found =
                std::find_if(children.begin(), children.end(), [&](const ObjectFacts& child) {
                    return checkable(child) && catalog.sameName(child.name, name);
                });
            if (found == children.end())
                fail(4917, QStringLiteral("Constraint '%1' does not exist.").arg(name), line);
            set(*found);
        } while (cursor.accept(","));
    }
    cursor.expectEnd();
}

void enableTriggers(Catalog& catalog, const ObjectFacts& table, TokenCursor& cursor, bool enable) {
    const std::vector<ObjectFacts> children = catalog.children(table.id);
    const auto set = [&](int id) {
        CatalogQuery(catalog.handle(), "UPDATE \"zov$objects\" SET is_disabled=? WHERE id=?")
            .add(!enable)
            .add(id)
            .run();
    };
    if (cursor.accept("ALL")) {
        for (const ObjectFacts& child : children)
            if (child.xtype == QLatin1String("TR")) set(child.id);
        return;
    }
    do {
        const ObjectName name = cursor.objectName();
        const auto found =
            std::find_if(children.begin(), children.end(), [&](const ObjectFacts& child) {
                return child.xtype == QLatin1String("TR") &&
                       catalog.sameName(child.name, name.name);
            });
        if (found == children.end())
            fail(4920,
                 QStringLiteral(
                     "ALTER TABLE failed because trigger '%1' on table '%2' does not exist.")
                     .arg(name.display(), table.name),
                 name.line);
        set(found->id);
    } while (cursor.accept(","));
}

}  // namespace

void alterTable(SessionState& session, TokenCursor& cursor) {
    const ObjectName name = cursor.objectName();
    Catalog catalog = Catalog::forWriting(session, name);
    const ObjectFacts table = catalog.requireTable(name);
    bool noCheck = false, withCheck = false;
    if (cursor.is("WITH") && (cursor.peek(1).is("CHECK") || cursor.peek(1).is("NOCHECK"))) {
        cursor.next();
        noCheck = cursor.is("NOCHECK");
        withCheck = !noCheck;
        cursor.next();
    }
    if (cursor.accept("ADD")) {
        addElements(catalog, table, cursor, noCheck);
    } else if (cursor.accept("DROP")) {
        drop(catalog, table, cursor);
    } else if (cursor.accept({"ALTER", "COLUMN"})) {
        alterColumn(catalog, table, cursor);
    } else if (cursor.accept("CHECK")) {
        checkConstraints(catalog, table, cursor, true, withCheck);
    } else if (cursor.accept("NOCHECK")) {
        checkConstraints(catalog, table, cursor, false, false);
    } else if (cursor.accept({"ENABLE", "TRIGGER"})) {
        enableTriggers(catalog, table, cursor, true);
        cursor.expectEnd();
    } else if (cursor.accept({"DISABLE", "TRIGGER"})) {
        enableTriggers(catalog, table, cursor, false);
        cursor.expectEnd();
    } else if (cursor.accept({"ENABLE", "CHANGE_TRACKING"}) ||
               cursor.accept({"DISABLE", "CHANGE_TRACKING"}) || cursor.accept("REBUILD")) {
        readIndexOptions(
            cursor);  // how rows are packed and tracked is nothing that files here know
        cursor.expectEnd();
    } else if (cursor.accept("SET")) {
        cursor.parenthesised();
        cursor.expectEnd();
    } else {
        cursor.failHere();
    }
    catalog.touchObject(table.id);
}

void setTriggersEnabled(SessionState& session, TokenCursor& cursor, bool enabled) {
    // ENABLE TRIGGER {ALL | name, ...} ON table: the table comes last but is needed first.
    TokenCursor names = cursor;
    while (!cursor.atEnd() && !cursor.is("ON")) cursor.next();
    cursor.expect("ON");
    const ObjectName name = cursor.objectName();
    cursor.expectEnd();
    Catalog catalog = Catalog::forWriting(session, name);
    const std::optional<ObjectFacts> owner = catalog.find(name);
    if (!owner)
        fail(1088,
             QStringLiteral(
                 "Cannot find the object \"%1\" because it does not exist or you do not have "
                 "permissions.")
                 .arg(name.display()),
             name.line);
    enableTriggers(catalog, *owner, names, enabled);
    if (!names.is("ON")) names.failHere();
}

}  // namespace zov::local
