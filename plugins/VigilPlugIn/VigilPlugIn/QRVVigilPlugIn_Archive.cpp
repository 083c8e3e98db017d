#include "platform/KeyedCoder.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"

// The keyed archive of a monitor: eight entries behind the base's own, in this order. The keys are the file
// format; the first two keep a short form that the properties do not have.

namespace vigil {
namespace {

constexpr const char* kStoredCriteria = "ruleEdStoredCriteria";
constexpr const char* kStoredDisplayValues = "ruleEdStoredDisplayValues";

std::shared_ptr<Criterion> criterionFrom(const Value& value) {
    const auto* object = value.as<std::shared_ptr<Object>>();
    return object ? std::dynamic_pointer_cast<Criterion>(*object) : nullptr;
}

std::shared_ptr<QRVVigilPlugIn::CriteriaRows> decodeCriteria(KeyedDecoder& coder) {
    const auto rows = coder.decodeList(kStoredCriteria);
    if (!rows) return nullptr;
    auto decoded = std::make_shared<QRVVigilPlugIn::CriteriaRows>();
    for (const Value& row : *rows) {
        const auto* path = row.as<ValueList>();
        if (!path) coder.refuse(kStoredCriteria, "expected a list of lists of criteria");
        CriterionList nodes;
        for (const Value& entry : path ? *path : ValueList{}) {
            nodes.push_back(criterionFrom(entry));
            if (!nodes.back()) coder.refuse(kStoredCriteria, "expected a list of lists of criteria");
        }
        decoded->push_back(std::move(nodes));
    }
    return decoded;
}

std::shared_ptr<QRVVigilPlugIn::DisplayValueRows> decodeDisplayValues(KeyedDecoder& coder) {
    const auto rows = coder.decodeList(kStoredDisplayValues);
    if (!rows) return nullptr;
    auto decoded = std::make_shared<QRVVigilPlugIn::DisplayValueRows>();
    for (const Value& row : *rows) {
        const auto* values = row.as<ValueList>();
        if (!values) coder.refuse(kStoredDisplayValues, "expected a list of lists of texts and controls");
        DisplayValueList shown;
        for (const Value& entry : values ? *values : ValueList{}) {
            auto value = displayValueFrom(entry);
            if (!value) coder.refuse(kStoredDisplayValues, "expected a list of lists of texts and controls");
            shown.push_back(value.value_or(DisplayValue{}));
        }
        decoded->push_back(std::move(shown));
    }
    return decoded;
}

template <class Rows, class Encode>
void encodeRows(KeyedEncoder& coder, const char* key, const std::shared_ptr<Rows>& rows, Encode encodeEntry) {
    if (!rows) return;
    ValueList list;
    for (const auto& row : *rows) {
        ValueList entries;
        for (const auto& entry : row)
            entries.push_back(encodeEntry(entry));
        list.emplace_back(std::move(entries));
    }
    coder.encode(key, std::move(list));
}

std::optional<EvaluationDictionary> decodeDictionary(KeyedDecoder& coder, const char* key) {
    const auto entries = coder.decodeDictionary(key);
    if (!entries) return std::nullopt;
    auto dictionary = EvaluationDictionary::fromArchive(*entries);
    if (!dictionary) coder.refuse(key, "expected a dictionary of readings under their own keys");
    return dictionary;
}

}  // namespace

bool QRVVigilPlugIn::initWithCoder(KeyedDecoder& coder) {
    if (!QRVPlugIn::initWithCoder(coder)) return false;
    setRuleEditorStoredCriteria(decodeCriteria(coder));
    setRuleEditorStoredDisplayValues(decodeDisplayValues(coder));
    setEvaluating(coder.decodeFlag("evaluating"));
    setRetriggerInterval(coder.decodeNumber("retriggerInterval"));
    setRetriggerDate(coder.decodeDate("retriggerDate"));
    setLastEvaluationDictionary(decodeDictionary(coder, "lastEvaluationDictionary"));
    setTriggerOnlyOnChange(coder.decodeFlag("triggerOnlyOnChange"));
    auto condition = coder.decodeObject<ConditionPredicate>("predicate");
    setPredicate(condition ? std::move(condition) : defaultPredicate());
    initCommon();
    return true;
}

void QRVVigilPlugIn::encodeWithCoder(KeyedEncoder& coder) const {
    QRVPlugIn::encodeWithCoder(coder);
    encodeRows(
        coder, kStoredCriteria, ruleEditorStoredCriteria(),
        [](const std::shared_ptr<Criterion>& node) { return Value(std::static_pointer_cast<Object>(node)); });
    encodeRows(coder, kStoredDisplayValues, ruleEditorStoredDisplayValues(),
               [](const DisplayValue& value) { return archiveValue(value); });
    coder.encodeFlag("evaluating", evaluating());
    coder.encodeNumber("retriggerInterval", retriggerInterval());
    coder.encodeDate("retriggerDate", retriggerDate());
    if (const auto dictionary = lastEvaluationDictionary())
        coder.encode("lastEvaluationDictionary", dictionary->archiveValue());
    coder.encodeFlag("triggerOnlyOnChange", triggerOnlyOnChange());
    coder.encodeObject("predicate", predicate());
}

}  // namespace vigil
