#include "plugins/VigilPlugIn/VigilPlugIn/EmailAddress.hpp"

#include <chrono>
#include <random>
#include <regex>
#include <string>

#include <gtest/gtest.h>

namespace vigil {
namespace {

const std::regex& oracle() {
    static const std::regex pattern{std::string(kEmailAddressPattern)};
    return pattern;
}

TEST(EmailAddress, ThePatternHas133Characters) {
    EXPECT_EQ(kEmailAddressPattern.size(), 133u);
    EXPECT_TRUE(kEmailAddressPattern.starts_with("[a-z0-9!#$%&'*+/=?^_`{|}~-]+(?:\\.[a-z0-9!"));
    EXPECT_TRUE(kEmailAddressPattern.ends_with(
        "@(?:[a-z0-9](?:[a-z0-9-]*[a-z0-9])?\\.)+[a-z0-9](?:[a-z0-9-]*[a-z0-9])?"));
}

TEST(EmailAddress, TakesWhatThePatternTakes) {
    for (const char* text : {"a@b.c", "ann.berg@mail.example.org", "x!#$%&'*+/=?^_`{|}~-@1.2", "a@b-c--d.e-f",
                             "0.1.2@3.4.5.6", "-@a.b"})
        EXPECT_TRUE(matchesEmailAddressPattern(text)) << text;
}

TEST(EmailAddress, RefusesWhatThePatternRefuses) {
    for (const char* text :
         {"",       "@",       "a",        "a@b",       "a@b.",    "a@.b",         "a@b..c",
          ".a@b.c", "a.@b.c",  "a..b@c.d", "a@-b.c",    "a@b-.c",  "a@b.c-",       "a@b.-c",
          "a@@b.c", "a@b@c.d", "Ann@b.c",  "a@B.c",     "a@b.C",   "a@b.c,d@e.f",  "a@b.c ",
          " a@b.c", "a b@c.d", "a@b.c\n",  "\"a\"@b.c", "a@b_c.d", "\xc3\xa5@b.c", "a@\xc3\xa5.c",
          "<a@b.c>"})
        EXPECT_FALSE(matchesEmailAddressPattern(text)) << text;
}

TEST(EmailAddress, EveryByteBetweenTwoGoodHalvesIsJudgedAsThePatternSays) {
    for (int byte = 0; byte < 256; ++byte) {
        const std::string one(1, static_cast<char>(byte));
        for (const std::string& text : {"a" + one + "a@b.c", one + "@b.c", "a@b" + one + "b.c", "a@b.c" + one,
                                        "a@b.c" + one + "c", "a" + one + "b.c"})
            EXPECT_EQ(matchesEmailAddressPattern(text), std::regex_match(text, oracle()))
                << byte << " in " << text;
    }
}

/// All texts of up to seven characters over an alphabet in which each character stands for one kind.
TEST(EmailAddress, AgreesWithTheRegularExpressionOnEveryShortTextOfItsKinds) {
    const std::string alphabet = "a!-.@";
    int taken = 0;
    std::string text;
    for (std::size_t length = 0; length <= 7; ++length) {
        std::size_t count = 1;
        for (std::size_t i = 0; i < length; ++i)
            count *= alphabet.size();
        for (std::size_t number = 0; number < count; ++number) {
            text.clear();
            for (std::size_t rest = number; text.size() < length; rest /= alphabet.size())
                text += alphabet[rest % alphabet.size()];
            const bool expected = std::regex_match(text, oracle());
            ASSERT_EQ(matchesEmailAddressPattern(text), expected) << text;
            taken += expected ? 1 : 0;
        }
    }
    EXPECT_GT(taken, 20) << "the alphabet makes addresses, too";
}

TEST(EmailAddress, AgreesWithTheRegularExpressionOnRandomTexts) {
    std::mt19937 random(20261121);
    const std::string alphabet = "aaz09..--@@!~`AZ ,\n\xc3";
    std::uniform_int_distribution<std::size_t> which(0, alphabet.size() - 1);
    std::uniform_int_distribution<std::size_t> length(0, 8);
    int taken = 0;
    for (int round = 0; round < 20000; ++round) {
        // Half of the texts are pieces around an "@", so that many come near to an address.
        std::string text;
        for (std::size_t n = length(random); n > 0; --n)
            text += alphabet[which(random)];
        if (round % 2 == 0) {
            text = "a" + text + "@b.";
            for (std::size_t n = length(random); n > 0; --n)
                text += alphabet[which(random) % 9];
        }
        const bool expected = std::regex_match(text, oracle());
        ASSERT_EQ(matchesEmailAddressPattern(text), expected) << text;
        taken += expected ? 1 : 0;
    }
    EXPECT_GT(taken, 500);
}

/// Seconds for texts on which a matcher that goes back would need longer than the earth lasts.
double secondsFor(std::size_t length) {
    const std::string many(length, 'a');
    std::string labels, atoms;
    while (labels.size() < length) {
        labels += "a-a.";
        atoms += "a.";
    }
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_FALSE(matchesEmailAddressPattern(many));
    EXPECT_FALSE(matchesEmailAddressPattern("a@" + many));
    EXPECT_FALSE(matchesEmailAddressPattern("a@" + std::string(length, '-')));
    EXPECT_FALSE(matchesEmailAddressPattern("a@" + labels + "!"));
    EXPECT_FALSE(matchesEmailAddressPattern(atoms + "!@a"));
    EXPECT_TRUE(matchesEmailAddressPattern(atoms + "a@" + labels + many));
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

TEST(EmailAddress, AHundredThousandAndTenMillionCharactersTakeTimeInProportion) {
    secondsFor(100000);
    const double small = secondsFor(100000);
    const double large = secondsFor(10000000);
    // A hundred times the length. Quadratic time would be ten thousand times the time; the rest is for a busy
    // machine and for texts that do not fit its caches.
    EXPECT_LT(large, 0.05 + small * 2000) << small << " s";
}

}  // namespace
}  // namespace vigil
