#include "data/image/catalog_image.h"

#include "data/base/field_text.h"
#include "data/image/image_statements.h"
#include "data/local/collation.h"

#include <sqlite3.h>

namespace zov::image {
namespace {

constexpr qsizetype BlockRows = 1000;

// The steps in front of the statements that fill, and behind those that probe.
enum FirstSteps { BeginStep, ObjectsStep, FirstFillStep };
int firstProbeStep() {
    return FirstFillStep + int(fillStatements().size());
}
int lastStep() {
    return firstProbeStep() + int(probeStatements().size());
}

CommandSpec commandOf(const char* select, int timeout) {
    CommandSpec command;
    command.text = QString::fromLatin1(select);
    command.timeout = timeout;
    return command;
}

std::unique_ptr<ResultStream> ask(ProviderConnection& session, const char* select, int timeout) {
    std::unique_ptr<ResultStream> stream = session.execute(commandOf(select, timeout));
    if (stream->columns().empty())
        throw DbError(ado_error::Unspecified,
                      QStringLiteral("The server answered a query without any column."));
    return stream;
}

/// Hands over the rows of one statement, block by block.
template <typename TakeBlock>
void eachBlock(ProviderConnection& session, const char* select, int timeout, TakeBlock take) {
    const std::unique_ptr<ResultStream> stream = ask(session, select, timeout);
    RowStore block(stream->columns());
    while (stream->fetch(block, BlockRows) > 0) {
        take(block);
        block.clear();
    }
}

RowStore wholeAnswer(ProviderConnection& session, const char* select, int timeout) {
    const std::unique_ptr<ResultStream> stream = ask(session, select, timeout);
    RowStore all(stream->columns());
    while (stream->fetch(all, BlockRows) > 0) {
    }
    return all;
}

bool isWhole(const CellView& cell) {
    return cell.text.isValidUtf16();
}

/// A statement of SQLite's that is run once a row.
class RowInsert {
 public:
    RowInsert(sqlite3* handle, const char* sql) : handle_(handle) {
        local::checkSqlite(handle, sqlite3_prepare_v2(handle, sql, -1, &statement_, nullptr));
    }
    ~RowInsert() { sqlite3_finalize(statement_); }
    RowInsert(const RowInsert&) = delete;
    RowInsert& operator=(const RowInsert&) = delete;

    void insert(const RowStore& rows, qsizetype row) {
        const int taken = sqlite3_bind_parameter_count(statement_);
        // What isn't there would pass for null, on both sides.
        if (rows.columnCount() < taken)
            throw NoImage{QStringLiteral("its views answer with fewer columns than expected")};
        for (int i = 0; i < taken; ++i) bind(i + 1, rows.cell(row, i));
        const int code = sqlite3_step(statement_);
        sqlite3_reset(statement_);
        if ((code & 0xff) == SQLITE_CONSTRAINT)
            throw NoImage{QStringLiteral("its catalogue holds what can't be copied (%1)")
                              .arg(QString::fromUtf8(sqlite3_errmsg(handle_)))};
        local::checkSqlite(handle_, code);
    }

 private:
    void bind(int index, const CellView& cell) {
        if (cell.isNull) {
            sqlite3_bind_null(statement_, index);
            return;
        }
        switch (cell.storage) {
            case Storage::Int8:
            case Storage::Int16:
            case Storage::Int32:
            case Storage::Int64:
                sqlite3_bind_int64(statement_, index, cell.integer);
                return;
            case Storage::Text: {
                if (!isWhole(cell))
                    throw NoImage{QStringLiteral("a text in it holds half a character")};
                const QByteArray utf8 = cell.text.toUtf8();
                sqlite3_bind_text(statement_, index, utf8.constData(), int(utf8.size()),
                                  SQLITE_TRANSIENT);
                return;
            }
            default:
                throw NoImage{
                    QStringLiteral("its views have columns of other types than expected")};
        }
    }

