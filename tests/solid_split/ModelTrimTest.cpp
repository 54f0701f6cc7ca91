// Trimming a whole model: members of equal section, length and cuts share one solid, each solid is
// what ApplyCuttingPlanes gives the member alone, and a cancelled trimming gives nothing.
#include "solid_split/SKRModelTrim.h"

#include "body_builder/SKRMemberSolidShape.h"
#include "ndp/NDPBody.h"
#include "solid_split/SKRCuttingPlaneStore.h"
#include "solid_split/SKRSolidSplit.h"
#include "vmp/VMPElementDrawObj.h"
#include "vmp/VMPProjectModel.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <cmath>

using namespace skr::split;

namespace {

std::unique_ptr<IVMPSolidShape> memberSolid(const QString& section, double length, const ndp::CoordinateSystem3& head) {
    return std::make_unique<skr::body::SKRMemberSolidShape>(section, length, head);
}

class ModelTrim : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_model.open(m_dir.filePath("model.KDB"))); }

    // A member along X from x0, with a head plane at headZ tilted by degrees and a square tail
    // plane at tailZ before the end (none where the value is negative).
    std::int64_t addMember(const QString& section, double length, double x0, double roll, double degrees, double headZ,
                           double tailZ) {
        VMPMember member;
        member.section = section;
        member.start = {x0, 1000, 0};
        member.end = {x0 + length, 1000, 0};
        member.roll = roll;
        EXPECT_TRUE(VMPAddMember(m_model.getProjectDB(), member, nullptr));
        const double a = degrees * M_PI / 180;
        CuttingPlaneRecord plane;
        plane.elementId = member.id;
        plane.local = ndp::MakeFrame({0, 0, headZ}, {1, 0, 0}, {0, std::cos(a), -std::sin(a)}, {0, std::sin(a), std::cos(a)});
        if (headZ >= 0) {
            EXPECT_TRUE(AddCuttingPlaneRecord(m_model.getProjectDB(), plane, nullptr));
        }
        plane.isTail = true;
        plane.local = ndp::MakeFrame({0, 0, -tailZ}, {1, 0, 0}, {0, -1, 0}, {0, 0, -1});
        if (tailZ >= 0) {
            EXPECT_TRUE(AddCuttingPlaneRecord(m_model.getProjectDB(), plane, nullptr));
        }
        return member.id;
    }

    QTemporaryDir m_dir;
    VMPProjectModel m_model;
};

TEST_F(ModelTrim, EqualMembersShareOneSolidAndEverySolidIsTheMembersOwnTrim) {
    addMember("H300*150*6*9", 4000, 0, 0, 20, 200, 200);
    addMember("H300*150*6*9", 4000, 9000, 90, 20, 200, 200);  // shares the first one's solid
    addMember("H300*150*6*9", 4000, 0, 0, 30, 200, 200);
    addMember("D219*8", 3000, 0, 0, 0, -1, -1);
    addMember("H300*150*6*9", 4000, 0, 0, 0, 3000, 2000);      // the planes leave nothing: uncut
    addMember("H300*150*6*9", 4000, 0, 0, 20, 0, 200);         // a partial cut: the general split

    SKRModelTrim trim;
    QString error;
    int calls = 0, last = -1;
    ASSERT_TRUE(TrimModelMembers(m_model.getProjectDB(), memberSolid, trim, &error, [&](int done, int total) {
        ++calls;
        last = done;
        EXPECT_EQ(total, 5);
        return true;
    })) << error.toStdString();
    EXPECT_GE(calls, 2);
    EXPECT_EQ(last, 5);
    ASSERT_EQ(trim.members.size(), 6u);
    ASSERT_EQ(trim.solids.size(), 5u);
    EXPECT_EQ(trim.members[0].solid, trim.members[1].solid);

    for (const SKRModelTrim::Member& member : trim.members) {
        SCOPED_TRACE(member.id);
        VMPMember row;
        ASSERT_TRUE(VMPReadMember(m_model.getProjectDB(), member.id, row, nullptr));
        const ndp::CoordinateSystem3 head = VMPMemberHeadFrame(row.start, row.end, row.roll);
        for (int k = 0; k < 3; ++k) EXPECT_DOUBLE_EQ(member.head.zAxis[k], head.zAxis[k]);
        skr::body::SKRMemberSolidShape shape(row.section, row.length(), ndp::CoordinateSystem3());
        const VMPElementDrawObj element(member.id, &m_model, ndp::CoordinateSystem3(), row.length());
        const ndp::CRef<ndp::CBody> alone(ApplyCuttingPlanes(element, shape));
        ASSERT_TRUE(alone && trim.solids[member.solid]);
        EXPECT_NEAR(trim.solids[member.solid]->Volume(), alone->Volume(), 1e-9 * alone->Volume());
    }
    const ndp::CRef<ndp::CBody> uncut(skr::body::SKRMemberSolidShape("H300*150*6*9", 4000, {}).createBody());
    EXPECT_NEAR(trim.solids[trim.members[4].solid]->Volume(), uncut->Volume(), 1e-9 * uncut->Volume());
}

TEST_F(ModelTrim, CancelledTrimmingGivesNothingAndSaysSo) {
    addMember("H300*150*6*9", 4000, 0, 0, 20, 200, 200);
    SKRModelTrim trim;
    QString error;
    EXPECT_FALSE(TrimModelMembers(m_model.getProjectDB(), memberSolid, trim, &error, [](int, int) { return false; }));
    EXPECT_TRUE(trim.members.empty() && trim.solids.empty());
    EXPECT_TRUE(error.contains(QStringLiteral("cancelled")) && error.contains(QStringLiteral("model.KDB")))
        << error.toStdString();

    const auto noSolid = [](const QString&, double, const ndp::CoordinateSystem3&) { return std::unique_ptr<IVMPSolidShape>(); };
    EXPECT_FALSE(TrimModelMembers(m_model.getProjectDB(), noSolid, trim, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("member 1 (H300*150*6*9)"))) << error.toStdString();
}

}  // namespace
