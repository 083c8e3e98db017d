#include "host/kit/Conformance_Life.hpp"

#include "host/kit/ExceptionText.hpp"
#include "host/kit/HostedPlugIn.hpp"
#include "host/kit/InterfaceFile.hpp"
#include "host/kit/KeyedArchive.hpp"
#include "host/kit/RecordedScripts.hpp"
#include "host/kit/ReplayWorld.hpp"
#include "host/kit/StandardLog.hpp"
#include "host/kit/Station.hpp"
#include "host_contract/QRVKit.hpp"
#include "platform/InterfaceOwner.hpp"

namespace vigil {
namespace {

const Date kStart(794826000.0);
constexpr double kStep = 300;

/// A site of one station in a world of its own.
struct Site {
    StandardLog log{stderr, 0, [] { return Date(); }};
    InterfaceFile files;
    ReplayWorld world{log, files, ""};
    RecordedScripts scripts{world};
    std::shared_ptr<Station> station = std::make_shared<Station>(world, "Conformance", scripts);

    std::size_t observers() {
        return world.notificationCenter().observerCount(kAppRealTimeDataNotification, station);
    }
};

std::string obstacleText(const std::shared_ptr<Object>& obstacle) {
    return obstacle ? "an obstacle: " + obstacle->description() : std::string();
}

/// The archive, read back and written again; a reason when the two texts differ.
std::string archiveTwice(Site& site, const std::shared_ptr<QRVPlugIn>& plugIn) {
    const World::Scope scope(site.world);
    const auto first = writeArchive(plugIn, site.station.get());
    if (!first) return "it cannot be written: " + first.error().message;
    const auto back = readArchive(first.value(), site.station);
    if (!back) return "it cannot be read: " + back.error().message;
    const auto second = writeArchive(back.value(), site.station.get());
    if (!second) return "what was read cannot be written: " + second.error().message;
    return first.value() == second.value() ? "" : "what was read back is written differently";
}

std::string announceAll(Site& site) {
    Date time = kStart;
    for (const auto& batch : oddBatches(time)) {
        time = time.plus(kStep);
        site.world.turnTo(time);
        const auto thrown = site.station->announce(batch);
        if (!thrown.empty()) return "it threw: " + exceptionText(thrown.front().what);
    }
    return {};
}

std::string answerTable(InterfaceOwner& owner) {
    for (const InterfaceProperty& property : owner.interfaceTable().properties) {
        const Value value = property.get(owner);
        if (property.set && !property.set(owner, value))
            return "\"" + std::string(property.name) + "\" refuses the value that it gave";
    }
    return {};
}

std::string describeItself(QRVPlugIn& plugIn) {
    if (plugIn.description().empty()) return "its description is empty";
    plugIn.name(), plugIn.textDescription(), plugIn.htmlDescription(), plugIn.xmlDescription();
    plugIn.jsonDescription(), plugIn.icon(), plugIn.group(), plugIn.toolbarItem();
    return {};
}

std::string knowsBundle(const LoadedModule& module, const QRVPlugIn& plugIn) {
    if (plugIn.bundleIdentifier() != module.identifier())
        return "it says \"" + plugIn.bundleIdentifier() + "\"";
    if (plugIn.bundleVersion() != module.bundleVersion())
        return "it says " + std::to_string(plugIn.bundleVersion());
    return {};
}

void checkStartedLife(Site& site, HostedPlugIn& hosted, ConformanceReport& report) {
    const std::size_t before = site.observers();
    report.check("it starts, stops and starts again", [&] {
        std::string reason = obstacleText(hosted.start());
        if (reason.empty()) reason = obstacleText(hosted.stop());
        return reason.empty() ? obstacleText(hosted.start()) : reason;
    });
    if (hosted.evaluating())
        report.check("its switch can be turned while it runs", [&]() -> std::string {
            const auto turned = hosted.setEvaluating(true);
            return turned ? obstacleText(turned.value()) : turned.error().message;
        });
    report.check("it takes any batch of readings", [&] { return announceAll(site); });
    report.check("it is written and read back while it runs",
                 [&] { return archiveTwice(site, hosted.plugIn()); });
    report.check("it hears nothing once it is stopped", [&]() -> std::string {
        if (auto reason = obstacleText(hosted.stop()); !reason.empty()) return reason;
        return site.observers() == before ? "" : "it still observes its station";
    });
}

}  // namespace

void checkLife(const LoadedModule& module, const std::string& className, ConformanceReport& report) {
    Site site;
    auto plugIn = std::dynamic_pointer_cast<QRVPlugIn>(module.make(className));
    bool made = false;
    report.check("it comes to be for a station", [&]() -> std::string {
        const World::Scope scope(site.world);
        made = plugIn->initWithAgent(site.station, nullptr);
        if (!made) return {};
        return plugIn->agent() == site.station ? "" : "its agent is another one";
    });
    if (!made) return report.skip("its life", "no plug-in came to be");
    HostedPlugIn hosted(site.world, plugIn);
    report.check("it knows the bundle that it came from", [&] { return knowsBundle(module, *plugIn); });
    report.check("it keeps the title that it is given", [&] {
        plugIn->setTitle("A title");
        return plugIn->title() == "A title" ? std::string() : "its title is \"" + plugIn->title() + "\"";
    });
    report.check("it is told that it is loaded",
                 [&] { return hosted.call([](QRVPlugIn& it) { return it.didLoad(), std::string(); }); });
    report.check("it is written and read back before it runs", [&] { return archiveTwice(site, plugIn); });
    checkStartedLife(site, hosted, report);
    report.check("it describes itself", [&] { return hosted.call(describeItself); });
    if (InterfaceOwner* owner = plugIn->interfaceOwner())
        report.check("its table answers and takes back what it gave",
                     [&] { return hosted.call([&](QRVPlugIn&) { return answerTable(*owner); }); });
    else
        report.skip("its table answers and takes back what it gave", "it has no table");
    report.check("it takes the end of its life",
                 [&] { return hosted.call([](QRVPlugIn& it) { return it.willUnload(), std::string(); }); });
}

}  // namespace vigil
