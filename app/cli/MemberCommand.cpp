// bxq member: the members stored in a project (add, list, remove), and the one-shot solid of a
// straight member of any section, trimmed by the cutting planes its element has in a project, with
// its volume, weight and box, optionally written as STEP or STL.
#include "app/cli/BXQCommand.h"
#include "app/BXQDataSession.h"

#include "body_builder/SKRMemberSolidShape.h"
#include "solid_split/SKRCuttingPlaneStore.h"
#include "solid_split/SKRSolidSplit.h"

#include "ndp/NDPBody.h"
#include "ndp/NDPBodyExport.h"
#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "ndp/NDPMeshParameter.h"
#include "ndp/NDPPlane.h"
#include "ndp/NDPRef.h"
#include "ndp/NDPTolerance.h"
#include "vmp/VMPElementDrawObj.h"
#include "vmp/VMPMembers.h"
#include "vmp/VMPProjectModel.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cstdio>

namespace bxq {
namespace {

constexpr double kSteelDensity = 7.85e-6;  // kg/mm3

QByteArray report(const ndp::CBody& body, bool json) {
    const double volume = body.Volume();
    const ndp::CBox3d box = body.BoundingBox();
    const QVector<double> corners{box.min[0], box.min[1], box.min[2], box.max[0], box.max[1], box.max[2]};
    if (json) {
        QJsonArray bbox;
        for (double v : corners) bbox.append(v);
        const QJsonObject object{{QStringLiteral("volume"), volume},
                                 {QStringLiteral("weight"), volume * kSteelDensity},
                                 {QStringLiteral("bbox"), bbox}};
        return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
    }
    QStringList box6;
    for (double v : corners) box6 << QString::number(v, 'g', 10);
    return QStringLiteral("volume %1 mm3\nweight %2 kg\nbbox %3\n")
        .arg(QString::number(volume, 'g', 10), QString::number(volume * kSteelDensity, 'g', 10), box6.join(' '))
        .toUtf8();
}

int runMemberSolid(const QStringList& arguments) {
    QCommandLineParser cli;
    cli.setApplicationDescription(QStringLiteral("The solid of a straight member: volume, weight and bounding box."));
    cli.addOption({QStringLiteral("length"), QStringLiteral("Member length in mm."), QStringLiteral("L")});
    cli.addOption({QStringLiteral("project"), QStringLiteral("Project whose cutting planes apply."), QStringLiteral("FILE")});
    cli.addOption({QStringLiteral("id"), QStringLiteral("Element id of the cutting planes."), QStringLiteral("N")});
    cli.addOption({QStringLiteral("step"), QStringLiteral("Write the solid as STEP."), QStringLiteral("FILE")});
    cli.addOption({QStringLiteral("stl"), QStringLiteral("Write the solid's triangles as STL."), QStringLiteral("FILE")});
    cli.addOption({QStringLiteral("json"), QStringLiteral("One JSON object.")});
    cli.addPositionalArgument(QStringLiteral("spec"), QStringLiteral("Section specification."), QStringLiteral("SPEC"));
    if (!parseArguments(cli, arguments)) return kUsageError;
    if (cli.positionalArguments().size() != 1) return usageError(QStringLiteral("member takes one section SPEC"));
    double length = 0;
    if (!readNumber(cli.value(QStringLiteral("length")), &length) || !(length > 0))
        return usageError(QStringLiteral("member needs --length L, a positive number of mm"));
    const bool withProject = cli.isSet(QStringLiteral("project"));
    qint64 id = 0;
    if (withProject != cli.isSet(QStringLiteral("id")) || (withProject && !readId(cli.value(QStringLiteral("id")), &id)))
        return usageError(QStringLiteral("--project and --id N go together"));

    QString error;
    BXQDataSession session;
    if (withProject && !session.openProject(cli.value(QStringLiteral("project")), false, &error)) return dataError(error);
    if (!session.openCatalogue(&error)) return dataError(error);
    session.registerRepository();

    const ndp::CoordinateSystem3 head;
    skr::body::SKRMemberSolidShape shape(cli.positionalArguments().first(), length, head);
    IVMPModel* model = withProject ? session.model() : nullptr;
    const VMPElementDrawObj element(id, model, head, length);
    const ndp::CRef<ndp::CBody> held(withProject ? skr::split::ApplyCuttingPlanes(element, shape) : shape.createBody());
    ndp::CBody* body = held.get();
    if (!body) return dataError(shape.lastError());

    if (cli.isSet(QStringLiteral("step")) && !ndp::ExportBodyStep(body, cli.value(QStringLiteral("step")), &error))
        return dataError(error);
    if (cli.isSet(QStringLiteral("stl")) &&
        !ndp::ExportBodyStl(body, cli.value(QStringLiteral("stl")), ndp::CMeshParameter(0.5, 0.3), false, &error))
        return dataError(error);
    print(report(*body, cli.isSet(QStringLiteral("json"))));
    return 0;
}


// The member's solid after its cutting planes (null with the reason when it cannot be built).
ndp::CBody* memberSolid(VMPProjectModel* project, std::int64_t id, QString* error) {
    // The trimming takes a failed read of the planes for no planes: read them first, so that a
    // damaged table is an error and not an uncut member.
    std::vector<skr::split::CuttingPlaneRecord> planes;
    if (!skr::split::ReadCuttingPlaneRecords(project->getProjectDB(), id, planes, error)) return nullptr;
    IVMPElementDrawObj* element = project->getElementDrawObj(id);
    IVMPSolidShape* shape = element ? element->getSolidShape() : nullptr;
    ndp::CBody* body = shape ? skr::split::ApplyCuttingPlanes(*element, *shape) : nullptr;
    if (!body && error) {
        auto* member = dynamic_cast<skr::body::SKRMemberSolidShape*>(shape);
        *error = member ? member->lastError() : QStringLiteral("member %1 has no solid").arg(id);
    }
    return body;
}

int memberAdd(QCommandLineParser& cli, BXQDataSession& session) {
    VMPMember member;
    member.section = cli.value(QStringLiteral("section")).trimmed();
    if (member.section.isEmpty() || !readTriple(cli.value(QStringLiteral("from")), member.start) ||
        !readTriple(cli.value(QStringLiteral("to")), member.end))
        return usageError(QStringLiteral("member add needs --section SPEC, --from X,Y,Z and --to X,Y,Z"));
    if (cli.isSet(QStringLiteral("roll")) && !readNumber(cli.value(QStringLiteral("roll")), &member.roll))
        return usageError(QStringLiteral("--roll takes a number of degrees"));
    if (!(member.length() > ndp::g_DistEpsilon))
        return usageError(QStringLiteral("member add: --from and --to are the same point"));
    QString error;
    if (!session.openCatalogue(&error)) return dataError(error);
    session.registerRepository();
    // The section must make a solid before it is stored.
    skr::body::SKRMemberSolidShape probe(member.section, member.length(), ndp::CoordinateSystem3());
    const ndp::CRef<ndp::CBody> solid(probe.createBody());
    if (!solid) return dataError(QStringLiteral("section '%1': %2").arg(member.section, probe.lastError()));
    if (!VMPAddMember(session.projectDB(), member, &error) || !session.saveProject(&error)) return dataError(error);
    print(QStringLiteral("added member %1, %2 mm, id %3\n")
              .arg(member.section, shortestNumber(member.length()))
              .arg(member.id)
              .toUtf8());
    return 0;
}

int memberList(QCommandLineParser& cli, BXQDataSession& session) {
    QString error;
    std::vector<VMPMember> members;
    if (!VMPReadMembers(session.projectDB(), members, &error)) return dataError(error);
    if (!members.empty()) {
        if (!session.openCatalogue(&error)) return dataError(error);
        session.registerRepository();
    }
    const bool json = cli.isSet(QStringLiteral("json"));
    QJsonArray rows;
    QString lines;
    for (const VMPMember& member : members) {
        const ndp::CRef<ndp::CBody> body(memberSolid(session.project(), member.id, &error));
        if (!body) return dataError(QStringLiteral("member %1 of %2: %3").arg(member.id).arg(session.projectPath(), error));
        const double weight = body->Volume() * kSteelDensity;
        if (json) {
            rows.append(QJsonObject{{"id", static_cast<double>(member.id)},
                                    {"section", member.section},
                                    {"from", tripleJson(member.start)},
                                    {"to", tripleJson(member.end)},
                                    {"roll", member.roll},
                                    {"length", member.length()},
                                    {"weight", weight}});
        } else {
            lines += QStringLiteral("%1  %2 from=%3 to=%4 roll=%5 length=%6 weight=%7\n")
                         .arg(member.id)
                         .arg(member.section, tripleText(member.start), tripleText(member.end), shortestNumber(member.roll),
                              shortestNumber(member.length()), QString::number(weight, 'f', 3));
        }
    }
    print(json ? QJsonDocument(rows).toJson(QJsonDocument::Compact) + '\n' : lines.toUtf8());
    return 0;
}

int memberRemove(QCommandLineParser& cli, BXQDataSession& session) {
    qint64 id = 0;
    if (cli.positionalArguments().size() != 2 || !readId(cli.positionalArguments()[1], &id))
        return usageError(QStringLiteral("member remove takes one member ID"));
    QString error;
    if (!VMPRemoveMember(session.projectDB(), id, &error) || !session.saveProject(&error)) return dataError(error);
    print(QStringLiteral("removed member %1\n").arg(id).toUtf8());
    return 0;
}

}  // namespace

int runMember(const QStringList& arguments) {
    const QString action = arguments.value(1);
    if (action != QLatin1String("add") && action != QLatin1String("list") && action != QLatin1String("remove"))
        return runMemberSolid(arguments);
    QCommandLineParser cli;
    cli.setApplicationDescription(QStringLiteral("The members of a project: add, list, remove."));
    cli.addOption({QStringLiteral("project"), QStringLiteral("The project (created by add when missing)."), QStringLiteral("FILE")});
    cli.addOption({QStringLiteral("section"), QStringLiteral("add: section specification."), QStringLiteral("SPEC")});
    cli.addOption({QStringLiteral("from"), QStringLiteral("add: start point (mm)."), QStringLiteral("X,Y,Z")});
    cli.addOption({QStringLiteral("to"), QStringLiteral("add: end point (mm)."), QStringLiteral("X,Y,Z")});
    cli.addOption({QStringLiteral("roll"), QStringLiteral("add: roll about the axis (degrees)."), QStringLiteral("DEG")});
    cli.addOption({QStringLiteral("json"), QStringLiteral("list: one JSON array.")});
    cli.addPositionalArgument(QStringLiteral("action"), QStringLiteral("add, list or remove"), QStringLiteral("add|list|remove"));
    if (!parseArguments(cli, arguments)) return kUsageError;
    if (action != QLatin1String("remove") && cli.positionalArguments().size() != 1)
        return usageError(QStringLiteral("member %1 takes no other argument").arg(action));
    if (!cli.isSet(QStringLiteral("project"))) return usageError(QStringLiteral("member %1 needs --project FILE").arg(action));
    QString error;
    BXQDataSession session;
    if (!session.openProject(cli.value(QStringLiteral("project")), action == QLatin1String("add"), &error))
        return dataError(error);
    if (action == QLatin1String("add")) return memberAdd(cli, session);
    if (action == QLatin1String("list")) return memberList(cli, session);
    return memberRemove(cli, session);
}

}  // namespace bxq
