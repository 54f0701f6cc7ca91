// The face-steel plate dialog driven as a user drives it: the class list, the queued refill of
// the thickness list, locating a given plate, OK without a choice, double-click, cancel, and the
// 6-digit thickness that is both shown and returned.
#include "face_steel/BXQFaceSteelDialog.h"

#include "FaceSteelTable.h"

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "ui/VMPMessageBox.h"
#include "vmp/VMPNDDBManager.h"

#include "support/Screens.h"
#include "support/VisibleTexts.h"
#include "plugin/BXQTranslations.h"

#include <QHeaderView>

#include <gtest/gtest.h>

#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>


namespace {

class FaceSteelDialogTest : public ::testing::Test {
protected:
    void SetUp() override {
        VMPNDDBManager::nddbMgr()->closeAll();
        qputenv("BXQ_DATA_DIR", m_dir.path().toUtf8());
        ndp::CDatabase db;
        ASSERT_TRUE(db.Create(m_dir.filePath("SysInfo.KDB")));
        ndp::CDBTable* table = createFaceSteelTable(db);
        for (const auto& row : {std::make_tuple(1, 20.0, 157.0), std::make_tuple(1, 4.5, 35.325),
                                std::make_tuple(2, 2.0, 15.7), std::make_tuple(2, 3.0, 23.55),
                                std::make_tuple(2, 2.3456789, 18.4136), std::make_tuple(2, 3.0, 99.0)})
            addPlate(table, std::get<0>(row), std::get<1>(row), std::get<2>(row));
        ASSERT_TRUE(db.Flush());
        VMPMessageBox::setAnswerer([this](const VMPMessageBox::Shown& box) {
            m_boxes << box;
            return QMessageBox::Ok;
        });
    }
    void TearDown() override {
        VMPMessageBox::setAnswerer({});
        VMPNDDBManager::nddbMgr()->closeAll();
        qunsetenv("BXQ_DATA_DIR");
    }

    static QTableWidget* table(BXQFaceSteelDialog& dialog, int index) {
        return dialog.findChildren<BXQFaceTableWidget*>().value(index);
    }
    static QPushButton* button(BXQFaceSteelDialog& dialog, const QString& text) {
        for (QPushButton* b : dialog.findChildren<QPushButton*>())
            if (b->text() == text) return b;
        return nullptr;
    }
    static QStringList column(QTableWidget* table, int col) {
        QStringList texts;
        for (int row = 0; row < table->rowCount(); ++row) texts << table->item(row, col)->text();
        return texts;
    }

    QTemporaryDir m_dir;
    QList<VMPMessageBox::Shown> m_boxes;
};

}  // namespace

TEST_F(FaceSteelDialogTest, OpensOnTheFirstClassWithItsThicknessesAndNoneChosen) {
    BXQFaceSteelDialog dialog(nullptr, nullptr);
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("钢板类型库"));
    EXPECT_EQ(dialog.size(), QSize(440, 560));
    QTableWidget* classes = table(dialog, 0);
    QTableWidget* thicknesses = table(dialog, 1);
    ASSERT_TRUE(classes && thicknesses);
    EXPECT_EQ(column(classes, 0), (QStringList{"热轧钢板", "冷轧钢板", "菱形花纹钢板", "扁豆形花纹钢板", "圆豆形花纹钢板"}));
    EXPECT_EQ(classes->currentRow(), 0);
    EXPECT_EQ(column(thicknesses, 0), (QStringList{"20", "4.5"}));
    EXPECT_EQ(column(thicknesses, 1), (QStringList{"157", "35.325"}));
    EXPECT_EQ(thicknesses->currentItem(), nullptr);
    EXPECT_TRUE(button(dialog, QStringLiteral("取消"))->property("isOtherCommandButton").toBool());

    // OK with no plate chosen: the warning, and the dialog stays open.
    dialog.show();
    QTest::mouseClick(button(dialog, QStringLiteral("确定")), Qt::LeftButton);
    ASSERT_EQ(m_boxes.size(), 1);
    EXPECT_EQ(m_boxes[0].kind, QStringLiteral("warning"));
    EXPECT_EQ(m_boxes[0].title, QStringLiteral("提示"));
    EXPECT_EQ(m_boxes[0].text, QStringLiteral("请先选中钢板信息"));
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
}

