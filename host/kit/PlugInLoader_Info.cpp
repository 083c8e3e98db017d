#include "host/kit/PlugInLoader_Info.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <limits>
#include <optional>

#include <nlohmann/json.hpp>

#include "host_contract/Module.hpp"

namespace vigil {
namespace {

using Json = nlohmann::json;

const Json* memberOf(const Json& object, const char* name) {
    const auto found = object.find(name);
    return found == object.end() ? nullptr : &*found;
}

std::optional<std::string> textOf(const Json* value) {
    if (!value || !value->is_string() || value->get_ref<const std::string&>().empty()) return std::nullopt;
    return value->get<std::string>();
}

template <class Integer>
std::optional<Integer> integerOf(const Json* value) {
    if (!value || !value->is_number_integer()) return std::nullopt;
    // An unsigned number of the library is one that a signed one does not hold, or any that is not negative.
    if (value->is_number_unsigned() &&
        value->get<std::uint64_t>() > static_cast<std::uint64_t>(std::numeric_limits<Integer>::max()))
        return std::nullopt;
    const auto number = value->get<std::int64_t>();
    if (number < 0) return std::nullopt;
    return static_cast<Integer>(number);
}

std::optional<std::vector<std::string>> classesOf(const Json* value) {
    if (!value || !value->is_array() || value->empty()) return std::nullopt;
    std::vector<std::string> classes;
    for (const Json& item : *value) {
        auto name = textOf(&item);
        if (!name || std::find(classes.begin(), classes.end(), *name) != classes.end()) return std::nullopt;
        classes.push_back(std::move(*name));
    }
    return classes;
}

// The reason why the text cannot be understood, or what it says.
Result<PlugInInfo> infoFrom(const std::string& text) {
    Json json;
    try {
        json = Json::parse(text);
    } catch (const Json::parse_error& error) {
        return Error{"not JSON at byte " + std::to_string(error.byte == 0 ? 0 : error.byte - 1)};
    } catch (const Json::exception&) {
        return Error{"a number is too large"};
    }
    if (!json.is_object()) return Error{"expected an object"};
    PlugInInfo info;
    const auto identifier = textOf(memberOf(json, "identifier"));
    if (!identifier) return Error{"\"identifier\" has to be a text"};
    const auto version = textOf(memberOf(json, "CFBundleShortVersionString"));
    if (!version) return Error{"\"CFBundleShortVersionString\" has to be a text"};
    const auto bundleVersion = integerOf<long>(memberOf(json, "bundleVersion"));
    if (!bundleVersion) return Error{"\"bundleVersion\" has to be an integer from 0 on"};
    const auto abi = textOf(memberOf(json, "abi"));
    if (!abi) return Error{"\"abi\" has to be a text"};
    const Json* contract = memberOf(json, "contract");
    const auto major =
        contract && contract->is_object() ? integerOf<int>(memberOf(*contract, "major")) : std::nullopt;
    const auto minor =
        contract && contract->is_object() ? integerOf<int>(memberOf(*contract, "minor")) : std::nullopt;
    if (!major || !minor)
        return Error{"\"contract\" has to be an object with the integers \"major\" and \"minor\""};
    auto classes = classesOf(memberOf(json, "classes"));
    if (!classes) return Error{"\"classes\" has to be a list of different texts with at least one"};
    info.bundle = {*identifier, *version, *bundleVersion, {}};
    info.contractMajor = *major;
    info.contractMinor = *minor;
    info.abi = *abi;
    info.classes = std::move(*classes);
    return info;
}

}  // namespace

Result<PlugInInfo> readPlugInInfo(const std::string& folder) {
    const std::string path = folder + "/Info.json";
    std::ifstream file(path, std::ios::binary);
    if (!file) return Error{path + ": cannot be read: " + std::strerror(errno)};
    std::string text(kLongestInfoFile + 1, '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (file.bad() || file.gcount() == 0) return Error{path + ": cannot be read, or is empty"};
    text.resize(static_cast<std::size_t>(file.gcount()));
    if (text.size() > kLongestInfoFile)
        return Error{path + ": longer than " + std::to_string(kLongestInfoFile) + " bytes"};
    auto info = infoFrom(text);
    if (!info) return Error{path + ": " + info.error().message};
    info.value().bundle.resourcePath = folder + "/Resources";
    return info;
}

std::string plugInMismatch(int contractMajor, int contractMinor, const std::string& abi) {
    const auto version = [](int major, int minor) {
        return std::to_string(major) + "." + std::to_string(minor);
    };
    if (contractMajor != kContractMajor || contractMinor > kContractMinor)
        return "it needs the contract " + version(contractMajor, contractMinor) + ", and this host offers " +
               version(kContractMajor, kContractMinor);
    if (abi != VIGIL_ABI) return "it was built for \"" + abi + "\", and this host is \"" VIGIL_ABI "\"";
    return {};
}

}  // namespace vigil
