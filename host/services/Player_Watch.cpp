#include <algorithm>

#include <poll.h>

#include "host/services/Player_State.hpp"

// The player's thread: what becomes of a process that hangs, dies or is not wanted any more.

namespace vigil {
namespace {

/// For the process to end once it is told to.
constexpr std::chrono::milliseconds kEndTime{200};

}  // namespace

void Player::State::watch() {
    if (!process) return;
    if (const auto how = process->ending()) return processEnded(*how);
    const auto now = Steady::now();
    if (pinged && now >= *pinged + options.timing.answer)
        return endProcess("the sound system did not answer in time", PlayOutcome::TimedOut, 0);
    for (const Request& request : requests) {
        if (!request.sent || request.message.kind == PlayerMessage::Check || now < request.deadline) continue;
        return endProcess("the sound system did not play it to its end in time", PlayOutcome::TimedOut,
                          request.message.id);
    }
    if (!pinged && anySent() && now >= lastPing + options.timing.answer / 3) ping();
    if (requests.empty() && now >= lastUse + options.timing.idle) endIdle();
}

/// Ends one that hangs. What the process has been given ends with it; `culprit`, where it is known, is the
/// one that tells why.
void Player::State::endProcess(const std::string& because, PlayOutcome outcome, Id culprit) {
    process->kill();
    process.reset();
    pinged.reset();
    {
        const std::lock_guard lock(mutex);
        processNumber = 0;
    }
    for (auto next = requests.begin(); next != requests.end();) {
        const auto request = next++;
        if (!request->sent) continue;
        const bool isOther = culprit != 0 && request->message.id != culprit;
        finish(request, {outcome, isOther ? "the player was ended, since another sound hung" : because});
    }
}

void Player::State::processEnded(const std::string& how) {
    serve();  // what it said last
    if (!process) return;
    process.reset();
    pinged.reset();
    {
        const std::lock_guard lock(mutex);
        processNumber = 0;
    }
    // Commands are taken one after another: the first without an answer is the one that it died of.
    const auto first = std::find_if(requests.begin(), requests.end(), [](const Request& one) {
        return one.sent && !one.began && one.message.kind != PlayerMessage::Speak;
    });
    if (first != requests.end() && first->message.kind == PlayerMessage::Check)
        finish(first, {PlayOutcome::NotPlayable, "the player " + how + " when it tried to decode it"});
    for (auto next = requests.begin(); next != requests.end();) {
        const auto request = next++;
        if (request->sent) finish(request, {PlayOutcome::Failed, "the player " + how});
    }
}

void Player::State::endIdle() {
    process->closeInput();
    const auto until = Steady::now() + kEndTime;
    while (!process->ending() && Steady::now() < until) {
        process->exchange();
        pollfd ended{process->process(), POLLIN, 0};
        ::poll(&ended, 1, static_cast<int>(kEndTime.count()));
    }
    process.reset();  // kills one that is still there
    pinged.reset();
    const std::lock_guard lock(mutex);
    processNumber = 0;
}

void Player::State::endAll() {
    while (!requests.empty())
        finish(requests.begin(), {PlayOutcome::Cut, "the host stopped"});
    if (process) endIdle();
}

}  // namespace vigil
