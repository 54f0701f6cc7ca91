// bxq cut-plane: the cutting planes of a project's members: add one relative to the member's head
// or tail frame, list them, move one along its normal, remove one.
#include "app/cli/BXQCommand.h"
#include "app/BXQDataSession.h"

#include "solid_split/SKRCuttingPlaneStore.h"
#include "solid_split/SKRSplitPlaneDisplayManager.h"

#include "ndp/NDPDatabase.h"
#include "ndp/NDPPlane.h"
#include "vmp/VMPMembers.h"
#include "vmp/VMPProjectModel.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace bxq {
namespace {

using skr::split::CuttingPlaneRecord;

bool memberExists(BXQDataSession& session, qint64 id, QString* error) {
    VMPMember member;
    if (VMPReadMember(session.projectDB(), id, member, error)) return true;
    if (error->isEmpty()) *error = QStringLiteral("%1 has no member %2").arg(session.projectPath()).arg(id);
    return false;
}

int add(QCommandLineParser& cli, BXQDataSession& session) {
    qint64 id = 0;
    ndp::CVector3 origin{}, normal{};
    if (!readId(cli.value(QStringLiteral("id")), &id)) return usageError(QStringLiteral("cut-plane add needs --id MEMBER"));
    if (cli.isSet(QStringLiteral("head")) == cli.isSet(QStringLiteral("tail")))
        return usageError(QStringLiteral("cut-plane add needs one of --head and --tail"));
    if (!readTriple(cli.value(QStringLiteral("origin")), origin) || !readTriple(cli.value(QStringLiteral("normal")), normal))
        return usageError(QStringLiteral("--origin and --normal take X,Y,Z"));
    ndp::CPlane plane;
    if (!plane.Create(origin, normal)) return usageError(QStringLiteral("--normal must not be zero"));
    QString error;
    if (!session.openProject(cli.value(QStringLiteral("project")), false, &error) || !memberExists(session, id, &error))
        return dataError(error);
    CuttingPlaneRecord record;
    record.elementId = id;
    record.isTail = cli.isSet(QStringLiteral("tail"));
    record.local = plane.GetFrame();
    record.local.origin = origin;
    if (!skr::split::AddCuttingPlaneRecord(session.projectDB(), record, &error) || !session.saveProject(&error))
        return dataError(error);
    print(QStringLiteral("added cutting plane to member %1 (%2), id %3\n")
              .arg(id)
              .arg(record.isTail ? QStringLiteral("tail") : QStringLiteral("head"))
              .arg(record.id)
              .toUtf8());
    return 0;
}

int list(QCommandLineParser& cli, BXQDataSession& session) {
    qint64 id = -1;
    if (cli.isSet(QStringLiteral("id")) && (!readId(cli.value(QStringLiteral("id")), &id) || id < 0))
        return usageError(QStringLiteral("--id takes a member id"));
    QString error;
    if (!session.openProject(cli.value(QStringLiteral("project")), false, &error)) return dataError(error);
    if (id >= 0 && !memberExists(session, id, &error)) return dataError(error);
    std::vector<CuttingPlaneRecord> records;
    if (!skr::split::ReadCuttingPlaneRecords(session.projectDB(), id, records, &error)) return dataError(error);
    QJsonArray rows;
    QString lines;
    for (const CuttingPlaneRecord& r : records) {
        const QString end = r.isTail ? QStringLiteral("tail") : QStringLiteral("head");
        if (cli.isSet(QStringLiteral("json"))) {
            rows.append(QJsonObject{{"record", static_cast<double>(r.id)},
                                    {"member", static_cast<double>(r.elementId)},
                                    {"end", end},
                                    {"origin", tripleJson(r.local.origin)},
                                    {"x", tripleJson(r.local.xAxis)},
                                    {"y", tripleJson(r.local.yAxis)},
                                    {"normal", tripleJson(r.local.zAxis)},
                                    {"offset", r.offset}});
        } else {
            lines += QStringLiteral("%1  member=%2 %3 origin=%4 normal=%5 x=%6 offset=%7\n")
                         .arg(r.id)
                         .arg(r.elementId)
                         .arg(end, tripleText(r.local.origin), tripleText(r.local.zAxis), tripleText(r.local.xAxis),
                              shortestNumber(r.offset));
        }
    }
    print(cli.isSet(QStringLiteral("json")) ? QJsonDocument(rows).toJson(QJsonDocument::Compact) + '\n' : lines.toUtf8());
    return 0;
}

int move(QCommandLineParser& cli, BXQDataSession& session) {
    qint64 record = 0;
    double distance = 0;
    if (cli.positionalArguments().size() != 2 || !readId(cli.positionalArguments()[1], &record))
        return usageError(QStringLiteral("cut-plane move takes one RECORD"));
    if (!readNumber(cli.value(QStringLiteral("by")), &distance))
        return usageError(QStringLiteral("cut-plane move needs --by DISTANCE (mm)"));
    QString error;
    if (!session.openProject(cli.value(QStringLiteral("project")), false, &error)) return dataError(error);
    CuttingPlaneRecord found;
    if (!skr::split::FindCuttingPlaneRecord(session.projectDB(), record, found))
        return dataError(QStringLiteral("%1 has no cutting plane %2").arg(session.projectPath()).arg(record));
    skr::split::SKRSplitPlaneDisplayManager planes(session.project(), nullptr);
    if (!planes.MoveCuttingPlane(record, distance)) {
        if (!session.project()->getElementDrawObj(found.elementId))
            return dataError(QStringLiteral("cutting plane %1 of %2 belongs to no member (%3)")
                                 .arg(record)
                                 .arg(session.projectPath())
                                 .arg(found.elementId));
        return dataError(QStringLiteral("cannot move cutting plane %1 of %2 by %3: %4")
                             .arg(record)
                             .arg(session.projectPath(), shortestNumber(distance),
                                  session.projectDB()->GetLastError().isEmpty() ? QStringLiteral("the move is below 0.0001 mm")
                                                                                : session.projectDB()->GetLastError()));
    }
    if (!session.saveProject(&error)) return dataError(error);
    skr::split::FindCuttingPlaneRecord(session.projectDB(), record, found);
    print(QStringLiteral("moved cutting plane %1 by %2 to origin %3\n")
              .arg(record)
              .arg(shortestNumber(distance), tripleText(found.local.origin))
              .toUtf8());
    return 0;
}

int remove(QCommandLineParser& cli, BXQDataSession& session) {
    qint64 record = 0;
    if (cli.positionalArguments().size() != 2 || !readId(cli.positionalArguments()[1], &record))
        return usageError(QStringLiteral("cut-plane remove takes one RECORD"));
    QString error;
    if (!session.openProject(cli.value(QStringLiteral("project")), false, &error) ||
        !skr::split::DeleteCuttingPlaneRecord(session.projectDB(), record, &error) || !session.saveProject(&error))
        return dataError(error);
    print(QStringLiteral("removed cutting plane %1\n").arg(record).toUtf8());
    return 0;
}

}  // namespace

