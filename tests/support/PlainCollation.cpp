#include "tests/support/PlainCollation.hpp"

#include <string>

#include <strings.h>

namespace vigil {

int PlainCollation::compareIgnoringCase(std::string_view first, std::string_view second) const {
    ++asked;
    return strcasecmp(std::string(first).c_str(), std::string(second).c_str());
}

}  // namespace vigil
