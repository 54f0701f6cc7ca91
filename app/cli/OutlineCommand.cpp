// bxq outline: the polygon of an outline text, or of a section specification drawn with its
// catalogue radii, and its section properties; optionally a picture of it as SVG.
#include "app/cli/BXQCommand.h"
#include "app/BXQDataSession.h"

#include "exchange/SKROutlineDxfWriter.h"

#include "section_geometry/SKROutlineCheck.h"
#include "section_geometry/SKRSectionPolygonParser.h"
#include "section_geometry/SKRSpecificationOutline.h"

#include "ndp/NDPPolygon.h"
#include "section_geometry/SKRSectionProperties.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QTextStream>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>

namespace bxq {
namespace {

constexpr double kPi = 3.14159265358979323846;

// Figures for people: ten significant digits are more than any drawing holds.
QString figure(double value) { return QString::number(std::abs(value) < 1e-9 ? 0.0 : value, 'g', 10); }

// The polygon of an outline text, when it is a valid outline: figures come from nothing else.
std::unique_ptr<ndp::CPolygon> checkedPolygon(const QString& text, QString* error) {
    skr::geometry::SKROutline outline;
    QString unread;
    if (!text.trimmed().isEmpty() && !skr::geometry::parseOutlineText(text, outline, &unread)) {
        *error = QStringLiteral("the outline text cannot be read: ") + unread;
        return nullptr;
    }
    std::unique_ptr<ndp::CPolygon> polygon = skr::geometry::outlinePolygon(outline);
    if (!polygon || polygon->IsEmpty()) {
        *error = QStringLiteral("the outline text has no loop");
        return nullptr;
    }
    if (!skr::geometry::checkSectionOutline(*polygon, error)) return nullptr;
    return polygon;
}

QByteArray humanReport(const skr::geometry::SKRSectionProperties& p, const QString& outline) {
    QString out;
    QTextStream s(&out);
    if (!outline.isEmpty()) s << "outline    " << outline << '\n';
    s << "area       " << figure(p.area) << " mm2\n";
    s << "perimeter  " << figure(p.perimeter) << " mm (outer " << figure(p.outerPerimeter) << " mm)\n";
    s << "bbox       " << figure(p.box.Min().x) << ' ' << figure(p.box.Min().y) << ' ' << figure(p.box.Max().x) << ' '
      << figure(p.box.Max().y) << '\n';
    s << "centroid   " << figure(p.centroid.x) << ' ' << figure(p.centroid.y) << '\n';
    s << "ix         " << figure(p.ix) << " mm4\n";
    s << "iy         " << figure(p.iy) << " mm4\n";
    // A product of inertia that is rounding noise next to ix and iy reads as what it is, zero.
    const bool noise = std::abs(p.ixy) <= 1e-12 * std::sqrt(p.ix * p.iy);
    s << "ixy        " << figure(noise ? 0.0 : p.ixy) << " mm4\n";
    s.flush();
    return out.toUtf8();
}

QByteArray jsonReport(const skr::geometry::SKRSectionProperties& p, const QString& outline) {
    const QJsonObject object{
        {"outline", outline},
        {"area", p.area},
        {"perimeter", p.perimeter},
        {"outerPerimeter", p.outerPerimeter},
        {"bbox", QJsonArray{p.box.Min().x, p.box.Min().y, p.box.Max().x, p.box.Max().y}},
        {"centroid", QJsonArray{p.centroid.x, p.centroid.y}},
        {"ix", p.ix},
        {"iy", p.iy},
        {"ixy", p.ixy},
    };
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

// A point of the drawing in SVG coordinates, whose y runs down.
QString svgPoint(const ndp::CPoint2d& p) { return figure(p.x) + QLatin1Char(' ') + figure(-p.y); }

// One path of every loop: lines as L and arcs as A (a full circle as two halves), each loop
// closed with Z. The y flip turns a counter-clockwise arc into SVG's positive sweep.
QString svgPath(const ndp::CPolygon& polygon) {
    QString d;
    for (int i = 0; i < polygon.GetLoopCount(); ++i) {
        const ndp::CLoop* loop = polygon.GetLoop(i);
        for (int k = 0; k < loop->GetCount(); ++k) {
            const ndp::CCurve2d* curve = loop->GetCurve(k);
            const bool joined = k > 0 && loop->GetCurve(k - 1)->EndPoint().DistanceTo(curve->StartPoint()) <= 1e-9;
            if (!joined) d += QStringLiteral("M ") + svgPoint(curve->StartPoint()) + QLatin1Char(' ');
            if (curve->GetType() != ndp::EnCurveType::Arc) {
                d += QStringLiteral("L ") + svgPoint(curve->EndPoint()) + QLatin1Char(' ');
                continue;
            }
            const auto* arc = static_cast<const ndp::CArc2d*>(curve);
            const QString radius = figure(arc->Radius());
            // The picture's y axis points down, so a counter-clockwise arc of the outline is drawn
            // clockwise on it: SVG's sweep flag 0.
            const QString sweep = arc->IsCounterClockwise() ? QStringLiteral("0") : QStringLiteral("1");
            auto arcTo = [&](const ndp::CPoint2d& to, bool large) {
                d += QStringLiteral("A %1 %1 0 %2 %3 %4 ").arg(radius, large ? QStringLiteral("1") : QStringLiteral("0"),
                                                             sweep, svgPoint(to));
            };
            if (arc->IsFullCircle()) {
                arcTo(arc->PointAt(0.5), false);
                arcTo(arc->EndPoint(), false);
            } else {
                arcTo(arc->EndPoint(), std::abs(arc->Sweep()) > kPi);
            }
        }
        d += QStringLiteral("Z ");
    }
    return d.trimmed();
}

QByteArray svgPicture(const ndp::CPolygon& polygon, const skr::geometry::SKRSectionProperties& p) {
    const double width = p.box.Max().x - p.box.Min().x;
    const double height = p.box.Max().y - p.box.Min().y;
    const double size = std::max(width, height);
    const double margin = 0.1 * size;
    const double fontSize = 0.06 * size;
    const double x0 = p.box.Min().x - margin;
    const double y0 = -p.box.Max().y - margin;
    const QString caption = QStringLiteral("A = %1 mm2").arg(figure(p.area));
    const double captionWidth = 0.6 * fontSize * caption.size();  // sans-serif digits are about 0.55 em
    const double viewWidth = std::max(width, captionWidth) + 2 * margin;
    const double viewHeight = height + 2 * margin + 2 * fontSize;
    QString svg;
    QTextStream s(&svg);
    s << "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"" << figure(x0) << ' ' << figure(y0) << ' '
      << figure(viewWidth) << ' ' << figure(viewHeight) << "\" width=\"" << figure(std::min(800.0, 4 * viewWidth))
      << "\">\n";
    s << "  <path d=\"" << svgPath(polygon) << "\" fill=\"#b8c7d9\" fill-rule=\"evenodd\" stroke=\"#1f3b5a\" "
      << "stroke-width=\"" << figure(0.004 * size) << "\"/>\n";
    s << "  <text x=\"" << figure(p.box.Min().x) << "\" y=\"" << figure(-p.box.Min().y + margin + fontSize)
      << "\" font-family=\"sans-serif\" font-size=\"" << figure(fontSize) << "\">" << caption << "</text>\n";
    s << "</svg>\n";
    s.flush();
    return svg.toUtf8();
}

bool writeFile(const QString& path, const QByteArray& content, QString* error) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.commit()) {
        *error = QStringLiteral("cannot write %1: %2").arg(path, file.errorString());
        return false;
    }
    return true;
}

}  // namespace

