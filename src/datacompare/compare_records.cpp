#include "datacompare/compare_records.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "core/run_account.h"
#include "datacompare/frmCompareData.h"
#include "datacompare/key_lookup.h"
#include "datacompare/open_rows.h"
#include "datacompare/row_test.h"
#include "datacompare/table_reading.h"
#include "shell/shell.h"
#include "util/text.h"

#include <cstdlib>
#include <optional>

namespace zov {
namespace {

constexpr qint32 NoCurrentRecord = 3021;

void tellFailure() {
    const CaughtError error = caughtError();
    QString text = QStringLiteral("Error occured while comparing records.");
    if (error.number != 0) {
        int line = 0;
        try {
            throw;
        } catch (const DbError& dbError) {
            line = dbError.line;
        } catch (...) {
        }
        text += CRLF + CRLF + QStringLiteral("Error %1 (").arg(error.number) + error.description +
                QStringLiteral("); line %1.").arg(line);
    } else {
        text += CRLF + CRLF + error.description;
    }
    shell().messageBox(text + CRLF, {}, BoxIcon::Exclamation);
}

qint32 restFrom(qint32 offset, qint32 records) {
    return offset >= 2 ? std::max(records - offset + 1, 0) : records;
}

class Walk {
 public:
    Walk(ComparisonProgress& status, frmCompareData& grid, const DataComparisonRun& run,
         const QString (&qualified)[2], DataComparisonResult& result)
        : status_(status),
          grid_(grid),
          run_(run),
          qualified_(qualified),
          result_(result),
          minRecords_(std::min(result.Records1, result.Records2)) {}

    void run();

 private:
    /// Both tables' rows; false when one couldn't be had, or after Stop.
    bool open();
    bool openTarget(const QString& sourcePrefix);
    bool openTable(int side, const QString& statement);
    /// The same; that the table hasn't got the columns isn't told.
    bool openProbe(int side, const QString& statement, bool& columnsMissing);
    bool lacksColumns(const CompareDataTable& target);
    void walkByRecord();
    void walkByKey();
    void testRow(const RowView& row1, const RowView& row2);
    void addSourceOnly(const RowView& row);
    void addPair(const RowView& row1, const RowView& row2);
    /// Reads the Target to its end, and does what was put off.
    void closeOpenRows(OpenRows& open, KeyLookup& lookup);
    void finish();
    /// Rows behind those that were counted have not been looked at.
    void checkNothingIsLeft();
    bool stopped() const { return globals().gblnStop; }
    Recordset& source() { return *rs_[0]; }
    Recordset& target() { return *rs_[1]; }

