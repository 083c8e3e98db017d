#include "conditions/BoundCondition.hpp"

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

// Whether one of the step's tests comes out as wanted. A branch a test: readings change slowly, so their
// branches are foreseen mostly, and a test not made is the fastest.
template <double AgentProperty::Parts::*member, bool wanted>
inline bool anyComesOut(const Program& program, const Step& step, const AgentProperty* const* bySlot) {
    const NumberTest* test = program.numbers.data() + step.first;
    const NumberTest* const end = program.numbers.data() + step.end;
    do {
        if (test->holds<member>(bySlot) == wanted) return true;
    } while (++test != end);
    return false;
}

template <bool withTexts>
bool run(const Program& program, const AgentProperty* const* bySlot) {
    using Parts = AgentProperty::Parts;
    const Step* const steps = program.steps.data();
    for (const Step* step = steps;;) {
        bool answer = false;
        // In the order in which conditions have them; a switch would ask in another.
        if (step->kind == StepKind::AllUnitValues)
            answer = !anyComesOut<&Parts::unitValue, false>(program, *step, bySlot);
        else if (step->kind == StepKind::AnyUnitValue)
            answer = anyComesOut<&Parts::unitValue, true>(program, *step, bySlot);
        else if (step->kind == StepKind::True)
            return true;
        else if (step->kind == StepKind::False)
            return false;
        else if (step->kind == StepKind::AllValues)
            answer = !anyComesOut<&Parts::value, false>(program, *step, bySlot);
        else if (step->kind == StepKind::AnyValue)
            answer = anyComesOut<&Parts::value, true>(program, *step, bySlot);
        else if constexpr (withTexts)
            answer = program.texts[step->first].holds(bySlot);
        if (answer == step->jumpWhen)
            step = steps + step->target;
        else
            ++step;
    }
}

// Without texts nothing is called, which saves the registers' way to the stack and back.
inline bool verdict(const Program& program, const AgentProperty* const* bySlot) {
    return program.texts.empty() ? run<false>(program, bySlot) : run<true>(program, bySlot);
}

}  // namespace

BoundCondition::BoundCondition(const ConditionNode& tree, const KeyTable& table)
    : m_tableId(table.id()), m_program(boundProgram(tree, table)) {
    if (table.size() > 0) return;
    // Nothing can change the verdict, and there is no slot 0 at which a test without a key could look.
    const AgentProperty* const none[1] = {nullptr};
    m_program = {.steps = {{.kind = verdict(m_program, none) ? StepKind::True : StepKind::False}}};
}

bool BoundCondition::holds(const ReadingsView& readings) const {
    assert(!readings.table || readings.table->id() == m_tableId);
    return verdict(m_program, readings.bySlot);
}

}  // namespace vigil
