#include "structcompare/runnable_update.h"

#include "data/script_tokens.h"
#include "data/sql_names.h"
#include "scripting/create_script.h"
#include "scripting/module_texts.h"
#include "scripting/table_statements.h"
#include "structcompare/column_update.h"

#include <QSet>

#include <algorithm>

namespace zov {
namespace {

QString warning(const QString& text) {
    return commentLine(QStringLiteral("WARNING: ") + text + u'.');
}

bool mentionsAny(const QString& text, const QSet<QString>& lowerNames) {
    for (const ScriptToken& token : tokensOf(text))
        if (lowerNames.contains(token.text.toLower())) return true;
    return false;
}

/// Works out the changes of one table. The target's columns are paired with the source's by name:
/// to the letter, or whatever the case where that leaves one.
class UpdateMaker {
 public:
    UpdateMaker(const UpdateFacts& facts, const QString& lineBreak)
        : source_(facts.source),
          target_(facts.target),
          hangers_(facts.hangers),
          lineBreak_(lineBreak),
          table_(facts.target.quoted()) {}
    RunnableUpdate make();

 private:
    struct Pair {
        const ColumnFacts* source = nullptr;
        const ColumnFacts* target = nullptr;
        ColumnUpdate update = ColumnUpdate::Nothing;
    };
    void pairColumns();
    bool needsRebuild() const;
    const ColumnFacts* targetOf(const ColumnFacts& column) const;
    void noteTouched();
    bool isTouched(const QStringList& columns) const;
    bool isTouched(const IndexFacts& index) const;
    /// The target's index goes on as it is.
    bool keeps(const IndexFacts& index) const;
    bool keeps(const ConstraintFacts& constraint) const;
    bool keepsDefault(const Pair& pair) const;
    bool referencedKeyGoes(const ConstraintFacts& key) const;

    void add(const QString& statement, const QString& warned = {});
    void add(const QStringList& statements) {
        for (const QString& one : statements) add(one);
    }
    void dropHanging();
    void changeColumns();
    void addColumn(const ColumnFacts& column);
    void bindColumns();
    void addHanging();
    void rebuild();
    void copyRows(const QString& fresh);

