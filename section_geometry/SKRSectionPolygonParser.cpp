// Outline text to kernel polygon. Bad numbers read as 0 and unknown segment kinds leave a gap:
// stored outlines are never refused, only drawn as well as they can be.
#include "section_geometry/SKRSectionPolygonParser.h"

#include "ndp/NDPPolygon.h"

#include <QStringList>
#include <vector>

#include <cmath>

namespace skr {
namespace geometry {
namespace {

constexpr int kCircleKind = 50;
constexpr double kFullTurn = 6.283185307179586;

struct Record {
    double x = 0, y = 0, value = 0;
    int kind = 0;
};

Record readRecord(const QString& text) {
    const QStringList fields = text.split(QLatin1Char(','));
    Record record;
    record.x = fields.value(0).toDouble();
    record.y = fields.value(1).toDouble();
    record.value = fields.value(2).toDouble();
    record.kind = fields.value(3).toInt(nullptr, 10);
    return record;
}

// The segment from p to q of the given kind: 0 a line, 1 to 4 an arc of that type, else none.
void addSegment(ndp::CLoop& loop, const ndp::CPoint2d& p, const ndp::CPoint2d& q, int kind, double value) {
    if (kind == 0)
        loop.AddCurve(new ndp::CLine2d(p, q), false);
    else if (kind >= 1 && kind <= 4)
        loop.AddCurve(new ndp::CArc2d(p, q, value, kind), false);
}

}  // namespace

std::unique_ptr<ndp::CLoop> ParseLoop(const QString& loopText, bool isOuter) {
    const QStringList records = loopText.split(QLatin1Char(';'));
    if (records.first().isEmpty()) return nullptr;
    auto loop = std::make_unique<ndp::CLoop>();
    const Record first = readRecord(records.first());
    if (first.kind == kCircleKind) {
        loop->AddCurve(new ndp::CArc2d(ndp::CPoint2d(first.x, first.y), first.value, 0.0, kFullTurn), false);
    } else {
        const ndp::CPoint2d start(first.x, first.y);
        ndp::CPoint2d previous = start;
        int kind = first.kind;
        double value = first.value;
        for (int i = 1; i < records.size(); ++i) {
            if (records[i].isEmpty()) continue;
            const Record record = readRecord(records[i]);
            const ndp::CPoint2d point(record.x, record.y);
            addSegment(*loop, previous, point, kind, value);
            kind = record.kind;
            value = record.value;
            previous = point;
        }
        if (records.size() >= 2) addSegment(*loop, previous, start, kind, value);
    }
    const int sign = loop->ClockSign();
    if ((isOuter && sign == -1) || (!isOuter && sign == 1)) loop->Reverse();
    return loop;
}

std::unique_ptr<ndp::CPolygon> ParseSectionPolygon(const QString& text) {
    const QString separator = QStringLiteral("|||");
    std::vector<std::unique_ptr<ndp::CLoop>> loops;
    const QStringList parts =
        text.contains(separator) ? text.split(separator, Qt::SkipEmptyParts) : QStringList{text};
    if (parts.size() > 1) {
        for (int i = 0; i < parts.size(); ++i)
            if (auto loop = ParseLoop(parts[i], i == 0)) loops.push_back(std::move(loop));
    } else if (auto loop = ParseLoop(text, true)) {
        loops.push_back(std::move(loop));
    }
    if (loops.empty()) return nullptr;
    auto polygon = std::make_unique<ndp::CPolygon>();
    for (auto& loop : loops) polygon->AddLoop(loop.release(), true);
    return polygon;
}

}  // namespace geometry
}  // namespace skr
