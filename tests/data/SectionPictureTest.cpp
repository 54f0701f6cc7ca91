// The section pictures of the dialog as the picture generator draws them: every section type of
// the shipped database, at its default values, names each of its parameters on a tag clear of the
// steel and of the other tags; a tapered type shows both its ends.
#include "section_data/SectionSchemeProvider.h"
#include "section_geometry/SKRSectionPainter.h"
#include "section_spec/SKRSectionTypeTable.h"

#include "ShippedRepository.h"

#include <gtest/gtest.h>

#include <QPainterPath>

#include <algorithm>

using namespace skr::section;
using skr::util::FetchInstance;

namespace {

class SectionPicture : public ShippedRepositoryTest {};

QString describe(const QRectF& r) {
    return QStringLiteral("(%1,%2 %3x%4)").arg(r.x()).arg(r.y()).arg(r.width()).arg(r.height());
}

}  // namespace

TEST_F(SectionPicture, EveryTypeNamesEachParameterClearOfTheSteelAndOfEachOther) {
    const auto* schemes = FetchInstance<SectionSchemeProvider>();
    const auto* params = FetchInstance<SectionParamProvider>();
    ASSERT_NE(schemes, nullptr);
    ASSERT_NE(params, nullptr);
    int drawn = 0;
    for (const SectionScheme& scheme : schemes->allSchemes()) {
        if (!sectionTypeDescriptor(scheme.polyId)) continue;  // custom and user sections have no type row
        SCOPED_TRACE(QStringLiteral("type %1").arg(scheme.polyId).toStdString());
        QMap<QString, double> values;
        QStringList codes;
        int subClass = -1;
        for (const SectionParam& param : params->paramsOf(scheme.polyId)) {
            if (subClass == -1) subClass = param.subClassId;
            if (param.subClassId != subClass) continue;
            codes << param.paramCode;
            values.insert(param.paramCode, param.defVal.toDouble());
        }
        for (const QString& code : sectionTypeParamCodes(scheme.polyId))
            EXPECT_TRUE(codes.contains(code)) << "the database lists no parameter " << code.toStdString();
        QString error;
        const skr::geometry::SKRSectionDrawing drawing =
            skr::geometry::drawSection(scheme.polyId, values, codes, QSize(240, 240), &error);
        ASSERT_FALSE(drawing.image.isNull()) << error.toStdString();
        ++drawn;
        const QRectF picture(QPointF(0, 0), QSizeF(drawing.image.size()));
        for (const QString& code : codes) {
            const bool named = std::any_of(drawing.labels.begin(), drawing.labels.end(),
                                           [&](const skr::geometry::SKRDrawingLabel& label) { return label.code == code; });
            EXPECT_TRUE(named) << "no tag names " << code.toStdString();
        }
        for (int i = 0; i < drawing.labels.size(); ++i) {
            const auto& label = drawing.labels[i];
            EXPECT_TRUE(codes.contains(label.code)) << label.code.toStdString();
            EXPECT_TRUE(picture.contains(label.box)) << label.code.toStdString() << " leaves the picture";
            EXPECT_FALSE(drawing.steel.intersects(label.box))
                << label.code.toStdString() << " " << describe(label.box).toStdString() << " covers the steel";
            for (int k = 0; k < i; ++k)
                EXPECT_FALSE(label.box.intersects(drawing.labels[k].box))
                    << label.code.toStdString() << " covers " << drawing.labels[k].code.toStdString();
        }
    }
    EXPECT_GE(drawn, 24);
}

// The picture of a tapered H shows its two ends at one scale, the first left: swapping the depths
// swaps the shapes, and an H with equal depths shows two equal shapes.
TEST(TaperedSectionPicture, ShowsBothEndsAsTyped) {
    struct Case {
        double h1, h2;
    };
    for (const Case& c : {Case{600, 400}, Case{400, 600}, Case{500, 500}}) {
        const QMap<QString, double> values{{"h1", c.h1}, {"h2", c.h2}, {"b", 200}, {"tw", 8}, {"t1", 12}, {"t2", 12}};
        QString error;
        const QPainterPath path = skr::geometry::sectionPicturePath(stWeldedTaperedH, values, &error);
        ASSERT_FALSE(path.isEmpty()) << error.toStdString();
        const QList<QPolygonF> shapes = path.toSubpathPolygons();
        ASSERT_EQ(shapes.size(), 2);
        const QRectF first = shapes[0].boundingRect(), second = shapes[1].boundingRect();
        EXPECT_LT(first.right(), second.left());
        EXPECT_NEAR(first.height(), c.h1, 1e-6);
        EXPECT_NEAR(second.height(), c.h2, 1e-6);
        EXPECT_NEAR(first.center().y(), second.center().y(), 1e-6) << "centred on one axis";
        EXPECT_NEAR(first.width(), 200, 1e-6);
        EXPECT_NEAR(second.width(), 200, 1e-6);
    }
}
