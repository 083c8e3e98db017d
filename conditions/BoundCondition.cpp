#include "conditions/BoundCondition.hpp"

#include <bit>
#include <cassert>
#include <string_view>

#include "conditions/Binder.hpp"
#include "conditions/Relation.hpp"

namespace vigil {
namespace {

// An empty table has no slot 0 that a test could look at.
constinit const AgentProperty* const kNoReadings[1] = {nullptr};

}  // namespace

BoundCondition::BoundCondition(const ConditionNode& tree, const KeyTable& table)
    : m_tableId(table.id()), m_tableIsEmpty(table.size() == 0) {
    Binder(table, *this).bind(tree);
}

inline bool BoundCondition::NumberTest::holds(const AgentProperty* const* bySlot) const {
    const AgentProperty* reading = bySlot[slot];
    if (!reading) [[unlikely]]
        return false;
    const auto bits = std::bit_cast<std::uint64_t>(reading->parts().*member) ^ signFlip;
    return std::bit_cast<double>(bits) <= bound;
}

bool BoundCondition::TextTest::holds(const AgentProperty* const* bySlot) const {
    const AgentProperty* reading = slot == kNoSlot ? nullptr : bySlot[slot];
    if (!reading) return wanted & kNoValue;
    // Kept between calls, so that a text built from a number allocates only once on a thread.
    thread_local std::string built;
    std::string_view text;
    if (const auto& given = reading->givenStringValue()) {
        text = *given;
    } else {
        built.clear();
        reading->appendStringValue(built);
        text = built;
    }
    // Bytes as unsigned numbers: in UTF-8 that is the order of code points.
    const int order = text.compare(literal);
    return wanted & (order < 0 ? kLess : order > 0 ? kGreater : kEqual);
}

template <bool wanted>
inline bool BoundCondition::anyComesOut(const Step& step, const AgentProperty* const* bySlot) const {
    const NumberTest* test = m_numbers.data() + step.first;
    for (const NumberTest* end = test + step.count; test != end; ++test)
        if (test->holds(bySlot) == wanted) return true;
    return false;
}

template <bool withTexts>
bool BoundCondition::run(const AgentProperty* const* bySlot) const {
    const Step* const steps = m_steps.data();
    for (const Step* step = steps;;) {
        bool answer = false;
        switch (step->kind) {
            case StepKind::AllNumbers:
                answer = !anyComesOut<false>(*step, bySlot);
                break;
            case StepKind::AnyNumber:
                answer = anyComesOut<true>(*step, bySlot);
                break;
            case StepKind::Text:
                if constexpr (withTexts) answer = m_texts[step->first].holds(bySlot);
                break;
            case StepKind::True:
                return true;
            case StepKind::False:
                return false;
        }
        step = answer == step->jumpWhen ? steps + step->target : step + 1;
    }
}

bool BoundCondition::holds(const ReadingsView& readings) const {
    assert(!readings.table || readings.table->id() == m_tableId);
    const AgentProperty* const* bySlot = m_tableIsEmpty ? kNoReadings : readings.bySlot;
    // Without texts nothing is called, which saves the registers' way to the stack and back.
    return m_texts.empty() ? run<false>(bySlot) : run<true>(bySlot);
}

}  // namespace vigil
