#include <algorithm>
#include <array>

#include <poll.h>
#include <signal.h>

#include "host/services/Player_State.hpp"

// The player's thread: what becomes of a process that hangs, dies or is not wanted any more.

namespace vigil {
namespace {

/// For the process to end once it is told to, and what speaks for it.
constexpr std::chrono::milliseconds kEndTime{1000};
/// The helper that cannot become the one with the sound libraries, or that does not understand its setup.
constexpr const char* kCannotBecomePlayer = "ended with exit status 2";

}  // namespace

void Player::State::watch() {
    if (!process) return;
    if (const auto how = process->ending()) return processEnded(*how);
    const auto now = Steady::now();
    if (pinged && now >= *pinged + options.timing.answer)
        return endProcess("the sound system did not answer in time", PlayOutcome::TimedOut, 0);
    for (const Request& request : requests) {
        if (!request.began || now < request.deadline) continue;
        return endProcess("the sound system did not play it to its end in time", PlayOutcome::TimedOut,
                          request.message.id);
    }
    endLate();
    if (!pinged && anySent() && now >= lastPing + options.timing.answer / 3) ping();
    if (requests.empty() && now >= lastUse + options.timing.idle) endIdle();
}

/// Ends what has not begun in its time, each alone: the player answers, so it does not hang.
void Player::State::endLate() {
    const auto now = Steady::now();
    for (auto next = requests.begin(); next != requests.end();) {
        const auto request = next++;
        if (!request->sent || request->began || request->message.kind == PlayerMessage::Check ||
            now < request->deadline)
            continue;
        process->send(encodePlayerMessage({PlayerMessage::Stop, request->message.id, 0, {}}));
        finish(request, {PlayOutcome::TimedOut, "the sound system did not begin to play it in time"});
    }
}

/// Ends one that hangs. What the process has been given ends with it; `culprit`, where it is known, is the
/// one that tells why.
void Player::State::endProcess(const std::string& because, PlayOutcome outcome, Id culprit) {
    process->kill();
    hideProcess();
    for (auto next = requests.begin(); next != requests.end();) {
        const auto request = next++;
        if (!request->sent) continue;
        const bool isOther = culprit != 0 && request->message.id != culprit;
        finish(request, {outcome, isOther ? "the player was ended, since another sound hung" : because});
    }
    letGo();
}

void Player::State::processEnded(std::string how) {
    serve();  // what it said last
    if (!process) return;
    hideProcess();
    if (how == kCannotBecomePlayer)
        how = "cannot be started: vigil-helper-media is missing or of another version";
    // Files are taken one after another: the first without an answer is the one that it died of, if its
    // decoder did what decoders do to bad files. Another end tells nothing about a file.
    const std::array faults = {SIGSEGV, SIGABRT, SIGBUS, SIGFPE};
    const bool isFault = std::find(faults.begin(), faults.end(), process->signal()) != faults.end();
    const auto first = std::find_if(requests.begin(), requests.end(), [](const Request& one) {
        return one.sent && !one.began && one.message.kind != PlayerMessage::Speak;
    });
    if (isFault && first != requests.end() && first->message.kind == PlayerMessage::Check)
        finish(first, {PlayOutcome::NotPlayable, "the player " + how + " when it tried to decode it"});
    for (auto next = requests.begin(); next != requests.end();) {
        const auto request = next++;
        if (request->sent) finish(request, {PlayOutcome::Failed, "the player " + how});
    }
    letGo();
}

/// Before the answers: who hears that the process was ended asks for it in vain.
void Player::State::hideProcess() {
    const std::lock_guard lock(mutex);
    processNumber = 0;
}

/// Behind the answers: one that does not end keeps this thread for a moment.
void Player::State::letGo() {
    pinged.reset();
    hideProcess();
    process.reset();  // kills one that is still there
}

void Player::State::endIdle() {
    process->closeInput();
    const auto until = Steady::now() + kEndTime;
    while (!process->ending() && Steady::now() < until) {
        process->exchange();
        pollfd ended{process->process(), POLLIN, 0};
        ::poll(&ended, 1, static_cast<int>(kEndTime.count()));
    }
    letGo();
}

void Player::State::endAll() {
    while (!requests.empty())
        finish(requests.begin(), {PlayOutcome::Cut, "the host stopped"});
    if (process) endIdle();
}

}  // namespace vigil
