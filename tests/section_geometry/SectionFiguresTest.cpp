// Steel-table figures against closed forms: exact moduli (elastic and plastic) of rectangles,
// I, T, circle and ring; torsion, warping, shear centre, monosymmetry and shear areas from the
// finite-element solution against the series and thin-walled solutions they must approach.
#include "ndp/NDPPolygon.h"
#include "section_geometry/SKRSectionFigures.h"
#include "section_geometry/SKRSectionMesh.h"
#include "section_geometry/SKRSectionPolygonParser.h"
#include "section_geometry/SKRWarpingSolver.h"

#include <gtest/gtest.h>

#include <cmath>

using skr::geometry::SectionFigures;
using skr::geometry::SKRSectionFigures;

namespace {

const double kPi = 3.14159265358979323846;

QString polygonText(std::initializer_list<std::pair<double, double>> points) {
    QStringList records;
    for (const auto& p : points) records << QStringLiteral("%1,%2,0,0").arg(p.first, 0, 'g', 17).arg(p.second, 0, 'g', 17);
    return records.join(QLatin1Char(';'));
}

QString rectangleText(double b, double h) { return polygonText({{0, 0}, {b, 0}, {b, h}, {0, h}}); }

// A doubly symmetric I of depth h, flange width b, web tw and flange tf, sharp-cornered.
QString iText(double h, double b, double tw, double tf) {
    const double l = (b - tw) / 2;
    return polygonText({{0, 0}, {b, 0}, {b, tf}, {l + tw, tf}, {l + tw, h - tf}, {b, h - tf}, {b, h}, {0, h},
                        {0, h - tf}, {l, h - tf}, {l, tf}, {0, tf}});
}

// A channel of depth h, flange width b and thickness t throughout, web on the left.
QString channelText(double h, double b, double t) {
    return polygonText({{0, 0}, {b, 0}, {b, t}, {t, t}, {t, h - t}, {b, h - t}, {b, h}, {0, h}});
}

QString circleText(double r) { return QStringLiteral("%1,%1,%1,50").arg(r); }
QString ringText(double r, double t) { return QStringLiteral("%1,%1,%1,50|||%1,%1,%2,50").arg(r).arg(r - t); }

SKRSectionFigures figuresOf(const QString& text) {
    SKRSectionFigures f;
    QString error;
    EXPECT_TRUE(SectionFigures(text, f, &error)) << error.toStdString();
    return f;
}

void expectRelative(double actual, double expected, double tolerance, const std::string& what) {
    EXPECT_NEAR(actual, expected, tolerance * std::fabs(expected)) << what;
}

struct ExactCase {
    const char* name;
    QString text;
    double area, ix, iy, wx, wy, zx, zy;
};

TEST(SectionFigures, ElasticAndPlasticModuliAreExact) {
    const double r = 50, ro = 60, ri = 50, cI = kPi * std::pow(r, 4) / 4;
    const double ringI = kPi * (std::pow(ro, 4) - std::pow(ri, 4)) / 4;
    const double ringZ = 4 * (std::pow(ro, 3) - std::pow(ri, 3)) / 3;
    // T: flange 100 x 10 on a stem 10 x 90; the plastic axis lies 0.5 into the flange.
    const double tArea = 1900, tYc = (1000 * 95 + 900 * 45) / 1900.0;
    const double tIx = 100 * 1000 / 12.0 + 1000 * std::pow(95 - tYc, 2) + 10 * std::pow(90, 3) / 12 +
                       900 * std::pow(45 - tYc, 2);
    const double tIy = 10 * std::pow(100, 3) / 12 + 90 * 1000 / 12.0;
    const double iIx = (200 * std::pow(400, 3) - 192 * std::pow(374, 3)) / 12;
    const double iIy = 2 * 13 * std::pow(200, 3) / 12 + 374 * std::pow(8, 3) / 12;
    const ExactCase cases[] = {
        {"rectangle", rectangleText(100, 40), 4000, 100 * 64000 / 12.0, 40 * 1e6 / 12, 100 * 1600 / 6.0,
         40 * 1e4 / 6, 100 * 1600 / 4.0, 40 * 1e4 / 4},
        {"I", iText(400, 200, 8, 13), 8192, iIx, iIy, iIx / 200, iIy / 100, 200 * 13 * 387 + 8 * 374 * 374 / 4.0,
         2 * 13 * 40000 / 4.0 + 374 * 64 / 4.0},
        {"T", polygonText({{45, 0}, {55, 0}, {55, 90}, {100, 90}, {100, 100}, {0, 100}, {0, 90}, {45, 90}}), tArea,
         tIx, tIy, tIx / tYc, tIy / 50, 900 * 45.5 + 100 * 0.5 * 0.25 + 100 * 9.5 * 4.75, 27250},
        {"circle", circleText(r), kPi * r * r, cI, cI, cI / r, cI / r, 4 * std::pow(r, 3) / 3, 4 * std::pow(r, 3) / 3},
        {"ring", QStringLiteral("60,60,60,50|||60,60,50,50"), kPi * (ro * ro - ri * ri), ringI, ringI, ringI / ro,
         ringI / ro, ringZ, ringZ},
    };
    for (const ExactCase& c : cases) {
        SCOPED_TRACE(c.name);
        const skr::geometry::SKRExactFigures f = figuresOf(c.text).exact;
        expectRelative(f.area, c.area, 1e-12, "A");
        expectRelative(f.ix, c.ix, 1e-12, "Ix");
        expectRelative(f.iy, c.iy, 1e-12, "Iy");
        expectRelative(f.wx(), c.wx, 1e-12, "Wx");
        expectRelative(f.wy(), c.wy, 1e-12, "Wy");
        expectRelative(f.zx, c.zx, 1e-10, "Zx");
        expectRelative(f.zy, c.zy, 1e-10, "Zy");
        expectRelative(f.massPerMetre, 0.00785 * c.area, 1e-12, "mass");
    }
}

TEST(SectionFigures, PrincipalAxesOfAnEqualAngleLieAtFortyFiveDegrees) {
    const skr::geometry::SKRExactFigures f =
        figuresOf(polygonText({{0, 0}, {100, 0}, {100, 10}, {10, 10}, {10, 100}, {0, 100}})).exact;
    EXPECT_NEAR(f.alpha, 45.0, 1e-9);
    // About the symmetry axis and across it; their sum is the polar moment.
    expectRelative(f.i1, f.ix - f.ixy, 1e-12, "I1");
    expectRelative(f.i2, f.ix + f.ixy, 1e-12, "I2");
    EXPECT_LT(f.ixy, 0.0);
    // Axis 1 runs along the symmetry line; the farthest fibres from it are the leg ends' outer
    // corners, 100 / sqrt(2) away.
    expectRelative(f.w1, f.i1 / (100 / std::sqrt(2.0)), 1e-12, "W1");
}

// The torsion constant of a b x t rectangle by its series (Timoshenko).
double rectangleTorsion(double b, double t) {
    double sum = 0;
    for (int n = 1; n < 200; n += 2) sum += std::tanh(n * kPi * b / (2 * t)) / std::pow(n, 5);
    return b * std::pow(t, 3) / 3 * (1 - 192 / std::pow(kPi, 5) * t / b * sum);
}

TEST(SectionFigures, TorsionOfRectanglesCirclesAndThinTubesMatchesTheElasticitySolution) {
    for (double ratio : {1.0, 2.0, 4.0, 10.0}) {
        SCOPED_TRACE(ratio);
        const SKRSectionFigures f = figuresOf(rectangleText(10 * ratio, 10));
        expectRelative(f.warping.j, rectangleTorsion(10 * ratio, 10), 0.005, "J");
        EXPECT_NEAR(f.warping.xs, 0.0, 1e-6 * ratio * 10) << "shear centre at the centroid";
        EXPECT_NEAR(f.warping.ys, 0.0, 1e-6 * ratio * 10) << "shear centre at the centroid";
        EXPECT_TRUE(f.warping.converged);
    }
    const double r = 20;
    const SKRSectionFigures circle = figuresOf(circleText(r));
    expectRelative(circle.warping.j, kPi * std::pow(r, 4) / 2, 0.005, "J of a circle");
    EXPECT_NEAR(circle.warping.iw, 0.0, 1e-6 * circle.warping.j * r * r) << "a circle does not warp";
    // A thin tube follows Bredt.
    const double t = 2, rm = 50 - t / 2, enclosed = kPi * rm * rm;
    expectRelative(figuresOf(ringText(50, t)).warping.j, 4 * enclosed * enclosed * t / (2 * kPi * rm), 0.01, "J");
}

TEST(SectionFigures, ChannelShearCentreAndIWarpingMatchThinWalledTheory) {
    // Channel: the shear centre lies e = 3 b^2 / (6 b + h) behind the web's mid-line (centre-line
    // dimensions b and h, one thickness throughout).
    const double h = 200, b = 75, t = 3;
    const SKRSectionFigures c = figuresOf(channelText(h, b, t));
    const double bc = b - t / 2, hc = h - t;
    const double e = 3 * bc * bc / (6 * bc + hc);
    expectRelative(c.exact.xc + c.warping.xs, t / 2 - e, 0.02, "channel shear centre x");
    EXPECT_NEAR(c.warping.ys, 0.0, 1e-4 * h);
    // Its warping constant about that shear centre: Iw = t b^3 h^2 / 12 (3 b + 2 h) / (6 b + h).
    expectRelative(c.warping.iw, t * bc * bc * bc * hc * hc / 12 * (3 * bc + 2 * hc) / (6 * bc + hc), 0.02,
                   "channel warping constant");

    // I: Iw = If h^2 / 2, If a flange's second moment about the web, h between flange mid-lines.
    const SKRSectionFigures i = figuresOf(iText(400, 200, 8, 13));
    const double flange = 13 * std::pow(200, 3) / 12;
    expectRelative(i.warping.iw, flange * 387 * 387 / 2, 0.02, "I warping constant");
    // The mesh is not symmetric, so these are zero to the discretisation only.
    EXPECT_NEAR(i.warping.xs, 0.0, 1e-4 * 400);
    EXPECT_NEAR(i.warping.ys, 0.0, 1e-4 * 400);
    EXPECT_NEAR(i.warping.betaX, 0.0, 1e-4 * 400) << "no monosymmetry in a symmetric I";
}

// Rolled I flanges slope 1:6, thick at the root and thin at the toe: a warping constant from
// an even flange of the mean thickness (as tables figure it) is some 20 % high. Thin-walled
// theory along the sloped mid-line of the flanges, with their varying thickness, gives it.
TEST(SectionFigures, WarpingOfASlopedFlangeIFollowsItsMidLine) {
    const double h = 200, b = 100, d = 7, t = 11.4;  // I20a without its radii
    const double rise = (b - d) / 2 / 6 / 2;
    const double tip = t - rise, root = t + rise, l = (b - d) / 2;
    const SKRSectionFigures i = figuresOf(polygonText({{0, 0}, {b, 0}, {b, tip}, {l + d, root}, {l + d, h - root},
                                                       {b, h - tip}, {b, h}, {0, h}, {0, h - tip}, {l, h - root},
                                                       {l, root}, {0, tip}}));
    // Sectorial coordinate about the centre along a flange's mid-line y(x) = -h/2 + thickness/2
    // (x from the web): d omega = (x dy/dx - y) dx; Iw = 4 * integral of omega^2 thickness dx.
    auto thickness = [&](double x) { return x < d / 2 ? root : root - (root - tip) * (x - d / 2) / l; };
    const double slope = -(root - tip) / l / 2;  // dy/dx of the mid-line beyond the web
    const int steps = 20000;
    const double dx = b / 2 / steps;
    double omega = 0, thinWalled = 0;
    for (int k = 0; k < steps; ++k) {
        const double x = (k + 0.5) * dx;
        const double y = -h / 2 + thickness(x) / 2;
        omega += (x * (x < d / 2 ? 0.0 : slope) - y) * dx;
        thinWalled += 4 * omega * omega * thickness(x) * dx;
    }
    expectRelative(i.warping.iw, thinWalled, 0.02, "Iw of a sloped-flange I");
    const double even = t * b * b * b / 12 * (h - t) * (h - t) / 2;
    EXPECT_LT(i.warping.iw, 0.85 * even) << "an even flange of the mean thickness overstates it";
}

// Monosymmetry of an I with unequal flanges: beta_x = (1/Ix) integral of y (x^2 + y^2) dA - 2 ys,
// the integral exact over the three plates, the shear centre where thin-walled theory puts it
// (between the flanges' mid-lines in the ratio of their second moments).
TEST(SectionFigures, MonosymmetryOfAnIWithUnequalFlanges) {
    const double h = 400, b1 = 250, t1 = 16, b2 = 150, t2 = 12, tw = 8;  // wide flange on top
    const double l1 = (b1 - tw) / 2, l2 = (b2 - tw) / 2, o2 = (b1 - b2) / 2;
    const SKRSectionFigures f = figuresOf(polygonText({{o2, 0}, {o2 + b2, 0}, {o2 + b2, t2}, {o2 + l2 + tw, t2},
                                                       {l1 + tw, h - t1}, {b1, h - t1}, {b1, h}, {0, h},
                                                       {0, h - t1}, {l1, h - t1}, {o2 + l2, t2}, {o2, t2}}));
    const double xc = f.exact.xc, yc = f.exact.yc;
    // Integral of y (x^2 + y^2) over a plate [x0, x1] x [y0, y1], x and y from the centroid.
    auto plate = [&](double x0, double x1, double y0, double y1) {
        x0 -= xc, x1 -= xc, y0 -= yc, y1 -= yc;
        return (std::pow(x1, 3) - std::pow(x0, 3)) / 3 * (y1 * y1 - y0 * y0) / 2 +
               (x1 - x0) * (std::pow(y1, 4) - std::pow(y0, 4)) / 4;
    };
    const double cubic = plate(0, b1, h - t1, h) + plate(o2, o2 + b2, 0, t2) + plate(l1, l1 + tw, t2, h - t1);
    const double top = t1 * std::pow(b1, 3) / 12, bottom = t2 * std::pow(b2, 3) / 12;
    const double hf = h - t1 / 2 - t2 / 2;
    const double ys = h - t1 / 2 - hf * bottom / (top + bottom) - yc;
    EXPECT_NEAR(f.warping.ys, ys, 0.01 * hf) << "shear centre";
    expectRelative(f.warping.betaX, cubic / f.exact.ix - 2 * ys, 0.02, "beta_x");
    EXPECT_NEAR(f.warping.betaY, 0.0, 1e-4 * h) << "symmetric about y";
}

TEST(SectionFigures, ShearAreaOfARectangleWithoutPoissonIsFiveSixths) {
    const std::unique_ptr<ndp::CPolygon> polygon = skr::geometry::ParseSectionPolygon(rectangleText(60, 20));
    skr::geometry::SKRSectionMesh mesh;
    ASSERT_TRUE(skr::geometry::MeshSection(*polygon, 2.0, mesh));
    skr::geometry::SKRWarpingFigures w;
    double area = 0;
    ASSERT_TRUE(skr::geometry::SolveWarping(mesh, 0.0, w, nullptr, &area));
    expectRelative(area, 1200, 1e-9, "mesh area");
    expectRelative(w.asx, 1200 * 5.0 / 6, 0.005, "Asx");
    expectRelative(w.asy, 1200 * 5.0 / 6, 0.005, "Asy");
}

TEST(SectionFigures, BadOutlinesAreRefusedWithTheReason) {
    SKRSectionFigures f;
    QString error;
    EXPECT_FALSE(SectionFigures(QString(), f, &error));
    EXPECT_FALSE(error.isEmpty());
    error.clear();
    EXPECT_FALSE(SectionFigures(polygonText({{0, 0}, {10, 10}, {10, 0}, {0, 10}}), f, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("crosses itself"))) << error.toStdString();
}

}  // namespace
