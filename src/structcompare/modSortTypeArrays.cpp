// SortArray_CompLine gives, in n log n, the result of this exchange sort:
//
//     for i in all: for j in all: if key(i) < key(j) swap(i, j)
//
// The lines that are compared afterwards are compared exactly, so the order of
// lines that differ only in letter case shows, and must be that sort's.
//
// What the sort does:
// - Round i = 1 brings the first of the greatest keys to the front; each strict
//   maximum of the walk moves to the place of the next one. One pass, done here
//   as it stands.
// - From then on, before round i, places 1 to i-1 are in order and hold a
//   greatest key at place i-1, and round i inserts x = record i. Going up the
//   ordered part, x is exchanged with the first record whose key is greater,
//   that one with the first greater than itself, and so on: the first record of
//   every group of equal keys above x is carried over its group to the place
//   where the next group begins. So x goes behind its equals, and every group
//   above x is moved up by one place and turned: its first record becomes its
//   last. Behind place i nothing happens, since record i holds a greatest key then.
// A group is therefore a ring. It is appended to when a record of its key comes,
// and turned once for every smaller record that comes after its first; where
// its members end depends only on how many turns lie between the appends.
#include "structcompare/modSortTypeArrays.h"

#include "core/error_report.h"
#include "structcompare/simple_case.h"

#include <algorithm>
#include <bit>
#include <numeric>

namespace zov {
namespace {

/// Prefix sums over counters that change (a Fenwick tree), places from 0.
class Counters {
 public:
    explicit Counters(size_t size) : tree_(size + 1) {}

    static Counters ofOnes(size_t size) {
        Counters counters(size);
        for (size_t i = 1; i <= size; ++i) counters.tree_[i] = int(i & (~i + 1));
        return counters;
    }
    void add(size_t place, int amount) {
        for (size_t i = place + 1; i < tree_.size(); i += i & (~i + 1)) tree_[i] += amount;
    }
    /// Sum of the places before `place`.
    int sumBefore(size_t place) const {
        int sum = 0;
        for (size_t i = place; i > 0; i -= i & (~i + 1)) sum += tree_[i];
        return sum;
    }
    /// The place of the one number `rank` (from 0) when every counter is 0 or 1.
    size_t findOne(int rank) const {
        size_t at = 0;
        for (size_t step = std::bit_floor(tree_.size() - 1); step > 0; step >>= 1)
            if (at + step < tree_.size() && tree_[at + step] <= rank) {
                at += step;
                rank -= tree_[at];
            }
        return at;
    }

 private:
    std::vector<int> tree_;
};

/// For each line the number of different keys that sort before its own.
std::vector<int> ranksOf(const std::vector<CompLine>& lines, bool ascending, bool ignoreCase) {
    // All keys in one text: the sort reads them over and over.
    QString cased;
    for (const CompLine& line : lines) cased += line.strText;
    if (ignoreCase) cased = simpleLower(cased);
    std::vector<QStringView> keys;
    keys.reserve(lines.size());
    qsizetype begin = 0;
    for (const CompLine& line : lines) {
        keys.push_back(QStringView(cased).mid(begin, line.strText.size()));
        begin += line.strText.size();
    }

    std::vector<int> byKey(lines.size());
    std::iota(byKey.begin(), byKey.end(), 0);
    std::sort(byKey.begin(), byKey.end(), [&](int a, int b) {
        const int order = keys[size_t(a)].compare(keys[size_t(b)]);
        return ascending ? order < 0 : order > 0;
    });

    std::vector<int> ranks(lines.size());
    int rank = 0;
    for (size_t i = 0; i < byKey.size(); ++i) {
        if (i > 0 && keys[size_t(byKey[i])] != keys[size_t(byKey[i - 1])]) ++rank;
        ranks[size_t(byKey[i])] = rank;
    }
    return ranks;
}

/// The records of one key, in the order of their coming.
struct Ring {
    struct Member {
        int record;
        int turnsBefore;  ///< turns between the member before and this one
    };
    std::vector<Member> members;
    int smallerSeen = 0;  ///< smaller records that had come when the last member came
};

/// Writes the ring's records to `places` as they stand after all appends and turns. Goes back in
/// time: of the places still free, in a circle, `start` is the one of the ring's first record; undo
/// the turns, and the last record stands just before the start.
void layOut(const Ring& ring, int turnsAfter, int* places) {
    const auto& members = ring.members;
    Counters free = Counters::ofOnes(members.size());
    int start = 0;
    int turns = turnsAfter;
    for (int size = int(members.size()); size > 0; --size) {
        start = (start - turns % size + size) % size;
        const int rank = (start + size - 1) % size;
        const size_t place = free.findOne(rank);
        places[place] = members[size_t(size) - 1].record;
        free.add(place, -1);
        if (rank < start) --start;
        turns = members[size_t(size) - 1].turnsBefore;
    }
}

std::vector<int> exchangeSortOrder(const std::vector<int>& ranks) {
    const size_t count = ranks.size();
    std::vector<int> order(count);
    std::iota(order.begin(), order.end(), 0);
    for (size_t j = 1; j < count; ++j)
        if (ranks[size_t(order[0])] < ranks[size_t(order[j])]) std::swap(order[0], order[j]);

    const size_t groups = size_t(*std::max_element(ranks.begin(), ranks.end())) + 1;
    std::vector<Ring> rings(groups);
    Counters seen(groups);
    for (int record : order) {
        const size_t rank = size_t(ranks[size_t(record)]);
        const int smaller = seen.sumBefore(rank);
        Ring& ring = rings[rank];
        ring.members.push_back({record, ring.members.empty() ? 0 : smaller - ring.smallerSeen});
        ring.smallerSeen = smaller;
        seen.add(rank, 1);
    }

    std::vector<int> sorted(count);
    size_t begin = 0;
    for (const Ring& ring : rings) {
        layOut(ring, int(begin) - ring.smallerSeen, sorted.data() + begin);
        begin += ring.members.size();
    }
    return sorted;
}

}  // namespace

void SortArray_CompLine(std::vector<CompLine>& lines, bool ascending, bool ignoreCase) {
    guardedRun("modSortTypeArrays", "SortArray_CompLine", [&] {
        if (lines.size() < 2) return;
        const std::vector<int> order = exchangeSortOrder(ranksOf(lines, ascending, ignoreCase));
        std::vector<CompLine> sorted;
        sorted.reserve(lines.size());
        for (int record : order) sorted.push_back(std::move(lines[size_t(record)]));
        lines = std::move(sorted);
    });
}

bool AreTypeArrays_CompLine_Identical(const std::vector<CompLine>& a,
                                      const std::vector<CompLine>& b, qint32 countA,
                                      qint32 countB) {
    return countA == countB &&
           std::equal(a.begin(), a.begin() + countA, b.begin(),
                      [](const auto& x, const auto& y) { return x.strText == y.strText; });
}

}  // namespace zov
