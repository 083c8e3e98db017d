#pragma once

#include <string>
#include <string_view>

#include "host/feeds/wire/WireKeys.hpp"

namespace vigil {

/// The key and unit of a member that holds a weather value. Any thread.
struct Rtl433Key {
    std::string key;
    Unit unit = Unit::None;
};
Rtl433Key rtl433Key(std::string_view member);

/// Whether a member says which sensor sent, when, or how it was received. How well one of several repeats
/// came in is not weather, and would make each of them look like news.
bool isReception(std::string_view member);

}  // namespace vigil
