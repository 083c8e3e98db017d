#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/readings/Unit.hpp"
#include "host_contract/FourCharCode.hpp"
#include "platform/Date.hpp"

namespace vigil {

/// One value of a packet, under the key by which the station's readings know it.
struct PacketReading {
    std::string key{};   ///< of a known reading, or the name as it was sent
    std::string name{};  ///< the display name; empty: the known one, or the name as it was sent
    FourCharCode type = kNumericType;
    bool missing = false;    ///< the sender says that there is no value
    double value = 0;        ///< numeric: in `unit`; date: seconds since 2001; text: 0
    Unit unit = Unit::None;  ///< of `value`; None: the one held inside, or nothing known
    std::string text{};      ///< of a text reading; else empty, or the text that the sender gave
    std::string unitText{};  ///< a short unit given by the sender, used where `unit` is None
    /// Given by the sender beside `value`: both are then kept as they are, `value` as the one held inside,
    /// and the unit, however it is given, is that of `unitValue`.
    std::optional<double> unitValue{};
    std::optional<Date> time{};  ///< absent: the packet's
    bool visible = true;
    std::string
        unitString{};  ///< the value with its unit as the sender prints it; empty: follows from the rest
};

/// What a wire form made of one message: the values that a station, or one of its sensors, sent together.
struct Packet {
    std::string identity{};  ///< which station among those of a feed; empty: the only one
    /// Which part of the station sent it. Empty: the packet is all that the station has to say, and is judged
    /// as it stands; else the fresh readings of before stand beside it, since others send them.
    std::string sensor{};
    std::optional<Date> time{};  ///< absent: when it arrived
    Date arrived{};
    bool retained = false;  ///< kept by a broker from before: shown, but not news
    /// Of a recording: when it was recorded. Two of different times are never one transmission, however fast
    /// they are brought, and no time of theirs is ahead of the clock.
    std::optional<Date> recorded{};
    std::vector<PacketReading> readings{};
};

}  // namespace vigil
