// What is known of a saved process.
#pragma once

#include <QString>
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

}  // namespace zov
