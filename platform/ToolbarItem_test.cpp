#include "platform/ToolbarItem.hpp"

#include <gtest/gtest.h>

#include "tests/support/MemoryFiles.hpp"

namespace vigil {
namespace {

class Target : public InterfaceOwner {
  public:
    const InterfaceTable& interfaceTable() const override {
        static const InterfaceTable table = {
            {},
            {{"pressed:",
              [](InterfaceOwner& o, Object* s) { static_cast<Target&>(o).senders.push_back(s); }}},
            {}};
        return table;
    }
    std::vector<Object*> senders;
};

TEST(ToolbarItem, APressAsksTheTargetForTheActionWithTheItemAsSender) {
    const auto target = std::make_shared<Target>();
    ToolbarItem item("org.example.item");
    item.setTarget(target);
    item.setAction("pressed:");
    EXPECT_TRUE(item.press());
    EXPECT_TRUE(item.press());
    EXPECT_EQ(target->senders, (std::vector<Object*>{&item, &item}));
    EXPECT_EQ(item.itemIdentifier(), "org.example.item");
}

TEST(ToolbarItem, APressWithoutATargetOrWithAnActionThatItDoesNotHaveDoesNothing) {
    ToolbarItem item("i");
    item.setAction("pressed:");
    EXPECT_FALSE(item.press());
    auto target = std::make_shared<Target>();
    item.setTarget(target);
    item.setAction("released:");
    EXPECT_FALSE(item.press());
    EXPECT_TRUE(target->senders.empty());
}

TEST(ToolbarItem, DoesNotKeepItsTargetAlive) {
    auto target = std::make_shared<Target>();
    ToolbarItem item("i");
    item.setTarget(target);
    item.setAction("pressed:");
    target = nullptr;
    EXPECT_EQ(item.target(), nullptr);
    EXPECT_FALSE(item.press());
}

class ImageResource : public testing::Test {
  protected:
    std::string pathOf(const std::string& name) {
        const auto image = Image::imageForResource(files, bundle, name);
        return image ? image->path() : "";
    }

    MemoryFiles files;
    Bundle bundle{"org.example", "1.0", 1, "/bundle/Resources"};
};

TEST_F(ImageResource, IsFoundByItsNameWithTheFormThatScalesFirst) {
    files.setFolder("/bundle/Resources", {"a.png", "vigil.png", "vigil.svg"});
    EXPECT_EQ(pathOf("vigil"), "/bundle/Resources/vigil.svg");
    EXPECT_EQ(pathOf("a"), "/bundle/Resources/a.png");
    EXPECT_EQ(Image::imageForResource(files, bundle, "a")->name(), "a");
}

TEST_F(ImageResource, IsAbsentWhereTheFolderDoesNotHoldItOrCannotBeListed) {
    EXPECT_EQ(pathOf("vigil"), "");
    files.setFolder("/bundle/Resources", {"vigil.jpg", "Vigil.png", "vigil", "my-vigil.png"});
    EXPECT_EQ(pathOf("vigil"), "");
}

TEST_F(ImageResource, IsLookedUpAnewOnEveryCall) {
    files.setFolder("/bundle/Resources", {"vigil.png"});
    const auto first = Image::imageForResource(files, bundle, "vigil");
    EXPECT_NE(first, Image::imageForResource(files, bundle, "vigil"));
    files.setFolder("/bundle/Resources", {});
    EXPECT_EQ(Image::imageForResource(files, bundle, "vigil"), nullptr);
}

}  // namespace
}  // namespace vigil
