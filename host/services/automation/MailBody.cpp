#include "host/services/automation/MailBody.hpp"

#include <algorithm>

namespace vigil {
namespace {

constexpr std::size_t kLine = 76;  // bytes, as both encodings want it

bool isPlain(std::string_view line) {
    return line.size() <= kLine &&
           std::all_of(line.begin(), line.end(), [](char c) { return (c >= ' ' && c <= '~') || c == '\t'; });
}

std::string quoted(char c) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(c);
    return {'=', kDigits[byte >> 4], kDigits[byte & 15]};
}

void appendQuotedLine(std::string& to, std::string_view line) {
    std::size_t used = 0;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        const bool blank = c == ' ' || c == '\t';
        const bool itself = blank ? i + 1 < line.size() : c > ' ' && c <= '~' && c != '=';
        const std::string piece = itself ? std::string(1, c) : quoted(c);
        // one place stays for the "=" of the break
        if (used + piece.size() > kLine - 1) {
            to += "=\r\n";
            used = 0;
        }
        to += piece;
        used += piece.size();
    }
}

}  // namespace

MailBody mailBody(std::string_view lines) {
    bool plain = true;
    for (std::string_view rest = lines; plain && !rest.empty();) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        plain = isPlain(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    MailBody body{plain ? "7bit" : "quoted-printable", {}};
    while (!lines.empty()) {
        const std::size_t end = std::min(lines.find('\n'), lines.size());
        if (plain)
            body.text += lines.substr(0, end);
        else
            appendQuotedLine(body.text, lines.substr(0, end));
        body.text += "\r\n";
        lines.remove_prefix(std::min(end + 1, lines.size()));
    }
    return body;
}

}  // namespace vigil
