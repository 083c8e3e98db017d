#include "host/feeds/live/LineCutter.hpp"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace vigil {
namespace {

struct Cut {
    explicit Cut(std::size_t longest = 100)
        : cutter(
              [this](std::string_view line) {
                  lines.emplace_back(line);
                  return lines.size() < stopAt;
              },
              [this] { ++tooLong; }, longest) {}
    bool take(std::string_view bytes) { return cutter.take(bytes); }
    void finish() { cutter.finish(); }

    std::vector<std::string> lines;
    std::size_t stopAt = 1000;
    int tooLong = 0;
    LineCutter cutter;
};

using Lines = std::vector<std::string>;

TEST(LineCutter, CutsWhateverThePieces) {
    const std::string whole = "one\ntwo\r\n\n\r\nthree\rmore\n";
    for (std::size_t size = 1; size <= whole.size(); ++size) {
        Cut cut;
        for (std::size_t at = 0; at < whole.size(); at += size)
            cut.take(std::string_view(whole).substr(at, size));
        EXPECT_EQ(cut.lines, (Lines{"one", "two", "three\rmore"})) << "in pieces of " << size;
    }
}

TEST(LineCutter, KeepsWhatNothingEndsUntilItIsFinished) {
    Cut cut;
    cut.take("one\ntw");
    EXPECT_EQ(cut.lines, Lines{"one"});
    cut.take("o");
    cut.finish();
    EXPECT_EQ(cut.lines, (Lines{"one", "two"}));
    cut.finish();
    EXPECT_EQ(cut.lines.size(), 2U);
}

TEST(LineCutter, ALineOfExactlyTheMostIsALineAndOneByteMoreIsNone) {
    Cut cut(4);
    cut.take("abcd\nabcde\nx\n");
    EXPECT_EQ(cut.lines, (Lines{"abcd", "x"}));
    EXPECT_EQ(cut.tooLong, 1);
}

TEST(LineCutter, ALineThatNeverEndsIsToldOnceAndNothingOfItStays) {
    Cut cut(4);
    for (int i = 0; i < 1000; ++i)
        cut.take("abc");
    EXPECT_EQ(cut.tooLong, 1);
    cut.take("abc\nnext\n");
    EXPECT_EQ(cut.lines, Lines{"next"});
    EXPECT_EQ(cut.tooLong, 1);
}

TEST(LineCutter, StopsBehindALineWhenTheNextMayNotFollowAndGoesOnLater) {
    Cut cut;
    cut.stopAt = 2;
    EXPECT_FALSE(cut.take("one\ntwo\nthree\nfo"));
    EXPECT_EQ(cut.lines, (Lines{"one", "two"}));
    cut.stopAt = 3;
    EXPECT_FALSE(cut.cutter.goOn());
    EXPECT_EQ(cut.lines, (Lines{"one", "two", "three"}));
    cut.stopAt = 100;
    EXPECT_TRUE(cut.cutter.goOn());
    EXPECT_TRUE(cut.cutter.goOn());
    EXPECT_TRUE(cut.take("ur\n"));
    EXPECT_EQ(cut.lines, (Lines{"one", "two", "three", "four"}));
}

TEST(LineCutter, TheRestOfALineWhoseBeginningNobodySawIsLeftOut) {
    Cut cut;
    cut.cutter.skipRest();
    cut.take("est\"}");
    cut.take("\nwhole\n");
    EXPECT_EQ(cut.lines, Lines{"whole"});
    EXPECT_EQ(cut.tooLong, 0);
}

}  // namespace
}  // namespace vigil
