// The bxq gui window as a user drives it: the project it creates, a section and a plate chosen in
// the library's dialogs and shown with their figures, the project's own sections listed, closing
// with unsaved changes asking first; in its 3D view members added, cutting planes added at picked
// points, moved and deleted, each step undone and redone with the view following, clicks toggling
// a plane's selection, the mouse moving the camera, and the project exported as IFC. Under Xvfb the
// view draws and its picture is checked.
#include "app/view/BXQModelScene.h"
#include "app/window/BXQMainWindow.h"
#include "plugin/BXQTranslations.h"

#include "face_steel/BXQFaceSteelDialog.h"
#include "ndp/NDPDatabase.h"
#include "section_data/SKRHotRollingSectionDBProvider.h"
#include "section_dialog/SKRSectionPolyDialog.h"
#include "section_spec/SKRSectionPolyInfoParser.h"
#include "solid_split/SKRCuttingPlaneStore.h"
#include "ui/VMPMessageBox.h"
#include "vmp/VMPCmdLogTool.h"
#include "vmp/VMPMembers.h"

#include "section_spec/QtPrinters.h"
#include "support/Screens.h"
#include "support/ChineseAfterwards.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLineF>
#include <QMenu>
#include <QMenuBar>
#include <QMouseEvent>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QWheelEvent>

#include <functional>
#include <vector>

namespace {

using skr::split::CuttingPlaneRecord;

class MainWindow : public ::testing::Test {
protected:
    void SetUp() override {
        qputenv("BXQ_DATA_DIR", BXQ_SHIPPED_DATA_DIR);
        VMPMessageBox::setAnswerer([this](const VMPMessageBox::Shown& box) {
            m_boxes << box.text;
            return m_answer;
        });
        m_window = std::make_unique<bxq::BXQMainWindow>();
        QString error;
        ASSERT_TRUE(m_window->openProject(m_dir.filePath("p.KDB"), &error)) << error.toStdString();
    }
    void TearDown() override {
        m_window.reset();
        VMPMessageBox::setAnswerer({});
    }
    // Runs a modal dialog of type T that the window opens, doing act on it while it runs.
    template <typename T>
    void whileModal(const std::function<void(T&)>& act) {
        QTimer::singleShot(0, [act] {
            if (auto* dialog = qobject_cast<T*>(QApplication::activeModalWidget())) act(*dialog);
        });
    }
    static QStringList row(QTableWidget* table, int r) {
        QStringList cells;
        for (int c = 0; c < table->columnCount(); ++c) cells << (table->item(r, c) ? table->item(r, c)->text() : QString());
        return cells;
    }
    static QStringList texts(const QList<QAction*>& actions) {
        QStringList out;
        for (QAction* action : actions) out << action->text();
        return out;
    }
    void showWindow(QWidget& window) {
        window.resize(1280, 760);
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
        QApplication::processEvents();
    }

    QTemporaryDir m_dir;
    std::unique_ptr<bxq::BXQMainWindow> m_window;
    QStringList m_boxes;
    QMessageBox::StandardButton m_answer = QMessageBox::Cancel;
};

// The window with a 6 m welded H along X.
class ModelView : public MainWindow {
protected:
    void SetUp() override {
        MainWindow::SetUp();
        QString error;
        ASSERT_TRUE(m_window->addMember("H400*200*8*13", {0, 0, 0}, {6000, 0, 0}, &error)) << error.toStdString();
        m_member = members().at(0).id;
    }
    std::vector<VMPMember> members() const {
        std::vector<VMPMember> rows;
        VMPReadMembers(VMPCmdLogTool::getInstance()->database(), rows, nullptr);
        return rows;
    }
    std::vector<CuttingPlaneRecord> planes() const {
        std::vector<CuttingPlaneRecord> rows;
        skr::split::ReadCuttingPlaneRecords(VMPCmdLogTool::getInstance()->database(), -1, rows, nullptr);
        return rows;
    }
    static std::vector<std::int64_t> ids(const std::vector<CuttingPlaneRecord>& rows) {
        std::vector<std::int64_t> out;
        for (const auto& r : rows) out.push_back(r.id);
        return out;
    }
    // The records as the view shows them, which must agree with the table's.
    std::vector<std::int64_t> shownPlanes() const { return m_window->modelScene()->planes().DisplayedRecords(); }
    skr::split::SKRSplitPlaneDisplayManager::NodeShape shape(std::int64_t record) const {
        skr::split::SKRSplitPlaneDisplayManager::NodeShape s;
        EXPECT_TRUE(m_window->modelScene()->planes().GetNodeShape(record, s));
        return s;
    }
    // A click at a global point as the user makes it: with the mouse where the view draws, else
    // through the same pick the mouse would run.
    void clickAt(const osg::Vec3d& world) {
        bxq::BXQModelView* view = m_window->modelView();
        const QPoint at = view->widgetPointOf(world);
        if (view->isVisible()) QTest::mouseClick(view, Qt::LeftButton, Qt::NoModifier, at);
        else view->click(at);
    }
    bool selected(std::int64_t record) const { return m_window->modelScene()->planes().IsSelected(record); }

