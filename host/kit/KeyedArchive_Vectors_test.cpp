#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "host/kit/KeyedArchive.hpp"
#include "tests/support/ArchiveSamples.hpp"

// Runs tests/vectors/archive; README.md there describes the form of a case.

namespace vigil {
namespace {

struct Case {
    std::string place;  ///< file and name
    std::string text;
    std::string verdict;
};

std::string expanded(std::string text) {
    if (!text.starts_with("@@")) return text;
    text.replace(0, 2, R"({"format":"vigil-archive","version":1,"root":{"$class":"Sample","$id":1,)");
    if (text.ends_with("@@")) text.replace(text.size() - 2, 2, "}}");
    return text;
}

std::vector<Case> casesOf(const std::filesystem::path& file) {
    std::vector<Case> cases;
    std::ifstream stream(file);
    bool inText = false;
    for (std::string line; std::getline(stream, line);) {
        if (line.starts_with("== ")) {
            cases.push_back({file.filename().string() + ": " + line.substr(3), "", ""});
            inText = true;
        } else if (inText && line.starts_with("=> ")) {
            Case& last = cases.back();
            if (!last.text.empty()) last.text.pop_back();
            last.text = expanded(last.text);
            last.verdict = line.substr(3);
            inText = false;
        } else if (inText) {
            cases.back().text += line + "\n";
        } else if (!line.empty() && !line.starts_with('#')) {
            ADD_FAILURE() << file << ": stray line \"" << line << '"';
        }
    }
    EXPECT_FALSE(inText) << file << ": the last case has no verdict";
    return cases;
}

void judge(const Case& one) {
    const auto station = std::make_shared<tests::ReferredStation>();
    const auto object = readArchive(one.text, station);
    if (!object) {
        EXPECT_EQ("error " + object.error().message, one.verdict);
        return;
    }
    const auto text = writeArchive(object.value(), station.get());
    ASSERT_TRUE(text) << text.error().message;
    const auto again = readArchive(text.value(), station);
    ASSERT_TRUE(again) << again.error().message;
    EXPECT_EQ(writeArchive(again.value(), station.get()).value(), text.value());
    if (one.verdict == "same")
        EXPECT_EQ(text.value(), one.text + "\n");
    else
        EXPECT_EQ("reads", one.verdict);
}

TEST(KeyedArchiveVectors, everyCaseIsJudgedAsItsFileSays) {
    tests::registerArchiveSamples();
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(VIGIL_SOURCE_DIR "/tests/vectors/archive")) {
        if (entry.path().extension() != ".vectors") continue;
        for (const Case& one : casesOf(entry.path())) {
            SCOPED_TRACE(one.place);
            judge(one);
            ++count;
        }
    }
    EXPECT_GT(count, 60u);
}

}  // namespace
}  // namespace vigil