TEST_F(FaceSteelDialogTest, ClickingAClassRefillsTheThicknessesAfterTheClick) {
    BXQFaceSteelDialog dialog(nullptr, nullptr);
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog));
    QTableWidget* classes = table(dialog, 0);
    QTableWidget* thicknesses = table(dialog, 1);
    const QRect cell = classes->visualItemRect(classes->item(1, 0));
    QTest::mouseClick(classes->viewport(), Qt::LeftButton, Qt::NoModifier, cell.center());
    EXPECT_EQ(column(thicknesses, 0), (QStringList{"20", "4.5"}));  // queued: not yet
    QCoreApplication::processEvents();
    EXPECT_EQ(column(thicknesses, 0), (QStringList{"2", "3", "2.34568", "3"}));
    EXPECT_TRUE(saveScreen(dialog, QStringLiteral("face_steel_dialog")));

    // A double-click on a thickness takes the plate shown, as displayed.
    const QRect row = thicknesses->visualItemRect(thicknesses->item(2, 1));
    QTest::mouseClick(thicknesses->viewport(), Qt::LeftButton, Qt::NoModifier, row.center());
    QTest::mouseDClick(thicknesses->viewport(), Qt::LeftButton, Qt::NoModifier, row.center());
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.getResult().className, QStringLiteral("冷轧钢板"));
    EXPECT_EQ(dialog.getResult().thickness, 2.34568);
}

TEST_F(FaceSteelDialogTest, LocatesAGivenPlate) {
    BXQFaceSteelDialog located(nullptr, QStringLiteral("冷轧钢板"), 3.0, nullptr);
    EXPECT_EQ(table(located, 0)->currentRow(), 1);
    EXPECT_EQ(table(located, 1)->currentRow(), 1);  // the first 3.0
    located.okSlot();
    EXPECT_EQ(located.result(), QDialog::Accepted);
    EXPECT_EQ(located.getResult().thickness, 3.0);
    EXPECT_TRUE(m_boxes.isEmpty());

    BXQFaceSteelDialog unknownThickness(nullptr, QStringLiteral("冷轧钢板"), 7.0, nullptr);
    EXPECT_EQ(table(unknownThickness, 1)->currentRow(), 0);

    BXQFaceSteelDialog unknownClass(nullptr, QStringLiteral("不锈钢板"), 3.0, nullptr);
    EXPECT_EQ(table(unknownClass, 0)->currentItem(), nullptr);
    EXPECT_EQ(table(unknownClass, 1)->rowCount(), 0);
}

TEST_F(FaceSteelDialogTest, CancelKeepsTheResultAndTheQueryUsesTheSameCatalogue) {
    BXQFaceSteelDialog dialog(nullptr, QStringLiteral("热轧钢板"), 20.0, nullptr);
    dialog.cancelSlot();
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
    EXPECT_TRUE(dialog.getResult().className.isEmpty());
    EXPECT_EQ(dialog.getResult().thickness, 0.0);
    EXPECT_EQ(BXQFaceSteelDialog::getFaceSteelQty(QStringLiteral("冷轧钢板"), 3.0), 23.55);  // the first row
    EXPECT_EQ(&BXQFaceSteelDialog::m_oData, &BXQFaceSteelData::m_oData);
    EXPECT_EQ(BXQFaceSteelDialog::defaultFaceInfo().className, QStringLiteral("热轧钢板"));
}

// Last in the file: the translation stays installed for the rest of the process. In English every
// text is English and no header is cut short, while the chosen plate is still returned under the
// class name the host asks quantities by.
TEST_F(FaceSteelDialogTest, SpeaksEnglishAndReturnsTheClassNameTheHostKnows) {
    ASSERT_TRUE(BXQInstallTranslation(QStringLiteral("en")));
    BXQFaceSteelDialog dialog(nullptr, nullptr);
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog));
    EXPECT_EQ(bxqtest::chineseTexts(&dialog), QStringList());
    for (QTableWidget* t : {table(dialog, 0), table(dialog, 1)})
        for (int c = 0; c < t->columnCount(); ++c) {
            const QString header = t->horizontalHeaderItem(c)->text();
            EXPECT_GE(t->horizontalHeader()->sectionSize(c), t->horizontalHeader()->fontMetrics().horizontalAdvance(header))
                << header.toStdString();
        }
    QTableWidget* names = table(dialog, 0);
    for (int row = 0; row < names->rowCount(); ++row)
        EXPECT_GE(names->visualItemRect(names->item(row, 0)).width(),
                  names->fontMetrics().horizontalAdvance(names->item(row, 0)->text()) + 6)
            << names->item(row, 0)->text().toStdString();
    EXPECT_TRUE(saveScreen(dialog, QStringLiteral("face_steel_dialog_en")));
    QTableWidget* classes = table(dialog, 0);
    QTest::mouseClick(classes->viewport(), Qt::LeftButton, Qt::NoModifier,
                      classes->visualItemRect(classes->item(1, 0)).center());
    QCoreApplication::processEvents();
    QTableWidget* thicknesses = table(dialog, 1);
    const QPoint first = thicknesses->visualItemRect(thicknesses->item(0, 0)).center();
    QTest::mouseClick(thicknesses->viewport(), Qt::LeftButton, Qt::NoModifier, first);
    QTest::mouseClick(button(dialog, QStringLiteral("OK")), Qt::LeftButton);
    EXPECT_EQ(dialog.getResult().className, QStringLiteral("冷轧钢板"));
}
