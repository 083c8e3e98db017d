#include "host/kit/ScriptSink.hpp"

namespace vigil {

ScriptSink::~ScriptSink() = default;

}  // namespace vigil
