// BXQModelScene: the 3D scene of a project as the host's view shows it: every member's solid after
// its cutting planes, shaded, and the cutting planes as the display manager's nodes. Members of one
// section, length and cuts share one tessellation, placed by their own frames.
#pragma once

#include "solid_split/SKRSplitPlaneDisplayManager.h"

#include <QString>

#include <osg/BoundingBox>
#include <osg/Geode>
#include <osg/MatrixTransform>
#include <osg/ref_ptr>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

class VMPProjectModel;
class VMPViewerManager;

namespace bxq {

// The node that places a member's shared solid; it knows its member.
class BXQMemberNode : public osg::MatrixTransform {
public:
    explicit BXQMemberNode(std::int64_t memberId) : m_memberId(memberId) {}
    std::int64_t memberId() const { return m_memberId; }

private:
    std::int64_t m_memberId;
};

class BXQModelScene {
public:
    // Reports progress: members done, members in all. Answering false cancels the build.
    using Progress = std::function<bool(int done, int total)>;

    BXQModelScene(VMPProjectModel* project, VMPViewerManager* viewer);
    ~BXQModelScene();

    // Builds every member and the nodes of every cutting plane (new planes are drawn selected, as
    // the display manager draws them; clearSelection() makes them all yellow). False, with the
    // reason naming the file and member, when a member cannot be read or built.
    bool build(QString* error, const Progress& progress = Progress());
    // Rebuilds one member's solid and its planes' nodes after its cutting planes changed; removes
    // it when it is gone.
    bool rebuildMember(std::int64_t memberId, QString* error);
    // Unselects every plane.
    void clearSelection();

    skr::split::SKRSplitPlaneDisplayManager& planes() { return *m_planes; }
    // The box of the members and their planes.
    osg::BoundingBox bounds() const;
    int memberCount() const { return static_cast<int>(m_members.size()); }
    // How many different tessellations the members share.
    int tessellationCount() const { return static_cast<int>(m_meshes.size()); }

private:
    osg::ref_ptr<osg::Geode> meshOf(std::int64_t memberId, const QString& section, double length, QString* error);
    bool addMember(std::int64_t memberId, QString* error);

    VMPProjectModel* m_project;
    VMPViewerManager* m_viewer;
    std::unique_ptr<skr::split::SKRSplitPlaneDisplayManager> m_planes;
    std::map<QString, osg::ref_ptr<osg::Geode>> m_meshes;  // by section, length and local cuts
    std::map<std::int64_t, osg::ref_ptr<BXQMemberNode>> m_members;
};

}  // namespace bxq
