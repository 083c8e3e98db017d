#pragma once

#include <cstddef>
#include <string_view>

// Addresses of the net as people write them. Pure functions, any thread.

namespace vigil {

inline constexpr std::size_t kLongestAddress = 254;  ///< bytes; more has no place in SMTP

/// One ASCII address: NAME@DOMAIN of the characters that need no quoting, no "-" in front. So it can end no
/// header and steer no program.
bool isMailAddress(std::string_view text);
/// Whether a character may stand in one.
bool isMailAddressCharacter(char c);

/// Whether a host is certainly this machine, so that what is sent there is heard by nobody on the way:
/// "localhost", or an address (no name) of 127.0.0.0/8 or ::1, the latter with or without brackets.
bool isThisMachine(std::string_view host);

/// Whether it is an IPv6 address, without brackets.
bool isIpv6Address(std::string_view text);

}  // namespace vigil
