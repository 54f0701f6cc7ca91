// Finite-element warping and shear functions of a section on quadratic isoparametric triangles.
#include "section_geometry/SKRWarpingSolver.h"

#include "section_geometry/SKRSectionMesh.h"

#include <Eigen/Sparse>
#include <Eigen/SparseCholesky>

#include <cmath>
#include <vector>

namespace skr {
namespace geometry {

namespace {

// Dunavant's six-point rule, exact for polynomials of degree 4 on a triangle: area coordinates
// (l2, l3) and weights summing to one.
struct GaussPoint {
    double xi, eta, weight;
};
constexpr double kA1 = 0.445948490915965;
constexpr double kW1 = 0.223381589678011;
constexpr double kA2 = 0.091576213509771;
constexpr double kW2 = 0.109951743655322;
constexpr GaussPoint kGauss[6] = {{kA1, kA1, kW1}, {1 - 2 * kA1, kA1, kW1}, {kA1, 1 - 2 * kA1, kW1},
                                  {kA2, kA2, kW2}, {1 - 2 * kA2, kA2, kW2}, {kA2, 1 - 2 * kA2, kW2}};

// The six shape functions at one quadrature point of one element, their x and y derivatives,
// the point itself and its weight (quadrature weight times area).
struct Sample {
    double n[6];
    double dx[6];
    double dy[6];
    double x, y, weight;
};

// Samples of an element, its nodes taken relative to (ox, oy). False for an element turned
// inside out.
bool sampleElement(const SKRSectionMesh& mesh, const std::array<int, 6>& e, double ox, double oy, Sample (&s)[6]) {
    for (int g = 0; g < 6; ++g) {
        const double l2 = kGauss[g].xi;
        const double l3 = kGauss[g].eta;
        const double l1 = 1 - l2 - l3;
        Sample& p = s[g];
        p.n[0] = l1 * (2 * l1 - 1);
        p.n[1] = l2 * (2 * l2 - 1);
        p.n[2] = l3 * (2 * l3 - 1);
        p.n[3] = 4 * l1 * l2;
        p.n[4] = 4 * l2 * l3;
        p.n[5] = 4 * l3 * l1;
        // Derivatives in xi = l2 and eta = l3 (l1 = 1 - xi - eta).
        const double dXi[6] = {-(4 * l1 - 1), 4 * l2 - 1, 0.0, 4 * (l1 - l2), 4 * l3, -4 * l3};
        const double dEta[6] = {-(4 * l1 - 1), 0.0, 4 * l3 - 1, -4 * l2, 4 * l2, 4 * (l1 - l3)};
        double x = 0, y = 0, j11 = 0, j12 = 0, j21 = 0, j22 = 0;
        for (int i = 0; i < 6; ++i) {
            const double nx = mesh.nodes[e[i]].x - ox;
            const double ny = mesh.nodes[e[i]].y - oy;
            x += p.n[i] * nx;
            y += p.n[i] * ny;
            j11 += dXi[i] * nx;
            j12 += dXi[i] * ny;
            j21 += dEta[i] * nx;
            j22 += dEta[i] * ny;
        }
        const double det = j11 * j22 - j12 * j21;
        if (!(det > 0.0)) return false;
        for (int i = 0; i < 6; ++i) {
            p.dx[i] = (j22 * dXi[i] - j12 * dEta[i]) / det;
            p.dy[i] = (-j21 * dXi[i] + j11 * dEta[i]) / det;
        }
        p.x = x;
        p.y = y;
        p.weight = 0.5 * kGauss[g].weight * det;
    }
    return true;
}

}  // namespace

bool SolveWarping(const SKRSectionMesh& mesh, double nu, SKRWarpingFigures& out, QString* error, double* meshArea) {
    const int n = static_cast<int>(mesh.nodes.size());
    if (mesh.elements.empty() || n == 0) {
        if (error) *error = QStringLiteral("the section mesh is empty");
        return false;
    }
    auto fail = [&](const QString& why) {
        if (error) *error = why;
        return false;
    };
    Sample s[6];

    // The centroid, measured from the first node to keep far-off coordinates accurate.
    const double ox = mesh.nodes[0].x;
    const double oy = mesh.nodes[0].y;
    double area = 0, sx = 0, sy = 0;
    for (const auto& e : mesh.elements) {
        if (!sampleElement(mesh, e, ox, oy, s)) return fail(QStringLiteral("the section mesh has an inverted element"));
        for (const Sample& p : s) {
            area += p.weight;
            sx += p.weight * p.x;
            sy += p.weight * p.y;
        }
    }
    const double cx = ox + sx / area;
    const double cy = oy + sy / area;

    // Second moments and the assembled system, about the centroid.
    double ixx = 0, iyy = 0, ixy = 0;
    std::vector<Eigen::Triplet<double>> triplets;
    triplets.reserve(mesh.elements.size() * 36);
    Eigen::VectorXd constraint = Eigen::VectorXd::Zero(n);
    for (const auto& e : mesh.elements) {
        sampleElement(mesh, e, cx, cy, s);
        double k[6][6] = {};
        for (const Sample& p : s) {
            ixx += p.weight * p.y * p.y;
            iyy += p.weight * p.x * p.x;
            ixy += p.weight * p.x * p.y;
            for (int i = 0; i < 6; ++i) {
                constraint[e[i]] += p.weight * p.n[i];
                for (int j = 0; j < 6; ++j) k[i][j] += p.weight * (p.dx[i] * p.dx[j] + p.dy[i] * p.dy[j]);
            }
        }
        for (int i = 0; i < 6; ++i)
            for (int j = 0; j < 6; ++j) triplets.emplace_back(e[i], e[j], k[i][j]);
    }
    const double det = ixx * iyy - ixy * ixy;
    if (!(det > 0.0)) return fail(QStringLiteral("the section has no bending stiffness"));

    // Load vectors: warping, and the shear functions for shear along x (psi) and y (phi).
    Eigen::MatrixXd loads = Eigen::MatrixXd::Zero(n, 3);
    for (const auto& e : mesh.elements) {
        sampleElement(mesh, e, cx, cy, s);
        for (const Sample& p : s) {
            const double r = p.x * p.x - p.y * p.y;
            const double q = 2 * p.x * p.y;
            const double d1 = ixx * r - ixy * q;
            const double d2 = ixy * r + ixx * q;
            const double h1 = -ixy * r + iyy * q;
            const double h2 = -iyy * r - ixy * q;
            for (int i = 0; i < 6; ++i) {
                loads(e[i], 0) += p.weight * (p.y * p.dx[i] - p.x * p.dy[i]);
                loads(e[i], 1) += p.weight * (nu / 2 * (p.dx[i] * d1 + p.dy[i] * d2) +
                                              2 * (1 + nu) * p.n[i] * (ixx * p.x - ixy * p.y));
                loads(e[i], 2) += p.weight * (nu / 2 * (p.dx[i] * h1 + p.dy[i] * h2) +
                                              2 * (1 + nu) * p.n[i] * (iyy * p.y - ixy * p.x));
            }
        }
    }

    // The bordered system [K c; c' 0] [w; lambda] = [f; 0] by its Schur complement: K made
    // regular by a spring k at node 0 (K^ = K + k e0 e0'), factorised once, then the multiplier
    // lambda and the spring's force mu = k w0 from the two scalar conditions c.w = 0 and
    // w0 = mu / k. A dense multiplier row inside a sparse factorisation would fill it completely.
    Eigen::SparseMatrix<double> system(n, n);
    system.setFromTriplets(triplets.begin(), triplets.end());
    double spring = 0.0;
    for (int i = 0; i < n; ++i) spring += system.coeff(i, i);
    spring /= n;
    system.coeffRef(0, 0) += spring;
    system.makeCompressed();
    Eigen::SimplicialLDLT<Eigen::SparseMatrix<double>> solver(system);
    if (solver.info() != Eigen::Success) return fail(QStringLiteral("the warping system of the section is singular"));
    Eigen::MatrixXd right(n, 5);
    right.leftCols(3) = loads.topRows(n);
    right.col(3) = constraint;
    right.col(4) = Eigen::VectorXd::Unit(n, 0);
    const Eigen::MatrixXd parts = solver.solve(right);
    if (solver.info() != Eigen::Success || !parts.allFinite())
        return fail(QStringLiteral("the warping system of the section could not be solved"));
    const Eigen::VectorXd& u = parts.col(3);  // K^-1 c
    const Eigen::VectorXd& v = parts.col(4);  // K^-1 e0
    // w = a - lambda u + mu v, a = K^-1 f: c.w = 0 and w0 = mu / k.
    const double m11 = -constraint.dot(u), m12 = constraint.dot(v);
    const double m21 = -u[0], m22 = v[0] - 1.0 / spring;
    const double determinant = m11 * m22 - m12 * m21;
    if (!(std::fabs(determinant) > 0.0)) return fail(QStringLiteral("the warping system of the section is singular"));
    Eigen::MatrixXd solution(n, 3);
    for (int k = 0; k < 3; ++k) {
        const Eigen::VectorXd a = parts.col(k);
        const double r1 = -constraint.dot(a), r2 = -a[0];
        const double lambda = (r1 * m22 - m12 * r2) / determinant;
        const double mu = (m11 * r2 - m21 * r1) / determinant;
        solution.col(k) = a - lambda * u + mu * v;
    }
    const Eigen::VectorXd omega = solution.col(0).head(n);
    const Eigen::VectorXd psi = solution.col(1).head(n);
    const Eigen::VectorXd phi = solution.col(2).head(n);

    // J = Ix + Iy - w.K.w, where K w = f and the multiplier's share vanishes (c.w = 0).
    out.j = ixx + iyy - omega.dot(loads.col(0).head(n));

    double ixOmega = 0, iyOmega = 0, cubicX = 0, cubicY = 0;
    double kappaX = 0, kappaY = 0;
    for (const auto& e : mesh.elements) {
        sampleElement(mesh, e, cx, cy, s);
        for (const Sample& p : s) {
            double w = 0, psiX = 0, psiY = 0, phiX = 0, phiY = 0;
            for (int i = 0; i < 6; ++i) {
                w += p.n[i] * omega[e[i]];
                psiX += p.dx[i] * psi[e[i]];
                psiY += p.dy[i] * psi[e[i]];
                phiX += p.dx[i] * phi[e[i]];
                phiY += p.dy[i] * phi[e[i]];
            }
            ixOmega += p.weight * p.x * w;
            iyOmega += p.weight * p.y * w;
            const double polar = p.x * p.x + p.y * p.y;
            cubicX += p.weight * p.y * polar;
            cubicY += p.weight * p.x * polar;
            const double r = p.x * p.x - p.y * p.y;
            const double q = 2 * p.x * p.y;
            const double ax = psiX - nu / 2 * (ixx * r - ixy * q);
            const double ay = psiY - nu / 2 * (ixy * r + ixx * q);
            const double bx = phiX - nu / 2 * (-ixy * r + iyy * q);
            const double by = phiY - nu / 2 * (-iyy * r - ixy * q);
            kappaX += p.weight * (ax * ax + ay * ay);
            kappaY += p.weight * (bx * bx + by * by);
        }
    }
    out.xs = (ixy * ixOmega - iyy * iyOmega) / det;
    out.ys = (ixx * ixOmega - ixy * iyOmega) / det;

    // The warping function about the shear centre: w - ys x + xs y, less its mean.
    double sum = 0, sumSquares = 0;
    for (const auto& e : mesh.elements) {
        sampleElement(mesh, e, cx, cy, s);
        for (const Sample& p : s) {
            double w = 0;
            for (int i = 0; i < 6; ++i) w += p.n[i] * omega[e[i]];
            const double ws = w - out.ys * p.x + out.xs * p.y;
            sum += p.weight * ws;
            sumSquares += p.weight * ws * ws;
        }
    }
    out.iw = sumSquares - sum * sum / area;
    out.betaX = cubicX / ixx - 2 * out.ys;
    out.betaY = cubicY / iyy - 2 * out.xs;
    const double deltaS = 2 * (1 + nu) * det;
    out.asx = deltaS * deltaS / kappaX;
    out.asy = deltaS * deltaS / kappaY;
    if (meshArea) *meshArea = area;
    return true;
}

}  // namespace geometry
}  // namespace skr
