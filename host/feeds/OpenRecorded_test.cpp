#include "host/feeds/OpenRecorded.hpp"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "host/feeds/OpenRecorded_Bytes.hpp"

namespace vigil {
namespace {

namespace fs = std::filesystem;

class OpenRecorded : public testing::Test {
  protected:
    OpenRecorded() { fs::create_directories(m_folder); }
    ~OpenRecorded() override { fs::remove_all(m_folder); }

    std::string file(const std::string& name, const std::string& contents) {
        const fs::path path = m_folder / name;
        std::ofstream(path, std::ios::binary) << contents;
        return path.string();
    }

    fs::path m_folder =
        fs::path(testing::TempDir()) /
        ("feeds-" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
};

std::size_t countOf(Opened opened) {
    EXPECT_TRUE(opened) << (opened ? "" : opened.error().message);
    std::size_t count = 0;
    while (opened) {
        const auto next = opened.value()->next();
        EXPECT_TRUE(next);
        if (!next || !next.value()) break;
        ++count;
    }
    return count;
}

TEST_F(OpenRecorded, theFormIsToldFromTheName) {
    std::vector<std::string> told;
    const ProblemTeller tell = [&told](const FeedProblem& problem) { told.push_back(problem.message); };
    const std::string contents = "{time,{a\n2026-01-01,1\n";
    CsvOptions csv;
    csv.timeColumn = "{time";
    EXPECT_EQ(countOf(openRecorded(file("a.csv", contents), csv, {}, tell)), 1u);
    EXPECT_TRUE(told.empty());
    EXPECT_EQ(countOf(openRecorded(file("a.jsonl", "nope\n"), {}, {}, tell)), 0u);
    EXPECT_EQ(told.size(), 1u);
}

TEST_F(OpenRecorded, elseTheFormIsToldFromTheFirstByte) {
    const std::string line = R"({"time":0,"readings":{}})";
    EXPECT_EQ(countOf(openRecorded(file("a", "time,a\n2026-01-01,1\n"), {}, {}, {})), 1u);
    EXPECT_EQ(countOf(openRecorded(file("b", line + "\n" + line), {}, {}, {})), 2u);
    EXPECT_EQ(countOf(openRecorded(file("c", "\xEF\xBB\xBF\n  " + line), {}, {}, {})), 1u);
    EXPECT_EQ(countOf(openRecorded(file("d", std::string(10000, '\n') + line), {}, {}, {})), 1u);
    EXPECT_EQ(countOf(openRecorded(file("e", ""), {}, {}, {})), 0u);
}

TEST_F(OpenRecorded, whatIsNotThereCannotBeRead) {
    const auto missing = openCsv((m_folder / "none").string(), {}, {});
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error().kind, OpenError::Kind::CannotRead);
    EXPECT_NE(missing.error().message.find("none: cannot be opened: "), std::string::npos);
    const auto folder = openJsonLines(m_folder.string(), {}, {});
    ASSERT_FALSE(folder);
    EXPECT_EQ(folder.error().kind, OpenError::Kind::CannotRead);
}

TEST_F(OpenRecorded, aFileWithoutAHeaderIsBadInput) {
    const auto opened = openCsv(file("a", "\n"), {}, {});
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error().kind, OpenError::Kind::BadInput);
}

/// A disk that fails after what it holds.
class FailingBytes final : public Bytes {
  public:
    explicit FailingBytes(std::string contents) : m_contents(std::move(contents)) {}
    Result<std::size_t> read(char* to, std::size_t) override {
        if (m_at == m_contents.size()) return Error{"disk: gone"};
        *to = m_contents[m_at++];
        return std::size_t{1};
    }

