#pragma once

#include <atomic>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <mosquitto.h>

#include "host/feeds/live/BackOff.hpp"
#include "host/feeds/live/MqttClient.hpp"
#include "host/feeds/live/MqttStations.hpp"
#include "host/services/UniqueFd.hpp"

namespace vigil {

/// What the thread of a client does. The library's client is made anew for each connection and touched by
/// this thread alone.
class MqttClient::Session {
  public:
    Session(MqttAddress address, Secret secret, FeedTiming timing);

    // Any thread.
    MqttStations stations;
    void wake();
    void askToEnd();
    /// What a station that comes now is told first.
    void tellNewcomer(FeedOutlet& outlet);

    // The thread.
    void run();

  private:
    using Steady = std::chrono::steady_clock;

    void rest(FeedTiming::Milliseconds pause);
    void tellAll(FeedState::Kind kind, const std::string& words);
    std::string serve();
    std::string serveConnected(mosquitto* client);
    std::optional<std::string> configure(mosquitto* client);
    std::optional<std::string> configureSecurity(mosquitto* client);
    std::optional<std::string> exchange(mosquitto* client);
    int readAll(mosquitto* client);
    int limit() const;
    void subscribe(mosquitto* client);
    void drainWakeUps();
    std::string reason(int result) const;

    void connected(mosquitto* client, int refusal);
    void subscribed(int request, int granted);
    void took(const mosquitto_message& message);
    void logged(const char* words);

    const MqttAddress m_address;
    const std::string m_place;
    const Secret m_secret;
    const FeedTiming m_timing;
    const UniqueFd m_wakeUp;
    std::atomic<bool> m_ending{false};

    std::mutex m_stateMutex;
    FeedState::Kind m_kind = FeedState::Starting;
    std::string m_words;

    // of the thread
    BackOff m_backOff;
    std::optional<Steady::time_point> m_acceptedAt;
    Steady::time_point m_answerBy{};
    std::optional<std::string> m_refusal;
    std::string m_lastError;    // as the library logged it
    std::uint64_t m_known = 0;  // version of the stations that the broker knows
    std::map<std::string, int> m_asked;
    std::map<int, std::string> m_requests;  // not yet answered
    std::uint64_t m_received = 0;
    bool m_connectedBefore = false;
    std::vector<std::shared_ptr<FeedOutlet>> m_found;  // kept, so that a message costs no memory
};

}  // namespace vigil
