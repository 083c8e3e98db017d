#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/feeds/JsonLine.hpp"
#include "host/feeds/OpenRecorded.hpp"
#include "host/feeds/OrderWindow.hpp"

namespace vigil {
namespace {

struct Outcome {
    std::vector<RecordedNotification> notifications;
    std::vector<FeedProblem> problems;
};

template <class Open>
Outcome readAll(const std::string& text, Open open) {
    Outcome outcome;
    auto opened = open(std::make_shared<std::istringstream>(text),
                       [&outcome](const FeedProblem& problem) { outcome.problems.push_back(problem); });
    EXPECT_TRUE(opened);
    while (opened) {
        auto next = opened.value()->next();
        EXPECT_TRUE(next);
        if (!next || !next.value()) break;
        outcome.notifications.push_back(*std::move(next).value());
    }
    return outcome;
}

Outcome readCsv(const std::string& text) {
    return readAll(text, [](auto in, auto tell) { return openCsv(in, "a.csv", CsvOptions{}, tell); });
}

Outcome readLines(const std::string& text) {
    return readAll(text, [](auto in, auto tell) { return openJsonLines(in, "a", JsonLinesOptions{}, tell); });
}

TEST(FeedLimits, aRowOfTheGreatestLengthIsTakenAndALongerOneLeftOut) {
    const std::string head = "time,a\n";
    const std::string begin = "2026-01-01,";
    // Cells count with one byte each for what ends them.
    const std::string longest(kLongestRow - begin.size() - 1, 'x');
    const Outcome fits = readCsv(head + begin + longest + "\n2026-01-02,y\n");
    EXPECT_TRUE(fits.problems.empty());
    ASSERT_EQ(fits.notifications.size(), 2u);
    EXPECT_EQ(fits.notifications[0].readings->objectForKey("a")->stringValue(), longest);

    const Outcome tooLong = readCsv(head + begin + longest + "x\n2026-01-02,y\n");
    ASSERT_EQ(tooLong.problems.size(), 1u);
    EXPECT_EQ(tooLong.problems[0].line, 2u);
    EXPECT_EQ(tooLong.problems[0].message, "the row has more than 1048576 bytes; left out");
    ASSERT_EQ(tooLong.notifications.size(), 1u);
    EXPECT_EQ(tooLong.notifications[0].line, 3u);
}

TEST(FeedLimits, aLongCellOfBlanksIsNotTakenForAShortOne) {
    const Outcome outcome = readCsv("time,a\n2026-01-01,x" + std::string(kLongestRow, ' ') + "y\n");
    EXPECT_EQ(outcome.problems.size(), 1u);
    EXPECT_TRUE(outcome.notifications.empty());
}

TEST(FeedLimits, aQuoteThatIsNeverClosedCostsNoMoreThanTheLongestRow) {
    std::string text = "time,a\n2026-01-01,\"open\n";
    const std::string row = "2026-01-02,1\n";
    while (text.size() < kLongestRow + 100 * row.size())
        text += row;
    const Outcome outcome = readCsv(text);
    ASSERT_EQ(outcome.problems.size(), 1u);
    EXPECT_EQ(outcome.problems[0].line, 2u);
    EXPECT_GT(outcome.notifications.size(), 90u);
}

TEST(FeedLimits, aStationOfACsvFileHasSoManyReadings) {
    std::string text = "time";
    for (std::size_t i = 0; i < kMostKeysOfStation + 2; ++i)
        text += ",k" + std::to_string(i);
    text += "\n2026-01-01";
    for (std::size_t i = 0; i < kMostKeysOfStation + 2; ++i)
        text += ",1";
    const Outcome outcome = readCsv(text);
    EXPECT_EQ(outcome.problems.size(), 2u);
    ASSERT_EQ(outcome.notifications.size(), 1u);
    EXPECT_EQ(outcome.notifications[0].readings->entries().size(), kMostKeysOfStation);
}

TEST(FeedLimits, aStationOfJsonLinesHasSoManyReadingsAndSaysSoOnce) {
    std::string text;
    for (int line = 0; line < 3; ++line) {
        text += R"({"time":0,"readings":{"last":1)";
        for (std::size_t i = 0; i < kMostKeysOfStation + 2; ++i)
            text += ",\"k" + std::to_string(i) + "\":1";
        text += "}}\n";
    }
    const Outcome outcome = readLines(text);
    ASSERT_EQ(outcome.problems.size(), 1u);
    EXPECT_EQ(outcome.problems[0].message,
              "a station has at most 512 readings; \"k511\" and all further ones are left out");
    ASSERT_EQ(outcome.notifications.size(), 3u);
    EXPECT_EQ(outcome.notifications[2].readings->entries().size(), kMostKeysOfStation);
}

TEST(FeedLimits, aNameHasSoManyBytes) {
    const std::string longest(kLongestName, 'n');
    EXPECT_TRUE(readCsv("time," + longest + "\n2026-01-01,1").problems.empty());
    const Outcome csv = readCsv("time," + longest + "n\n2026-01-01,1");
    EXPECT_EQ(csv.problems.size(), 1u);
    EXPECT_TRUE(csv.notifications.at(0).readings->entries().empty());
    EXPECT_TRUE(readLines(R"({"time":0,"readings":{")" + longest + R"(":1}})").problems.empty());
    const Outcome lines = readLines(R"({"time":0,"readings":{")" + longest + R"(n":1,"a":2}})");
    EXPECT_EQ(lines.problems.size(), 1u);
    EXPECT_EQ(lines.notifications.at(0).readings->entries().size(), 1u);
}

TEST(FeedLimits, thereAreSoManyStations) {
    std::string csv = "station,time,a\n";
    std::string lines;
    for (std::size_t i = 0; i < kMostStations + 1; ++i) {
        csv += std::to_string(i) + ",2026-01-01,1\n";
        lines += R"({"station":")" + std::to_string(i) + R"(","time":0,"readings":{}})" + "\n";
    }
    csv += "0,2026-01-01,1\n";
    const Outcome ofCsv = readCsv(csv);
    EXPECT_EQ(ofCsv.notifications.size(), kMostStations + 1);
    EXPECT_EQ(ofCsv.problems.size(), 1u);
    const Outcome ofLines = readLines(lines);
    EXPECT_EQ(ofLines.notifications.size(), kMostStations);
    EXPECT_EQ(ofLines.problems.size(), 1u);
}

TEST(FeedLimits, aJsonLineOfTheGreatestLengthIsTakenAndALongerOneLeftOut) {
    const std::string begin = R"({"time":0,"readings":{"a":")";
    const std::string end = R"("}})";
    const std::string longest = begin + std::string(kLongestRow - begin.size() - end.size(), 'x') + end;
    EXPECT_EQ(readLines(longest + "\n").notifications.size(), 1u);
    const Outcome tooLong = readLines(" " + longest + "\n" + R"({"time":0,"readings":{}})");
    ASSERT_EQ(tooLong.problems.size(), 1u);
    EXPECT_EQ(tooLong.problems[0].line, 1u);
    ASSERT_EQ(tooLong.notifications.size(), 1u);
    EXPECT_EQ(tooLong.notifications[0].line, 2u);
    EXPECT_EQ(readLines(" " + longest).problems.size(), 1u) << "without its line's end";
}

