// The cycle against a naive monitor, in several worlds, and with archives in between.

#include <map>

#include <gtest/gtest.h>

#include "host/kit/KeyedArchive.hpp"
#include "host/kit/RecordedScripts.hpp"
#include "host/kit/ReplayWorld.hpp"
#include "host/kit/Station.hpp"
#include "platform/ClassRegistry.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/ModuleClasses.hpp"
#include "tests/laws/MonitorPicture.hpp"
#include "tests/laws/NaiveMonitor.hpp"
#include "tests/support/ConditionGenerator.hpp"
#include "tests/support/FakeWorld.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

using test::RandomMonitor;

constexpr Date kBegin{791532000};  // 2026-01-31 06:00:00 UTC
constexpr int kSteps = 60;

const int kSequences = 300 * test::longFactor();

/// A monitor with a station of its own in some world.
struct Watched {
    Watched(HostWorld& world, const RandomMonitor& random)
        : scripts(world), station(std::make_shared<Station>(world, "roof", scripts)) {
        monitor = makePlugIn<QRVVigilPlugIn>(station, nullptr);
        random.apply(*monitor);
        begin();
    }

    void begin() {
        monitor->setCycleObserver(picture);
        monitor->start();
    }

    std::string notify(const std::shared_ptr<const Readings>& batch) {
        EXPECT_TRUE(station->announce(batch).empty());
        return picture->last;
    }

    RecordedScripts scripts;
    std::shared_ptr<Station> station;
    std::shared_ptr<QRVVigilPlugIn> monitor;
    std::shared_ptr<test::CyclePicture> picture = std::make_shared<test::CyclePicture>();
};

class CycleLaw : public testing::Test {
  protected:
    CycleLaw() {
        for (const ModuleClass& entry : moduleClasses())
            ClassRegistry::shared().add(entry.name, entry.make);
    }
};

TEST_F(CycleLaw, AMonitorDoesWhatANaiveOneDoes) {
    std::map<std::string, int> outcomes;
    for (int seed = 1; seed <= kSequences; ++seed) {
        RandomMonitor random(static_cast<std::uint32_t>(seed));
        test::NaiveMonitor naive(random.settings());
        FakeWorld world;
        Watched watched(world, random);
        world.setNow(kBegin);
        for (int step = 0; step < kSteps; ++step) {
            world.advance(random.step());
            const auto batch = random.batch(world.now());
            const std::string done = watched.notify(batch);
            ASSERT_EQ(done, naive.notify(world.now(), batch->entries()))
                << "seed " << seed << ", step " << step << ", " << random.settings().condition;
            ++outcomes[done.substr(0, done.find(' '))];
        }
    }
    // A comparison of monitors that always do the same would show nothing.
    for (const char* const outcome : {"waiting", "missed", "fired"})
        EXPECT_GT(outcomes[outcome], kSequences * kSteps / 20) << outcome;
}

TEST_F(CycleLaw, AfterEveryJudgedCycleTheSnapshotIsTheBatchAndInAWaitNothingChanges) {
    for (int seed = 1; seed <= kSequences; ++seed) {
        RandomMonitor random(static_cast<std::uint32_t>(seed));
        FakeWorld world;
        Watched watched(world, random);
        world.setNow(kBegin);
        for (int step = 0; step < kSteps; ++step) {
            world.advance(random.step());
            const auto batch = random.batch(world.now());
            const auto lines = world.log().lines().size();
            const std::string before = test::pictureOf(*watched.monitor) + watched.monitor->actionStatus();
            const bool waited = watched.notify(batch).starts_with("waiting");
            SCOPED_TRACE("seed " + std::to_string(seed) + ", step " + std::to_string(step));
            ASSERT_EQ(world.log().lines().size(), lines + (waited ? 0 : 1));
            if (waited) {
                ASSERT_EQ(test::pictureOf(*watched.monitor) + watched.monitor->actionStatus(), before);
                continue;
            }
            const auto snapshot = watched.monitor->lastEvaluationDictionary();
            const ReadingsView last = batch->view();
            std::size_t size = 0;
            for (KeyTable::Slot slot = 0; slot < last.table->size(); ++slot) {
                if (!last.at(slot)) continue;
                ++size;
                const AgentProperty* kept = snapshot->objectForKey(last.table->key(slot));
                ASSERT_TRUE(kept);
                ASSERT_EQ(test::pictureOf(*kept), test::pictureOf(*last.at(slot)));
            }
            ASSERT_EQ(snapshot->size(), size);
        }
    }
}

