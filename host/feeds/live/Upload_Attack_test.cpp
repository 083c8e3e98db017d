#include <random>

#include "host/feeds/live/UploadListener.hpp"
#include "host/feeds/live/testing/LiveBench.hpp"
#include "host/feeds/live/testing/Talk.hpp"
#include "host/feeds/wire/UploadFields.hpp"

// What a listener withstands.

namespace vigil {
namespace {

using std::chrono::milliseconds;

class UploadAttack : public LiveBench {
  protected:
    void SetUp() override {
        LiveBench::SetUp();
        m_sink = add("Home", "upload://127.0.0.1:" + std::to_string(m_port) + "/");
        ASSERT_TRUE(m_sink->waitForState(FeedState::Live));
    }
    /// From an address that takes no part in the attack.
    bool isServed() const {
        const auto answer = ask(m_port, getRequest("/x?ID=1&PASSWORD=2&tempf=3"), "127.0.0.99");
        return answer.find(" 200 ") != std::string::npos;
    }
    static long memory() {
        long pages = 0;
        std::ifstream statm("/proc/self/statm");
        statm >> pages >> pages;
        return pages * ::getpagesize();
    }

    const std::uint16_t m_port = freePort();
    std::shared_ptr<RecordingSink> m_sink;
};

TEST_F(UploadAttack, ABodyThatIsTooLargeIsRefusedWhetherItSaysSoOrNot) {
    const std::string fields = "PASSKEY=1&tempf=1&x=";
    const std::string most = fields + std::string(kLongestUpload - fields.size(), 'y');
    EXPECT_EQ(statusAndBody(ask(m_port, postRequest("/x", most))).substr(0, 3), "200");
    EXPECT_EQ(statusAndBody(ask(m_port, postRequest("/x", most + "y"))).substr(0, 3), "413");
    Talk talk(m_port);
    talk.send("POST /x HTTP/1.1\r\nHost: vigil\r\nTransfer-Encoding: chunked\r\n\r\n");
    bool taken = true;
    for (int i = 0; i < 1000 && taken; ++i)
        taken = talk.send("1000\r\n" + std::string(0x1000, 'y') + "\r\n");
    EXPECT_FALSE(taken) << "4 MB without an end";
    EXPECT_EQ(m_sink->count(), 1U);
    EXPECT_EQ(feeds().counts("Home")->leftOut, 2U);
    EXPECT_TRUE(isServed());
}

TEST_F(UploadAttack, SizesThatAreNoneAreRefused) {
    for (const char* size : {"1000000000000", "99999999999999999999999", "-5", "abc"}) {
        const auto answer =
            ask(m_port, "POST /x HTTP/1.1\r\nHost: vigil\r\nContent-Length: " + std::string(size) +
                            "\r\nConnection: close\r\n\r\nPASSKEY=1");
        EXPECT_TRUE(answer.find(" 413 ") != std::string::npos || answer.find(" 400 ") != std::string::npos)
            << size << ": " << answer;
    }
    EXPECT_EQ(m_sink->count(), 0U);
    EXPECT_TRUE(isServed());
}

TEST_F(UploadAttack, FirstLinesAndHeadersWithoutAnEndCostNoMemory) {
    const std::string chunk(0x4000, 'x');  // once: what is freed may stay resident under a sanitizer
    const long before = memory();
    for (const std::string begin : {"GET /", "GET /x?ID=1&", "GET / HTTP/1.1\r\nHost: vigil\r\nX: "}) {
        Talk talk(m_port);
        talk.send(begin);
        bool taken = true;
        for (int i = 0; i < 1000 && taken; ++i)
            taken = talk.send(chunk);
        EXPECT_FALSE(taken) << begin;
    }
    EXPECT_LT(memory() - before, 4 << 20);
    EXPECT_TRUE(isServed());
}

TEST_F(UploadAttack, DribblersAreCutWhileOthersAreServed) {
    std::vector<std::unique_ptr<Talk>> dribblers;
    for (int i = 0; i < 40; ++i) {
        const std::string from = "127.0.0." + std::to_string(2 + i / 10);
        dribblers.push_back(std::make_unique<Talk>(m_port, from.c_str()));
        dribblers.back()->send("GET /x?ID=1&PASSWORD=2&tempf=");
    }
    // a byte every 100 ms: never idle, never whole
    const auto began = std::chrono::steady_clock::now();
    std::size_t left = dribblers.size();
    while (left != 0 && std::chrono::steady_clock::now() - began < std::chrono::seconds(20)) {
        EXPECT_TRUE(isServed());
        sleepFor(100);
        left = 0;
        for (const auto& dribbler : dribblers)
            left += dribbler->send("1") && !dribbler->closes(0) ? 1 : 0;
    }
    EXPECT_EQ(left, 0U) << "the time for a request is over";
    EXPECT_GE(std::chrono::steady_clock::now() - began, milliseconds(1000));
}

TEST_F(UploadAttack, AConnectionOnWhichNothingComesIsClosed) {
    Talk silent(m_port);
    EXPECT_TRUE(silent.closes(8000));
    EXPECT_TRUE(isServed());
}

TEST_F(UploadAttack, OneAddressCannotTakeAllPlaces) {
    std::vector<std::unique_ptr<Talk>> many;
    for (int i = 0; i < 100; ++i)
        many.push_back(std::make_unique<Talk>(m_port));
    EXPECT_TRUE(isServed());
    std::size_t open = 0;
    for (const auto& talk : many)
        open += talk->closes(0) ? 0 : 1;
    EXPECT_LE(open, kMostUploadersOfAddress);
}

TEST_F(UploadAttack, TwoHundredConnectionsFromManyAddressesAreAllServed) {
    std::vector<std::unique_ptr<Talk>> all;
    for (int i = 0; i < 200; ++i) {
        const std::string from = "127.0.1." + std::to_string(1 + i / 10);
        all.push_back(std::make_unique<Talk>(m_port, from.c_str()));
        ASSERT_TRUE(all.back()->connected());
    }
    for (const auto& talk : all)
        ASSERT_TRUE(talk->send(getRequest("/x?ID=1&PASSWORD=2&tempf=3")));
    for (const auto& talk : all)
        EXPECT_EQ(statusAndBody(talk->read()).substr(0, 3), "200");
    EXPECT_EQ(m_sink->count(), 200U);
}

TEST_F(UploadAttack, NonsenseHarmsNobody) {
    std::mt19937 random(7);
    const std::string begins[] = {"", "GET ", "POST /x HTTP/1.1\r\n", "GET /x?ID=1 HTTP/1.1\r\n",
                                  "\x16\x03\x01"};
    for (int i = 0; i < 300; ++i) {
        std::string bytes = begins[static_cast<std::size_t>(i) % 5];
        for (int length = static_cast<int>(random() % 400); length > 0; --length)
            bytes += random() % 4 == 0 ? "\r\n %&=?:"[random() % 9] : static_cast<char>(random() % 256);
        Talk talk(m_port, ("127.0.2." + std::to_string(1 + i % 200)).c_str());
        talk.send(bytes);
        if (i % 2 == 0) talk.read("\n", 20);
    }
    EXPECT_TRUE(isServed());
    for (const std::string& problem : m_sink->problems())
        EXPECT_TRUE(std::all_of(problem.begin(), problem.end(), [](char c) { return c >= ' '; })) << problem;
}

TEST_F(UploadAttack, RemovingDoesNotWaitForWhoIsStillTalking) {
    std::vector<std::unique_ptr<Talk>> open;
    for (int i = 0; i < 10; ++i) {
        open.push_back(std::make_unique<Talk>(m_port));
        open.back()->send("POST /x HTTP/1.1\r\nHost: vigil\r\nContent-Length: 1000\r\n\r\nPASSKEY=");
    }
    sleepFor(50);
    EXPECT_LT(timeOf([&] { feeds().remove("Home"); }), kSoon);
    const auto calls = m_sink->calls();
    for (const auto& talk : open)
        EXPECT_TRUE(talk->closes(1000));
    EXPECT_EQ(m_sink->calls(), calls);
}

}  // namespace
}  // namespace vigil
