#include "reports/database_info.h"

#include "core/globals.h"
#include "data/mdlData.h"
#include "scripting/modNew.h"
#include "shell/shell.h"
#include "util/text.h"

#include <QDate>
#include <QLocale>

namespace zov {
namespace {

constexpr ObjectType InventoryTypes[] = {ObjectType::Table,    ObjectType::Procedure,
                                         ObjectType::Function, ObjectType::View,
                                         ObjectType::Trigger,  ObjectType::Relationship};

// Target's schema filter is announced as "Target": people and scripts know the line so.
QString filterLines(int index) {
    const Globals& g = globals();
    if (!g.gblnFilterActive[index] || g.gstrFilterList[index].isEmpty()) return {};
    const QString kind = index == SourcePanel ? QStringLiteral("Schema") : QStringLiteral("Target");
    return QStringLiteral("Applied filtering by ") + kind + QStringLiteral(": ") +
           g.gstrFilterList[index] + CRLF + CRLF;
}

struct KindOfInfo {
    QString text;
    qint32 count = -1;
    bool read = false;
};

KindOfInfo readKind(const ServerInfo& server, const QString& dbName, ObjectType type, int index,
                    const ListingProgress& progress) {
    KindOfInfo kind;
    std::unique_ptr<Recordset> rs;
    if (GetAdoRS(server, adCmdText,
                 BuildObjSQLString(type, globals().gblnIgnoreSysObjects, {}, {}, index), rs,
                 dbName) == -1 ||
        !rs || !rs->isOpen())
        return kind;
    kind.count = qint32(rs->RecordCount());
    kind.text = RecordsetToString(progress, rs.get(), type, server, dbName, false);
    // A table that couldn't be counted ends the list with a line that says so.
    kind.read = !kind.text.contains(QStringLiteral("*** OPERATION ABORTED"));
    return kind;
}

}  // namespace

DatabaseInfo GetDatabaseInfo(const ServerInfo& Server, const QString& DbName, int Index,
                             const DatabaseInfoProgress& Progress) {
    DatabaseInfo info;
    info.text = QLocale::c().toString(QDate::currentDate(), QStringLiteral("MMM dd, yyyy")) + CRLF +
                CRLF + QStringLiteral("Database: ") + DbName + CRLF + CRLF + filterLines(Index);
    const auto cancelled = [&] { return Progress.cancelled && Progress.cancelled(); };
    for (const ObjectType type : InventoryTypes) {
        if (cancelled()) break;
        const QString plural = GetObjectTypeName(type, true);
        if (Progress.showStage)
            Progress.showStage(QStringLiteral("Analyzing ") + plural + QStringLiteral("..."));
        shell().pumpEvents();
        const KindOfInfo kind =
            readKind(Server, DbName, type, Index, {Progress.showName, Progress.cancelled});
        if (cancelled()) break;
        info.counts.push_back(kind.count);
        info.incomplete |= !kind.read;
        QString heading = QStringLiteral("List of ") + plural;
        if (kind.count < 0)
            heading = QStringLiteral("The %1 of this database couldn't be read.").arg(plural);
        else if (kind.count == 0)
            heading =
                QStringLiteral("There are no ") + plural + QStringLiteral(" in this database.");
        info.text += heading + CRLF + kind.text + CRLF;
    }
    info.stopped = cancelled();
    return info;
}

QString ObjectCountSentence(const QString& PluralName, qint32 Count, const QString& Database) {
    const QString where = QStringLiteral(" in ") + Database + QStringLiteral(" database.");
    if (Count == 0) return QStringLiteral("There are no ") + PluralName + where;
    if (Count == 1) return QStringLiteral("There is 1 ") + PluralName.chopped(1) + where;
    return QStringLiteral("There are %1 ").arg(Count) + PluralName + where;
}

QString BothDatabasesText(const DatabaseInfo& Source, const DatabaseInfo& Target) {
    QString text;
    for (size_t kind = 0; kind < std::size(InventoryTypes); ++kind) {
        const QString plural = GetObjectTypeName(InventoryTypes[kind], true);
        const auto add = [&](const DatabaseInfo& info, const QString& side) {
            const qint32 count = kind < info.counts.size() ? info.counts[kind] : -1;
            text +=
                count < 0
                    ? QStringLiteral("The %1 in %2 database couldn't be counted.").arg(plural, side)
                    : ObjectCountSentence(plural, count, side);
            text += CRLF;
        };
        add(Source, QStringLiteral("Source"));
        add(Target, QStringLiteral("Target"));
    }
    return text + CRLF + Source.text + CRLF + Target.text;
}

}  // namespace zov
