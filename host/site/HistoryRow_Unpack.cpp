#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

#include "host/site/HistoryBytes.hpp"
#include "host/site/HistoryRow.hpp"
#include "host/site/HistoryRow_Tags.hpp"

namespace vigil {
namespace {

const Error kDamaged{"the packed row is damaged"};

bool unpackPlaces(PackedReader& reader, bool listed, std::size_t labels, std::vector<std::size_t>& places) {
    if (!listed) {
        std::uint8_t bits = 0;
        for (std::size_t place = 0; place < labels; ++place) {
            if (place % 8 == 0) bits = reader.byte();
            if (bits >> place % 8 & 1) places.push_back(place);
        }
        return !reader.failed();
    }
    const std::uint64_t count = reader.count();
    if (count > reader.left()) return false;  // each takes a byte at least
    places.reserve(static_cast<std::size_t>(count));
    for (std::uint64_t i = 0; i < count; ++i) {
        const std::uint64_t place = reader.count();
        if (place >= labels) return false;
        places.push_back(static_cast<std::size_t>(place));
    }
    return !reader.failed();
}

std::optional<std::string> unpackText(PackedReader& reader, const TextOfNumber& textOf, bool& whole) {
    const std::uint64_t number = reader.count();
    if (number == 0) return std::string(reader.bytes());
    auto text = textOf(number);
    if (!text) whole = false;
    return text;
}

double unpackValue(PackedReader& reader, int digits, bool& whole) {
    if (digits == kRawValue) return reader.bits();
    if (digits > DecimalForm::kMostDigits) whole = false;
    return DecimalForm{reader.integer(), whole ? digits : 0}.number();
}

/// Each entry tells its time by the one told last.
void unpackTime(PackedReader& reader, std::uint8_t tag, Date& last) {
    const int time = tag & kTimeBits;
    if (time == kTimeStep) last = last.plus(reader.number());
    if (time == kWholeTime) last = Date(reader.number());
}

/// An entry that nobody wants, but for what the next ones need of it.
void passEntry(PackedReader& reader, Date& last) {
    const std::uint8_t tag = reader.byte();
    if (tag >> kDigitsShift == kRawValue)
        reader.bits();
    else
        reader.integer();
    if (tag & kUnitValue) reader.number();
    unpackTime(reader, tag, last);
    for (const std::uint8_t text : {kStringValue, kUnitString})
        if (tag & text && reader.count() == 0) reader.bytes();
}

/// Leaves `whole` false where the bytes are none of an entry.
AgentProperty::Parts unpackEntry(PackedReader& reader, Date& last, const TextOfNumber& textOf, bool& whole) {
    const std::uint8_t tag = reader.byte();
    AgentProperty::Parts parts;
    parts.value = unpackValue(reader, tag >> kDigitsShift, whole);
    parts.unitValue = tag & kUnitValue ? reader.number() : parts.value;
    unpackTime(reader, tag, last);
    if ((tag & kTimeBits) != kNoTime) parts.time = last;
    if (tag & kStringValue) parts.stringValue = unpackText(reader, textOf, whole);
    if (tag & kUnitString) parts.unitStringValueWithUnitShort = unpackText(reader, textOf, whole);
    return parts;
}

}  // namespace

RowChoice::RowChoice(const HistoryLayout& layout, const std::vector<std::string>& keys) {
    const auto wanted = [&](const std::string& key) {
        return std::find(keys.begin(), keys.end(), key) != keys.end();
    };
    for (const HistoryLayout::Label& label : layout.labels())
        places.push_back(wanted(label->propertyName));
    std::vector<std::string> held;
    if (layout.table())
        std::copy_if(layout.table()->keys().begin(), layout.table()->keys().end(), std::back_inserter(held),
                     wanted);
    table = KeyTable::make(std::move(held));
}

Result<UnpackedRow> unpackRow(std::string_view row, const HistoryLayout& layout, Date started,
                              const TextOfNumber& textOf, const RowChoice* choice) {
    PackedReader reader(row);
    const std::uint8_t flags = reader.byte();
    if (reader.failed() || flags > kRowBits) return kDamaged;
    UnpackedRow unpacked;
    if (flags & kNumbered) unpacked.sequence = reader.count();
    std::vector<std::size_t> places;
    if (!unpackPlaces(reader, flags & kListed, layout.labels().size(), places)) return kDamaged;
    std::vector<AgentProperty> entries;
    entries.reserve(choice ? choice->table->size() : places.size());
    Date last = started;
    bool whole = true;
    const auto isWanted = [&](std::size_t place) { return !choice || choice->places[place]; };
    auto left = std::count_if(places.begin(), places.end(), isWanted);
    for (auto place = places.begin(); left > 0; ++place) {
        if (!isWanted(*place)) {
            passEntry(reader, last);
            continue;
        }
        auto parts = unpackEntry(reader, last, textOf, whole);
        if (!whole || reader.failed()) return kDamaged;
        entries.emplace_back(layout.labels()[*place], std::move(parts));
        --left;
    }
    if (!choice && !reader.atEnd()) return kDamaged;
    unpacked.readings = Readings::make(choice ? choice->table : layout.table(), std::move(entries));
    return unpacked;
}

}  // namespace vigil
