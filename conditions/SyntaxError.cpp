#include "conditions/SyntaxError.hpp"

namespace vigil {

std::string SyntaxError::message() const {
    return "expected " + expected + " but found " + found;
}

}  // namespace vigil
