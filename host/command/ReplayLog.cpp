#include "host/command/ReplayLog.hpp"

#include <fmt/format.h>

namespace vigil {

void ReplayLog::logLevel(int level, std::string_view message) {
    m_output.errorText(fmt::format("{} {} {}\n", m_now.isoText(), level, message));
}

}  // namespace vigil
