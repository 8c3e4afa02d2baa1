#include "scripting/modSql.h"

#include "catalog/modOwner.h"
#include "core/error_report.h"
#include "data/sql_names.h"
#include "shell/shell.h"
#include "util/text.h"

#include <QDateTime>

namespace zov {
namespace {

constexpr const char* Module = "modSql";

const QString checkErrorLine =
    QStringLiteral("\r\nIF @@ERROR <> 0 SET @ErrorVal = @@ERROR\r\n\r\n");

// The condition that finds the old object; empty for types that no statement is built for.
QString dropTest(ObjectType type) {
    switch (type) {
        case ObjectType::Procedure:
            return QStringLiteral("OBJECTPROPERTY(id, 'IsProcedure') = 1");
        case ObjectType::Function:
            return QStringLiteral("xtype in ('FN', 'IF', 'TF')");
        case ObjectType::View:
            return QStringLiteral("OBJECTPROPERTY(id, 'IsView') = 1");
        case ObjectType::Trigger:
            return QStringLiteral("OBJECTPROPERTY(id, 'IsTrigger') = 1");
        case ObjectType::Table:
            return QStringLiteral("OBJECTPROPERTY(id, 'IsTable') = 1");
        case ObjectType::Relationship:
            return QStringLiteral("OBJECTPROPERTY(id, 'IsRelationship') = 1");
        default:
            return {};
    }
}

QString dropHeader(const CreateStatementRequest& request, const QString& name) {
    const QString type = GetObjectTypeName(request.objectType, false);
    const QString now =
        QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    const QStringList lines = {
        QStringLiteral("USE ") + quoteName(request.dbName),
        QStringLiteral("GO"),
        QStringLiteral("/****** Object: ") + type + u' ' + name +
            QStringLiteral("      ---- Script Date: ") + now + QStringLiteral(" ******/"),
        QStringLiteral("SET ANSI_NULLS ON"),
        QStringLiteral("GO"),
        QStringLiteral("SET QUOTED_IDENTIFIER ON"),
        QStringLiteral("GO"),
        QStringLiteral("IF EXISTS (SELECT * FROM dbo.sysobjects"),
        QStringLiteral("WHERE id = object_id('") + DoubleSingleQuotes(name) +
            QStringLiteral("') AND ") + dropTest(request.objectType) + u')',
        QStringLiteral("DROP ") + type + u' ' + name,
        QStringLiteral("GO"),
    };
    return lines.join(CRLF) + CRLF;
}

QString bodyOf(const ServerInfo& server, const CreateStatementRequest& request) {
    switch (request.objectType) {
        case ObjectType::Table:
            return GetTableStructureWithIndexes(server, request.meant(), request.dbName,
                                                request.useIgnoredColumns, nullptr,
                                                request.lineSuffix, true);
        case ObjectType::Relationship:
            if (request.constraintName.isEmpty())
                return GetRelationshipText(server, request.meant(), request.dbName);
            return GetRelationshipText(server, request.constraintName, request.dbName);
        default:
            break;
    }
    QString text = GetObjectText(server, request.meant(), request.dbName);
    if (!request.ownerFrom.isEmpty()) text.replace(request.ownerFrom, request.ownerTo);
    return text;
}

bool cutSuffix(QString& text, const QString& suffix) {
    if (text.isEmpty() || !text.endsWith(suffix)) return false;
    text.chop(suffix.size());
    return true;
}

bool isFinishedIndex(const ColumnRecord& index, const QString& tableName) {
    return !tableName.isEmpty() && !index.strIndexText.isEmpty() && !index.strName.isEmpty();
}

}  // namespace

QString BuildObjectCreateStatement(const ServerInfo& server, const CreateStatementRequest& request,
                                   bool& ok) {
    ok = false;
    if (request.dbName.isEmpty() || request.objectName.isEmpty() || request.objectId < 1 ||
        dropTest(request.objectType).isEmpty()) {
        shell().messageBox(
            QStringLiteral("Cannot build SQL CREATE statement - wrong parameters passed"),
            QStringLiteral("Error"), BoxIcon::Exclamation);
        return {};
    }
    return guarded(Module, "BuildObjectCreateStatement", QString(), [&] {
        QString name = request.object.name.isEmpty()
                           ? GetExtendedObjectName(server, request.dbName, request.objectName,
                                                   request.objectType, request.objectId)
                           : GetExtendedObjectName(server, request.dbName, request.object);
        if (!request.ownerFrom.isEmpty()) name.replace(request.ownerFrom, request.ownerTo);

        QString opening, closing;
        if (request.objectType == ObjectType::Table) {
            opening = QStringLiteral("CREATE ") +
                      GetObjectTypeName(request.objectType, false).toUpper() + u' ' + name +
                      QStringLiteral(" (");
            closing = QStringLiteral(")");
        }
        QString body = bodyOf(server, request);
        // With the header alone the script would drop the object and make nothing in its place.
        if (body.isEmpty()) return QString();
        QString extras = GetExtras(server, request.meant(), request.dbName);
        if (!request.lineSuffix.isEmpty() && !cutSuffix(extras, request.lineSuffix))
            cutSuffix(body, request.lineSuffix);

        const QString statement = opening + CRLF + body + u' ' + extras + CRLF + closing;
        ok = true;
        return request.bodyOnly ? statement : dropHeader(request, name) + CRLF + statement;
    });
}

QString WrapStatementForDatabase(const QString& sql, const QString& dbName) {
    QString text = sql;
    const qsizetype create = text.indexOf(QLatin1StringView("create"), 0, Qt::CaseInsensitive);
    if (create > 0) text.remove(0, create);
    // The statement stands inside two levels of quoted EXEC.
    text.replace(u'\'', QLatin1StringView("''''"));
    if (!dbName.isEmpty()) {
        const QString name = isRegularName(dbName) ? dbName : DoubleSingleQuotes(quoteName(dbName));
        return QStringLiteral("EXEC ('USE ") + name + QStringLiteral(" EXEC (''") + text +
               QStringLiteral("'')')");
    }
    return QStringLiteral("EXEC ('USE ' + @Database + ' EXEC (''") + text +
           QStringLiteral("'')')") + checkErrorLine;
}

bool SQL_Execute(const ServerInfo& connection, const QString& sql, const QString& dbName) {
    return guarded(Module, "SQL_Execute", false, [&] {
        const QString statement = sql.isEmpty() ? sql : WrapStatementForDatabase(sql, dbName);
        if (ExecAdoCmd(connection, adCmdText, statement, dbName) != -1) return true;
        shell().messageBox(QStringLiteral("Error occured - aborting."), {}, BoxIcon::Exclamation);
        return false;
    });
}

QString BuildIndexDropStatement(const ColumnRecord& index, const QString& tableName) {
    if (!isFinishedIndex(index, tableName)) return {};
    return QStringLiteral("ALTER TABLE ") + quoteName(tableName) + QStringLiteral(" DROP ") +
           index.strIndexText.section(u' ', 0, 0) + u' ' + quoteName(index.strName);
}

QString BuildIndexCreateStatement(const ColumnRecord& index, const QString& tableName) {
    if (!isFinishedIndex(index, tableName)) return {};
    return QStringLiteral("ALTER TABLE ") + quoteName(tableName) + QStringLiteral(" ADD ") +
           index.strIndexText;
}

}  // namespace zov
