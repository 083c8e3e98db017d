#include <fcntl.h>
#include <unistd.h>

#include "host/kit/StandardLog.hpp"
#include "tests/desktop/Windowed.hpp"

// Lines of the log that find no way out of the program.

namespace vigil::test {
namespace {

/// What is written for people to standard error finds a disk that is full.
class FullDisk {
  public:
    FullDisk() : m_kept(::dup(STDERR_FILENO)) {
        const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
        ::dup2(full, STDERR_FILENO);
        ::close(full);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
    ~FullDisk() {
        ::dup2(m_kept, STDERR_FILENO);
        ::close(m_kept);
    }

  private:
    const int m_kept;
};

TEST_F(Windowed, LinesOfTheLogThatFindNoWayOutAreCountedAndTold) {
    openFirst();
    stage.window().dock("log")->show();
    const auto* lost = stage.window().findChild<QLabel*>("lostLines");
    ASSERT_NE(lost, nullptr);
    turn(300);
    EXPECT_TRUE(lost->isHidden());
    EXPECT_EQ(stage.session().site().status().lostLogLines, 0u);
    {
        const FullDisk disk;
        stage.session().log().logLevel(kLogProblem, "the cellar is flooded");
        stage.session().log().logLevel(kLogProblem, "so is the attic");
    }
    EXPECT_EQ(stage.session().site().status().lostLogLines, 2u);
    EXPECT_TRUE(waitUntil([&] { return lost->isVisible() && lost->text().startsWith("2 lines"); }))
        << utf8(lost->text());
}

}  // namespace
}  // namespace vigil::test
