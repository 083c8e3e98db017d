#include <gtest/gtest.h>

#include "host/feeds/wire/MakeDecoder.hpp"
#include "host/feeds/wire/UploadFields.hpp"
#include "platform/Number.hpp"
#include "tests/support/VectorFile.hpp"

namespace vigil {
namespace {

constexpr const char* kUnitNames[] = {
    "",     "°C", "°F",  "K",     "m/s",  "km/h", "mph", "kn", "hPa", "kPa",    "inHg",    "psi",
    "mm",   "cm", "in",  "mm/h",  "cm/h", "in/h", "m",   "ft", "km",  "mi",     "%",       "°",
    "W/m²", "lx", "klx", "µg/m³", "ppm",  "V",    "mV",  "s",  "min", "hPa/3h", "inHg/3h",
};

std::string quoted(const std::string& text) {
    return "\"" + text + "\"";
}

std::string isoText(Date date) {
    const double seconds = date.secondsSinceReference();
    const bool whole = seconds == static_cast<double>(static_cast<long long>(seconds));
    return date.isoText(whole ? 0 : 3);
}

std::string shown(const PacketReading& reading) {
    std::string text = reading.key;
    if (!reading.name.empty()) text += " name " + quoted(reading.name);
    if (reading.missing) {
        text += reading.type == kTextType ? " no text" : reading.type == kDateType ? " no date" : " missing";
    } else if (reading.type == kTextType) {
        text += " = " + quoted(reading.text);
        if (reading.value != 0) text += " value " + numberText(reading.value);
    } else if (reading.type == kDateType) {
        text += " = @" + isoText(Date(reading.value));
    } else {
        text += " = " + numberText(reading.value);
        if (reading.unit != Unit::None) text += std::string(" ") + kUnitNames[static_cast<int>(reading.unit)];
        if (!reading.text.empty()) text += " text " + quoted(reading.text);
        if (reading.type != kNumericType) text += " type " + fourCharText(reading.type);
    }
    if (reading.unitValue) text += " unitValue " + numberText(*reading.unitValue);
    if (!reading.unitText.empty()) text += " unitText " + quoted(reading.unitText);
    if (!reading.unitString.empty()) text += " unitString " + quoted(reading.unitString);
    if (reading.time) text += " time " + isoText(*reading.time);
    if (!reading.visible) text += " hidden";
    return text;
}

std::string shown(const Packet& packet, Date arrived) {
    std::string text = "packet:";
    if (packet.time) text += " time " + isoText(*packet.time);
    if (!packet.identity.empty()) text += " identity " + quoted(packet.identity);
    if (!packet.sensor.empty()) text += " sensor " + quoted(packet.sensor);
    if (packet.retained) text += " retained";
    if (packet.arrived != arrived) text += " arrived " + isoText(packet.arrived);
    text += "\n";
    for (const PacketReading& reading : packet.readings)
        text += "reading: " + shown(reading) + "\n";
    return text;
}

/// Two hours ahead of UTC, all the year.
Date twoHoursAhead(Date wallClock, Date) {
    return wallClock.plus(-7200);
}

class Bench {
  public:
    /// Sets what holds from here on, or decodes; a field that is neither is what is expected.
    bool take(const test::VectorCase::Field& field) {
        if (field.name == "url") {
            const auto url = FeedUrl::parse(field.value);
            if (!url) throw std::runtime_error(url.error().message);
            m_decoder = makeDecoder(url.value(), twoHoursAhead);
        } else if (field.name == "route") {
            m_message.route = field.value;
        } else if (field.name == "arrived") {
            m_message.arrived = parseDate(field.value).value();
        } else if (field.name == "retained") {
            m_message.retained = field.value == "yes";
        } else if (field.name == "message" || field.name == "message-bytes") {
            m_message.payload = field.name == "message" ? field.value : test::unescaped(field.value);
            decode();
        } else {
            return false;
        }
        return true;
    }
    const std::string& events() const { return m_events; }

  private:
    void decode() {
        std::vector<Packet> packets;
        m_decoder->decode(m_message, packets,
                          [this](const std::string& words) { m_events += "problem: " + words + "\n"; });
        for (const Packet& packet : packets)
            m_events += shown(packet, m_message.arrived);
    }

    std::unique_ptr<Decoder> m_decoder;
    RawMessage m_message;
    std::string m_events;
};

void expectVectors(const std::string& prefix) {
    for (const auto& vector : test::readVectors("feeds", prefix)) {
        SCOPED_TRACE(vector.place());
        Bench bench;
        std::string expected;
        for (const auto& field : vector.fields)
            if (!bench.take(field))
                expected += field.name + ":" + (field.value.empty() ? "" : " ") + field.value + "\n";
        EXPECT_EQ(bench.events(), expected);
    }
}

TEST(WireVectors, LinesOfTheSystemItself) {
    expectVectors("wire_lines");
}

TEST(WireVectors, UploadsOfConsoles) {
    expectVectors("wire_uploads");
}

TEST(WireVectors, TransmissionsOfRadioSensors) {
    expectVectors("wire_rtl433");
}

TEST(WireVectors, PacketsAndTopicsOfWeewx) {
    expectVectors("wire_weewx");
}

TEST(WireVectors, MessagesWhoseFormNobodyHasNamed) {
    expectVectors("wire_guessed");
}

std::string formName(UploadFields::Form form) {
    switch (form) {
        case UploadFields::Form::None:
            return "None";
        case UploadFields::Form::Ecowitt:
            return "Ecowitt";
        case UploadFields::Form::Ambient:
            return "Ambient";
        case UploadFields::Form::Underground:
            return "Underground";
    }
    return {};
}

TEST(WireVectors, RequestsThatAreUploadsOrNot) {
    for (const auto& vector : test::readVectors("feeds", "uploads")) {
        SCOPED_TRACE(vector.place());
        const auto of = [&vector](const char* name) { return vector.text(name).value_or(""); };
        const auto upload =
            parseUpload(vector.text("method").value_or("GET"), of("path"), of("query"), of("body"));
        std::string found = "form: " + formName(upload.form) + "\n";
        if (!upload.identity.empty())
            found += "identity: " + upload.identity + " " + maskedIdentity(upload.identity) + "\n";
        if (!upload.text.empty()) found += "text: " + upload.text + "\n";
        std::string expected;
        for (const auto& field : vector.fields) {
            if (field.name == "form" || field.name == "identity" || field.name == "text" ||
                field.name == "field")
                expected += field.name + ": " + field.value + "\n";
        }
        if (!vector.all("field").empty())
            for (const UploadField& field : uploadFields(upload.text))
                found += "field: " + field.name + " = " + field.value + "\n";
        EXPECT_EQ(found, expected);
    }
}

}  // namespace
}  // namespace vigil
