#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <variant>

#include "platform/Result.hpp"

// What the actions for mail and short messages hand over is the text of a script that drives an application.
// There is no such application here; the texts have one form each, and what differs between two of them is
// taken out. Any thread.

namespace vigil {

/// Brings the mail application to the front. It holds a stray quote, so it has no effect anywhere.
struct ViewerHandOver {
    friend bool operator==(const ViewerHandOver&, const ViewerHandOver&) = default;
};

struct MailHandOver {
    std::string sender{};     ///< a name, not an address
    std::string recipient{};  ///< one address, as `isMailAddress` takes it
    std::string subject{};    ///< as it stands in the script: any bytes, control characters included
    std::string content{};    ///< likewise; its lines end with "\n"
    friend bool operator==(const MailHandOver&, const MailHandOver&) = default;
};

struct SmsHandOver {
    std::string number{};  ///< as the user typed it: an optional sign and ASCII digits
    std::string text{};    ///< any bytes
    friend bool operator==(const SmsHandOver&, const SmsHandOver&) = default;
};

using HandOver = std::variant<ViewerHandOver, MailHandOver, SmsHandOver>;

/// Why a text is no hand-over: where it stops being one, and what would have had to stand there.
struct HandOverError {
    std::size_t offset = 0;  ///< in bytes, at most the size of the text
    std::string expected{};
    /// "byte 162: expected `", content:"`"
    std::string sentence() const;
};

inline constexpr std::size_t kLongestHandOver = 256 << 10;  ///< bytes; stops a name from filling the ledger

/// Reads a text that is exactly of one of the forms. Quotes and backslashes mean what they mean in the
/// script's language: a backslash makes \" \\ \n \r \t one character and is wrong before anything else, a
/// quote ends a text. So a site's name with a quote in it makes the whole text malformed, as it would make
/// the script fail; it cannot become a part of the message that it does not belong to.
Result<HandOver, HandOverError> readHandOver(std::string_view text);

/// Whether a text, malformed or not, addresses the application for messages rather than the one for mail.
bool addressesMessages(std::string_view text);

}  // namespace vigil
