#include "host/readings/Units.hpp"

#include <cstddef>

#include "host/readings/Units_Table.hpp"

namespace vigil {
namespace {

/// From the unit's scale to its base unit's, of which it is `toBase / perBase` and which begins at `offset`.
double ratio(const UnitRow& from, const UnitRow& to) {
    return (from.toBase * to.perBase) / (from.perBase * to.toBase);
}

}  // namespace

Quantity quantityOf(Unit unit) {
    return unitRow(unit).quantity;
}

bool convertible(Unit from, Unit to) {
    return unitRow(from).base == unitRow(to).base;
}

std::optional<double> convert(double value, Unit from, Unit to) {
    if (from == to) return value;
    const UnitRow& source = unitRow(from);
    const UnitRow& target = unitRow(to);
    if (source.base != target.base) return std::nullopt;
    if (source.offset == 0 && target.offset == 0) return value * ratio(source, target);
    const double base = (value - source.offset) * source.toBase / source.perBase;
    return base * target.perBase / target.toBase + target.offset;
}

std::optional<double> convertDifference(double value, Unit from, Unit to) {
    if (from == to) return value;
    if (!convertible(from, to)) return std::nullopt;
    return value * ratio(unitRow(from), unitRow(to));
}

std::string_view unitText(Unit unit) {
    return unitRow(unit).text;
}

Unit shownUnit(Unit unit, UnitSystem system) {
    return system == UnitSystem::Us ? unitRow(unit).us : unitRow(unit).metric;
}

Unit heldUnit(Unit unit) {
    return unitRow(unit).metric;
}

}  // namespace vigil
