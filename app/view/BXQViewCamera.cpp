// Standard views framing a scene.
#include "app/view/BXQViewCamera.h"

#include <algorithm>
#include <cmath>

namespace bxq {

bool standardViewFromName(const QString& name, BXQStandardView* view) {
    const QString n = name.trimmed().toLower();
    if (n == QLatin1String("iso")) *view = BXQStandardView::Iso;
    else if (n == QLatin1String("front")) *view = BXQStandardView::Front;
    else if (n == QLatin1String("top")) *view = BXQStandardView::Top;
    else if (n == QLatin1String("right")) *view = BXQStandardView::Right;
    else return false;
    return true;
}

BXQViewPose framePose(BXQStandardView view, const osg::BoundingSphere& bounds, double fovyDegrees, double aspect) {
    osg::Vec3d direction, up(0, 0, 1);  // from the centre towards the eye
    switch (view) {
    case BXQStandardView::Front: direction.set(0, -1, 0); break;
    case BXQStandardView::Top: direction.set(0, 0, 1); up.set(0, 1, 0); break;
    case BXQStandardView::Right: direction.set(1, 0, 0); break;
    case BXQStandardView::Iso: direction.set(1, -1, 1); break;
    }
    direction.normalize();
    const double radius = bounds.valid() && bounds.radius() > 0 ? bounds.radius() : 1000.0;
    const osg::Vec3d centre = bounds.valid() ? osg::Vec3d(bounds.center()) : osg::Vec3d();
    const double halfFovy = fovyDegrees * M_PI / 360.0;
    const double halfFovx = std::atan(std::tan(halfFovy) * aspect);
    const double distance = radius / std::sin(std::min(halfFovy, halfFovx)) * 1.05;
    return {centre + direction * distance, centre, up};
}

}  // namespace bxq
