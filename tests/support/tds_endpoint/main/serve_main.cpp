// Serves an embedded server over TDS for manual tries and benches:
//   tds_endpoint_serve local:NAME [--port P] [--user sa --password x] [--database DB]
// Runs until its standard input ends or it gets SIGTERM.
#include "data/providers.h"
#include "support/tds_endpoint/tds_endpoint.h"

#include <QCoreApplication>

#include <CLI/CLI.hpp>

#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <thread>

int main(int argc, char** argv) {
    // Taken before any thread starts, so that all of them leave the signals to the wait below.
    sigset_t endings;
    sigemptyset(&endings);
    sigaddset(&endings, SIGTERM);
    sigaddset(&endings, SIGINT);
    pthread_sigmask(SIG_BLOCK, &endings, nullptr);

    const QCoreApplication application(argc, argv);
    CLI::App app("Serves an embedded server over TDS on 127.0.0.1");
    std::string source, user = "sa", password, database = "master";
    int port = 0;
    bool detached = false;
    app.add_option("source", source, "Data source, as local:NAME")->required();
    app.add_option("--port", port, "Port; 0 lets the system choose")->check(CLI::Range(0, 65535));
    app.add_option("--user", user, "Login that is let in");
    app.add_option("--password", password, "Its password");
    app.add_option("--database", database, "Default database");
    app.add_flag("--detached", detached, "Ignore the end of standard input");
    CLI11_PARSE(app, argc, argv);

    zov::TdsEndpointOptions options;
    options.dataSource = QString::fromStdString(source);
    options.provider = &zov::providerFor(options.dataSource);
    options.user = QString::fromStdString(user);
    options.password = QString::fromStdString(password);
    options.defaultDatabase = QString::fromStdString(database);
    options.port = quint16(port);
    zov::TdsEndpoint endpoint;
    try {
        std::printf("listening on 127.0.0.1:%d\n", int(endpoint.start(options)));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 2;
    }
    std::fflush(stdout);
    if (!detached) {
        std::thread([] {
            while (std::getchar() != EOF) {
            }
            ::kill(::getpid(), SIGTERM);
        }).detach();
    }
    int signal = 0;
    sigwait(&endings, &signal);
    endpoint.stop();
    return 0;
}
