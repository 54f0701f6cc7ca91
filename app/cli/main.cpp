// bxq: the reference host of the BXQExtend library, on the command line and as a window.
#include "app/cli/BXQCommand.h"
#include "app/window/BXQMainWindow.h"

#include "ndp/NDPDatabase.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstring>
#include <exception>
#include <functional>
#include <map>

namespace {

const char kUsage[] =
    "usage: bxq VERB [options] [arguments]\n"
    "verbs:\n"
    "  gui [--project FILE] [--lang en]    the section library and face-steel dialogs in a window\n"
    "  parse [--json] [--lang en] [--ball-expr EXPR] [--project FILE] TEXT...\n"
    "                                      parse section texts (- reads stdin)\n"
    "  catalogue [--type N] [--json]       list the hot-rolled section catalogue\n"
    "  wpm [--project FILE] NORM...        weight per metre (kg/m) of sections (- reads stdin)\n"
    "  apm [--project FILE] NORM...        surface per metre (m2/m) of sections (- reads stdin)\n"
    "  user-section add NAME --project FILE --type N [--sub K] --weight W --area A [--param p=v]...\n"
    "  user-section update NAME --project FILE [--weight W] [--area A]\n"
    "  user-section remove --project FILE --type N --sub K\n"
    "  user-section list --project FILE [--json]\n"
    "                                      a project's own hot-rolled sections\n"
    "  face-steel CLASS THICKNESS          weight per square metre (kg/m2) of a face-steel plate\n"
    "  outline TEXT|--section SPEC [--svg FILE] [--dxf FILE] [--json]\n"
    "                                      area, perimeter, box, centroid and moments of an outline\n"
    "  properties [--json|--csv] [--units mm|cm] [--outline TEXT]... SPEC...\n"
    "                                      every figure of a steel table, one row per section (- reads stdin)\n"
    "  member add --project FILE --section SPEC --from X,Y,Z --to X,Y,Z [--roll DEG]\n"
    "  member list --project FILE [--json]\n"
    "  member remove --project FILE ID     the project's members\n"
    "  member SPEC --length L [--project FILE --id N] [--step FILE] [--stl FILE] [--json]\n"
    "                                      a member's solid, trimmed by its cutting planes\n"
    "  cut-plane add --project FILE --id MEMBER (--head|--tail) --origin X,Y,Z --normal X,Y,Z\n"
    "  cut-plane list --project FILE [--id MEMBER] [--json]\n"
    "  cut-plane move --project FILE RECORD --by DISTANCE\n"
    "  cut-plane remove --project FILE RECORD\n"
    "                                      cutting planes of members (normal towards the part kept)\n"
    "  view --project FILE [--json] [--png FILE] [--size WxH] [--view iso|front|top|right] [--select RECORD]...\n"
    "                                      the members and their cutting planes as the 3D view shows them\n"
    "  export --project FILE --ifc FILE [--unit mm|m] [--grade NAME] [--as ID=KIND]... [--json]\n"
    "                                      the members as IFC4 (beams, columns, members with profiles and cuts)\n"
    "every verb takes --help\n"
    "exit status: 0 done, 1 a database or project that cannot be used or a refused change, 2 usage\n";

}  // namespace

int main(int argc, char** argv) {
    // How long a verb waits for a database file that another program holds before it says so.
    bool waitGiven = false;
    const int wait = qEnvironmentVariableIntValue("BXQ_BUSY_TIMEOUT", &waitGiven);
    if (waitGiven) ndp::CDatabase::SetBusyTimeout(wait);
    // The window needs a QApplication, which must be the only application object.
    if (argc > 1 && std::strcmp(argv[1], "gui") == 0) {
        try {
            return bxq::runGui(argc, argv);
        } catch (const std::exception& e) {
            return bxq::dataError(QString::fromUtf8(e.what()));
        }
    }
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("bxq"));
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 2 || arguments[1] == QLatin1String("--help") || arguments[1] == QLatin1String("-h")) {
        std::fputs(kUsage, arguments.size() < 2 ? stderr : stdout);
        return arguments.size() < 2 ? bxq::kUsageError : 0;
    }
    const std::map<QString, std::function<int(const QStringList&)>> verbs{
        {QStringLiteral("parse"), bxq::runParse},
        {QStringLiteral("catalogue"), bxq::runCatalogue},
        {QStringLiteral("wpm"), bxq::runWeightPerMetre},
        {QStringLiteral("apm"), bxq::runSurfacePerMetre},
        {QStringLiteral("user-section"), bxq::runUserSection},
        {QStringLiteral("face-steel"), bxq::runFaceSteel},
        {QStringLiteral("outline"), bxq::runOutline},
        {QStringLiteral("properties"), bxq::runProperties},
        {QStringLiteral("member"), bxq::runMember},
        {QStringLiteral("cut-plane"), bxq::runCutPlane},
        {QStringLiteral("view"), bxq::runView},
        {QStringLiteral("export"), bxq::runExport},
    };
    const auto verb = verbs.find(arguments[1]);
    if (verb == verbs.end()) return bxq::usageError(QStringLiteral("unknown verb '%1' (try bxq --help)").arg(arguments[1]));
    // Whatever a verb did not handle ends the run with a message, never with a crash.
    try {
        return verb->second(arguments.mid(1));
    } catch (const bxq::HelpShown&) {
        return 0;
    } catch (const std::exception& e) {
        return bxq::dataError(QString::fromUtf8(e.what()));
    } catch (...) {
        return bxq::dataError(QStringLiteral("unexpected failure"));
    }
}
