// VMPViewerManager: the host's 3D view as the library sees it: a scene of the model's own nodes
// and of temporary display nodes that commands and display managers add, remove and mark dirty.
// The viewer holds its own reference on each temporary node.
#pragma once

#include "PlatformGlobal.h"
#include "scene/NDPScene.h"

#include <osg/Group>

#include <functional>

// How a temporary node is drawn.
enum EnTempDisplayKind : int {
    TEMP_DISPLAY_OVERLAY = 1,   // over everything, ignoring depth
    TEMP_DISPLAY_HIGHLIGHT = 2, // over the model, depth tested, not lit
    TEMP_DISPLAY_IN_MODEL = 3,  // among the model's nodes, depth tested and lit
};

class BXQPLATFORM_EXPORT VMPViewerManager {
public:
    VMPViewerManager();
    ~VMPViewerManager();
    VMPViewerManager(const VMPViewerManager&) = delete;
    VMPViewerManager& operator=(const VMPViewerManager&) = delete;

    // Adds node to the temporary layer of that kind; a node already there is left as it is.
    void addTempDisplayNode(ndp::CSceneNode* node, int displayKind);
    // Takes node out of the temporary layers; false when it was in none.
    bool removeTempDisplayNode(ndp::CSceneNode* node);
    // Asks for the temporary layer to be drawn again.
    void setTempDirty();
    bool isTempDirty() const { return m_tempDirty; }
    // Called by the view once it has drawn the frame that dirtiness asked for.
    void clearTempDirty() { m_tempDirty = false; }
    // Called whenever the temporary layer becomes dirty (a view schedules its redraw there).
    void setRedrawRequest(std::function<void()> request) { m_redraw = std::move(request); }

    int getTempNodeCount() const;
    bool hasTempNode(const ndp::CSceneNode* node) const;

    // The whole scene: the model group, then the temporary layers.
    osg::Group* getSceneRoot() const { return m_root.get(); }
    // Where the host puts the model's own nodes (member solids).
    osg::Group* getModelGroup() const { return m_model.get(); }

private:
    osg::Group* layer(int displayKind) const;

    osg::ref_ptr<osg::Group> m_root;
    osg::ref_ptr<osg::Group> m_model;
    osg::ref_ptr<osg::Group> m_inModel;
    osg::ref_ptr<osg::Group> m_highlight;
    osg::ref_ptr<osg::Group> m_overlay;
    bool m_tempDirty = false;
    std::function<void()> m_redraw;
};
