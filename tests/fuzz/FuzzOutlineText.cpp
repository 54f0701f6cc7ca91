// Fuzz target: an outline text as the databases store it, parsed into a polygon and checked; an
// outline that passes the check gives finite figures with a positive area and second moments.
#include "tests/fuzz/FuzzTarget.h"

#include "section_geometry/SKROutlineCheck.h"
#include "section_geometry/SKRSectionPolygonParser.h"

#include "ndp/NDPPolygon.h"
#include "section_geometry/SKRSectionProperties.h"

#include <QString>

#include <cmath>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > 8192) return 0;
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const std::unique_ptr<ndp::CPolygon> polygon = skr::geometry::ParseSectionPolygon(text);
    QString where;
    if (!polygon || !skr::geometry::checkSectionOutline(*polygon, &where)) return 0;
    const skr::geometry::SKRSectionProperties p = skr::geometry::SectionProperties(*polygon);
    const double figures[] = {p.area, p.perimeter, p.ix, p.iy, p.ixy};
    for (double f : figures)
        if (!std::isfinite(f)) std::abort();
    if (!(p.area > 0) || p.ix < 0 || p.iy < 0) std::abort();
    return 0;
}
