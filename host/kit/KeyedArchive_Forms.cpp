#include "host/kit/KeyedArchive_Forms.hpp"

#include <limits>

#include "platform/Files.hpp"

namespace vigil {
namespace {

using Members = ArchiveNode::Members;

bool findPath(const ArchiveNode& from, const ArchiveNode& wanted, std::string& path) {
    if (&from == &wanted) return true;
    const std::size_t before = path.size();
    if (const auto* list = from.as<ArchiveNode::List>()) {
        for (std::size_t i = 0; i < list->size(); ++i) {
            appendPathIndex(path, i);
            if (findPath((*list)[i], wanted, path)) return true;
            path.resize(before);
        }
    } else if (const auto* members = from.as<Members>()) {
        for (const auto& [name, node] : *members) {
            const auto key = archiveEntryKey(name);
            appendPathName(path, key && isValidUtf8(*key) ? *key : name);
            if (findPath(node, wanted, path)) return true;
            path.resize(before);
        }
    }
    return false;
}

}  // namespace

std::optional<std::string> archiveEntryKey(const std::string& name) {
    if (!name.starts_with('$')) return name;
    if (name.starts_with("$$")) return name.substr(1);
    constexpr std::string_view kBytes = "$bytes:";
    if (!name.starts_with(kBytes)) return std::nullopt;
    auto bytes = bytesFromHex(std::string_view(name).substr(kBytes.size()));
    // A text that could stand in the open has one form only, so that no key can be there twice.
    if (!bytes || isValidUtf8(*bytes)) return std::nullopt;
    return bytes;
}

ArchiveForm archiveFormOf(const ArchiveNode& node) {
    const auto* members = node.as<Members>();
    if (!members) return ArchiveForm::Plain;
    if (memberNamed(*members, "$class")) return ArchiveForm::Instance;
    if (members->size() != 1) return ArchiveForm::Dictionary;
    const std::string& name = members->front().first;
    if (name == "$ref") return ArchiveForm::Reference;
    if (name == "$station") return ArchiveForm::Station;
    if (name == "$date") return ArchiveForm::DateForm;
    if (name == "$real") return ArchiveForm::Real;
    if (name == "$bytes") return ArchiveForm::Bytes;
    return ArchiveForm::Dictionary;
}

std::optional<double> archiveReal(const ArchiveNode& node) {
    const auto* text = node.as<std::string>();
    if (!text) return std::nullopt;
    if (*text == "NaN") return std::numeric_limits<double>::quiet_NaN();
    if (*text == "Infinity") return std::numeric_limits<double>::infinity();
    if (*text == "-Infinity") return -std::numeric_limits<double>::infinity();
    return std::nullopt;
}

std::optional<double> archiveSeconds(const ArchiveNode& node) {
    if (const auto* real = node.as<double>()) return *real;
    if (const auto* integer = node.as<std::int64_t>()) return static_cast<double>(*integer);
    if (archiveFormOf(node) == ArchiveForm::Real) return archiveReal(node.as<Members>()->front().second);
    return std::nullopt;
}

std::optional<std::string> archiveBytes(const ArchiveNode& node) {
    const auto* text = node.as<std::string>();
    auto bytes = text ? bytesFromHex(*text) : std::nullopt;
    return bytes && !isValidUtf8(*bytes) ? bytes : std::nullopt;
}

Error archiveErrorAt(const ArchiveNode& envelope, const ArchiveNode& wanted, std::string_view reason,
                     std::optional<std::string_view> key) {
    std::string path;
    findPath(envelope, wanted, path);
    if (key) appendPathName(path, isValidUtf8(*key) ? *key : std::string_view("(no UTF-8)"));
    return archiveError(path, reason);
}

}  // namespace vigil
