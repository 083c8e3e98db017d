// A message of a receiver, of a weather program or of the system itself: a blank around it changes nothing,
// and a form that was guessed reads as one that was named.

#include <algorithm>
#include <string>

#include "fuzz/Packets.hpp"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vigil;
    const std::string text(fuzz::textOf(data, size));
    const auto packets = [&text](const char* url, bool finite, const char* route = "",
                                 const char* around = "") {
        return fuzz::packetsOf(url, {.route = route, .payload = around + text + around, .arrived = Date(0)},
                               finite);
    };
    const std::string named[] = {packets("lines:-?form=lines", false), packets("lines:-?form=rtl433", true),
                                 packets("lines:-?form=weewx", true)};
    const std::string guessed = packets("lines:-", false);
    const bool unknown = guessed.find("form= says what it is") != std::string::npos;
    fuzz::require(unknown || std::find(std::begin(named), std::end(named), guessed) != std::end(named),
                  "a guess is one of the forms");
    fuzz::require(packets("lines:-", false, "", " ") == guessed, "blanks around change nothing");
    packets("lines:-?sensor=M&inside=N/1&time=utc", false);
    packets("mqtt://b/%23", false, "weather/outTemp_F");
    packets("mqtt://b/%23?units=us", false, "outTemp");
    return 0;
}
