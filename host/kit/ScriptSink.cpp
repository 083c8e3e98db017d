#include "host/kit/ScriptSink.hpp"

namespace vigil {

ScriptSink::~ScriptSink() = default;

void ScriptSink::refused(const ScriptRequest&, const std::shared_ptr<const Object>&, const std::string&) {}

}  // namespace vigil
