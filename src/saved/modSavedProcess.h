// Saved processes: comparisons written down so that they can be run again. One
// section of zov_comps.ini each, named as the process, and beside the file the
// lists of chosen objects, zov_NNN_src.txt and zov_NNN_tgt.txt, by the process's
// number. Enter at SaveComparisonProcess, GetSavedProcessDetails and
// DeleteSavedProcesses. Names that differ in letter case only are two processes.
//
// Several programs may change the file at once: numbers are given and sections
// written under the file's lock. Lists are written before their section is
// published and deleted after it is gone, so that what is in the file is whole.
#pragma once

#include "saved/saved_process.h"
#include "structcompare/compare_all_screens.h"

#include <QStringList>

namespace zov {

/// The record that a result screen's run makes, without name and number.
SavedProcess SavedProcessOf(const ComparisonReport& Run, bool CSVWrapInQuot);

/// The name as it is stored: blanks around it cut off, line breaks as blanks.
QString TrimmedProcessName(const QString& Name);
/// What is wrong with a trimmed name; empty when nothing is. Brackets would end a section's header.
QString ProcessNameTrouble(const QString& Name);

/// Stores the process under the lowest number that is free, which `Id` gets when given; counts are
/// those of the lists. A process of the same name is replaced, under a new number; without
/// `mayReplace` it is left alone, `exists` is set and nothing is told. False: not stored, which a
/// box has told otherwise.
bool SaveComparisonProcess(const SavedProcess& Process, bool mayReplace = true,
                           bool* exists = nullptr, qint32* Id = nullptr);
/// Reads a process; one that isn't there reads as a section without keys. Lists whose length isn't
/// the stored one are told in a box, and given as they are. False: something could not be read as
/// it should be; each time that was told.
bool GetSavedProcessDetails(const QString& Name, SavedProcess& Process);

/// Reads the process and shows its properties in a box; nothing for an empty name.
void ShowProcessProperties(const QString& Name);

/// 0 for an empty name and for one that isn't there.
qint32 GetSavedProcessId(const QString& Name);
/// The first process with this number; empty when there is none.
QString GetSavedProcessName(qint32 Id);
/// -1 when the file can't be read, which is told.
int CountSavedProcesses();
/// The lowest number that no process has.
qint32 GetNextProcessId();
/// All names in the file's order.
QStringList FillProcessList();
/// Each process's name and number, in the file's order. False when the file can't be read; told.
bool ListSavedProcesses(std::vector<std::pair<QString, qint32>>& Processes);

/// Notes what a replay exports. False, and told, when the process is gone or can't be written.
bool AddExportInfoToSavedProcess(const QString& Name, const QString& Path, qint32 ExportType,
                                 bool CSVWrapInQuot);
bool AddPrintInfoToSavedProcess(const QString& Name, bool Print);
/// AddExportInfoToSavedProcess, and a box about it.
void RecordExportingResultsToTxtFile(const QString& Name, const QString& Path, qint32 ExportType,
                                     bool CSVWrapInQuot, qint32 CompType);

/// Takes the processes out of the file, then deletes their lists. False, and told, when the file
/// can't be written; all of them are there then.
bool DeleteSavedProcesses(const QStringList& Names);

/// The list of names that belongs to a process's number; no file for an empty one, and an old one
/// goes. False, and told, when it can't be written.
bool ArraySaveToFile(const QStringList& Names, qint32 Id, const QString& Folder, bool IsSource);
/// The lines of that file, their number; 0 when there is none or it can't be read (which is told).
qint32 ArrayReadFromFile(QStringList& Names, qint32 Id, const QString& Folder, bool IsSource);
/// "FOLDER/zov_007_src.txt"
QString ArrayFilePath(qint32 Id, const QString& Folder, bool IsSource);

}  // namespace zov
