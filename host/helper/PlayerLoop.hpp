#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "host/helper/Mixer.hpp"
#include "host/helper/SpeechProgram.hpp"
#include "host/services/HelperWire.hpp"
#include "host/services/PlayerWire.hpp"

namespace vigil {

/// Takes the host's commands one after another and tells what becomes of them.
class PlayerLoop {
  public:
    /// `buffer` may hold what has come already.
    PlayerLoop(PlayerSetup setup, int socket, WireBuffer buffer);
    PlayerLoop(const PlayerLoop&) = delete;
    PlayerLoop& operator=(const PlayerLoop&) = delete;

    /// Returns when the host is gone. The device is then as it was: closing one that hangs would hang, too.
    void run();

  private:
    struct Speech {
        std::uint64_t id;
        SpeechProgram program;
    };

    bool takeAll();
    void wait();
    bool receive();
    void take(const PlayerMessage& message);
    void check(const PlayerMessage& message);
    void play(const PlayerMessage& message);
    void speak(const PlayerMessage& message);
    void stop(std::uint64_t id);
    void serveSpeech();
    void serveMixer();
    void begin(std::uint64_t id, Mixer::Sound sound);
    void send(PlayerMessage::Kind kind, std::uint64_t id, std::uint32_t number, std::string text);
    void end(std::uint64_t id, PlayOutcome outcome, std::string detail);

    const PlayerSetup m_setup;
    const int m_socket;
    WireBuffer m_buffer;
    Mixer m_mixer;
    std::optional<Speech> m_speech;          // that the program works at
    std::optional<std::uint64_t> m_tooLong;  // the speech that is heard, where its end was left out
    std::chrono::steady_clock::time_point m_lastEnd{};
    bool m_hostGone = false;
};

}  // namespace vigil
