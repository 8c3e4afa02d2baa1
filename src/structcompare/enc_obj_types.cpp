#include "structcompare/enc_obj_types.h"

#include <iterator>

namespace zov {
namespace {

struct Flag {
    ObjectType type;
    const char* name;
};
constexpr Flag Flags[] = {
    {ObjectType::Table, "Tables"},           {ObjectType::Procedure, "Procedures"},
    {ObjectType::Function, "Functions"},     {ObjectType::View, "Views"},
    {ObjectType::Trigger, "Triggers"},       {ObjectType::Relationship, "Relationships"},
    {ObjectType::Constraint, "Constraints"}, {ObjectType::Permission, "Permissions"},
};
constexpr int FlagCount = int(std::size(Flags));

QString withFlag(int set) {
    QStringList flags;
    for (int flag = 0; flag < FlagCount; ++flag)
        flags += flag == set ? QStringLiteral("1") : QStringLiteral("0");
    return flags.join(u',');
}

}  // namespace

QString ObjectTypeToEncObjTypes(ObjectType Type) {
    if (Type == ObjectType{}) return withFlag(-1);
    for (int flag = 0; flag < FlagCount; ++flag)
        if (Flags[flag].type == Type) return withFlag(flag);
    return {};
}

int EncObjTypesToIndex(const QString& EncObjTypes) {
    for (int flag = 0; flag < FlagCount; ++flag)
        if (EncObjTypes == withFlag(flag)) return flag;
    return -1;
}

bool IsEncObjTypesValid(QString& EncObjTypes) {
    if (EncObjTypes.isEmpty()) return false;
    constexpr int Commas = FlagCount - 1;
    for (const int shorter : {11, 13})
        if (EncObjTypes.size() == shorter) EncObjTypes += QStringLiteral(",0");
    return EncObjTypes.size() == FlagCount + Commas && EncObjTypes.count(u',') == Commas;
}

void ApplyObjTypeChecks(ObjectKindBoxes& boxes, const QString& EncObjTypes) {
    QString flags = EncObjTypes;
    if (!IsEncObjTypesValid(flags)) return;
    for (int box = 0; box < FlagCount; ++box) boxes[size_t(box)] = flags[2 * box] == u'1';
}

QString EncObjTypesToText(const QString& EncObjTypes) {
    QString flags = EncObjTypes;
    QStringList names;
    if (IsEncObjTypesValid(flags))
        for (int flag = 0; flag < FlagCount; ++flag)
            if (flags[2 * flag] == u'1') names += QLatin1String(Flags[flag].name);
    return names.isEmpty() ? QStringLiteral("N/A") : names.join(QStringLiteral(", "));
}

}  // namespace zov
