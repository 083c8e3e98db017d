#include <algorithm>
#include <exception>
#include <optional>

#include "host/kit/KeyedArchive.hpp"
#include "host/kit/KeyedArchive_Forms.hpp"
#include "host/kit/KeyedArchive_Survey.hpp"
#include "host/kit/KitClasses.hpp"
#include "platform/KeyedCoder.hpp"

// Text to objects, in two passes over the nodes: the survey checks every node's form and allocates the
// objects; here they are initialised, contents before owner, each just before the first that needs it.

namespace vigil {
namespace {

using Members = ArchiveNode::Members;
using Entries = std::vector<std::pair<std::string, Value>>;
using State = ArchiveInstance::State;

class Reader {
  public:
    Reader(const ArchiveNode& envelope, ArchiveSurvey survey, const std::shared_ptr<QRVAgentPlugIn>& station,
           const ArchiveLimits& limits)
        : m_envelope(envelope), m_survey(std::move(survey)), m_station(station), m_limits(limits) {}

    Result<std::shared_ptr<Object>> read() {
        Value value;
        std::size_t height = 0;
        if (!build(*m_survey.root, 1, value, height)) return *m_error;
        return *value.as<std::shared_ptr<Object>>();
    }

    // The first failure counts.
    bool fail(const ArchiveNode& at, std::string_view reason,
              std::optional<std::string_view> key = std::nullopt) {
        if (!m_error) m_error = archiveErrorAt(m_envelope, at, reason, key);
        return false;
    }

  private:
    // `level` counts what is open above, jumps along references included, and `height` what
    // opens below, so that neither this recursion nor whoever drops the graph later is led too deep.
    bool build(const ArchiveNode& node, std::size_t level, Value& value, std::size_t& height) {
        height = 0;
        if (const auto* list = node.as<ArchiveNode::List>())
            return mayNest(node, level) && buildList(node, *list, level, value, height);
        if (const auto* members = node.as<Members>())
            return mayNest(node, level) && buildMembers(node, *members, level, value, height);
        if (const auto* flag = node.as<bool>()) value = Value(*flag);
        if (const auto* integer = node.as<std::int64_t>()) value = Value(*integer);
        if (const auto* real = node.as<double>()) value = Value(*real);
        if (const auto* text = node.as<std::string>()) value = Value(*text);
        return true;
    }

    bool mayNest(const ArchiveNode& node, std::size_t levels) {
        return levels <= m_limits.depth ||
               fail(node, "more than " + std::to_string(m_limits.depth) + " levels inside each other");
    }

    bool buildList(const ArchiveNode& node, const ArchiveNode::List& list, std::size_t level, Value& value,
                   std::size_t& height) {
        ValueList items(list.size());
        for (std::size_t i = 0; i < list.size(); ++i) {
            std::size_t inside = 0;
            if (!build(list[i], level + 1, items[i], inside)) return false;
            height = std::max(height, inside);
        }
        value = Value(std::move(items));
        return mayNest(node, ++height);
    }

    bool buildMembers(const ArchiveNode& node, const Members& members, std::size_t level, Value& value,
                      std::size_t& height) {
        height = 1;
        switch (archiveFormOf(node)) {
            case ArchiveForm::Instance:
                return instance(m_survey.instances[*memberNamed(members, "$id")->as<std::int64_t>()], node,
                                level, value, height);
            case ArchiveForm::Reference: {
                const auto found = m_survey.instances.find(*members.front().second.as<std::int64_t>());
                if (found == m_survey.instances.end()) return fail(node, "no object has this \"$id\"");
                return instance(found->second, node, level, value, height);
            }
            case ArchiveForm::Station:
                value = Value(std::static_pointer_cast<Object>(m_station));
                return true;
            case ArchiveForm::DateForm:
                value = Value(Date(*archiveSeconds(members.front().second)));
                height += members.front().second.as<Members>() ? 1 : 0;
                return true;
            case ArchiveForm::Real:
                value = Value(*archiveReal(members.front().second));
                return true;
            case ArchiveForm::Bytes:
                value = Value(*archiveBytes(members.front().second));
                return true;
            case ArchiveForm::Dictionary:
            case ArchiveForm::Plain:
                break;
        }
        Entries entries;
        if (!buildEntries(members, level, entries, height)) return false;
        value = Value(ValueDictionary(std::move(entries)));
        return mayNest(node, ++height);
    }

