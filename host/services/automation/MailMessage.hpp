#pragma once

#include <string>
#include <string_view>

#include "host/services/automation/HandOver.hpp"
#include "platform/Date.hpp"

// A mail as it goes over the wire. Pure functions, any thread.

namespace vigil {

/// What makes one mail different from another with the same words. It is the same at each attempt to send
/// it, so that a receiver that gets a mail twice can know it.
struct MailStamp {
    Date when{};           ///< when the monitor asked for it
    std::string unique{};  ///< letters, digits, "." and "-": the left half of the Message-ID
};

/// Header and body with CRLF, in ASCII, no line longer than 998 bytes. `from` is the address that is set up;
/// the sender that the script names becomes its display name. Control characters of subject and sender
/// become blanks, so that no line of the header comes from either.
std::string composeMail(const MailHandOver& mail, const MailStamp& stamp, const std::string& from);

/// "Sat, 21 Nov 2026 20:14:19 +0000"; a date outside the years 1970 to 9999 as the nearest inside.
std::string mailDate(Date date);

/// As a header's value may hold it: as it stands where that is short printable ASCII, else as encoded words
/// (UTF-8, base64), folded. The text is a plain line.
std::string headerText(const std::string& text);

}  // namespace vigil
