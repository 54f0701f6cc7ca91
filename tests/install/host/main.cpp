// A host of the installed plug-in: parses a welded and a catalogue text, then opens the section
// library and positions it on the parsed section. Prints one line per check; exit 1 on a failure.
#include "plugin/BXQExtend.h"
#include "section_data/SectionRepository.h"
#include "section_dialog/SKRSectionPolyDialog.h"
#include "section_spec/SKRSectionPolyInfoParser.h"
#include "vmp/IVMPModel.h"

#include <QApplication>
#include <QTextStream>

namespace {

class HostModel : public IVMPModel {
public:
    ndp::CDatabase* getProjectDB() override { return nullptr; }
    bool isAutoCalculate() const override { return false; }
};

GSectionPolyInfo parse(const QString& text) {
    SKRSectionPolyInfoParser parser;
    parser.parser(text);
    return parser.sectionPolyInfo();
}

}  // namespace

int main(int argc, char* argv[]) {
    QApplication app(argc, argv);
    QTextStream out(stdout);
    int failures = 0;
    const auto check = [&](bool ok, const QString& what) {
        out << (ok ? "ok   " : "FAIL ") << what << '\n';
        if (!ok) ++failures;
    };

    BXQExtend marker;
    HostModel model;
    skr::InitBXQSteelRepository(&model);

    const GSectionPolyInfo welded = parse(QStringLiteral("H400*200*8*13"));
    check(welded.sectionType == stWeldedH && welded.params == QVector<double>{400, 200, 8, 13, 13},
          QStringLiteral("H400*200*8*13 parses as a welded H of 400, 200, 8, 13, 13"));
    const GSectionPolyInfo rolled = parse(QStringLiteral("I20a"));
    check(!rolled.params.isEmpty() && rolled.params.first() == 200,
          QStringLiteral("I20a takes h = 200 from the installed catalogue"));

    {
        SKRSectionPolyDialog dialog(&model);
        dialog.setParameter(welded);
        dialog.show();
        app.processEvents();
        check(dialog.isVisible(), QStringLiteral("the section library opens"));
        dialog.close();
    }
    skr::UninitBXQSteelRepository();
    return failures == 0 ? 0 : 1;
}
