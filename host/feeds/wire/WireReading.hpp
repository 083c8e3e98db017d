#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/feeds/wire/Decoder.hpp"
#include "host/readings/Packet.hpp"

namespace vigil {

// What the readers of all wire forms share. Pure functions, any thread.

/// A message gives at most so many readings; further ones are left out and told once a message.
inline constexpr std::size_t kMostReadingsOfMessage = 512;

PacketReading wireNumber(std::string key, double value, Unit unit);
PacketReading wireText(std::string key, std::string text);
PacketReading wireDate(std::string key, Date date);
/// The sender says that there is none.
PacketReading wireMissing(std::string key, FourCharCode type);

/// A finite number in plain or exponent notation; blanks around it and a "+" in front do not matter.
std::optional<double> numberInText(std::string_view text);

/// Whether a text stands for "no value": a word (MissingMarks.hpp), or -9999 and -9999.9 however they are
/// written.
bool isNoValue(std::string_view text);

/// At most so many bytes from the front, cut between characters.
std::string_view shortened(std::string_view text, std::size_t most);

/// In quotes, for a sentence: repaired where it is not UTF-8 and cut behind 40 bytes.
std::string quotedForPeople(std::string_view text);

/// Calls `problem` where there is somebody to hear it.
void tell(const DecodeProblem& problem, const std::string& words);

/// "OK", "LOW", or the text as it is: what a battery says for itself.
std::string batteryText(std::string_view text);

/// The number of a reading that is either a number or a text with one: the sentence behind a name where it is
/// neither.
std::string notANumber(std::string_view name, std::string_view found);

/// Fills a packet's readings up to kMostReadingsOfMessage and tells once where there are more.
class ReadingList {
  public:
    ReadingList(std::vector<PacketReading>& readings, const DecodeProblem& problem)
        : m_readings(readings), m_problem(problem) {}
    void add(PacketReading reading) { next(reading.key) = std::move(reading); }
    /// The place for a reading of that key; where the packet is full, one that nobody sees.
    PacketReading& next(std::string_view key);

  private:
    std::vector<PacketReading>& m_readings;
    const DecodeProblem& m_problem;
    bool m_told = false;
    PacketReading m_unseen{};
};

}  // namespace vigil
