#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "host/feeds/live/testing/LiveBench.hpp"
#include "host/services/UniqueFd.hpp"

namespace vigil {
namespace {

using std::chrono::milliseconds;
using Texts = std::vector<std::string>;
namespace fs = std::filesystem;

class Lines : public LiveBench {
  protected:
    std::shared_ptr<RecordingSink> follow(const std::string& options = "", const std::string& name = "log") {
        return add("Home", "lines:" + name + options);
    }
};

TEST_F(Lines, AFileThatIsThereIsFollowedFromItsEnd) {
    write("log", "old\n");
    const auto sink = follow();
    ASSERT_TRUE(sink->waitForState(FeedState::Live));
    sleepFor(50);
    append("log", "new\nhal");
    ASSERT_TRUE(sink->waitForMessages(1));
    append("log", "f\r\n");
    ASSERT_TRUE(sink->waitForMessages(2));
    EXPECT_EQ(sink->payloads(), (Texts{"new", "half"}));
}

TEST_F(Lines, AFileIsReadFromItsBeginningWhenThatIsAskedFor) {
    write("log", "one\ntwo\n");
    const auto sink = follow("?from=start");
    ASSERT_TRUE(sink->waitForMessages(2));
    append("log", "three\n");
    ASSERT_TRUE(sink->waitForMessages(3));
    EXPECT_EQ(sink->payloads(), (Texts{"one", "two", "three"}));
}

TEST_F(Lines, ALineThatHadBegunBeforeIsLeftOutWhole) {
    write("log", "old\n{\"half");
    const auto sink = follow();
    ASSERT_TRUE(sink->waitForState(FeedState::Live));
    sleepFor(50);
    append("log", "\":1}\nwhole\n");
    ASSERT_TRUE(sink->waitForMessages(1));
    EXPECT_EQ(sink->payloads(), Texts{"whole"});
}

TEST_F(Lines, AFileThatIsMissingIsWaitedForAndThenReadFromItsBeginning) {
    const auto sink = follow();
    ASSERT_TRUE(sink->waitForState(FeedState::Retrying));
    EXPECT_EQ(sink->lastState().words, path("log") + ": No such file or directory; waiting for it");
    write("log", "first\n");
    ASSERT_TRUE(sink->waitForMessages(1));
    EXPECT_EQ(sink->lastState().kind, FeedState::Live);
    EXPECT_EQ(sink->payloads(), Texts{"first"});
}

TEST_F(Lines, AFileThatIsTurnedOverLosesNoLine) {
    write("log", "");
    const auto sink = follow();
    ASSERT_TRUE(sink->waitForState(FeedState::Live));
    sleepFor(50);
    append("log", "a\nb without an end");
    fs::rename(path("log"), path("log.1"));
    append("log.1", ", still written\nlast of the old");
    write("log", "first of the new\n");
    ASSERT_TRUE(sink->waitForMessages(4));
    append("log", "second\n");
    ASSERT_TRUE(sink->waitForMessages(5));
    EXPECT_EQ(sink->payloads(), (Texts{"a", "b without an end, still written", "last of the old",
                                       "first of the new", "second"}));
    EXPECT_EQ(feeds().counts("Home")->restarts, 1U);
}

TEST_F(Lines, AFileThatIsRemovedIsSaidToBeGoneUntilItIsBack) {
    write("log", "");
    const auto sink = follow();
    ASSERT_TRUE(sink->waitForState(FeedState::Live));
    fs::remove(path("log"));
    ASSERT_TRUE(sink->waitForState(FeedState::Retrying));
    EXPECT_EQ(sink->lastState().words, path("log") + ": is gone; waiting for it");
    write("log", "back\n");
    ASSERT_TRUE(sink->waitForMessages(1));
    EXPECT_EQ(sink->lastState().kind, FeedState::Live);
}

TEST_F(Lines, AFileThatIsCutOffIsReadFromItsBeginning) {
    write("log", "a long line that is there before\n");
    const auto sink = follow();
    ASSERT_TRUE(sink->waitForState(FeedState::Live));
    sleepFor(50);
    fs::resize_file(path("log"), 0);
    sleepFor(150);
    append("log", "fresh\n");
    ASSERT_TRUE(sink->waitForMessages(1));
    EXPECT_EQ(sink->payloads(), Texts{"fresh"});
}

TEST_F(Lines, APipeWithANameGoesOnWhenItsWriterGoes) {
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    const auto sink = follow("", "pipe");
    ASSERT_TRUE(sink->waitForState(FeedState::Live));
    append("pipe", "from one\n");
    ASSERT_TRUE(sink->waitForMessages(1));
    const auto before = processorTime();
    sleepFor(200);
    EXPECT_LT(processorTime() - before, milliseconds(60)) << "a pipe without a writer is no work";
    append("pipe", "from another\n");
    ASSERT_TRUE(sink->waitForMessages(2));
    EXPECT_EQ(sink->payloads(), (Texts{"from one", "from another"}));
    EXPECT_LT(timeOf([&] { feeds().remove("Home"); }), kSoon);
}

TEST_F(Lines, StandardInputIsReadToItsEndAndForOneStation) {
    int ends[2];
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    const UniqueFd before(::dup(0));
    ASSERT_EQ(::dup2(ends[0], 0), 0);
    ::close(ends[0]);
    UniqueFd to(ends[1]);
    const auto sink = add("Home", "lines:-");
    ASSERT_TRUE(sink->waitForState(FeedState::Live));
    const auto second = tryAdd("Other", "lines:-");
    ASSERT_FALSE(second);
    EXPECT_EQ(second.error().message, "feed: standard input is read for the station \"Home\"");
    ASSERT_EQ(::write(to.get(), "one\ntwo", 7), 7);
    ASSERT_TRUE(sink->waitForMessages(1));
    EXPECT_EQ(::fcntl(0, F_GETFL) & O_NONBLOCK, 0) << "it is shared with others, who would be surprised";
    to.reset();
    ASSERT_TRUE(sink->waitForState(FeedState::Ended));
    EXPECT_EQ(sink->payloads(), (Texts{"one", "two"}));
    feeds().remove("Home");
    ::dup2(before.get(), 0);
}

TEST_F(Lines, StandardInputThatSaysNothingHoldsUpNobody) {
    int ends[2];
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    const UniqueFd from(ends[0]), to(ends[1]), before(::dup(0));
    ASSERT_EQ(::dup2(from.get(), 0), 0);
    add("Silent", "lines:-");
    write("log", "one\n");
    const auto sink = follow("?from=start");
    EXPECT_TRUE(sink->waitForMessages(1));
    EXPECT_LT(timeOf([&] { feeds().stop(); }), kSoon);
    ::dup2(before.get(), 0);
}

TEST_F(Lines, AFolderCannotBeFollowed) {
    fs::create_directory(path("log"));
    const auto sink = follow();
    ASSERT_TRUE(sink->waitForState(FeedState::Failed));
    EXPECT_EQ(sink->lastState().words, path("log") + ": is a folder; expected a file or a pipe");
}

TEST_F(Lines, AFullStationHoldsAFileBackAndNothingIsLost) {
    std::string all;
    for (int i = 0; i < 100000; ++i)
        all += std::to_string(i) + "\n";
    write("log", all);
    auto sink = std::make_shared<RecordingSink>();
    sink->setFullAt(10);
    ASSERT_TRUE(tryAdd("Home", "lines:log?from=start", sink));
    ASSERT_TRUE(sink->waitForMessages(10));
    sleepFor(50);
    EXPECT_EQ(sink->count(), 10U);
    sink->setFullAt(1000000);
    ASSERT_TRUE(sink->waitForMessages(100000));
    EXPECT_EQ(sink->payloads().back(), "99999");
    EXPECT_EQ(sink->count(), 100000U);
}

TEST_F(Lines, AFileOnWhichNothingHappensIsHardlyWork) {
    m_timing.look = milliseconds(1000);
    write("log", "");
    const auto sink = follow();
    ASSERT_TRUE(sink->waitForState(FeedState::Live));
    const auto before = processorTime();
    sleepFor(300);
    EXPECT_LT(processorTime() - before, milliseconds(60));
    append("log", "x\n");
    EXPECT_TRUE(sink->waitFor([&] { return sink->count() == 1; }, milliseconds(500)))
        << "the system tells of it, so it does not wait for the next look";
}

}  // namespace
}  // namespace vigil
