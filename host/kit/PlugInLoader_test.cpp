#include "host/kit/PlugInLoader.hpp"

#include <filesystem>
#include <fstream>
#include <sstream>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "host/kit/PlugInLoader_Info.hpp"
#include "host_contract/Module.hpp"
#include "host_contract/QRVPlugIn.hpp"
#include "platform/ClassRegistry.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

namespace fs = std::filesystem;

std::string fixture(const std::string& name) {
    return std::string(VIGIL_BINARY_DIR "/tests/fixtures/vigil/") + name;
}

/// What the loader says to a bundle: the sentence without the folder, or "loaded".
std::string verdict(const std::string& folder) {
    const auto module = loadPlugIn(folder);
    if (module) return "loaded";
    const std::string& message = module.error().message;
    const std::string place = fs::weakly_canonical(folder).string() + "/";
    return message.starts_with(place) ? message.substr(place.size()) : message;
}

TEST(PlugInLoader, aGoodBundleGivesItsIdentityAndItsClasses) {
    const auto module = loadPlugIn(fixture("Good"));
    ASSERT_TRUE(module) << module.error().message;
    const LoadedModule& good = module.value();
    EXPECT_EQ(good.identifier(), "org.example.Good");
    EXPECT_EQ(good.marketingVersion(), "1.2");
    EXPECT_EQ(good.bundleVersion(), 3);
    EXPECT_EQ(good.classes(), (std::vector<std::string>{"GoodPlugIn", "GoodNote"}));
    EXPECT_EQ(good.contents().contractMajor, kContractMajor);
    EXPECT_EQ(good.contents().abi, VIGIL_ABI);
    EXPECT_EQ(good.bundle()->resourcePath, fs::canonical(fixture("Good")).string() + "/Resources");
    EXPECT_TRUE(fs::is_regular_file(good.bundle()->resourcePath + "/note.txt"));
}

TEST(PlugInLoader, itsPlugInsAreMadeByNameAndKnowTheirBundle) {
    const auto module = loadPlugIn(fixture("Good"));
    ASSERT_TRUE(module) << module.error().message;
    const auto plugIn = std::dynamic_pointer_cast<QRVPlugIn>(module.value().make("GoodPlugIn"));
    ASSERT_TRUE(plugIn);
    FakeWorld world;
    EXPECT_TRUE(plugIn->initWithAgent(std::make_shared<FakeAgent>(world), nullptr));
    EXPECT_EQ(plugIn->bundleIdentifier(), "org.example.Good");
    EXPECT_EQ(plugIn->bundleVersion(), 3);
    EXPECT_NE(module.value().make("GoodNote"), module.value().make("GoodNote"));
    EXPECT_TRUE(ClassRegistry::shared().contains("GoodNote"));
    EXPECT_FALSE(module.value().make("TextField")) << "a class of the host is none of the module's";
    EXPECT_FALSE(module.value().make("Nobody"));
}

TEST(PlugInLoader, theSameFolderGivesTheSameModule) {
    const auto first = loadPlugIn(fixture("Good"));
    const auto second = loadPlugIn(fixture("Good") + "/../Good/");
    ASSERT_TRUE(first && second);
    EXPECT_EQ(first.value(), second.value());
}

TEST(PlugInLoader, aBundleShowsItsEntryAndItsNamedSymbolsAlone) {
    ASSERT_TRUE(loadPlugIn(fixture("Good")));
    void* const library = dlopen((fixture("Good") + "/Good.so").c_str(), RTLD_NOW | RTLD_NOLOAD);
    ASSERT_TRUE(library) << "a module stays loaded";
    EXPECT_TRUE(dlsym(library, kModuleEntrySymbol));
    EXPECT_TRUE(dlsym(library, "GoodVersionNumber"));
    EXPECT_FALSE(dlsym(library, "GoodHiddenNumber"));
    EXPECT_FALSE(dlsym(RTLD_DEFAULT, "GoodVersionNumber")) << "modules do not see each other's symbols";
    dlclose(library);
}

