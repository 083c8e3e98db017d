#include "host/words/NearestWord.hpp"

#include <gtest/gtest.h>

namespace vigil {
namespace {

const std::vector<std::string> kWords = {"rate", "voice", "language", "log-level"};

TEST(NearestWord, IsTheOneThatWasMeant) {
    EXPECT_EQ(nearestWord("rat", kWords), "rate");
    EXPECT_EQ(nearestWord("vioce", kWords), "voice");
    EXPECT_EQ(nearestWord("languages", kWords), "language");
    EXPECT_EQ(nearestWord("log_level", kWords), "log-level");
}

TEST(NearestWord, IsNoneWhereMoreThanAThirdOfTheLettersDiffer) {
    EXPECT_EQ(nearestWord("port", kWords), "");
    EXPECT_EQ(nearestWord("", kWords), "");
    EXPECT_EQ(nearestWord("rate", {}), "");
}

TEST(NearestWord, DoesNotCompareWordsOfMoreThan64Letters) {
    const std::string longest(64, 'a');
    EXPECT_EQ(nearestWord(longest, {longest + "b", longest}), longest);
    EXPECT_EQ(nearestWord(longest + "a", {longest}), "");
}

}  // namespace
}  // namespace vigil
