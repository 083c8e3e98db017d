#include <algorithm>
#include <utility>

#include "conditions/ConditionPredicate.hpp"
#include "host/desktop/SiteSession.hpp"
#include "host/kit/KeyedArchive.hpp"
#include "host/kit/PlugInLoader.hpp"
#include "platform/ClassRegistry.hpp"
#include "platform/InterfaceOwner.hpp"
#include "platform/RuleEditor.hpp"
#include "platform/ToolbarItem.hpp"

// What people change of a site's file: it goes to the editor's thread, and what the file holds then is taken
// over.

namespace vigil {
namespace {

constexpr const char* kMonitorClass = "QRVVigilPlugIn";
constexpr const char* kToolbarClass = "QRVVigilToolbarPlugIn";

/// "Play Sound" in the first row, if that is offered.
void chooseSound(RuleEditor& editor) {
    if (editor.numberOfRows() == 0) return;
    const auto offered = editor.choices({.row = 0, .column = 0});
    for (std::size_t i = 0; i < offered.choices.size(); ++i)
        if (stringValue(offered.choices[i].displayValue) == "Play Sound")
            editor.choose({.row = 0, .column = 0}, static_cast<std::int64_t>(i));
}

}  // namespace

void SiteSession::edit(SiteEditor::Change change, SiteEditor::Changed changed) {
    m_editor->apply(std::move(change), [this, changed = std::move(changed)](
                                           Result<RecordId> id, std::optional<RunningSite::Rows> rows) {
        const bool done = static_cast<bool>(id);
        const std::string why = done ? std::string() : id.error().message;
        changed(std::move(id), std::move(rows));
        listen();
        if (m_events.changed) m_events.changed();
        if (!done) trouble(why);
    });
}

void SiteSession::addPlugIn(std::shared_ptr<QRVPlugIn> plugIn, bool nameUniquely, bool select) {
    PlugInRecord record{.className = plugIn->className(), .title = plugIn->title()};
    for (const StationRecord& station : m_site->stations())
        if (m_site->stationOf(station.id) == plugIn->agent()) record.station = station.id;
    if (nameUniquely) {
        record.title = m_site->unusedTitle(plugIn->title());
        for (int number = 2; m_titles.contains(record.title); ++number)
            record.title = m_site->unusedTitle(plugIn->title() + " " + std::to_string(number));
    }
    plugIn->setTitle(record.title);
    auto archive = writeArchive(plugIn, plugIn->agent().get());
    if (!archive) return trouble("the monitor cannot be kept: " + archive.error().message);
    record.archive = std::move(archive).value();
    m_titles.insert(record.title);
    edit([record](SiteFile& file) { return file.addPlugIn(record); },
         [this, plugIn, select, title = record.title](const Result<RecordId>& id,
                                                      std::optional<RunningSite::Rows> rows) {
             m_titles.erase(title);
             if (!id) return;
             rows->made[id.value()] = plugIn;
             m_site->reload(*rows);
             listen();
             if (m_events.changed) m_events.changed();
             if (select && m_events.select) m_events.select(id.value());
         });
}

void SiteSession::addFirstMonitor() {
    const auto stations = m_site->stations();
    const auto bundle = ClassRegistry::shared().bundleForClass(kMonitorClass);
    if (stations.empty() || !bundle) return;
    const auto plugIn = std::dynamic_pointer_cast<QRVPlugIn>(ClassRegistry::shared().make(kMonitorClass));
    if (!plugIn) return;
    HostedPlugIn hosted(m_site->world(), plugIn);
    const bool made = hosted.call([&](QRVPlugIn& monitor) {
        return monitor.initWithAgent(m_site->stationOf(stations[0].id), m_controller);
    });
    if (!made) return;
    hosted.call([&](QRVPlugIn& monitor) {
        monitor.setTitle("Cold or windy");
        const auto view =
            m_site->interfaceFiles().instantiate(*bundle, kMonitorClass, monitor.interfaceOwner());
        for (const auto& object : view.value_or(std::vector<std::shared_ptr<Object>>{}))
            if (const auto editor = std::dynamic_pointer_cast<RuleEditor>(object)) chooseSound(*editor);
        InterfaceOwner* owner = monitor.interfaceOwner();
        if (const auto* on = owner ? owner->propertyNamed("evaluating") : nullptr; on && on->set)
            on->set(*owner, Value(true));
    });
    addPlugIn(plugIn, /*nameUniquely=*/true, /*select=*/true);
}

void SiteSession::restorePlugIn(PlugInRecord record) {
    record.title = m_site->unusedTitle(record.title);
    edit([record](SiteFile& file) { return file.addPlugIn(record); },
         [this](const Result<RecordId>& id, std::optional<RunningSite::Rows> rows) {
             if (!id) return;
             m_site->reload(*rows);
             if (m_events.changed) m_events.changed();
             if (m_events.select) m_events.select(id.value());
         });
}

void SiteSession::removePlugIn(RecordId id, std::function<void(PlugInRecord)> removed) {
    const auto found = std::make_shared<PlugInRecord>();
    for (const StationRecord& station : m_site->stations())
        for (const PlugInRecord& record : m_site->plugIns(station.id))
            if (record.id == id) *found = record;
    if (auto archive = m_site->archiveText(id)) found->archive = std::move(archive).value();
    edit(
        [id, found](SiteFile& file) -> Result<RecordId> {
            if (found->archive.empty()) {  // one that could not be restored
                auto all = file.plugIns();
                if (!all) return all.error();
                for (PlugInRecord& record : all.value())
                    if (record.id == id) *found = std::move(record);
            }
            if (auto gone = file.removePlugIn(id); !gone) return gone.error();
            return id;
        },
        [this, found, removed = std::move(removed)](const Result<RecordId>& done,
                                                    std::optional<RunningSite::Rows> rows) {
            if (!done) return;
            m_site->reload(*rows);
            if (removed) removed(*found);
        });
}

void SiteSession::putStation(const StationRecord& record, std::function<void(Result<RecordId>)> done) {
    edit(
        [record](SiteFile& file) -> Result<RecordId> {
            if (record.id == 0) return file.addStation(record);
            if (auto changed = file.editStation(record); !changed) return changed.error();
            return record.id;
        },
        [this, done = std::move(done)](Result<RecordId> id, std::optional<RunningSite::Rows> rows) {
            if (id) m_site->reload(*rows);
            if (done) done(std::move(id));
        });
}

void SiteSession::removeStation(RecordId id) {
    edit(
        [id](SiteFile& file) -> Result<RecordId> {
            if (auto gone = file.removeStation(id); !gone) return gone.error();
            return id;
        },
        [this](const Result<RecordId>& done, std::optional<RunningSite::Rows> rows) {
            if (done) m_site->reload(*rows);
        });
}

std::vector<std::shared_ptr<ToolbarItem>> SiteSession::toolbarItems(RecordId id) {
    const auto station = m_site->stationOf(id);
    if (!station) return {};
    auto& plugIns = m_toolbarPlugIns[id];
    if (plugIns.empty()) {
        const auto object = std::dynamic_pointer_cast<QRVPlugIn>(ClassRegistry::shared().make(kToolbarClass));
        if (object) {
            auto hosted = std::make_unique<HostedPlugIn>(m_site->world(), object);
            const bool made =
                hosted->call([&](QRVPlugIn& plugIn) { return plugIn.initWithAgent(station, m_controller); });
            if (made) {
                hosted->call([](QRVPlugIn& plugIn) { plugIn.didLoad(); });
                plugIns.push_back(std::move(hosted));
            }
        }
    }
    std::vector<std::shared_ptr<ToolbarItem>> items;
    for (const auto& hosted : plugIns)
        if (auto item = hosted->call([](QRVPlugIn& plugIn) { return plugIn.toolbarItem(); }))
            items.push_back(std::move(item));
    return items;
}

}  // namespace vigil
