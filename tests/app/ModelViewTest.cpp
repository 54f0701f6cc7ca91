// The bxq gui window's 3D view as a user drives it: members added from a section, cutting planes
// added at picked points, moved and deleted, each step undone and redone with the view following;
// clicks on planes toggling their selection. Under Xvfb the view draws and its picture is checked.
#include "app/view/BXQModelScene.h"
#include "app/window/BXQMainWindow.h"
#include "plugin/BXQTranslations.h"

#include "ndp/NDPDatabase.h"
#include "solid_split/SKRCuttingPlaneStore.h"
#include "ui/VMPMessageBox.h"
#include "vmp/VMPCmdLogTool.h"
#include "vmp/VMPMembers.h"

#include "support/Screens.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QMenu>
#include <QLabel>
#include <QMenuBar>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QLineF>
#include <QMouseEvent>
#include <QTest>
#include <QWheelEvent>

#include <functional>

#include <vector>

namespace {

using skr::split::CuttingPlaneRecord;

class ModelView : public ::testing::Test {
protected:
    void SetUp() override {
        qputenv("BXQ_DATA_DIR", BXQ_SHIPPED_DATA_DIR);
        VMPMessageBox::setAnswerer([](const VMPMessageBox::Shown&) { return QMessageBox::Cancel; });
        m_window = std::make_unique<bxq::BXQMainWindow>();
        QString error;
        ASSERT_TRUE(m_window->openProject(m_dir.filePath("p.KDB"), &error)) << error.toStdString();
        ASSERT_TRUE(m_window->addMember(QStringLiteral("H400*200*8*13"), {0, 0, 0}, {6000, 0, 0}, &error))
            << error.toStdString();
        m_member = members().at(0).id;
    }
    void TearDown() override {
        m_window.reset();
        VMPMessageBox::setAnswerer({});
    }
    std::vector<VMPMember> members() const {
        std::vector<VMPMember> rows;
        VMPReadMembers(db(), rows, nullptr);
        return rows;
    }
    ndp::CDatabase* db() const { return VMPCmdLogTool::getInstance()->database(); }
    std::vector<CuttingPlaneRecord> planes() const {
        std::vector<CuttingPlaneRecord> rows;
        skr::split::ReadCuttingPlaneRecords(db(), -1, rows, nullptr);
        return rows;
    }
    // The records as the table has them and as the view shows them must agree.
    std::vector<std::int64_t> shownPlanes() const { return m_window->modelScene()->planes().DisplayedRecords(); }
    static std::vector<std::int64_t> ids(const std::vector<CuttingPlaneRecord>& rows) {
        std::vector<std::int64_t> out;
        for (const auto& r : rows) out.push_back(r.id);
        return out;
    }
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
    void showWindow() {
        m_window->resize(1280, 760);
        m_window->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(m_window.get()));
        QApplication::processEvents();
    }
    bool selected(std::int64_t record) const { return m_window->modelScene()->planes().IsSelected(record); }

    QTemporaryDir m_dir;
    std::unique_ptr<bxq::BXQMainWindow> m_window;
    std::int64_t m_member = -1;
};

osg::Vec3d toOsg(const ndp::CVector3& v) { return {v[0], v[1], v[2]}; }

}  // namespace

