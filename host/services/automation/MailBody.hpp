#pragma once

#include <string>
#include <string_view>

namespace vigil {

/// The body of a mail in ASCII, its lines ended by CRLF.
struct MailBody {
    const char* encoding = "";  ///< "7bit", or "quoted-printable" where it has to be encoded
    std::string text{};
};

/// Of lines as `plainLines` gives them; the last is ended where it is not. Pure, any thread.
MailBody mailBody(std::string_view lines);

}  // namespace vigil
