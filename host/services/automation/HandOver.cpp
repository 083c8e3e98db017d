#include "host/services/automation/HandOver.hpp"

#include <algorithm>
#include <utility>

#include "host/words/Addresses.hpp"

namespace vigil {
namespace {

constexpr std::string_view kViewer =
    "\n"
    "                            tell application \"Mail\"\n"
    "                            activate\"\n"
    "                            if (count of message viewers) is 0 then\n"
    "                            make new message viewer at front \n"
    "                            set selected mailboxes of message viewer 1 to {inbox}"
    "                            end if\n"
    "                            end tell";

constexpr std::string_view kMailHead =
    "tell application \"Mail\"\n"
    "                set newMessage to make new outgoing message with properties {subject:\"";
constexpr std::string_view kBeforeContent = "\", content:\"";
constexpr std::string_view kBeforeSender =
    "\" & return} \n"
    "                 tell newMessage\n"
    "                set visible to true\n"
    "                set sender to \"";
constexpr std::string_view kBeforeRecipient =
    "\"\n"
    "                make new to recipient at end of to recipients with properties {address:\"";
constexpr std::string_view kMailTail =
    "\"}\n"
    "                 tell content\n"
    "                end tell\n"
    "        send\n"
    "        end tell\n"
    "        end tell";

constexpr std::string_view kSmsHead =
    "tell application \"Messages\"\n"
    "         send \"";
constexpr std::string_view kBeforeNumber = "\" to buddy \"+";
constexpr std::string_view kSmsTail =
    "\" of service \"SMS\"\n"
    "         end tell";

constexpr std::string_view kEscaped = "\"\\nrt";
constexpr std::string_view kMeaning = "\"\\\n\r\t";

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

std::size_t commonSize(std::string_view a, std::string_view b) {
    const std::size_t most = std::min(a.size(), b.size());
    return static_cast<std::size_t>(
        std::mismatch(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(most), b.begin()).first - a.begin());
}

/// What stands in the form from there on, to the end of its line, without the blanks around it.
std::string shown(std::string_view rest) {
    const std::size_t begin = rest.find_first_not_of(" \n");
    if (begin == std::string_view::npos) return "a line end";
    rest.remove_prefix(begin);
    return "`" + std::string(rest.substr(0, rest.find('\n'))) + "`";
}

/// Goes through a text. After the first thing that is wrong, nothing is taken any more.
class Reader {
  public:
    explicit Reader(std::string_view text) : m_text(text) {}

    void literal(std::string_view form) {
        if (m_wrong) return;
        const std::size_t same = commonSize(m_text.substr(m_at), form);
        m_at += same;
        if (same < form.size()) fail(m_at, shown(form.substr(same)));
    }

    /// Up to a quote, which stays.
    std::string string() {
        std::string value;
        while (!m_wrong) {
            if (m_at >= m_text.size()) {
                fail(m_text.size(), "a closing quote");
            } else if (m_text[m_at] == '"') {
                return value;
            } else if (m_text[m_at] != '\\') {
                value += m_text[m_at++];
            } else {
                const char kind = m_at + 1 < m_text.size() ? m_text[m_at + 1] : '\0';
                const std::size_t which = kEscaped.find(kind);
                if (which == std::string_view::npos) {
                    fail(m_at + 1, "one of \" \\ n r t behind a backslash");
                } else {
                    value += kMeaning[which];
                    m_at += 2;
                }
            }
        }
        return {};
    }

    template <class Belongs>
    std::string run(Belongs belongs, const char* expected) {
        const std::size_t begin = m_at;
        while (!m_wrong && m_at < m_text.size() && m_text[m_at] != '"') {
            if (!belongs(m_text[m_at])) fail(m_at, expected);
            ++m_at;
        }
        return m_wrong ? std::string() : std::string(m_text.substr(begin, m_at - begin));
    }

    std::string address() {
        const std::size_t begin = m_at;
        std::string value = run(isMailAddressCharacter, "a character of an address");
        if (!m_wrong && !isMailAddress(value)) fail(begin, "an address, NAME@DOMAIN, of at most 254 bytes");
        return value;
    }

    std::string number() {
        std::string value;
        if (!m_wrong && m_at < m_text.size() && (m_text[m_at] == '+' || m_text[m_at] == '-'))
            value = m_text[m_at++];
        const std::string digits = run(isDigit, "a digit");
        if (!m_wrong && digits.empty()) fail(m_at, "a digit");
        return value + digits;
    }

    Result<HandOver, HandOverError> end(HandOver value) {
        if (!m_wrong && m_at < m_text.size()) fail(m_at, "the end of the text");
        if (m_wrong) return m_error;
        return value;
    }

  private:
    void fail(std::size_t offset, std::string expected) {
        m_wrong = true;
        m_error = {std::min(offset, m_text.size()), std::move(expected)};
    }

    const std::string_view m_text;
    std::size_t m_at = 0;
    bool m_wrong = false;
    HandOverError m_error{};
};

Result<HandOver, HandOverError> readMail(std::string_view text) {
    Reader from(text);
    MailHandOver mail;
    from.literal(kMailHead);
    mail.subject = from.string();
    from.literal(kBeforeContent);
    mail.content = from.string() + "\n";  // what the script calls "return"
    from.literal(kBeforeSender);
    mail.sender = from.string();
    from.literal(kBeforeRecipient);
    mail.recipient = from.address();
    from.literal(kMailTail);
    return from.end(std::move(mail));
}

Result<HandOver, HandOverError> readSms(std::string_view text) {
    Reader from(text);
    SmsHandOver sms;
    from.literal(kSmsHead);
    sms.text = from.string();
    from.literal(kBeforeNumber);
    sms.number = from.number();
    from.literal(kSmsTail);
    return from.end(std::move(sms));
}

}  // namespace

std::string HandOverError::sentence() const {
    return "byte " + std::to_string(offset) + ": expected " + expected;
}

bool addressesMessages(std::string_view text) {
    return commonSize(text, kSmsHead) > commonSize(text, kMailHead);
}

Result<HandOver, HandOverError> readHandOver(std::string_view text) {
    if (text.size() > kLongestHandOver)
        return HandOverError{kLongestHandOver, "the end: a text has at most 262144 bytes"};
    if (text.starts_with('\n')) {
        Reader from(text);
        from.literal(kViewer);
        return from.end(ViewerHandOver{});
    }
    if (commonSize(text, kMailHead) == commonSize(text, kSmsHead))
        return HandOverError{commonSize(text, kMailHead),
                             "a script for the application \"Mail\" or \"Messages\""};
    return addressesMessages(text) ? readSms(text) : readMail(text);
}

}  // namespace vigil
