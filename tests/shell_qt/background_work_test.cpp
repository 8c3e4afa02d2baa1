// Work that waits for a server: the desktop lives meanwhile, Cancel is quick, and
// nothing else can be started.
#include "shell/qt/background_work.h"

#include "data/base/db_error.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
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
    // The attempt to close the window counts as giving up; this work doesn't mind, and yet the wish
    // isn't lost: what would follow it isn't begun.
    std::atomic<bool> cancelled = false;
    EXPECT_FALSE(waiting.background.run([] { std::this_thread::sleep_for(130ms); },
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

TEST(BackgroundWork, TheNoteNamesTheServerAndTheTime) {
    Waiting waiting;
    QString name, toolTip;
    QStringList times;
    int excess = 0;
    const auto look = [&] {
        const auto* note = waiting.window.findChild<QWidget*>(QStringLiteral("waitingNote"));
        ASSERT_NE(note, nullptr);
        const auto* label = note->findChild<QLabel*>(QStringLiteral("waitingFor"));
        name = label->text();
        toolTip = label->toolTip();
        times += note->findChild<QLabel*>(QStringLiteral("waitingTime"))->text();
        excess = std::max(excess, note->width() - waiting.window.width());
    };
    waiting.window.resize(700, 300);
    for (const int at : {600, 2700}) QTimer::singleShot(at, look);
    waiting.background.run([] { std::this_thread::sleep_for(2900ms); }, [] {}, &waiting.window,
                           QStringLiteral("<b>db1"));
    EXPECT_EQ(name, QStringLiteral("Waiting for the server <b>db1..."));
    EXPECT_EQ(times, QStringList({QStringLiteral("00:00:00"), QStringLiteral("00:00:02")}));
    QTimer::singleShot(600, look);
    waiting.background.run([] { std::this_thread::sleep_for(800ms); }, [] {}, &waiting.window,
                           QString(300, u'x'));
    EXPECT_LE(excess, 0) << "a long name is cut";
    EXPECT_EQ(toolTip.size(), 300);
}

TEST(BackgroundWork, AScreensOwnStopButtonMeansCancel) {
    const struct {
        const char* what;
        const char* name;
        std::function<void(QPushButton&)> press;
    } rows[] = {
        {"click on Stop", "cmdStop", [](QPushButton& b) { QTest::mouseClick(&b, Qt::LeftButton); }},
        {"click on Cancel", "cmdCancel",
         [](QPushButton& b) { QTest::mouseClick(&b, Qt::LeftButton); }},
        {"Space", "cmdStop", [](QPushButton& b) { QTest::keyClick(&b, Qt::Key_Space); }},
        {"its letter", "cmdStop",
         [](QPushButton& b) { QTest::keyClick(&b, Qt::Key_S, Qt::AltModifier); }},
        {"another button", "cmdExport", nullptr},
    };
    for (const auto& row : rows) {
        Waiting waiting;
        waiting.button.setText(QStringLiteral("&Stop"));
        waiting.button.setObjectName(QLatin1String(row.name));
        waiting.button.setFocus();
        waiting.window.activateWindow();
        const bool stops = row.press != nullptr;
        QTimer::singleShot(70, [&] {
            if (stops)
                row.press(waiting.button);
            else
                QTest::mouseClick(&waiting.button, Qt::LeftButton);
        });
        auto stop = std::make_shared<std::atomic<bool>>(false);
        const bool done = waiting.background.run(
            [stop] {
                for (int i = 0; i < 400 && !*stop; ++i) std::this_thread::sleep_for(1ms);
            },
            [stop] { *stop = true; }, &waiting.window);
        EXPECT_EQ(done, !stops) << row.what;
        EXPECT_EQ(*stop, stops) << row.what;
    }
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
    EXPECT_FALSE(waiting.background.run([&] { ++done; }, [] {}, nullptr))
        << "one Cancel is for all that the operation waits for";
    waiting.background.forgetGivingUp();
    EXPECT_TRUE(waiting.background.run([&] { ++done; }, [] {}, nullptr)) << "new work goes on";
    EXPECT_EQ(done, 1);
    *release = true;
    for (int i = 0; i < 200 && waiting.background.hasAbandonedWork(); ++i)
        std::this_thread::sleep_for(1ms);
    EXPECT_FALSE(waiting.background.hasAbandonedWork());
}

}  // namespace
}  // namespace zov
