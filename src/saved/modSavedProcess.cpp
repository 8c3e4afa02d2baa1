#include "saved/modSavedProcess.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "reports/frmExport.h"
#include "saved/process_texts.h"
#include "shell/shell.h"
#include "util/atomic_file.h"
#include "util/cInifile.h"
#include "util/ini_document.h"
#include "util/numbered_error.h"
#include "util/text.h"
#include "util/text_decode.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>

namespace zov {
namespace {

constexpr const char* Module = "modSavedProcess";
constexpr qint32 TypeMismatch = 13;
/// No list of names is longer; what is, belongs to something else.
constexpr qint64 LongestArrayFile = 32 * 1024 * 1024;

cInifile processFile() {
    cInifile ini(globals().gstrCompsIni);
    ini.SectionCase = Qt::CaseSensitive;
    return ini;
}

/// The file as it is; nothing, and a box, when it can't be read.
std::optional<IniDocument> readProcesses() {
    cInifile ini = processFile();
    IniDocument document = ini.read();
    if (ini.lastError().isEmpty()) return document;
    shell().messageBox(
        ini.lastError() + QStringLiteral("\r\n\r\nThe saved comparison processes are "
                                         "in that file."),
        {}, BoxIcon::Exclamation);
    return std::nullopt;
}

QString textOf(bool value) {
    return value ? QStringLiteral("True") : QStringLiteral("False");
}

bool boolOf(const QString& key, const QString& text) {
    if (text.isEmpty() || text.compare(u"False", Qt::CaseInsensitive) == 0) return false;
    if (text.compare(u"True", Qt::CaseInsensitive) == 0) return true;
    double number = 0;
    if (!isNumeric(text, &number))
        throw NumberedError(TypeMismatch,
                            QStringLiteral("Type mismatch: %1 is \"%2\", neither True "
                                           "nor False")
                                .arg(key, text));
    return number != 0;
}

qint32 nextIdIn(const IniDocument& document) {
    QSet<qint32> taken;
    for (const auto& [section, id] : document.valuesOf(QStringLiteral("Id")))
        taken.insert(ValInt32(id));
    qint32 id = 1;
    while (taken.contains(id)) ++id;
    return id;
}

/// The keys in the order in which the program has always written them.
void writeKeys(IniDocument& document, const SavedProcess& p) {
    const auto text = [&](const char* key, const QString& value) {
        document.setValue(p.Name, QLatin1String(key), value);
    };
    const auto number = [&](const char* key, qint32 value) { text(key, QString::number(value)); };
    text("Name", p.Name);
    number("CompType", p.CompType);
    number("CompSubType", p.CompSubType);
    number("CompSubSubType", p.CompSubSubType);
    text("EncObjTypes", p.EncObjTypes);
    number("CompMethod", p.CompMethod);
    text("ServerName1", p.ServerName1);
    text("ServerName2", p.ServerName2);
    text("DbName1", p.DbName1);
    text("DbName2", p.DbName2);
    text("TableName1", p.TableName1);
    text("TableName2", p.TableName2);
    text("ExportFilePath", p.ExportFilePath);
    number("ExportType", p.ExportType);
    number("Id", p.Id);
    number("SelCompCountSource", qint32(p.SourceNames.size()));
    number("SelCompCountTarget", qint32(p.TargetNames.size()));
    text("Print", textOf(p.Print));
    number("ObjId1", p.ObjId1);
    number("ObjId2", p.ObjId2);
    text("CSVWrapInQuot", textOf(p.CSVWrapInQuot));
    text("AutoClose", textOf(p.AutoClose));
}

/// One name a line is all that a list can hold.
QString nameWithLineBreak(const SavedProcess& process) {
    for (const QStringList* names : {&process.SourceNames, &process.TargetNames})
        for (const QString& name : *names)
            if (name.contains(u'\n') || name.contains(u'\r')) return name;
    return {};
}

void warnOfCount(const SavedProcess& process, const char* side, qsizetype lines) {
    const QString objects = QLatin1String(side) + QStringLiteral(" objects ");
    // The number behind "count" is Target's in both boxes; users know the box so.
    shell().messageBox(
        QStringLiteral("Inconsistent data while retrieving details of saved comparison process.") +
            CRLF + CRLF + QStringLiteral("Comparison Id: %1").arg(process.Id) + CRLF + CRLF +
            objects + QStringLiteral("count: %1").arg(process.SelCompCountTarget) + CRLF + CRLF +
            objects + QStringLiteral("in file: %1").arg(lines),
        QStringLiteral("Inconsistent Data"), BoxIcon::Exclamation);
}

/// Empty, or why the list can't be written.
QString writeArrayFile(const QStringList& names, qint32 id, const QString& folder, bool isSource) {
    const QString path = ArrayFilePath(id, folder, isSource);
    if (!names.isEmpty()) return writeFileAtomically(path, (names.join(CRLF) + CRLF).toUtf8());
    QFile old(path);
    if (!old.exists() || old.remove()) return {};
    return QStringLiteral("Cannot delete %1: %2.").arg(path, old.errorString());
}

void tellArraySaveTrouble(const QString& trouble) {
    shell().messageBox(
        QStringLiteral("Error in Sub ArraySaveToFile, error nr %1 (").arg(run_error::FileAccess) +
            trouble + QStringLiteral(")."),
        {}, BoxIcon::Exclamation);
}

/// Changes keys of a process that is there. False, and a box, when it isn't or can't be written.
bool changeProcess(const QString& name, const std::function<void(IniDocument&)>& edit) {
    cInifile ini = processFile();
    bool found = false;
    ini.change([&](IniDocument& document) {
        found = document.hasSection(name);
        if (found) edit(document);
    });
    if (ini.Success() && found) return true;
    shell().messageBox(
        ini.Success() ? QStringLiteral("The saved comparison process '%1' isn't there any more: "
                                       "nothing was added to it.")
                            .arg(name)
                      : ini.lastError() + QStringLiteral("\r\n\r\nNothing was added to the saved "
                                                         "comparison process '%1'.")
                                              .arg(name),
        {}, BoxIcon::Exclamation);
    return false;
}

}  // namespace

SavedProcess SavedProcessOf(const ComparisonReport& Run, bool CSVWrapInQuot) {
    SavedProcess process;
    process.CompType = Run.CompType;
    process.CompSubType = Run.CompSubType;
    process.CompSubSubType = Run.CompSubSubType;
    process.EncObjTypes = Run.EncObjTypes;
    process.CompMethod = Run.CompMethod;
    process.ServerName1 = Run.ServerName1;
    process.ServerName2 = Run.ServerName2;
    process.DbName1 = Run.DbName1;
    process.DbName2 = Run.DbName2;
    process.TableName1 = Run.TableName1;
    process.TableName2 = Run.TableName2;
    process.SourceNames = Run.SourceNames;
    process.TargetNames = Run.TargetNames;
    process.ObjId1 = ValInt32(Run.ObjId1);
    process.ObjId2 = ValInt32(Run.ObjId2);
    process.CSVWrapInQuot = CSVWrapInQuot;
    return process;
}

QString TrimmedProcessName(const QString& Name) {
    QString name = Name;
    for (const char16_t sign : {u'\r', u'\n', u'\0'}) name.replace(QChar(sign), u' ');
    const auto isBlank = [](QChar c) { return c == u' ' || c == u'\t'; };
    while (!name.isEmpty() && isBlank(name.front())) name.remove(0, 1);
    while (!name.isEmpty() && isBlank(name.back())) name.chop(1);
    return name;
}

QString ProcessNameTrouble(const QString& Name) {
    if (Name.isEmpty()) return QStringLiteral("Please enter a name for comparison process.");
    if (!Name.contains(u'[') && !Name.contains(u']')) return {};
    return QStringLiteral("Invalid character(s) in comparison process' name.") + CRLF + CRLF +
           QStringLiteral("Square brackets - [ ] - are not allowed.");
}

bool SaveComparisonProcess(const SavedProcess& Process, bool mayReplace, bool* exists, qint32* Id) {
    if (exists) *exists = false;
    return guarded(Module, "SaveComparisonProcess", false, [&] {
        const WaitPointer wait;
        if (const QString name = nameWithLineBreak(Process); !name.isEmpty()) {
            shell().messageBox(QStringLiteral("The name '%1' holds a line break, and the list of a "
                                              "saved process has one name a line.")
                                   .arg(name),
                               {}, BoxIcon::Exclamation);
            return false;
        }
        SavedProcess process = Process;
        bool isThere = false;
        QString listTrouble;
        cInifile ini = processFile();
        ini.change([&](IniDocument& document) {
            isThere = !mayReplace && document.hasSection(process.Name);
            if (isThere) return;
            // A process that is replaced still holds its number here: it gets a new one.
            process.Id = nextIdIn(document);
            const QString& folder = globals().gstrUserDataFolder;
            listTrouble = writeArrayFile(process.SourceNames, process.Id, folder, true);
            if (listTrouble.isEmpty())
                listTrouble = writeArrayFile(process.TargetNames, process.Id, folder, false);
            if (listTrouble.isEmpty()) writeKeys(document, process);
        });
        // Boxes come when others may use the file again.
        if (!listTrouble.isEmpty()) tellArraySaveTrouble(listTrouble);
        if (ini.Success() && isThere) {
            if (exists) *exists = true;
            return false;
        }
        if (!ini.Success())
            shell().messageBox(QStringLiteral("Failed to save comparison's process name.\r\n\r\n") +
                               ini.lastError());
        if (!ini.Success() || !listTrouble.isEmpty()) return false;
        if (Id) *Id = process.Id;
        return true;
    });
}

bool GetSavedProcessDetails(const QString& Name, SavedProcess& Process) {
    Process = {};
    if (Name.isEmpty()) return false;
    bool consistent = false;
    guardedRun(Module, "GetSavedProcessDetails", [&] {
        const WaitPointer wait;
        const std::optional<IniDocument> document = readProcesses();
        if (!document) return;
        const auto text = [&](const char* key) {
            return document->value(Name, QLatin1String(key)).value_or(QString());
        };
        const auto number = [&](const char* key) { return ValInt32(text(key)); };
        Process.Name = Name;
        Process.CompType = number("CompType");
        Process.CompSubType = number("CompSubType");
        Process.CompSubSubType = number("CompSubSubType");
        Process.EncObjTypes = text("EncObjTypes");
        Process.CompMethod = number("CompMethod");
        Process.ServerName1 = text("ServerName1");
        Process.DbName1 = text("DbName1");
        Process.TableName1 = text("TableName1");
        Process.ServerName2 = text("ServerName2");
        Process.DbName2 = text("DbName2");
        Process.TableName2 = text("TableName2");
        Process.ExportFilePath = text("ExportFilePath");
        Process.ExportType = number("ExportType");
        Process.Id = number("Id");
        Process.SelCompCountSource = number("SelCompCountSource");
        Process.SelCompCountTarget = number("SelCompCountTarget");
        consistent = true;
        const auto readNames = [&](QStringList& names, qint32 count, const char* side,
                                   bool source) {
            const qint32 lines =
                ArrayReadFromFile(names, Process.Id, globals().gstrUserDataFolder, source);
            if (lines == count) return;
            consistent = false;
            warnOfCount(Process, side, lines);
        };
        readNames(Process.SourceNames, Process.SelCompCountSource, "Source", true);
        readNames(Process.TargetNames, Process.SelCompCountTarget, "Target", false);
        const auto flag = [&](const char* key) { return boolOf(QLatin1String(key), text(key)); };
        const bool readWell = std::exchange(consistent, false);
        Process.Print = flag("Print");
        Process.ObjId1 = number("ObjId1");
        Process.ObjId2 = number("ObjId2");
        Process.CSVWrapInQuot = flag("CSVWrapInQuot");
        Process.AutoClose = flag("AutoClose");
        consistent = readWell;
    });
    return consistent;
}

void ShowProcessProperties(const QString& Name) {
    if (Name.isEmpty()) return;
    SavedProcess process;
    GetSavedProcessDetails(Name, process);
    shell().messageBox(ProcessPropertiesText(process), QStringLiteral("Properties"),
                       BoxIcon::Information);
}

qint32 GetSavedProcessId(const QString& Name) {
    if (Name.isEmpty()) return 0;
    const std::optional<IniDocument> document = readProcesses();
    return document ? ValInt32(document->value(Name, QStringLiteral("Id")).value_or(QString())) : 0;
}

bool ListSavedProcesses(std::vector<std::pair<QString, qint32>>& Processes) {
    Processes.clear();
    const std::optional<IniDocument> document = readProcesses();
    if (!document) return false;
    for (const auto& [name, id] : document->valuesOf(QStringLiteral("Id")))
        Processes.emplace_back(name, ValInt32(id));
    return true;
}

QString GetSavedProcessName(qint32 Id) {
    std::vector<std::pair<QString, qint32>> processes;
    ListSavedProcesses(processes);
    for (const auto& [name, id] : processes)
        if (id == Id) return name;
    return {};
}

int CountSavedProcesses() {
    const std::optional<IniDocument> document = readProcesses();
    return document ? int(document->sections().size()) : -1;
}

qint32 GetNextProcessId() {
    const std::optional<IniDocument> document = readProcesses();
    return document ? nextIdIn(*document) : 1;
}

QStringList FillProcessList() {
    const std::optional<IniDocument> document = readProcesses();
    return document ? document->sections() : QStringList();
}

bool AddExportInfoToSavedProcess(const QString& Name, const QString& Path, qint32 Type,
                                 bool CSVWrapInQuot) {
    return guarded(Module, "AddExportInfoToSavedProcess", false, [&] {
        return changeProcess(Name, [&](IniDocument& document) {
            document.setValue(Name, QStringLiteral("ExportFilePath"), Path);
            document.setValue(Name, QStringLiteral("ExportType"), QString::number(Type));
            document.setValue(Name, QStringLiteral("CSVWrapInQuot"), textOf(CSVWrapInQuot));
        });
    });
}

bool AddPrintInfoToSavedProcess(const QString& Name, bool Print) {
    return guarded(Module, "AddPrintInfoToSavedProcess", false, [&] {
        return changeProcess(Name, [&](IniDocument& document) {
            document.setValue(Name, QStringLiteral("Print"), textOf(Print));
        });
    });
}

void RecordExportingResultsToTxtFile(const QString& Name, const QString& Path, qint32 Type,
                                     bool CSVWrapInQuot, qint32 CompType) {
    guardedRun(Module, "RecordExportingResultsToTxtFile", [&] {
        if (!AddExportInfoToSavedProcess(Name, Path, Type, CSVWrapInQuot)) return;
        QString text = QStringLiteral("Export info:") + CRLF +
                       QStringLiteral("Export File Path: ") + Path + CRLF +
                       QStringLiteral("Export Type: ") + ExportTypeToText(Type);
        if (CompType == comparison_code::Data && Type == ExportType::Csv)
            text += CRLF + QStringLiteral("Wrap up data in quotation marks: ") +
                    YesNoText(CSVWrapInQuot);
        shell().messageBox(
            text + CRLF + CRLF + QStringLiteral("was added to the saved comparison process:") +
                CRLF + u'\'' + Name + QStringLiteral("'.") + CRLF + CRLF +
                QStringLiteral("Next time when this process is run, the program will automatically "
                               "export data to the above file."),
            {}, BoxIcon::Information);
    });
}

bool DeleteSavedProcesses(const QStringList& Names) {
    return guarded(Module, "DeleteSavedProcesses", false, [&] {
        const WaitPointer wait;
        QSet<qint32> ids;
        cInifile ini = processFile();
        ini.change([&](IniDocument& document) {
            for (const QString& name : Names) {
                ids += ValInt32(document.value(name, QStringLiteral("Id")).value_or(QString()));
                document.removeSection(name);
            }
        });
        if (!ini.Success()) {
            shell().messageBox(ini.lastError() + QStringLiteral("\r\n\r\nNothing was deleted."), {},
                               BoxIcon::Exclamation);
            return false;
        }
        // Under the lock again: another program may have given one of the numbers anew.
        ini.change([&](const IniDocument& document) {
            for (const auto& [section, id] : document.valuesOf(QStringLiteral("Id")))
                ids.remove(ValInt32(id));
            for (const qint32 id : std::as_const(ids))
                for (const bool isSource : {true, false})
                    QFile::remove(ArrayFilePath(id, globals().gstrUserDataFolder, isSource));
        });
        return true;
    });
}

QString ArrayFilePath(qint32 Id, const QString& Folder, bool IsSource) {
    return Folder + QStringLiteral("zov_%1_").arg(Id, 3, 10, QLatin1Char('0')) +
           (IsSource ? QStringLiteral("src.txt") : QStringLiteral("tgt.txt"));
}

bool ArraySaveToFile(const QStringList& Names, qint32 Id, const QString& Folder, bool IsSource) {
    const QString trouble = writeArrayFile(Names, Id, Folder, IsSource);
    if (!trouble.isEmpty()) tellArraySaveTrouble(trouble);
    return trouble.isEmpty();
}

qint32 ArrayReadFromFile(QStringList& Names, qint32 Id, const QString& Folder, bool IsSource) {
    Names.clear();
    try {
        const QString path = ArrayFilePath(Id, Folder, IsSource);
        if (QFileInfo(path).size() > LongestArrayFile)
            throw NumberedError(run_error::FileAccess,
                                QStringLiteral("%1 is too long to be a list of names").arg(path));
        QByteArray bytes;
        const QString trouble = readWholeFile(path, bytes);
        if (!trouble.isEmpty()) throw NumberedError(run_error::FileAccess, trouble);
        if (bytes.isEmpty()) return 0;
        Names = withLf(decodeText(bytes).text).split(u'\n');
        if (Names.last().isEmpty()) Names.removeLast();
    } catch (...) {
        showCaughtErrorInSub("ArrayReadFromFile");
    }
    return qint32(Names.size());
}

}  // namespace zov