    const TableFacts& source_;
    const TableFacts& target_;
    const TableHangers& hangers_;
    const QString lineBreak_;
    const QString table_;
    std::vector<Pair> pairs_;                  ///< in the source's order
    std::vector<const ColumnFacts*> dropped_;  ///< of the target
    QSet<QString> touched_;                    ///< lower-cased names of target columns that change
    std::vector<QString> droppedReferences_;   ///< what makes other tables' keys again
    RunnableUpdate result_;
};

void UpdateMaker::add(const QString& statement, const QString& warned) {
    QString text;
    for (const QString& one : warned.split(QStringLiteral("; "), Qt::SkipEmptyParts))
        text += warning(one) + lineBreak_;
    result_.statements += text + statement;
}

const ColumnFacts* UpdateMaker::targetOf(const ColumnFacts& column) const {
    if (const ColumnFacts* same = target_.column(column.name)) return same;
    const ColumnFacts* found = nullptr;
    for (const ColumnFacts& one : target_.columns) {
        if (one.name.compare(column.name, Qt::CaseInsensitive) != 0 || source_.column(one.name))
            continue;
        if (found) return nullptr;
        found = &one;
    }
    return found;
}

void UpdateMaker::pairColumns() {
    QSet<const ColumnFacts*> paired;
    for (const ColumnFacts& column : source_.columns) {
        Pair pair{&column, targetOf(column), ColumnUpdate::Nothing};
        if (paired.contains(pair.target)) pair.target = nullptr;
        if (pair.target) {
            paired.insert(pair.target);
            pair.update = updateOf(column, *pair.target);
        }
        pairs_.push_back(pair);
    }
    for (const ColumnFacts& column : target_.columns)
        if (!paired.contains(&column)) dropped_.push_back(&column);
}

// A computed column that reads one which changes has to go for the while, and so on.
void UpdateMaker::noteTouched() {
    for (const Pair& pair : pairs_)
        if (pair.target &&
            (pair.update != ColumnUpdate::Nothing || pair.target->name != pair.source->name))
            touched_.insert(pair.target->name.toLower());
    for (const ColumnFacts* column : dropped_) touched_.insert(column->name.toLower());
    for (bool more = true; more;) {
        more = false;
        for (Pair& pair : pairs_) {
            if (!pair.target || pair.target->computed.isEmpty() ||
                touched_.contains(pair.target->name.toLower()) ||
                !mentionsAny(pair.target->computed, touched_))
                continue;
            if (pair.update == ColumnUpdate::Nothing) pair.update = ColumnUpdate::Replace;
            touched_.insert(pair.target->name.toLower());
            more = true;
        }
    }
}

bool UpdateMaker::isTouched(const QStringList& columns) const {
    return std::any_of(columns.begin(), columns.end(),
                       [&](const QString& name) { return touched_.contains(name.toLower()); });
}

bool UpdateMaker::isTouched(const IndexFacts& index) const {
    for (const IndexColumnFacts& key : index.keys)
        if (touched_.contains(key.name.toLower())) return true;
    return isTouched(index.included) || mentionsAny(index.filter, touched_);
}

bool UpdateMaker::keeps(const IndexFacts& index) const {
    if (isTouched(index)) return false;
    return std::any_of(source_.indexes.begin(), source_.indexes.end(), [&](const IndexFacts& one) {
        return one.name == index.name && one.isDisabled == index.isDisabled &&
               createIndexStatement(one, table_) == createIndexStatement(index, table_);
    });
}

bool UpdateMaker::keeps(const ConstraintFacts& constraint) const {
    if (isTouched(constraint.columns) || mentionsAny(constraint.check, touched_)) return false;
    const auto& others = constraint.check.isEmpty() ? source_.foreignKeys : source_.checks;
    return std::any_of(others.begin(), others.end(), [&](const ConstraintFacts& one) {
        return createConstraintStatements(one, table_) ==
               createConstraintStatements(constraint, table_);
    });
}

bool UpdateMaker::keepsDefault(const Pair& pair) const {
    return pair.target && pair.update == ColumnUpdate::Nothing &&
           pair.source->defaultName == pair.target->defaultName &&
           pair.source->defaultText == pair.target->defaultText;
}

// A foreign key of another table stands on the key or unique index over its referenced columns.
bool UpdateMaker::referencedKeyGoes(const ConstraintFacts& key) const {
    if (isTouched(key.referencedColumns)) return true;
    QStringList wanted = key.referencedColumns;
    wanted.sort();
    return std::any_of(target_.indexes.begin(), target_.indexes.end(), [&](const IndexFacts& one) {
        QStringList columns;
        for (const IndexColumnFacts& column : one.keys) columns += column.name;
        columns.sort();
        return one.isUnique && columns == wanted && !keeps(one);
    });
}

void UpdateMaker::dropHanging() {
    const bool all = result_.isRebuilt;
    for (const TableHangers::ForeignKey& other : hangers_.referencedBy) {
        if (!all && !referencedKeyGoes(other.key)) continue;
        add(dropConstraintStatement(other.key.name, other.quotedTable));
        for (const QString& again : createConstraintStatements(other.key, other.quotedTable))
            droppedReferences_.push_back(again);
    }
    // What goes with the table needs no statement of its own, but for keys to the table itself.
    if (all) return;
    for (const ConstraintFacts& key : target_.foreignKeys)
        if (!keeps(key)) add(dropConstraintStatement(key.name, table_));
    for (const ConstraintFacts& check : target_.checks)
        if (!keeps(check)) add(dropConstraintStatement(check.name, table_));
    // The clustered index last: the others stand on it.
    for (auto index = target_.indexes.rbegin(); index != target_.indexes.rend(); ++index)
        if (!keeps(*index)) add(dropIndexStatement(*index, table_));
    for (const Pair& pair : pairs_)
        if (pair.target && !pair.target->defaultName.isEmpty() && !keepsDefault(pair))
            add(dropConstraintStatement(pair.target->defaultName, table_));
    for (const ColumnFacts* column : dropped_)
        if (!column->defaultName.isEmpty())
            add(dropConstraintStatement(column->defaultName, table_));
}

void UpdateMaker::addColumn(const ColumnFacts& column) {
    const QString addTo = QStringLiteral("ALTER TABLE ") + table_ + QStringLiteral(" ADD ");
    const bool needsFiller = column.computed.isEmpty() && !column.nullable &&
                             column.defaultName.isEmpty() && !column.isIdentity &&
                             !column.isRowVersion;
    if (!needsFiller) return add(addTo + columnDefinition(column));
    ColumnFacts filled = column;
    filled.defaultName = QStringLiteral("DF_for_now_") + column.name.left(100);
    filled.defaultText = u'(' + fillerOf(column) + u')';
    add(addTo + columnDefinition(filled), QStringLiteral("rows that are there get %1 in %2")
                                              .arg(fillerOf(column), quoteName(column.name)));
    add(dropConstraintStatement(filled.defaultName, table_));
}

void UpdateMaker::changeColumns() {
    const auto drop = [&](const ColumnFacts& column, const QString& warned) {
        add(QStringLiteral("ALTER TABLE ") + table_ + QStringLiteral(" DROP COLUMN ") +
                quoteName(column.name),
            warned);
    };
    const auto isComputed = [](const ColumnFacts* column) { return !column->computed.isEmpty(); };
    // Computed columns go first and come last: they read the others.
    for (const Pair& pair : pairs_)
        if (pair.update == ColumnUpdate::Replace && isComputed(pair.target)) drop(*pair.target, {});
    for (const ColumnFacts* column : dropped_)
        if (isComputed(column)) drop(*column, {});
    for (const Pair& pair : pairs_) {
        if (!pair.target || pair.target->name == pair.source->name ||
            pair.update == ColumnUpdate::Replace)
            continue;
        add(QStringLiteral("EXEC sp_rename %1, %2, N'COLUMN'")
                .arg(unicodeLiteral(table_ + u'.' + quoteName(pair.target->name)),
                     unicodeLiteral(pair.source->name)));
    }
    for (const Pair& pair : pairs_)
        if (pair.update == ColumnUpdate::Alter)
            add(QStringLiteral("ALTER TABLE %1 ALTER COLUMN %2 ")
                        .arg(table_, quoteName(pair.source->name)) +
                    columnTypeAndNull(*pair.source),
                lossOf(*pair.target, *pair.source));
    for (const Pair& pair : pairs_)
        if (!pair.target && !isComputed(pair.source)) addColumn(*pair.source);
    for (const Pair& pair : pairs_) {
        if (pair.update != ColumnUpdate::Replace || isComputed(pair.target)) continue;
        drop(*pair.target, lossOf(*pair.target, *pair.source));
        if (!isComputed(pair.source)) addColumn(*pair.source);
    }
    for (const ColumnFacts* column : dropped_)
        if (!isComputed(column))
            drop(*column, QStringLiteral("the values of %1 are lost").arg(quoteName(column->name)));
    for (const Pair& pair : pairs_)
        if (isComputed(pair.source) && (!pair.target || pair.update == ColumnUpdate::Replace))
            addColumn(*pair.source);
}

void UpdateMaker::bindColumns() {
    for (const Pair& pair : pairs_) {
        const QString column = table_ + u'.' + quoteName(pair.source->name);
        const bool fresh =
            result_.isRebuilt || !pair.target || pair.update == ColumnUpdate::Replace;
        const auto changes = [&](const QString ColumnFacts::*bound) {
            return fresh || pair.source->*bound != pair.target->*bound;
        };
        const auto unbind = [&](const QString ColumnFacts::*bound, const char* procedure) {
            if (!fresh && changes(bound) && !(pair.target->*bound).isEmpty() &&
                (pair.source->*bound).isEmpty())
                add(QStringLiteral("EXEC %1 %2")
                        .arg(QLatin1StringView(procedure), unicodeLiteral(column)));
        };
        unbind(&ColumnFacts::boundDefault, "sp_unbindefault");
        unbind(&ColumnFacts::boundRule, "sp_unbindrule");
        add(bindStatements(
            changes(&ColumnFacts::boundDefault) ? pair.source->boundDefault : QString(),
            changes(&ColumnFacts::boundRule) ? pair.source->boundRule : QString(), column));
    }
}

void UpdateMaker::addHanging() {
    const bool all = result_.isRebuilt;
    for (const Pair& pair : pairs_) {
        // A column that was added brought its default along.
        const bool added = !all && (!pair.target || pair.update == ColumnUpdate::Replace);
        if (!pair.source->defaultName.isEmpty() && !added && (all || !keepsDefault(pair)))
            add(addDefaultStatement(*pair.source, table_));
    }
    bindColumns();
    const auto stands = [&](const auto& wanted, const auto& targets, const auto& same) {
        return !all && std::any_of(targets.begin(), targets.end(), [&](const auto& one) {
            return keeps(one) && same(one, wanted);
        });
    };
    for (const IndexFacts& index : source_.indexes) {
        if (stands(index, target_.indexes,
                   [](const IndexFacts& a, const IndexFacts& b) { return a.name == b.name; }))
            continue;
        const QString statement = createIndexStatement(index, table_);
        if (statement.isEmpty()) {
            result_.missing +=
                QStringLiteral("Index %1: its kind isn't scripted.").arg(quoteName(index.name));
            continue;
        }
        add(statement);
        if (index.isDisabled)
            add(QStringLiteral("ALTER INDEX %1 ON %2 DISABLE").arg(quoteName(index.name), table_));
    }
    const auto sameName = [](const ConstraintFacts& a, const ConstraintFacts& b) {
        return a.name == b.name;
    };
    for (const ConstraintFacts& check : source_.checks)
        if (!stands(check, target_.checks, sameName))
            add(createConstraintStatements(check, table_));
    for (const ConstraintFacts& key : source_.foreignKeys)
        if (!stands(key, target_.foreignKeys, sameName))
            add(createConstraintStatements(key, table_));
    for (const QString& again : droppedReferences_) add(again);
}

// Computed columns and row versions make their values themselves.
void UpdateMaker::copyRows(const QString& fresh) {
    QStringList columns, values;
    bool keepsIdentity = false;
    QString warned;
    const auto warn = [&](const QString& text) {
        if (!text.isEmpty()) warned += (warned.isEmpty() ? QString() : QStringLiteral("; ")) + text;
    };
    for (const Pair& pair : pairs_) {
        const ColumnFacts& to = *pair.source;
        if (!to.computed.isEmpty() || to.isRowVersion || to.isColumnSet) continue;
        QString value;
        if (pair.target && convertsByItself(*pair.target, to)) {
            value = quoteName(pair.target->name);
            keepsIdentity = keepsIdentity || to.isIdentity;
            warn(lossOf(*pair.target, to));
        } else {
            if (pair.target) warn(lossOf(*pair.target, to));
            if (to.isIdentity || to.nullable) continue;
            value = to.defaultText.isEmpty() ? fillerOf(to) : to.defaultText;
            warn(QStringLiteral("rows that are there get %1 in %2").arg(value, quoteName(to.name)));
        }
        columns += quoteName(to.name);
        values += value;
    }
    for (const ColumnFacts* column : dropped_)
        if (column->computed.isEmpty())
            warn(QStringLiteral("the values of %1 are lost").arg(quoteName(column->name)));
    if (columns.isEmpty()) {
        warn(QStringLiteral("the rows are lost: no column of theirs stays"));
        return add(QString(), warned);
    }
    const auto identityInsert = [&](const char* state) {
        if (keepsIdentity)
            add(QStringLiteral("SET IDENTITY_INSERT %1 %2").arg(fresh, QLatin1StringView(state)));
    };
    identityInsert("ON");
    const QString comma = QStringLiteral(", ");
    add(QStringLiteral("INSERT INTO %1 (%2) SELECT %3 FROM %4 WITH (HOLDLOCK, TABLOCKX)")
            .arg(fresh, columns.join(comma), values.join(comma), table_),
        warned);
    identityInsert("OFF");
}

void UpdateMaker::rebuild() {
    const QString freshName = QStringLiteral("zov_new_") + target_.name.left(100);
    const QString fresh = quotedName(target_.schema, freshName);
    dropHanging();
    // Constraints come when the old ones have gone: their names are the schema's.
    TableFacts bare = source_;
    for (ColumnFacts& column : bare.columns) column.defaultName.clear();
    add(createTableStatement(bare, lineBreak_, fresh),
        QStringLiteral("the table is made anew: permissions, extended properties and statistics of "
                       "the old one have to be given again"));
    copyRows(fresh);
    add(QStringLiteral("DROP TABLE ") + table_);
    add(QStringLiteral("EXEC sp_rename %1, %2")
            .arg(unicodeLiteral(fresh), unicodeLiteral(target_.name)));
    addHanging();
    for (const ModuleFacts& trigger : hangers_.triggers) {
        const QString statement = moduleStatement(trigger);
        if (statement.isEmpty()) {
            result_.missing += QStringLiteral(
                                   "Trigger %1: its text can't be read, and it goes with "
                                   "the old table.")
                                   .arg(trigger.quoted());
            continue;
        }
        add(QStringLiteral("EXEC (%1)").arg(unicodeLiteral(statement)));
        if (trigger.isDisabled)
            add(QStringLiteral("ALTER TABLE %1 DISABLE TRIGGER %2")
                    .arg(table_, quoteName(trigger.name)));
    }
    QString batch = QStringLiteral("SET XACT_ABORT ON") + lineBreak_ +
                    QStringLiteral("BEGIN TRANSACTION") + lineBreak_;
    for (const QString& statement : result_.statements)
        if (!statement.isEmpty()) batch += statement + lineBreak_;
    result_.statements = {batch + QStringLiteral("COMMIT TRANSACTION")};
}

bool UpdateMaker::needsRebuild() const {
    // A table has one identity column and one row version: another can't be added beside the old.
    const auto takesPlace = [&](const ColumnFacts& added, bool ColumnFacts::*only) {
        return added.*only && std::any_of(target_.columns.begin(), target_.columns.end(),
                                          [&](const ColumnFacts& one) { return one.*only; });
    };
    return std::any_of(pairs_.begin(), pairs_.end(), [&](const Pair& pair) {
        return pair.update == ColumnUpdate::Rebuild ||
               (!pair.target && (takesPlace(*pair.source, &ColumnFacts::isIdentity) ||
                                 takesPlace(*pair.source, &ColumnFacts::isRowVersion)));
    });
}

RunnableUpdate UpdateMaker::make() {
    pairColumns();
    result_.isRebuilt = needsRebuild();
    for (const QString& beyond : source_.beyond)
        result_.missing +=
            QStringLiteral("Table %1: %2 isn't scripted.").arg(source_.quoted(), beyond);
    if (result_.isRebuilt) {
        rebuild();
    } else {
        noteTouched();
        dropHanging();
        changeColumns();
        addHanging();
    }
    return std::move(result_);
}

}  // namespace

bool readUpdateFacts(const UpdateSide& source, const UpdateSide& target, UpdateFacts& facts) {
    return readTableFacts(source.server, source.database, source.table.id, facts.source) &&
           readTableFacts(target.server, target.database, target.table.id, facts.target) &&
           readTableHangers(target.server, target.database, target.table.id, facts.hangers);
}

RunnableUpdate makeRunnableUpdate(const UpdateFacts& facts, const QString& lineBreak) {
    return UpdateMaker(facts, lineBreak).make();
}

QString RunnableUpdate::text(const QString& database, const QString& lineBreak) const {
    if (statements.isEmpty() && missing.isEmpty()) return {};
    QString whole = createScriptHeading(database, lineBreak);
    for (const QString& sentence : missing)
        whole += commentLine(QStringLiteral("NOT IN THIS SCRIPT: ") + sentence) + lineBreak;
    for (const QString& statement : statements)
        whole += statement + lineBreak + QStringLiteral("GO") + lineBreak;
    return whole;
}

static QStringList namesOf(const TableFacts& table) {
    QStringList names;
    for (const ColumnFacts& column : table.columns) names += column.name;
    return names;
}

bool makeTableUpdate(const UpdateSide& source, const UpdateSide& target, const QString& lineBreak,
                     TableUpdate& update) {
    UpdateFacts facts;
    if (!GenerateUpdateScript(source, target, update.listed) ||
        !readUpdateFacts(source, target, facts))
        return false;
    const RunnableUpdate made = makeRunnableUpdate(facts, lineBreak);
    update.runnable = made.text(target.database, lineBreak);
    update.missing = made.missing;
    update.differs = !update.listed.isEmpty() || !update.runnable.isEmpty();
    if (update.differs && update.listed.isEmpty())
        update.note = QStringLiteral(
            "The tables differ in what this list of changes doesn't hold: "
            "the runnable statements show it.");
    else if (!update.differs && namesOf(facts.source) != namesOf(facts.target))
        update.note =
            QStringLiteral("The columns stand in another order, which no script changes.");
    return true;
}

}  // namespace zov