TEST(FeedLimits, jsonIsSoDeep) {
    const auto nested = [](std::size_t levels) {
        // The line itself is one level.
        return R"({"time":0,"readings":{},"x":)" + std::string(levels - 1, '[') +
               std::string(levels - 1, ']') + "}";
    };
    EXPECT_TRUE(readLines(nested(JsonLine::kDeepest - 1)).problems.empty());
    const Outcome outcome = readLines(nested(JsonLine::kDeepest + 1));
    ASSERT_EQ(outcome.problems.size(), 1u);
    EXPECT_EQ(outcome.problems[0].message, "not JSON: more than 64 levels deep; the line is left out");
    // A long line makes the parser grow, which must not lift the limit.
    const Outcome large =
        readLines(R"({"time":0,"readings":{}})" + std::string(100000, ' ') + "\n" + nested(kLongestRow / 4));
    EXPECT_EQ(large.problems.size(), 1u);
}

TEST(FeedLimits, heldRowsTakeSoManyBytes) {
    OrderWindow window(/*rows=*/1000, {}, /*mostHeldBytes=*/4000);
    const auto readings = Readings::make({AgentProperty::text("a", std::string(900, 'x'), std::nullopt)});
    for (std::size_t i = 0; i < 100; ++i)
        window.add({"A", Date(static_cast<double>(i)), readings, i});
    std::size_t letGo = 0;
    while (window.take())
        ++letGo;
    EXPECT_GE(letGo, 95u);
    window.finish();
    while (window.take())
        ++letGo;
    EXPECT_EQ(letGo, 100u);
}

TEST(FeedLimits, rowsFindTheirPlaceWithinTheWindowAndNoFurther) {
    // One row too late by exactly the window, and one by one row more.
    const auto row = [](std::size_t second) { return std::to_string(1000000000 + second) + ",1\n"; };
    std::string text = "time,a\n";
    for (std::size_t i = 1; i <= kOrderWindow; ++i)
        text += row(10 * i);
    const Outcome inTime = readCsv(text + row(5));
    EXPECT_TRUE(inTime.problems.empty());
    EXPECT_EQ(inTime.notifications.at(0).line, kOrderWindow + 2);
    const Outcome tooLate = readCsv(text + row(10 * kOrderWindow + 10) + row(5));
    ASSERT_EQ(tooLate.problems.size(), 1u);
    EXPECT_EQ(tooLate.problems[0].line, kOrderWindow + 3);
    EXPECT_EQ(tooLate.notifications.size(), kOrderWindow + 1);
}

}  // namespace
}  // namespace vigil