    sqlite3* handle_;
    sqlite3_stmt* statement_ = nullptr;
};

QByteArray bytesOf(const CellView& cell) {
    if (cell.isNull) return QByteArrayLiteral("-");
    return cell.storage == Storage::Text ? '\'' + cell.text.toUtf8()
                                         : QByteArray::number(cell.integer);
}

void addRow(QCryptographicHash& seen, const RowStore& rows, qsizetype row) {
    for (int i = 0; i < rows.columnCount(); ++i) {
        seen.addData(bytesOf(rows.cell(row, i)));
        seen.addData(QByteArrayView("\0", 1));
    }
}

int majorOf(const QString& version) {
    return version.section(u'.', 0, 0).toInt();
}

}  // namespace

bool CatalogImage::holds(const CommandSpec& command) {
    return !command.storedProcedure && command.parameters.empty() && held_.contain(command.text);
}

std::unique_ptr<ProviderConnection> CatalogImage::connect() {
    {
        const std::lock_guard lock(guard_);
        if (!idle_.empty()) {
            std::unique_ptr<ProviderConnection> session = std::move(idle_.back());
            idle_.pop_back();
            return session;
        }
    }
    return database_->connect();
}

void CatalogImage::keep(std::unique_ptr<ProviderConnection> idle) {
    const std::lock_guard lock(guard_);
    idle_.push_back(std::move(idle));
}

ImageReading::ImageReading(std::unique_ptr<ProviderConnection> session, int timeout)
    : session_(std::move(session)), timeout_(timeout) {}

ImageReading::~ImageReading() = default;

int ImageReading::stepCount() {
    return lastStep() + 1;
}

QString ImageReading::stepTitle(int step) {
    if (step == BeginStep) return QStringLiteral("database");
    if (step == ObjectsStep || step == lastStep()) return QStringLiteral("objects");
    if (step < firstProbeStep())
        return QString::fromLatin1(fillStatements()[size_t(step - FirstFillStep)].title);
    return QString::fromLatin1(probeStatements()[size_t(step - firstProbeStep())].title);
}

void ImageReading::run(int step) {
    if (cancelled_) throw DbError(ado_error::Cancelled, QStringLiteral("Operation was canceled."));
    if (step == BeginStep) return begin();
    if (step == ObjectsStep) return readObjects();
    if (step == lastStep()) return finish();
    if (step < firstProbeStep()) {
        const FillStatement& statement = fillStatements()[size_t(step - FirstFillStep)];
        fill(statement.select, statement.insert);
        if (step + 1 == firstProbeStep()) local::execSql(image_->database().handle(), "COMMIT");
        return;
    }
    const ProbeStatement& statement = probeStatements()[size_t(step - firstProbeStep())];
    probe(statement.select, statement.names);
}

void ImageReading::cancel() {
    cancelled_ = true;
    session_->cancel();
}

void ImageReading::begin() {
    const RowStore facts = wholeAnswer(*session_, databaseStatement, timeout_);
    if (facts.rowCount() != 1)
        throw NoImage{QStringLiteral("the server doesn't tell what database it is")};
    const auto fact = [&](int column) { return facts.cell(0, column).text.toString(); };
    const QString name = fact(0), version = fact(3);
    collation_ = fact(1);
    if (majorOf(version) < FirstVersion) throw NoImage{oldVersionReason()};
    if (!local::Collation::named(collation_)->rules().known || collation_.isEmpty())
        throw NoImage{QStringLiteral("its collation %1 isn't known").arg(collation_)};
    counts_ = hashOfAnswer(countsStatement);
    image_ = std::make_shared<CatalogImage>(
        std::make_unique<local::MemoryDatabase>(fact(4), name, version, collation_));
    sqlite3* handle = image_->database().handle();
    local::execSql(handle, "BEGIN");
    local::execSql(handle, emptyCatalogueSql);
}

QByteArray ImageReading::hashOfAnswer(const char* select) {
    QCryptographicHash seen(QCryptographicHash::Sha1);
    eachBlock(*session_, select, timeout_, [&](const RowStore& rows) {
        for (qsizetype row = 0; row < rows.rowCount(); ++row) addRow(seen, rows, row);
    });
    return seen.result();
}

/// Whether the server still says of its counts and objects what it said at first.
bool ImageReading::isAltered() {
    return hashOfAnswer(objectsStatement) != objects_ || hashOfAnswer(countsStatement) != counts_;
}

void ImageReading::fill(const char* select, const char* insert, QCryptographicHash* seen) {
    RowInsert target(image_->database().handle(), insert);
    eachBlock(*session_, select, timeout_, [&](const RowStore& rows) {
        for (qsizetype row = 0; row < rows.rowCount(); ++row) {
            target.insert(rows, row);
            if (seen) addRow(*seen, rows, row);
        }
        if (cancelled_)
            throw DbError(ado_error::Cancelled, QStringLiteral("Operation was canceled."));
    });
}

void ImageReading::readObjects() {
    QCryptographicHash seen(QCryptographicHash::Sha1);
    fill(objectsStatement,
         R"(INSERT INTO "zov$objects"(id, name, schema_id, xtype, parent_obj, crdate, refdate,
            modify_date, is_ms_shipped) VALUES(?1, ?2, ?3, rtrim(?4), ?5, ?6, ?7, ?8, ?9))",
         &seen);
    objects_ = seen.result();
}

/// What the server says is held against what the image says.
void ImageReading::probe(const char* select, bool names) {
    const RowStore server = wholeAnswer(*session_, select, timeout_);
    const RowStore own = wholeAnswer(*image_->connect(), select, timeout_);
    const local::Collation& collation = *local::Collation::named(collation_);
    const auto same = [&](qsizetype row, int column) {
        const CellView a = server.cell(row, column), b = own.cell(row, column);
        if (names && !a.isNull && !b.isNull)
            return collation.equal(a.text.toString(), b.text.toString());
        return bytesOf(a) == bytesOf(b);
    };
    bool agree = server.rowCount() == own.rowCount();
    for (qsizetype row = 0; agree && row < server.rowCount(); ++row)
        for (int column = 0; agree && column < server.columnCount(); ++column)
            agree = same(row, column);
    if (agree) return;
    // An alteration in between looks the same.
    if (isAltered()) throw ChangedMeanwhile{};
    throw NoImage{names
                      ? QStringLiteral("the server sorts its names otherwise than collation %1 is "
                                       "understood here")
                            .arg(collation_)
                      : QStringLiteral("the server says of its objects what can't be worked out "
                                       "here")};
}

void ImageReading::finish() {
    if (isAltered()) throw ChangedMeanwhile{};
    // An identity without its seed is one that the login may not see.
    sqlite3_stmt* unseen = nullptr;
    local::checkSqlite(
        image_->database().handle(),
        sqlite3_prepare_v2(image_->database().handle(),
                           R"(SELECT 1 FROM "zov$columns" WHERE identity_seed = '?')", -1, &unseen,
                           nullptr));
    const bool some = sqlite3_step(unseen) == SQLITE_ROW;
    sqlite3_finalize(unseen);
    if (some) throw NoImage{QStringLiteral("the seed of an identity column can't be read")};
}

}  // namespace zov::image
