// The accept loop and the bookkeeping of sessions.
#include "support/tds_endpoint/tds_endpoint.h"

#include "support/tds_endpoint/tds_session.h"

#include <list>
#include <thread>

namespace zov {

struct TdsEndpoint::Running {
    explicit Running(const TdsEndpointOptions& options)
        : shared(options), listener(std::make_unique<tds::Listener>(options.port)) {}

    struct Client {
        std::unique_ptr<tds::Session> session;
        std::thread thread;
    };

    void acceptLoop() {
        for (int socket; (socket = listener->accept()) >= 0;) {
            reapFinished();
            auto session = std::make_unique<tds::Session>(shared, socket);
            tds::Session* const raw = session.get();
            const std::lock_guard lock(clientsMutex);
            clients.push_back({std::move(session), std::thread([raw] { raw->run(); })});
        }
    }

    void reapFinished() {
        const std::lock_guard lock(clientsMutex);
        for (auto client = clients.begin(); client != clients.end();) {
            if (client->session->finished()) {
                client->thread.join();
                client = clients.erase(client);
            } else {
                ++client;
            }
        }
    }

    tds::Shared shared;
    std::unique_ptr<tds::Listener> listener;  // gone once stopped; counters stay readable
    std::mutex clientsMutex;
    std::list<Client> clients;
    std::thread acceptor;
};

TdsEndpoint::TdsEndpoint() = default;
TdsEndpoint::~TdsEndpoint() {
    stop();
}

quint16 TdsEndpoint::start(const TdsEndpointOptions& options) {
    stop();
    if (!options.provider) throw std::runtime_error("a TDS endpoint needs a provider");
    running_ = std::make_unique<Running>(options);
    running_->acceptor = std::thread([running = running_.get()] { running->acceptLoop(); });
    return running_->listener->port();
}

void TdsEndpoint::stop() {
    if (!running_ || !running_->listener) return;
    running_->listener->shutDown();
    running_->acceptor.join();
    for (Running::Client& client : running_->clients) client.session->cut();
    for (Running::Client& client : running_->clients) client.thread.join();
    running_->clients.clear();
    running_->listener.reset();
}

quint16 TdsEndpoint::port() const {
    return running_ && running_->listener ? running_->listener->port() : quint16(0);
}

void TdsEndpoint::setFaults(const TdsFaults& faults) {
    const std::lock_guard lock(running_->shared.mutex);
    running_->shared.faults = faults;
    running_->shared.statementsMet = 0;
}

TdsCounters TdsEndpoint::counters() const {
    const std::lock_guard lock(running_->shared.mutex);
    return running_->shared.counters;
}

QStringList TdsEndpoint::statements() const {
    const std::lock_guard lock(running_->shared.mutex);
    return running_->shared.statements;
}

void TdsEndpoint::resetCounters() {
    const std::lock_guard lock(running_->shared.mutex);
    const int open = running_->shared.counters.openSessions;
    running_->shared.counters = {};
    running_->shared.counters.openSessions = open;
    running_->shared.statements.clear();
}

QString TdsEndpoint::dataSource() const {
    return QStringLiteral("127.0.0.1,%1").arg(port());
}

}  // namespace zov
