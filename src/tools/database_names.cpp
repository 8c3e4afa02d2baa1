#include "tools/database_names.h"

#include "catalog/object_directory.h"
#include "core/error_report.h"
#include "core/globals.h"
#include "data/mdlData.h"

#include <algorithm>
#include <functional>
#include <tuple>

namespace zov {
namespace {

constexpr int FirstVersionWithSysViews = 9;

bool hasSysViews(const ServerInfo& server) {
    return GetMajorVersion(server.Version) >= FirstVersionWithSysViews;
}

/// Runs a statement and hands over its rows. False when it failed: the account has it.
bool eachRow(const ServerInfo& server, const QString& database, const QString& statement,
             const std::function<void(Recordset&)>& row) {
    const ScopedValue<bool> silent(globals().gblnSuppressConnErrors, true);
    try {
        std::unique_ptr<Recordset> rs;
        if (GetAdoRS(server, adCmdText, statement, rs, database) == -1 || !rs) return false;
        for (; !rs->isEof(); rs->MoveNext()) row(*rs);
        return true;
    } catch (const DbError&) {
        return false;
    }
}

ObjectType kindOfModule(const QString& type) {
    if (type == u"V") return ObjectType::View;
    if (type == u"TR") return ObjectType::Trigger;
    if (type == u"P" || type == u"RF") return ObjectType::Procedure;
    return ObjectType::Function;
}

QString moduleStatement(bool sysViews) {
    if (sysViews)
        return QStringLiteral(
            "SELECT m.[object_id], o.[name], s.[name] AS [schema], o.[type], m.[definition], "
            "m.uses_quoted_identifier FROM sys.sql_modules m INNER JOIN sys.objects o ON "
            "m.[object_id] = o.[object_id] INNER JOIN sys.schemas s ON o.[schema_id] = "
            "s.[schema_id] WHERE o.[type] IN ('P', 'RF', 'V', 'TR', 'FN', 'IF', 'TF')");
    return QStringLiteral(
        "SELECT o.id, o.name, u.name AS owner, o.xtype, c.text, OBJECTPROPERTY(o.id, "
        "'ExecIsQuotedIdentOn') AS quoted FROM sysobjects o INNER JOIN sysusers u ON o.uid = u.uid "
        "LEFT OUTER JOIN syscomments c ON o.id = c.id WHERE o.xtype IN ('P', 'RF', 'V', 'TR', "
        "'FN', "
        "'IF', 'TF') ORDER BY o.id, c.number, c.colid");
}

}  // namespace

NameFolding::NameFolding(const QString& collation)
    : isBinary_(collation.contains(QLatin1StringView("_BIN"), Qt::CaseInsensitive)),
      tellsCase_(collation.contains(QLatin1StringView("_CS"), Qt::CaseInsensitive)),
      tellsAccents_(collation.contains(QLatin1StringView("_AS"), Qt::CaseInsensitive)),
      isTurkish_(collation.startsWith(QLatin1StringView("Turkish"), Qt::CaseInsensitive) ||
                 collation.startsWith(QLatin1StringView("Azeri_Latin"), Qt::CaseInsensitive)) {}

QString NameFolding::fold(const QString& name) const {
    QString folded = name;
    while (folded.endsWith(u' ')) folded.chop(1);
    if (isBinary_) return folded;
    const bool isAscii = std::all_of(folded.cbegin(), folded.cend(), [](QChar c) {
        return c.unicode() >= u' ' && c.unicode() < 127;
    });
    if (isAscii && !tellsCase_) {
        for (QChar& c : folded)
            if (c >= u'A' && c <= u'Z') c = QChar(c.unicode() + 32);
        return folded;
    }
    if (!isAscii) {
        if (!tellsCase_ && !tellsAccents_) return looseName(folded);
        // i with and without a dot are the two cases of one letter there, and no other's.
        if (isTurkish_ && !tellsCase_)
            folded.replace(QChar(0x130), QLatin1StringView("i"))
                .replace(QChar(0x131), QLatin1StringView("i"));
        folded = folded.normalized(QString::NormalizationForm_KD);
        QString seen;
        for (const QChar c : std::as_const(folded)) {
            const bool isKatakana = c.unicode() >= 0x30A1 && c.unicode() <= 0x30F6;
            const bool counts = c.isPrint() && (tellsAccents_ || !c.isMark());
            if (counts)
                seen += isKatakana ? QChar(c.unicode() - 0x60) : c;
            else if (c.isSurrogate())
                seen += c;
        }
        folded = seen;
    }
    return tellsCase_ ? folded : folded.toUpper().toCaseFolded();
}

DatabaseNames::DatabaseNames(const QString& database, const QString& collation)
    : database_(database), folding_(collation) {}

QString DatabaseNames::key(const QString& schema, const QString& name) const {
    return fold(schema) + QChar(u'\0') + fold(name);
}

NamedObject& DatabaseNames::addObject(const QString& schema, const QString& name,
                                      const QString& type) {
    objects_.push_back(std::make_unique<NamedObject>(NamedObject{schema, name, type, {}}));
    byName_.insert(key(schema, name), objects_.back().get());
    addSchema(schema);
    return *objects_.back();
}

void DatabaseNames::addColumn(NamedObject& object, const QString& column) {
    object.columns.insert(fold(column));
}

void DatabaseNames::addType(const QString& schema, const QString& name) {
    types_.insert(key(schema, name));
}

void DatabaseNames::addSchema(const QString& schema) {
    schemas_.insert(fold(schema));
}

const NamedObject* DatabaseNames::object(const QString& schema, const QString& name) const {
    return byName_.value(key(schema, name));
}

bool DatabaseNames::hasType(const QString& schema, const QString& name) const {
    return types_.contains(key(schema, name));
}

bool DatabaseNames::readObjects(const ServerInfo& server, QHash<qint32, NamedObject*>& byId) {
    const QString statement =
        hasSysViews(server)
            ? QStringLiteral(
                  "SELECT o.[object_id], o.[name], s.[name] AS [schema], o.[type] FROM "
                  "sys.objects o INNER JOIN sys.schemas s ON o.[schema_id] = "
                  "s.[schema_id]")
            : QStringLiteral(
                  "SELECT o.id, o.name, u.name AS owner, o.xtype FROM sysobjects o INNER "
                  "JOIN sysusers u ON o.uid = u.uid");
    return eachRow(server, database_, statement, [&](Recordset& rs) {
        byId.insert(
            qint32(rs.field(0).toInt64()),
            &addObject(rs.field(2).text(), rs.field(1).text(), rs.field(3).text().trimmed()));
    });
}

bool DatabaseNames::readColumns(const ServerInfo& server, const QHash<qint32, NamedObject*>& byId) {
    // Parameters share syscolumns with the columns; theirs is another number.
    const QString statement =
        hasSysViews(server) ? QStringLiteral("SELECT [object_id], [name] FROM sys.columns")
                            : QStringLiteral("SELECT id, name FROM syscolumns WHERE number = 0");
    return eachRow(server, database_, statement, [&](Recordset& rs) {
        if (NamedObject* object = byId.value(qint32(rs.field(0).toInt64())))
            addColumn(*object, rs.field(1).text());
    });
}

bool DatabaseNames::readTypesAndSchemas(const ServerInfo& server) {
    const bool sysViews = hasSysViews(server);
    const bool types = eachRow(
        server, database_,
        sysViews
            ? QStringLiteral("SELECT t.[name], s.[name] AS [schema] FROM sys.types t INNER JOIN "
                             "sys.schemas s ON t.[schema_id] = s.[schema_id]")
            : QStringLiteral("SELECT t.name, u.name AS owner FROM systypes t INNER JOIN "
                             "sysusers u ON t.uid = u.uid"),
        [&](Recordset& rs) { addType(rs.field(1).text(), rs.field(0).text()); });
    return types && eachRow(server, database_,
                            sysViews ? QStringLiteral("SELECT [name] FROM sys.schemas")
                                     : QStringLiteral("SELECT name FROM sysusers"),
                            [&](Recordset& rs) { addSchema(rs.field(0).text()); });
}

DatabaseNames DatabaseNames::read(const ServerInfo& server, const QString& database, bool& read) {
    QString collation;
    read = eachRow(server, database,
                   QStringLiteral("SELECT CONVERT(nvarchar(128), DATABASEPROPERTYEX(DB_NAME(), "
                                  "'Collation')) AS [collation]"),
                   [&](Recordset& rs) { collation = rs.field(0).text(); });
    DatabaseNames names(database, collation);
    QHash<qint32, NamedObject*> byId;
    read = read && names.readObjects(server, byId) && names.readColumns(server, byId) &&
           names.readTypesAndSchemas(server);
    return names;
}

std::vector<ModuleText> readModuleTexts(const ServerInfo& server, const QString& database,
                                        bool& read) {
    std::vector<ModuleText> modules;
    read = eachRow(server, database, moduleStatement(hasSysViews(server)), [&](Recordset& rs) {
        const qint32 id = qint32(rs.field(0).toInt64());
        // Older servers keep a text in pieces, a row each.
        if (modules.empty() || modules.back().object.id != id) {
            ModuleText& module = modules.emplace_back();
            module.object = {rs.field(2).text(),
                             rs.field(1).text(),
                             kindOfModule(rs.field(3).text().trimmed()),
                             id,
                             false,
                             rs.field(1).text()};
            // Not told: as every server sets it by itself.
            module.quotedNames =
                rs.field(5).isNull() || rs.field(5).text() == u"True" || rs.field(5).text() == u"1";
        }
        ModuleText& module = modules.back();
        if (rs.field(4).isNull()) module.isReadable = false;
        module.text += rs.field(4).text();
    });
    for (ModuleText& module : modules)
        if (!module.isReadable) module.text.clear();
    const auto place = [](const ModuleText& module) {
        return std::make_tuple(int(module.object.kind), module.object.fullName());
    };
    std::stable_sort(modules.begin(), modules.end(),
                     [&](const ModuleText& a, const ModuleText& b) { return place(a) < place(b); });
    return modules;
}

}  // namespace zov
