#pragma once

#include <string_view>

namespace vigil {

/// The form of an address that mail is sent to. Lower-case letters only, and a domain of at least two labels.
inline constexpr std::string_view kEmailAddressPattern =
    R"re([a-z0-9!#$%&'*+/=?^_`{|}~-]+(?:\.[a-z0-9!#$%&'*+/=?^_`{|}~-]+)*@(?:[a-z0-9](?:[a-z0-9-]*[a-z0-9])?\.)+[a-z0-9](?:[a-z0-9-]*[a-z0-9])?)re";

/// Whether the whole text matches `kEmailAddressPattern`. One pass over the text whatever is in it, without
/// memory of its own: a matcher that tries and goes back can be kept busy for hours by a text made for it.
/// Any thread.
bool matchesEmailAddressPattern(std::string_view text);

}  // namespace vigil