    std::int64_t m_member = -1;
};

}  // namespace

// The project's own sections are listed after the next dialog; closing with them unsaved asks first.
TEST_F(MainWindow, ShowsTheRecordsTheDialogsReturnAndClosingWithUnsavedSectionsAsks) {
    EXPECT_TRUE(QFileInfo::exists(m_dir.filePath("p.KDB")));
    EXPECT_FALSE(m_window->isModified());
    skr::section::SKRHotRollingSection section{9, 1, L"Z9*9*2*1(ZDY)", 0, 0, {}};
    ASSERT_TRUE(skr::util::FetchInstance<skr::section::SKRUserHotRollingSectionDBProvider>()->addSection(section));
    EXPECT_TRUE(m_window->isModified());
    whileModal<SKRSectionPolyDialog>([](SKRSectionPolyDialog& dialog) {
        dialog.setParameter(parse(QStringLiteral("I20a")));
        dialog.accept();
    });
    m_window->openSectionLibrary();
    ASSERT_EQ(m_window->sectionRecords()->rowCount(), 1);
    EXPECT_EQ(row(m_window->sectionRecords(), 0), (QStringList{"热轧工字钢", "I20a", "50, 100", "27.900", "0.7420"}));
    ASSERT_EQ(m_window->userSections()->rowCount(), 1);
    EXPECT_EQ(m_window->userSections()->item(0, 0)->text(), QStringLiteral("Z9*9*2*1(ZDY)"));

    whileModal<BXQFaceSteelDialog>([](BXQFaceSteelDialog& dialog) {
        dialog.findChildren<QTableWidget*>().value(1)->setCurrentCell(2, 0);  // the thicknesses
        dialog.okSlot();
    });
    m_window->openFaceSteel();
    ASSERT_EQ(m_window->plateRecords()->rowCount(), 1);
    const QStringList plate = row(m_window->plateRecords(), 0);
    EXPECT_EQ(plate[0], QStringLiteral("热轧钢板"));
    EXPECT_DOUBLE_EQ(plate[2].toDouble(), 7.85 * plate[1].toDouble());
    m_window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(m_window.get()));
    EXPECT_TRUE(saveScreen(*m_window, QStringLiteral("bxq_main_window")));
    EXPECT_FALSE(m_window->close());
    EXPECT_EQ(m_boxes, QStringList{QStringLiteral("项目已修改，是否保存？")});
    m_answer = QMessageBox::Save;
    EXPECT_TRUE(m_window->close());
    EXPECT_FALSE(m_window->isModified());
    EXPECT_EQ(m_boxes.size(), 2);
}

