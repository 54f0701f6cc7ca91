// Offscreen pictures of a scene with no window and no X server: an EGL pbuffer context (Mesa's
// software rasteriser where there is no GPU) handed to OpenSceneGraph as an embedded graphics
// window, drawn single-threaded and read back into an image.
#pragma once

#include "app/view/BXQViewCamera.h"

#include <QImage>
#include <QString>

namespace osg {
class Node;
}

namespace bxq {

// Renders scene seen from the standard view, framing its bounds, into an image of width x height
// pixels on a white background. False, with the reason, when no offscreen context can be made.
bool renderOffscreen(osg::Node* scene, BXQStandardView view, int width, int height, QImage* image, QString* error);

}  // namespace bxq
