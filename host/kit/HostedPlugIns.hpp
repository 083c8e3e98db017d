#pragma once

#include <memory>
#include <vector>

#include "host/kit/HostedPlugIn.hpp"
#include "platform/NotificationCenter.hpp"

namespace vigil {

class Station;

/// The plug-ins of a world, in the order in which they came. Main thread, except `settle`.
class HostedPlugIns {
  public:
    explicit HostedPlugIns(HostWorld& world) : m_world(world) {}

    HostedPlugIn& add(std::shared_ptr<QRVPlugIn> plugIn);
    /// Nothing when it is not here.
    HostedPlugIn* find(const Object& plugIn);
    const std::vector<std::unique_ptr<HostedPlugIn>>& all() const { return m_all; }

    /// Stops the plug-in, tells it that it is unloaded, and drops it. What stood in the way of stopping is
    /// given, and the plug-in stays. Only where no plug-in is acting: at rest (`Mailbox::dispatchAtRest`).
    std::shared_ptr<Object> remove(const Object& plugIn);

    /// Deals with what a station's announcement threw, before the next one: each plug-in that threw is
    /// stopped and marked. A hand-over that was refused since the site is closing marks nobody: that cycle is
    /// given up. Any thread; returns when it is done.
    void settle(std::vector<DeliveryFailure> failures);

  private:
    HostWorld& m_world;
    std::vector<std::unique_ptr<HostedPlugIn>> m_all;
};

}  // namespace vigil
