#include "host/kit/KeyedArchive_Text.hpp"

#include "platform/Number.hpp"

namespace vigil {

ArchiveNode::ArchiveNode() = default;
ArchiveNode::ArchiveNode(Held value) : held(std::move(value)) {}
ArchiveNode::ArchiveNode(const ArchiveNode&) = default;
ArchiveNode::ArchiveNode(ArchiveNode&&) noexcept = default;
ArchiveNode& ArchiveNode::operator=(const ArchiveNode&) = default;
ArchiveNode& ArchiveNode::operator=(ArchiveNode&&) noexcept = default;
ArchiveNode::~ArchiveNode() = default;
namespace {

constexpr std::size_t kLongestNameInPath = 60;
constexpr std::string_view kHexDigits = "0123456789abcdef";

bool isPlainName(std::string_view name) {
    if (name.empty() || name.size() > kLongestNameInPath) return false;
    for (const char c : name) {
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '$';
        if (!letter && (c < '0' || c > '9')) return false;
    }
    return true;
}

// Whole characters only, so that a cut name stays UTF-8.
std::string_view cut(std::string_view name) {
    if (name.size() <= kLongestNameInPath) return name;
    std::size_t end = kLongestNameInPath;
    while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0u) == 0x80u)
        --end;
    return name.substr(0, end);
}

}  // namespace

const ArchiveNode* memberNamed(const ArchiveNode::Members& members, std::string_view name) {
    for (const auto& [key, node] : members)
        if (key == name) return &node;
    return nullptr;
}

void appendPathName(std::string& path, std::string_view name) {
    if (isPlainName(name)) {
        if (!path.empty()) path += '.';
        path += name;
        return;
    }
    path += '[';
    const std::string_view shown = cut(name);
    appendQuoted(path, shown);
    if (shown.size() < name.size()) path += "...";
    path += ']';
}

void appendPathIndex(std::string& path, std::size_t index) {
    path += '[' + std::to_string(index) + ']';
}

Error archiveError(const std::string& path, std::string_view reason) {
    return Error{(path.empty() ? std::string("archive") : path) + ": " + std::string(reason)};
}

void appendQuoted(std::string& to, std::string_view text) {
    to += '"';
    for (const char c : text) {
        switch (c) {
            case '"':
                to += "\\\"";
                break;
            case '\\':
                to += "\\\\";
                break;
            case '\n':
                to += "\\n";
                break;
            case '\r':
                to += "\\r";
                break;
            case '\t':
                to += "\\t";
                break;
            default:
                if (static_cast<unsigned char>(c) < 0x20)
                    (to += "\\u00") += hexText({&c, 1});
                else
                    to += c;
        }
    }
    to += '"';
}

void appendReal(std::string& to, double value) {
    const std::size_t begin = to.size();
    appendNumber(to, value);
    if (to.find_first_of(".e", begin) == std::string::npos) to += ".0";
}

std::string hexText(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        text += kHexDigits[byte >> 4];
        text += kHexDigits[byte & 0x0Fu];
    }
    return text;
}

std::optional<std::string> bytesFromHex(std::string_view hex) {
    if (hex.size() % 2 != 0) return std::nullopt;
    std::string bytes;
    bytes.reserve(hex.size() / 2);
    for (std::size_t i = 0; i < hex.size(); i += 2) {
        const std::size_t high = kHexDigits.find(hex[i]);
        const std::size_t low = kHexDigits.find(hex[i + 1]);
        if (high == std::string_view::npos || low == std::string_view::npos) return std::nullopt;
        bytes += static_cast<char>(high << 4 | low);
    }
    return bytes;
}

}  // namespace vigil
