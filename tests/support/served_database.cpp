#include "support/served_database.h"

#include "data/local/local_provider.h"
#include "data/mdlData.h"
#include "data/script_loading.h"

#include <QFile>

namespace zov::test {

ServedDatabases::ServedDatabases(Road road, const QString& version) : road_(road) {
    localSource_ = QStringLiteral("local:") + folder_.filePath(QStringLiteral("TESTSERVER"));
    if (!version.isEmpty()) localSource_ += QStringLiteral("?version=") + version;
}

void ServedDatabases::load(const QString& database, const QString& script) {
    const QString path = folder_.filePath(QStringLiteral("script.sql"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(script.toUtf8());
    file.close();
    ServerInfo local;
    local.Name = localSource_;
    try {
        const LoadOutcome outcome = LoadScripts(local, database, {path});
        for (const LoadProblem& problem : outcome.problems)
            ADD_FAILURE() << problem.toString().toStdString();
    } catch (const DbError& error) {
        ADD_FAILURE() << error.what();
    }
}

const ServerInfo& ServedDatabases::server() {
    if (!server_.Name.isEmpty()) return server_;
    if (road_ == Road::Embedded) {
        server_.Name = localSource_;
    } else {
        TdsEndpointOptions options;
        options.provider = &local::localProvider();
        options.dataSource = localSource_;
        options.password = QStringLiteral("secret");
        endpoint_ = std::make_unique<TdsEndpoint>();
        endpoint_->start(options);
        server_.Name = endpoint_->dataSource();
        server_.SQLAuth = true;
        server_.LoginName = options.user;
        server_.Password = options.password;
    }
    std::unique_ptr<Recordset> rs;
    GetAdoRS(server_, adCmdText,
             QStringLiteral("SELECT serverproperty('ProductVersion') AS ServerVer"), rs,
             QStringLiteral("master"));
    if (rs && rs->isOpen() && !rs->isEof()) server_.Version = rs->field(0).text();
    EXPECT_FALSE(server_.Version.isEmpty());
    return server_;
}

QStringList ServedDatabases::takeStatements() {
    QStringList statements = endpoint_->statements();
    endpoint_->resetCounters();
    return statements;
}

}  // namespace zov::test