    bool buildEntries(const Members& members, std::size_t level, Entries& entries, std::size_t& height) {
        height = 0;
        entries.reserve(members.size());
        for (const auto& [name, node] : members) {
            auto key = archiveEntryKey(name);
            if (!key) continue;  // "$class" and "$id"; the first pass refused all others
            std::size_t inside = 0;
            Value value;
            if (!build(node, level + 1, value, inside)) return false;
            height = std::max(height, inside);
            entries.emplace_back(std::move(*key), std::move(value));
        }
        return true;
    }

    // `from` is where the object is asked for: its own place, or a reference to it.
    bool instance(ArchiveInstance& wanted, const ArchiveNode& from, std::size_t level, Value& value,
                  std::size_t& height) {
        if (wanted.state == State::Underway) return fail(from, "the object is inside itself");
        if (wanted.state == State::Waiting && !initialise(wanted, level)) return false;
        value = Value(wanted.object);
        height = wanted.height;
        return true;
    }

    bool initialise(ArchiveInstance& fresh, std::size_t level);

    const ArchiveNode& m_envelope;
    ArchiveSurvey m_survey;
    const std::shared_ptr<QRVAgentPlugIn>& m_station;
    const ArchiveLimits& m_limits;
    std::optional<Error> m_error;
};

class Decoder final : public KeyedDecoder {
  public:
    Decoder(Reader& reader, const ArchiveNode& node, const Entries& entries)
        : m_reader(reader), m_node(node), m_entries(entries) {}

    bool contains(std::string_view key) const override { return find(key) != nullptr; }
    Value decode(std::string_view key) override {
        const Value* value = find(key);
        return value ? *value : Value();
    }
    void refuse(std::string_view key, std::string reason) override { m_reader.fail(m_node, reason, key); }

  private:
    const Value* find(std::string_view key) const {
        for (const auto& [name, value] : m_entries)
            if (name == key) return &value;
        return nullptr;
    }

    Reader& m_reader;
    const ArchiveNode& m_node;
    const Entries& m_entries;
};

bool Reader::initialise(ArchiveInstance& fresh, std::size_t level) {
    fresh.state = State::Underway;
    const ArchiveNode& node = *fresh.node;
    Entries entries;
    if (!buildEntries(*node.as<Members>(), level, entries, fresh.height)) return false;
    if (!mayNest(node, ++fresh.height)) return false;
    Decoder decoder(*this, node, entries);
    const std::string className = fresh.object->className();
    bool came = false;
    try {
        came = fresh.object->initWithCoder(decoder);
    } catch (const std::exception& exception) {
        return fail(node, className + " threw while it was read: " + exception.what());
    } catch (...) {
        return fail(node, className + " threw while it was read");
    }
    if (m_error) return false;
    if (!came) return fail(node, "no " + className + " comes of it");
    fresh.state = State::Complete;
    return true;
}

}  // namespace

Result<std::shared_ptr<Object>> readArchive(std::string_view text,
                                            const std::shared_ptr<QRVAgentPlugIn>& station,
                                            const ArchiveLimits& limits) {
    registerKitClasses();
    Result<ArchiveNode> envelope = parseArchiveText(text, limits);
    if (!envelope) return envelope.error();
    Result<ArchiveSurvey> survey = surveyArchive(envelope.value(), station != nullptr, limits);
    if (!survey) return survey.error();
    return Reader(envelope.value(), std::move(survey.value()), station, limits).read();
}

}  // namespace vigil
