#include "host/services/SoundFiles.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <filesystem>
#include <map>
#include <mutex>

#include <sys/stat.h>

namespace vigil {
namespace {

constexpr std::size_t kKnownFiles = 1000;  // verdicts that are kept; then all are forgotten

bool isSoundName(const std::string& name) {
    static constexpr std::array kForms = {".wav", ".mp3", ".ogg", ".flac"};
    return std::any_of(kForms.begin(), kForms.end(),
                       [&](const char* form) { return name.find(form) != std::string::npos; });
}

}  // namespace

/// What tells a file from the one that was there before.
struct SoundFiles::Stamp {
    dev_t device = 0;
    ino_t number = 0;
    off_t size = 0;
    timespec time{};  // of the last change of any kind, its mode included
    bool operator==(const Stamp& other) const {
        return device == other.device && number == other.number && size == other.size &&
               time.tv_sec == other.time.tv_sec && time.tv_nsec == other.time.tv_nsec;
    }
};

/// Outlives the asker: a verdict may come when nobody is there any more.
struct SoundFiles::Shared {
    struct Known {
        Stamp stamp{};
        bool hasVerdict = false;
        bool isPassing = false;  // the verdict is none about the file, and holds for who waits for it
        bool waitedFor = false;  // in vain, so that nobody does again
        std::optional<std::string> refusal{};
    };
    std::mutex mutex;
    std::condition_variable changed;
    std::map<std::string, Known> files;
    bool stopped = false;
};

SoundFiles::SoundFiles(Player& player, std::chrono::milliseconds patience)
    : m_player(player), m_patience(patience), m_shared(std::make_shared<Shared>()) {}

void SoundFiles::ask(const std::string& path, const Stamp& stamp) {
    m_player.check(path, {.ended = [shared = m_shared, path, stamp](const PlayEnd& end) {
                       const std::lock_guard lock(shared->mutex);
                       const auto found = shared->files.find(path);
                       if (found == shared->files.end() || !(found->second.stamp == stamp)) return;
                       auto& known = found->second;
                       known.hasVerdict = true;
                       if (end.outcome != PlayOutcome::Finished) known.refusal = end.detail;
                       known.isPassing =
                           end.outcome != PlayOutcome::Finished && end.outcome != PlayOutcome::NotPlayable;
                       shared->changed.notify_all();
                   }});
}

void SoundFiles::lookAt(const std::string& folder) {
    std::error_code failed;
    for (std::filesystem::directory_iterator it(folder, failed), end; !failed && it != end;
         it.increment(failed)) {
        if (!isSoundName(it->path().filename().string())) continue;
        const std::string path = folder + "/" + it->path().filename().string();
        struct stat info {};
        if (::stat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) continue;
        const Stamp stamp{info.st_dev, info.st_ino, info.st_size, info.st_ctim};
        {
            const std::lock_guard lock(m_shared->mutex);
            m_shared->files[path] = {.stamp = stamp};
        }
        ask(path, stamp);
    }
}

std::optional<std::string> SoundFiles::refusal(const std::string& path) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) return std::strerror(errno);
    if (!S_ISREG(info.st_mode)) return "it is no file";
    if (static_cast<std::uint64_t>(info.st_size) > kSoundFileSize)
        return "it is larger than " + std::to_string(kSoundFileSize >> 20) + " MiB";
    const Stamp stamp{info.st_dev, info.st_ino, info.st_size, info.st_ctim};
    std::unique_lock lock(m_shared->mutex);
    auto known = m_shared->files.find(path);
    if (known == m_shared->files.end() || !(known->second.stamp == stamp) || known->second.isPassing) {
        if (m_shared->stopped) return "the host stops";
        if (m_shared->files.size() >= kKnownFiles) m_shared->files.clear();
        m_shared->files[path] = {.stamp = stamp};
        lock.unlock();
        ask(path, stamp);
        lock.lock();
    }
    const auto isDecided = [&] {
        known = m_shared->files.find(path);
        return m_shared->stopped || known == m_shared->files.end() || known->second.hasVerdict ||
               known->second.waitedFor;
    };
    const bool decided = m_shared->changed.wait_for(lock, m_patience, isDecided);
    if (known == m_shared->files.end()) return "the player could not look at it";
    if (known->second.hasVerdict) return known->second.refusal;
    if (!decided) known->second.waitedFor = true;
    return m_shared->stopped ? "the host stops" : "the player has not looked at it in time";
}

void SoundFiles::stopWaiting() {
    const std::lock_guard lock(m_shared->mutex);
    m_shared->stopped = true;
    m_shared->changed.notify_all();
}

}  // namespace vigil
