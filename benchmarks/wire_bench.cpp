// From the bytes of a message to its packets, beside what the JSON parser alone takes. Every contestant must
// have found all readings before anything is timed.

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <simdjson.h>

#include "benchmarks/AllocationCount.hpp"
#include "benchmarks/Ratios.hpp"
#include "host/feeds/JsonLine.hpp"
#include "host/feeds/TextLines.hpp"
#include "host/feeds/wire/MakeDecoder.hpp"
#include "host/feeds/wire/UploadFields.hpp"

namespace vigil::bench {
namespace {

constexpr std::size_t kReadings = 40;

/// About 2.8 kB: 40 readings at length, half of them with a time of their own.
std::string longLine() {
    std::string text = R"({"station":"Station 17","readings":{)";
    for (std::size_t i = 0; i < kReadings; ++i) {
        const std::string number = std::to_string(i);
        if (i > 0) text += ',';
        text += "\"soilTemp" + number + "\":{\"value\":" + number + ".25,\"unitValue\":" + number + ".27";
        text += ",\"time\":\"2026-11-21T10:" + std::to_string(10 + i / 2) + ":18Z\"}";
    }
    return text + "}}";
}

const char* kUpload =
    "PASSKEY=00112233445566778899AABBCCDDEEFF&stationtype=Roof_V1&dateutc=2026-11-21+10:34:18&tempinf=71.6&"
    "humidityin=40&baromrelin=29.921&baromabsin=29.5&tempf=50.0&humidity=66&winddir=270&windspeedmph=5.5&"
    "windgustmph=11.2&maxdailygust=20.1&solarradiation=264.61&uv=2&rainratein=0.000&eventrainin=0.000&"
    "hourlyrainin=0.000&dailyrainin=0.000&weeklyrainin=0.000&monthlyrainin=2.177&yearlyrainin=4.441&wh65batt="
    "0&"
    "freq=868M&model=R-1";
const char* kRadio =
    R"({"time" : "2026-11-21 12:34:18", "model" : "Roof-5", "id" : 80, "battery_ok" : 1, "temperature_C" : 24.7, )"
    R"("humidity" : 65, "wind_dir_deg" : 359, "wind_avg_m_s" : 1.5, "wind_max_m_s" : 2.5, "rain_mm" : 0.254, )"
    R"("uvi" : 1, "light_lux" : 120.0, "mic" : "CRC"})";

struct Contestant {
    std::string name;
    std::unique_ptr<Decoder> decoder;
    RawMessage message;
    std::vector<Packet> packets{};

    void decode() {
        packets.clear();
        decoder->decode(message, packets, {});
    }
};

Contestant contestant(std::string name, const char* url, std::string payload, std::size_t readings) {
    Contestant one{std::move(name),
                   makeDecoder(FeedUrl::parse(url).value()),
                   {.payload = std::move(payload), .arrived = Date(800000000)}};
    one.decode();
    if (one.packets.size() == 1 && one.packets[0].readings.size() == readings) return one;
    std::fprintf(stderr, "%s: not the readings that are in it\n", one.name.c_str());
    std::exit(1);
}

long allocationsOf(Contestant& one) {
    const long before = allocationsSoFar();
    one.decode();
    return allocationsSoFar() - before;
}

}  // namespace
}  // namespace vigil::bench

int main(int argc, char** argv) {
    using namespace vigil;
    using namespace vigil::bench;
    std::vector<Contestant> contestants;
    contestants.push_back(contestant("lines", "mqtt://b/a?form=lines", longLine(), kReadings));
    contestants.push_back(contestant("lines_guessed", "mqtt://b/a", longLine(), kReadings));
    contestants.push_back(contestant("upload", "upload://127.0.0.1:1/", kUpload, 23));
    contestants.push_back(contestant("rtl433", "lines:-", kRadio, 9));
    for (Contestant& one : contestants)
        benchmark::RegisterBenchmark(one.name.c_str(), [&one](benchmark::State& state) {
            for (auto _ : state)
                one.decode();
        });
    JsonLine json;
    std::string padded = longLine();
    const std::size_t size = padded.size();
    padded.append(TextLines::kPadding, ' ');
    benchmark::RegisterBenchmark("parser_alone", [&](benchmark::State& state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(static_cast<bool>(json.parse(std::string_view(padded).substr(0, size))));
    });
    return runWithRatios(argc, argv, [&](const Fastest& fastest) {
        std::printf("\n%-16s%10s%16s%14s\n", "form", "bytes", "microseconds", "allocations");
        for (Contestant& one : contestants)
            std::printf("%-16s%10zu%16.2f%14ld\n", one.name.c_str(), one.message.payload.size(),
                        fastest.of(one.name) / 1000, allocationsOf(one));
        std::printf("%-16s%10zu%16.2f\n", "parser alone", size, fastest.of("parser_alone") / 1000);
    });
}
