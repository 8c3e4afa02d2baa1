#include "data/criteria.h"

#include "data/base/db_error.h"
#include "data/base/field_text.h"

#include <QRegularExpression>
#include <QUuid>

namespace zov {
namespace {

constexpr qint32 WrongArguments = criteria_error::Unreadable;

class CriteriaReader {
 public:
    CriteriaReader(const std::vector<ColumnInfo>& columns, const QString& text)
        : columns_(columns), text_(text) {}

    std::vector<Criterion> read() {
        std::vector<Criterion> criteria;
        do criteria.push_back(readOne());
        while (takeWord(u"AND"));
        skipBlanks();
        if (at_ < text_.size()) fail();
        return criteria;
    }

 private:
    [[noreturn]] void fail() const {
        throw DbError(WrongArguments,
                      QStringLiteral("The criterion \"%1\" can't be read.").arg(text_));
    }
    void skipBlanks() {
        while (at_ < text_.size() && text_[at_].isSpace()) ++at_;
    }
    bool takeWord(QStringView word) {
        skipBlanks();
        if (QStringView(text_).mid(at_, word.size()).compare(word, Qt::CaseInsensitive) != 0)
            return false;
        at_ += word.size();
        return true;
    }

    Criterion readOne() {
        Criterion criterion;
        const QString name = readName();
        criterion.column = columnIndex(name);
        if (criterion.column < 0)
            throw DbError(WrongArguments,
                          QStringLiteral("There is no column \"%1\" in the result.").arg(name));
        criterion.op = readOperator();
        bool quoted = false;
        const QString value = readValue(quoted);
        if (criterion.op == CriterionOperator::Like)
            criterion.pattern = value;
        else
            criterion.value = readAs(columns_[size_t(criterion.column)], value);
        if (!quoted && value.compare(u"NULL", Qt::CaseInsensitive) == 0) {
            criterion.value = RowStore({columns_[size_t(criterion.column)]});
            criterion.value->column(0).appendNull();
        }
        return criterion;
    }

    int columnIndex(const QString& name) const {
        for (size_t i = 0; i < columns_.size(); ++i)
            if (columns_[i].name.compare(name, Qt::CaseInsensitive) == 0) return int(i);
        return -1;
    }

    QString readName() {
        skipBlanks();
        QString name;
        if (at_ < text_.size() && text_[at_] == u'[') {
            for (++at_; at_ < text_.size(); ++at_) {
                if (text_[at_] == u']') {
                    if (at_ + 1 >= text_.size() || text_[at_ + 1] != u']') break;
                    ++at_;
                }
                name += text_[at_];
            }
            if (at_++ >= text_.size()) fail();
            return name;
        }
        while (at_ < text_.size() && !text_[at_].isSpace() &&
               !QStringLiteral("=<>").contains(text_[at_]))
            name += text_[at_++];
        return name;
    }

    CriterionOperator readOperator() {
        using enum CriterionOperator;
        if (takeWord(u"LIKE")) return Like;
        if (takeWord(u"<>")) return NotEqual;
        if (takeWord(u"<=")) return LessEqual;
        if (takeWord(u">=")) return GreaterEqual;
        if (takeWord(u"<")) return Less;
        if (takeWord(u">")) return Greater;
        if (takeWord(u"=")) return Equal;
        fail();
    }

    QString readValue(bool& quoted) {
        skipBlanks();
        if (at_ >= text_.size()) fail();
        const QChar quote = text_[at_];
        QString value;
        quoted = quote == u'\'' || quote == u'#';
        if (quoted) {
            for (++at_; at_ < text_.size(); ++at_) {
                if (text_[at_] == quote) {
                    if (quote == u'#' || at_ + 1 >= text_.size() || text_[at_ + 1] != quote) break;
                    ++at_;
                }
                value += text_[at_];
            }
            if (at_++ >= text_.size()) fail();
            return value;
        }
        while (at_ < text_.size() && !text_[at_].isSpace()) value += text_[at_++];
        return value;
    }

