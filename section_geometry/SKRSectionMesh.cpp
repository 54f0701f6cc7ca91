// Conforming Delaunay meshes of section outlines with quadratic elements (see the header).
#include "section_geometry/SKRSectionMesh.h"

#include "ndp/NDPPolygon.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <unordered_map>
#include <unordered_set>

namespace skr {
namespace geometry {

using namespace ndp;

namespace {

constexpr double kPi = 3.14159265358979323846;
// The largest angle an element edge on an arc may span.
constexpr double kMaxArcStep = kPi / 12;
constexpr double kMaxElements = 4e6;

std::uint64_t edgeKey(int a, int b) {
    if (a > b) std::swap(a, b);
    return (static_cast<std::uint64_t>(a) << 32) | static_cast<std::uint32_t>(b);
}

// A piece of the boundary between two triangulation points: straight, or an arc about centre
// from angle `from` to angle `to`.
struct Piece {
    int a = 0;
    int b = 0;
    bool arc = false;
    CPoint2d centre;
    double radius = 0.0;
    double from = 0.0;
    double to = 0.0;
};

struct Triangle {
    std::array<int, 3> v{};
    std::array<int, 3> n{};  // the neighbour across the edge opposite v[i], -1 for none
    double cx = 0.0;
    double cy = 0.0;
    double r2 = 0.0;
    bool alive = true;
};

// An incremental Delaunay triangulation inside a large enclosing triangle (points 0 to 2).
class Delaunay {
public:
    explicit Delaunay(const CBox2d& box) {
        const double mx = 0.5 * (box.Min().x + box.Max().x);
        const double my = 0.5 * (box.Min().y + box.Max().y);
        m_scale = std::max(box.Max().x - box.Min().x, box.Max().y - box.Min().y);
        const double far = 20.0 * m_scale;
        points = {{mx - far, my - far}, {mx + far, my - far}, {mx, my + far}};
        Triangle t;
        t.v = {0, 1, 2};
        t.n = {-1, -1, -1};
        circumscribe(t);
        triangles.push_back(t);
    }

    // Inserts a point; the index of the point already there when it coincides with one.
    int insert(const CPoint2d& p) {
        const int start = locate(p);
        for (int vertex : triangles[start].v)
            if (std::hypot(points[vertex].x - p.x, points[vertex].y - p.y) <= 1e-10 * m_scale) return vertex;
        const int index = static_cast<int>(points.size());
        points.push_back(p);

        ++m_stamp;
        m_mark.resize(triangles.size(), 0);
        std::vector<int> cavity{start};
        std::vector<int> stack{start};
        m_mark[start] = m_stamp;
        while (!stack.empty()) {
            const int t = stack.back();
            stack.pop_back();
            for (int nb : triangles[t].n) {
                if (nb < 0 || m_mark[nb] == m_stamp || !inCircle(triangles[nb], p)) continue;
                m_mark[nb] = m_stamp;
                cavity.push_back(nb);
                stack.push_back(nb);
            }
        }
        // The cavity must be seen whole from the new point; where rounding left an edge that is
        // not, the triangle beyond joins the cavity.
        struct Edge {
            int a, b, outside;
        };
        std::vector<Edge> edges;
        for (bool grown = true; grown;) {
            grown = false;
            edges.clear();
            for (size_t c = 0; c < cavity.size() && !grown; ++c) {
                const Triangle& t = triangles[cavity[c]];
                for (int i = 0; i < 3; ++i) {
                    const int nb = t.n[i];
                    if (nb >= 0 && m_mark[nb] == m_stamp) continue;
                    const int a = t.v[(i + 1) % 3];
                    const int b = t.v[(i + 2) % 3];
                    if (orient(a, b, p) <= 1e-12 * squaredLength(a, b) && nb >= 0) {
                        m_mark[nb] = m_stamp;
                        cavity.push_back(nb);
                        grown = true;
                        break;
                    }
                    edges.push_back({a, b, nb});
                }
            }
        }
        const int first = static_cast<int>(triangles.size());
        for (const Edge& e : edges) {
            Triangle t;
            t.v = {e.a, e.b, index};
            t.n = {-1, -1, e.outside};
            circumscribe(t);
            const int created = static_cast<int>(triangles.size());
            triangles.push_back(t);
            if (e.outside < 0) continue;
            Triangle& outside = triangles[e.outside];
            for (int j = 0; j < 3; ++j)
                if (outside.v[(j + 1) % 3] == e.b && outside.v[(j + 2) % 3] == e.a) outside.n[j] = created;
        }
        // New triangles (a, b, p) meet along the edges p-a and b-p.
        const int last = static_cast<int>(triangles.size());
        for (int t = first; t < last; ++t) {
            for (int u = first; u < last; ++u) {
                if (triangles[u].v[0] == triangles[t].v[1]) triangles[t].n[0] = u;
                if (triangles[u].v[1] == triangles[t].v[0]) triangles[t].n[1] = u;
            }
        }
        for (int t : cavity) triangles[t].alive = false;
        m_last = first;
        return index;
    }