// Refused input changes nothing and logs no step: the undos below count from the member.
TEST_F(ModelView, RefusedInputChangesNothingAndPlanesAddedAtPickedPointsAreMovedDeletedAndUndone) {
    QString error;
    EXPECT_FALSE(m_window->addMember(QStringLiteral("NOSUCH"), {0, 0, 0}, {1000, 0, 0}, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("NOSUCH"))) << error.toStdString();
    EXPECT_FALSE(m_window->addMember(QStringLiteral("H400*200*8*13"), {5, 5, 5}, {5, 5, 5}, &error));
    EXPECT_FALSE(m_window->addCuttingPlaneAt(m_member + 7, {0, 0, 0}, &error));
    EXPECT_TRUE(error.contains(QString::number(m_member + 7))) << error.toStdString();
    EXPECT_FALSE(m_window->moveSelectedPlane(10.0, &error));
    EXPECT_EQ(members().size(), 1u);
    EXPECT_TRUE(planes().empty());
    // Near the head the plane's normal points along the axis, near the tail back along it.
    for (const auto& [point, tail, normalX] : {std::tuple<ndp::CVector3, bool, double>{{500, 0, 100}, false, 1.0},
                                               std::tuple<ndp::CVector3, bool, double>{{5800, 50, 0}, true, -1.0}}) {
        ASSERT_TRUE(m_window->addCuttingPlaneAt(m_member, point, &error)) << error.toStdString();
        const CuttingPlaneRecord added = planes().back();
        EXPECT_EQ(added.isTail, tail);
        EXPECT_EQ(m_window->selectedPlane(), added.id);
        const auto s = shape(added.id);
        EXPECT_NEAR(s.normal[0], normalX, 1e-9);
        EXPECT_NEAR(s.centre[0], point[0], 1e-6);
        EXPECT_NEAR(s.width * s.height, 500.0 * 700.0, 1e-6);  // the face of H400x200 and the margin
    }
    const auto twoPlanes = planes();
    ASSERT_EQ(twoPlanes.size(), 2u);
    EXPECT_EQ(shownPlanes(), ids(twoPlanes));
    const std::int64_t tail = twoPlanes[1].id;

    ASSERT_TRUE(m_window->moveSelectedPlane(250.0, &error)) << error.toStdString();
    EXPECT_NEAR(shape(tail).centre[0], 5800.0 - 250.0, 1e-6);
    const auto moved = planes();
    EXPECT_EQ(m_window->selectedPlane(), tail);
    ASSERT_TRUE(m_window->deleteSelectedPlane(&error)) << error.toStdString();
    EXPECT_EQ(ids(planes()), std::vector<std::int64_t>{twoPlanes[0].id});
    EXPECT_EQ(shownPlanes(), ids(planes()));
    EXPECT_FALSE(m_window->deleteSelectedPlane(&error));  // nothing selected any more
    EXPECT_FALSE(error.isEmpty());

    // Each undo restores the records exactly and the view shows them again.
    m_window->undo();
    EXPECT_EQ(ids(planes()), ids(moved));
    EXPECT_EQ(planes().back().local.origin, moved.back().local.origin);
    EXPECT_EQ(shownPlanes(), ids(moved));
    EXPECT_NEAR(shape(tail).centre[0], 5550.0, 1e-6);
    m_window->undo();
    EXPECT_EQ(planes().back().local.origin, twoPlanes.back().local.origin);
    EXPECT_NEAR(shape(tail).centre[0], 5800.0, 1e-6);
    for (int added = 0; added < 2; ++added) m_window->undo();  // the two planes
    EXPECT_TRUE(planes().empty());
    EXPECT_TRUE(shownPlanes().empty());
    m_window->redo();
    EXPECT_EQ(shownPlanes(), std::vector<std::int64_t>{twoPlanes[0].id});
    // Undoing the member takes it out of the view as well.
    for (int added = 0; added < 2; ++added) m_window->undo();  // the head plane, then the member
    EXPECT_TRUE(members().empty());
    EXPECT_EQ(m_window->modelScene()->memberCount(), 0);
    m_window->redo();
    EXPECT_EQ(m_window->modelScene()->memberCount(), 1);
}

