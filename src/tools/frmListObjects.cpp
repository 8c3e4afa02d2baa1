#include "tools/frmListObjects.h"

#include "core/error_report.h"
#include "core/globals.h"
#include "shell/shell.h"

#include <algorithm>

namespace zov {

bool frmListObjects::ShowUp(const QString& DbName1, const QString& DbName2, ObjectType Type,
                            QStringList& SourceNames, QStringList& TargetNames) {
    return guarded("frmListObjects", "ShowUp", false, [&] {
        lblServer1 = globals().gtCurrentServers[SourcePanel].Name;
        lblServer2 = globals().gtCurrentServers[TargetPanel].Name;
        lblDb1 = DbName1;
        lblDb2 = DbName2;
        lblObjectType = GetObjectTypeName(Type, true);
        for (const int Index : {SourcePanel, TargetPanel}) {
            std::vector<ObjectListEntry> entries;
            const QString& db = Index == SourcePanel ? DbName1 : DbName2;
            if (!GetAllObjectsOfType(globals().gtCurrentServers[Index], db, Type, entries, Index))
                return false;
            pvlSqlObj[Index].clear();
            showSchemasOfNamesakes(entries);
            for (const ObjectListEntry& entry : entries)
                pvlSqlObj[Index].push_back({entry.Name, false});
        }
        done_ = false;
        reopen();
        shell().showModal(*this);
        if (!done_) return false;
        SourceNames = tickedNames(SourcePanel);
        TargetNames = tickedNames(TargetPanel);
        return true;
    });
}

QStringList frmListObjects::tickedNames(int Index) const {
    QStringList names;
    for (const Row& row : pvlSqlObj[Index])
        if (row.ticked) names += row.name;
    return names;
}

void frmListObjects::tickAll(bool ticked) {
    for (std::vector<Row>& rows : pvlSqlObj)
        for (Row& row : rows) row.ticked = ticked;
    refresh();
}

void frmListObjects::cmdSelectAll() {
    tickAll(true);
}

void frmListObjects::cmdDeselectAll() {
    tickAll(false);
}

void frmListObjects::cmdOK() {
    static const char* const sides[] = {"Source", "Target"};
    for (const int Index : {SourcePanel, TargetPanel}) {
        const auto& rows = pvlSqlObj[Index];
        if (std::any_of(rows.begin(), rows.end(), [](const Row& row) { return row.ticked; }))
            continue;
        shell().messageBox(
            QStringLiteral(
                "Please select at least one object in %1 database or click Cancel button.")
                .arg(QLatin1String(sides[Index])));
        focus(QStringLiteral("pvlSqlObj_%1").arg(Index));
        return;
    }
    done_ = true;
    close();
}

void frmListObjects::cmdCancel() {
    close();
}

}  // namespace zov
