// What a bulk run finds out about one kind of objects, and its part of the report.
#pragma once

#include "catalog/mdlObjects.h"

namespace zov {

/// A list of the report that gets its heading with its first object.
struct NameList {
    QString text;
    int count = 0;

    /// Puts the object in the list and gives back what that added to the list's text.
    QString add(const QString& heading, const QString& name);
};

/// What is known of one kind while it is compared.
struct KindReport {
    explicit KindReport(ObjectType type);

    void addDiffering(const QString& name) { differing.add(listOf(u" which differ:"), name); }
    void addOnlyInSource(const QString& name) {
        onlyInSource.add(listOf(u" which exist in Source database but not in Target database:"),
                         name);
    }
    void addOnlyInTarget(const QString& name) {
        onlyInTarget.add(listOf(u" which exist in Target database but not in Source database:"),
                         name);
    }
    void addUnreadable(const QString& name) {
        unreadable.add(listOf(u" which can't be read:"), name);
    }
    void addIdentical(const QString& name, const QString& suffix);
    void addDetails(const QString& name, const QString& source, const QString& target);

    bool somethingDiffers() const {
        return oneSided || differing.count + onlyInSource.count + onlyInTarget.count > 0;
    }
    /// Every object that there is was compared, as far as is known.
    bool isComplete() const { return !mayLackObjects && unreadable.count == 0; }

    /// "There are 2 tables in Source database."
    QString countLine(int count, const QString& side) const;
    /// The list with its count line; nothing for an empty one.
    QString withCount(const NameList& list) const;
    /// The lists, each with its count line.
    QString lists() const;
    /// The sentence behind the lists, with the list of what is identical. No line break follows it:
    /// the next heading brings its own.
    QString closing(bool selective) const;
    /// What can't be read, behind all other lists; empty when there is nothing.
    QString unreadableList() const;

    ObjectType type;
    QString plural;
    QString singular;  ///< the plural less its last letter
    NameList differing;
    NameList onlyInSource;
    NameList onlyInTarget;
    NameList unreadable;
    QString identical;  ///< lines of names, without a heading
    int identicalCount = 0;
    QString lastIdentical;
    QString detailText;
    bool columnsIgnored = false;
    bool oneSided = false;        ///< one side has no objects of the kind and the other has
    bool mayLackObjects = false;  ///< a login may not see all of them

 private:
    QString listOf(QStringView which) const {
        return QStringLiteral("List of ") + plural + which.toString();
    }
};

}  // namespace zov
