// Work that waits for a server: the desktop lives meanwhile, Cancel is quick, and
// nothing else can be started.
#include "shell/qt/background_work.h"

#include "data/base/db_error.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace zov {
namespace {

using namespace std::chrono_literals;
using qt::BackgroundWork;

TEST(BackgroundWork, QuickWorkServesNoEvents) {
    BackgroundWork background;
    bool served = false;
    QTimer::singleShot(0, [&] { served = true; });
    int done = 0;
    for (int i = 0; i < 100; ++i) EXPECT_TRUE(background.run([&] { ++done; }, [] {}, nullptr));
    EXPECT_EQ(done, 100);
    EXPECT_FALSE(served);
    QApplication::processEvents();
}

TEST(BackgroundWork, WhatTheWorkThrowsComesOut) {
    BackgroundWork background;
    for (const auto wait : {0ms, 80ms}) {
        try {
            background.run(
                [wait] {
                    std::this_thread::sleep_for(wait);
                    throw DbError(ado_error::Timeout, QStringLiteral("Time-out expired."));
                },
                [] {}, nullptr);
            ADD_FAILURE() << "nothing thrown";
        } catch (const DbError& error) {
            EXPECT_EQ(error.number, ado_error::Timeout);
        }
    }
    EXPECT_TRUE(background.run([] {}, [] {}, nullptr)) << "and the next work is done";
}

TEST(BackgroundWork, TheWindowLivesWhileTheWorkLasts) {
    BackgroundWork background;
    int ticks = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] { ++ticks; });
    timer.start(10);
    EXPECT_TRUE(background.run([] { std::this_thread::sleep_for(300ms); }, [] {}, nullptr));
    EXPECT_GE(ticks, 8);
}

/// A window with a button that must not be reached, and what the user does while work runs.
struct Waiting {
    QWidget window;
    QPushButton button{&window};
    int clicks = 0;
    BackgroundWork background;

    Waiting() {
        window.resize(500, 300);
        QObject::connect(&button, &QPushButton::clicked, [this] { ++clicks; });
        window.show();
    }
};

TEST(BackgroundWork, NothingElseCanBeStartedMeanwhile) {
    Waiting waiting;
    QTimer::singleShot(60, [&] {
        QTest::mouseClick(&waiting.button, Qt::LeftButton);
        QTest::keyClick(&waiting.button, Qt::Key_Space);
        waiting.window.close();
    });
    // The attempt to close the window counts as giving up; this work doesn't mind.
    std::atomic<bool> cancelled = false;
    EXPECT_TRUE(waiting.background.run([] { std::this_thread::sleep_for(130ms); },
                                       [&] { cancelled = true; }, &waiting.window));
    EXPECT_EQ(waiting.clicks, 0);
    EXPECT_TRUE(cancelled);
    EXPECT_TRUE(waiting.window.isVisible());
    QTest::mouseClick(&waiting.button, Qt::LeftButton);
    EXPECT_EQ(waiting.clicks, 1);
}

TEST(BackgroundWork, CancelEndsWorkThatListens) {
    Waiting waiting;
    auto stop = std::make_shared<std::atomic<bool>>(false);
    QElapsedTimer sinceCancel;
    QTimer::singleShot(600, [&] {
        auto* note = waiting.window.findChild<QWidget*>(QStringLiteral("waitingNote"));
        ASSERT_NE(note, nullptr) << "no note after half a second";
        sinceCancel.start();
        QTest::mouseClick(note->findChild<QPushButton*>(), Qt::LeftButton);
    });
    const auto run = [&] {
        return waiting.background.run(
            [stop] {
                while (!*stop) std::this_thread::sleep_for(1ms);
                throw DbError(ado_error::Cancelled, QStringLiteral("Operation was canceled."));
            },
            [stop] { *stop = true; }, &waiting.window);
    };
    EXPECT_THROW(run(), DbError);
    ASSERT_TRUE(sinceCancel.isValid());
    EXPECT_LT(sinceCancel.elapsed(), 200);
    EXPECT_FALSE(waiting.background.hasAbandonedWork());
}

TEST(BackgroundWork, WorkThatDoesNotListenIsLeftBehind) {
    Waiting waiting;
    auto release = std::make_shared<std::atomic<bool>>(false);
    QElapsedTimer sinceCancel;
    QTimer::singleShot(80, [&] {
        sinceCancel.start();
        QTest::keyClick(&waiting.window, Qt::Key_Escape);
    });
    EXPECT_FALSE(waiting.background.run(
        [release] {
            while (!*release) std::this_thread::sleep_for(1ms);
        },
        [] {}, &waiting.window));
    EXPECT_LT(sinceCancel.elapsed(), 200);
    EXPECT_TRUE(waiting.background.hasAbandonedWork());
    int done = 0;
    EXPECT_TRUE(waiting.background.run([&] { ++done; }, [] {}, nullptr)) << "new work goes on";
    EXPECT_EQ(done, 1);
    *release = true;
    for (int i = 0; i < 200 && waiting.background.hasAbandonedWork(); ++i)
        std::this_thread::sleep_for(1ms);
    EXPECT_FALSE(waiting.background.hasAbandonedWork());
}

}  // namespace
}  // namespace zov
