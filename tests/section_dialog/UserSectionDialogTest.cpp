// The dialog of user hot-rolled sections driven by typing: the "(ZDY)" name it stores, the keys
// each field refuses, a size that makes no section, a name that exists, edit mode, and a project
// another writer holds.
#include "section_dialog/SKRUserHotRollingSectionDialog.h"

#include "ndp/NDPDatabase.h"
#include "section_data/SKRHotRollingSectionDBProvider.h"

#include "SectionDialogFixture.h"

#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>

using skr::section::SKRHotRollingSection;

Q_DECLARE_METATYPE(skr::section::SKRHotRollingSection)

namespace {

class UserSectionDialog : public AnsweredBoxesTest {
protected:
    void SetUp() override {
        AnsweredBoxesTest::SetUp();
        m_user = skr::util::FetchInstance<skr::section::SKRUserHotRollingSectionDBProvider>();
        ASSERT_NE(m_user, nullptr);
    }
    // Sets the fields in order: code, size, weight, surface.
    static QList<QLineEdit*> fill(QWidget& dialog, const QStringList& texts) {
        const QList<QLineEdit*> fields = dialog.findChildren<QLineEdit*>();
        for (int i = 0; i < texts.size() && i < fields.size(); ++i) fields[i]->setText(texts[i]);
        return fields;
    }
    void addSection(const wchar_t* name, int type, int sub, double weight = 0, double area = 0) {
        SKRHotRollingSection section;
        section.sectionType = type;
        section.subId = sub;
        section.standardName = name;
        section.weightMeter = weight;
        section.area = area;
        ASSERT_TRUE(m_user->addSection(section));
    }

    skr::section::SKRUserHotRollingSectionDBProvider* m_user = nullptr;
};

}  // namespace

TEST_F(UserSectionDialog, AddsTheTypedSectionWithItsMark) {
    SKRUserHotRollingSectionDialog dialog(9, 1);
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("添加自定义截面"));
    const QList<QLineEdit*> fields = dialog.findChildren<QLineEdit*>();
    ASSERT_EQ(fields.size(), 4);
    EXPECT_EQ(fields[0]->placeholderText(), QStringLiteral("(ZDY)"));
    EXPECT_FALSE(fields[1]->placeholderText().isEmpty());
    EXPECT_EQ(fields[2]->placeholderText(), QStringLiteral("[0,10000)"));
    dialog.show();
    // Digits are refused in the code, letters in the size, a fifth integer digit in the weight.
    const std::pair<QString, QString> typed[] = {
        {"Z9", "Z"}, {"270*80*8*3a", "270*80*8*3"}, {"12345", "1234"}, {"0.7a", "0.7"}};
    for (int i = 0; i < 4; ++i) {
        fields[i]->setFocus();
        QTest::keyClicks(fields[i], typed[i].first);
        EXPECT_EQ(fields[i]->text(), typed[i].second);
    }
    fields[2]->clear();
    QTest::keyClicks(fields[2], QStringLiteral("1234.5"));
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
    const QList<QLineEdit*> fields = fill(bad, {"Z", "270*80", "10"});  // two of four dimensions
    bad.okSlot();
    ASSERT_EQ(m_boxes.size(), 1);
    EXPECT_EQ(m_boxes[0], QStringLiteral("输入的“规格尺寸”有误，请查证。"));
    EXPECT_EQ(bad.result(), QDialog::Rejected);
    EXPECT_EQ(fields[1]->text(), QStringLiteral("270*80"));  // left as typed
    fields[1]->setText(QStringLiteral("270*80*8*0.1"));    // a wall below its range
    bad.okSlot();
    EXPECT_EQ(m_boxes.size(), 2);

    addSection(L"Z300*90*20*3(ZDY)", 9, 2);
    SKRUserHotRollingSectionDialog twice(9, 3);
    fill(twice, {"Z", "300*90*20*3"});
    twice.okSlot();
    ASSERT_EQ(m_boxes.size(), 3);
    EXPECT_EQ(m_boxes[2], QStringLiteral("注：规格名称已存在,请重新输入."));
    EXPECT_EQ(twice.result(), QDialog::Rejected);
}

TEST_F(UserSectionDialog, EditModeShowsTheStoredSectionAndChangesOnlyItsFigures) {
    addSection(L"HW100*100(ZDY)", 7, 9, 17.2, 0.574);
    SKRUserHotRollingSectionDialog dialog(7, 9, QStringLiteral("HW100*100(ZDY)"));
    EXPECT_TRUE(dialog.isEditMode());
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("编辑自定义截面"));
    const QList<QLineEdit*> fields = dialog.findChildren<QLineEdit*>();
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

    addSection(L"HW100*100*6*8(ZDY)", 7, 10, 17.2, 0.574);
    SKRUserHotRollingSectionDialog edit(7, 10, QStringLiteral("HW100*100*6*8(ZDY)"));
    SKRHotRollingSection received;
    edit.setSectionModifyHandler([&received](const SKRHotRollingSection& s) { received = s; });
    edit.findChildren<QLineEdit*>()[2]->setText(QStringLiteral("17.3"));
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
    ASSERT_EQ(fill(dialog, {"Z", "250*75*20*2.5", "10", "0.5"}).size(), 4);
    dialog.okSlot();
    ndp::CDatabase::SetBusyTimeout(wait);
    ASSERT_EQ(m_boxes.size(), 1);
    EXPECT_TRUE(m_boxes[0].contains(QStringLiteral("busy"))) << m_boxes[0].toStdString();
    EXPECT_TRUE(m_boxes[0].contains(project->GetPath())) << m_boxes[0].toStdString();
    other.Close();
    EXPECT_FALSE(m_user->findByName(L"Z250*75*20*2.5(ZDY)").first);
}