TEST_F(ModelView, PlanesAddedAtPickedPointsMovedDeletedAndUndone) {
    QString error;
    // Near the head the plane's normal points along the axis, near the tail back along it.
    struct Case {
        ndp::CVector3 point;
        bool tail;
        double normalX;
    };
    for (const Case& c : {Case{{500, 0, 100}, false, 1.0}, Case{{5800, 50, 0}, true, -1.0}}) {
        ASSERT_TRUE(m_window->addCuttingPlaneAt(m_member, c.point, &error)) << error.toStdString();
        const CuttingPlaneRecord added = planes().back();
        EXPECT_EQ(added.isTail, c.tail);
        EXPECT_EQ(m_window->selectedPlane(), added.id);
        const auto s = shape(added.id);
        EXPECT_NEAR(s.normal[0], c.normalX, 1e-9);
        EXPECT_NEAR(s.centre[0], c.point[0], 1e-6);
        // A plane on the cut face: the face of H400x200 and the margin.
        EXPECT_NEAR(s.width * s.height, 500.0 * 700.0, 1e-6);
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
    m_window->undo();
    m_window->undo();
    EXPECT_TRUE(planes().empty());
    EXPECT_TRUE(shownPlanes().empty());
    m_window->redo();
    EXPECT_EQ(shownPlanes(), std::vector<std::int64_t>{twoPlanes[0].id});
    // Undoing the member takes it out of the view as well.
    m_window->undo();
    m_window->undo();
    EXPECT_TRUE(members().empty());
    EXPECT_EQ(m_window->modelScene()->memberCount(), 0);
    m_window->redo();
    EXPECT_EQ(m_window->modelScene()->memberCount(), 1);
}

TEST_F(ModelView, RefusedInputChangesNothing) {
    QString error;
    EXPECT_FALSE(m_window->addMember(QStringLiteral("NOSUCH"), {0, 0, 0}, {1000, 0, 0}, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("NOSUCH"))) << error.toStdString();
    EXPECT_FALSE(m_window->addMember(QStringLiteral("H400*200*8*13"), {5, 5, 5}, {5, 5, 5}, &error));
    EXPECT_FALSE(m_window->addCuttingPlaneAt(m_member + 7, {0, 0, 0}, &error));
    EXPECT_TRUE(error.contains(QString::number(m_member + 7))) << error.toStdString();
    EXPECT_FALSE(m_window->moveSelectedPlane(10.0, &error));
    EXPECT_EQ(members().size(), 1u);
    EXPECT_TRUE(planes().empty());
    // The last logged step is still the member.
    m_window->undo();
    EXPECT_TRUE(members().empty());
}

TEST_F(ModelView, ClicksToggleAPlaneAloneAndAddPlanesOnMembers) {
    QString error;
    ASSERT_TRUE(m_window->addCuttingPlaneAt(m_member, {1000, 0, 0}, &error)) << error.toStdString();
    ASSERT_TRUE(m_window->addCuttingPlaneAt(m_member, {5000, 0, 0}, &error)) << error.toStdString();
    const std::int64_t head = planes()[0].id, tail = planes()[1].id;
    showWindow();
    // Without OpenGL a text stands where the view would draw.
    auto* placeholder = m_window->findChild<QLabel*>(QStringLiteral("viewPlaceholder"));
    ASSERT_NE(placeholder, nullptr);
    EXPECT_EQ(placeholder->isVisible(), !m_window->modelView()->isVisible());
    EXPECT_EQ(m_window->modelView()->isVisible(), bxq::BXQModelView::openGLAvailable());
    m_window->modelScene()->clearSelection();
    // Seen from the right the tail plane lies on the member's cut end face: the plane is picked.
    m_window->modelView()->showStandardView(bxq::BXQStandardView::Right);
    const osg::Vec3d tailCentre = toOsg(shape(tail).centre);
    EXPECT_EQ(m_window->modelView()->pickAt(m_window->modelView()->widgetPointOf(tailCentre)).kind, bxq::BXQPick::Plane);
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
    m_window->modelView()->showStandardView(bxq::BXQStandardView::Iso);
    auto* addPlane = m_window->findChild<QAction*>(QStringLiteral("addPlane"));
    ASSERT_NE(addPlane, nullptr);
    addPlane->setChecked(true);
    const bxq::BXQPick onMember = m_window->modelView()->pickAt(m_window->modelView()->widgetPointOf({2500, 0, 0}));
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
    m_window->modelView()->showStandardView(bxq::BXQStandardView::Iso);
    QApplication::processEvents();
    if (m_window->modelView()->isDrawing()) {
        const QImage picture = m_window->modelView()->grabFramebuffer();
        int blue = 0, yellow = 0;
        for (int y = 0; y < picture.height(); y += 2)
            for (int x = 0; x < picture.width(); x += 2) {
                const QColor c = picture.pixelColor(x, y);
                if (c.blue() > 150 && c.blue() > c.red() + 100 && c.blue() > c.green() + 80) ++blue;
                if (c.red() > 150 && c.green() > 130 && c.blue() < 60) ++yellow;
            }
        EXPECT_GT(blue, 100);
        EXPECT_GT(yellow, 200);
    }
    EXPECT_TRUE(saveScreen(*m_window, QStringLiteral("bxq_model_view")));
}

TEST_F(ModelView, ExportsTheProjectAsIfcFromTheProjectMenu) {
    QAction* exportAction = nullptr;
    QMenu* projectMenu = nullptr;
    for (QAction* action : m_window->menuBar()->actions())
        for (QAction* item : action->menu() ? action->menu()->actions() : QList<QAction*>())
            if (item->text() == QStringLiteral("导出 IFC...")) exportAction = item, projectMenu = action->menu();
    ASSERT_NE(exportAction, nullptr);
    projectMenu->popup(m_window->mapToGlobal(QPoint(0, 0)));
    EXPECT_TRUE(saveScreen(*projectMenu, QStringLiteral("bxq_project_menu")));
    projectMenu->hide();
    QString error;
    const QString path = m_dir.filePath(QStringLiteral("p.ifc"));
    ASSERT_TRUE(m_window->exportIfc(path, &error)) << error.toStdString();
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray text = file.readAll();
    EXPECT_EQ(text.count("=IFCBEAM("), 1);
    EXPECT_TRUE(text.contains("IFCISHAPEPROFILEDEF(.AREA.,'H400*200*8*13',")) << text.constData();
    EXPECT_FALSE(m_window->exportIfc(m_dir.filePath(QStringLiteral("no/such/folder/p.ifc")), &error));
    EXPECT_TRUE(error.contains(QStringLiteral("no/such/folder/p.ifc"))) << error.toStdString();
}

TEST_F(ModelView, SpeaksEnglishInItsModelCommands) {
    ASSERT_TRUE(BXQInstallTranslation(QStringLiteral("en")));
    bxq::BXQMainWindow english;
    QString error;
    ASSERT_TRUE(english.openProject(m_dir.filePath("p.KDB"), &error)) << error.toStdString();
    QStringList menus;
    for (QAction* action : english.menuBar()->actions()) menus << action->text();
    EXPECT_TRUE(menus.contains("Model")) << menus.join(',').toStdString();
    EXPECT_TRUE(menus.contains("View")) << menus.join(',').toStdString();
    QMenu* project = english.menuBar()->actions().first()->menu();
    QStringList projectItems;
    for (QAction* action : project->actions()) projectItems << action->text();
    EXPECT_TRUE(projectItems.contains("Export IFC...")) << projectItems.join(',').toStdString();
    project->popup(english.mapToGlobal(QPoint(0, 0)));
    EXPECT_TRUE(saveScreen(*project, QStringLiteral("bxq_project_menu_en")));
    project->hide();
    english.resize(1280, 760);
    english.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&english));
    QApplication::processEvents();
    EXPECT_TRUE(saveScreen(english, QStringLiteral("bxq_model_view_en")));
}

