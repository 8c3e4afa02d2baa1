// The files of an embedded server's folder beside the databases: server.json, the journal of a
// load that was cut off, and names that anything may have put there.
#include "data/base/db_error.h"
#include "data/local/server_store.h"
#include "fuzz_support.h"

#include <QDir>
#include <QTemporaryDir>

using namespace zov;
using fuzz::require;

namespace {

void put(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (file.open(QIODevice::WriteOnly)) file.write(bytes);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const QTemporaryDir home;
    const QString folder = home.filePath(QStringLiteral("server"));
    QDir(folder).removeRecursively();
    QDir().mkpath(folder);
    const QString beside = home.filePath(QStringLiteral("beside"));
    put(beside, "not the server's");

    fuzz::Fields fields(data, size);
    const QByteArray facts = fields.next();
    const QByteArray journal = fields.next();
    const QString journalFile = folder + QStringLiteral("/server.journal");
    if (!facts.isEmpty()) put(folder + QStringLiteral("/server.json"), facts);
    if (!journal.isEmpty()) put(journalFile, journal);
    for (int i = 0; i < 4 && !fields.atEnd(); ++i) {
        const QString name = QFileInfo(fields.nextText().remove(QChar(u'\0'))).fileName();
        if (!name.isEmpty() && name.toUtf8().size() < 200) put(folder + u'/' + name, fields.next());
    }
    try {
        const auto store = local::ServerStore::open(QStringLiteral("local:") + folder, true);
        require(store->majorVersion() > 0, "a server that is open has a version");
        for (const local::DatabaseFacts& found : store->databases())
            require(!found.name.isEmpty() && found.dbid > 0, "a database has a name and an id");
        require(!QFileInfo::exists(journalFile), "what a journal tells is undone");
        store->database(QStringLiteral("master"));
        for (const local::DatabaseFacts& found : store->databases()) store->hasDatabase(found.name);
    } catch (const DbError& error) {
        require(!error.description.isEmpty(), "an error says something");
    }
    require(QFileInfo::exists(beside), "nothing outside of the folder is touched");
    return 0;
}
