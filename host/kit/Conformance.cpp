#include "host/kit/Conformance.hpp"

#include "host/kit/Conformance_Life.hpp"
#include "host/kit/Conformance_Report.hpp"
#include "host/kit/ExceptionText.hpp"
#include "host/kit/KitClasses.hpp"
#include "host/kit/PlugInLoader.hpp"
#include "host_contract/QRVPlugIn.hpp"

namespace vigil {

void ConformanceReport::check(std::string rule, const std::function<std::string()>& judge) {
    std::string reason;
    try {
        reason = judge();
    } catch (...) {
        reason = "it threw: " + exceptionText(std::current_exception());
    }
    using Outcome = ConformanceFinding::Outcome;
    const Outcome outcome = reason.empty() ? Outcome::Kept : Outcome::Broken;
    m_findings.push_back({m_subject, std::move(rule), outcome, std::move(reason)});
}

void ConformanceReport::skip(std::string rule, std::string reason) {
    m_findings.push_back(
        {m_subject, std::move(rule), ConformanceFinding::Outcome::NotApplicable, std::move(reason)});
}

namespace {

void checkClass(const LoadedModule& module, const std::string& className,
                std::vector<ConformanceFinding>& findings) {
    ConformanceReport report(findings, className);
    bool isPlugIn = false;
    report.check("a fresh object comes each time, and says its class", [&]() -> std::string {
        const auto one = module.make(className);
        const auto other = module.make(className);
        if (!one || !other) return "nothing comes";
        if (one == other) return "the same object comes twice";
        if (one->className() != className) return "it says that it is a " + one->className();
        isPlugIn = std::dynamic_pointer_cast<QRVPlugIn>(one) != nullptr;
        return {};
    });
    if (isPlugIn) checkLife(module, className, report);
}

}  // namespace

std::vector<ConformanceFinding> checkModule(const std::string& bundleFolder) {
    registerKitClasses();
    std::vector<ConformanceFinding> findings;
    ConformanceReport report(findings, "bundle");
    std::optional<LoadedModule> module;
    report.check("Info.json and the library fit together and this host", [&]() -> std::string {
        auto loaded = loadPlugIn(bundleFolder);
        if (!loaded) return loaded.error().message;
        module = loaded.value();
        return {};
    });
    if (module)
        for (const std::string& className : module->classes())
            checkClass(*module, className, findings);
    return findings;
}

}  // namespace vigil
