// Which objects a bulk run takes, and whether the other side has them.
#include "catalog/modSchema.h"
#include "core/globals.h"
#include "shell/shell.h"
#include "structcompare/modCompareAll.h"
#include "structcompare/simple_case.h"
#include "util/text.h"

namespace zov {

ObjectType ObjectTypeOfBox(int index) {
    if (index >= 0 && index < 6) return ObjectTypeFromPosition(index);
    if (index == 6) return ObjectType::Constraint;
    if (index == 7) return ObjectType::Permission;
    shell().messageBox(
        QStringLiteral("Wrong index value in Sub CompareAll, llngIndex = %1").arg(index));
    return ObjectType{};
}

QString EncodeObjTypes(const ObjectKindBoxes& boxes) {
    QStringList states;
    for (const bool box : boxes) states += box ? QStringLiteral("1") : QStringLiteral("0");
    return states.join(u',');
}

int comparedKindCount() {
    return globals().gblnAnalyzeConstraints ? 7 : 6;
}

bool ProceedWithThisObject(const QString& shortName, bool selective,
                           const QStringList& sourceObjects, const QStringList& targetObjects) {
    if (shortName.isEmpty()) return false;
    if (!selective) return true;
    if (sourceObjects.isEmpty() || targetObjects.isEmpty()) return false;
    return sourceObjects.contains(shortName) || targetObjects.contains(shortName);
}

bool CompareAll_CheckForDuplicateNames(ObjectType objectType, const CompareSide& first,
                                       const QString& name, const CompareSide& second,
                                       qint32 objectId, qint32& secondId, bool& existsInSecond) {
    constexpr int firstVersionWithSchemas = 9;
    secondId = 0;
    existsInSecond = true;
    if (objectType != ObjectType::Table) return true;
    if (GetMajorVersion(first.server.Version) < firstVersionWithSchemas ||
        GetMajorVersion(second.server.Version) < firstVersionWithSchemas)
        return true;

    QString schema;
    if (!Db_GetObjSchemaById(first.server, objectType, first.database, objectId, schema))
        return false;

    const QString sql =
        BuildObjSQLString(objectType, globals().gblnIgnoreSysObjects,
                          DoubleSingleQuotes(partBehindLastDot(name)), QString(), second.panel);
    std::unique_ptr<Recordset> namesakes;
    GetAdoRS(second.server, adCmdText, sql, namesakes, second.database);
    if (namesakes && namesakes->isOpen()) {
        for (; !namesakes->isEof(); namesakes->MoveNext()) {
            const qint32 id = qint32(namesakes->field(2).toInt64());
            QString otherSchema;
            if (!Db_GetObjSchemaById(second.server, objectType, second.database, id, otherSchema))
                return false;
            if (otherSchema == schema) {
                secondId = id;
                return true;
            }
            shell().pumpEvents();
        }
    }
    existsInSecond = false;
    return true;
}

QSet<QString> NamesOfRecordset(Recordset* recordset) {
    QSet<QString> names;
    if (!recordset || !recordset->isOpen()) return names;
    for (; !recordset->isEof(); recordset->MoveNext())
        names.insert(simpleLower(recordset->field(0).text()));
    return names;
}

bool ObjectExistsInRecordset(const QSet<QString>& names, const QString& name) {
    return names.contains(simpleLower(name));
}

}  // namespace zov
