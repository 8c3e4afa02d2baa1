// Exporting a grid of a million cells to HTML and CSV: the differences of a
// comparison and the rows of a table. The yardstick is writing the finished
// file's bytes once more. Argument: rows of ten columns (100000).
#include "bench_tools.h"

#include "core/globals.h"
#include "core/mdlMain.h"
#include "data/mdlData.h"
#include "data/script_loading.h"
#include "datacompare/frmCompareData.h"
#include "datacompare/table_rows_grid.h"
#include "reports/export_files.h"
#include "util/atomic_file.h"

#include <QCoreApplication>
#include <QFile>

using namespace zov;

namespace {

constexpr int Columns = 9;  ///< beside the one with the numbers

void fillDifferences(ResultGrid& grid, int rows) {
    grid.setRedraw(false);
    grid.setCols(Columns + 1);
    for (int column = 0; column <= Columns; ++column)
        grid.setTextMatrix(0, column, QStringLiteral("Column%1").arg(column));
    grid.setRows(rows + 1);
    RowTexts texts;
    std::vector<quint32> colors(Columns, 0);
    colors[3] = 255;
    for (int row = 1; row <= rows; ++row) {
        texts.clear();
        texts.addCell(QString::number((row + 1) / 2));
        for (int column = 1; column <= Columns; ++column)
            texts.addCell(QStringLiteral("value %1 of %2").arg(row * 7 % 1009).arg(column));
        grid.setRowTexts(row, texts);
        grid.setForeColors(row, 1, colors);
        grid.setBackColor(row, 0, row, Columns,
                          row % 2 ? difference_color::SourceHalf : difference_color::TargetHalf);
    }
    grid.setRedraw(true);
}

bool loadRows(TableRowsGrid& grid, int rows) {
    ServerInfo server;
    server.Name = QStringLiteral("local:export_bench");
    const QString path = qEnvironmentVariable("ZOVRAND_HOME") + QStringLiteral("/rows.sql");
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly)) return false;
        file.write(
            "CREATE TABLE T (Id int NOT NULL, Code varchar(20), Name nvarchar(40), Price "
            "decimal(12,2), Weight float, Made datetime, Born date, Flag bit, Note "
            "nvarchar(60))\nGO\n");
        for (int row = 1; row <= rows; ++row) {
            file.write(QStringLiteral("INSERT INTO T VALUES (%1, 'C%1', N'Name %1', %1.25, %1.5, "
                                      "'2024-03-01 10:11:12', '1999-12-31', 1, N'a note, number "
                                      "%1')\n")
                           .arg(row)
                           .toUtf8());
            if (row % 5000 == 0) file.write("GO\n");
        }
        file.write("GO\n");
    }
    if (!LoadScripts(server, QStringLiteral("db"), {path}).problems.empty()) return false;
    globals().glngCursorLocation = adUseClient;
    std::unique_ptr<Recordset> rs;
    if (GetAdoRS(server, adCmdText, QStringLiteral("SELECT * FROM T"), rs, QStringLiteral("db")) ==
        -1)
        return false;
    QStringList names;
    for (int i = 0; i < rs->fieldCount(); ++i) names += rs->field(i).Name();
    grid.reset(names, 0xFFFF00);
    grid.setRows(std::move(rs));
    grid.setLoaded(grid.count());
    return true;
}

void measure(const char* what, const ExportSource& source, bool html) {
    const QString path = qEnvironmentVariable("ZOVRAND_HOME") + QStringLiteral("/export");
    bool written = true;
    const double export_ = bench::seconds(
        [&] {
            ExportRun run;
            run.onRow = [](int, int) { return true; };
            const ExportEnd end =
                html ? writeGridHtml(source, path, run) : writeGridCsv(source, path, true, run);
            written = written && end == ExportEnd::Written;
        },
        3);
    QByteArray bytes;
    readWholeFile(path, bytes);
    const double copy = bench::seconds([&] { writeFileAtomically(path, bytes); }, 3);
    std::printf("%-28s %6.3f s %7.1f MB, %4.1f times writing the bytes (%.3f s)%s\n", what, export_,
                double(bytes.size()) / 1e6, export_ / copy, copy, written ? "" : " FAILED");
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const bench::ScratchHome home;
    InitPaths();
    const int rows = argc > 1 ? std::atoi(argv[1]) : 100'000;
    ExportSource source;
    source.caption = QStringLiteral("Differences");
    {
        ResultGrid differences;
        fillDifferences(differences, rows);
        source.grid = &differences;
        std::printf("%d rows of %d columns\n", rows, Columns + 1);
        measure("differences to CSV", source, false);
        measure("differences to HTML", source, true);
    }
    TableRowsGrid table;
    if (!loadRows(table, rows)) return std::puts("The rows can't be loaded."), 1;
    source.grid = &table;
    source.mode = ExportMode::TableData;
    measure("a table's rows to CSV", source, false);
    measure("a table's rows to HTML", source, true);
    std::printf("peak memory %.0f MB\n", bench::processMegabytes("VmHWM"));
    return 0;
}
