#include "host/site/HistoryRow.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <map>
#include <random>

#include <gtest/gtest.h>

#include "host/site/HistoryBytes.hpp"
#include "host_contract/FourCharCode.hpp"

namespace vigil {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// A dictionary that takes every text of two bytes and more.
class Texts {
  public:
    TextNumber numberOf() {
        return [this](std::string_view text) -> std::uint64_t {
            if (text.size() < 2) return 0;
            const auto place = m_numbers.try_emplace(std::string(text), m_numbers.size() + 1).first;
            m_texts[place->second] = place->first;
            return place->second;
        };
    }
    TextOfNumber textOf() {
        return [this](std::uint64_t number) -> std::optional<std::string> {
            const auto found = m_texts.find(number);
            if (found == m_texts.end()) return std::nullopt;
            return found->second;
        };
    }

  private:
    std::map<std::string, std::uint64_t> m_numbers;
    std::map<std::uint64_t, std::string> m_texts;
};

void expectSameTime(const std::optional<Date>& a, const std::optional<Date>& b) {
    ASSERT_EQ(a.has_value(), b.has_value());
    if (!a) return;
    EXPECT_TRUE(sameBits(a->secondsSinceReference(), b->secondsSinceReference()));
}

void expectSame(const Readings& a, const Readings& b) {
    EXPECT_EQ(a.table()->keys(), b.table()->keys());
    ASSERT_EQ(a.entries().size(), b.entries().size());
    for (std::size_t i = 0; i < a.entries().size(); ++i) {
        const AgentProperty& x = a.entries()[i];
        const AgentProperty& y = b.entries()[i];
        SCOPED_TRACE(x.propertyName());
        EXPECT_EQ(x.propertyName(), y.propertyName());
        EXPECT_EQ(x.name(), y.name());
        EXPECT_EQ(x.unit(), y.unit());
        EXPECT_EQ(x.type(), y.type());
        EXPECT_EQ(x.visible(), y.visible());
        EXPECT_TRUE(sameBits(x.value(), y.value())) << x.value() << " and " << y.value();
        EXPECT_TRUE(sameBits(x.unitValue(), y.unitValue())) << x.unitValue() << " and " << y.unitValue();
        EXPECT_EQ(x.parts().stringValue, y.parts().stringValue);
        EXPECT_EQ(x.parts().unitStringValueWithUnitShort, y.parts().unitStringValueWithUnitShort);
        expectSameTime(x.time(), y.time());
    }
}

struct Packed {
    std::string row;
    HistoryLayout layout;
    Texts texts;
};

Packed packed(const Readings& batch, Date started, std::optional<std::uint64_t> sequence = {}) {
    Packed made;
    made.layout = HistoryLayout().grown(batch);
    packRow(made.row, made.layout, batch, started, sequence, made.texts.numberOf());
    return made;
}

/// Numbers, times and texts as stations send them on their best and their worst days.
class RandomBatches {
  public:
    explicit RandomBatches(unsigned seed) : m_random(seed) {}

    std::shared_ptr<const Readings> batch(Date started) {
        std::vector<AgentProperty> entries;
        const int count = upTo(12);
        for (int i = 0; i < count; ++i)
            entries.emplace_back(label(), parts(started));
        if (upTo(3) > 0) return Readings::make(std::move(entries));
        // A table with keys that this batch does not bring.
        std::vector<std::string> keys{"never"};
        for (int i = 12; i-- > 0;)
            keys.push_back("key" + std::to_string(i));
        return Readings::make(KeyTable::make(std::move(keys)), std::move(entries));
    }
    int upTo(int most) { return std::uniform_int_distribution<int>(0, most)(m_random); }

  private:
    std::shared_ptr<const AgentPropertyLabel> label() {
        const int key = upTo(11);
        static constexpr FourCharCode kTypes[] = {kTextType, kDateType, kNumericType, FourCharCode{0x80}};
        return std::make_shared<const AgentPropertyLabel>(
            AgentPropertyLabel{"key" + std::to_string(key), upTo(9) ? "Key" : text(),
                               upTo(9) ? "km/h" : text(), kTypes[upTo(9) ? 2 : upTo(3)], upTo(9) > 0});
    }
    AgentProperty::Parts parts(Date started) {
        AgentProperty::Parts made;
        made.value = number();
        made.unitValue = upTo(1) ? made.value : number();
        if (upTo(2) == 0) made.stringValue = text();
        if (upTo(4) == 0) made.unitStringValueWithUnitShort = text();
        switch (upTo(5)) {
            case 0:
                break;
            case 1:
                made.time = Date(number());
                break;
            case 2:
                made.time = started.plus(-upTo(600));
                break;
            case 3:
                made.time = started.plus(upTo(1000000) / 1e6);
                break;
            default:
                made.time = started;
        }
        return made;
    }
    double number() {
        switch (upTo(8)) {
            case 0:
                return std::bit_cast<double>(m_random());
            case 1:
                return upTo(3) ? -0.0 : 0.0;
            case 2:
                return upTo(1) ? kInfinity : -kInfinity;
            case 3:
                return upTo(1) ? kNaN : std::bit_cast<double>(0x7FF0000000000001U);
            case 4:
                return static_cast<double>(static_cast<std::int64_t>(m_random())) / 1e4;
            case 5:
                return upTo(200000) / 3.6;
            default:
                return (upTo(2000000) - 1000000) / std::pow(10, upTo(5));
        }
    }
    std::string text() {
        std::string made(static_cast<std::size_t>(upTo(4)), 'x');
        for (char& c : made)
            c = static_cast<char>(upTo(3) ? 'a' + upTo(3) : upTo(255));
        return made;
    }

