// Parser benchmarks over a take-off corpus: the full parse against the least work any parser
// of these texts must do (normalise, upper-case, split at "*").
#include "bench/SectionCorpus.h"
#include "section_spec/SKRSectionPolyInfoParser.h"

#include <benchmark/benchmark.h>

namespace {

constexpr int kCorpusSize = 100000;

const QStringList& corpus() {
    static const QStringList texts = bxq::bench::SectionCorpus::takeOff(kCorpusSize);
    return texts;
}

// One text per iteration, a new parser per text as the host and bxq use it.
void BM_Parse(benchmark::State& state) {
    const QStringList& texts = corpus();
    int i = 0;
    for (auto _ : state) {
        SKRSectionPolyInfoParser parser;
        parser.parser(texts[i]);
        GSectionPolyInfo info = parser.sectionPolyInfo();
        benchmark::DoNotOptimize(info);
        if (++i == texts.size()) i = 0;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Parse);

void BM_ParseFloor(benchmark::State& state) {
    const QStringList& texts = corpus();
    int i = 0;
    for (auto _ : state) {
        QString text = texts[i].simplified();
        text.remove(QLatin1Char(' '));
        text = SKRSectionPolyInfoParser::standardNameToUpper(text);
        QVector<QStringRef> pieces = text.splitRef(QLatin1Char('*'));
        benchmark::DoNotOptimize(pieces);
        if (++i == texts.size()) i = 0;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ParseFloor);

}  // namespace
