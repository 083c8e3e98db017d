#include "tests/desktop/ReplayedFires.hpp"

#include <gtest/gtest.h>

#include "conditions/ConditionPredicate.hpp"
#include "host/kit/InterfaceFile.hpp"
#include "host/kit/RecordedScripts.hpp"
#include "host/kit/ReplayWorld.hpp"
#include "host/kit/Station.hpp"
#include "host_contract/CycleObserver.hpp"
#include "host_contract/QRVPlugIn.hpp"
#include "platform/ClassRegistry.hpp"
#include "platform/InterfaceOwner.hpp"
#include "tests/support/RecordingLog.hpp"

namespace vigil::test {
namespace {

/// A monitor of the built module, replayed.
class Replayed : public CycleObserver {
  public:
    Replayed(const std::string& condition, const ScanRule& rule)
        : m_scripts(m_world), m_station(std::make_shared<Station>(m_world, "Roof", m_scripts)) {
        const World::Scope scope(m_world);
        m_monitor = std::dynamic_pointer_cast<QRVPlugIn>(ClassRegistry::shared().make("QRVVigilPlugIn"));
        m_monitor->initWithAgent(m_station, nullptr);
        InterfaceOwner& owner = *m_monitor->interfaceOwner();
        const auto set = [&](const char* name, const Value& value) {
            return owner.propertyNamed(name)->set(owner, value);
        };
        const auto parsed = ConditionPredicate::predicateWithFormat(condition).value();
        EXPECT_TRUE(set("predicate", Value(std::static_pointer_cast<Object>(parsed))));
        EXPECT_TRUE(set("retriggerInterval", Value(rule.retriggerMinutes)));
        EXPECT_TRUE(set("triggerOnlyOnChange", Value(rule.onlyOnChange)));
        EXPECT_TRUE(set("evaluating", Value(true)));
    }
    /// The observer is the monitor's while it is stopped.
    static std::vector<double> fires(const std::string& condition, const ScanRule& rule,
                                     const Announced& batches) {
        const auto replayed = std::make_shared<Replayed>(condition, rule);
        const World::Scope scope(replayed->m_world);
        replayed->m_monitor->cycleReporting()->setCycleObserver(replayed);
        EXPECT_EQ(replayed->m_monitor->start(), nullptr);
        for (const auto& [when, readings] : batches) {
            replayed->m_world.turnTo(when);
            replayed->m_now = when;
            EXPECT_TRUE(replayed->m_station->announce(readings).empty());
        }
        replayed->m_monitor->stop();
        replayed->m_monitor->cycleReporting()->setCycleObserver(nullptr);
        return replayed->m_fires;
    }
    void cycleEnded(const Object&, const CycleReport& report) override {
        if (report.outcome == CycleOutcome::Fired) m_fires.push_back(m_now.secondsSinceReference());
    }

  private:
    RecordingLog m_log;
    InterfaceFile m_files;
    ReplayWorld m_world{m_log, m_files, ""};
    RecordedScripts m_scripts;
    std::shared_ptr<Station> m_station;
    std::shared_ptr<QRVPlugIn> m_monitor;
    Date m_now;
    std::vector<double> m_fires;
};

}  // namespace

std::vector<double> replayedFires(const std::string& condition, const ScanRule& rule,
                                  const Announced& batches) {
    return Replayed::fires(condition, rule, batches);
}

}  // namespace vigil::test
