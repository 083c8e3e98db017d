#include "host/command/Demo.hpp"

#include <atomic>
#include <cstdio>
#include <thread>

#include "host/command/CycleNote.hpp"
#include "host/feeds/OpenRecorded.hpp"
#include "host/kit/ExceptionText.hpp"
#include "host/kit/HostedPlugIn.hpp"
#include "host/kit/InterfaceFile.hpp"
#include "host/kit/LiveWorld.hpp"
#include "host/kit/MonitorModule.hpp"
#include "host/kit/StandardLog.hpp"
#include "host/kit/Station.hpp"
#include "host/services/SystemClock.hpp"

namespace vigil {
namespace {

using Clock = std::chrono::steady_clock;

double unitValue(const Readings& readings, const char* key) {
    const AgentProperty* reading = readings.objectForKey(key);
    return reading ? reading->unitValue() : 0;
}

/// Everything that lives as long as the demonstration. The order matters: what is used stands first.
struct Stage {
    Stage(const Demo::Options& options, const Demo::View& view)
        : clock(SimulatedOptions().start.secondsSinceReference()),
          world(log, files, options.scriptsFolder, [this] { return Date(clock.load()); }),
          scripts({.helper = options.player.helper, .clock = systemNow},
                  [this, &view](const LiveScripts::Entry& entry) {
                      world.mainQueue().dispatchAsync([this, &view, entry] {
                          ++counts.scripts;
                          if (entry.result.outcome != ScriptResult::Succeeded) ++counts.scriptsFailed;
                          view.script(entry);
                      });
                  }),
          station(std::make_shared<Station>(world, SimulatedOptions().station, scripts)) {}

    std::atomic<double> clock;
    StandardLog log{stderr, kLogProblem, systemNow};
    InterfaceFile files;
    LiveWorld world;
    Demo::Counts counts;
    LiveScripts scripts;
    std::shared_ptr<Station> station;
    std::shared_ptr<CycleNote> note = std::make_shared<CycleNote>(false);
};

/// Announces reading after reading and hands each step to the main thread. The feed's thread.
void feed(Stage& stage, const Demo::Options& options, const Demo::View& view, std::optional<Error>& failure) {
    const auto source = simulatedSource(options.seed, {.step = options.step, .count = options.notifications});
    auto due = Clock::now();
    while (const auto next = source->next().value()) {
        std::this_thread::sleep_until(due);
        due += options.pause;
        stage.clock = next->time.secondsSinceReference();
        const auto thrown = stage.station->announce(next->readings);
        if (!thrown.empty()) {
            failure = Error{"the monitor failed: " + exceptionText(thrown.front().what)};
            break;
        }
        DemoStep step{.time = utcTime(next->time),
                      .windChill = unitValue(*next->readings, "windChill"),
                      .windSpeed = unitValue(*next->readings, "windSpeed"),
                      .outcome = stage.note->cycle.outcome};
        if (stage.note->cycle.next) step.next = utcTime(*stage.note->cycle.next);
        stage.world.mainQueue().dispatchAsync([&stage, &view, step] {
            if (step.outcome == CycleOutcome::Fired) ++stage.counts.fired;
            if (step.outcome == CycleOutcome::Missed) ++stage.counts.missed;
            if (step.outcome == CycleOutcome::Waiting) ++stage.counts.waiting;
            view.step(step);
        });
    }
}

/// Serves the main queue while the feed runs, and then what it left behind.
void serve(Stage& stage, const Demo::Options& options, const Demo::View& view,
           std::optional<Error>& failure) {
    std::atomic<bool> done = false;
    std::thread feeder([&] {
        feed(stage, options, view, failure);
        done = true;
        stage.world.mailbox().wake();
    });
    while (!done)
        stage.world.mailbox().serveOne(Clock::now() + std::chrono::seconds(1));
    feeder.join();
    stage.scripts.stop();
    while (stage.world.mailbox().serveOne(Clock::now())) {
    }
}

}  // namespace

Result<Demo::Counts> Demo::run(const Options& options, const View& view) {
    Stage stage(options, view);
    stage.world.offerSound(options.player);
    auto monitor = monitorFromArchive(archiveText(options.monitor), stage.station);
    if (!monitor) return monitor.error();
    HostedPlugIn hosted(stage.world, monitor.value());
    if (CycleReporting* cycles = monitor.value()->cycleReporting()) cycles->setCycleObserver(stage.note);
    if (const auto obstacle = hosted.start())
        return Error{"the monitor does not start: " + obstacle->description()};
    std::optional<Error> failure;
    serve(stage, options, view, failure);
    hosted.stop();
    if (failure) return *failure;
    stage.counts.status = statusText(*monitor.value());
    return stage.counts;
}

}  // namespace vigil
