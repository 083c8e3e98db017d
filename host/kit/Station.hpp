#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "host/kit/ScriptSink.hpp"
#include "host_contract/QRVAgentPlugIn.hpp"

namespace vigil {

/// Keys that a station keeps. A feed whose keys change without end would otherwise fill the memory.
inline constexpr std::size_t kStationKeys = 512;

/// A station as its plug-ins see it. Made as a shared object.
class Station : public QRVAgentPlugIn, public std::enable_shared_from_this<Station> {
  public:
    /// World and scripts are the caller's and outlive the station. `name` is its name inside the site, and
    /// what people read, too, unless a site name is set.
    Station(HostWorld& world, std::string name, ScriptSink& scripts);

    /// Makes the batch the station's news: the current readings take it over (of each key the last one), and
    /// whoever observes the station hears of it before this returns, on the calling thread, with the
    /// station's world open. Gives what observers threw. One call at a time: a second one meanwhile is a
    /// broken promise of the feed's, std::logic_error. Any thread.
    [[nodiscard]] std::vector<DeliveryFailure> announce(const std::shared_ptr<const Readings>& batch);

    /// Drops a plug-in of this station for good: now, or, while a batch is under way, when that has ended, so
    /// that no other thread has the last word on its life. Main thread.
    void retire(std::shared_ptr<Object> plugIn);

    const std::string& name() const { return m_name; }
    /// Main thread.
    void setSiteName(std::optional<std::string> name);
    /// Readings that were not kept since all places were taken. Any thread.
    std::uint64_t droppedReadings() const;

    std::string className() const override;
    std::string description() const override;
    HostWorld& world() override { return m_world; }
    std::shared_ptr<const Readings> properties() override;
    std::optional<SiteName> siteName() override;
    /// The script learns of the current readings by its environment. An error when a folder is given or the
    /// request is none (`whyRefused`).
    std::shared_ptr<Object> runScript(const std::string& source, const std::vector<std::string>& arguments,
                                      const AgentProperty* property, const std::optional<std::string>& folder,
                                      int timeout, std::optional<Error>& error) override;

  private:
    class Ending;
    void begin(const std::shared_ptr<const Readings>& batch);
    void end();

    HostWorld& m_world;
    const std::string m_name;
    ScriptSink& m_scripts;
    std::optional<std::string> m_siteName;  // main thread

    mutable std::mutex m_mutex;
    std::shared_ptr<const Readings> m_current;
    std::vector<std::shared_ptr<Object>> m_retired;
    std::uint64_t m_dropped = 0;
    bool m_announcing = false;
};

}  // namespace vigil
