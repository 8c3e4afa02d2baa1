// The object types of a run as saved processes keep them: eight flags, "0" or
// "1", joined by commas, in the order of the bulk comparison's boxes: tables,
// procedures, functions, views, triggers, relationships, constraints, permissions.
#pragma once

#include "structcompare/compare_all_screens.h"

namespace zov {

/// The string with one flag set; no flag for 0, empty for a number that is no type.
QString ObjectTypeToEncObjTypes(ObjectType Type);
/// The place of the one flag that is set, from 0; -1 for anything but the eight strings that
/// ObjectTypeToEncObjTypes gives for types.
int EncObjTypesToIndex(const QString& EncObjTypes);
/// Whether there are eight flags. Strings of six and seven flags, as older versions wrote them, get
/// the missing ones. What stands between the commas isn't looked at.
bool IsEncObjTypesValid(QString& EncObjTypes);
/// Sets the boxes as the flags say; an invalid string leaves them as they are.
void ApplyObjTypeChecks(ObjectKindBoxes& boxes, const QString& EncObjTypes);
/// "Tables, Views"; "N/A" for an invalid string and when no flag is set.
QString EncObjTypesToText(const QString& EncObjTypes);

}  // namespace zov
