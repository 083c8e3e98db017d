#include <unordered_map>
#include <utility>

#include <simdjson.h>

#include "host/feeds/JsonLine.hpp"
#include "host/feeds/OpenRecorded.hpp"
#include "host/feeds/OpenRecorded_Bytes.hpp"
#include "host/feeds/OrderWindow.hpp"
#include "host/feeds/ReadingJson.hpp"
#include "host/feeds/StationKeys.hpp"
#include "host/feeds/TextLines.hpp"
#include "host/feeds/TimeForms.hpp"

namespace vigil {
namespace {

using simdjson::dom::element;

struct Station {
    StationKeys keys;
    bool toldFull = false;
};

class JsonLinesSource final : public RecordedSource {
  public:
    JsonLinesSource(std::unique_ptr<Bytes> bytes, JsonLinesOptions options, ProblemTeller tell)
        : m_lines(std::move(bytes)),
          m_options(std::move(options)),
          m_tell(std::move(tell)),
          m_window(m_options.orderWindow, m_tell) {}

    Result<std::optional<RecordedNotification>> next() override {
        for (;;) {
            if (auto ready = m_window.take()) return ready;
            if (m_ended) return std::optional<RecordedNotification>();
            const TextLines::Found found = m_lines.next();
            if (found == TextLines::Found::Line) {
                takeLine();
            } else if (found == TextLines::Found::TooLong) {
                tell("the line has more than " + std::to_string(kLongestRow) + " bytes; left out");
            } else {
                m_ended = true;
                if (m_lines.failure()) return *m_lines.failure();
                m_window.finish();
            }
        }
    }

  private:
    void takeLine() {
        if (m_lines.text().find_first_not_of(" \t\r") == std::string_view::npos) return;
        const auto parsed = m_json.parse(m_lines.text());
        if (!parsed) return tell(parsed.error().message + "; the line is left out");
        simdjson::dom::object object;
        if (parsed.value().get(object) != simdjson::SUCCESS)
            return tell("expected an object with time and readings; the line is left out");
        std::string_view name;
        if (element given; object["station"].get(given) == simdjson::SUCCESS && !given.is_null())
            if (given.get(name) != simdjson::SUCCESS)
                return tell("station: expected a text; the line is left out");
        if (m_options.station && name != *m_options.station) return;
        const auto time = timeOf(object);
        if (!time) return tell("time: " + time.error().message + "; the line is left out");
        simdjson::dom::object readings;
        if (object["readings"].get(readings) != simdjson::SUCCESS)
            return tell("readings: expected an object from key to reading; the line is left out");
        Station* station = stationNamed(name);
        if (!station) return tell("more than " + std::to_string(kMostStations) + " stations; left out");
        m_window.add(
            {std::string(name), time.value(), readingsOf(*station, readings, time.value()), m_lines.line()});
    }

    static Result<Date> timeOf(const simdjson::dom::object& object) {
        element given;
        if (object["time"].get(given) != simdjson::SUCCESS) return Error{"is missing"};
        if (double seconds = 0; given.get(seconds) == simdjson::SUCCESS) return timeFromUnixSeconds(seconds);
        if (std::string_view text; given.get(text) == simdjson::SUCCESS) return recordedTime(text);
        return Error{"expected a text or seconds since 1970"};
    }

    /// Nothing when there are too many stations.
    Station* stationNamed(std::string_view name) {
        std::string key(name);
        if (const auto known = m_stations.find(key); known != m_stations.end()) return &known->second;
        if (m_stations.size() == kMostStations) return nullptr;
        return &m_stations[std::move(key)];
    }

    std::shared_ptr<const Readings> readingsOf(Station& station, const simdjson::dom::object& given,
                                               Date time) {
        std::vector<AgentProperty> entries;
        entries.reserve(given.size());
        for (const auto [written, value] : given) {
            if (value.is_null()) continue;
            if (written.size() > kLongestName) {
                tell("a reading's name has more than " + std::to_string(kLongestName) + " bytes; left out");
                continue;
            }
            const auto place = station.keys.find(written, entries.size());
            if (place)
                takeReading(station.keys.at(*place), value, time, entries);
            else
                tellFull(station, written);
        }
        return Readings::make(station.keys.table(), std::move(entries));
    }

    void takeReading(StationKeys::Entry& entry, const element& value, Date time,
                     std::vector<AgentProperty>& entries) {
        auto made = readingFromJson(
            value, {.key = entry.key, .name = entry.written, .time = time, .like = entry.label},
            "readings." + entry.written);
        if (!made) return tell(made.error().message + "; the reading is left out");
        if (!made.value()) return;
        entry.label = made.value()->label();
        entries.push_back(*std::move(made).value());
    }

    void tellFull(Station& station, std::string_view written) {
        if (station.toldFull) return;
        station.toldFull = true;
        tell("a station has at most " + std::to_string(kMostKeysOfStation) + " readings; \"" +
             std::string(written) + "\" and all further ones are left out");
    }

    void tell(std::string message) {
        if (m_tell) m_tell({m_lines.line(), std::move(message)});
    }

    TextLines m_lines;
    JsonLinesOptions m_options;
    ProblemTeller m_tell;
    OrderWindow m_window;
    JsonLine m_json;
    std::unordered_map<std::string, Station> m_stations;
    bool m_ended = false;
};

}  // namespace

Opened openJsonLines(std::unique_ptr<Bytes> bytes, const std::string&, JsonLinesOptions options,
                     ProblemTeller tell) {
    return std::unique_ptr<RecordedSource>(
        std::make_unique<JsonLinesSource>(std::move(bytes), std::move(options), std::move(tell)));
}

}  // namespace vigil
