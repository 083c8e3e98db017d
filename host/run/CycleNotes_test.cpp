#include "host/run/CycleNotes.hpp"

#include <gtest/gtest.h>

#include "platform/Object.hpp"

namespace vigil {
namespace {

class Named : public Object {
  public:
    std::string className() const override { return "Named"; }
};

CycleReport report(CycleOutcome outcome, std::optional<Date> next = {}) {
    CycleReport made;
    made.outcome = outcome;
    made.next = next;
    return made;
}

TEST(CycleNotes, CountsByOutcomeAndKeepsTheLast) {
    CycleTimes times;
    CycleNotes notes(times);
    EXPECT_FALSE(notes.last());
    CycleNotes::begin();
    const Named plugIn;
    notes.cycleEnded(plugIn, report(CycleOutcome::Missed));
    notes.cycleEnded(plugIn, report(CycleOutcome::Fired, Date(60)));
    notes.cycleEnded(plugIn, report(CycleOutcome::Waiting, Date(60)));
    EXPECT_EQ(notes.count(CycleOutcome::Missed), 1u);
    EXPECT_EQ(notes.count(CycleOutcome::Fired), 1u);
    EXPECT_EQ(notes.count(CycleOutcome::Waiting), 1u);
    EXPECT_EQ(notes.last(), CycleOutcome::Waiting);
    EXPECT_EQ(notes.next(), Date(60));
    EXPECT_EQ(times.fired.counts().all, 1u);
    EXPECT_EQ(times.judged.counts().all, 2u);
}

TEST(CycleNotes, AWaitIsNoChangeWorthSaving) {
    CycleTimes times;
    CycleNotes notes(times);
    const Named plugIn;
    notes.cycleEnded(plugIn, report(CycleOutcome::Waiting));
    EXPECT_FALSE(notes.takeChanged());
    notes.cycleEnded(plugIn, report(CycleOutcome::Missed));
    EXPECT_TRUE(notes.takeChanged());
    EXPECT_FALSE(notes.takeChanged()) << "once is enough";
}

}  // namespace
}  // namespace vigil
