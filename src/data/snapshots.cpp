#include "data/snapshots.h"

#include "core/globals.h"
#include "data/image/image_statements.h"
#include "data/image/snapshot_provider.h"
#include "data/mdlData.h"
#include "data/providers.h"

#include <QDateTime>

namespace zov {
namespace {

/// Whether the login sees all; one that can't be asked counts as one that doesn't.
bool seesAll(const ServerInfo& server, const QString& database) {
    try {
        const auto session = openDirectly(BuildConnectionString(server, database));
        CommandSpec command;
        command.text = QString::fromLatin1(image::rightsStatement);
        command.timeout = globals().glngTimeout;
        const auto stream = session->execute(command);
        RowStore rows(stream->columns());
        return stream->fetch(rows, 1) == 1 && !rows.cell(0, 0).isNull &&
               rows.cell(0, 0).integer == 1;
    } catch (const DbError&) {
        return false;
    }
}

}  // namespace

bool isSnapshot(const ServerInfo& server) {
    return image::isSnapshotSource(server.Name);
}

QString NoRowsSentence(const ServerInfo& server) {
    return isSnapshot(server) ? image::noRowsText(server.Name) : QString();
}

QString SnapshotSentence(const ServerInfo& server) {
    if (!isSnapshot(server)) return {};
    try {
        const image::SnapshotFacts& facts = image::snapshotOf(server.Name)->facts;
        return QStringLiteral("%1 is %2.%3 as it was read at %4.")
            .arg(server.Name, facts.server, facts.database, facts.time);
    } catch (const DbError&) {
        return {};  // whoever connects is told
    }
}

SnapshotMade SaveSnapshot(const ServerInfo& server, const QString& database, const QString& file,
                          const ReadingProgress& progress) {
    const QString time =
        QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    std::vector<CatalogueWanted> wanted{{server, database}};
    if (!readCatalogues(wanted, progress))
        return {QStringLiteral("Stopped: nothing was written."), {}};
    const CatalogueWanted& read = wanted.front();
    if (!read.image)
        return {QStringLiteral("No snapshot of %1.%2 can be made: %3.")
                    .arg(server.Name, database, read.reason),
                {}};
    const bool all = seesAll(server, database);
    SnapshotMade made;
    made.trouble =
        image::writeSnapshot(file,
                             {server.Name, read.image->databaseName(), server.Version, time,
                              QStringLiteral("Zovrand ") + ProgramVersionText(), all},
                             *read.image);
    if (!all)
        made.note = QStringLiteral(
                        "The login may not see all objects of %1; what it can't see isn't in "
                        "the snapshot.")
                        .arg(database);
    return made;
}

}  // namespace zov