TEST_F(CycleLaw, LiveWithThreadsAndReplayedTheSameIsDoneWhereActionsTakeNoTime) {
    const TemporaryFolder folder;
    folder.write("notify.sh", "echo\n");
    std::size_t scripts = 0;
    for (int seed = 1; seed <= kSequences / 3; ++seed) {
        RandomMonitor random(static_cast<std::uint32_t>(seed));
        FakeWorld live(FakeMainQueue::Form::Threaded);
        live.setScriptsFolder("/scripts");
        live.files().setFile("/scripts/notify.sh", "echo\n");
        FakeWorld other;  // for its log and interface files
        ReplayWorld replay(other.log(), other.interfaceFiles(), folder.path());
        Watched one(live, random);
        Watched two(replay, random);
        for (Watched* each : {&one, &two}) {
            const auto root = each->monitor->criteria()->front();
            each->monitor->setRuleEditorStoredCriteria(std::make_shared<QRVVigilPlugIn::CriteriaRows>(
                QRVVigilPlugIn::CriteriaRows{{root, root->childAtIndex(0)}}));
            each->monitor->setRuleEditorStoredDisplayValues(
                std::make_shared<QRVVigilPlugIn::DisplayValueRows>(QRVVigilPlugIn::DisplayValueRows{
                    {"Run script", std::make_shared<TextField>("notify.sh a")}}));
        }
        Date now = kBegin;
        for (int step = 0; step < kSteps; ++step) {
            now = now.plus(random.step());
            live.setNow(now);
            replay.turnTo(now);
            const auto batch = random.batch(now);
            ASSERT_EQ(one.notify(batch), two.notify(batch)) << "seed " << seed << ", step " << step;
        }
        const auto ran = one.scripts.take();
        const auto noted = two.scripts.take();
        ASSERT_EQ(ran.size(), noted.size()) << "seed " << seed;
        for (std::size_t i = 0; i < ran.size(); ++i) {
            ASSERT_EQ(ran[i].time, noted[i].time) << "seed " << seed;
            ASSERT_EQ(ran[i].request.source, noted[i].request.source);
            ASSERT_EQ(ran[i].request.arguments, noted[i].request.arguments);
            ASSERT_EQ(ran[i].request.environment, noted[i].request.environment);
        }
        scripts += ran.size();
    }
    EXPECT_GT(scripts, static_cast<std::size_t>(kSequences)) << "too few fires to show anything";
}

TEST_F(CycleLaw, RestoredBetweenAnyTwoNotificationsItGoesOnWithAFreshStatus) {
    int fires = 0;
    for (int seed = 1; seed <= kSequences / 3; ++seed) {
        RandomMonitor random(static_cast<std::uint32_t>(seed));
        FakeWorld world;
        Watched whole(world, random);
        Watched restored(world, random);
        world.setNow(kBegin);
        for (int step = 0; step < kSteps; ++step) {
            world.advance(random.step());
            if (random.below(3) == 0) {
                const auto text = writeArchive(restored.monitor, restored.station.get());
                ASSERT_TRUE(text) << text.error().message;
                restored.monitor->stop();
                const World::Scope scope(world);
                const auto back = readArchive(text.value(), restored.station);
                ASSERT_TRUE(back) << back.error().message;
                restored.monitor = std::dynamic_pointer_cast<QRVVigilPlugIn>(back.value());
                restored.begin();
                whole.monitor->setActionStatus("Check Activate to start.");
            }
            const auto batch = random.batch(world.now());
            const std::string done = whole.notify(batch);
            ASSERT_EQ(restored.notify(batch), done) << "seed " << seed << ", step " << step;
            fires += done.starts_with("fired") ? 1 : 0;
        }
    }
    EXPECT_GT(fires, kSequences);
}

}  // namespace
}  // namespace vigil
