#include "tests/support/MemoryArchive.hpp"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "platform/ClassRegistry.hpp"

namespace vigil {
namespace {

template <class Dictionary>
auto place(Dictionary& entries, std::string_view key) {
    return std::find_if(entries.begin(), entries.end(),
                        [&](const auto& entry) { return entry.first == key; });
}

}  // namespace

class MemoryArchive::Encoder : public KeyedEncoder {
  public:
    explicit Encoder(ValueDictionary& entries) : m_entries(entries) {}

    void encode(std::string_view key, Value value) override {
        if (value.isNothing()) return;
        if (place(m_entries, key) != m_entries.end())
            throw std::logic_error("the key " + std::string(key) + " is written twice");
        m_entries.emplace_back(key, std::move(value));
    }

  private:
    ValueDictionary& m_entries;
};

class MemoryArchive::Decoder : public KeyedDecoder {
  public:
    Decoder(MemoryArchive& archive, const Record& record) : m_archive(archive), m_record(record) {}

    bool contains(std::string_view key) const override {
        return place(m_record.entries, key) != m_record.entries.end();
    }

    Value decode(std::string_view key) override {
        const auto found = place(m_record.entries, key);
        return found == m_record.entries.end() ? Value() : m_archive.fresh(found->second);
    }

    void refuse(std::string_view key, std::string reason) override {
        m_archive.m_refusals.push_back(m_record.object->className() + "." + std::string(key) + ": " +
                                       std::move(reason));
    }

  private:
    MemoryArchive& m_archive;
    const Record& m_record;
};

MemoryArchive::MemoryArchive(std::shared_ptr<Object> root) : m_root(std::move(root)) {
    write(m_root);
}

ValueDictionary& MemoryArchive::entries(const std::shared_ptr<Object>& object) {
    return m_records.at(object.get()).entries;
}

std::vector<std::string> MemoryArchive::rootKeys() {
    std::vector<std::string> keys;
    for (const auto& [key, value] : rootEntries())
        keys.push_back(key);
    return keys;
}

Value MemoryArchive::rootEntry(std::string_view key) {
    const auto found = place(rootEntries(), key);
    return found == rootEntries().end() ? Value() : found->second;
}

void MemoryArchive::setRootEntry(const std::string& key, Value value) {
    write(value);
    removeRootEntry(key);
    rootEntries().emplace_back(key, std::move(value));
}

void MemoryArchive::removeRootEntry(std::string_view key) {
    std::erase_if(rootEntries(), [&](const auto& entry) { return entry.first == key; });
}

void MemoryArchive::write(const Value& value) {
    if (const auto* object = value.as<std::shared_ptr<Object>>()) write(*object);
    if (const auto* list = value.as<ValueList>())
        for (const Value& item : *list)
            write(item);
    if (const auto* dictionary = value.as<ValueDictionary>())
        for (const auto& [key, item] : *dictionary)
            write(item);
}

void MemoryArchive::write(const std::shared_ptr<Object>& object) {
    if (!object || dynamic_cast<const QRVAgentPlugIn*>(object.get())) return;
    const auto [found, isNew] = m_records.try_emplace(object.get(), Record{object, {}});
    if (!isNew) return;
    Record& record = found->second;
    Encoder encoder(record.entries);
    object->encodeWithCoder(encoder);
    for (const auto& [key, value] : record.entries)
        write(value);
}

std::shared_ptr<Object> MemoryArchive::read(const std::shared_ptr<QRVAgentPlugIn>& agent) {
    m_agent = agent;
    m_fresh.clear();
    m_refusals.clear();
    return fresh(m_root);
}

Value MemoryArchive::fresh(const Value& value) {
    if (const auto* object = value.as<std::shared_ptr<Object>>()) {
        auto made = fresh(*object);
        return made ? Value(std::move(made)) : Value();
    }
    if (const auto* list = value.as<ValueList>()) {
        ValueList items;
        for (const Value& item : *list)
            items.push_back(fresh(item));
        return items;
    }
    if (const auto* dictionary = value.as<ValueDictionary>()) {
        ValueDictionary items;
        for (const auto& [key, item] : *dictionary)
            items.emplace_back(key, fresh(item));
        return items;
    }
    return value;
}

std::shared_ptr<Object> MemoryArchive::fresh(const std::shared_ptr<Object>& object) {
    if (!object) return nullptr;
    if (dynamic_cast<const QRVAgentPlugIn*>(object.get())) return m_agent;
    if (const auto found = m_fresh.find(object.get()); found != m_fresh.end()) return found->second;
    auto made = ClassRegistry::shared().make(object->className());
    if (!made) throw std::logic_error("no class " + object->className() + " is registered");
    m_fresh[object.get()] = made;
    Decoder decoder(*this, m_records.at(object.get()));
    if (!made->initWithCoder(decoder)) m_fresh[object.get()] = nullptr;
    return m_fresh[object.get()];
}

}  // namespace vigil
