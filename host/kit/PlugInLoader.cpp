#include "host/kit/PlugInLoader.hpp"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>

#include <dlfcn.h>

#include "host/kit/KitClasses.hpp"
#include "host/kit/PlugInLoader_Info.hpp"
#include "host_contract/Module.hpp"
#include "platform/ClassRegistry.hpp"

namespace vigil {
namespace {

struct Modules {
    std::mutex mutex;
    std::map<std::string, LoadedModule> byFolder;
};

Modules& modules() {
    static Modules all;
    return all;
}

std::string listed(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text.empty() ? "none" : text;
}

// The table that the library's entry gives.
Result<const ModuleTable*> tableOf(const std::string& library) {
    // Local, so that two modules never bind to each other's symbols; never closed, because objects of its
    // classes may live to the end of the process.
    void* const handle = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (!handle) {
        const char* const reason = dlerror();
        return Error{std::string("cannot be loaded: ") + (reason ? reason : "no reason given")};
    }
    void* const symbol = dlsym(handle, kModuleEntrySymbol);
    if (!symbol) return Error{std::string("it has no entry \"") + kModuleEntrySymbol + '"'};
    const ModuleTable* table = nullptr;
    try {
        table = reinterpret_cast<ModuleEntry>(symbol)();
    } catch (const std::exception& exception) {
        return Error{std::string("its entry threw: ") + exception.what()};
    } catch (...) {
        return Error{"its entry threw"};
    }
    if (!table) return Error{"its entry gave no table"};
    return table;
}

// What in the table contradicts Info.json, the host or the table itself; empty when nothing does.
std::string complaintAbout(const ModuleTable& table, const PlugInInfo& info) {
    // Of a table of another contract only the two numbers can be trusted.
    if (auto mismatch = plugInMismatch(table.contractMajor, table.contractMinor, VIGIL_ABI);
        !mismatch.empty())
        return mismatch;
    const std::string abi = table.abi ? table.abi : "";
    if (auto mismatch = plugInMismatch(table.contractMajor, table.contractMinor, abi); !mismatch.empty())
        return mismatch;
    if (table.contractMajor != info.contractMajor || table.contractMinor != info.contractMinor)
        return "it was built with another contract than Info.json says";
    std::vector<std::string> held;
    for (std::size_t i = 0; i < table.classCount; ++i) {
        if (!table.classes || !table.classes[i].name || !table.classes[i].make)
            return "entry " + std::to_string(i) + " of its table has no name or no maker";
        held.emplace_back(table.classes[i].name);
    }
    std::vector<std::string> said = info.classes;
    std::sort(held.begin(), held.end());
    std::sort(said.begin(), said.end());
    if (held != said) return "its classes are " + listed(held) + "; Info.json says " + listed(said);
    return {};
}

std::string registerClasses(const ModuleTable& table, const std::shared_ptr<const Bundle>& bundle) {
    registerKitClasses();  // so that no module takes the name of one of the host's own classes
    ClassRegistry& registry = ClassRegistry::shared();
    for (std::size_t i = 0; i < table.classCount; ++i) {
        const std::string name = table.classes[i].name;
        if (!registry.contains(name)) continue;
        const auto owner = registry.bundleForClass(name);
        return "its class " + name + " is taken already by " + (owner ? owner->identifier : "the host");
    }
    for (std::size_t i = 0; i < table.classCount; ++i)
        registry.add(table.classes[i].name, table.classes[i].make, bundle);
    return {};
}

Result<LoadedModule> loadFrom(const std::filesystem::path& folder) {
    auto info = readPlugInInfo(folder.string());
    if (!info) return info.error();
    const PlugInInfo& said = info.value();
    if (auto mismatch = plugInMismatch(said.contractMajor, said.contractMinor, said.abi); !mismatch.empty())
        return Error{(folder / "Info.json").string() + ": " + mismatch};
    const std::string library = (folder / folder.filename()).string() + ".so";
    std::error_code unknown;
    if (!std::filesystem::is_regular_file(library, unknown))
        return Error{library + ": there is no such library"};
    const auto table = tableOf(library);
    if (!table) return Error{library + ": " + table.error().message};
    if (auto complaint = complaintAbout(*table.value(), said); !complaint.empty())
        return Error{library + ": " + complaint};
    const auto bundle = std::make_shared<const Bundle>(said.bundle);
    if (auto complaint = registerClasses(*table.value(), bundle); !complaint.empty())
        return Error{library + ": " + complaint};
    return LoadedModule(std::make_shared<const LoadedModule::Contents>(LoadedModule::Contents{
        folder.string(), bundle, said.contractMajor, said.contractMinor, said.abi, said.classes}));
}

}  // namespace

std::shared_ptr<Object> LoadedModule::make(std::string_view className) const {
    const auto& all = classes();
    if (std::find(all.begin(), all.end(), className) == all.end()) return nullptr;
    return ClassRegistry::shared().make(className);
}

Result<LoadedModule> loadPlugIn(const std::string& bundleFolder) {
    std::error_code failure;
    const auto folder = std::filesystem::canonical(bundleFolder, failure);
    if (failure) return Error{bundleFolder + ": cannot be read: " + failure.message()};
    Modules& all = modules();
    const std::lock_guard lock(all.mutex);
    if (const auto found = all.byFolder.find(folder.string()); found != all.byFolder.end())
        return found->second;
    auto module = loadFrom(folder);
    if (module) all.byFolder.emplace(folder.string(), module.value());
    return module;
}

}  // namespace vigil
