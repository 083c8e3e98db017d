#include <bit>
#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "host/kit/KeyedArchive.hpp"
#include "host_contract/AgentProperty.hpp"
#include "platform/Controls.hpp"
#include "tests/support/ArchiveSamples.hpp"

// Random graphs, and the verbs that damage: whatever stands in a text, reading gives a whole object or an
// error with a path, and what was read can be written.

namespace vigil {
namespace {

using namespace std::string_literals;
using tests::Sample;

/// Graphs of every kind of value with shared objects; the same seed gives the same graph.
class RandomGraph {
  public:
    RandomGraph(unsigned seed, std::shared_ptr<Object> station)
        : m_random(seed), m_station(std::move(station)) {}

    std::shared_ptr<Object> object(int depth) {
        switch (below(6)) {
            case 0:
                return kept(std::make_shared<TextField>(text()));
            case 1:
                return kept(MenuItem::separatorItem());
            case 2:
                return kept(
                    std::make_shared<AgentProperty>(AgentProperty::number(text(), real(), Date(real()))));
            case 3:
                if (!m_objects.empty()) return m_objects[below(m_objects.size())];
                return m_station;
            default:
                return sample(depth);
        }
    }

    std::shared_ptr<Object> sample(int depth) {
        auto made = std::make_shared<Sample>();
        for (Value& entry : made->entries)
            if (below(3) != 0) entry = value(depth - 1);
        return kept(made);  // only whole objects are shared, so there is no cycle
    }

  private:
    std::size_t below(std::size_t end) { return m_random() % end; }

    std::shared_ptr<Object> kept(std::shared_ptr<Object> object) {
        m_objects.push_back(object);
        return object;
    }

    std::string text() {
        std::string made;
        for (std::size_t length = below(12); length > 0; --length)
            made += static_cast<char>(below(4) == 0 ? below(256) : 'a' + below(26));
        return made;
    }

    double real() {
        if (below(2) == 0) return static_cast<double>(below(1000)) / 10;
        const auto any = std::bit_cast<double>(std::uint64_t{m_random()} << 32 | m_random());
        return std::isnan(any) ? std::nan("") : any;
    }

    Value value(int depth) {
        switch (below(depth > 0 ? 9 : 6)) {
            case 0:
                return Value(below(2) == 0);
            case 1:
                return Value(static_cast<std::int64_t>(std::uint64_t{m_random()} << 32 | m_random()));
            case 2:
                return Value(real());
            case 3:
                return Value(text());
            case 4:
                return Value(Date(real()));
            case 5:
                return Value();
            case 6: {
                ValueList list(below(5));
                for (Value& item : list)
                    item = value(depth - 1);
                return list;
            }
            case 7: {
                ValueDictionary entries;
                for (std::size_t i = below(5); i > 0; --i)
                    entries.emplace_back((below(3) == 0 ? "$" : "") + text() + std::to_string(i),
                                         value(depth - 1));
                return entries;
            }
            default:
                return Value(object(depth - 1));
        }
    }

    std::mt19937 m_random;
    std::shared_ptr<Object> m_station;
    std::vector<std::shared_ptr<Object>> m_objects;
};

class KeyedArchiveDamageTest : public testing::Test {
  protected:
    static void SetUpTestSuite() { tests::registerArchiveSamples(); }

    std::string graphText(unsigned seed) {
        RandomGraph graph(seed, m_station);
        auto text = writeArchive(graph.sample(6), m_station.get());
        EXPECT_TRUE(text) << text.error().message;
        return text ? text.value() : std::string();
    }

    /// Whether it was read; fails when neither an object nor a proper error comes of it.
    bool survives(const std::string& text) {
        const auto object = readArchive(text, m_station);
        if (!object) {
            EXPECT_NE(object.error().message.find(": "), std::string::npos) << object.error().message;
            return false;
        }
        EXPECT_TRUE(object.value());
        const auto rewritten = writeArchive(object.value(), m_station.get());
        EXPECT_TRUE(rewritten) << rewritten.error().message;
        return true;
    }

    /// A text of a few hundred bytes with every form in it.
    std::string everyForm() {
        auto root = std::make_shared<Sample>();
        auto field = std::make_shared<TextField>("t\"\xC3\xBC");
        root->entries[0] = ValueList{Value(true), Value(), Value(-1.5), Value(12), Value(field)};
        root->entries[1] = ValueDictionary{{"$", Value(field)}, {"d", Value(Date(HUGE_VAL))}};
        root->entries[2] = Value(m_station);
        root->entries[8] = Value("\xFF");
        return writeArchive(root, m_station.get()).value();
    }

    std::shared_ptr<tests::ReferredStation> m_station = std::make_shared<tests::ReferredStation>();
};

TEST_F(KeyedArchiveDamageTest, randomGraphsAreWrittenAgainAsTheSameBytes) {
    std::size_t bytes = 0;
    for (unsigned seed = 1; seed <= 500; ++seed) {
        SCOPED_TRACE(seed);
        const std::string text = graphText(seed);
        bytes += text.size();
        const auto object = readArchive(text, m_station);
        ASSERT_TRUE(object) << object.error().message;
        const auto again = writeArchive(object.value(), m_station.get());
        ASSERT_TRUE(again) << again.error().message;
        ASSERT_EQ(again.value(), text);
    }
    EXPECT_GT(bytes, 300'000u) << "the graphs are too small to show anything";
}

TEST_F(KeyedArchiveDamageTest, cutAnywhereItIsRefused) {
    std::string text = everyForm();
    ASSERT_TRUE(survives(text));
    ASSERT_EQ(text.back(), '\n');
    text.pop_back();
    EXPECT_TRUE(survives(text)) << "the last line break is not needed";
    while (!text.empty()) {
        text.pop_back();
        EXPECT_FALSE(survives(text)) << text;
    }
}

TEST_F(KeyedArchiveDamageTest, withAnyByteChangedItIsReadOrRefused) {
    const std::string whole = everyForm();
    int read = 0;
    int refused = 0;
    for (std::size_t i = 0; i < whole.size(); ++i) {
        const std::string others = "\0 \"\\{}[],:0129-+.eE$abtn\x7F\x80\xC3\xFF"s;
        for (const char other :
             others + static_cast<char>(whole[i] ^ 1) + static_cast<char>(whole[i] ^ 0x20)) {
            std::string text = whole;
            text[i] = other;
            ++(survives(text) ? read : refused);
        }
    }
    EXPECT_GT(read, 100) << "a digit or a letter of a text may change";
    EXPECT_GT(refused, 1000);
}

TEST_F(KeyedArchiveDamageTest, withAnyPartLeftOutOrDoubledItIsReadOrRefused) {
    const std::string whole = graphText(7);
    std::mt19937 random(1);
    for (int i = 0; i < 2000; ++i) {
        const std::size_t begin = random() % whole.size();
        const std::size_t length = random() % 40;
        std::string text = whole;
        if (i % 2 == 0)
            text.erase(begin, length);
        else
            text.insert(random() % whole.size(), whole, begin, length);
        survives(text);
    }
}

}  // namespace
}  // namespace vigil
