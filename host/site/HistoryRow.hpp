#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "host/site/HistoryLayout.hpp"
#include "host_contract/Readings.hpp"
#include "platform/Date.hpp"
#include "platform/Result.hpp"

// The packed form of one notification, which docs/history.md describes for people. What is packed comes back
// exactly: every number to its bit, every text, absent times and texts, order and duplicates.

namespace vigil {

/// The number of a text in the dictionary, above 0, or 0: it is to stand in the row itself.
using TextNumber = std::function<std::uint64_t(std::string_view text)>;
/// The text of a number; nothing where there is none.
using TextOfNumber = std::function<std::optional<std::string>(std::uint64_t number)>;

/// Appends the row of a batch that fits the layout.
void packRow(std::string& to, HistoryLayout& layout, const Readings& batch, Date started,
             std::optional<std::uint64_t> sequence, const TextNumber& numberOf);

struct UnpackedRow {
    std::optional<std::uint64_t> sequence;
    std::shared_ptr<const Readings> readings;
};

/// An error for bytes that no packing gives. Reads untrusted bytes safely.
Result<UnpackedRow> unpackRow(std::string_view row, const HistoryLayout& layout, Date started,
                              const TextOfNumber& textOf);

}  // namespace vigil
