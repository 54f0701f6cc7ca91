// The face-steel plate catalogue loaded from a system database, its quantity query, and the plate
// dialog driven as a user drives it: the class list, the queued refill of the thickness list,
// locating a given plate, OK without a choice, double-click, cancel, the 6-digit thickness that is
// both shown and returned, and the English interface.
#include "face_steel/BXQFaceSteelDialog.h"

#include "plugin/BXQTranslations.h"
#include "ui/VMPMessageBox.h"
#include "vmp/VMPNDDBManager.h"

#include "support/Screens.h"
#include "support/SmallDatabases.h"
#include "support/VisibleTexts.h"
#include "support/ChineseAfterwards.h"

#include <gtest/gtest.h>

#include <QHeaderView>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString kHot = QStringLiteral("热轧钢板"), kCold = QStringLiteral("冷轧钢板");

// A "FaceSteelInfo" table in BXQ_DATA_DIR/SysInfo.KDB. Class 1 lists 20 mm twice (the first row
// wins), class 2 lists 3 mm twice, class 9 has no name, and one row has no class.
class FaceSteel : public ::testing::Test {
protected:
    void SetUp() override {
        VMPNDDBManager::nddbMgr()->closeAll();
        qputenv("BXQ_DATA_DIR", m_dir.path().toUtf8());
        bxqtest::writePlates(m_dir.filePath("SysInfo.KDB"),
                             {{1, 20.0, 157.0}, {1, 20.0, 999.0}, {1, 4.5, 35.325}, {2, 2.0, 15.7}, {2, 3.0, 23.55},
                              {2, 2.3456789, 18.4136}, {2, 3.0, 99.0}, {3, 2.5, 21.6}, {9, 1.0, 1.0}, {QVariant(), 6.0, 47.1}});
        VMPMessageBox::setAnswerer([this](const VMPMessageBox::Shown& box) {
            m_boxes << box;
            return QMessageBox::Ok;
        });
    }
    void TearDown() override {
        VMPMessageBox::setAnswerer({});
        VMPNDDBManager::nddbMgr()->closeAll();
        qunsetenv("BXQ_DATA_DIR");
        BXQFaceSteelData::m_oClassName.clear();
        BXQFaceSteelData::m_oData.clear();
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
    static void click(QTableWidget* table, int row, int col, bool twice = false) {
        const QPoint at = table->visualItemRect(table->item(row, col)).center();
        QTest::mouseClick(table->viewport(), Qt::LeftButton, Qt::NoModifier, at);
        if (twice) QTest::mouseDClick(table->viewport(), Qt::LeftButton, Qt::NoModifier, at);
    }

    QTemporaryDir m_dir;
    QList<VMPMessageBox::Shown> m_boxes;
};

}  // namespace

