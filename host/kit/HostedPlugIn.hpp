#pragma once

#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "host_contract/HostWorld.hpp"
#include "host_contract/QRVPlugIn.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// A plug-in with what the host knows of its life: whether it runs, and why it was marked. Every call into a
/// plug-in goes through here, or through `call`, so that its world is open. Main thread.
class HostedPlugIn {
  public:
    /// The world is the caller's and outlives this.
    HostedPlugIn(HostWorld& world, std::shared_ptr<QRVPlugIn> plugIn);

    const std::shared_ptr<QRVPlugIn>& plugIn() const { return m_plugIn; }

    /// Runs `action(plugIn)` with the world open and gives what it gives.
    template <class Action>
    decltype(auto) call(Action&& action) {
        const World::Scope scope(m_world);
        return std::forward<Action>(action)(*m_plugIn);
    }

    /// Tells it that it is loaded. One that throws then is marked.
    void load();
    /// Tells it that it leaves. What it throws then goes to the log, since it is gone all the same.
    void unload();

    /// Nothing means that it runs (or does not run any more); else what stood in the way, and all is as it
    /// was. Starting takes a mark away. One that throws is marked, and what it threw is the obstacle.
    std::shared_ptr<Object> start();
    std::shared_ptr<Object> stop();
    bool isStarted() const { return m_started; }

    /// The switch of a monitor; nothing where the plug-in has none or does not say.
    std::optional<bool> evaluating();
    /// Turns the switch. One that runs is stopped with the old value and started with the new one, since a
    /// plug-in looks at its switch only then. The value is an obstacle of stopping (the switch then stands
    /// as before) or of starting, or nothing; an error, where the plug-in has no switch.
    Result<std::shared_ptr<Object>> setEvaluating(bool on);

    /// Stops and marks one that threw, so that what it did before it threw is not done again and again, and
    /// writes it to the log. It stays stopped until it is started again.
    void markFailed(const std::exception_ptr& what);
    /// Why it was marked, for people.
    const std::optional<std::string>& failure() const { return m_failure; }

  private:
    HostWorld& m_world;
    std::shared_ptr<QRVPlugIn> m_plugIn;
    bool m_started = false;
    std::optional<std::string> m_failure;
};

}  // namespace vigil
