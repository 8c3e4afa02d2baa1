#include "generated_databases.h"

#include <QSet>

#include <iterator>

namespace zov::test {
namespace {

const char16_t* const Names[] = {
    u"T",      u"t",       u"Orders", u"ORDERS",  u"p.q",    u"hr.T", u"v.",   u".x",
    u"a]b",    u"[x]",     u"[p",     u"O'Brien", u"it''s",  u"x y",  u" led", u"q\"r",
    u"a,b",    u"100%",    u"under_", u"Größe",   u"GRÖSSE", u"日本", u"имя",  u"ИМЯ",
    u"]]; --", u"e\u0301", u"é",      u"a--b",    u"--x",    u"p--",  u"c/*d", u"e*/f",
    u"/*g*/",  u"h  i",    u"h i",    u"j\tk",    u"j k"};
const char16_t* const Schemas[] = {u"dbo", u"hr", u"h.r", u"s'q", u"s]b", u"Ωm"};
/// A type that each schema has.
const QString CodeType = QStringLiteral("code");

QString quoted(QString name) {
    return u'[' + name.replace(u']', QStringLiteral("]]")) + u']';
}
QString joined(const QString& schema, const QString& name) {
    return quoted(schema) + u'.' + quoted(name);
}

struct Made {
    enum Kind { Table, View, Procedure, Function, Trigger, Relationship } kind;
    QString schema, name;
    int table = -1;       ///< of a trigger or relationship: its table in the list
    int referenced = -1;  ///< of a relationship
    int variant = 0;      ///< another number is another text
    bool encrypted = false;
    bool keyed = false;  ///< tables
    bool identity = false;
    QString column = {}, second = {};
    int typeSchema = -1;  ///< of a table's second column: whose "code" is its type; below 0: none's
    int layout = 0;       ///< of a module's header
};

/// How a module's header is laid out; %1 is the name, %2 an option, %3 the value. Those of one kind
/// say the same where only white space and comments tell them apart.
const char* const ViewLayouts[] = {
    "CREATE VIEW %1%2 AS SELECT %3 AS a",
    "CREATE VIEW %1%2\r\nAS\r\nSELECT %3 AS a",
    "CREATE VIEW %1%2\nAS\nSELECT %3 AS a",
    "CREATE VIEW %1 (a)%2 AS SELECT %3",
    "/* a view -- of one */\nCREATE VIEW %1%2 -- AS\r\nAS SELECT %3 AS a",
    "CREATE VIEW %1%2 AS SELECT DISTINCT x.[k.l] FROM (SELECT %3 AS [k.l]) AS x",
    "CREATE VIEW %1%2\nAS\nSELECT TOP 5 x.k AS a FROM (SELECT %3 AS k) AS x",
    "CREATE VIEW %1 WITH SCHEMABINDING AS SELECT %3 AS a"};
const char* const ProcedureLayouts[] = {
    "CREATE PROCEDURE %1%2 AS\nSELECT %3",
    "CREATE PROCEDURE %1%2\r\nAS\r\nSELECT %3",
    "-- it is one\r\nCREATE PROCEDURE %1 /* no\nparameters */%2\nAS SELECT %3",
    "CREATE PROCEDURE %1 @p int = 1%2\nAS\nSELECT %3",
    "CREATE PROCEDURE %1 @p int = 1, @q int = 2%2 AS\nSELECT DISTINCT x.k FROM (SELECT %3 AS k) x",
    "CREATE PROC %1%2 AS\nSELECT 'a--b' AS l, %3"};
const char* const FunctionLayouts[] = {
    "CREATE FUNCTION %1 () RETURNS int%2 AS BEGIN RETURN %3 END",
    "CREATE FUNCTION %1 ()\r\nRETURNS int%2\r\nAS\r\nBEGIN\r\nRETURN %3\r\nEND",
    "CREATE FUNCTION %1 (@p int)\nRETURNS int%2 -- returns\nAS\nBEGIN RETURN %3 END"};
const char* const TriggerLayouts[] = {
    "CREATE TRIGGER %1%2 FOR INSERT AS SELECT %3",
    "CREATE TRIGGER %1%2\r\nFOR INSERT\r\nAS\r\nSELECT %3",
    "CREATE TRIGGER %1%2 /* one */ AFTER INSERT, UPDATE\nAS\nSELECT %3"};
constexpr int MostLayouts = int(std::size(ViewLayouts));

template <size_t N>
QString laidOut(const char* const (&layouts)[N], const Made& object, const QString& name,
                const QString& option, const QString& value) {
    // An encrypted view has no second option.
    const size_t layout =
        size_t(object.layout) % (object.encrypted && N == MostLayouts ? N - 1 : N);
    QString text = QString::fromLatin1(layouts[layout]);
    // Names hold per cent signs.
    const qsizetype value3 = text.indexOf(QStringLiteral("%3"));
    text.replace(value3, 2, value);
    text.replace(
        text.indexOf(QStringLiteral("%2")) < 0 ? text.size() : text.indexOf(QStringLiteral("%2")),
        2, option);
    return text.replace(text.indexOf(QStringLiteral("%1")), 2, name);
}

class Generator {
 public:
    explicit Generator(quint32 seed) : random_(seed) {}

