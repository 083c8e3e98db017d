#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <utility>

#include <poll.h>
#include <sys/socket.h>

#include "host/feeds/live/MqttClient_Session.hpp"

namespace vigil {

// Until the connection ends, or we shall; gives why.
std::string MqttClient::Session::serveConnected(mosquitto* client) {
    while (!m_ending) {
        if (m_acceptedAt && m_known != stations.version()) subscribe(client);
        if (auto why = exchange(client)) return *why;
        if (m_refusal) return *m_refusal;
        if (!m_acceptedAt && Steady::now() >= m_answerBy)
            return "no answer within " + inWords(m_timing.connect);
    }
    ::mosquitto_disconnect(client);
    ::mosquitto_loop_write(client, 1);
    return {};
}

// Waits for something and does it; gives why the connection is over.
std::optional<std::string> MqttClient::Session::exchange(mosquitto* client) {
    const int socket = ::mosquitto_socket(client);
    const auto wanted = static_cast<short>(::mosquitto_want_write(client) ? POLLIN | POLLOUT : POLLIN);
    pollfd fds[2] = {{m_wakeUp.get(), POLLIN, 0}, {socket, wanted, 0}};
    ::poll(fds, 2, limit());
    if (fds[0].revents != 0) drainWakeUps();
    if ((fds[1].revents & POLLERR) != 0) {
        int failed = 0;
        socklen_t size = sizeof failed;
        ::getsockopt(socket, SOL_SOCKET, SO_ERROR, &failed, &size);
        if (failed != 0) return std::strerror(failed);
    }
    int result = MOSQ_ERR_SUCCESS;
    if ((fds[1].revents & (POLLIN | POLLHUP)) != 0) result = readAll(client);
    if (result == MOSQ_ERR_SUCCESS && (fds[1].revents & POLLOUT) != 0)
        result = ::mosquitto_loop_write(client, 1);
    if (result == MOSQ_ERR_SUCCESS) result = ::mosquitto_loop_misc(client);
    if (result == MOSQ_ERR_SUCCESS) return std::nullopt;
    return m_refusal ? *m_refusal : reason(result);
}

// As many messages as there are, up to a bound; asking the system each time would cost as much as the
// reading.
int MqttClient::Session::readAll(mosquitto* client) {
    constexpr int kMessagesATurn = 64;
    for (int i = 0; i < kMessagesATurn; ++i) {
        const std::uint64_t before = m_received;
        const int result = ::mosquitto_loop_read(client, 1);
        if (result != MOSQ_ERR_SUCCESS || m_received == before) return result;
    }
    return MOSQ_ERR_SUCCESS;
}

// The library notices a silent broker when it is called, so that is once in a while.
int MqttClient::Session::limit() const {
    using Milliseconds = FeedTiming::Milliseconds;
    const Milliseconds seldom = std::chrono::duration_cast<Milliseconds>(m_timing.keepAlive) / 4;
    if (m_acceptedAt) return static_cast<int>(seldom.count());
    const auto left = std::chrono::ceil<Milliseconds>(m_answerBy - Steady::now());
    return static_cast<int>(std::clamp(left, Milliseconds(0), seldom).count());
}

void MqttClient::Session::subscribe(mosquitto* client) {
    const MqttStations::Wanted wanted = stations.wanted(m_known);
    m_known = wanted.version;
    for (const auto& [topic, qos] : m_asked)
        if (!wanted.topics.contains(topic)) ::mosquitto_unsubscribe(client, nullptr, topic.c_str());
    for (const std::string& topic : wanted.fresh) {
        int request = 0;
        // a failure is of the connection, and the next exchange finds it
        if (::mosquitto_subscribe(client, &request, topic.c_str(), wanted.topics.at(topic)) ==
            MOSQ_ERR_SUCCESS)
            m_requests[request] = topic;
    }
    m_asked = wanted.topics;
}

void MqttClient::Session::connected(mosquitto*, int refusal) {
    if (refusal != 0) {
        m_refusal = ::mosquitto_connack_string(refusal);
        return;
    }
    m_acceptedAt = Steady::now();
    if (std::exchange(m_connectedBefore, true))
        for (const auto& outlet : stations.all())
            outlet->restarted();
    tellAll(FeedState::Starting, {});  // live is who has its topic
    const std::lock_guard lock(m_stateMutex);
    m_kind = FeedState::Live;
}

void MqttClient::Session::subscribed(int request, int granted) {
    const auto found = m_requests.find(request);
    if (found == m_requests.end()) return;
    constexpr int kRefused = 128;
    if (granted >= kRefused)
        stations.tell(found->second, FeedState::Failed,
                      "the broker at " + m_place + " does not allow the topic \"" + found->second + "\"");
    else
        stations.tell(found->second, FeedState::Live, {});
    m_requests.erase(found);
}

void MqttClient::Session::took(const mosquitto_message& message) {
    ++m_received;
    const std::string topic = message.topic;
    stations.find(topic, m_found);
    for (const auto& outlet : m_found) {
        if (message.payloadlen > kLongestMessage) {
            outlet->leftOut(FeedOutlet::LeftOut::TooLong, "a message of \"" + topic + "\" of more than " +
                                                              std::to_string(kLongestMessage) +
                                                              " bytes; left out");
            continue;
        }
        RawMessage brought;
        brought.route = topic;
        brought.payload.assign(static_cast<const char*>(message.payload),
                               static_cast<std::size_t>(message.payloadlen));
        brought.retained = message.retain;
        outlet->arrived(std::move(brought));
    }
    m_found.clear();
}

// "OpenSSL Error[0]: error:0A000086:SSL routines::certificate verify failed": what people need is the end.
void MqttClient::Session::logged(const char* words) {
    const std::string_view all = words;
    const std::size_t last = all.rfind(':');
    m_lastError = last == std::string_view::npos ? all : all.substr(last + 1);
    m_lastError.erase(0, m_lastError.find_first_not_of(' '));
}

}  // namespace vigil
