#include "tests/support/ConditionGenerator.hpp"

#include <cstdlib>
#include <optional>
#include <string>

#include <gtest/gtest.h>

namespace vigil::test {
namespace {

class LongFactor : public testing::Test {
  protected:
    LongFactor() {
        if (const char* const set = std::getenv("VIGIL_LONG")) m_before = set;
    }
    ~LongFactor() override {
        if (m_before)
            ::setenv("VIGIL_LONG", m_before->c_str(), 1);
        else
            ::unsetenv("VIGIL_LONG");
    }
    static int with(const char* value) {
        ::setenv("VIGIL_LONG", value, 1);
        return longFactor();
    }

  private:
    std::optional<std::string> m_before;
};

TEST_F(LongFactor, IsOneUnlessTheEnvironmentAsksForMore) {
    ::unsetenv("VIGIL_LONG");
    EXPECT_EQ(longFactor(), 1);
    EXPECT_EQ(with(""), 1);
}

TEST_F(LongFactor, IsMoreThanOneWhereverTheEnvironmentAsksForMore) {
    EXPECT_EQ(with("30"), 30);
    EXPECT_EQ(with("1"), 10);
    EXPECT_EQ(with("yes"), 10);
    EXPECT_EQ(with("-3"), 10);
}

}  // namespace
}  // namespace vigil::test
