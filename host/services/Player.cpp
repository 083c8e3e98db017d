#include "host/services/Player.hpp"

#include <stdexcept>
#include <system_error>
#include <utility>

#include <sys/eventfd.h>
#include <unistd.h>

#include "host/services/Player_State.hpp"

// What any thread may do. Player_Loop.cpp and Player_Watch.cpp hold the player's own thread.

namespace vigil {

Player::State::State(Options given)
    : options(std::move(given)), wakeUp(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!wakeUp) throw std::runtime_error("no event descriptor for the player");
}

void Player::State::wake() {
    const std::uint64_t one = 1;
    // fails only when it is set already, which wakes as well
    [[maybe_unused]] const ssize_t written = ::write(wakeUp.get(), &one, sizeof one);
}

/// With the mutex held. Why there is no thread for the requests; nothing where there is one.
std::optional<PlayEnd> Player::State::startThread() {
    try {
        if (!thread.joinable()) thread = std::thread([this] { loop(); });
        return std::nullopt;
    } catch (const std::system_error& failure) {
        return PlayEnd{PlayOutcome::Failed, std::string("no thread for the player: ") + failure.what()};
    }
}

Player::Id Player::State::submit(PlayerMessage::Kind kind, const std::string& text, Callbacks callbacks,
                                 bool held) {
    std::optional<PlayEnd> refused;
    Id id = 0;
    {
        const std::lock_guard lock(mutex);
        id = ++lastId;
        if (stopping) {
            refused = {PlayOutcome::Cut, "the host has stopped"};
        } else if (unended >= kPlayRequests) {
            refused = {PlayOutcome::Failed,
                       std::to_string(unended) + " sounds and speeches are under way already"};
        } else {
            refused = startThread();
        }
        if (!refused) {
            ++unended;
            incoming.push_back({.message = {kind, id, 0, text},
                                .callbacks = std::move(callbacks),
                                .held = held,
                                .asked = Steady::now()});
        }
    }
    if (refused) {
        callbacks.ended(*refused);
    } else {
        wake();
    }
    return id;
}

void Player::State::order(Order given) {
    {
        const std::lock_guard lock(mutex);
        orders.push_back(given);
    }
    wake();
}

void Player::State::stop() {
    {
        const std::lock_guard lock(mutex);
        stopping = true;
    }
    wake();
    const std::lock_guard lock(joinMutex);
    if (thread.joinable()) thread.join();
}

Player::Player(Options options) : m_state(std::make_unique<State>(std::move(options))) {}

Player::~Player() {
    stop();
}

Player::Id Player::check(const std::string& path, Callbacks callbacks) {
    return m_state->submit(PlayerMessage::Check, path, std::move(callbacks), false);
}

Player::Id Player::play(const std::string& path, Callbacks callbacks) {
    return m_state->submit(PlayerMessage::Play, path, std::move(callbacks), false);
}

Player::Id Player::speak(const std::string& text, Callbacks callbacks, bool held) {
    return m_state->submit(PlayerMessage::Speak, text, std::move(callbacks), held);
}

void Player::release(Id speech) {
    m_state->order({State::Order::Release, speech});
}

void Player::stop(Id id) {
    m_state->order({State::Order::Stop, id});
}

std::size_t Player::active() const {
    const std::lock_guard lock(m_state->mutex);
    return m_state->unended;
}

int Player::process() const {
    const std::lock_guard lock(m_state->mutex);
    return m_state->processNumber;
}

void Player::stop() {
    m_state->stop();
}

}  // namespace vigil
