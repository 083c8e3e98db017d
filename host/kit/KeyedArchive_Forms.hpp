#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/kit/KeyedArchive_Text.hpp"

// What a node of an archive's text stands for. Any thread.

namespace vigil {

enum class ArchiveForm { Plain, Dictionary, Instance, Reference, Station, DateForm, Real, Bytes };

/// What the node's members make of it; whether what they hold is right is not looked at.
ArchiveForm archiveFormOf(const ArchiveNode& node);

/// The name of an entry as its owner wrote it; nothing for a name that the format keeps for itself.
std::optional<std::string> archiveEntryKey(const std::string& name);

/// What stands inside "$real", "$date" and "$bytes"; nothing when it is not of the right form.
std::optional<double> archiveReal(const ArchiveNode& inside);
std::optional<double> archiveSeconds(const ArchiveNode& inside);
std::optional<std::string> archiveBytes(const ArchiveNode& inside);

/// An error at `wanted`, a node of the tree under `envelope`; at its entry `key` where that is not absent.
/// The path is searched for, so that nobody has to keep one while all goes well.
Error archiveErrorAt(const ArchiveNode& envelope, const ArchiveNode& wanted, std::string_view reason,
                     std::optional<std::string_view> key = std::nullopt);

}  // namespace vigil
