#include <charconv>
#include <utility>

#include <sys/stat.h>

#include "host/feeds/OpenRecorded.hpp"
#include "host/feeds/live/FeedOptions.hpp"
#include "host/feeds/live/Feeds_State.hpp"
#include "host/feeds/live/RecordedFeed.hpp"

namespace vigil {
namespace {

constexpr double kFastest = 1e9;
/// Of a file that is replayed, unless said: an hour is a minute.
constexpr double kFileSpeed = 60;
/// Of a simulation, unless said: the seconds of weather between notifications.
constexpr double kSimulatedStep = 300;
constexpr double kLongestStep = 86400;

/// A recording is read without waiting for more of it, which a pipe would make the other recordings wait for.
bool isOrdinaryFile(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) != 0 || S_ISREG(status.st_mode);
}

Result<std::uint64_t> seedOf(const FeedOptions& options) {
    const std::string given = options.text("seed").value_or("1");
    std::uint64_t seed = 0;
    const auto [end, failed] = std::from_chars(given.data(), given.data() + given.size(), seed);
    if (failed != std::errc() || end != given.data() + given.size())
        return Error{"feed: the option \"seed\" wants a whole number from 0"};
    return seed;
}

}  // namespace

Feeds::State::Made Feeds::State::makeSimulated(const FeedUrl& url, const Outlet& outlet) {
    const FeedOptions options(url);
    const auto seed = seedOf(options);
    if (!seed) return seed.error();
    const auto step = options.number("step", kSimulatedStep, 1e-3, kLongestStep);
    if (!step) return step.error();
    const auto speed = options.number("speed", step.value(), 0, kFastest);
    if (!speed) return speed.error();
    const auto served = loop(recordings, "feed-recordings");
    if (!served) return served.error();
    SimulatedOptions simulated;
    simulated.station = outlet->station();
    simulated.step = step.value();
    // The same seed gives the same weather whenever it begins; its dates become those of now.
    RecordedFeed::Options how{.open = [seed = seed.value(), simulated](const ProblemTeller&) -> Opened {
                                  return simulatedSource(seed, simulated);
                              },
                              .speed = speed.value()};
    return std::unique_ptr<Feed>(
        std::make_unique<RecordedFeed>(*served.value(), outlet, std::move(how), context.timing));
}

Feeds::State::Made Feeds::State::makeCsv(const FeedUrl& url, const Outlet& outlet) {
    const FeedOptions options(url);
    const auto speed = options.number("speed", kFileSpeed, 0, kFastest);
    if (!speed) return speed.error();
    const auto shift = options.word("shift", {"now", "keep"});
    if (!shift) return shift.error();
    const auto units = options.word("units", {"metric", "us"});
    if (!units) return units.error();
    const std::string separator = options.text("separator").value_or(",");
    if (separator != "tab" && separator.size() != 1)
        return Error{"feed: the option \"separator\" wants one character, or tab"};
    CsvOptions csv;
    csv.separator = separator == "tab" ? '\t' : separator.front();
    csv.timeColumn = options.text("time-column");
    csv.stationColumn = options.text("station-column");
    csv.station = options.text("station");
    csv.units = units.value() == "us" ? UnitSystem::Us : UnitSystem::Metric;
    const auto served = loop(recordings, "feed-recordings");
    if (!served) return served.error();
    RecordedFeed::Options how{.open = [path = inFolder(url.path), csv](ProblemTeller tell) -> Opened {
                                  if (!isOrdinaryFile(path))
                                      return OpenError{
                                          OpenError::Kind::BadInput,
                                          path + ": is no ordinary file; a pipe is followed by lines:"};
                                  return openCsv(path, csv, std::move(tell));
                              },
                              .speed = speed.value(),
                              .shifts = shift.value() == "now"};
    return std::unique_ptr<Feed>(
        std::make_unique<RecordedFeed>(*served.value(), outlet, std::move(how), context.timing));
}

}  // namespace vigil
