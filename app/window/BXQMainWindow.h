// BXQMainWindow: the main window of "bxq gui", a small host of the library: it owns a project
// (created when missing), opens the section library and the face-steel dialogs, shows the records
// they return, lists the project's own sections, offers undo and redo of their changes, and saves
// on request and, after asking, on close.
#pragma once

#include "app/BXQDataSession.h"

#include <QMainWindow>

class QAction;
class QCloseEvent;
class QTableWidget;

namespace bxq {

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

public slots:
    void openSectionLibrary();
    void openFaceSteel();
    void undo();
    void redo();
    bool save();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void refresh();

    BXQDataSession m_session;
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
