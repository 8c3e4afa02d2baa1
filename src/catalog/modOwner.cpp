#include "catalog/modOwner.h"

#include "catalog/modSchema.h"
#include "core/error_report.h"
#include "core/globals.h"
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

QString qualified(const QString& schema, const QString& name) {
    return AddSquareBrackets(schema) + u'.' + AddSquareBrackets(name);
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
    try {
        const QString text =
            QStringLiteral(
                "SELECT so.name AS ObjectName, su.name AS Owner FROM sysobjects so INNER "
                "JOIN sysusers su ON so.uid = su.uid WHERE so.name = '") +
            DoubleSingleQuotes(ObjectName) + QStringLiteral("' AND so.xtype = '") + xtypeOf(Type) +
            u'\'';
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
    if (!globals().gblnExtendedNames) return ObjectName;
    const qsizetype dot = ObjectName.indexOf(u'.');
    const QString plainName = dot < 0 ? ObjectName : ObjectName.mid(dot + 1);

    if (dot < 0 && GetMajorVersion(Server.Version) >= 9) {
        QString schema;
        if (Id >= 1) {
            if (!Db_GetObjSchemaById(Server, Type, DbName, Id, schema)) return ObjectName;
            if (!schema.isEmpty()) return qualified(schema, plainName);
        } else {
            schema = GetSchemaForObject(Server, DbName, plainName, Type);
            if (!schema.isEmpty() && schema != QLatin1StringView("dbo"))
                return qualified(schema, plainName);
        }
        return AddSquareBrackets(plainName);
    }
    const QString owner = GetOwner(Server, DbName, plainName, Type);
    if (owner.isEmpty() || owner == QLatin1StringView("dbo")) return AddSquareBrackets(plainName);
    return qualified(owner, plainName);
}

}  // namespace zov