    GeneratedPair make() {
        const bool same = below(3) == 0;
        cased_ = oneIn(4);
        std::vector<Made> source;
        fill(source, Made::Table, 3 + below(4));
        for (const Made::Kind kind :
             {Made::View, Made::Procedure, Made::Function, Made::Trigger, Made::Relationship})
            fill(source, kind, below(4));
        std::vector<Made> target = source;
        const int changes = same ? 0 : 1 + below(3);
        for (int change = 0; change < changes; ++change) alter(target);
        return {scriptOf(source), scriptOf(target), cased_};
    }

 private:
    int below(int bound) { return int(random_() % quint32(bound)); }
    bool oneIn(int count) { return below(count) == 0; }
    QString anyName() { return QString::fromUtf16(Names[below(int(std::size(Names)))]); }
    QString anySchema() { return QString::fromUtf16(Schemas[below(int(std::size(Schemas)))]); }

    /// One name a schema, whatever the letter case unless the database tells it apart.
    bool take(const QString& schema, const QString& name) {
        const QString composed = name.normalized(QString::NormalizationForm_C);
        const QString key = schema + QChar(u'\0') + (cased_ ? composed : composed.toCaseFolded());
        if (taken_.contains(key)) return false;
        taken_.insert(key);
        return true;
    }

    void fill(std::vector<Made>& objects, Made::Kind kind, int count) {
        for (int i = 0; i < count; ++i) {
            Made object{kind, anySchema(), anyName()};
            object.variant = below(3);
            object.keyed = !oneIn(3);
            object.identity = oneIn(2);
            object.column = anyName();
            object.second = QStringLiteral("second %1").arg(below(2));
            object.typeSchema = oneIn(3) ? below(int(std::size(Schemas))) : -1;
            object.layout = below(MostLayouts);
            object.encrypted = oneIn(25) && kind != Made::Table && kind != Made::Relationship;
            if (kind == Made::Trigger || kind == Made::Relationship) {
                object.table = anyTable(objects, false);
                object.referenced = anyTable(objects, true);
                if (object.table < 0 || (kind == Made::Relationship && object.referenced < 0))
                    continue;
                object.schema = objects[size_t(object.table)].schema;
            }
            if (!take(object.schema, object.name)) continue;
            objects.push_back(object);
            addNamesake(objects, object);
        }
    }
    /// Beside some objects one that only the schema tells apart, or only the letter case.
    void addNamesake(std::vector<Made>& objects, Made object) {
        if (!oneIn(3) || object.table >= 0) return;
        if (cased_ && oneIn(2)) {
            const QString upper = object.name.toUpper();
            object.name = upper == object.name ? object.name.toLower() : upper;
            object.variant += below(2);
        } else {
            object.schema = anySchema();
        }
        if (take(object.schema, object.name)) objects.push_back(object);
    }
    /// Another table that a relationship might refer to by the same names.
    static int namesakeOf(const std::vector<Made>& objects, int at) {
        const Made& table = objects[size_t(at)];
        for (size_t i = 0; i < objects.size(); ++i)
            if (int(i) != at && objects[i].kind == Made::Table && objects[i].keyed &&
                objects[i].name == table.name && objects[i].column == table.column)
                return int(i);
        return at;
    }
    int anyTable(const std::vector<Made>& objects, bool keyed) {
        std::vector<int> tables;
        for (size_t i = 0; i < objects.size(); ++i)
            if (objects[i].kind == Made::Table && (!keyed || objects[i].keyed))
                tables.push_back(int(i));
        return tables.empty() ? -1 : tables[size_t(below(int(tables.size())))];
    }
    static bool isUsed(const std::vector<Made>& objects, size_t at) {
        for (const Made& object : objects)
            if (object.table == int(at) || object.referenced == int(at)) return true;
        return false;
    }

    void alter(std::vector<Made>& objects) {
        const size_t at = size_t(below(int(objects.size())));
        Made& object = objects[at];
        switch (below(7)) {
            case 0:  // gone; what stands on a table stays
                if (!isUsed(objects, at) && at + 1 == objects.size()) objects.pop_back();
                break;
            case 1:  // to another schema
                if (object.kind == Made::Trigger || object.kind == Made::Relationship ||
                    isUsed(objects, at))
                    break;
                if (const QString schema = anySchema(); take(schema, object.name))
                    object.schema = schema;
                break;
            case 2:  // one more
                fill(objects, Made::Kind(below(4)), 1);
                break;
            case 3:  // to a namesake
                if (object.kind == Made::Table && object.typeSchema >= 0)
                    object.typeSchema = below(int(std::size(Schemas)));
                else if (object.kind == Made::Relationship)
                    object.referenced = namesakeOf(objects, object.referenced);
                else
                    object.layout = below(MostLayouts);
                break;
            case 4:
                object.layout = below(MostLayouts);
                if (object.kind == Made::Table && object.typeSchema >= 0)
                    object.typeSchema = below(int(std::size(Schemas)));
                break;
            case 5:
                object.keyed = object.keyed || oneIn(2);
                object.identity = !object.identity;
                [[fallthrough]];
            default:
                object.variant += 1;
        }
    }