TEST_F(FaceSteel, QuantityIsTheFirstRowOfItsClassAndThicknessAndTheDialogLocatesOpensRefillsAndSpeaksEnglish) {
    BXQFaceSteelData::loadData(nullptr);
    BXQFaceSteelData::loadData(nullptr);  // a second load rebuilds rather than appends
    EXPECT_EQ(BXQFaceSteelData::m_oClassName.size(), 5);
    EXPECT_EQ(BXQFaceSteelData::m_oData.value(1).size(), 3);
    EXPECT_EQ(BXQFaceSteelData::m_oData.value(-1).size(), 1);  // the row without a class
    EXPECT_EQ(BXQFaceSteelData::m_oData.value(9).size(), 1);
    const struct { QString cls; double thickness, quantity; } rows[] = {
        {kHot, 20.0, 157.0}, {kHot, 4.5, 35.325}, {QStringLiteral("菱形花纹钢板"), 2.5, 21.6},
        {kHot, 20.0000000001, 0.0}, {kCold, 20.0, 0.0},
        // An unknown class reads class 0: neither the classless row nor the nameless class.
        {QStringLiteral("不锈钢板"), 20.0, 0.0}, {QStringLiteral("不锈钢板"), 6.0, 0.0},
        {QStringLiteral("不锈钢板"), 1.0, 0.0}};
    for (const auto& row : rows)
        EXPECT_EQ(BXQFaceSteelData::getFaceSteelQty(row.cls, row.thickness), row.quantity)
            << row.cls.toStdString() << " " << row.thickness;
    const BXQFaceSteelInfo plate = BXQFaceSteelData::defaultFaceInfo();
    EXPECT_EQ(plate.className, kHot);
    EXPECT_EQ(plate.thickness, 20.0);

    // The dialog locates a given plate; cancel leaves no choice.
    BXQFaceSteelDialog located(nullptr, kCold, 3.0, nullptr);
    EXPECT_EQ(table(located, 0)->currentRow(), 1);
    EXPECT_EQ(table(located, 1)->currentRow(), 1);  // the first 3.0
    located.okSlot();
    EXPECT_EQ(located.result(), QDialog::Accepted);
    EXPECT_EQ(located.getResult().thickness, 3.0);
    EXPECT_TRUE(m_boxes.isEmpty());

    BXQFaceSteelDialog unknownThickness(nullptr, kCold, 7.0, nullptr);
    EXPECT_EQ(table(unknownThickness, 1)->currentRow(), 0);
    BXQFaceSteelDialog unknownClass(nullptr, QStringLiteral("不锈钢板"), 3.0, nullptr);
    EXPECT_EQ(table(unknownClass, 0)->currentItem(), nullptr);
    EXPECT_EQ(table(unknownClass, 1)->rowCount(), 0);

    BXQFaceSteelDialog cancelled(nullptr, kHot, 20.0, nullptr);
    cancelled.cancelSlot();
    EXPECT_EQ(cancelled.result(), QDialog::Rejected);
    EXPECT_TRUE(cancelled.getResult().className.isEmpty());
    EXPECT_EQ(cancelled.getResult().thickness, 0.0);
    // The dialog's own query and default answer from the same catalogue.
    EXPECT_EQ(BXQFaceSteelDialog::getFaceSteelQty(kCold, 3.0), 23.55);
    EXPECT_EQ(BXQFaceSteelDialog::defaultFaceInfo().className, kHot);

    // The dialog opens on the first class with no plate chosen, and OK then warns; clicking a class
    // refills the thicknesses after the click, and a double-click takes the plate as shown.
    BXQFaceSteelDialog dialog(nullptr, nullptr);
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("钢板类型库"));
    EXPECT_EQ(dialog.size(), QSize(440, 560));
    QTableWidget *classes = table(dialog, 0), *thicknesses = table(dialog, 1);
    ASSERT_TRUE(classes && thicknesses);
    EXPECT_EQ(column(classes, 0), (QStringList{kHot, kCold, "菱形花纹钢板", "扁豆形花纹钢板", "圆豆形花纹钢板"}));
    EXPECT_EQ(classes->currentRow(), 0);
    EXPECT_EQ(column(thicknesses, 0), (QStringList{"20", "20", "4.5"}));
    EXPECT_EQ(column(thicknesses, 1), (QStringList{"157", "999", "35.325"}));
    EXPECT_EQ(thicknesses->currentItem(), nullptr);
    EXPECT_TRUE(button(dialog, QStringLiteral("取消"))->property("isOtherCommandButton").toBool());

    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog));
    QTest::mouseClick(button(dialog, QStringLiteral("确定")), Qt::LeftButton);
    ASSERT_EQ(m_boxes.size(), 1);
    EXPECT_EQ((QStringList{m_boxes[0].kind, m_boxes[0].title, m_boxes[0].text}),
              (QStringList{"warning", QStringLiteral("提示"), QStringLiteral("请先选中钢板信息")}));
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(dialog.result(), QDialog::Rejected);

    click(classes, 1, 0);
    EXPECT_EQ(column(thicknesses, 0), (QStringList{"20", "20", "4.5"}));  // queued: not yet
    QCoreApplication::processEvents();
    EXPECT_EQ(column(thicknesses, 0), (QStringList{"2", "3", "2.34568", "3"}));
    EXPECT_TRUE(saveScreen(dialog, QStringLiteral("face_steel_dialog")));
    click(thicknesses, 2, 1, true);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.getResult().className, kCold);
    EXPECT_EQ(dialog.getResult().thickness, 2.34568);  // as displayed

    // Last in the file: the translation stays installed for the rest of the process. In English every
    // text is English and no header is cut short, while the chosen plate is still returned under the
    // class name the host asks quantities by.
    bxqtest::ChineseAfterwards chinese;
    ASSERT_TRUE(BXQInstallTranslation(QStringLiteral("en")));
    BXQFaceSteelDialog english(nullptr, nullptr);
    english.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&english));
    EXPECT_EQ(bxqtest::chineseTexts(&english), QStringList());
    for (QTableWidget* t : {table(english, 0), table(english, 1)})
        for (int c = 0; c < t->columnCount(); ++c) {
            const QString header = t->horizontalHeaderItem(c)->text();
            EXPECT_GE(t->horizontalHeader()->sectionSize(c), t->horizontalHeader()->fontMetrics().horizontalAdvance(header))
                << header.toStdString();
        }
    QTableWidget* names = table(english, 0);
    for (int row = 0; row < names->rowCount(); ++row)
        EXPECT_GE(names->visualItemRect(names->item(row, 0)).width(),
                  names->fontMetrics().horizontalAdvance(names->item(row, 0)->text()) + 6)
            << names->item(row, 0)->text().toStdString();
    EXPECT_TRUE(saveScreen(english, QStringLiteral("face_steel_dialog_en")));
    click(names, 1, 0);
    QCoreApplication::processEvents();
    click(table(english, 1), 0, 0);
    QTest::mouseClick(button(english, QStringLiteral("OK")), Qt::LeftButton);
    EXPECT_EQ(english.getResult().className, kCold);
}
