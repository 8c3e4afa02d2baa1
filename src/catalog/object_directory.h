// Schema and name of every object of a database, read in one statement: which schema an object
// stands in, and which names stand for more than one object.
#pragma once

#include "catalog/object_ref.h"
#include "core/server_info.h"

#include <QHash>

namespace zov {

class ObjectDirectory {
 public:
    /// Asks the server. A failure is reported, and gives a directory that knows nothing.
    static ObjectDirectory read(const ServerInfo& server, const QString& database);

    /// Whether it was read: one that wasn't says of every name that it may be shared.
    bool isRead() const { return read_; }
    /// Empty for an id that isn't there. On servers below version 9 the owner.
    QString schemaOf(qint32 id) const { return places_.value(id).schema; }
    QString nameOf(qint32 id) const { return places_.value(id).name; }
    /// Whether some server might take another object's name for this one: whatever the collation,
    /// letter case, accents, width and blanks at the end are left out of sight.
    bool isShared(const QString& name) const;

 private:
    struct Place {
        QString schema;
        QString name;
    };
    bool read_ = false;
    QHash<qint32, Place> places_;
    QHash<QString, int> names_;  ///< how many objects have a name, by looseName()
};

/// What stays of a name that the loosest collation looks at.
QString looseName(const QString& name);

}  // namespace zov
