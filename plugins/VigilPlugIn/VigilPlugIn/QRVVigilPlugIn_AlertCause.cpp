#include <stdexcept>
#include <string_view>

#include "plugins/VigilPlugIn/VigilPlugIn/QRVVigilPlugIn.hpp"

// Which comparisons hold now. The condition's printed text is cut at the keys of the station's readings,
// wherever these occur in it, quoted texts and other keys included; what the cut makes of them is kept.

namespace vigil {
namespace {

constexpr std::string_view kPrefix = "Alert was caused by ";
constexpr std::string_view kConnective = " OR ";
constexpr auto kNowhere = std::string_view::npos;

/// Where the key occurs first. An empty key occurs nowhere.
std::size_t placeOf(std::string_view key, std::string_view text) {
    return key.empty() ? kNowhere : text.find(key);
}

std::string_view substring(std::string_view text, std::size_t start, std::size_t length) {
    if (start > text.size() || length > text.size() - start)
        throw std::out_of_range("a piece of " + std::to_string(length) + " bytes at " +
                                std::to_string(start) + " of " + std::to_string(text.size()));
    return text.substr(start, length);
}

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == kNowhere) return {};
    return text.substr(first, text.find_last_not_of(" \t") + 1 - first);
}

/// The text's pieces, one after another.
class Pieces {
  public:
    Pieces(std::string_view text, const std::vector<const AgentProperty*>& properties)
        : m_text(text), m_start(text.size()), m_end(text.size()) {
        for (const AgentProperty* property : properties)
            if (const auto place = placeOf(property->propertyName(), text); place != kNowhere)
                m_places.push_back(place);
    }

    /// How many properties occur in the text, and so how many pieces are cut.
    std::size_t count() const { return m_places.size(); }

    /// A comparison with one blank behind it, or whatever stands where one should.
    std::string_view next() {
        for (const std::size_t place : m_places)
            if (place < m_start && m_start > m_previousEnd) m_start = place;
        for (const std::size_t place : m_places)
            if (place < m_end && place > m_start) m_end = place;
        const std::string_view chunk = trimmed(substring(m_text, m_start, m_end - m_start));
        const std::size_t lastBlank = chunk.rfind(' ');
        if (lastBlank == kNowhere) throw std::out_of_range("no blank in \"" + std::string(chunk) + "\"");
        const std::string_view piece = substring(m_text, m_start, lastBlank + 1);
        m_previousEnd = m_start = m_end;
        m_end = m_text.size();
        return piece;
    }

  private:
    std::string_view m_text;
    std::vector<std::size_t> m_places;  // in enumeration order
    std::size_t m_start;
    std::size_t m_end;
    std::size_t m_previousEnd = 0;
};

bool holds(std::string_view piece, const ReadingsView& readings) {
    // The final blank says nothing and would only count against the longest text.
    const auto condition = ConditionPredicate::predicateWithFormat(trimmed(piece));
    if (!condition)
        throw std::invalid_argument("\"" + std::string(piece) +
                                    "\" is no condition: " + condition.error().message());
    return condition.value()->evaluateWithObject(readings);
}

std::vector<const AgentProperty*> enumerated(const ReadingsView& readings) {
    std::vector<const AgentProperty*> properties;
    for (KeyTable::Slot slot = 0; slot < readings.table->size(); ++slot)
        if (const AgentProperty* property = readings.at(slot)) properties.push_back(property);
    return properties;
}

}  // namespace

void QRVVigilPlugIn::determineWhatPartOfPredicateCauseAlert() {
    const auto condition = predicate();
    const std::string text =
        (condition ? condition->printed() : std::string(kAbsentText)) + std::string(kConnective);
    setPropertyArray(std::make_shared<Names>());
    setActionStatus(kPrefix);
    const auto station = agent();
    const auto readings = station ? station->properties() : EvaluationDictionary().readings();
    const auto properties = enumerated(readings->view());

    Pieces pieces(text, properties);
    std::string cause;  // the last one found, also for a piece in which no key occurs
    int hits = 0;
    for (std::size_t pass = 1; pass <= pieces.count(); ++pass) {
        const std::string_view piece = pieces.next();
        if (!holds(piece, readings->view())) continue;
        for (const AgentProperty* property : properties) {
            if (placeOf(property->propertyName(), piece) == kNowhere) continue;
            cause = property->name() + " that is now " + property->unitStringValueWithUnitShort();
            break;
        }
        if (++hits > 1) setActionStatus(actionStatus() + " & ");
        setActionStatus(actionStatus() + cause);
    }
    setActionStatus(actionStatus() + ".");
}

}  // namespace vigil
