#include "structcompare/modCompareAll.h"

#include "catalog/modSchema.h"
#include "core/globals.h"
#include "core/error_report.h"
#include "scripting/modNew.h"
#include "shell/shell.h"
#include "structcompare/line_differences.h"
#include "structcompare/modCompareObjects.h"
#include "structcompare/modIgnoreColumnsOrder.h"
#include "util/text.h"

#include <QElapsedTimer>

namespace zov {
namespace {

/// A list of the report that gets its heading with its first object.
struct NameList {
    QString text;
    int count = 0;

    /// Puts the object in the list and gives back what that added to the list's text.
    QString add(const QString& which, const QString& plural, const QString& name) {
        QString added;
        if (count == 0) added = QStringLiteral("List of ") + plural + which + CRLF;
        added += u'\t' + name + CRLF;
        text += added;
        ++count;
        return added;
    }
};

/// What is known of one kind while it is compared.
struct KindState {
    ObjectType type;
    QString plural;
    QString singular;  ///< the plural less its last letter
    NameList differing;
    NameList onlyInSource;
    NameList onlyInTarget;
    QString identical;  ///< lines of names, without a heading
    int identicalCount = 0;
    QString lastIdentical;
    QString detailText;
    bool columnsIgnored = false;
    bool blnSomethingDiffers = false;

    explicit KindState(ObjectType type)
        : type(type), plural(GetObjectTypeName(type, true)), singular(plural.chopped(1)) {}
};

/// Both texts of an object that both sides have.
struct TextPair {
    QString source;
    QString target;
    QString suffix;  ///< goes behind the object's name
};

class StructureComparison {
 public:
    StructureComparison(CompareAllForm& form, const StructureRunRequest& request,
                        ComparePanels& panels)
        : form_(form),
          request_(request),
          panels_(panels),
          source_{globals().gtCurrentServers[SourcePanel], request.sourceDb, SourcePanel},
          target_{globals().gtCurrentServers[TargetPanel], request.targetDb, TargetPanel} {}

    /// True when the end was reached and the report stands.
    bool run();
    bool somethingDiffers() const { return somethingDiffers_; }

 private:
    bool connect();
    bool mayGoOn();
    void addRunHeading();
    bool compareKind(int box);
    void addKindHeading(const KindState& kind);
    void addCountLine(const KindState& kind, int count, const QString& side);
    void addCount(const KindState& kind, int count);
    bool compareSourceObjects(KindState& kind);
    bool compareSourceObject(KindState& kind, const ObjectListRow& row);
    bool listTargetObjects(KindState& kind);
    bool isInSource(const KindState& kind, const ObjectListRow& row, const QSet<QString>& names,
                    bool& found);
    TextPair textsOf(KindState& kind, const QString& name, qint32 sourceId, qint32 targetId);
    bool areIdentical(const KindState& kind, TextPair& texts, const QString& name, qint32 sourceId,
                      qint32 targetId);
    void addDetails(KindState& kind, const QString& name, const TextPair& texts);
    void addClosing(const KindState& kind, bool bothEmpty);