TEST(PlugInLoader, aFolderThatIsNotThereIsRefused) {
    EXPECT_EQ(verdict(fixture("Nowhere")),
              fixture("Nowhere") + ": cannot be read: No such file or directory");
    EXPECT_FALSE(loadPlugIn(""));
}

TEST(PlugInLoader, eachMistakeOfACodeIsRefusedWithItsOwnSentence) {
    EXPECT_EQ(verdict(fixture("NoEntry")), "NoEntry.so: it has no entry \"vigilPlugInModule\"");
    EXPECT_EQ(verdict(fixture("ThrowingEntry")), "ThrowingEntry.so: its entry threw: no licence today");
    EXPECT_EQ(verdict(fixture("NoTable")), "NoTable.so: its entry gave no table");
    EXPECT_EQ(verdict(fixture("OtherClasses")),
              "OtherClasses.so: its classes are HeldThing, HeldToo; Info.json says SaidThing, SaidToo");
    EXPECT_EQ(verdict(fixture("HostClass")),
              "HostClass.so: its class TextField is taken already by the host");
    EXPECT_EQ(verdict(fixture("NewerContract")),
              "NewerContract.so: it needs the contract 1.1, and this host offers 1.0");
    EXPECT_EQ(verdict(fixture("OtherMajor")),
              "OtherMajor.so: it needs the contract 2.0, and this host offers 1.0");
    EXPECT_EQ(verdict(fixture("OtherAbi")),
              "OtherAbi.so: it was built for \"some other compiler\", and this host is \"" VIGIL_ABI "\"");
    EXPECT_EQ(verdict(fixture("NoMaker")), "NoMaker.so: entry 0 of its table has no name or no maker");
    const std::string unresolved = verdict(fixture("Unresolved"));
    EXPECT_TRUE(unresolved.starts_with("Unresolved.so: cannot be loaded: ")) << unresolved;
    EXPECT_NE(unresolved.find("aTableThatNobodyHas"), std::string::npos) << unresolved;
}

TEST(PlugInLoader, aClassBelongsToTheModuleThatBroughtItFirst) {
    ASSERT_TRUE(loadPlugIn(fixture("Good")));
    EXPECT_EQ(verdict(fixture("TakenClass")),
              "TakenClass.so: its class GoodNote is taken already by org.example.Good");
    EXPECT_EQ(ClassRegistry::shared().bundleForClass("GoodNote")->identifier, "org.example.Good");
    EXPECT_FALSE(ClassRegistry::shared().contains("HeldThing")) << "a refused module brings no class";
}

/// A bundle folder of the test's own, beside the others, with an Info.json that the test writes.
class PlugInLoaderInfoTest : public testing::Test {
  protected:
    void SetUp() override {
        m_folder = fs::path(testing::TempDir()) /
                   (std::string(testing::UnitTest::GetInstance()->current_test_info()->name()) + ".bundle");
        fs::remove_all(m_folder);
        fs::create_directories(m_folder);
        m_folder = fs::canonical(m_folder);
    }
    void TearDown() override { fs::remove_all(m_folder); }

    std::string verdictOn(const std::string& info) {
        std::ofstream(m_folder / "Info.json") << info;
        return verdict(m_folder.string());
    }

    /// The Info.json of a good bundle with one piece of its text replaced.
    static std::string goodInfo(const std::string& old = "", const std::string& fresh = "") {
        std::stringstream text;
        text << std::ifstream(fixture("Good") + "/Info.json").rdbuf();
        std::string info = text.str();
        const std::size_t place = info.find(old);
        EXPECT_NE(place, std::string::npos) << old << " is not in " << info;
        if (place != std::string::npos) info.replace(place, old.size(), fresh);
        return info;
    }

    fs::path m_folder;
};

