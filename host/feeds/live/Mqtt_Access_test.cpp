#include "host/feeds/live/MqttStations.hpp"
#include "host/feeds/live/testing/MosquittoBroker.hpp"

// Passwords, certificates, and brokers that refuse.

namespace vigil {
namespace {

using std::chrono::milliseconds;

class MqttAccess : public LiveBench {
  protected:
    void TearDown() override {
        m_feeds.reset();
        m_broker.reset();
        ::unsetenv("SSL_CERT_FILE");
        LiveBench::TearDown();
    }
    void startBroker(const std::string& settings) {
        m_broker = std::make_unique<MosquittoBroker>(m_folder, settings);
        m_broker->start();
    }
    std::string at(const std::string& before, const std::string& behind) const {
        return before + std::to_string(m_broker->port()) + behind;
    }
    std::string lastWords(const std::shared_ptr<RecordingSink>& sink) {
        EXPECT_TRUE(sink->waitForState(FeedState::Retrying));
        return sink->lastState().words;
    }
    void startSecureBroker(const std::string& names = "DNS:localhost,IP:127.0.0.1") {
        makeCertificates(m_folder, names);
        startBroker("allow_anonymous true\ncertfile " + path("server.pem") + "\nkeyfile " +
                    path("server.key") + "\n");
    }

