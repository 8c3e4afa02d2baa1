#include "reports/export_files.h"

#include "util/atomic_file.h"
#include "util/text.h"

#include <QRegularExpression>

namespace zov {
namespace {

constexpr qsizetype PieceBytes = 1 << 20;
constexpr QByteArrayView NumberCellColor = "CCCCC";
constexpr QByteArrayView LineEnd = "\r\n";

// A file in the making: text is collected and written in large pieces.
class ExportFile {
 public:
    explicit ExportFile(const QString& path)
        : file_(path, FileAccess::Default, MissingFolder::Refuse) {
        bytes_.reserve(PieceBytes + 4096);
    }

    void raw(QByteArrayView text) { bytes_.append(text); }
    void utf8(QStringView text) {
        if (const char16_t* at = text.utf16(); isPlain(text, at))
            return appendLatin(at, text.size());
        bytes_.append(text.toUtf8());
    }
    /// As HTML shows it.
    void html(QStringView text) {
        for (qsizetype i = 0; i < text.size(); ++i) {
            const char16_t unit = text[i].unicode();
            if (unit == u'<')
                bytes_.append("&lt;");
            else if (unit == u'>')
                bytes_.append("&gt;");
            else if (unit == u'&')
                bytes_.append("&amp;");
            else if (unit < 0x80)
                bytes_.append(char(unit));
            else
                i += reference(text.mid(i));
        }
    }
    /// False when the file can't be written.
    bool endLine() {
        raw(LineEnd);
        return bytes_.size() < PieceBytes || flush();
    }
    QString commit() {
        flush();
        return file_.commit();
    }
    const QString& failure() const { return file_.failure(); }

 private:
    static bool isPlain(QStringView text, const char16_t* at) {
        char16_t all = 0;
        for (qsizetype i = 0; i < text.size(); ++i) all |= at[i];
        return all < 0x80;
    }
    void appendLatin(const char16_t* at, qsizetype length) {
        const qsizetype before = bytes_.size();
        bytes_.resize(before + length);
        char* to = bytes_.data() + before;
        for (qsizetype i = 0; i < length; ++i) to[i] = char(at[i]);
    }
    /// The first character as "&#number;"; how many code units it took beyond one.
    qsizetype reference(QStringView text) {
        char32_t code = text[0].unicode();
        const bool pair = text[0].isHighSurrogate() && text.size() > 1 && text[1].isLowSurrogate();
        if (pair)
            code = QChar::surrogateToUcs4(text[0], text[1]);
        else if (text[0].isSurrogate())
            code = QChar::ReplacementCharacter;
        bytes_.append("&#").append(QByteArray::number(quint32(code))).append(';');
        return pair ? 1 : 0;
    }
    bool flush() {
        const bool written = file_.write(bytes_);
        bytes_.resize(0);
        return written;
    }

    AtomicFile file_;
    QByteArray bytes_;
};

void readGridCell(const GridCells& grid, int row, int column, QString& text) {
    text.truncate(0);
    grid.appendText(row, column, text);
}

QStringView trimmedView(const QString& text) {
    QStringView view(text);
    while (view.startsWith(u' ')) view = view.sliced(1);
    while (view.endsWith(u' ')) view.chop(1);
    return view;
}

// A picture's row has no values: what stands behind its mark is left out.
bool isPictureRow(const GridReport& report, int row) {
    return GridRep_GetCellText(report, row, 1) == u"image";
}

QString reportCell(const GridReport& report, int row, int column, bool pictureRow) {
    return pictureRow && column > 1 ? QString() : GridRep_GetCellText(report, row, column);
}

ExportEnd finish(ExportFile& file, ExportRun& run, ExportEnd end) {
    run.failure = file.commit();
    return run.failure.isEmpty() ? end : ExportEnd::Failed;
}

ExportEnd failed(const ExportFile& file, ExportRun& run) {
    run.failure = file.failure();
    return ExportEnd::Failed;
}

bool goOn(ExportRun& run, int row, int rows) {
    run.row = row;
    return !run.onRow || run.onRow(row, rows);
}

void headerCell(ExportFile& file, QStringView text) {
    file.raw("<TD BGCOLOR = CCCCC><B>&nbsp ");
    file.html(text);
    file.raw(" &nbsp</B></TD>");
    file.endLine();
}

// The font's tag stays open, as readers of these files have always had it.
bool bodyCell(ExportFile& file, QByteArrayView back, QByteArrayView fore, QStringView text) {
    file.raw("<TD BGCOLOR = ");
    file.raw(back);
    file.raw("><FONT COLOR = ");
    file.raw(fore);
    file.raw(">&nbsp ");
    file.html(text);
    file.raw(" &nbsp</TD>");
    return file.endLine();
}

void line(ExportFile& file, QByteArrayView text) {
    file.raw(text);
    file.endLine();
}

// "RRGGBB" of a colour; neighbours mostly have the same one.
class ColorText {
 public:
    QByteArrayView of(quint32 color) {
        if (color != color_ || text_.isEmpty()) {
            color_ = color;
            text_ = RgbToHtml(color).toLatin1();
        }
        return text_;
    }

