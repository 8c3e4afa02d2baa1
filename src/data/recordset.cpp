#include "data/recordset.h"

#include "core/globals.h"
#include "core/run_account.h"
#include "data/base/field_text.h"
#include "data/criteria.h"
#include "data/row_source.h"
#include "util/text.h"

#include <algorithm>

namespace zov {

struct Recordset::Cursor {
    std::shared_ptr<RowSource> rows;
    qsizetype row = 0;         // within the store; -1 before the first, rowCount() behind the last
    qsizetype windowRows = 1;  // asked for at a time while streaming
    std::vector<Criterion> filter;

    qsizetype count() const { return rows->store().rowCount(); }

    bool isVisible(qsizetype at) const {
        if (rows->isDeleted(at)) return false;
        for (const Criterion& criterion : filter)
            if (!meetsCriterion(rows->store(), at, criterion)) return false;
        return true;
    }

    // Whether an index can answer the filter.
    bool filtersByEquality() const {
        if (filter.empty() || rows->isStreaming()) return false;
        return std::all_of(filter.begin(), filter.end(), isEquality);
    }
    static bool isEquality(const Criterion& criterion) {
        return criterion.op == CriterionOperator::Equal && criterion.value;
    }
    /// The first row at or behind `from` that the index has; it need not be visible.
    static qsizetype indexedRow(RowSource& rows, const std::vector<Criterion>& criteria,
                                qsizetype from) {
        std::vector<int> columns;
        std::vector<CellView> wanted;
        for (const Criterion& criterion : criteria) {
            columns.push_back(criterion.column);
            wanted.push_back(criterion.value->cell(0, 0));
        }
        return rows.findEqual(columns, wanted, from);
    }

