#include "scripting/table_statements.h"

#include "data/sql_names.h"

namespace zov {
namespace {

QString keyColumns(const IndexFacts& index) {
    QStringList columns;
    for (const IndexColumnFacts& key : index.keys)
        columns += quoteName(key.name) + (key.isDescending ? QStringLiteral(" DESC") : QString());
    return u'(' + columns.join(QStringLiteral(", ")) + u')';
}

QString quotedList(const QStringList& names) {
    QStringList quoted;
    for (const QString& name : names) quoted += quoteName(name);
    return u'(' + quoted.join(QStringLiteral(", ")) + u')';
}

/// " WITH (...)" with what isn't the server's own choice.
QString indexOptions(const IndexFacts& index) {
    QStringList options;
    if (index.isPadded) options += QStringLiteral("PAD_INDEX = ON");
    if (index.fillFactor > 0 && index.fillFactor < 100)
        options += QStringLiteral("FILLFACTOR = %1").arg(index.fillFactor);
    if (index.ignoresDuplicates) options += QStringLiteral("IGNORE_DUP_KEY = ON");
    if (!index.rowLocks) options += QStringLiteral("ALLOW_ROW_LOCKS = OFF");
    if (!index.pageLocks) options += QStringLiteral("ALLOW_PAGE_LOCKS = OFF");
    return options.isEmpty()
               ? QString()
               : QStringLiteral(" WITH (") + options.join(QStringLiteral(", ")) + u')';
}

QString clustering(const IndexFacts& index) {
    return index.kind == IndexFacts::Clustered ? QStringLiteral("CLUSTERED")
                                               : QStringLiteral("NONCLUSTERED");
}

QString keyKind(const IndexFacts& index) {
    return index.isPrimaryKey ? QStringLiteral("PRIMARY KEY ") : QStringLiteral("UNIQUE ");
}

}  // namespace

QString commentLine(QString text) {
    text.replace(u'\r', u' ').replace(u'\n', u' ');
    return QStringLiteral("-- ") + text;
}

QString unicodeLiteral(const QString& text) {
    QString doubled = text;
    doubled.replace(u'\'', QLatin1StringView("''"));
    return QStringLiteral("N'") + doubled + u'\'';
}

QString columnTypeAndNull(const ColumnFacts& column) {
    QString text = column.type;
    if (!column.collation.isEmpty()) text += QStringLiteral(" COLLATE ") + column.collation;
    if (column.isSparse) text += QStringLiteral(" SPARSE");
    return text + (column.nullable ? QStringLiteral(" NULL") : QStringLiteral(" NOT NULL"));
}

QString columnDefinition(const ColumnFacts& column) {
    QString text = quoteName(column.name) + u' ';
    if (!column.computed.isEmpty()) {
        text += QStringLiteral("AS ") + column.computed;
        if (column.isPersisted) {
            text += QStringLiteral(" PERSISTED");
            if (!column.nullable) text += QStringLiteral(" NOT NULL");
        }
        return text;
    }
    text += column.type;
    if (!column.collation.isEmpty()) text += QStringLiteral(" COLLATE ") + column.collation;
    if (column.isColumnSet) return text + QStringLiteral(" COLUMN_SET FOR ALL_SPARSE_COLUMNS");
    if (column.isSparse) text += QStringLiteral(" SPARSE");
    if (!column.mask.isEmpty())
        text += QStringLiteral(" MASKED WITH (FUNCTION = '%1')")
                    .arg(QString(column.mask).replace(u'\'', QLatin1StringView("''")));
    if (column.isIdentity) {
        text += QStringLiteral(" IDENTITY(%1,%2)").arg(column.seed, column.increment);
        if (column.notForReplication) text += QStringLiteral(" NOT FOR REPLICATION");
    }
    if (column.isRowGuid) text += QStringLiteral(" ROWGUIDCOL");
    text += column.nullable ? QStringLiteral(" NULL") : QStringLiteral(" NOT NULL");
    if (!column.defaultName.isEmpty())
        text += QStringLiteral(" CONSTRAINT ") + quoteName(column.defaultName) +
                QStringLiteral(" DEFAULT ") + column.defaultText;
    return text;
}

QString createTableStatement(const TableFacts& table, const QString& lineBreak,
                             const QString& name) {
    QStringList lines;
    for (const ColumnFacts& column : table.columns)
        lines += QStringLiteral("    ") + columnDefinition(column);
    return QStringLiteral("CREATE TABLE ") + (name.isEmpty() ? table.quoted() : name) +
           QStringLiteral(" (") + lineBreak + lines.join(u',' + lineBreak) + lineBreak + u')';
}

QString createIndexStatement(const IndexFacts& index, const QString& quotedTable) {
    const QString name = quoteName(index.name);
    switch (index.kind) {
        case IndexFacts::Clustered:
        case IndexFacts::Nonclustered:
            break;
        case IndexFacts::ClusteredColumnstore:
            return QStringLiteral("CREATE CLUSTERED COLUMNSTORE INDEX ") + name +
                   QStringLiteral(" ON ") + quotedTable;
        case IndexFacts::Columnstore:
            return QStringLiteral("CREATE NONCLUSTERED COLUMNSTORE INDEX ") + name +
                   QStringLiteral(" ON ") + quotedTable + u' ' + quotedList(index.included) +
                   (index.filter.isEmpty() ? QString() : QStringLiteral(" WHERE ") + index.filter);
        default:
            return {};
    }
    if (index.isConstraint())
        return QStringLiteral("ALTER TABLE ") + quotedTable + QStringLiteral(" ADD CONSTRAINT ") +
               name + u' ' + keyKind(index) + clustering(index) + u' ' + keyColumns(index) +
               indexOptions(index);
    QString text = QStringLiteral("CREATE ");
    if (index.isUnique) text += QStringLiteral("UNIQUE ");
    text += clustering(index) + QStringLiteral(" INDEX ") + name + QStringLiteral(" ON ") +
            quotedTable + u' ' + keyColumns(index);
    if (!index.included.isEmpty()) text += QStringLiteral(" INCLUDE ") + quotedList(index.included);
    if (!index.filter.isEmpty()) text += QStringLiteral(" WHERE ") + index.filter;
    return text + indexOptions(index);
}

QString dropIndexStatement(const IndexFacts& index, const QString& quotedTable) {
    if (index.isConstraint()) return dropConstraintStatement(index.name, quotedTable);
    return QStringLiteral("DROP INDEX ") + quoteName(index.name) + QStringLiteral(" ON ") +
           quotedTable;
}

QStringList createConstraintStatements(const ConstraintFacts& constraint,
                                       const QString& quotedTable) {
    const QString alter = QStringLiteral("ALTER TABLE ") + quotedTable;
    QString text = alter;
    if (constraint.isNotTrusted || constraint.isDisabled) text += QStringLiteral(" WITH NOCHECK");
    text += QStringLiteral(" ADD CONSTRAINT ") + quoteName(constraint.name);
    const QString replication =
        constraint.notForReplication ? QStringLiteral(" NOT FOR REPLICATION") : QString();
    if (!constraint.check.isEmpty()) {
        text += QStringLiteral(" CHECK") + replication + u' ' + constraint.check;
    } else {
        text += QStringLiteral(" FOREIGN KEY ") + quotedList(constraint.columns) +
                QStringLiteral(" REFERENCES ") +
                quotedName(constraint.referencedSchema, constraint.referencedTable) + u' ' +
                quotedList(constraint.referencedColumns);
        if (!constraint.onDelete.isEmpty())
            text += QStringLiteral(" ON DELETE ") + constraint.onDelete;
        if (!constraint.onUpdate.isEmpty())
            text += QStringLiteral(" ON UPDATE ") + constraint.onUpdate;
        text += replication;
    }
    QStringList statements{text};
    if (constraint.isDisabled)
        statements += alter + QStringLiteral(" NOCHECK CONSTRAINT ") + quoteName(constraint.name);
    return statements;
}

QString dropConstraintStatement(const QString& name, const QString& quotedTable) {
    return QStringLiteral("ALTER TABLE ") + quotedTable + QStringLiteral(" DROP CONSTRAINT ") +
           quoteName(name);
}

QString addDefaultStatement(const ColumnFacts& column, const QString& quotedTable) {
    return QStringLiteral("ALTER TABLE ") + quotedTable + QStringLiteral(" ADD CONSTRAINT ") +
           quoteName(column.defaultName) + QStringLiteral(" DEFAULT ") + column.defaultText +
           QStringLiteral(" FOR ") + quoteName(column.name);
}

QStringList bindStatements(const QString& boundDefault, const QString& boundRule,
                           const QString& quotedTarget) {
    QStringList statements;
    const QString target = unicodeLiteral(quotedTarget);
    if (!boundDefault.isEmpty())
        statements +=
            QStringLiteral("EXEC sp_bindefault %1, %2").arg(unicodeLiteral(boundDefault), target);
    if (!boundRule.isEmpty())
        statements +=
            QStringLiteral("EXEC sp_bindrule %1, %2").arg(unicodeLiteral(boundRule), target);
    return statements;
}

QStringList tableTypeLines(const TableFacts& table) {
    QStringList lines;
    // A table type's constraints have names that nobody gave.
    for (ColumnFacts column : table.columns) {
        QString text;
        if (!column.defaultText.isEmpty()) text = QStringLiteral(" DEFAULT ") + column.defaultText;
        column.defaultName.clear();
        lines += columnDefinition(column) + text;
    }
    for (const IndexFacts& index : table.indexes) {
        if (index.isConstraint())
            lines +=
                keyKind(index) + clustering(index) + u' ' + keyColumns(index) + indexOptions(index);
        else
            lines += QStringLiteral("INDEX ") + quoteName(index.name) + u' ' + clustering(index) +
                     u' ' + keyColumns(index);
    }
    for (const ConstraintFacts& check : table.checks)
        lines += QStringLiteral("CHECK ") + check.check;
    return lines;
}

}  // namespace zov
