#include "host/feeds/live/testing/LiveBench.hpp"
#include "host/feeds/live/testing/Talk.hpp"
#include "host/feeds/wire/UploadFields.hpp"

// What a listener makes of uploads, with real sockets. What it withstands is in Upload_Attack_test.cpp.

namespace vigil {
namespace {

using std::chrono::milliseconds;

class Upload : public LiveBench {
  protected:
    std::string url(const std::string& behind = "/") const {
        return "upload://127.0.0.1:" + std::to_string(m_port) + behind;
    }
    std::shared_ptr<RecordingSink> listen(const std::string& station = "Home",
                                          const std::string& behind = "/") {
        const auto sink = add(station, url(behind));
        EXPECT_TRUE(sink->waitForState(FeedState::Live)) << sink->lastState().words;
        return sink;
    }
    std::string answer(const std::string& request) const { return statusAndBody(ask(m_port, request)); }

    const std::uint16_t m_port = freePort();
};

constexpr char kConsole[] =
    "PASSKEY=0123456789ABCDEF0123456789ABCDEF&dateutc=2022-05-27+19:08:10&tempf=71.1&humidity=40";
constexpr char kUnderground[] = "ID=HARBOUR1&PASSWORD=hush&dateutc=now&action=updateraw&tempf=71.1";

TEST_F(Upload, TakesAFormThatIsPosted) {
    const auto sink = listen();
    const std::string reply = answer(postRequest("/data/report/", kConsole));
    EXPECT_TRUE(reply.starts_with("200 ")) << reply;
    ASSERT_TRUE(sink->waitForMessages(1));
    EXPECT_EQ(sink->payloads()[0], kConsole);
    EXPECT_EQ(sink->messages()[0].route, "/data/report/");
    EXPECT_FALSE(sink->messages()[0].retained);
    EXPECT_EQ(feeds().counts("Home")->messages, 1U);
    EXPECT_EQ(feeds().counts("Home")->bytes, sizeof kConsole - 1);
}

TEST_F(Upload, TakesAQueryAndAnswersAsTheFormExpects) {
    const auto sink = listen();
    EXPECT_EQ(answer(getRequest("/weatherstation/updateweatherstation.php?" + std::string(kUnderground))),
              "200 success\n");
    EXPECT_EQ(answer(getRequest("/weatherstation/updateweatherstation.asp?" + std::string(kUnderground))),
              "200 success\n");
    ASSERT_EQ(sink->count(), 2U) << "it is brought before it is answered";
    EXPECT_EQ(sink->payloads()[0], kUnderground);
}

TEST_F(Upload, TakesFieldsThatStickToThePath) {
    const auto sink = listen();
    EXPECT_TRUE(answer(getRequest("/data/report/" + std::string(kConsole))).starts_with("200 "));
    ASSERT_EQ(sink->count(), 1U);
    EXPECT_NE(sink->payloads()[0].find("tempf=71.1"), std::string::npos) << sink->payloads()[0];
    EXPECT_EQ(sink->messages()[0].route, "/data/report/") << "a route is shown to people";
}

TEST_F(Upload, TakesTheOldProtocolAndConnectionsThatStayOpen) {
    const auto sink = listen();
    EXPECT_EQ(answer("GET /weatherstation/updateweatherstation.php?" + std::string(kUnderground) +
                     " HTTP/1.0\r\n\r\n"),
              "200 success\n");
    Talk talk(m_port);
    for (int i = 0; i < 5; ++i) {
        ASSERT_TRUE(talk.send("GET /x?" + std::string(kUnderground) + " HTTP/1.1\r\nHost: vigil\r\n\r\n"));
        EXPECT_NE(talk.read("\r\n\r\n").find("200 OK"), std::string::npos);
    }
    EXPECT_EQ(sink->count(), 6U);
}

TEST_F(Upload, WhatPercentSignsSayIsLeftToTheDecoder) {
    const auto sink = listen();
    answer(getRequest("/x?ID=H&PASSWORD=p&dateutc=2020-10-19%2021%3A43%3A18&a=%zz&b=%00&c=%26d%3D1"));
    ASSERT_EQ(sink->count(), 1U);
    EXPECT_EQ(sink->payloads()[0],
              "ID=H&PASSWORD=p&dateutc=2020-10-19%2021%3A43%3A18&a=%zz&b=%00&c=%26d%3D1");
}

TEST_F(Upload, ManyStationsAtOnePortAreToldApartByTheirIdentity) {
    const auto named = listen("Named", "/?id=harbour1");
    const auto other = listen("Other", "/?id=HARBOUR2");
    const auto rest = listen("Rest");
    for (const char* id : {"HARBOUR1", "HARBOUR2", "HARBOUR3", "HARBOUR1"})
        EXPECT_TRUE(
            answer(getRequest("/x?ID=" + std::string(id) + "&PASSWORD=p&tempf=1")).starts_with("200 "));
    EXPECT_EQ(threadsNamed("feed-upload"), 1) << "one listener serves them all";
    EXPECT_EQ(named->count(), 2U);
    EXPECT_EQ(other->count(), 1U);
    EXPECT_EQ(rest->count(), 1U);
    feeds().remove("Named");
    answer(getRequest("/x?ID=HARBOUR1&PASSWORD=p&tempf=1"));
    EXPECT_EQ(named->count(), 2U);
    EXPECT_EQ(rest->count(), 2U) << "now nobody names it";
    const auto again = tryAdd("Again", url("/?id=Harbour2"));
    ASSERT_FALSE(again);
    EXPECT_EQ(again.error().message, "feed: the station \"Other\" takes the uploads of this id at this port");
}

TEST_F(Upload, AnUploadThatNoStationTakesIsAnsweredCountedAndToldOnceWithItsIdentityMasked) {
    const auto sink = listen("Named", "/?id=HARBOUR1");
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(answer(postRequest("/data/report/", kConsole)).starts_with("200 "));
    EXPECT_EQ(sink->count(), 0U);
    EXPECT_EQ(feeds().counts("Named")->unclaimed, 3U);
    ASSERT_EQ(sink->problems().size(), 1U);
    const std::string words = sink->problems()[0];
    EXPECT_NE(words.find("no station takes"), std::string::npos) << words;
    EXPECT_EQ(words.find("0123456789ABCDEF0123456789"), std::string::npos) << words;
}

TEST_F(Upload, WhatIsNoUploadIsSaidToBeNone) {
    const auto sink = listen();
    EXPECT_TRUE(answer(getRequest("/")).starts_with("404 "));
    EXPECT_TRUE(answer(getRequest("/favicon.ico")).starts_with("404 "));
    EXPECT_TRUE(answer(postRequest("/data/report/", "{\"json\":true}")).starts_with("400 "));
    EXPECT_TRUE(answer("PUT /x?ID=1&PASSWORD=2 HTTP/1.1\r\nHost: vigil\r\nConnection: close\r\n\r\n")
                    .starts_with("405 "));
    EXPECT_EQ(sink->count(), 0U);
    EXPECT_EQ(feeds().counts("Home")->leftOut, 1U);
}

TEST_F(Upload, APortThatIsTakenIsTriedAgainUntilItIsFree) {
    UniqueFd other = takePort(m_port);
    const auto sink = add("Home", url());
    ASSERT_TRUE(sink->waitForState(FeedState::Retrying));
    EXPECT_TRUE(sink->lastState().words.starts_with("cannot listen at 127.0.0.1:" + std::to_string(m_port) +
                                                    ": Address already in use; tried again in "))
        << sink->lastState().words;
    const auto second = add("Second", url("/?id=1"));
    EXPECT_EQ(second->lastState().kind, FeedState::Retrying) << "it learns it at once";
    other.reset();
    ASSERT_TRUE(sink->waitForState(FeedState::Live));
    ASSERT_TRUE(second->waitForState(FeedState::Live));
    answer(getRequest("/x?" + std::string(kUnderground)));
    EXPECT_EQ(sink->count(), 1U);
}

TEST_F(Upload, AnAddressThatIsNotOurOwnIsTriedAgainToo) {
    const auto sink = add("Home", "upload://192.0.2.1:" + std::to_string(m_port) + "/");
    ASSERT_TRUE(sink->waitForState(FeedState::Retrying));
    EXPECT_NE(sink->lastState().words.find("Cannot assign requested address"), std::string::npos);
    const auto named = tryAdd("Named", "upload://somewhere.example:8090/");
    ASSERT_FALSE(named);
    EXPECT_NE(named.error().message.find("is no address to listen at"), std::string::npos);
}

TEST_F(Upload, ListensAtAllAddressesOfBothKinds) {
    const auto sink = add("Home", "upload://[::]:" + std::to_string(m_port) + "/");
    ASSERT_TRUE(sink->waitForState(FeedState::Live)) << sink->lastState().words;
    answer(getRequest("/x?" + std::string(kUnderground)));
    EXPECT_EQ(sink->count(), 1U);
}

TEST_F(Upload, ThePortIsFreeAgainOnceTheLastStationHasGone) {
    listen("One");
    listen("Two", "/?id=2");
    feeds().remove("One");
    EXPECT_TRUE(Talk(m_port).connected());
    feeds().remove("Two");
    EXPECT_FALSE(Talk(m_port).connected());
    EXPECT_TRUE(takePort(m_port));
    const auto sink = listen("Three");
    answer(getRequest("/x?" + std::string(kUnderground)));
    EXPECT_EQ(sink->count(), 1U);
}

}  // namespace
}  // namespace vigil
