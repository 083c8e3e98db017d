#include "host/feeds/live/UploadListener.hpp"

#include <cerrno>
#include <cstring>
#include <utility>

#include <arpa/inet.h>
#include <netinet/in.h>

#include "host/feeds/live/UploadListener_State.hpp"

// How a listener begins and ends. What it does with a request is in UploadListener_Request.cpp.

namespace vigil {
namespace {

using Steady = std::chrono::steady_clock;

bool readAddress(const std::string& host, std::uint16_t port, sockaddr_storage& to, socklen_t& size) {
    auto* four = reinterpret_cast<sockaddr_in*>(&to);
    auto* six = reinterpret_cast<sockaddr_in6*>(&to);
    const std::string number = host == "localhost" ? "127.0.0.1" : host;
    if (::inet_pton(AF_INET, number.c_str(), &four->sin_addr) == 1) {
        four->sin_family = AF_INET;
        four->sin_port = htons(port);
        size = sizeof *four;
        return true;
    }
    if (::inet_pton(AF_INET6, number.c_str(), &six->sin6_addr) != 1) return false;
    six->sin6_family = AF_INET6;
    six->sin6_port = htons(port);
    size = sizeof *six;
    return true;
}

}  // namespace

Result<std::shared_ptr<UploadListener>> UploadListener::start(FeedLoop& loop, const std::string& host,
                                                              std::uint16_t port, FeedTiming timing) {
    auto state = std::make_unique<State>(loop, timing);
    if (!readAddress(host, port, state->address, state->addressSize))
        return Error{"feed: \"" + host +
                     "\" is no address to listen at; expected one of this machine, 0.0.0.0 or "
                     "[::] for all, or localhost"};
    const bool six = host.find(':') != std::string::npos;
    state->place = (six ? "[" + host + "]" : host) + ":" + std::to_string(port);
    std::shared_ptr<UploadListener> made(new UploadListener(std::move(state)));
    made->m_state->owner = made.get();
    loop.add(*made);
    return made;
}

UploadListener::UploadListener(std::unique_ptr<State> state) : m_state(std::move(state)) {}

UploadListener::~UploadListener() {
    m_state->loop.remove(*this);
    if (m_state->daemon) ::MHD_stop_daemon(m_state->daemon);
}

Result<Done> UploadListener::add(std::shared_ptr<FeedOutlet> outlet, std::optional<std::string> identity) {
    if (auto added = m_state->stations.add(outlet, std::move(identity)); !added) return added;
    const std::lock_guard lock(m_state->stateMutex);
    outlet->state(m_state->kind, m_state->words);
    return Done{};
}

void UploadListener::remove(const FeedOutlet& outlet) {
    m_state->stations.remove(outlet);
}

void UploadListener::State::tell(FeedState::Kind newKind, std::string newWords) {
    const std::lock_guard lock(stateMutex);
    kind = newKind;
    words = std::move(newWords);
    for (const auto& outlet : stations.all())
        outlet->state(kind, words);
}

// Opens, and once it is open cuts the connections that take too long.
FeedLoop::Time UploadListener::serve() {
    State& state = *m_state;
    const auto now = Steady::now();
    if (state.daemon) {
        constexpr std::chrono::seconds kBetweenCuts{1};
        const bool some = state.connections.cutOlderThan(now - state.timing.request) != 0;
        return some ? now + std::min<Steady::duration>(kBetweenCuts, state.timing.request) : FeedLoop::kNever;
    }
    if (now < state.nextTry) return state.nextTry;
    if (const auto failed = state.open()) {
        const auto pause = state.backOff.failedAfter(FeedTiming::Milliseconds(0));
        state.tell(FeedState::Retrying,
                   "cannot listen at " + state.place + ": " + *failed + "; tried again in " + inWords(pause));
        state.nextTry = now + pause;
        return state.nextTry;
    }
    state.tell(FeedState::Live, {});
    return FeedLoop::kNever;
}

std::optional<std::string> UploadListener::State::open() {
    UniqueFd socket(::socket(address.ss_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    const int yes = 1;
    const int no = 0;
    if (socket) ::setsockopt(socket.get(), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    if (socket && address.ss_family == AF_INET6)
        ::setsockopt(socket.get(), IPPROTO_IPV6, IPV6_V6ONLY, &no, sizeof no);  // [::] takes both kinds
    const auto* where = reinterpret_cast<const sockaddr*>(&address);
    constexpr int kWaiting = 128;
    if (!socket || ::bind(socket.get(), where, addressSize) != 0 || ::listen(socket.get(), kWaiting) != 0)
        return std::strerror(errno);
    if (!listen(socket.get())) return "the system has nothing left to listen with";
    socket.release();
    return std::nullopt;
}

}  // namespace vigil
