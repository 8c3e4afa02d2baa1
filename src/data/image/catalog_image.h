// The structure of a database as one read found it: the server's catalogue views copied into the
// embedded server's catalogue, in memory. Enter at ImageReading, which makes one step by step; the
// sessions that answer from it are made by image_session.
#pragma once

#include "data/image/held_statements.h"
#include "data/local/memory_database.h"

#include <QCryptographicHash>

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

namespace zov::image {

class CatalogImage {
 public:
    explicit CatalogImage(std::unique_ptr<local::MemoryDatabase> database,
                          HeldStatements::Behind behind = HeldStatements::Behind::Server)
        : database_(std::move(database)), held_(behind) {}

    /// Whether it can answer this statement as its server would.
    bool holds(const CommandSpec& command);
    /// A session that answers from it alone; it must go, or be kept, before the image does. From
    /// any thread.
    std::unique_ptr<ProviderConnection> connect();
    /// For whoever asks next, which costs less than a new one.
    void keep(std::unique_ptr<ProviderConnection> idle);
    local::MemoryDatabase& database() { return *database_; }
    const QString& databaseName() const { return database_->name(); }

 private:
    std::unique_ptr<local::MemoryDatabase> database_;
    HeldStatements held_;
    std::mutex guard_;
    std::vector<std::unique_ptr<ProviderConnection>> idle_;
};

/// The database is one that no image can be made of; why, for the user: "its names are sorted ...".
struct NoImage {
    QString reason;
};
/// Something was altered while it was read.
struct ChangedMeanwhile {};

/// Reads one database over a session of its own. The steps are run in order, each from any thread,
/// one at a time; cancel() may come from another one.
class ImageReading {
 public:
    /// `timeout` in seconds for each statement, 0 without limit.
    ImageReading(std::unique_ptr<ProviderConnection> session, int timeout);
    ~ImageReading();

    static int stepCount();
    /// What a step reads: "columns".
    static QString stepTitle(int step);

    /// Throws DbError, NoImage, or ChangedMeanwhile; the reading is of no use then.
    void run(int step);
    void cancel();
    /// Behind the last step.
    std::shared_ptr<CatalogImage> take() { return std::move(image_); }

 private:
    void begin();
    void fill(const char* select, const char* insert, QCryptographicHash* seen = nullptr);
    void probe(const char* select, bool names);
    void readObjects();
    void finish();
    QByteArray hashOfAnswer(const char* select);
    bool isAltered();

    std::shared_ptr<ProviderConnection> session_;
    int timeout_;
    std::atomic<bool> cancelled_ = false;
    std::shared_ptr<CatalogImage> image_;
    QString collation_;
    QByteArray counts_;
    QByteArray objects_;
};

}  // namespace zov::image
