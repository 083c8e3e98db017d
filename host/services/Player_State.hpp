#pragma once

#include <chrono>
#include <list>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "host/services/HelperProcess.hpp"
#include "host/services/Player.hpp"
#include "host/services/UniqueFd.hpp"

namespace vigil {

// The insides of the player. What the mutex guards any thread may touch; the rest belongs to the player's
// thread. No callback is called and no process started under the mutex.
struct Player::State {
    using Steady = std::chrono::steady_clock;

    struct Request {
        PlayerMessage message;
        Callbacks callbacks;
        bool held = false;
        Steady::time_point asked{};
        bool sent = false;
        bool began = false;
        /// When nothing stood before it any more. What it is held for counts: whoever waits, waits.
        std::optional<Steady::time_point> turn{};
        Steady::time_point deadline{};
    };
    struct Order {
        enum Kind { Release, Stop } kind;
        Id id;
    };
    using Requests = std::list<Request>;

    explicit State(Options given);

    // Any thread.
    Id submit(PlayerMessage::Kind kind, const std::string& text, Callbacks callbacks, bool held);
    std::optional<PlayEnd> startThread();
    void order(Order given);
    void wake();
    void stop();

    // The player's thread.
    void loop();
    bool takeNew();
    bool mayBeSent(const Request& request, bool speaking) const;
    void sendWhatMay();
    bool startProcess();
    void ping();
    void wait();
    void serve();
    void take(const PlayerMessage& message);
    void letOthersWait();
    void watch();
    void endLate();
    void hideProcess();
    void letGo();
    void endProcess(const std::string& because, PlayOutcome outcome, Id culprit);
    void processEnded(std::string how);
    void endIdle();
    void endAll();
    Requests::iterator withId(Id id);
    void finish(Requests::iterator request, PlayEnd end);
    bool anySent() const;

    const Options options;
    UniqueFd wakeUp;

    mutable std::mutex mutex;
    std::vector<Request> incoming;
    std::vector<Order> orders;
    Id lastId = 0;
    std::size_t unended = 0;
    bool stopping = false;
    pid_t processNumber = 0;
    std::thread thread;
    std::mutex joinMutex;

    Requests requests;  // in the order given
    std::optional<HelperProcess> process;
    std::optional<Steady::time_point> pinged;  // without an answer yet
    Steady::time_point lastPing{};
    std::uint32_t pings = 0;
    Steady::time_point lastUse{};
};

}  // namespace vigil
