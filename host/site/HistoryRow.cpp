#include "host/site/HistoryRow.hpp"

#include <cstring>
#include <utility>
#include <vector>

#include "host/site/HistoryBytes.hpp"
#include "host/site/HistoryRow_Tags.hpp"

namespace vigil {
namespace {

/// The places of a batch's labels, and whether they rise, so that a bit for each place says it all.
bool placesOf(const Readings& batch, HistoryLayout& layout, std::vector<std::size_t>& places) {
    bool rising = true;
    for (std::size_t i = 0; i < batch.entries().size(); ++i) {
        const std::size_t place = layout.placeOf(batch.slotOf(i), batch.entries()[i].label()).value();
        rising = rising && (places.empty() || place > places.back());
        places.push_back(place);
    }
    return rising;
}

void packPlaces(std::string& to, PackedWriter& writer, const std::vector<std::size_t>& places, bool rising,
                std::size_t labels) {
    if (rising) {
        const std::size_t begin = to.size();
        to.append((labels + 7) / 8, '\0');
        for (const std::size_t place : places)
            to[begin + place / 8] = static_cast<char>(to[begin + place / 8] | 1 << place % 8);
        return;
    }
    writer.count(places.size());
    for (const std::size_t place : places)
        writer.count(place);
}

void packText(PackedWriter& writer, const std::string& text, const TextNumber& numberOf) {
    const std::uint64_t number = numberOf(text);
    writer.count(number);
    if (number == 0) writer.bytes(text);
}

/// How the time of an entry is told after the one told last.
std::uint8_t timeTag(const std::optional<Date>& time, Date last) {
    if (!time) return kNoTime;
    const double seconds = time->secondsSinceReference();
    if (sameBits(seconds, last.secondsSinceReference())) return kSameTime;
    const double step = seconds - last.secondsSinceReference();
    return sameBits(last.secondsSinceReference() + step, seconds) ? kTimeStep : kWholeTime;
}

void packEntry(PackedWriter& writer, const AgentProperty::Parts& parts, Date& last,
               const TextNumber& numberOf) {
    const auto form = DecimalForm::of(parts.value);
    const std::uint8_t time = timeTag(parts.time, last);
    std::uint8_t tag = time;
    if (!sameBits(parts.value, parts.unitValue)) tag |= kUnitValue;
    if (parts.stringValue) tag |= kStringValue;
    if (parts.unitStringValueWithUnitShort) tag |= kUnitString;
    tag = static_cast<std::uint8_t>(tag | (form ? form->digits : kRawValue) << kDigitsShift);
    writer.byte(tag);
    if (form)
        writer.integer(form->whole);
    else
        writer.bits(parts.value);
    if (tag & kUnitValue) writer.number(parts.unitValue);
    if (time == kTimeStep) writer.number(parts.time->secondsSince(last));
    if (time == kWholeTime) writer.number(parts.time->secondsSinceReference());
    if (time == kTimeStep || time == kWholeTime) last = *parts.time;
    if (parts.stringValue) packText(writer, *parts.stringValue, numberOf);
    if (parts.unitStringValueWithUnitShort) packText(writer, *parts.unitStringValueWithUnitShort, numberOf);
}

}  // namespace

void packRow(std::string& to, HistoryLayout& layout, const Readings& batch, Date started,
             std::optional<std::uint64_t> sequence, const TextNumber& numberOf) {
    PackedWriter writer(to);
    std::vector<std::size_t> places;
    places.reserve(batch.entries().size());
    const bool rising = placesOf(batch, layout, places);
    writer.byte(static_cast<std::uint8_t>((rising ? 0 : kListed) | (sequence ? kNumbered : 0)));
    if (sequence) writer.count(*sequence);
    packPlaces(to, writer, places, rising, layout.labels().size());
    Date last = started;
    for (const AgentProperty& entry : batch.entries())
        packEntry(writer, entry.parts(), last, numberOf);
}

}  // namespace vigil