  private:
    std::string m_contents;
    std::size_t m_at = 0;
};

void expectFailureThenEnd(Opened opened) {
    ASSERT_TRUE(opened);
    const auto failed = opened.value()->next();
    ASSERT_FALSE(failed);
    EXPECT_EQ(failed.error().message, "disk: gone");
    const auto after = opened.value()->next();
    ASSERT_TRUE(after);
    EXPECT_FALSE(after.value());
}

TEST_F(OpenRecorded, aDiskThatFailsIsAnErrorAndThenTheEnd) {
    expectFailureThenEnd(openCsv(std::make_unique<FailingBytes>("time,a\n2026-01-01,1\n"), "x", {}, {}));
    expectFailureThenEnd(
        openJsonLines(std::make_unique<FailingBytes>("{\"time\":0,\"readings\":{}}\n"), "x", {}, {}));
    const auto inHeader = openCsv(std::make_unique<FailingBytes>("time,"), "x", {}, {});
    ASSERT_FALSE(inHeader);
    EXPECT_EQ(inHeader.error().kind, OpenError::Kind::CannotRead);
}

TEST_F(OpenRecorded, whatADiskFailsInTheMiddleOfIsNotTakenForWhole) {
    expectFailureThenEnd(
        openCsv(std::make_unique<FailingBytes>("time,a\n2026-01-01,1"), "x", {.orderWindow = 0}, {}));
    expectFailureThenEnd(openJsonLines(std::make_unique<FailingBytes>("{\"time\":0,\"readings\":{}}"), "x",
                                       {.orderWindow = 0}, {}));
}

TEST_F(OpenRecorded, withoutAWindowALineIsGivenBeforeTheNextIsRead) {
    // The second read would fail, so the first line must have come without it.
    auto opened = openJsonLines(std::make_unique<FailingBytes>("{\"time\":0,\"readings\":{}}\n"), "x",
                                {.orderWindow = 0}, {});
    const auto first = opened.value()->next();
    ASSERT_TRUE(first);
    EXPECT_TRUE(first.value());
}

TEST_F(OpenRecorded, notificationsOfAStationShareTableAndLabelsUntilAKeyIsNew) {
    auto in = std::make_shared<std::istringstream>(
        "{\"time\":1,\"readings\":{\"a\":1,\"b\":2}}\n"
        "{\"time\":2,\"readings\":{\"b\":3}}\n"
        "{\"time\":3,\"readings\":{\"c\":4,\"a\":5}}\n");
    auto opened = openJsonLines(in, "x", {}, {});
    const auto first = opened.value()->next().value()->readings;
    const auto second = opened.value()->next().value()->readings;
    const auto third = opened.value()->next().value()->readings;
    EXPECT_EQ(first->table(), second->table());
    EXPECT_NE(second->table(), third->table());
    EXPECT_EQ(third->table()->keys(), (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_EQ(first->objectForKey("a")->label(), third->objectForKey("a")->label());
    EXPECT_EQ(first->objectForKey("b")->label(), second->objectForKey("b")->label());
}

TEST_F(OpenRecorded, aReadingHasTheTimeOfItsRowUnlessItHasItsOwn) {
    auto lines = std::make_shared<std::istringstream>(
        R"({"time":"2001-01-01T00:00:10Z","readings":{"a":1,"b":{"value":2,"time":"2001-01-01T00:00:05Z"}}})");
    const auto readings = openJsonLines(lines, "x", {}, {}).value()->next().value()->readings;
    EXPECT_EQ(readings->objectForKey("a")->time(), Date(10));
    EXPECT_EQ(readings->objectForKey("b")->time(), Date(5));
    auto csv = std::make_shared<std::istringstream>("time,a,b\n2001-01-01T00:00:10Z,1,x\n");
    const auto row = openCsv(csv, "x", {}, {}).value()->next().value()->readings;
    EXPECT_EQ(row->objectForKey("a")->time(), Date(10));
    EXPECT_EQ(row->objectForKey("b")->time(), Date(10));
}

TEST_F(OpenRecorded, aColumnIsShownByTheNameOfAKnownReadingOrByItsOwn) {
    auto csv = std::make_shared<std::istringstream>("time,windChill,AqPM2.5,hail\n2001-01-01,1,2,3\n");
    const auto readings = openCsv(csv, "x", {}, {}).value()->next().value()->readings;
    EXPECT_EQ(readings->objectForKey("windChill")->name(), "Wind Chill");
    EXPECT_EQ(readings->objectForKey("windChill")->unit(), "°C");
    EXPECT_EQ(readings->objectForKey("AqPM2_5")->name(), "AqPM2.5");
    EXPECT_EQ(readings->objectForKey("hail")->name(), "hail");
}

}  // namespace
}  // namespace vigil
