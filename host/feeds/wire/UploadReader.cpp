#include "host/feeds/wire/UploadReader.hpp"

#include <algorithm>
#include <utility>

#include "host/feeds/Recorded.hpp"
#include "host/feeds/TimeForms.hpp"
#include "host/feeds/wire/WireTime.hpp"

namespace vigil {
namespace {

using Form = UploadFields::Form;
using Kind = WireKey::Kind;

/// No air on earth weighs more than this, in inches of mercury: what does is hectopascal.
constexpr double kHeaviestAir = 40;

const UploadField* fieldNamed(std::span<const UploadField> fields, std::string_view name) {
    const auto found = std::find_if(fields.begin(), fields.end(),
                                    [name](const UploadField& field) { return field.name == name; });
    return found == fields.end() ? nullptr : &*found;
}

/// These consoles send 1 for a battery that is good.
bool isGood(Form form, double flag) {
    return form == Form::Ambient ? flag != 0 : flag == 0;
}

/// The last hour's rain, except where it takes the place of the rate.
WireKeyFound foundKey(Form form, bool hasRate, std::string_view name) {
    static constexpr WireKey kHourlyRate{"hourlyrainin", "rainRate", Unit::InchPerHour};
    if (form == Form::Ambient && !hasRate && name == kHourlyRate.wire)
        return {&kHourlyRate, std::string(kHourlyRate.key)};
    return findWireKey(uploadKeys(), name);
}

std::optional<Date> timeOf(std::span<const UploadField> fields, Date arrived, const DecodeProblem& problem) {
    const UploadField* field = fieldNamed(fields, "dateutc");
    if (!field || field->value == "now" || isNoValue(field->value)) return std::nullopt;
    const auto time = wireTime(field->value, arrived, {});
    if (time) return time.value();
    tell(problem, "upload: dateutc: " + time.error().message + "; the time of arrival is taken");
    return std::nullopt;
}

}  // namespace

UploadReader::UploadReader(const FeedUrl& url) : m_units(url.option("units")), m_choice(url) {}

bool UploadReader::Upload::has(std::string_view name) const {
    return fieldNamed(fields, name) != nullptr;
}

bool UploadReader::isMetric(std::span<const UploadField> fields) const {
    if (m_units) return *m_units == "metric";
    for (const std::string_view name : {"baromrelin", "baromabsin", "baromin", "absbaromin"}) {
        const UploadField* field = fieldNamed(fields, name);
        if (!field || isNoValue(field->value)) continue;
        if (const auto pressure = numberInText(field->value)) return *pressure > kHeaviestAir;
    }
    return false;
}

PacketReading UploadReader::unknown(const UploadField& field) {
    if (isNoValue(field.value)) return wireMissing(field.name, kNumericType);
    if (const auto number = numberInText(field.value)) return wireNumber(field.name, *number, Unit::None);
    return wireText(field.name, field.value);
}

PacketReading UploadReader::known(const Upload& upload, const UploadField& field, const WireKeyFound& found,
                                  const DecodeProblem& problem) {
    const Kind kind = found.entry->kind;
    if (kind == Kind::Text) {
        if (isNoValue(field.value)) return wireMissing(found.key, kTextType);
        const bool isBattery = field.name.ends_with("battery");
        return wireText(found.key, isBattery ? batteryText(field.value) : field.value);
    }
    const FourCharCode type = kind == Kind::Flag       ? kTextType
                              : kind == Kind::UnixTime ? kDateType
                                                       : kNumericType;
    if (isNoValue(field.value)) return wireMissing(found.key, type);
    const auto number = numberInText(field.value);
    if (kind == Kind::Flag) {
        if (number != 0 && number != 1) return wireText(found.key, batteryText(field.value));
        return wireText(found.key, isGood(upload.form, *number) ? "OK" : "LOW");
    }
    if (!number) {
        tell(problem, "upload: " + notANumber(field.name, field.value));
        return wireMissing(found.key, type);
    }
    if (kind == Kind::UnixTime) {
        const auto date = timeFromUnixSeconds(*number);
        // A console that has not seen any yet sends 0.
        if (date && *number > 0) return wireDate(found.key, date.value());
        if (!date) tell(problem, "upload: " + field.name + ": " + date.error().message);
        return wireMissing(found.key, type);
    }
    const Unit unit = upload.metric ? metricInstead(found.entry->unit) : found.entry->unit;
    PacketReading reading = wireNumber(found.key, *number, unit);
    reading.visible = kind != Kind::Hidden;
    return reading;
}

std::optional<PacketReading> UploadReader::reading(const Upload& upload, const UploadField& field,
                                                   const DecodeProblem& problem) {
    if (field.name.size() > kLongestName) {
        tell(problem,
             "upload: a field's name has more than " + std::to_string(kLongestName) + " bytes; left out");
        return std::nullopt;
    }
    const auto firstGauge = firstGaugeField(field.name);
    const std::string_view meant = firstGauge && !upload.has(*firstGauge) ? *firstGauge : field.name;
    const auto found = foundKey(upload.form, upload.has("rainratein") || firstGauge, meant);
    if (!found.entry) return unknown(field);
    if (found.entry->kind == Kind::Protocol) return std::nullopt;
    return known(upload, field, found, problem);
}

void UploadReader::take(const RawMessage& message, std::vector<Packet>& packets,
                        const DecodeProblem& problem) {
    const UploadFields request = parseUpload("POST", message.route, {}, message.payload);
    if (request.form == Form::None)
        return tell(problem, message.payload.size() > kLongestUpload
                                 ? "upload: more than " + std::to_string(kLongestUpload) + " bytes; left out"
                                 : "upload: neither PASSKEY nor ID nor dateutc; left out");
    const std::vector<UploadField> fields = uploadFields(request.text);
    const Upload upload{request.form, isMetric(fields), fields};
    if (upload.metric && !m_units && !m_toldMetric) {
        m_toldMetric = true;
        tell(problem,
             "upload: the pressure is hectopascal under a name that promises inches, so all numbers are "
             "taken as metric; units=us or units=metric settles it");
    }
    Packet packet{.identity = request.identity, .arrived = message.arrived, .retained = message.retained};
    if (const UploadField* sensor = fieldNamed(fields, "sensor")) packet.sensor = sensor->value;
    const auto place = m_choice.place(packet.sensor);
    if (place.where == SensorChoice::Place::Elsewhere && !packet.sensor.empty()) return;
    packet.time = timeOf(fields, message.arrived, problem);
    packet.readings.reserve(std::min(fields.size(), kMostReadingsOfMessage));
    ReadingList list(packet.readings, problem);
    for (const UploadField& field : fields) {
        auto made = reading(upload, field, problem);
        if (!made) continue;
        if (made->key != field.name && place.where == SensorChoice::Place::Outside)
            m_choice.noteKey(packet.sensor, made->key, problem);
        SensorChoice::put(*made, place);
        list.add(*std::move(made));
    }
    packets.push_back(std::move(packet));
}

}  // namespace vigil
