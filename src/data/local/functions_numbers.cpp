// Numbers: division that fails on zero, rounding, decimals of more digits than a
// double holds, and the aggregates that SQLite lacks.
#include "data/local/functions_support.h"

#include <QUuid>

#include <cmath>
#include <map>
#include <random>

namespace zov::local {
namespace {

bool divides(sqlite3_context* context, sqlite3_value** v) {
    if (isNull(v[0]) || isNull(v[1])) {
        sqlite3_result_null(context);
        return false;
    }
    if (sqlite3_value_double(v[1]) == 0) {
        giveError(context, 8134, QStringLiteral("Divide by zero error encountered."));
        return false;
    }
    return true;
}

bool bothWhole(sqlite3_value** v) {
    return sqlite3_value_numeric_type(v[0]) == SQLITE_INTEGER &&
           sqlite3_value_numeric_type(v[1]) == SQLITE_INTEGER;
}

void divide(sqlite3_context* context, int, sqlite3_value** v) {
    if (!divides(context, v)) return;
    if (bothWhole(v))
        return sqlite3_result_int64(context, sqlite3_value_int64(v[0]) / sqlite3_value_int64(v[1]));
    sqlite3_result_double(context, sqlite3_value_double(v[0]) / sqlite3_value_double(v[1]));
}

void divideReal(sqlite3_context* context, int, sqlite3_value** v) {
    if (divides(context, v))
        sqlite3_result_double(context, sqlite3_value_double(v[0]) / sqlite3_value_double(v[1]));
}

void modulo(sqlite3_context* context, int, sqlite3_value** v) {
    if (!divides(context, v)) return;
    if (bothWhole(v))
        return sqlite3_result_int64(context, sqlite3_value_int64(v[0]) % sqlite3_value_int64(v[1]));
    sqlite3_result_double(context,
                          std::fmod(sqlite3_value_double(v[0]), sqlite3_value_double(v[1])));
}

/// A + whose sides nobody knew: texts are joined, numbers added.
void plusUnknown(sqlite3_context* context, int, sqlite3_value** v) {
    const int a = sqlite3_value_type(v[0]), b = sqlite3_value_type(v[1]);
    if (a == SQLITE_NULL || b == SQLITE_NULL) return sqlite3_result_null(context);
    if (a == SQLITE_TEXT && b == SQLITE_TEXT) {
        const QByteArray text = utf8Of(v[0]).toByteArray() + utf8Of(v[1]).toByteArray();
        return giveText(context, text);
    }
    if (a == SQLITE_INTEGER && b == SQLITE_INTEGER)
        return sqlite3_result_int64(context, sqlite3_value_int64(v[0]) + sqlite3_value_int64(v[1]));
    sqlite3_result_double(context, sqlite3_value_double(v[0]) + sqlite3_value_double(v[1]));
}

void roundNumber(sqlite3_context* context, int count, sqlite3_value** v) {
    if (isNull(v[0]) || isNull(v[1])) return sqlite3_result_null(context);
    const int digits = std::clamp(sqlite3_value_int(v[1]), -30, 30);
    const bool cut = count > 2 && sqlite3_value_int(v[2]) != 0;
    if (sqlite3_value_type(v[0]) == SQLITE_INTEGER && digits >= 0)
        return sqlite3_result_value(context, v[0]);
    DecimalText decimal = DecimalText::ofValue(valueOf(v[0], ColumnInfo()));
    const int scale = decimal.scale;
    if (digits < 0)
        decimal.scale += -digits;  // tens and hundreds: round the number moved to the right
    const int wanted = digits < 0 ? 0 : std::min(digits, scale);
    if (cut && wanted < decimal.scale) {
        decimal.digits.chop(std::min<qsizetype>(decimal.digits.size(), decimal.scale - wanted));
        decimal.scale = wanted;
    } else if (wanted < decimal.scale) {
        decimal.rescale(wanted);
    }
    if (digits < 0 && !decimal.digits.isEmpty()) decimal.digits += QByteArray(-digits, '0');
    const bool real = sqlite3_value_type(v[0]) == SQLITE_FLOAT;
    if (real) return sqlite3_result_double(context, decimal.canonical().toDouble());
    giveValue(context, decimal.stored(ColumnInfo()));
}

/// A text that sorts as the number does: sign, 38 digits in front of the point, the rest behind it.
QByteArray decimalKey(const DecimalText& decimal) {
    QByteArray whole = decimal.plain();
    if (decimal.negative) whole.remove(0, 1);
    qsizetype point = whole.indexOf('.');
    if (point < 0) point = whole.size();
    QByteArray key(40 - std::min<qsizetype>(40, point), '0');
    key += whole;
    if (point < whole.size()) {
        while (key.endsWith('0')) key.chop(1);
        if (key.endsWith('.')) key.chop(1);
    }
    if (decimal.negative) {
        for (char& c : key)
            if (c != '.') c = char('0' + '9' - c);
        return '-' + key + '~';
    }
    return decimal.digits.isEmpty() ? 'p' + key : 'p' + key;
}

void decimalKeyOf(sqlite3_context* context, int, sqlite3_value** v) {
    if (isNull(v[0])) return sqlite3_result_null(context);
    giveText(context, decimalKey(DecimalText::ofValue(valueOf(v[0], ColumnInfo()))));
}

// Sums of long decimals: both brought to one scale and added as digits.
QByteArray addDigits(const QByteArray& a, const QByteArray& b) {
    QByteArray sum;
    int carry = 0;
    for (qsizetype i = a.size() - 1, j = b.size() - 1; i >= 0 || j >= 0 || carry; --i, --j) {
        const int digit = (i >= 0 ? a[i] - '0' : 0) + (j >= 0 ? b[j] - '0' : 0) + carry;
        sum.prepend(char('0' + digit % 10));
        carry = digit / 10;
    }
    return sum;
}
QByteArray subtractDigits(const QByteArray& a, const QByteArray& b) {  // a >= b
    QByteArray rest;
    int borrow = 0;
    for (qsizetype i = a.size() - 1, j = b.size() - 1; i >= 0; --i, --j) {
        int digit = a[i] - '0' - borrow - (j >= 0 ? b[j] - '0' : 0);
        borrow = digit < 0;
        rest.prepend(char('0' + (digit + 10) % 10));
    }
    qsizetype zeros = 0;
    while (zeros < rest.size() && rest[zeros] == '0') ++zeros;
    return rest.mid(zeros);
}
DecimalText addDecimals(DecimalText a, DecimalText b) {
    const int scale = std::max(a.scale, b.scale);
    a.rescale(scale);
    b.rescale(scale);
    DecimalText sum;
    sum.scale = scale;
    if (a.negative == b.negative) {
        sum.negative = a.negative;
        sum.digits = addDigits(a.digits, b.digits);
    } else {
        const bool aLarger = a.digits.size() != b.digits.size() ? a.digits.size() > b.digits.size()
                                                                : a.digits >= b.digits;
        sum.negative = aLarger ? a.negative : b.negative;
        sum.digits =
            aLarger ? subtractDigits(a.digits, b.digits) : subtractDigits(b.digits, a.digits);
    }
    qsizetype zeros = 0;
    while (zeros < sum.digits.size() && sum.digits[zeros] == '0') ++zeros;
    sum.digits.remove(0, zeros);
    if (sum.digits.isEmpty()) sum.negative = false;
    return sum;
}

struct DecimalState {
    DecimalText* value;
    qint64 count;
};

enum class DecimalAggregate { Sum, Min, Max };

template <DecimalAggregate what>
void decimalStep(sqlite3_context* context, int, sqlite3_value** v) {
    if (isNull(v[0])) return;
    auto* state =
        static_cast<DecimalState*>(sqlite3_aggregate_context(context, sizeof(DecimalState)));
    if (!state) return sqlite3_result_error_nomem(context);
    const DecimalText value = DecimalText::ofValue(valueOf(v[0], ColumnInfo()));
    ++state->count;
    if (!state->value) {
        state->value = new DecimalText(value);
    } else if (what == DecimalAggregate::Sum) {
        *state->value = addDecimals(*state->value, value);
    } else {
        const bool less = decimalKey(value) < decimalKey(*state->value);
        if (less == (what == DecimalAggregate::Min)) *state->value = value;
    }
}

// Rows leave a window's sum again.
void decimalInverse(sqlite3_context* context, int, sqlite3_value** v) {
    auto* state = static_cast<DecimalState*>(sqlite3_aggregate_context(context, 0));
    if (isNull(v[0]) || !state || !state->value) return;
    DecimalText value = DecimalText::ofValue(valueOf(v[0], ColumnInfo()));
    value.negative = !value.negative && !value.digits.isEmpty();
    *state->value = addDecimals(*state->value, value);
    --state->count;
}

void decimalValue(sqlite3_context* context) {
    const auto* state = static_cast<DecimalState*>(sqlite3_aggregate_context(context, 0));
    if (!state || !state->value || state->count == 0) return sqlite3_result_null(context);
    giveValue(context, state->value->stored(ColumnInfo()));
}

void decimalFinal(sqlite3_context* context) {
    decimalValue(context);
    auto* state = static_cast<DecimalState*>(sqlite3_aggregate_context(context, 0));
    if (!state) return;
    delete state->value;
    state->value = nullptr;
}

/// The decimals within a window, by their order.
using DecimalsInOrder = std::multimap<QByteArray, DecimalText>;

DecimalsInOrder** decimalsInOrder(sqlite3_context* context, int bytes) {
    return static_cast<DecimalsInOrder**>(sqlite3_aggregate_context(context, bytes));
}

void orderedStep(sqlite3_context* context, int, sqlite3_value** v) {
    if (isNull(v[0])) return;
    DecimalsInOrder** all = decimalsInOrder(context, int(sizeof(DecimalsInOrder*)));
    if (!all) return sqlite3_result_error_nomem(context);
    if (!*all) *all = new DecimalsInOrder;
    const DecimalText value = DecimalText::ofValue(valueOf(v[0], ColumnInfo()));
    (*all)->emplace(decimalKey(value), value);
}

void orderedInverse(sqlite3_context* context, int, sqlite3_value** v) {
    DecimalsInOrder** all = decimalsInOrder(context, 0);
    if (isNull(v[0]) || !all || !*all) return;
    const auto found = (*all)->find(decimalKey(DecimalText::ofValue(valueOf(v[0], ColumnInfo()))));
    if (found != (*all)->end()) (*all)->erase(found);
}

template <DecimalAggregate what>
void orderedValue(sqlite3_context* context) {
    DecimalsInOrder** all = decimalsInOrder(context, 0);
    if (!all || !*all || (*all)->empty()) return sqlite3_result_null(context);
    const DecimalText& value =
        what == DecimalAggregate::Min ? (*all)->begin()->second : std::prev((*all)->end())->second;
    giveValue(context, value.stored(ColumnInfo()));
}

template <DecimalAggregate what>
void orderedFinal(sqlite3_context* context) {
    orderedValue<what>(context);
    DecimalsInOrder** all = decimalsInOrder(context, 0);
    if (!all) return;
    delete *all;
    *all = nullptr;
}

struct SpreadState {
    double mean, squares;
    qint64 count;
};

void spreadStep(sqlite3_context* context, int, sqlite3_value** v) {
    if (isNull(v[0])) return;
    auto* state =
        static_cast<SpreadState*>(sqlite3_aggregate_context(context, sizeof(SpreadState)));
    if (!state) return sqlite3_result_error_nomem(context);
    const double value = sqlite3_value_double(v[0]);
    const double delta = value - state->mean;
    state->mean += delta / double(++state->count);
    state->squares += delta * (value - state->mean);
}

void spreadInverse(sqlite3_context* context, int, sqlite3_value** v) {
    auto* state = static_cast<SpreadState*>(sqlite3_aggregate_context(context, 0));
    if (isNull(v[0]) || !state || state->count == 0) return;
    const double value = sqlite3_value_double(v[0]);
    if (--state->count == 0) {
        *state = {};
        return;
    }
    const double before = state->mean;
    state->mean -= (value - before) / double(state->count);
    state->squares = std::max(0.0, state->squares - (value - before) * (value - state->mean));
}

template <bool root, bool sample>
void spreadFinal(sqlite3_context* context) {
    const auto* state = static_cast<SpreadState*>(sqlite3_aggregate_context(context, 0));
    if (!state || state->count < (sample ? 2 : 1)) return sqlite3_result_null(context);
    const double variance = state->squares / double(sample ? state->count - 1 : state->count);
    sqlite3_result_double(context, root ? std::sqrt(variance) : variance);
}

}  // namespace

void installNumberFunctions(sqlite3* handle) {
    define(handle, "zov_div", 2, divide);
    define(handle, "zov_divr", 2, divideReal);
    define(handle, "zov_mod", 2, modulo);
    define(handle, "zov_plus", 2, plusUnknown);
    define(handle, "zov_xor", 2, [](sqlite3_context* c, int, sqlite3_value** v) {
        if (isNull(v[0]) || isNull(v[1])) return sqlite3_result_null(c);
        sqlite3_result_int64(c, sqlite3_value_int64(v[0]) ^ sqlite3_value_int64(v[1]));
    });
    define(handle, "zov_round", 2, roundNumber);
    define(handle, "zov_round", 3, roundNumber);
    define(handle, "zov_dkey", 1, decimalKeyOf);
    define(handle, "zov_cut", 2, [](sqlite3_context* c, int, sqlite3_value** v) {
        if (isNull(v[0])) return sqlite3_result_null(c);
        const double unit = std::pow(10.0, sqlite3_value_int(v[1])),
                     moved = sqlite3_value_double(v[0]) * unit;
        const double nearest = std::round(moved);
        // What a double is off by must not cost the last digit.
        const bool whole = std::abs(moved - nearest) <= 1e-9 * std::max(1.0, std::abs(moved));
        sqlite3_result_double(c, (whole ? nearest : std::trunc(moved)) / unit);
    });
    define(handle, "zov_real", 1, [](sqlite3_context* c, int, sqlite3_value** v) {
        if (isNull(v[0])) return sqlite3_result_null(c);
        sqlite3_result_double(c, double(float(sqlite3_value_double(v[0]))));
    });
    // The server sorts unique identifiers by their last group first, and the bytes of the first
    // three groups from the right.
    define(handle, "zov_gkey", 1, [](sqlite3_context* c, int, sqlite3_value** v) {
        const QByteArrayView text = utf8Of(v[0]);
        if (isNull(v[0]) || text.size() != 36) return sqlite3_result_value(c, v[0]);
        static const int order[] = {24, 26, 28, 30, 32, 34, 19, 21, 16, 14, 11, 9, 6, 4, 2, 0};
        QByteArray key;
        for (const int at : order) key += text.sliced(at, 2);
        giveText(c, key);
    });
    define(handle, "zov_power", 2, [](sqlite3_context* c, int, sqlite3_value** v) {
        if (isNull(v[0]) || isNull(v[1])) return sqlite3_result_null(c);
        const double result = std::pow(sqlite3_value_double(v[0]), sqlite3_value_double(v[1]));
        if (bothWhole(v) && std::abs(result) < 9e15) return sqlite3_result_int64(c, qint64(result));
        sqlite3_result_double(c, result);
    });
    define(handle, "zov_square", 1, [](sqlite3_context* c, int, sqlite3_value** v) {
        if (isNull(v[0])) return sqlite3_result_null(c);
        sqlite3_result_double(c, sqlite3_value_double(v[0]) * sqlite3_value_double(v[0]));
    });
    define(handle, "zov_logbase", 2, [](sqlite3_context* c, int, sqlite3_value** v) {
        if (isNull(v[0]) || isNull(v[1])) return sqlite3_result_null(c);
        sqlite3_result_double(
            c, std::log(sqlite3_value_double(v[0])) / std::log(sqlite3_value_double(v[1])));
    });
    define(
        handle, "zov_rand", 0,
        [](sqlite3_context* c, int, sqlite3_value**) {
            static thread_local std::mt19937_64 random{std::random_device{}()};
            sqlite3_result_double(c, std::uniform_real_distribution<double>(0, 1)(random));
        },
        nullptr, false);
    define(
        handle, "zov_newid", 0,
        [](sqlite3_context* c, int, sqlite3_value**) {
            giveText(c, QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper());
        },
        nullptr, false);
    sqlite3_create_function_v2(handle, "zov_dmin", 1, SQLITE_UTF8, nullptr, nullptr,
                               decimalStep<DecimalAggregate::Min>, decimalFinal, nullptr);
    sqlite3_create_function_v2(handle, "zov_dmax", 1, SQLITE_UTF8, nullptr, nullptr,
                               decimalStep<DecimalAggregate::Max>, decimalFinal, nullptr);
    using Step = void (*)(sqlite3_context*, int, sqlite3_value**);
    using Give = void (*)(sqlite3_context*);
    const auto window = [handle](const char* name, Step step, Give last, Give value, Step inverse) {
        sqlite3_create_window_function(handle, name, 1, SQLITE_UTF8, nullptr, step, last, value,
                                       inverse, nullptr);
    };
    window("zov_dsum", decimalStep<DecimalAggregate::Sum>, decimalFinal, decimalValue,
           decimalInverse);
    window("zov_wmin", orderedStep, orderedFinal<DecimalAggregate::Min>,
           orderedValue<DecimalAggregate::Min>, orderedInverse);
    window("zov_wmax", orderedStep, orderedFinal<DecimalAggregate::Max>,
           orderedValue<DecimalAggregate::Max>, orderedInverse);
    const auto spread = [&](const char* name, Give value) {
        window(name, spreadStep, value, value, spreadInverse);
    };
    spread("zov_stdev", spreadFinal<true, true>);
    spread("zov_stdevp", spreadFinal<true, false>);
    spread("zov_var", spreadFinal<false, true>);
    spread("zov_varp", spreadFinal<false, false>);
}

}  // namespace zov::local
