#pragma once

#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/site/HistoryReader.hpp"
#include "host/site/HistoryWriter.hpp"
#include "tests/support/TemporaryFolder.hpp"

// What tests of the history share: a site's folder, and readings that one number tells apart.

namespace vigil {

inline constexpr RecordId kRoof = 1;
inline constexpr RecordId kBarn = 2;
inline constexpr RecordId kFrost = 7;
inline constexpr double kMinute = 60;
inline constexpr double kDay = 86400;
inline constexpr Date kStart(794826000);

class HistoryBench : public testing::Test {
  protected:
    std::string site() { return folder.path() + "/home.vigilsite"; }
    std::string file() { return site() + "-history"; }
    std::unique_ptr<HistoryWriter> writer(HistoryOptions options = {}) {
        options.flushEvery = std::chrono::milliseconds(0);
        options.tell = [this](const std::string& sentence) { told.push_back(sentence); };
        auto opened = HistoryWriter::open(site(), std::move(options));
        EXPECT_TRUE(opened) << opened.error().message;
        return opened ? std::move(opened).value() : nullptr;
    }
    std::unique_ptr<HistoryReader> reader() {
        auto opened = HistoryReader::open(site());
        EXPECT_TRUE(opened) << opened.error().message;
        return opened ? std::move(opened).value() : nullptr;
    }
    static std::shared_ptr<const Readings> batch(double temperature) {
        return Readings::make({AgentProperty::number("outsideTemp", temperature, kStart)});
    }
    /// Temperatures of the station's notifications in a range.
    std::vector<double> temperatures(RecordId station, HistoryRange range = {}) {
        std::vector<double> all;
        auto source = reader()->source(station, range);
        if (!source) return ADD_FAILURE() << source.error().message, all;
        for (;;) {
            const auto next = source.value()->next();
            if (!next) return ADD_FAILURE() << next.error().message, all;
            if (!next.value()) return all;
            all.push_back(next.value()->readings->objectForKey("outsideTemp")->value());
        }
    }
    static PlugInRecord plugIn(const std::string& archive) {
        return {.id = kFrost, .station = kRoof, .className = "Monitor", .title = "Frost", .archive = archive};
    }
    void damage() {
        std::fstream bytes(file(), std::ios::in | std::ios::out | std::ios::binary);
        bytes.seekp(0);
        bytes << std::string(8192, 'x');
    }
    std::vector<std::string> setAside() {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            if (const auto name = entry.path().filename().string();
                name.find("damaged-") != std::string::npos && !name.ends_with("-wal"))
                found.push_back(name);
        return found;
    }

    TemporaryFolder folder;
    std::vector<std::string> told;
};

}  // namespace vigil
