#include "conditions/BoundCondition.hpp"

#include <algorithm>
#include <cassert>
#include <string>
#include <string_view>

#include "conditions/Binder.hpp"
#include "conditions/Relation.hpp"

namespace vigil {

template <double AgentProperty::Parts::*member>
inline bool NumberTest::holds(const AgentProperty* const* bySlot) const {
    const AgentProperty* reading = bySlot[slot];
    if (!reading) [[unlikely]]
        return false;
    return reading->parts().*member * sign >= bound;
}

bool TextTest::holds(const AgentProperty* const* bySlot) const {
    const AgentProperty* reading = slot == TextTest::kNoSlot ? nullptr : bySlot[slot];
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

namespace {

// Where to go on once a test has come out as `decides`, or none has. A branch a test: readings change slowly,
// so their branches are foreseen mostly, and a test not made is the fastest.
template <double AgentProperty::Parts::*member, bool decides>
inline Place after(const Step& step, const NumberTest* numbers, const AgentProperty* const* bySlot) {
    const NumberTest* test = numbers + step.first;
    const NumberTest* const end = numbers + step.end;
    do {
        if (test->holds<member>(bySlot) == decides) return decides ? step.whenTrue : step.whenFalse;
    } while (++test != end);
    return decides ? step.whenFalse : step.whenTrue;
}

template <bool withTexts>
bool run(const Program& program, const AgentProperty* const* bySlot) {
    using Parts = AgentProperty::Parts;
    const Step* const steps = program.steps.data();
    const NumberTest* const numbers = program.numbers.data();
    Place place = program.start;
    while (place < kFails) {
        const Step& step = steps[place];
        // In the order in which conditions have them; a switch would ask in another.
        if (step.kind == StepKind::AllUnitValues)
            place = after<&Parts::unitValue, false>(step, numbers, bySlot);
        else if (step.kind == StepKind::AnyUnitValue)
            place = after<&Parts::unitValue, true>(step, numbers, bySlot);
        else if (!withTexts || step.kind != StepKind::Text)
            place = step.kind == StepKind::AllValues ? after<&Parts::value, false>(step, numbers, bySlot)
                                                     : after<&Parts::value, true>(step, numbers, bySlot);
        else
            place = program.texts[step.first].holds(bySlot) ? step.whenTrue : step.whenFalse;
    }
    return place == kHolds;
}

std::vector<KeyTable::Slot> slotsOf(const Program& program) {
    std::vector<KeyTable::Slot> slots;
    for (const NumberTest& test : program.numbers)
        slots.push_back(test.slot);
    for (const TextTest& test : program.texts)
        if (test.slot != TextTest::kNoSlot) slots.push_back(test.slot);
    std::sort(slots.begin(), slots.end());
    slots.erase(std::unique(slots.begin(), slots.end()), slots.end());
    return slots;
}

// Without texts nothing is called, which saves the registers' way to the stack and back.
inline bool verdict(const Program& program, const AgentProperty* const* bySlot) {
    return program.texts.empty() ? run<false>(program, bySlot) : run<true>(program, bySlot);
}

}  // namespace

BoundCondition::BoundCondition(const ConditionNode& tree, const KeyTable& table)
    : m_tableId(table.id()), m_program(boundProgram(tree, table)) {
    if (table.size() > 0) {
        m_slots = slotsOf(m_program);
        return;
    }
    // Nothing can change the verdict, and there is no slot 0 at which a test without a key could look.
    const AgentProperty* const none[1] = {nullptr};
    m_program = {.start = verdict(m_program, none) ? kHolds : kFails};
}

bool BoundCondition::holds(const ReadingsView& readings) const {
    assert(!readings.table || readings.table->id() == m_tableId);
    return verdict(m_program, readings.bySlot);
}

}  // namespace vigil
