#pragma once

#include <memory>
#include <string>
#include <vector>

#include "conditions/editor/PredicateEditor.hpp"
#include "host/kit/InterfaceFile.hpp"
#include "host/kit/LiveScripts.hpp"
#include "host/kit/LiveWorld.hpp"
#include "host/kit/StandardLog.hpp"
#include "host/kit/Station.hpp"
#include "host_contract/QRVPlugIn.hpp"
#include "platform/RuleEditor.hpp"

namespace vigil {

/// A monitor as a site keeps it.
struct StoredMonitor {
    std::string title{};
    std::string station{};  ///< its name
    std::string archive{};
};

/// The class that the monitor's module makes.
inline constexpr const char* kMonitorClass = "QRVVigilPlugIn";

/// A monitor with its view's models, as a window would have them, but without pixels: what is set here goes
/// through the same editors. Needs the module. Main thread.
class OpenMonitor {
  public:
    /// A new monitor for a station, or a stored one. An error says what stood in the way.
    static Result<std::unique_ptr<OpenMonitor>> make(const std::string& station, const std::string& title,
                                                     const std::string& helper);
    static Result<std::unique_ptr<OpenMonitor>> open(const StoredMonitor& stored, const std::string& helper);

    Result<StoredMonitor> stored() const;

    const std::string& title() const { return m_monitor->title(); }
    void setTitle(const std::string& title) { m_monitor->setTitle(title); }
    /// Values of the monitor's table; false when it does not take the value.
    Value get(std::string_view property) const;
    bool set(std::string_view property, const Value& value);
    /// Does what a button of the view would.
    void perform(std::string_view action);

    /// The condition as the language writes it; empty where there is none.
    std::string condition() const;
    /// One line a row of the condition's editor.
    std::vector<std::string> conditionRows() const;

    /// "Run script: notify.sh roof", one a row.
    std::vector<std::string> actions() const;
    /// Makes "Run script=notify.sh roof" the row at `index`, which may be the one behind the last. An error
    /// lists what is offered.
    Result<Done> setAction(std::int64_t index, const std::string& text);
    bool removeAction(std::int64_t index) { return m_actions->removeRowAtIndex(index); }
    std::int64_t numberOfActions() const { return m_actions->numberOfRows(); }

    LiveWorld& world() { return m_world; }
    LiveScripts& scripts() { return m_scripts; }

  private:
    OpenMonitor(const std::string& station, const std::string& helper);
    Result<Done> show(std::shared_ptr<Object> monitor);

    StandardLog m_log;
    InterfaceFile m_files;
    LiveWorld m_world;
    World::Scope m_scope{m_world};
    LiveScripts m_scripts;
    std::shared_ptr<Station> m_station;
    std::shared_ptr<QRVPlugIn> m_monitor;
    std::vector<std::shared_ptr<Object>> m_view;
    std::shared_ptr<RuleEditor> m_actions;
    std::shared_ptr<PredicateEditor> m_condition;
};

}  // namespace vigil
