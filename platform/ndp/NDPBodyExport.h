// Writing bodies to exchange files: STL (the body's triangles) and STEP (the exact geometry).
#pragma once

#include "PlatformGlobal.h"

class QString;

namespace ndp {

class CBody;
class CMeshParameter;

// Tessellates body with parameter and writes its triangles to path, binary unless ascii. False,
// with the reason, for a null body, a tessellation failure or a file that cannot be written.
BXQPLATFORM_EXPORT bool ExportBodyStl(const CBody* body, const QString& path, const CMeshParameter& parameter,
                                      bool ascii = false, QString* error = nullptr);
// Writes body's exact geometry to path as a STEP file (millimetres). False, with the reason, for
// a null or empty body, a geometry the writer refuses, or a file that cannot be written.
BXQPLATFORM_EXPORT bool ExportBodyStep(const CBody* body, const QString& path, QString* error = nullptr);

}  // namespace ndp
