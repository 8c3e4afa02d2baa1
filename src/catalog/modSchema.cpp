#include "catalog/modSchema.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "core/run_account.h"
#include "data/mdlData.h"
#include "data/sql_names.h"
#include "util/text.h"

#include <QRegularExpression>
#include <QSet>

namespace zov {
namespace {

constexpr const char* Module = "modSchema";

QSet<QString>& serversWithoutSchemaFunction() {
    static QSet<QString> names;
    return names;
}

QString firstFieldOfFirstRow(const std::unique_ptr<Recordset>& rs) {
    return rs && rs->isOpen() && !rs->isEof() ? rs->field(0).text() : QString();
}

// From a trigger's source: what stands in the first brackets between CREATE TRIGGER and ON. A
// trigger that is named in brackets without a schema gives its own name.
QString schemaInTriggerText(const QString& text) {
    static const QRegularExpression header(
        QStringLiteral("CREATE TRIGGER(.*?)\\bON\\b"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    const QString name = header.match(text).captured(1).trimmed();
    const qsizetype open = name.indexOf(u'[');
    const qsizetype close = open < 0 ? -1 : name.indexOf(u']', open);
    return close < 0 ? QString() : name.mid(open + 1, close - open - 1);
}

struct SchemaView {
    QLatin1StringView view;
    QLatin1StringView name;
    QLatin1StringView schema;
};
// Where INFORMATION_SCHEMA has the objects of a type; null for types it doesn't know.
const SchemaView* schemaView(ObjectType type) {
    static constexpr SchemaView routines{QLatin1StringView("ROUTINES"),
                                         QLatin1StringView("ROUTINE_NAME"),
                                         QLatin1StringView("ROUTINE_SCHEMA")};
    static constexpr SchemaView views{QLatin1StringView("VIEWS"), QLatin1StringView("TABLE_NAME"),
                                      QLatin1StringView("TABLE_SCHEMA")};
    static constexpr SchemaView tables{QLatin1StringView("TABLES"), QLatin1StringView("TABLE_NAME"),
                                       QLatin1StringView("TABLE_SCHEMA")};
    switch (type) {
        case ObjectType::Procedure:
        case ObjectType::Function:
            return &routines;
        case ObjectType::View:
            return &views;
        case ObjectType::Table:
            return &tables;
        default:
            return nullptr;
    }
}

}  // namespace

qint32 GetAllSchemas(const ServerInfo& Server, const QString& DbName, QStringList& Schemas) {
    Schemas.clear();
    return guarded(Module, "GetAllSchemas", qint32(0), [&] {
        std::unique_ptr<Recordset> rs;
        const qint32 result = GetAdoRS(
            Server, adCmdText,
            QStringLiteral(
                "SELECT SCHEMA_NAME FROM INFORMATION_SCHEMA.schemata WHERE SCHEMA_NAME NOT "
                "IN ('INFORMATION_SCHEMA', 'sys', 'db_owner', 'db_accessadmin', "
                "'db_securityadmin', 'db_ddladmin', 'db_backupoperator', 'db_datareader', "
                "'db_datawriter', 'db_denydatareader', 'db_denydatawriter', 'guest') ORDER "
                "BY SCHEMA_NAME"),
            rs, DbName);
        if (result != -1 && rs && rs->isOpen())
            for (; !rs->isEof(); rs->MoveNext()) Schemas.push_back(rs->field(0).text());
        return qint32(Schemas.size());
    });
}

QString GetSchemaForObject(const ServerInfo& Server, const QString& DbName,
                           const QString& ObjectName, ObjectType Type) {
    return guarded(Module, "GetSchemaForObject", QString(), [&]() -> QString {
        const QString name = DoubleSingleQuotes(ObjectName);
        if (Type == ObjectType::Trigger)
            return schemaInTriggerText(GetObjectTextFromComments(Server, DbName, name));
        const SchemaView* source = schemaView(Type);
        if (!source) return {};
        const QString text = QStringLiteral("SELECT ") + source->schema +
                             QStringLiteral(" FROM INFORMATION_SCHEMA.") + source->view +
                             QStringLiteral(" WHERE ") + source->name + QStringLiteral(" = '") +
                             name + u'\'';
        std::unique_ptr<Recordset> rs;
        if (GetAdoRS(Server, adCmdText, text, rs, DbName) == -1) return {};
        return firstFieldOfFirstRow(rs);
    });
}

bool GetSchemaFilter(ObjectType Type, bool, const QString&, const QString&, int Index,
                     QString& Join, QString& Condition) {
    return guarded("modObjects", "GetSchemaFilter", false, [&] {
        const SchemaView* source = schemaView(Type);
        if (!source || !globals().gblnFilterActive[Index]) return false;
        const QString view = QStringLiteral("INFORMATION_SCHEMA.") + source->view;
        Join = QStringLiteral("LEFT JOIN ") + view + QStringLiteral(" ON ") + view + u'.' +
               source->name + QStringLiteral(" = [name]");
        Condition = QStringLiteral("AND ") + view + u'.' + source->schema +
                    QStringLiteral(" IN (") +
                    WrapStringIntoQuotes(globals().gstrFilterList[Index]) + u')';
        return true;
    });
}

bool GetOwnerFilter(ObjectType, bool, const QString&, const QString&, int, QString&, QString&) {
    return false;
}

QString BuildSchemaFilteringString() {
    static constexpr QLatin1StringView captions[2] = {
        QLatin1StringView("Source - applied filtering by Schema: "),
        QLatin1StringView("Target - applied filtering by Schema: ")};
    QString text;
    for (int index : {SourcePanel, TargetPanel}) {
        if (!globals().gblnFilterActive[index]) continue;
        if (!text.isEmpty()) text += CRLF;
        text += captions[index] + globals().gstrFilterList[index];
    }
    return text;
}

void ResetFilter(int Index) {
    globals().gblnFilterActive[Index] = false;
    globals().gstrFilterList[Index].clear();
}

bool RetryWithSchema(ServerInfo& Server, const QString& DbName, QString& Name, ObjectType,
                     qint32 ErrNumber) {
    if (ErrNumber != ado_error::NoSuchTable) return false;
    if (Server.SchemaCheckPerformed && !Server.AddSchema) return false;
    if (GetMajorVersion(Server.Version) < 9) return false;
    Server.SchemaCheckPerformed = true;
    const QString schema = GetSchemaForObject(Server, DbName, Name, ObjectType::Table);
    if (schema.isEmpty()) return false;
    Name = quotedName(schema, Name);
    Server.AddSchema = true;
    return true;
}

bool Is_OBJECT_SCHEMA_NAME_Implemented(const QString& versionText, qint32 majorVersion) {
    if (versionText.size() < 8) return false;
    const qint32 major = majorVersion == -1 ? GetMajorVersion(versionText) : majorVersion;
    if (major != 9) return major > 9;
    return versionText == QLatin1StringView("9.00.3042") ||
           versionText == QLatin1StringView("9.00.4035") ||
           versionText == QLatin1StringView("9.00.5000");
}

bool Db_GetObjSchemaById(const ServerInfo& Server, ObjectType, const QString& DbName,
                         qint32 ObjectId, QString& Schema) {
    Schema.clear();
    return guarded("modSql", "Db_GetObjSchemaById", false, [&] {
        std::unique_ptr<Recordset> rs;
        const QString id = QString::number(ObjectId);
        QSet<QString>& oldWay = serversWithoutSchemaFunction();
        if (GetMajorVersion(Server.Version) >= 9 && !oldWay.contains(Server.Name)) {
            if (Is_OBJECT_SCHEMA_NAME_Implemented(Server.Version)) {
                // When it fails the old way is the one that counts.
                const ExpectFailure probing;
                if (GetAdoRS(Server, adCmdText,
                             QStringLiteral("SELECT OBJECT_SCHEMA_NAME([object_id]) FROM "
                                            "sys.objects WHERE [object_id] = ") +
                                 id,
                             rs, DbName) != -1) {
                    Schema = firstFieldOfFirstRow(rs);
                    return true;
                }
            }
            // Counts as a server of version 8 for this question from now on.
            oldWay.insert(Server.Name);
        }
        if (GetAdoRS(Server, adCmdText,
                     QStringLiteral("SELECT USER_NAME(uid) FROM sysobjects WHERE [id] = ") + id, rs,
                     DbName) == -1)
            return false;
        Schema = firstFieldOfFirstRow(rs);
        return true;
    });
}

void ForgetSchemaFunctionFindings() {
    serversWithoutSchemaFunction().clear();
}

}  // namespace zov
