#include "data/image/snapshot_provider.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include <map>
#include <mutex>

namespace zov::image {
namespace {

const QString Scheme = QStringLiteral("snapshot:");

QString fileOf(const QString& dataSource) {
    return QDir::cleanPath(QFileInfo(dataSource.mid(Scheme.size()).trimmed()).absoluteFilePath());
}

QString shownFile(const QString& dataSource) {
    return QDir::toNativeSeparators(fileOf(dataSource));
}

/// What was read of a file, and of which state of it.
struct ReadFile {
    QDateTime changed;
    qint64 size = 0;
    std::shared_ptr<Snapshot> snapshot;
};

class SnapshotSession : public ProviderConnection {
 public:
    SnapshotSession(std::shared_ptr<Snapshot> snapshot, QString source)
        : snapshot_(std::move(snapshot)),
          source_(std::move(source)),
          own_(snapshot_->image->connect()) {}

    ~SnapshotSession() override { close(); }

    std::unique_ptr<ResultStream> execute(const CommandSpec& command) override {
        CommandSpec asked = command;
        // Whether the login of then saw all; there is none now.
        if (!snapshot_->facts.seesAll && asked.text.contains(QStringLiteral("HAS_PERMS_BY_NAME")))
            asked.text = QStringLiteral("SELECT 0");
        else if (!snapshot_->image->holds(asked))
            refuse(asked);
        return own_->execute(asked);
    }
    void cancel() override {
        if (own_) own_->cancel();
    }
    std::vector<ServerMessage> takeMessages() override {
        return own_ ? own_->takeMessages() : std::vector<ServerMessage>();
    }
    void close() override {
        if (own_) snapshot_->image->keep(std::move(own_));
    }

 private:
    [[noreturn]] void refuse(const CommandSpec& command) const {
        const bool catalogue =
            !command.storedProcedure && HeldStatements::readCatalogue(command.text);
        const QString text = catalogue
                                 ? QStringLiteral(
                                       "%1 holds the structure that comparisons need, and not this "
                                       "part of the catalog.")
                                       .arg(shownFile(source_))
                                 : noRowsText(source_);
        constexpr qint32 permissionDenied = 229;
        throw DbError(ado_error::PermissionDenied, text, QStringLiteral("42000"), permissionDenied);
    }

    std::shared_ptr<Snapshot> snapshot_;
    QString source_;
    std::unique_ptr<ProviderConnection> own_;
};

class SnapshotProvider : public Provider {
 public:
    std::unique_ptr<ProviderConnection> open(const ConnectionSpec& spec,
                                             bool createDatabase) override {
        std::shared_ptr<Snapshot> snapshot = snapshotOf(spec.dataSource);
        const QString file = shownFile(spec.dataSource);
        if (createDatabase)
            throw DbError(
                ado_error::PermissionDenied,
                QStringLiteral("%1 is a snapshot: nothing can be written to it.").arg(file),
                QStringLiteral("42000"), 3906);
        const QString& own = snapshot->facts.database;
        const bool known = spec.database.isEmpty() ||
                           spec.database.compare(own, Qt::CaseInsensitive) == 0 ||
                           spec.database.compare(u"master", Qt::CaseInsensitive) == 0;
        if (!known)
            throw DbError(ado_error::Unspecified,
                          QStringLiteral("Cannot open database \"%1\": %2 holds the database %3.")
                              .arg(spec.database, file, own),
                          QStringLiteral("08004"), 4060);
        return std::make_unique<SnapshotSession>(std::move(snapshot), spec.dataSource);
    }
};

}  // namespace

bool isSnapshotSource(const QString& dataSource) {
    return dataSource.startsWith(Scheme, Qt::CaseInsensitive);
}

QString noRowsText(const QString& dataSource) {
    return QStringLiteral("%1 holds no rows; name its server instead.").arg(shownFile(dataSource));
}

std::shared_ptr<Snapshot> snapshotOf(const QString& dataSource) {
    static std::mutex guard;
    // Never destroyed: what the databases in memory need at their end may be gone by then.
    static std::map<QString, ReadFile>& files = *new std::map<QString, ReadFile>;
    const QString file = fileOf(dataSource);
    const QFileInfo info(file);
    const std::lock_guard lock(guard);
    ReadFile& known = files[file];
    if (!known.snapshot || known.changed != info.lastModified() || known.size != info.size()) {
        known.snapshot.reset();
        known = {info.lastModified(), info.size(), readSnapshot(file)};
    }
    return known.snapshot;
}

Provider& snapshotProvider() {
    static SnapshotProvider provider;
    return provider;
}

}  // namespace zov::image
