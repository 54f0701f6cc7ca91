// The standard views of the 3D view (iso, front, top, right) framing a scene's bounds, shared by
// the window's view and the offscreen pictures. Z is up; front looks along +Y.
#pragma once

#include <QString>

#include <osg/BoundingSphere>
#include <osg/Matrixd>
#include <osg/Vec3d>

namespace bxq {

enum class BXQStandardView { Iso, Front, Top, Right };

// "iso", "front", "top" or "right"; false for anything else.
bool standardViewFromName(const QString& name, BXQStandardView* view);

struct BXQViewPose {
    osg::Vec3d eye, centre, up;
};

// The eye looking at the sphere's centre from the view's side, far enough for the whole sphere to
// fit a perspective of fovyDegrees at that aspect ratio (width / height).
BXQViewPose framePose(BXQStandardView view, const osg::BoundingSphere& bounds, double fovyDegrees, double aspect);

}  // namespace bxq
