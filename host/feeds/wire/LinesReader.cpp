#include "host/feeds/wire/LinesReader.hpp"

#include <algorithm>
#include <utility>

#include <simdjson.h>

#include "host/feeds/ReadingForm.hpp"
#include "host/feeds/Recorded.hpp"
#include "host/feeds/TimeForms.hpp"

namespace vigil {
namespace {

using simdjson::dom::element;
using simdjson::dom::object;

Result<std::optional<Date>> timeOf(const object& given) {
    const auto some = [](const Result<Date>& read) -> Result<std::optional<Date>> {
        if (!read) return read.error();
        return std::optional(read.value());
    };
    element time;
    if (given["time"].get(time) != simdjson::SUCCESS || time.is_null()) return std::optional<Date>();
    if (double seconds = 0; time.get(seconds) == simdjson::SUCCESS) return some(timeFromUnixSeconds(seconds));
    if (std::string_view text; time.get(text) == simdjson::SUCCESS) return some(recordedTime(text));
    return Error{"expected a text or seconds since 1970"};
}

/// A sender that gives both values, or only the one for people, has converted for itself, and both stay as
/// they are in a recorded file; what has one raw value is the station's to show.
void fill(PacketReading& reading, std::string_view key, const ReadingForm& form) {
    reading.key = key;
    if (form.name) reading.name = *form.name;
    reading.type = form.typeOrDefault();
    reading.missing = form.absent();
    const double seconds = form.date ? form.date->secondsSinceReference() : 0;
    reading.value = form.value ? *form.value : form.unitValue.value_or(seconds);
    reading.unitValue = form.unitValue;
    if (form.unit) reading.unitText = *form.unit;
    if (form.stringValue) reading.text = *form.stringValue;
    if (form.unitString) reading.unitString = *form.unitString;
    reading.time = form.time;
    reading.visible = form.visible.value_or(true);
}

}  // namespace

void LinesReader::take(const object& given, const RawMessage& message, std::vector<Packet>& packets,
                       const DecodeProblem& problem) const {
    std::string_view station;
    if (element name; given["station"].get(name) == simdjson::SUCCESS && !name.is_null())
        if (name.get(station) != simdjson::SUCCESS)
            return tell(problem, "station: expected a text; the line is left out");
    if (m_station && station != *m_station) return;
    const auto time = timeOf(given);
    if (!time) return tell(problem, "time: " + time.error().message + "; the line is left out");
    object readings;
    if (given["readings"].get(readings) != simdjson::SUCCESS)
        return tell(problem, "readings: expected an object from key to reading; the line is left out");
    Packet& packet = packets.emplace_back();
    packet.identity = station;
    packet.time = time.value();
    packet.arrived = message.arrived;
    packet.retained = message.retained;
    packet.readings.reserve(std::min(readings.size(), kMostReadingsOfMessage));
    ReadingList list(packet.readings, problem);
    for (const auto [key, value] : readings) {
        if (key.size() > kLongestName) {
            tell(problem,
                 "a reading's name has more than " + std::to_string(kLongestName) + " bytes; left out");
            continue;
        }
        ReadingForm form;
        if (const auto error = readReadingForm(value, form))
            tell(problem, "readings." + std::string(key) + error->message + "; the reading is left out");
        else if (form.propertyName && *form.propertyName != key)
            tell(problem, "readings." + std::string(key) + ".propertyName: expected " + quotedForPeople(key) +
                              ", the key it stands under; the reading is left out");
        else
            fill(list.next(key), key, form);
    }
}

Packet readyPacket(const RawMessage& message) {
    Packet packet{.identity = message.route,
                  .arrived = message.arrived,
                  .retained = message.retained,
                  .recorded = message.recorded};
    packet.readings.reserve(message.ready->entries().size());
    for (const AgentProperty& entry : message.ready->entries()) {
        PacketReading& reading = packet.readings.emplace_back();
        reading.key = entry.propertyName();
        reading.name = entry.name();
        reading.type = entry.type();
        reading.value = entry.value();
        // Where nobody has converted, the station may, and may doubt the value.
        if (entry.type() == kDateType || entry.unitValue() != entry.value())
            reading.unitValue = entry.unitValue();
        reading.unitText = entry.unit();
        reading.text =
            entry.type() == kTextType ? entry.stringValue() : entry.givenStringValue().value_or("");
        reading.unitString = entry.parts().unitStringValueWithUnitShort.value_or("");
        reading.time = entry.time();
        reading.visible = entry.visible();
        if (entry.time() && (!packet.time || *packet.time < *entry.time())) packet.time = entry.time();
    }
    return packet;
}

}  // namespace vigil
