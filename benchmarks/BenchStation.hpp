#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/kit/LiveWorld.hpp"
#include "host_contract/QRVAgentPlugIn.hpp"

namespace vigil::bench {

class NoInterfaceFiles final : public InterfaceFiles {
  public:
    std::optional<std::vector<std::shared_ptr<Object>>> instantiate(const Bundle&, const std::string&,
                                                                    InterfaceOwner*) override {
        return std::nullopt;
    }
};

/// A station that says nothing by itself.
class BenchStation final : public QRVAgentPlugIn {
  public:
    explicit BenchStation(HostWorld& world) : m_world(world) {}

    std::string className() const override { return "BenchStation"; }
    HostWorld& world() override { return m_world; }
    std::shared_ptr<const Readings> properties() override { return Readings::make({}); }
    std::optional<SiteName> siteName() override { return std::nullopt; }
    std::shared_ptr<Object> runScript(const std::string&, const std::vector<std::string>&,
                                      const AgentProperty*, const std::optional<std::string>&, int,
                                      std::optional<Error>&) override {
        return nullptr;
    }

  private:
    HostWorld& m_world;
};

}  // namespace vigil::bench
