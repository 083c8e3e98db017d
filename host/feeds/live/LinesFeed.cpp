#include "host/feeds/live/LinesFeed.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include <poll.h>
#include <sys/epoll.h>
#include <sys/inotify.h>

namespace vigil {

using Steady = std::chrono::steady_clock;

LinesFeed::LinesFeed(FeedLoop& loop, std::shared_ptr<FeedOutlet> outlet, std::string path, bool fromStart,
                     FeedTiming timing)
    : m_loop(loop),
      m_outlet(std::move(outlet)),
      m_path(std::move(path)),
      m_timing(timing),
      m_fromStart(fromStart) {
    m_outlet->state(FeedState::Starting);
    m_loop.add(*this);
}

LinesFeed::~LinesFeed() {
    m_loop.remove(*this);
}

FeedLoop::Time LinesFeed::serve() {
    const Time now = Steady::now();
    if (m_over) return FeedLoop::kNever;
    if (m_file) return goOn(now);
    return now < m_nextLook ? m_nextLook : open(now);
}

FeedLoop::Time LinesFeed::open(Time now) {
    auto opened = FollowedFile::open(m_path);
    if (!opened) {
        m_fromStart = true;  // whatever it holds when it comes is new
        return tryLater(opened.error().message, now);
    }
    if (opened.value().isFolder()) {
        m_over = true;
        m_outlet->state(FeedState::Failed, m_path + ": is a folder; expected a file or a pipe");
        return FeedLoop::kNever;
    }
    if (std::exchange(m_openedBefore, true)) m_outlet->restarted();
    m_file.emplace(std::move(opened).value());
    m_lines.clear();
    // standard input is for us alone, and what it holds has been sent to us
    const bool skips =
        !std::exchange(m_fromStart, true) && m_file->isOrdinary() && !m_file->isStandardInput();
    if (skips && m_file->goToEnd()) m_lines.skipRest();
    m_paused = false;
    beginWatch();
    m_outlet->state(FeedState::Live);
    m_nextLook = now + m_timing.look;
    return now;
}

// An ordinary file cannot be waited for; the system tells of changes on most file systems, and on the others
// the look once in a while finds them.
void LinesFeed::beginWatch() {
    if (m_loop.watch(m_file->fd(), EPOLLIN, *this) || m_file->isStandardInput()) return;
    m_notes = UniqueFd(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
    if (!m_notes) return;
    ::inotify_add_watch(m_notes.get(), m_path.c_str(), IN_MODIFY | IN_MOVE_SELF | IN_ATTRIB);
    m_loop.watch(m_notes.get(), EPOLLIN, *this);
}

void LinesFeed::endWatch() {
    m_loop.unwatch(m_file->fd());
    if (m_notes) m_loop.unwatch(m_notes.get());
    m_notes.reset();
}

FeedLoop::Time LinesFeed::goOn(Time now) {
    if (m_outlet->wantsPause()) {
        if (!std::exchange(m_paused, true)) endWatch();
        return now + m_timing.pause;
    }
    if (std::exchange(m_paused, false)) beginWatch();
    char notes[4096];
    while (m_notes && ::read(m_notes.get(), notes, sizeof notes) > 0) {
    }
    switch (read()) {
        case Read::More:
            return now;
        case Read::Failed:
            endWatch();
            m_file.reset();
            return tryLater(m_path + ": " + std::strerror(m_error), now);
        case Read::End:
            return m_file->isOrdinary() && !m_file->isStandardInput() ? look(now) : hasEnded(now);
        case Read::NothingNow:
            break;
    }
    return look(now);
}

void LinesFeed::tellTooLong() {
    m_outlet->leftOut(FeedOutlet::LeftOut::TooLong,
                      m_path + ": a line of more than " + std::to_string(kLongestRow) + " bytes; left out");
}

LinesFeed::Read LinesFeed::read() {
    if (!m_lines.goOn()) return Read::More;
    char bytes[16384];
    const bool mayBlock = m_file->isStandardInput() && !m_file->isOrdinary();  // others may share it
    for (int i = 0; i < kChunksATurn; ++i) {
        pollfd input{m_file->fd(), POLLIN, 0};
        if (mayBlock && ::poll(&input, 1, 0) <= 0) return Read::NothingNow;
        const ssize_t count = ::read(m_file->fd(), bytes, sizeof bytes);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0 && errno == EAGAIN) return Read::NothingNow;
        if (count < 0) {
            m_error = errno;
            return Read::Failed;
        }
        if (count == 0) return Read::End;
        if (!m_lines.take({bytes, static_cast<std::size_t>(count)})) return Read::More;
    }
    return Read::More;
}

// Once in a while, when all has been read: whether the path still leads to this file.
FeedLoop::Time LinesFeed::look(Time now) {
    if (m_file->isStandardInput()) return FeedLoop::kNever;
    if (now < m_nextLook) return m_nextLook;
    m_nextLook = now + m_timing.look;
    switch (m_file->change()) {
        case FollowedFile::Change::None:
            m_outlet->state(FeedState::Live);
            break;
        case FollowedFile::Change::Gone:
            // who turns files over may still write to this one
            m_outlet->state(FeedState::Retrying, m_path + ": is gone; waiting for it");
            break;
        case FollowedFile::Change::CutOff:
            m_lines.clear();
            m_file->goToBegin();
            m_outlet->restarted();
            m_outlet->state(FeedState::Live);
            return now;
        case FollowedFile::Change::Replaced:
            if (read() == Read::More) return now;  // what was added to the old one meanwhile
            m_lines.finish();
            endWatch();
            m_file.reset();
            return open(now);
    }
    return m_nextLook;
}

// A pipe without writers, or standard input.
FeedLoop::Time LinesFeed::hasEnded(Time now) {
    m_lines.finish();
    endWatch();
    if (!m_file->isStandardInput()) {
        m_file.reset();
        m_nextLook = now + m_timing.look;
        return m_nextLook;
    }
    m_over = true;
    m_outlet->state(FeedState::Ended, "standard input is at its end");
    return FeedLoop::kNever;
}

FeedLoop::Time LinesFeed::tryLater(const std::string& why, Time now) {
    m_outlet->state(FeedState::Retrying, why + "; waiting for it");
    m_nextLook = now + m_timing.look;
    return m_nextLook;
}

}  // namespace vigil
