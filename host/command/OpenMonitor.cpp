#include "host/command/OpenMonitor.hpp"

#include "host/kit/KeyedArchive.hpp"
#include "host/services/SystemClock.hpp"
#include "platform/ClassRegistry.hpp"
#include "platform/InterfaceOwner.hpp"

namespace vigil {
namespace {

template <class T>
std::shared_ptr<T> firstOf(const std::vector<std::shared_ptr<Object>>& objects) {
    for (const auto& object : objects)
        if (auto wanted = std::dynamic_pointer_cast<T>(object)) return wanted;
    return nullptr;
}

}  // namespace

OpenMonitor::OpenMonitor(const std::string& station, const std::string& helper)
    : m_log(stderr, kLogProblem, systemNow),
      m_world(m_log, m_files, defaultScriptsFolder()),
      m_scripts({.helper = helper, .clock = systemNow}),
      m_station(std::make_shared<Station>(m_world, station, m_scripts)) {}

Result<std::unique_ptr<OpenMonitor>> OpenMonitor::make(const std::string& station, const std::string& title,
                                                       const std::string& helper) {
    std::unique_ptr<OpenMonitor> made(new OpenMonitor(station, helper));
    const auto object = ClassRegistry::shared().make(kMonitorClass);
    const auto plugIn = std::dynamic_pointer_cast<QRVPlugIn>(object);
    if (!plugIn || !plugIn->initWithAgent(made->m_station, nullptr))
        return Error{"the module makes no monitor"};
    plugIn->setTitle(title);
    if (auto shown = made->show(object); !shown) return shown.error();
    return made;
}

Result<std::unique_ptr<OpenMonitor>> OpenMonitor::open(const StoredMonitor& stored,
                                                       const std::string& helper) {
    std::unique_ptr<OpenMonitor> opened(new OpenMonitor(stored.station, helper));
    auto object = readArchive(stored.archive, opened->m_station);
    if (!object) return Error{"the monitor \"" + stored.title + "\": " + object.error().message};
    if (auto shown = opened->show(object.value()); !shown) return shown.error();
    return opened;
}

Result<Done> OpenMonitor::show(std::shared_ptr<Object> monitor) {
    m_monitor = std::dynamic_pointer_cast<QRVPlugIn>(monitor);
    if (!m_monitor || !m_monitor->interfaceOwner())
        return Error{"a " + monitor->className() + " is no monitor"};
    const auto bundle = ClassRegistry::shared().bundleForClass(kMonitorClass);
    if (!bundle) return Error{"the monitor's class has no bundle"};
    auto view = m_files.instantiate(*bundle, kMonitorClass, m_monitor->interfaceOwner());
    if (!view) return Error{m_files.lastError()};
    m_view = std::move(*view);
    m_actions = firstOf<RuleEditor>(m_view);
    m_condition = firstOf<PredicateEditor>(m_view);
    if (!m_actions || !m_condition) return Error{"the monitor's view lacks an editor"};
    return Done{};
}

Result<StoredMonitor> OpenMonitor::stored() const {
    auto archive = writeArchive(m_monitor, m_station.get());
    if (!archive) return archive.error();
    return StoredMonitor{title(), m_station->name(), std::move(archive).value()};
}

Value OpenMonitor::get(std::string_view property) const {
    InterfaceOwner& owner = *m_monitor->interfaceOwner();
    const InterfaceProperty* found = owner.propertyNamed(property);
    return found ? found->get(owner) : Value();
}

bool OpenMonitor::set(std::string_view property, const Value& value) {
    InterfaceOwner& owner = *m_monitor->interfaceOwner();
    const InterfaceProperty* found = owner.propertyNamed(property);
    return found && found->set && found->set(owner, value);
}

void OpenMonitor::perform(std::string_view action) {
    InterfaceOwner& owner = *m_monitor->interfaceOwner();
    if (const InterfaceAction* found = owner.actionNamed(action)) found->perform(owner, nullptr);
}

std::string OpenMonitor::condition() const {
    const auto& value = m_condition->objectValue();
    return value ? value->printed() : std::string();
}

std::vector<std::string> OpenMonitor::conditionRows() const {
    std::vector<std::string> lines;
    for (const PredicateEditorRow& row : m_condition->rows()) {
        std::string line(2 * row.depth, ' ');
        for (const auto& popUp : row.popUps)
            line += popUp.shown + " ";
        line += row.isGroup ? "of" : row.valueText;
        lines.push_back(std::move(line));
    }
    return lines;
}

std::vector<std::string> OpenMonitor::actions() const {
    std::vector<std::string> lines;
    for (std::int64_t row = 0; row < m_actions->numberOfRows(); ++row) {
        std::string line;
        for (const DisplayValue& value : m_actions->displayValuesForRow(row)) {
            const auto title = titleOfSelectedItem(value);
            const std::string text = title ? *title : stringValue(value).value_or("");
            line += (line.empty() ? "" : ": ") + text;
        }
        lines.push_back(std::move(line));
    }
    return lines;
}

}  // namespace vigil