    // To the first visible row at or behind the current one, through further windows of a stream.
    void settleForward() {
        if (filtersByEquality()) {
            const qsizetype found = indexedRow(*rows, filter, std::max<qsizetype>(row, 0));
            row = found < 0 ? count() : found;
            return;
        }
        row = std::max(row, rows->firstLiveRow());
        for (;;) {
            while (row < count() && !isVisible(row)) ++row;
            if (row < count() || !rows->nextWindow(windowRows)) return;
            row = 0;
        }
    }
};

const QString& Field::Name() const {
    return info().name;
}
int Field::Type() const {
    return adoTypeOf(info().type);
}

const ColumnInfo& Field::info() const {
    return owner_->cursor_->rows->columns()[size_t(index_)];
}

CellView Field::cell() const {
    const qsizetype row = owner_->currentRow();
    if (row >= 0) return owner_->rowStore().cell(row, index_);
    CellView nothing;
    nothing.column = &info();
    nothing.storage = storageOf(info());
    return nothing;
}

QString Field::text() const {
    return cellText(cell());
}

qint64 Field::toInt64() const {
    const CellView view = cell();
    if (view.isNull) return 0;
    switch (view.storage) {
        case Storage::Int8:
        case Storage::Int16:
        case Storage::Int32:
        case Storage::Int64:
            return view.integer;
        default:
            return roundToInt64(Val(cellText(view)));
    }
}

Recordset::Recordset() = default;
Recordset::~Recordset() = default;
Recordset::Recordset(Recordset&&) noexcept = default;
Recordset& Recordset::operator=(Recordset&&) noexcept = default;

template <typename Read>
auto Recordset::accounted(Read read) {
    try {
        return read();
    } catch (...) {
        addCaughtErrorToAccount(place_, statement_);
        throw;
    }
}

void Recordset::Open(Command& command) {
    place_ = command.ActiveConnection->place();
    statement_ = command.CommandText;
    CommandSpec spec{command.CommandText, command.CommandType == adCmdStoredProc,
                     command.CommandTimeout, command.Parameters};
    auto rows = std::make_shared<RowSource>(command.ActiveConnection->sessionForNewCommand(),
                                            std::move(spec));
    cursor_ = std::make_unique<Cursor>();
    cursor_->rows = rows;
    cursor_->windowRows = CacheSize;
    if (!rows->hasColumns()) return;
    if (CursorLocation == adUseClient) {
        rows->spool();
    } else {
        command.ActiveConnection->noteStream(rows);
        rows->nextWindow(cursor_->windowRows);
    }
}

int Recordset::State() const {
    return cursor_ && cursor_->rows && cursor_->rows->hasColumns() ? 1 : 0;
}

void Recordset::disconnect() {
    if (isOpen()) cursor_->rows->spool();
}

void Recordset::Close() {
    if (cursor_ && cursor_->rows) cursor_->rows->close();
    cursor_.reset();
}

void Recordset::setKeepWaiting(std::function<bool()> keepWaiting) {
    if (isOpen()) cursor_->rows->setKeepWaiting(std::move(keepWaiting));
}

bool Recordset::isBof() const {
    if (!isOpen()) return true;
    if (cursor_->row < 0) return true;
    // ADO: an empty recordset is at both ends.
    return cursor_->count() == 0 && cursor_->rows->droppedRows() == 0;
}

bool Recordset::isEof() const {
    return !isOpen() || cursor_->row >= cursor_->count();
}

void Recordset::MoveFirst() {
    if (!isOpen()) return;
    accounted([&] {
        // A stream that has not gone beyond its first rows needn't be read to its end for that.
        if (!cursor_->rows->isStreaming() || cursor_->rows->droppedRows() > 0)
            cursor_->rows->spoolFromStart();
        cursor_->row = 0;
        cursor_->settleForward();
    });
}

void Recordset::MoveNext() {
    accounted([&] { moveNext(); });
}

void Recordset::moveNext() {
    if (isEof()) return;
    ++cursor_->row;
    cursor_->settleForward();
}

void Recordset::MoveLast() {
    if (!isOpen()) return;
    accounted([&] { cursor_->rows->spool(); });
    cursor_->row = cursor_->count() - 1;
    while (cursor_->row >= 0 && !cursor_->isVisible(cursor_->row)) --cursor_->row;
}

qint64 Recordset::RecordCount() {
    if (!isOpen()) return 0;
    RowSource& rows = *cursor_->rows;
    accounted([&] { rows.spool(); });
    if (cursor_->filter.empty()) return rows.droppedRows() + cursor_->count() - rows.deletedCount();
    qint64 visible = 0;
    for (qsizetype row = 0; row < cursor_->count(); ++row) visible += cursor_->isVisible(row);
    return visible;
}

int Recordset::fieldCount() const {
    return isOpen() ? int(cursor_->rows->columns().size()) : 0;
}

Field Recordset::field(const QString& name) const {
    const int index = fieldIndex(name);
    if (index < 0)
        throw DbError(3265,
                      QStringLiteral("Item cannot be found in the collection corresponding to "
                                     "the requested name or ordinal (\"%1\").")
                          .arg(name));
    return Field(this, index);
}

int Recordset::fieldIndex(const QString& name) const {
    return isOpen() ? cursor_->rows->columnIndex(name) : -1;
}

qsizetype Recordset::currentRow() const {
    if (!isOpen() || cursor_->row < 0 || cursor_->row >= cursor_->count()) return -1;
    return cursor_->row;
}

const RowStore& Recordset::rowStore() const {
    return cursor_->rows->store();
}

const CommandResult& Recordset::result() const {
    static const CommandResult none;
    return cursor_ && cursor_->rows ? cursor_->rows->result() : none;
}

void Recordset::Find(const QString& criterion) {
    if (!isOpen()) return;
    const std::vector<Criterion> criteria = parseCriteria(cursor_->rows->columns(), criterion);
    if (!cursor_->rows->isStreaming() &&
        std::all_of(criteria.begin(), criteria.end(), Cursor::isEquality)) {
        qsizetype found = std::max<qsizetype>(cursor_->row, 0);
        while ((found = Cursor::indexedRow(*cursor_->rows, criteria, found)) >= 0 &&
               !cursor_->isVisible(found))
            ++found;
        cursor_->row = found < 0 ? cursor_->count() : found;
        return;
    }
    accounted([&] {
        for (cursor_->settleForward(); !isEof(); moveNext()) {
            bool met = true;
            for (const Criterion& one : criteria)
                met = met && meetsCriterion(rowStore(), cursor_->row, one);
            if (met) return;
        }
    });
}

void Recordset::FindEqual(int fieldIndex, QStringView text) {
    if (!isOpen()) return;
    accounted([&] { cursor_->rows->spool(); });
    const std::optional<RowStore> wanted =
        readAs(cursor_->rows->columns()[size_t(fieldIndex)], text);
    if (!wanted) {
        cursor_->row = cursor_->count();
        return;
    }
    const CellView cell = wanted->cell(0, 0);
    FindEqual(std::span(&fieldIndex, 1), std::span(&cell, 1));
}

void Recordset::FindEqual(std::span<const int> fieldIndexes, std::span<const CellView> cells) {
    if (!isOpen()) return;
    accounted([&] { cursor_->rows->spool(); });
    qsizetype found = std::max<qsizetype>(cursor_->row, 0);
    while ((found = cursor_->rows->findEqual(fieldIndexes, cells, found)) >= 0 &&
           !cursor_->filter.empty() && !cursor_->isVisible(found))
        ++found;
    cursor_->row = found < 0 ? cursor_->count() : found;
}

bool Recordset::TakeWindow(RowStore& rows) {
    if (!isOpen()) return false;
    return accounted([&] {
        RowSource& source = *cursor_->rows;
        while (source.store().rowCount() == 0)
            if (!source.nextWindow(1)) return false;
        source.takeWindow(rows);
        cursor_->row = 0;
        return true;
    });
}

void Recordset::MoveBehindLast() {
    if (!isOpen()) return;
    accounted([&] { cursor_->rows->spool(); });
    cursor_->row = cursor_->count();
}

void Recordset::Filter(const QString& criteria) {
    if (!isOpen()) return;
    accounted([&] { cursor_->rows->spoolFromStart(); });
    cursor_->filter.clear();
    if (!criteria.trimmed().isEmpty())
        cursor_->filter = parseCriteria(cursor_->rows->columns(), criteria);
    cursor_->row = 0;
    cursor_->settleForward();
}

Recordset Recordset::Clone() {
    Recordset other;
    if (!isOpen()) return other;
    accounted([&] { cursor_->rows->spool(); });
    other.CursorLocation = CursorLocation;
    other.CacheSize = CacheSize;
    other.place_ = place_;
    other.statement_ = statement_;
    other.cursor_ = std::make_unique<Cursor>();
    other.cursor_->rows = cursor_->rows;
    other.cursor_->settleForward();
    return other;
}

void Recordset::setBookmark(qsizetype row) {
    if (isOpen()) cursor_->row = row;
}

void Recordset::Delete() {
    if (currentRow() < 0)
        throw DbError(3021,
                      QStringLiteral("Either BOF or EOF is True, or the current record has been "
                                     "deleted. Requested operation requires a current record."));
    cursor_->rows->markDeleted(cursor_->row);
}

}  // namespace zov
