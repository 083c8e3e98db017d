#include "host/words/Addresses.hpp"

#include <string>

#include <gtest/gtest.h>

namespace vigil {
namespace {

TEST(Addresses, ThisMachineIsAnAddressOfItsOwnAndNoNameThatLooksLikeOne) {
    for (const char* host : {"localhost", "127.0.0.1", "127.255.3.4", "::1", "[::1]", "0:0:0:0:0:0:0:1"})
        EXPECT_TRUE(isThisMachine(host)) << host;
    for (const char* host : {"", "127.0.0.1.example.org", "127.example.org", "127.", "127.1", "128.0.0.1",
                             "[127.0.0.1]", "localhost.example.org", "::2", "[::1", "[]", "::ffff:127.0.0.1"})
        EXPECT_FALSE(isThisMachine(host)) << host;
    EXPECT_FALSE(isThisMachine(std::string_view("127.0.0.1\0x", 11)));
}

TEST(Addresses, AMailAddressHasOneAtSignNoQuotingAndAtMost254Bytes) {
    for (const char* address : {"a@b.c", "a.b+c@d-e.f", "A@B.C", "!#$%&'*+/=?^_`{|}~-@x"})
        EXPECT_TRUE(isMailAddress(address)) << address;
    for (const char* address : {"", "@", "a@", "@b", "a@b@c", "a b@c", "<a@b>", "a@b\n", "\"a\"@b", "-oQ@b.c",
                                "a@b,c@d", "a@b_c", "\xC3\xA5@b.c"})
        EXPECT_FALSE(isMailAddress(address)) << address;
    EXPECT_TRUE(isMailAddress(std::string(250, 'a') + "@b.c"));
    EXPECT_FALSE(isMailAddress(std::string(251, 'a') + "@b.c"));
}

TEST(Addresses, AnAddressOfTheNewKindStandsWithoutBrackets) {
    EXPECT_TRUE(isIpv6Address("2001:db8::7"));
    for (const char* text : {"", "[::1]", "10.0.0.1", "mail.example.org:25", "::1:x"})
        EXPECT_FALSE(isIpv6Address(text)) << text;
}

}  // namespace
}  // namespace vigil
