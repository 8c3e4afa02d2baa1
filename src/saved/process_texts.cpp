#include "saved/process_texts.h"

#include "datacompare/data_comp_settings.h"
#include "reports/frmExport.h"
#include "structcompare/enc_obj_types.h"
#include "util/text.h"

namespace zov {
namespace {

const QString NotKnown = QStringLiteral("N/A");

/// "server.database", with ".table" behind it where there is one.
QString placeText(const QString& server, const QString& db, const QString& table) {
    const QString place = server + u'.' + db;
    return table.isEmpty() ? place : place + u'.' + table;
}

}  // namespace

QString CompTypeToText(qint32 CompType) {
    switch (CompType) {
        case comparison_code::Data:
            return QStringLiteral("Data Comparison");
        case comparison_code::MetaData:
            return QStringLiteral("Meta-Data Comparison");
        default:
            return NotKnown;
    }
}

QString CompSubTypeToText(qint32 CompSubType) {
    switch (CompSubType) {
        case comparison_code::AllObjects:
        case comparison_code::AllTables:
            return QStringLiteral("All");
        case comparison_code::Bulk:
            return QStringLiteral("Bulk");
        case comparison_code::Selective:
        case comparison_code::SelectedTables:
            return QStringLiteral("Selective");
        case comparison_code::Individual:
            return QStringLiteral("Individual");
        case comparison_code::SingleTable:
            return QStringLiteral("Single Table");
        default:
            return NotKnown;
    }
}

QString CompSubSubTypeToText(qint32 CompSubSubType) {
    switch (CompSubSubType) {
        case comparison_code::BulkSimple:
        case comparison_code::SelectiveSimple:
            return QStringLiteral("Simple");
        case comparison_code::BulkDetails:
        case comparison_code::SelectiveDetails:
            return QStringLiteral("Details");
        default:
            return NotKnown;
    }
}

QString ExportTypeToText(qint32 Type) {
    switch (Type) {
        case ExportType::Html:
            return QStringLiteral("Hyper Text Markup Language (HTML) file");
        case ExportType::Csv:
            return QStringLiteral("Excel - Comma Separated Values (CSV) file");
        default:
            return NotKnown;
    }
}

QString YesNoText(bool Yes) {
    return Yes ? QStringLiteral("Yes") : QStringLiteral("No");
}

QString ProcessPropertiesText(const SavedProcess& Process) {
    QString text = QStringLiteral("Comparison Process Name: ") + Process.Name;
    const auto line = [&](const QString& caption, const QString& value) {
        text += CRLF + caption + value;
    };
    const auto spacedLine = [&](const QString& caption, const QString& value) {
        text += CRLF;
        line(caption, value);
    };
    line(QStringLiteral("Comparison Process Id: "), QString::number(Process.Id));
    spacedLine(QStringLiteral("Comparison Type: "), CompTypeToText(Process.CompType));
    if (Process.CompSubType != 0)
        line(QStringLiteral("Comparison Sub Type: "), CompSubTypeToText(Process.CompSubType));
    if (Process.CompSubSubType != 0)
        line(QStringLiteral("Comparison Sub Sub Type: "),
             CompSubSubTypeToText(Process.CompSubSubType));
    if (!Process.EncObjTypes.isEmpty())
        line(QStringLiteral("Object Types: "), EncObjTypesToText(Process.EncObjTypes));
    if (Process.CompMethod > -1)
        line(QStringLiteral("Comparison Method: "), CompMethodToText(Process.CompMethod));
    if (Process.CompSubType == comparison_code::Selective && Process.SelCompCountSource >= 1)
        spacedLine(QStringLiteral("Number of objects compared: "),
                   formatCount(Process.SelCompCountSource));
    spacedLine(QStringLiteral("Source: "),
               placeText(Process.ServerName1, Process.DbName1, Process.TableName1));
    line(QStringLiteral("Target: "),
         placeText(Process.ServerName2, Process.DbName2, Process.TableName2));
    if (!Process.ExportFilePath.isEmpty())
        spacedLine(QStringLiteral("Export File Path: "), Process.ExportFilePath);
    if (Process.ExportType != ExportType::Ask) {
        line(QStringLiteral("Export Type: "), ExportTypeToText(Process.ExportType));
        if (Process.CompType == comparison_code::Data && Process.ExportType == ExportType::Csv)
            line(QStringLiteral("Wrap up data in quotation marks: "),
                 YesNoText(Process.CSVWrapInQuot));
    }
    spacedLine(QStringLiteral("Automatically print final report: "), YesNoText(Process.Print));
    if (Process.ObjId1 > 0)
        spacedLine(QStringLiteral("Source Object Id: "), QString::number(Process.ObjId1));
    if (Process.ObjId2 > 0) {
        const QString caption = QStringLiteral("Target Object Id: ");
        if (Process.ObjId1 > 0)
            line(caption, QString::number(Process.ObjId2));
        else
            spacedLine(caption, QString::number(Process.ObjId2));
    }
    spacedLine(QStringLiteral("Automatically close the program after replaying the comparison: "),
               YesNoText(Process.AutoClose));
    return text;
}

QString WhatIsNotKept() {
    return QStringLiteral(
        "Options are not kept: a replay goes by those in force when it runs. Filters by schema or "
        "owner are not kept either: a replay compares without them.");
}

}  // namespace zov
