#include <algorithm>

#include "conditions/editor/PredicateEditor.hpp"
#include "platform/Collation.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"

// What the condition editor offers: one template a kind of reading.

namespace vigil {
namespace {

using Template = PredicateEditorRowTemplate;
using Op = PredicateOperatorType;

const Template::Operators kNumberOperators = {Op::EqualTo, Op::LessThan, Op::GreaterThan,
                                              Op::LessThanOrEqualTo, Op::GreaterThanOrEqualTo};
const Template::Operators kTextOperators = {Op::EqualTo, Op::NotEqualTo};
// No earlier and no later.
const Template::Operators kDateOperators = {Op::EqualTo, Op::NotEqualTo};

EvaluationDictionary propertiesOf(const std::shared_ptr<QRVAgentPlugIn>& agent) {
    return agent ? EvaluationDictionary(agent->properties()) : EvaluationDictionary();
}

std::shared_ptr<Template> comparing(Template::Expressions expressions, AttributeType type,
                                    const Template::Operators& operators) {
    return Template::initWithLeftExpressions(std::move(expressions), type,
                                             ComparisonPredicateModifier::Direct, operators,
                                             ComparisonPredicateOptions::None);
}

/// Turns plain keys into key paths with the member, and titles them with the names that people read. A key
/// that the station has lost meanwhile stays as it is, and is then no choice.
void completeItems(Template& rowTemplate, const EvaluationDictionary& properties, std::string_view member) {
    for (PredicateEditorMenuItem& item : rowTemplate.itemArray()) {
        const AgentProperty* property = properties.objectForKey(item.representedObject().keyPath());
        if (!property) continue;
        std::string keyPath = property->propertyName();
        (keyPath += '.') += member;
        item.setRepresentedObject(KeyPathExpression::expressionForKeyPath(std::move(keyPath)));
        item.setTitle(property->name());
    }
}

}  // namespace

// Every edit replaces the condition; showing one is no edit and never comes back here.
bool QRVVigilPlugIn::connectPredicateEditor(const std::shared_ptr<Object>& object) {
    const auto editor = std::dynamic_pointer_cast<PredicateEditor>(object);
    if (object && !editor) return false;
    m_predicateEdits.reset();
    setPredicateEditor(editor);
    if (!editor) return true;
    const std::weak_ptr<QRVPlugIn> self = weak_from_this();
    const std::weak_ptr<PredicateEditor> edited = editor;
    m_predicateEdits = editor->observeEdits([self, edited] {
        const auto monitor = std::static_pointer_cast<QRVVigilPlugIn>(self.lock());
        const auto from = edited.lock();
        if (monitor && from) monitor->setPredicate(from->objectValue());
    });
    return true;
}

void QRVVigilPlugIn::loadPredicate() {
    setPropertyArray(std::make_shared<Names>());
    const auto station = agent();
    const EvaluationDictionary properties = propertiesOf(station);
    // Hidden readings are offered, too.
    auto names = std::make_shared<Names>(properties.keys());
    if (station) {
        const Collation& order = station->world().collation();
        std::stable_sort(names->begin(), names->end(), [&order](const auto& a, const auto& b) {
            return order.compareIgnoringCase(a, b) < 0;
        });
    }
    setPropertyArray(names);

    Template::Expressions numbers, texts, dates;
    for (const std::string& name : *names) {
        const FourCharCode type = properties.objectForKey(name)->type();
        auto& list = type == kTextType ? texts : type == kDateType ? dates : numbers;
        list.push_back(KeyPathExpression::expressionForKeyPath(name));
    }
    const auto number = comparing(std::move(numbers), AttributeType::Double, kNumberOperators);
    const auto text = comparing(std::move(texts), AttributeType::String, kTextOperators);
    const auto date = comparing(std::move(dates), AttributeType::Date, kDateOperators);
    const auto compound =
        Template::initWithCompoundTypes({CompoundPredicateType::And, CompoundPredicateType::Or});
    setupPredicateFloatTemplates(*number);
    setupPredicateStringTemplates(*text);
    setupPredicateDateTemplates(*date);
    if (const auto editor = predicateEditor()) editor->setRowTemplates({compound, number, text, date});
}

void QRVVigilPlugIn::setupPredicateFloatTemplates(PredicateEditorRowTemplate& rowTemplate) {
    completeItems(rowTemplate, propertiesOf(agent()), "unitValue");
}

void QRVVigilPlugIn::setupPredicateStringTemplates(PredicateEditorRowTemplate& rowTemplate) {
    completeItems(rowTemplate, propertiesOf(agent()), "stringValue");
}

void QRVVigilPlugIn::setupPredicateDateTemplates(PredicateEditorRowTemplate& rowTemplate) {
    completeItems(rowTemplate, propertiesOf(agent()), "value");
}

}  // namespace vigil
