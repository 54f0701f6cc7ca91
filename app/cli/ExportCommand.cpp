// bxq export: the project's members written for other programs: IFC4 for building-information
// models.
#include "app/BXQDataSession.h"
#include "app/cli/BXQCommand.h"
#include "app/cli/BXQProgressLine.h"

#include "exchange/SKRIfcProjectExport.h"

#include "vmp/VMPMembers.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

namespace bxq {
namespace {

bool readKind(const QString& text, skr::exchange::EnIfcElementKind* kind) {
    using skr::exchange::EnIfcElementKind;
    static const std::map<QString, EnIfcElementKind> kinds{{QStringLiteral("beam"), EnIfcElementKind::Beam},
                                                           {QStringLiteral("column"), EnIfcElementKind::Column},
                                                           {QStringLiteral("member"), EnIfcElementKind::Member},
                                                           {QStringLiteral("auto"), EnIfcElementKind::Auto}};
    const auto found = kinds.find(text.toLower());
    if (found == kinds.end()) return false;
    *kind = found->second;
    return true;
}

QByteArray jsonReport(const QString& path, const std::vector<skr::exchange::SKRIfcMemberReport>& rows) {
    QJsonArray members;
    for (const skr::exchange::SKRIfcMemberReport& row : rows) {
        QJsonObject member{{"id", static_cast<double>(row.id)},
                           {"entity", row.entity},
                           {"profile", row.profileEntity},
                           {"sectionProfile", row.sectionProfileEntity},
                           {"clippings", row.clippings},
                           {"volume", row.volume},
                           {"weight", row.weight}};
        if (row.measured) member.insert(QStringLiteral("bbox"), QJsonArray{tripleJson(row.boxMin), tripleJson(row.boxMax)});
        members.append(member);
    }
    const QJsonObject report{{"file", path}, {"bytes", static_cast<double>(QFileInfo(path).size())}, {"members", members}};
    return QJsonDocument(report).toJson(QJsonDocument::Compact) + '\n';
}

}  // namespace

int runExport(const QStringList& arguments) {
    QCommandLineParser cli;
    cli.setApplicationDescription(QStringLiteral(
        "Writes the project's members as IFC4: beams, columns and members (by the slope of their axis) with their "
        "profiles, cuts as clippings, quantities and the steel grade."));
    cli.addOption({QStringLiteral("project"), QStringLiteral("The project file."), QStringLiteral("FILE")});
    cli.addOption({QStringLiteral("ifc"), QStringLiteral("The IFC file to write."), QStringLiteral("FILE")});
    cli.addOption({QStringLiteral("unit"), QStringLiteral("Length unit of the file: mm (default) or m."),
                   QStringLiteral("UNIT")});
    cli.addOption({QStringLiteral("grade"), QStringLiteral("Steel grade written as the members' material (Q235B)."),
                   QStringLiteral("NAME")});
    cli.addOption({QStringLiteral("as"),
                   QStringLiteral("Writes member ID as beam, column or member whatever its slope (repeatable)."),
                   QStringLiteral("ID=KIND")});
    cli.addOption({QStringLiteral("json"),
                   QStringLiteral("Prints what was written, with each member's solid as the library builds it.")});
    if (!parseArguments(cli, arguments)) return kUsageError;
    if (!cli.positionalArguments().isEmpty()) return usageError(QStringLiteral("export takes no arguments"));
    const QString projectPath = cli.value(QStringLiteral("project"));
    const QString ifcPath = cli.value(QStringLiteral("ifc"));
    if (projectPath.isEmpty() || ifcPath.isEmpty())
        return usageError(QStringLiteral("export needs --project FILE and --ifc FILE"));

    skr::exchange::SKRIfcExportOptions options;
    options.projectName = QFileInfo(projectPath).completeBaseName();
    const QString unit = cli.value(QStringLiteral("unit"));
    if (!unit.isEmpty() && unit != QLatin1String("mm") && unit != QLatin1String("m"))
        return usageError(QStringLiteral("--unit is mm or m, not '%1'").arg(unit));
    options.metres = unit == QLatin1String("m");
    if (cli.isSet(QStringLiteral("grade"))) {
        options.grade = cli.value(QStringLiteral("grade")).trimmed();
        if (options.grade.isEmpty()) return usageError(QStringLiteral("--grade needs a name"));
    }
    for (const QString& given : cli.values(QStringLiteral("as"))) {
        qint64 id = 0;
        skr::exchange::EnIfcElementKind kind;
        const int equals = given.indexOf(QLatin1Char('='));
        if (equals < 0 || !readId(given.left(equals), &id) || !readKind(given.mid(equals + 1), &kind))
            return usageError(QStringLiteral("--as takes ID=beam, ID=column or ID=member, not '%1'").arg(given));
        options.kinds[id] = kind;
    }
    const bool json = cli.isSet(QStringLiteral("json"));
    options.measureAll = json;

    QString error;
    BXQDataSession session;
    if (!session.openProject(projectPath, false, &error) || !session.openCatalogue(&error)) return dataError(error);
    session.registerRepository();
    for (const auto& kind : options.kinds) {
        VMPMember member;
        if (VMPReadMember(session.projectDB(), kind.first, member, &error)) continue;
        return dataError(error.isEmpty() ? QStringLiteral("%1 has no member %2").arg(projectPath).arg(kind.first) : error);
    }
    BXQProgressLine progress(QStringLiteral("exporting members"));
    options.progress = [&progress](int done, int total) { return progress.show(done, total); };
    std::vector<skr::exchange::SKRIfcMemberReport> report;
    const bool written = skr::exchange::exportProjectIfc(session.project(), ifcPath, options, &report, &error);
    progress.finish();
    if (!written) return dataError(QStringLiteral("%1: %2").arg(projectPath, error));
    if (json) {
        print(jsonReport(ifcPath, report));
    } else {
        print(QStringLiteral("wrote %1 members to %2 (%3 bytes)\n")
                  .arg(report.size())
                  .arg(ifcPath)
                  .arg(QFileInfo(ifcPath).size())
                  .toUtf8());
    }
    return 0;
}

}  // namespace bxq
