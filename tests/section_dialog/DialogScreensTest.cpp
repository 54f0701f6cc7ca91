// Every state of the section dialog a user reaches by choosing in its type list, the code table
// and the face-steel dialog, each pictured (BXQ_SCREENS_DIR) in the language BXQ_SCREENS_LANG
// names ("en"; Chinese when unset, file names then without a suffix). Each chosen type must show
// its section in the preview, and the tapered H the depths typed at its two ends.
#include "SectionDialogFixture.h"

#include "face_steel/BXQFaceSteelDialog.h"
#include "plugin/BXQTranslations.h"
#include "section_spec/EnSKRSectionType.h"

#include <QLabel>
#include <QLineEdit>
#include <QPainterPath>

namespace {

QString language() { return qEnvironmentVariable("BXQ_SCREENS_LANG"); }
QString screenName(const QString& name) { return language().isEmpty() ? name : name + QLatin1Char('_') + language(); }

class DialogScreens : public SectionDialogTest {
protected:
    static void SetUpTestSuite() {
        ShippedRepositoryTest::SetUpTestSuite();
        if (!language().isEmpty()) {
            ASSERT_TRUE(BXQInstallTranslation(language()));
        }
    }
};

}  // namespace

TEST_F(DialogScreens, EveryTypeShowsItsSection) {
    const QAbstractItemModel* model = types()->model();
    int chosen = 0;
    for (int row = 0; row < model->rowCount(); ++row)
        for (int column = 0; column < model->columnCount(); ++column) {
            const QModelIndex index = model->index(row, column);
            const int polyId = index.data(Qt::UserRole + 1).toInt();
            if (polyId == 0) continue;
            SCOPED_TRACE(polyId);
            EXPECT_FALSE(index.data(Qt::DecorationRole).value<QPixmap>().isNull()) << "no thumbnail";
            choose(index);
            ++chosen;
            EXPECT_TRUE(saveScreen(*m_dialog, screenName(QStringLiteral("section_type_%1").arg(polyId))));
            // A catalogue type shows its list: its first row chosen shows that row's section.
            if (list()->isVisible() && list()->model()->rowCount() > 0) {
                clickRow(0);
                EXPECT_TRUE(saveScreen(*m_dialog, screenName(QStringLiteral("section_type_%1_row").arg(polyId))));
            }
            if (const SKRSectionPreview* preview = shownPreview()) {
                EXPECT_FALSE(preview->drawnPath().isEmpty()) << "an empty preview";
            }
        }
    EXPECT_GE(chosen, 24);
}

TEST_F(DialogScreens, TheTaperedHShowsTheTypedDepths) {
    chooseType(stWeldedTaperedH);
    ASSERT_NE(editor(), nullptr);
    ASSERT_GE(editor()->lineEditCount(), 2);
    for (const auto& [field, depth] : {std::make_pair(0, QStringLiteral("700")), std::make_pair(1, QStringLiteral("300"))}) {
        QLineEdit* edit = editor()->lineEdit(field);
        edit->setFocus();
        edit->selectAll();
        QTest::keyClicks(edit, depth);
        QTest::keyClick(edit, Qt::Key_Return);
    }
    const SKRSectionPreview* preview = shownPreview();
    ASSERT_NE(preview, nullptr);
    const QList<QPolygonF> ends = preview->drawnPath().toSubpathPolygons();
    ASSERT_EQ(ends.size(), 2);
    EXPECT_NEAR(ends[0].boundingRect().height(), 700, 1e-6);
    EXPECT_NEAR(ends[1].boundingRect().height(), 300, 1e-6);
    EXPECT_TRUE(saveScreen(*m_dialog, screenName(QStringLiteral("section_tapered_h"))));
}

TEST_F(DialogScreens, CodeTableAndFaceSteel) {
    QPushButton* codes = nullptr;  // the code-table button is the one 100 by 23 pixels
    for (QPushButton* button : m_dialog->findChildren<QPushButton*>())
        if (button->size() == QSize(100, 23)) codes = button;
    ASSERT_NE(codes, nullptr);
    QTest::mouseClick(codes, Qt::LeftButton);
    auto* table = m_dialog->findChild<QLabel*>(QStringLiteral("normCodePicture"));
    ASSERT_NE(table, nullptr);
    EXPECT_GT(table->pixmap(Qt::ReturnByValue).height(), 300);
    EXPECT_TRUE(saveScreen(*table->window(), screenName(QStringLiteral("section_code_table"))));

    BXQFaceSteelDialog faceSteel(nullptr, nullptr);
    faceSteel.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&faceSteel));
    EXPECT_TRUE(saveScreen(faceSteel, screenName(QStringLiteral("face_steel_dialog"))));
}
