#pragma once

#include <string_view>

#include "platform/Export.hpp"

namespace vigil {

/// The order in which the user's language lists words. Any thread.
class VIGIL_KIT Collation {
  public:
    virtual ~Collation();
    /// Below 0 when the first comes before the second, above 0 when behind it, 0 when they differ in nothing
    /// but case. UTF-8; what is no UTF-8 is ordered as the replacement character. (Keyword form:
    /// localizedCaseInsensitiveCompare:)
    virtual int compareIgnoringCase(std::string_view first, std::string_view second) const = 0;
};

}  // namespace vigil
