// Trimming a model's members: read everything first (the databases and the solid factory belong
// to this thread), then trim the distinct solids on the thread pool, each job on bodies of its own.
#include "solid_split/SKRModelTrim.h"

#include "solid_split/SKRCuttingPlaneStore.h"
#include "solid_split/SKRCuttingPlanes.h"

#include "ndp/NDPBody.h"
#include "ndp/NDPBooleanOperate.h"
#include "ndp/NDPDatabase.h"
#include "ndp/NDPPlane.h"

#include <QThread>
#include <QtConcurrent/QtConcurrentMap>

#include <map>
#include <memory>
#include <unordered_map>

namespace skr {
namespace split {
namespace {

using ndp::operator*;

// What makes two members' local solids equal: section, length and the cutting planes in their
// own head or tail frames, in reading order.
QString solidKey(const QString& section, double length, const CuttingPlaneEntries& cuts) {
    QString key = section + QLatin1Char('|') + QString::number(length, 'g', 17);
    for (const CuttingPlaneEntry& cut : cuts) {
        key += cut.IsTail ? QLatin1String("|T") : QLatin1String("|H");
        for (const auto* v : {&cut.LocalCoordinate.origin, &cut.LocalCoordinate.xAxis, &cut.LocalCoordinate.zAxis})
            for (double x : *v) key += QLatin1Char(',') + QString::number(x, 'g', 17);
    }
    return key;
}

// One distinct solid: its uncut body (or the prism of its section to extrude to its length) and
// planes in the member's own frame, and the result.
struct Job {
    ndp::CRef<ndp::CBody> uncut;
    const ndp::CBody* section = nullptr;
    double length = 0.0;
    std::vector<ndp::CPlane> planes;
    ndp::CBody* trimmed = nullptr;

    void run() {
        if (!uncut) uncut.reset(section->ExtrudedTo(length));
        if (!uncut) return;
        // One thread per job already: the kernel is asked not to start more.
        ndp::CBooleanOperate splitter(true, true, true, false);
        trimmed = planes.empty() ? nullptr : splitter.TrimPositiveBody(planes, uncut.get());
        if (!trimmed) trimmed = uncut->Copy();
    }
};

void fail(QString* error, const QString& text) {
    if (error) *error = text;
}

}  // namespace

bool TrimModelMembers(ndp::CDatabase* database, const VMPSolidShapeFactory& factory, SKRModelTrim& result,
                      QString* error, const TrimProgress& progress) {
    result = SKRModelTrim();
    std::vector<VMPMember> members;
    if (!VMPReadMembers(database, members, error)) return false;
    std::vector<CuttingPlaneRecord> records;
    if (!ReadCuttingPlaneRecords(database, -1, records, error)) return false;
    std::unordered_map<std::int64_t, CuttingPlaneEntries> cutsOf;
    for (const CuttingPlaneRecord& record : records) cutsOf[record.elementId].push_back({record.isTail, record.local});

    std::vector<Job> jobs;
    std::map<QString, int> jobOf;
    std::map<QString, ndp::CRef<ndp::CBody>> sections;  // the first solid built of each section
    const ndp::CoordinateSystem3 own;  // the member's own frame: its head frame is the identity
    for (const VMPMember& member : members) {
        const double length = member.length();
        const auto found = cutsOf.find(member.id);
        static const CuttingPlaneEntries none;
        const CuttingPlaneEntries& cuts = found == cutsOf.end() ? none : found->second;
        const QString key = solidKey(member.section, length, cuts);
        auto known = jobOf.find(key);
        if (known == jobOf.end()) {
            // A member solid that is a prism gives the solids of its section at every length;
            // others are built one by one.
            Job job;
            auto built = sections.find(member.section);
            if (built == sections.end()) {
                const std::unique_ptr<IVMPSolidShape> shape = factory ? factory(member.section, length, own) : nullptr;
                ndp::CRef<ndp::CBody> body(shape ? shape->createBody() : nullptr);
                if (body && body->IsPrism()) built = sections.emplace(member.section, std::move(body)).first;
                else job.uncut = std::move(body);
            }
            if (!job.uncut && built != sections.end() && length > 0) {
                job.section = built->second.get();  // read only, by every job of the section
                job.length = length;
            }
            if (!job.uncut && !job.section) {
                fail(error, QStringLiteral("%1: member %2 (%3): no solid")
                                .arg(database->GetPath())
                                .arg(member.id)
                                .arg(member.section));
                return false;
            }
            ndp::CoordinateSystem3 tail = own;
            tail.origin = length * own.zAxis;
            for (const CuttingPlaneEntry& cut : cuts) {
                const ndp::CoordinateSystem3 global = ndp::ToGlobal(cut.LocalCoordinate, cut.IsTail ? tail : own);
                ndp::CPlane plane;
                plane.Create(global.origin, global.zAxis);
                job.planes.push_back(plane);
            }
            known = jobOf.emplace(key, static_cast<int>(jobs.size())).first;
            jobs.push_back(std::move(job));
        }
        result.members.push_back({member.id, VMPMemberHeadFrame(member.start, member.end, member.roll), known->second});
    }

    const int total = static_cast<int>(jobs.size());
    bool cancelled = progress && !progress(0, total);
    QFuture<void> running = QtConcurrent::map(jobs, [](Job& job) { job.run(); });
    if (cancelled) running.cancel();
    if (!progress) running.waitForFinished();
    while (!running.isFinished()) {
        if (!cancelled && !progress(running.progressValue(), total)) {
            running.cancel();
            cancelled = true;
        }
        QThread::msleep(20);
    }
    running.waitForFinished();
    result.solids.reserve(jobs.size());
    for (Job& job : jobs) {
        result.solids.emplace_back(job.trimmed);
        if (!job.trimmed && !cancelled) {
            result = SKRModelTrim();
            fail(error, QStringLiteral("%1: a solid could not be built").arg(database->GetPath()));
            return false;
        }
    }
    if (cancelled) {
        result = SKRModelTrim();
        fail(error, QStringLiteral("%1: trimming cancelled").arg(database->GetPath()));
        return false;
    }
    if (progress) progress(total, total);
    return true;
}

}  // namespace split
}  // namespace skr
