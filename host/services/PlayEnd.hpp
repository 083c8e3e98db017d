#pragma once

#include <cstdint>
#include <string>

namespace vigil {

/// How a sound or a speech ended.
enum class PlayOutcome : std::uint32_t {
    Finished,      ///< it was played to its end
    NothingToSay,  ///< the text was empty
    NotPlayable,   ///< the file cannot be read or decoded
    NoDevice,      ///< no device took it, or the device was lost
    NoProgram,     ///< the program that speaks is not there, or said nothing
    TimedOut,      ///< something did not answer in time
    Cut,           ///< it was stopped
    Shortened,     ///< it was too long, and its end was left out
    Failed,        ///< the player itself could not do it
};
inline constexpr std::uint32_t kPlayOutcomes = 9;

struct PlayEnd {
    PlayOutcome outcome = PlayOutcome::Finished;
    std::string detail{};  ///< one line for people; may be empty where it finished
};

}  // namespace vigil
