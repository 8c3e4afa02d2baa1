#include "core/CCommandArgs.h"

#include "core/error_report.h"
#include "util/text.h"

namespace zov {

void CCommandArgs::Parse() {
    if (Delim.isEmpty() || TestString.isEmpty()) return;
    try {
        pairs_.clear();
        qsizetype begin = TestString.indexOf(Delim, 0, Qt::CaseInsensitive);
        while (begin >= 0) {
            const qsizetype next =
                TestString.indexOf(Delim, begin + Delim.size(), Qt::CaseInsensitive);
            const qsizetype end = next < 0 ? TestString.size() : next;
            const QString body = TestString.mid(begin + Delim.size(), end - begin - Delim.size());
            const qsizetype blank = (body + u' ').indexOf(u' ');
            Pair pair{Trim(body.left(blank)), Trim(body.mid(blank + 1))};
            if (pair.value.isEmpty()) pair.value = pair.key;
            pairs_.push_back(pair);
            begin = next;
        }
    } catch (...) {
        showCaughtErrorTitled("Parse");
    }
}

QString CCommandArgs::Key(int Index) const {
    return Index > 0 && Index <= Count() ? pairs_[size_t(Index - 1)].key : QString();
}

QString CCommandArgs::Value(int Index) const {
    return Index > 0 && Index <= Count() ? pairs_[size_t(Index - 1)].value : QString();
}

QString CCommandArgs::Item(const QString& KeyOrIndex) const {
    try {
        double number = 0;
        if (isNumeric(KeyOrIndex, &number)) return Value(roundToInt32(number));
        for (const Pair& pair : pairs_) {
            if (pair.key.compare(KeyOrIndex, Qt::CaseInsensitive) == 0) return pair.value;
        }
    } catch (...) {
        showCaughtErrorTitled("Item");
    }
    return {};
}

}  // namespace zov