TEST_F(ModelView, ClicksToggleAPlaneAloneAndAddPlanesOnMembersAndTheProjectIsExportedAsIfcInEitherLanguage) {
    QString error;
    ASSERT_TRUE(m_window->addCuttingPlaneAt(m_member, {1000, 0, 0}, &error)) << error.toStdString();
    ASSERT_TRUE(m_window->addCuttingPlaneAt(m_member, {5000, 0, 0}, &error)) << error.toStdString();
    const std::int64_t head = planes()[0].id, tail = planes()[1].id;
    showWindow(*m_window);
    bxq::BXQModelView* view = m_window->modelView();
    // Without OpenGL a text stands where the view would draw.
    auto* placeholder = m_window->findChild<QLabel*>(QStringLiteral("viewPlaceholder"));
    ASSERT_NE(placeholder, nullptr);
    EXPECT_EQ(placeholder->isVisible(), !view->isVisible());
    EXPECT_EQ(view->isVisible(), bxq::BXQModelView::openGLAvailable());
    m_window->modelScene()->clearSelection();
    // Seen from the right the tail plane lies on the member's cut end face: the plane is picked.
    view->showStandardView(bxq::BXQStandardView::Right);
    const ndp::CVector3 centre = shape(tail).centre;
    const osg::Vec3d tailCentre(centre[0], centre[1], centre[2]);
    EXPECT_EQ(view->pickAt(view->widgetPointOf(tailCentre)).kind, bxq::BXQPick::Plane);
    clickAt(tailCentre);
    EXPECT_TRUE(selected(tail));
    EXPECT_FALSE(selected(head));
    clickAt(tailCentre);
    EXPECT_FALSE(selected(tail));
    m_window->modelScene()->planes().ToggleSelection(head, false);
    clickAt(tailCentre);
    EXPECT_TRUE(selected(tail));
    EXPECT_FALSE(selected(head));

    // With the add-plane command waiting, a click on the member adds a plane there.
    view->showStandardView(bxq::BXQStandardView::Iso);
    auto* addPlane = m_window->findChild<QAction*>(QStringLiteral("addPlane"));
    ASSERT_NE(addPlane, nullptr);
    addPlane->setChecked(true);
    const bxq::BXQPick onMember = view->pickAt(view->widgetPointOf({2500, 0, 0}));
    ASSERT_EQ(onMember.kind, bxq::BXQPick::Member);
    EXPECT_EQ(onMember.id, m_member);
    clickAt({2500, 0, 0});
    EXPECT_FALSE(addPlane->isChecked());
    ASSERT_EQ(planes().size(), 3u);
    const CuttingPlaneRecord added = planes().back();
    EXPECT_FALSE(added.isTail);
    EXPECT_NEAR(added.local.origin[2], 2500.0, 250.0);  // along the axis from the head
    EXPECT_TRUE(selected(added.id));
    EXPECT_FALSE(selected(tail));

    // Where the view draws, the selected plane shows blue and the others yellow.
    view->showStandardView(bxq::BXQStandardView::Iso);
    QApplication::processEvents();
    if (view->isDrawing()) {
        const QImage picture = view->grabFramebuffer();
        int blue = 0, yellow = 0;
        for (int y = 0; y < picture.height(); y += 2)
            for (int x = 0; x < picture.width(); x += 2) {
                const QColor c = picture.pixelColor(x, y);
                blue += c.blue() > 150 && c.blue() > c.red() + 100 && c.blue() > c.green() + 80;
                yellow += c.red() > 150 && c.green() > 130 && c.blue() < 60;
            }
        EXPECT_GT(blue, 100);
        EXPECT_GT(yellow, 200);
    }
    EXPECT_TRUE(saveScreen(*m_window, QStringLiteral("bxq_model_view")));

    // The project, its planes cut, is exported as IFC from the project menu, in either language.
    QMenu* projectMenu = m_window->menuBar()->actions().first()->menu();
    ASSERT_TRUE(texts(projectMenu->actions()).contains(QStringLiteral("导出 IFC..."))) << texts(projectMenu->actions()).join(',').toStdString();
    projectMenu->popup(m_window->mapToGlobal(QPoint(0, 0)));
    EXPECT_TRUE(saveScreen(*projectMenu, QStringLiteral("bxq_project_menu")));
    projectMenu->hide();
    ASSERT_TRUE(m_window->exportIfc(m_dir.filePath("p.ifc"), &error)) << error.toStdString();
    QFile file(m_dir.filePath("p.ifc"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray text = file.readAll();
    EXPECT_EQ(text.count("=IFCBEAM("), 1);
    EXPECT_TRUE(text.contains("IFCISHAPEPROFILEDEF(.AREA.,'H400*200*8*13',")) << text.constData();
    EXPECT_FALSE(m_window->exportIfc(m_dir.filePath(QStringLiteral("no/such/folder/p.ifc")), &error));
    EXPECT_TRUE(error.contains(QStringLiteral("no/such/folder/p.ifc"))) << error.toStdString();

    bxqtest::ChineseAfterwards chinese;
    ASSERT_TRUE(BXQInstallTranslation(QStringLiteral("en")));
    bxq::BXQMainWindow english;
    ASSERT_TRUE(english.openProject(m_dir.filePath("p.KDB"), &error)) << error.toStdString();
    const QStringList menus = texts(english.menuBar()->actions());
    EXPECT_TRUE(menus.contains("Model") && menus.contains("View")) << menus.join(',').toStdString();
    QMenu* project = english.menuBar()->actions().first()->menu();
    EXPECT_TRUE(texts(project->actions()).contains("Export IFC...")) << texts(project->actions()).join(',').toStdString();
    project->popup(english.mapToGlobal(QPoint(0, 0)));
    EXPECT_TRUE(saveScreen(*project, QStringLiteral("bxq_project_menu_en")));
    project->hide();
    showWindow(english);
    EXPECT_TRUE(saveScreen(english, QStringLiteral("bxq_model_view_en")));
}

TEST_F(ModelView, MouseOrbitsPansAndZoomsTheView) {
    showWindow(*m_window);
    bxq::BXQModelView* view = m_window->modelView();
    if (!view->isDrawing()) GTEST_SKIP() << "no OpenGL here; the screens run drives the mouse";
    const osg::Vec3d head(0, 0, 0), tail(6000, 0, 0);
    const auto span = [&] { return QLineF(view->widgetPointOf(head), view->widgetPointOf(tail)).length(); };
    const auto send = [&](QEvent::Type type, Qt::MouseButton button, const QPoint& at) {
        QMouseEvent event(type, at, view->mapToGlobal(at), button, type == QEvent::MouseButtonRelease ? Qt::NoButton : button,
                          Qt::NoModifier);
        QApplication::sendEvent(view, &event);
        QApplication::processEvents();
    };
    const auto drag = [&](Qt::MouseButton button, const QPoint& by) {
        const QPoint from = view->rect().center();
        send(QEvent::MouseButtonPress, button, from);
        for (int step = 1; step <= 5; ++step) send(QEvent::MouseMove, button, from + by * step / 5);
        send(QEvent::MouseButtonRelease, button, from + by);
    };
    const auto wheel = [&] {
        QWheelEvent event(view->rect().center(), view->mapToGlobal(view->rect().center()), {}, {0, 120}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(view, &event);
        QApplication::processEvents();
    };
    // Left drag orbits and the wheel zooms: the member's projected length changes; middle drag
    // pans: the member moves across the view.
    const std::pair<const char*, std::function<void()>> moves[] = {
        {"orbit", [&] { drag(Qt::LeftButton, {0, 120}); }}, {"pan", [&] { drag(Qt::MiddleButton, {150, 0}); }}, {"zoom", wheel}};
    for (const auto& [move, act] : moves) {
        SCOPED_TRACE(move);
        view->showStandardView(bxq::BXQStandardView::Iso);
        QApplication::processEvents();
        const QPoint before = view->widgetPointOf(head);
        const double spanBefore = span();
        act();
        if (move == std::string("pan")) {
            EXPECT_GT((view->widgetPointOf(head) - before).manhattanLength(), 20);
        } else {
            EXPECT_GT(std::abs(span() - spanBefore), 5);
        }
    }
    EXPECT_TRUE(planes().empty());  // no drag picked or added anything
}
