// bxq member: the solid of a straight member of any section, trimmed by the cutting planes its
// element has in a project, with its volume, weight and box, optionally written as STEP or STL.
// bxq cut-plane add: adds a cutting plane to an element of a project.
#include "app/BXQCommand.h"
#include "app/BXQDataSession.h"

#include "body_builder/SKRMemberSolidShape.h"
#include "solid_split/SKRSolidSplit.h"

#include "ndp/NDPBody.h"
#include "ndp/NDPBodyExport.h"
#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "ndp/NDPMeshParameter.h"
#include "ndp/NDPPlane.h"
#include "ndp/NDPRef.h"
#include "vmp/VMPElementDrawObj.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cstdio>

namespace bxq {
namespace {

constexpr double kSteelDensity = 7.85e-6;  // kg/mm3

// A triple "x,y,z" of finite numbers.
bool readTriple(const QString& text, ndp::CVector3& out) {
    const QStringList parts = text.split(QLatin1Char(','));
    if (parts.size() != 3) return false;
    for (int i = 0; i < 3; ++i)
        if (!readNumber(parts[i].trimmed(), &out[static_cast<size_t>(i)])) return false;
    return true;
}

// An element id: a whole number.
bool readId(const QString& text, qint64* id) {
    bool ok = false;
    *id = text.toLongLong(&ok);
    return ok;
}

void print(const QByteArray& text) {
    std::fwrite(text.constData(), 1, static_cast<size_t>(text.size()), stdout);
    std::fflush(stdout);
}

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

}  // namespace

int runMember(const QStringList& arguments) {
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

int runCutPlane(const QStringList& arguments) {
    QCommandLineParser cli;
    cli.setApplicationDescription(QStringLiteral("Adds a cutting plane to an element of a project."));
    cli.addOption({QStringLiteral("project"), QStringLiteral("The project (created when missing)."), QStringLiteral("FILE")});
    cli.addOption({QStringLiteral("id"), QStringLiteral("Element id."), QStringLiteral("N")});
    cli.addOption({QStringLiteral("head"), QStringLiteral("Coordinates relative to the head frame.")});
    cli.addOption({QStringLiteral("tail"), QStringLiteral("Coordinates relative to the tail frame.")});
    cli.addOption({QStringLiteral("origin"), QStringLiteral("A point of the plane."), QStringLiteral("x,y,z")});
    cli.addOption({QStringLiteral("normal"), QStringLiteral("Normal, towards the part kept."), QStringLiteral("x,y,z")});
    cli.addPositionalArgument(QStringLiteral("add"), QStringLiteral("The action: add."), QStringLiteral("add"));
    if (!parseArguments(cli, arguments)) return kUsageError;
    if (cli.positionalArguments() != QStringList{QStringLiteral("add")})
        return usageError(QStringLiteral("cut-plane takes the action add"));
    qint64 id = 0;
    ndp::CVector3 origin{}, normal{};
    if (!cli.isSet(QStringLiteral("project")) || !readId(cli.value(QStringLiteral("id")), &id))
        return usageError(QStringLiteral("cut-plane add needs --project FILE and --id N"));
    if (cli.isSet(QStringLiteral("head")) == cli.isSet(QStringLiteral("tail")))
        return usageError(QStringLiteral("cut-plane add needs one of --head and --tail"));
    if (!readTriple(cli.value(QStringLiteral("origin")), origin) || !readTriple(cli.value(QStringLiteral("normal")), normal))
        return usageError(QStringLiteral("--origin and --normal take x,y,z"));
    ndp::CPlane plane;
    if (!plane.Create(origin, normal)) return usageError(QStringLiteral("--normal must not be zero"));

    QString error;
    BXQDataSession session;
    if (!session.openProject(cli.value(QStringLiteral("project")), true, &error)) return dataError(error);
    ndp::CDBTable* table = session.projectDB()->GetTable(L"CuttingPlane");
    if (!table) return dataError(QStringLiteral("%1 has no table CuttingPlane").arg(session.projectPath()));
    // The record's ID: one more than the largest there is.
    qint64 nextId = 1;
    ndp::CFileAddressList all;
    table->ListAll(all);
    for (int i = 0; i < all.GetCount(); ++i) {
        ndp::CDBRecord* row = table->GetRecord(all.GetItem(i));
        if (row) {
            nextId = std::max<qint64>(nextId, row->GetInt64(table->FindField(L"ID")) + 1);
            row->Release();
        }
    }
    ndp::CoordinateSystem3 local = plane.GetFrame();
    local.origin = origin;
    ndp::CDBRecord* record = table->CreateRecord();
    record->SetInt64(table->FindField(L"ID"), nextId);
    record->SetInt64(table->FindField(L"EDOID"), id);
    record->SetBool(table->FindField(L"IsTail"), cli.isSet(QStringLiteral("tail")));
    record->SetCoord3(table->FindField(L"LocalCoordinate"), local);
    const bool added = table->AddRecord(record) != ndp::kNullAddress;
    record->Release();
    if (!added) return dataError(QStringLiteral("cannot add a cutting plane to %1").arg(session.projectPath()));
    if (!session.saveProject(&error)) return dataError(error);
    print(QStringLiteral("cutting plane %1 of element %2 (%3)\n")
              .arg(nextId)
              .arg(id)
              .arg(cli.isSet(QStringLiteral("tail")) ? QStringLiteral("tail") : QStringLiteral("head"))
              .toUtf8());
    return 0;
}

}  // namespace bxq
