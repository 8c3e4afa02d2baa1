#include "catalog/mdlObjects.h"

#include "catalog/modSchema.h"
#include "core/error_report.h"
#include "core/globals.h"
#include "shell/shell.h"
#include "util/text.h"

#include <QLocale>

namespace zov {
namespace {

constexpr const char* Module = "modObjects";

struct TypeNames {
    ObjectType type;
    QStringView singular;
    QStringView plural;
    QStringView comboEntry;
};
constexpr TypeNames typeNames[] = {
    {ObjectType::Table, u"Table", u"tables", u"Tables"},
    {ObjectType::Procedure, u"Procedure", u"procedures", u"Procedures"},
    {ObjectType::Function, u"Function", u"functions", u"Functions"},
    {ObjectType::View, u"View", u"views", u"Views"},
    {ObjectType::Trigger, u"Trigger", u"triggers", u"Triggers"},
    {ObjectType::Relationship, u"Relationship", u"relationships", u"Relationships"},
    {ObjectType::Constraint, u"Constraint", u"constraints", u"Constraints"},
    {ObjectType::Permission, u"Permission", u"permissions", u"Permissions"},
};

const QString relationshipsText = QStringLiteral(
    "SELECT so.name AS name, so.refdate AS refdate, so.id AS id FROM sysreferences sr INNER JOIN "
    "sysobjects so ON sr.constid = so.id INNER JOIN sysobjects sof ON sof.id = sr.fkeyid INNER "
    "JOIN "
    "sysobjects sor ON sor.id = sr.rkeyid INNER JOIN syscolumns scf ON scf.id = sof.id AND "
    "scf.colid "
    "= sr.fkey1 INNER JOIN syscolumns scr ON scr.id = sor.id AND scr.colid = sr.rkey1 ORDER BY "
    "so.name");

const QString constraintsText = QStringLiteral(
    "SELECT DISTINCT si.name as [name], so2.refdate AS refdate, so2.id AS id  FROM sysobjects so "
    "INNER JOIN sysindexkeys sk ON so.parent_obj = sk.id INNER JOIN sysindexes si ON sk.id = si.id "
    "AND sk.indid = si.indid INNER JOIN syscolumns sc ON sk.id = sc.id AND sk.colid = sc.colid "
    "INNER "
    "JOIN sysobjects so2 ON so.parent_obj = so2.id WHERE si.indid = 1 AND  si.name LIKE 'pk%' AND "
    "INDEXPROPERTY(si.id, si.name, 'IsStatistics') = 0 AND INDEXPROPERTY(si.id, si.name, "
    "'IsHypothetical') = 0 ORDER BY si.name");

QString permissionsText(bool ignoreSystemObjects) {
    QString text = QStringLiteral(
        "SELECT b.object_id, b.[type_desc], c.[name] AS schema_name, b.[name], a.[minor_id], CASE "
        "WHEN a.[minor_id] > 0 THEN (SELECT NAME    FROM sys.Columns    WHERE object_id = "
        "a.major_id "
        "   AND column_id = a.minor_id) ELSE '' END AS minor_name, a.[state_desc], "
        "a.[permission_name], b.[type] as object_type, * FROM sys.database_permissions a LEFT JOIN "
        "sys.objects b ON b.object_id = a.major_id INNER JOIN sys.schemas c ON b.schema_id = "
        "c.schema_id ");
    if (ignoreSystemObjects) text += QLatin1StringView("WHERE major_id > 0 ");
    return text + QLatin1StringView(" ORDER BY b.[type_desc], schema_name, b.[name] ");
}

// The condition on sysobjects that picks a type; empty for types that have a text of their own.
QString typeCondition(ObjectType type) {
    switch (type) {
        case ObjectType::Procedure:
            return QStringLiteral("OBJECTPROPERTY(id, N'IsProcedure') = 1");
        case ObjectType::Function:
            return QStringLiteral(
                "OBJECTPROPERTY(id, N'IsInlineFunction') = 1 or OBJECTPROPERTY(id, "
                "N'IsScalarFunction') = 1  or OBJECTPROPERTY(id, N'IsTableFunction') = 1");
        case ObjectType::View:
            return QStringLiteral("OBJECTPROPERTY(id, N'IsView') = 1");
        case ObjectType::Trigger:
            return QStringLiteral("OBJECTPROPERTY(id, N'IsTrigger') = 1");
        case ObjectType::Table:
            return QStringLiteral("OBJECTPROPERTY(id, N'IsUserTable') = 1");
        default:
            return {};
    }
}

// Rights are listed from sys. views, which servers below version 9 don't have: no rows there.
bool canBeListed(const ServerInfo& server, ObjectType type) {
    return type != ObjectType::Permission || GetMajorVersion(server.Version) >= 9;
}

}  // namespace

QString GetObjectTypeName(ObjectType Type, bool Plural) {
    for (const TypeNames& names : typeNames)
        if (names.type == Type) return (Plural ? names.plural : names.singular).toString();
    return Plural ? QStringLiteral("objects") : QStringLiteral("Object");
}

ObjectType ObjectTypeFromPosition(int position) {
    if (position < 0 || position > 5) return ObjectType(0);
    return typeNames[position].type;
}

void LoadObjectTypesCombo(ChoiceList& Combo) {
    Combo.Tag = QStringLiteral("OFF");
    Combo.clear();
    for (const TypeNames& names : typeNames) {
        if (names.type == ObjectType::Constraint && !globals().gblnAnalyzeConstraints) continue;
        if (names.type == ObjectType::Permission && !globals().gblnPermissionsEnabled) continue;
        Combo.addItem(names.comboEntry.toString(), qint32(names.type));
    }
    Combo.selectIndex(0);
    Combo.Tag.clear();
}

QString BuildObjSQLString(ObjectType Type, bool IgnoreSysObjects, const QString& ObjectName,
                          const QString& NameCondition, int Index) {
    switch (Type) {
        case ObjectType::Relationship:
            return relationshipsText;
        case ObjectType::Constraint:
            return constraintsText;
        case ObjectType::Permission:
            return permissionsText(globals().gblnIgnoreSysObjects);
        default:
            break;
    }
    QString where = typeCondition(Type);
    if (where.isEmpty()) {
        shell().messageBox(QStringLiteral("BuildObjSQLString, wrong object type passed"), {},
                           BoxIcon::None);
        return {};
    }

    QString join, schemaCondition;
    const bool filtered = GetSchemaFilter(Type, IgnoreSysObjects, ObjectName, NameCondition, Index,
                                          join, schemaCondition) ||
                          GetOwnerFilter(Type, IgnoreSysObjects, ObjectName, NameCondition, Index,
                                         join, schemaCondition);
    // Behind the OR list of functions this binds to the last kind alone, and so do the conditions
    // below: that is how the lists have always come.
    if (IgnoreSysObjects) where += QLatin1StringView(" and xtype <> 'S' ");
    if (!ObjectName.isEmpty())
        where += QLatin1StringView(" and name = '") + ObjectName + QLatin1StringView("' ");
    if (!NameCondition.isEmpty()) where += QLatin1StringView(" and [name] ") + NameCondition;

    if (filtered)
        return QStringLiteral("select name, refdate, id from sysobjects ") + join +
               QLatin1StringView(" where ") + where + schemaCondition +
               QLatin1StringView(" order by name");
    return QStringLiteral("select name, refdate, id from sysobjects where ") + where +
           QLatin1StringView(" order by name");
}

void LoadObjects(const ServerInfo& Server, ObjectList& pvlSqlObj, TextPane& txtTXProc,
                 ObjectType Type, const QString& DbName, bool SelectFirst,
                 const QString& NameCondition, int Index, ObjectTexts* texts, bool* Busy,
                 const ObjectDirectory* directory) {
    bool unwatched = false;
    const ScopedValue<bool> busy(Busy ? *Busy : unwatched, true);
    guardedRun("modNew", "LoadObjects", [&] {
        std::vector<ObjectListEntry> list;
        if (canBeListed(Server, Type)) {
            std::unique_ptr<Recordset> rs;
            GetAdoRS(
                Server, adCmdText,
                BuildObjSQLString(Type, globals().gblnIgnoreSysObjects, {}, NameCondition, Index),
                rs, DbName);
            if (rs && rs->isOpen()) {
                if (Type != ObjectType::Permission)
                    RecordsetToObjectList(*rs, list, 0);
                else if (texts)
                    list = texts->keepPermissions(*rs, Index);
                rs->Close();
            }
        }
        if (Type != ObjectType::Permission && GetMajorVersion(Server.Version) >= 9 &&
            ListHasAdjacentDuplicates(list))
            FillSchemasForDuplicates(Server, Type, DbName, list);
        if (Type != ObjectType::Permission && !list.empty()) {
            DescribeEntries(directory ? *directory : ObjectDirectory::read(Server, DbName), list);
            if (GetMajorVersion(Server.Version) >= 9) showSchemasOfNamesakes(list);
        }
        LoadListView(pvlSqlObj, list);
        if (SelectFirst && texts) {
            texts->showSelectedObject(Server, txtTXProc, pvlSqlObj, Type, DbName, Index);
            pvlSqlObj.refresh();
        }
    });
}

void LoadObjects_ToRecordset(const std::shared_ptr<Connection>& Connection,
                             std::unique_ptr<Recordset>& Rs, ObjectType Type, int Index) {
    guardedRun("modNew", "LoadObjects_ToRecordset", [&] {
        GetAdoRS_OnConnection(
            Connection, adCmdText,
            BuildObjSQLString(Type, globals().gblnIgnoreSysObjects, {}, {}, Index), Rs);
    });
}

bool RecordsetToObjectList(Recordset& Rs, std::vector<ObjectListEntry>& List, qint32 Mode) {
    List.clear();
    if (!Rs.isOpen()) return false;
    for (; !Rs.isEof(); Rs.MoveNext()) {
        ObjectListEntry& entry = List.emplace_back();
        entry.Name = entry.ObjectName = Rs.field(0).text();
        entry.RefDate = Rs.field(1).text();
        entry.Id = qint32(Rs.field(2).toInt64());
        entry.Mode = Mode;
    }
    return !List.empty();
}

bool ListHasAdjacentDuplicates(const std::vector<ObjectListEntry>& List) {
    for (size_t i = 1; i < List.size(); ++i)
        if (List[i].Name == List[i - 1].Name) return true;
    return false;
}

void FillSchemasForDuplicates(const ServerInfo& Server, ObjectType Type, const QString& DbName,
                              std::vector<ObjectListEntry>& List) {
    const auto lookUp = [&](ObjectListEntry& entry) {
        if (!entry.Schema.isEmpty()) return true;
        const bool answered = Db_GetObjSchemaById(Server, Type, DbName, entry.Id, entry.Schema);
        shell().pumpEvents();
        return answered;
    };
    // A name gets its schema only when the walk leaves it behind: the next comparison needs it
    // bare.
    const auto pass = [](ObjectListEntry& entry) {
        if (!entry.Schema.isEmpty()) entry.Name = entry.Schema + u'.' + entry.Name;
    };
    for (size_t i = 0; i + 1 < List.size(); ++i) {
        if (List[i].Name == List[i + 1].Name && !(lookUp(List[i]) && lookUp(List[i + 1]))) return;
        pass(List[i]);
    }
    if (!List.empty()) pass(List.back());
}

void DescribeEntries(const ObjectDirectory& directory, std::vector<ObjectListEntry>& List) {
    QHash<QString, int> loose;
    for (const ObjectListEntry& entry : List) ++loose[looseName(entry.ObjectName)];
    for (ObjectListEntry& entry : List) {
        if (entry.Schema.isEmpty()) entry.Schema = directory.schemaOf(entry.Id);
        entry.HasNamesakes =
            directory.isShared(entry.ObjectName) || loose.value(looseName(entry.ObjectName)) > 1;
    }
}

void showSchemasOfNamesakes(std::vector<ObjectListEntry>& List) {
    QHash<QString, int> namesakes;
    for (const ObjectListEntry& entry : List) ++namesakes[entry.ObjectName];
    for (ObjectListEntry& entry : List)
        if (namesakes.value(entry.ObjectName) > 1 && !entry.Schema.isEmpty())
            entry.Name = entry.Schema + u'.' + entry.ObjectName;
}

void LoadListView(ObjectList& pvlSqlObj, const std::vector<ObjectListEntry>& List) {
    std::vector<ObjectListRow> rows;
    rows.reserve(List.size());
    for (const ObjectListEntry& entry : List)
        rows.push_back({entry.Name, entry.RefDate, entry.Id, entry.Schema, entry.ObjectName,
                        entry.HasNamesakes});
    pvlSqlObj.setRows(std::move(rows));
}

QString GetObjectToolTip(const ObjectListRow& row) {
    const QString id = row.id == 0 ? QString() : formatCount(row.id);
    return QStringLiteral("Id: ") + id + QStringLiteral(", Name: ") + row.name +
           QStringLiteral(", Ref. Date: ") + row.refDate;
}

bool GetAllObjectsOfType(const ServerInfo& Server, const QString& DbName, ObjectType Type,
                         std::vector<ObjectListEntry>& Names, int Index) {
    return guarded(Module, "GetAllObjectsOfType", false, [&] {
        Names.clear();
        if (!canBeListed(Server, Type)) return true;
        std::unique_ptr<Recordset> rs;
        if (GetAdoRS(Server, adCmdText,
                     BuildObjSQLString(Type, globals().gblnIgnoreSysObjects, {}, {}, Index), rs,
                     DbName) == -1) {
            shell().messageBox(
                QStringLiteral("Couldn't retrieve list of all ") + GetObjectTypeName(Type, true),
                {}, BoxIcon::Exclamation);
            return false;
        }
        if (rs && RecordsetToObjectList(*rs, Names, 0) && Type != ObjectType::Permission)
            DescribeEntries(ObjectDirectory::read(Server, DbName), Names);
        return true;
    });
}

bool GetListOfAllObjects(const ServerInfo& Server, const QString& DbName,
                         std::vector<ObjectListEntry>& Objects, int Index) {
    Objects.clear();
    for (ObjectType type : {ObjectType::Procedure, ObjectType::Function, ObjectType::View,
                            ObjectType::Trigger, ObjectType::Table, ObjectType::Relationship,
                            ObjectType::Constraint, ObjectType::Permission}) {
        std::vector<ObjectListEntry> names;
        if (!GetAllObjectsOfType(Server, DbName, type, names, Index)) return false;
        std::move(names.begin(), names.end(), std::back_inserter(Objects));
    }
    return true;
}

QStringList GetListOfAllColumns(const ServerInfo& Server, const QString& DbName,
                                const QString& TableName) {
    return guarded(Module, "GetListOfAllColumns", QStringList(), [&] {
        QString text = QStringLiteral(
            "SELECT sco.[name] AS [column] FROM sysobjects sob INNER JOIN syscolumns sco ON sob.id "
            "= "
            "sco.id INNER JOIN systypes sty ON sco.xtype = sty.xtype AND sco.xusertype = "
            "sty.xusertype ");
        if (!TableName.isEmpty())
            text += QStringLiteral("WHERE sob.name = '") + DoubleSingleQuotes(TableName) +
                    QStringLiteral("' ");
        text += QStringLiteral("ORDER BY sco.[name]");

        const ScopedValue<bool> silent(globals().gblnSuppressConnErrors, true);
        QStringList columns;
        std::unique_ptr<Recordset> rs;
        if (GetAdoRS(Server, adCmdText, text, rs, DbName) == -1 || !rs || !rs->isOpen())
            return columns;
        for (; !rs->isEof(); rs->MoveNext()) columns.push_back(rs->field(0).text());
        return columns;
    });
}

bool IsItDbObject(const QString& Word, const std::vector<ObjectListEntry>& Objects) {
    const QString word = Trim(Word).toLower();
    if (word.isEmpty()) return false;
    for (const ObjectListEntry& object : Objects)
        if (object.Name == word) return true;
    return false;
}

}  // namespace zov
