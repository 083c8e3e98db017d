#include "host/services/LinuxSpeech.hpp"

#include <thread>

#include <gmock/gmock.h>

#include "tests/support/FakeWorld.hpp"

namespace vigil {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Delegate : public SpeechSynthesizerDelegate {
  public:
    void speechSynthesizerDidFinishSpeaking(SpeechSynthesizer&, bool finished) override {
        m_reports.push_back(finished);
        m_world = World::current();
    }
    std::vector<bool> m_reports;
    World* m_world = nullptr;
};

class Sink : public SpeechSink {
  public:
    Id speak(const std::optional<std::string>& text, Ended ended) override {
        m_texts.push_back(text.value_or("(none)"));
        if (m_endsAtOnce) ended(false);
        m_ended.push_back(std::move(ended));
        return m_ended.size();
    }
    void stop(Id id) override { m_stopped.push_back(id); }

    bool m_endsAtOnce = false;
    std::vector<std::string> m_texts;
    std::vector<Ended> m_ended;
    std::vector<Id> m_stopped;
};

class LinuxSpeeches : public testing::Test {
  protected:
    void serve() {
        while (m_mailbox.serveOneNested(std::chrono::steady_clock::now())) {
        }
    }
    Mailbox m_mailbox;
    Sink m_sink;
    LinuxSpeech m_speech{m_sink, m_mailbox};
    Delegate m_delegate;
};

TEST_F(LinuxSpeeches, AReportComesThroughTheLoopOfTheMainThreadInTheWorldThatAsked) {
    FakeWorld world;
    const auto synthesizer = m_speech.makeSynthesizer();
    synthesizer->setDelegate(&m_delegate);
    {
        const World::Scope scope(world);
        EXPECT_TRUE(synthesizer->startSpeakingString("Gale"));
    }
    std::thread([&] { m_sink.m_ended[0](true); }).join();
    EXPECT_THAT(m_delegate.m_reports, IsEmpty()) << "nobody has turned the loop yet";
    serve();
    EXPECT_THAT(m_delegate.m_reports, ElementsAre(true));
    EXPECT_EQ(m_delegate.m_world, &world);
    EXPECT_EQ(World::current(), nullptr);
    EXPECT_THAT(m_sink.m_texts, ElementsAre("Gale"));
}

TEST_F(LinuxSpeeches, OneThatEndsWithinTheCallIsReportedByTheLoopToo) {
    m_sink.m_endsAtOnce = true;
    const auto synthesizer = m_speech.makeSynthesizer();
    synthesizer->setDelegate(&m_delegate);
    synthesizer->startSpeakingString(std::nullopt);
    EXPECT_THAT(m_delegate.m_reports, IsEmpty());
    serve();
    EXPECT_THAT(m_delegate.m_reports, ElementsAre(false));
}

TEST_F(LinuxSpeeches, EveryCallHasItsOwnReport) {
    const auto synthesizer = m_speech.makeSynthesizer();
    synthesizer->setDelegate(&m_delegate);
    synthesizer->startSpeakingString("one");
    synthesizer->startSpeakingString("two");
    m_sink.m_ended[1](false);
    m_sink.m_ended[0](true);
    serve();
    EXPECT_THAT(m_delegate.m_reports, ElementsAre(false, true));
}

TEST_F(LinuxSpeeches, ASynthesizerThatGoesEndsItsSpeechAndReportsNoMore) {
    auto synthesizer = m_speech.makeSynthesizer();
    synthesizer->setDelegate(&m_delegate);
    synthesizer->startSpeakingString("one");
    synthesizer->startSpeakingString("two");
    m_sink.m_ended[0](true);
    serve();
    synthesizer.reset();
    EXPECT_THAT(m_sink.m_stopped, ElementsAre(2u)) << "the first had ended";
    m_sink.m_ended[1](false);
    serve();
    EXPECT_THAT(m_delegate.m_reports, ElementsAre(true));
}

TEST_F(LinuxSpeeches, AFullMailboxLosesNoReport) {
    while (m_mailbox.dispatchAsync([] {})) {
    }
    const auto synthesizer = m_speech.makeSynthesizer();
    synthesizer->setDelegate(&m_delegate);
    synthesizer->startSpeakingString("one");
    m_sink.m_ended[0](true);
    serve();
    EXPECT_THAT(m_delegate.m_reports, ElementsAre(true));
}

TEST_F(LinuxSpeeches, WithoutADelegateNothingHappens) {
    const auto synthesizer = m_speech.makeSynthesizer();
    synthesizer->startSpeakingString("one");
    m_sink.m_ended[0](true);
    serve();
    EXPECT_THAT(m_sink.m_stopped, IsEmpty());
}

}  // namespace
}  // namespace vigil
