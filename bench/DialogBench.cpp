// Section library dialog benchmarks on the shipped databases: opening the dialog with the whole
// catalogue until it is shown, and re-filtering the catalogue list for one typed character.
#include "section_data/SectionRepository.h"
#include "section_dialog/SKRSectionPolyDialog.h"

#include "vmp/VMPProjectModel.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QLineEdit>
#include <QTableView>
#include <QTemporaryDir>

#include <memory>

namespace {

// A project and the section repository, set up once for the dialog benchmarks.
struct DialogFixture {
    QTemporaryDir dir;
    VMPProjectModel model;
    bool ready = false;
    DialogFixture() {
        ready = model.open(dir.filePath(QStringLiteral("bench.KDB")));
        if (ready) skr::InitBXQSteelRepository(&model);
    }
    static DialogFixture& instance() {
        static DialogFixture fixture;
        return fixture;
    }
};

void BM_SectionDialogOpen(benchmark::State& state) {
    DialogFixture& fixture = DialogFixture::instance();
    if (!fixture.ready) return state.SkipWithError("no project");
    for (auto _ : state) {
        auto dialog = std::make_unique<SKRSectionPolyDialog>(&fixture.model);
        dialog->show();
        QApplication::processEvents();
        state.PauseTiming();
        dialog.reset();
        QApplication::processEvents();
        state.ResumeTiming();
    }
    state.SetLabel("ms per dialog shown");
}
BENCHMARK(BM_SectionDialogOpen)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_HotRolledFilter(benchmark::State& state) {
    DialogFixture& fixture = DialogFixture::instance();
    if (!fixture.ready) return state.SkipWithError("no project");
    SKRSectionPolyDialog dialog(&fixture.model);
    dialog.show();
    // The catalogue group's title lists every catalogue section.
    auto* pictures = dialog.findChild<QTableView*>(QStringLiteral("polyView"));
    dialog.showHotRollWidget(pictures->model()->index(0, 0));
    auto* filter = dialog.findChild<QLineEdit*>(QStringLiteral("filterEdit"));
    auto* list = dialog.findChild<QTableView*>(QStringLiteral("hotRolledView"));
    const int all = list->model()->rowCount();
    QApplication::processEvents();
    // Typing the next character of "HN4" and taking it back again, shown each time.
    const QString texts[] = {QStringLiteral("H"), QStringLiteral("HN"), QStringLiteral("HN4"), QStringLiteral("HN"),
                             QStringLiteral("H"), QString()};
    size_t next = 0;
    for (auto _ : state) {
        filter->setText(texts[next++ % 6]);
        QApplication::processEvents();
    }
    state.counters["catalogue_rows"] = all;
    state.SetLabel("ms per typed character");
}
BENCHMARK(BM_HotRolledFilter)->Unit(benchmark::kMillisecond);

}  // namespace
