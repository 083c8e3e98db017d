#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "host/run/RunningSite.hpp"
#include "host/services/testing/ScriptBench.hpp"
#include "tests/support/RecordingLog.hpp"
#include "tests/support/TemporaryFolder.hpp"

// What tests of a running site share: a real site file, the real module and helper, a simulated station.

namespace vigil {

/// A monitor's archive: with a condition, one script row, and a wait that was over long ago.
inline std::string archive(const std::string& condition, int minutes, const std::string& script) {
    return R"({"format":"vigil-archive","version":1,"root":{"$class":"QRVVigilPlugIn","$id":1,)"
           R"("agent":{"$station":true},"title":"","ruleEdStoredCriteria":[[{"$class":"RunScriptCriterion","$id":2,)"
           R"("agent":{"$station":true},"name":"Run script","children":[{"$class":"TextFieldCriterion","$id":3,)"
           R"("agent":{"$station":true}}]},{"$ref":3}]],"ruleEdStoredDisplayValues":[["Run script",)"
           R"({"$class":"TextField","$id":4,"stringValue":")" +
           script + R"("}]],"evaluating":true,"retriggerInterval":)" + std::to_string(minutes) +
           R"(,"retriggerDate":{"$date":1.0},"triggerOnlyOnChange":false,"predicate":{"$class":"ConditionPredicate","$id":5,"text":")" +
           condition + "\"}}}";
}

class Running : public testing::Test {
  protected:
    Running() {
        EXPECT_TRUE(SiteFile::create(m_path));
        open();
        m_station = m_file->addStation({.name = "Roof", .feed = "simulated:?speed=30000"}).value();
        m_folder.makeFolder("scripts");
        m_folder.write("scripts/note.sh", "#!/bin/sh\necho \"$1\" >> " + m_folder.path() + "/noted\n");
    }
    ~Running() override { m_site.reset(); }

    void open() {
        auto opened = SiteFile::open(m_path, Access::Write);
        ASSERT_TRUE(opened) << opened.error().message;
        m_file = std::move(opened).value();
    }
    RecordId add(const std::string& title, const std::string& archive) {
        const auto id = m_file->addPlugIn(
            {.station = m_station, .className = "QRVVigilPlugIn", .title = title, .archive = archive});
        EXPECT_TRUE(id);
        return id ? id.value() : 0;
    }
    void start() {
        auto site = RunningSite::make(*m_file, m_log,
                                      {.programFolder = VIGIL_BINARY_DIR "/bin",
                                       .scriptsFolder = m_folder.path() + "/scripts",
                                       .version = "1"});
        ASSERT_TRUE(site) << site.error().message;
        m_site = std::move(site).value();
        m_site->start();
    }
    /// Serves the site until that holds.
    void serveUntil(const std::function<bool()>& holds) {
        const auto end = std::chrono::steady_clock::now() + kPatience;
        while (!holds()) {
            ASSERT_LT(std::chrono::steady_clock::now(), end) << "waited in vain";
            m_site->mailbox().serveUntil(std::chrono::steady_clock::now() + std::chrono::milliseconds(20));
            m_site->tick();
        }
    }
    MonitorStatus monitor(const std::string& title) {
        for (const StationStatus& station : m_site->status().stations)
            for (const MonitorStatus& one : station.monitors)
                if (one.title == title) return one;
        return {};
    }
    void end() {
        m_site->stop();
        m_site.reset();
        m_file.reset();
    }
    std::string logged() {
        std::string text;
        for (const auto& line : m_log.lines())
            text += line.message + "\n";
        return text;
    }

    TemporaryFolder m_folder;
    const std::string m_path = m_folder.path() + "/home.vigilsite";
    RecordingLog m_log;
    std::unique_ptr<SiteFile> m_file;
    std::unique_ptr<RunningSite> m_site;
    RecordId m_station = 0;
};

}  // namespace vigil
