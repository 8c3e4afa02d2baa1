#include "scripting/modPermissions.h"

#include "core/error_report.h"
#include "shell/shell.h"
#include "util/text.h"

namespace zov {
namespace {

constexpr const char* Module = "modPermissions";

}  // namespace

std::vector<PermissionRecord>& permissionsOfSide(int side) {
    static std::vector<PermissionRecord> sides[2];
    return sides[side == 0 ? 0 : 1];
}

bool ConvertRecordsetToPermissionsArray(Recordset& rows,
                                        std::vector<PermissionRecord>& permissions) {
    permissions.clear();
    return guarded(Module, "ConvertRecordsetToPermissionsArray", false, [&] {
        if (!rows.isOpen()) return true;
        for (; !rows.isEof(); rows.MoveNext()) {
            // By position: the query's tail brings further fields of the same names.
            PermissionRecord& record = permissions.emplace_back();
            record.lngId = qint32(permissions.size());
            record.lngObjectId = qint32(rows.field(0).toInt64());
            record.strTypeDesc = rows.field(1).text();
            record.strSchemaName = rows.field(2).text();
            record.strObjectName = rows.field(3).text();
            record.lngMinorId = qint32(rows.field(4).toInt64());
            record.strMinorName = rows.field(5).text();
            record.strState = rows.field(6).text();
            record.strPermissionName = rows.field(7).text();
            record.strObjectType = Trim(rows.field(8).text());
        }
        return true;
    });
}

std::vector<ObjectListEntry> ConvertPermissionsArrayToTwoStrArray(
    const std::vector<PermissionRecord>& permissions) {
    std::vector<ObjectListEntry> rows;
    rows.reserve(permissions.size());
    for (const PermissionRecord& permission : permissions) {
        ObjectListEntry& row = rows.emplace_back();
        row.Name = permission.strPermissionName + u' ' + GetObjectShortName(permission) + u' ' +
                   permission.strObjectName;
        row.RefDate = permission.strState;
        row.Id = permission.lngId;
    }
    return rows;
}

QString GetPermissionText(int side, qint32 number) {
    return guarded(Module, "GetPermissionText", QString(), [&]() -> QString {
        if (side != 0 && side != 1) {
            shell().messageBox(QStringLiteral("GetPermissionText - wrong parameter passed."), {},
                               BoxIcon::None);
            return {};
        }
        const std::vector<PermissionRecord>& permissions = permissionsOfSide(side);
        if (number < 1 || size_t(number) > permissions.size()) return {};
        const PermissionRecord& permission = permissions[size_t(number - 1)];
        QString text = permission.strPermissionName + CRLF + permission.strTypeDesc + u' ';
        if (!permission.strSchemaName.isEmpty()) text += permission.strSchemaName + u'.';
        text += permission.strObjectName;
        if (permission.lngMinorId > 0) text += u'.' + permission.strMinorName;
        return text + CRLF + permission.strState;
    });
}

QString GetObjectShortName(const PermissionRecord& permission) {
    if (permission.strObjectType == QLatin1StringView("IF")) return QStringLiteral("FUNCTION");
    if (permission.strObjectType == QLatin1StringView("V")) return QStringLiteral("VIEW");
    if (permission.strObjectType == QLatin1StringView("U"))
        return permission.lngMinorId > 0 ? QStringLiteral("TABLE COLUMN") : QStringLiteral("TABLE");
    return permission.strTypeDesc;
}

}  // namespace zov
