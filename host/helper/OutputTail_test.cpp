#include "host/helper/OutputTail.hpp"

#include <gtest/gtest.h>

#include "host/services/ScriptRequest.hpp"

namespace vigil {
namespace {

std::string shown(const std::string& bytes) {
    OutputTail tail;
    tail.append(bytes);
    return tail.lastLines();
}

TEST(OutputTail, KeepsAllThatFits) {
    OutputTail tail;
    tail.append("one\n");
    tail.append(std::string(kLastLines - 4, 'x'));
    EXPECT_EQ(tail.lastLines(), "one\n" + std::string(kLastLines - 4, 'x'));
    EXPECT_FALSE(tail.truncated());
    EXPECT_EQ(tail.bytes(), kLastLines);
}

TEST(OutputTail, ALineThatIsNotWholeIsLeftOut) {
    OutputTail tail;
    tail.append("the first\nand more\n");
    tail.append(std::string(kLastLines - 8, 'x'));
    EXPECT_EQ(tail.lastLines(), std::string(kLastLines - 8, 'x'));
    EXPECT_TRUE(tail.truncated());
}

TEST(OutputTail, ALineThatJustFitsIsKept) {
    EXPECT_EQ(shown("gone\nand more\n" + std::string(kLastLines - 9, 'x')),
              "and more\n" + std::string(kLastLines - 9, 'x'));
}

TEST(OutputTail, OfALineThatAloneIsTooLongItsEndIsKept) {
    EXPECT_EQ(shown(std::string(10000, 'x') + "y\n"), std::string(kLastLines - 2, 'x') + "y\n");
}

TEST(OutputTail, NoCharacterIsCutInTwo) {
    std::string line;
    while (line.size() < 3 * kLastLines)
        line += "€";
    const std::string end = shown(line + "x");
    EXPECT_EQ(end.find('?'), std::string::npos);
    EXPECT_TRUE(end.starts_with("€"));
}

TEST(OutputTail, ManySmallPiecesAreAsOne) {
    OutputTail pieces;
    std::string whole;
    for (int i = 0; i < 5000; ++i) {
        const std::string line = std::to_string(i) + "\n";
        pieces.append(line);
        whole += line;
    }
    EXPECT_EQ(pieces.lastLines(), shown(whole));
    EXPECT_EQ(pieces.bytes(), whole.size());
    EXPECT_TRUE(pieces.lastLines().ends_with("4998\n4999\n"));
}

TEST(OutputTail, WhatIsNoTextReadsAsQuestionMarks) {
    EXPECT_EQ(shown("a\tb\r\nü€😀"), "a\tb\nü€😀");
    EXPECT_EQ(shown(std::string("\0|\x1b[1m|\x7f|\xff|\xc3", 12)), "?|?[1m|?|?|?");
    EXPECT_EQ(shown("\xe2\x82|\xc2\x9b|a\rb"), "??|??|a?b");
}

}  // namespace
}  // namespace vigil
