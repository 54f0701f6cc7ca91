// bxq catalogue: the rows of the shipped hot-rolled section catalogue, all or of one type.
#include "app/cli/BXQCommand.h"
#include "app/BXQDataSession.h"

#include "section_data/SKRDatabaseError.h"
#include "section_data/SKRHotRollingSectionDBProvider.h"

#include "ndp/NDPDatabase.h"

#include <cstdio>
#include <exception>

namespace bxq {

int runCatalogue(const QStringList& arguments) {
    QCommandLineParser cli;
    cli.setApplicationDescription(QStringLiteral("Lists the hot-rolled section catalogue."));
    cli.addOption({QStringLiteral("type"), QStringLiteral("Only sections of this section type (1 I, 2 channel, ...)."),
                   QStringLiteral("N")});
    cli.addOption({QStringLiteral("json"), QStringLiteral("One JSON array of the rows.")});
    addLanguageOption(cli);
    if (!parseArguments(cli, arguments)) return kUsageError;
    if (!cli.positionalArguments().isEmpty())
        return usageError(QStringLiteral("catalogue takes no arguments, only --type N and --json"));
    const bool typeGiven = cli.isSet(QStringLiteral("type"));
    bool ok = true;
    const int type = typeGiven ? cli.value(QStringLiteral("type")).toInt(&ok) : 0;
    if (!ok) return usageError(QStringLiteral("--type needs a section type number, not '%1'").arg(cli.value("type")));
    if (!applyLanguageOption(cli)) return kUsageError;

    BXQDataSession session;
    QString error;
    if (!session.openCatalogue(&error)) return dataError(error);
    session.registerRepository();
    auto* provider = skr::util::FetchInstance<skr::section::SKRHotRollingSectionDBProvider>();
    const QString path = BXQDataSession::dataFilePath(QStringLiteral("SKRSectionPolyDB.KDB"));
    if (!provider) return dataError(QStringLiteral("%1 has no table \"SectionPolyInfor\"").arg(path));

    std::vector<skr::section::SKRHotRollingSection> sections;
    try {
        sections = typeGiven ? provider->listByType(type) : provider->listAll();
    } catch (const std::exception& e) {
        return dataError(skr::section::failureText(provider->table(), e));
    }
    const QByteArray out = cli.isSet(QStringLiteral("json")) ? sectionJson(sections) : sectionLines(sections);
    std::fwrite(out.constData(), 1, static_cast<size_t>(out.size()), stdout);
    std::fflush(stdout);
    return 0;
}

}  // namespace bxq
