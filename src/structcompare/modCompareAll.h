// Comparing the structure of two whole databases, kind by kind, into one report.
// Enter at CompareAll_Structure for a run, at MenuCompareAll_Click for the run
// with its screens. The servers are the two panels' (gtCurrentServers).
#pragma once

#include "catalog/mdlObjects.h"
#include "core/run_account.h"
#include "structcompare/compare_all_screens.h"

#include <QSet>

namespace zov {

/// What a run compares.
struct StructureRunRequest {
    QString sourceDb;
    QString targetDb;
    ObjectKindBoxes kinds{};
    bool selective = false;
    bool details = false;
    /// The chosen objects of a selective run: names, or "schema.name" where a name isn't enough.
    QStringList sourceObjects;
    QStringList targetObjects;
};

/// An object that is there and whose text can't be read on a side.
struct UnreadableObject {
    ObjectRef object;
    AccountEntry reason;
};

struct StructureRun {
    /// The end was reached and gstrReport holds the report. False: stopped, or failed in a way that
    /// was told in a box; gstrReport is empty then.
    bool finished = false;
    /// Some object differs or is missing on one side. Of a finished run only.
    bool somethingDiffers = false;
    /// What failed and is no single object's trouble: lists, connections, time-outs.
    RunAccount account;
    QList<UnreadableObject> unreadable;
    /// A sentence for each side whose login may not see all objects.
    QStringList blindness;
    /// What the user may want to know of how the run was made; no trouble.
    QStringList notes;
    /// Objects of the compared kinds, on both sides.
    int objectCount = 0;
    /// The boxes' states, "1" or "0", eight in all, joined by commas.
    QString objectTypesChosen;

    /// Everything that a verdict rests on came, but for objects that can't be read.
    bool isReliable() const { return finished && account.isWhole(); }
    /// Reliable, and nothing was left out.
    bool isWhole() const { return isReliable() && unreadable.isEmpty() && blindness.isEmpty(); }
};

/// Lists and panes of both sides are overwritten. The stop flag (gblnStop) is cleared at the start
/// and looked at before each kind and each object.
StructureRun CompareAll_Structure(CompareAllForm& form, const StructureRunRequest& request,
                                  ComparePanels& panels);

/// The type of a box; a box, and a value that is no type (0), for an index out of range.
ObjectType ObjectTypeOfBox(int index);
/// The boxes' states, "1" or "0", joined by commas.
QString EncodeObjTypes(const ObjectKindBoxes& boxes);
/// Boxes that a run looks at: constraints take part only as a type of their own.
int comparedKindCount();

/// Whether a run takes this object: in a selective run only one that either list holds, to the
/// letter.
bool ProceedWithThisObject(const QString& shortName, bool selective,
                           const QStringList& sourceObjects, const QStringList& targetObjects);

/// One side of a lookup.
struct CompareSide {
    const ServerInfo& server;
    QString database;
    int panel;
};
/// Tells tables of one name under different owners apart: looks on the second side for a table of
/// the same name and schema. `secondId` is 0 and `existsInSecond` true when there is nothing to
/// tell apart: for any other type, and where a server is older than version 9. False when a lookup
/// fails.
bool CompareAll_CheckForDuplicateNames(ObjectType objectType, const CompareSide& first,
                                       const QString& name, const CompareSide& second,
                                       qint32 objectId, qint32& secondId, bool& existsInSecond);

/// The names (field 0) of a recordset, lower-cased; none for a null one.
QSet<QString> NamesOfRecordset(Recordset* recordset);
/// Whether a list of objects holds this name, whatever the letter case.
bool ObjectExistsInRecordset(const QSet<QString>& names, const QString& name);

}  // namespace zov
