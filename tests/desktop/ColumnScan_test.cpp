#include "host/desktop/ColumnScan.hpp"

#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "conditions/ConditionPredicate.hpp"
#include "host/kit/MonitorModule.hpp"
#include "tests/desktop/ReplayedFires.hpp"

namespace vigil::test {
namespace {

/// Few values, so that everything meets: equal ones, missing ones, old times, texts, no numbers.
Announced randomBatches(std::mt19937& random, int count) {
    const auto pick = [&](int below) { return static_cast<int>(random() % static_cast<unsigned>(below)); };
    Announced batches;
    Date now(800'000'000);
    for (int i = 0; i < count; ++i) {
        now = now.plus(pick(4) * 10);
        std::vector<AgentProperty> readings;
        for (const char* key : {"a", "b"}) {
            if (pick(5) == 0) continue;
            std::optional<Date> time = now.plus(-pick(3) * 10);
            if (pick(12) == 0) time.reset();
            readings.push_back(
                AgentProperty::number(key, pick(9) == 0 ? std::nan("") : static_cast<double>(pick(4)), time));
        }
        if (pick(4) != 0) readings.push_back(AgentProperty::text("sky", pick(2) ? "Rain" : "Fog", now));
        if (pick(4) != 0) readings.push_back(AgentProperty::date("dawn", Date(pick(3)), now));
        batches.emplace_back(now, Readings::make(std::move(readings)));
    }
    return batches;
}

const char* const kConditions[] = {
    "a.unitValue < 2",
    "a.unitValue > 1 OR b.unitValue == 3",
    "a.unitValue >= 1 AND b.unitValue <= 2",
    "a.unitValue != 1",
    "nowhere.unitValue != 1 AND a.unitValue == 0",
    "sky.stringValue == \"Rain\" AND a.unitValue < 3",
    "sky.stringValue != \"Rain\" OR b.unitValue > 2",
    "sky.stringValue < \"G\"",
    ("dawn.value == CAST(1, \"NSDate\") OR (a.unitValue > 2 AND (b.unitValue < 1 OR sky.stringValue >= "
     "\"G\"))"),
    "a.stringValue == \"2\"",
};

TEST(ColumnScan, FiresWhenTheModuleFires) {
    ASSERT_TRUE(loadMonitorModule(VIGIL_BINARY_DIR "/bin"));
    std::mt19937 random(7);
    std::size_t fires = 0;
    for (const char* condition : kConditions)
        for (const bool onlyOnChange : {false, true})
            for (const double minutes : {0.0, 0.1, 1.0 / 6, 1.0, 7.5}) {
                const ScanRule rule{minutes, onlyOnChange};
                const auto batches = randomBatches(random, 400);
                Columns columns({"a", "b", "sky", "dawn"}, {"a", "sky"});
                for (const auto& [when, readings] : batches)
                    columns.append(when, *readings);
                const auto parsed = ConditionPredicate::predicateWithFormat(condition).value();
                const auto scanned = scan(columns, parsed->tree(), rule).fires;
                EXPECT_EQ(scanned, replayedFires(condition, rule, batches))
                    << condition << (onlyOnChange ? ", only on change" : "") << ", " << minutes << " min";
                fires += scanned.size();
            }
    EXPECT_GT(fires, 1000u) << "random readings that never fire show nothing";
}

TEST(ColumnScan, HeldStretchesAreThoseOfTheWholeReadings) {
    Columns columns({"a"});
    const int values[] = {0, 5, 6, 1, 7, 7};
    for (int i = 0; i < 6; ++i)
        columns.append(Date(i * 10), *Readings::make({AgentProperty::number("a", values[i], Date(i * 10))}));
    const auto condition = ConditionPredicate::predicateWithFormat("a.unitValue > 4").value();
    const auto result = scan(columns, condition->tree(), {});
    ASSERT_EQ(result.held.size(), 2u);
    EXPECT_EQ(result.held[0].from, 10);
    EXPECT_EQ(result.held[0].to, 20);
    EXPECT_EQ(result.held[1].from, 40);
    EXPECT_EQ(result.held[1].to, 50);
    EXPECT_EQ(result.heldRows, 4u);
    EXPECT_EQ(result.fires, std::vector<double>{10});
}

TEST(ColumnScan, TextsThatAreNotKeptAreNotThere) {
    Columns columns({"sky"});
    columns.append(Date(0), *Readings::make({AgentProperty::text("sky", "Fog", Date(0))}));
    const auto fires = [&](const char* condition) {
        return scan(columns, ConditionPredicate::predicateWithFormat(condition).value()->tree(), {}).fires;
    };
    EXPECT_TRUE(fires("sky.stringValue == \"Fog\"").empty());
    EXPECT_EQ(fires("sky.stringValue != \"Fog\""), std::vector<double>{0});
    EXPECT_EQ(fires("sky.unitValue == 0"), std::vector<double>{0});
}

TEST(ColumnScan, BlocksThatAreReadOneAfterAnotherAreOneColumn) {
    std::mt19937 random(3);
    const auto batches = randomBatches(random, 200);
    Columns whole({"a", "sky"}, {"sky"}), pieces({"a", "sky"}, {"sky"}), second({"a", "sky"}, {"sky"});
    for (std::size_t i = 0; i < batches.size(); ++i) {
        whole.append(batches[i].first, *batches[i].second);
        (i < 80 ? pieces : second).append(batches[i].first, *batches[i].second);
    }
    pieces.append(second);
    const auto condition =
        ConditionPredicate::predicateWithFormat("a.unitValue > 1 AND sky.stringValue == \"Fog\"").value();
    EXPECT_EQ(scan(whole, condition->tree(), {}).fires, scan(pieces, condition->tree(), {}).fires);
    EXPECT_EQ(whole.rows(), pieces.rows());
}

}  // namespace
}  // namespace vigil::test
