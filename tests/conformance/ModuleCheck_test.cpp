#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/kit/Conformance.hpp"

namespace vigil {
namespace {

using Outcome = ConformanceFinding::Outcome;

std::vector<std::string> broken(const std::string& bundle) {
    std::vector<std::string> rules;
    for (const auto& finding : checkModule(bundle))
        if (finding.outcome == Outcome::Broken)
            rules.push_back(finding.subject + ": " + finding.rule + " (" + finding.reason + ")");
    return rules;
}

TEST(ModuleCheck, theMonitorsModuleKeepsTheContract) {
    const auto findings = checkModule(VIGIL_BINARY_DIR "/lib/vigil/VigilPlugIn");
    EXPECT_GE(findings.size(), 20u);
    EXPECT_EQ(broken(VIGIL_BINARY_DIR "/lib/vigil/VigilPlugIn"), std::vector<std::string>{});
}

TEST(ModuleCheck, theProbeItselfKeepsTheContract) {
    EXPECT_EQ(broken(VIGIL_BINARY_DIR "/lib/vigil/ContractProbe"), std::vector<std::string>{});
}

TEST(ModuleCheck, aBundleThatCannotBeLoadedIsOneFinding) {
    const auto findings = checkModule(VIGIL_BINARY_DIR "/tests/fixtures/vigil/Nobody");
    ASSERT_EQ(findings.size(), 1u);
    EXPECT_EQ(findings[0].outcome, Outcome::Broken);
    EXPECT_NE(findings[0].reason.find("Nobody"), std::string::npos) << findings[0].reason;
}

TEST(ModuleCheck, eachCarelessPlugInIsFoundOut) {
    EXPECT_EQ(
        broken(VIGIL_BINARY_DIR "/tests/fixtures/vigil/Careless"),
        (std::vector<std::string>{
            "Eavesdropper: it hears nothing once it is stopped (it still observes its station)",
            "Forgetful: it is written and read back while it runs (what was read back is written "
            "differently)",
            "Touchy: it takes any batch of readings (it threw: not a number)",
            "Misnamed: a fresh object comes each time, and says its class (it says that it is a Somebody)",
        }));
}

}  // namespace
}  // namespace vigil
