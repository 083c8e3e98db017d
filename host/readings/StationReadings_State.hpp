#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/readings/RollingWindow.hpp"
#include "host/readings/SensorClock.hpp"
#include "host/readings/StationReadings.hpp"
#include "host/readings/StationTable.hpp"

namespace vigil {

/// What a station keeps between packets. Each concern has a file of its own: StationReadings_Values.cpp reads
/// a packet's values, _Take.cpp decides what they are, _Derived.cpp and _Rolling.cpp add to them.
struct StationReadings::State {
    explicit State(StationReadingsSettings given);

    /// A value of the packet under way, checked and converted.
    struct Value {
        std::size_t entry;
        AgentProperty reading;
    };
    struct Sensor {
        std::string name;
        std::uint64_t number;  ///< never given again, also when its place is
        Date heard;
        SensorClock clock{};
        std::optional<Date> recorded{};  ///< of its last packet
        std::size_t first = 0;           ///< the entry that its packets begin with
    };
    struct Rolling {
        RollingChoice choice;
        std::string key;
        RollingWindow window;
        RollingRun run{};
        std::size_t source = StationTable::kNowhere;
        std::size_t entry = StationTable::kNowhere;
        std::size_t searched = 0;       ///< entries among which the source was not
        std::optional<Date> sampled{};  ///< time of the last sample, and its value
        double sample = 0;
        std::shared_ptr<const AgentPropertyLabel> named{};  ///< the source's label when `name` was made
        std::string name{};
    };
    /// The readings from which others are derived, and those.
    enum Input : std::size_t { Temperature, Humidity, WindSpeed, WindDirection, kInputs };
    enum Derivation : std::size_t { DewPoint, WindChill, HeatIndex, FeelsLike, Compass, kDerivations };

    // --- StationReadings_Values.cpp
    /// Fills `values` and `gone`; what is left out is counted in `left`.
    void readValues(const Packet& packet, Sensor& sensor, std::optional<Date> time, Date now);
    void readText(const PacketReading& sent, std::size_t index, std::optional<Date> time);
    void readDate(const PacketReading& sent, std::size_t index, std::optional<Date> time);
    void readNumber(const PacketReading& sent, std::size_t index, std::optional<Date> time);
    void hasNoValue(std::size_t index);

    // --- StationReadings_Take.cpp
    /// Whether a time can be believed: finite, in the calendar, and not far ahead unless it was recorded.
    static bool isTime(Date time, Date now, bool recorded = false);
    Taken take(const Packet& packet, Date now);
    void noteClock(Date now);
    std::size_t sensorNamed(const std::string& name);
    bool isRepeat(const Sensor& sensor) const;
    void keepRetained();
    std::shared_ptr<const Readings> announce(const Sensor& sensor, Date now);
    void countLeft();

    // --- StationReadings_Batch.cpp
    /// Whether the entry's reading belongs to the batch under way.
    bool isInBatch(const StationEntry& entry) const;
    /// Makes the reading part of the batch under way.
    void put(StationEntry& entry, AgentProperty reading);
    std::shared_ptr<const Readings> batch();

    // --- StationReadings_Derived.cpp
    void derive();
    const AgentProperty* input(Input which);
    /// The entry of a reading that the host makes; nothing where the station sends it or no place is left.
    StationEntry* made(std::size_t& index, std::string_view key);
    void putDerived(std::size_t& index, std::string_view key, double value, std::optional<Date> time);

    // --- StationReadings_Rolling.cpp
    void startRolling();
    void roll(Date now);
    bool rollAge(Rolling& rolling, Date now);
    void rollWindow(Rolling& rolling);
    void sample(Rolling& rolling, const AgentProperty& reading, Date time);
    void putRolling(Rolling& rolling, const RollingSample& number, std::string_view unit, Date time);
    bool findSource(Rolling& rolling);
    /// A clock was set back to `time`: the host's, or that of one sensor.
    void forgetAfter(Date time, const Sensor* sensor);

    static constexpr std::size_t kNowhere = StationTable::kNowhere;

    const StationReadingsSettings settings;
    StationTable table{settings};
    std::vector<Sensor> sensors;
    std::vector<Rolling> rollings;
    StationReadingsCounts counts;
    std::uint64_t sensorsSeen = 0;
    std::size_t lastSensor = 0;
    std::optional<Date> lastNow;
    std::optional<Date> announced;            ///< when the last batch was made
    std::shared_ptr<const Readings> current;  ///< absent when it has to be made again
    std::array<std::size_t, kInputs> inputs;
    std::array<std::size_t, kDerivations> derived;

    // Of the packet under way; members so that their memory stays.
    std::vector<Value> values;
    std::vector<std::size_t> gone;  ///< entries whose sender says that there is no value
    StationReadingsCounts left;

    // Of the batch under way.
    std::uint64_t news = 0;  ///< its number
    Date arrived;
    bool besides = false;  ///< fresh readings of others stand beside what is new
};

}  // namespace vigil
