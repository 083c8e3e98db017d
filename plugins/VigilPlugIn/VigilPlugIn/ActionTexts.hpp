#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "plugins/VigilPlugIn/VigilPlugIn/Criterion.hpp"

// What the texts of several actions are made with.

namespace vigil {

/// The format with each "%@" replaced by the next value, in one pass: a "%@" inside a value stays as it is. A
/// placeholder without a value stays, too.
std::string filled(std::string_view format, std::initializer_list<std::string_view> values);

/// The display name of the station, or "(LOCATION DATA MISSING IN AGENT)".
std::string siteNameText(const Criterion::Agent& agent);

}  // namespace vigil
