#include "verdict_oracle.h"

#include "data/mdlData.h"

#include <gtest/gtest.h>

#include <QSet>

#include <algorithm>

namespace zov::test {
namespace {

/// A query's rows as texts; a null is a null QString.
using Row = std::vector<QString>;
std::vector<Row> rowsOf(const ServerInfo& server, const QString& database, const QString& sql) {
    std::vector<Row> rows;
    std::unique_ptr<Recordset> rs;
    if (GetAdoRS(server, adCmdText, sql, rs, database) == -1 || !rs) {
        ADD_FAILURE() << "can't ask: " << sql.toStdString();
        return rows;
    }
    for (; !rs->isEof(); rs->MoveNext()) {
        Row& row = rows.emplace_back();
        for (int field = 0; field < rs->fieldCount(); ++field)
            row.push_back(rs->field(field).isNull() ? QString() : rs->field(field).text());
    }
    return rows;
}

QString key(const QString& schema, const QString& name, const QString& table = {}) {
    return QStringList{schema, name, table}.join(QChar(u'\0'));
}

class Reader {
 public:
    Reader(const ServerInfo& server, const QString& database)
        : server_(server), database_(database) {}

    CatalogueTexts read() {
        readModules();
        readTables();
        readRelationships();
        readConstraints();
        return std::move(result_);
    }

 private:
    std::vector<Row> rows(const char* sql) {
        return rowsOf(server_, database_, QString::fromLatin1(sql));
    }

    void add(ObjectType kind, const QString& schema, const QString& name,
             std::optional<QString> text, const QString& table = {}) {
        result_.objects[kind][key(schema, name, table)] = {shown(kind, schema, name), text};
    }
    /// Names that a kind's list holds twice are shown with their schema.
    QString shown(ObjectType kind, const QString& schema, const QString& name) {
        return counts_[kind].value(name) > 1 ? schema + u'.' + name : name;
    }

    void readModules() {
        const auto kindOf = [](const QString& type) -> ObjectType {
            if (type == u"P") return ObjectType::Procedure;
            if (type == u"V") return ObjectType::View;
            if (type == u"TR") return ObjectType::Trigger;
            return ObjectType::Function;
        };
        const auto modules = rows(
            "SELECT s.name, o.name, o.type, m.definition FROM sys.objects o INNER JOIN sys.schemas "
            "s "
            "ON s.schema_id = o.schema_id INNER JOIN sys.sql_modules m ON m.object_id = "
            "o.object_id "
            "WHERE o.type IN ('P', 'V', 'TR', 'FN', 'IF', 'TF')");
        for (const Row& row : modules) ++counts_[kindOf(row[2].trimmed())][row[1]];
        for (const Row& row : modules) {
            std::optional<QString> text;
            if (!row[3].isNull()) {
                QString trimmed = row[3];
                const auto isBlank = [](QChar c) {
                    return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
                };
                while (!trimmed.isEmpty() && isBlank(trimmed.front())) trimmed.remove(0, 1);
                while (!trimmed.isEmpty() && isBlank(trimmed.back())) trimmed.chop(1);
                text = trimmed;
            }
            add(kindOf(row[2].trimmed()), row[0], row[1], text);
        }
    }

