#include "plugins/ContractProbe/ContractProbe.hpp"

#include <array>

#include "host_contract/Module.hpp"
#include "host_contract/QRVKit.hpp"
#include "platform/ClassRegistry.hpp"

namespace vigil {
namespace {

constexpr int kNoticeLevel = 2;

}  // namespace

bool ContractProbe::initWithAgent(std::shared_ptr<QRVAgentPlugIn> agent,
                                  std::shared_ptr<SiteWindowController> siteWindowController) {
    if (!QRVPlugIn::initWithAgent(std::move(agent), std::move(siteWindowController))) return false;
    noteMade();
    return true;
}

void ContractProbe::noteMade() {
    HostWorld* open = HostWorld::current();
    m_promises->note(HostPromise::WorldOpenWhileMade,
                     open != nullptr && (!agent() || open == &agent()->world()));
    if (open) m_promises->note(HostPromise::MadeOnMainThread, open->mainQueue().isMainThread());
    m_promises->note(HostPromise::BundleKnown,
                     bundleIdentifier() == "org.vigil.ContractProbe" && bundleVersion() == 1);
}

std::shared_ptr<Object> ContractProbe::start() {
    if (auto obstacle = QRVPlugIn::start()) return obstacle;
    if (!agent()) return nullptr;
    HostWorld& world = agent()->world();
    m_promises->note(HostPromise::LoadedBeforeStart, m_loaded);
    m_promises->note(HostPromise::StartedOnMainThread,
                     HostWorld::current() == &world && world.mainQueue().isMainThread());
    m_started = true;
    const auto self = std::static_pointer_cast<ContractProbe>(shared_from_this());
    world.notificationCenter().addObserver(self, &ContractProbe::heard, kAppRealTimeDataNotification,
                                           agent());
    return nullptr;
}

std::shared_ptr<Object> ContractProbe::stop() {
    if (auto obstacle = QRVPlugIn::stop()) return obstacle;
    if (!agent()) return nullptr;
    agent()->world().notificationCenter().removeObserver(*this, kAppRealTimeDataNotification, agent());
    m_started = false;
    m_promises->note(HostPromise::SilentWhenStopped, true);
    return nullptr;
}

void ContractProbe::willUnload() {
    m_promises->note(HostPromise::StoppedBeforeUnload, !m_started);
    if (HostWorld* open = HostWorld::current())
        QRVLog::sharedLog(*open).logLevel(kNoticeLevel,
                                          "what the host keeps of the contract:\n" + m_promises->table());
    QRVPlugIn::willUnload();
}

void ContractProbe::heard(const Notification& notification) {
    m_promises->note(HostPromise::OneNotificationAtATime, m_inside.fetch_add(1) == 0);
    m_promises->note(HostPromise::SilentWhenStopped, m_started);
    noteBatch(notification);
    noteHandOver();
    m_inside.fetch_sub(1);
}

void ContractProbe::noteBatch(const Notification& notification) {
    HostWorld& world = agent()->world();
    m_promises->note(HostPromise::NotificationInOpenWorld, HostWorld::current() == &world);
    m_promises->note(HostPromise::NotificationOfOwnStation, notification.object == agent());
    const Date now = world.now();
    m_promises->note(HostPromise::ClockNeverGoesBack, now.secondsSince(m_lastHeard) >= 0);
    m_lastHeard = now;
    const auto batch = std::dynamic_pointer_cast<const Readings>(notification.userInfoForKey(kDataKey));
    m_promises->note(HostPromise::NotificationHoldsReadings, batch != nullptr);
    if (!batch) return;
    const auto current = agent()->properties();
    bool all = true;
    for (const AgentProperty& reading : batch->entries())
        all = all && current->objectForKey(reading.propertyName()) != nullptr;
    m_promises->note(HostPromise::CurrentReadingsIncludeBatch, all);
}

void ContractProbe::noteHandOver() {
    HostWorld& world = agent()->world();
    bool ran = false;
    bool onMain = false;
    const auto task = [&] {
        ran = true;
        onMain = world.mainQueue().isMainThread() && HostWorld::current() == &world;
    };
    if (world.mainQueue().isMainThread())
        task();
    else
        world.mainQueue().dispatchSync(task);
    m_promises->note(HostPromise::HandOverWaits, ran);
    m_promises->note(HostPromise::HandOverRunsOnMainThread, onMain);
}

}  // namespace vigil

extern "C" VIGIL_KIT const vigil::ModuleTable* vigilPlugInModule() {
    using namespace vigil;
    static constexpr std::array<ModuleClass, 2> classes = {
        {{"ContractProbe", &makeObject<ContractProbe>}, {"ProbeSample", &makeObject<ProbeSample>}}};
    static constexpr ModuleTable table = {kContractMajor, kContractMinor, VIGIL_ABI, classes.data(),
                                          classes.size()};
    return &table;
}