    std::vector<CPoint2d> points;
    std::vector<Triangle> triangles;

private:
    double orient(int a, int b, const CPoint2d& p) const {
        const CPoint2d& pa = points[a];
        const CPoint2d& pb = points[b];
        return (pb.x - pa.x) * (p.y - pa.y) - (pb.y - pa.y) * (p.x - pa.x);
    }
    double squaredLength(int a, int b) const {
        const double dx = points[b].x - points[a].x;
        const double dy = points[b].y - points[a].y;
        return dx * dx + dy * dy;
    }
    static bool inCircle(const Triangle& t, const CPoint2d& p) {
        if (!t.alive) return false;
        const double dx = p.x - t.cx;
        const double dy = p.y - t.cy;
        return dx * dx + dy * dy < t.r2 * (1 - 1e-12);
    }
    void circumscribe(Triangle& t) const {
        const CPoint2d& a = points[t.v[0]];
        const double bx = points[t.v[1]].x - a.x;
        const double by = points[t.v[1]].y - a.y;
        const double cx = points[t.v[2]].x - a.x;
        const double cy = points[t.v[2]].y - a.y;
        const double d = 2 * (bx * cy - by * cx);
        if (d == 0.0) {
            t.cx = a.x;
            t.cy = a.y;
            t.r2 = std::numeric_limits<double>::infinity();
            return;
        }
        const double b2 = bx * bx + by * by;
        const double c2 = cx * cx + cy * cy;
        const double ux = (cy * b2 - by * c2) / d;
        const double uy = (bx * c2 - cx * b2) / d;
        t.cx = a.x + ux;
        t.cy = a.y + uy;
        t.r2 = ux * ux + uy * uy;
    }
    bool contains(const Triangle& t, const CPoint2d& p) const {
        for (int i = 0; i < 3; ++i)
            if (orient(t.v[(i + 1) % 3], t.v[(i + 2) % 3], p) < 0.0) return false;
        return true;
    }
    // The triangle holding p: a walk from the last triangle made, towards p.
    int locate(const CPoint2d& p) const {
        int t = m_last;
        const size_t limit = 4 * triangles.size() + 16;
        for (size_t step = 0; step < limit; ++step) {
            const Triangle& tri = triangles[t];
            int next = -1;
            for (int k = 0; k < 3; ++k) {
                const int i = (k + static_cast<int>(step)) % 3;
                if (orient(tri.v[(i + 1) % 3], tri.v[(i + 2) % 3], p) < 0.0 && tri.n[i] >= 0) {
                    next = tri.n[i];
                    break;
                }
            }
            if (next < 0) return t;
            t = next;
        }
        for (size_t i = 0; i < triangles.size(); ++i)
            if (triangles[i].alive && contains(triangles[i], p)) return static_cast<int>(i);
        return m_last;
    }

