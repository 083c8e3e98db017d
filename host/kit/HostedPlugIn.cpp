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

/// What a plug-in threw where it should have named an obstacle.
class Thrown : public Object {
  public:
    explicit Thrown(std::string words) : m_words(std::move(words)) {}
    std::string className() const override { return "Thrown"; }
    std::string description() const override { return m_words; }

  private:
    std::string m_words;
};

}  // namespace

HostedPlugIn::HostedPlugIn(HostWorld& world, std::shared_ptr<QRVPlugIn> plugIn)
    : m_world(world), m_plugIn(std::move(plugIn)) {}

void HostedPlugIn::load() {
    try {
        call([](QRVPlugIn& plugIn) { plugIn.didLoad(); });
    } catch (...) {
        markFailed(std::current_exception());
    }
}

void HostedPlugIn::unload() {
    try {
        call([](QRVPlugIn& plugIn) { plugIn.willUnload(); });
    } catch (...) {
        m_world.log().logLevel(kLogProblem, "\"" + m_plugIn->title() + "\" failed as it was unloaded: " +
                                                exceptionText(std::current_exception()));
    }
}

std::shared_ptr<Object> HostedPlugIn::start() {
    try {
        auto obstacle = call([](QRVPlugIn& plugIn) { return plugIn.start(); });
        if (obstacle) return obstacle;
    } catch (...) {
        markFailed(std::current_exception());
        return std::make_shared<Thrown>(*m_failure);
    }
    m_started = true;
    m_failure.reset();
    return nullptr;
}

std::shared_ptr<Object> HostedPlugIn::stop() {
    try {
        auto obstacle = call([](QRVPlugIn& plugIn) { return plugIn.stop(); });
        if (!obstacle) m_started = false;
        return obstacle;
    } catch (...) {
        const std::string words = exceptionText(std::current_exception());
        if (!m_failure) m_failure = words;
        return std::make_shared<Thrown>(words);
    }
}

std::optional<bool> HostedPlugIn::evaluating() {
    return call([](QRVPlugIn& plugIn) -> std::optional<bool> {
        const InterfaceProperty* property = switchOf(plugIn);
        if (!property) return std::nullopt;
        try {
            const Value value = property->get(*plugIn.interfaceOwner());
            const bool* flag = value.as<bool>();
            return flag ? std::optional(*flag) : std::nullopt;
        } catch (...) {
            return std::nullopt;  // one that cannot tell is shown by what it does
        }
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
    if (const auto obstacle = stop())
        text += " (it does not stop and may go on: " + obstacle->description() + ")";
    m_world.log().logLevel(kLogProblem, text);
}

}  // namespace vigil
