// The dialog of user hot-rolled sections driven by typing: the "(ZDY)" name it stores, the keys
// each field refuses, a size that makes no section, a name that exists, and edit mode.
#include "section_dialog/SKRUserHotRollingSectionDialog.h"
#include "ndp/NDPDatabase.h"

#include "section_data/SKRHotRollingSectionDBProvider.h"
#include "ui/VMPMessageBox.h"

#include "data/ShippedRepository.h"
#include "support/Screens.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

using skr::section::SKRHotRollingSection;

Q_DECLARE_METATYPE(skr::section::SKRHotRollingSection)

namespace {

class UserSectionDialog : public ShippedRepositoryTest {
protected:
    void SetUp() override {
        VMPMessageBox::setAnswerer([this](const VMPMessageBox::Shown& box) {
            m_boxes << box.text;
            return QMessageBox::Ok;
        });
        m_user = skr::util::FetchInstance<skr::section::SKRUserHotRollingSectionDBProvider>();
        ASSERT_NE(m_user, nullptr);
    }
    void TearDown() override { VMPMessageBox::setAnswerer({}); }

    static QList<QLineEdit*> edits(QWidget& dialog) { return dialog.findChildren<QLineEdit*>(); }
    static QPushButton* button(QWidget& dialog, const QString& text) {
        for (QPushButton* b : dialog.findChildren<QPushButton*>())
            if (b->text() == text) return b;
        return nullptr;
    }
    static void type(QLineEdit* edit, const QString& text) {
        edit->setFocus();
        QTest::keyClicks(edit, text);
    }

    skr::section::SKRUserHotRollingSectionDBProvider* m_user = nullptr;
    QStringList m_boxes;
};

}  // namespace

TEST_F(UserSectionDialog, AddsTheTypedSectionWithItsMark) {
    SKRUserHotRollingSectionDialog dialog(9, 1);
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("添加自定义截面"));
    const QList<QLineEdit*> fields = edits(dialog);
    ASSERT_EQ(fields.size(), 4);
    EXPECT_EQ(fields[0]->placeholderText(), QStringLiteral("(ZDY)"));
    EXPECT_FALSE(fields[1]->placeholderText().isEmpty());
    EXPECT_EQ(fields[2]->placeholderText(), QStringLiteral("[0,10000)"));
    dialog.show();
    type(fields[0], QStringLiteral("Z9"));  // digits are refused in the code
    type(fields[1], QStringLiteral("270*80*8*3a"));
    type(fields[2], QStringLiteral("12345"));  // the fifth integer digit is refused
    type(fields[3], QStringLiteral("0.7a"));
    EXPECT_EQ(fields[0]->text(), QStringLiteral("Z"));
    EXPECT_EQ(fields[1]->text(), QStringLiteral("270*80*8*3"));
    EXPECT_EQ(fields[2]->text(), QStringLiteral("1234"));
    fields[2]->clear();
    type(fields[2], QStringLiteral("1234.5"));
    EXPECT_EQ(fields[2]->text(), QStringLiteral("1234.5"));
    EXPECT_TRUE(saveScreen(dialog, QStringLiteral("user_section_dialog")));

    qRegisterMetaType<SKRHotRollingSection>();
    QSignalSpy saved(&dialog, &SKRUserHotRollingSectionDialog::sectionSaved);
    QTest::mouseClick(button(dialog, QStringLiteral("确定")), Qt::LeftButton);
    EXPECT_TRUE(m_boxes.isEmpty()) << m_boxes.join(' ').toStdString();
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    ASSERT_EQ(saved.count(), 1);
    const auto stored = m_user->findByName(L"Z270*80*8*3(ZDY)");
    ASSERT_TRUE(stored.first);
    EXPECT_EQ(stored.second.sectionType, 9);
    EXPECT_EQ(stored.second.weightMeter, 1234.5);
    EXPECT_EQ(stored.second.area, 0.7);
    EXPECT_EQ(stored.second.params.size(), 4u);
}

