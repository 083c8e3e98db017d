#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "host/feeds/live/FeedOutlet.hpp"
#include "host/feeds/live/FeedTiming.hpp"
#include "host/feeds/live/NamedThread.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// A broker, and as whom we go there: stations with the same one share a client.
struct MqttAddress {
    std::string host;
    std::uint16_t port = 1883;
    bool isSecure = false;  ///< TLS; the broker has to show a certificate of its name
    std::string ca{};       ///< file with the certificates that are trusted; empty: those of the system
    std::string user{};
    std::string secret{};  ///< name of the password; empty: none
    std::string client{};  ///< what it is called at the broker; empty: by chance, new each time

    friend auto operator<=>(const MqttAddress&, const MqttAddress&) = default;
};

/// A client of one broker, which brings the messages to the stations of their topics. It goes there again and
/// again as long as the broker is not there, refuses or has gone, and then asks for all topics anew. What was
/// sent meanwhile is lost, apart from what the broker retained. It has a thread of its own, which all sinks
/// are called on.
class MqttClient {
  public:
    using Secret = std::function<std::optional<std::string>(const std::string& name)>;

    /// Begins to connect.
    MqttClient(MqttAddress address, Secret secret, FeedTiming timing);
    MqttClient(const MqttClient&) = delete;
    MqttClient& operator=(const MqttClient&) = delete;
    /// Ends its thread. One that waits for the system to look up a name is left to end by itself, and reaches
    /// nobody any more.
    ~MqttClient();

    /// The thread that adds feeds. An error for a topic that is none.
    Result<Done> add(std::shared_ptr<FeedOutlet> outlet, const std::string& topic, int qos);
    void remove(const FeedOutlet& outlet);
    /// Begins to end where it has no station left.
    void askToEndIfIdle();

    /// A message of more bytes is left out.
    static constexpr int kLongestMessage = 1 << 20;
    /// So long the destructor waits.
    static constexpr std::chrono::milliseconds kLongestEnd{700};

  private:
    class Session;
    std::shared_ptr<Session> m_session;  // shared with the thread
    NamedThread m_thread;
    std::chrono::steady_clock::time_point m_endBy{};
};

}  // namespace vigil
