// The host's scene graph as the library uses it, as thin adapters over OpenSceneGraph: colours,
// object tags, scene nodes with an object id, visual nodes holding primitive renderables (float
// vertex and normal arrays) and state sets (material, lighting, face and polygon modes, line
// width, two-sided lighting, polygon offset). Nodes are reference counted by OpenSceneGraph:
// hold them in CSceneRef.
#pragma once

#include "PlatformGlobal.h"

#include <osg/Geode>
#include <osg/Geometry>
#include <osg/StateSet>
#include <osg/ref_ptr>

#include <cstdint>
#include <vector>

namespace ndp {

template <class T>
using CSceneRef = osg::ref_ptr<T>;

struct BXQPLATFORM_EXPORT CColor {
    float r = 1.0f, g = 1.0f, b = 1.0f, a = 1.0f;

    static const CColor Yellow;
    static const CColor Blue;
    static const CColor Red;
    static const CColor Green;
    static const CColor White;
    static const CColor Grey;

    bool operator==(const CColor& o) const { return r == o.r && g == o.g && b == o.b && a == o.a; }
};

// What a scene node stands for: the id of the model object (or of whatever the node's owner
// numbers it by) and, for temporary nodes, their kind.
struct GObjTag {
    std::int64_t objectId = 0;
    int tempNodeType = 0;  // 0: a model node; 1: a temporary node of a command or display manager
};

// Face modes: which faces a state set draws.
enum EnFaceMode : int { FACE_FRONT = 0, FACE_BACK = 1, FACE_FRONT_AND_BACK = 2 };
// Polygon modes: how polygons are drawn.
enum EnPolygonMode : int { POLYGON_POINT = 0, POLYGON_FILL = 1, POLYGON_LINE = 2 };
// Primitive kinds of a renderable.
enum EnPrimitiveKind : int {
    PRIMITIVE_POINTS = 0,
    PRIMITIVE_LINES = 1,
    PRIMITIVE_LINE_STRIP = 2,
    PRIMITIVE_LINE_LOOP = 3,
    PRIMITIVE_TRIANGLE_STRIP = 4,
    PRIMITIVE_TRIANGLES = 5,
    PRIMITIVE_TRIANGLE_FAN = 6,
};

class BXQPLATFORM_EXPORT CStateSet : public osg::StateSet {
public:
    CStateSet();
    void SetMaterial(const CColor& color);
    const CColor& GetMaterial() const { return m_material; }
    void SetLighting(bool enabled);
    void SetFaceMode(int mode);     // EnFaceMode
    void SetPolygonMode(int mode);  // EnPolygonMode, for the faces the face mode draws
    void SetLineWidth(float width);
    void SetTwoSidedLighting(bool enabled);
    // Pushes filled polygons back in depth (negative: towards the viewer) so that lines or
    // coplanar faces drawn with it win over the faces beneath.
    void SetPolygonOffset(float factor, float units);

    bool GetLighting() const { return m_lighting; }
    int GetFaceMode() const { return m_faceMode; }
    int GetPolygonMode() const { return m_polygonMode; }
    float GetLineWidth() const { return m_lineWidth; }
    bool GetTwoSidedLighting() const { return m_twoSided; }

private:
    void applyPolygonMode();
    CColor m_material;
    bool m_lighting = true;
    int m_faceMode = FACE_FRONT;
    int m_polygonMode = POLYGON_FILL;
    float m_lineWidth = 1.0f;
    bool m_twoSided = false;
};

// Triangles, lines or points from float arrays of x, y, z triples.
class BXQPLATFORM_EXPORT CPrimitiveRenderable : public osg::Geometry {
public:
    explicit CPrimitiveRenderable(int primitiveKind);
    int GetPrimitiveKind() const { return m_kind; }
    // Replaces the vertices (count triples) and draws them all as the renderable's primitive.
    void SetVertexArray(const float* xyz, int count);
    // One normal per vertex.
    void SetNormalArray(const float* xyz, int count);
    int GetVertexCount() const;

private:
    int m_kind;
};

// A node of the scene with its tag and the flags a viewer keeps for it.
class BXQPLATFORM_EXPORT CSceneNode : public osg::Geode {
public:
    CSceneNode();
    GObjTag& GetTag() { return m_tag; }
    const GObjTag& GetTag() const { return m_tag; }
    void SetMask(std::uint32_t mask) { setNodeMask(mask); }
    std::uint32_t GetMask() const { return getNodeMask(); }
    void SetTempNodeType(int type) { m_tag.tempNodeType = type; }
    // Set while the node is shown among a viewer's temporary nodes: only such nodes are picked.
    void SetTempDisplayed(bool displayed) { m_tempDisplayed = displayed; }
    bool IsTempDisplayed() const { return m_tempDisplayed; }

protected:
    ~CSceneNode() override;

private:
    GObjTag m_tag;
    bool m_tempDisplayed = false;
};

// A scene node that draws renderables with one state set.
class BXQPLATFORM_EXPORT CVisualNode : public CSceneNode {
public:
    CVisualNode();
    void AddRenderable(CPrimitiveRenderable* renderable);
    int GetRenderableCount() const { return static_cast<int>(getNumDrawables()); }
    CPrimitiveRenderable* GetRenderable(int index);
    CStateSet* GetStateSet() { return m_stateSet.get(); }

private:
    CSceneRef<CStateSet> m_stateSet;
};

}  // namespace ndp
