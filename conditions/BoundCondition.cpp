#include "conditions/BoundCondition.hpp"

#include <cassert>
#include <limits>
#include <string_view>

#include "conditions/Binder.hpp"
#include "conditions/Relation.hpp"

namespace vigil {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Stands for a reading that is not there: comparisons with no value come out as those with NaN.
constinit const AgentProperty::Parts kNoParts{.value = kNaN, .unitValue = kNaN};

// An empty table has no slot 0 that a test could look at.
constinit const AgentProperty* const kNoReadings[1] = {nullptr};

// Tests that are asked at once, without a branch between them.
constexpr std::uint32_t kStride = 4;

}  // namespace

BoundCondition::BoundCondition(const ConditionNode& tree, const KeyTable& table)
    : m_tableId(table.id()), m_tableIsEmpty(table.size() == 0) {
    Binder(table, *this).bind(tree);
}

inline bool BoundCondition::NumberTest::holds(const AgentProperty* const* bySlot) const {
    const AgentProperty* reading = bySlot[slot];
    const AgentProperty::Parts& parts = reading ? reading->parts() : kNoParts;
    const double x = parts.*member;
    return ((x >= low) & (x <= high)) != negated;
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

inline bool BoundCondition::allHold(const Step& step, const AgentProperty* const* bySlot) const {
    const NumberTest* test = m_numbers.data() + step.first;
    std::uint32_t left = step.count;
    for (; left >= kStride; left -= kStride, test += kStride) {
        bool all = true;
        for (std::uint32_t i = 0; i < kStride; ++i)
            all &= test[i].holds(bySlot);
        if (!all) return false;
    }
    bool all = true;
    for (; left > 0; --left, ++test)
        all &= test->holds(bySlot);
    return all;
}

bool BoundCondition::holds(const ReadingsView& readings) const {
    assert(!readings.table || readings.table->id() == m_tableId);
    const AgentProperty* const* bySlot = m_tableIsEmpty ? kNoReadings : readings.bySlot;
    const Step* const steps = m_steps.data();
    for (const Step* step = steps;;) {
        bool answer = false;
        switch (step->kind) {
            case StepKind::Numbers:
                answer = allHold(*step, bySlot);
                break;
            case StepKind::Text:
                answer = m_texts[step->first].holds(bySlot);
                break;
            case StepKind::True:
                return true;
            case StepKind::False:
                return false;
        }
        if (answer == step->jumpWhen)
            step = steps + step->target;
        else
            ++step;
    }
}

}  // namespace vigil
