#include "host/services/SystemFiles.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

using testing::HasSubstr;
using testing::UnorderedElementsAre;

class SystemFilesTest : public testing::Test {
  protected:
    std::string reason(const std::string& path) {
        const auto text = files.readUtf8(path);
        return text ? "read: " + text.value() : text.error().message;
    }
    TemporaryFolder folder;
    SystemFiles files;
};

TEST_F(SystemFilesTest, ReadsAWholeFileAndAnEmptyOne) {
    const std::string bytes = "#!/bin/sh\necho \xC3\xA4 \xF0\x9F\x98\x80\n";
    EXPECT_EQ(files.readUtf8(folder.write("script", bytes)).value(), bytes);
    EXPECT_EQ(files.readUtf8(folder.write("empty", "")).value(), "");
}

TEST_F(SystemFilesTest, SaysWhyAFileCannotBeRead) {
    EXPECT_THAT(reason(folder.path()), HasSubstr("is a folder"));
    EXPECT_THAT(reason(folder.path() + "/missing"), HasSubstr("No such file"));
    EXPECT_THAT(reason(folder.write("latin", "caf\xE9")), HasSubstr("is not UTF-8"));
    EXPECT_THAT(reason("/dev/null"), HasSubstr("no plain file"));
    EXPECT_THAT(reason(std::string("/etc\0/passwd", 12)), HasSubstr("NUL"));
}

TEST_F(SystemFilesTest, DoesNotWaitForAPipeThatNobodyWrites) {
    const std::string path = folder.path() + "/pipe";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_THAT(reason(path), HasSubstr("no plain file"));
}

TEST_F(SystemFilesTest, AFileIsBoundedInLength) {
    EXPECT_EQ(files.readUtf8(folder.write("longest", std::string(kFileBytes, 'x'))).value().size(),
              kFileBytes);
    EXPECT_THAT(reason(folder.write("longer", std::string(kFileBytes + 1, 'x'))), HasSubstr("16 MiB"));
}

TEST_F(SystemFilesTest, ListsEveryEntryButTheFolderItselfAndTheOneAbove) {
    folder.write("b.wav", "");
    folder.write(".hidden", "");
    folder.makeFolder("a folder");
    EXPECT_THAT(files.contentsOfDirectory(folder.path()).value(),
                UnorderedElementsAre("b.wav", ".hidden", "a folder"));
    EXPECT_EQ(files.contentsOfDirectory(folder.path() + "/a folder"), std::vector<std::string>{});
}

TEST_F(SystemFilesTest, WhatIsNoFolderListsNothing) {
    EXPECT_EQ(files.contentsOfDirectory(folder.path() + "/missing"), std::nullopt);
    EXPECT_EQ(files.contentsOfDirectory(folder.write("file", "")), std::nullopt);
}

}  // namespace
}  // namespace vigil
