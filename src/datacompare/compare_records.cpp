#include "datacompare/compare_records.h"

#include "catalog/modOwner.h"
#include "catalog/modSchema.h"
#include "core/error_report.h"
#include "core/globals.h"
#include "core/modIgnoreColumns.h"
#include "datacompare/frmCompareStatus.h"
#include "datacompare/key_lookup.h"
#include "datacompare/open_rows.h"
#include "datacompare/row_test.h"
#include "scripting/mdlQueryCode.h"
#include "shell/shell.h"
#include "util/text.h"

#include <cstdlib>
#include <optional>

namespace zov {
namespace {

constexpr qint32 FirstVersionWithSchemas = 9;

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
    Walk(frmCompareStatus& status, frmCompareData& grid, const DataComparisonRun& run,
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
    void walkByRecord();
    void walkByKey();
    void testRow(const RowView& row1, const RowView& row2);
    void addSourceOnly(const RowView& row);
    void addPair(const RowView& row1, const RowView& row2);
    /// Reads the Target to its end, and does what was put off.
    void closeOpenRows(OpenRows& open, KeyLookup& lookup);
    void finish();
    bool stopped() const { return globals().gblnStop; }
    Recordset& source() { return *rs_[0]; }
    Recordset& target() { return *rs_[1]; }

    frmCompareStatus& status_;
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
                grid_.InitDifferencesGrid(run_.Tables, source());
                grid_.VSFlexGrid1.setRedraw(false);
            }
            rowTest_.emplace(source(), target(), globals().gblnDataCaseSensitive);
            if (run_.Method == CompMethod::PrimaryKey)
                keyed_ = std::make_unique<KeyedRows>(target(), result_.Records2);
            // Without rows on one side there is nothing to walk.
            if (minRecords_ > 0) {
                if (run_.Method == CompMethod::PrimaryKey) walkByKey();
                else walkByRecord();
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
    if (!opened || !rs_[side]->isOpen()) return false;
    // Waiting for a slow server, the screen lives, and its Stop works.
    rs_[side]->setKeepWaiting([this] { return status_.KeepWaiting(); });
    return !stopped();
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
    {
        const ScopedValue<bool> quiet(globals().gblnSuppressConnErrors, true);
        if (openTable(1, ordered(prefix + u' ' + qualified_[1], 1))) {
            status_.ShowHideControls(5);
            return !stopped();
        }
    }
    if (stopped()) return false;
    const QString own = BuildSqlSelectStringWithColumns(run_.Tables[1], qualified_[1], prefix);
    if (!openTable(1, ordered(own, 1))) return false;
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

// The limit of the smaller table is looked at after a match only: a row of Source that Target hasn't
// got counts up without asking, so that the walk may end before the last matches are found.
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
        if (open->isEmpty()) testRow(row, target.row());
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
    if (run_.ShowDifferences && result_.Differences < globals().glngMaxRowsInDiffTable)
        grid_.AddRecordToGrid_MarkDiff(row1, row2, difference_color::SourceHalf,
                                       difference_color::TargetHalf, result_.Differences);
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
        [&](qint32 count) { result_.Differences += count; });
}

void Walk::finish() {
    const qint32 records1 = result_.Records1, records2 = result_.Records2;
    if (run_.Offset[0] > 1 || run_.Offset[1] > 1)
        result_.Differences += std::abs(restFrom(run_.Offset[0], records1) -
                                        restFrom(run_.Offset[1], records2));
    else
        result_.Differences += std::abs(records1 - records2);
    grid_.lblStats[3] = formatCount(records1);
    grid_.lblStats[4] = formatCount(records2);
    grid_.lblStats[5] = formatCount(result_.Differences);
    result_.Outcome = DataOutcome::Different;

    RecordsetCursor sourceRows(source()), targetRows(target());
    RowCursor& targetLeft = keyed_ ? static_cast<RowCursor&>(*keyed_) : targetRows;
    if (run_.Method == CompMethod::PrimaryKey && records2 - matched_ > 0) {
        if (run_.ShowDifferences)
            grid_.AddMultipleRecordsToGrid(status_, targetLeft, difference_color::TargetOnly, 1,
                                           records2 - matched_);
        return;
    }
    if (records1 != records2) {
        if (!run_.ShowDifferences) return;
        if (records1 <= records2)
            grid_.AddMultipleRecordsToGrid(status_, targetLeft, difference_color::TargetOnly,
                                           minRecords_ + 1, records2);
        else
            grid_.AddMultipleRecordsToGrid(status_, sourceRows, difference_color::SourceOnly,
                                           minRecords_ + 1, records1);
    }
    if (result_.Differences < 1) result_.Outcome = DataOutcome::Identical;
}

}  // namespace

void CompareRecords(frmCompareStatus& Status, frmCompareData& Grid, const DataComparisonRun& Run,
                    const QString (&QualifiedTable)[2], DataComparisonResult& Result) {
    Walk(Status, Grid, Run, QualifiedTable, Result).run();
}

int GetFieldOrdinal(const Recordset& Rs, const QString& Name) {
    for (int field = 0; field < Rs.fieldCount(); ++field)
        if (Rs.field(field).Name() == Name) return field;
    return 0;
}

QString ColTypeArrayToString(const QStringList& Columns) {
    QString joined;
    for (const QString& column : Columns) {
        if (!joined.isEmpty()) joined += u',';
        QString name = column;
        joined += u'[' + name.replace(u']', QLatin1StringView("]]")) + u']';
    }
    return joined;
}

QString QualifiedTableName(const CompareDataTable& Table) {
    if (Table.ObjectId > 0 && Table.Table.contains(u'.') &&
        GetMajorVersion(Table.Server.Version) >= FirstVersionWithSchemas) {
        QString schema;
        if (Db_GetObjSchemaById(Table.Server, ObjectType::Table, Table.Db, Table.ObjectId, schema) &&
            !schema.isEmpty() && Table.Table.startsWith(schema + u'.'))
            return AddSquareBrackets(schema) + u'.' +
                   AddSquareBrackets(Table.Table.mid(schema.size() + 1));
    }
    return GetExtendedObjectName(Table.Server, Table.Db, Table.Table, ObjectType::Table,
                                 Table.ObjectId);
}

QStringList ComparedColumns(const CompareDataTable& Table) {
    QStringList columns;
    // Without an id the table is sought by its name, which lists may show behind its schema.
    for (const QString& name : {Table.Table, partBehindLastDot(Table.Table)}) {
        TableStructure structure;
        GetTableStructure(Table.Server, Table.Db, Table.Table, DoubleSingleQuotes(name), structure,
                          true, IgnoreMode::DataComparison, Table.ObjectId, {});
        for (const ColumnRecord& column : structure.columns) columns += column.strName;
        if (!columns.isEmpty()) break;
    }
    return columns;
}

QString BuildSqlSelectStringWithColumns(const CompareDataTable& Table, const QString& QualifiedTable,
                                        QString& Prefix) {
    const QStringList columns = ComparedColumns(Table);
    Prefix = QStringLiteral("SELECT ") +
             (columns.isEmpty() ? QStringLiteral("*") : ColTypeArrayToString(columns)) +
             QStringLiteral(" FROM ");
    return Prefix + QualifiedTable;
}

}  // namespace zov
