#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host_contract/HostWorld.hpp"
#include "host_contract/Readings.hpp"
#include "platform/Export.hpp"
#include "platform/Object.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// The display name of a station, which may be absent.
class SiteName {
  public:
    explicit SiteName(std::optional<std::string> text) : m_text(std::move(text)) {}
    const std::optional<std::string>& stringValue() const { return m_text; }

  private:
    std::optional<std::string> m_text;
};

/// A data source for one station. Archives hold it as a reference that resolves to the owner's agent.
class VIGIL_KIT QRVAgentPlugIn : public Object {
  public:
    /// The world in which the station lives. Any thread.
    virtual HostWorld& world() = 0;

    /// The current readings, one a key; swapped whole when they change. Never absent. Any thread.
    virtual std::shared_ptr<const Readings> properties() = 0;

    /// Main thread.
    virtual std::optional<SiteName> siteName() = 0;

    /// Runs the text of a script with arguments, as the station's own; may return before it has ended.
    /// `property` and `folder` are absent; `timeout` is in seconds; `error` is filled when the script cannot
    /// be handed over at all. Main thread. (Keyword form:
    /// runScript:arguments:forProperty:inFolder:timeout:error:)
    virtual std::shared_ptr<Object> runScript(const std::string& source,
                                              const std::vector<std::string>& arguments,
                                              const AgentProperty* property,
                                              const std::optional<std::string>& folder, int timeout,
                                              std::optional<Error>& error) = 0;
};

}  // namespace vigil
