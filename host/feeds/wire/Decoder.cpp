#include "host/feeds/wire/Decoder.hpp"

namespace vigil {

Decoder::~Decoder() = default;

}  // namespace vigil
