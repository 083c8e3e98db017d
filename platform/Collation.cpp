#include "platform/Collation.hpp"

namespace vigil {

Collation::~Collation() = default;

}  // namespace vigil
