#include "catalog/modOwner.h"

#include "catalog/modSchema.h"
#include "core/error_report.h"
#include "core/globals.h"
#include "data/sql_names.h"
#include "shell/shell.h"
#include "util/text.h"

namespace zov {
namespace {

constexpr const char* Module = "modOwner";

QString ownersText(bool ordered) {
    QString text = QStringLiteral(
        "SELECT DISTINCT su.name AS Owner FROM sysobjects so INNER JOIN sysusers su ON so.uid = "
        "su.uid ");
    if (ordered) text += QLatin1StringView("ORDER BY su.name");
    return text;
}

QStringList readOwners(const ServerInfo& server, const QString& database, bool ordered) {
    QStringList owners;
    std::unique_ptr<Recordset> rs;
    if (GetAdoRS(server, adCmdText, ownersText(ordered), rs, database) == -1 || !rs ||
        !rs->isOpen())
        return owners;
    for (; !rs->isEof(); rs->MoveNext()) owners.push_back(rs->field(0).text());
    return owners;
}

QString xtypeOf(ObjectType type) {
    switch (type) {
        case ObjectType::Procedure:
            return QStringLiteral("P");
        case ObjectType::Function:
            return QStringLiteral("FN");
        case ObjectType::View:
            return QStringLiteral("V");
        case ObjectType::Trigger:
            return QStringLiteral("TR");
        case ObjectType::Table:
            return QStringLiteral("U");
        case ObjectType::Relationship:
            return QStringLiteral("F");
        default:
            return {};
    }
}

// "[owner].[name]", without the owner when that is dbo or not known.
QString nameWithOwner(const ServerInfo& server, const QString& database, const ObjectRef& object) {
    const QString owner = GetOwner(server, database, object);
    return quotedName(owner == QLatin1StringView("dbo") ? QString() : owner, object.name);
}

}  // namespace

qint32 GetAllOwners(const ServerInfo& Server, const QString& DbName, QString& OwnerList) {
    OwnerList.clear();
    return guarded(Module, "GetAllOwners", qint32(0), [&] {
        const QStringList owners = readOwners(Server, DbName, false);
        OwnerList = owners.join(u',');
        return qint32(owners.size());
    });
}

qint32 GetAllOwnersIntoArray(const ServerInfo& Server, const QString& DbName, QStringList& Owners) {
    Owners.clear();
    return guarded(Module, "GetAllOwnersIntoArray", qint32(0), [&] {
        Owners = readOwners(Server, DbName, true);
        return qint32(Owners.size());
    });
}

QString GetOwner(const ServerInfo& Server, const QString& DbName, const QString& ObjectName,
                 ObjectType Type) {
    return GetOwner(Server, DbName, objectNamed(ObjectName, Type));
}

QString GetOwner(const ServerInfo& Server, const QString& DbName, const ObjectRef& Object) {
    try {
        QString text =
            QStringLiteral(
                "SELECT so.name AS ObjectName, su.name AS Owner FROM sysobjects so INNER "
                "JOIN sysusers su ON so.uid = su.uid WHERE so.name = '") +
            DoubleSingleQuotes(Object.name) + QStringLiteral("' AND so.xtype = '") +
            xtypeOf(Object.kind) + u'\'';
        if (Object.hasNamesakes && Object.id >= 1)
            text += QStringLiteral(" AND so.id = %1").arg(Object.id);
        std::unique_ptr<Recordset> rs;
        if (GetAdoRS(Server, adCmdText, text, rs, DbName) == -1 || !rs || !rs->isOpen() ||
            rs->isEof())
            return {};
        return rs->field(1).text();
    } catch (...) {
        const CaughtError error = caughtError();
        shell().messageBox(
            QStringLiteral("Error in Function GetOwner, error nr %1 (").arg(error.number) +
                error.description + QStringLiteral(")."),
            {}, BoxIcon::None);
        return {};
    }
}

void LoadOwners(const ServerInfo& Server, const QString& DbName, ChoiceList& cmbOwners) {
    if (!globals().gblnShowOwners) return;
    QString owners;
    const qint32 count = GetAllOwners(Server, DbName, owners);
    cmbOwners.Tag = QStringLiteral("OFF");
    cmbOwners.clear();
    cmbOwners.addItem(QStringLiteral("All Owners"));
    if (count > 0)
        for (const QString& owner : owners.split(u',')) cmbOwners.addItem(owner);
    cmbOwners.selectIndex(0);
    // The selection above must not load the list, a choice by the user must.
    cmbOwners.Tag.clear();
}

QString GetExtendedObjectName(const ServerInfo& Server, const QString& DbName,
                              const QString& ObjectName, ObjectType Type, qint32 Id) {
    const qsizetype dot = ObjectName.indexOf(u'.');
    ObjectRef object = objectNamed(ObjectName.mid(dot + 1), Type, Id);
    object.shownName = ObjectName;
    // What stands in front of the point is an owner by hearsay: the server's answer counts.
    if (dot >= 0 && globals().gblnExtendedNames) return nameWithOwner(Server, DbName, object);
    return GetExtendedObjectName(Server, DbName, object);
}

QString GetExtendedObjectName(const ServerInfo& Server, const QString& DbName,
                              const ObjectRef& Object) {
    if (!globals().gblnExtendedNames)
        return Object.shownName.isEmpty() ? Object.name : Object.shownName;
    const bool knowsSchemas = GetMajorVersion(Server.Version) >= 9;
    if (!Object.schema.isEmpty()) {
        const bool needed = knowsSchemas || Object.schema != QLatin1StringView("dbo");
        return quotedName(needed ? Object.schema : QString(), Object.name);
    }
    if (!knowsSchemas) return nameWithOwner(Server, DbName, Object);
    QString schema;
    if (Object.id >= 1) {
        if (!Db_GetObjSchemaById(Server, Object.kind, DbName, Object.id, schema))
            return isRegularName(Object.name) ? Object.name : quoteName(Object.name);
        return quotedName(schema, Object.name);
    }
    schema = GetSchemaForObject(Server, DbName, Object.name, Object.kind);
    return quotedName(schema == QLatin1StringView("dbo") ? QString() : schema, Object.name);
}

}  // namespace zov