    std::mt19937_64 m_random;
};

TEST(HistoryRow, GivesBackRandomBatchesExactly) {
    RandomBatches random(20261121);
    for (int i = 0; i < 5000; ++i) {
        SCOPED_TRACE(i);
        const Date started(794826000 + random.upTo(1000000) / 1e3);
        const auto batch = random.batch(started);
        const auto sequence =
            random.upTo(1)
                ? std::optional<std::uint64_t>(std::numeric_limits<std::uint64_t>::max() >> random.upTo(63))
                : std::nullopt;
        Packed made = packed(*batch, started, sequence);
        const auto back = unpackRow(made.row, made.layout, started, made.texts.textOf());
        ASSERT_TRUE(back) << back.error().message;
        EXPECT_EQ(back.value().sequence, sequence);
        expectSame(*batch, *back.value().readings);
        if (HasFailure()) return;
    }
}

TEST(HistoryRow, GivesBackTheReadingsOfAChoiceExactlyAndNoOthers) {
    RandomBatches random(20261122);
    std::size_t chosen = 0, passedOver = 0;
    for (int i = 0; i < 2000; ++i) {
        SCOPED_TRACE(i);
        const auto batch = random.batch(Date(0));
        Packed made = packed(*batch, Date(0), 5);
        std::vector<std::string> keys{"nowhere"}, held;
        for (const std::string& key : batch->table()->keys())
            if (random.upTo(1)) held.push_back(key);
        keys.insert(keys.end(), held.rbegin(), held.rend());
        std::vector<AgentProperty> entries;
        for (const AgentProperty& entry : batch->entries())
            if (std::find(keys.begin(), keys.end(), entry.propertyName()) != keys.end())
                entries.push_back(entry);
        const RowChoice choice(made.layout, keys);
        const auto back = unpackRow(made.row, made.layout, Date(0), made.texts.textOf(), &choice);
        ASSERT_TRUE(back) << back.error().message;
        EXPECT_EQ(back.value().sequence, 5u);
        expectSame(*Readings::make(KeyTable::make(held), entries), *back.value().readings);
        if (HasFailure()) return;
        chosen += entries.size();
        passedOver += batch->entries().size() - entries.size();
    }
    EXPECT_GT(chosen, 3000u);
    EXPECT_GT(passedOver, 3000u);
}

TEST(HistoryRow, GivesBackOrderAndDuplicates) {
    const auto batch = Readings::make({AgentProperty::number("b", 2, std::nullopt),
                                       AgentProperty::number("a", 1, std::nullopt),
                                       AgentProperty::number("b", 3, std::nullopt)});
    Packed made = packed(*batch, Date(0));
    // The layout has learned of both keys already, so this row lists its places.
    const auto other = Readings::make(batch->table(), {batch->entries()[1], batch->entries()[0]});
    std::string row;
    packRow(row, made.layout, *other, Date(0), std::nullopt, made.texts.numberOf());
    const auto back = unpackRow(made.row, made.layout, Date(0), made.texts.textOf());
    const auto otherBack = unpackRow(row, made.layout, Date(0), made.texts.textOf());
    ASSERT_TRUE(back);
    ASSERT_TRUE(otherBack);
    expectSame(*batch, *back.value().readings);
    expectSame(*other, *otherBack.value().readings);
}

TEST(HistoryRow, TakesThreeBytesForAnOrdinaryReading) {
    std::vector<AgentProperty> entries;
    for (int i = 0; i < 40; ++i)
        entries.push_back(AgentProperty::number("key" + std::to_string(i), 8.5 + i, Date(1000)));
    const auto batch = Readings::make(std::move(entries));
    EXPECT_EQ(packed(*batch, Date(1000)).row.size(), 1 + 5 + 40 * 3U);
}

TEST(HistoryRow, RefusesEveryTruncationAndEveryTail) {
    RandomBatches random(7);
    for (int i = 0; i < 200; ++i) {
        const auto batch = random.batch(Date(0));
        Packed made = packed(*batch, Date(0), 5);
        EXPECT_FALSE(unpackRow(made.row + '\0', made.layout, Date(0), made.texts.textOf()));
        for (std::size_t size = 0; size < made.row.size(); ++size)
            EXPECT_FALSE(unpackRow(made.row.substr(0, size), made.layout, Date(0), made.texts.textOf()))
                << size << " of " << made.row.size();
    }
}

TEST(HistoryRow, ReadsDamagedBytesWithoutHarm) {
    RandomBatches random(11);
    int refused = 0;
    for (int i = 0; i < 3000; ++i) {
        const auto batch = random.batch(Date(0));
        Packed made = packed(*batch, Date(0), 5);
        const auto at = static_cast<std::size_t>(random.upTo(static_cast<int>(made.row.size()) - 1));
        made.row[at] = static_cast<char>(random.upTo(255));
        const auto back = unpackRow(made.row, made.layout, Date(0), made.texts.textOf());
        refused += back ? 0 : 1;
        if (back) {
            EXPECT_LE(back.value().readings->entries().size(), made.row.size());
        }
    }
    EXPECT_GT(refused, 300);
}

}  // namespace
}  // namespace vigil
