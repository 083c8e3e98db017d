#include "host/services/automation/MailMessage.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>

#include "host/services/automation/MailBody.hpp"
#include "host/services/automation/PlainText.hpp"

namespace vigil {
namespace {

constexpr std::size_t kPlainValue = 60;   // bytes of a value that stands as it is
constexpr std::size_t kEncodedWord = 39;  // bytes of text in one word: with "Subject: " below 76 a line
constexpr double kLastSecond = 253402300799.0;

std::string base64(std::string_view bytes) {
    constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const auto at = [&](std::size_t k) -> unsigned {
            return i + k < bytes.size() ? static_cast<unsigned char>(bytes[i + k]) : 0;
        };
        const unsigned bits = at(0) << 16 | at(1) << 8 | at(2);
        text += kDigits[bits >> 18];
        text += kDigits[bits >> 12 & 63];
        text += i + 1 < bytes.size() ? kDigits[bits >> 6 & 63] : '=';
        text += i + 2 < bytes.size() ? kDigits[bits & 63] : '=';
    }
    return text;
}

bool isPrintable(char c) {
    return c >= ' ' && c <= '~';
}

// A blank at either end would be lost, and "=?" be taken for an encoded word.
bool standsAsItIs(const std::string& text) {
    return text.size() <= kPlainValue && std::all_of(text.begin(), text.end(), isPrintable) &&
           text.find("=?") == std::string::npos && !text.starts_with(' ') && !text.ends_with(' ');
}

std::string encodedWords(std::string_view text) {
    std::string words;
    while (!text.empty()) {
        std::size_t size = std::min(text.size(), kEncodedWord);
        while (size < text.size() && (static_cast<unsigned char>(text[size]) & 0xC0u) == 0x80u)
            --size;  // no character is cut in two
        words += (words.empty() ? "=?UTF-8?B?" : "\r\n =?UTF-8?B?") + base64(text.substr(0, size)) + "?=";
        text.remove_prefix(size);
    }
    return words;
}

std::string mailbox(const std::string& name, const std::string& address) {
    const std::string bracketed = "<" + address + ">";
    if (name.empty()) return bracketed;
    std::string shown;
    if (standsAsItIs(name)) {
        shown = "\"";
        for (const char c : name) {
            if (c == '"' || c == '\\') shown += '\\';
            shown += c;
        }
        shown += '"';
    } else {
        shown = encodedWords(name);
    }
    return shown + "\r\n " + bracketed;
}

}  // namespace

std::string headerText(const std::string& text) {
    return standsAsItIs(text) ? text : encodedWords(text);
}

std::string mailDate(Date date) {
    using namespace std::chrono;
    constexpr std::array kDays = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    constexpr std::array kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                    "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const double unix = date.secondsSinceUnix();
    const double clamped = unix > 0 ? std::min(unix, kLastSecond) : 0;  // 0 also for what is no number
    const sys_seconds time{seconds(static_cast<std::int64_t>(clamped))};
    const auto day = floor<days>(time);
    const year_month_day civil(day);
    const hh_mm_ss clock(time - day);
    char text[64];
    std::snprintf(text, sizeof text, "%s, %02u %s %04d %02d:%02d:%02d +0000",
                  kDays[weekday(day).c_encoding()], static_cast<unsigned>(civil.day()),
                  kMonths[static_cast<unsigned>(civil.month()) - 1], static_cast<int>(civil.year()),
                  static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                  static_cast<int>(clock.seconds().count()));
    return text;
}

std::string composeMail(const MailHandOver& mail, const MailStamp& stamp, const std::string& from) {
    const MailBody body = mailBody(plainLines(mail.content));
    std::string text;
    const auto header = [&text](const char* name, const std::string& value) {
        text.append(name).append(": ").append(value).append("\r\n");
    };
    header("Date", mailDate(stamp.when));
    header("From", mailbox(plainLine(mail.sender), from));
    header("To", mailbox("", mail.recipient));
    header("Message-ID", "<" + stamp.unique + from.substr(from.find('@')) + ">");
    header("Subject", headerText(plainLine(mail.subject)));
    header("MIME-Version", "1.0");
    header("Content-Type", "text/plain; charset=UTF-8");
    header("Content-Transfer-Encoding", body.encoding);
    header("Auto-Submitted", "auto-generated");
    return text + "\r\n" + body.text;
}

}  // namespace vigil
