#pragma once

#include <array>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "host_contract/QRVAgentPlugIn.hpp"
#include "platform/ClassRegistry.hpp"
#include "platform/KeyedCoder.hpp"

// Classes for tests of keyed archives, and a station that archives can refer to.

namespace vigil::tests {

/// Keeps whatever stands under its keys, of any kind; the keys are as odd as keys can be.
class Sample : public Object {
  public:
    static constexpr std::array<std::string_view, 9> kKeys{
        "a", "b", "children", "$dollar", "$$two", "", "key with \"quotes\"\n", "Überhöhe", "\xFF\xC0"};

    std::array<Value, kKeys.size()> entries;

    std::string className() const override { return "Sample"; }
    void encodeWithCoder(KeyedEncoder& coder) const override {
        for (std::size_t i = 0; i < kKeys.size(); ++i)
            coder.encode(kKeys[i], entries[i]);
    }
    bool initWithCoder(KeyedDecoder& coder) override {
        for (std::size_t i = 0; i < kKeys.size(); ++i)
            entries[i] = coder.decode(kKeys[i]);
        return true;
    }
};

/// Asks for one entry of each kind.
class Picky : public Object {
  public:
    std::string className() const override { return "Picky"; }
    bool initWithCoder(KeyedDecoder& coder) override {
        coder.decodeFlag("flag");
        coder.decodeText("text");
        coder.decodeNumber("number");
        coder.decodeDate("date");
        coder.decodeList("list");
        coder.decodeDictionary("dictionary");
        coder.decodeObject<Sample>("sample");
        return true;
    }
};

/// Never comes to be.
class Refusing : public Object {
  public:
    std::string className() const override { return "Refusing"; }
    bool initWithCoder(KeyedDecoder&) override { return false; }
};

/// Throws from its coding.
class Throwing : public Object {
  public:
    std::string className() const override { return "Throwing"; }
    bool initWithCoder(KeyedDecoder&) override { throw std::runtime_error("no thanks"); }
    void encodeWithCoder(KeyedEncoder&) const override { throw std::runtime_error("no thanks"); }
};

inline std::shared_ptr<Object> makeUnmakable() {
    throw std::runtime_error("cannot be made");
}

inline void registerArchiveSamples() {
    ClassRegistry& registry = ClassRegistry::shared();
    registry.add("Sample", &makeObject<Sample>);
    registry.add("Picky", &makeObject<Picky>);
    registry.add("Refusing", &makeObject<Refusing>);
    registry.add("Throwing", &makeObject<Throwing>);
    registry.add("Unmakable", &makeUnmakable);
}

/// A station that is only ever referred to.
class ReferredStation : public QRVAgentPlugIn {
  public:
    std::string className() const override { return "ReferredStation"; }
    HostWorld& world() override { throw std::logic_error("this station has no world"); }
    std::shared_ptr<const Readings> properties() override { return nullptr; }
    std::optional<SiteName> siteName() override { return std::nullopt; }
    std::shared_ptr<Object> runScript(const std::string&, const std::vector<std::string>&,
                                      const AgentProperty*, const std::optional<std::string>&, int,
                                      std::optional<Error>&) override {
        return nullptr;
    }
};

}  // namespace vigil::tests
