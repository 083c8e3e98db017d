#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/readings/Packet.hpp"
#include "host/readings/RollingChoice.hpp"
#include "host/readings/Unit.hpp"
#include "host_contract/Readings.hpp"
#include "platform/Date.hpp"

namespace vigil {

/// How the user wants a station's readings.
struct StationReadingsSettings {
    UnitSystem system = UnitSystem::Metric;
    /// By key; one that does not convert from the unit held inside is passed over.
    std::map<std::string, Unit> units{};
    /// At most `kMostRollingChoices`; further ones, and a second one of the same key, are passed over.
    std::vector<RollingChoice> rolling{};
    bool derive = true;
    /// How long a reading of one sensor stands beside the news of another, in seconds.
    double freshSeconds = 600;
};

/// Everything that was left out, and why. Readings that are not announced because their whole packet is not
/// are counted with the packet alone.
struct StationReadingsCounts {
    std::uint64_t packets = 0;  ///< taken, whatever became of them
    // Packets that are no news.
    std::uint64_t repeats = 0;
    std::uint64_t late = 0;
    std::uint64_t retained = 0;
    std::uint64_t empty = 0;  ///< not one reading of theirs was left
    // Readings.
    std::uint64_t missing = 0;      ///< the sender had no value, in whatever way it said so
    std::uint64_t implausible = 0;  ///< out of the quantity's bounds
    std::uint64_t unreadable = 0;   ///< a text where a number belongs
    std::uint64_t wrongUnit = 0;    ///< of another quantity than the reading is known to be
    std::uint64_t longNames = 0;    ///< names of more than `kLongestReadingName` bytes
    std::uint64_t noPlace = 0;      ///< a key more than a station may have
    // Times.
    std::uint64_t wrongTimes = 0;  ///< more than an hour ahead or in no calendar; the arrival stands for them
    std::uint64_t jumps = 0;       ///< how often a clock, a sensor's or the host's, was set back

    /// All readings left out.
    std::uint64_t readingsDropped() const {
        return missing + implausible + unreadable + wrongUnit + longNames + noPlace;
    }
};

/// What became of a packet.
struct Taken {
    enum class Kind {
        News,      ///< `batch` is to be announced
        Repeat,    ///< the same values of the same sensor within two seconds
        Late,      ///< the sensor has sent a later packet already
        Retained,  ///< kept by a broker: in `current()`, where nothing newer stands
        Nothing    ///< not one reading was left
    };
    Kind kind = Kind::Nothing;
    std::shared_ptr<const Readings> batch{};  ///< never absent with News, else absent
};

/// The readings of one station: makes of its packets the batches that are announced, and keeps the table of
/// all that is known. docs/readings.md says what is merged, dropped and derived. A station's strand, one call
/// at a time.
class StationReadings {
  public:
    /// Keys that a station keeps, those made by the host included. Stops a sender whose keys change without
    /// end.
    static constexpr std::size_t kMostKeys = 512;
    /// Bytes of a reading's name as it was sent.
    static constexpr std::size_t kLongestReadingName = 256;
    static constexpr std::size_t kMostRollingChoices = 64;
    /// Sensors of which it is known when they sent last; beyond that the one heard longest ago is forgotten.
    static constexpr std::size_t kMostSensors = 256;
    /// Seconds within which equal values of one sensor are one transmission.
    static constexpr double kRepeatSeconds = 2;
    /// Seconds that a time may be ahead of the host's clock.
    static constexpr double kFutureSeconds = 3600;

    explicit StationReadings(StationReadingsSettings settings);
    StationReadings(const StationReadings&) = delete;
    StationReadings& operator=(const StationReadings&) = delete;
    ~StationReadings();

    /// `now` is the host's clock. Never throws for anything in the packet.
    Taken take(const Packet& packet, Date now);

    /// The ages that the user chose, where nothing has been announced for a minute: a station that is silent
    /// would else never grow old. Absent where there is nothing to say. To be asked now and then, and what it
    /// gives to be announced.
    std::shared_ptr<const Readings> tick(Date now);

    /// All that is known, one reading a key, with the time of each: also what was retained, has not come for
    /// long, or is missing by now. Shares the key table of the batches. Never absent.
    std::shared_ptr<const Readings> current();

    const StationReadingsCounts& counts() const;

  private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace vigil
