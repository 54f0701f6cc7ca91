// Benchmark entry point: a QApplication (Qt Script needs an application before the first engine,
// the dialog benchmarks widgets), on the offscreen platform unless the run asks for another.
// "--write-corpus FILE N" and "--write-distinct-corpus FILE N" write a section corpus and exit.
#include "bench/SectionCorpus.h"

#include <benchmark/benchmark.h>

#include <QApplication>

#include <cstdio>
#include <cstring>

namespace {

int writeCorpus(int argc, char** argv, bool distinct) {
    bool ok = false;
    const int count = argc == 4 ? QString::fromLocal8Bit(argv[3]).toInt(&ok) : 0;
    if (!ok || count < 0) {
        std::fprintf(stderr, "usage: %s %s FILE N\n", argv[0], argv[1]);
        return 2;
    }
    using bxq::bench::SectionCorpus;
    const QStringList texts = distinct ? SectionCorpus::distinct(count) : SectionCorpus::takeOff(count);
    if (texts.size() != count) std::fprintf(stderr, "only %d distinct texts\n", int(texts.size()));
    if (!SectionCorpus::write(QString::fromLocal8Bit(argv[2]), texts)) {
        std::fprintf(stderr, "cannot write %s\n", argv[2]);
        return 1;
    }
    return texts.size() == count ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    if (argc > 1 && std::strcmp(argv[1], "--write-corpus") == 0) return writeCorpus(argc, argv, false);
    if (argc > 1 && std::strcmp(argv[1], "--write-distinct-corpus") == 0) return writeCorpus(argc, argv, true);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
