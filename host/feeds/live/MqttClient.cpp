#include "host/feeds/live/MqttClient.hpp"

#include <utility>

#include "host/feeds/live/MqttClient_Session.hpp"

namespace vigil {

MqttClient::MqttClient(MqttAddress address, Secret secret, FeedTiming timing)
    : m_session(std::make_shared<Session>(std::move(address), std::move(secret), timing)),
      m_thread("feed-mqtt", [session = m_session] { session->run(); }) {}

MqttClient::~MqttClient() {
    if (m_endBy == decltype(m_endBy){}) m_endBy = std::chrono::steady_clock::now() + kLongestEnd;
    m_session->askToEnd();
    m_thread.endBy(m_endBy);
}

Result<Done> MqttClient::add(std::shared_ptr<FeedOutlet> outlet, const std::string& topic, int qos) {
    if (::mosquitto_sub_topic_check(topic.c_str()) != MOSQ_ERR_SUCCESS)
        return Error{"feed: \"" + topic +
                     "\" is no topic; + stands for one whole level, # for all further ones"};
    m_session->tellNewcomer(*outlet);
    m_session->stations.add(std::move(outlet), topic, qos);
    m_session->wake();
    return Done{};
}

void MqttClient::remove(const FeedOutlet& outlet) {
    m_session->stations.remove(outlet);
    m_session->wake();
}

void MqttClient::askToEndIfIdle() {
    if (!m_session->stations.empty()) return;
    m_endBy = std::chrono::steady_clock::now() + kLongestEnd;
    m_session->askToEnd();
}

}  // namespace vigil
