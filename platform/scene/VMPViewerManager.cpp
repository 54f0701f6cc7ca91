// The viewer's scene: model nodes and three layers of temporary nodes.
#include "scene/VMPViewerManager.h"

#include <osg/Depth>

VMPViewerManager::VMPViewerManager()
    : m_root(new osg::Group), m_model(new osg::Group), m_inModel(new osg::Group), m_highlight(new osg::Group),
      m_overlay(new osg::Group) {
    m_root->addChild(m_model.get());
    m_root->addChild(m_inModel.get());
    m_root->addChild(m_highlight.get());
    m_root->addChild(m_overlay.get());
    m_highlight->getOrCreateStateSet()->setMode(GL_LIGHTING, osg::StateAttribute::OFF | osg::StateAttribute::OVERRIDE);
    m_highlight->getOrCreateStateSet()->setRenderBinDetails(10, "RenderBin");
    osg::StateSet* overlay = m_overlay->getOrCreateStateSet();
    overlay->setAttributeAndModes(new osg::Depth(osg::Depth::ALWAYS, 0.0, 1.0, false), osg::StateAttribute::ON);
    overlay->setRenderBinDetails(20, "RenderBin");
}

VMPViewerManager::~VMPViewerManager() = default;

osg::Group* VMPViewerManager::layer(int displayKind) const {
    switch (displayKind) {
    case TEMP_DISPLAY_OVERLAY: return m_overlay.get();
    case TEMP_DISPLAY_HIGHLIGHT: return m_highlight.get();
    default: return m_inModel.get();
    }
}

void VMPViewerManager::addTempDisplayNode(ndp::CSceneNode* node, int displayKind) {
    if (!node || hasTempNode(node)) return;
    layer(displayKind)->addChild(node);
}

bool VMPViewerManager::removeTempDisplayNode(ndp::CSceneNode* node) {
    for (osg::Group* group : {m_inModel.get(), m_highlight.get(), m_overlay.get()})
        if (group->removeChild(node)) return true;
    return false;
}

void VMPViewerManager::setTempDirty() {
    m_tempDirty = true;
    if (m_redraw) m_redraw();
}

int VMPViewerManager::getTempNodeCount() const {
    return static_cast<int>(m_inModel->getNumChildren() + m_highlight->getNumChildren() + m_overlay->getNumChildren());
}

bool VMPViewerManager::hasTempNode(const ndp::CSceneNode* node) const {
    for (osg::Group* group : {m_inModel.get(), m_highlight.get(), m_overlay.get()})
        if (group->containsNode(node)) return true;
    return false;
}
