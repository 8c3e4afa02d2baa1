// One object of a database, with schema and name apart from the catalogue on. A joined name is for
// showing only: nothing cuts it again.
#pragma once

#include "core/modIgnoreColumns.h"
#include "shell/controls.h"

#include <QString>

namespace zov {

/// The numbers are stored in saved processes and in combo boxes. 70 is unused.
enum class ObjectType : qint32 {
    Procedure = 10,
    Function = 20,
    View = 30,
    Trigger = 40,
    Table = 50,
    Relationship = 60,
    Constraint = 80,
    Permission = 90,
};

struct ObjectRef {
    QString schema;  ///< its owner on servers below version 9; empty: not known
    QString name;    ///< as the catalogue has it
    ObjectType kind = ObjectType::Table;
    qint32 id = 0;  ///< below 1: not known
    /// Other objects of the database, of any kind, may have this name: a statement that finds it by
    /// name needs the id as well.
    bool hasNamesakes = false;
    /// As lists show it: with the schema in front where the list holds the bare name twice.
    QString shownName;

    /// "schema.name" whatever the lists show; the name alone while the schema isn't known.
    QString fullName() const { return schema.isEmpty() ? name : schema + u'.' + name; }
    /// The name in the keys of stored settings (GetObjectKeyName): the shown one, so that the dot
    /// behind the schema can't be taken for one of the name.
    QString storedName() const {
        const bool joined = !shownName.isEmpty() && shownName != name;
        return joined ? KeyPart(schema) + u'.' + KeyPart(name) : KeyPart(name);
    }
};

/// The object of a list's row.
inline ObjectRef objectOf(const ObjectListRow& row, ObjectType kind) {
    return {row.schema, row.bareName(), kind, row.id, row.hasNamesakes, row.name};
}

/// The object that a user or a stored process names, before any list was read.
inline ObjectRef objectNamed(const QString& name, ObjectType kind, qint32 id = 0) {
    return {{}, name, kind, id, false, name};
}

}  // namespace zov
