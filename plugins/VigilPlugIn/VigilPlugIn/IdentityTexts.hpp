#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "host_contract/QRVPlugIn.hpp"

// What the classes of the module answer alike when a host asks who they are.

namespace vigil {

/// The name of a monitor, and its first title.
inline constexpr std::string_view kVigilName = "Vigil";

/// What a monitor does, in two sentences. The missing "of" is meant.
extern const std::string_view kVigilTextDescription;

/// "<tr><th …>Vigil Plug-In - Version %@ (%ld)</th></tr>" with the two versions of the bundle that holds the
/// plug-in's class.
std::string htmlVersionRow(const QRVPlugIn& plugIn);

/// The image "vigil" of the bundle that holds the plug-in's class, looked up anew; nothing where there is
/// none.
std::shared_ptr<Image> vigilImage(const QRVPlugIn& plugIn);

}  // namespace vigil