    double m_scale = 1.0;
    int m_last = 0;
    int m_stamp = 0;
    std::vector<int> m_mark;
};

CPoint2d pieceMiddle(const Piece& piece, const std::vector<CPoint2d>& points) {
    if (!piece.arc) {
        const CPoint2d& a = points[piece.a];
        const CPoint2d& b = points[piece.b];
        return {0.5 * (a.x + b.x), 0.5 * (a.y + b.y)};
    }
    const double middle = 0.5 * (piece.from + piece.to);
    return {piece.centre.x + piece.radius * std::cos(middle), piece.centre.y + piece.radius * std::sin(middle)};
}

double segmentDistance(const CPoint2d& p, const CPoint2d& a, const CPoint2d& b) {
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double length2 = dx * dx + dy * dy;
    double t = length2 > 0.0 ? ((p.x - a.x) * dx + (p.y - a.y) * dy) / length2 : 0.0;
    t = std::min(1.0, std::max(0.0, t));
    return std::hypot(p.x - a.x - t * dx, p.y - a.y - t * dy);
}

}  // namespace

bool MeshSection(const CPolygon& polygon, double size, SKRSectionMesh& mesh, QString* error) {
    const CBox2d box = polygon.BoundingBox();
    const double area = std::fabs(polygon.Area());
    if (box.IsEmpty() || !(area > 0.0)) {
        if (error) *error = QStringLiteral("the outline encloses no area");
        return false;
    }
    if (!(size > 0.0) || area / (0.43 * size * size) > kMaxElements) {
        if (error) *error = QStringLiteral("element size %1 mm does not suit a section of %2 mm2").arg(size).arg(area);
        return false;
    }
    Delaunay dt(box);

    // The boundary, cut into pieces of at most the element size.
    std::vector<Piece> pieces;
    for (int l = 0; l < polygon.GetLoopCount(); ++l) {
        const CLoop* loop = polygon.GetLoop(l);
        const int firstPiece = static_cast<int>(pieces.size());
        for (int k = 0; k < loop->GetCount(); ++k) {
            const CCurve2d* curve = loop->GetCurve(k);
            const double length = curve->Length();
            if (!(length > 1e-9 * size)) continue;
            const auto* arc = curve->GetType() == EnCurveType::Arc ? static_cast<const CArc2d*>(curve) : nullptr;
            int count = std::max(1, static_cast<int>(std::ceil(length / size - 1e-9)));
            if (arc) count = std::max(count, static_cast<int>(std::ceil(std::fabs(arc->Sweep()) / kMaxArcStep)));
            for (int i = 0; i < count; ++i) {
                Piece piece;
                CPoint2d p = curve->StartPoint();
                if (arc) {
                    piece.arc = true;
                    piece.centre = arc->Centre();
                    piece.radius = arc->Radius();
                    piece.from = arc->StartAngle() + arc->Sweep() * i / count;
                    piece.to = arc->StartAngle() + arc->Sweep() * (i + 1) / count;
                    if (i > 0) p = {piece.centre.x + piece.radius * std::cos(piece.from),
                                    piece.centre.y + piece.radius * std::sin(piece.from)};
                } else if (i > 0) {
                    const CPoint2d s = curve->StartPoint();
                    const CPoint2d e = curve->EndPoint();
                    p = {s.x + (e.x - s.x) * i / count, s.y + (e.y - s.y) * i / count};
                }
                piece.a = dt.insert(p);
                pieces.push_back(piece);
            }
        }
        const int lastPiece = static_cast<int>(pieces.size());
        for (int i = firstPiece; i < lastPiece; ++i) pieces[i].b = pieces[i + 1 < lastPiece ? i + 1 : firstPiece].a;
    }
    pieces.erase(std::remove_if(pieces.begin(), pieces.end(), [](const Piece& p) { return p.a == p.b; }),
                 pieces.end());

    // The inside: a triangular lattice, row by row, each row's points between the boundary's
    // crossings of it (even-odd), kept half an element from the boundary.
    const double x0 = box.Min().x;
    const double y0 = box.Min().y;
    const int columns = static_cast<int>(std::ceil((box.Max().x - x0) / size)) + 1;
    const int rows = static_cast<int>(std::ceil((box.Max().y - y0) / size)) + 1;
    std::vector<std::vector<int>> grid(static_cast<size_t>(columns) * rows);
    auto cellOf = [&](double x, double y) {
        const int i = std::min(columns - 1, std::max(0, static_cast<int>((x - x0) / size)));
        const int j = std::min(rows - 1, std::max(0, static_cast<int>((y - y0) / size)));
        return std::make_pair(i, j);
    };
    for (size_t k = 0; k < pieces.size(); ++k) {
        const CPoint2d& a = dt.points[pieces[k].a];
        const CPoint2d& b = dt.points[pieces[k].b];
        const auto lo = cellOf(std::min(a.x, b.x), std::min(a.y, b.y));
        const auto hi = cellOf(std::max(a.x, b.x), std::max(a.y, b.y));
        for (int i = lo.first; i <= hi.first; ++i)
            for (int j = lo.second; j <= hi.second; ++j) grid[static_cast<size_t>(j) * columns + i].push_back(static_cast<int>(k));
    }
    auto clearOfBoundary = [&](const CPoint2d& p) {
        const auto cell = cellOf(p.x, p.y);
        for (int i = std::max(0, cell.first - 1); i <= std::min(columns - 1, cell.first + 1); ++i)
            for (int j = std::max(0, cell.second - 1); j <= std::min(rows - 1, cell.second + 1); ++j)
                for (int k : grid[static_cast<size_t>(j) * columns + i])
                    if (segmentDistance(p, dt.points[pieces[k].a], dt.points[pieces[k].b]) < 0.5 * size) return false;
        return true;
    };
    const double rowStep = size * std::sqrt(3.0) / 2;
    std::vector<double> crossings;
    for (int row = 0;; ++row) {
        const double y = y0 + (row + 0.5) * rowStep;
        if (y >= box.Max().y) break;
        crossings.clear();
        for (const Piece& piece : pieces) {
            const CPoint2d& a = dt.points[piece.a];
            const CPoint2d& b = dt.points[piece.b];
            if ((a.y <= y) != (b.y <= y)) crossings.push_back(a.x + (y - a.y) * (b.x - a.x) / (b.y - a.y));
        }
        std::sort(crossings.begin(), crossings.end());
        const double offset = x0 + (row % 2 ? 0.5 * size : 0.0);
        std::vector<CPoint2d> rowPoints;
        for (size_t c = 0; c + 1 < crossings.size(); c += 2) {
            for (double i = std::ceil((crossings[c] - offset) / size); offset + i * size <= crossings[c + 1]; ++i) {
                const CPoint2d p{offset + i * size, y};
                if (clearOfBoundary(p)) rowPoints.push_back(p);
            }
        }
        if (row % 2) std::reverse(rowPoints.begin(), rowPoints.end());
        for (const CPoint2d& p : rowPoints) dt.insert(p);
    }

    // Every boundary piece an edge of the triangulation: halve those that are not.
    for (int pass = 0;; ++pass) {
        std::unordered_set<std::uint64_t> edges;
        for (const Triangle& t : dt.triangles)
            if (t.alive)
                for (int i = 0; i < 3; ++i) edges.insert(edgeKey(t.v[i], t.v[(i + 1) % 3]));
        std::vector<size_t> missing;
        for (size_t k = 0; k < pieces.size(); ++k)
            if (!edges.count(edgeKey(pieces[k].a, pieces[k].b))) missing.push_back(k);
        if (missing.empty()) break;
        if (pass == 40) {
            if (error) *error = QStringLiteral("the outline could not be meshed at element size %1 mm").arg(size);
            return false;
        }
        for (size_t k : missing) {
            Piece second = pieces[k];
            const int middle = dt.insert(pieceMiddle(pieces[k], dt.points));
            if (middle == pieces[k].a || middle == pieces[k].b) {
                if (error) *error = QStringLiteral("the outline could not be meshed at element size %1 mm").arg(size);
                return false;
            }
            const double half = 0.5 * (pieces[k].from + pieces[k].to);
            pieces[k].b = middle;
            pieces[k].to = half;
            second.a = middle;
            second.from = half;
            pieces.push_back(second);
        }
    }

    // Inside and outside: the triangles at the enclosing triangle's corners are outside, and
    // crossing a boundary edge changes sides.
    std::unordered_map<std::uint64_t, int> boundary;
    for (size_t k = 0; k < pieces.size(); ++k) boundary[edgeKey(pieces[k].a, pieces[k].b)] = static_cast<int>(k);
    std::vector<int> side(dt.triangles.size(), -1);
    std::vector<int> queue;
    for (size_t t = 0; t < dt.triangles.size(); ++t) {
        const Triangle& tri = dt.triangles[t];
        if (tri.alive && (tri.v[0] < 3 || tri.v[1] < 3 || tri.v[2] < 3)) {
            side[t] = 0;
            queue.push_back(static_cast<int>(t));
        }
    }
    for (size_t q = 0; q < queue.size(); ++q) {
        const Triangle& tri = dt.triangles[queue[q]];
        for (int i = 0; i < 3; ++i) {
            const int nb = tri.n[i];
            if (nb < 0 || side[nb] >= 0 || !dt.triangles[nb].alive) continue;
            const bool across = boundary.count(edgeKey(tri.v[(i + 1) % 3], tri.v[(i + 2) % 3])) > 0;
            side[nb] = side[queue[q]] ^ (across ? 1 : 0);
            queue.push_back(nb);
        }
    }

    mesh.nodes.clear();
    mesh.elements.clear();
    std::vector<int> renumber(dt.points.size(), -1);
    std::unordered_map<std::uint64_t, int> middles;
    auto corner = [&](int v) {
        if (renumber[v] < 0) {
            renumber[v] = static_cast<int>(mesh.nodes.size());
            mesh.nodes.push_back(dt.points[v]);
        }
        return renumber[v];
    };
    auto middle = [&](int a, int b) {
        const std::uint64_t key = edgeKey(a, b);
        const auto found = middles.find(key);
        if (found != middles.end()) return found->second;
        const auto piece = boundary.find(key);
        const int index = static_cast<int>(mesh.nodes.size());
        if (piece != boundary.end()) {
            mesh.nodes.push_back(pieceMiddle(pieces[piece->second], dt.points));
        } else {
            mesh.nodes.push_back({0.5 * (dt.points[a].x + dt.points[b].x), 0.5 * (dt.points[a].y + dt.points[b].y)});
        }
        middles.emplace(key, index);
        return index;
    };
    for (size_t t = 0; t < dt.triangles.size(); ++t) {
        const Triangle& tri = dt.triangles[t];
        if (!tri.alive || side[t] != 1) continue;
        const int a = tri.v[0], b = tri.v[1], c = tri.v[2];
        mesh.elements.push_back({corner(a), corner(b), corner(c), middle(a, b), middle(b, c), middle(c, a)});
    }
    if (mesh.elements.empty()) {
        if (error) *error = QStringLiteral("the outline could not be meshed at element size %1 mm").arg(size);
        return false;
    }
    return true;
}

}  // namespace geometry
}  // namespace skr