    static QString tableScript(const Made& table, int number) {
        QString text = QStringLiteral("CREATE TABLE ") + joined(table.schema, table.name) + u'(' +
                       quoted(table.column);
        text += table.identity
                    ? QStringLiteral(" int IDENTITY(%1,2) NOT NULL").arg(table.variant + 1)
                    : QStringLiteral(" int NOT NULL");
        if (table.keyed)
            text += QStringLiteral(" CONSTRAINT ") +
                    quoted(QStringLiteral("pk%1 ").arg(number) + table.name) +
                    QStringLiteral(" PRIMARY KEY");
        text += QStringLiteral(", ") + quoted(table.second);
        const char* const types[] = {"varchar(20) NULL", "nvarchar(max) NULL", "decimal(9,2) NULL",
                                     "datetime NOT NULL", "nchar(3) NULL"};
        text += u' ' + (table.typeSchema < 0
                            ? QString::fromLatin1(types[table.variant % 5])
                            : joined(QString::fromUtf16(Schemas[table.typeSchema]), CodeType) +
                                  QStringLiteral(" NULL"));
        if (table.variant % 2)
            text += QStringLiteral(", d bit CONSTRAINT ") +
                    quoted(QStringLiteral("df%1 ").arg(number) + table.name) +
                    QStringLiteral(" DEFAULT %1").arg(table.variant % 4 == 1);
        text += QStringLiteral(")\n");
        if (table.variant % 3 == 2)
            text += QStringLiteral("CREATE INDEX ") +
                    quoted(QStringLiteral("ix%1 ").arg(number) + table.name) +
                    QStringLiteral(" ON ") + joined(table.schema, table.name) +
                    QStringLiteral(" (") + quoted(table.column) + QStringLiteral(")\n");
        return text + QStringLiteral("GO\n");
    }

    static QString moduleScript(const Made& object, const std::vector<Made>& objects) {
        const QString name = joined(object.schema, object.name);
        const QString secret = object.encrypted ? QStringLiteral(" WITH ENCRYPTION") : QString();
        const QString value =
            QStringLiteral("%1 /* it's [%2] */").arg(object.variant).arg(object.variant);
        const QString go = QStringLiteral("\nGO\n");
        switch (object.kind) {
            case Made::View:
                return laidOut(ViewLayouts, object, name, secret, value) + go;
            case Made::Procedure:
                return laidOut(ProcedureLayouts, object, name, secret, value) + go;
            case Made::Function:
                return laidOut(FunctionLayouts, object, name, secret, value) + go;
            case Made::Trigger: {
                const Made& table = objects[size_t(object.table)];
                return laidOut(TriggerLayouts, object, name,
                               QStringLiteral(" ON ") + joined(table.schema, table.name) + secret,
                               value) +
                       go;
            }
            default: {
                const Made& table = objects[size_t(object.table)];
                const Made& other = objects[size_t(object.referenced)];
                return QStringLiteral("ALTER TABLE ") + joined(table.schema, table.name) +
                       QStringLiteral(" ADD CONSTRAINT ") + quoted(object.name) +
                       QStringLiteral(" FOREIGN KEY (") + quoted(table.column) +
                       QStringLiteral(") REFERENCES ") + joined(other.schema, other.name) +
                       QStringLiteral(" (") + quoted(other.column) + QStringLiteral(")") + go;
            }
        }
    }

    static QString scriptOf(const std::vector<Made>& objects) {
        QString text;
        for (const char16_t* schema : Schemas)
            if (QStringView(schema) != u"dbo")
                text += QStringLiteral("CREATE SCHEMA ") + quoted(QString::fromUtf16(schema)) +
                        QStringLiteral("\nGO\n");
        for (const char16_t* schema : Schemas)
            text += QStringLiteral("CREATE TYPE ") + joined(QString::fromUtf16(schema), CodeType) +
                    QStringLiteral(" FROM int\nGO\n");
        int number = 0;
        for (const Made& object : objects)
            if (object.kind == Made::Table) text += tableScript(object, ++number % 3);
        for (const Made& object : objects)
            if (object.kind != Made::Table) text += moduleScript(object, objects);
        return text;
    }

    std::mt19937 random_;
    bool cased_ = false;
    QSet<QString> taken_;
};

}  // namespace

GeneratedPair generatePair(quint32 seed) {
    return Generator(seed).make();
}

}  // namespace zov::test
