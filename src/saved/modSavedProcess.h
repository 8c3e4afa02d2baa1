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

#include "structcompare/compare_all_screens.h"

#include <QStringList>

namespace zov {

struct SavedProcess {
    QString Name;
    qint32 Id = 0;         ///< from 1; what the command line takes
    qint32 CompType = -1;  ///< these three as in comparison_code
    qint32 CompSubType = 0;
    qint32 CompSubSubType = 0;
    QString EncObjTypes;     ///< see enc_obj_types.h; may be empty
    qint32 CompMethod = -1;  ///< as in CompMethod; -1: none
    QString ServerName1, ServerName2, DbName1, DbName2;
    QString TableName1, TableName2;  ///< of a pair
    QString ExportFilePath;          ///< empty: nothing is exported
    qint32 ExportType = 0;           ///< 0 a report's text, else as in ExportType
    qint32 SelCompCountSource = 0, SelCompCountTarget = 0;
    QStringList SourceNames, TargetNames;
    bool Print = false;
    qint32 ObjId1 = 0, ObjId2 = 0;
    bool CSVWrapInQuot = false;
    bool AutoClose = false;  ///< the program ends behind the replay
};

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