    const std::vector<ColumnInfo>& columns_;
    const QString& text_;
    qsizetype at_ = 0;
};

bool appendInteger(ColumnCells& cells, QStringView text) {
    bool ok = false;
    qint64 value = text.toLongLong(&ok);
    if (cells.info().type == SqlType::Bit) {
        if (text.compare(u"true", Qt::CaseInsensitive) == 0)
            value = ok = true;
        else if (text.compare(u"false", Qt::CaseInsensitive) == 0) {
            value = 0;
            ok = true;
        }
        value = value != 0;
    }
    static const qint64 limits[][2] = {
        {0, 255}, {-32768, 32767}, {-2147483647LL - 1, 2147483647LL}};
    const int width = int(cells.storage());
    if (ok && width < 3 && (value < limits[width][0] || value > limits[width][1])) ok = false;
    if (ok) cells.appendInteger(value);
    return ok;
}

// "12.5" to the integer 1250 at scale 2. Digits beyond the scale can't be held and match nothing.
bool appendScaled(ColumnCells& cells, QStringView text) {
    const bool negative = text.startsWith(u'-');
    if (negative || text.startsWith(u'+')) text = text.mid(1);
    const qsizetype point = text.indexOf(u'.');
    QString digits = text.left(point < 0 ? text.size() : point).toString();
    QString fraction = point < 0 ? QString() : text.mid(point + 1).toString();
    while (fraction.endsWith(u'0')) fraction.chop(1);
    const int scale = cells.info().scale;
    if (fraction.size() > scale || (digits.isEmpty() && fraction.isEmpty() && point < 0))
        return false;
    digits += fraction.leftJustified(scale, u'0');
    bool ok = false;
    const qint64 value = digits.toLongLong(&ok);
    if (ok) cells.appendInteger(negative ? -value : value);
    return ok;
}

bool appendTicks(ColumnCells& cells, QStringView text) {
    const QByteArray ascii = text.toLatin1();
    qint64 ticks = 0;
    qint16 offset = 0;
    if (!parseIsoTicks(ascii.constData(), ascii.size(), ticks, offset)) return false;
    if (cells.storage() == Storage::TicksOffset)
        cells.appendTicksOffset(ticks, offset);
    else
        cells.appendInteger(ticks);
    return true;
}

bool appendBinary(ColumnCells& cells, QStringView text) {
    if (!text.startsWith(u"0x", Qt::CaseInsensitive)) return false;
    const QByteArray hex = text.mid(2).toLatin1();
    const QByteArray bytes = QByteArray::fromHex(hex);
    if (bytes.size() * 2 != hex.size()) return false;
    cells.appendBytes(bytes.constData(), bytes.size());
    return true;
}

bool appendValue(ColumnCells& cells, QStringView text) {
    switch (cells.storage()) {
        case Storage::Int8:
        case Storage::Int16:
        case Storage::Int32:
        case Storage::Int64:
            return appendInteger(cells, text);
        case Storage::Scaled64:
            return appendScaled(cells, text);
        case Storage::Ticks:
        case Storage::TicksOffset:
            return appendTicks(cells, text);
        case Storage::Bytes:
            return appendBinary(cells, text);
        case Storage::Text:
            cells.appendText(text);
            return true;
        case Storage::Float32:
        case Storage::Float64: {
            bool ok = false;
            const double value = text.toDouble(&ok);
            if (ok) cells.appendReal(value);
            return ok;
        }
        case Storage::Guid: {
            const QUuid guid = QUuid::fromString(text);
            if (guid.isNull() && !text.contains(u"00000000-")) return false;
            cells.appendBytes(guid.toRfc4122().constData(), 16);
            return true;
        }
    }
    return false;
}

}  // namespace

std::optional<RowStore> readAs(const ColumnInfo& column, QStringView text) {
    RowStore store({column});
    const QStringView value = storageOf(column) == Storage::Text ? text : text.trimmed();
    if (!appendValue(store.column(0), value)) return std::nullopt;
    return store;
}

std::vector<Criterion> parseCriteria(const std::vector<ColumnInfo>& columns, const QString& text) {
    return CriteriaReader(columns, text).read();
}

bool meetsCriterion(const RowStore& rows, qsizetype row, const Criterion& criterion) {
    const CellView cell = rows.cell(row, criterion.column);
    if (criterion.op == CriterionOperator::Like) {
        QString pattern = QRegularExpression::escape(criterion.pattern);
        pattern.replace(QLatin1StringView("\\*"), QLatin1StringView(".*"))
            .replace(QLatin1StringView("%"), QLatin1StringView(".*"));
        const QRegularExpression expression(QRegularExpression::anchoredPattern(pattern),
                                            QRegularExpression::CaseInsensitiveOption |
                                                QRegularExpression::DotMatchesEverythingOption);
        return !cell.isNull && expression.match(cellText(cell)).hasMatch();
    }
    if (!criterion.value) return false;
    const CellView wanted = criterion.value->cell(0, 0);
    if (cell.isNull || wanted.isNull) {
        if (criterion.op == CriterionOperator::Equal) return cell.isNull && wanted.isNull;
        return criterion.op == CriterionOperator::NotEqual && cell.isNull != wanted.isNull;
    }
    const int order = compareCells(cell, wanted, Qt::CaseInsensitive);
    switch (criterion.op) {
        case CriterionOperator::Equal:
            return order == 0;
        case CriterionOperator::NotEqual:
            return order != 0;
        case CriterionOperator::Less:
            return order < 0;
        case CriterionOperator::LessEqual:
            return order <= 0;
        case CriterionOperator::Greater:
            return order > 0;
        case CriterionOperator::GreaterEqual:
            return order >= 0;
        case CriterionOperator::Like:
            break;
    }
    return false;
}

}  // namespace zov
