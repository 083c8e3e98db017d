#pragma once

#include <string>

// The texts that the actions hand over, written a second time, line by line, so that the reader is not tested
// against itself.

namespace vigil {

inline std::string mailText(const std::string& site, const std::string& address,
                            const std::string& content = "???") {
    const std::string in(16, ' ');
    return "tell application \"Mail\"\n" + in +
           "set newMessage to make new outgoing message with properties {subject:\"Vigil for " + site +
           "\", content:\"" + content + "\" & return} \n" + in + " tell newMessage\n" + in +
           "set visible to true\n" + in + "set sender to \"Vigil\"\n" + in +
           "make new to recipient at end of to recipients with properties {address:\"" + address + "\"}\n" +
           in + " tell content\n" + in + "end tell\n        send\n        end tell\n        end tell";
}

inline std::string smsText(const std::string& site, const std::string& number) {
    return "tell application \"Messages\"\n         send \"Vigil for " + site + ". ?????\" to buddy \"+" +
           number + "\" of service \"SMS\"\n         end tell";
}

inline std::string viewerText() {
    const std::string in(28, ' ');
    return "\n" + in + "tell application \"Mail\"\n" + in + "activate\"\n" + in +
           "if (count of message viewers) is 0 then\n" + in + "make new message viewer at front \n" + in +
           "set selected mailboxes of message viewer 1 to {inbox}" + in + "end if\n" + in + "end tell";
}

}  // namespace vigil
