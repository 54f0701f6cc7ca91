// SKRSweepPath: the path a swept member follows, a chain of straight pieces and circular arcs in
// 3D, each starting where the one before ends.
#pragma once

#include "ndp/NDPVector3.h"

#include <QVector>

namespace skr {
namespace body {

class SKRSweepPath {
public:
    struct Segment {
        bool isArc = false;
        ndp::CVector3 through{0, 0, 0};  // arcs only: a point of the arc between its ends
        ndp::CVector3 end{0, 0, 0};
    };

    explicit SKRSweepPath(const ndp::CVector3& start = {0, 0, 0}) : m_start(start) {}

    // A straight piece from the current end to end.
    void lineTo(const ndp::CVector3& end) { m_segments.append({false, {0, 0, 0}, end}); }
    // The circular arc from the current end through `through` to end.
    void arcTo(const ndp::CVector3& through, const ndp::CVector3& end) { m_segments.append({true, through, end}); }

    const ndp::CVector3& start() const { return m_start; }
    const QVector<Segment>& segments() const { return m_segments; }
    bool isEmpty() const { return m_segments.isEmpty(); }

private:
    ndp::CVector3 m_start;
    QVector<Segment> m_segments;
};

}  // namespace body
}  // namespace skr
