#include "catalog/panel_filtering.h"

#include "catalog/modOwner.h"
#include "catalog/modSchema.h"
#include "core/error_report.h"
#include "core/globals.h"
#include "shell/shell.h"

namespace zov {
namespace {

bool chooseFilter(int index, FilterType type, FilterWindow& window) {
    if (!window.CanFilter(index, type)) return false;
    QStringList names;
    const ServerInfo& server = window.server(index);
    const qint32 count = type == FilterType::Owner
                             ? GetAllOwnersIntoArray(server, window.database(index), names)
                             : GetAllSchemas(server, window.database(index), names);
    if (count == 0) {
        shell().messageBox(type == FilterType::Owner
                               ? QStringLiteral("There are no owners in this database.")
                               : QStringLiteral("There are no schemas in this database."));
        return false;
    }
    frmFilterBySchema screen;
    bool applied = false;
    QString list;
    if (!screen.ShowUp(names, index, applied, list, type)) return false;
    if (applied == globals().gblnFilterActive[index] && list == globals().gstrFilterList[index])
        return false;
    globals().gblnFilterActive[index] = applied;
    globals().gstrFilterList[index] = list;
    return true;
}

void filterBy(int index, FilterType type, const char* procedure, FilterWindow& window) {
    if (window.Busy()) return;
    bool changed = false;
    {
        const ScopedValue<bool> busy(window.Busy(), true);
        guardedRun("frmMain", procedure, [&] { changed = chooseFilter(index, type, window); });
    }
    // Outside of the busy mark: a busy window doesn't load.
    if (!changed) return;
    window.RefreshDisplayForPanel(index);
    Filtering_UpdateDisplay(type, window);
}

}  // namespace

void cmdFilterByOwner(int Index, FilterWindow& window) {
    filterBy(Index, FilterType::Owner, "cmdFilterByOwner_Click", window);
}

void cmdFilterBySchema(int Index, FilterWindow& window) {
    filterBy(Index, FilterType::Schema, "cmdFilterBySchema_Click", window);
}

void RemoveFilter(int Index, FilterType Type, FilterWindow& window) {
    ResetFilter(Index);
    window.RefreshDisplayForPanel(Index);
    Filtering_UpdateDisplay(Type, window);
}

void Filtering_UpdateDisplay(FilterType Type, FilterWindow& window) {
    QString toolTip;
    switch (Type) {
        case FilterType::Schema:
            toolTip = QStringLiteral("Click to remove Schema filter");
            break;
        case FilterType::Owner:
            toolTip = QStringLiteral("Click to remove Owner filter");
            break;
        default:
            shell().messageBox(
                QStringLiteral(
                    "Sub Filtering_UpdateDisplay - wrong parameter passed (penmFilterType = %1).")
                    .arg(qint32(Type)),
                {}, BoxIcon::None);
            return;
    }
    for (int index : {SourcePanel, TargetPanel}) {
        const bool active = globals().gblnFilterActive[index];
        QString text;
        if (active) {
            if (index == SourcePanel) text = QStringLiteral(" ");
            text += QStringLiteral("(applied filter: ") + globals().gstrFilterList[index] + u')';
        }
        window.setFilterText(index, text);
        window.setFilterMark(index, active, toolTip);
    }
}

}  // namespace zov
