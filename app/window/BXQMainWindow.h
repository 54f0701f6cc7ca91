// BXQMainWindow: the main window of "bxq gui", a small host of the library: it owns a project
// (created when missing), opens the section library and the face-steel dialogs, shows the records
// they return, lists the project's own sections, shows the project's members and cutting planes in
// a 3D view beside the tables, adds members and adds, moves and deletes cutting planes there,
// offers undo and redo of all these changes, and saves on request and, after asking, on close.
#pragma once

#include "app/BXQDataSession.h"
#include "app/view/BXQModelView.h"

#include "ndp/NDPVector3.h"

#include <QMainWindow>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

class QAction;
class QCloseEvent;
class QStackedWidget;
class QTableWidget;
class VMPViewerManager;

namespace bxq {

class BXQModelScene;

class BXQMainWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit BXQMainWindow(QWidget* parent = nullptr);
    ~BXQMainWindow() override;

    // Opens (creating when missing) the project and the catalogue; false with a message otherwise.
    bool openProject(const QString& path, QString* error);

    QTableWidget* sectionRecords() const { return m_pSections; }
    QTableWidget* plateRecords() const { return m_pPlates; }
    QTableWidget* userSections() const { return m_pUserSections; }
    bool isModified() const;

    // The 3D view (it stays hidden behind a placeholder text where there is no OpenGL), and the
    // scene it shows (null until a project is open).
    BXQModelView* modelView() const { return m_pView; }
    BXQModelScene* modelScene() const { return m_scene.get(); }
    // The selected cutting plane's record id, or -1.
    std::int64_t selectedPlane() const;

    // The commands of the view, each one undoable step; false with a one-line message naming what
    // was wrong, changing nothing.
    bool addMember(const QString& section, const ndp::CVector3& start, const ndp::CVector3& end, QString* error);
    // A plane through a point of the member, across its axis, at the nearer end (head or tail),
    // its normal pointing into the member; it becomes the selected plane.
    bool addCuttingPlaneAt(std::int64_t memberId, const ndp::CVector3& point, QString* error);
    bool moveSelectedPlane(double distance, QString* error);
    bool deleteSelectedPlane(QString* error);
    // Writes the project's members as IFC4 to path, with a progress dialog that can cancel it.
    bool exportIfc(const QString& path, QString* error);

public slots:
    // What a click in the view does: toggles a plane (alone), or adds a plane where a member was
    // picked while the add-plane command waits for a point.
    void handlePick(const bxq::BXQPick& pick);
    void addMemberFromLibrary();
    void moveSelectedPlaneAsked();
    void deleteSelectedPlaneAsked();
    void exportIfcAsked();
    void openSectionLibrary();
    void openFaceSteel();
    void undo();
    void redo();
    bool save();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void refresh();
    bool buildScene(QString* error);
    void useViewPlaceholder();
    // Runs change as one logged command named what; false when change said no.
    bool logged(const QString& what, const std::function<bool()>& change);
    // Every member's row and cutting planes as text, to find what an undo or redo changed.
    std::map<std::int64_t, QString> memberStates() const;
    void rebuildChanged(const std::map<std::int64_t, QString>& before);
    void rebuild(std::int64_t memberId);
    void selectOnly(std::int64_t record);

    BXQDataSession m_session;
    std::unique_ptr<VMPViewerManager> m_viewer;
    std::unique_ptr<BXQModelScene> m_scene;
    QStackedWidget* m_pViewStack = nullptr;
    BXQModelView* m_pView = nullptr;
    QAction* m_pAddPlane = nullptr;
    QAction* m_pMovePlane = nullptr;
    QAction* m_pDeletePlane = nullptr;
    QTableWidget* m_pSections;
    QTableWidget* m_pPlates;
    QTableWidget* m_pUserSections;
    QAction* m_pUndo = nullptr;
    QAction* m_pRedo = nullptr;
    QAction* m_pSave = nullptr;
};

// "bxq gui [--project FILE] [--lang en]": runs the window until it is closed.
int runGui(int argc, char** argv);

}  // namespace bxq
