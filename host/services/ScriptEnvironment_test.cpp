#include "host/services/ScriptEnvironment.hpp"

#include <gmock/gmock.h>
#include <stdlib.h>

#include "host/services/ScriptRunner.hpp"

namespace vigil {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Key;
using testing::Not;
using testing::Pair;

AgentProperty reading(std::string key, double value, double unitValue, std::string unit) {
    auto label = std::make_shared<AgentPropertyLabel>();
    label->propertyName = label->name = std::move(key);
    label->unit = std::move(unit);
    return {label, {.value = value, .unitValue = unitValue}};
}

AgentProperty text(const std::string& key, std::string value) {
    return AgentProperty::text(key, std::move(value), std::nullopt);
}

TEST(ScriptEnvironment, GivesTheReadingInTheUsersUnitAndAsPeopleSeeIt) {
    const auto readings = Readings::make({reading("temp", 294.65, 21.5, "°C"), text("sky", "clear")});
    EXPECT_THAT(scriptEnvironment("Pier 7", "Frost", *readings),
                ElementsAre(Pair("VIGIL_SITE", "Pier 7"), Pair("VIGIL_MONITOR", "Frost"),
                            Pair("VIGIL_temp", "21.5"), Pair("VIGIL_sky", "clear"),
                            Pair("VIGIL_temp_TEXT", "21.5 °C"), Pair("VIGIL_sky_TEXT", "clear")));
}

TEST(ScriptEnvironment, OfEqualKeysTheLastReadingCounts) {
    const auto readings = Readings::make({reading("a", 1, 1, ""), reading("a", 2, 2, "")});
    const auto entries = scriptEnvironment("", "", *readings);
    EXPECT_THAT(entries, Contains(Pair("VIGIL_a", "2")));
    EXPECT_THAT(entries, Not(Contains(Pair("VIGIL_a", "1"))));
}

TEST(ScriptEnvironment, NoReadingTakesANameThatIsTaken) {
    const auto readings =
        Readings::make({text("SITE", "x"), text("RUN", "x"), text("a", "plain"), text("a_TEXT", "its own")});
    EXPECT_THAT(
        scriptEnvironment("Pier 7", "Frost", *readings),
        ElementsAre(Pair("VIGIL_SITE", "Pier 7"), Pair("VIGIL_MONITOR", "Frost"), Pair("VIGIL_a", "plain"),
                    Pair("VIGIL_a_TEXT", "its own"), Pair("VIGIL_SITE_TEXT", "x"),
                    Pair("VIGIL_RUN_TEXT", "x"), Pair("VIGIL_a_TEXT_TEXT", "its own")));
}

TEST(ScriptEnvironment, NulIsRemovedNewlinesStayAndAKeyThatIsNoNameIsLeftOut) {
    const auto readings =
        Readings::make({text("a", std::string("x\0y\nz", 5)), text("b=c", "no"), text("", "no")});
    EXPECT_THAT(scriptEnvironment(std::string("s\0", 2), "m", *readings),
                ElementsAre(Pair("VIGIL_SITE", "s"), Pair("VIGIL_MONITOR", "m"), Pair("VIGIL_a", "xy\nz"),
                            Pair("VIGIL_a_TEXT", "xy\nz")));
}

TEST(ScriptEnvironment, AnOverLongValueIsCutBetweenTwoCharacters) {
    const std::string most(kEnvironmentValue - 1, 'x');
    const auto readings = Readings::make({text("fits", most + "y"), text("cut", most + "ü")});
    const auto entries = scriptEnvironment("", "", *readings);
    EXPECT_THAT(entries, Contains(Pair("VIGIL_fits", most + "y")));
    EXPECT_THAT(entries, Contains(Pair("VIGIL_cut", most)));
}

TEST(ScriptEnvironment, StaysWithinItsSizeHoweverManyReadings) {
    std::vector<AgentProperty> many;
    for (int i = 0; i < 500; ++i)
        many.push_back(text("k" + std::to_string(i), std::string(1000, 'x')));
    const auto entries = scriptEnvironment("s", "m", *Readings::make(many));
    std::size_t size = 0;
    for (const auto& [name, value] : entries)
        size += name.size() + value.size() + 2;
    EXPECT_LE(size, kEnvironmentSize);
    EXPECT_GT(size, kEnvironmentSize - 1100) << "what fits is there";
    EXPECT_THAT(entries, Contains(Key("VIGIL_k0")));
    EXPECT_THAT(entries, Not(Contains(Key("VIGIL_k499"))));
    ScriptRequest request;
    request.environment = entries;
    EXPECT_EQ(whyRefused(request), "");
}

TEST(InheritedEnvironment, HasAPathAlways) {
    const std::string before = ::getenv("PATH");
    ::unsetenv("PATH");
    EXPECT_THAT(inheritedEnvironment(), Contains(Pair("PATH", "/usr/local/bin:/usr/bin:/bin")));
    ::setenv("PATH", before.c_str(), 1);
    EXPECT_THAT(inheritedEnvironment(), Contains(Pair("PATH", before)));
}

TEST(InheritedEnvironment, HoldsNothingThatIsNotListed) {
    ::setenv("API_TOKEN", "secret", 1);
    ::setenv("LD_PRELOAD_TEST", "x", 1);
    ::setenv("LC_PAPER", "C", 1);
    const auto entries = inheritedEnvironment();
    ::unsetenv("API_TOKEN");
    ::unsetenv("LD_PRELOAD_TEST");
    ::unsetenv("LC_PAPER");
    EXPECT_THAT(entries, Contains(Pair("LC_PAPER", "C")));
    EXPECT_THAT(entries, Not(Contains(Key("API_TOKEN"))));
    EXPECT_THAT(entries, Not(Contains(Key("LD_PRELOAD_TEST"))));
}

}  // namespace
}  // namespace vigil
