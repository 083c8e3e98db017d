// Plug-ins that each break one rule of the contract.
#include <array>
#include <cmath>
#include <stdexcept>

#include "host_contract/Module.hpp"
#include "host_contract/QRVKit.hpp"
#include "host_contract/QRVPlugIn.hpp"
#include "platform/ClassRegistry.hpp"
#include "platform/KeyedCoder.hpp"

namespace vigil {
namespace {

class Listener : public QRVPlugIn {
  public:
    std::shared_ptr<Object> start() override {
        const auto self = std::static_pointer_cast<Listener>(shared_from_this());
        agent()->world().notificationCenter().addObserver(self, &Listener::heard,
                                                          kAppRealTimeDataNotification, agent());
        return QRVPlugIn::start();
    }
    std::shared_ptr<Object> stop() override {
        agent()->world().notificationCenter().removeObserver(*this, kAppRealTimeDataNotification, agent());
        return QRVPlugIn::stop();
    }
    virtual void heard(const Notification&) {}
};

class Eavesdropper : public Listener {
  public:
    std::string className() const override { return "Eavesdropper"; }
    std::shared_ptr<Object> stop() override { return QRVPlugIn::stop(); }
};

class Forgetful : public Listener {
  public:
    std::string className() const override { return "Forgetful"; }
    void encodeWithCoder(KeyedEncoder& coder) const override {
        Listener::encodeWithCoder(coder);
        coder.encodeNumber("heard", Number(m_heard));
    }
    void heard(const Notification&) override { ++m_heard; }

  private:
    int m_heard = 0;  // written and never read back
};

class Touchy : public Listener {
  public:
    std::string className() const override { return "Touchy"; }
    void heard(const Notification& notification) override {
        const auto batch = std::dynamic_pointer_cast<const Readings>(notification.userInfoForKey(kDataKey));
        for (const AgentProperty& reading : batch->entries())
            if (std::isnan(reading.value())) throw std::domain_error("not a number");
    }
};

class Misnamed : public Listener {
  public:
    std::string className() const override { return "Somebody"; }
};

}  // namespace
}  // namespace vigil

extern "C" VIGIL_KIT const vigil::ModuleTable* vigilPlugInModule() {
    using namespace vigil;
    static constexpr std::array<ModuleClass, 4> classes = {{{"Eavesdropper", &makeObject<Eavesdropper>},
                                                            {"Forgetful", &makeObject<Forgetful>},
                                                            {"Touchy", &makeObject<Touchy>},
                                                            {"Misnamed", &makeObject<Misnamed>}}};
    static constexpr ModuleTable table = {kContractMajor, kContractMinor, VIGIL_ABI, classes.data(),
                                          classes.size()};
    return &table;
}
