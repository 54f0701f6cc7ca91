// Fuzz target: an outline text as the databases store it, parsed into a polygon and checked; an
// outline that passes the check gives finite figures with a positive area and second moments, and
// plastic moduli no smaller than the elastic ones.
#include "tests/fuzz/FuzzTarget.h"

#include "section_geometry/SKROutlineCheck.h"
#include "section_geometry/SKRSectionPolygonParser.h"

#include "ndp/NDPPolygon.h"
#include "section_geometry/SKRSectionFigures.h"
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
    const skr::geometry::SKRExactFigures e = skr::geometry::ExactSectionFigures(*polygon);
    const double exact[] = {e.i1, e.i2, e.alpha, e.wxTop, e.wxBottom, e.wyLeft, e.wyRight, e.w1, e.w2, e.zx, e.zy};
    for (double f : exact)
        if (!std::isfinite(f)) std::abort();
    if (e.zx < e.wx() * (1 - 1e-6) || e.zy < e.wy() * (1 - 1e-6)) std::abort();
    return 0;
}
