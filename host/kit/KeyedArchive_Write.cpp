#include <cmath>
#include <exception>
#include <unordered_map>
#include <unordered_set>

#include "host/kit/KeyedArchive.hpp"
#include "host/kit/KeyedArchive_Text.hpp"
#include "host/kit/KitClasses.hpp"
#include "platform/ClassRegistry.hpp"
#include "platform/Files.hpp"
#include "platform/KeyedCoder.hpp"

// Objects to text, in one walk in the order in which they encode themselves: the first meeting writes an
// object whole, each further one a reference. The height of what hangs on each object is kept, because a
// chain of references may be far deeper than the text is nested, and whoever drops such a graph recurses.

namespace vigil {
namespace {

struct Written {
    std::int64_t id = 0;
    std::size_t height = 0;  // 0 while the object is being written
};

class Writer {
  public:
    Writer(const QRVAgentPlugIn* station, const ArchiveLimits& limits)
        : m_station(station), m_limits(limits) {}

    Result<std::string> write(const std::shared_ptr<Object>& root) {
        m_path = "root";
        if (!root || isStation(*root)) return archiveError(m_path, "there is no object to write");
        m_text = "{\n  \"format\": \"vigil-archive\",\n  \"version\": 1,\n  \"root\": ";
        count(4);  // the envelope, its three members
        writeObject(root, 1);
        m_text += "\n}\n";
        checkLength();
        if (m_error) return *m_error;
        return std::move(m_text);
    }

    bool failed() const { return m_error.has_value(); }
    void fail(const std::string& reason) {
        if (!m_error) m_error = archiveError(m_path, reason);
    }

    void newLine(std::size_t level) { m_text.append("\n").append(2 * (level + 1), ' '); }

    // One entry of an object or a dictionary, at `level`; answers the height of its value.
    std::size_t writeEntry(std::string_view key, const Value& value, bool first, std::size_t level) {
        const std::size_t before = m_path.size();
        const bool valid = isValidUtf8(key);
        appendPathName(m_path, valid ? key : std::string_view("(no UTF-8)"));
        if (!first) m_text += ',';
        newLine(level);
        if (!valid)
            appendQuoted(m_text, "$bytes:" + hexText(key));
        else
            appendQuoted(m_text, key.starts_with('$') ? "$" + std::string(key) : std::string(key));
        m_text += ": ";
        const std::size_t height = writeValue(value, level + 1);
        m_path.resize(before);
        return height;
    }

    // What was met twice, under the path of the entry.
    void failAtKey(std::string_view key) {
        const std::size_t before = m_path.size();
        appendPathName(m_path, isValidUtf8(key) ? key : std::string_view("(no UTF-8)"));
        fail("the key is written twice");
        m_path.resize(before);
    }

  private:
    bool isStation(const Object& object) const {
        return m_station && &object == static_cast<const Object*>(m_station);
    }

    void checkLength() {
        if (m_text.size() > m_limits.bytes)
            fail("the archive is longer than " + std::to_string(m_limits.bytes) + " bytes");
    }

    bool mayNest(std::size_t levels) {
        if (levels > m_limits.depth)
            fail("more than " + std::to_string(m_limits.depth) + " levels inside each other");
        return !failed();
    }

    // Counts JSON values, as the reader will.
    void count(std::size_t values) {
        m_values += values;
        if (m_values > m_limits.values) fail("more than " + std::to_string(m_limits.values) + " values");
    }

    // Answers the height: how many levels of JSON objects and lists open here at most, those behind
    // references included. `level` is the level of one that would open here.
    std::size_t writeValue(const Value& value, std::size_t level) {
        count(1);
        checkLength();
        if (failed()) return 0;
        if (const auto* list = value.as<ValueList>()) return writeList(*list, level);
        if (const auto* entries = value.as<ValueDictionary>()) return writeDictionary(*entries, level);
        if (const auto* object = value.as<std::shared_ptr<Object>>(); object && *object)
            return writeObject(*object, level);
        return writeScalar(value);
    }

    std::size_t writeScalar(const Value& value) {
        if (const auto* real = value.as<double>()) return writeReal(*real);
        if (const auto* text = value.as<std::string>()) return writeText(*text);
        if (const auto* date = value.as<Date>()) {
            m_text += "{\"$date\": ";
            count(1);
            const std::size_t height = writeReal(date->secondsSinceReference()) + 1;
            m_text += '}';
            return height;
        }
        if (const auto* flag = value.as<bool>())
            m_text += *flag ? "true" : "false";
        else if (const auto* integer = value.as<std::int64_t>())
            m_text += std::to_string(*integer);
        else
            m_text += "null";
        return 0;
    }

    std::size_t writeReal(double value) {
        if (std::isfinite(value)) {
            appendReal(m_text, value);
            return 0;
        }
        count(1);
        m_text += "{\"$real\": \"" + numberText(value) + "\"}";
        return 1;
    }

