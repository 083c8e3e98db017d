#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/Bundle.hpp"
#include "platform/Result.hpp"

namespace vigil {

/// What the Info.json of a bundle says. `bundle.resourcePath` is filled from the folder.
struct PlugInInfo {
    Bundle bundle;
    int contractMajor = 0;
    int contractMinor = 0;
    std::string abi;
    std::vector<std::string> classes;  ///< at least one; none twice
};

/// The longest Info.json that is read; against a file that fills the memory.
inline constexpr std::size_t kLongestInfoFile = std::size_t{1} << 20;

/// Reads `folder`/Info.json. Members that are not known are passed over. An error names the file. Any thread.
Result<PlugInInfo> readPlugInInfo(const std::string& folder);

/// What keeps a module of this contract and ABI from this host, as half a sentence; empty when nothing does.
std::string plugInMismatch(int contractMajor, int contractMinor, const std::string& abi);

}  // namespace vigil
