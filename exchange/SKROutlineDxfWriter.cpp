// SKROutlineDxfWriter: outlines to DXF through dxflib's R2000 writer.
#include "exchange/SKROutlineDxfWriter.h"

#include "ndp/NDPPolygon.h"

#include <dxflib/dl_dxf.h>
#include <dxflib/dl_writer_ascii.h>

#include <QFile>
#include <QFileInfo>
#include <QTextCodec>

#include <cmath>
#include <cstdio>
#include <memory>
#include <utility>
#include <vector>

namespace skr {
namespace exchange {
namespace {

// Handles of the records written here rather than by dxflib, in the range dxflib keeps for them.
constexpr int kBlockRecordTable = 0x1;
constexpr int kPaperSpaceRecord = 0x1B;
constexpr int kModelSpaceRecord = 0x1F;
constexpr int kRootDictionary = 0xC;
constexpr int kGroupDictionary = 0xD;

struct Vertex {
    double x, y, bulge;
};

// The vertices of a loop: the start of each curve with the bulge of the curve, tan(sweep / 4),
// positive counter-clockwise; a full circle as two half circles.
std::vector<Vertex> loopVertices(const ndp::CLoop& loop) {
    std::vector<Vertex> vertices;
    for (int k = 0; k < loop.GetCount(); ++k) {
        const ndp::CCurve2d* curve = loop.GetCurve(k);
        const ndp::CPoint2d start = curve->StartPoint();
        if (curve->GetType() != ndp::EnCurveType::Arc) {
            vertices.push_back({start.x, start.y, 0.0});
            continue;
        }
        const auto* arc = static_cast<const ndp::CArc2d*>(curve);
        if (arc->IsFullCircle()) {
            const double half = arc->IsCounterClockwise() ? 1.0 : -1.0;
            const ndp::CPoint2d middle = arc->PointAt(0.5);
            vertices.push_back({start.x, start.y, half});
            vertices.push_back({middle.x, middle.y, half});
        } else {
            vertices.push_back({start.x, start.y, std::tan(arc->Sweep() / 4.0)});
        }
    }
    return vertices;
}

void writeTables(DL_Dxf& dxf, DL_WriterA& dw, const std::string& layer) {
    dw.sectionTables();
    dxf.writeVPort(dw);
    dw.tableLinetypes(3);
    dxf.writeLinetype(dw, DL_LinetypeData("BYBLOCK", "", 0, 0, 0.0));
    dxf.writeLinetype(dw, DL_LinetypeData("BYLAYER", "", 0, 0, 0.0));
    dxf.writeLinetype(dw, DL_LinetypeData("CONTINUOUS", "Solid line", 0, 0, 0.0));
    dw.tableEnd();
    // Colour 7 (black on white, white on black); the true colour -1 is "none" (0 would be black).
    dw.tableLayers(2);
    dxf.writeLayer(dw, DL_LayerData("0", 0), DL_Attributes("", 7, -1, 100, "CONTINUOUS"));
    dxf.writeLayer(dw, DL_LayerData(layer, 0), DL_Attributes("", 7, -1, 100, "CONTINUOUS"));
    dw.tableEnd();
    dw.tableStyle(1);
    dxf.writeStyle(dw, DL_StyleData("standard", 0, 2.5, 1.0, 0.0, 0, 2.5, "txt", ""));
    dw.tableEnd();
    dxf.writeView(dw);
    dxf.writeUcs(dw);
    dw.tableAppid(1);
    dxf.writeAppid(dw, "ACAD");
    dw.tableEnd();
    dxf.writeDimStyle(dw, 1, 1, 1, 1, 1);
    // The block records with their owner and without layout links: dxflib's own refer to the
    // layouts of its OBJECTS section, whose owners it leaves out.
    dw.dxfString(0, "TABLE");
    dw.dxfString(2, "BLOCK_RECORD");
    dw.dxfHex(5, kBlockRecordTable);
    dw.dxfHex(330, 0);
    dw.dxfString(100, "AcDbSymbolTable");
    dw.dxfInt(70, 2);
    for (const auto& record : {std::pair<int, const char*>{kModelSpaceRecord, "*Model_Space"},
                               std::pair<int, const char*>{kPaperSpaceRecord, "*Paper_Space"}}) {
        dw.dxfString(0, "BLOCK_RECORD");
        dw.dxfHex(5, record.first);
        dw.dxfHex(330, kBlockRecordTable);
        dw.dxfString(100, "AcDbSymbolTableRecord");
        dw.dxfString(100, "AcDbBlockTableRecord");
        dw.dxfString(2, record.second);
    }
    dw.tableEnd();
    dw.sectionEnd();
}

// The smallest OBJECTS section a reader accepts unrepaired: the root dictionary and its group
// dictionary, each with its owner.
void writeObjects(DL_WriterA& dw) {
    dw.sectionObjects();
    dw.dxfString(0, "DICTIONARY");
    dw.dxfHex(5, kRootDictionary);
    dw.dxfHex(330, 0);
    dw.dxfString(100, "AcDbDictionary");
    dw.dxfInt(281, 1);
    dw.dxfString(3, "ACAD_GROUP");
    dw.dxfHex(350, kGroupDictionary);
    dw.dxfString(0, "DICTIONARY");
    dw.dxfHex(5, kGroupDictionary);
    dw.dxfHex(330, kRootDictionary);
    dw.dxfString(100, "AcDbDictionary");
    dw.dxfInt(281, 1);
    dw.sectionEnd();
}

// A name in the drawing's code page, ANSI_936 (GBK), as Chinese CAD programs write R2000 files:
// section names hold Chinese characters and signs such as the hollow section's square. What GBK
// cannot hold becomes '_'.
std::string dxfText(const QString& text) {
    QTextCodec* gbk = QTextCodec::codecForName("GBK");
    QString encodable;
    for (const QChar c : text) encodable += gbk && gbk->canEncode(c) ? c : QLatin1Char('_');
    return gbk ? gbk->fromUnicode(encodable).toStdString() : encodable.toLatin1().toStdString();
}

}  // namespace

QString dxfLayerName(const QString& section) {
    if (section.trimmed().isEmpty()) return QStringLiteral("OUTLINE");
    QString layer = section.trimmed();
    for (QChar& c : layer) {
        if (c == QLatin1Char('*'))
            c = QLatin1Char('x');
        else if (QStringLiteral("<>/\\\":;?|=`,").contains(c) || c.unicode() < 0x20)
            c = QLatin1Char('_');
    }
    return layer;
}

bool writeOutlineDxf(const ndp::CPolygon& polygon, const QString& layer, const QString& path, QString* error) {
    const QString partial = path + QStringLiteral(".part");
    const QByteArray partialName = QFile::encodeName(partial);
    {
        DL_Dxf dxf;
        std::unique_ptr<DL_WriterA> dw(dxf.out(partialName.constData(), DL_Codes::AC1015));
        if (!dw || dw->openFailed()) {
            *error = QStringLiteral("cannot write %1: cannot create the file").arg(path);
            return false;
        }
        const std::string layerName = dxfText(layer);
        dxf.writeHeader(*dw);
        dw->dxfString(9, "$DWGCODEPAGE");
        dw->dxfString(3, "ANSI_936");
        dw->dxfString(9, "$INSUNITS");
        dw->dxfInt(70, 4);  // millimetres
        dw->sectionEnd();
        writeTables(dxf, *dw, layerName);
        dw->sectionBlocks();
        dxf.writeBlock(*dw, DL_BlockData("*Model_Space", 0, 0.0, 0.0, 0.0));
        dxf.writeEndBlock(*dw, "*Model_Space");
        dxf.writeBlock(*dw, DL_BlockData("*Paper_Space", 0, 0.0, 0.0, 0.0));
        dxf.writeEndBlock(*dw, "*Paper_Space");
        dw->sectionEnd();

        dw->sectionEntities();
        const DL_Attributes byLayer(layerName, 256, -1, -1, "BYLAYER");
        for (int i = 0; i < polygon.GetLoopCount(); ++i) {
            const std::vector<Vertex> vertices = loopVertices(*polygon.GetLoop(i));
            dxf.writePolyline(*dw, DL_PolylineData(static_cast<int>(vertices.size()), 0, 0, 1), byLayer);
            for (const Vertex& v : vertices) dxf.writeVertex(*dw, DL_VertexData(v.x, v.y, 0.0, v.bulge));
            dxf.writePolylineEnd(*dw);
        }
        dw->sectionEnd();
        writeObjects(*dw);
        dw->dxfEOF();
        dw->close();
    }
    // dxflib does not report write errors: the file is checked for its end marker instead.
    QFile written(partial);
    const bool whole = written.open(QIODevice::ReadOnly) && written.size() > 5 &&
                       written.seek(written.size() - 5) && written.readAll().contains("EOF");
    written.close();
    if (!whole || std::rename(partialName.constData(), QFile::encodeName(path).constData()) != 0) {
        QFile::remove(partial);
        *error = QStringLiteral("cannot write %1: the drawing could not be written whole").arg(path);
        return false;
    }
    return true;
}

}  // namespace exchange
}  // namespace skr