TEST_F(UserSectionDialog, RefusesASizeThatMakesNoSectionAndANameThatExists) {
    SKRUserHotRollingSectionDialog bad(9, 1);
    QList<QLineEdit*> fields = edits(bad);
    fields[0]->setText(QStringLiteral("Z"));
    fields[1]->setText(QStringLiteral("270*80"));  // two of four dimensions
    fields[2]->setText(QStringLiteral("10"));
    bad.okSlot();
    ASSERT_EQ(m_boxes.size(), 1);
    EXPECT_EQ(m_boxes[0], QStringLiteral("输入的“规格尺寸”有误，请查证。"));
    EXPECT_EQ(bad.result(), QDialog::Rejected);
    EXPECT_EQ(fields[1]->text(), QStringLiteral("270*80"));  // left as typed
    fields[1]->setText(QStringLiteral("270*80*8*0.1"));  // a wall below its range
    bad.okSlot();
    EXPECT_EQ(m_boxes.size(), 2);

    SKRHotRollingSection existing;
    existing.sectionType = 9;
    existing.subId = 2;
    existing.standardName = L"Z300*90*20*3(ZDY)";
    ASSERT_TRUE(m_user->addSection(existing));
    SKRUserHotRollingSectionDialog twice(9, 3);
    fields = edits(twice);
    fields[0]->setText(QStringLiteral("Z"));
    fields[1]->setText(QStringLiteral("300*90*20*3"));
    twice.okSlot();
    ASSERT_EQ(m_boxes.size(), 3);
    EXPECT_EQ(m_boxes[2], QStringLiteral("注：规格名称已存在,请重新输入."));
    EXPECT_EQ(twice.result(), QDialog::Rejected);
}

TEST_F(UserSectionDialog, EditModeShowsTheStoredSectionAndChangesOnlyItsFigures) {
    SKRHotRollingSection stored;
    stored.sectionType = 7;
    stored.subId = 9;
    stored.standardName = L"HW100*100(ZDY)";
    stored.weightMeter = 17.2;
    stored.area = 0.574;
    ASSERT_TRUE(m_user->addSection(stored));
    SKRUserHotRollingSectionDialog dialog(7, 9, QStringLiteral("HW100*100(ZDY)"));
    EXPECT_TRUE(dialog.isEditMode());
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("编辑自定义截面"));
    const QList<QLineEdit*> fields = edits(dialog);
    EXPECT_EQ(fields[0]->text(), QStringLiteral("HW"));
    EXPECT_EQ(fields[1]->text(), QStringLiteral("100*100"));
    EXPECT_EQ(fields[2]->text(), QStringLiteral("17.2"));
    EXPECT_FALSE(fields[0]->isEnabled());
    EXPECT_FALSE(fields[1]->isEnabled());
    bool noteFound = false;
    for (QLabel* label : dialog.findChildren<QLabel*>())
        noteFound |= label->text() == QStringLiteral("注:编辑自定义截面,无法修改截面代号和规格尺寸.");
    EXPECT_TRUE(noteFound);
    // 100*100 is two of the four dimensions of an H: the size check refuses it.
    int calls = 0;
    dialog.setSectionModifyHandler([&calls](const SKRHotRollingSection&) { ++calls; });
    dialog.okSlot();
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(m_boxes.size(), 1);

    SKRHotRollingSection full = stored;
    full.standardName = L"HW100*100*6*8(ZDY)";
    full.subId = 10;
    ASSERT_TRUE(m_user->addSection(full));
    SKRUserHotRollingSectionDialog edit(7, 10, QStringLiteral("HW100*100*6*8(ZDY)"));
    SKRHotRollingSection received;
    edit.setSectionModifyHandler([&received](const SKRHotRollingSection& s) { received = s; });
    edits(edit)[2]->setText(QStringLiteral("17.3"));
    edit.okSlot();
    EXPECT_EQ(edit.result(), QDialog::Accepted);
    EXPECT_EQ(received.standardName, L"HW100*100*6*8(ZDY)");
    EXPECT_EQ(received.weightMeter, 17.3);
    EXPECT_EQ(received.subId, 10);
}

TEST_F(UserSectionDialog, AProjectHeldByAnotherWriterIsSaidBusyNotTakenForANameThatExists) {
    ndp::CDatabase* project = s_model->getProjectDB();
    ASSERT_TRUE(project->Flush());
    ndp::CDatabase other;
    ASSERT_TRUE(other.Open(project->GetPath(), false));
    ASSERT_TRUE(other.BeginTransaction());  // holds the write lock
    const int wait = ndp::CDatabase::GetBusyTimeout();
    ndp::CDatabase::SetBusyTimeout(100);

    SKRUserHotRollingSectionDialog dialog(9, 7);
    const QList<QLineEdit*> fields = edits(dialog);
    ASSERT_EQ(fields.size(), 4);
    fields[0]->setText(QStringLiteral("Z"));
    fields[1]->setText(QStringLiteral("250*75*20*2.5"));
    fields[2]->setText(QStringLiteral("10"));
    fields[3]->setText(QStringLiteral("0.5"));
    dialog.okSlot();
    ndp::CDatabase::SetBusyTimeout(wait);
    ASSERT_EQ(m_boxes.size(), 1);
    EXPECT_TRUE(m_boxes[0].contains(QStringLiteral("busy"))) << m_boxes[0].toStdString();
    EXPECT_TRUE(m_boxes[0].contains(project->GetPath())) << m_boxes[0].toStdString();
    other.Close();
    EXPECT_FALSE(m_user->findByName(L"Z250*75*20*2.5(ZDY)").first);
}
