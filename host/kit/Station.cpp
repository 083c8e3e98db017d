#include "host/kit/Station.hpp"

#include <stdexcept>
#include <utility>

#include "host/kit/ReadingsMerge.hpp"
#include "host/services/ScriptEnvironment.hpp"
#include "host_contract/QRVKit.hpp"
#include "host_contract/QRVPlugIn.hpp"
#include "platform/CallNote.hpp"

namespace vigil {

Station::Station(HostWorld& world, std::string name, ScriptSink& scripts)
    : m_world(world),
      m_name(std::move(name)),
      m_scripts(scripts),
      m_current(Readings::make(std::vector<AgentProperty>{})) {}

/// Ends an announcement, however it was left.
class Station::Ending {
  public:
    explicit Ending(Station& station) : m_station(station) {}
    Ending(const Ending&) = delete;
    Ending& operator=(const Ending&) = delete;
    ~Ending() { m_station.end(); }

  private:
    Station& m_station;
};

std::vector<DeliveryFailure> Station::announce(const std::shared_ptr<const Readings>& batch) {
    begin(batch);
    const Ending ending(*this);
    const World::Scope scope(m_world);
    return m_world.notificationCenter().post(
        {kAppRealTimeDataNotification, shared_from_this(), {{kDataKey, batch}}});
}

void Station::begin(const std::shared_ptr<const Readings>& batch) {
    const std::lock_guard lock(m_mutex);
    if (m_announcing) throw std::logic_error("station " + m_name + " is announcing already");
    m_current = merged(m_current, batch, kStationKeys, m_dropped);
    m_announcing = true;
}

void Station::end() {
    std::vector<std::shared_ptr<Object>> retired;
    {
        const std::lock_guard lock(m_mutex);
        m_announcing = false;
        retired.swap(m_retired);
    }
    if (retired.empty()) return;
    auto last = std::make_shared<std::vector<std::shared_ptr<Object>>>(std::move(retired));
    const bool taken = m_world.mainQueue().dispatchAsync([last] { last->clear(); });
    if (taken || m_world.mainQueue().isMainThread()) return;
    try {
        m_world.mainQueue().dispatchSync([&] { last->clear(); });
    } catch (const std::runtime_error&) {
        // The queue is closing: no main thread serves any more, and they end where they are.
    }
}

void Station::retire(std::shared_ptr<Object> plugIn) {
    const std::lock_guard lock(m_mutex);
    if (m_announcing) m_retired.push_back(std::move(plugIn));
}

void Station::setSiteName(std::optional<std::string> name) {
    m_siteName = std::move(name);
}

std::uint64_t Station::droppedReadings() const {
    const std::lock_guard lock(m_mutex);
    return m_dropped;
}

std::string Station::className() const {
    return "Station";
}

std::string Station::description() const {
    return "<Station: " + m_name + ">";
}

std::shared_ptr<const Readings> Station::properties() {
    const std::lock_guard lock(m_mutex);
    return m_current;
}

std::optional<SiteName> Station::siteName() {
    return SiteName(m_siteName ? m_siteName : m_name);
}

std::shared_ptr<Object> Station::runScript(const std::string& source,
                                           const std::vector<std::string>& arguments, const AgentProperty*,
                                           const std::optional<std::string>& folder, int timeout,
                                           std::optional<Error>& error) {
    const auto note = CallNote::current();
    const auto plugIn = std::dynamic_pointer_cast<const QRVPlugIn>(note);
    const std::string monitor = plugIn ? plugIn->title() : std::string();
    const std::string site = siteName()->stringValue().value_or("");
    ScriptRequest request{.source = source,
                          .arguments = arguments,
                          .environment = scriptEnvironment(site, monitor, *properties()),
                          .timeoutSeconds = timeout,
                          .station = m_name,
                          .monitor = monitor};
    const std::string reason = folder ? "scripts run in no folder of their own here" : whyRefused(request);
    if (reason.empty()) {
        error = m_scripts.accept(std::move(request), note);
    } else {
        m_scripts.refused(request, note, reason);
        error = Error{reason};
    }
    return nullptr;
}

}  // namespace vigil
