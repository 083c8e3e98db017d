// Whatever is accepted prints a text that reads back as the same condition and prints as itself.

#include <string>

#include <gtest/gtest.h>

#include "conditions/ConditionPredicate.hpp"
#include "tests/support/ConditionGenerator.hpp"
#include "tests/support/VectorFile.hpp"

namespace vigil {
namespace {

// True when the text was accepted and its print keeps the law, false when it was refused in order.
bool keepsTheLaw(const std::string& text) {
    const auto read = ConditionPredicate::predicateWithFormat(text);
    if (!read) {
        const SyntaxError& error = read.error();
        EXPECT_LE(error.offset, text.size()) << text;
        EXPECT_LE(error.length, text.size() - error.offset) << text;
        EXPECT_EQ(error.length == 0, error.offset == text.size()) << text;
        EXPECT_FALSE(error.found.empty()) << text;
        EXPECT_FALSE(error.expected.empty()) << text;
        return false;
    }
    const std::string& printed = read.value()->printed();
    const auto again = ConditionPredicate::predicateWithFormat(printed);
    EXPECT_TRUE(again) << text << "\nprints\n" << printed;
    if (!again) return true;
    EXPECT_TRUE(again.value()->isEqual(read.value().get())) << text << "\nprints\n" << printed;
    EXPECT_EQ(again.value()->printed(), printed) << text;
    return true;
}

TEST(PrintLaw, HoldsForRandomConditions) {
    test::ConditionGenerator random(1);
    for (int round = 0; round < 5000 * test::longFactor(); ++round) {
        const std::string text = random.text(16);
        ASSERT_TRUE(keepsTheLaw(text)) << text;
        if (testing::Test::HasFailure()) return;
    }
}

TEST(PrintLaw, HoldsForEveryByteInsideAText) {
    for (int byte = 0; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        const std::string text = std::string("a.stringValue == \"x") + c + "y\"";
        EXPECT_EQ(keepsTheLaw(text), c != '"' && c != '\\') << byte;
    }
}

TEST(PrintLaw, HoldsForOddTexts) {
    test::ConditionGenerator random(2);
    for (int round = 0; round < 5000 * test::longFactor(); ++round) {
        std::string literal;
        for (const char c : random.bytes(24)) {
            if (c == '"' || c == '\\') literal += '\\';
            literal += c;
        }
        ASSERT_TRUE(keepsTheLaw("a.stringValue != \"" + literal + "\" AND b.unitValue < 1")) << literal;
        if (testing::Test::HasFailure()) return;
    }
}

// Any single byte taken out, put in or replaced, everywhere, in every accepted vector.
TEST(PrintLaw, HoldsForEveryDamageOfASingleByte) {
    long accepted = 0;
    long refused = 0;
    for (const auto& each : test::readVectors("conditions", "accepted_")) {
        const std::string text = each.text("text").value();
        for (std::size_t at = 0; at <= text.size(); ++at) {
            for (const char c : std::string("a.V1\" \t\\'()<=!,+-eEO\n\x80")) {
                std::string inserted = text;
                inserted.insert(at, 1, c);
                ++(keepsTheLaw(inserted) ? accepted : refused);
                if (at == text.size()) continue;
                std::string replaced = text;
                replaced[at] = c;
                ++(keepsTheLaw(replaced) ? accepted : refused);
            }
            if (at < text.size()) {
                std::string shorter = text;
                ++(keepsTheLaw(shorter.erase(at, 1)) ? accepted : refused);
            }
            ASSERT_FALSE(testing::Test::HasFailure()) << each.place();
        }
    }
    EXPECT_GT(accepted, 5000);
    EXPECT_GT(refused, 50000);
}

TEST(PrintLaw, HoldsForAnyBytes) {
    test::ConditionGenerator random(3);
    for (int round = 0; round < 20000 * test::longFactor(); ++round) {
        keepsTheLaw(random.bytes(60));
        if (testing::Test::HasFailure()) return;
    }
}

}  // namespace
}  // namespace vigil