    CompareAllForm& form_;
    const StructureRunRequest& request_;
    ComparePanels& panels_;
    CompareSide source_;
    CompareSide target_;
    std::shared_ptr<Connection> sourceConnection_;
    std::shared_ptr<Connection> targetConnection_;
    QElapsedTimer clock_;
    QString report_;
    bool somethingDiffers_ = false;
};

bool StructureComparison::connect() {
    if (!ADO_Connection_Open(sourceConnection_, source_.server, source_.database)) {
        shell().messageBox(QStringLiteral("Cannot connect to Source database - aborting."), {},
                           BoxIcon::Exclamation);
        return false;
    }
    if (!ADO_Connection_Open(targetConnection_, target_.server, target_.database)) {
        shell().messageBox(QStringLiteral("Cannot connect to Target database - aborting."), {},
                           BoxIcon::Exclamation);
        return false;
    }
    return true;
}

bool StructureComparison::mayGoOn() {
    form_.setTime(formatElapsed(clock_.elapsed()));
    shell().pumpEvents();
    return !globals().gblnStop;
}

bool StructureComparison::run() {
    globals().gblnStop = false;
    if (!connect()) return false;
    form_.showRunning();
    shell().pumpEvents();
    clock_.start();
    form_.runStatusTimer(true);
    LogWrite(QStringLiteral("Begin CompareAll_Structure"));

    addRunHeading();
    for (int box = 0; box < comparedKindCount(); ++box)
        if (request_.kinds[size_t(box)] && !compareKind(box)) return false;

    report_ += CRLF + CRLF + QStringLiteral("Time Elapsed: ") + formatElapsed(clock_.elapsed());
    globals().gstrReport = report_;
    return true;
}

void StructureComparison::addRunHeading() {
    const auto place = [](const CompareSide& side) {
        return side.server.Name + u'.' + side.database + CRLF;
    };
    report_ = QStringLiteral("Comparison of databases") + CRLF + CRLF;
    report_ += QStringLiteral("Source database ") + place(source_);
    report_ += QStringLiteral("Target database ") + place(target_);
    const QString filter = BuildSchemaFilteringString();
    if (!filter.isEmpty()) report_ += filter + CRLF;
}

/// One kind, from its heading to its closing sentence; false ends the run.
bool StructureComparison::compareKind(int box) {
    if (!mayGoOn()) return false;
    KindState kind(ObjectTypeOfBox(box));
    const QString caption = QStringLiteral("Comparing ") + kind.plural + QStringLiteral("...");
    form_.setComparing(box, caption);
    shell().pumpEvents();
    addKindHeading(kind);

    LoadObjects(source_.server, panels_.source.pvlSqlObj, panels_.source.txtTXProc, kind.type,
                source_.database, false, QString(), SourcePanel, &objectTexts());
    LoadObjects(target_.server, panels_.target.pvlSqlObj, panels_.target.txtTXProc, kind.type,
                target_.database, false, QString(), TargetPanel, &objectTexts());
    shell().pumpEvents();
    const int sourceCount = panels_.source.pvlSqlObj.rowCount();
    const int targetCount = panels_.target.pvlSqlObj.rowCount();
    if (!request_.selective) {
        addCountLine(kind, sourceCount, QStringLiteral("Source"));
        addCountLine(kind, targetCount, QStringLiteral("Target"));
    }

    const bool bothEmpty = sourceCount == 0 && targetCount == 0;
    if (!bothEmpty && (sourceCount == 0 || targetCount == 0)) {
        // Nothing can be compared: the count lines say it all, and no closing sentence follows.
        kind.blnSomethingDiffers = true;
    } else {
        if (!bothEmpty && (!compareSourceObjects(kind) || !listTargetObjects(kind))) return false;
        addClosing(kind, bothEmpty);
    }
    if (request_.details && kind.blnSomethingDiffers) report_ += kind.detailText;
    somethingDiffers_ |= kind.blnSomethingDiffers;
    form_.setComparing(box, caption + QStringLiteral(" Finished"));
    return true;
}

void StructureComparison::addKindHeading(const KindState& kind) {
    report_ += CRLF + CRLF;
    if (!request_.selective) {
        report_ += QStringLiteral("Comparison of ") + kind.plural + CRLF;
        return;
    }
    report_ += QStringLiteral("Selective comparison of ") + kind.plural + CRLF + CRLF;
    report_ += QString::number(request_.sourceObjects.size()) +
               QStringLiteral(" objects selected in Source database") + CRLF;
    report_ += QString::number(request_.targetObjects.size()) +
               QStringLiteral(" objects selected in Target database") + CRLF + CRLF;
}

void StructureComparison::addCountLine(const KindState& kind, int count, const QString& side) {
    if (count == 0)
        report_ += QStringLiteral("There are no ") + kind.plural;
    else if (count == 1)
        report_ += QStringLiteral("There is 1 ") + kind.singular;
    else
        report_ += QStringLiteral("There are %1 ").arg(count) + kind.plural;
    report_ += QStringLiteral(" in ") + side + QStringLiteral(" database.") + CRLF;
}

void StructureComparison::addCount(const KindState& kind, int count) {
    report_ += QStringLiteral("\t(%1 ").arg(count) + (count == 1 ? kind.singular : kind.plural) +
               u')' + CRLF;
}

bool StructureComparison::compareSourceObjects(KindState& kind) {
    const ObjectList& list = panels_.source.pvlSqlObj;
    for (int i = 0; i < list.rowCount(); ++i) {
        if (!mayGoOn()) return false;
        const ObjectListRow row = list.row(i);
        if (!ProceedWithThisObject(partBehindLastDot(row.name), request_.selective,
                                   request_.sourceObjects, request_.targetObjects))
            continue;
        form_.setCurrentName(row.name);
        if (!compareSourceObject(kind, row)) return false;
    }
    if (kind.differing.count > 0) addCount(kind, kind.differing.count);
    if (kind.onlyInSource.count > 0) {
        report_ += kind.onlyInSource.text;
        addCount(kind, kind.onlyInSource.count);
    }
    return true;
}

bool StructureComparison::compareSourceObject(KindState& kind, const ObjectListRow& row) {
    const QString shortName = partBehindLastDot(row.name);
    qint32 targetId = 0;
    bool existsInTarget = false;
    if (!CompareAll_CheckForDuplicateNames(kind.type, source_, row.name, target_, row.id, targetId,
                                           existsInTarget))
        return false;

    TextPair texts;
    bool identical = false;
    if (existsInTarget) {
        texts = textsOf(kind, shortName, row.id, targetId);
        if (!texts.target.isEmpty())
            identical = areIdentical(kind, texts, shortName, row.id, targetId);
    }
    if (identical) {
        ++kind.identicalCount;
        kind.identical += u'\t' + row.name + texts.suffix + CRLF;
        kind.lastIdentical = row.name;
        return true;
    }

    kind.blnSomethingDiffers = true;
    if (texts.source.isEmpty() || texts.target.isEmpty()) {
        kind.onlyInSource.add(
            QStringLiteral(" which exist in Source database but not in Target database:"),
            kind.plural, row.name);
        return true;
    }
    report_ +=
        kind.differing.add(QStringLiteral(" which differ:"), kind.plural, row.name + texts.suffix);
    if (request_.details) addDetails(kind, row.name, texts);
    return true;
}

TextPair StructureComparison::textsOf(KindState& kind, const QString& name, qint32 sourceId,
                                      qint32 targetId) {
    TextPair texts;
    switch (kind.type) {
        case ObjectType::Table: {
            qint32 sourceIgnored = 0;
            qint32 targetIgnored = 0;
            texts.source = GetTableStructureWithIndexes(source_.server, name, source_.database,
                                                        true, &sourceIgnored, sourceId);
            texts.target = GetTableStructureWithIndexes(target_.server, name, target_.database,
                                                        true, &targetIgnored, targetId);
            if (sourceIgnored > 0 || targetIgnored > 0) {
                kind.columnsIgnored = true;
                texts.suffix = QStringLiteral(" (some columns ignored during comparison)");
            }
            break;
        }
        case ObjectType::Relationship:
            texts.source = GetRelationshipText(source_.server, name, source_.database);
            texts.target = GetRelationshipText(target_.server, name, target_.database);
            break;
        case ObjectType::Constraint:
            texts.source = GetConstraintText(source_.server, name, source_.database);
            texts.target = GetConstraintText(target_.server, name, target_.database);
            break;
        case ObjectType::Permission:
            shell().messageBox(
                QStringLiteral("Compare all - structure - permissions - to be finished."));
            break;
        default:
            texts.source = GetObjectTextOnConnection(sourceConnection_, source_.server, name,
                                                     source_.database);
            texts.target = GetObjectTextOnConnection(targetConnection_, target_.server, name,
                                                     target_.database);
    }
    return texts;
}

/// Cleans the texts on its way as the settings say; they stay cleaned for the detailed list.
bool StructureComparison::areIdentical(const KindState& kind, TextPair& texts, const QString& name,
                                       qint32 sourceId, qint32 targetId) {
    const Globals& settings = globals();
    if (settings.gblnIgnoreComments && texts.source != texts.target) {
        texts.source = StripCommentsFromProc(texts.source);
        texts.target = StripCommentsFromProc(texts.target);
    }
    if (kind.type == ObjectType::View) AdjustCreateViewStatements(texts.source, texts.target);
    if (settings.gblnIgnoreWhitespace ? CompareProcs_IgnoreWhiteSpace(texts.source, texts.target)
                                      : texts.source == texts.target)
        return true;

    // The target's id is known only where tables of one name had to be told apart. So the order of
    // lines counts for all other kinds, and for tables of servers older than version 9, whatever
    // the setting: a procedure with its lines in another order differs here, and is identical
    // when the pair is compared by itself.
    if (!settings.gblnIgnoreColSeq || sourceId < 1 || targetId < 1) return false;
    UpdateProcedureTextBox(source_.server, panels_.source.txtTXProc, panels_.source.pvlSqlObj,
                           kind.type, source_.database, name, sourceId, SourcePanel);
    UpdateProcedureTextBox(target_.server, panels_.target.txtTXProc, panels_.target.pvlSqlObj,
                           kind.type, target_.database, name, targetId, TargetPanel);
    return CompareProcs_IgnoreColumnsOrder(panels_.source.txtTXProc, panels_.target.txtTXProc);
}

void StructureComparison::addDetails(KindState& kind, const QString& name, const TextPair& texts) {
    const int number = kind.differing.count;
    if (number == 1)
        kind.detailText =
            CRLF + QStringLiteral("===========================================") + CRLF + CRLF +
            QStringLiteral("Detailed list of differences between compared ") + kind.plural + CRLF;
    QString differences;
    ListLineDifferences(texts.source, texts.target, differences);
    kind.detailText +=
        CRLF + QString::number(number) + QStringLiteral(". ") + name + CRLF + CRLF + differences;
}

bool StructureComparison::listTargetObjects(KindState& kind) {
    std::unique_ptr<Recordset> sourceNames;
    LoadObjects_ToRecordset(sourceConnection_, sourceNames, kind.type, SourcePanel);
    const QSet<QString> names = NamesOfRecordset(sourceNames.get());

    const ObjectList& list = panels_.target.pvlSqlObj;
    for (int i = 0; i < list.rowCount(); ++i) {
        if (!mayGoOn()) return false;
        const ObjectListRow row = list.row(i);
        if (!ProceedWithThisObject(partBehindLastDot(row.name), request_.selective,
                                   request_.sourceObjects, request_.targetObjects))
            continue;
        form_.setCurrentName(row.name);
        bool found = false;
        if (!isInSource(kind, row, names, found)) return false;
        if (found) continue;
        kind.blnSomethingDiffers = true;
        kind.onlyInTarget.add(
            QStringLiteral(" which exist in Target database but not in Source database:"),
            kind.plural, row.name);
    }
    if (kind.onlyInTarget.count > 0) {
        report_ += kind.onlyInTarget.text;
        addCount(kind, kind.onlyInTarget.count);
    }
    return true;
}

/// Whether Source has an object of Target; false when that can't be found out.
bool StructureComparison::isInSource(const KindState& kind, const ObjectListRow& row,
                                     const QSet<QString>& names, bool& found) {
    const QString shortName = partBehindLastDot(row.name);
    qint32 sourceId = 0;
    bool existsInSource = false;
    if (!CompareAll_CheckForDuplicateNames(kind.type, target_, row.name, source_, row.id, sourceId,
                                           existsInSource))
        return false;
    switch (kind.type) {
        case ObjectType::Table:
            // The name alone decides only where schemas couldn't be asked: a table that Source has
            // under another schema is missing there.
            found = existsInSource && (sourceId >= 1 || ObjectExistsInRecordset(names, shortName));
            break;
        case ObjectType::Relationship:
            found = !GetRelationshipText(source_.server, shortName, source_.database).isEmpty();
            break;
        case ObjectType::Constraint:
            found = !GetConstraintText(source_.server, shortName, source_.database).isEmpty();
            break;
        case ObjectType::Permission:
            shell().messageBox(
                QStringLiteral("Compare all - structure - permissions - to be finished"));
            found = true;
            break;
        default:
            found = ObjectExistsInRecordset(names, shortName);
    }
    return true;
}

/// No line break follows a closing sentence: the next heading brings its own.
void StructureComparison::addClosing(const KindState& kind, bool bothEmpty) {
    const bool tables = kind.type == ObjectType::Table;
    if (!kind.blnSomethingDiffers) {
        if (bothEmpty) {
            report_.chop(2);
        } else if (tables) {
            report_ += QStringLiteral("The structure of all ") +
                       (request_.selective ? QStringLiteral("selected ") : QString()) +
                       QStringLiteral("tables in both databases is identical.");
            if (kind.columnsIgnored)
                report_ += QStringLiteral(" (Some columns were ignored during comparison.)");
        } else {
            report_ += QStringLiteral("All ") +
                       (request_.selective ? QStringLiteral("selected ") : QString()) +
                       kind.plural + QStringLiteral(" in both databases are identical.");
        }
        return;
    }
    if (kind.identicalCount == 0) {
        report_ +=
            tables ? QStringLiteral(
                         "There are no tables which have identical structure in both databases.")
                   : QStringLiteral("There are no ") + kind.plural +
                         QStringLiteral(" which are identical in both databases.");
    } else if (kind.identicalCount == 1) {
        report_ += QStringLiteral("One ") + kind.singular + QStringLiteral(" [") +
                   kind.lastIdentical +
                   QStringLiteral("] has identical structure in both databases.");
    } else {
        report_ += QStringLiteral("All %1 remaining ").arg(kind.identicalCount) + kind.plural +
                   (tables ? QStringLiteral(" have identical structures:")
                           : QStringLiteral(" are identical:"));
        report_ += CRLF + kind.identical.chopped(2);
    }
}

}  // namespace

StructureRun CompareAll_Structure(CompareAllForm& form, const StructureRunRequest& request,
                                  ComparePanels& panels) {
    StructureRun result;
    result.objectTypesChosen = EncodeObjTypes(request.kinds);

    globals().gstrReport.clear();
    guardedRun("modCompareAll", "CompareAll_Structure", [&] {
        StructureComparison comparison(form, request, panels);
        result.finished = comparison.run();
        result.somethingDiffers = comparison.somethingDiffers();
    });
    form.runStatusTimer(false);
    return result;
}

}  // namespace zov
