#include "host/kit/HostedPlugIns.hpp"

#include <algorithm>
#include <utility>

#include "host/kit/ExceptionText.hpp"
#include "host/kit/StandardLog.hpp"
#include "host/kit/Station.hpp"
#include "host/services/Mailbox.hpp"

namespace vigil {
namespace {

bool wasRefused(const std::exception_ptr& what) {
    try {
        std::rethrow_exception(what);
    } catch (const HandOverRefused&) {
        return true;
    } catch (...) {
        return false;
    }
}

}  // namespace

HostedPlugIn& HostedPlugIns::add(std::shared_ptr<QRVPlugIn> plugIn) {
    m_all.push_back(std::make_unique<HostedPlugIn>(m_world, std::move(plugIn)));
    return *m_all.back();
}

HostedPlugIn* HostedPlugIns::find(const Object& plugIn) {
    for (const auto& hosted : m_all)
        if (hosted->plugIn().get() == &plugIn) return hosted.get();
    return nullptr;
}

std::shared_ptr<Object> HostedPlugIns::remove(const Object& plugIn) {
    const auto place = std::find_if(m_all.begin(), m_all.end(),
                                    [&](const auto& hosted) { return hosted->plugIn().get() == &plugIn; });
    if (place == m_all.end()) return nullptr;
    if ((*place)->isStarted()) {
        if (auto obstacle = (*place)->stop()) return obstacle;
    }
    (*place)->unload();
    std::shared_ptr<QRVPlugIn> last = (*place)->plugIn();
    m_all.erase(place);
    const World::Scope scope(m_world);
    if (const auto station = std::dynamic_pointer_cast<Station>(last->agent()))
        station->retire(std::move(last));
    return nullptr;
}

void HostedPlugIns::settle(std::vector<DeliveryFailure> failures) {
    std::erase_if(failures, [](const DeliveryFailure& failure) { return wasRefused(failure.what); });
    if (failures.empty()) return;
    const auto mark = [&] {
        for (const DeliveryFailure& failure : std::exchange(failures, {})) {
            if (HostedPlugIn* hosted = find(*failure.observer))
                hosted->markFailed(failure.what);
            else
                m_world.log().logLevel(
                    kLogProblem, failure.observer->description() + " failed: " + exceptionText(failure.what));
        }
    };
    try {
        m_world.mainQueue().dispatchSync(mark);
    } catch (const HandOverRefused&) {
        // The site is closing: nobody runs after this.
    }
}

}  // namespace vigil
