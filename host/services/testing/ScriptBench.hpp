#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>

#include "host/services/ScriptRunner.hpp"

// What tests of the script runner share: real scripts run by the real helper, waited for with deadlines that
// only a broken runner meets.

namespace vigil {

inline constexpr std::chrono::seconds kPatience{40};

inline bool eventually(const std::function<bool()>& condition) {
    const auto until = std::chrono::steady_clock::now() + kPatience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > until) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

inline std::string fileText(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Whether a process, not ended, has that entry in its environment.
inline bool somethingBears(const std::string& entry) {
    namespace fs = std::filesystem;
    std::error_code failed;
    for (fs::directory_iterator it("/proc", failed), end; !failed && it != end; it.increment(failed)) {
        const std::string environment = fileText(it->path() / "environ");
        if (environment.find(entry + '\0') == std::string::npos) continue;
        const std::string stat = fileText(it->path() / "stat");
        const std::size_t state = stat.rfind(") ");
        if (state != std::string::npos && stat[state + 2] != 'Z' && stat[state + 2] != 'X') return true;
    }
    return false;
}

inline std::string builtHelper() {
    return VIGIL_BINARY_DIR "/bin/vigil-helper";
}

/// A fresh folder, which is also where scripts are kept while they run; a mark that all its scripts bear.
class ScriptBench : public testing::Test {
  protected:
    void SetUp() override {
        char pattern[] = "/tmp/vigil-test-XXXXXX";
        ASSERT_NE(::mkdtemp(pattern), nullptr);
        m_folder = pattern;
        m_mark = "BENCH_MARK=" + m_folder;
        ::setenv("XDG_RUNTIME_DIR", m_folder.c_str(), 1);
    }

    void TearDown() override {
        m_runner.reset();
        EXPECT_FALSE(somethingBears(m_mark)) << "a process of a script is still there";
        for (const auto& entry : std::filesystem::directory_iterator(m_folder))
            EXPECT_FALSE(entry.path().filename().string().starts_with("vigil-script-")) << entry.path();
        EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "a helper has not been waited for";
        std::filesystem::remove_all(m_folder);
    }

    static ScriptRunner::Options options() {
        const auto now = [] {
            using namespace std::chrono;
            return Date::fromUnix(duration<double>(system_clock::now().time_since_epoch()).count());
        };
        return {.helper = builtHelper(), .clock = now};
    }

    ScriptRunner& runner(ScriptRunner::Options given = options()) {
        if (!m_runner) m_runner = std::make_unique<ScriptRunner>(std::move(given));
        return *m_runner;
    }

    std::string path(const std::string& name) const { return m_folder + "/" + name; }
    bool appears(const std::string& name) const {
        return eventually([&] { return std::filesystem::exists(path(name)); });
    }

    ScriptRequest request(std::string source, std::vector<std::string> arguments = {}) const {
        ScriptRequest made;
        made.source = std::move(source);
        made.arguments = std::move(arguments);
        made.environment = {{"BENCH_MARK", m_folder}, {"D", m_folder}};
        made.station = "Harbour";
        made.monitor = "Frost";
        return made;
    }

    /// Hands over; the result is in `m_results` under the number that is returned.
    std::size_t submit(ScriptRequest made) {
        std::size_t number = 0;
        {
            const std::lock_guard lock(m_mutex);
            number = m_results.size();
            m_results.emplace_back();
        }
        m_runner->submit(std::move(made), [this, number](const ScriptResult& result) {
            const std::lock_guard lock(m_mutex);
            m_results[number].push_back(result);
            m_order.push_back(number);
            m_changed.notify_all();
        });
        return number;
    }

    /// Waits for the result of that number.
    ScriptResult result(std::size_t number) {
        std::unique_lock lock(m_mutex);
        const bool there = m_changed.wait_for(lock, kPatience, [&] { return !m_results[number].empty(); });
        EXPECT_TRUE(there) << "no result of request " << number;
        return there ? m_results[number].front() : ScriptResult{};
    }

    ScriptResult run(ScriptRequest made) {
        runner();
        return result(submit(std::move(made)));
    }
    ScriptResult run(std::string source, std::vector<std::string> arguments = {}) {
        return run(request(std::move(source), std::move(arguments)));
    }

    /// How many answers a request has had.
    std::size_t answers(std::size_t number) {
        const std::lock_guard lock(m_mutex);
        return m_results[number].size();
    }
    std::vector<std::size_t> order() {
        const std::lock_guard lock(m_mutex);
        return m_order;
    }

    std::string m_folder;
    std::string m_mark;

  private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::vector<ScriptResult>> m_results;
    std::vector<std::size_t> m_order;

  protected:
    std::unique_ptr<ScriptRunner> m_runner;  // last, so that it ends before what its callbacks use
};

}  // namespace vigil
