#pragma once

#include <memory>
#include <vector>

#include "conditions/ConditionPredicate.hpp"
#include "conditions/editor/PredicateEditor.hpp"

namespace vigil {

/// The condition with a row, and all that belongs to it, moved to `position` of the group in row `group`,
/// counted as the rows stand now. Nothing where that changes nothing, or would put a group into itself. Main
/// thread.
std::shared_ptr<ConditionPredicate> conditionWithMoved(const std::vector<PredicateEditorRow>& rows,
                                                       std::size_t row, std::size_t group,
                                                       std::size_t position);

/// Where a row goes when it is moved up or down by one line: past its neighbour, into a group, out of it.
struct RowPlace {
    std::size_t group = 0;
    std::size_t position = 0;
};
std::optional<RowPlace> placeAbove(const std::vector<PredicateEditorRow>& rows, std::size_t row);
std::optional<RowPlace> placeBelow(const std::vector<PredicateEditorRow>& rows, std::size_t row);

}  // namespace vigil
