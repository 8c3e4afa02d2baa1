#include "data/catalog_reading.h"

#include "core/globals.h"
#include "data/image/image_statements.h"
#include "data/mdlData.h"
#include "data/providers.h"
#include "shell/shell.h"

#include <algorithm>
#include <exception>
#include <mutex>
#include <thread>

namespace zov {
namespace {

constexpr int MostReadings = 3;

/// One database on its way into memory. It owns what its reading touches, which may be left behind.
class SideReading {
 public:
    explicit SideReading(QString connection) : connectionString_(std::move(connection)) {}

    /// Never throws: what failed is kept.
    void run(int step, int timeout) {
        try {
            if (step == 0) {
                auto fresh =
                    std::make_shared<image::ImageReading>(openDirectly(connectionString_), timeout);
                const std::lock_guard lock(guard_);
                reading_ = std::move(fresh);
            }
            current()->run(step);
        } catch (const image::ChangedMeanwhile&) {
            changed = true;
        } catch (const image::NoImage& none) {
            trouble = none.reason;
        } catch (const DbError& error) {
            trouble = error.description.isEmpty() ? QStringLiteral("it can't be read")
                                                  : error.description;
            cancelled = error.number == ado_error::Cancelled;
        } catch (const std::exception& error) {
            trouble = QString::fromLocal8Bit(error.what());
        }
    }
    /// From another thread.
    void cancel() {
        if (const auto running = current()) running->cancel();
    }
    std::shared_ptr<image::CatalogImage> takeImage() { return current()->take(); }

    bool changed = false;
    bool cancelled = false;
    QString trouble;  ///< empty: all is well

 private:
    std::shared_ptr<image::ImageReading> current() {
        const std::lock_guard lock(guard_);
        return reading_;
    }

    const QString connectionString_;
    std::mutex guard_;
    std::shared_ptr<image::ImageReading> reading_;
};

struct Side {
    explicit Side(CatalogueWanted& catalogue) : wanted(catalogue) {
        const qint32 version = GetMajorVersion(wanted.server.Version);
        if (version > 0 && version < image::FirstVersion)
            giveUp(image::oldVersionReason());
        else
            begin();
    }

    bool isDone() const { return !reading || nextStep >= image::ImageReading::stepCount(); }
    /// Takes note of what the last step came to.
    void advance() {
        if (!reading->trouble.isEmpty()) {
            const QString why = reading->trouble.simplified();
            giveUp(why.endsWith(u'.') ? why.chopped(1) : why);
        } else if (!reading->changed) {
            if (++nextStep == image::ImageReading::stepCount()) wanted.image = reading->takeImage();
        } else if (readings < MostReadings) {
            begin();
        } else {
            giveUp(QStringLiteral("it was altered each of the %1 times that it was read")
                       .arg(MostReadings));
        }
    }

    CatalogueWanted& wanted;
    std::shared_ptr<SideReading> reading;
    int nextStep = 0;
    int readings = 0;

 private:
    void begin() {
        ++readings;
        nextStep = 0;
        reading =
            std::make_shared<SideReading>(BuildConnectionString(wanted.server, wanted.database));
    }
    void giveUp(const QString& why) {
        wanted.reason = why;
        reading.reset();
    }
};

/// The next step of each side that has one, all at the same time. False: the user gave up.
bool runStep(const std::vector<Side>& sides) {
    std::vector<std::pair<std::shared_ptr<SideReading>, int>> running;
    QStringList servers;
    for (const Side& side : sides) {
        if (side.isDone()) continue;
        running.emplace_back(side.reading, side.nextStep);
        if (!servers.contains(side.wanted.server.Name)) servers += side.wanted.server.Name;
    }
    const int timeout = globals().glngTimeout;
    const auto work = [running, timeout] {
        std::vector<std::jthread> others;
        for (size_t i = 1; i < running.size(); ++i)
            others.emplace_back(
                [one = running[i], timeout] { one.first->run(one.second, timeout); });
        running.front().first->run(running.front().second, timeout);
    };
    const auto cancel = [running] {
        for (const auto& [reading, step] : running) reading->cancel();
    };
    return shell().runBlocking(work, cancel, servers.join(QStringLiteral(", ")));
}

}  // namespace

bool readCatalogues(std::vector<CatalogueWanted>& wanted, const ReadingProgress& progress) {
    std::vector<Side> sides;
    sides.reserve(wanted.size());
    for (CatalogueWanted& one : wanted) sides.emplace_back(one);
    const auto isDone = [](const Side& side) { return side.isDone(); };
    while (!std::ranges::all_of(sides, isDone)) {
        const auto next = std::ranges::find_if_not(sides, isDone);
        if (progress)
            progress(QStringLiteral("Reading %1...")
                         .arg(image::ImageReading::stepTitle(next->nextStep)));
        shell().pumpEvents();
        if (globals().gblnStop) return false;
        // What was left behind may still run: nothing of it is looked at.
        if (!runStep(sides) || std::ranges::any_of(sides, [](const Side& side) {
                return side.reading && side.reading->cancelled;
            })) {
            globals().gblnStop = true;
            return false;
        }
        for (Side& side : sides)
            if (!side.isDone()) side.advance();
    }
    return true;
}

}  // namespace zov
