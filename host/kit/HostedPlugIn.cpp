#include "host/kit/HostedPlugIn.hpp"

#include "host/kit/ExceptionText.hpp"
#include "host/kit/StandardLog.hpp"
#include "platform/InterfaceOwner.hpp"

namespace vigil {
namespace {

const InterfaceProperty* switchOf(QRVPlugIn& plugIn) {
    InterfaceOwner* owner = plugIn.interfaceOwner();
    return owner ? owner->propertyNamed("evaluating") : nullptr;
}

}  // namespace

HostedPlugIn::HostedPlugIn(HostWorld& world, std::shared_ptr<QRVPlugIn> plugIn)
    : m_world(world), m_plugIn(std::move(plugIn)) {}

std::shared_ptr<Object> HostedPlugIn::start() {
    auto obstacle = call([](QRVPlugIn& plugIn) { return plugIn.start(); });
    if (obstacle) return obstacle;
    m_started = true;
    m_failure.reset();
    return nullptr;
}

std::shared_ptr<Object> HostedPlugIn::stop() {
    auto obstacle = call([](QRVPlugIn& plugIn) { return plugIn.stop(); });
    if (!obstacle) m_started = false;
    return obstacle;
}

std::optional<bool> HostedPlugIn::evaluating() {
    return call([](QRVPlugIn& plugIn) -> std::optional<bool> {
        const InterfaceProperty* property = switchOf(plugIn);
        if (!property) return std::nullopt;
        const Value value = property->get(*plugIn.interfaceOwner());
        const bool* flag = value.as<bool>();
        return flag ? std::optional(*flag) : std::nullopt;
    });
}

Result<std::shared_ptr<Object>> HostedPlugIn::setEvaluating(bool on) {
    const auto now = evaluating();
    if (!now) return Error{"\"" + m_plugIn->title() + "\" has no switch"};
    if (*now == on && !m_failure) return std::shared_ptr<Object>();
    const bool runs = m_started || m_failure;
    if (m_started) {
        if (auto obstacle = stop()) return obstacle;
    }
    const bool set = call([on](QRVPlugIn& plugIn) {
        const InterfaceProperty* property = switchOf(plugIn);
        return property && property->set && property->set(*plugIn.interfaceOwner(), Value(on));
    });
    auto obstacle = runs ? start() : nullptr;
    if (!set) return Error{"the switch of \"" + m_plugIn->title() + "\" cannot be turned"};
    return obstacle;
}

void HostedPlugIn::markFailed(const std::exception_ptr& what) {
    m_failure = exceptionText(what);
    std::string text = "\"" + m_plugIn->title() + "\" failed and is stopped: " + *m_failure;
    try {
        if (stop()) text += " (stopping it met an obstacle; it may go on)";
    } catch (...) {
        text += " (stopping it failed too: " + exceptionText(std::current_exception()) + ")";
    }
    m_world.log().logLevel(kLogProblem, text);
}

}  // namespace vigil
