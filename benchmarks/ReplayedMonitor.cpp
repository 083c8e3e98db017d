#include "benchmarks/ReplayedMonitor.hpp"

#include <cstdlib>

#include "conditions/ConditionPredicate.hpp"
#include "platform/ClassRegistry.hpp"
#include "platform/InterfaceOwner.hpp"

namespace vigil::bench {

class ReplayedMonitor::Fires : public CycleObserver {
  public:
    explicit Fires(ReplayWorld& world) : m_world(world) {}
    void cycleEnded(const Object&, const CycleReport& report) override {
        if (report.outcome == CycleOutcome::Fired) all.push_back(m_world.now().secondsSinceReference());
    }

    std::vector<double> all;

  private:
    ReplayWorld& m_world;
};

ReplayedMonitor::ReplayedMonitor(const std::string& condition, double minutes, bool onlyOnChange)
    : m_fires(std::make_shared<Fires>(m_world)) {
    const World::Scope scope(m_world);
    m_monitor = std::dynamic_pointer_cast<QRVPlugIn>(ClassRegistry::shared().make("QRVVigilPlugIn"));
    if (!m_monitor || !m_monitor->initWithAgent(m_station, nullptr)) std::abort();
    InterfaceOwner& owner = *m_monitor->interfaceOwner();
    const auto set = [&](const char* name, const Value& value) {
        if (!owner.propertyNamed(name)->set(owner, value)) std::abort();
    };
    set("predicate",
        Value(std::static_pointer_cast<Object>(ConditionPredicate::predicateWithFormat(condition).value())));
    set("retriggerInterval", Value(minutes));
    set("triggerOnlyOnChange", Value(onlyOnChange));
    set("evaluating", Value(true));
    m_monitor->cycleReporting()->setCycleObserver(m_fires);
    if (m_monitor->start()) std::abort();
}

ReplayedMonitor::~ReplayedMonitor() {
    const World::Scope scope(m_world);
    m_monitor->stop();
}

void ReplayedMonitor::show(Date when, const std::shared_ptr<const Readings>& batch) {
    m_world.turnTo(when);
    if (!m_station->announce(batch).empty()) std::abort();
}

const std::vector<double>& ReplayedMonitor::fires() const {
    return m_fires->all;
}

}  // namespace vigil::bench
