// The window's 3D view: OpenSceneGraph in a QOpenGLWidget, mouse navigation and picking.
#include "app/view/BXQModelView.h"

#include "app/view/BXQModelScene.h"

#include "scene/NDPScene.h"
#include "solid_split/SKRSplitPlaneDisplayManager.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QTimer>
#include <QWheelEvent>

#include <osg/ComputeBoundsVisitor>
#include <osgGA/TrackballManipulator>
#include <osgUtil/LineSegmentIntersector>
#include <osgViewer/GraphicsWindow>
#include <osgViewer/Viewer>

#include <algorithm>
#include <cmath>

namespace bxq {
namespace {

const double kFovy = 30.0;
// A plane lying on a member's end face is hit at the face's depth; within this many mm of the
// nearest hit a plane wins.
const double kPlaneTieMm = 1.0;
// A press and release closer than this many pixels are a click, not a drag.
const int kClickSlop = 4;

int osgButton(Qt::MouseButton button) {
    switch (button) {
    case Qt::LeftButton: return 1;
    case Qt::MiddleButton: return 2;
    case Qt::RightButton: return 3;
    default: return 0;
    }
}

// What the nodes on a hit's path stand for.
BXQPick classify(const osgUtil::LineSegmentIntersector::Intersection& hit) {
    BXQPick pick;
    for (auto node = hit.nodePath.rbegin(); node != hit.nodePath.rend(); ++node) {
        if (auto* scene = dynamic_cast<ndp::CSceneNode*>(*node)) {
            if (!scene->IsTempDisplayed()) continue;
            pick.kind = BXQPick::Plane;
            pick.id = scene->GetTag().objectId - skr::split::SKRSplitPlaneDisplayManager::kNodeIdOffset;
            break;
        }
        if (auto* member = dynamic_cast<BXQMemberNode*>(*node)) {
            pick.kind = BXQPick::Member;
            pick.id = member->memberId();
            break;
        }
    }
    pick.point = hit.getWorldIntersectPoint();
    return pick;
}

}  // namespace

BXQModelView::BXQModelView(QWidget* parent) : QOpenGLWidget(parent) {
    qRegisterMetaType<bxq::BXQPick>();
    m_viewer = new osgViewer::Viewer;
    // Qt owns the context and calls us on its thread.
    m_viewer->setThreadingModel(osgViewer::Viewer::SingleThreaded);
    m_viewer->setKeyEventSetsDone(0);
    m_viewer->setQuitEventSetsDone(false);
    m_window = new osgViewer::GraphicsWindowEmbedded(0, 0, std::max(1, width()), std::max(1, height()));
    m_window->getEventQueue()->getCurrentEventState()->setMouseYOrientation(
        osgGA::GUIEventAdapter::Y_INCREASING_DOWNWARDS);
    osg::Camera* camera = m_viewer->getCamera();
    camera->setGraphicsContext(m_window.get());
    camera->setClearColor(osg::Vec4(0.93f, 0.94f, 0.96f, 1.0f));
    m_viewer->setLightingMode(osg::View::HEADLIGHT);
    m_manipulator = new osgGA::TrackballManipulator;
    m_manipulator->setAllowThrow(false);
    m_viewer->setCameraManipulator(m_manipulator.get(), false);
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(240, 180);
    updateCamera();
}

BXQModelView::~BXQModelView() {
    // The viewer's OpenGL objects belong to this widget's context.
    if (m_glState == GlState::Ready) {
        makeCurrent();
        m_viewer->setSceneData(nullptr);
        m_viewer = nullptr;
        doneCurrent();
    }
}

bool BXQModelView::openGLAvailable() {
    static const bool available = [] {
        QOpenGLContext context;
        QOffscreenSurface surface;
        surface.setFormat(context.format());
        surface.create();
        return context.create() && context.isValid() && surface.isValid() && context.makeCurrent(&surface);
    }();
    return available;
}

QString BXQModelView::placeholderText() {
    return QCoreApplication::translate("BXQModelView", "三维视图需要 OpenGL，此平台没有可用的 OpenGL。");
}

void BXQModelView::setSceneData(osg::Node* scene) {
    m_viewer->setSceneData(scene);
    update();
}

osg::BoundingSphere BXQModelView::sceneBounds() const {
    osg::BoundingSphere sphere;
    if (osg::Node* scene = const_cast<osgViewer::Viewer*>(m_viewer.get())->getSceneData()) {
        osg::ComputeBoundsVisitor visitor;
        scene->accept(visitor);
        if (visitor.getBoundingBox().valid()) sphere.expandBy(visitor.getBoundingBox());
    }
    return sphere;
}

void BXQModelView::setPose(const BXQViewPose& pose) {
    m_manipulator->setTransformation(pose.eye, pose.centre, pose.up);
    m_manipulator->setHomePosition(pose.eye, pose.centre, pose.up);
    update();
}

void BXQModelView::showStandardView(BXQStandardView view) {
    setPose(framePose(view, sceneBounds(), kFovy, static_cast<double>(std::max(1, width())) / std::max(1, height())));
}

void BXQModelView::fitAll() {
    const osg::BoundingSphere bounds = sceneBounds();
    BXQViewPose pose = framePose(BXQStandardView::Iso, bounds, kFovy, static_cast<double>(std::max(1, width())) / std::max(1, height()));
    // The same distance, seen from where the eye is now.
    osg::Vec3d eye, centre, up;
    m_manipulator->getTransformation(eye, centre, up);
    osg::Vec3d direction = eye - centre;
    if (direction.normalize() > 0.0) {
        const double distance = (pose.eye - pose.centre).length();
        pose.eye = pose.centre + direction * distance;
        pose.up = up;
    }
    setPose(pose);
}

void BXQModelView::updateCamera() {
    const qreal ratio = devicePixelRatioF();
    const int w = std::max(1, static_cast<int>(std::lround(width() * ratio)));
    const int h = std::max(1, static_cast<int>(std::lround(height() * ratio)));
    const osg::GraphicsContext::Traits* traits = m_window->getTraits();
    if (!traits || traits->width != w || traits->height != h) {
        m_window->resized(0, 0, w, h);
        m_window->getEventQueue()->windowResize(0, 0, w, h);
    }
    osg::Camera* camera = m_viewer->getCamera();
    camera->setViewport(0, 0, w, h);
    camera->setProjectionMatrixAsPerspective(kFovy, static_cast<double>(w) / h, 1.0, 1.0e7);
    camera->setViewMatrix(m_manipulator->getInverseMatrix());
}

osg::Vec3d BXQModelView::windowPoint(const QPoint& position) const {
    // OpenGL's window coordinates run bottom up, in device pixels, through pixel centres.
    const qreal ratio = devicePixelRatioF();
    return osg::Vec3d((position.x() + 0.5) * ratio, (height() - position.y() - 0.5) * ratio, 0.0);
}

BXQPick BXQModelView::pickAt(const QPoint& position) {
    BXQPick result;
    if (!m_viewer->getSceneData()) return result;
    updateCamera();
    const osg::Vec3d at = windowPoint(position);
    osg::ref_ptr<osgUtil::LineSegmentIntersector> picker =
        new osgUtil::LineSegmentIntersector(osgUtil::Intersector::WINDOW, at.x(), at.y());
    osgUtil::IntersectionVisitor visitor(picker.get());
    m_viewer->getCamera()->accept(visitor);
    if (!picker->containsIntersections()) return result;
    osg::Vec3d eye, centre, up;
    m_manipulator->getTransformation(eye, centre, up);
    double nearest = -1.0;
    for (const auto& hit : picker->getIntersections()) {
        const BXQPick pick = classify(hit);
        if (pick.kind == BXQPick::Nothing) continue;
        const double distance = (pick.point - eye).length();
        if (nearest < 0.0) {
            nearest = distance;
            result = pick;
        } else if (distance > nearest + kPlaneTieMm) {
            break;
        }
        if (pick.kind == BXQPick::Plane) return pick;
    }
    return result;
}

QPoint BXQModelView::widgetPointOf(const osg::Vec3d& world) {
    updateCamera();
    const osg::Camera* camera = m_viewer->getCamera();
    const osg::Vec3d p = world * camera->getViewMatrix() * camera->getProjectionMatrix() *
                         camera->getViewport()->computeWindowMatrix();
    const qreal ratio = devicePixelRatioF();
    return QPoint(static_cast<int>(std::floor(p.x() / ratio)), static_cast<int>(std::floor(height() - p.y() / ratio)));
}

void BXQModelView::click(const QPoint& position) { emit picked(pickAt(position)); }

void BXQModelView::initializeGL() {
    if (!context() || !context()->isValid()) {
        m_glState = GlState::Missing;
        QTimer::singleShot(0, this, &BXQModelView::openGLMissing);
        return;
    }
    m_glState = GlState::Ready;
    m_viewer->realize();
}

void BXQModelView::resizeGL(int, int) { updateCamera(); }

void BXQModelView::paintGL() {
    if (m_glState != GlState::Ready) return;
    // Qt draws the widget into its own frame buffer, which changes with the widget's size.
    m_window->setDefaultFboId(defaultFramebufferObject());
    updateCamera();
    m_viewer->frame();
}

void BXQModelView::mousePressEvent(QMouseEvent* event) {
    m_pressAt = event->pos();
    m_dragged = false;
    const qreal ratio = devicePixelRatioF();
    if (isDrawing())
        m_window->getEventQueue()->mouseButtonPress(static_cast<float>(event->x() * ratio),
                                                    static_cast<float>(event->y() * ratio), osgButton(event->button()));
    update();
}

void BXQModelView::mouseMoveEvent(QMouseEvent* event) {
    if ((event->pos() - m_pressAt).manhattanLength() > kClickSlop) m_dragged = true;
    const qreal ratio = devicePixelRatioF();
    if (isDrawing())
        m_window->getEventQueue()->mouseMotion(static_cast<float>(event->x() * ratio), static_cast<float>(event->y() * ratio));
    update();
}

void BXQModelView::mouseReleaseEvent(QMouseEvent* event) {
    const qreal ratio = devicePixelRatioF();
    if (isDrawing())
        m_window->getEventQueue()->mouseButtonRelease(static_cast<float>(event->x() * ratio),
                                                      static_cast<float>(event->y() * ratio), osgButton(event->button()));
    if (event->button() == Qt::LeftButton && !m_dragged) click(event->pos());
    update();
}

void BXQModelView::wheelEvent(QWheelEvent* event) {
    if (isDrawing())
        m_window->getEventQueue()->mouseScroll(event->angleDelta().y() > 0 ? osgGA::GUIEventAdapter::SCROLL_UP
                                                                           : osgGA::GUIEventAdapter::SCROLL_DOWN);
    event->accept();
    update();
}

}  // namespace bxq
