// A keyed archive: refused with a reason, or read; what has been read can be written, and what was written
// reads and writes as the same bytes. The classes are the kit's, the module's and the samples of the
// archive's tests.

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/Law.hpp"
#include "host/kit/KeyedArchive.hpp"
#include "host/kit/KitClasses.hpp"
#include "host/kit/ReplayWorld.hpp"
#include "plugins/VigilPlugIn/VigilPlugIn/ModuleClasses.hpp"
#include "tests/support/ArchiveSamples.hpp"

namespace vigil::fuzz {
namespace {

class NoLog final : public QRVLog {
    void logLevel(int, std::string_view) override {}
};

class NoInterfaceFiles final : public InterfaceFiles {
    std::optional<std::vector<std::shared_ptr<Object>>> instantiate(const Bundle&, const std::string&,
                                                                    InterfaceOwner*) override {
        return std::nullopt;
    }
};

/// The station that archives refer to, so that a whole monitor can come to be.
class Station final : public tests::ReferredStation {
  public:
    HostWorld& world() override { return m_world; }

  private:
    NoLog m_log;
    NoInterfaceFiles m_interfaceFiles;
    ReplayWorld m_world{m_log, m_interfaceFiles, ""};
};

bool registerAll() {
    registerKitClasses();
    for (const ModuleClass& one : moduleClasses())
        ClassRegistry::shared().add(one.name, one.make);
    ClassRegistry::shared().add("Sample", &makeObject<tests::Sample>);
    ClassRegistry::shared().add("Picky", &makeObject<tests::Picky>);
    return true;
}

}  // namespace
}  // namespace vigil::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vigil;
    static const bool registered = fuzz::registerAll();
    fuzz::require(registered, "the classes are known");
    const auto station = std::make_shared<fuzz::Station>();
    const World::Scope scope(station->world());
    const auto read = readArchive(fuzz::textOf(data, size), station);
    if (!read) {
        fuzz::require(!read.error().message.empty(), "a refusal says why");
        return 0;
    }
    const auto written = writeArchive(read.value(), station.get());
    fuzz::require(static_cast<bool>(written), "what has been read can be written");
    const auto again = readArchive(written.value(), station);
    fuzz::require(static_cast<bool>(again), "what was written can be read");
    const auto rewritten = writeArchive(again.value(), station.get());
    fuzz::require(rewritten && rewritten.value() == written.value(), "an archive writes as itself");
    return 0;
}
