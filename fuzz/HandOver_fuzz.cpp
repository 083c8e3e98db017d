// A text that an action handed over, and a station's name inside one. What is refused is refused with a place
// in it; what is accepted makes a mail whose header holds what this program wrote and nothing else; and
// whatever a name holds, it reaches neither the recipient nor any other part of the message.

#include <string>

#include "fuzz/Law.hpp"
#include "host/services/automation/HandOver.hpp"
#include "host/services/automation/MailMessage.hpp"
#include "host/services/automation/testing/HandOverTexts.hpp"
#include "host/words/Addresses.hpp"

namespace {

using namespace vigil;

// A header of ten lines or fewer begins each line with a name or a blank; a body stands behind the first
// empty one.
void requireCleanMail(const MailHandOver& mail) {
    const std::string text = composeMail(mail, {Date(0), "x.1"}, "weather@example.org");
    std::size_t begin = 0, names = 0;
    bool inHeader = true;
    while (begin < text.size()) {
        const std::size_t end = text.find("\r\n", begin);
        fuzz::require(end != std::string::npos, "every line ends with CRLF");
        const std::string line = text.substr(begin, end - begin);
        fuzz::require(line.size() <= 998, "no line is too long");
        for (const char c : line)
            fuzz::require((c >= ' ' && c <= '~') || (c == '\t' && !inHeader), "a mail is printable ASCII");
        if (inHeader && line.empty()) inHeader = false;
        if (inHeader && line[0] != ' ') ++names;
        begin = end + 2;
    }
    fuzz::require(!inHeader && names == 9, "a header holds its nine fields");
    fuzz::require(text.find("\r\nTo: <" + mail.recipient + ">\r\n") != std::string::npos, "one recipient");
}

void requireNameStaysInside(const std::string& name) {
    const auto mail = readHandOver(mailText(name, "a@b.c"));
    if (mail) {
        const auto* read = std::get_if<MailHandOver>(&mail.value());
        fuzz::require(read && read->recipient == "a@b.c" && read->sender == "Vigil" &&
                          read->content == "???\n" && read->subject.starts_with("Vigil for "),
                      "a name reaches the subject alone");
        requireCleanMail(*read);
    }
    const auto sms = readHandOver(smsText(name, "45"));
    if (!sms) return;
    const auto* read = std::get_if<SmsHandOver>(&sms.value());
    fuzz::require(read && read->number == "45" && read->text.starts_with("Vigil for ") &&
                      read->text.ends_with(". ?????"),
                  "a name reaches the text alone");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(fuzz::textOf(data, size));
    requireNameStaysInside(text);
    const auto read = readHandOver(text);
    if (!read) {
        fuzz::require(read.error().offset <= text.size() && !read.error().expected.empty(),
                      "a refusal says where");
        return 0;
    }
    if (const auto* mail = std::get_if<MailHandOver>(&read.value())) {
        fuzz::require(isMailAddress(mail->recipient), "a recipient is an address");
        requireCleanMail(*mail);
    }
    return 0;
}