TEST_F(PlugInLoaderInfoTest, withoutInfoOrLibraryItIsRefused) {
    EXPECT_EQ(verdict(m_folder.string()), "Info.json: cannot be read: No such file or directory");
    const std::string library = m_folder.filename().string() + ".so";
    EXPECT_EQ(verdictOn(goodInfo()), library + ": there is no such library");
    fs::create_directory(m_folder / library);
    EXPECT_EQ(verdict(m_folder.string()), library + ": there is no such library");
    fs::remove(m_folder / library);
    std::ofstream(m_folder / library) << "no code";
    EXPECT_TRUE(verdict(m_folder.string()).starts_with(library + ": cannot be loaded: "));
}

TEST_F(PlugInLoaderInfoTest, infoThatCannotBeUnderstoodIsRefused) {
    EXPECT_EQ(verdictOn(""), "Info.json: cannot be read, or is empty");
    EXPECT_EQ(verdictOn("{\"identifier\" 1}"), "Info.json: not JSON at byte 14");
    EXPECT_EQ(verdictOn("{\"a\": 1e999}"), "Info.json: a number is too large");
    EXPECT_EQ(verdictOn("[]"), "Info.json: expected an object");
    EXPECT_EQ(verdictOn(goodInfo("\"org.example.Good\"", "7")), "Info.json: \"identifier\" has to be a text");
    EXPECT_EQ(verdictOn(goodInfo("\"1.2\"", "\"\"")),
              "Info.json: \"CFBundleShortVersionString\" has to be a text");
    const std::string integer = "Info.json: \"bundleVersion\" has to be an integer from 0 on";
    for (const char* wrong : {"-1", "3.0", "\"3\"", "null", "9223372036854775808"})
        EXPECT_EQ(verdictOn(goodInfo("\"bundleVersion\": 3", std::string("\"bundleVersion\": ") + wrong)),
                  integer);
    EXPECT_EQ(verdictOn(goodInfo("\"abi\"", "\"abie\"")), "Info.json: \"abi\" has to be a text");
    const std::string contract =
        "Info.json: \"contract\" has to be an object with the integers \"major\" and \"minor\"";
    EXPECT_EQ(verdictOn(goodInfo("\"minor\": 0", "\"minor\": 2147483648")), contract);
    EXPECT_EQ(verdictOn(goodInfo("{\"major\": 1, \"minor\": 0}", "1")), contract);
    const std::string classes =
        "Info.json: \"classes\" has to be a list of different texts with at least one";
    for (const char* wrong : {"[]", "[1]", "[\"A\", \"A\"]", "\"A\"", "[\"\"]"})
        EXPECT_EQ(verdictOn(goodInfo("[\"GoodPlugIn\", \"GoodNote\"]", wrong)), classes);
    EXPECT_EQ(verdictOn(std::string(kLongestInfoFile, ' ') + "{}"), "Info.json: longer than 1048576 bytes");
}

TEST_F(PlugInLoaderInfoTest, anotherContractOrAbiIsRefusedBeforeTheCodeIsLookedAt) {
    EXPECT_EQ(verdictOn(goodInfo("\"major\": 1", "\"major\": 2")),
              "Info.json: it needs the contract 2.0, and this host offers 1.0");
    EXPECT_EQ(verdictOn(goodInfo("\"major\": 1", "\"major\": 0")),
              "Info.json: it needs the contract 0.0, and this host offers 1.0");
    EXPECT_EQ(verdictOn(goodInfo("\"minor\": 0", "\"minor\": 1")),
              "Info.json: it needs the contract 1.1, and this host offers 1.0");
    EXPECT_EQ(verdictOn(goodInfo(VIGIL_ABI, "other")),
              "Info.json: it was built for \"other\", and this host is \"" VIGIL_ABI "\"");
}

TEST_F(PlugInLoaderInfoTest, membersThatNobodyKnowsArePassedOver) {
    std::ofstream(m_folder / "Info.json") << goodInfo("\"classes\"", "\"colour\": [1], \"classes\"");
    EXPECT_TRUE(readPlugInInfo(m_folder.string()));
}

}  // namespace
}  // namespace vigil
