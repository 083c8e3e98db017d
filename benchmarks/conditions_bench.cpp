// Judging a condition: the bound form and the whole predicate against what one would write by hand. All
// contestants must agree on every frame before anything is timed.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

#include "benchmarks/ConditionWorkload.hpp"
#include "benchmarks/Ratios.hpp"
#include "conditions/BoundCondition.hpp"
#include "conditions/ConditionPredicate.hpp"
#include "platform/Number.hpp"

namespace vigil::bench {
namespace {

const Workload& workload() {
    static const Workload work = makeWorkload();
    return work;
}

// --- compiled in: the condition is code over plain fields ---

template <const auto& kForm, std::size_t Group, std::size_t I>
bool compiledTest(const Station& station) {
    constexpr Test test = kForm[Group][I];
    const double x = station.readings[test.property].unitValue;
    return test.less ? x < test.literal : x > test.literal;
}

template <const auto& kForm, std::size_t Group, std::size_t... I>
bool compiledGroup(const Station& station, std::index_sequence<I...>) {
    return (compiledTest<kForm, Group, I>(station) && ...);
}

template <const auto& kForm, std::size_t... Group>
bool compiledGroups(const Station& station, std::index_sequence<Group...>) {
    constexpr auto inGroup = std::make_index_sequence<std::tuple_size_v<std::decay_t<decltype(kForm[0])>>>();
    return (compiledGroup<kForm, Group>(station, inGroup) || ...);
}

// Not inlined into the loop: whoever has the code still has to call it.
template <const auto& kForm>
[[gnu::noinline]] bool compiled(const Station& station) {
    return compiledGroups<kForm>(
        station, std::make_index_sequence<std::tuple_size_v<std::decay_t<decltype(kForm)>>>());
}

// --- a tree of nodes, each comparison with its slot ---

struct WalkNode {
    enum class Kind { And, Or, Less, Greater } kind;
    KeyTable::Slot slot = 0;
    double literal = 0;
    std::vector<WalkNode> parts{};

