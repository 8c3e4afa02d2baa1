// Comparing whole structures without a window.
#pragma once

#include "core/globals.h"
#include "shell/memory_controls.h"
#include "structcompare/modCompareAll.h"

namespace zov::bench {

/// With details, two databases of one server.
inline StructureRun compareStructures(const ServerInfo& server, const QString& source,
                                      const QString& target,
                                      const ObjectKindBoxes& kinds = {true, true}) {
    struct SilentForm : CompareAllForm {
        void showRunning() override {}
        void setComparing(int, const QString&) override {}
        void setCurrentName(const QString&) override {}
        void setTime(const QString&) override {}
        void runStatusTimer(bool) override {}
    };
    globals().gtCurrentServers[SourcePanel] = globals().gtCurrentServers[TargetPanel] = server;
    StructureRunRequest request;
    request.sourceDb = source;
    request.targetDb = target;
    request.kinds = kinds;
    request.details = true;
    SilentForm form;
    MemoryObjectList lists[2];
    MemoryTextPane panes[2];
    ComparePanels panels{{lists[0], panes[0]}, {lists[1], panes[1]}};
    return CompareAll_Structure(form, request, panels);
}

}  // namespace zov::bench
