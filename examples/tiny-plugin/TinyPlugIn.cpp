#include <atomic>

#include "host_contract/Module.hpp"
#include "host_contract/QRVKit.hpp"
#include "host_contract/QRVPlugIn.hpp"
#include "platform/ClassRegistry.hpp"
#include "platform/KeyedCoder.hpp"

using namespace vigil;

/// Counts the notifications of its station while it is started.
class TinyCounter : public QRVPlugIn {
  public:
    std::string className() const override { return "TinyCounter"; }
    std::string textDescription() const override { return std::to_string(m_count.load()) + " notifications"; }

    std::shared_ptr<Object> start() override {
        const auto self = std::static_pointer_cast<TinyCounter>(shared_from_this());
        agent()->world().notificationCenter().addObserver(self, &TinyCounter::heard,
                                                          kAppRealTimeDataNotification, agent());
        return QRVPlugIn::start();
    }
    std::shared_ptr<Object> stop() override {
        agent()->world().notificationCenter().removeObserver(*this, kAppRealTimeDataNotification, agent());
        return QRVPlugIn::stop();
    }

    bool initWithCoder(KeyedDecoder& coder) override {
        if (!QRVPlugIn::initWithCoder(coder)) return false;
        m_count = coder.decodeNumber("count").value_or(0).integerValue();
        return true;
    }
    void encodeWithCoder(KeyedEncoder& coder) const override {
        QRVPlugIn::encodeWithCoder(coder);
        coder.encodeNumber("count", Number(m_count.load()));
    }

  private:
    void heard(const Notification&) { ++m_count; }

    std::atomic<std::int64_t> m_count{0};  // heard on the host's thread, read on the main thread
};

extern "C" VIGIL_KIT const ModuleTable* vigilPlugInModule() {
    static constexpr ModuleClass classes[] = {{"TinyCounter", &makeObject<TinyCounter>}};
    static constexpr ModuleTable table{kContractMajor, kContractMinor, VIGIL_ABI, classes, 1};
    return &table;
}
