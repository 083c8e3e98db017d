#include "host/words/Addresses.hpp"

#include <algorithm>
#include <string>

#include <arpa/inet.h>
#include <netinet/in.h>

namespace vigil {
namespace {

bool isLetterOrDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isDomainCharacter(char c) {
    return isLetterOrDigit(c) || c == '-' || c == '.';
}

std::string_view withoutBrackets(std::string_view host) {
    return host.size() > 2 && host.front() == '[' && host.back() == ']' ? host.substr(1, host.size() - 2)
                                                                        : host;
}

}  // namespace

bool isMailAddressCharacter(char c) {
    return isLetterOrDigit(c) || std::string_view("!#$%&'*+/=?^_`{|}~-.@").find(c) != std::string_view::npos;
}

bool isMailAddress(std::string_view text) {
    const std::size_t at = text.find('@');
    return text.size() <= kLongestAddress && at != std::string_view::npos && at > 0 && at + 1 < text.size() &&
           text.find('@', at + 1) == std::string_view::npos && text[0] != '-' &&
           std::all_of(text.begin(), text.end(), isMailAddressCharacter) &&
           std::all_of(text.begin() + static_cast<std::ptrdiff_t>(at) + 1, text.end(), isDomainCharacter);
}

bool isIpv6Address(std::string_view text) {
    in6_addr address{};
    return ::inet_pton(AF_INET6, std::string(text).c_str(), &address) == 1 &&
           text.find('\0') == std::string_view::npos;
}

bool isThisMachine(std::string_view host) {
    if (host == "localhost") return true;
    if (host.find('\0') != std::string_view::npos) return false;
    in_addr four{};
    // a name may begin with "127.", too
    if (::inet_pton(AF_INET, std::string(host).c_str(), &four) == 1)
        return (ntohl(four.s_addr) >> 24) == IN_LOOPBACKNET;
    in6_addr six{};
    return ::inet_pton(AF_INET6, std::string(withoutBrackets(host)).c_str(), &six) == 1 &&
           IN6_IS_ADDR_LOOPBACK(&six);
}

}  // namespace vigil
