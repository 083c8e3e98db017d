#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <dlfcn.h>
#include <gmock/gmock.h>

#include "host/kit/LiveWorld.hpp"
#include "host/kit/PlugInLoader.hpp"
#include "host_contract/QRVPlugIn.hpp"
#include "platform/Image.hpp"
#include "platform/ToolbarItem.hpp"
#include "tests/bundle/Sounds.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeSiteWindowController.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

class BuiltBundle : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(m_module) << m_module.error().message; }

    std::shared_ptr<QRVPlugIn> plugIn(const char* name) {
        auto made = std::dynamic_pointer_cast<QRVPlugIn>(m_module.value().make(name));
        return made && made->initWithAgent(m_agent, m_site) ? made : nullptr;
    }
    std::string resources() const { return m_module.value().bundle()->resourcePath; }

    RecordingLog m_log;
    FakeInterfaceFiles m_interfaceFiles;
    LiveWorld m_world{m_log, m_interfaceFiles, "/scripts"};
    std::shared_ptr<FakeAgent> m_agent = std::make_shared<FakeAgent>(m_world);
    std::shared_ptr<FakeSiteWindowController> m_site = std::make_shared<FakeSiteWindowController>();
    Result<LoadedModule> m_module = loadPlugIn(VIGIL_BUNDLE);
};

/// The names that a dynamic linker sees in the library.
std::vector<std::string> exportedSymbols() {
    std::FILE* const listing =
        popen(VIGIL_NM " -D --defined-only --format=posix " VIGIL_BUNDLE "/VigilPlugIn.so", "r");
    std::vector<std::string> names;
    char line[1024];
    while (listing && std::fgets(line, sizeof line, listing))
        names.push_back(std::string(line).substr(0, std::string(line).find(' ')));
    EXPECT_EQ(listing ? pclose(listing) : -1, 0);
    return names;
}

TEST_F(BuiltBundle, ItsLibraryShowsItsEntryAndItsVersionAndNothingElse) {
    EXPECT_THAT(exportedSymbols(), UnorderedElementsAre("vigilPlugInModule", "VigilPlugInVersionString",
                                                        "VigilPlugInVersionNumber"));
}

TEST_F(BuiltBundle, TheVersionSymbolsHoldTheirTextAndNumber) {
    void* const library = dlopen(VIGIL_BUNDLE "/VigilPlugIn.so", RTLD_NOW | RTLD_NOLOAD);
    ASSERT_TRUE(library) << "a module stays loaded";
    const auto* text = static_cast<const char*>(dlsym(library, "VigilPlugInVersionString"));
    const auto* number = static_cast<const double*>(dlsym(library, "VigilPlugInVersionNumber"));
    ASSERT_TRUE(text && number);
    EXPECT_STREQ(text, "@(#)PROGRAM:VigilPlugIn  PROJECT:VigilPlugIn-10\n");
    EXPECT_EQ(*number, 10.0);
    dlclose(library);
}

TEST_F(BuiltBundle, BothItsPlugInsComeOutOfIt) {
    EXPECT_THAT(m_module.value().classes(),
                testing::IsSupersetOf({"QRVVigilPlugIn", "QRVVigilToolbarPlugIn"}));
    EXPECT_EQ(m_module.value().bundleVersion(), 10);
    ASSERT_TRUE(plugIn("QRVVigilPlugIn"));
    ASSERT_TRUE(plugIn("QRVVigilToolbarPlugIn"));
    EXPECT_EQ(plugIn("QRVVigilToolbarPlugIn")->bundleIdentifier(), m_module.value().identifier());
}

TEST_F(BuiltBundle, TheDescriptionTellsTheBundlesOwnVersions) {
    std::string version;
    std::ifstream(VIGIL_SOURCE_DIR "/VERSION") >> version;
    ASSERT_FALSE(version.empty());
    for (const char* name : {"QRVVigilPlugIn", "QRVVigilToolbarPlugIn"})
        EXPECT_THAT(plugIn(name)->htmlDescription(),
                    HasSubstr("<tr><th colspan=2 align=center>Vigil Plug-In - Version " + version +
                              " (10)</th></tr>"));
}

TEST_F(BuiltBundle, TheIconIsTheBundlesImage) {
    for (const char* name : {"QRVVigilPlugIn", "QRVVigilToolbarPlugIn"}) {
        const auto icon = plugIn(name)->icon();
        ASSERT_TRUE(icon);
        EXPECT_EQ(icon->path(), resources() + "/vigil.svg");
        EXPECT_EQ(bytesOf(icon->path()), bytesOf(VIGIL_SOURCE_DIR "/resources/images/vigil.svg"));
    }
    EXPECT_TRUE(bytesOf(resources() + "/vigil.svg").starts_with("<svg "));
    EXPECT_TRUE(bytesOf(resources() + "/vigil.png").starts_with("\x89PNG\r\n"));
    EXPECT_LT(bytesOf(resources() + "/vigil.png").size(), 60000u);
}

TEST_F(BuiltBundle, TwoPressesOfItsItemAddTwoMonitorsUnderTitlesOfTheirOwn) {
    const auto toolbar = plugIn("QRVVigilToolbarPlugIn");
    const auto item = toolbar->toolbarItem();
    ASSERT_TRUE(item);
    EXPECT_EQ(item->itemIdentifier(), "org.vigil.VigilPlugIn");
    EXPECT_TRUE(item->press());
    EXPECT_TRUE(item->press());
    ASSERT_EQ(m_site->plugIns.size(), 2u);
    for (const auto& added : m_site->plugIns)
        EXPECT_EQ(added->className(), "QRVVigilPlugIn");
    EXPECT_THAT(m_site->titles(), ElementsAre("Vigil", "Vigil 2"));
}

TEST_F(BuiltBundle, ItsResourcesAreFiveSoundsOfBothKindsTheImageAndTheInterfaceFiles) {
    std::vector<std::string> sounds;
    for (const std::string& name :
         m_world.files().contentsOfDirectory(resources()).value_or(std::vector<std::string>{}))
        if (name.ends_with(".wav") || name.ends_with(".mp3")) sounds.push_back(name);
    EXPECT_THAT(sounds, UnorderedElementsAre("bell.wav", "chime.wav", "drop.wav", "knock.wav", "dawn.mp3"));
    for (const char* name : {"TextField.ui", "PopUpButton.ui", "vigil.svg", "vigil.png"})
        EXPECT_TRUE(std::filesystem::is_regular_file(resources() + "/" + name)) << name;
}

}  // namespace
}  // namespace vigil
