// The file of saved processes with its lists, and a file of ignored columns: any bytes are listed,
// read, added to and taken out again.
#include "core/modIgnoreColumns.h"
#include "fuzz_support.h"
#include "saved/modSavedProcess.h"
#include "saved/process_texts.h"
#include "support/temp_home.h"

using namespace zov;
using fuzz::require;

namespace {

// So that one input doesn't read its file a thousand times.
constexpr qsizetype MostNames = 8;

/// A text as a box of one line gives it.
QString line(fuzz::Fields& fields) {
    QString text = fields.nextText();
    text.remove(QChar(u'\0')).remove(u'\r').remove(u'\n');
    return text;
}

QStringList objectNames(fuzz::Fields& fields) {
    QStringList names;
    for (const QString& part : fields.nextText().split(u'\n')) {
        QString name = part.left(128);
        name.remove(QChar(u'\0')).remove(u'\r').remove(QChar(u'\xFEFF'));
        if (!name.trimmed().isEmpty()) names += name;
    }
    return names;
}

void saveAndRead(fuzz::Fields& fields) {
    SavedProcess process;
    process.Name = TrimmedProcessName(line(fields));
    if (!ProcessNameTrouble(process.Name).isEmpty()) return;
    process.ServerName1 = line(fields);
    process.DbName2 = line(fields);
    process.TableName1 = line(fields);
    process.ExportFilePath = line(fields);
    process.SourceNames = objectNames(fields);
    process.Print = true;
    qint32 id = 0;
    require(SaveComparisonProcess(process, true, nullptr, &id), "a process is saved");
    SavedProcess read;
    require(GetSavedProcessDetails(process.Name, read), "a process that was saved is read");
    require(read.Id == id && read.Print && read.ServerName1 == process.ServerName1 &&
                read.DbName2 == process.DbName2 && read.TableName1 == process.TableName1 &&
                read.ExportFilePath == process.ExportFilePath,
            "a process comes back as it was saved");
    require(read.SourceNames == process.SourceNames, "its objects come back");
    require(DeleteSavedProcesses({process.Name}), "a process is deleted");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const test::TempHome home;
    fuzz::Fields fields(data, size);
    const QString folder = globals().gstrUserDataFolder;
    const auto put = [&](const QString& path, const QByteArray& bytes) {
        QFile file(path);
        require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size(),
                "the home is there");
    };
    QDir().mkpath(folder);
    put(folder + QStringLiteral("zov_comps.ini"), fields.next());
    put(ArrayFilePath(1, folder, true), fields.next());
    put(globals().gstrIgnoredColsDataIni, fields.next());

    std::vector<std::pair<QString, qint32>> processes;
    require(ListSavedProcesses(processes), "a file that is there is listed");
    for (qsizetype i = 0; i < std::min(qsizetype(processes.size()), MostNames); ++i) {
        SavedProcess process;
        GetSavedProcessDetails(processes[size_t(i)].first, process);
        ProcessPropertiesText(process);
    }
    saveAndRead(fields);

    const QString key = GetObjectKeyName(line(fields), line(fields), QStringLiteral("dbo.T"));
    const QStringList columns = objectNames(fields);
    std::vector<IgnoredColumnRow> rows;
    GetAllIgnoredColumns(IgnoreMode::DataComparison, rows);
    if (!SaveIgnoredColumnsList(IgnoreMode::DataComparison, key, columns)) return 0;
    QStringList read;
    GetIgnoredColumnsList(IgnoreMode::DataComparison, key, read);
    require(columns.isEmpty() || read == columns, "ignored columns come back");
    return 0;
}
