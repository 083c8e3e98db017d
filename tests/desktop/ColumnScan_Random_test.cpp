#include <limits>
#include <set>

#include <gtest/gtest.h>

#include "conditions/ConditionPredicate.hpp"
#include "host/kit/MonitorModule.hpp"
#include "tests/desktop/NaiveFires.hpp"
#include "tests/support/ConditionGenerator.hpp"

// The scan of a history's columns, the replay of the monitor's own module and a naive monitor fire at the
// same moments, over histories, conditions and waits that nobody has chosen.

namespace vigil::test {
namespace {

/// What the generator's conditions name, but for one that is never there.
const char* const kKeys[] = {"a", "b", "windChill", "k_9", "ORa", "ANDb", "CASTor"};

std::optional<AgentProperty> randomReading(ConditionGenerator& random, const char* key, Date now) {
    static constexpr double kValues[] = {0, -0.0, 1, 10, -1e300, 5e-324, 725803200, 0.1};
    static constexpr double kOdd[] = {std::numeric_limits<double>::quiet_NaN(),
                                      std::numeric_limits<double>::infinity(),
                                      -std::numeric_limits<double>::infinity()};
    static constexpr const char* kTexts[] = {"", "Rain", "rain", "a\"b", "10"};
    // Most are new, some as old as the one before, some without a time.
    std::optional<Date> time = now.plus(-random.below(3) * 10);
    if (random.below(12) == 0) time.reset();
    switch (random.below(7)) {
        case 0:
            return std::nullopt;
        case 1:
            return AgentProperty::text(key, kTexts[random.below(5)], time);
        case 2:
            return AgentProperty::date(key, Date(kValues[random.below(8)]), time);
        case 3:
            return AgentProperty::number(key, kOdd[random.below(3)], time);
        default: {
            const auto label =
                std::make_shared<const AgentPropertyLabel>(AgentPropertyLabel{key, key, "", kNumericType});
            return AgentProperty(
                label,
                {.value = kValues[random.below(8)], .unitValue = kValues[random.below(8)], .time = time});
        }
    }
}

Announced randomHistory(ConditionGenerator& random, int count) {
    Announced batches;
    Date now(800'000'000.25);
    for (int i = 0; i < count; ++i) {
        // Tens of seconds, so that waits end on a notification; now and then a step that is none.
        now = now.plus(random.below(8) == 0 ? random.below(1000) / 7.0 : random.below(4) * 10);
        std::vector<AgentProperty> readings;
        for (const char* key : kKeys)
            if (auto reading = randomReading(random, key, now)) readings.push_back(std::move(*reading));
        batches.emplace_back(now, Readings::make(std::move(readings)));
    }
    return batches;
}

double randomMinutes(ConditionGenerator& random) {
    switch (random.below(6)) {
        case 0:
            return 0;
        case 1:
            return random.below(12) /
                   6.0;  // whole tens of seconds, but for what single precision makes of it
        case 2:
            return random.below(100) / 10.0;
        case 3:
            return -random.below(3);
        case 4:
            return random.below(8) == 0 ? 1e39 : 1e-3;  // the first is too large for single precision
        default:
            return random.below(100'000) / 33'333.0;
    }
}

TEST(ColumnScanAtRandom, TheScanTheModuleAndANaiveMonitorFireAtTheSameMoments) {
    ASSERT_TRUE(loadMonitorModule(VIGIL_BINARY_DIR "/bin"));
    ConditionGenerator random(20261122);
    std::size_t fires = 0, waited = 0;
    std::set<std::size_t> counts;
    for (int i = 0; i < 300 * longFactor(); ++i) {
        const std::string text = random.text(6);
        const ScanRule rule{randomMinutes(random), random.below(2) == 0};
        const auto history = randomHistory(random, 120);
        const std::vector<std::string> keys{std::begin(kKeys), std::end(kKeys)};
        Columns columns(keys, keys);
        for (const auto& [when, readings] : history)
            columns.append(when, *readings);
        const auto condition = ConditionPredicate::predicateWithFormat(text).value();
        const auto scanned = scan(columns, condition->tree(), rule);
        const auto naive = naiveFires(text, rule, history);
        const std::string what = text + (rule.onlyOnChange ? ", only on change, " : ", ") +
                                 std::to_string(rule.retriggerMinutes) + " min";
        ASSERT_EQ(scanned.fires, naive) << what;
        ASSERT_EQ(replayedFires(text, rule, history), naive) << what;
        fires += naive.size();
        waited += scanned.heldRows > naive.size() ? 1 : 0;
        counts.insert(naive.size());
    }
    EXPECT_GT(fires, 2000u) << "histories that never fire show nothing";
    EXPECT_GT(waited, 50u) << "nor do those in which nobody waits";
    EXPECT_GT(counts.size(), 30u);
}

}  // namespace
}  // namespace vigil::test
