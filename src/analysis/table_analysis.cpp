#include "analysis/table_analysis.h"

#include "core/error_report.h"
#include "core/modIgnoreColumns.h"
#include "data/mdlData.h"
#include "data/sql_names.h"
#include "shell/shell.h"
#include "util/text.h"

#include <algorithm>

namespace zov {
namespace {

constexpr const char* Module = "frmDataAnalyze";
constexpr size_t FirstValueColumn = 3;
constexpr quint32 EvenPairColor = 0xC0FFFF;
constexpr quint32 OddPairColor = 0xFFFFC0;

void sortValues(std::vector<TwoStr>& values, const AnalysisRequest& request, bool& ok) {
    if (request.AnySize) return SortByCountExactly(values, request.MostFrequent);
    ok = guarded(Module, "ShellSortArray_TwoStr_ByLongEl", false, [&] {
        ShellSortArray_TwoStr_ByLongEl(values, request.MostFrequent);
        return true;
    });
}

}  // namespace

AnalysisEnd AnalyzeTable(const AnalyzedTable& Table, const AnalysisRequest& Request,
                         AnalysisWatcher& Watcher, GridReport& Report) {
    TableStructure structure;
    if (!GetTableStructure(Table.Server, Table.Db, Table.StoredName,
                           DoubleSingleQuotes(Table.Table), structure, true,
                           IgnoreMode::DataAnalysis, Table.ObjectId, {}))
        return AnalysisEnd::Failed;
    // A table that was counted has columns; they weren't given.
    if (!structure.found) {
        shell().messageBox(QStringLiteral("The columns of table ") + Table.Table +
                               QStringLiteral(" couldn't be read."),
                           QStringLiteral("Data Analyzer"), BoxIcon::Exclamation);
        return AnalysisEnd::Failed;
    }
    std::erase_if(structure.columns, [&](const ColumnRecord& column) {
        return Request.Ignored.contains(column.strName);
    });
    Report.records.clear();
    bool allSorted = true;
    const int last = int(structure.columns.size()) - 1;
    for (int index = 0; index <= last; ++index) {
        const ColumnRecord& column = structure.columns[size_t(index)];
        if (!Watcher.columnBegun(column.strName, index, last)) return AnalysisEnd::Stopped;
        std::vector<TwoStr> values;
        qint32 lastIndex = -1;
        bool ok = true;
        AnalyzeColumn(Table, column, Request.RecordsToAnalyze, Watcher, values, lastIndex, ok);
        if (!ok) return AnalysisEnd::Failed;
        bool sorted = true;
        sortValues(values, Request, sorted);
        allSorted &= sorted;
        LoadColumnDataToGrid(Report, column, values, lastIndex);
        if (!Watcher.columnDone()) return AnalysisEnd::Stopped;
    }
    return allSorted ? AnalysisEnd::Finished : AnalysisEnd::Failed;
}

void AnalyzeColumn(const AnalyzedTable& Table, const ColumnRecord& Column, qint32 RecordsToAnalyze,
                   AnalysisWatcher& Watcher, std::vector<TwoStr>& Values, qint32& LastIndex,
                   bool& Ok) {
    Values.clear();
    LastIndex = -1;
    Ok = guarded(Module, "AnalyzeColumn", false, [&] {
        const qint32 limit = std::max(RecordsToAnalyze, 1);
        const bool all = limit >= Table.RecordsCount;
        const qint32 walk = all ? Table.RecordsCount : limit;
        const QString top = all ? QString() : QStringLiteral("TOP %1 ").arg(limit);
        std::unique_ptr<Recordset> rs;
        if (GetAdoRS(Table.Server, adCmdText,
                     QStringLiteral("SELECT ") + top + quoteName(Column.strName) +
                         QStringLiteral(" FROM ") + Table.QualifiedTable,
                     rs, Table.Db) == -1 ||
            !rs || !rs->isOpen())
            return false;
        if (!Watcher.recordsCounted(0, walk)) return true;
        bool stopped = false;
        qint32 record = 0;
        rs->setKeepWaiting([&] { return !(stopped = !Watcher.recordsCounted(record, walk)); });
        DistinctValues distinct;
        RowStore window;
        try {
            while (record < walk && rs->TakeWindow(window)) {
                const qsizetype rows = std::min<qsizetype>(window.rowCount(), walk - record);
                distinct.add(window.column(0), 0, rows);
                record += qint32(rows);
                if (!Watcher.recordsCounted(record, walk)) break;
            }
        } catch (...) {
            // Who stopped a slow server's stream wanted no error.
            if (!stopped) throw;
        }
        Values = distinct.take();
        LastIndex = qint32(Values.size()) - 1;
        return true;
    });
}

void LoadColumnDataToGrid(GridReport& Report, const ColumnRecord& Column,
                          const std::vector<TwoStr>& Values, qint32 LastIndex) {
    std::vector<GridReportItem> record(Report.columns.size());
    record[0].value = Column.strName;
    record[1].value = Column.strDataType;
    record[2].value = formatCount(LastIndex + 1);
    record[2].longValue = LastIndex + 1;
    for (qint32 k = 0; k < std::min(ShownValues, LastIndex + 1); ++k) {
        GridReportItem& value = record[FirstValueColumn + 2 * size_t(k)];
        GridReportItem& count = record[FirstValueColumn + 2 * size_t(k) + 1];
        value.value = Values[size_t(k)].Str1;
        count.longValue = Values[size_t(k)].Count;
        count.value = QString::number(count.longValue);
        value.backColor = count.backColor = k % 2 == 0 ? EvenPairColor : OddPairColor;
    }
    Report.records.push_back(std::move(record));
}

QString AnalysisText(const QString& Title, const GridReport& Report) {
    const auto oneLine = [](QString text) {
        for (const QChar c : {u'\r', u'\n', u'\t'}) text.replace(c, u' ');
        return text;
    };
    QString text = Title + u'\n';
    for (const std::vector<GridReportItem>& record : Report.records) {
        text += QStringLiteral("\n%1 (%2): %3 unique values\n")
                    .arg(oneLine(record[0].text()), record[1].text(), record[2].text());
        for (size_t value = FirstValueColumn; value + 1 < record.size(); value += 2)
            if (!record[value + 1].text().isEmpty())
                text += record[value + 1].text().rightJustified(12) + QStringLiteral("  ") +
                        oneLine(record[value].text()) + u'\n';
    }
    return text;
}

qint32 RecordsToAnalyzeFrom(const QString& Text, qint32 RecordsCount) {
    bool isNumber = false;
    QString digits = Trim(Text);
    const double wanted = digits.remove(u',').toDouble(&isNumber);
    return isNumber && wanted >= 1 && wanted < RecordsCount ? qint32(wanted) : RecordsCount;
}

}  // namespace zov