 private:
    quint32 color_ = 0;
    QByteArray text_;
};

QString thirdHeading(const ExportSource& source) {
    if (source.mode == ExportMode::DataDifferences) return source.lblTableName[1];
    if (source.mode != ExportMode::TableData || !source.lblCurRecVisible) return {};
    QString current = source.lblCurRec;
    current.remove(u',');
    return source.lblStats[0] + QStringLiteral("\n Number of records loaded: ") +
           QString::number(ValInt32(current) - 1);
}

void counts(ExportFile& file, const ExportSource& source) {
    file.raw("<p align='center'><b> ");
    for (int i = 0; i < 3; ++i) {
        if (i > 0) file.raw("<br> ");
        file.html(source.lblStats[i]);
        file.raw(" ");
        file.html(source.lblStats[i + 3]);
    }
    if (source.heldBackCount > 0) {
        for (const QString& note : source.heldBackNote.split(u'\n')) {
            file.raw("<br> ");
            file.html(note);
        }
    }
    line(file, "</b>");
}

bool isAsciiGrid(const GridCells& grid) {
    QString text;
    const int rows = grid.rowCount(), columns = grid.columnCount();
    for (int row = 0; row < rows; ++row) {
        text.truncate(0);
        for (int column = 0; column < columns; ++column) grid.appendText(row, column, text);
        for (const QChar letter : std::as_const(text))
            if (letter.unicode() >= 0x80) return false;
    }
    return true;
}

bool isAsciiReport(const GridReport& report) {
    for (const auto& record : report.records)
        for (const GridReportItem& item : record)
            for (const QChar letter : item.text())
                if (letter.unicode() >= 0x80) return false;
    return true;
}

void byteOrderMark(ExportFile& file, bool ascii) {
    if (!ascii) file.raw("\xEF\xBB\xBF");
}

/// How cells stand in one CSV file.
struct CsvStyle {
    bool wrap;
    bool doubling;
    bool safe;