    ComparisonProgress& status_;
    frmCompareData& grid_;
    const DataComparisonRun& run_;
    const QString (&qualified_)[2];
    DataComparisonResult& result_;
    const qint32 minRecords_;
    std::unique_ptr<Recordset> rs_[2];
    std::unique_ptr<KeyedRows> keyed_;  ///< the Target's rows, by key
    std::optional<RowTest> rowTest_;
    qint32 matched_ = 0;
    bool offsetUsed_ = false;
};

void Walk::run() {
    result_.Outcome = DataOutcome::Failed;
    if (result_.Records1 == 0 && result_.Records2 == 0) {
        result_.Outcome = DataOutcome::Identical;
        return;
    }
    try {
        const WaitPointer wait;
        if (open()) {
            if (run_.ShowDifferences) {
                grid_.InitDifferencesGrid(run_.Tables, source(), target());
                grid_.VSFlexGrid1.setRedraw(false);
            }
            rowTest_.emplace(source(), target(), globals().gblnDataCaseSensitive);
            if (run_.Method == CompMethod::PrimaryKey)
                keyed_ = std::make_unique<KeyedRows>(target(), result_.Records2);
            // Without rows on one side there is nothing to walk.
            if (minRecords_ > 0) {
                if (run_.Method == CompMethod::PrimaryKey)
                    walkByKey();
                else
                    walkByRecord();
            }
            if (!stopped()) finish();
        }
    } catch (...) {
        if (!stopped()) tellFailure();
        result_.Outcome = DataOutcome::Failed;
    }
    if (stopped()) result_.Outcome = DataOutcome::Cancelled;
    if (offsetUsed_) grid_.TrimEmptyGridRows();
    grid_.VSFlexGrid1.setRedraw(true);
    for (auto& rs : rs_)
        if (rs) rs->Close();
}

bool Walk::openTable(int side, const QString& statement) {
    const CompareDataTable& table = run_.Tables[size_t(side)];
    const bool opened =
        GetAdoRS(table.Server, adCmdText, statement, rs_[side], table.Db) != -1 && rs_[side];
    shell().pumpEvents();
    return opened && !stopped();
}

/// Whether the Target has not got all columns that are read of Source.
bool Walk::lacksColumns(const CompareDataTable& target) {
    QStringList columns;
    for (const ColumnRecord& column : ColumnsOfTable(target, false)) columns += column.strName;
    for (int field = 0; field < source().fieldCount(); ++field)
        if (!columns.contains(source().field(field).Name())) return true;
    return false;
}

bool Walk::openProbe(int side, const QString& statement, bool& columnsMissing) {
    const CompareDataTable& table = run_.Tables[size_t(side)];
    AdoFailure failure;
    RunAccount asked;
    {
        const KeepAccount keep(asked);
        const ScopedValue<bool> quiet(globals().gblnSuppressConnErrors, true);
        GetAdoRS(table.Server, adCmdText, statement, rs_[side], table.Db, &failure);
    }
    shell().pumpEvents();
    if (stopped()) return false;
    if (asked.isWhole() && rs_[side]) return true;
    // A deadlock or a refusal says nothing about the columns.
    columnsMissing = failure.ErrNumber == ado_error::SyntaxError && lacksColumns(table);
    if (columnsMissing) return false;
    for (AccountEntry entry : asked.entries()) {
        entry.told = true;
        addToAccount(entry);
    }
    ShowErrorReport(failure.ErrNumber, failure.ErrDescription, ProgramVersionText(),
                    ProgramBuildNumber, QStringLiteral("modCompareData"),
                    QStringLiteral("CompareRecords"), {});
    return false;
}

bool Walk::open() {
    status_.ShowHideControls(3);
    // By key both tables are streamed, whatever cursors are set: what has to stay of the Target is
    // kept here.
    qint32& location = globals().glngCursorLocation;
    const ScopedValue<qint32> streamed(
        location, run_.Method == CompMethod::PrimaryKey ? adUseServer : location);
    const auto ordered = [&](const QString& statement, int side) {
        return run_.OrderBy[side].isEmpty() ? statement : statement + u' ' + run_.OrderBy[side];
    };
    QString prefix;
    const QString statement =
        BuildSqlSelectStringWithColumns(run_.Tables[0], qualified_[0], prefix);
    if (!openTable(0, ordered(statement, 0))) return false;
    status_.ShowHideControls(4);

    // The Source's columns decide; where the Target hasn't got them all, its own do. Opening the
    // statement for a test and for the walk is the same, so that it is read only once.
    bool columnsMissing = false;
    bool opened = openProbe(1, ordered(prefix + u' ' + qualified_[1], 1), columnsMissing);
    if (!opened && columnsMissing && !stopped()) {
        const QString own = BuildSqlSelectStringWithColumns(run_.Tables[1], qualified_[1], prefix);
        opened = openTable(1, ordered(own, 1));
    }
    if (!opened) return false;
    // Waiting for a slow server, the screen lives, and its Stop works.
    for (auto& rs : rs_) rs->setKeepWaiting([this] { return status_.KeepWaiting(); });
    status_.ShowHideControls(5);
    return !stopped();
}

void Walk::testRow(const RowView& row1, const RowView& row2) {
    if (rowTest_->differ(row1, row2)) addPair(row1, row2);
}

void Walk::walkByRecord() {
    const auto moveToOffset = [&](Recordset& rs, qint32 offset) {
        if (offset <= 1) return;
        offsetUsed_ = true;
        for (qint32 record = 2; record <= offset && !rs.isEof(); ++record) rs.MoveNext();
    };
    for (qint32 record = 1; record <= minRecords_; ++record) {
        if (!status_.UpdateDisplay(record, minRecords_)) return;
        if (record == 1) {
            source().MoveFirst();
            target().MoveFirst();
            moveToOffset(source(), run_.Offset[0]);
            moveToOffset(target(), run_.Offset[1]);
        } else {
            source().MoveNext();
            target().MoveNext();
            if (run_.Offset[0] > 1 && source().isEof()) return;
            if (run_.Offset[1] > 1 && target().isEof()) return;
        }
        testRow(RowView(source()), RowView(target()));
    }
}

// The limit of the smaller table is looked at after a match only: a row of Source that Target
// hasn't got counts up without asking, so that the walk may end before the last matches are found.
void Walk::walkByKey() {
    KeyedRows& target = *keyed_;
    std::optional<KeyLookup> lookup;
    std::optional<OpenRows> open;
    target.MoveFirst();
    for (qint32 record = 1;;) {
        if (!status_.UpdateDisplay(record, minRecords_)) return;
        if (source().isEof() || target.isEof()) break;
        target.MoveFirst();
        if (record == 1) {
            source().MoveFirst();
            if (source().isEof()) break;
            lookup.emplace(source(), target, run_.Keys);
            open.emplace(target);
        } else {
            source().MoveNext();
        }
        if (source().isEof() || target.isEof()) break;
        lookup->prepareNext();
        const RowView row(source());
        int found = KeyLookup::NotYet;
        const std::optional<quint32> key =
            record < minRecords_ && lookup->goesByValue() ? lookup->keyHash(row) : std::nullopt;
        if (key && open->canLeaveOpen(*key)) {
            found = lookup->FindNear(*key);
            if (found == KeyLookup::NotYet) {
                open->leaveOpen(row, *key);
                ++record;
                continue;
            }
        }
        if (!open->isEmpty() && (found == KeyLookup::NotYet || target.isAllRead())) {
            closeOpenRows(*open, *lookup);
            found = KeyLookup::NotYet;
            target.MoveFirst();
            if (target.isEof()) break;
        }
        if (found == KeyLookup::NotYet) found = lookup->FindRecordByKey(row);
        if (found < 0) break;
        if (found == 0) {
            addSourceOnly(row);
            target.MoveFirst();
            ++record;
            continue;
        }
        ++matched_;
        if (open->isEmpty())
            testRow(row, target.row());
        else if (rowTest_->differ(row, target.row()))
            open->addPair(row, target.row(), run_.ShowDifferences, result_.Differences);
        // What is matched is out of later searches, and not left for the rows that only Target has.
        target.Delete();
        if (++record > minRecords_) break;
    }
    if (open && !open->isEmpty()) closeOpenRows(*open, *lookup);
}

void Walk::addSourceOnly(const RowView& row) {
    ++result_.Differences;
    grid_.AddRecordToGrid(row, difference_color::SourceOnly, result_.Differences);
}

void Walk::addPair(const RowView& row1, const RowView& row2) {
    ++result_.Differences;
    if (!run_.ShowDifferences) return;
    if (result_.Differences < globals().glngMaxRowsInDiffTable)
        grid_.AddRecordToGrid_MarkDiff(row1, row2, difference_color::SourceHalf,
                                       difference_color::TargetHalf, result_.Differences);
    else
        grid_.RowsLeftOut = true;
}

void Walk::closeOpenRows(OpenRows& open, KeyLookup& lookup) {
    keyed_->readAll();
    open.replay(
        [&](const RowView& row) {
            keyed_->MoveFirst();
            if (lookup.FindRecordByKey(row) != 1) return addSourceOnly(row);
            ++matched_;
            testRow(row, keyed_->row());
            keyed_->Delete();
        },
        [&](const RowView& row1, const RowView& row2) { addPair(row1, row2); },
        [&](qint32 count) {
            result_.Differences += count;
            grid_.RowsLeftOut = grid_.RowsLeftOut || run_.ShowDifferences;
        });
}

void Walk::finish() {
    const qint32 records1 = result_.Records1, records2 = result_.Records2;
    if (run_.Offset[0] > 1 || run_.Offset[1] > 1)
        result_.Differences +=
            std::abs(restFrom(run_.Offset[0], records1) - restFrom(run_.Offset[1], records2));
    else
        result_.Differences += std::abs(records1 - records2);
    grid_.lblStats[3] = formatCount(records1);
    grid_.lblStats[4] = formatCount(records2);
    grid_.lblStats[5] = formatCount(result_.Differences);
    RecordsetCursor sourceRows(source()), targetRows(target());
    RowCursor& targetLeft = keyed_ ? static_cast<RowCursor&>(*keyed_) : targetRows;
    const bool byKey = run_.Method == CompMethod::PrimaryKey;
    const qint32 targetRest = byKey ? records2 - matched_ : 0;
    if (run_.ShowDifferences) {
        if (targetRest > 0)
            grid_.AddMultipleRecordsToGrid(status_, targetLeft, difference_color::TargetOnly, 1,
                                           targetRest);
        else if (records1 < records2)
            grid_.AddMultipleRecordsToGrid(status_, targetLeft, difference_color::TargetOnly,
                                           minRecords_ + 1, records2);
        else if (records1 > records2)
            grid_.AddMultipleRecordsToGrid(status_, sourceRows, difference_color::SourceOnly,
                                           minRecords_ + 1, records1);
    }
    // Offsets belong to the comparison by record: they leave out what lies before them. By key
    // every record counts.
    const bool differs =
        result_.Differences > 0 || targetRest > 0 || (byKey && records1 != records2);
    if (!differs) checkNothingIsLeft();
    result_.Outcome = differs ? DataOutcome::Different : DataOutcome::Identical;
}

void Walk::checkNothingIsLeft() {
    if (minRecords_ == 0)
        throw DbError(NoCurrentRecord,
                      QStringLiteral("No record was compared: the offsets lie behind "
                                     "the end of the tables."));
    // The walk ended on the last pair.
    if (keyed_)
        keyed_->MoveFirst();
    else
        target().MoveNext();
    source().MoveNext();
    const bool left[] = {!source().isEof(), keyed_ ? !keyed_->isEof() : !target().isEof()};
    for (size_t side = 0; side < 2; ++side)
        if (left[side])
            throw DbError(
                ado_error::Unspecified,
                QStringLiteral("Table %1 has more records than were counted: it was changed "
                               "during the comparison. Compare again.")
                    .arg(run_.Tables[side].Table));
}

}  // namespace

void CompareRecords(ComparisonProgress& Status, frmCompareData& Grid, const DataComparisonRun& Run,
                    const QString (&QualifiedTable)[2], DataComparisonResult& Result) {
    Walk(Status, Grid, Run, QualifiedTable, Result).run();
}

}  // namespace zov
