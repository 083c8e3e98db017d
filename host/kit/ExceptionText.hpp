#pragma once

#include <exception>
#include <string>

namespace vigil {

/// What an exception says of itself, for people.
std::string exceptionText(const std::exception_ptr& what);

}  // namespace vigil
