// BXQModelView: the window's 3D view. An OpenSceneGraph viewer drawn into a QOpenGLWidget through
// an embedded graphics window, single-threaded; the mouse orbits (left), pans (middle) and zooms
// (right, wheel); a click that does not drag picks what lies under the cursor. Picking needs no
// OpenGL, so a view that cannot draw (its owner shows placeholderText() instead) still picks.
#pragma once

#include "app/view/BXQViewCamera.h"

#include <QOpenGLWidget>
#include <QPoint>

#include <osg/BoundingSphere>
#include <osg/Node>
#include <osg/Vec3d>
#include <osg/ref_ptr>

#include <cstdint>

namespace osgGA {
class TrackballManipulator;
}
namespace osgViewer {
class GraphicsWindowEmbedded;
class Viewer;
}  // namespace osgViewer

namespace bxq {

// What a click hit: a cutting plane's node (record = its "CuttingPlane" id) or a member's solid
// (id = the member's id), and the hit point in global mm.
struct BXQPick {
    enum Kind { Nothing, Plane, Member };
    Kind kind = Nothing;
    std::int64_t id = -1;
    osg::Vec3d point;
};

class BXQModelView : public QOpenGLWidget {
    Q_OBJECT
public:
    explicit BXQModelView(QWidget* parent = nullptr);
    ~BXQModelView() override;

    // The scene to show (the viewer manager's root); null shows nothing.
    void setSceneData(osg::Node* scene);
    // Looks at the whole scene from that side / from the current side.
    void showStandardView(BXQStandardView view);
    void fitAll();
    // What lies under a point of the widget (logical pixels). A plane lying on a member's end face
    // wins over the face.
    BXQPick pickAt(const QPoint& position);
    // Where a global point appears in the widget (logical pixels).
    QPoint widgetPointOf(const osg::Vec3d& world);
    // Picks under that point as a click there does, and tells picked().
    void click(const QPoint& position);
    // Whether this platform can give the view an OpenGL context at all (tried once).
    static bool openGLAvailable();
    // What stands in the view's place where it cannot draw.
    static QString placeholderText();
    bool isDrawing() const { return m_glState == GlState::Ready; }

signals:
    void picked(const bxq::BXQPick& pick);
    // The widget's context turned out unusable: it draws nothing from now on.
    void openGLMissing();

protected:
    void initializeGL() override;
    void resizeGL(int width, int height) override;
    void paintGL() override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    enum class GlState { Unknown, Ready, Missing };
    void updateCamera();
    void setPose(const BXQViewPose& pose);
    osg::Vec3d windowPoint(const QPoint& position) const;
    osg::BoundingSphere sceneBounds() const;

    osg::ref_ptr<osgViewer::Viewer> m_viewer;
    osg::ref_ptr<osgViewer::GraphicsWindowEmbedded> m_window;
    osg::ref_ptr<osgGA::TrackballManipulator> m_manipulator;
    GlState m_glState = GlState::Unknown;
    QPoint m_pressAt;
    bool m_dragged = false;
};

}  // namespace bxq

Q_DECLARE_METATYPE(bxq::BXQPick)
