// Projects of members for the model-scale benchmarks.
#include "bench/ModelProject.h"

#include "body_builder/SKRMemberSolidShape.h"
#include "solid_split/SKRCuttingPlaneStore.h"
#include "vmp/VMPMembers.h"
#include "vmp/VMPProjectModel.h"

#include <memory>

namespace bxq {
namespace bench {

bool writeModelProject(const QString& path, int count, int cutEvery, bool oneSection) {
    VMPProjectModel model;
    if (!model.open(path)) return false;
    const QString sections[] = {"H400*200*8*13", "H300*150*6*9", "H500*250*10*16", "H250*125*6*9", "D219*8",
                                "H350*175*7*11", "C160*60*20*2.5", "D325*10", "H600*300*12*20", "C200*70*20*2"};
    for (int i = 0; i < count; ++i) {
        VMPMember member;
        member.section = oneSection ? QStringLiteral("H400*200*8*13") : sections[i % 10];
        const double length = oneSection ? 6000.0 : 3000.0 + 500.0 * ((i / 10) % 10);
        member.start = {2000.0 * (i % 100), 2000.0 * (i / 100), 0};
        member.end = member.start;
        member.end[0] += length;
        if (!VMPAddMember(model.getProjectDB(), member, nullptr)) return false;
        if (cutEvery <= 0 || i % cutEvery != 0) continue;
        for (const bool tail : {false, true}) {
            skr::split::CuttingPlaneRecord plane;
            plane.elementId = member.id;
            plane.isTail = tail;
            plane.local = ndp::MakeFrame({0, 0, tail ? -300.0 : 300.0}, {1, 0, 0}, {0, tail ? -1.0 : 1.0, 0},
                                         {0, 0, tail ? -1.0 : 1.0});
            if (!skr::split::AddCuttingPlaneRecord(model.getProjectDB(), plane, nullptr)) return false;
        }
    }
    return model.save();
}

void useMemberSolids(VMPProjectModel& model) {
    model.setSolidShapeFactory([](const QString& section, double length, const ndp::CoordinateSystem3& head) {
        return std::unique_ptr<IVMPSolidShape>(new skr::body::SKRMemberSolidShape(section, length, head));
    });
}

}  // namespace bench
}  // namespace bxq
