// Exporting what a result screen shows: the kind of file is chosen here, the
// cells are those of the calling screen, as its user sorted them. Enter at
// ShowUp. The four routines behind it ask for the path and tell the result.
#pragma once

#include "reports/export_files.h"
#include "shell/screen.h"

namespace zov {

namespace ExportType {
inline constexpr qint32 Ask = 0;
inline constexpr qint32 Html = 1;
inline constexpr qint32 Csv = 2;
}  // namespace ExportType

class frmExport : public Screen {
 public:
    /// What a saved process gives in advance; a user's export leaves it as it is here.
    struct Request {
        QString Path;  ///< empty: asked for
        qint32 ExportType = ExportType::Ask;
        bool Replay = false;
        bool Wrap = false;       ///< cells of a CSV file in quotation marks
        bool AutoClose = false;  ///< the program ends behind this: no question after a CSV file
    };
    struct Result {
        QString Path;
        qint32 Type = ExportType::Ask;
        bool Success = false;
        bool Wrap = false;  ///< what the user said; in a replay, what was given
    };

    QString screenName() const override { return QStringLiteral("frmExport"); }
    QString caption() const override { return QStringLiteral("Export"); }

    /// Modal. `source` must stay as it is meanwhile.
    Result ShowUp(const ExportSource& source, const Request& request);

    int optGen = 0;  ///< 0 HTML, 1 CSV
    /// CSV alone: a spreadsheet runs none of the cells; they are wrapped without asking.
    bool chkCsvSafe = false;
    QString lblInfo = QStringLiteral("Export data differences to:");
    bool optionsVisible = true;  ///< in their place during a run, the bar
    int ProgressBar = 0;         ///< percent
    bool cmdOKEnabled = true;
    /// "<row> of <rows>" of the run, empty before it.
    QString lblProgress() const;

    /// The screen is shown for the first time: with a type and a path given the export starts.
    void Form_Activate();
    void cmdOK_Click();
    /// Also Esc: stops a run at its next row, closes the screen otherwise.
    void cmdCancel_Click();

    // Each returns true when the file was written whole. `Path`: where to. `Cancelled`: by the
    // user, in the file dialog or during the run (the file then holds the rows so far).
    bool ExportGridToHtml(QString& Path, const QString& GivenPath, bool& Cancelled);
    bool ExportRepControlToHtml(QString& Path, const QString& GivenPath, bool& Cancelled);
    bool ExportGridToCSV(QString& Path, const QString& GivenPath, bool& Cancelled);
    bool ExportRepControlToCSV(QString& Path, const QString& GivenPath, bool& Cancelled);

 private:
    using Writer = std::function<ExportEnd(const QString& path, ExportRun& run)>;
    bool write(const char* routine, const QString& path, bool& cancelled, const Writer& writer);
    bool toHtml(const char* routine, QString& path, const QString& givenPath, bool& cancelled,
                const Writer& writer);
    bool choosePath(bool html, QString& path, const QString& givenPath, bool& cancelled);
    bool chooseCsv(QString& path, const QString& givenPath, bool& cancelled);
    bool showProgress(int row, int rows);

    const ExportSource* source_ = nullptr;
    Request request_;
    Result result_;
    int row_ = 0;
    int rows_ = 0;
    bool activated_ = false;
    bool running_ = false;
    bool stopped_ = false;
};

}  // namespace zov
