#include "analysis/frmDataAnalyze.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "core/modIgnoreColumns.h"
#include "datacompare/frmIgnoreColumns.h"
#include "datacompare/table_reading.h"
#include "reports/frmExport.h"
#include "shell/shell.h"
#include "util/text.h"

#include <stdexcept>

namespace zov {
namespace {

constexpr const char* Module = "frmDataAnalyze";
constexpr qint32 GridFontSize = 8;

int percent(qint64 part, qint64 whole) {
    return whole <= 0 ? 100 : int(std::min<qint64>(100, part * 100 / whole));
}

}  // namespace

frmDataAnalyze::frmDataAnalyze() {
    GridRepLoadEntities(rpcReport, DataAnalysisGridDefinition(), GridFontSize);
}

QString frmDataAnalyze::helpLine(int Index) {
    switch (Index) {
        case 0:
            return QStringLiteral(
                "Data Analyzer will scan the values stored in particular columns to find number of "
                "unique values stored in each columns and most frequently (or least frequently, "
                "depending on your choice) values stored in each column.");
        case 1:
            return QStringLiteral("Click button 'Start' (or press F5) to analyze data.");
        case 2:
            return QStringLiteral(
                "To stop the process at any time click button 'Stop' (or press F6).");
        default:
            return {};
    }
}

void frmDataAnalyze::ShowUp(const QString& QualifiedTable, const QString& Table, const QString& Db,
                            int ServerIndex, qint32 ObjectId, const QString& StoredName) {
    if (ServerIndex != SourcePanel && ServerIndex != TargetPanel)
        throw std::out_of_range("frmDataAnalyze: no such panel");
    guardedRun(Module, "ShowUp", [&] {
        table_ = {globals().gtCurrentServers[ServerIndex],
                  Db,
                  Table,
                  QualifiedTable,
                  ObjectId,
                  0,
                  StoredName.isEmpty() ? KeyPart(Table) : StoredName};
        lblTableName =
            QStringLiteral("Table: ") + GetObjectDisplayName(table_.Server.Name, Db, Table);
        {
            const WaitPointer wait;
            const ScopedValue<bool> ownStop(globals().gblnStop, false);
            table_.RecordsCount =
                GetNumberOfRecordsInTable(table_.Server, table_.QualifiedTable, Db);
            if (globals().gblnStop) return;
        }
        const QString title = QStringLiteral("View Data");
        if (table_.RecordsCount < 0)
            return shell().messageBox(
                QStringLiteral("Error while reading data from table ") + Table + u'.', title,
                BoxIcon::Exclamation);
        if (table_.RecordsCount == 0)
            return shell().messageBox(
                QStringLiteral("Table ") + Table + QStringLiteral(" doesn't contain any data."),
                title, BoxIcon::Information);
        lblGen_3 = fedRecsToAnalyze = formatCount(table_.RecordsCount);
        rpcReport.records.clear();
        analyzedRecords = 0;
        prbColumns = prbRows = 0;
        lblCurCol = lblCurRec = lblTime = QString();
        loading_ = stopped_ = unloadPending_ = false;
        SetUpColumnsLabels();
        reopen();
        shell().showModal(*this);
    });
}

QString frmDataAnalyze::plainText() const {
    return lblTableName + CRLF + QStringLiteral("Records: ") + lblGen_3;
}

void frmDataAnalyze::Form_Activate() {
    refresh();
}

void frmDataAnalyze::SetUpColumnsLabels() {
    guardedRun(Module, "SetUpColumnsLabels", [&] {
        QStringList ignored;
        const QString key = GetObjectKeyName(table_.Server.Name, table_.Db, table_.StoredName);
        lblColumns = formatCount(GetColumnsCount(table_.Server, table_.Db, table_.Table,
                                                 IgnoreMode::DataAnalysis, table_.ObjectId));
        lblIgnoredColumns =
            formatCount(GetIgnoredColumnsList(IgnoreMode::DataAnalysis, key, ignored));
    });
    refresh();
}

void frmDataAnalyze::btnIgnoreColumns_Click() {
    if (loading_) return;
    qint32 count = 0;
    if (frmIgnoreColumnsAdd().ShowUp(IgnoreMode::DataAnalysis, table_.Server, table_.Db,
                                     table_.Table, table_.ObjectId, count, table_.StoredName))
        SetUpColumnsLabels();
}

void frmDataAnalyze::ValidateRecordsToAnalyze(bool& Ok) {
    Ok = guarded(Module, "ValidateRecordsToAnalyze", false, [&] {
        request_.RecordsToAnalyze = RecordsToAnalyzeFrom(fedRecsToAnalyze, table_.RecordsCount);
        fedRecsToAnalyze = formatCount(request_.RecordsToAnalyze);
        return true;
    });
}

void frmDataAnalyze::UpdateTimeElapsed() {
    lblTime = formatElapsed(elapsed_.elapsed());
}

void frmDataAnalyze::cmdStart_Click() {
    if (loading_) return;
    guardedRun(Module, "cmdStart_Click", [&] {
        request_.MostFrequent = rdbFrequency == 0;
        request_.AnySize = chkAnySize;
        LoadData();
    });
}

void frmDataAnalyze::LoadData() {
    // Cancelling the note over a slow query is this window's Stop.
    const ScopedValue<bool> ownStop(globals().gblnStop, false);
    {
        const ScopedValue<bool> loading(loading_, true);
        const WaitPointer wait;
        stopped_ = false;
        elapsed_.start();
        cmdStartEnabled = false;
        cmdStopEnabled = true;
        bool valid = false;
        ValidateRecordsToAnalyze(valid);
        prbColumns = prbRows = 0;
        rpcReport.records.clear();
        analyzedRecords = request_.RecordsToAnalyze;
        refresh();
        focus(QStringLiteral("cmdStop"));
        try {
            if (valid) AnalyzeTable(table_, request_, *this, rpcReport);
        } catch (...) {
            reportCaughtError(Module, "cmdStart_Click");
        }
    }
    UpdateTimeElapsed();
    cmdStartEnabled = true;
    cmdStopEnabled = false;
    refresh();
    focus(QStringLiteral("cmdExit"));
    if (unloadPending_) close();
}

bool frmDataAnalyze::goesOn() {
    UpdateTimeElapsed();
    refresh();
    shell().pumpEvents();
    return !stopped_ && !unloadPending_ && !globals().gblnStop;
}

bool frmDataAnalyze::columnBegun(const QString& Column, int Index, int LastIndex) {
    prbColumns = percent(Index, LastIndex);
    lblCurCol = Column;
    prbRows = 0;
    return goesOn();
}

bool frmDataAnalyze::recordsCounted(qint32 Record, qint32 Walk) {
    lblCurRec = formatCount(Record);
    prbRows = percent(Record, Walk);
    return goesOn();
}

bool frmDataAnalyze::columnDone() {
    return goesOn();
}

void frmDataAnalyze::cmdStop_Click() {
    if (loading_) stopped_ = true;
}

void frmDataAnalyze::cmdExit_Click() {
    if (loading_)
        unloadPending_ = true;
    else
        close();
}

void frmDataAnalyze::cmdExport_Click() {
    if (loading_ ||
        RepControl_NoData(rpcReport, QStringLiteral("There is no data to be exported.")))
        return;
    ExportSource source;
    source.mode = ExportMode::DataAnalysis;
    source.report = &rpcReport;
    source.caption = caption();
    source.lblTableName[0] = lblTableName;
    frmExport().ShowUp(source, {});
}

bool frmDataAnalyze::cmdPrint_Click() {
    return !loading_ &&
           !RepControl_NoData(rpcReport, QStringLiteral("There is no data to be printed."));
}

bool RepControl_NoData(const GridReport& Report, const QString& Text) {
    return guarded(Module, "RepControl_NoData", true, [&] {
        if (!Report.records.empty()) return false;
        shell().messageBox(Text + CRLF + CRLF + frmDataAnalyze::helpLine(1));
        return true;
    });
}

}  // namespace zov
