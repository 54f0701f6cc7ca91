// Outline text to outline and kernel polygon.
#include "section_geometry/SKRSectionPolygonParser.h"

#include "ndp/NDPPolygon.h"

#include <QStringList>
#include <vector>

namespace skr {
namespace geometry {
namespace {

constexpr double kFullTurn = 6.283185307179586;

bool isSegmentKind(int kind) { return kind >= 0 && kind <= 4; }

// Reads one loop's records; the first problem goes to problem (bad numbers read as 0).
SKROutlineLoop readLoop(const QString& loopText, QString* problem) {
    SKROutlineLoop loop;
    const QStringList records = loopText.split(QLatin1Char(';'));
    if (records.first().isEmpty()) {
        if (problem->isEmpty()) *problem = QStringLiteral("the loop is empty");
        return loop;
    }
    for (int r = 0; r < records.size(); ++r) {
        if (records[r].isEmpty()) continue;
        const QStringList fields = records[r].split(QLatin1Char(','));
        SKROutlineVertex vertex;
        double* const numbers[3] = {&vertex.x, &vertex.y, &vertex.value};
        for (int f = 0; f < 3; ++f) {
            bool ok = false;
            *numbers[f] = fields.value(f).toDouble(&ok);
            if (!ok && problem->isEmpty())
                *problem = QStringLiteral("record %1: '%2' is not a number").arg(r + 1).arg(fields.value(f));
        }
        bool ok = false;
        vertex.kind = fields.value(3).toInt(&ok, 10);
        const bool known = ok && (isSegmentKind(vertex.kind) || (vertex.kind == kOutlineCircleKind && r == 0));
        if (!known && problem->isEmpty())
            *problem = QStringLiteral("record %1: '%2' is no segment kind").arg(r + 1).arg(fields.value(3));
        loop.append(vertex);
    }
    return loop;
}

// The segment from p to q of the given kind: 0 a line, 1 to 4 an arc of that type, else none.
void addSegment(ndp::CLoop& loop, const ndp::CPoint2d& p, const ndp::CPoint2d& q, int kind, double value) {
    if (kind == 0)
        loop.AddCurve(new ndp::CLine2d(p, q), false);
    else if (kind >= 1 && kind <= 4)
        loop.AddCurve(new ndp::CArc2d(p, q, value, kind), false);
}

std::unique_ptr<ndp::CLoop> kernelLoop(const SKROutlineLoop& vertices, bool isOuter) {
    if (vertices.isEmpty()) return nullptr;
    auto loop = std::make_unique<ndp::CLoop>();
    const SKROutlineVertex& first = vertices.first();
    if (first.kind == kOutlineCircleKind) {
        loop->AddCurve(new ndp::CArc2d(ndp::CPoint2d(first.x, first.y), first.value, 0.0, kFullTurn), false);
    } else {
        for (int i = 0; i < vertices.size() && vertices.size() >= 2; ++i) {
            const SKROutlineVertex& from = vertices[i];
            const SKROutlineVertex& to = vertices[(i + 1) % vertices.size()];
            addSegment(*loop, ndp::CPoint2d(from.x, from.y), ndp::CPoint2d(to.x, to.y), from.kind, from.value);
        }
    }
    const int sign = loop->ClockSign();
    if ((isOuter && sign == -1) || (!isOuter && sign == 1)) loop->Reverse();
    return loop;
}

QStringList loopTexts(const QString& text) {
    const QString separator = QLatin1String(kOutlineLoopSeparator);
    return text.contains(separator) ? text.split(separator, Qt::SkipEmptyParts) : QStringList{text};
}

}  // namespace

bool parseOutlineText(const QString& text, SKROutline& outline, QString* error) {
    SKROutline read;
    QString failure;
    const QStringList loops = loopTexts(text);
    for (int i = 0; i < loops.size(); ++i) {
        QString problem;
        read.loops.append(readLoop(loops[i], &problem));
        if (!problem.isEmpty() && failure.isEmpty()) failure = QStringLiteral("loop %1, %2").arg(i + 1).arg(problem);
    }
    outline = read;
    if (failure.isEmpty()) return true;
    if (error) *error = failure;
    return false;
}

std::unique_ptr<ndp::CPolygon> outlinePolygon(const SKROutline& outline) {
    auto polygon = std::make_unique<ndp::CPolygon>();
    for (int i = 0; i < outline.loops.size(); ++i)
        if (auto loop = kernelLoop(outline.loops[i], i == 0)) polygon->AddLoop(loop.release(), true);
    if (polygon->GetLoopCount() == 0) return nullptr;
    return polygon;
}

std::unique_ptr<ndp::CLoop> ParseLoop(const QString& loopText, bool isOuter) {
    QString ignored;
    return kernelLoop(readLoop(loopText, &ignored), isOuter);
}

std::unique_ptr<ndp::CPolygon> ParseSectionPolygon(const QString& text) {
    SKROutline outline;
    parseOutlineText(text, outline);  // drawn as well as it can be, whatever it holds
    return outlinePolygon(outline);
}

}  // namespace geometry
}  // namespace skr
