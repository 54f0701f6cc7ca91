// Scene adapters over OpenSceneGraph.
#include "scene/NDPScene.h"

#include <osg/CullFace>
#include <osg/LightModel>
#include <osg/LineWidth>
#include <osg/Material>
#include <osg/PolygonMode>
#include <osg/PolygonOffset>

namespace ndp {

const CColor CColor::Yellow{1.0f, 0.85f, 0.0f, 1.0f};
const CColor CColor::Blue{0.1f, 0.35f, 1.0f, 1.0f};
const CColor CColor::Red{0.9f, 0.1f, 0.1f, 1.0f};
const CColor CColor::Green{0.1f, 0.75f, 0.2f, 1.0f};
const CColor CColor::White{1.0f, 1.0f, 1.0f, 1.0f};
const CColor CColor::Grey{0.62f, 0.64f, 0.68f, 1.0f};

CStateSet::CStateSet() = default;

void CStateSet::SetMaterial(const CColor& color) {
    m_material = color;
    auto* material = dynamic_cast<osg::Material*>(getAttribute(osg::StateAttribute::MATERIAL));
    if (!material) {
        material = new osg::Material;
        setAttributeAndModes(material, osg::StateAttribute::ON);
    }
    const osg::Vec4 diffuse(color.r, color.g, color.b, color.a);
    material->setDiffuse(osg::Material::FRONT_AND_BACK, diffuse);
    material->setAmbient(osg::Material::FRONT_AND_BACK, diffuse * 0.45f);
    material->setSpecular(osg::Material::FRONT_AND_BACK, osg::Vec4(0.15f, 0.15f, 0.15f, 1.0f));
    material->setShininess(osg::Material::FRONT_AND_BACK, 24.0f);
    // A glow of its own keeps the colour recognisable on faces the light grazes.
    material->setEmission(osg::Material::FRONT_AND_BACK, osg::Vec4(diffuse.r() * 0.3f, diffuse.g() * 0.3f, diffuse.b() * 0.3f, 1));
    // Unlit drawing takes the current colour, so that the material shows with lighting off too.
    material->setColorMode(osg::Material::OFF);
}

void CStateSet::SetLighting(bool enabled) {
    m_lighting = enabled;
    setMode(GL_LIGHTING, enabled ? osg::StateAttribute::ON : osg::StateAttribute::OFF);
}

void CStateSet::SetFaceMode(int mode) {
    m_faceMode = mode;
    if (mode == FACE_FRONT_AND_BACK) {
        setMode(GL_CULL_FACE, osg::StateAttribute::OFF);
    } else {
        setAttributeAndModes(new osg::CullFace(mode == FACE_FRONT ? osg::CullFace::BACK : osg::CullFace::FRONT),
                             osg::StateAttribute::ON);
    }
    applyPolygonMode();
}

void CStateSet::SetPolygonMode(int mode) {
    m_polygonMode = mode;
    applyPolygonMode();
}

void CStateSet::applyPolygonMode() {
    const osg::PolygonMode::Mode mode = m_polygonMode == POLYGON_POINT  ? osg::PolygonMode::POINT
                                        : m_polygonMode == POLYGON_LINE ? osg::PolygonMode::LINE
                                                                        : osg::PolygonMode::FILL;
    const osg::PolygonMode::Face face = m_faceMode == FACE_FRONT  ? osg::PolygonMode::FRONT
                                        : m_faceMode == FACE_BACK ? osg::PolygonMode::BACK
                                                                  : osg::PolygonMode::FRONT_AND_BACK;
    setAttributeAndModes(new osg::PolygonMode(face, mode), osg::StateAttribute::ON);
}

void CStateSet::SetLineWidth(float width) {
    m_lineWidth = width;
    setAttributeAndModes(new osg::LineWidth(width), osg::StateAttribute::ON);
}

void CStateSet::SetTwoSidedLighting(bool enabled) {
    m_twoSided = enabled;
    auto* model = new osg::LightModel;
    model->setTwoSided(enabled);
    model->setAmbientIntensity(osg::Vec4(0.25f, 0.25f, 0.25f, 1.0f));
    setAttributeAndModes(model, osg::StateAttribute::ON);
}

void CStateSet::SetPolygonOffset(float factor, float units) {
    setAttributeAndModes(new osg::PolygonOffset(factor, units), osg::StateAttribute::ON);
}

namespace {
GLenum glMode(int kind) {
    switch (kind) {
    case PRIMITIVE_POINTS: return GL_POINTS;
    case PRIMITIVE_LINES: return GL_LINES;
    case PRIMITIVE_LINE_STRIP: return GL_LINE_STRIP;
    case PRIMITIVE_LINE_LOOP: return GL_LINE_LOOP;
    case PRIMITIVE_TRIANGLE_STRIP: return GL_TRIANGLE_STRIP;
    case PRIMITIVE_TRIANGLE_FAN: return GL_TRIANGLE_FAN;
    default: return GL_TRIANGLES;
    }
}
}  // namespace

CPrimitiveRenderable::CPrimitiveRenderable(int primitiveKind) : m_kind(primitiveKind) {
    // Vertex buffers: display lists (the default) cost twice as much on the first frame.
    setUseDisplayList(false);
    setUseVertexBufferObjects(true);
}

void CPrimitiveRenderable::SetVertexArray(const float* xyz, int count) {
    auto* vertices = new osg::Vec3Array(static_cast<unsigned>(count));
    for (int i = 0; i < count; ++i) (*vertices)[static_cast<unsigned>(i)].set(xyz[3 * i], xyz[3 * i + 1], xyz[3 * i + 2]);
    setVertexArray(vertices);
    removePrimitiveSet(0, getNumPrimitiveSets());
    addPrimitiveSet(new osg::DrawArrays(glMode(m_kind), 0, count));
    dirtyBound();
}

void CPrimitiveRenderable::SetNormalArray(const float* xyz, int count) {
    auto* normals = new osg::Vec3Array(static_cast<unsigned>(count));
    for (int i = 0; i < count; ++i) (*normals)[static_cast<unsigned>(i)].set(xyz[3 * i], xyz[3 * i + 1], xyz[3 * i + 2]);
    setNormalArray(normals, osg::Array::BIND_PER_VERTEX);
}

int CPrimitiveRenderable::GetVertexCount() const {
    const osg::Array* vertices = getVertexArray();
    return vertices ? static_cast<int>(vertices->getNumElements()) : 0;
}

CSceneNode::CSceneNode() = default;
CSceneNode::~CSceneNode() = default;

CVisualNode::CVisualNode() : m_stateSet(new CStateSet) { setStateSet(m_stateSet.get()); }

void CVisualNode::AddRenderable(CPrimitiveRenderable* renderable) { addDrawable(renderable); }

CPrimitiveRenderable* CVisualNode::GetRenderable(int index) {
    return dynamic_cast<CPrimitiveRenderable*>(getDrawable(static_cast<unsigned>(index)));
}

}  // namespace ndp
