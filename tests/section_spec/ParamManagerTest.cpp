// The section dialog's parameter manager on the shipped section database: parameters and
// defaults, the specification text, the insertion point, catalogue positioning, and the check
// with its messages and the offending parameter.
#include "section_spec/SKRPolyParamManger.h"

#include "section_spec/SKRSectionPolyInfoParser.h"

#include "data/ShippedRepository.h"

namespace {

class ParamManager : public ShippedRepositoryTest {};

QStringList codes(const SKRPolyParamManger& manager) {
    QStringList out;
    for (int i = 0; i < manager.paramCount(); ++i) out << manager.paramDef(i).paramCode;
    return out;
}

}  // namespace

TEST_F(ParamManager, TypeComesWithItsParametersDefaultsTextAndInsertionPointAndTheCheckNamesWhatFails) {
    SKRPolyParamManger manager;
    EXPECT_FALSE(manager.setSectionType(999));
    ASSERT_TRUE(manager.setSectionType(11));
    EXPECT_EQ(codes(manager), (QStringList{"h", "b", "tw", "t1", "t2"}));
    EXPECT_EQ(manager.paramValue(0), QStringLiteral("400"));
    EXPECT_EQ(manager.insertPoint(), QStringLiteral("100,200"));
    ASSERT_TRUE(manager.setParamValue(0, QStringLiteral(" 500 ")));
    EXPECT_EQ(manager.insertPoint(), QStringLiteral("100,250"));

    // The text parses back to the same section.
    SKRSectionPolyInfoParser parser;
    parser.parser(manager.specification());
    EXPECT_EQ(parser.sectionPolyInfo().sectionType, 11);
    EXPECT_EQ(parser.sectionPolyInfo().params, (QVector<double>{500, 200, 8, 13, 13}));
    EXPECT_NE(manager.specificationKey(), 0);
    const qint64 key = manager.specificationKey();
    manager.setParamValue(0, QStringLiteral("501"));
    EXPECT_NE(manager.specificationKey(), key);

    // The cross's insertion point uses the script's Math.max.
    ASSERT_TRUE(manager.setSectionType(15));
    EXPECT_EQ(manager.insertPoint(), QStringLiteral("200,200"));

    // The check names the range or the norm that fails.
    ASSERT_TRUE(manager.setSectionType(11));
    QString message;
    int index = 7;
    EXPECT_TRUE(manager.checkParams(&message, &index));
    EXPECT_EQ(index, -1);

    manager.setParamValue(0, QStringLiteral("0"));
    EXPECT_FALSE(manager.checkParams(&message, &index));
    EXPECT_EQ(message, manager.paramDef(0).invalidMsg);
    EXPECT_EQ(message, QStringLiteral("h的取值范围为1~10000mm"));
    EXPECT_EQ(index, 0);
    manager.setParamValue(0, QStringLiteral("abc"));
    EXPECT_FALSE(manager.checkParams(&message, &index));
    EXPECT_EQ(index, 0);

    manager.setParamValue(0, QStringLiteral("20"));  // in range, but h > 2*t1 fails
    EXPECT_FALSE(manager.checkParams(&message, &index));
    EXPECT_EQ(message, QStringLiteral("截面规格输入错误，请重新输入截面信息"));
    EXPECT_EQ(index, -1);

    ASSERT_TRUE(manager.setSectionType(17));
    manager.setParamValue(1, QStringLiteral("600"));  // h2 = h1
    EXPECT_FALSE(manager.checkParams(&message, &index));
    EXPECT_EQ(message, QStringLiteral("截面规格输入错误，h1必须大于h2"));
    EXPECT_EQ(manager.paramDef(index).paramCode, QStringLiteral("h1"));
}

TEST_F(ParamManager, SpecificationsPositionOnCatalogueRowsOrOnTheirType) {
    SKRPolyParamManger manager;
    ASSERT_TRUE(manager.setSpecification(QStringLiteral("hn400*200*8*13")));
    EXPECT_TRUE(manager.isCatalogueSection());
    EXPECT_EQ(manager.sectionType(), 7);
    EXPECT_EQ(manager.specification(), QStringLiteral("HN400*200*8*13"));
    EXPECT_EQ(manager.specificationKey(), (qint64(7) << 32) | 3);
    EXPECT_EQ(manager.paramValue(codes(manager).indexOf("tw")), QStringLiteral("8"));
    EXPECT_EQ(manager.insertPoint(), QStringLiteral("100,200"));
    EXPECT_TRUE(manager.checkParams(nullptr, nullptr));

    ASSERT_TRUE(manager.setSpecification(QStringLiteral("WSR300*8")));
    EXPECT_FALSE(manager.isCatalogueSection());
    EXPECT_EQ(manager.sectionType(), 1013);
    EXPECT_EQ(manager.specification(), QStringLiteral("WSR300*8"));

    ASSERT_TRUE(manager.setSpecification(QStringLiteral("D90*4")));  // no such catalogue pipe
    EXPECT_FALSE(manager.isCatalogueSection());
    EXPECT_EQ(manager.specification(), QStringLiteral("D90*4"));

    // A rolled H that is not in the catalogue makes no specification text.
    ASSERT_TRUE(manager.setSpecification(QStringLiteral("HN401*200*8*13")));
    EXPECT_TRUE(manager.specification().isEmpty());
    EXPECT_EQ(manager.specificationKey(), 0);

    EXPECT_FALSE(manager.setSpecification(QStringLiteral("not a section")));
    EXPECT_EQ(manager.sectionType(), 7);  // unchanged
}
