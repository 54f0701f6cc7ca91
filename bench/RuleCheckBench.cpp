// Norm rule check of welded texts against the cost of the fresh script engine each check makes.
#include "section_spec/WeldSectionNormParser.h"

#include <benchmark/benchmark.h>

#include <QScriptEngine>

namespace {

// A welded H (3 rules) and a cruciform section (12 rules); all rules hold.
const char* const kTexts[] = {"H400*200*8*13", "H400*200*8*13+H300*200*8*13"};

void BM_RuleCheck(benchmark::State& state) {
    const QString text = QString::fromLatin1(kTexts[state.range(0)]);
    state.SetLabel(kTexts[state.range(0)]);
    for (auto _ : state) {
        skr::section::WeldSectionNormParser norms;
        const bool held = norms.match(text) && norms.checkRules();
        if (!held) state.SkipWithError("rule check failed");
        benchmark::DoNotOptimize(held);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_RuleCheck)->Arg(0)->Arg(1);

void BM_ScriptEngineFloor(benchmark::State& state) {
    for (auto _ : state) {
        QScriptEngine engine;
        benchmark::DoNotOptimize(&engine);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ScriptEngineFloor);

}  // namespace
