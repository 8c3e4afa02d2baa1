// The filter buttons of the panels, and the marks that show an active filter.
#pragma once

#include "catalog/frmFilterBySchema.h"
#include "catalog/mdlObjects.h"

namespace zov {

/// What filtering asks of the window around the panels.
class FilterWindow {
 public:
    virtual ~FilterWindow() = default;
    /// The window's re-entrancy flag.
    virtual bool& Busy() = 0;
    /// The panel has databases and objects, and its server knows such filters; says so when not.
    virtual bool CanFilter(int Index, FilterType Type) = 0;
    /// The server and the database that are selected in the panel.
    virtual const ServerInfo& server(int Index) = 0;
    virtual QString database(int Index) = 0;
    virtual void RefreshDisplayForPanel(int Index) = 0;
    /// The text behind the panel's header.
    virtual void setFilterText(int Index, const QString& text) = 0;
    /// `srtFiltering`, the mark beside the panel.
    virtual void setFilterMark(int Index, bool visible, const QString& toolTip) = 0;
};

void cmdFilterByOwner(int Index, FilterWindow& window);
void cmdFilterBySchema(int Index, FilterWindow& window);
/// A click on the mark: the panel shows everything again.
void RemoveFilter(int Index, FilterType Type, FilterWindow& window);
/// Shows the state of both panels.
void Filtering_UpdateDisplay(FilterType Type, FilterWindow& window);

}  // namespace zov
