#include <algorithm>

#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include "host/services/Player_State.hpp"

// The player's thread: takes requests, hands each over when its turn has come, and hears the process.

namespace vigil {

using std::chrono::milliseconds;

void Player::State::loop() {
    // the process's signals are for the threads that want them
    sigset_t all;
    sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, nullptr);
    lastUse = Steady::now();
    while (takeNew()) {
        sendWhatMay();
        wait();
        serve();
        watch();
    }
    endAll();
}

/// False once everything is to end.
bool Player::State::takeNew() {
    std::vector<Request> fresh;
    std::vector<Order> given;
    {
        const std::lock_guard lock(mutex);
        fresh.swap(incoming);
        given.swap(orders);
        for (Request& request : fresh)
            requests.push_back(std::move(request));
        if (stopping) return false;
    }
    for (const Order& one : given) {
        const auto request = withId(one.id);
        if (request == requests.end()) continue;
        if (one.kind == Order::Release) {
            request->held = false;
        } else {
            if (request->sent && process)
                process->send(encodePlayerMessage({PlayerMessage::Stop, one.id, 0, {}}));
            finish(request, {PlayOutcome::Cut, "it was stopped"});
        }
    }
    return true;
}

bool Player::State::mayBeSent(const Request& request, bool speaking) const {
    if (request.sent) return false;
    if (request.message.kind != PlayerMessage::Speak) return true;
    if (speaking) return false;
    return !request.held || Steady::now() >= request.asked + options.timing.held;
}

void Player::State::sendWhatMay() {
    bool speaking = false;
    for (auto next = requests.begin(); next != requests.end();) {
        const auto request = next++;
        const bool isSpeech = request->message.kind == PlayerMessage::Speak;
        if (!request->turn && !(isSpeech && speaking)) request->turn = Steady::now();
        if (mayBeSent(*request, speaking)) {
            if (!process && !startProcess()) return;
            process->send(encodePlayerMessage(request->message));
            request->sent = true;
            request->deadline = *request->turn + options.timing.slack;
            if (!pinged) ping();
        }
        // also one that is held keeps those behind it waiting
        speaking = speaking || isSpeech;
    }
}

bool Player::State::startProcess() {
    auto started = HelperProcess::start(options.helper, "player", encodePlayerSetup(options.setup));
    if (!started) {
        while (!requests.empty())
            finish(requests.begin(), {PlayOutcome::Failed, started.error().message});
        return false;
    }
    process = std::move(started).value();
    pinged.reset();
    const std::lock_guard lock(mutex);
    processNumber = process->number();
    return true;
}

// The player answers between two files, however many wait, so that silence means that it hangs.
void Player::State::ping() {
    process->send(encodePlayerMessage({PlayerMessage::Ping, 0, ++pings, {}}));
    pinged = lastPing = Steady::now();
}

void Player::State::wait() {
    if (process) process->exchange();
    std::vector<pollfd> fds{{wakeUp.get(), POLLIN, 0}};
    std::optional<Steady::time_point> until;
    const auto before = [&until](Steady::time_point time) { until = std::min(until.value_or(time), time); };
    if (process) {
        fds.push_back({process->socket(), process->socketEvents(), 0});
        fds.push_back({process->process(), POLLIN, 0});
        if (pinged)
            before(*pinged + options.timing.answer);
        else if (anySent())
            before(lastPing + options.timing.answer / 3);
        if (requests.empty()) before(lastUse + options.timing.idle);
    }
    for (const Request& request : requests) {
        if (request.sent && request.message.kind != PlayerMessage::Check) before(request.deadline);
        if (!request.sent && request.held) before(request.asked + options.timing.held);
    }
    int limit = -1;
    if (until) {
        const auto left = std::chrono::ceil<milliseconds>(*until - Steady::now());
        limit = static_cast<int>(std::max<milliseconds::rep>(left.count(), 0));
    }
    ::poll(fds.data(), fds.size(), limit);
    std::uint64_t count = 0;
    // fails only when nobody has set it
    [[maybe_unused]] const ssize_t taken = ::read(wakeUp.get(), &count, sizeof count);
}

void Player::State::serve() {
    if (!process) return;
    process->exchange();
    while (process) {
        const auto message = process->next();
        if (!message) break;
        const auto decoded = decodePlayerMessage(*message);
        if (!decoded) return endProcess("the player sent what cannot be understood", PlayOutcome::Failed, 0);
        take(*decoded);
    }
    if (process && process->broken())
        endProcess("the player sent what cannot be understood", PlayOutcome::Failed, 0);
}

void Player::State::take(const PlayerMessage& message) {
    if (message.kind == PlayerMessage::Pong) {
        if (message.number == pings) pinged.reset();
        return;
    }
    const auto request = withId(message.id);
    if (request == requests.end()) return;  // it was stopped meanwhile
    if (!request->began && request->message.kind != PlayerMessage::Speak) letOthersWait();
    switch (message.kind) {
        case PlayerMessage::Began:
            request->began = true;
            request->deadline = *request->turn + milliseconds(message.number) + options.timing.slack;
            if (request->callbacks.began) request->callbacks.began();
            return;
        case PlayerMessage::Ended:
            return finish(request, {static_cast<PlayOutcome>(message.number), message.text});
        case PlayerMessage::Verdict:
            return finish(request, {static_cast<PlayOutcome>(message.number), message.text});
        default:
            return;
    }
}

// Files are decoded one after another, so the time of the next ones begins when one is done.
void Player::State::letOthersWait() {
    const auto now = Steady::now();
    for (Request& request : requests) {
        if (!request.sent || request.began || request.message.kind != PlayerMessage::Play) continue;
        request.turn = now;
        request.deadline = now + options.timing.slack;
    }
}

Player::State::Requests::iterator Player::State::withId(Id id) {
    return std::find_if(requests.begin(), requests.end(),
                        [id](const Request& request) { return request.message.id == id; });
}

bool Player::State::anySent() const {
    return std::any_of(requests.begin(), requests.end(), [](const Request& one) { return one.sent; });
}

void Player::State::finish(Requests::iterator request, PlayEnd end) {
    const Callbacks callbacks = std::move(request->callbacks);
    requests.erase(request);
    lastUse = Steady::now();
    {
        const std::lock_guard lock(mutex);
        --unended;
    }
    callbacks.ended(end);
}

}  // namespace vigil
