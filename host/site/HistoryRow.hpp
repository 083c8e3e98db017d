#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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

/// Which readings of a layout's rows somebody wants.
struct RowChoice {
    RowChoice(const HistoryLayout& layout, const std::vector<std::string>& keys);

    std::vector<bool> places;               ///< by the place of the label
    std::shared_ptr<const KeyTable> table;  ///< the layout's keys that are wanted, in its order
};

/// An error for bytes that no packing gives. Reads untrusted bytes safely. With a choice the other readings
/// are passed over; what is amiss with their texts, or behind the last that is wanted, is not noticed.
Result<UnpackedRow> unpackRow(std::string_view row, const HistoryLayout& layout, Date started,
                              const TextOfNumber& textOf, const RowChoice* choice = nullptr);

}  // namespace vigil
