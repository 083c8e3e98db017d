#include <gtest/gtest.h>

#include "host/kit/KeyedArchive.hpp"
#include "platform/ClassRegistry.hpp"
#include "platform/Controls.hpp"
#include "platform/KeyedCoder.hpp"

namespace vigil {
namespace {

constexpr int kFields = 100;

/// Makes what it writes while it writes, so that each object has gone before the next is made, which may then
/// have its address.
class Passing : public Object {
  public:
    std::vector<std::string> read;

    std::string className() const override { return "Passing"; }
    void encodeWithCoder(KeyedEncoder& coder) const override {
        for (int i = 0; i < kFields; ++i)
            coder.encodeObject(std::to_string(i), std::make_shared<TextField>(std::to_string(i)));
    }
    bool initWithCoder(KeyedDecoder& coder) override {
        for (int i = 0; i < kFields; ++i)
            if (const auto field = coder.decodeObject<TextField>(std::to_string(i)))
                read.push_back(field->stringValue());
        return true;
    }
};

TEST(KeyedArchiveSharing, objectsMadeOneAfterAnotherAreDifferentAlsoAtOneAddress) {
    ClassRegistry::shared().add("Passing", &makeObject<Passing>);
    const auto text = writeArchive(std::make_shared<Passing>(), nullptr);
    ASSERT_TRUE(text) << text.error().message;
    EXPECT_EQ(text.value().find("$ref"), std::string::npos);
    const auto back = readArchive(text.value(), nullptr);
    ASSERT_TRUE(back) << back.error().message;
    std::vector<std::string> expected;
    for (int i = 0; i < kFields; ++i)
        expected.push_back(std::to_string(i));
    EXPECT_EQ(std::dynamic_pointer_cast<Passing>(back.value())->read, expected);
}

}  // namespace
}  // namespace vigil
