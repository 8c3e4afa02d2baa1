// A bulk run without a display: lists and panes in memory, and a form that notes
// what it is told.
#pragma once

#include "shell/memory_controls.h"
#include "structcompare/modCompareAll.h"

#include <QRegularExpression>

namespace zov::test {

/// The status display, written down.
struct RecordingForm : CompareAllForm {
    QStringList lines;
    QStringList names;
    std::function<void(const QString& name)> onName;

    void showRunning() override { lines += QStringLiteral("running"); }
    void setComparing(int index, const QString& text) override {
        lines += QString::number(index) + QStringLiteral(": ") + text;
    }
    void setCurrentName(const QString& name) override {
        names += name;
        if (onName) onName(name);
    }
    void setTime(const QString& elapsed) override { time = elapsed; }
    void runStatusTimer(bool on) override {
        lines += on ? QStringLiteral("timer on") : QStringLiteral("timer off");
    }
    QString time;
};

struct ScratchPanels {
    MemoryObjectList lists[2];
    MemoryTextPane panes[2];
    ComparePanels panels{{lists[0], panes[0]}, {lists[1], panes[1]}};
};

/// The boxes of these types, by their plural names.
inline ObjectKindBoxes boxesOf(const QStringList& plurals) {
    ObjectKindBoxes boxes{};
    for (int box = 0; box < 7; ++box)
        boxes[size_t(box)] = plurals.contains(GetObjectTypeName(ObjectTypeOfBox(box), true));
    return boxes;
}

/// A report with line feeds for its line breaks, a fixed time and a fixed server name. A carriage
/// return or a line feed by itself shows as a control picture.
inline QString shownReport(QString report, const QString& serverName) {
    report.replace(serverName + u'.', QStringLiteral("SERVER."));
    report.replace(QRegularExpression(QStringLiteral("Time Elapsed: \\d\\d:\\d\\d:\\d\\d$")),
                   QStringLiteral("Time Elapsed: hh:mm:ss"));
    const QString mark(QChar(0xE000));
    report.replace(QStringLiteral("\r\n"), mark);
    report.replace(u'\n', QChar(0x240A)).replace(u'\r', QChar(0x240D));
    return report.replace(mark, QStringLiteral("\n"));
}

}  // namespace zov::test
