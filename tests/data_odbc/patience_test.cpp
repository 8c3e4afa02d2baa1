// How long a server may be silent, on a bare connection.
#include "data/odbc/patience.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <thread>

namespace zov::odbc {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

class PatienceTest : public ::testing::Test {
 protected:
    void SetUp() override {
        const int listener = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        auto* plain = reinterpret_cast<sockaddr*>(&address);
        ASSERT_EQ(bind(listener, plain, length), 0);
        ASSERT_EQ(listen(listener, 1), 0);
        ASSERT_EQ(getsockname(listener, plain, &length), 0);
        const ServerSocket::Present before = ServerSocket::present();
        client = socket(AF_INET, SOCK_STREAM, 0);
        ASSERT_EQ(connect(client, plain, length), 0);
        server = accept(listener, nullptr, nullptr);
        close(listener);
        found = ServerSocket::since(before, ntohs(address.sin_port));
        if (!found.isKnown()) GTEST_SKIP() << "sockets can't be told apart here";
        waiting = Waiting::on(found);
    }
    void TearDown() override {
        close(client);
        close(server);
    }
    /// Reads until the end; how long that took.
    std::chrono::milliseconds readToTheEnd() {
        const Clock::time_point start = Clock::now();
        char bytes[100];
        while (recv(client, bytes, sizeof bytes, 0) > 0) {
        }
        return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
    }

    int client = -1, server = -1;
    ServerSocket found;
    std::shared_ptr<Waiting> waiting;
};

TEST_F(PatienceTest, AServerThatSendsSlowlyIsWaitedForUntilItIsSilent) {
    std::thread sender([this] {
        for (int i = 0; i < 8; ++i) {
            std::this_thread::sleep_for(200ms);
            EXPECT_EQ(send(server, "x", 1, MSG_NOSIGNAL), 1);
        }
    });
    const Patience patience(*waiting, 700ms);
    const auto time = readToTheEnd();
    sender.join();
    EXPECT_TRUE(waiting->wasCut());
    EXPECT_GE(time, 2250ms);
    EXPECT_LT(time, 3500ms);
}

TEST_F(PatienceTest, ACancelledWaitEndsWhateverTheServerSends) {
    std::atomic<bool> ended{false};
    std::thread sender([&] {
        while (!ended && send(server, "x", 1, MSG_NOSIGNAL) == 1) std::this_thread::sleep_for(20ms);
    });
    const Patience patience(*waiting, 0ms);
    waiting->shorten(300ms);
    const auto time = readToTheEnd();
    ended = true;
    sender.join();
    EXPECT_GE(time, 250ms);
    EXPECT_LT(time, 1500ms);
}

TEST_F(PatienceTest, NobodyIsCutWhoDoesNotWaitOrHasNoLimit) {
    { const Patience over(*waiting, 100ms); }
    std::this_thread::sleep_for(300ms);
    {
        const Patience withoutLimit(*waiting, 0ms);
        std::this_thread::sleep_for(300ms);
    }
    EXPECT_FALSE(waiting->wasCut());
    EXPECT_EQ(send(server, "x", 1, MSG_NOSIGNAL), 1);
    char byte = 0;
    EXPECT_EQ(recv(client, &byte, 1, 0), 1);
}

TEST_F(PatienceTest, AnotherFileUnderTheSameNumberIsLeftAlone) {
    int pair[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, pair), 0);
    ASSERT_EQ(dup2(pair[0], client), client);  // in the closed one's place
    found.cut();
    EXPECT_EQ(send(pair[1], "x", 1, MSG_NOSIGNAL), 1);
    close(pair[0]);
    close(pair[1]);
}

}  // namespace
}  // namespace zov::odbc
