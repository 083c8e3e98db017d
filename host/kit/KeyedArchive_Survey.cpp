#include "host/kit/KeyedArchive_Survey.hpp"

#include <algorithm>
#include <exception>
#include <optional>

#include "host/kit/KeyedArchive_Forms.hpp"
#include "platform/ClassRegistry.hpp"

namespace vigil {
namespace {

using Members = ArchiveNode::Members;

class Surveyor {
  public:
    Surveyor(const ArchiveNode& envelope, bool hasStation, const ArchiveLimits& limits)
        : m_envelope(envelope), m_hasStation(hasStation), m_limits(limits) {}

    Result<ArchiveSurvey> run() {
        m_survey.root = openEnvelope();
        if (!m_survey.root || !survey(*m_survey.root)) return *m_error;
        return std::move(m_survey);
    }

  private:
    bool fail(const ArchiveNode& at, std::string_view reason) {
        m_error = archiveErrorAt(m_envelope, at, reason);
        return false;
    }

    const ArchiveNode* openEnvelope() {
        const auto* members = m_envelope.as<Members>();
        const ArchiveNode* format = members ? memberNamed(*members, "format") : nullptr;
        const auto* name = format ? format->as<std::string>() : nullptr;
        if (!name || *name != "vigil-archive") {
            fail(m_envelope, "this is no archive: \"format\" has to be \"vigil-archive\"");
            return nullptr;
        }
        const ArchiveNode* version = memberNamed(*members, "version");
        const auto* number = version ? version->as<std::int64_t>() : nullptr;
        if (!number || *number != 1) {
            fail(version ? *version : m_envelope, "only \"version\" 1 can be read here");
            return nullptr;
        }
        for (const auto& [key, node] : *members) {
            if (key == "format" || key == "version" || key == "root") continue;
            fail(node, "no such member is known beside \"format\", \"version\" and \"root\"");
            return nullptr;
        }
        const ArchiveNode* root = memberNamed(*members, "root");
        if (root && archiveFormOf(*root) == ArchiveForm::Instance) return root;
        fail(root ? *root : m_envelope, root ? "expected an object of a class" : "\"root\" is missing");
        return nullptr;
    }

    // Recursion is bounded by the depth of the text.
    bool survey(const ArchiveNode& node) {
        if (const auto* list = node.as<ArchiveNode::List>())
            return std::all_of(list->begin(), list->end(), [this](const auto& item) { return survey(item); });
        const auto* members = node.as<Members>();
        if (!members) return true;
        const ArchiveNode& only = members->empty() ? node : members->front().second;
        switch (archiveFormOf(node)) {
            case ArchiveForm::Reference:
                return only.as<std::int64_t>() || fail(node, "\"$ref\" has to be the number of an object");
            case ArchiveForm::Station:
                return surveyStation(node, only);
            case ArchiveForm::DateForm:
                return archiveSeconds(only) || fail(node, "\"$date\" has to be a number of seconds");
            case ArchiveForm::Real:
                return archiveReal(only) ||
                       fail(node, "\"$real\" has to be \"NaN\", \"Infinity\" or \"-Infinity\"");
            case ArchiveForm::Bytes:
                return archiveBytes(only) ||
                       fail(node,
                            "\"$bytes\" has to be lower-case hexadecimal digits of bytes that are no UTF-8");
            case ArchiveForm::Instance:
                return surveyInstance(node, *members) && surveyEntries(*members, /*ofInstance=*/true);
            case ArchiveForm::Dictionary:
            case ArchiveForm::Plain:
                break;
        }
        return surveyEntries(*members, /*ofInstance=*/false);
    }

    bool surveyStation(const ArchiveNode& node, const ArchiveNode& only) {
        const auto* flag = only.as<bool>();
        if (!flag || !*flag) return fail(node, "\"$station\" has to be true");
        return m_hasStation || fail(node, "there is no station that this could refer to");
    }

    bool surveyEntries(const Members& members, bool ofInstance) {
        for (const auto& [name, node] : members) {
            if (ofInstance && (name == "$class" || name == "$id")) continue;
            if (!archiveEntryKey(name)) return fail(node, "a name that begins with $ is reserved");
            if (!survey(node)) return false;
        }
        return true;
    }

    bool surveyInstance(const ArchiveNode& node, const Members& members) {
        const ArchiveNode* classNode = memberNamed(members, "$class");
        const auto* className = classNode->as<std::string>();
        if (!className) return fail(*classNode, "expected the name of a class");
        const ArchiveNode* idNode = memberNamed(members, "$id");
        const auto* id = idNode ? idNode->as<std::int64_t>() : nullptr;
        if (!id || *id < 1) return fail(idNode ? *idNode : node, "\"$id\" has to be a positive integer");
        if (m_survey.instances.size() >= m_limits.objects)
            return fail(node, "more than " + std::to_string(m_limits.objects) + " objects");
        const auto [place, fresh] = m_survey.instances.try_emplace(*id);
        if (!fresh) return fail(*idNode, "another object has this \"$id\" already");
        place->second.node = &node;
        try {
            place->second.object = ClassRegistry::shared().make(*className);
        } catch (const std::exception& exception) {
            return fail(node, *className + " threw: " + exception.what());
        } catch (...) {
            return fail(node, *className + " threw");
        }
        return place->second.object || fail(*classNode, "no class \"" + *className + "\" is known");
    }

    const ArchiveNode& m_envelope;
    bool m_hasStation;
    const ArchiveLimits& m_limits;
    ArchiveSurvey m_survey;
    std::optional<Error> m_error;
};

}  // namespace

Result<ArchiveSurvey> surveyArchive(const ArchiveNode& envelope, bool hasStation,
                                    const ArchiveLimits& limits) {
    return Surveyor(envelope, hasStation, limits).run();
}

}  // namespace vigil
