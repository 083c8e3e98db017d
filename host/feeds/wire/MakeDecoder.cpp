#include "host/feeds/wire/MakeDecoder.hpp"

#include <exception>
#include <utility>

#include <simdjson.h>

#include "host/feeds/JsonLine.hpp"
#include "host/feeds/Recorded.hpp"
#include "host/feeds/TextLines.hpp"
#include "host/feeds/wire/LinesReader.hpp"
#include "host/feeds/wire/Rtl433Reader.hpp"
#include "host/feeds/wire/UploadReader.hpp"
#include "host/feeds/wire/WeewxReader.hpp"

namespace vigil {
namespace {

using simdjson::dom::element;
using simdjson::dom::object;

/// A decoder that waits for its next message keeps no more than this.
constexpr std::size_t kKeptBytes = 65536;

enum class TextForm { Lines, Rtl433, Weewx };

std::optional<TextForm> formNamed(std::string_view name) {
    if (name == "lines") return TextForm::Lines;
    if (name == "rtl433") return TextForm::Rtl433;
    if (name == "weewx") return TextForm::Weewx;
    return std::nullopt;
}

/// What an object looks like.
std::optional<TextForm> guessed(const object& given) {
    if (given["readings"].is_object()) return TextForm::Lines;
    if (given["model"].is_string()) return TextForm::Rtl433;
    for (const auto [name, value] : given)
        if (isWeewxName(name)) return TextForm::Weewx;
    return std::nullopt;
}

/// Takes ready readings, and keeps what every decoder promises: it never throws.
class SafeDecoder : public Decoder {
  public:
    void decode(const RawMessage& message, std::vector<Packet>& packets,
                const DecodeProblem& problem) override {
        const std::size_t before = packets.size();
        try {
            if (message.ready)
                packets.push_back(readyPacket(message));
            else
                read(message, packets, problem);
        } catch (const std::exception& failure) {
            packets.erase(packets.begin() + static_cast<std::ptrdiff_t>(before), packets.end());
            tell(problem, std::string("the message cannot be read: ") + failure.what());
        }
    }

  private:
    virtual void read(const RawMessage& message, std::vector<Packet>& packets,
                      const DecodeProblem& problem) = 0;
};

class UploadDecoder final : public SafeDecoder {
  public:
    explicit UploadDecoder(const FeedUrl& url) : m_reader(url) {}

  private:
    void read(const RawMessage& message, std::vector<Packet>& packets,
              const DecodeProblem& problem) override {
        m_reader.take(message, packets, problem);
    }

    UploadReader m_reader;
};

class TextDecoder final : public SafeDecoder {
  public:
    TextDecoder(const FeedUrl& url, WallClockZone localTime)
        : m_form(formNamed(url.option("form").value_or(""))),
          m_lines(url),
          m_rtl433(url, std::move(localTime)),
          m_weewx(url) {}

  private:
    void read(const RawMessage& message, std::vector<Packet>& packets,
              const DecodeProblem& problem) override {
        if (message.payload.size() > kLongestRow)
            return tell(problem, "more than " + std::to_string(kLongestRow) + " bytes; left out");
        const auto first = message.payload.find_first_not_of(" \t\r\n");
        // A line without anything on it says nothing; a topic without a message has been cleared.
        if (first == std::string::npos) return;
        const bool isObject = message.payload[first] == '{';
        const bool mayBeValue = !message.route.empty() && (!m_form || m_form == TextForm::Weewx);
        if (!isObject && mayBeValue) return m_weewx.takeValue(message, packets, problem);
        readObject(message, packets, problem);
        if (message.payload.size() <= kKeptBytes) return;
        m_json.reset();
        m_padded = {};
    }

    void readObject(const RawMessage& message, std::vector<Packet>& packets, const DecodeProblem& problem) {
        if (!m_json) m_json = std::make_unique<JsonLine>();
        m_padded.assign(message.payload);
        m_padded.append(TextLines::kPadding, ' ');
        const auto parsed = m_json->parse(std::string_view(m_padded).substr(0, message.payload.size()));
        if (!parsed) return tell(problem, parsed.error().message + "; left out");
        object given;
        if (parsed.value().get(given) != simdjson::SUCCESS)
            return tell(problem, "expected an object; left out");
        const auto form = m_form ? m_form : guessed(given);
        if (!form)
            return tell(problem,
                        "neither readings (lines) nor a model (rtl433) nor a name of WeeWX is in it; "
                        "form= says what it is; left out");
        if (*form == TextForm::Lines) return m_lines.take(given, message, packets, problem);
        if (*form == TextForm::Rtl433) return m_rtl433.take(given, message, packets, problem);
        m_weewx.take(given, message, packets, problem);
    }

    std::optional<TextForm> m_form;  // absent: each message is looked at
    LinesReader m_lines;
    Rtl433Reader m_rtl433;
    WeewxReader m_weewx;
    std::unique_ptr<JsonLine> m_json;  // made for the first message
    std::string m_padded;
};

}  // namespace

std::unique_ptr<Decoder> makeDecoder(const FeedUrl& url, WallClockZone localTime) {
    if (url.kind == FeedUrl::Kind::Upload) return std::make_unique<UploadDecoder>(url);
    return std::make_unique<TextDecoder>(url, std::move(localTime));
}

}  // namespace vigil
