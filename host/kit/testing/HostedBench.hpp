#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/kit/HostedPlugIn.hpp"
#include "host/kit/RecordedScripts.hpp"
#include "host/kit/Station.hpp"
#include "host_contract/QRVKit.hpp"
#include "platform/InterfaceOwner.hpp"
#include "tests/support/FakeWorld.hpp"

// What tests of hosted plug-ins share.

namespace vigil {

/// A monitor that only notes what is asked of it, in the manner of a real one: it listens from a start to a
/// stop that each find it switched on.
class HostedMonitor : public QRVPlugIn, public InterfaceOwner {
  public:
    std::string className() const override { return "HostedTestMonitor"; }
    InterfaceOwner* interfaceOwner() override { return hasSwitch ? this : nullptr; }
    const InterfaceTable& interfaceTable() const override {
        static const InterfaceTable table{
            {{"evaluating",
              [](InterfaceOwner& owner) { return Value(static_cast<HostedMonitor&>(owner).on); },
              [](InterfaceOwner& owner, const Value& value) {
                  auto& self = static_cast<HostedMonitor&>(owner);
                  self.calls.push_back("set");
                  return self.takesSwitch && (self.on = *value.as<bool>(), true);
              }}},
            {},
            {}};
        return table;
    }
    void didLoad() override {
        if (throwsOnLoad) throw std::runtime_error("no place");
    }
    std::shared_ptr<Object> start() override {
        note("start");
        if (throwsOnStart) throw std::runtime_error("no luck");
        if (auto obstacle = QRVPlugIn::start()) return obstacle;
        if (on)
            agent()->world().notificationCenter().addObserver(
                std::static_pointer_cast<HostedMonitor>(shared_from_this()), &HostedMonitor::heard,
                kAppRealTimeDataNotification, agent());
        return nullptr;
    }
    std::shared_ptr<Object> stop() override {
        note("stop");
        if (throwsOnStop) throw std::runtime_error("stuck");
        if (auto obstacle = QRVPlugIn::stop()) return obstacle;
        if (on)
            agent()->world().notificationCenter().removeObserver(*this, kAppRealTimeDataNotification,
                                                                 agent());
        return nullptr;
    }
    void willUnload() override {
        note("willUnload");
        if (throwsOnUnload) throw std::runtime_error("no end");
    }
    void heard(const Notification&) {
        ++fires;
        if (throws) throw std::out_of_range("row 3");
    }
    void note(const std::string& call) {
        calls.push_back(call + (on ? " on" : " off") + (World::current() ? "" : " without a world"));
    }

    bool on = true, hasSwitch = true, takesSwitch = true, throws = false, throwsOnStop = false,
         throwsOnStart = false, throwsOnLoad = false, throwsOnUnload = false;
    int fires = 0;
    std::vector<std::string> calls;
};

class HostedPlugInTest : public testing::Test {
  protected:
    std::shared_ptr<HostedMonitor> monitor(const std::string& title) {
        auto made = makePlugIn<HostedMonitor>(station, nullptr);
        made->setTitle(title);
        return made;
    }
    std::vector<DeliveryFailure> announce() {
        return station->announce(Readings::make({AgentProperty::number("a", 1, std::nullopt)}));
    }

    FakeWorld world;
    RecordedScripts scripts{world};
    std::shared_ptr<Station> station = std::make_shared<Station>(world, "roof", scripts);
    std::shared_ptr<HostedMonitor> plugIn = monitor("Storm");
    HostedPlugIn hosted{world, plugIn};
};

}  // namespace vigil
