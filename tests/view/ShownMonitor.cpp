#include "tests/view/ShownMonitor.hpp"

#include "conditions/ConditionPredicate.hpp"
#include "host/kit/KeyedArchive.hpp"
#include "host/kit/KitClasses.hpp"

namespace vigil::test {
namespace {

constexpr const char* kBundle = VIGIL_BINARY_DIR "/lib/vigil/VigilPlugIn";

LoadedModule loaded() {
    registerKitClasses();
    const auto module = loadPlugIn(kBundle);
    return module ? module.value() : throw std::runtime_error(module.error().message);
}

}  // namespace

ShownMonitor::ShownMonitor() : m_module(loaded()) {
    m_world.files().setFolder(m_module.bundle()->resourcePath,
                              {"TextField.ui", "horn.mp3", "QRVVigilPlugIn.ui", "bell.wav"});
    for (const char* name : {"TextField", "PopUpButton", "QRVVigilPlugIn"})
        m_world.interfaceFiles().set(name, [this, name](InterfaceOwner* asking) {
            return m_interfaceFile.instantiate(*m_module.bundle(), name, asking);
        });
    m_agent->setProperties({AgentProperty::number("windChill", 5, m_world.now()),
                            AgentProperty::number("windSpeed", 10, m_world.now()),
                            AgentProperty::text("sky", "Fog", m_world.now())});
    m_plugIn = std::dynamic_pointer_cast<QRVPlugIn>(m_module.make("QRVVigilPlugIn"));
    if (!m_plugIn || !m_plugIn->initWithAgent(m_agent, nullptr))
        throw std::runtime_error("the bundle gives no monitor");
}

void ShownMonitor::read(const std::string& archive) {
    const auto object = readArchive(archive, m_agent);
    if (!object) throw std::runtime_error(object.error().message);
    m_objects.clear();
    m_plugIn = std::dynamic_pointer_cast<QRVPlugIn>(object.value());
    if (!m_plugIn) throw std::runtime_error("the archive holds no plug-in");
}

std::string ShownMonitor::archive() const {
    const auto text = writeArchive(m_plugIn, m_agent.get());
    return text ? text.value() : throw std::runtime_error(text.error().message);
}

void ShownMonitor::show() {
    auto objects = m_world.interfaceFiles().instantiate(*m_module.bundle(), "QRVVigilPlugIn", &owner());
    if (!objects) throw std::runtime_error(m_interfaceFile.lastError());
    m_objects = std::move(*objects);
}

std::string ShownMonitor::condition() const {
    const Value held = get("predicate");
    const auto* object = held.as<std::shared_ptr<Object>>();
    return object ? dynamic_cast<const ConditionPredicate&>(**object).printed() : std::string();
}

}  // namespace vigil::test
