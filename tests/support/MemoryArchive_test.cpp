#include "tests/support/MemoryArchive.hpp"

#include <stdexcept>

#include <gtest/gtest.h>

#include "platform/ClassRegistry.hpp"
#include "tests/support/FakeAgent.hpp"
#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

/// Two named links and a number.
class Link : public Object {
  public:
    std::string className() const override { return "MemoryArchiveTestLink"; }
    void encodeWithCoder(KeyedEncoder& coder) const override {
        coder.encodeObject("left", left);
        coder.encodeObject("right", right);
        coder.encodeObject("agent", agent);
        coder.encodeNumber("number", number);
    }
    bool initWithCoder(KeyedDecoder& coder) override {
        left = coder.decodeObject<Link>("left");
        right = coder.decodeObject<Link>("right");
        agent = coder.decodeObject<QRVAgentPlugIn>("agent");
        number = coder.decodeNumber("number");
        return true;
    }
    std::shared_ptr<Link> left, right;
    std::shared_ptr<QRVAgentPlugIn> agent;
    std::optional<Number> number;
};

class MemoryArchiveTest : public testing::Test {
  protected:
    MemoryArchiveTest() { ClassRegistry::shared().add("MemoryArchiveTestLink", makeObject<Link>); }
    FakeWorld world;
    std::shared_ptr<FakeAgent> agent = std::make_shared<FakeAgent>(world);
};

TEST_F(MemoryArchiveTest, OneObjectWrittenTwiceComesBackAsOneFreshObject) {
    const auto root = std::make_shared<Link>();
    root->left = root->right = std::make_shared<Link>();
    root->left->number = Number(7);
    MemoryArchive archive(root);
    const auto read = archive.readAs<Link>(nullptr);
    ASSERT_TRUE(read && read->left);
    EXPECT_EQ(read->left, read->right);
    EXPECT_NE(read->left, root->left);
    EXPECT_EQ(read->left->number, Number(7));
}

TEST_F(MemoryArchiveTest, TheAgentComesBackAsTheOneGivenAtReading) {
    const auto root = std::make_shared<Link>();
    root->agent = agent;
    const auto other = std::make_shared<FakeAgent>(world);
    EXPECT_EQ(MemoryArchive(root).readAs<Link>(other)->agent, other);
}

TEST_F(MemoryArchiveTest, AnEntryOfAWrongKindIsRefusedWithItsPlace) {
    MemoryArchive archive(std::make_shared<Link>());
    archive.setRootEntry("number", Value("seven"));
    EXPECT_TRUE(archive.read(nullptr));
    EXPECT_EQ(archive.refusals(),
              std::vector<std::string>{"MemoryArchiveTestLink.number: expected a number"});
}

TEST_F(MemoryArchiveTest, KeysKeepTheOrderInWhichTheyWereWrittenAndAbsentOnesAreNotThere) {
    const auto root = std::make_shared<Link>();
    root->number = Number(1);
    root->left = std::make_shared<Link>();
    MemoryArchive archive(root);
    EXPECT_EQ(archive.rootKeys(), (std::vector<std::string>{"left", "number"}));
}

}  // namespace
}  // namespace vigil