TEST_F(ModelView, MouseOrbitsPansAndZoomsTheView) {
    showWindow();
    bxq::BXQModelView* view = m_window->modelView();
    if (!view->isDrawing()) GTEST_SKIP() << "no OpenGL here; the screens run drives the mouse";
    view->showStandardView(bxq::BXQStandardView::Front);
    QApplication::processEvents();
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
    const struct {
        const char* what;
        std::function<void()> act;
        std::function<bool(QPoint, QPoint, double)> changed;  // head before, head after, span before
    } moves[] = {
        {"left drag orbits: the member turns, its projected length changes",
         [&] { drag(Qt::LeftButton, {0, 120}); }, [&](QPoint, QPoint, double before) { return std::abs(span() - before) > 5; }},
        {"middle drag pans: the member moves across the view",
         [&] { drag(Qt::MiddleButton, {150, 0}); }, [&](QPoint a, QPoint b, double) { return (b - a).manhattanLength() > 20; }},
        {"the wheel zooms: the member looks longer or shorter",
         [&] {
             QWheelEvent wheel(view->rect().center(), view->mapToGlobal(view->rect().center()), {}, {0, 120}, Qt::NoButton,
                               Qt::NoModifier, Qt::NoScrollPhase, false);
             QApplication::sendEvent(view, &wheel);
             QApplication::processEvents();
         },
         [&](QPoint, QPoint, double before) { return std::abs(span() - before) > 5; }},
    };
    for (const auto& move : moves) {
        SCOPED_TRACE(move.what);
        view->showStandardView(bxq::BXQStandardView::Iso);
        QApplication::processEvents();
        const QPoint before = view->widgetPointOf(head);
        const double spanBefore = span();
        move.act();
        EXPECT_TRUE(move.changed(before, view->widgetPointOf(head), spanBefore));
    }
    // No drag picked or added anything.
    EXPECT_TRUE(planes().empty());
}
