#include "structcompare/line_diff.h"

#include <algorithm>
#include <iterator>

namespace zov {
namespace {

struct Step {
    int source;  // -1: inserted
    int target;  // -1: deleted
};

// Beyond so many edits two texts have little in common, and what is in between is shown as
// replaced.
constexpr int MostEdits = 4000;

// The greedy algorithm forward, keeping the furthest points of each round for the way back. Gives
// the steps in order; texts that are further apart than MostEdits come out as all deleted, all
// inserted.
template <typename Equal>
std::vector<Step> shortestEdit(int n, int m, Equal equal) {
    std::vector<Step> steps;
    int head = 0;
    while (head < n && head < m && equal(head, head)) ++head;
    int tail = 0;
    while (tail < n - head && tail < m - head && equal(n - 1 - tail, m - 1 - tail)) ++tail;
    for (int i = 0; i < head; ++i) steps.push_back({i, i});

    const int N = n - head - tail, M = m - head - tail;
    const int most = std::min(N + M, MostEdits);
    std::vector<int> furthest(size_t(2 * most + 3), 0);
    const auto at = [&](int k) -> int& { return furthest[size_t(k + most + 1)]; };
    std::vector<std::vector<int>> rounds;
    bool met = false;
    for (int d = 0; d <= most && !met; ++d) {
        rounds.emplace_back(furthest.begin() + (most + 1 - d - 1),
                            furthest.begin() + (most + 1 + d + 2));
        for (int k = -d; k <= d; k += 2) {
            int x = k == -d || (k != d && at(k - 1) < at(k + 1)) ? at(k + 1) : at(k - 1) + 1;
            int y = x - k;
            while (x < N && y < M && equal(head + x, head + y)) {
                ++x;
                ++y;
            }
            at(k) = x;
            if (x >= N && y >= M) {
                met = true;
                break;
            }
        }
    }
    std::vector<Step> middle;
    if (met) {
        int x = N, y = M;
        for (int d = int(rounds.size()) - 1; d >= 0; --d) {
            // The furthest points before round d, on the diagonals -d-1 to d+1.
            const std::vector<int>& points = rounds[size_t(d)];
            const auto before = [&](int k) { return points[size_t(k + d + 1)]; };
            const int k = x - y;
            const bool inserted = k == -d || (k != d && before(k - 1) < before(k + 1));
            const int fromX = before(inserted ? k + 1 : k - 1);
            const int fromY = fromX - (inserted ? k + 1 : k - 1);
            while (x > fromX && y > fromY && x > 0) {
                --x;
                --y;
                middle.push_back({head + x, head + y});
            }
            if (d > 0) middle.push_back(inserted ? Step{-1, head + y - 1} : Step{head + x - 1, -1});
            x = fromX;
            y = fromY;
        }
        std::reverse(middle.begin(), middle.end());
    } else {
        for (int i = 0; i < N; ++i) middle.push_back({head + i, -1});
        for (int j = 0; j < M; ++j) middle.push_back({-1, head + j});
    }
    steps.insert(steps.end(), middle.begin(), middle.end());
    for (int i = tail; i > 0; --i) steps.push_back({n - i, m - i});
    return steps;
}

QStringList wordsOf(const QString& line, std::vector<qsizetype>& starts) {
    QStringList words;
    for (qsizetype i = 0; i < line.size();) {
        qsizetype end = i + 1;
        if (line[i].isLetterOrNumber() || line[i] == u'_')
            while (end < line.size() && (line[end].isLetterOrNumber() || line[end] == u'_')) ++end;
        starts.push_back(i);
        words += line.mid(i, end - i);
        i = end;
    }
    return words;
}

// The words of a line without blanks and signs, sorted.
QStringList nameWordsOf(const QString& line) {
    std::vector<qsizetype> starts;
    QStringList words = wordsOf(line, starts);
    words.removeIf(
        [](const QString& word) { return !word[0].isLetterOrNumber() && word[0] != u'_'; });
    words.sort();
    return words;
}

// What share of two lines' words they have in common, 0 to 1.
double likeness(const QStringList& a, const QStringList& b) {
    if (a.isEmpty() || b.isEmpty()) return 0;
    QStringList common;
    std::set_intersection(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(common));
    return 2.0 * double(common.size()) / double(a.size() + b.size());
}

// Two lines that share less than this stand beside each other only by chance.
constexpr double Alike = 0.5;
// Longer replacements are paired as they come: nobody reads them for single words.
constexpr size_t MostPairs = 20'000;

// Which of the inserted lines each deleted one became: index by index, -1 for none; in order, with
// as much in common as can be.
std::vector<int> successors(const QStringList& deleted, const QStringList& inserted) {
    const size_t n = size_t(deleted.size()), m = size_t(inserted.size());
    std::vector<int> found(n, -1);
    if (n * m > MostPairs) return found;
    std::vector<QStringList> a, b;
    for (const QString& line : deleted) a.push_back(nameWordsOf(line));
    for (const QString& line : inserted) b.push_back(nameWordsOf(line));
    std::vector<std::vector<double>> alike(n, std::vector<double>(m, 0));
    std::vector<std::vector<double>> best(n + 1, std::vector<double>(m + 1, 0));
    for (size_t i = n; i-- > 0;)
        for (size_t j = m; j-- > 0;) {
            const double share = likeness(a[i], b[j]);
            alike[i][j] = share >= Alike ? share : 0;
            best[i][j] =
                std::max({best[i + 1][j], best[i][j + 1], best[i + 1][j + 1] + alike[i][j]});
        }
    for (size_t i = 0, j = 0; i < n && j < m;) {
        if (alike[i][j] > 0 && best[i][j] == best[i + 1][j + 1] + alike[i][j])
            found[i++] = int(j++);
        else if (best[i][j] == best[i + 1][j])
            ++i;
        else
            ++j;
    }
    return found;
}

// Rows of a replacement: lines that are alike beside each other, the others as they come.
void addReplacement(const QStringList& source, const QStringList& target,
                    const std::vector<int>& deleted, const std::vector<int>& inserted,
                    std::vector<AlignedRow>& rows) {
    QStringList deletedLines, insertedLines;
    for (const int line : deleted) deletedLines += source[line];
    for (const int line : inserted) insertedLines += target[line];
    const std::vector<int> became = successors(deletedLines, insertedLines);
    size_t i = 0, j = 0;
    const auto addUpTo = [&](size_t sourceEnd, size_t targetEnd) {
        while (i < sourceEnd || j < targetEnd)
            rows.push_back(
                {i < sourceEnd ? deleted[i++] : -1, j < targetEnd ? inserted[j++] : -1, false});
    };
    for (size_t at = 0; at < became.size(); ++at) {
        if (became[at] < 0) continue;
        addUpTo(at, size_t(became[at]));
        addUpTo(at + 1, size_t(became[at]) + 1);
    }
    addUpTo(deleted.size(), inserted.size());
}

}  // namespace

std::vector<AlignedRow> alignLines(const QStringList& source, const QStringList& target) {
    const std::vector<Step> steps =
        shortestEdit(int(source.size()), int(target.size()),
                     [&](int i, int j) { return source[i] == target[j]; });
    std::vector<AlignedRow> rows;
    for (size_t s = 0; s < steps.size();) {
        if (steps[s].source >= 0 && steps[s].target >= 0) {
            rows.push_back({steps[s].source, steps[s].target, true});
            ++s;
            continue;
        }
        // A run of deletions and insertions.
        std::vector<int> deleted, inserted;
        for (; s < steps.size() && (steps[s].source < 0 || steps[s].target < 0); ++s) {
            if (steps[s].source >= 0)
                deleted.push_back(steps[s].source);
            else
                inserted.push_back(steps[s].target);
        }
        addReplacement(source, target, deleted, inserted, rows);
    }
    return rows;
}

ChangedWords changedWords(const QString& source, const QString& target) {
    std::vector<qsizetype> sourceStarts, targetStarts;
    const QStringList a = wordsOf(source, sourceStarts);
    const QStringList b = wordsOf(target, targetStarts);
    ChangedWords changed;
    for (const Step& step :
         shortestEdit(int(a.size()), int(b.size()), [&](int i, int j) { return a[i] == b[j]; })) {
        if (step.target < 0)
            changed.source.push_back({sourceStarts[size_t(step.source)], a[step.source].size()});
        if (step.source < 0)
            changed.target.push_back({targetStarts[size_t(step.target)], b[step.target].size()});
    }
    return changed;
}

}  // namespace zov
