#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host_contract/QRVPlugIn.hpp"
#include "host_contract/Readings.hpp"
#include "platform/Date.hpp"

// What a host may read and set of a plug-in by the names of its property table. Nothing where it does not
// offer the name.

namespace vigil {

/// The interval that it waits after a fire, in seconds, as it counts it itself: minutes through single
/// precision. Any thread.
std::optional<double> retriggerSeconds(QRVPlugIn& plugIn);
/// No fire before this date. Any thread.
std::optional<Date> retriggerDate(QRVPlugIn& plugIn);
/// Lets it wait until `date` at least; a later wait stays. False where it has no such property. While it is
/// stopped, main thread.
bool waitAtLeastUntil(QRVPlugIn& plugIn, Date date);

/// Its condition as the language writes it; empty where it has none. Main thread.
std::string conditionText(QRVPlugIn& plugIn);
/// Keys that its condition asks for and that the readings lack, each once, in the condition's order. Main
/// thread.
std::vector<std::string> missingKeys(QRVPlugIn& plugIn, const Readings& readings);

}  // namespace vigil
