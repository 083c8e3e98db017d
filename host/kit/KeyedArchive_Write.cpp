#include <algorithm>
#include <exception>
#include <unordered_map>
#include <unordered_set>

#include "host/kit/KeyedArchive.hpp"
#include "host/kit/KeyedArchive_Output.hpp"
#include "host/kit/KeyedArchive_Text.hpp"
#include "host/kit/KitClasses.hpp"
#include "platform/ClassRegistry.hpp"
#include "platform/Files.hpp"
#include "platform/KeyedCoder.hpp"

// Objects to text, in one walk in the order in which they encode themselves: the first meeting writes an
// object whole, each further one a reference. Every step answers its height: how many levels of JSON objects
// and lists open there, those behind references included. A chain of references may be far deeper than the
// text is nested, and whoever drops such a graph recurses.

namespace vigil {
namespace {

struct Written {
    std::int64_t id = 0;
    std::size_t height = 0;  // 0 while the object is being written
};

class Writer {
  public:
    Writer(const QRVAgentPlugIn* station, const ArchiveLimits& limits)
        : m_output(limits), m_station(station) {}

    Result<std::string> write(const std::shared_ptr<Object>& root) {
        m_output.path = "root";
        if (!root || isStation(*root)) return archiveError(m_output.path, "there is no object to write");
        m_output.text = "{\n  \"format\": \"vigil-archive\",\n  \"version\": 1,\n  \"root\": ";
        m_output.count(4);  // the envelope and its three members
        writeObject(root, 1);
        m_output.text += "\n}\n";
        m_output.checkLength();
        if (m_output.error()) return *m_output.error();
        return std::move(m_output.text);
    }

    ArchiveOutput& output() { return m_output; }

    // One entry of an object or a dictionary at `level`.
    std::size_t writeEntry(std::string_view key, const Value& value, bool first, std::size_t level) {
        const std::size_t before = m_output.path.size();
        m_output.extendPath(key);
        m_output.beginEntry(key, first, level);
        const std::size_t height = writeValue(value, level + 1);
        m_output.path.resize(before);
        return height;
    }

  private:
    bool isStation(const Object& object) const {
        return m_station && &object == static_cast<const Object*>(m_station);
    }

    // `level` is the level of a list or object that would open here.
    std::size_t writeValue(const Value& value, std::size_t level) {
        m_output.count(1);
        m_output.checkLength();
        if (m_output.failed()) return 0;
        if (const auto* list = value.as<ValueList>()) return writeList(*list, level);
        if (const auto* entries = value.as<ValueDictionary>()) return writeDictionary(*entries, level);
        if (const auto* object = value.as<std::shared_ptr<Object>>(); object && *object)
            return writeObject(*object, level);
        return m_output.writeScalar(value);
    }

    std::size_t writeList(const ValueList& list, std::size_t level) {
        if (!m_output.mayNest(level)) return 0;
        std::size_t height = 0;
        m_output.text += '[';
        for (std::size_t i = 0; i < list.size() && !m_output.failed(); ++i) {
            const std::size_t before = m_output.path.size();
            appendPathIndex(m_output.path, i);
            if (i > 0) m_output.text += ',';
            m_output.newLine(level);
            height = std::max(height, writeValue(list[i], level + 1));
            m_output.path.resize(before);
        }
        if (!list.empty()) m_output.newLine(level - 1);
        m_output.text += ']';
        return height + 1;
    }

    std::size_t writeDictionary(const ValueDictionary& entries, std::size_t level) {
        if (!m_output.mayNest(level)) return 0;
        std::size_t height = 0;
        std::unordered_set<std::string_view> keys;
        m_output.text += '{';
        for (const auto& [key, value] : entries) {
            if (!keys.insert(key).second) m_output.failAt(key, "the key is written twice");
            if (m_output.failed()) return 0;
            height = std::max(height, writeEntry(key, value, keys.size() == 1, level));
        }
        if (!entries.empty()) m_output.newLine(level - 1);
        m_output.text += '}';
        return height + 1;
    }

    std::size_t writeObject(const std::shared_ptr<Object>& object, std::size_t level);
    std::size_t writeFresh(const Object& object, std::int64_t id, std::size_t level);

    ArchiveOutput m_output;
    const QRVAgentPlugIn* m_station;
    std::unordered_map<const Object*, Written> m_written;
    std::vector<std::shared_ptr<Object>> m_kept;  // no address is used again while it stands in m_written
};

class Encoder final : public KeyedEncoder {
  public:
    Encoder(Writer& writer, std::size_t level) : m_writer(writer), m_level(level) {}

    void encode(std::string_view key, Value value) override {
        const auto* object = value.as<std::shared_ptr<Object>>();
        if (m_writer.output().failed() || value.isNothing() || (object && !*object)) return;
        if (!m_keys.insert(std::string(key)).second) {
            m_writer.output().failAt(key, "the key is written twice");
            return;
        }
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
        m_output.text += "{\"$station\": true}";
        m_output.count(1);
        return 1;
    }
    const auto [place, fresh] = m_written.try_emplace(object.get());
    Written& written = place->second;
    if (!fresh) {
        if (written.height == 0) m_output.fail("the object is inside itself");
        m_output.text += "{\"$ref\": " + std::to_string(written.id) + '}';
        m_output.count(1);
        return written.height;
    }
    m_kept.push_back(object);
    m_output.countObject(m_kept.size());
    written.id = static_cast<std::int64_t>(m_kept.size());
    if (!m_output.mayNest(level)) return 0;
    const std::size_t height = writeFresh(*object, written.id, level);
    // What hangs on references is not nested in the text, so the way up is bounded like the way down.
    m_output.mayNest(height);
    return written.height = height;
}

std::size_t Writer::writeFresh(const Object& object, std::int64_t id, std::size_t level) {
    const std::string className = object.className();
    const bool valid = isValidUtf8(className);
    if (!valid || !ClassRegistry::shared().contains(className)) {
        m_output.fail("no class \"" + (valid ? className : hexText(className)) + "\" is known to archives");
        return 0;
    }
    m_output.text += '{';
    m_output.newLine(level);
    m_output.text += "\"$class\": ";
    appendQuoted(m_output.text, className);
    m_output.text += ',';
    m_output.newLine(level);
    m_output.text += "\"$id\": " + std::to_string(id);
    m_output.count(2);
    Encoder encoder(*this, level);
    try {
        object.encodeWithCoder(encoder);
    } catch (const std::exception& exception) {
        m_output.fail(className + " threw while it was written: " + exception.what());
    } catch (...) {
        m_output.fail(className + " threw while it was written");
    }
    m_output.newLine(level - 1);
    m_output.text += '}';
    return encoder.height() + 1;
}

}  // namespace

Result<std::string> writeArchive(const std::shared_ptr<Object>& root, const QRVAgentPlugIn* station,
                                 const ArchiveLimits& limits) {
    registerKitClasses();
    return Writer(station, limits).write(root);
}

}  // namespace vigil
