#pragma once

#include <span>
#include <string_view>

#include "host/readings/Unit.hpp"
#include "host/readings/Units.hpp"

namespace vigil {

/// A unit against the base unit of its kind: base = (number - offset) * toBase / perBase. Two numbers instead
/// of one factor, so that what is defined by a decimal or a fraction is not rounded before it is used.
struct UnitRow {
    Unit unit;
    Quantity quantity;
    Unit base;
    std::string_view text;
    Unit metric;  ///< what people read it in
    Unit us;
    double toBase = 1;
    double perBase = 1;
    double offset = 0;
};

/// One row a unit, in the order of the enumeration.
std::span<const UnitRow> unitRows();
const UnitRow& unitRow(Unit unit);

}  // namespace vigil
