#include <chrono>
#include <condition_variable>
#include <csignal>
#include <filesystem>
#include <mutex>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>

#include "host/site/SiteWriter.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace vigil {
namespace {

using namespace std::chrono_literals;

/// No file of this process grows beyond so many bytes while it lives, as if the disk took no more.
class NoMoreThan {
  public:
    explicit NoMoreThan(rlim_t bytes) {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit now = {bytes, m_before.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &now), 0);
    }
    ~NoMoreThan() { setrlimit(RLIMIT_FSIZE, &m_before); }

  private:
    rlimit m_before{};
};

/// A disk of 1 MiB that only this process sees.
bool mountSmallDisk(const std::string& at) {
    if (unshare(CLONE_NEWNS) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
    return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("tmpfs", at.c_str(), "tmpfs", 0, "size=1m") == 0;
}

/// What was told of writes.
class Told {
  public:
    SiteWriter::Committed note() {
        return [this](const Result<Done>& done) {
            const std::lock_guard lock(m_mutex);
            m_errors.push_back(done ? "" : done.error().message);
            m_more.notify_all();
        };
    }
    std::vector<std::string> wait(std::size_t count) {
        std::unique_lock lock(m_mutex);
        m_more.wait_for(lock, 20s, [&] { return m_errors.size() >= count; });
        return m_errors;
    }

  private:
    std::mutex m_mutex;
    std::condition_variable m_more;
    std::vector<std::string> m_errors;
};

bool becomesWell(const SiteWriter& writer) {
    const auto end = std::chrono::steady_clock::now() + 20s;
    while (!writer.state().well && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(5ms);
    return writer.state().well;
}

class FailingDisk : public testing::Test {
  protected:
    void make(const std::string& folder) {
        m_path = folder + "/home.vigilsite";
        ASSERT_TRUE(SiteFile::create(m_path));
        m_site = std::move(SiteFile::open(m_path, Access::Write)).value();
        const RecordId station = m_site->addStation({.name = "Roof"}).value();
        m_plugIn = m_site->addPlugIn({.station = station, .title = "Frost", .archive = "{}"}).value();
    }
    PlugInRecord archive(std::string text) const {
        return {.id = m_plugIn, .title = "Frost", .archive = std::move(text)};
    }
    static SiteWriterOptions quick() {
        return {.now = [] { return Date(123); }, .firstRetrySeconds = 0.01, .longestRetrySeconds = 0.05};
    }

    TemporaryFolder m_folder;
    std::string m_path;
    std::unique_ptr<SiteFile> m_site;
    RecordId m_plugIn = 0;
};

TEST_F(FailingDisk, everybodyHearsAtOnceAndTheWritesStandWhenItWorksAgain) {
    make(m_folder.path());
    SiteWriter writer(*m_site, quick());
    Told told;
    writer.putEffect({.id = 1}, told.note());
    EXPECT_EQ(told.wait(1), std::vector<std::string>{""});
    {
        const NoMoreThan full(std::filesystem::file_size(m_path + "-wal") + 8192);
        writer.putFire({.id = 2, .plugIn = m_plugIn, .time = Date(9)}, told.note());
        writer.saveArchive(archive(std::string(100'000, 'x')), told.note());
        writer.completeFire(2, archive(std::string(100'000, 'y')), told.note());
        const auto errors = told.wait(4);
        ASSERT_EQ(errors.size(), 4U);
        EXPECT_THAT(errors.back(), testing::StartsWith(m_path + ": the disk could not be read or written"));
        // What comes while it fails hears so too, without waiting for a retry.
        writer.putEffect({.id = 3}, told.note());
        EXPECT_THAT(told.wait(5).back(), testing::StartsWith(m_path));
        const SiteWriterState state = writer.state();
        EXPECT_FALSE(state.well);
        EXPECT_EQ(state.since, Date(123));
        EXPECT_GE(state.waiting, 2U);
        EXPECT_THAT(state.words, testing::HasSubstr("writes are kept until it takes them"));
        EXPECT_EQ(m_site->plugInTitled("Frost").value()->archive, "{}");
    }
    EXPECT_TRUE(becomesWell(writer));
    EXPECT_EQ(writer.state().waiting, 0U);
    EXPECT_EQ(writer.state().words, "writing");
    EXPECT_FALSE(writer.state().since);
    EXPECT_EQ(m_site->plugInTitled("Frost").value()->archive, std::string(100'000, 'y'));
    EXPECT_TRUE(m_site->fire(2).value()->completed);
    EXPECT_EQ(m_site->effects().value().size(), 2U);
    writer.putEffect({.id = 4}, told.note());
    EXPECT_EQ(told.wait(6).back(), "") << "told once each, and well again";
    writer.stop();
    EXPECT_EQ(told.wait(6).size(), 6U);
}

TEST_F(FailingDisk, whatIsKeptIsBoundedAndWhatAStopLosesIsSaid) {
    make(m_folder.path());
    SiteWriterOptions options = quick();
    options.writes = 10;
    SiteWriter writer(*m_site, options);
    Told told;
    {
        const NoMoreThan full(std::filesystem::file_size(m_path) + 8192);
        writer.saveArchive(archive(std::string(300'000, 'x')), told.note());
        ASSERT_NE(told.wait(1).at(0), "");
        for (int i = 0; i < 20; ++i)
            writer.putEffect({.id = i + 1}, told.note());
        EXPECT_EQ(told.wait(21).size(), 21U);
        EXPECT_EQ(writer.state().refused, 11U);
        EXPECT_EQ(writer.state().waiting, 10U);
        writer.stop();
    }
    EXPECT_FALSE(writer.state().well);
    EXPECT_THAT(writer.state().words, testing::HasSubstr("10 writes were lost at the stop"));
    EXPECT_EQ(told.wait(21).size(), 21U);
}

TEST_F(FailingDisk, aDiskThatIsReallyFullIsCalledThat) {
    const std::string disk = m_folder.makeFolder("disk");
    if (!mountSmallDisk(disk)) GTEST_SKIP() << "this test needs the right to mount a disk of its own";
    make(disk);
    {
        SiteWriter writer(*m_site, quick());
        Told told;
        writer.putEffect({.id = 1}, told.note());
        EXPECT_EQ(told.wait(1).back(), "");
        const std::string ballast = disk + "/ballast";
        std::FILE* file = std::fopen(ballast.c_str(), "wb");
        while (std::fputc('x', file) != EOF && std::fflush(file) == 0) {
        }
        std::fclose(file);
        writer.saveArchive(archive(std::string(100'000, 'x')), told.note());
        EXPECT_THAT(told.wait(2).back(), testing::StartsWith(m_path + ": the disk is full"));
        EXPECT_FALSE(writer.state().well);
        std::filesystem::remove(ballast);
        EXPECT_TRUE(becomesWell(writer));
        EXPECT_EQ(m_site->plugInTitled("Frost").value()->archive.size(), 100'000U);
    }
    m_site.reset();
    EXPECT_EQ(umount2(disk.c_str(), MNT_DETACH), 0);
}

}  // namespace
}  // namespace vigil
