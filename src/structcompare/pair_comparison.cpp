#include "structcompare/pair_comparison.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "core/modIgnoreColumns.h"
#include "scripting/modNew.h"
#include "shell/shell.h"
#include "structcompare/modCompareAll.h"
#include "structcompare/modCompareObjects.h"
#include "structcompare/modIgnoreColumnsOrder.h"
#include "structcompare/modMarkDifferences.h"
#include "util/text.h"

namespace zov {
namespace {

QString fullName(const ServerInfo& server, const QString& db, const QString& object) {
    const QString name = server.Name + u'.' + db;
    return object.isEmpty() ? name : name + u'.' + object;
}

// A table with ignored columns is read again without them, by its name. True when it has any.
bool readWithoutIgnoredColumns(const ServerInfo& server, const QString& db, const QString& object,
                               qint32 id, const QString& key, QString& text) {
    QStringList columns;
    if (GetIgnoredColumnsList(IgnoreMode::StructureComparison, key, columns) == 0) return false;
    // A name that the list shows with its schema is no table's name: that one is found by its id.
    const bool qualified = partBehindLastDot(object) != object;
    text = GetTableStructureWithIndexes(server, object, db, true, nullptr, qualified ? id : 0);
    return true;
}

QString verdictText(const SelectedPair& pair, bool identical, bool columnsIgnored) {
    QString text = QStringLiteral("Source: ") + pair.sourceFullName() + CRLF +
                   QStringLiteral("Target: ") + pair.targetFullName() + CRLF + CRLF +
                   QStringLiteral("The selected ") + pair.typeNamePlural() +
                   QStringLiteral(" are ") +
                   (identical ? QStringLiteral("identical.") : QStringLiteral("different."));
    if (!identical) return text;
    if (columnsIgnored)
        text += CRLF + CRLF +
                QStringLiteral("Please note that some columns were ignored during comparison.");
    if (globals().gblnIgnoreColSeq)
        text += CRLF + CRLF +
                QStringLiteral("Please note that option 'Ignore Columns Order' is set ON.");
    return text;
}

}  // namespace

QString SelectedPair::sourceFullName() const {
    return fullName(sourceServer, sourceDb, sourceObject);
}
QString SelectedPair::targetFullName() const {
    return fullName(targetServer, targetDb, targetObject);
}

bool AreIdentical(ObjectType type, const QString& sourceText, const QString& targetText,
                  const TextPane& source, const TextPane& target) {
    const Globals& settings = globals();
    if (settings.gblnIgnoreWhitespace ? CompareProcs_IgnoreWhiteSpace(sourceText, targetText)
                                      : sourceText == targetText)
        return true;
    // From here on the panes are looked at: their columns are all there, ignored ones too.
    if (settings.gblnIgnoreColSeq && CompareProcs_IgnoreColumnsOrder(source, target)) return true;
    return type == ObjectType::Procedure && CompareProcs_IgnoreOwnerInName(source, target);
}

ComparisonReport reportOf(const SelectedPair& pair) {
    ObjectKindBoxes kind{};
    for (int box = 0; box < int(kind.size()); ++box)
        kind[size_t(box)] = ObjectTypeOfBox(box) == pair.objectType;
    ComparisonReport report;
    report.Caption = QStringLiteral("Comparison Report");
    report.ServerName1 = pair.sourceServer.Name;
    report.ServerName2 = pair.targetServer.Name;
    report.DbName1 = pair.sourceDb;
    report.DbName2 = pair.targetDb;
    report.TableName1 = pair.sourceObject;
    report.TableName2 = pair.targetObject;
    report.CompType = comparison_code::MetaData;
    report.CompSubType = comparison_code::Individual;
    report.EncObjTypes = EncodeObjTypes(kind);
    return report;
}

bool CompareSelProcs(PairComparisonWindow& window, TextPane& source, TextPane& target,
                     bool useGivenText, const QString& givenSource, const QString& givenTarget) {
    return guarded("frmMain", "CompareSelProcs", false, [&] {
        const ScopedValue<bool> busy(window.Busy(), true);
        bool identical = false;
        SelectedPair pair;
        {
            const WaitPointer wait;
            QString sourceText = useGivenText ? givenSource : Trim(source.text());
            QString targetText = useGivenText ? givenTarget : Trim(target.text());
            if (sourceText.isEmpty() && targetText.isEmpty()) {
                shell().messageBox(QStringLiteral("Cannot compare - the list of objects is empty."),
                                   QStringLiteral("Cannot Compare"));
                return false;
            }
            pair = window.GetNamesOfSelected();
            bool columnsIgnored = false;
            if (pair.objectType == ObjectType::Table) {
                const bool inSource =
                    readWithoutIgnoredColumns(pair.sourceServer, pair.sourceDb, pair.sourceObject,
                                              pair.sourceId, pair.sourceFullName(), sourceText);
                const bool inTarget =
                    readWithoutIgnoredColumns(pair.targetServer, pair.targetDb, pair.targetObject,
                                              pair.targetId, pair.targetFullName(), targetText);
                columnsIgnored = inSource || inTarget;
            }
            if (pair.objectType == ObjectType::View)
                AdjustCreateViewStatements(sourceText, targetText);
            identical = AreIdentical(pair.objectType, sourceText, targetText, source, target);
            if (!identical) {
                bool error = false;
                Mark_Differences(source, target, error, pair.objectType);
            }
            globals().gstrReport = verdictText(pair, identical, columnsIgnored);
        }
        if (window.isPrintJob())
            window.printBothPanes();
        else
            window.showComparisonReport(pair);
        globals().gstrReport.clear();
        return identical;
    });
}

void CompareHighlightedSections(PairComparisonWindow& window, TextPane& source, TextPane& target) {
    const QString title = QStringLiteral("Compare Highlighted Sections");
    const QString sourceText = source.selectedText();
    const QString targetText = target.selectedText();
    if (sourceText.isEmpty()) {
        shell().messageBox(
            QStringLiteral(
                "Cannot continue - there is no highlighted section in Source object.\r\n\r\n"
                "Please select some section in Source text first, then some section in Target, "
                "and then (immediately after highlighting Target) right click and select "
                "'Compare Highlighted Sections'."),
            title);
        source.setFocus();
        return;
    }
    if (targetText.isEmpty()) {
        shell().messageBox(
            QStringLiteral("Cannot continue - there is no highlighted section in Target object."),
            title);
        target.setFocus();
        return;
    }
    CompareSelProcs(window, source, target, true, sourceText, targetText);
}

}  // namespace zov
