// How long the helper takes to run a script that does nothing, from its start to its result:
//
//     helper_start HELPER COUNT
//
// Prints a line a run, in milliseconds. The way of the service, without the service.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <poll.h>
#include <unistd.h>

#include "host/services/HelperProcess.hpp"
#include "host/services/ScriptWire.hpp"

namespace {

using Clock = std::chrono::steady_clock;

/// False where the script did not end well.
bool run(const std::string& helper, int number) {
    vigil::ScriptJob job;
    job.mark = "bench-" + std::to_string(::getpid()) + "-" + std::to_string(number);
    job.source = "#!/bin/true\n";
    job.environment = {"PATH=/usr/bin:/bin", std::string(vigil::kRunMark) + "=" + job.mark};
    job.timeout = 60'000;
    job.termGrace = 1000;
    job.leftoverGrace = 1000;
    auto started = vigil::HelperProcess::start(helper, "script", encodeScriptJob(job));
    if (!started) {
        std::fprintf(stderr, "%s\n", started.error().message.c_str());
        return false;
    }
    vigil::HelperProcess process = std::move(started).value();
    for (;;) {
        process.exchange();
        while (const auto message = process.next())
            if (const auto result = vigil::decodeScriptResult(*message))
                return result->outcome == vigil::ScriptResult::Succeeded;
        if (process.broken() || process.ending()) return false;
        pollfd watched[] = {{process.socket(), process.socketEvents(), 0}, {process.process(), POLLIN, 0}};
        ::poll(watched, 2, -1);
    }
}

}  // namespace

int main(int count, char** words) {
    if (count != 3) {
        std::fputs("helper_start HELPER COUNT\n", stderr);
        return 2;
    }
    for (int i = 0; i < std::atoi(words[2]); ++i) {
        const auto begin = Clock::now();
        if (!run(words[1], i)) return 3;
        std::printf("%.4f\n", std::chrono::duration<double, std::milli>(Clock::now() - begin).count());
    }
}
