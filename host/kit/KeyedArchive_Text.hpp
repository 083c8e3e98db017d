#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "host/kit/KeyedArchive.hpp"
#include "platform/Result.hpp"

// The text side of a keyed archive: JSON in and out, before anything means an object. Any thread.

namespace vigil {

struct ArchiveMember;

/// One JSON value. Integers and reals are told apart, members keep their order, and no member stands twice.
struct ArchiveNode {
    using List = std::vector<ArchiveNode>;
    using Members = std::vector<ArchiveMember>;

    using Held = std::variant<std::monostate, bool, std::int64_t, double, std::string, List, Members>;

    // Made and destroyed out of line, where the type is complete; clang would look inside the list here.
    ArchiveNode();
    ArchiveNode(Held value);
    ArchiveNode(const ArchiveNode&);
    ArchiveNode(ArchiveNode&&) noexcept;
    ArchiveNode& operator=(const ArchiveNode&);
    ArchiveNode& operator=(ArchiveNode&&) noexcept;
    ~ArchiveNode();

    Held held;

    template <class T>
    const T* as() const {
        return std::get_if<T>(&held);
    }
};

/// A name and what it holds. No std::pair: whether one can be moved is asked before a node is complete.
struct ArchiveMember {
    std::string first;
    ArchiveNode second;
};

/// Reads one JSON value within the limits. An error names path and byte.
Result<ArchiveNode> parseArchiveText(std::string_view text, const ArchiveLimits& limits);

/// The member of that name, or nothing.
const ArchiveNode* memberNamed(const ArchiveNode::Members& members, std::string_view name);

/// Appends ".name", `["odd name"]` or "[3]" to a path; the first name stands bare, and a long one is cut.
void appendPathName(std::string& path, std::string_view name);
void appendPathIndex(std::string& path, std::size_t index);

/// "root.a: reason"; an empty path reads "archive".
Error archiveError(const std::string& path, std::string_view reason);

/// Appends a text in quotes, with nothing but what JSON demands escaped. The text is valid UTF-8.
void appendQuoted(std::string& to, std::string_view text);
/// Appends a finite number with a point or an exponent, so that it reads back as a real, bit for bit.
void appendReal(std::string& to, double value);

/// Two lower-case digits a byte, and back; nothing for any other text.
std::string hexText(std::string_view bytes);
std::optional<std::string> bytesFromHex(std::string_view hex);

}  // namespace vigil
