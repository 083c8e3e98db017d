#pragma once

#include <cstdio>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/command/CommandLine.hpp"
#include "host/command/CycleNote.hpp"
#include "host/command/MonitorDraft.hpp"
#include "host/feeds/OpenRecorded.hpp"
#include "host/kit/InterfaceFile.hpp"
#include "host/kit/MonitorModule.hpp"
#include "host/kit/RecordedScripts.hpp"
#include "host/kit/ReplayWorld.hpp"
#include "host/kit/Station.hpp"
#include "host/site/HistoryWriter.hpp"
#include "tests/support/RecordingLog.hpp"
#include "tests/support/TemporaryFolder.hpp"

// What tests of the commands on a history share: a service that writes one, and a way to run commands on it.

namespace vigil {

inline constexpr RecordId kRoof = 4;
inline constexpr RecordId kFrost = 9;
/// The monitor's actions begin so long after the notification and take so long.
inline constexpr double kBegins = 0.25, kTakes = 40.75;

inline std::string takeText(std::FILE* file) {
    std::string text;
    std::rewind(file);
    for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file))
        text += static_cast<char>(c);
    std::fclose(file);
    return text;
}

struct Outcome {
    ExitStatus status;
    std::string results;
    std::string errors;
};

/// A service as far as a history sees it: a station, a monitor of the module that was built, and a clock that
/// goes on while the monitor acts.
class Service {
  public:
    explicit Service(const std::string& site) : m_writer(HistoryWriter::open(site).value()) {
        EXPECT_TRUE(loadMonitorModule(VIGIL_BINARY_DIR "/bin"));
        m_writer->named(kRoof, "Roof");
    }

    void begin(const MonitorDraft& draft, Date now, ArchiveReason reason = ArchiveReason::Began) {
        const PlugInRecord record{.id = kFrost,
                                  .station = kRoof,
                                  .className = "",
                                  .title = draft.title,
                                  .archive = archiveText(draft)};
        m_world.turnTo(now);
        const World::Scope scope(m_world);
        if (m_monitor) m_monitor->stop();
        m_monitor = monitorFromArchive(record.archive, m_station).value();
        m_monitor->cycleReporting()->setCycleObserver(m_note);
        EXPECT_FALSE(m_monitor->start());
        m_writer->archived(record, now, reason);
        if (reason == ArchiveReason::Began) m_writer->started(kFrost, now, WatchReason::Run);
    }

    /// The notifications of the example's night, or a part of them.
    void night(std::size_t from = 0, std::size_t count = 1000, bool watched = true) {
        auto source = openCsv(VIGIL_SOURCE_DIR "/examples/frost-night.csv", {}, {});
        ASSERT_TRUE(source) << source.error().message;
        for (std::size_t i = 0; i < from + count; ++i) {
            const auto next = source.value()->next();
            ASSERT_TRUE(next);
            if (!next.value()) return;
            if (i >= from) notify(next.value()->time, next.value()->readings, watched);
        }
    }

    void notify(Date time, const std::shared_ptr<const Readings>& readings, bool watched = true) {
        m_last = time;
        m_writer->append(kRoof, std::nullopt, time, readings);
        if (!watched) return;
        m_world.turnTo(time);
        m_world.setNextHandOver(time.plus(kBegins), time.plus(kBegins + kTakes));
        EXPECT_TRUE(m_station->announce(readings).empty());
        m_world.forgetHandOver();
        if (m_note->cycle.outcome != CycleOutcome::Fired) return;
        ++fires;
        m_writer->fired(kRoof, kFrost, time, time.plus(kBegins), time.plus(kBegins + kTakes));
    }

    void end(WatchReason reason = WatchReason::Run) { m_writer->stopped(kFrost, m_last, reason); }
    HistoryWriter& writer() { return *m_writer; }
    Date last() const { return m_last; }

    int fires = 0;

  private:
    std::unique_ptr<HistoryWriter> m_writer;
    RecordingLog m_log;
    InterfaceFile m_files;
    ReplayWorld m_world{m_log, m_files, ""};
    RecordedScripts m_scripts{m_world};
    std::shared_ptr<Station> m_station = std::make_shared<Station>(m_world, "Roof", m_scripts);
    std::shared_ptr<CycleNote> m_note = std::make_shared<CycleNote>(false);
    std::shared_ptr<QRVPlugIn> m_monitor;
    Date m_last;
};

class HistoryCommandBench : public testing::Test {
  protected:
    std::string site() const { return folder.path() + "/home.vigilsite"; }
    std::string path(const std::string& name) const { return folder.path() + "/" + name; }

    Outcome run(std::vector<std::string> arguments, bool ofSite = true) {
        std::FILE* results = std::tmpfile();
        std::FILE* errors = std::tmpfile();
        Output output(results, errors);
        if (ofSite) arguments.insert(arguments.end(), {"--site", site()});
        const ExitStatus status = runCommandLine(arguments, allCommands(), output, VIGIL_BINARY_DIR "/bin");
        output.flush();
        return {status, takeText(results), takeText(errors)};
    }

    static std::string contents(const std::string& file) {
        std::stringstream text;
        text << std::ifstream(file, std::ios::binary).rdbuf();
        return text.str();
    }

    static MonitorDraft frost(const std::string& condition = "outsideTemp.unitValue < 0",
                              double minutes = 30) {
        MonitorDraft draft;
        draft.title = "Frost";
        draft.condition = condition;
        draft.retriggerMinutes = minutes;
        return draft;
    }

    /// The whole night, watched by the monitor.
    int night(const MonitorDraft& draft) {
        Service service(site());
        service.begin(draft, kEvening);
        service.night();
        service.end();
        return service.fires;
    }

    const Date kEvening = parseDate("2026-04-14 17:59").value();
    TemporaryFolder folder;
};

}  // namespace vigil
