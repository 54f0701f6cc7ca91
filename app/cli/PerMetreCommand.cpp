// bxq wpm and bxq apm: weight and surface per metre of catalogue sections named by their norm
// text, the user's own sections of a project first, one number per line; a row or database that
// cannot be read ends the run with its reason (exit status 1), never with a 0 that looks found.
#include "app/cli/BXQCommand.h"
#include "app/BXQDataSession.h"

#include "section_data/SKRPerMetreLookup.h"

#include <cstdio>

namespace bxq {
namespace {

int runPerMetre(const QStringList& arguments, bool weight) {
    QCommandLineParser cli;
    cli.setApplicationDescription(weight ? QStringLiteral("Weight per metre (kg/m) of catalogue sections.")
                                         : QStringLiteral("Surface per metre (m2/m) of catalogue sections."));
    cli.addOption({QStringLiteral("project"), QStringLiteral("Project whose user sections are looked up first."),
                   QStringLiteral("FILE")});
    addLanguageOption(cli);
    cli.addPositionalArgument(QStringLiteral("norm"), QStringLiteral("Section names; - reads one per line from stdin."),
                              QStringLiteral("NORM..."));
    if (!parseArguments(cli, arguments)) return kUsageError;
    const QStringList norms = cli.positionalArguments();
    if (norms.isEmpty())
        return usageError(QStringLiteral("%1 needs at least one NORM (or - for standard input)").arg(arguments.value(0)));
    if (!applyLanguageOption(cli)) return kUsageError;

    BXQDataSession session;
    QString error;
    if (cli.isSet(QStringLiteral("project")) && !session.openProject(cli.value(QStringLiteral("project")), false, &error))
        return dataError(error);
    if (!session.openCatalogue(&error)) return dataError(error);
    session.registerRepository();

    using skr::section::SKRPerMetreLookup;
    forEachInput(norms, [weight](const QString& norm) {
        const skr::section::SKRHotRollingLookup found = SKRPerMetreLookup::lookUp(norm);
        const double value = !found.first ? 0.0 : weight ? found.second.weightMeter : found.second.area;
        const QByteArray line = shortestNumber(value).toUtf8() + '\n';
        std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stdout);
    });
    std::fflush(stdout);
    return 0;
}

}  // namespace

int runWeightPerMetre(const QStringList& arguments) { return runPerMetre(arguments, true); }

int runSurfacePerMetre(const QStringList& arguments) { return runPerMetre(arguments, false); }

}  // namespace bxq
