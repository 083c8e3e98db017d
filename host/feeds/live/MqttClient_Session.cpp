#include "host/feeds/live/MqttClient_Session.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

// How the thread of a client goes to its broker, again and again. What it does there is in
// MqttClient_Exchange.cpp.

namespace vigil {
namespace {

void useLibrary() {
    // once a process, when the first client begins; it is never taken back, since a thread may be left in it
    static const int used = ::mosquitto_lib_init();
    static_cast<void>(used);
}

struct Destroy {
    void operator()(mosquitto* client) const { ::mosquitto_destroy(client); }
};

std::string placeOf(const MqttAddress& address) {
    const bool six = address.host.find(':') != std::string::npos;
    return (six ? "[" + address.host + "]" : address.host) + ":" + std::to_string(address.port);
}

}  // namespace

MqttClient::Session::Session(MqttAddress address, Secret secret, FeedTiming timing)
    : m_address(std::move(address)),
      m_place(placeOf(m_address)),
      m_secret(std::move(secret)),
      m_timing(timing),
      m_wakeUp(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      m_backOff(timing.retryFirst, timing.retryMost, timing.settled) {}

void MqttClient::Session::wake() {
    const std::uint64_t once = 1;
    // fails only when the count is full, and then it is set
    [[maybe_unused]] const ssize_t written = ::write(m_wakeUp.get(), &once, sizeof once);
}

void MqttClient::Session::askToEnd() {
    m_ending = true;
    wake();
}

void MqttClient::Session::tellNewcomer(FeedOutlet& outlet) {
    const std::lock_guard lock(m_stateMutex);
    // its topic has still to be asked for
    outlet.state(m_kind == FeedState::Live ? FeedState::Starting : m_kind, m_words);
}

void MqttClient::Session::tellAll(FeedState::Kind kind, const std::string& words) {
    {
        const std::lock_guard lock(m_stateMutex);
        m_kind = kind;
        m_words = words;
    }
    stations.tellAll(kind, words);
}

void MqttClient::Session::run() {
    useLibrary();
    while (!m_ending) {
        m_acceptedAt.reset();
        const std::string why = serve();
        if (m_ending) return;
        const auto now = Steady::now();
        const auto pause = m_backOff.failedAfter(m_acceptedAt ? now - *m_acceptedAt : Steady::duration(0));
        tellAll(FeedState::Retrying,
                "the broker at " + m_place + ": " + why + "; tried again in " + inWords(pause));
        rest(pause);
    }
}

void MqttClient::Session::rest(FeedTiming::Milliseconds pause) {
    const auto until = Steady::now() + pause;
    while (!m_ending) {
        const auto left = std::chrono::ceil<FeedTiming::Milliseconds>(until - Steady::now()).count();
        if (left <= 0) return;
        pollfd wakeUp{m_wakeUp.get(), POLLIN, 0};
        ::poll(&wakeUp, 1, static_cast<int>(left));
        drainWakeUps();
    }
}

void MqttClient::Session::drainWakeUps() {
    std::uint64_t count = 0;
    // fails only when nobody has set it
    [[maybe_unused]] const ssize_t taken = ::read(m_wakeUp.get(), &count, sizeof count);
}

// One connection from its beginning to its end; gives why it ended.
std::string MqttClient::Session::serve() {
    m_refusal.reset();
    m_lastError.clear();
    m_known = 0;
    m_asked.clear();
    m_requests.clear();
    const char* name = m_address.client.empty() ? nullptr : m_address.client.c_str();
    const std::unique_ptr<mosquitto, Destroy> client(::mosquitto_new(name, /*clean_session=*/true, this));
    if (!client) return std::strerror(errno);
    if (auto wrong = configure(client.get())) return *wrong;
    m_answerBy = Steady::now() + m_timing.connect;
    const int keepAlive = static_cast<int>(m_timing.keepAlive.count());
    // does not wait for the broker, but for the system while it looks up the name
    const int result =
        ::mosquitto_connect_async(client.get(), m_address.host.c_str(), m_address.port, keepAlive);
    if (result != MOSQ_ERR_SUCCESS && result != MOSQ_ERR_CONN_PENDING)
        return (result == MOSQ_ERR_TLS && !m_address.ca.empty() ? m_address.ca + ": " : "") + reason(result);
    if (m_ending) return {};
    return serveConnected(client.get());
}

std::optional<std::string> MqttClient::Session::configure(mosquitto* client) {
    if (!m_wakeUp) return "the system has no descriptors left";
    ::mosquitto_connect_callback_set(client, [](mosquitto* at, void* self, int refusal) {
        static_cast<Session*>(self)->connected(at, refusal);
    });
    ::mosquitto_subscribe_callback_set(
        client, [](mosquitto*, void* self, int request, int count, const int* granted) {
            static_cast<Session*>(self)->subscribed(request, count > 0 ? granted[0] : 128);
        });
    ::mosquitto_message_callback_set(client, [](mosquitto*, void* self, const mosquitto_message* message) {
        static_cast<Session*>(self)->took(*message);
    });
    ::mosquitto_log_callback_set(client, [](mosquitto*, void* self, int level, const char* words) {
        if (level == MOSQ_LOG_ERR) static_cast<Session*>(self)->logged(words);
    });
    ::mosquitto_int_option(client, MOSQ_OPT_TCP_NODELAY, 1);
    if (!m_address.user.empty() || !m_address.secret.empty()) {
        std::optional<std::string> password;
        if (!m_address.secret.empty()) {
            if (m_secret) password = m_secret(m_address.secret);
            if (!password) return "there is no secret named \"" + m_address.secret + "\"";
        }
        ::mosquitto_username_pw_set(client, m_address.user.c_str(), password ? password->c_str() : nullptr);
    }
    return m_address.isSecure ? configureSecurity(client) : std::nullopt;
}

std::optional<std::string> MqttClient::Session::configureSecurity(mosquitto* client) {
    if (m_address.ca.empty()) {
        ::mosquitto_int_option(client, MOSQ_OPT_TLS_USE_OS_CERTS, 1);
        return std::nullopt;
    }
    const char* file = m_address.ca.c_str();
    if (::access(file, R_OK) != 0) return m_address.ca + ": " + std::strerror(errno);
    const int result = ::mosquitto_tls_set(client, file, nullptr, nullptr, nullptr, nullptr);
    if (result != MOSQ_ERR_SUCCESS) return m_address.ca + ": " + ::mosquitto_strerror(result);
    return std::nullopt;
}

std::string MqttClient::Session::reason(int result) const {
    const int failed = errno;
    if (!m_lastError.empty()) return m_lastError;
    if (result == MOSQ_ERR_ERRNO) return std::strerror(failed);
    if (result == MOSQ_ERR_EAI) return "its name cannot be looked up";
    return ::mosquitto_strerror(result);
}

}  // namespace vigil
