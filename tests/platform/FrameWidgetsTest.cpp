// The host frame's widgets and boxes: the frame's switches, the table view's selection and
// double-click signals, message boxes answered by a script with their texts, the main window.
#include "ui/VMPMessageBox.h"
#include "ui/VantorFrame.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>

TEST(FrameWidgets, SwitchesTableSignalsBoxesAndTheMainWindow) {
    // A frame that may not resize has no grip, and buttons are not default.
    VantorFrame frame(nullptr, QStringLiteral("frame"));
    frame.setResizeEnabled(false);
    EXPECT_FALSE(frame.isSizeGripEnabled());
    EXPECT_FALSE(VantorPushButton(QStringLiteral("确定")).autoDefault());  // Return in a line edit must not press it

    // The table view reports selection and double clicks.
    QStandardItemModel model(3, 2);
    for (int row = 0; row < 3; ++row) model.setItem(row, 0, new QStandardItem(QStringLiteral("I%1").arg(row)));
    BXQVantorTableView view;
    view.setModel(&model);
    view.resize(300, 200);
    view.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
    QSignalSpy selected(&view, &BXQVantorTableView::selectTableView);
    QSignalSpy doubled(&view, &BXQVantorTableView::tableViewDoubleClicked);

    view.selectRow(1);
    ASSERT_EQ(selected.count(), 1);
    EXPECT_TRUE(selected.takeFirst().at(0).toBool());
    view.clearSelection();
    ASSERT_EQ(selected.count(), 1);
    EXPECT_FALSE(selected.takeFirst().at(0).toBool());

    const QRect cell = view.visualRect(model.index(2, 0));
    // An item view takes a double click only after the press of the first click.
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, cell.center());
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, cell.center());
    ASSERT_EQ(doubled.count(), 1);
    EXPECT_EQ(doubled.takeFirst().at(0).toModelIndex().row(), 2);

    // Boxes are answered by the answerer with their texts, and the main window is forgotten when it goes.
    QList<VMPMessageBox::Shown> shown;
    VMPMessageBox::setAnswerer([&shown](const VMPMessageBox::Shown& box) {
        shown << box;
        return box.kind == QLatin1String("information") ? QMessageBox::Cancel : QMessageBox::Ok;
    });
    auto* window = new QWidget;
    BXQCommon::setMainWindow(window);
    EXPECT_EQ(VMPMessageBox::information(BXQCommon::getMainWindow(), QStringLiteral("提示"), QStringLiteral("删除?"),
                                         QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Ok),
              QMessageBox::Cancel);
    EXPECT_EQ(VMPMessageBox::warning(nullptr, QStringLiteral("提示"), QStringLiteral("请先选中钢板信息")), QMessageBox::Ok);
    EXPECT_EQ(vmp::confirmDlg(QStringLiteral("截面规格输入错误"), 5, window), QMessageBox::Ok);
    VMPMessageBox::setAnswerer({});
    ASSERT_EQ(shown.size(), 3);
    EXPECT_EQ(shown[0].text, QStringLiteral("删除?"));
    EXPECT_EQ(shown[0].buttons, QMessageBox::Ok | QMessageBox::Cancel);
    EXPECT_EQ(shown[1].kind, QStringLiteral("warning"));
    EXPECT_EQ(shown[2].kind, QStringLiteral("confirm"));
    EXPECT_EQ(shown[2].text, QStringLiteral("截面规格输入错误"));

    EXPECT_EQ(BXQCommon::getMainWindow(), window);
    delete window;
    EXPECT_EQ(BXQCommon::getMainWindow(), nullptr);
}
