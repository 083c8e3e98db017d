#include "host/kit/StandardLog.hpp"

#include <cstdlib>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace vigil {
namespace {

/// A stream in memory.
class Written {
  public:
    Written() : m_stream(open_memstream(&m_bytes, &m_size)) {}
    Written(const Written&) = delete;
    Written& operator=(const Written&) = delete;
    ~Written() {
        std::fclose(m_stream);
        std::free(m_bytes);
    }
    std::FILE* stream() { return m_stream; }
    std::string text() {
        std::fflush(m_stream);
        return {m_bytes, m_size};
    }

  private:
    char* m_bytes = nullptr;
    std::size_t m_size = 0;
    std::FILE* m_stream;
};

Date fixedTime() {
    return Date(817641258.25);
}

TEST(StandardLog, ALineHasTimeLevelAndMessage) {
    Written written;
    StandardLog log(written.stream(), kLogDetail, fixedTime);
    log.logLevel(3, "Vigil evaluation dictionary: {} #QRVVigilPlugIn");
    EXPECT_EQ(written.text(), "2026-11-29T10:34:18.250Z 3 Vigil evaluation dictionary: {} #QRVVigilPlugIn\n");
}

TEST(StandardLog, LevelsAboveTheHighestAreNeitherTakenNorWritten) {
    Written written;
    StandardLog log(written.stream(), kLogNotice, fixedTime);
    EXPECT_TRUE(log.takesLevel(kLogNotice));
    EXPECT_FALSE(log.takesLevel(kLogDetail));
    log.logLevel(kLogDetail, "left out");
    EXPECT_EQ(written.text(), "");
    log.setHighestLevel(kLogDetail);
    EXPECT_TRUE(log.takesLevel(kLogDetail));
    log.logLevel(kLogDetail, "in");
    EXPECT_NE(written.text(), "");
}

TEST(StandardLog, AMessageCanNeitherFeignALineNorSteerATerminal) {
    Written written;
    StandardLog log(written.stream(), kLogDetail, fixedTime);
    log.logLevel(1, "a\nb\r\x1b[2J\x7f\tc \xC3\xA4");
    EXPECT_EQ(written.text(), "2026-11-29T10:34:18.250Z 1 a\\nb\\x0d\\x1b[2J\\x7f\\x09c \xC3\xA4\n");
}

TEST(StandardLog, LinesOfSeveralThreadsNeverMix) {
    Written written;
    StandardLog log(written.stream(), kLogDetail, fixedTime);
    constexpr int kThreads = 4, kEach = 200;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < kEach; ++i)
                log.logLevel(3, "the same message");
        });
    for (auto& thread : threads)
        thread.join();
    std::string expected;
    for (int i = 0; i < kThreads * kEach; ++i)
        expected += "2026-11-29T10:34:18.250Z 3 the same message\n";
    EXPECT_EQ(written.text(), expected);
}

TEST(StandardLog, LinesThatCannotBeWrittenAreCounted) {
    std::FILE* full = std::fopen("/dev/full", "w");
    ASSERT_NE(full, nullptr);
    StandardLog log(full, kLogDetail, fixedTime);
    log.logLevel(1, "lost");
    log.logLevel(1, "lost too");
    EXPECT_EQ(log.lostLines(), 2U);
    std::fclose(full);
}

}  // namespace
}  // namespace vigil
