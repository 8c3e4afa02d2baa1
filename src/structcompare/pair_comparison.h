// Comparing the two objects that stand in the panes: the action behind the main
// window's Compare button and "Compare Highlighted Sections". Marks the lines and
// tells the verdict in a sentence.
#pragma once

#include "catalog/mdlObjects.h"
#include "core/server_info.h"
#include "shell/controls.h"
#include "structcompare/compare_all_screens.h"

namespace zov {

/// What is selected in the two panels. Object names are as the lists show them, empty with nothing
/// selected.
struct SelectedPair {
    ObjectType objectType = ObjectType::Table;
    ServerInfo sourceServer;
    ServerInfo targetServer;
    QString sourceDb;
    QString targetDb;
    QString sourceObject;
    QString targetObject;
    qint32 sourceId = 0;
    qint32 targetId = 0;
    /// The same objects with schema and name apart, where a list's row is selected.
    ObjectRef sourceRow;
    ObjectRef targetRow;

    ObjectRef source() const { return rowOr(sourceRow, sourceObject, sourceId); }
    ObjectRef target() const { return rowOr(targetRow, targetObject, targetId); }

    /// "tables"
    QString typeNamePlural() const { return GetObjectTypeName(objectType, true); }
    /// "server.db.object", without the last part when no object is selected.
    QString sourceFullName() const;
    QString targetFullName() const;

 private:
    ObjectRef rowOr(const ObjectRef& row, const QString& name, qint32 id) const {
        return row.name.isEmpty() ? objectNamed(name, objectType, id) : row;
    }
};

/// What the comparison asks of the window around it.
class PairComparisonWindow {
 public:
    virtual ~PairComparisonWindow() = default;
    /// Reads the selection of both panels.
    virtual SelectedPair GetNamesOfSelected() = 0;
    /// The window's re-entrancy flag.
    virtual bool& Busy() = 0;
    /// Opens the report screen on globals().gstrReport.
    virtual void showComparisonReport(const SelectedPair& pair) = 0;
    /// The comparison belongs to a print job: it prints both panes and shows no report.
    virtual bool isPrintJob() const = 0;
    virtual void printBothPanes() = 0;
};

/// Whether two texts are the same but for what the settings leave out. `source` and `target` are
/// the panes that show the objects: tests that go by lines look there.
bool AreIdentical(ObjectType type, const QString& sourceText, const QString& targetText,
                  const TextPane& source, const TextPane& target);

/// The record of a finished pair comparison for the report screen.
ComparisonReport reportOf(const SelectedPair& pair);

/// Compares the panes' texts, or the given ones (highlighted sections). True when identical.
/// Objects whose text can't be read aren't compared: the report says so.
bool CompareSelProcs(PairComparisonWindow& window, TextPane& source, TextPane& target,
                     bool useGivenText = false, const QString& sourceText = {},
                     const QString& targetText = {});

/// "Compare Highlighted Sections": asks for a selection in both panes first.
void CompareHighlightedSections(PairComparisonWindow& window, TextPane& source, TextPane& target);

}  // namespace zov
