// SKROutlineDxfWriter: a section outline as a DXF drawing (R2000, code page GBK, millimetres) on
// dxflib: each loop a closed LWPOLYLINE with its arcs as bulges, holes as loops of their own, all
// on one layer.
// dxflib is GPL: this writer is linked into bxq only, never into the plug-in library.
#pragma once

#include <QString>

namespace ndp {
class CPolygon;
}

namespace skr {
namespace exchange {

// A DXF layer name for a section name: '*' becomes 'x' (H400x200x8x13), the other characters a
// layer name may not hold become '_'; "OUTLINE" for an empty name.
QString dxfLayerName(const QString& section);

// Writes polygon to path on the given layer, replacing the file only when the whole drawing was
// written. False, with a one-line message naming the file, otherwise.
bool writeOutlineDxf(const ndp::CPolygon& polygon, const QString& layer, const QString& path, QString* error);

}  // namespace exchange
}  // namespace skr