    std::size_t writeText(const std::string& text) {
        if (isValidUtf8(text)) {
            appendQuoted(m_text, text);
            return 0;
        }
        count(1);
        m_text += "{\"$bytes\": \"" + hexText(text) + "\"}";
        return 1;
    }

    std::size_t writeList(const ValueList& list, std::size_t level) {
        if (!mayNest(level)) return 0;
        std::size_t height = 0;
        m_text += '[';
        for (std::size_t i = 0; i < list.size() && !failed(); ++i) {
            const std::size_t before = m_path.size();
            appendPathIndex(m_path, i);
            if (i > 0) m_text += ',';
            newLine(level);
            height = std::max(height, writeValue(list[i], level + 1));
            m_path.resize(before);
        }
        if (!list.empty()) newLine(level - 1);
        m_text += ']';
        return height + 1;
    }

    std::size_t writeDictionary(const ValueDictionary& entries, std::size_t level) {
        if (!mayNest(level)) return 0;
        std::size_t height = 0;
        std::unordered_set<std::string_view> keys;
        m_text += '{';
        for (const auto& [key, value] : entries) {
            if (failed()) return 0;
            if (!keys.insert(key).second) failAtKey(key);
            height = std::max(height, writeEntry(key, value, keys.size() == 1, level));
        }
        if (!entries.empty()) newLine(level - 1);
        m_text += '}';
        return height + 1;
    }

    std::size_t writeObject(const std::shared_ptr<Object>& object, std::size_t level);
    std::size_t writeFresh(const Object& object, Written& written, std::size_t level);

    const QRVAgentPlugIn* m_station;
    const ArchiveLimits& m_limits;
    std::string m_text;
    std::string m_path;
    std::optional<Error> m_error;
    std::size_t m_values = 0;
    std::unordered_map<const Object*, Written> m_written;
    std::vector<std::shared_ptr<Object>> m_kept;  // no address is used again while it stands in m_written
};

class Encoder final : public KeyedEncoder {
  public:
    Encoder(Writer& writer, std::size_t level) : m_writer(writer), m_level(level) {}

    void encode(std::string_view key, Value value) override {
        const auto* object = value.as<std::shared_ptr<Object>>();
        if (m_writer.failed() || value.isNothing() || (object && !*object)) return;
        if (!m_keys.insert(std::string(key)).second) return m_writer.failAtKey(key);
        m_height = std::max(m_height, m_writer.writeEntry(key, value, /*first=*/false, m_level));
    }

    std::size_t height() const { return m_height; }

  private:
    Writer& m_writer;
    std::size_t m_level;
    std::size_t m_height = 0;
    std::unordered_set<std::string> m_keys;
};

std::size_t Writer::writeObject(const std::shared_ptr<Object>& object, std::size_t level) {
    if (isStation(*object)) {
        m_text += "{\"$station\": true}";
        count(1);
        return 1;
    }
    const auto [place, fresh] = m_written.try_emplace(object.get());
    Written& written = place->second;
    if (!fresh) {
        if (written.height == 0) {
            fail("the object is inside itself");
            return 0;
        }
        m_text += "{\"$ref\": " + std::to_string(written.id) + '}';
        count(1);
        return written.height;
    }
    m_kept.push_back(object);
    written.id = static_cast<std::int64_t>(m_kept.size());
    if (m_kept.size() > m_limits.objects) fail("more than " + std::to_string(m_limits.objects) + " objects");
    if (!mayNest(level)) return 0;
    const std::size_t height = writeFresh(*object, written, level);
    // References lie below the text's own nesting, so the way up is bounded like the way down.
    mayNest(height);
    return written.height = height;
}

std::size_t Writer::writeFresh(const Object& object, Written& written, std::size_t level) {
    const std::string className = object.className();
    if (!ClassRegistry::shared().contains(className) || !isValidUtf8(className)) {
        fail("no class \"" + (isValidUtf8(className) ? className : hexText(className)) +
             "\" is known to archives");
        return 0;
    }
    m_text += '{';
    newLine(level);
    m_text += "\"$class\": ";
    appendQuoted(m_text, className);
    m_text += ',';
    newLine(level);
    m_text += "\"$id\": " + std::to_string(written.id);
    count(2);
    Encoder encoder(*this, level);
    try {
        object.encodeWithCoder(encoder);
    } catch (const std::exception& exception) {
        fail(className + " threw while it was written: " + exception.what());
    } catch (...) {
        fail(className + " threw while it was written");
    }
    newLine(level - 1);
    m_text += '}';
    return encoder.height() + 1;
}

}  // namespace

Result<std::string> writeArchive(const std::shared_ptr<Object>& root, const QRVAgentPlugIn* station,
                                 const ArchiveLimits& limits) {
    registerKitClasses();
    return Writer(station, limits).write(root);
}

}  // namespace vigil