    std::unique_ptr<MosquittoBroker> m_broker;
};

TEST_F(MqttAccess, SignsOnWithAUserAndASecret) {
    ASSERT_EQ(std::system(("mosquitto_passwd -b -c " + path("users") + " me 'a b:c'").c_str()), 0);
    startBroker("allow_anonymous false\npassword_file " + path("users") + "\n");
    m_secrets = {{"right", "a b:c"}, {"wrong", "x"}};
    const auto right = add("Right", at("mqtt://me@localhost:", "/a?secret=right"));
    const auto wrong = add("Wrong", at("mqtt://me@localhost:", "/a?secret=wrong"));
    const auto none = add("None", at("mqtt://me@localhost:", "/a?secret=none"));
    const auto nobody = add("Nobody", at("mqtt://localhost:", "/a"));
    EXPECT_TRUE(right->waitForState(FeedState::Live));
    EXPECT_NE(lastWords(wrong).find("Connection Refused: not authorised"), std::string::npos)
        << lastWords(wrong);
    EXPECT_NE(lastWords(none).find("there is no secret named \"none\""), std::string::npos)
        << lastWords(none);
    EXPECT_NE(lastWords(nobody).find("not authorised"), std::string::npos) << lastWords(nobody);
    for (const auto& sink : {right, wrong, none, nobody})
        for (const FeedState& state : sink->states())
            EXPECT_EQ(state.words.find("a b:c"), std::string::npos);
    m_broker->publish("a", "1", "-u me -P 'a b:c'");
    EXPECT_TRUE(right->waitForMessages(1));
}

TEST_F(MqttAccess, TrustsTheCertificatesOfAFile) {
    startSecureBroker();
    const auto sink = add("Home", at("mqtts://localhost:", "/a/b?ca=ca.pem"));
    ASSERT_TRUE(sink->waitForState(FeedState::Live)) << sink->lastState().words;
    const std::string large(200000, 'x');
    m_broker->publish("a/b", large, "--cafile " + path("ca.pem"));
    m_broker->publish("a/b", "2", "--cafile " + path("ca.pem"));
    ASSERT_TRUE(sink->waitForMessages(2));
    EXPECT_EQ(sink->payloads()[0], large);
    m_broker->stop();
    ASSERT_TRUE(sink->waitForState(FeedState::Retrying));
    m_broker->start();
    EXPECT_TRUE(sink->waitForState(FeedState::Live));
    EXPECT_LT(timeOf([&] { feeds().stop(); }), kSoon);
}

TEST_F(MqttAccess, TrustsTheCertificatesOfTheSystemWhereNoFileIsNamed) {
    startSecureBroker();
    const auto stranger = add("Stranger", at("mqtts://localhost:", "/a"));
    EXPECT_NE(lastWords(stranger).find("certificate verify failed"), std::string::npos)
        << lastWords(stranger);
    feeds().remove("Stranger");
    ::setenv("SSL_CERT_FILE", path("ca.pem").c_str(), 1);  // where the library looks for the system's
    const auto sink = add("Home", at("mqtts://localhost:", "/a"));
    EXPECT_TRUE(sink->waitForState(FeedState::Live)) << sink->lastState().words;
}

TEST_F(MqttAccess, DoesNotTrustABrokerOfAnotherName) {
    startSecureBroker("DNS:elsewhere.example");
    const auto sink = add("Home", at("mqtts://localhost:", "/a?ca=ca.pem"));
    EXPECT_NE(lastWords(sink).find("certificate verify failed"), std::string::npos) << lastWords(sink);
}

TEST_F(MqttAccess, DoesNotTrustABrokerOfAnotherAuthority) {
    startSecureBroker();
    std::filesystem::create_directory(path("others"));
    makeCertificates(path("others"));
    const auto authority = add("Authority", at("mqtts://127.0.0.1:", "/a?ca=others/ca.pem"));
    EXPECT_NE(lastWords(authority).find("certificate verify failed"), std::string::npos)
        << lastWords(authority);
    write("none.pem", "nothing");
    const auto nothing = add("Nothing", at("mqtts://localhost:", "/a?ca=none.pem"));
    EXPECT_NE(lastWords(nothing).find("none.pem"), std::string::npos) << lastWords(nothing);
    const auto missing = add("Missing", at("mqtts://localhost:", "/a?ca=gone.pem"));
    EXPECT_NE(lastWords(missing).find("gone.pem: No such file or directory"), std::string::npos)
        << lastWords(missing);
}

TEST_F(MqttAccess, AnAnswerThatNeverComesIsNotWaitedForForEver) {
    m_timing.connect = milliseconds(300);
    const UniqueFd silent = takePort();
    const auto sink = add("Home", "mqtt://127.0.0.1:" + std::to_string(portOf(silent)) + "/a");
    ASSERT_TRUE(sink->waitForState(FeedState::Retrying));
    EXPECT_NE(sink->lastState().words.find("no answer within 300 ms"), std::string::npos);
    const auto secure = add("Secure", "mqtts://127.0.0.1:" + std::to_string(portOf(silent)) + "/a");
    EXPECT_TRUE(secure->waitForState(FeedState::Retrying));
    EXPECT_LT(timeOf([&] { feeds().stop(); }), kSoon);
}

TEST_F(MqttAccess, ANameThatNobodyKnowsIsTriedAgain) {
    const auto sink = add("Home", "mqtt://no-such-host.invalid/a");
    ASSERT_TRUE(sink->waitForState(FeedState::Retrying));
    EXPECT_NE(sink->lastState().words.find("the broker at no-such-host.invalid:1883: "), std::string::npos);
    EXPECT_LT(timeOf([&] { feeds().stop(); }), kSoon);
}

// A broker of a few lines, since the real one allows every topic.
TEST_F(MqttAccess, ATopicThatTheBrokerDoesNotAllowIsAFailure) {
    const UniqueFd door = takePort();
    std::thread broker([&] {
        const UniqueFd talk(::accept(door.get(), nullptr, nullptr));
        char bytes[1000];
        EXPECT_GT(::recv(talk.get(), bytes, sizeof bytes, 0), 0);
        EXPECT_EQ(::send(talk.get(), "\x20\x02\x00\x00", 4, 0), 4);  // accepted
        EXPECT_GT(::recv(talk.get(), bytes, sizeof bytes, 0), 4);    // the wish for a topic
        const char refused[] = {'\x90', 3, bytes[2], bytes[3], '\x80'};
        EXPECT_EQ(::send(talk.get(), refused, sizeof refused, 0), 5);
        while (::recv(talk.get(), bytes, sizeof bytes, 0) > 0) {
        }
    });
    const std::string place = "127.0.0.1:" + std::to_string(portOf(door));
    const auto sink = add("Home", "mqtt://" + place + "/a/b");
    EXPECT_TRUE(sink->waitForState(FeedState::Failed));
    EXPECT_EQ(sink->lastState().words, "the broker at " + place + " does not allow the topic \"a/b\"");
    feeds().remove("Home");
    broker.join();
}

TEST_F(MqttAccess, WhatABrokerSaysThatIsNoMqttHarmsNobody) {
    const UniqueFd door = takePort();
    std::atomic<bool> ending{false};
    std::thread broker([&] {
        unsigned char next = 1;
        while (!ending) {
            const UniqueFd talk(::accept(door.get(), nullptr, nullptr));
            if (!talk) break;
            std::string bytes = "\x20\x02";
            bytes += std::string("\x00\x00", 2);
            for (int i = 0; i < 300; ++i)
                bytes += static_cast<char>(next = static_cast<unsigned char>(next * 167U + 13U));
            ::send(talk.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
            ::shutdown(talk.get(), SHUT_WR);
            char in[1000];
            while (::recv(talk.get(), in, sizeof in, 0) > 0) {
            }
        }
    });
    const auto sink = add("Home", "mqtt://127.0.0.1:" + std::to_string(portOf(door)) + "/a");
    EXPECT_TRUE(sink->waitFor([&] { return sink->states().size() > 8; }));
    feeds().remove("Home");
    ending = true;
    ::shutdown(door.get(), SHUT_RDWR);
    broker.join();
}

TEST(MqttStations, EachTopicIsAskedForOnceAndAnewForWhoComes) {
    MqttStations stations;
    const auto add = [&stations](const std::string& topic, int qos) {
        const auto outlet = std::make_shared<FeedOutlet>(
            FeedOutlet::Options{topic, std::make_shared<RecordingSink>(), [] { return Date(); }, {}});
        stations.add(outlet, topic, qos);
        return outlet;
    };
    const auto one = add("a/b", 0);
    add("a/#", 1);
    const auto known = stations.wanted(0);
    EXPECT_EQ(known.fresh, (std::set<std::string>{"a/#", "a/b"}));
    add("a/b", 1);
    const auto wanted = stations.wanted(known.version);
    EXPECT_EQ(wanted.topics, (std::map<std::string, int>{{"a/#", 1}, {"a/b", 1}}));
    EXPECT_EQ(wanted.fresh, std::set<std::string>{"a/b"});
    std::vector<std::shared_ptr<FeedOutlet>> found;
    stations.find("a/b", found);
    EXPECT_EQ(found.size(), 3U);
    stations.find("a/c/d", found);
    EXPECT_EQ(found.size(), 1U);
    stations.find("a", found);
    EXPECT_EQ(found.size(), 1U) << "# stands for no level, too";
    stations.remove(*one);
    stations.find("a/b", found);
    EXPECT_EQ(found.size(), 2U);
    EXPECT_NE(stations.version(), wanted.version);
}

}  // namespace
}  // namespace vigil
