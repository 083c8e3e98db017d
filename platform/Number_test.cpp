#include "platform/Number.hpp"

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace vigil {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(NumberText, HasTheFewestDigitsInPlainOrExponentNotation) {
    const std::vector<std::pair<double, const char*>> vectors = {
        {10, "10"},
        {0.1, "0.1"},
        {100000, "100000"},
        {0, "0"},
        {-0.0, "-0"},
        {-2.5, "-2.5"},
        {1.0 / 3, "0.3333333333333333"},
        {1e-5, "0.00001"},
        {9.9e-6, "9.9e-06"},
        {1e16, "10000000000000000"},
        {9007199254740993.0, "9007199254740992"},
        {45031599627370496.0, "45031599627370500"},
        {-45031599627370496.0, "-45031599627370500"},
        {12345678901234568.0, "12345678901234568"},
        {90071992547409920.0, "90071992547409920"},
        {99999999999999984.0, "99999999999999980"},
        {1e17, "1e+17"},
        {1e300, "1e+300"},
        {5e-324, "5e-324"},
        {kInfinity, "Infinity"},
        {-kInfinity, "-Infinity"},
        {kNaN, "NaN"},
    };
    for (const auto& [value, text] : vectors)
        EXPECT_EQ(numberText(value), text);
}

TEST(NumberText, ReadsBackAsTheSameDouble) {
    std::mt19937_64 random(20261121);
    for (int i = 0; i < 20000; ++i) {
        const std::uint64_t bits = random();
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value)) continue;
        const std::string text = numberText(value);
        double back = 0;
        const auto end = std::from_chars(text.data(), text.data() + text.size(), back);
        ASSERT_EQ(end.ptr, text.data() + text.size()) << text;
        ASSERT_EQ(std::memcmp(&back, &value, sizeof value), 0) << text;
    }
}

TEST(NumberText, ReadsBackAsTheSameDoubleWherePlainNotationEnds) {
    std::mt19937_64 random(20261122);
    for (int i = 0; i < 20000; ++i) {
        const double value =
            std::ldexp(static_cast<double>(random() >> 11), static_cast<int>(random() % 8) - 1);
        const std::string text = numberText(value);
        double back = 0;
        std::from_chars(text.data(), text.data() + text.size(), back);
        ASSERT_EQ(back, value) << text;
        ASSERT_EQ(text.find('e') != std::string::npos, value >= 1e17) << text;
    }
}

TEST(NumberText, AppendsToWhatStandsThere) {
    std::string text = "a = ";
    appendNumber(text, 1.5);
    EXPECT_EQ(text, "a = 1.5");
}

TEST(Number, RemembersWhetherItWasAnInteger) {
    EXPECT_TRUE(Number(1).isInteger());
    EXPECT_FALSE(Number(1.0).isInteger());
    EXPECT_NE(Number(1), Number(1.0));
    EXPECT_EQ(Number(1), Number(std::int64_t{1}));
    EXPECT_EQ(Number(3).doubleValue(), 3.0);
}

TEST(Number, IntegerValueCutsAndKeepsToItsRange) {
    EXPECT_EQ(Number(2.9).integerValue(), 2);
    EXPECT_EQ(Number(-2.9).integerValue(), -2);
    EXPECT_EQ(Number(kNaN).integerValue(), 0);
    EXPECT_EQ(Number(kInfinity).integerValue(), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(Number(0x1p63).integerValue(), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(Number(-0x1p63).integerValue(), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(Number(-1e300).integerValue(), std::numeric_limits<std::int64_t>::min());
}

TEST(Number, FloatValueGoesThroughSinglePrecisionAndOverflowsToInfinity) {
    EXPECT_EQ(Number(0.1).floatValue(), 0.1F);
    EXPECT_EQ(Number(16777217).floatValue(), 16777216.0F);
    constexpr float most = std::numeric_limits<float>::max();
    EXPECT_EQ(Number(static_cast<double>(most)).floatValue(), most);
    EXPECT_EQ(Number(std::nextafter(0x1.ffffffp127, 0)).floatValue(), most);
    EXPECT_EQ(Number(0x1.ffffffp127).floatValue(), std::numeric_limits<float>::infinity());
    EXPECT_EQ(Number(-1e300).floatValue(), -std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::isnan(Number(kNaN).floatValue()));
}

// The quick way for numbers of few decimals against the library's shortest form.
TEST(NumberText, IsTheShortestFormForEveryDecimal) {
    const auto shortest = [](double value) {
        char text[64];
        return std::string(text,
                           std::to_chars(text, text + sizeof text, value, std::chars_format::fixed).ptr);
    };
    std::mt19937_64 random(1);
    const auto expectShortest = [&](double value) {
        if (value < 1e-5) return;  // printed with an exponent
        EXPECT_EQ(numberText(value), shortest(value));
        EXPECT_EQ(numberText(-value), shortest(-value));
    };
    for (const double scale : {1.0, 10.0, 100.0, 1000.0, 10000.0, 100000.0, 1048576.0}) {
        for (int i = 1; i < 3000; ++i)
            expectShortest(i / scale);
        for (int digits = 1; digits <= 17; ++digits)
            for (int i = 0; i < 200; ++i) {
                const auto whole =
                    static_cast<double>(random() % static_cast<std::uint64_t>(std::pow(10, digits)));
                const double value = whole / scale;
                if (value >= 9e15) continue;  // whole numbers above have tests of their own
                expectShortest(value);
                expectShortest(std::nextafter(value, 0));
                expectShortest(std::nextafter(value, 9e15));
            }
        if (HasFailure()) return;
    }
}

}  // namespace
}  // namespace vigil