int runCutPlane(const QStringList& arguments) {
    QCommandLineParser cli;
    cli.setApplicationDescription(QStringLiteral("The cutting planes of a project's members: add, list, move, remove."));
    cli.addOption({QStringLiteral("project"), QStringLiteral("The project."), QStringLiteral("FILE")});
    cli.addOption({QStringLiteral("id"), QStringLiteral("add, list: the member."), QStringLiteral("MEMBER")});
    cli.addOption({QStringLiteral("head"), QStringLiteral("add: relative to the member's head frame.")});
    cli.addOption({QStringLiteral("tail"), QStringLiteral("add: relative to the member's tail frame.")});
    cli.addOption({QStringLiteral("origin"), QStringLiteral("add: a point of the plane."), QStringLiteral("X,Y,Z")});
    cli.addOption({QStringLiteral("normal"), QStringLiteral("add: normal, towards the part kept."), QStringLiteral("X,Y,Z")});
    cli.addOption({QStringLiteral("by"), QStringLiteral("move: distance along the plane's normal (mm)."), QStringLiteral("DISTANCE")});
    cli.addOption({QStringLiteral("json"), QStringLiteral("list: one JSON array.")});
    cli.addPositionalArgument(QStringLiteral("action"), QStringLiteral("add, list, move RECORD or remove RECORD"),
                              QStringLiteral("add|list|move|remove"));
    if (!parseArguments(cli, arguments)) return kUsageError;
    const QString action = cli.positionalArguments().value(0);
    const bool withRecord = action == QLatin1String("move") || action == QLatin1String("remove");
    if (!withRecord && action != QLatin1String("add") && action != QLatin1String("list"))
        return usageError(QStringLiteral("cut-plane takes the action add, list, move or remove"));
    if (!withRecord && cli.positionalArguments().size() != 1)
        return usageError(QStringLiteral("cut-plane %1 takes no other argument").arg(action));
    if (!cli.isSet(QStringLiteral("project"))) return usageError(QStringLiteral("cut-plane %1 needs --project FILE").arg(action));
    BXQDataSession session;
    if (action == QLatin1String("add")) return add(cli, session);
    if (action == QLatin1String("list")) return list(cli, session);
    if (action == QLatin1String("move")) return move(cli, session);
    return remove(cli, session);
}

}  // namespace bxq
