#include "scripting/create_script.h"

#include "data/sql_names.h"
#include "scripting/module_texts.h"
#include "scripting/table_statements.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <set>

namespace zov {
namespace {

QString pointedName(const QString& schema, const QString& name) {
    return schema.isEmpty() ? name : schema + u'.' + name;
}

ObjectType kindOf(const ModuleFacts& module) {
    if (module.type == u"P") return ObjectType::Procedure;
    if (module.type == u"V") return ObjectType::View;
    if (module.type == u"TR") return ObjectType::Trigger;
    if (module.type == u"FN" || module.type == u"IF" || module.type == u"TF")
        return ObjectType::Function;
    return ObjectType(0);  // a default or a rule, which no list shows
}

QString wordFor(const ModuleFacts& module) {
    switch (kindOf(module)) {
        case ObjectType::Procedure:
            return QStringLiteral("procedure");
        case ObjectType::View:
            return QStringLiteral("view");
        case ObjectType::Trigger:
            return QStringLiteral("trigger");
        case ObjectType::Function:
            return QStringLiteral("function");
        default:
            return module.type == u"R" ? QStringLiteral("rule") : QStringLiteral("default");
    }
}

ObjectRef refOf(const TableFacts& table) {
    return {table.schema, table.name, ObjectType::Table, table.id, false, table.name};
}
ObjectRef refOf(const ModuleFacts& module) {
    return {module.schema, module.name, kindOf(module), module.id, false, module.name};
}
ObjectRef refOf(const ConstraintFacts& key) {
    return {key.schema, key.name, ObjectType::Relationship, key.id, false, key.name};
}
/// A key, or the clustered index: it has its table's schema, and no id of its own.
ObjectRef refOf(const IndexFacts& index, const TableFacts& table) {
    return {table.schema, index.name, ObjectType::Constraint, 0, false, index.name};
}
bool isListedConstraint(const IndexFacts& index) {
    return index.isConstraint() || index.kind == IndexFacts::Clustered;
}

/// Puts the script together: chosen objects in the order in which they can be made.
class ScriptMaker {
 public:
    ScriptMaker(const DatabaseFacts& facts, const CreateScriptChoice& choice)
        : facts_(facts), choice_(choice) {}
    CreateScript make();

 private:
    bool isWhole() const { return !choice_.wants; }
    bool wants(const ObjectRef& object) const { return isWhole() || choice_.wants(object); }
    void unit(const QString& what, const QString& name, const QStringList& batches);
    void missing(const QString& sentence, QStringList& batches);
    void chooseObjects();
    void order();
    void visit(size_t node);
    QStringList usedTypes() const;
    bool wantsModule(size_t i) const { return chosenModules_.contains(i); }

    void dropUnit();
    void schemaUnit();
    void looseModules();
    void typeUnits();
    void sequenceUnits();
    void tableUnit(const TableFacts& table);
    void moduleUnit(const ModuleFacts& module);
    void keyUnits(const std::vector<TableFacts>& tables, bool views);
    void constraintUnits();

