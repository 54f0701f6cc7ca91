// Coedge lists, loops and polygons, and the stored form of a polygon.
#include "ndp/NDPPolygon.h"

#include <QByteArray>
#include <QDataStream>
#include <QString>

#include <algorithm>
#include <cmath>

namespace ndp {
namespace {

constexpr quint32 kMagic = 0x4750444E;  // "NDPG" in file order
constexpr quint16 kVersion = 1;
constexpr int kHeaderSize = 4 + 2;
constexpr int kChecksumSize = 2;
constexpr int kCountSize = 4;
constexpr quint8 kLineTag = 1;
constexpr quint8 kArcTag = 2;
constexpr int kLineSize = 1 + 4 * 8;
constexpr int kArcSize = 1 + 10 * 8;

void prepare(QDataStream& stream) {
    stream.setVersion(QDataStream::Qt_5_15);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream.setFloatingPointPrecision(QDataStream::DoublePrecision);
}

bool fail(QString* error, const QString& message) {
    if (error) *error = message;
    return false;
}

quint16 checksum(const char* data, int size) { return qChecksum(data, static_cast<uint>(size)); }

}  // namespace

// ---------------------------------------------------------------------------------------------

CCoedgeList::CCoedgeList() = default;

CCoedgeList::CCoedgeList(const CCoedgeList& other) {
    m_curves.reserve(other.m_curves.size());
    for (const auto& curve : other.m_curves) m_curves.emplace_back(curve->Clone());
}

CCoedgeList& CCoedgeList::operator=(const CCoedgeList& other) {
    if (this != &other) {
        CCoedgeList copy(other);
        m_curves = std::move(copy.m_curves);
    }
    return *this;
}

CCoedgeList::CCoedgeList(CCoedgeList&& other) noexcept = default;
CCoedgeList& CCoedgeList::operator=(CCoedgeList&& other) noexcept = default;
CCoedgeList::~CCoedgeList() = default;

bool CCoedgeList::AddCurve(CCurve2d* curve, bool reversed) {
    if (!curve) return false;
    if (reversed) curve->Reverse();
    m_curves.emplace_back(curve);
    return true;
}

CCurve2d* CCoedgeList::GetCurve(int index) const {
    return index >= 0 && index < GetCount() ? m_curves[static_cast<size_t>(index)].get() : nullptr;
}

void CCoedgeList::RemoveAll() { m_curves.clear(); }

int CCoedgeList::ClockSign() const {
    const double area = SignedArea();
    // A loop thinner than the distance tolerance everywhere has no turning sense.
    if (!(std::fabs(area) > g_DistEpsilon * Length())) return 0;
    return area > 0.0 ? 1 : -1;
}

void CCoedgeList::Reverse() {
    std::reverse(m_curves.begin(), m_curves.end());
    for (auto& curve : m_curves) curve->Reverse();
}

double CCoedgeList::SignedArea() const {
    double area = 0.0;
    for (const auto& curve : m_curves) area += curve->SignedArea();
    return area;
}

double CCoedgeList::Length() const {
    double length = 0.0;
    for (const auto& curve : m_curves) length += curve->Length();
    return length;
}

CBox2d CCoedgeList::BoundingBox() const {
    CBox2d box;
    for (const auto& curve : m_curves) curve->ExtendBox(box);
    return box;
}

bool CCoedgeList::IsClosed(double tolerance) const {
    if (m_curves.empty()) return false;
    for (size_t i = 0; i < m_curves.size(); ++i) {
        const CCurve2d& next = *m_curves[(i + 1) % m_curves.size()];
        if (m_curves[i]->EndPoint().DistanceTo(next.StartPoint()) > tolerance) return false;
    }
    return true;
}

bool CCoedgeList::IsEqual(const CCoedgeList& other) const {
    if (m_curves.size() != other.m_curves.size()) return false;
    for (size_t i = 0; i < m_curves.size(); ++i)
        if (!m_curves[i]->IsEqual(*other.m_curves[i])) return false;
    return true;
}

// ---------------------------------------------------------------------------------------------

CPolygon::CPolygon() = default;

CPolygon::CPolygon(const CPolygon& other) {
    m_loops.reserve(other.m_loops.size());
    for (const auto& loop : other.m_loops) m_loops.emplace_back(loop->Clone());
}

CPolygon& CPolygon::operator=(const CPolygon& other) {
    if (this != &other) {
        CPolygon copy(other);
        m_loops = std::move(copy.m_loops);
    }
    return *this;
}

CPolygon::CPolygon(CPolygon&& other) noexcept = default;
CPolygon& CPolygon::operator=(CPolygon&& other) noexcept = default;
CPolygon::~CPolygon() = default;

bool CPolygon::AddLoop(CLoop* loop, bool takeOwnership) {
    if (!loop) return false;
    m_loops.emplace_back(takeOwnership ? loop : loop->Clone());
    return true;
}

CLoop* CPolygon::GetLoop(int index) const {
    return index >= 0 && index < GetLoopCount() ? m_loops[static_cast<size_t>(index)].get() : nullptr;
}

void CPolygon::RemoveAll() { m_loops.clear(); }

double CPolygon::Area() const {
    if (m_loops.empty()) return 0.0;
    double area = std::fabs(m_loops.front()->SignedArea());
    for (size_t i = 1; i < m_loops.size(); ++i) area -= std::fabs(m_loops[i]->SignedArea());
    return area;
}

CBox2d CPolygon::BoundingBox() const {
    CBox2d box;
    for (const auto& loop : m_loops) box.Add(loop->BoundingBox());
    return box;
}

bool CPolygon::IsEqual(const CPolygon& other) const {
    if (m_loops.size() != other.m_loops.size()) return false;
    for (size_t i = 0; i < m_loops.size(); ++i)
        if (!m_loops[i]->IsEqual(*other.m_loops[i])) return false;
    return true;
}

QByteArray CPolygon::ToBytes() const {
    QByteArray bytes;
    {
        QDataStream out(&bytes, QIODevice::WriteOnly);
        prepare(out);
        out << kMagic << kVersion << static_cast<quint32>(m_loops.size());
        for (const auto& loop : m_loops) {
            out << static_cast<quint32>(loop->GetCount());
            for (int i = 0; i < loop->GetCount(); ++i) {
                const CCurve2d* curve = loop->GetCurve(i);
                const CPoint2d start = curve->StartPoint();
                const CPoint2d end = curve->EndPoint();
                if (curve->GetType() == EnCurveType::Arc) {
                    const auto* arc = static_cast<const CArc2d*>(curve);
                    out << kArcTag << start.x << start.y << end.x << end.y << arc->Centre().x << arc->Centre().y
                        << arc->Radius() << arc->StartAngle() << arc->EndAngle() << arc->Sweep();
                } else {
                    out << kLineTag << start.x << start.y << end.x << end.y;
                }
            }
        }
    }
    const quint16 sum = checksum(bytes.constData(), bytes.size());
    bytes.append(static_cast<char>(sum & 0xFF));
    bytes.append(static_cast<char>(sum >> 8));
    return bytes;
}

bool CPolygon::FromBytes(const QByteArray& bytes, CPolygon& out, QString* error) {
    if (bytes.isEmpty()) return fail(error, QStringLiteral("no polygon data"));
    if (bytes.size() < kHeaderSize + kCountSize + kChecksumSize)
        return fail(error, QStringLiteral("polygon data too short (%1 bytes)").arg(bytes.size()));

    QDataStream in(bytes);
    prepare(in);
    quint32 magic = 0;
    quint16 version = 0;
    in >> magic >> version;
    if (magic != kMagic) return fail(error, QStringLiteral("not polygon data"));
    if (version != kVersion) return fail(error, QStringLiteral("polygon data of unknown version %1").arg(version));

    const int payloadEnd = bytes.size() - kChecksumSize;
    const quint16 stored = static_cast<quint16>(static_cast<uchar>(bytes[payloadEnd]) |
                                                (static_cast<uchar>(bytes[payloadEnd + 1]) << 8));
    if (stored != checksum(bytes.constData(), payloadEnd))
        return fail(error, QStringLiteral("polygon data damaged (checksum mismatch)"));

    // Every count is checked against the bytes left before anything is allocated for it.
    auto remaining = [&]() { return payloadEnd - static_cast<int>(in.device()->pos()); };
    quint32 loopCount = 0;
    in >> loopCount;
    if (loopCount > static_cast<quint32>(remaining() / kCountSize))
        return fail(error, QStringLiteral("polygon data truncated: %1 loops announced").arg(loopCount));

    CPolygon polygon;
    polygon.m_loops.reserve(loopCount);
    for (quint32 l = 0; l < loopCount; ++l) {
        quint32 curveCount = 0;
        if (remaining() < kCountSize) return fail(error, QStringLiteral("polygon data truncated in loop %1").arg(l + 1));
        in >> curveCount;
        if (curveCount > static_cast<quint32>(remaining() / kLineSize))
            return fail(error, QStringLiteral("polygon data truncated: loop %1 announces %2 curves")
                                   .arg(l + 1)
                                   .arg(curveCount));
        auto loop = std::make_unique<CLoop>();
        for (quint32 c = 0; c < curveCount; ++c) {
            const QString where = QStringLiteral("loop %1, curve %2").arg(l + 1).arg(c + 1);
            quint8 tag = 0;
            if (remaining() < 1) return fail(error, QStringLiteral("polygon data truncated at ") + where);
            in >> tag;
            if (tag == kLineTag) {
                if (remaining() < kLineSize - 1) return fail(error, QStringLiteral("polygon data truncated at ") + where);
                CPoint2d start, end;
                in >> start.x >> start.y >> end.x >> end.y;
                if (!std::isfinite(start.x) || !std::isfinite(start.y) || !std::isfinite(end.x) || !std::isfinite(end.y))
                    return fail(error, QStringLiteral("line with a coordinate that is not a number at ") + where);
                loop->AddCurve(new CLine2d(start, end), false);
            } else if (tag == kArcTag) {
                if (remaining() < kArcSize - 1) return fail(error, QStringLiteral("polygon data truncated at ") + where);
                CPoint2d start, end, centre;
                double radius = 0, startAngle = 0, endAngle = 0, sweep = 0;
                in >> start.x >> start.y >> end.x >> end.y >> centre.x >> centre.y >> radius >> startAngle >> endAngle >>
                    sweep;
                CArc2d* arc = CArc2d::FromStored(start, end, centre, radius, startAngle, endAngle, sweep);
                if (!arc) return fail(error, QStringLiteral("inconsistent arc at ") + where);
                loop->AddCurve(arc, false);
            } else {
                return fail(error, QStringLiteral("unknown curve kind %1 at ").arg(tag) + where);
            }
        }
        polygon.m_loops.push_back(std::move(loop));
    }
    if (in.status() != QDataStream::Ok) return fail(error, QStringLiteral("polygon data unreadable"));
    if (remaining() != 0)
        return fail(error, QStringLiteral("%1 unexpected bytes after the polygon data").arg(remaining()));
    out = std::move(polygon);
    return true;
}

}  // namespace ndp
