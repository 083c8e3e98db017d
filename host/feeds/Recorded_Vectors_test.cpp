#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/feeds/OpenRecorded.hpp"

namespace vigil {
namespace {

namespace fs = std::filesystem;

std::string contents(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

/// The lines that count, and the options among them.
struct Expected {
    std::string events;
    CsvOptions csv;
    JsonLinesOptions lines;
};

void setOption(Expected& expected, const std::string& name, std::string value) {
    std::replace(value.begin(), value.end(), '_', ' ');
    if (name == "separator")
        expected.csv.separator = value == "tab" ? '\t' : value[0];
    else if (name == "station")
        expected.csv.station = expected.lines.station = value;
    else if (name == "time-column")
        expected.csv.timeColumn = value;
    else if (name == "station-column")
        expected.csv.stationColumn = value;
    else if (name == "units" && value == "us")
        expected.csv.units = UnitSystem::Us;
    else if (name == "order")
        expected.csv.orderWindow = expected.lines.orderWindow = std::stoul(value);
    else
        ADD_FAILURE() << "no option " << name << "=" << value;
}

Expected readExpected(const fs::path& path) {
    Expected expected;
    std::istringstream in(contents(path));
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with("#")) continue;
        if (!line.starts_with("options ")) {
            expected.events += line + "\n";
            continue;
        }
        std::istringstream words(line.substr(8));
        for (std::string word; words >> word;)
            setOption(expected, word.substr(0, word.find('=')), word.substr(word.find('=') + 1));
    }
    return expected;
}

std::string eventLine(const RecordedNotification& notification) {
    const double seconds = notification.time.secondsSinceReference();
    const bool whole = seconds == static_cast<double>(static_cast<long long>(seconds));
    return std::to_string(notification.line) + " " +
           (notification.station.empty() ? "-" : notification.station) + " " +
           notification.time.isoText(whole ? 0 : 1) + " " + notification.readings->description() + "\n";
}

std::string eventsOf(const fs::path& path, const Expected& expected) {
    std::string events;
    const ProblemTeller tell = [&events](const FeedProblem& problem) {
        events += "problem " + std::to_string(problem.line) + ": " + problem.message + "\n";
    };
    auto in = std::make_shared<std::istringstream>(contents(path));
    const std::string name = path.filename().string();
    auto opened = path.extension() == ".csv" ? openCsv(in, name, expected.csv, tell)
                                             : openJsonLines(in, name, expected.lines, tell);
    if (!opened) return events + "error " + opened.error().message + "\n";
    for (;;) {
        const auto next = opened.value()->next();
        if (!next) return events + "failed " + next.error().message + "\n";
        if (!next.value()) return events;
        events += eventLine(*next.value());
    }
}

std::vector<fs::path> vectors(const std::string& folder) {
    std::vector<fs::path> found;
    for (const auto& entry : fs::directory_iterator(fs::path(VIGIL_SOURCE_DIR) / "tests/vectors" / folder))
        if (entry.path().extension() == ".csv" || entry.path().extension() == ".jsonl")
            found.push_back(entry.path());
    std::sort(found.begin(), found.end());
    return found;
}

class RecordedVectors : public testing::TestWithParam<fs::path> {};

TEST_P(RecordedVectors, giveWhatIsExpected) {
    fs::path expectedPath = GetParam();
    expectedPath.replace_extension(".expected");
    ASSERT_TRUE(fs::exists(expectedPath)) << expectedPath;
    const Expected expected = readExpected(expectedPath);
    EXPECT_EQ(eventsOf(GetParam(), expected), expected.events);
}

std::string testName(const testing::TestParamInfo<fs::path>& info) {
    std::string name = info.param.stem().string();
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Csv, RecordedVectors, testing::ValuesIn(vectors("csv")), testName);
INSTANTIATE_TEST_SUITE_P(JsonLines, RecordedVectors, testing::ValuesIn(vectors("jsonlines")), testName);

}  // namespace
}  // namespace vigil
