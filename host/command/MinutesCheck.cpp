#include "host/command/MinutesCheck.hpp"

#include <charconv>
#include <string>

namespace vigil {

CLI::Validator minutesCheck() {
    return CLI::Validator(
        [](std::string& typed) -> std::string {
            double minutes = -1;
            const char* end = typed.data() + typed.size();
            const auto read = std::from_chars(typed.data(), end, minutes);
            const bool taken = read.ec == std::errc() && read.ptr == end;
            if (taken && minutes >= 0 && minutes <= kMostWaitMinutes) return {};
            return "expected minutes, 0 to 1000000000, and found \"" + typed + "\"";
        },
        "");
}

}  // namespace vigil