    void readTables() {
        QMap<QString, QString> columns, indexes;  // by the table's id
        for (
            const Row& row : rows(
                "SELECT c.object_id, c.name, t.name, c.max_length, c.precision, c.scale, "
                "c.is_nullable, i.seed_value, i.increment_value, d.name, d.definition, ts.name "
                "FROM "
                "sys.columns c INNER JOIN sys.types t ON t.user_type_id = c.user_type_id INNER "
                "JOIN sys.schemas ts ON ts.schema_id = t.schema_id LEFT JOIN "
                "sys.identity_columns i ON i.object_id = c.object_id AND i.column_id = c.column_id "
                "LEFT JOIN sys.default_constraints d ON d.object_id = c.default_object_id ORDER BY "
                "c.object_id, c.column_id")) {
            QString& text = columns[row[0]];
            if (!text.isEmpty()) text += QStringLiteral("\r\n");
            text += columnLine(row);
        }
        QSet<QString> withChild;
        for (const Row& row :
             rows("SELECT parent_object_id FROM sys.objects WHERE parent_object_id <> 0"))
            withChild.insert(row[0]);
        QMap<QString, QString> lastIndex;
        for (const Row& row :
             rows("SELECT ic.object_id, i.index_id, i.name, c.name FROM sys.indexes i INNER JOIN "
                  "sys.index_columns ic ON ic.object_id = i.object_id AND ic.index_id = i.index_id "
                  "INNER JOIN sys.columns c ON c.object_id = ic.object_id AND c.column_id = "
                  "ic.column_id ORDER BY ic.object_id, i.index_id, ic.key_ordinal")) {
            QString& text = indexes[row[0]];
            if (lastIndex.value(row[0]) != row[1]) {
                lastIndex[row[0]] = row[1];
                const bool clustered = row[1] == u"1";
                const bool key = row[2].startsWith(u"pk", Qt::CaseInsensitive);
                text += !clustered
                            ? QStringLiteral("INDEX [") + row[2] + QStringLiteral("] (|)\r\n")
                        : key ? QStringLiteral("CONSTRAINT [") + row[2] +
                                    QStringLiteral("] PRIMARY KEY CLUSTERED (|)\r\n")
                              : QStringLiteral("CLUSTERED INDEX [") + row[2] +
                                    QStringLiteral("] (|)\r\n");
            }
            const qsizetype end = text.lastIndexOf(QStringLiteral("|)"));
            text.insert(end, (text[end - 1] == u'(' ? QString() : QStringLiteral(", ")) + u'[' +
                                 row[3] + u']');
        }
        const auto tables = rows(
            "SELECT s.name, o.name, o.object_id FROM sys.objects o INNER JOIN sys.schemas s ON "
            "s.schema_id = o.schema_id WHERE o.type = 'U'");
        for (const Row& row : tables) ++counts_[ObjectType::Table][row[1]];
        for (const Row& row : tables) {
            QString text = columns[row[2]];
            QString block = indexes[row[2]].replace(QStringLiteral("|)"), QStringLiteral(")"));
            if (withChild.contains(row[2]) && !block.isEmpty())
                text += QStringLiteral("\r\n\r\n") + block;
            add(ObjectType::Table, row[0], row[1], text);
            if (withChild.contains(row[2])) keyedTables_.insert(row[2], {row[0], row[1]});
        }
    }

    static QString columnLine(const Row& row) {
        const QString& type = row[2];
        QString line = u'[' + row[1] + QStringLiteral("] [") + type + QStringLiteral("] ");
        const int length = row[3].toInt();
        if (type == u"varchar" || type == u"char" || type == u"binary" || type == u"varbinary")
            line += QStringLiteral("(%1) ").arg(length);
        if (type == u"nvarchar" || type == u"nchar")
            line += QStringLiteral("(%1) ").arg(length < 0 ? length : length / 2);
        if (type == u"decimal" || type == u"numeric") {
            line.chop(1);
            line += u'(' + row[4] + u',' + row[5] + QStringLiteral(") ");
        }
        if (row[11] != u"sys") line += QStringLiteral("of ") + row[11] + u' ';
        if (!row[7].isNull())
            line += QStringLiteral("IDENTITY(") + row[7] + u',' + row[8] + QStringLiteral(") ");
        line += row[6] == u"True" ? QStringLiteral("NULL") : QStringLiteral("NOT NULL");
        if (!row[9].isNull())
            line +=
                QStringLiteral(" CONSTRAINT [") + row[9] + QStringLiteral("] DEFAULT ") + row[10];
        return line;
    }

    void readRelationships() {
        const auto keys = rows(
            "SELECT s.name, f.name, t.name, tc.name, r.name, rc.name, rs.name FROM "
            "sys.foreign_keys f INNER "
            "JOIN sys.schemas s ON s.schema_id = f.schema_id INNER JOIN sys.objects t ON "
            "t.object_id "
            "= f.parent_object_id INNER JOIN sys.objects r ON r.object_id = f.referenced_object_id "
            "INNER JOIN sys.schemas rs ON rs.schema_id = r.schema_id INNER JOIN "
            "sys.foreign_key_columns k ON k.constraint_object_id = f.object_id AND "
            "k.constraint_column_id = 1 INNER JOIN sys.columns tc ON tc.object_id = "
            "k.parent_object_id AND tc.column_id = k.parent_column_id INNER JOIN sys.columns rc ON "
            "rc.object_id = k.referenced_object_id AND rc.column_id = k.referenced_column_id");
        for (const Row& row : keys) ++counts_[ObjectType::Relationship][row[1]];
        for (const Row& row : keys)
            add(ObjectType::Relationship, row[0], row[1],
                QStringLiteral("TABLE ") + row[2] + QStringLiteral("\r\nCONSTRAINT [") + row[1] +
                    QStringLiteral("]\r\nFOREIGN KEY [") + row[3] +
                    QStringLiteral("]\r\nREFERENCES [") + row[6] + QStringLiteral("].[") + row[4] +
                    QStringLiteral("] [") + row[5] + u']');
    }

