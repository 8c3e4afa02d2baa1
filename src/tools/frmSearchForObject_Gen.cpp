#include "tools/frmSearchForObject_Gen.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "shell/memory_controls.h"
#include "shell/shell.h"

namespace zov {

QString frmSearchForObject_Gen::ShowUp(int Panel, ObjectType Type, const QString& TypeName,
                                       const QString& DbName) {
    panel_ = Panel;
    type_ = Type;
    typeName_ = TypeName;
    database_ = DbName;
    Caption =
        TypeName.isEmpty() ? QStringLiteral("Find Object") : QStringLiteral("Find ") + TypeName;
    lblInfo = QStringLiteral("Type the first letters of the name of the ") + TypeName +
              QStringLiteral(" you want to search for and click button 'Search' (or press Enter).");
    chosen_.clear();
    reopen();
    shell().showModal(*this);
    return chosen_;
}

void frmSearchForObject_Gen::cmdFind_Click() {
    if (txtFind.isEmpty()) return;
    guardedRun("frmSearchForObject_Gen", "cmdFind_Click", [&] {
        // The text goes into the statement as it was typed; the server's error tells about a quote
        // in it.
        MemoryObjectList found;
        MemoryTextPane unused;
        LoadObjects(globals().gtCurrentServers[panel_], found, unused, type_, database_, false,
                    QStringLiteral("LIKE '") + txtFind + QStringLiteral("%'"), panel_, nullptr);
        lstFound.clear();
        for (int row = 0; row < found.rowCount(); ++row) lstFound += found.row(row).name;
        selectedRow = lstFound.size() == 1 ? 0 : -1;
        refresh();
    });
}

void frmSearchForObject_Gen::cmdOK_Click() {
    if (selectedRow < 0 || selectedRow >= lstFound.size()) {
        shell().messageBox(
            QStringLiteral("Please select the ") + typeName_ + QStringLiteral(" you want to view."),
            QStringLiteral("Cannot View"));
        return;
    }
    chosen_ = lstFound[selectedRow];
    close();
}

void frmSearchForObject_Gen::cmdCancel_Click() {
    close();
}

}  // namespace zov
