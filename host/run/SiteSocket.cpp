#include "host/run/SiteSocket.hpp"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "host/services/UniqueFd.hpp"

namespace vigil {
namespace {

constexpr std::size_t kLongestQuestion = 100;
constexpr std::size_t kLongestAnswer = std::size_t{64} << 20;
/// A peer that does not read or write is left after so long.
constexpr int kPatienceSeconds = 2;

Error systemError(const std::string& what) {
    return Error{what + ": " + std::strerror(errno)};
}

/// An address may have 107 bytes only, so the folder goes by a descriptor.
struct Address {
    UniqueFd folder;
    sockaddr_un at{};

    static Result<Address> of(const std::string& path) {
        const auto slash = path.rfind('/');
        const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
        const std::string name = path.substr(slash == std::string::npos ? 0 : slash + 1);
        Address address{UniqueFd(::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)), {}};
        if (!address.folder) return systemError(folder);
        address.at.sun_family = AF_UNIX;
        const int length = std::snprintf(address.at.sun_path, sizeof address.at.sun_path,
                                         "/proc/self/fd/%d/%s", address.folder.get(), name.c_str());
        if (length < 0 || static_cast<std::size_t>(length) >= sizeof address.at.sun_path)
            return Error{path + ": its name is too long for a socket"};
        return address;
    }
    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&at); }
};

void setPatience(int fd, double seconds) {
    timeval time{};
    time.tv_sec = static_cast<time_t>(seconds);
    time.tv_usec = static_cast<suseconds_t>((seconds - static_cast<double>(time.tv_sec)) * 1e6);
    ::setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &time, sizeof time);
    ::setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &time, sizeof time);
}

bool sendAll(int fd, const std::string& text) {
    std::size_t sent = 0;
    while (sent < text.size()) {
        const ssize_t count = ::send(fd, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
        if (count <= 0) return false;
        sent += static_cast<std::size_t>(count);
    }
    return true;
}

std::string receive(int fd, std::size_t most, bool oneLine) {
    std::string text;
    char buffer[4096];
    while (text.size() < most) {
        const ssize_t count = ::recv(fd, buffer, sizeof buffer, 0);
        if (count <= 0) break;
        text.append(buffer, static_cast<std::size_t>(count));
        // A question comes at once; what is not whole then is none.
        if (oneLine) break;
    }
    return text;
}

}  // namespace

struct SiteSocket::State {
    std::string path;
    Answer answer;
    UniqueFd listening;
    UniqueFd stop;
    std::thread thread;

    /// Waits for the first word of a peer, and no longer than for the end.
    bool hasSpoken(int peer) const {
        pollfd fds[] = {{peer, POLLIN, 0}, {stop.get(), POLLIN, 0}};
        return ::poll(fds, 2, kPatienceSeconds * 1000) > 0 && !fds[1].revents;
    }

    void serve() {
        sigset_t all;
        sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, nullptr);
        ::pthread_setname_np(::pthread_self(), "vigil-socket");
        while (true) {
            pollfd fds[] = {{listening.get(), POLLIN, 0}, {stop.get(), POLLIN, 0}};
            ::poll(fds, 2, -1);
            if (fds[1].revents) return;
            if (!fds[0].revents) continue;
            const UniqueFd peer(::accept4(listening.get(), nullptr, nullptr, SOCK_CLOEXEC));
            if (!peer) {
                // No descriptors are left, and the next moment will not have more.
                ::poll(&fds[1], 1, 100);
                continue;
            }
            setPatience(peer.get(), kPatienceSeconds);
            if (!hasSpoken(peer.get())) continue;
            std::string question = receive(peer.get(), kLongestQuestion, /*oneLine=*/true);
            question.resize(std::min(question.find('\n'), question.size()));
            sendAll(peer.get(), answer(question));
        }
    }
};

std::string SiteSocket::pathOf(const std::string& siteFile) {
    return siteFile + "-socket";
}

SiteSocket::SiteSocket(std::unique_ptr<State> state) : m_state(std::move(state)) {}

Result<std::unique_ptr<SiteSocket>> SiteSocket::open(const std::string& siteFile, Answer answer) {
    const std::string path = pathOf(siteFile);
    const auto address = Address::of(path);
    if (!address) return address.error();
    auto state = std::make_unique<State>();
    state->path = path;
    state->answer = std::move(answer);
    state->listening = UniqueFd(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    state->stop = UniqueFd(::eventfd(0, EFD_CLOEXEC));
    if (!state->listening || !state->stop) return systemError("a socket for " + path);
    ::unlink(path.c_str());
    // Closed to others from its first moment: nobody can connect before it listens.
    if (::bind(state->listening.get(), address.value().get(), sizeof(sockaddr_un)) != 0 ||
        ::chmod(path.c_str(), S_IRUSR | S_IWUSR) != 0 || ::listen(state->listening.get(), 8) != 0)
        return systemError(path);
    state->thread = std::thread([served = state.get()] { served->serve(); });
    return std::unique_ptr<SiteSocket>(new SiteSocket(std::move(state)));
}

SiteSocket::~SiteSocket() {
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(m_state->stop.get(), &one, sizeof one);
    m_state->thread.join();
    ::unlink(m_state->path.c_str());
}

Result<std::string> SiteSocket::ask(const std::string& siteFile, const std::string& question,
                                    double seconds) {
    const std::string path = pathOf(siteFile);
    const auto address = Address::of(path);
    if (!address) return address.error();
    const UniqueFd socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!socket) return systemError("a socket");
    setPatience(socket.get(), seconds);
    if (::connect(socket.get(), address.value().get(), sizeof(sockaddr_un)) != 0)
        return Error{"nothing runs the site " + siteFile};
    if (!sendAll(socket.get(), question + "\n")) return systemError(path);
    std::string answer = receive(socket.get(), kLongestAnswer, /*oneLine=*/false);
    if (answer.empty()) return Error{"what runs the site " + siteFile + " does not answer"};
    return answer;
}

}  // namespace vigil
