#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host_contract/QRVAgentPlugIn.hpp"

namespace vigil {

/// A station that a test feeds and that records the scripts it is asked to run. Main thread, except
/// `properties`, `world` and `announce`.
class FakeAgent : public QRVAgentPlugIn {
  public:
    explicit FakeAgent(HostWorld& world);

    struct ScriptRun {
        std::string source;
        std::vector<std::string> arguments;
        bool hasProperty = false;
        std::optional<std::string> folder;
        int timeout = 0;
        std::shared_ptr<const Object> note;  ///< the call note while it was handed over
    };

    std::string className() const override { return "FakeAgent"; }
    HostWorld& world() override { return m_world; }
    std::shared_ptr<const Readings> properties() override;
    std::optional<SiteName> siteName() override { return m_siteName; }
    std::shared_ptr<Object> runScript(const std::string& source, const std::vector<std::string>& arguments,
                                      const AgentProperty* property, const std::optional<std::string>& folder,
                                      int timeout, std::optional<Error>& error) override;

    void setProperties(std::shared_ptr<const Readings> readings);
    void setProperties(std::vector<AgentProperty> readings);
    /// Nothing at first.
    void setSiteName(std::optional<SiteName> name) { m_siteName = std::move(name); }

    /// Makes the readings the current ones and posts the notification with them, on the calling thread.
    static std::vector<DeliveryFailure> announce(const std::shared_ptr<FakeAgent>& agent,
                                                 std::vector<AgentProperty> readings);

    std::vector<ScriptRun> scripts;
    std::shared_ptr<Object> scriptResult;  ///< what `runScript` answers
    std::optional<Error> scriptError;      ///< what `runScript` leaves behind

  private:
    HostWorld& m_world;
    std::mutex m_mutex;
    std::shared_ptr<const Readings> m_properties;
    std::optional<SiteName> m_siteName;
};

}  // namespace vigil
