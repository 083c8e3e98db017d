// Fires and acts without end, and tells each step on standard output once it is on the disk:
//
//     intent FIRE | queued EFFECT | started EFFECT | act EFFECT | ended EFFECT | over FIRE PLUGIN NUMBER
//
// A line is written whole by one call, so a reader sees either all of it or nothing.

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include <unistd.h>

#include "host/site/SiteFile.hpp"
#include "host/site/SiteWriter.hpp"

namespace {

using namespace vigil;

/// Large enough that the database's log is worked in every second or so.
constexpr std::size_t kArchiveBytes = 20'000;

void tell(const std::string& line) {
    if (::write(STDOUT_FILENO, (line + "\n").data(), line.size() + 1) < 0) std::_Exit(3);
}

void tell(const char* step, RecordId id) {
    tell(std::string(step) + " " + std::to_string(id));
}

SiteWriter::Committed telling(std::function<void()> then) {
    return [then = std::move(then)](const Result<Done>& done) {
        if (!done) tell("failed " + done.error().message);
        then();
    };
}

/// One thing that a fire does: it begins once it is known to be queued, and acts once it is known to have
/// begun.
void act(SiteWriter& writer, EffectRecord effect) {
    writer.putEffect(effect, telling([&writer, effect]() mutable {
                         tell("queued", effect.id);
                         effect.state = EffectRecord::Started;
                         effect.started = Date(2);
                         writer.putEffect(effect, telling([&writer, effect]() mutable {
                                              tell("started", effect.id);
                                              tell("act", effect.id);
                                              effect.state = EffectRecord::Ended;
                                              effect.ended = Date(3);
                                              effect.result = "succeeded";
                                              writer.putEffect(
                                                  effect, telling([effect] { tell("ended", effect.id); }));
                                          }));
                     }));
}

void fireForEver(SiteWriter& writer, PlugInRecord plugIn) {
    for (;;) {
        const RecordId fire = writer.newId();
        std::promise<void> intent, over;
        writer.putFire({.id = fire, .plugIn = plugIn.id, .time = Date(1)}, telling([&] {
                           tell("intent", fire);
                           intent.set_value();
                       }));
        intent.get_future().wait();
        act(writer, {.id = writer.newId(), .fire = fire, .plugIn = plugIn.id, .queued = Date(1)});
        const long number = std::strtol(plugIn.archive.c_str(), nullptr, 10) + 1;
        plugIn.archive = std::to_string(number) + std::string(kArchiveBytes, ' ');
        writer.completeFire(fire, plugIn, telling([&] {
                                tell("over " + std::to_string(fire) + " " + std::to_string(plugIn.id) + " " +
                                     std::to_string(number));
                                over.set_value();
                            }));
        over.get_future().wait();
    }
}

}  // namespace

int main(int count, char** words) {
    if (count != 2) return 2;
    auto site = SiteFile::open(words[1], Access::Write);
    if (!site) {
        std::fprintf(stderr, "%s\n", site.error().message.c_str());
        return 3;
    }
    const auto plugIns = site.value()->plugIns();
    if (!plugIns) return 3;
    SiteWriter writer(*site.value());
    std::vector<std::jthread> monitors;
    for (const PlugInRecord& plugIn : plugIns.value())
        monitors.emplace_back([&writer, plugIn] { fireForEver(writer, plugIn); });
    for (std::jthread& monitor : monitors)
        monitor.join();
    return 0;
}
