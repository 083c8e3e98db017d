#include "host/command/Explainer.hpp"

#include <stdexcept>

#include "host/command/MonitorDraft.hpp"
#include "host/kit/MonitorModule.hpp"

namespace vigil {

const char* failureName(Explanation::Failure failure) {
    switch (failure) {
        case Explanation::Failure::Range:
            return "range";
        case Explanation::Failure::Parse:
            return "parse";
        case Explanation::Failure::None:
            break;
    }
    return nullptr;
}

class Explainer::SilentLog : public QRVLog {
  public:
    void logLevel(int, std::string_view) override {}
    bool takesLevel(int) const override { return false; }
};

/// A station that has what it is given and does nothing. One thread.
class Explainer::Station : public QRVAgentPlugIn {
  public:
    explicit Station(HostWorld& world) : m_world(world) {}

    std::string className() const override { return "ExplainedStation"; }
    HostWorld& world() override { return m_world; }
    std::shared_ptr<const Readings> properties() override { return m_readings; }
    std::optional<SiteName> siteName() override { return std::nullopt; }
    std::shared_ptr<Object> runScript(const std::string&, const std::vector<std::string>&,
                                      const AgentProperty*, const std::optional<std::string>&, int,
                                      std::optional<Error>& error) override {
        error = Error{"nothing is run while a condition is explained"};
        return nullptr;
    }
    void setReadings(std::shared_ptr<const Readings> readings) { m_readings = std::move(readings); }

  private:
    HostWorld& m_world;
    std::shared_ptr<const Readings> m_readings = Readings::make(std::vector<AgentProperty>());
};

Explainer::Explainer()
    : m_log(std::make_unique<SilentLog>()),
      m_world(*m_log, m_interfaceFiles, /*scriptsFolder=*/""),
      m_station(std::make_shared<Station>(m_world)) {}

Explainer::~Explainer() = default;

Result<std::unique_ptr<Explainer>> Explainer::make(const std::string& programFolder) {
    if (const auto loaded = loadMonitorModule(programFolder); !loaded) return loaded.error();
    std::unique_ptr<Explainer> made(new Explainer);
    if (const auto connected = made->connect(); !connected) return connected.error();
    return made;
}

Result<Done> Explainer::connect() {
    MonitorDraft draft;
    draft.condition = "a.unitValue == 0";  // replaced before every question
    auto monitor = monitorFromArchive(archiveText(draft), m_station);
    if (!monitor) return monitor.error();
    m_monitor = std::move(monitor).value();
    m_owner = m_monitor->interfaceOwner();
    if (m_owner) {
        m_predicate = m_owner->propertyNamed("predicate");
        m_explain = m_owner->actionNamed("determineWhatPartOfPredicateCauseAlert");
    }
    if (!m_predicate || !m_predicate->set || !m_explain)
        return Error{"the monitor of this module does not explain its condition"};
    return Done{};
}

Explanation Explainer::explain(const std::shared_ptr<ConditionPredicate>& condition,
                               const std::shared_ptr<const Readings>& readings) {
    m_station->setReadings(readings);
    const World::Scope scope(m_world);
    m_predicate->set(*m_owner, Value(std::static_pointer_cast<Object>(condition)));
    Explanation answer;
    try {
        m_explain->perform(*m_owner, nullptr);
    } catch (const std::out_of_range&) {
        answer.failure = Explanation::Failure::Range;
    } catch (const std::invalid_argument&) {
        answer.failure = Explanation::Failure::Parse;
    }
    answer.status = statusText(*m_monitor);
    return answer;
}

}  // namespace vigil
