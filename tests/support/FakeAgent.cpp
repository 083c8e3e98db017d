#include "tests/support/FakeAgent.hpp"

#include <utility>

#include "host_contract/QRVKit.hpp"
#include "platform/CallNote.hpp"

namespace vigil {

FakeAgent::FakeAgent(HostWorld& world)
    : m_world(world), m_properties(Readings::make(std::vector<AgentProperty>{})) {}

std::shared_ptr<const Readings> FakeAgent::properties() {
    const std::lock_guard lock(m_mutex);
    return m_properties;
}

std::shared_ptr<Object> FakeAgent::runScript(const std::string& source,
                                             const std::vector<std::string>& arguments,
                                             const AgentProperty* property,
                                             const std::optional<std::string>& folder, int timeout,
                                             std::optional<Error>& error) {
    scripts.push_back({source, arguments, property != nullptr, folder, timeout, CallNote::current()});
    error = scriptError;
    return scriptResult;
}

void FakeAgent::setProperties(std::shared_ptr<const Readings> readings) {
    const std::lock_guard lock(m_mutex);
    m_properties = std::move(readings);
}

void FakeAgent::setProperties(std::vector<AgentProperty> readings) {
    setProperties(Readings::make(std::move(readings)));
}

std::vector<DeliveryFailure> FakeAgent::announce(const std::shared_ptr<FakeAgent>& agent,
                                                 std::vector<AgentProperty> readings) {
    const auto batch = Readings::make(std::move(readings));
    agent->setProperties(batch);
    const World::Scope scope(agent->world());
    return agent->world().notificationCenter().post(
        {kAppRealTimeDataNotification, agent, {{kDataKey, batch}}});
}

}  // namespace vigil
