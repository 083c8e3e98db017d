#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host_contract/AgentProperty.hpp"
#include "tests/laws/RandomMonitor.hpp"

namespace vigil::test {

/// What a monitor does with a notification, found out in the simplest way there is: every reading copied,
/// every text built at once, the condition read anew each time. Shares no code with the module but the
/// printing of dates.
class NaiveMonitor {
  public:
    explicit NaiveMonitor(const RandomMonitor::Settings& settings);

    /// The picture of the cycle.
    std::string notify(Date now, const std::vector<AgentProperty>& readings);

  private:
    bool counts(const AgentProperty& reading) const;

    RandomMonitor::Settings m_settings;
    std::optional<Date> m_next;
    std::string m_status = "Check Activate to start.";
    std::map<std::string, AgentProperty> m_snapshot;
    bool m_hasSnapshot = false;
};

}  // namespace vigil::test