int runOutline(const QStringList& arguments) {
    QCommandLineParser cli;
    cli.setApplicationDescription(
        QStringLiteral("Area, perimeter, bounding box, centroid and second moments of a section outline."));
    cli.addOption({QStringLiteral("section"), QStringLiteral("Draw this section specification (I20a, HN400*200*8*13, ...)."),
                   QStringLiteral("SPEC")});
    cli.addOption({QStringLiteral("svg"), QStringLiteral("Also write a picture of the outline to FILE."),
                   QStringLiteral("FILE")});
    cli.addOption({QStringLiteral("dxf"),
                   QStringLiteral("Also write the outline to FILE as DXF (closed polylines with true arcs, mm, on a "
                                  "layer named after the section)."),
                   QStringLiteral("FILE")});
    cli.addOption({QStringLiteral("json"), QStringLiteral("One JSON object.")});
    cli.addPositionalArgument(QStringLiteral("text"), QStringLiteral("An outline text (\"x,y,value,kind;...|||...\")."),
                              QStringLiteral("TEXT"));
    if (!parseArguments(cli, arguments)) return kUsageError;
    const QStringList texts = cli.positionalArguments();
    const bool bySection = cli.isSet(QStringLiteral("section"));
    if (bySection == !texts.isEmpty() || texts.size() > 1)
        return usageError(QStringLiteral("outline takes one outline TEXT or --section SPEC"));

    QString error;
    QString outline;
    BXQDataSession session;
    if (bySection) {
        if (!session.openCatalogue(&error)) return dataError(error);
        session.registerRepository();
        QString note;
        if (!skr::geometry::specificationOutline(cli.value(QStringLiteral("section")), outline, &error, &note))
            return dataError(error);
        if (!note.isEmpty()) warn(note);
    } else {
        outline = texts.first();
    }
    const std::unique_ptr<ndp::CPolygon> polygon = checkedPolygon(outline, &error);
    if (!polygon) return dataError(error);
    const skr::geometry::SKRSectionProperties properties = skr::geometry::SectionProperties(*polygon);

    if (cli.isSet(QStringLiteral("svg")) &&
        !writeFile(cli.value(QStringLiteral("svg")), svgPicture(*polygon, properties), &error))
        return dataError(error);
    if (cli.isSet(QStringLiteral("dxf"))) {
        const QString layer = skr::exchange::dxfLayerName(bySection ? cli.value(QStringLiteral("section")) : QString());
        if (!skr::exchange::writeOutlineDxf(*polygon, layer, cli.value(QStringLiteral("dxf")), &error))
            return dataError(error);
    }
    const QByteArray out =
        cli.isSet(QStringLiteral("json")) ? jsonReport(properties, outline) : humanReport(properties, bySection ? outline : QString());
    std::fwrite(out.constData(), 1, static_cast<size_t>(out.size()), stdout);
    std::fflush(stdout);
    return 0;
}

}  // namespace bxq
