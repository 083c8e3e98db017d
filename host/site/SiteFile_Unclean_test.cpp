#include <filesystem>
#include <fstream>

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/site/SiteFile.hpp"
#include "host/site/SiteWriter.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

namespace fs = std::filesystem;

class UncleanSite : public testing::Test {
  protected:
    UncleanSite() { EXPECT_TRUE(SiteFile::create(path())); }
    std::string path() const { return m_folder.path() + "/home.vigilsite"; }
    /// What the disk would hold if the process ended now.
    std::string picture(const std::string& name) const {
        const std::string copy = m_folder.path() + "/" + name;
        for (const char* part : {"", "-wal"})
            if (fs::exists(path() + part)) fs::copy_file(path() + part, copy + part);
        return copy;
    }
    static std::unique_ptr<SiteFile> open(const std::string& file) {
        auto site = SiteFile::open(file, Access::Write);
        EXPECT_TRUE(site) << (site ? "" : site.error().message);
        return site ? std::move(site).value() : nullptr;
    }
    static void fill(SiteFile& site) {
        const RecordId station = site.addStation({.name = "Roof"}).value();
        for (int i = 0; i < 40; ++i)
            ASSERT_TRUE(site.addPlugIn({.station = station,
                                        .title = "Monitor " + std::to_string(i),
                                        .archive = std::string(3000, 'a')}));
    }

    TemporaryFolder m_folder;
};

TEST_F(UncleanSite, isCheckedOnceAndUsedWhereItIsWhole) {
    std::string copy;
    {
        const auto site = open(path());
        EXPECT_FALSE(site->wasChecked());
        ASSERT_TRUE(site->addStation({.name = "Roof"}));
        copy = picture("copy");
    }
    {
        const auto site = open(copy);
        EXPECT_TRUE(site->wasChecked());
        EXPECT_TRUE(site->stationNamed("Roof").value());
    }
    EXPECT_FALSE(open(copy)->wasChecked());
    EXPECT_FALSE(open(path())->wasChecked());
}

TEST_F(UncleanSite, isOnlyWhatWasWrittenToAndNotClosed) {
    std::string copy;
    {
        const auto site = open(path());
        site->stations().value();
        copy = picture("copy");
    }
    EXPECT_FALSE(open(copy)->wasChecked());
}

TEST_F(UncleanSite, isMarkedByTheWriterToo) {
    std::string copy;
    {
        const auto site = open(path());
        SiteWriter writer(*site);
        writer.putEffect({.id = writer.newId(), .station = "Roof"});
        writer.stop();
        copy = picture("copy");
    }
    EXPECT_TRUE(open(copy)->wasChecked());
    EXPECT_FALSE(open(path())->wasChecked());
}

TEST_F(UncleanSite, aChangeThatIsRefusedLeavesTheMarkToTheNextOne) {
    std::string copy;
    {
        const auto site = open(path());
        ASSERT_TRUE(site->addStation({.name = "Roof"}));
    }
    {
        const auto site = open(path());
        ASSERT_FALSE(site->addStation({.name = "Roof"}));
        ASSERT_TRUE(site->addStation({.name = "Pond"}));
        copy = picture("copy");
    }
    EXPECT_TRUE(open(copy)->wasChecked());
}

TEST_F(UncleanSite, isRefusedWhereItDoesNotHoldTogether) {
    std::string copy;
    {
        const auto site = open(path());
        fill(*site);
    }
    {
        const auto site = open(path());
        ASSERT_TRUE(site->addStation({.name = "Pond"}));
        copy = picture("copy");
    }
    // A leaf of a tree whose header is gone: nothing that opens the file meets it by itself.
    std::fstream file(copy, std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(static_cast<std::streamoff>(fs::file_size(copy)) / 4096 / 2 * 4096);
    file.write(std::string(4096, '\xAA').data(), 4096);
    file.close();
    const auto site = SiteFile::open(copy, Access::Write);
    ASSERT_FALSE(site);
    EXPECT_EQ(site.error().kind, SiteError::Kind::Damaged);
    EXPECT_THAT(site.error().message, testing::StartsWith(copy + ": the site is damaged ("));
    EXPECT_THAT(site.error().message, testing::HasSubstr("`vigil site import COPY --force`"));
}

}  // namespace
}  // namespace vigil