    const DatabaseFacts& facts_;
    const CreateScriptChoice& choice_;
    CreateScript script_;
    std::set<size_t> chosenTables_, chosenModules_;
    /// Tables and modules that are no triggers, in the order in which they are made. Modules are
    /// counted behind the tables.
    std::vector<size_t> ordered_;
    std::vector<char> visited_;
    Mentions objects_, functions_;
};

void ScriptMaker::unit(const QString& what, const QString& name, const QStringList& batches) {
    if (batches.isEmpty()) return;
    QString text;
    for (const QString& batch : batches) {
        text += batch;
        if (!batch.endsWith(u'\n')) text += choice_.lineBreak;
        if (!batch.startsWith(u"-- ") || batch.contains(u'\n'))
            text += QStringLiteral("GO") + choice_.lineBreak;
    }
    script_.units.push_back({what, name, text});
}

void ScriptMaker::missing(const QString& sentence, QStringList& batches) {
    script_.missing += sentence;
    batches += commentLine(QStringLiteral("NOT IN THIS SCRIPT: ") + sentence);
}

void ScriptMaker::chooseObjects() {
    for (size_t i = 0; i < facts_.tables.size(); ++i)
        if (wants(refOf(facts_.tables[i]))) chosenTables_.insert(i);
    for (size_t i = 0; i < facts_.modules.size(); ++i)
        if (wants(refOf(facts_.modules[i]))) chosenModules_.insert(i);
}

// A view or a function is made behind what it reads, a table behind the functions that its columns
// compute with. Where objects need each other the tables come first: a function's body is looked at
// when it runs.
void ScriptMaker::visit(size_t node) {
    if (visited_[node]) return;
    visited_[node] = true;
    const size_t tables = facts_.tables.size();
    if (node < tables) {
        for (const ColumnFacts& column : facts_.tables[node].columns)
            for (const QString& text : {column.computed, column.defaultText})
                if (!text.isEmpty())
                    for (const size_t used : functions_.in(text)) visit(used);
        if (chosenTables_.contains(node)) ordered_.push_back(node);
        return;
    }
    const ModuleFacts& module = facts_.modules[node - tables];
    if (kindOf(module) != ObjectType::Procedure)
        for (const size_t used : objects_.in(module.text)) visit(used);
    if (wantsModule(node - tables)) ordered_.push_back(node);
}

void ScriptMaker::order() {
    const size_t tables = facts_.tables.size();
    visited_.assign(tables + facts_.modules.size(), false);
    for (size_t i = 0; i < tables; ++i)
        objects_.add(facts_.tables[i].schema, facts_.tables[i].name, i);
    const auto modulesOf = [&](ObjectType kind, const std::function<void(size_t)>& take) {
        for (size_t i = 0; i < facts_.modules.size(); ++i)
            if (kindOf(facts_.modules[i]) == kind) take(i);
    };
    for (const ObjectType kind : {ObjectType::Function, ObjectType::View})
        modulesOf(kind, [&](size_t i) {
            const ModuleFacts& module = facts_.modules[i];
            objects_.add(module.schema, module.name, tables + i);
            if (kind == ObjectType::Function)
                functions_.add(module.schema, module.name, tables + i);
        });
    for (size_t i = 0; i < tables; ++i) visit(i);
    for (const ObjectType kind : {ObjectType::Function, ObjectType::View, ObjectType::Procedure})
        modulesOf(kind, [&](size_t i) { visit(tables + i); });
}

void ScriptMaker::schemaUnit() {
    QStringList schemas;
    if (isWhole()) {
        schemas = facts_.schemas;
    } else {
        QSet<QString> used;
        for (const size_t i : chosenTables_) used.insert(facts_.tables[i].schema);
        for (const size_t i : chosenModules_) used.insert(facts_.modules[i].schema);
        const QStringList types = usedTypes();
        for (const UserTypeFacts& type : facts_.types)
            if (types.contains(quotedName(type.schema, type.name))) used.insert(type.schema);
        for (const QString& schema : facts_.schemas)
            if (used.contains(schema)) schemas += schema;
    }
    QStringList batches;
    for (const QString& schema : schemas)
        batches += QStringLiteral("IF SCHEMA_ID(%1) IS NULL EXEC (%2)")
                       .arg(unicodeLiteral(schema),
                            unicodeLiteral(QStringLiteral("CREATE SCHEMA ") + quoteName(schema)));
    unit(QStringLiteral("schemas"), {}, batches);
}

QStringList ScriptMaker::usedTypes() const {
    QStringList used;
    Mentions types;
    for (size_t i = 0; i < facts_.types.size(); ++i)
        types.add(facts_.types[i].schema, facts_.types[i].name, i);
    const auto use = [&](size_t i) {
        used += quotedName(facts_.types[i].schema, facts_.types[i].name);
    };
    for (const size_t table : chosenTables_)
        for (const ColumnFacts& column : facts_.tables[table].columns) used += column.type;
    for (const size_t module : chosenModules_)
        for (const size_t i : types.in(facts_.modules[module].text)) use(i);
    return used;
}

// Defaults and rules that stand alone: types and columns are bound to them.
void ScriptMaker::looseModules() {
    for (size_t i = 0; i < facts_.modules.size(); ++i)
        if (isWhole() && kindOf(facts_.modules[i]) == ObjectType(0)) moduleUnit(facts_.modules[i]);
}

void ScriptMaker::typeUnits() {
    const QStringList used = isWhole() ? QStringList() : usedTypes();
    for (const bool tableTypes : {false, true}) {
        for (const UserTypeFacts& type : facts_.types) {
            const QString quoted = quotedName(type.schema, type.name);
            if (type.table.has_value() != tableTypes || (!isWhole() && !used.contains(quoted)))
                continue;
            QStringList batches;
            if (!type.table && type.base.isEmpty()) {
                missing(QStringLiteral("Type %1: its columns can't be read.").arg(quoted), batches);
                unit(QStringLiteral("type"), pointedName(type.schema, type.name), batches);
                continue;
            }
            QString text =
                isWhole() ? QString()
                          : QStringLiteral("IF TYPE_ID(%1) IS NULL ").arg(unicodeLiteral(quoted));
            text += QStringLiteral("CREATE TYPE ") + quoted;
            if (type.table) {
                const QString indent = choice_.lineBreak + QStringLiteral("    ");
                text += QStringLiteral(" AS TABLE (") + indent +
                        tableTypeLines(*type.table).join(u',' + indent) + choice_.lineBreak + u')';
            } else {
                text += QStringLiteral(" FROM ") + type.base +
                        (type.nullable ? QStringLiteral(" NULL") : QStringLiteral(" NOT NULL"));
            }
            batches += text;
            if (isWhole()) batches += bindStatements(type.boundDefault, type.boundRule, quoted);
            unit(QStringLiteral("type"), pointedName(type.schema, type.name), batches);
            ++script_.objects;
        }
    }
}

void ScriptMaker::sequenceUnits() {
    if (!isWhole()) return;
    for (const SequenceFacts& sequence : facts_.sequences) {
        QString text =
            QStringLiteral(
                "CREATE SEQUENCE %1 AS %2 START WITH %3 INCREMENT BY %4 "
                "MINVALUE %5 MAXVALUE %6%7")
                .arg(quotedName(sequence.schema, sequence.name), sequence.type, sequence.start,
                     sequence.increment, sequence.minimum, sequence.maximum,
                     sequence.cycles ? QStringLiteral(" CYCLE") : QString());
        if (!sequence.isCached)
            text += QStringLiteral(" NO CACHE");
        else if (sequence.cacheSize > 0)
            text += QStringLiteral(" CACHE %1").arg(sequence.cacheSize);
        unit(QStringLiteral("sequence"), pointedName(sequence.schema, sequence.name), {text});
        ++script_.objects;
    }
    for (const SynonymFacts& synonym : facts_.synonyms) {
        unit(QStringLiteral("synonym"), pointedName(synonym.schema, synonym.name),
             {QStringLiteral("CREATE SYNONYM %1 FOR %2")
                  .arg(quotedName(synonym.schema, synonym.name), synonym.base)});
        ++script_.objects;
    }
}

void ScriptMaker::tableUnit(const TableFacts& table) {
    QStringList batches;
    if (table.columns.empty()) {
        missing(QStringLiteral("Table %1: its columns can't be read.").arg(table.quoted()),
                batches);
    } else {
        for (const QString& beyond : table.beyond)
            missing(QStringLiteral("Table %1: %2 isn't scripted.").arg(table.quoted(), beyond),
                    batches);
        batches += createTableStatement(table, choice_.lineBreak);
        if (isWhole())
            for (const ColumnFacts& column : table.columns)
                batches += bindStatements(column.boundDefault, column.boundRule,
                                          table.quoted() + u'.' + quoteName(column.name));
        ++script_.objects;
    }
    unit(QStringLiteral("table"), pointedName(table.schema, table.name), batches);
}

void ScriptMaker::moduleUnit(const ModuleFacts& module) {
    QStringList batches;
    const QString word = wordFor(module);
    const QString title = word.left(1).toUpper() + word.mid(1) + u' ' + module.quoted();
    const QString statement = moduleStatement(module);
    if (module.text.isEmpty()) {
        missing(title + QStringLiteral(": its text can't be read: it is encrypted, or hidden from "
                                       "this login."),
                batches);
    } else if (statement.isEmpty()) {
        missing(title + QStringLiteral(": its text doesn't begin with a CREATE statement."),
                batches);
    } else {
        const auto set = [&](const char* setting, bool on) {
            batches += QStringLiteral("SET %1 %2")
                           .arg(QLatin1StringView(setting),
                                on ? QStringLiteral("ON") : QStringLiteral("OFF"));
        };
        if (!module.ansiNulls) set("ANSI_NULLS", false);
        if (!module.quotedIdentifier) set("QUOTED_IDENTIFIER", false);
        batches += statement;
        if (!module.ansiNulls) set("ANSI_NULLS", true);
        if (!module.quotedIdentifier) set("QUOTED_IDENTIFIER", true);
        if (module.isDisabled) {
            QString on = QStringLiteral("DATABASE");
            for (const TableFacts& table : facts_.tables)
                if (table.id == module.parentId) on = table.quoted();
            for (const ModuleFacts& view : facts_.modules)
                if (view.id == module.parentId) on = view.quoted();
            batches += QStringLiteral("DISABLE TRIGGER %1 ON %2").arg(module.quoted(), on);
        }
        ++script_.objects;
    }
    unit(word, pointedName(module.schema, module.name), batches);
}

void ScriptMaker::keyUnits(const std::vector<TableFacts>& tables, bool views) {
    for (size_t i = 0; i < tables.size(); ++i) {
        const TableFacts& table = tables[i];
        bool chosen = !views && chosenTables_.contains(i);
        if (views)
            for (const size_t module : chosenModules_)
                chosen = chosen || facts_.modules[module].id == table.id;
        QStringList batches;
        for (const IndexFacts& index : table.indexes) {
            const bool alone =
                !chosen && !views && isListedConstraint(index) && wants(refOf(index, table));
            if (!chosen && !alone) continue;
            const QString statement = createIndexStatement(index, table.quoted());
            if (statement.isEmpty()) {
                missing(QStringLiteral("Index %1 of %2: its kind isn't scripted.")
                            .arg(quoteName(index.name), table.quoted()),
                        batches);
                continue;
            }
            batches += statement;
            if (index.isDisabled)
                batches += QStringLiteral("ALTER INDEX %1 ON %2 DISABLE")
                               .arg(quoteName(index.name), table.quoted());
            if (alone) ++script_.objects;
        }
        unit(QStringLiteral("indexes of"), pointedName(table.schema, table.name), batches);
    }
}

void ScriptMaker::constraintUnits() {
    for (const bool foreignKeys : {false, true}) {
        for (size_t i = 0; i < facts_.tables.size(); ++i) {
            const TableFacts& table = facts_.tables[i];
            QStringList batches;
            for (const ConstraintFacts& one : foreignKeys ? table.foreignKeys : table.checks) {
                const bool alone = foreignKeys && !isWhole() && choice_.wants(refOf(one));
                if (!chosenTables_.contains(i) && !alone) continue;
                batches += createConstraintStatements(one, table.quoted());
                if (foreignKeys) ++script_.objects;
            }
            unit(foreignKeys ? QStringLiteral("foreign keys of") : QStringLiteral("checks of"),
                 pointedName(table.schema, table.name), batches);
        }
    }
}

void ScriptMaker::dropUnit() {
    if (!choice_.dropFirst) return;
    QStringList batches;
    const auto drop = [&](const QString& quoted, const char* type, const QString& statement) {
        batches += QStringLiteral("IF OBJECT_ID(%1, N'%2') IS NOT NULL %3")
                       .arg(unicodeLiteral(quoted), QLatin1StringView(type), statement);
    };
    for (size_t i = 0; i < facts_.tables.size(); ++i)
        for (const ConstraintFacts& key : facts_.tables[i].foreignKeys)
            if (chosenTables_.contains(i) || (!isWhole() && choice_.wants(refOf(key))))
                drop(quotedName(key.schema, key.name), "F",
                     dropConstraintStatement(key.name, facts_.tables[i].quoted()));
    const size_t tables = facts_.tables.size();
    for (const size_t i : chosenModules_) {
        const ModuleFacts& module = facts_.modules[i];
        if (module.type == u"TR" && module.parentId != 0)
            drop(module.quoted(), "TR", QStringLiteral("DROP TRIGGER ") + module.quoted());
    }
    for (auto node = ordered_.rbegin(); node != ordered_.rend(); ++node) {
        if (*node < tables) {
            const QString quoted = facts_.tables[*node].quoted();
            drop(quoted, "U", QStringLiteral("DROP TABLE ") + quoted);
            continue;
        }
        const ModuleFacts& module = facts_.modules[*node - tables];
        drop(module.quoted(), module.type.toLatin1().constData(),
             QStringLiteral("DROP ") + wordFor(module).toUpper() + u' ' + module.quoted());
    }
    if (isWhole()) {
        for (const SynonymFacts& one : facts_.synonyms) {
            const QString quoted = quotedName(one.schema, one.name);
            drop(quoted, "SN", QStringLiteral("DROP SYNONYM ") + quoted);
        }
        for (const SequenceFacts& one : facts_.sequences) {
            const QString quoted = quotedName(one.schema, one.name);
            drop(quoted, "SO", QStringLiteral("DROP SEQUENCE ") + quoted);
        }
        for (const bool tableTypes : {true, false})
            for (const UserTypeFacts& type : facts_.types)
                if (type.table.has_value() == tableTypes) {
                    const QString quoted = quotedName(type.schema, type.name);
                    batches += QStringLiteral("IF TYPE_ID(%1) IS NOT NULL DROP TYPE %2")
                                   .arg(unicodeLiteral(quoted), quoted);
                }
        for (const ModuleFacts& module : facts_.modules)
            if (kindOf(module) == ObjectType(0))
                drop(module.quoted(), module.type.toLatin1().constData(),
                     QStringLiteral("DROP ") + wordFor(module).toUpper() + u' ' + module.quoted());
    }
    unit(QStringLiteral("drops"), {}, batches);
}

CreateScript ScriptMaker::make() {
    chooseObjects();
    order();
    dropUnit();
    schemaUnit();
    looseModules();
    typeUnits();
    sequenceUnits();
    const size_t tables = facts_.tables.size();
    for (const size_t node : ordered_)
        if (node < tables)
            tableUnit(facts_.tables[node]);
        else
            moduleUnit(facts_.modules[node - tables]);
    keyUnits(facts_.tables, false);
    keyUnits(facts_.indexedViews, true);
    constraintUnits();
    for (size_t i = 0; i < facts_.modules.size(); ++i)
        if (wantsModule(i) && kindOf(facts_.modules[i]) == ObjectType::Trigger)
            moduleUnit(facts_.modules[i]);
    if (isWhole()) {
        QStringList batches;
        for (const QString& beyond : facts_.beyond)
            missing(beyond + QStringLiteral(" isn't scripted."), batches);
        unit(QStringLiteral("not scripted"), {}, batches);
    }
    return std::move(script_);
}

}  // namespace

QString CreateScript::text(const QString& heading) const {
    QString whole = heading;
    for (const ScriptUnit& unit : units) whole += unit.text;
    return whole;
}

CreateScript makeCreateScript(const DatabaseFacts& facts, const CreateScriptChoice& choice) {
    return ScriptMaker(facts, choice).make();
}

std::vector<ObjectRef> scriptableObjects(const DatabaseFacts& facts) {
    std::vector<ObjectRef> objects;
    for (const TableFacts& table : facts.tables) {
        objects.push_back(refOf(table));
        for (const ConstraintFacts& key : table.foreignKeys) objects.push_back(refOf(key));
        for (const IndexFacts& index : table.indexes)
            if (isListedConstraint(index)) objects.push_back(refOf(index, table));
    }
    for (const ModuleFacts& module : facts.modules)
        if (kindOf(module) != ObjectType(0)) objects.push_back(refOf(module));
    return objects;
}

QString createScriptHeading(const QString& database, const QString& lineBreak) {
    const QStringList lines = {
        commentLine(QStringLiteral("Objects of database ") + quoteName(database)),
        QStringLiteral("SET ANSI_NULLS, ANSI_PADDING, ANSI_WARNINGS, ARITHABORT, "
                       "CONCAT_NULL_YIELDS_NULL, QUOTED_IDENTIFIER ON"),
        QStringLiteral("SET NUMERIC_ROUNDABORT OFF"),
        QStringLiteral("GO"),
    };
    return lines.join(lineBreak) + lineBreak;
}

}  // namespace zov
