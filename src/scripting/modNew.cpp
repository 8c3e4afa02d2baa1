#include "scripting/modNew.h"

#include "catalog/modOwner.h"
#include "core/error_report.h"
#include "core/globals.h"
#include "core/modIgnoreColumns.h"
#include "core/run_account.h"
#include "data/snapshots.h"
#include "scripting/modPermissions.h"
#include "shell/shell.h"
#include "util/text.h"

#include <QScopeGuard>

namespace zov {
namespace {

constexpr const char* Module = "modNew";

class ScriptedTexts : public ObjectTexts {
 public:
    void showSelectedObject(const ServerInfo& Server, TextPane& pane, ObjectList& list,
                            ObjectType Type, const QString& DbName, int Index) override {
        UpdateProcedureTextBox(Server, pane, list, Type, DbName, {}, 0, Index);
    }
    std::vector<ObjectListEntry> keepPermissions(Recordset& rows, int Index) override {
        std::vector<PermissionRecord>& permissions = permissionsOfSide(Index);
        ConvertRecordsetToPermissionsArray(rows, permissions);
        return ConvertPermissionsArrayToTwoStrArray(permissions);
    }
};

// False for a type that has no text.
bool textOf(const ServerInfo& server, const ObjectRef& object, const QString& dbName, int panel,
            QString& text) {
    switch (object.kind) {
        case ObjectType::Procedure:
        case ObjectType::Function:
        case ObjectType::View:
        case ObjectType::Trigger:
            text = GetObjectText(server, object, dbName);
            return true;
        case ObjectType::Table:
            text = GetTableStructureWithIndexes(server, object, dbName, false, nullptr);
            return true;
        case ObjectType::Relationship:
            text = GetRelationshipText(server, object, dbName);
            return true;
        case ObjectType::Constraint:
            text = GetConstraintText(server, object, dbName);
            return true;
        case ObjectType::Permission:
            text = GetPermissionText(panel, object.id);
            return true;
    }
    return false;
}

// The selected row's object, or the one that is named or given by its id instead.
ObjectRef chosenObject(const ObjectList& list, ObjectType type, const QString& name, qint32 id) {
    const int row = list.selectedIndex();
    // An id alone may come with an empty list; then there is no row to read.
    ObjectRef object = row < 0 ? objectNamed(name, type, id) : objectOf(list.row(row), type);
    if (!name.isEmpty() && name != object.name && name != object.shownName)
        object = objectNamed(name, type, object.id);
    if (id >= 1 && id != object.id) object = objectNamed(object.name, type, id);
    return object;
}

void accountForUnreadable(const QString& place, const ObjectRef& object) {
    addToAccount({place, QStringLiteral("reading a text"),
                  QStringLiteral("The text of %1 can't be read: it is encrypted, hidden from this "
                                 "login, or the object is gone.")
                      .arg(object.shownName.isEmpty() ? object.name : object.shownName),
                  0, true});
}

QString placeOf(const ServerInfo& server, const QString& dbName) {
    return server.Name + u'.' + dbName;
}

/// The condition on an id behind that on the name: nothing for a name that stands once.
QString idCondition(const QString& column, const ObjectRef& object) {
    if (!object.hasNamesakes || object.id < 1) return {};
    return QStringLiteral("AND ") + column + QStringLiteral(" = %1 ").arg(object.id);
}
qint32 idWhereNeeded(const ObjectRef& object) {
    return object.hasNamesakes ? object.id : 0;
}

// A source as the server has it, trimmed. One that the server withholds goes into the account; a
// statement that failed is in it already.
template <typename Read>
QString sourceText(const QString& place, const ObjectRef& object, Read read) {
    bool whole = false;
    QString text;
    RunAccount account;
    {
        const KeepAccount keep(account);
        text = read(whole);
    }
    for (const AccountEntry& entry : account.entries()) addToAccount(entry);
    if (!whole && account.isWhole()) accountForUnreadable(place, object);
    return TrimBlanksAndLineBreaks(text);
}

bool isTrimmed(QChar c) {
    return c == u'\r' || c == u'\n' || c == u' ' || c == u'\t';
}

}  // namespace

void UpdateProcedureTextBox(const ServerInfo& server, TextPane& pane, ObjectList& list,
                            ObjectType objectType, const QString& dbName,
                            const QString& selProcName, qint32 objectId, int panel) {
    const WaitPointer wait;
    int step = 1;
    guardedRun(
        Module, "UpdateProcedureTextBox",
        [&] {
            LogWrite(QStringLiteral("Begin UpdateProcedureTextBox, pstrDbName = ") + dbName +
                     QStringLiteral(", pstrSelProcName = ") + selProcName);
            pane.Trouble.clear();
            step = 2;
            int count = objectId < 1 ? list.selectedCount() : 1;
            LogWrite(QStringLiteral("llngCount = %1").arg(count));
            step = 3;
            if (count == 0 && list.rowCount() > 0) {
                list.selectRow(0);
                count = 1;
            }
            step = 4;
            if (count != 1) {
                pane.setText(QStringLiteral("<<Nothing to show>>"));
                return;
            }
            step = 5;
            const ObjectRef object = chosenObject(list, objectType, selProcName, objectId);
            LogWrite(QStringLiteral("lstrProcedure = ") + object.shownName);
            step = 6;
            const bool told = ShowObjectText(server, pane, dbName, object, panel);
            if (!told)
                shell().messageBox(pane.Trouble, QStringLiteral("Cannot Show Text"),
                                   BoxIcon::Exclamation);
        },
        [&] { return QStringLiteral("Line num: %1").arg(step); });
    list.Tag.clear();
    LogWrite(QStringLiteral("End UpdateProcedureTextBox"));
}

bool ShowObjectText(const ServerInfo& server, TextPane& pane, const QString& dbName,
                    const ObjectRef& object, int panel) {
    pane.Trouble.clear();
    RunAccount account;
    QString text;
    // An exception leaves nothing behind that could pass for this object's text.
    auto emptied = qScopeGuard([&] { pane.setText({}); });
    {
        const KeepAccount keep(account);
        if (!textOf(server, object, dbName, panel, text)) {
            shell().messageBox(QStringLiteral("SHOULDN't HAPPEN"), {}, BoxIcon::None);
            emptied.dismiss();
            return true;
        }
    }
    emptied.dismiss();
    bool told = true;
    // A half is no text: what stands there could pass for the whole.
    if (!account.isWhole()) {
        text.clear();
        pane.Trouble = account.entries().front().sentence();
        told = false;
        for (const AccountEntry& entry : account.entries()) {
            addToAccount(entry);
            // Who gave up waiting knows it.
            told |= entry.told || entry.number == ado_error::Cancelled;
        }
    }
    pane.setText(text);
    pane.setCaret(0);
    return told;
}

QString GetObjectText(const ServerInfo& server, const ObjectRef& object, const QString& dbName) {
    return guarded(Module, "GetObjectText", QString(), [&] {
        return sourceText(placeOf(server, dbName), object, [&](bool& whole) {
            return GetObjectTextFromComments(server, dbName, DoubleSingleQuotes(object.name),
                                             idWhereNeeded(object), &whole);
        });
    });
}

QString GetObjectText(const ServerInfo& server, const QString& objectName, const QString& dbName,
                      ObjectType objectType) {
    return GetObjectText(server, objectNamed(objectName, objectType), dbName);
}

QString GetObjectTextOnConnection(const std::shared_ptr<Connection>& connection,
                                  const ServerInfo& server, const ObjectRef& object,
                                  const QString& dbName) {
    return guarded(Module, "GetObjectTextOnConnection", QString(), [&] {
        return sourceText(placeOf(server, dbName), object, [&](bool& whole) {
            return GetObjectTextFromComments_OnConnection(
                connection, DoubleSingleQuotes(object.name), idWhereNeeded(object), &whole);
        });
    });
}

QString GetTableStructureWithIndexes(const ServerInfo& server, const ObjectRef& table,
                                     const QString& dbName, bool useIgnoredColumns,
                                     qint32* ignoredColumnCount, const QString& lineSuffix,
                                     bool clusteredOnly, const QString& indexNameSuffix) {
    TableStructure structure;
    GetTableStructure(server, dbName, table, structure, useIgnoredColumns,
                      IgnoreMode::StructureComparison, lineSuffix);
    if (ignoredColumnCount) *ignoredColumnCount = structure.ignoredColumnCount;
    if (!structure.found) return {};
    QString indexes;
    if (clusteredOnly || !globals().gblnIgnoreIndexes)
        indexes = GetIndexes(server, table, dbName, clusteredOnly, indexNameSuffix);
    if (indexes.isEmpty()) return structure.structureText;
    return structure.structureText + CRLF + CRLF + indexes;
}

QString GetTableStructureWithIndexes(const ServerInfo& server, const QString& tableName,
                                     const QString& dbName, bool useIgnoredColumns,
                                     qint32* ignoredColumnCount, qint32 objectId,
                                     const QString& lineSuffix, bool clusteredOnly,
                                     const QString& indexNameSuffix) {
    return GetTableStructureWithIndexes(server, objectNamed(tableName, ObjectType::Table, objectId),
                                        dbName, useIgnoredColumns, ignoredColumnCount, lineSuffix,
                                        clusteredOnly, indexNameSuffix);
}

namespace {

/// "hr].[" in front of a table of another schema than the one that refers to it.
QString referencedSchema(const Recordset& rs) {
    const QString schema = rs.field(5).text();
    return schema.isEmpty() ? QString() : schema + QStringLiteral("].[");
}

}  // namespace

QString GetRelationshipText(const ServerInfo& server, const ObjectRef& relationship,
                            const QString& dbName) {
    return guarded(Module, "GetRelationshipText", QString(), [&]() -> QString {
        std::unique_ptr<Recordset> rs;
        // The relationship's schema is known to who compares it; that of the table which it refers
        // to may be another, and have a namesake of that table.
        const QString schema = GetMajorVersion(server.Version) >= 9 ? QStringLiteral("SCHEMA_NAME")
                                                                    : QStringLiteral("USER_NAME");
        GetAdoRS(
            server, adCmdText,
            QStringLiteral("SELECT so.name AS foreignkey, scf.name AS foreigncolumn, sor.name AS "
                           "referencedtable, scr.name AS referencedcolumn, sof.name AS tablename, "
                           "CASE WHEN sor.uid = sof.uid THEN '' ELSE ") +
                schema +
                QStringLiteral(
                    "(sor.uid) END AS referencedschema "
                    "FROM sysreferences sr INNER JOIN sysobjects so ON sr.constid = so.id "
                    "INNER JOIN sysobjects sof ON sof.id = sr.fkeyid INNER JOIN "
                    "sysobjects sor ON sor.id = sr.rkeyid INNER JOIN syscolumns scf ON "
                    "scf.id = sof.id AND scf.colid = sr.fkey1 INNER JOIN syscolumns scr "
                    "ON scr.id = sor.id AND scr.colid = sr.rkey1 WHERE so.name = '") +
                DoubleSingleQuotes(relationship.name) + QStringLiteral("' ") +
                idCondition(QStringLiteral("so.id"), relationship) +
                QStringLiteral("ORDER BY scf.name"),
            rs, dbName);
        if (!rs || rs->isEof()) {
            if (rs) accountForUnreadable(placeOf(server, dbName), relationship);
            return {};
        }
        return TrimBlanksAndLineBreaks(
            QStringLiteral("TABLE ") + rs->field(4).text() + QStringLiteral("\r\nCONSTRAINT [") +
            rs->field(0).text() + QStringLiteral("]\r\nFOREIGN KEY [") + rs->field(1).text() +
            QStringLiteral("]\r\nREFERENCES [") + referencedSchema(*rs) + rs->field(2).text() +
            QStringLiteral("] [") + rs->field(3).text() + u']');
    });
}

QString GetRelationshipText(const ServerInfo& server, const QString& relationshipName,
                            const QString& dbName) {
    return GetRelationshipText(server, objectNamed(relationshipName, ObjectType::Relationship),
                               dbName);
}

QString GetConstraintText(const ServerInfo& server, const ObjectRef& constraint,
                          const QString& dbName) {
    return guarded(Module, "GetConstraintText", QString(), [&]() -> QString {
        std::unique_ptr<Recordset> rs;
        GetAdoRS(
            server, adCmdText,
            QStringLiteral(
                "SELECT si.name as [name], so2.refdate AS refdate, so2.id AS id, sc.name AS "
                "[column], "
                "sk.indid, so2.name as [tablename] FROM sysobjects so INNER JOIN sysindexkeys sk "
                "ON "
                "so.parent_obj = sk.id INNER JOIN sysindexes si ON sk.id = si.id AND sk.indid = "
                "si.indid INNER JOIN syscolumns sc ON sk.id = sc.id AND sk.colid = sc.colid INNER "
                "JOIN sysobjects so2 ON so.parent_obj = so2.id WHERE si.indid = 1 AND  si.name = "
                "'") +
                DoubleSingleQuotes(constraint.name) + QStringLiteral("' ") +
                idCondition(QStringLiteral("so2.id"), constraint) +
                QStringLiteral("AND INDEXPROPERTY(si.id, si.name, 'IsStatistics') = 0 AND "
                               "INDEXPROPERTY(si.id, si.name, 'IsHypothetical') = 0 "),
            rs, dbName);
        if (!rs || rs->isEof()) {
            if (rs) accountForUnreadable(placeOf(server, dbName), constraint);
            return {};
        }
        // The first two lines end in a blank.
        return TrimBlanksAndLineBreaks(
            QStringLiteral("CONSTRAINT [") + rs->field(0).text() +
            QStringLiteral("] \r\nPRIMARY KEY CLUSTERED \r\nON COLUMN [") + rs->field(3).text() +
            QStringLiteral("]\r\nON TABLE [") + rs->field(5).text() + u']');
    });
}

QString GetConstraintText(const ServerInfo& server, const QString& constraintName,
                          const QString& dbName) {
    return GetConstraintText(server, objectNamed(constraintName, ObjectType::Constraint), dbName);
}

QString RecordsetToString(const ListingProgress& progress, Recordset* objects,
                          ObjectType objectType, const ServerInfo& server, const QString& dbName,
                          bool numbered) {
    QString text;
    guardedRun(Module, "RecordsetToString", [&] {
        if (!objects || !objects->isOpen() || objects->RecordCount() == 0) return;
        int counter = 0;
        for (objects->MoveFirst(); !objects->isEof(); objects->MoveNext()) {
            if (progress.cancelled && progress.cancelled()) return;
            ++counter;
            QString name = objects->field(0).text();
            if (progress.showName) progress.showName(name);
            shell().pumpEvents();
            if (objectType == ObjectType::Table) {
                name = GetExtendedObjectName(server, dbName, name, objectType,
                                             qint32(objects->field(2).toInt64()));
            }
            if (objectType == ObjectType::Table && isSnapshot(server)) {
                name += QStringLiteral(" (rows not known)");
            } else if (objectType == ObjectType::Table) {
                std::unique_ptr<Recordset> rs;
                if (GetAdoRS(server, adCmdText,
                             QStringLiteral("SELECT COUNT(*) AS RecsCount FROM ") + name, rs,
                             dbName) == -1 ||
                    !rs || !rs->isOpen() || rs->isEof()) {
                    text +=
                        QStringLiteral("\r\n*** OPERATION ABORTED - ERROR OCCURRED.***\r\n\r\n");
                    return;
                }
                const qint64 count = rs->field(QStringLiteral("RecsCount")).toInt64();
                name += QStringLiteral(" (") + formatCount(count) +
                        (count == 1 ? QStringLiteral(" record)") : QStringLiteral(" records)"));
                shell().pumpEvents();
            }
            if (numbered) text += QString::number(counter).rightJustified(4) + QStringLiteral("  ");
            text += name + CRLF;
        }
    });
    return text;
}

QString TrimBlanksAndLineBreaks(const QString& text) {
    if (text.size() <= 1) return text;
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && isTrimmed(text[begin])) ++begin;
    while (end > begin && isTrimmed(text[end - 1])) --end;
    return text.mid(begin, end - begin);
}

ObjectTexts& objectTexts() {
    static ScriptedTexts texts;
    return texts;
}

}  // namespace zov
