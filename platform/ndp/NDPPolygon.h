// Loops and polygons of the geometry kernel: a coedge list is an ordered chain of curves it owns,
// a loop is a closed coedge list, and a polygon owns an outer loop followed by its holes.
//
// Turning sense: ClockSign() is 1 for a counter-clockwise loop (positive signed area, arc bulges
// included), -1 for a clockwise one and 0 for an empty loop or one whose area is within
// g_DistEpsilon times its length of zero.
//
// Stored form (ToBytes/FromBytes), little-endian, doubles as IEEE 754 binary64 bit for bit:
//   quint32 magic 0x4750444E ("NDPG" in file order), quint16 version 1,
//   quint32 loop count, then per loop: quint32 curve count, then per curve:
//     quint8 1 (line): start x, start y, end x, end y
//     quint8 2 (arc):  start x, start y, end x, end y, centre x, centre y, radius,
//                      start angle, end angle, sweep
//   quint16 CRC-16 (ISO 3309, qChecksum) of every byte before it.
// A polygon read back is identical to the one written.
#pragma once

#include "PlatformGlobal.h"
#include "ndp/NDPGeometry2d.h"
#include "ndp/NDPTolerance.h"

#include <memory>
#include <vector>

class QByteArray;
class QString;

namespace ndp {

class BXQPLATFORM_EXPORT CCoedgeList {
public:
    CCoedgeList();
    CCoedgeList(const CCoedgeList& other);  // copies every curve
    CCoedgeList& operator=(const CCoedgeList& other);
    CCoedgeList(CCoedgeList&& other) noexcept;
    CCoedgeList& operator=(CCoedgeList&& other) noexcept;
    virtual ~CCoedgeList();

    // Appends a curve and takes ownership of it. With reversed the coedge runs from the curve's
    // end to its start, and the curve is turned round in place so that every stored curve runs
    // along the list. False, taking nothing, for a null curve.
    bool AddCurve(CCurve2d* curve, bool reversed = false);
    int GetCount() const { return static_cast<int>(m_curves.size()); }
    // The curve at index (still owned by the list), or null out of range.
    CCurve2d* GetCurve(int index) const;
    void RemoveAll();

    // 1 counter-clockwise, -1 clockwise, 0 no area (see the file comment).
    int ClockSign() const;
    // Reverses the order of the curves and the direction of each.
    void Reverse();
    // Area enclosed by the closed chain, positive counter-clockwise.
    double SignedArea() const;
    double Length() const;
    CBox2d BoundingBox() const;
    // Every curve starts where the one before ends, and the last ends where the first starts.
    bool IsClosed(double tolerance = g_DistEpsilon) const;
    // Same curves in the same order, exactly.
    bool IsEqual(const CCoedgeList& other) const;

private:
    std::vector<std::unique_ptr<CCurve2d>> m_curves;
};

class BXQPLATFORM_EXPORT CLoop : public CCoedgeList {
public:
    CLoop* Clone() const { return new CLoop(*this); }
};

class BXQPLATFORM_EXPORT CPolygon {
public:
    CPolygon();
    CPolygon(const CPolygon& other);  // copies every loop
    CPolygon& operator=(const CPolygon& other);
    CPolygon(CPolygon&& other) noexcept;
    CPolygon& operator=(CPolygon&& other) noexcept;
    ~CPolygon();

    CPolygon* Clone() const { return new CPolygon(*this); }

    // Appends a loop; the first loop is the outer one, every later loop a hole. With
    // takeOwnership the polygon owns the loop; otherwise it keeps a copy and the caller keeps
    // the loop. False, taking nothing, for a null loop.
    bool AddLoop(CLoop* loop, bool takeOwnership);
    int GetLoopCount() const { return static_cast<int>(m_loops.size()); }
    // The loop at index (still owned by the polygon), or null out of range.
    CLoop* GetLoop(int index) const;
    void RemoveAll();
    bool IsEmpty() const { return m_loops.empty(); }

    // Area of the outer loop less the areas of the holes, whatever their turning senses.
    double Area() const;
    CBox2d BoundingBox() const;
    // Same loops of the same curves, exactly.
    bool IsEqual(const CPolygon& other) const;
    bool operator==(const CPolygon& other) const { return IsEqual(other); }
    bool operator!=(const CPolygon& other) const { return !IsEqual(other); }

    // The stored form (see the file comment).
    QByteArray ToBytes() const;
    // Reads the stored form into out. False, with error saying what is wrong and where, and out
    // unchanged, for bytes that are empty, truncated, damaged or not a polygon.
    static bool FromBytes(const QByteArray& bytes, CPolygon& out, QString* error = nullptr);

private:
    std::vector<std::unique_ptr<CLoop>> m_loops;
};

}  // namespace ndp
