#include "host/command/ReadingLines.hpp"

#include <cmath>

#include <fmt/format.h>

#include "host/command/JsonText.hpp"
#include "host/readings/Units.hpp"

namespace vigil {
namespace {

void appendJsonNumber(std::string& to, double number) {
    if (std::isfinite(number))
        fmt::format_to(std::back_inserter(to), "{}", number);
    else
        to += std::isnan(number) ? "\"NaN\"" : number > 0 ? "\"Infinity\"" : "\"-Infinity\"";
}

bool sameNumber(double a, double b) {
    return a == b ? std::signbit(a) == std::signbit(b) : std::isnan(a) && std::isnan(b);
}

/// Whether the reading's own time, name, unit and so on are what a reader takes where nothing is said.
bool isPlain(const AgentProperty& reading, Date time) {
    return reading.time() == time && reading.name() == reading.propertyName() && reading.unit().empty() &&
           reading.visible() && !reading.parts().unitStringValueWithUnitShort;
}

bool appendShort(std::string& to, const AgentProperty& reading, Date time) {
    if (!isPlain(reading, time)) return false;
    const auto& text = reading.givenStringValue();
    if (reading.type() == kTextType && text && sameNumber(reading.value(), 0) &&
        sameNumber(reading.unitValue(), 0))
        return appendJsonText(to, *text), true;
    const bool number = reading.type() == kNumericType && !text && std::isfinite(reading.value()) &&
                        sameNumber(reading.value(), reading.unitValue());
    if (number) appendJsonNumber(to, reading.value());
    return number;
}

void appendTextMember(std::string& to, const char* name, std::string_view text) {
    (to += ",\"") += name;
    to += "\":";
    appendJsonText(to, text);
}

void appendLong(std::string& to, const AgentProperty& reading, Date time) {
    to += "{\"value\":";
    appendJsonNumber(to, reading.value());
    to += ",\"unitValue\":";
    appendJsonNumber(to, reading.unitValue());
    if (reading.name() != reading.propertyName()) appendTextMember(to, "name", reading.name());
    if (const auto& text = reading.givenStringValue()) appendTextMember(to, "stringValue", *text);
    if (reading.time() != time && reading.time()) appendTextMember(to, "time", exactIsoText(*reading.time()));
    if (reading.type() != kNumericType) appendTextMember(to, "type", fourCharText(reading.type()));
    if (!reading.visible()) to += ",\"visible\":false";
    if (!reading.unit().empty()) appendTextMember(to, "unit", reading.unit());
    if (const auto& text = reading.parts().unitStringValueWithUnitShort)
        appendTextMember(to, "unitStringValueWithUnitShort", *text);
    to += '}';
}

void appendCell(std::string& to, std::string_view text) {
    to += '"';
    for (const char c : text) {
        if (c == '"') to += '"';
        to += c;
    }
    to += '"';
}

/// Somebody may have chosen another unit since the column began.
double numberIn(const ReadingColumn& column, const AgentProperty& reading) {
    if (reading.unit() == column.unit) return reading.unitValue();
    const auto from = unitFromText(reading.unit());
    const auto to = unitFromText(column.unit);
    const auto converted = from && to ? convert(reading.unitValue(), *from, *to) : std::nullopt;
    return converted.value_or(reading.unitValue());
}

}  // namespace

std::string exactIsoText(Date time) {
    constexpr int kMicroseconds = 6;
    const double seconds = time.secondsSinceReference();
    return time.isoText(seconds == std::floor(seconds) ? 0 : kMicroseconds);
}

void appendReadingsLine(std::string& to, std::string_view station, Date time, const Readings& readings) {
    to += '{';
    if (!station.empty()) {
        to += "\"station\":";
        appendJsonText(to, station);
        to += ',';
    }
    to += "\"time\":\"" + exactIsoText(time) + "\",\"readings\":{";
    bool first = true;
    for (const AgentProperty& reading : readings.entries()) {
        if (!first) to += ',';
        first = false;
        appendJsonText(to, reading.propertyName());
        to += ':';
        if (!appendShort(to, reading, time)) appendLong(to, reading, time);
    }
    to += "}}\n";
}

ReadingColumn ReadingColumn::of(const AgentProperty& reading) {
    const bool known = reading.type() == kNumericType && unitFromText(reading.unit());
    return {reading.propertyName(), known ? reading.unit() : std::string()};
}

void appendReadingsHeader(std::string& to, const std::vector<ReadingColumn>& columns) {
    to += "time";
    for (const ReadingColumn& column : columns) {
        to += ',';
        appendCell(to, column.unit.empty() ? column.key : column.key + " [" + column.unit + "]");
    }
    to += '\n';
}

void appendReadingsRow(std::string& to, Date time, const std::vector<ReadingColumn>& columns,
                       const Readings& readings) {
    to += exactIsoText(time);
    for (const ReadingColumn& column : columns) {
        to += ',';
        const AgentProperty* const reading = readings.objectForKey(column.key);
        if (!reading) continue;
        if (reading->type() == kTextType)
            appendCell(to, reading->stringValue());
        else if (reading->type() == kDateType)
            to += exactIsoText(Date(reading->value()));
        else if (const double number = numberIn(column, *reading); std::isfinite(number))
            fmt::format_to(std::back_inserter(to), "{}", number);
    }
    to += '\n';
}

}  // namespace vigil
