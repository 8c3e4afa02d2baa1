#include "data/image/snapshot_file.h"

#include "util/atomic_file.h"

#include <QCryptographicHash>
#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>

namespace zov::image {
namespace {

// "ZOVSNAP 1", a line of JSON, the database compressed, and the SHA-256 of all that in hexadecimal.
constexpr QByteArrayView Magic = "ZOVSNAP ";
constexpr int Format = 1;
constexpr qsizetype HashLength = 64;

QByteArray hashOf(QByteArrayView bytes) {
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
}

[[noreturn]] void refuse(const QString& text) {
    throw DbError(ado_error::Unspecified, text, QStringLiteral("08001"), 17);
}

QString shown(const QString& file) {
    return QDir::toNativeSeparators(file);
}

/// The line up to its line feed, which goes too.
QByteArray takeLine(QByteArrayView& bytes) {
    const qsizetype end = bytes.indexOf('\n');
    const QByteArray line = bytes.first(end < 0 ? bytes.size() : end).toByteArray();
    bytes = bytes.sliced(end < 0 ? bytes.size() : end + 1);
    return line;
}

}  // namespace

QString writeSnapshot(const QString& file, const SnapshotFacts& facts, CatalogImage& image) {
    const QJsonObject header{
        {QStringLiteral("server"), facts.server},   {QStringLiteral("database"), facts.database},
        {QStringLiteral("version"), facts.version}, {QStringLiteral("time"), facts.time},
        {QStringLiteral("program"), facts.program}, {QStringLiteral("seesAll"), facts.seesAll}};
    QByteArray bytes = Magic.toByteArray() + QByteArray::number(Format) + '\n' +
                       QJsonDocument(header).toJson(QJsonDocument::Compact) + '\n' +
                       qCompress(image.database().serialized());
    bytes += hashOf(bytes);
    // Somebody typed the path: a slip of the pen makes no folders.
    AtomicFile target(file, FileAccess::OwnerOnly, MissingFolder::Refuse);
    target.write(bytes);
    return target.commit();
}

std::shared_ptr<Snapshot> readSnapshot(const QString& file) {
    QByteArray bytes;
    bool exists = false;
    const QString trouble = readWholeFile(file, bytes, &exists);
    if (!trouble.isEmpty()) refuse(trouble);
    if (!exists) refuse(QStringLiteral("There is no file %1.").arg(shown(file)));
    if (!bytes.startsWith(Magic))
        refuse(
            QStringLiteral("%1 is no snapshot; zovrand-cli snapshot makes one.").arg(shown(file)));
    QByteArrayView rest(bytes);
    const int format = takeLine(rest).mid(Magic.size()).toInt();
    if (format > Format)
        refuse(
            QStringLiteral("%1 was made by a newer version of the program. Read it with that one, "
                           "or make it anew with this one.")
                .arg(shown(file)));
    const qsizetype whole = bytes.size() - HashLength;
    const bool sound = format == Format && whole > 0 &&
                       hashOf(QByteArrayView(bytes).first(whole)) == bytes.last(HashLength);
    if (!sound)
        refuse(QStringLiteral("%1 is damaged or was cut off. Take it from a copy, or make it anew.")
                   .arg(shown(file)));
    const QJsonObject header = QJsonDocument::fromJson(takeLine(rest)).object();
    const auto text = [&](const char* key) {
        return header.value(QLatin1StringView(key)).toString();
    };
    auto snapshot = std::make_shared<Snapshot>();
    snapshot->facts = {text("server"),  text("database"),
                       text("version"), text("time"),
                       text("program"), header.value(QStringLiteral("seesAll")).toBool()};
    const QByteArray packed = rest.chopped(HashLength).toByteArray();
    snapshot->image = std::make_shared<CatalogImage>(
        std::make_unique<local::MemoryDatabase>(snapshot->facts.server, snapshot->facts.database,
                                                snapshot->facts.version, qUncompress(packed)),
        HeldStatements::Behind::Nobody);
    return snapshot;
}

}  // namespace zov::image
