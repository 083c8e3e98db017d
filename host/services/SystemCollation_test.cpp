#include "host/services/SystemCollation.hpp"

#include <cstdlib>
#include <optional>

#include <gtest/gtest.h>

namespace vigil {
namespace {

/// The environment's word on the language, put back when the test ends.
class SaidLocale {
  public:
    SaidLocale(const char* name, const char* value) : m_name(name) {
        if (const char* before = std::getenv(name)) m_before = before;
        if (value)
            setenv(name, value, 1);
        else
            unsetenv(name);
    }
    ~SaidLocale() {
        if (m_before)
            setenv(m_name, m_before->c_str(), 1);
        else
            unsetenv(m_name);
    }
    SaidLocale(const SaidLocale&) = delete;
    SaidLocale& operator=(const SaidLocale&) = delete;

  private:
    const char* m_name;
    std::optional<std::string> m_before;
};

TEST(SystemCollation, listsWordsWithoutRegardToCase) {
    const SystemCollation order("");
    EXPECT_LT(order.compareIgnoringCase("Alpha", "beta"), 0);
    EXPECT_LT(order.compareIgnoringCase("alpha", "Beta"), 0);
    EXPECT_GT(order.compareIgnoringCase("gamma", "Beta"), 0);
    EXPECT_EQ(order.compareIgnoringCase("windChill", "WINDCHILL"), 0);
    EXPECT_LT(order.compareIgnoringCase("wind", "windChill"), 0);
    EXPECT_EQ(order.compareIgnoringCase("", ""), 0);
}

TEST(SystemCollation, anAccentIsMoreThanCase) {
    const SystemCollation order("");
    EXPECT_NE(order.compareIgnoringCase("neige", "neigé"), 0);
    EXPECT_LT(order.compareIgnoringCase("neigé", "neiges"), 0);
}

TEST(SystemCollation, everyLanguageHasItsOwnOrder) {
    EXPECT_LT(SystemCollation("de_DE").compareIgnoringCase("ähre", "zeit"), 0);
    EXPECT_GT(SystemCollation("sv_SE").compareIgnoringCase("ähre", "zeit"), 0);
}

TEST(SystemCollation, bytesThatAreNoTextAreOrderedToo) {
    const SystemCollation order("");
    EXPECT_NE(order.compareIgnoringCase("\xff", "a"), 0);
    EXPECT_EQ(order.compareIgnoringCase("\xff", "\xfe"), 0);
    EXPECT_GT(order.compareIgnoringCase("\xff", "a") * order.compareIgnoringCase("\xff", "b"), 0);
}

TEST(SystemCollation, theEnvironmentNamesTheLanguage) {
    const SaidLocale all("LC_ALL", nullptr), collate("LC_COLLATE", nullptr), lang("LANG", "de_DE.UTF-8");
    EXPECT_EQ(collationLocale(), "de_DE");
    const SaidLocale nearer("LC_COLLATE", "sv_SE");
    EXPECT_EQ(collationLocale(), "sv_SE");
    const SaidLocale nearest("LC_ALL", "fr_FR@euro");
    EXPECT_EQ(collationLocale(), "fr_FR");
}

TEST(SystemCollation, noLanguageMeansTheOrderCommonToAll) {
    const SaidLocale collate("LC_COLLATE", nullptr), lang("LANG", nullptr);
    for (const char* said : {"C", "POSIX", "C.UTF-8", ""}) {
        const SaidLocale all("LC_ALL", said);
        EXPECT_EQ(collationLocale(), "") << said;
    }
}

TEST(SystemCollation, anUnknownLanguageStillHasAnOrder) {
    EXPECT_LT(SystemCollation("xx_NOWHERE").compareIgnoringCase("alpha", "Beta"), 0);
}

}  // namespace
}  // namespace vigil
