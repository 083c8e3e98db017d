#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "host_contract/QRVAgentPlugIn.hpp"
#include "platform/Object.hpp"
#include "platform/Result.hpp"

// The keyed archive of a plug-in as readable JSON text. docs/formats/archive.md describes the format.
// Main thread: archiving calls the objects' own coding.

namespace vigil {

/// What an archive may hold. Writing refuses what reading would refuse, so all that is written can be read.
struct ArchiveLimits {
    std::size_t bytes = std::size_t{64} << 20;  ///< length of the text; against a file that fills the memory
    std::size_t depth = 200;                    ///< levels inside each other; against an overrun of the stack
    std::size_t objects = 100'000;              ///< objects of classes; each may allocate what it likes
    std::size_t values = 2'000'000;             ///< entries and list items; each costs far more than its text
};

/// The graph that hangs on `root`, with `station` (may be absent) as a reference. Equal graphs give equal
/// bytes. An error names the path (`root.children[0]`) and the reason: a cycle, a class that no reader would
/// know, one key written twice, an absent root, a limit passed, an exception of the object.
Result<std::string> writeArchive(const std::shared_ptr<Object>& root, const QRVAgentPlugIn* station,
                                 const ArchiveLimits& limits = {});

/// A fresh graph from the text; every reference to the station is `station`. Classes come from the
/// `ClassRegistry`; the objects are initialised in the world that the caller has opened. Any damage, a value
/// of a wrong kind, and an object that refuses to come to be are an error that names the path and the
/// reason; nothing is thrown. Entries that a class does not ask for are read and dropped.
Result<std::shared_ptr<Object>> readArchive(std::string_view text,
                                            const std::shared_ptr<QRVAgentPlugIn>& station,
                                            const ArchiveLimits& limits = {});

}  // namespace vigil
