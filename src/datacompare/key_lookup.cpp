#include "datacompare/key_lookup.h"

#include "catalog/mdlObjects.h"
#include "core/error_report.h"
#include "data/base/field_text.h"
#include "data/criteria.h"
#include "datacompare/table_reading.h"

#include <algorithm>

namespace zov {
namespace {

const QString NullText = QStringLiteral("Null");
const QString QuotedNull = QStringLiteral("'Null'");

bool isPlainText(const ColumnInfo& column) {
    return storageOf(column) == Storage::Text && !isNumericType(column.type);
}

}  // namespace

bool standsInCondition(const QString& columnName) {
    if (columnName.isEmpty() || columnName.startsWith(u'[')) return false;
    return std::none_of(columnName.begin(), columnName.end(), [](QChar c) {
        return c.isSpace() || c == u'=' || c == u'<' || c == u'>' || c == u'\'';
    });
}

bool seeksAlikeByValue(const ColumnInfo& from, const ColumnInfo& to) {
    const Storage source = storageOf(from), target = storageOf(to);
    const auto isExact = [](const ColumnInfo& column, Storage storage) {
        if (storage == Storage::Int8) return column.type != SqlType::Bit;
        return storage == Storage::Int16 || storage == Storage::Int32 ||
               storage == Storage::Int64 || storage == Storage::Scaled64;
    };
    if (isExact(from, source) && isExact(to, target)) return true;
    if (source != target) return false;
    switch (source) {
        case Storage::Int8:
            return from.type == to.type;
        case Storage::Ticks:
            return (from.type == SqlType::Time) == (to.type == SqlType::Time);
        case Storage::Text:
            return isPlainText(from) && isPlainText(to);
        default:
            return true;
    }
}

KeyLookup::KeyLookup(const Recordset& Rs1, KeyedRows& Rows2, const CompKeys (&Keys)[2])
    : rs1_(Rs1), rows2_(Rows2), sourceKey_(Keys[0].CompKey) {
    for (int field = 0; field < Rows2.columnCount(); ++field)
        columns2_.push_back(Rows2.columnInfo(field));
    std::vector<int> targetFields;
    const auto add = [&](const QString& sourceName, const QString& targetName) {
        Part part;
        part.targetName = targetName;
        // A part that is no key has never been looked up and stands at the first field.
        part.sourceField = isKeyField(sourceName) ? GetFieldOrdinal(Rs1, sourceName) : 0;
        part.targetField = standsInCondition(targetName) ? Rows2.fieldIndex(targetName) : -1;
        if (part.targetField < 0)
            indexable_ = false;
        else
            part.valueAsItIs = seeksAlikeByValue(Rs1.field(part.sourceField).info(),
                                                 columns2_[size_t(part.targetField)]);
        parts_.push_back(part);
        targetFields.push_back(part.targetField);
    };
    add(Keys[0].CompKey, Keys[1].CompKey);
    // The Target's second key makes the lookup one by several keys, the Source's third adds a
    // third.
    if (isKeyField(Keys[1].SecondaryCompKey)) {
        add(Keys[0].SecondaryCompKey, Keys[1].SecondaryCompKey);
        if (isKeyField(Keys[0].TertiaryCompKey))
            add(Keys[0].TertiaryCompKey, Keys[1].TertiaryCompKey);
    }
    byValueOnly_ = indexable_ && std::all_of(parts_.begin(), parts_.end(),
                                             [](const Part& part) { return part.valueAsItIs; });
    next_.resize(parts_.size());
    if (indexable_) Rows2.setKey(std::move(targetFields));
    wanted_.resize(parts_.size());
    read_.resize(parts_.size());
}

// With several keys a text 'Null' becomes a null wherever it stands in the filter, which breaks the
// filter when it stands within a value.
bool KeyLookup::needsCriterion(const CellView& cell) const {
    if (cell.isNull || cell.storage != Storage::Text) return false;
    const QStringView text = cell.text;
    for (qsizetype at = text.indexOf(NullText); at >= 0; at = text.indexOf(NullText, at + 1)) {
        const qsizetype end = at + NullText.size();
        const bool opens = at == 0 || text[at - 1] == u'\'';
        const bool closes = end == text.size() || text[end] == u'\'';
        if (opens && closes && text.size() != NullText.size()) return true;
    }
    return false;
}

// The key that the index is asked for; false where only the condition itself can tell. `canBeThere`
// is false for a value that the Target's column can't hold.
bool KeyLookup::makeKey(const RowView& record, bool& canBeThere) {
    canBeThere = true;
    for (const Part& part : parts_)
        if (parts_.size() > 1 && needsCriterion(record.rows->cell(record.row, part.sourceField)))
            return false;
    for (size_t i = 0; i < parts_.size(); ++i) {
        const Part& part = parts_[i];
        const CellView cell = record.rows->cell(record.row, part.sourceField);
        const bool isNullText =
            cell.isNull || (cell.storage == Storage::Text && cell.text == QStringView(NullText));
        if (parts_.size() > 1 && isNullText) {
            wanted_[i] = CellView{};
            wanted_[i].column = &columns2_[size_t(part.targetField)];
            wanted_[i].storage = storageOf(*wanted_[i].column);
            continue;
        }
        if (part.valueAsItIs && !cell.isNull) {
            wanted_[i] = cell;
            continue;
        }
        auto read = readAs(columns2_[size_t(part.targetField)], FieldText(cell));
        if (!read) {
            canBeThere = false;
            return true;
        }
        read_[i] = std::move(*read);
        wanted_[i] = read_[i].cell(0, 0);
    }
    return true;
}

QString KeyLookup::criterion(const RowView& record) const {
    QString text;
    for (const Part& part : parts_) {
        if (!text.isEmpty()) text += QStringLiteral(" AND ");
        QString value = FieldText(record.rows->cell(record.row, part.sourceField));
        value.replace(u'\'', QLatin1StringView("''"));
        text += part.targetName + QStringLiteral(" = '") + value + u'\'';
    }
    return text;
}

int KeyLookup::FindRecordByKey(const RowView& record) {
    bool canBeThere = true;
    if (indexable_ && makeKey(record, canBeThere)) {
        if (canBeThere)
            rows2_.find(wanted_);
        else
            rows2_.MoveBehindLast();
    } else if (parts_.size() == 1) {
        findByOneKey(record);
    } else {
        bool failed = false;
        Multi_Find(criterion(record), failed);
        if (failed) return -1;
    }
    return rows2_.isEof() ? 0 : 1;
}

int KeyLookup::FindNear(quint32 keyHash) {
    if (!rows2_.findNear(wanted_, keyHash)) return NotYet;
    return rows2_.isEof() ? 0 : 1;
}

std::optional<quint32> KeyLookup::keyHash(const RowView& record) {
    bool canBeThere = true;
    if (!makeKey(record, canBeThere) || !canBeThere) return std::nullopt;
    // With several keys a text may stand for a null, with one a null for a text.
    const bool isPrepared = byValueOnly_ && parts_.size() == 1 && preparedIn_ == record.rows &&
                            record.row <= preparedTo_ && record.row == rs1_.currentRow() &&
                            !record.rows->column(parts_[0].sourceField).isNull(record.row);
    return isPrepared ? hashes_[record.row % RowsPrepared] : KeyedRows::hashOfKey(wanted_);
}

// Of tables in different orders each search would wait for memory several times. A hint that is
// wrong (a null, a row that another takes first) costs nothing but itself.
void KeyLookup::prepareNext() {
    constexpr int distances[] = {15, 11, 7, 3};
    if (!byValueOnly_) return;
    const RowStore& rows = rs1_.rowStore();
    const qsizetype row = rs1_.currentRow();
    if (row < 0) return;
    if (row == 0 || preparedIn_ != &rows) preparedTo_ = row - 1;
    preparedIn_ = &rows;
    const qsizetype last = std::min(row + distances[0], rows.rowCount() - 1);
    while (preparedTo_ < last) {
        ++preparedTo_;
        for (size_t i = 0; i < parts_.size(); ++i)
            next_[i] = rows.cell(preparedTo_, parts_[i].sourceField);
        const quint32 hash = KeyedRows::hashOfKey(next_);
        hashes_[preparedTo_ % RowsPrepared] = hash;
        rows2_.prefetch(hash, 0);
        for (int column = 0; column < rows.columnCount(); ++column)
            rows.column(column).prefetch(preparedTo_);
    }
    for (int step = 1; step <= 3; ++step)
        if (const qsizetype at = row + distances[step]; at <= preparedTo_)
            rows2_.prefetch(hashes_[at % RowsPrepared], step);
    if (const qsizetype at = row + distances[2]; at <= preparedTo_)
        for (int column = 0; column < rows.columnCount(); ++column)
            rows.column(column).prefetchText(at);
}

void KeyLookup::findByOneKey(const RowView& record) {
    const QString& name = parts_[0].targetName;
    try {
        findByCriteria(criterion(record));
    } catch (const DbError& error) {
        if (error.number != criteria_error::Unreadable || parts_[0].targetField >= 0) throw;
        if (!isKeyField(name) || !isKeyField(sourceKey_))
            throw DbError(
                error.number,
                QStringLiteral("No key field is chosen for the %1 table. Choose one on the "
                               "page \"Comparison Method\" of the options.")
                    .arg(isKeyField(sourceKey_) ? QStringLiteral("Target")
                                                : QStringLiteral("Source")));
        const QString reason =
            standsInCondition(name)
                ? QStringLiteral(
                      "The key \"%1\" is not among the compared columns of the Target "
                      "table. Choose another key.")
                : QStringLiteral(
                      "The key \"%1\" can't be sought: its name holds a blank, a bracket, "
                      "a quote or one of = < >. Choose another key.");
        throw DbError(error.number, reason.arg(name));
    }
}

void KeyLookup::findByCriteria(const QString& text) {
    const std::vector<Criterion> criteria = parseCriteria(columns2_, text);
    rows2_.findFirst([&](const RowView& row) {
        return std::all_of(criteria.begin(), criteria.end(), [&](const Criterion& criterion) {
            return meetsCriterion(*row.rows, row.row, criterion);
        });
    });
}

bool KeyLookup::Multi_Find(const QString& Filter, bool& Failed) {
    Failed = false;
    QString filter = Filter;
    filter.replace(QuotedNull, QLatin1StringView("NULL"));
    try {
        findByCriteria(filter);
        return !rows2_.isEof();
    } catch (const DbError& error) {
        // What the server has to say of its rows is another matter than a filter that can't be
        // read.
        if (error.number == criteria_error::Unreadable) return false;
        Failed = true;
    } catch (...) {
        Failed = true;
    }
    reportCaughtError("modCompareData", "Multi_Find");
    return false;
}

}  // namespace zov
