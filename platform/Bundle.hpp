#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Export.hpp"

namespace vigil {

/// The folder of a plug-in module as its code sees it: what its Info.json says and where its resources are.
/// Filled by the host's loader before the code is loaded, never changed after.
struct Bundle {
    std::string identifier;        ///< reverse-domain text
    std::string marketingVersion;  ///< "CFBundleShortVersionString", the version that people see
    long bundleVersion = 0;        ///< the integer
    std::string resourcePath;      ///< folder of the resources, without a final "/"
};

}  // namespace vigil
