// The bxq gui window as a user drives it: the project it creates, a section and a plate chosen
// in the library's dialogs and shown with their figures, the project's own sections listed, and
// closing with unsaved changes asking first.
#include "app/window/BXQMainWindow.h"

#include "face_steel/BXQFaceSteelDialog.h"
#include "section_data/SKRHotRollingSectionDBProvider.h"
#include "section_dialog/SKRSectionPolyDialog.h"
#include "section_spec/SKRSectionPolyInfoParser.h"
#include "ui/VMPMessageBox.h"

#include "section_spec/QtPrinters.h"
#include "support/Screens.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFileInfo>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <functional>

namespace {

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

    QTemporaryDir m_dir;
    std::unique_ptr<bxq::BXQMainWindow> m_window;
    QStringList m_boxes;
    QMessageBox::StandardButton m_answer = QMessageBox::Cancel;
};

}  // namespace

TEST_F(MainWindow, ShowsTheRecordsTheDialogsReturn) {
    EXPECT_TRUE(QFileInfo::exists(m_dir.filePath("p.KDB")));
    whileModal<SKRSectionPolyDialog>([](SKRSectionPolyDialog& dialog) {
        dialog.setParameter(parse(QStringLiteral("I20a")));
        dialog.accept();
    });
    m_window->openSectionLibrary();
    ASSERT_EQ(m_window->sectionRecords()->rowCount(), 1);
    EXPECT_EQ(row(m_window->sectionRecords(), 0), (QStringList{"热轧工字钢", "I20a", "50, 100", "27.900", "0.7420"}));

    whileModal<BXQFaceSteelDialog>([](BXQFaceSteelDialog& dialog) {
        auto* thicknesses = dialog.findChildren<QTableWidget*>().value(1);
        thicknesses->setCurrentCell(2, 0);
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
}

TEST_F(MainWindow, ClosingWithUnsavedSectionsAsksAndSavesOnRequest) {
    EXPECT_FALSE(m_window->isModified());
    skr::section::SKRHotRollingSection section;
    section.sectionType = 9;
    section.subId = 1;
    section.standardName = L"Z9*9*2*1(ZDY)";
    auto* user = skr::util::FetchInstance<skr::section::SKRUserHotRollingSectionDBProvider>();
    ASSERT_TRUE(user->addSection(section));
    EXPECT_TRUE(m_window->isModified());
    // The list follows the project after the next dialog.
    whileModal<SKRSectionPolyDialog>([](SKRSectionPolyDialog& dialog) { dialog.reject(); });
    m_window->openSectionLibrary();
    ASSERT_EQ(m_window->userSections()->rowCount(), 1);
    EXPECT_EQ(m_window->userSections()->item(0, 0)->text(), QStringLiteral("Z9*9*2*1(ZDY)"));

    m_window->show();
    m_answer = QMessageBox::Cancel;
    EXPECT_FALSE(m_window->close());
    EXPECT_EQ(m_boxes, QStringList{QStringLiteral("项目已修改，是否保存？")});
    m_answer = QMessageBox::Save;
    EXPECT_TRUE(m_window->close());
    EXPECT_FALSE(m_window->isModified());
    EXPECT_EQ(m_boxes.size(), 2);
}
