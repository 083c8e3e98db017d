#include "plugins/VigilPlugIn/VigilPlugIn/ActionStatus.hpp"

#include <random>

#include <gtest/gtest.h>

namespace vigil {
namespace {

TEST(ActionStatus, ReadsAsIfEachPieceHadBeenAppendedAtOnce) {
    for (unsigned seed = 1; seed <= 200; ++seed) {
        std::mt19937 random(seed);
        ActionStatus status;
        std::string whole;
        int heard = 0;
        const auto token = status.observe([&] { ++heard; });
        for (int step = 1; step <= 100; ++step) {
            if (random() % 8 == 0) {
                whole = random() % 3 == 0 ? "" : "The conditions have NOT triggered an alert yet.";
                status.set(whole);
            } else {
                std::optional<Date> date;
                if (random() % 5 != 0) date = Date(static_cast<double>(random()) - 1e9);
                status.appendNextTrigger(date);
                whole += "Next trigger at " + (date ? date->description() : "(null)");
            }
            ASSERT_EQ(heard, step) << "seed " << seed;
            if (random() % 4 == 0) {
                ASSERT_EQ(status.text(), whole) << "seed " << seed << ", step " << step;
            }
        }
        ASSERT_EQ(status.text(), whole) << "seed " << seed;
    }
}

}  // namespace
}  // namespace vigil
