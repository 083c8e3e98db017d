#include "host/site/FileAccess.hpp"

#include <cstdlib>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

namespace fs = std::filesystem;

TEST(FileAccess, NamesTheOwnerAndTheModeOfWhatStandsInTheWay) {
    const TemporaryFolder folder;
    const std::string hidden = folder.makeFolder("hidden");
    folder.write("mine", "x");
    folder.write("hidden/inside", "x");
    EXPECT_FALSE(accessObstacle(folder.path() + "/mine"));
    EXPECT_FALSE(accessObstacle(folder.path() + "/none"));
    fs::permissions(folder.path(), fs::perms(0755));
    fs::permissions(folder.path() + "/mine", fs::perms(0000));
    fs::permissions(hidden, fs::perms(0600));
    // The superuser may read everything: a child that is nobody looks.
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        constexpr uid_t kNobody = 65534;
        if (::geteuid() == 0 && ::setuid(kNobody) != 0) ::_exit(3);
        const auto file = accessObstacle(folder.path() + "/mine");
        const auto above = accessObstacle(hidden + "/inside");
        const bool named = file && file->starts_with(folder.path() + "/mine belongs to user ") &&
                           file->ends_with(", mode 0; run this as that user");
        const bool folderNamed =
            above && above->find("mode 600") != std::string::npos && above->starts_with(hidden + " belongs");
        ::_exit(named ? (folderNamed ? 0 : 2) : 1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    fs::permissions(hidden, fs::perms(0700));
    EXPECT_EQ(WEXITSTATUS(status), 0) << "1: the file, 2: the folder, 3: no other user to be";
}

}  // namespace
}  // namespace vigil
