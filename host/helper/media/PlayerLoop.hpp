#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>

#include "host/helper/media/Mixer.hpp"
#include "host/helper/media/SpeechProgram.hpp"
#include "host/services/HelperWire.hpp"
#include "host/services/PlayerWire.hpp"

namespace vigil {

/// Takes the host's commands and tells what becomes of them. Files are decoded one at a time, and whatever
/// else there is to do goes first: many long files keep neither a ping nor a speech waiting.
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
    bool wait();
    bool receive();
    void take(const PlayerMessage& message);
    void check(const PlayerMessage& message);
    void play(const PlayerMessage& message);
    void speak(const PlayerMessage& message);
    void stop(std::uint64_t id);
    void decodeNext();
    void serveSpeech();
    void serveMixer();
    void begin(std::uint64_t id, Mixer::Sound sound);
    void send(PlayerMessage::Kind kind, std::uint64_t id, std::uint32_t number, std::string text);
    void end(std::uint64_t id, PlayOutcome outcome, std::string detail);

    const PlayerSetup m_setup;
    const int m_socket;
    WireBuffer m_buffer;
    Mixer m_mixer;
    std::deque<PlayerMessage> m_files;       // to check and to play; the host bounds them
    std::optional<Speech> m_speech;          // that the program works at
    std::optional<std::uint64_t> m_tooLong;  // the speech that is heard, where its end was left out
    std::chrono::steady_clock::time_point m_lastEnd{};
    bool m_hostGone = false;
};

}  // namespace vigil
