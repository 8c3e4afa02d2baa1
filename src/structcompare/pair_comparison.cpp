#include "structcompare/pair_comparison.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "core/modIgnoreColumns.h"
#include "core/run_account.h"
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

// A table with ignored columns is read again without them. True when it has any.
bool readWithoutIgnoredColumns(const ServerInfo& server, const QString& db, const ObjectRef& table,
                               const QString& key, QString& text) {
    QStringList columns;
    if (GetIgnoredColumnsList(IgnoreMode::StructureComparison, key, columns) == 0) return false;
    text = GetTableStructureWithIndexes(server, table, db, true, nullptr);
    return true;
}

// What stands in the way of any verdict on the panes' objects; empty when nothing does.
QString obstacle(const SelectedPair& pair, const TextPane& source, const TextPane& target) {
    for (const TextPane* pane : {&source, &target})
        if (!pane->Trouble.isEmpty()) return pane->Trouble;
    if (pair.objectType != ObjectType::Table) return {};
    // Without it defaults were left out of the texts, whatever the server.
    for (const ServerInfo* server : {&pair.sourceServer, &pair.targetServer})
        if (server->Version.isEmpty())
            return QStringLiteral("The version of server %1 isn't known. Refresh the panel.")
                .arg(server->Name);
    return {};
}

QString headingOf(const SelectedPair& pair) {
    return QStringLiteral("Source: ") + pair.sourceFullName() + CRLF + QStringLiteral("Target: ") +
           pair.targetFullName() + CRLF + CRLF + QStringLiteral("The selected ") +
           pair.typeNamePlural();
}

QString verdictText(const SelectedPair& pair, bool identical, bool columnsIgnored) {
    QString text = headingOf(pair) + QStringLiteral(" are ") +
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

namespace {

struct PairTexts {
    QString source;
    QString target;
    bool columnsIgnored = false;
};

void leaveOutIgnoredColumns(const SelectedPair& pair, PairTexts& texts) {
    const bool inSource = readWithoutIgnoredColumns(pair.sourceServer, pair.sourceDb, pair.source(),
                                                    pair.sourceFullName(), texts.source);
    const bool inTarget = readWithoutIgnoredColumns(pair.targetServer, pair.targetDb, pair.target(),
                                                    pair.targetFullName(), texts.target);
    texts.columnsIgnored = inSource || inTarget;
}

/// The verdict, and the report's text. Only what was read whole is compared.
bool judge(const SelectedPair& pair, PairTexts texts, TextPane& source, TextPane& target,
           QString& report) {
    RunAccount account;
    const KeepAccount keep(account);
    QString trouble = obstacle(pair, source, target);
    bool identical = false;
    if (trouble.isEmpty()) {
        if (pair.objectType == ObjectType::Table) leaveOutIgnoredColumns(pair, texts);
        if (pair.objectType == ObjectType::View)
            AdjustCreateViewStatements(texts.source, texts.target);
        if (account.isWhole())
            identical = AreIdentical(pair.objectType, texts.source, texts.target, source, target);
        if (!account.isWhole()) trouble = account.entries().front().sentence();
    }
    if (!trouble.isEmpty()) {
        report = headingOf(pair) + QStringLiteral(" can't be compared.") + CRLF + CRLF + trouble;
        return false;
    }
    if (!identical) {
        bool error = false;
        Mark_Differences(source, target, error, pair.objectType);
    }
    report = verdictText(pair, identical, texts.columnsIgnored);
    return identical;
}

}  // namespace

bool CompareSelProcs(PairComparisonWindow& window, TextPane& source, TextPane& target,
                     bool useGivenText, const QString& givenSource, const QString& givenTarget) {
    return guarded("frmMain", "CompareSelProcs", false, [&] {
        const ScopedValue<bool> busy(window.Busy(), true);
        bool identical = false;
        SelectedPair pair;
        {
            const WaitPointer wait;
            const PairTexts texts{useGivenText ? givenSource : Trim(source.text()),
                                  useGivenText ? givenTarget : Trim(target.text())};
            const bool troubled = !source.Trouble.isEmpty() || !target.Trouble.isEmpty();
            if (texts.source.isEmpty() && texts.target.isEmpty() && !troubled) {
                shell().messageBox(QStringLiteral("Cannot compare - the list of objects is empty."),
                                   QStringLiteral("Cannot Compare"));
                return false;
            }
            pair = window.GetNamesOfSelected();
            identical = judge(pair, texts, source, target, globals().gstrReport);
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
