// User-defined types.
#include "data/local/ddl.h"
#include "data/local/query_engine.h"
#include "data/local/server_store.h"

namespace zov::local {
namespace {

int addType(Catalog& catalog, const QString& name, int schema, const TypeFacts& base, bool nullable,
            int line) {
    CatalogQuery taken(catalog.handle(),
                       "SELECT 1 FROM \"zov$types\" WHERE schema_id=? AND name=?");
    taken.add(schema).add(name);
    if (taken.step())
        fail(219,
             QStringLiteral(
                 "The type '%1.%2' already exists, or you do not have permission to create it.")
                 .arg(catalog.schemaName(schema), name),
             line);
    CatalogQuery last(
        catalog.handle(),
        "SELECT max(xusertype, 256) FROM (SELECT max(xusertype) AS xusertype FROM \"zov$types\")");
    const int id = last.step() ? last.number(0) + 1 : 257;
    CatalogQuery(catalog.handle(),
                 "INSERT INTO \"zov$types\"(xusertype, xtype, name, length, prec, scale, "
                 "allownulls, schema_id,"
                 " isuser) VALUES(?,?,?,?,?,?,?,?,1)")
        .add(id)
        .add(base.xtype)
        .add(name)
        .add(base.length)
        .add(base.prec)
        .add(base.scale)
        .add(nullable)
        .add(schema)
        .run();
    return id;
}

}  // namespace

void createType(SessionState& session, TokenCursor& cursor) {
    const ObjectName name = cursor.objectName();
    Catalog catalog = Catalog::forWriting(session, name);
    const int schema = catalog.requireSchema(name.schema);
    if (cursor.accept("FROM")) {
        const TypeFacts base = readType(catalog, cursor);
        bool nullable = base.nullable;
        if (cursor.accept({"NOT", "NULL"}))
            nullable = false;
        else if (cursor.accept("NULL"))
            nullable = true;
        cursor.expectEnd();
        addType(catalog, name.name, schema, base, nullable, name.line);
        return;
    }
    if (cursor.accept({"EXTERNAL", "NAME"}))
        fail(40000,
             QStringLiteral("The embedded server keeps no types of assemblies ('%1').")
                 .arg(name.display()),
             name.line);
    cursor.expect("AS");
    cursor.expect("TABLE");
    TableParts parts;
    cursor.expect("(");
    do readTableElement(catalog, cursor, parts);
    while (cursor.accept(","));
    cursor.expect(")");
    readIndexOptions(cursor);
    cursor.expectEnd();
    TypeFacts base;
    base.xtype = 243;
    base.length = -1;
    const int id = addType(catalog, name.name, schema, base, false, name.line);
    // The columns hang on an object of its own, as on the server.
    ObjectFacts table;
    table.schemaId = schema;
    table.schema = catalog.schemaName(schema);
    table.name = QStringLiteral("TT_%1_%2").arg(name.name.left(100)).arg(id, 8, 16, QChar(u'0'));
    table.xtype = QStringLiteral("TT");
    table.id = catalog.addObject(table.name, schema, table.xtype, 0, QString::number(id));
    std::vector<ConstraintSpec> constraints = parts.constraints;
    for (const ColumnSpec& column : parts.columns)
        constraints.insert(constraints.end(), column.constraints.begin(), column.constraints.end());
    writeColumns(catalog, table, parts.columns, constraints);
    for (const ConstraintSpec& spec : constraints) writeConstraint(catalog, table, spec);
    for (const TableIndexSpec& index : parts.indexes) writeTableIndex(catalog, table, index);
}

void dropTypes(SessionState& session, TokenCursor& cursor) {
    const bool ifExists = cursor.accept({"IF", "EXISTS"});
    const ObjectName name = cursor.objectName();
    cursor.expectEnd();
    Catalog catalog = Catalog::forWriting(session, name);
    if (ifExists && !name.schema.isEmpty() && !catalog.schemaId(name.schema)) return;
    const int schema = catalog.requireSchema(name.schema);
    CatalogQuery found(
        catalog.handle(),
        "SELECT xusertype, xtype FROM \"zov$types\" WHERE isuser=1 AND schema_id=? AND name=?");
    found.add(schema).add(name.name);
    if (!found.step()) {
        if (ifExists) return;
        fail(218,
             QStringLiteral(
                 "Could not find the type '%1'. Either it does not exist or you do not have the "
                 "necessary permission.")
                 .arg(name.display()),
             name.line);
    }
    const int id = found.number(0);
    const bool table = found.number(1) == 243;
    CatalogQuery user(catalog.handle(),
                      "SELECT o.name FROM \"zov$columns\" c JOIN \"zov$objects\" o ON o.id=c.id "
                      "WHERE c.xusertype=?");
    user.add(id);
    if (user.step())
        fail(3732,
             QStringLiteral(
                 "Cannot drop type '%1' because it is being referenced by object '%2'. There may "
                 "be other objects that reference this type.")
                 .arg(name.display(), user.text(0)),
             name.line);
    if (table) {
        CatalogQuery object(catalog.handle(),
                            "SELECT id FROM \"zov$objects\" WHERE xtype='TT' AND info=?");
        object.add(QString::number(id));
        if (object.step())
            if (const auto facts = catalog.find(object.number(0))) removeTable(catalog, *facts);
    }
    for (const char* sql : {"DELETE FROM \"zov$types\" WHERE xusertype=?",
                            "DELETE FROM \"zov$permissions\" WHERE class=6 AND major_id=?",
                            "DELETE FROM \"zov$properties\" WHERE class=6 AND major_id=?"})
        CatalogQuery(catalog.handle(), sql).add(id).run();
    catalog.removeDetails(6, id);
}

}  // namespace zov::local
