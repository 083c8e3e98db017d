#include "host/helper/ScriptFile.hpp"

#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace vigil {
namespace {

using Interpreter = ScriptInterpreter;

TEST(ScriptInterpreter, IsReadAsLinuxReadsIt) {
    EXPECT_EQ(scriptInterpreter("#!/bin/sh\necho"), (Interpreter{"/bin/sh", std::nullopt}));
    EXPECT_EQ(scriptInterpreter("#! \t/bin/sh \t\n"), (Interpreter{"/bin/sh", std::nullopt}));
    EXPECT_EQ(scriptInterpreter("#!/usr/bin/env  python3 -u \nx y"),
              (Interpreter{"/usr/bin/env", "python3 -u"}));
    EXPECT_EQ(scriptInterpreter("#!/bin/sh"), (Interpreter{"/bin/sh", std::nullopt}));
    EXPECT_EQ(scriptInterpreter("#!/bin/sh\r\n"), (Interpreter{"/bin/sh\r", std::nullopt}));
}

TEST(ScriptInterpreter, IsNothingWhereNoneIsNamed) {
    for (const char* source : {"", "#", "#!", "#!\n/bin/sh", "#! \t\n", " #!/bin/sh", "echo #!/bin/sh"})
        EXPECT_FALSE(scriptInterpreter(source)) << source;
}

TEST(ScriptFile, GoesToTheFirstFolderThatTakesItAndIsRemoved) {
    char pattern[] = "/tmp/vigil-test-XXXXXX";
    ASSERT_NE(::mkdtemp(pattern), nullptr);
    const std::string base = pattern;
    {
        auto file = ScriptFile::write({base + "/no/such", base + "/a", base + "/b"}, "text");
        ASSERT_TRUE(file) << file.error().message;
        EXPECT_EQ(file.value().path(), base + "/a/script");
        std::ifstream stream(file.value().path());
        std::string text;
        stream >> text;
        EXPECT_EQ(text, "text");
        std::ofstream(base + "/a/what the script leaves") << "x";
    }
    EXPECT_TRUE(std::filesystem::is_empty(base));
    std::filesystem::remove_all(base);
}

TEST(ScriptFile, DoesNotUseAFolderThatSomebodyHasMadeAlready) {
    char pattern[] = "/tmp/vigil-test-XXXXXX";
    ASSERT_NE(::mkdtemp(pattern), nullptr);
    const auto file = ScriptFile::write({pattern}, "text");
    ASSERT_FALSE(file);
    EXPECT_EQ(file.error().message,
              "its text could not be kept in " + std::string(pattern) + ": File exists");
    EXPECT_TRUE(std::filesystem::exists(pattern)) << "and leaves it";
    std::filesystem::remove_all(pattern);
}

}  // namespace
}  // namespace vigil