    CsvStyle(bool wrap, const ExportRun& run)
        : wrap(wrap || run.safeForSpreadsheets),
          doubling(run.safeForSpreadsheets || (wrap && run.doubleQuotationMarks)),
          safe(run.safeForSpreadsheets) {}
};

/// Whether spreadsheets run a cell that begins so.
bool startsFormula(QStringView text) {
    return !text.isEmpty() && QStringView(u"=+-@\t\r").contains(text.front());
}

/// A report doesn't know its columns' types: what reads as a number is taken for one.
bool readsAsNumber(const QString& text) {
    static const QRegularExpression number(
        QStringLiteral("\\A[+-]?[0-9]+(\\.[0-9]+)?([eE][+-]?[0-9]+)?\\z"));
    return number.match(text).hasMatch();
}

bool csvCell(ExportFile& file, QString& text, bool isNumber, const CsvStyle& style, bool last) {
    if (style.safe && !isNumber && startsFormula(trimmedView(text)))
        text = u'\'' + trimmedView(text).toString();
    if (style.doubling) text.replace(u'"', QLatin1StringView("\"\""));
    if (style.wrap) file.raw("\"");
    file.utf8(trimmedView(text));
    if (style.wrap) file.raw("\"");
    if (last) return file.endLine();
    file.raw(",");
    return true;
}

}  // namespace

QString RgbToHtml(quint32 Color) {
    const quint32 rgb = (Color & 0xFF) << 16 | (Color & 0xFF00) | (Color >> 16 & 0xFF);
    return QStringLiteral("%1").arg(rgb, 6, 16, QChar(u'0')).toUpper();
}

ExportEnd writeGridHtml(const ExportSource& source, const QString& path, ExportRun& run) {
    const GridCells& grid = *source.grid;
    const bool ownColors = source.mode == ExportMode::DataDifferences;
    ExportFile file(path);
    line(file, "<HTML><HEAD><TITLE>Data Differences </TITLE></HEAD>");
    line(file, "<BODY BGCOLOR = \"FFFFFF\">");
    file.raw("<p align='center'><b> ");
    file.html(source.caption);
    file.raw("</b><p> ");
    file.html(source.lblTableName[0]);
    file.raw("<br> ");
    const QStringList third = thirdHeading(source).split(u'\n');
    file.html(third[0]);
    for (qsizetype i = 1; i < third.size(); ++i) {
        file.raw("<br>");
        file.html(third[i]);
    }
    line(file, "<p>");
    line(file, "<TABLE BGCOLOR = \"000000\" WIDTH = \"100%\">");

    const int rows = grid.rowCount(), columns = grid.columnCount();
    QString text;
    line(file, "<TR>");
    for (int column = 0; column < columns; ++column) {
        readGridCell(grid, 0, column, text);
        headerCell(file, trimmedView(text));
    }
    line(file, "</TR>");
    ColorText back, fore;
    const QByteArray alternate = RgbToHtml(grid.alternateRowColor()).toLatin1();
    for (int row = 1; row < rows; ++row) {
        if (!goOn(run, row, rows - 1)) return finish(file, run, ExportEnd::Stopped);
        line(file, "<TR>");
        bool written = true;
        for (int column = 0; column < columns; ++column) {
            readGridCell(grid, row, column, text);
            const QByteArrayView color = column == 0 ? NumberCellColor
                                         : ownColors ? back.of(grid.backColor(row, column))
                                         : row % 2   ? QByteArrayView("FFFFFF")
                                                     : QByteArrayView(alternate);
            written =
                bodyCell(file, color, fore.of(grid.foreColor(row, column)), trimmedView(text));
        }
        line(file, "</TR>");
        if (!written) return failed(file, run);
    }
    line(file, "</TABLE></BODY></HTML>");
    if (ownColors) counts(file, source);
    return finish(file, run, ExportEnd::Written);
}

ExportEnd writeReportHtml(const ExportSource& source, const QString& path, ExportRun& run) {
    const GridReport& report = *source.report;
    ExportFile file(path);
    line(file, "<HTML><HEAD><TITLE>Data Differences  </TITLE></HEAD>");
    line(file, "<BODY BGCOLOR = \"FFFFFF\">");
    file.raw("<p align='center'><b> ");
    file.html(source.caption);
    line(file, "</b><p> ");
    line(file, "<TABLE BGCOLOR = \"000000\" WIDTH = \"100%\">");
    line(file, "<TR>");
    for (const GridReportColumn& column : report.columns)
        headerCell(file, trimmedView(column.caption));
    line(file, "</TR>");
    const int rows = int(report.records.size()), columns = int(report.columns.size());
    for (int row = 0; row < rows; ++row) {
        if (!goOn(run, row + 1, rows)) return finish(file, run, ExportEnd::Stopped);
        const bool picture = isPictureRow(report, row);
        line(file, "<TR>");
        bool written = true;
        for (int column = 0; column < columns; ++column)
            written = bodyCell(file, column == 0 ? NumberCellColor : QByteArrayView("FFFFFF"),
                               "000000", reportCell(report, row, column, picture));
        line(file, "</TR>");
        if (!written) return failed(file, run);
    }
    line(file, "</TABLE></BODY></HTML>");
    return finish(file, run, ExportEnd::Written);
}

ExportEnd writeGridCsv(const ExportSource& source, const QString& path, bool wrap, ExportRun& run) {
    const GridCells& grid = *source.grid;
    const int rows = grid.rowCount(), columns = grid.columnCount();
    ExportFile file(path);
    if (!file.failure().isEmpty()) return failed(file, run);
    byteOrderMark(file, isAsciiGrid(grid));
    const CsvStyle style(wrap, run);
    QString text;
    for (int row = 0; row < rows; ++row) {
        if (row > 0 && !goOn(run, row, rows - 1)) return finish(file, run, ExportEnd::Stopped);
        bool written = true;
        for (int column = 0; column < columns; ++column) {
            readGridCell(grid, row, column, text);
            written = csvCell(file, text, grid.isNumber(row, column), style, column == columns - 1);
        }
        if (!written) return failed(file, run);
    }
    return finish(file, run, ExportEnd::Written);
}

ExportEnd writeReportCsv(const ExportSource& source, const QString& path, bool wrap,
                         ExportRun& run) {
    const GridReport& report = *source.report;
    const int rows = int(report.records.size()), columns = int(report.columns.size());
    ExportFile file(path);
    if (!file.failure().isEmpty()) return failed(file, run);
    byteOrderMark(file, isAsciiReport(report));
    const CsvStyle style(wrap, run);
    for (int row = 0; row < rows; ++row) {
        if (!goOn(run, row + 1, rows)) return finish(file, run, ExportEnd::Stopped);
        const bool picture = isPictureRow(report, row);
        bool written = true;
        for (int column = 0; column < columns; ++column) {
            QString text = reportCell(report, row, column, picture);
            const bool number = style.safe && readsAsNumber(text);
            written = csvCell(file, text, number, style, column == columns - 1);
        }
        if (!written) return failed(file, run);
    }
    return finish(file, run, ExportEnd::Written);
}

}  // namespace zov
