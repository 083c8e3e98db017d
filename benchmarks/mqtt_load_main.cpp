// Publishes batches of forty readings to a broker at a steady rate, or as fast as it takes them:
//
//     mqtt_load PORT STATIONS MESSAGES RATE FIRE-EVERY
//
// Message i goes to the topic "load/s<i % STATIONS>" in the form of JSON lines. Its readings change as a
// station's do; in every FIRE-EVERY-th message `windChill` falls below -100, which nothing else does. RATE 0
// is as fast as possible. Prints a line for each of those: its number and the Unix time at which it was
// handed over, in seconds.

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include <mosquitto.h>
#include <unistd.h>

namespace {

constexpr int kReadings = 40;
constexpr int kFrames = 256;

double unixNow() {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

/// The same on every machine (splitmix64).
double uniform(std::uint64_t& state) {
    std::uint64_t z = (state += 0x9E3779B97F4A7C15u);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return static_cast<double>((z ^ (z >> 31)) >> 11) * 0x1.0p-53;
}

std::string reading(const std::string& key, double value) {
    char text[160];
    std::snprintf(text, sizeof text, R"("%s":{"value":%.2f,"unitValue":%.2f})", key.c_str(), value,
                  1.1 * value);
    return text;
}

/// The readings behind the first two, of which half change from frame to frame.
std::vector<std::string> frames() {
    std::uint64_t state = 1;
    std::vector<double> values(kReadings, 0.0);
    std::vector<std::string> made;
    for (int frame = 0; frame < kFrames; ++frame) {
        std::string text;
        for (int i = 2; i < kReadings; ++i) {
            if (frame == 0 || uniform(state) < 0.5)
                values[static_cast<std::size_t>(i)] = uniform(state) * 100 - 20;
            text += "," + reading("reading" + std::to_string(i), values[static_cast<std::size_t>(i)]);
        }
        made.push_back(std::move(text));
    }
    return made;
}

}  // namespace

int main(int count, char** words) {
    if (count != 6) {
        std::fputs("mqtt_load PORT STATIONS MESSAGES RATE FIRE-EVERY\n", stderr);
        return 2;
    }
    const int port = std::atoi(words[1]);
    const long stations = std::atol(words[2]), messages = std::atol(words[3]),
               fireEvery = std::atol(words[5]);
    const double rate = std::atof(words[4]);
    mosquitto_lib_init();
    mosquitto* client = mosquitto_new(nullptr, true, nullptr);
    mosquitto_int_option(client, MOSQ_OPT_TCP_NODELAY, 1);
    if (mosquitto_connect(client, "127.0.0.1", port, 60) != MOSQ_ERR_SUCCESS ||
        mosquitto_loop_start(client) != 0) {
        std::fputs("no broker\n", stderr);
        return 3;
    }
    const std::vector<std::string> texts = frames();
    std::uint64_t state = 2;
    const auto begin = std::chrono::steady_clock::now();
    for (long i = 0; i < messages; ++i) {
        if (rate > 0)
            std::this_thread::sleep_until(begin +
                                          std::chrono::duration<double>(static_cast<double>(i) / rate));
        while (rate == 0 && mosquitto_want_write(client))
            std::this_thread::sleep_for(std::chrono::microseconds(50));
        const bool fires = fireEvery > 0 && (i + 1) % fireEvery == 0;
        const std::string payload = R"({"readings":{)" +
                                    reading("windChill", fires ? -200 : uniform(state) * 40) + "," +
                                    reading("number", static_cast<double>(i)) +
                                    texts[static_cast<std::size_t>(i) % texts.size()] + "}}";
        const std::string topic = "load/s" + std::to_string(i % stations);
        if (fires) std::printf("%ld %.6f\n", i, unixNow());
        mosquitto_publish(client, nullptr, topic.c_str(), static_cast<int>(payload.size()), payload.data(), 0,
                          false);
    }
    std::fprintf(stderr, "%.3f\n",
                 std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
    while (mosquitto_want_write(client))
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    mosquitto_disconnect(client);
    mosquitto_loop_stop(client, false);
    mosquitto_destroy(client);
}
