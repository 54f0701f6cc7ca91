// Offscreen rendering through EGL and OpenSceneGraph's embedded graphics window.
#include "app/view/BXQOffscreenRenderer.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <osg/ComputeBoundsVisitor>
#include <osg/Image>
#include <osgViewer/GraphicsWindow>
#include <osgViewer/Viewer>

#include <algorithm>
#include <cstring>

namespace bxq {
namespace {

// An EGL display with desktop OpenGL: Mesa's surfaceless platform needs no X server; the default
// display serves where that platform is missing.
EGLDisplay openDisplay() {
    auto getPlatformDisplay =
        reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
    EGLint major = 0, minor = 0;
    if (getPlatformDisplay) {
        EGLDisplay display = getPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
        if (display != EGL_NO_DISPLAY && eglInitialize(display, &major, &minor)) return display;
    }
    EGLDisplay display = eglGetDisplay(EGL_DEFAULT_DISPLAY);
    if (display != EGL_NO_DISPLAY && eglInitialize(display, &major, &minor)) return display;
    return EGL_NO_DISPLAY;
}

// A current EGL context for the lifetime of the object; drawing goes to an OpenSceneGraph frame
// buffer object, so a surface is needed only where the context cannot be current without one.
class EglContext {
public:
    EglContext(int width, int height) {
        m_display = openDisplay();
        if (m_display == EGL_NO_DISPLAY) {
            m_error = QStringLiteral("no EGL display (install libegl-mesa0 and libgl1-mesa-dri)");
            return;
        }
        if (!eglBindAPI(EGL_OPENGL_API)) {
            m_error = QStringLiteral("EGL offers no desktop OpenGL");
            return;
        }
        const EGLint attributes[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RED_SIZE, 8, EGL_GREEN_SIZE, 8,
                                     EGL_BLUE_SIZE, 8, EGL_DEPTH_SIZE, 24, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
                                     EGL_NONE};
        EGLConfig config = nullptr;
        EGLint count = 0;
        if (!eglChooseConfig(m_display, attributes, &config, 1, &count) || count < 1) {
            const EGLint anySurface[] = {EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_DEPTH_SIZE, 24, EGL_NONE};
            if (!eglChooseConfig(m_display, anySurface, &config, 1, &count) || count < 1) {
                m_error = QStringLiteral("no EGL configuration for OpenGL");
                return;
            }
        } else {
            const EGLint size[] = {EGL_WIDTH, width, EGL_HEIGHT, height, EGL_NONE};
            m_surface = eglCreatePbufferSurface(m_display, config, size);
        }
        m_context = eglCreateContext(m_display, config, EGL_NO_CONTEXT, nullptr);
        if (m_context == EGL_NO_CONTEXT || !eglMakeCurrent(m_display, m_surface, m_surface, m_context)) {
            m_error = QStringLiteral("cannot make an EGL OpenGL context current (EGL error 0x%1)")
                          .arg(eglGetError(), 0, 16);
            return;
        }
        m_ok = true;
    }
    ~EglContext() {
        if (m_display == EGL_NO_DISPLAY) return;
        eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        if (m_context != EGL_NO_CONTEXT) eglDestroyContext(m_display, m_context);
        if (m_surface != EGL_NO_SURFACE) eglDestroySurface(m_display, m_surface);
        eglTerminate(m_display);
    }
    bool ok() const { return m_ok; }
    const QString& error() const { return m_error; }

private:
    EGLDisplay m_display = EGL_NO_DISPLAY;
    EGLSurface m_surface = EGL_NO_SURFACE;
    EGLContext m_context = EGL_NO_CONTEXT;
    bool m_ok = false;
    QString m_error;
};

}  // namespace

bool renderOffscreen(osg::Node* scene, BXQStandardView view, int width, int height, QImage* image, QString* error) {
    EglContext context(width, height);
    if (!context.ok()) {
        if (error) *error = context.error();
        return false;
    }
    osg::ComputeBoundsVisitor boundsVisitor;
    scene->accept(boundsVisitor);
    const osg::BoundingBox box = boundsVisitor.getBoundingBox();
    osg::BoundingSphere bounds;
    if (box.valid()) bounds.expandBy(box);

    osg::ref_ptr<osg::Image> pixels = new osg::Image;
    pixels->allocateImage(width, height, 1, GL_RGBA, GL_UNSIGNED_BYTE);
    {
        osgViewer::Viewer viewer;
        // Offscreen drawing must stay on this thread, where the context is current.
        viewer.setThreadingModel(osgViewer::Viewer::SingleThreaded);
        osg::ref_ptr<osgViewer::GraphicsWindowEmbedded> window = new osgViewer::GraphicsWindowEmbedded(0, 0, width, height);
        osg::Camera* camera = viewer.getCamera();
        camera->setGraphicsContext(window.get());
        camera->setViewport(0, 0, width, height);
        camera->setClearColor(osg::Vec4(1, 1, 1, 1));
        camera->setRenderTargetImplementation(osg::Camera::FRAME_BUFFER_OBJECT);
        camera->attach(osg::Camera::COLOR_BUFFER, pixels.get());
        const double fovy = 30.0, aspect = static_cast<double>(width) / height;
        const BXQViewPose pose = framePose(view, bounds, fovy, aspect);
        const double radius = bounds.valid() ? bounds.radius() : 1000.0;
        const double distance = (pose.eye - pose.centre).length();
        camera->setProjectionMatrixAsPerspective(fovy, aspect, std::max(1.0, distance - 2 * radius), distance + 2 * radius);
        camera->setComputeNearFarMode(osg::CullSettings::DO_NOT_COMPUTE_NEAR_FAR);
        camera->setViewMatrixAsLookAt(pose.eye, pose.centre, pose.up);
        viewer.setLightingMode(osg::View::HEADLIGHT);
        viewer.setSceneData(scene);
        viewer.realize();
        viewer.frame();
        viewer.setSceneData(nullptr);
    }
    // OpenGL rows run bottom up.
    QImage out(width, height, QImage::Format_RGBA8888);
    for (int y = 0; y < height; ++y)
        std::memcpy(out.scanLine(height - 1 - y), pixels->data(0, y), static_cast<size_t>(width) * 4);
    *image = out.convertToFormat(QImage::Format_RGB32);
    return true;
}

}  // namespace bxq
