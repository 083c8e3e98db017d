#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host_contract/QRVAgentPlugIn.hpp"
#include "platform/KeyedCoder.hpp"

namespace vigil {

/// A keyed archive in memory, so that a class's coding can be tested without a format. Objects are written
/// entry by entry and come back as fresh ones from the `ClassRegistry`; one written twice is one object;
/// agents stand for themselves and come back as the agent given. Small graphs: it descends without a bound.
/// Main thread.
class MemoryArchive {
  public:
    explicit MemoryArchive(std::shared_ptr<Object> root);

    /// The entries of an object as it wrote them, to look at or to change before it is read. Throws
    /// std::out_of_range for an object that is not in the archive.
    ValueDictionary& entries(const std::shared_ptr<Object>& object);
    ValueDictionary& rootEntries() { return entries(m_root); }
    std::vector<std::string> rootKeys();
    /// The root's entry, or nothing.
    Value rootEntry(std::string_view key);
    void setRootEntry(const std::string& key, Value value);
    void removeRootEntry(std::string_view key);

    /// A fresh graph, or nothing when its root does not come to be.
    std::shared_ptr<Object> read(const std::shared_ptr<QRVAgentPlugIn>& agent);

    template <class T>
    std::shared_ptr<T> readAs(const std::shared_ptr<QRVAgentPlugIn>& agent) {
        return std::dynamic_pointer_cast<T>(read(agent));
    }

    /// What the last reading refused: "Class.key: reason".
    const std::vector<std::string>& refusals() const { return m_refusals; }

  private:
    class Encoder;
    class Decoder;
    struct Record {
        std::shared_ptr<Object> object;
        ValueDictionary entries;
    };

    void write(const Value& value);
    void write(const std::shared_ptr<Object>& object);
    Value fresh(const Value& value);
    std::shared_ptr<Object> fresh(const std::shared_ptr<Object>& object);

    std::shared_ptr<Object> m_root;
    std::map<const Object*, Record> m_records;
    std::map<const Object*, std::shared_ptr<Object>> m_fresh;
    std::shared_ptr<QRVAgentPlugIn> m_agent;
    std::vector<std::string> m_refusals;
};

}  // namespace vigil
