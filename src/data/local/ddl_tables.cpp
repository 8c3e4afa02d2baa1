// CREATE TABLE, DROP TABLE, TRUNCATE TABLE: reading columns and constraints, and writing them with
// the server's rules for nullability, key columns and generated names.
#include "data/local/ddl.h"
#include "data/local/definitions.h"
#include "data/local/query_engine.h"
#include "data/local/server_store.h"

#include <algorithm>

namespace zov::local {
namespace {

DefinitionForm formFor(const Catalog& catalog) {
    return catalog.isVersion8() ? DefinitionForm::AsWritten : DefinitionForm::Current;
}

void readGroup(TokenCursor& cursor) {
    // ON group, or ON scheme(column): where rows lie is nothing that files here know.
    cursor.nameOrText();
    if (cursor.is("(")) cursor.parenthesised();
}

void readClustering(TokenCursor& cursor, ConstraintSpec& spec) {
    if (cursor.accept("CLUSTERED"))
        spec.clustered = true;
    else if (cursor.accept("NONCLUSTERED"))
        spec.clustered = false;
}

QString readAction(TokenCursor& cursor) {
    if (cursor.accept("CASCADE")) return QStringLiteral("CASCADE");
    if (cursor.accept({"NO", "ACTION"})) return QStringLiteral("NO_ACTION");
    if (cursor.accept({"SET", "NULL"})) return QStringLiteral("SET_NULL");
    if (cursor.accept({"SET", "DEFAULT"})) return QStringLiteral("SET_DEFAULT");
    cursor.failHere();
}

void readReference(TokenCursor& cursor, ConstraintSpec& spec) {
    cursor.expect("REFERENCES");
    spec.references = cursor.objectName();
    if (cursor.is("(")) {
        std::vector<bool> unused;
        readKeyColumns(cursor, spec.referencedColumns, unused);
    }
    for (;;) {
        if (cursor.accept({"ON", "DELETE"}))
            spec.deleteAction = readAction(cursor);
        else if (cursor.accept({"ON", "UPDATE"}))
            spec.updateAction = readAction(cursor);
        else if (cursor.accept({"NOT", "FOR", "REPLICATION"}))
            spec.notForReplication = true;
        else
            return;
    }
}

// The words behind CONSTRAINT name. `column` is empty for a constraint of the table.
ConstraintSpec readConstraint(const Catalog& catalog, TokenCursor& cursor, const QString& column) {
    ConstraintSpec spec;
    spec.line = cursor.peek().line;
    spec.column = column;
    if (cursor.accept("CONSTRAINT")) spec.name = cursor.name();
    if (cursor.is("PRIMARY") || cursor.is("UNIQUE")) {
        if (cursor.accept("UNIQUE")) {
            spec.kind = QStringLiteral("UQ");
        } else {
            cursor.next();
            cursor.expect("KEY");
            spec.kind = QStringLiteral("PK");
        }
        readClustering(cursor, spec);
        if (cursor.is("(")) {
            readKeyColumns(cursor, spec.columns, spec.descending);
        } else if (!column.isEmpty()) {
            spec.columns = {column};
            spec.descending = {false};
        } else {
            cursor.failHere();
        }
        spec.options = readIndexOptions(cursor);
    } else if (cursor.accept("CHECK")) {
        spec.kind = QStringLiteral("C");
        spec.notForReplication = cursor.accept({"NOT", "FOR", "REPLICATION"});
        spec.text = storedExpression(cursor.parenthesised(), formFor(catalog));
    } else if (cursor.is("FOREIGN") || cursor.is("REFERENCES")) {
        spec.kind = QStringLiteral("F");
        if (cursor.accept("FOREIGN")) {
            cursor.expect("KEY");
            if (cursor.is("(")) {
                std::vector<bool> unused;
                readKeyColumns(cursor, spec.columns, unused);
            }
        }
        if (spec.columns.empty()) {
            if (column.isEmpty()) cursor.failHere();
            spec.columns = {column};
        }
        readReference(cursor, spec);
    } else if (cursor.accept("DEFAULT")) {
        spec.kind = QStringLiteral("D");
        const auto expression = cursor.until(
            {"CONSTRAINT", "NOT", "NULL", "PRIMARY", "UNIQUE", "CHECK", "REFERENCES", "FOREIGN",
             "IDENTITY", "COLLATE", "ROWGUIDCOL", "WITH", "FOR", "DEFAULT", "SPARSE", "INDEX"});
        spec.text = storedExpression(expression, formFor(catalog));
        for (;;) {
            if (cursor.accept({"WITH", "VALUES"}))
                spec.withValues = true;
            else if (column.isEmpty() && cursor.accept("FOR"))
                spec.columns = {cursor.name()};
            else
                break;
        }
        if (!column.isEmpty()) spec.columns = {column};
        if (spec.columns.empty()) cursor.failHere();
    } else {
        cursor.failHere();
    }
    return spec;
}

TableIndexSpec readInlineIndex(const Catalog& catalog, TokenCursor& cursor, const QString& column) {
    TableIndexSpec index;
    index.line = cursor.peek().line;
    cursor.expect("INDEX");
    index.facts.name = cursor.name();
    index.facts.unique = cursor.accept("UNIQUE");
    index.clustered = cursor.accept("CLUSTERED");
    if (!index.clustered) cursor.accept("NONCLUSTERED");
    std::vector<bool> descending;
    if (cursor.is("(")) {
        readKeyColumns(cursor, index.columns, descending);
    } else {
        if (column.isEmpty()) cursor.failHere();
        index.columns = {column};
        descending = {false};
    }
    for (const bool down : descending) index.facts.keys.push_back({0, down, false});
    if (cursor.accept("INCLUDE")) {
        std::vector<QString> included;
        std::vector<bool> unused;
        readKeyColumns(cursor, included, unused);
        for (const QString& name : included) {
            index.columns.push_back(name);
            index.facts.keys.push_back({0, false, true});
        }
    }
    if (cursor.accept("WHERE"))
        index.facts.filter =
            storedExpression(cursor.until({"WITH", "ON", "FILESTREAM_ON"}), DefinitionForm::Filter);
    index.facts.options = readIndexOptions(cursor);
    Q_UNUSED(catalog);
    return index;
}

bool acceptNotForReplication(TokenCursor& cursor, ColumnSpec& column) {
    if (!cursor.accept({"NOT", "FOR", "REPLICATION"})) return false;
    column.facts.details.emplace_back("not_for_replication", QStringLiteral("1"));
    return true;
}

void readIdentity(TokenCursor& cursor, ColumnSpec& column) {
    column.facts.seed = column.facts.increment = QStringLiteral("1");
    if (cursor.accept("(")) {
        column.facts.seed = cursor.wholeNumber();
        cursor.expect(",");
        column.facts.increment = cursor.wholeNumber();
        cursor.expect(")");
    }
    acceptNotForReplication(cursor, column);
}

void requireIdentityType(const ColumnSpec& column) {
    const TypeFacts& type = column.facts.type;
    const bool whole =
        type.isInteger() || ((type.xtype == 106 || type.xtype == 108) && type.scale == 0);
    if (!whole)
        fail(2749,
             QStringLiteral(
                 "Identity column '%1' must be of data type int, bigint, smallint, tinyint, "
                 "or decimal or numeric with a scale of 0, and constrained to be "
                 "nonnullable.")
                 .arg(column.facts.name),
             column.line);
    if (column.facts.increment.toLongLong() == 0)
        fail(2741,
             QStringLiteral("SET option failed: identity column '%1' has an increment of 0.")
                 .arg(column.facts.name),
             column.line);
}

void readColumn(const Catalog& catalog, TokenCursor& cursor, TableParts& parts) {
    ColumnSpec column;
    column.line = cursor.peek().line;
    column.facts.name = cursor.name();
    if (cursor.accept("AS")) {
        column.facts.computed = storedExpression(
            cursor.until({"PERSISTED", "CONSTRAINT", "PRIMARY", "UNIQUE", "CHECK"}),
            formFor(catalog));
        if (cursor.accept("PERSISTED")) {
            column.facts.persisted = true;
            if (cursor.accept({"NOT", "NULL"})) column.nullable = false;
        }
    } else if (cursor.atEnd() || cursor.is(",") || cursor.is(")")) {
        // A timestamp column may go without a name of its own.
        if (column.facts.name.compare(QLatin1String("timestamp"), Qt::CaseInsensitive) != 0)
            cursor.failHere();
        column.facts.type = readType(catalog, QStringLiteral("timestamp"));
    } else {
        column.facts.type = readType(catalog, cursor);
        if (cursor.accept("IDENTITY")) {  // the usual place, before the loop below
            readIdentity(cursor, column);
            requireIdentityType(column);
        }
    }
    while (!cursor.atEnd() && !cursor.is(",") && !cursor.is(")")) {
        if (cursor.accept("COLLATE")) {
            column.facts.collation = catalog.readCollation(cursor);
        } else if (cursor.accept("IDENTITY")) {
            readIdentity(cursor, column);
            requireIdentityType(column);
        } else if (cursor.accept({"NOT", "NULL"})) {
            column.nullable = false;
        } else if (cursor.accept("NULL")) {
            column.nullable = true;
        } else if (!column.facts.seed.isNull() && acceptNotForReplication(cursor, column)) {
            continue;
        } else if (cursor.accept("ROWGUIDCOL")) {
            if (column.facts.type.xtype != 36)
                fail(
                    8196,
                    QStringLiteral("Column '%1' is no uniqueidentifier; ROWGUIDCOL can't be given.")
                        .arg(column.facts.name),
                    column.line);
            column.facts.rowguid = true;
        } else if (cursor.accept("SPARSE")) {
            column.facts.details.emplace_back("sparse", QStringLiteral("1"));
        } else if (cursor.accept("HIDDEN")) {
            column.facts.details.emplace_back("hidden", QStringLiteral("1"));
        } else if (cursor.accept({"COLUMN_SET", "FOR", "ALL_SPARSE_COLUMNS"})) {
            column.facts.details.emplace_back("column_set", QStringLiteral("1"));
        } else if (cursor.accept("FILESTREAM")) {
            column.facts.details.emplace_back("filestream", QStringLiteral("1"));
        } else if (cursor.accept("MASKED")) {
            column.facts.details.emplace_back("mask", readMask(cursor));
        } else if (cursor.is("INDEX")) {
            parts.indexes.push_back(readInlineIndex(catalog, cursor, column.facts.name));
        } else {
            column.constraints.push_back(readConstraint(catalog, cursor, column.facts.name));
        }
    }
    parts.columns.push_back(std::move(column));
}

const ColumnFacts* findColumn(const Catalog& catalog, const std::vector<ColumnFacts>& columns,
                              const QString& name) {
    for (const ColumnFacts& column : columns)
        if (catalog.sameName(column.name, name)) return &column;
    return nullptr;
}

// A default and a rule that are bound to a column's type are the column's from its beginning on.
void takeTypesBindings(const Catalog& catalog, ColumnFacts& column) {
    constexpr int LastSystemType = 256;
    if (column.type.xusertype <= LastSystemType || !column.computed.isNull()) return;
    column.crule = catalog.detail(6, column.type.xusertype, 0, "rule").toInt();
    if (column.seed.isNull())
        column.cdefault = catalog.detail(6, column.type.xusertype, 0, "default").toInt();
}

bool hasClustered(const Catalog& catalog, int tableId) {
    CatalogQuery query(catalog.handle(), "SELECT 1 FROM \"zov$indexes\" WHERE id=? AND indid=1");
    query.add(tableId);
    return query.step();
}

}  // namespace

QString readMask(TokenCursor& cursor) {
    cursor.expect("WITH");
    cursor.expect("(");
    cursor.expect("FUNCTION");
    cursor.expect("=");
    const Token& function = cursor.next();
    if (function.kind != TokenKind::String) failSyntax(function);
    cursor.expect(")");
    return function.value;
}

void readKeyColumns(TokenCursor& cursor, std::vector<QString>& names,
                    std::vector<bool>& descending) {
    cursor.expect("(");
    do {
        names.push_back(cursor.name());
        descending.push_back(cursor.accept("DESC"));
        if (!descending.back()) cursor.accept("ASC");
    } while (cursor.accept(","));
    cursor.expect(")");
}

QString readIndexOptions(TokenCursor& cursor) {
    QString options;
    const auto add = [&options](const QString& text) {
        if (!options.isEmpty()) options += u',';
        options += text;
    };
    const auto option = [&](bool braces) {
        QString text = cursor.name().toUpper();
        if (cursor.accept("=")) {
            text += u'=' + cursor.next().source.toString().toUpper();
            if (braces && cursor.is("(")) cursor.parenthesised();
            if (braces && cursor.accept("ON")) {  // ON PARTITIONS (...)
                cursor.expect("PARTITIONS");
                cursor.parenthesised();
            }
        } else {
            text += QStringLiteral("=ON");
        }
        add(text);
    };
    for (;;) {
        if (cursor.accept("WITH")) {
            if (cursor.accept("(")) {
                do option(true);
                while (cursor.accept(","));
                cursor.expect(")");
            } else {
                do option(false);
                while (cursor.is(",") &&
                       (cursor.peek(1).is("FILLFACTOR") || cursor.peek(1).is("PAD_INDEX") ||
                        cursor.peek(1).is("IGNORE_DUP_KEY") || cursor.peek(1).is("DROP_EXISTING") ||
                        cursor.peek(1).is("SORT_IN_TEMPDB") ||
                        cursor.peek(1).is("STATISTICS_NORECOMPUTE")) &&
                       cursor.accept(","));
            }
        } else if (cursor.is("ON") && !cursor.peek(1).is("DELETE") &&
                   !cursor.peek(1).is("UPDATE")) {
            cursor.next();
            readGroup(cursor);
        } else if (cursor.accept("FILESTREAM_ON") || cursor.accept("TEXTIMAGE_ON")) {
            cursor.nameOrText();
        } else {
            return options.isEmpty() ? QString() : options;
        }
    }
}

void readTableElement(const Catalog& catalog, TokenCursor& cursor, TableParts& parts) {
    const Token& token = cursor.peek();
    const bool word = token.kind == TokenKind::Word;
    if (word && cursor.is("INDEX") && cursor.peek(1).isName())
        parts.indexes.push_back(readInlineIndex(catalog, cursor, {}));
    else if (word && (cursor.is("CONSTRAINT") || cursor.is("PRIMARY") || cursor.is("UNIQUE") ||
                      cursor.is("FOREIGN") || cursor.is("CHECK") || cursor.is("DEFAULT")))
        parts.constraints.push_back(readConstraint(catalog, cursor, {}));
    else
        readColumn(catalog, cursor, parts);
}

void writeColumns(Catalog& catalog, const ObjectFacts& table, std::vector<ColumnSpec>& columns,
                  const std::vector<ConstraintSpec>& constraints) {
    std::vector<ColumnFacts> known = catalog.columns(table.id);
    const std::optional<ObjectFacts> stored = catalog.find(table.id);
    // Dropping the last column leaves a note, so that its number is not given again.
    int colid = stored ? stored->info.section(QStringLiteral("last_colid="), 1).toInt() : 0;
    int order = 0;
    bool identity = false;
    for (const ColumnFacts& column : known) {
        colid = std::max(colid, column.colid);
        order = std::max(order, column.colorder);
        identity = identity || !column.seed.isNull();
    }
    const auto inPrimaryKey = [&](const ColumnSpec& column) {
        const auto names = [&](const ConstraintSpec& spec) {
            return spec.kind == QLatin1String("PK") &&
                   std::any_of(spec.columns.begin(), spec.columns.end(), [&](const QString& name) {
                       return catalog.sameName(name, column.facts.name);
                   });
        };
        return std::any_of(constraints.begin(), constraints.end(), names) ||
               std::any_of(column.constraints.begin(), column.constraints.end(), names);
    };
    for (ColumnSpec& column : columns) {
        ColumnFacts& facts = column.facts;
        if (facts.name.size() > 128)
            fail(103,
                 QStringLiteral(
                     "The identifier that starts with '%1' is too long. Maximum length is "
                     "128.")
                     .arg(facts.name.left(128)),
                 column.line);
        if (findColumn(catalog, known, facts.name))
            fail(2705,
                 QStringLiteral(
                     "Column names in each table must be unique. Column name '%1' in table "
                     "'%2' is specified more than once.")
                     .arg(facts.name, table.name),
                 column.line);
        facts.colid = ++colid;
        facts.colorder = ++order;
        const bool key = inPrimaryKey(column);
        if (!facts.seed.isNull()) {
            if (identity)
                fail(2744,
                     QStringLiteral("Multiple identity columns specified for table '%1'. Only one "
                                    "identity column per table is allowed.")
                         .arg(table.name),
                     column.line);
            identity = true;
            if (column.nullable.value_or(false))
                fail(8147,
                     QStringLiteral(
                         "Could not create IDENTITY attribute on nullable column '%1', table "
                         "'%2'.")
                         .arg(facts.name, table.name),
                     column.line);
        }
        if (key && column.nullable.value_or(false))
            fail(8111,
                 QStringLiteral(
                     "Cannot define PRIMARY KEY constraint on nullable column in table '%1'.")
                     .arg(table.name),
                 column.line);
        facts.nullable =
            column.nullable.value_or(facts.type.nullable) && !key && facts.seed.isNull();
        if (facts.type.isText() && facts.collation.isEmpty())
            facts.collation = catalog.fact("collation");
        if (!facts.type.isText()) facts.collation = QString();
        takeTypesBindings(catalog, facts);
        known.push_back(facts);
        if (!facts.computed.isNull()) continue;
        catalog.addColumn(table.id, facts);
    }
    // Computed columns see the plain ones, whatever their order.
    for (ColumnSpec& column : columns) {
        if (column.facts.computed.isNull()) continue;
        typeComputedColumn(catalog, table, column.facts);
        column.facts.nullable =
            column.nullable.value_or(column.facts.nullable) && !inPrimaryKey(column);
        catalog.addColumn(table.id, column.facts);
    }
}

namespace {

std::vector<IndexKey> keysOf(Catalog& catalog, const ObjectFacts& table, const ConstraintSpec& spec,
                             const std::vector<ColumnFacts>& columns) {
    std::vector<IndexKey> keys;
    for (size_t i = 0; i < spec.columns.size(); ++i) {
        const ColumnFacts* column = findColumn(catalog, columns, spec.columns[i]);
        if (!column)
            fail(1911,
                 QStringLiteral("Column name '%1' does not exist in the target table or view.")
                     .arg(spec.columns[i]),
                 spec.line);
        for (const IndexKey& key : keys)
            if (key.colid == column->colid)
                fail(1909,
                     QStringLiteral(
                         "Cannot use duplicate column names in index. Column name '%1' listed "
                         "more than once.")
                         .arg(spec.columns[i]),
                     spec.line);
        if (spec.kind == QLatin1String("PK") && column->nullable)
            fail(8111,
                 QStringLiteral(
                     "Cannot define PRIMARY KEY constraint on nullable column in table '%1'.")
                     .arg(table.name),
                 spec.line);
        keys.push_back({column->colid, i < spec.descending.size() && spec.descending[i], false});
    }
    Q_UNUSED(catalog);
    return keys;
}

bool writeKey(Catalog& catalog, const ObjectFacts& table, const ConstraintSpec& spec,
              const QString& name, const std::vector<ColumnFacts>& columns) {
    const bool primary = spec.kind == QLatin1String("PK");
    if (primary)
        for (const ObjectFacts& child : catalog.children(table.id))
            if (child.xtype == QLatin1String("PK"))
                fail(1779,
                     QStringLiteral("Table '%1' already has a primary key defined on it.")
                         .arg(table.name),
                     spec.line);
    const bool taken = hasClustered(catalog, table.id);
    if (taken && spec.clustered.value_or(false))
        fail(1902,
             QStringLiteral("Cannot create more than one clustered index on table '%1'. Drop the "
                            "existing clustered index before creating another.")
                 .arg(table.display()),
             spec.line);
    IndexFacts index;
    index.keys = keysOf(catalog, table, spec, columns);
    index.name = name;
    index.unique = true;
    index.options = spec.options;
    index.constraintId =
        catalog.addObject(name, table.schemaId, spec.kind, table.id, {}, spec.name.isEmpty());
    index.indid = catalog.nextIndexId(table.id, spec.clustered.value_or(primary && !taken));
    catalog.addIndex(table.id, index);
    return isRowidKey(catalog, table, index, columns);
}

// What foreign keys and checks say of the rows that they look at. One that replication goes past is
// never trusted.
void writeTrust(Catalog& catalog, int id, const ConstraintSpec& spec) {
    if (spec.notForReplication)
        catalog.setDetail(1, id, 0, "not_for_replication", QStringLiteral("1"));
    if (spec.notTrusted || spec.notForReplication)
        CatalogQuery(catalog.handle(), "UPDATE \"zov$objects\" SET is_not_trusted=1 WHERE id=?")
            .add(id)
            .run();
}

void writeForeignKey(Catalog& catalog, const ObjectFacts& table, const ConstraintSpec& spec,
                     const QString& name, const std::vector<ColumnFacts>& columns) {
    ObjectName target = spec.references;
    if (target.schema.isEmpty() && !catalog.find(target)) target.schema = table.schema;
    const std::optional<ObjectFacts> referenced = catalog.find(target);
    if (!referenced || !referenced->isTable())
        fail(1767,
             QStringLiteral("Foreign key '%1' references invalid table '%2'.")
                 .arg(name, spec.references.display()),
             spec.line);
    const std::vector<ColumnFacts> others = catalog.columns(referenced->id);
    std::vector<int> from, to;
    for (const QString& column : spec.columns) {
        const ColumnFacts* found = findColumn(catalog, columns, column);
        if (!found)
            fail(1769,
                 QStringLiteral(
                     "Foreign key '%1' references invalid column '%2' in referencing table "
                     "'%3'.")
                     .arg(name, column, table.name),
                 spec.line);
        from.push_back(found->colid);
    }
    const std::vector<IndexFacts> indexes = catalog.indexes(referenced->id);
    if (spec.referencedColumns.empty()) {
        for (const IndexFacts& index : indexes) {
            const auto constraint =
                index.constraintId ? catalog.find(index.constraintId) : std::nullopt;
            if (!constraint || constraint->xtype != QLatin1String("PK")) continue;
            for (const IndexKey& key : index.keys) to.push_back(key.colid);
        }
        if (to.empty())
            fail(1773,
                 QStringLiteral(
                     "Foreign key '%1' has implicit reference to object '%2' which does not "
                     "have a primary key defined on it.")
                     .arg(name, spec.references.display()),
                 spec.line);
    }
    for (const QString& column : spec.referencedColumns) {
        const ColumnFacts* found = findColumn(catalog, others, column);
        if (!found)
            fail(1770,
                 QStringLiteral(
                     "Foreign key '%1' references invalid column '%2' in referenced table "
                     "'%3'.")
                     .arg(name, column, spec.references.display()),
                 spec.line);
        to.push_back(found->colid);
    }
    if (from.size() != to.size())
        fail(8139,
             QStringLiteral("Number of referencing columns in foreign key differs from number of "
                            "referenced columns, table '%1'.")
                 .arg(table.name),
             spec.line);
    std::vector<int> wanted = to;
    std::sort(wanted.begin(), wanted.end());
    const bool candidate =
        std::any_of(indexes.begin(), indexes.end(), [&](const IndexFacts& index) {
            std::vector<int> key;
            for (const IndexKey& part : index.keys)
                if (!part.included) key.push_back(part.colid);
            std::sort(key.begin(), key.end());
            return index.unique && index.filter.isNull() && key == wanted;
        });
    if (!candidate)
        fail(1776,
             QStringLiteral(
                 "There are no primary or candidate keys in the referenced table '%1' that "
                 "match the referencing column list in the foreign key '%2'.")
                 .arg(spec.references.display(), name),
             spec.line);
    const auto byId = [](const std::vector<ColumnFacts>& all, int colid) {
        return *std::find_if(all.begin(), all.end(),
                             [=](const ColumnFacts& c) { return c.colid == colid; });
    };
    for (size_t i = 0; i < from.size(); ++i) {
        const ColumnFacts a = byId(columns, from[i]);
        const ColumnFacts b = byId(others, to[i]);
        if (a.type.xtype != b.type.xtype)
            fail(1778,
                 QStringLiteral("Column '%1.%2' is not the same data type as referencing column "
                                "'%3.%4' in foreign key '%5'.")
                     .arg(referenced->name, b.name, table.name, a.name, name),
                 spec.line);
    }
    const int id = catalog.addObject(name, table.schemaId, QStringLiteral("F"), table.id, {},
                                     spec.name.isEmpty());
    writeTrust(catalog, id, spec);
    for (size_t i = 0; i < from.size(); ++i)
        CatalogQuery(catalog.handle(),
                     "INSERT INTO \"zov$references\"(constid, keyno, fkeyid, rkeyid, fkey, rkey,"
                     " delete_action, update_action) VALUES(?,?,?,?,?,?,?,?)")
            .add(id)
            .add(int(i) + 1)
            .add(table.id)
            .add(referenced->id)
            .add(from[i])
            .add(to[i])
            .add(spec.deleteAction)
            .add(spec.updateAction)
            .run();
}

void writeDefault(Catalog& catalog, const ObjectFacts& table, const ConstraintSpec& spec,
                  const QString& name, const std::vector<ColumnFacts>& columns) {
    const ColumnFacts* column = findColumn(catalog, columns, spec.columns.front());
    if (!column)
        fail(1752,
             QStringLiteral(
                 "Column '%1' in table '%2' is invalid for creating a default constraint.")
                 .arg(spec.columns.front(), table.name),
             spec.line);
    if (column->cdefault != 0)
        fail(1781, QStringLiteral("Column already has a DEFAULT bound to it."), spec.line);
    if (!column->seed.isNull() || !column->computed.isNull() || column->type.xtype == 189)
        fail(1754,
             QStringLiteral(
                 "Defaults cannot be created on columns with an IDENTITY attribute. Table "
                 "'%1', column '%2'.")
                 .arg(table.name, column->name),
             spec.line);
    const int id = catalog.addObject(name, table.schemaId, QStringLiteral("D"), table.id,
                                     QString::number(column->colid), spec.name.isEmpty());
    catalog.setText(id, spec.text);
    CatalogQuery(catalog.handle(), "UPDATE \"zov$columns\" SET cdefault=? WHERE id=? AND colid=?")
        .add(id)
        .add(table.id)
        .add(column->colid)
        .run();
}

}  // namespace

bool writeConstraint(Catalog& catalog, const ObjectFacts& table, const ConstraintSpec& spec) {
    const std::vector<ColumnFacts> columns = catalog.columns(table.id);
    QString name = spec.name;
    if (name.isEmpty()) {
        const QString kind = spec.kind == QLatin1String("C")   ? QStringLiteral("CK")
                             : spec.kind == QLatin1String("D") ? QStringLiteral("DF")
                             : spec.kind == QLatin1String("F") ? QStringLiteral("FK")
                                                               : spec.kind;
        QString column = spec.column;
        if (column.isEmpty() && spec.columns.size() == 1) column = spec.columns.front();
        name = catalog.generatedName(kind.toLatin1().constData(), table.schema, table.name, column);
    }
    if (spec.kind == QLatin1String("PK") || spec.kind == QLatin1String("UQ"))
        return writeKey(catalog, table, spec, name, columns);
    if (spec.kind == QLatin1String("F")) {
        writeForeignKey(catalog, table, spec, name, columns);
    } else if (spec.kind == QLatin1String("D")) {
        writeDefault(catalog, table, spec, name, columns);
    } else {
        const ColumnFacts* column = findColumn(catalog, columns, spec.column);
        const int id =
            catalog.addObject(name, table.schemaId, spec.kind, table.id,
                              QString::number(column ? column->colid : 0), spec.name.isEmpty());
        catalog.setText(id, spec.text);
        writeTrust(catalog, id, spec);
    }
    return false;
}

void writeTableIndex(Catalog& catalog, const ObjectFacts& table, const TableIndexSpec& index) {
    for (const IndexFacts& other : catalog.indexes(table.id))
        if (catalog.sameName(other.name, index.facts.name))
            fail(
                1913,
                QStringLiteral("The operation failed because an index or statistics with name '%1' "
                               "already exists on table '%2'.")
                    .arg(index.facts.name, table.display()),
                index.line);
    CatalogQuery statistics(catalog.handle(),
                            "SELECT 1 FROM \"zov$statistics\" WHERE id=? AND name=?");
    statistics.add(table.id).add(index.facts.name);
    if (statistics.step())
        fail(1913,
             QStringLiteral("The operation failed because an index or statistics with name '%1' "
                            "already exists on table '%2'.")
                 .arg(index.facts.name, table.display()),
             index.line);
    if (index.clustered && hasClustered(catalog, table.id))
        fail(1902,
             QStringLiteral("Cannot create more than one clustered index on table '%1'. Drop the "
                            "existing clustered index before creating another.")
                 .arg(table.display()),
             index.line);
    IndexFacts facts = index.facts;
    const std::vector<ColumnFacts> columns = catalog.columns(table.id);
    for (size_t i = 0; i < index.columns.size(); ++i) {
        const ColumnFacts* column = findColumn(catalog, columns, index.columns[i]);
        if (!column)
            fail(1911,
                 QStringLiteral("Column name '%1' does not exist in the target table or view.")
                     .arg(index.columns[i]),
                 index.line);
        for (size_t j = 0; j < i; ++j)
            if (facts.keys[j].colid == column->colid)
                fail(1909,
                     QStringLiteral(
                         "Cannot use duplicate column names in index. Column name '%1' listed "
                         "more than once.")
                         .arg(index.columns[i]),
                     index.line);
        facts.keys[i].colid = column->colid;
    }
    facts.indid = catalog.nextIndexId(table.id, index.clustered);
    catalog.addIndex(table.id, facts);
}

void refuseTooManyColumns(const char* verb, const QString& table, const TableParts& parts,
                          size_t before) {
    const bool wide =
        std::any_of(parts.columns.begin(), parts.columns.end(), [](const ColumnSpec& column) {
            return std::any_of(column.facts.details.begin(), column.facts.details.end(),
                               [](const auto& detail) { return detail.first == "column_set"; });
        });
    const size_t most = wide ? 30000 : 1024;
    if (before + parts.columns.size() <= most) return;
    const ColumnSpec& first = parts.columns[most > before ? most - before : 0];
    fail(1702,
         QStringLiteral("%1 TABLE failed because column '%2' in table '%3' exceeds the maximum of "
                        "%4 columns.")
             .arg(QLatin1String(verb), first.facts.name, table)
             .arg(most),
         first.line);
}

void createTable(SessionState& session, TokenCursor& cursor) {
    const ObjectName name = cursor.objectName();
    if (name.name.startsWith(u'#'))
        fail(40000,
             QStringLiteral("The embedded server keeps no temporary tables ('%1').").arg(name.name),
             name.line);
    Catalog catalog = Catalog::forWriting(session, name);
    const int schema = catalog.requireSchema(name.schema);
    TableParts parts;
    cursor.expect("(");
    for (;;) {
        readTableElement(catalog, cursor, parts);
        if (!cursor.accept(",")) break;
        if (cursor.is(")")) break;  // a comma behind the last one is let pass, as the server does
    }
    cursor.expect(")");
    readIndexOptions(cursor);
    cursor.expectEnd();
    refuseTooManyColumns("CREATE", name.name, parts, 0);
    if (parts.columns.empty())
        fail(1759, QStringLiteral("A table without columns can't be made: '%1'.").arg(name.name),
             name.line);

    ObjectFacts table;
    table.name = name.name;
    table.schemaId = schema;
    table.schema = catalog.schemaName(schema);
    table.xtype = QStringLiteral("U");
    table.id = catalog.addObject(name.name, schema, table.xtype);
    CatalogQuery(catalog.handle(),
                 "INSERT INTO \"zov$indexes\"(id, indid, name) VALUES(?, 0, NULL)")
        .add(table.id)
        .run();

    std::vector<ConstraintSpec> constraints;
    for (const ColumnSpec& column : parts.columns)
        constraints.insert(constraints.end(), column.constraints.begin(), column.constraints.end());
    constraints.insert(constraints.end(), parts.constraints.begin(), parts.constraints.end());
    int primary = 0, clustered = 0;
    for (ConstraintSpec& spec : constraints) {
        if (spec.kind == QLatin1String("PK") && ++primary > 1)
            fail(8110,
                 QStringLiteral("Cannot add multiple PRIMARY KEY constraints to table '%1'.")
                     .arg(table.name),
                 spec.line);
        if (spec.clustered.value_or(false) && ++clustered > 1)
            fail(8112,
                 QStringLiteral(
                     "Cannot add more than one clustered index for constraints on table '%1'.")
                     .arg(table.name),
                 spec.line);
    }
    for (const TableIndexSpec& index : parts.indexes) clustered += index.clustered;
    // Where another index is clustered, the primary key isn't.
    for (ConstraintSpec& spec : constraints)
        if (spec.kind == QLatin1String("PK") && !spec.clustered) spec.clustered = clustered == 0;

    writeColumns(catalog, table, parts.columns, constraints);
    // Keys first: a foreign key may point at its own table.
    for (const ConstraintSpec& spec : constraints)
        if (spec.kind == QLatin1String("PK") || spec.kind == QLatin1String("UQ"))
            writeConstraint(catalog, table, spec);
    for (const ConstraintSpec& spec : constraints)
        if (spec.kind != QLatin1String("PK") && spec.kind != QLatin1String("UQ"))
            writeConstraint(catalog, table, spec);
    for (const TableIndexSpec& index : parts.indexes) writeTableIndex(catalog, table, index);
    catalogChanged(catalog.database());
    makeStorage(catalog, table);
}

/// What a module of this type is called; empty for other objects.
static QString moduleKind(const QString& xtype) {
    static const QHash<QString, QString> kinds = {
        {QStringLiteral("V"), QStringLiteral("view")},
        {QStringLiteral("P"), QStringLiteral("procedure")},
        {QStringLiteral("FN"), QStringLiteral("function")},
        {QStringLiteral("IF"), QStringLiteral("function")},
        {QStringLiteral("TF"), QStringLiteral("function")},
        {QStringLiteral("TR"), QStringLiteral("trigger")}};
    return kinds.value(xtype);
}

void dropTables(SessionState& session, TokenCursor& cursor) {
    const bool ifExists = cursor.accept({"IF", "EXISTS"});
    do {
        const ObjectName name = cursor.objectName();
        Catalog catalog = Catalog::forWriting(session, name);
        const std::optional<ObjectFacts> table = catalog.find(name);
        if (!table || !table->isTable()) {
            if (const QString kind = table ? moduleKind(table->xtype) : QString(); !kind.isEmpty())
                fail(3705,
                     QStringLiteral("Cannot use DROP TABLE with '%1' because '%1' is a %2. Use "
                                    "DROP %3.")
                         .arg(name.display(), kind, kind.toUpper()),
                     name.line);
            if (ifExists) continue;
            fail(3701,
                 QStringLiteral(
                     "Cannot drop the table '%1', because it does not exist or you do not have "
                     "permission.")
                     .arg(name.display()),
                 name.line);
        }
        CatalogQuery referenced(catalog.handle(),
                                "SELECT 1 FROM \"zov$references\" WHERE rkeyid=?1 AND fkeyid<>?1");
        referenced.add(table->id);
        if (referenced.step())
            fail(3726,
                 QStringLiteral(
                     "Could not drop object '%1' because it is referenced by a FOREIGN KEY "
                     "constraint.")
                     .arg(name.display()),
                 name.line);
        referenced.again();
        removeTable(catalog, *table);
    } while (cursor.accept(","));
    cursor.expectEnd();
}

void truncateTable(SessionState& session, TokenCursor& cursor) {
    const ObjectName name = cursor.objectName();
    cursor.expectEnd();
    Catalog catalog = Catalog::forWriting(session, name);
    const ObjectFacts table = catalog.requireTable(name, "truncate");
    CatalogQuery referenced(catalog.handle(),
                            "SELECT 1 FROM \"zov$references\" WHERE rkeyid=?1 AND fkeyid<>?1");
    referenced.add(table.id);
    if (referenced.step())
        fail(4712,
             QStringLiteral(
                 "Cannot truncate table '%1' because it is being referenced by a FOREIGN KEY "
                 "constraint.")
                 .arg(name.display()),
             name.line);
    referenced.again();
    execSql(catalog.handle(),
            QStringLiteral("DELETE FROM ") + catalog.storedTable(table.schema, table.name));
    CatalogQuery(catalog.handle(), "UPDATE \"zov$columns\" SET identity_last=NULL WHERE id=?")
        .add(table.id)
        .run();
}

}  // namespace zov::local