    bool holds(const ReadingsView& view) const {
        switch (kind) {
            case Kind::And:
                for (const WalkNode& part : parts)
                    if (!part.holds(view)) return false;
                return true;
            case Kind::Or:
                for (const WalkNode& part : parts)
                    if (part.holds(view)) return true;
                return false;
            case Kind::Less: {
                const AgentProperty* reading = view.bySlot[slot];
                return reading && reading->unitValue() < literal;
            }
            case Kind::Greater: {
                const AgentProperty* reading = view.bySlot[slot];
                return reading && reading->unitValue() > literal;
            }
        }
        return false;
    }
};

template <class Form>
WalkNode treeOf(const Form& form) {
    WalkNode whole{.kind = WalkNode::Kind::Or};
    for (const auto& group : form) {
        WalkNode both{.kind = WalkNode::Kind::And};
        for (const Test& test : group)
            both.parts.push_back({.kind = test.less ? WalkNode::Kind::Less : WalkNode::Kind::Greater,
                                  .slot = static_cast<KeyTable::Slot>(test.property),
                                  .literal = test.literal});
        whole.parts.push_back(both.parts.size() == 1 ? both.parts[0] : both);
    }
    return whole.parts.size() == 1 ? whole.parts[0] : whole;
}

// --- the condition language ---

template <class Form>
std::string textOf(const Form& form) {
    std::string text;
    for (const auto& group : form) {
        text += text.empty() ? "" : " OR ";
        std::string both;
        for (const Test& test : group) {
            both += both.empty() ? "" : " AND ";
            both += keyOf(test.property) + ".unitValue " + (test.less ? "<" : ">") + " ";
            appendNumber(both, test.literal);
        }
        text += both;
    }
    return text;
}

// --- one form, all contestants ---

template <class Judge>
void time(const std::string& name, Judge judge) {
    benchmark::RegisterBenchmark(name.c_str(), [judge](benchmark::State& state) {
        for (auto _ : state)
            for (std::size_t frame = 0; frame < kFrames; ++frame)
                benchmark::DoNotOptimize(judge(frame));
        state.counters["per_evaluation"] =
            benchmark::Counter(static_cast<double>(kFrames),
                               benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    });
}

template <class Judge>
std::string verdicts(Judge judge) {
    std::string all;
    for (std::size_t frame = 0; frame < kFrames; ++frame)
        all += judge(frame) ? '1' : '0';
    return all;
}

template <const auto& kForm>
void compete(const std::string& form) {
    const auto parsed = ConditionPredicate::predicateWithFormat(textOf(kForm));
    if (!parsed) {
        std::fprintf(stderr, "%s: %s\n", form.c_str(), parsed.error().message().c_str());
        std::exit(1);
    }
    const Workload& work = workload();
    const auto predicate = parsed.value();
    const auto bound = std::make_shared<BoundCondition>(predicate->tree(), *work.batches[0]->table());
    const auto tree = std::make_shared<WalkNode>(treeOf(kForm));

    const auto byCode = [&work](std::size_t frame) { return compiled<kForm>(work.stations[frame]); };
    const auto byWalk = [&work, tree](std::size_t frame) { return tree->holds(work.batches[frame]->view()); };
    const auto byBound = [&work, bound](std::size_t frame) {
        return bound->holds(work.batches[frame]->view());
    };
    const auto byPredicate = [&work, predicate](std::size_t frame) {
        return predicate->evaluateWithObject(work.batches[frame]->view());
    };

    const std::string expected = verdicts(byCode);
    if (verdicts(byWalk) != expected || verdicts(byBound) != expected || verdicts(byPredicate) != expected) {
        std::fprintf(stderr, "%s: the contestants disagree, nothing is timed\n", form.c_str());
        std::exit(1);
    }
    std::printf("%-5s true in %3ld of %zu frames\n", form.c_str(),
                std::count(expected.begin(), expected.end(), '1'), kFrames);
    time(form + "/compiled_in", byCode);
    time(form + "/tree_walk", byWalk);
    time(form + "/bound", byBound);
    time(form + "/predicate", byPredicate);
}

// What it costs to get at a batch's readings at all, beyond plain fields: the batch, its view, one slot.
void timeLookUp() {
    const Workload& work = workload();
    time("look_up",
         [&work](std::size_t frame) { return work.batches[frame]->view().at(0)->unitValue() < 10; });
}

void printTable(const Fastest& fastest) {
    const double lookUp = fastest.of("look_up") / kFrames;
    std::fflush(stdout);
    std::printf("\nnanoseconds per evaluation (fastest repetition); the look-up of a batch takes %.2f\n",
                lookUp);
    std::printf("%-6s%12s%12s%12s%12s%28s%18s\n", "form", "compiled in", "tree walk", "bound", "predicate",
                "(bound-look-up)/compiled", "bound/tree walk");
    for (const char* form : {"c2", "c8", "c64", "c64w"}) {
        const auto of = [&](const char* who) { return fastest.of(std::string(form) + who) / kFrames; };
        const double code = of("/compiled_in");
        const double walk = of("/tree_walk");
        const double bound = of("/bound");
        if (code == 0 || walk == 0 || bound == 0) continue;  // filtered out
        std::printf("%-6s%12.2f%12.2f%12.2f%12.2f%28.2f%18.2f\n", form, code, walk, bound, of("/predicate"),
                    (bound - lookUp) / code, bound / walk);
    }
}

}  // namespace
}  // namespace vigil::bench

int main(int argc, char** argv) {
    using namespace vigil::bench;
    compete<kC2>("c2");
    compete<kC8>("c8");
    compete<kC64>("c64");
    compete<kC64w>("c64w");
    timeLookUp();
    return runWithRatios(argc, argv, printTable);
}
