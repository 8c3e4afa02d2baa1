#include "scripting/modNew.h"

#include "catalog/modOwner.h"
#include "core/error_report.h"
#include "core/globals.h"
#include "core/modIgnoreColumns.h"
#include "scripting/modPermissions.h"
#include "shell/shell.h"
#include "util/text.h"

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
bool textOf(const ServerInfo& server, ObjectType type, const QString& name, const QString& dbName,
            qint32 id, int panel, QString& text) {
    switch (type) {
        case ObjectType::Procedure:
        case ObjectType::Function:
        case ObjectType::View:
        case ObjectType::Trigger:
            text = GetObjectText(server, name, dbName, type);
            return true;
        case ObjectType::Table:
            text = GetTableStructureWithIndexes(server, name, dbName, false, nullptr, id);
            return true;
        case ObjectType::Relationship:
            text = GetRelationshipText(server, name, dbName);
            return true;
        case ObjectType::Constraint:
            text = GetConstraintText(server, name, dbName);
            return true;
        case ObjectType::Permission:
            text = GetPermissionText(panel, id);
            return true;
    }
    return false;
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
            // An id alone may come with an empty list; then there is no row to read.
            const int row = list.selectedIndex();
            const qint32 id = objectId >= 1 || row < 0 ? objectId : list.row(row).id;
            const QString name =
                !selProcName.isEmpty() || row < 0 ? selProcName : list.row(row).name;
            LogWrite(QStringLiteral("lstrProcedure = ") + name);
            step = 6;
            QString text;
            if (!textOf(server, objectType, name, dbName, id, panel, text)) {
                shell().messageBox(QStringLiteral("SHOULDN't HAPPEN"), {}, BoxIcon::None);
                return;
            }
            step = 7;
            if (text.isEmpty()) return;
            pane.setText(text);
            pane.setCaret(0);
        },
        [&] { return QStringLiteral("Line num: %1").arg(step); });
    list.Tag.clear();
    LogWrite(QStringLiteral("End UpdateProcedureTextBox"));
}

QString GetObjectText(const ServerInfo& server, const QString& objectName, const QString& dbName,
                      ObjectType) {
    return guarded(Module, "GetObjectText", QString(), [&] {
        return TrimBlanksAndLineBreaks(
            GetObjectTextFromComments(server, dbName, DoubleSingleQuotes(objectName)));
    });
}

QString GetObjectTextOnConnection(const std::shared_ptr<Connection>& connection, const ServerInfo&,
                                  const QString& objectName, const QString&) {
    return guarded(Module, "GetObjectTextOnConnection", QString(), [&] {
        return TrimBlanksAndLineBreaks(
            GetObjectTextFromComments_OnConnection(connection, DoubleSingleQuotes(objectName)));
    });
}

QString GetTableStructureWithIndexes(const ServerInfo& server, const QString& tableName,
                                     const QString& dbName, bool useIgnoredColumns,
                                     qint32* ignoredColumnCount, qint32 objectId,
                                     const QString& lineSuffix, bool clusteredOnly,
                                     const QString& indexNameSuffix) {
    TableStructure structure;
    GetTableStructure(server, dbName, tableName, DoubleSingleQuotes(tableName), structure,
                      useIgnoredColumns, IgnoreMode::StructureComparison, objectId, lineSuffix);
    if (ignoredColumnCount) *ignoredColumnCount = structure.ignoredColumnCount;
    QString indexes;
    if (clusteredOnly || !globals().gblnIgnoreIndexes)
        indexes = GetIndexes(server, tableName, dbName, clusteredOnly, indexNameSuffix);
    if (indexes.isEmpty()) return structure.structureText;
    return structure.structureText + CRLF + CRLF + indexes;
}

QString GetRelationshipText(const ServerInfo& server, const QString& relationshipName,
                            const QString& dbName) {
    return guarded(Module, "GetRelationshipText", QString(), [&]() -> QString {
        std::unique_ptr<Recordset> rs;
        GetAdoRS(
            server, adCmdText,
            QStringLiteral("SELECT so.name AS foreignkey, scf.name AS foreigncolumn, sor.name AS "
                           "referencedtable, scr.name AS referencedcolumn, sof.name AS tablename "
                           "FROM sysreferences sr INNER JOIN sysobjects so ON sr.constid = so.id "
                           "INNER JOIN sysobjects sof ON sof.id = sr.fkeyid INNER JOIN "
                           "sysobjects sor ON sor.id = sr.rkeyid INNER JOIN syscolumns scf ON "
                           "scf.id = sof.id AND scf.colid = sr.fkey1 INNER JOIN syscolumns scr "
                           "ON scr.id = sor.id AND scr.colid = sr.rkey1 WHERE so.name = '") +
                DoubleSingleQuotes(relationshipName) + QStringLiteral("' ORDER BY scf.name"),
            rs, dbName);
        if (!rs || !rs->isOpen() || rs->isEof()) return {};
        return TrimBlanksAndLineBreaks(QStringLiteral("TABLE ") + rs->field(4).text() +
                                       QStringLiteral("\r\nCONSTRAINT [") + rs->field(0).text() +
                                       QStringLiteral("]\r\nFOREIGN KEY [") + rs->field(1).text() +
                                       QStringLiteral("]\r\nREFERENCES [") + rs->field(2).text() +
                                       QStringLiteral("] [") + rs->field(3).text() + u']');
    });
}

QString GetConstraintText(const ServerInfo& server, const QString& constraintName,
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
                DoubleSingleQuotes(constraintName) +
                QStringLiteral("' AND INDEXPROPERTY(si.id, si.name, 'IsStatistics') = 0 AND "
                               "INDEXPROPERTY(si.id, si.name, 'IsHypothetical') = 0 "),
            rs, dbName);
        if (!rs || !rs->isOpen() || rs->isEof()) return {};
        // The first two lines end in a blank.
        return TrimBlanksAndLineBreaks(
            QStringLiteral("CONSTRAINT [") + rs->field(0).text() +
            QStringLiteral("] \r\nPRIMARY KEY CLUSTERED \r\nON COLUMN [") + rs->field(3).text() +
            QStringLiteral("]\r\nON TABLE [") + rs->field(5).text() + u']');
    });
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
