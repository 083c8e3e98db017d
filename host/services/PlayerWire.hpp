#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/services/PlayEnd.hpp"

namespace vigil {

inline constexpr std::uint64_t kSoundFileSize = 8 << 20;  ///< bytes of a file; a larger one is not played
inline constexpr std::uint32_t kSoundSeconds = 120;       ///< of a sound; a longer one is not played
inline constexpr int kSoundsAtOnce = 32;                  ///< that are heard beside each other
/// Of all sounds that are heard beside each other, each with its whole length: they are kept in memory.
inline constexpr std::uint32_t kSoundSecondsAtOnce = 1500;

/// Which device and which voice: the first message to `vigil-helper player`, kind `O`.
struct PlayerSetup {
    std::string device{};               ///< its name; empty: the system's choice
    std::string program = "espeak-ng";  ///< speaks; a path, or a name to be found in PATH
    std::string voice{};                ///< empty: the one of the language
    std::string language{};             ///< empty: the program's choice
    std::uint32_t rate = 0;             ///< words a minute; 0: the program's choice
    std::uint32_t programTime = 3000;   ///< milliseconds for the program to give the whole speech
};

/// What the two say to each other from then on. A message has all of these fields; what a kind does not use
/// is 0 or empty.
struct PlayerMessage {
    enum Kind : char {
        // to the player; it takes files one after another, and everything else ahead of them
        Check = 'C',  ///< `text` is a file: can it be decoded? Answered by a verdict
        Play = 'P',   ///< `text` is a file
        Speak = 'S',  ///< `text` is to be spoken; not before the speech before has ended
        Stop = 'X',   ///< the sound or speech `id`
        Ping = 'Q',   ///< answered by a pong with the same number
        // from the player
        Verdict = 'V',  ///< `number` is a PlayOutcome, `text` its detail; finished: it can be decoded
        Began = 'B',    ///< `number` is its length in milliseconds
        Ended = 'E',    ///< `number` is a PlayOutcome, `text` its detail. The last word about `id`
        Pong = 'A',
    };
    Kind kind = Ping;
    std::uint64_t id = 0;
    std::uint32_t number = 0;
    std::string text{};
};

/// Both sides are of one build; a helper that was replaced under a running host refuses its setup.
inline constexpr std::uint32_t kPlayerWireVersion = 2;

std::string encodePlayerSetup(const PlayerSetup& setup);
std::string encodePlayerMessage(const PlayerMessage& message);

// From a message without its length; nothing when it is of another kind, another version or damaged.
std::optional<PlayerSetup> decodePlayerSetup(std::string_view message);
std::optional<PlayerMessage> decodePlayerMessage(std::string_view message);

}  // namespace vigil