    void readConstraints() {
        const auto indexes = rows(
            "SELECT i.object_id, i.name, c.name FROM sys.indexes i INNER JOIN sys.index_columns ic "
            "ON ic.object_id = i.object_id AND ic.index_id = i.index_id AND ic.key_ordinal = 1 "
            "INNER "
            "JOIN sys.columns c ON c.object_id = ic.object_id AND c.column_id = ic.column_id WHERE "
            "i.index_id = 1 AND i.name LIKE 'pk%'");
        for (const Row& row : indexes)
            if (keyedTables_.contains(row[0])) ++counts_[ObjectType::Constraint][row[1]];
        for (const Row& row : indexes) {
            if (!keyedTables_.contains(row[0])) continue;
            const auto& [schema, table] = keyedTables_[row[0]];
            add(ObjectType::Constraint, schema, row[1],
                QStringLiteral("CONSTRAINT [") + row[1] +
                    QStringLiteral("] \r\nPRIMARY KEY CLUSTERED \r\nON COLUMN [") + row[2] +
                    QStringLiteral("]\r\nON TABLE [") + table + u']');
        }
    }

    const ServerInfo& server_;
    QString database_;
    CatalogueTexts result_;
    QMap<ObjectType, QMap<QString, int>> counts_;
    QMap<QString, std::pair<QString, QString>> keyedTables_;
};

}  // namespace

QString withoutOverlooked(const QString& text) {
    QString kept;
    for (qsizetype at = 0; at < text.size();) {
        const QChar c = text[at];
        const auto stands = [&](const char* sign) {
            return QStringView(text).mid(at).startsWith(QLatin1StringView(sign));
        };
        if (c == u'[' || c == u'"') {
            // A doubled closing sign only begins the name's next part.
            qsizetype end = text.indexOf(c == u'[' ? QChar(u']') : c, at + 1);
            if (end < 0) end = text.size() - 1;
            kept += QStringView(text).mid(at, end + 1 - at);
            at = end + 1;
            while (c == u'[' && at < text.size() && text[at] == u']') {
                end = text.indexOf(u']', at + 1);
                if (end < 0) end = text.size() - 1;
                kept += QStringView(text).mid(at, end + 1 - at);
                at = end + 1;
            }
        } else if (stands("/*")) {
            const qsizetype end = text.indexOf(QStringLiteral("*/"), at + 2);
            at = end < 0 ? text.size() : end + 2;
        } else if (stands("--")) {
            const qsizetype end = text.indexOf(u'\n', at);
            at = end < 0 ? text.size() : end;
        } else {
            kept += c;
            ++at;
        }
    }
    return kept.simplified();
}

bool mayPassForEqual(const QString& source, const QString& target) {
    if (withoutOverlooked(source) == withoutOverlooked(target)) return true;
    const auto sortedLines = [](const QString& text) {
        QStringList lines;
        for (const QString& line : text.split(u'\n'))
            if (!line.simplified().isEmpty()) lines += line.simplified();
        lines.sort();
        return lines;
    };
    return sortedLines(source) == sortedLines(target);
}

CatalogueTexts readCatalogue(const ServerInfo& server, const QString& database) {
    return Reader(server, database).read();
}

ExpectedVerdict expectedVerdict(const CatalogueTexts& source, const CatalogueTexts& target) {
    ExpectedVerdict verdict;
    QList<ObjectType> kinds = source.objects.keys() + target.objects.keys();
    std::sort(kinds.begin(), kinds.end());
    kinds.erase(std::unique(kinds.begin(), kinds.end()), kinds.end());
    for (const ObjectType kind : kinds) {
        const auto& ofSource = source.objects[kind];
        const auto& ofTarget = target.objects[kind];
        for (auto it = ofSource.begin(); it != ofSource.end(); ++it) {
            const auto other = ofTarget.find(it.key());
            if (other == ofTarget.end())
                verdict.onlyInSource[kind] += it->shown;
            else if (!it->text || !other->text)
                verdict.unreadable[kind] += it->shown;
            else if (*it->text != *other->text) {
                verdict.differing[kind] += it->shown;
                if (!mayPassForEqual(*it->text, *other->text))
                    verdict.differingAnyway[kind] += it->shown;
            }
        }
        for (auto it = ofTarget.begin(); it != ofTarget.end(); ++it)
            if (!ofSource.contains(it.key())) verdict.onlyInTarget[kind] += it->shown;
    }
    for (auto* lists : {&verdict.differing, &verdict.differingAnyway, &verdict.onlyInSource,
                        &verdict.onlyInTarget, &verdict.unreadable})
        for (QStringList& names : *lists) names.sort();
    verdict.someOneSided = !verdict.onlyInSource.isEmpty() || !verdict.onlyInTarget.isEmpty();
    verdict.someUnreadable = !verdict.unreadable.isEmpty();
    verdict.identical =
        !verdict.someOneSided && !verdict.someUnreadable && verdict.differing.isEmpty();
    return verdict;
}

}  // namespace zov::test
