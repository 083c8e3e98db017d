#include "platform/Button.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"

// What interface files and hosts reach by name.

namespace vigil {
namespace {

QRVVigilPlugIn& monitor(InterfaceOwner& owner) {
    return static_cast<QRVVigilPlugIn&>(owner);
}

template <class T>
Value valueOf(const std::optional<T>& held) {
    return held ? Value(*held) : Value();
}

bool setFlag(InterfaceOwner& owner, const Value& value, void (QRVVigilPlugIn::*set)(bool)) {
    const bool* flag = value.as<bool>();
    if (flag) (monitor(owner).*set)(*flag);
    return flag != nullptr;
}

bool setInterval(InterfaceOwner& owner, const Value& value) {
    const auto* integer = value.as<std::int64_t>();
    const auto* real = value.as<double>();
    if (!integer && !real && !value.isNothing()) return false;
    if (integer)
        monitor(owner).setRetriggerInterval(Number(*integer));
    else if (real)
        monitor(owner).setRetriggerInterval(Number(*real));
    else
        monitor(owner).setRetriggerInterval(std::nullopt);
    return true;
}

bool setDate(InterfaceOwner& owner, const Value& value) {
    const auto* date = value.as<Date>();
    if (!date && !value.isNothing()) return false;
    monitor(owner).setRetriggerDate(date ? std::optional(*date) : std::nullopt);
    return true;
}

bool setCondition(InterfaceOwner& owner, const Value& value) {
    const auto* object = value.as<std::shared_ptr<Object>>();
    auto condition = object ? std::dynamic_pointer_cast<ConditionPredicate>(*object) : nullptr;
    if (!condition && !value.isNothing()) return false;
    monitor(owner).setPredicate(std::move(condition));
    return true;
}

/// The editor asks the monitor as its delegate for as long as it is the monitor's.
bool connectRuleEditor(InterfaceOwner& owner, const std::shared_ptr<Object>& object) {
    auto editor = std::dynamic_pointer_cast<RuleEditor>(object);
    if (object && !editor) return false;
    if (const auto before = monitor(owner).ruleEditor()) before->setDelegate(nullptr);
    if (editor)
        editor->setDelegate(std::static_pointer_cast<QRVVigilPlugIn>(monitor(owner).weak_from_this().lock()));
    monitor(owner).setRuleEditor(std::move(editor));
    return true;
}

bool connectActivateButton(InterfaceOwner& owner, const std::shared_ptr<Object>& object) {
    auto button = std::dynamic_pointer_cast<Button>(object);
    if (object && !button) return false;
    monitor(owner).setActivateButton(std::move(button));
    return true;
}

}  // namespace

InterfaceTable QRVVigilPlugIn::makeInterfaceTable() {
    using Owner = InterfaceOwner;
    using Call = std::function<void()>;
    InterfaceTable table;
    table.properties = {
        {"evaluating", [](Owner& o) { return Value(monitor(o).evaluating()); },
         [](Owner& o, const Value& v) { return setFlag(o, v, &QRVVigilPlugIn::setEvaluating); },
         [](Owner& o, Call call) { return monitor(o).m_evaluating.observe(std::move(call)); }},
        {"triggerOnlyOnChange", [](Owner& o) { return Value(monitor(o).triggerOnlyOnChange()); },
         [](Owner& o, const Value& v) { return setFlag(o, v, &QRVVigilPlugIn::setTriggerOnlyOnChange); },
         [](Owner& o, Call call) { return monitor(o).m_triggerOnlyOnChange.observe(std::move(call)); }},
        {"retriggerInterval", [](Owner& o) { return valueOf(monitor(o).retriggerInterval()); }, &setInterval,
         [](Owner& o, Call call) { return monitor(o).m_retriggerInterval.observe(std::move(call)); }},
        {"retriggerDate", [](Owner& o) { return valueOf(monitor(o).retriggerDate()); }, &setDate,
         [](Owner& o, Call call) { return monitor(o).m_retriggerDate.observe(std::move(call)); }},
        {"actionStatus", [](Owner& o) { return Value(monitor(o).actionStatus()); }, nullptr,
         [](Owner& o, Call call) { return monitor(o).m_actionStatus.observe(std::move(call)); }},
        {"predicate",
         [](Owner& o) {
             auto condition = monitor(o).predicate();
             return condition ? Value(std::static_pointer_cast<Object>(condition)) : Value();
         },
         &setCondition, [](Owner& o, Call call) { return monitor(o).m_predicate.observe(std::move(call)); }},
        {"currentPropertyStringValue",
         [](Owner& o) { return Value(monitor(o).currentPropertyStringValue()); }},
        {"currentDate", [](Owner& o) { return valueOf(monitor(o).currentDate()); }},
        {"dateLastDbPull", [](Owner& o) { return valueOf(monitor(o).dateLastDbPull()); }},
        {"startTime", [](Owner& o) { return valueOf(monitor(o).startTime()); }},
    };
    table.actions = {
        {"activateButtonClicked:",
         [](Owner& o, Object* sender) { monitor(o).activateButtonClicked(sender); }},
        {"determineWhatPartOfPredicateCauseAlert",
         [](Owner& o, Object*) { monitor(o).determineWhatPartOfPredicateCauseAlert(); }},
        {"testSound:", [](Owner& o, Object* sender) { monitor(o).testSound(sender); }},
    };
    table.outlets = {
        {"predicateEditor",
         [](Owner& o, const std::shared_ptr<Object>& object) {
             return monitor(o).connectPredicateEditor(object);
         }},
        {"ruleEditor", &connectRuleEditor},
        {"activateButton", &connectActivateButton},
    };
    return table;
}

const InterfaceTable& QRVVigilPlugIn::interfaceTable() const {
    static const InterfaceTable table = makeInterfaceTable();
    return table;
}

}  // namespace vigil
