// The outline check: valid outlines pass, and each way an outline text can fail to enclose one
// finite region is refused with the loop and a point near the fault.
#include "section_geometry/SKROutlineCheck.h"
#include "section_geometry/SKRSectionPolygonParser.h"

#include "ndp/NDPPolygon.h"

#include <gtest/gtest.h>

namespace {

const char kRectangle[] = "0,0,0,0;100,0,0,0;100,50,0,0;0,50,0,0";

}  // namespace

TEST(OutlineCheck, RefusesEveryOutlineThatIsNotOneFiniteRegion) {
    const QString rectangle = QString::fromLatin1(kRectangle);
    const struct {
        QString text;
        const char* refusal;  // empty for a valid outline
    } cases[] = {
        {rectangle, ""},
        {rectangle + "|||50,25,10,50", ""},                                        // a round hole
        {rectangle + "|||10,10,0,0;30,10,0,0;30,30,0,0;10,30,0,0|||60,10,0,0;80,10,0,0;80,30,0,0", ""},
        {"0,0,10,1;20,0,0,0;20,20,0,0;0,20,0,0", ""},                              // an arc edge
        {"0,0,1e200,50", "loop 1 of the outline reaches beyond 1000000 mm"},
        {"0,0,0,0;1e7,0,0,0;1e7,50,0,0", "loop 1 of the outline reaches beyond"},
        {"0,0,0,0;100,0,0,0", "loop 1 of the outline does not close round an area"},
        {"0,0,0,0;100,0,0,0;0,50,0,0;100,50,0,0", "loop 1 of the outline crosses itself near (50, 25)"},
        {"71,0,190,0,00,0;79,0,0,0;79,190,0,0;9,0,0,0;79,190,0,0;150,;0,200,0,0;0,190,0,0;71,190,0,0",
         "loop 1 of the outline crosses itself"},
        {"0,0,0,0;100,0,0,0;100,50,0,0;100,0,0,0;0,50,0,0", "loop 1 of the outline crosses itself"},  // folds back
        {rectangle + "|||200,10,0,0;210,10,0,0;210,20,0,0", "hole (loop 2) of the outline lies outside the outer loop near (200, 10)"},
        {rectangle + "|||90,10,0,0;110,10,0,0;110,20,0,0", "hole (loop 2) of the outline crosses the outer loop"},
        {rectangle + "|||10,10,0,0;30,10,0,0;30,30,0,0;10,30,0,0|||20,20,0,0;40,20,0,0;40,40,0,0;20,40,0,0",
         "holes (loops 2 and 3) of the outline cross"},
        {rectangle + "|||10,5,0,0;60,5,0,0;60,45,0,0;10,45,0,0|||20,20,0,0;30,20,0,0;30,30,0,0",
         "hole (loop 3) of the outline lies inside hole (loop 2) near (20, 20)"},
    };
    for (const auto& outline : cases) {
        SCOPED_TRACE(outline.text.toStdString());
        const auto polygon = skr::geometry::ParseSectionPolygon(outline.text);
        ASSERT_NE(polygon, nullptr);
        QString where;
        const bool valid = skr::geometry::checkSectionOutline(*polygon, &where);
        EXPECT_EQ(valid, *outline.refusal == '\0') << qPrintable(where);
        if (!valid) EXPECT_TRUE(where.startsWith(outline.refusal)) << qPrintable(where);
    }
}
