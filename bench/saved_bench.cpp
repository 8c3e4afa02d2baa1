// The store of saved processes: 1,000 of them with 500 names on each side. Prints
// what opening the list, saving and showing properties cost against reading the file
// once.
#include "bench_tools.h"

#include "core/globals.h"
#include "core/mdlMain.h"
#include "saved/frmSaveCompRun.h"
#include "saved/modSavedProcess.h"
#include "saved/process_texts.h"
#include "shell/shell.h"
#include "util/atomic_file.h"
#include "util/ini_document.h"

#include <QDir>

using namespace zov;

namespace {

constexpr int Processes = 1000, Names = 500, Runs = 5;

SavedProcess process(int number) {
    SavedProcess p;
    p.Name = QStringLiteral("Comparison of a department's databases, number %1").arg(number);
    p.CompType = comparison_code::MetaData;
    p.CompSubType = comparison_code::Selective;
    p.CompSubSubType = comparison_code::SelectiveSimple;
    p.EncObjTypes = QStringLiteral("1,0,0,0,0,0,0,0");
    p.ServerName1 = QStringLiteral("production.example.com,1433");
    p.ServerName2 = QStringLiteral("staging.example.com,1433");
    p.DbName1 = p.DbName2 = QStringLiteral("Department%1").arg(number);
    for (int n = 0; n < Names; ++n)
        p.SourceNames += QStringLiteral("SomeTableOfTheDepartment%1").arg(n);
    p.TargetNames = p.SourceNames;
    return p;
}

void print(const char* what, double seconds, double yardstick) {
    std::printf("%-28s %8.2f ms  %5.1f times reading the file\n", what, seconds * 1e3,
                seconds / yardstick);
}

}  // namespace

int main() {
    const bench::ScratchHome home;
    InitPaths();
    // Made as one text: a thousand savings are measured elsewhere.
    const SavedProcess first = process(1);
    SaveComparisonProcess(first);
    QByteArray one;
    readWholeFile(globals().gstrCompsIni, one);
    QByteArray all;
    for (int n = 1; n <= Processes; ++n) {
        QByteArray section = one;
        section.replace("number 1", "number " + QByteArray::number(n));
        section.replace("Department1", "Department" + QByteArray::number(n));
        section.replace("\r\nId=1\r\n", "\r\nId=" + QByteArray::number(n) + "\r\n");
        all += section;
        for (const bool source : {true, false})
            ArraySaveToFile(first.SourceNames, n, globals().gstrUserDataFolder, source);
    }
    writeFileAtomically(globals().gstrCompsIni, all);
    std::printf("%d processes with %d names on each side, %lld KB\n", CountSavedProcesses(), Names,
                (long long)all.size() / 1024);

    qsizetype sections = 0;
    const double yardstick = bench::seconds(
        [&] {
            QByteArray bytes;
            readWholeFile(globals().gstrCompsIni, bytes);
            sections += IniDocument(decodeText(bytes).text, Qt::CaseSensitive).sections().size();
        },
        Runs);
    std::printf("%-28s %8.2f ms\n", "reading the file once", yardstick * 1e3);
    print("the list", bench::seconds([] { frmSaveCompRun().ShowUp(); }, Runs), yardstick);
    const QString last = process(Processes).Name;
    print("properties", bench::seconds([&] { ShowProcessProperties(last); }, Runs), yardstick);
    int number = Processes;
    print("saving a new one",
          bench::seconds([&] { SaveComparisonProcess(process(++number)); }, Runs), yardstick);
    print("overwriting the last",
          bench::seconds([&] { SaveComparisonProcess(process(Processes)); }, Runs), yardstick);
    print("adding an export",
          bench::seconds(
              [&] { AddExportInfoToSavedProcess(last, QStringLiteral("/tmp/x.txt"), 0, false); },
              Runs),
          yardstick);
    print("deleting ten", bench::seconds([&] {
              QStringList names;
              for (int n = 1; n <= 10; ++n) names += process(n).Name;
              DeleteSavedProcesses(names);
          }),
          yardstick);
    return sections > 0 ? 0 : 1;
}
