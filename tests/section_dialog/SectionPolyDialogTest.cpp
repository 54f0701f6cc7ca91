// The section library dialog driven as a user drives it: choosing groups and types, filtering
// the catalogue by typing (Chinese text as input-method commits), validator refusals, the
// restriction and rule messages, accepting by OK and by double-click, positioning on a parsed
// section, and adding and deleting user sections with undo. The dialog of user hot-rolled sections
// it opens, driven by typing: the "(ZDY)" name it stores, the keys each field refuses, a size that
// makes no section, a name that exists, edit mode, and a project another writer holds.
#include "SectionDialogFixture.h"

#include "section_dialog/SKRUserHotRollingSectionDialog.h"

#include "plugin/BXQTranslations.h"
#include "section_data/SKRHotRollingSectionDBProvider.h"
#include "section_data/SKRSectionDbOperation.h"
#include "ndp/NDPDatabase.h"
#include "section_geometry/SKRSectionPolygonParser.h"
#include "section_spec/QtPrinters.h"
#include "section_spec/SKRPolyParamManger.h"
#include "section_spec/SKRSectionTypeTable.h"
#include "vmp/VMPCmdLogTool.h"
#include "vmp/VMPUserTrace.h"

#include "support/VisibleTexts.h"
#include "support/ChineseAfterwards.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QInputMethodEvent>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTimer>

using skr::section::SKRHotRollingSection;
using SectionPolyDialog = SectionDialogTest;

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

    skr::section::SKRUserHotRollingSectionDBProvider* m_user = nullptr;
};

// Stores a user section through the registered provider, as the add dialog would.
void addSection(const wchar_t* name, int type, int sub, double weight = 0, double area = 0) {
    const SKRHotRollingSection section{type, sub, name, weight, area, {}};
    ASSERT_TRUE(skr::util::FetchInstance<skr::section::SKRUserHotRollingSectionDBProvider>()->addSection(section));
}

}  // namespace

TEST_F(UserSectionDialog, AddsTheTypedSectionWithItsMarkSaysTheProjectIsBusyRefusesBadInputAndEdits) {
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
    const SKRHotRollingSection& row = stored.second;
    EXPECT_EQ(std::make_tuple(row.sectionType, row.weightMeter, row.area, row.params.size()),
              std::make_tuple(9, 1234.5, 0.7, size_t{4}));

    // A project held by another writer is said busy, not taken for a name that exists.
    ndp::CDatabase* project = s_model->getProjectDB();
    ASSERT_TRUE(project->Flush());
    ndp::CDatabase other;
    ASSERT_TRUE(other.Open(project->GetPath(), false));
    ASSERT_TRUE(other.BeginTransaction());  // holds the write lock
    const int wait = ndp::CDatabase::GetBusyTimeout();
    ndp::CDatabase::SetBusyTimeout(100);
    SKRUserHotRollingSectionDialog busy(9, 7);
    ASSERT_EQ(fill(busy, {"Z", "250*75*20*2.5", "10", "0.5"}).size(), 4);
    busy.okSlot();
    ndp::CDatabase::SetBusyTimeout(wait);
    ASSERT_EQ(m_boxes.size(), 1);
    EXPECT_TRUE(m_boxes[0].contains(QStringLiteral("busy"))) << m_boxes[0].toStdString();
    EXPECT_TRUE(m_boxes[0].contains(project->GetPath())) << m_boxes[0].toStdString();
    other.Close();
    EXPECT_FALSE(m_user->findByName(L"Z250*75*20*2.5(ZDY)").first);

    // A size that makes no section and a name that exists are refused; edit mode changes only the
    // figures. The messages are counted from here.
    m_boxes.clear();
    SKRUserHotRollingSectionDialog bad(9, 1);
    const QList<QLineEdit*> badFields = fill(bad, {"Z", "270*80", "10"});  // two of four dimensions
    bad.okSlot();
    ASSERT_EQ(m_boxes.size(), 1);
    EXPECT_EQ(m_boxes[0], QStringLiteral("输入的“规格尺寸”有误，请查证。"));
    EXPECT_EQ(bad.result(), QDialog::Rejected);
    EXPECT_EQ(badFields[1]->text(), QStringLiteral("270*80"));  // left as typed
    badFields[1]->setText(QStringLiteral("270*80*8*0.1"));  // a wall below its range
    bad.okSlot();
    EXPECT_EQ(m_boxes.size(), 2);

    addSection(L"Z300*90*20*3(ZDY)", 9, 2);
    SKRUserHotRollingSectionDialog twice(9, 3);
    fill(twice, {"Z", "300*90*20*3"});
    twice.okSlot();
    ASSERT_EQ(m_boxes.size(), 3);
    EXPECT_EQ(m_boxes[2], QStringLiteral("注：规格名称已存在,请重新输入."));
    EXPECT_EQ(twice.result(), QDialog::Rejected);

    // Edit mode shows the stored section and changes only its figures.
    addSection(L"HW100*100(ZDY)", 7, 9, 17.2, 0.574);
    SKRUserHotRollingSectionDialog editing(7, 9, QStringLiteral("HW100*100(ZDY)"));
    EXPECT_TRUE(editing.isEditMode());
    EXPECT_EQ(editing.windowTitle(), QStringLiteral("编辑自定义截面"));
    const QList<QLineEdit*> shown = editing.findChildren<QLineEdit*>();
    const QStringList storedTexts{"HW", "100*100", "17.2"};
    for (int i = 0; i < storedTexts.size(); ++i) EXPECT_EQ(shown[i]->text(), storedTexts[i]) << i;
    EXPECT_FALSE(shown[0]->isEnabled());
    EXPECT_FALSE(shown[1]->isEnabled());
    bool noteFound = false;
    for (QLabel* label : editing.findChildren<QLabel*>())
        noteFound |= label->text() == QStringLiteral("注:编辑自定义截面,无法修改截面代号和规格尺寸.");
    EXPECT_TRUE(noteFound);
    // 100*100 is two of the four dimensions of an H: the size check refuses it.
    int calls = 0;
    editing.setSectionModifyHandler([&calls](const SKRHotRollingSection&) { ++calls; });
    editing.okSlot();
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(m_boxes.size(), 4);

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

TEST_F(SectionPolyDialog, OpensWithGroupsAsPicturesAndTheLibraryLayoutAndFiltersTypedText) {
    EXPECT_EQ(m_dialog->windowTitle(), QStringLiteral("截面库"));
    EXPECT_FALSE(m_dialog->isMoveEnabled());
    EXPECT_EQ(VMPUserTrace::lastEntry(), QStringLiteral("用户操作记录: 打开截面库"));
    auto* view = types();
    const QModelIndex title = view->model()->index(0, 0);
    EXPECT_EQ(title.data().toString(), QStringLiteral("型钢截面"));
    EXPECT_EQ(view->columnSpan(0, 0), view->model()->columnCount());
    const QModelIndex first = view->model()->index(1, 0);
    EXPECT_EQ(first.data().toString(), QStringLiteral("热轧工字钢"));

    EXPECT_EQ(child<QLineEdit>(QStringLiteral("filterEdit"))->placeholderText(), QStringLiteral("快速搜索，如:C 200*70*20*2"));
    auto* single = m_dialog->findChild<QCheckBox*>();
    EXPECT_EQ(single->text(), QStringLiteral("单构件输入"));
    EXPECT_FALSE(single->isChecked());
    EXPECT_FALSE(button(QStringLiteral("查看截面样式"))->isEnabled());
    EXPECT_TRUE(button(QStringLiteral("取消"))->property("isOtherCommandButton").toBool());

    chooseType(stI);
    EXPECT_TRUE(saveScreen(*m_dialog, QStringLiteral("section_dialog_catalogue")));

    // Typed text filters the catalogue, but Chinese text shows everything.
    const int all = list()->model()->rowCount();
    ASSERT_GT(all, 20);
    for (const QString& name : listedNames()) EXPECT_TRUE(name.startsWith(QLatin1Char('I'))) << name.toStdString();
    auto* filter = child<QLineEdit>(QStringLiteral("filterEdit"));
    QTest::mouseClick(filter, Qt::LeftButton);
    EXPECT_TRUE(filter->placeholderText().isEmpty());
    QTest::keyClicks(filter, QStringLiteral("i20"));  // case-insensitive
    EXPECT_EQ(listedNames(), (QStringList{"I20a", "I20b"}));
    QInputMethodEvent chinese;
    chinese.setCommitString(QStringLiteral("工字"));
    QApplication::sendEvent(filter, &chinese);
    EXPECT_EQ(filter->text(), QStringLiteral("i20工字"));
    EXPECT_EQ(list()->model()->rowCount(), all);
    filter->clear();
    EXPECT_EQ(filter->placeholderText(), QStringLiteral("快速搜索，如:C 200*70*20*2"));

    // Whether a text is free of Chinese: the range ends at U+9FA5 on both sides.
    const std::pair<QString, bool> codes[] = {{"", true}, {"C 200*70", true}, {"a\u4E00", false}, {"\u9FA5", false},
                                              {"\u9FA6\u4DFF", true}};
    for (const auto& code : codes) EXPECT_EQ(SKRSectionPolyDialog::isChineseCode(code.first), code.second) << code.first.toStdString();
}

// The default section is the one a double-click on I20a returns; asked for without a dialog, it
// sets the repository up when the host has not.
TEST_F(SectionPolyDialog, DoubleClickOnACatalogueRowAcceptsItAndI20aIsTheDefault) {
    chooseType(stI);
    EXPECT_FALSE(button(QStringLiteral("编辑自定义截面"))->isEnabled());
    clickRow(rowOf(QStringLiteral("I20a")));
    EXPECT_TRUE(button(QStringLiteral("查看截面样式"))->isEnabled());
    clickRow(rowOf(QStringLiteral("I20a")), true);
    EXPECT_EQ(m_dialog->QDialog::result(), QDialog::Accepted);
    EXPECT_TRUE(m_boxes.isEmpty());
    EXPECT_EQ(m_dialog->selectionKind(), 1);
    EXPECT_EQ(m_dialog->result().paramManager, nullptr);
    const auto info = m_dialog->getSelSectionInfo();
    EXPECT_NE(info.specificationKey, 0);
    EXPECT_DOUBLE_EQ(info.insertPointX, 50);
    EXPECT_GT(info.weightPerMetre, 27);
    EXPECT_DOUBLE_EQ(info.surfacePerMetre, SKRSectionPolyDialog::getAPMByNorm(QStringLiteral("I20a")));

    m_dialog.reset();
    delete skr::util::FetchInstance<skr::section::SectionRepository>();
    skr::UninitBXQSteelRepository();
    ASSERT_EQ(skr::util::FetchInstance<skr::section::SKRHotRollingSectionDBProvider>(), nullptr);
    const auto fresh = SKRSectionPolyDialog::defaultSectionInfo(s_model);
    EXPECT_NE(skr::util::FetchInstance<skr::section::SectionRepository>(), nullptr);
    for (const auto& i : {info, fresh}) {
        EXPECT_EQ(i.typeName, QStringLiteral("热轧工字钢"));
        EXPECT_EQ(i.specification, QStringLiteral("I20a"));
        EXPECT_DOUBLE_EQ(i.weightPerMetre, SKRSectionPolyDialog::getWPMByNorm(QStringLiteral("I20a")));
        EXPECT_DOUBLE_EQ(i.insertPointY, 100);
    }
}

// Restricted to welded H, the dialog names the accepted types once and refuses a catalogue I.
TEST_F(SectionPolyDialog, WeldedParametersAreValidatedCheckedAndReturnedWhereOnlyTheyAreAccepted) {
    m_dialog->setAcceptSectionalType({stWeldedH, stWeldedH}, QStringLiteral("柱截面"));
    const QString refusal = QStringLiteral("仅支持柱截面为“焊接H型钢”,请选择“焊接H型钢”截面");
    EXPECT_EQ(m_dialog->acceptMessage(), refusal);
    chooseType(stI);
    clickRow(rowOf(QStringLiteral("I20a")), true);
    ASSERT_EQ(m_boxes, QStringList{refusal});
    EXPECT_TRUE(m_dialog->isVisible());
    chooseType(stWeldedH);
    SKRParamEditor* params = editor();
    ASSERT_GE(params->lineEditCount(), 4);
    QLineEdit* h = params->lineEdit(0);
    h->setFocus();
    h->clear();
    QTest::keyClicks(h, QStringLiteral("."));  // a leading point is refused
    EXPECT_TRUE(h->text().isEmpty());
    EXPECT_TRUE(params->message().startsWith(QStringLiteral("h:请输入"))) << params->message().toStdString();
    QTest::keyClicks(h, QStringLiteral("400"));
    QTest::keyClick(h, Qt::Key_Return);  // Return moves to the next field
    EXPECT_EQ(m_dialog->focusWidget(), params->lineEdit(1));
    EXPECT_TRUE(saveScreen(*m_dialog, QStringLiteral("section_dialog_welded")));

    // A web as wide as the flange fails the norm's rule b>tw: the dialog says so and stays open.
    params->lineEdit(1)->setText(QStringLiteral("8"));
    click(QStringLiteral("确定"));
    ASSERT_EQ(m_boxes.size(), 2);
    EXPECT_TRUE(m_dialog->isVisible());
    params->lineEdit(1)->setText(QStringLiteral("300"));
    params->editingFinish(1);
    EXPECT_EQ(params->hint(), QStringLiteral("规格示例：H400*300*8*13*13"));  // what the figures make
    params->lineEdit(1)->setText(QStringLiteral("200"));
    params->editingFinish(1);
    click(QStringLiteral("确定"));
    EXPECT_EQ(m_boxes.size(), 2) << m_boxes.join(' ').toStdString();
    EXPECT_EQ(m_dialog->QDialog::result(), QDialog::Accepted);
    const SKRSectionPolyDlgResult result = m_dialog->result();
    EXPECT_EQ(result.paramManager, m_dialog->polyParamManager());
    EXPECT_FALSE(result.singleMemberInput);
    const auto info = m_dialog->getSelSectionInfo();
    EXPECT_EQ(info.typeName, QStringLiteral("焊接H型钢"));
    EXPECT_EQ(info.specification, QStringLiteral("H400*200*8*13*13"));
    EXPECT_DOUBLE_EQ(info.insertPointY, 200);
    // From the outline: 8192 mm2 at 7.85 t/m3, and the outer perimeter of the H.
    EXPECT_NEAR(info.weightPerMetre, 64.3, 0.05);
    EXPECT_NEAR(info.surfacePerMetre, (2 * 400 + 4 * 200 - 2 * 8) / 1000.0, 1e-9);
}

TEST_F(SectionPolyDialog, SetParameterPositionsOnAnyParsedSectionAndADeletedUserSectionCanBeUndone) {
    m_dialog->setParameter(parse(QStringLiteral("H400*200*8*13")));
    ASSERT_NE(editor()->lineEdit(0), nullptr);
    EXPECT_EQ(editor()->lineEdit(0)->text(), QStringLiteral("400"));
    EXPECT_EQ(editor()->lineEdit(1)->text(), QStringLiteral("200"));

    m_dialog->setParameter(parse(QStringLiteral("hn400*200*8*13")));
    ASSERT_TRUE(list()->currentIndex().isValid());
    EXPECT_EQ(list()->currentIndex().data().toString(), QStringLiteral("HN400*200*8*13"));

    m_dialog->setParameter(parse(QStringLiteral("WSR300*8")));
    auto* forms = child<QComboBox>(QStringLiteral("ballCombo"));
    EXPECT_TRUE(forms->isVisible());
    EXPECT_EQ(forms->currentText(), QStringLiteral("加肋焊接空心球"));
    EXPECT_EQ(m_dialog->polyParamManager()->ribFlag(), 1);
    forms->setCurrentIndex(0);
    EXPECT_EQ(m_dialog->polyParamManager()->ribFlag(), 0);
    EXPECT_TRUE(saveScreen(*m_dialog, QStringLiteral("section_dialog_weld_ball")));

    // Deleting a user section asks and can be undone.
    auto* user = skr::util::FetchInstance<skr::section::SKRUserHotRollingSectionDBProvider>();
    addSection(L"I99x(ZDY)", stI, 1, 12.5);
    openDialog();
    VMPCmdLogTool* log = VMPCmdLogTool::getInstance();
    log->setDatabase(s_model->getProjectDB());
    int calls = 0;
    m_dialog->deleteCustomSectionHandler([&](const SKRHotRollingSection& doomed) {
        ++calls;
        user->removeSection(doomed.sectionType, doomed.subId);
    });
    chooseType(stI);
    ASSERT_GE(rowOf(QStringLiteral("I99x(ZDY)")), 0);
    clickRow(rowOf(QStringLiteral("I99x(ZDY)")));
    EXPECT_TRUE(button(QStringLiteral("编辑自定义截面"))->isEnabled());

    m_answer = QMessageBox::Cancel;
    click(QStringLiteral("删除自定义截面"));
    ASSERT_EQ(m_boxes, QStringList{QStringLiteral("删除该自定义截面，将会删除三维模型中的所有该截面图元和构件")});
    EXPECT_EQ(calls, 0);
    EXPECT_FALSE(log->canUndo());

    m_answer = QMessageBox::Ok;
    click(QStringLiteral("删除自定义截面"));
    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(user->findByName(L"I99x(ZDY)").first);
    EXPECT_EQ(rowOf(QStringLiteral("I99x(ZDY)")), -1);
    EXPECT_EQ(log->undoText(), QStringLiteral("撤消“删除自定义热轧截面”操作"));
    ASSERT_TRUE(log->undo());
    EXPECT_TRUE(user->findByName(L"I99x(ZDY)").first);
    EXPECT_EQ(log->redoText(), QStringLiteral("恢复“删除自定义热轧截面”操作"));
    ASSERT_TRUE(log->redo());
    EXPECT_FALSE(user->findByName(L"I99x(ZDY)").first);
    log->setDatabase(nullptr);
}

TEST_F(SectionPolyDialog, AddingAUserSectionRefusesANameThatExistsAndListsANewOneAndDrawnOnesAreListed) {
    chooseType(stZSection);
    QStringList typedInto;
    // The add dialog is modal: it is filled in while it runs.
    auto fill = [&](const QString& size) {
        QTimer::singleShot(0, [&, size] {
            QWidget* modal = QApplication::activeModalWidget();
            ASSERT_NE(modal, m_dialog.get());
            const QList<QLineEdit*> fields = modal->findChildren<QLineEdit*>();
            const QStringList texts{"Z", size, "12", "0.9"};
            for (int i = 0; i < texts.size(); ++i) fields[i]->setText(texts[i]);
            typedInto << modal->windowTitle();
            AnsweredBoxesTest::button(*modal, QStringLiteral("确定"))->click();
            if (modal->isVisible()) static_cast<QDialog*>(modal)->reject();
        });
        click(QStringLiteral("添加自定义截面"));
    };
    fill(QStringLiteral("271*80*8*3"));
    EXPECT_TRUE(m_boxes.isEmpty()) << m_boxes.join(' ').toStdString();
    ASSERT_TRUE(list()->currentIndex().isValid());
    EXPECT_EQ(list()->currentIndex().data().toString(), QStringLiteral("Z271*80*8*3(ZDY)"));
    fill(QStringLiteral("271*80*8*3"));
    EXPECT_EQ(m_boxes, QStringList{QStringLiteral("注：规格名称已存在,请重新输入.")});
    EXPECT_EQ(typedInto, (QStringList{"添加自定义截面", "添加自定义截面"}));
    EXPECT_EQ(listedNames().count(QStringLiteral("Z271*80*8*3(ZDY)")), 1);

    // The project's drawn sections are listed in the custom group.
    const auto rectangle = skr::geometry::ParseSectionPolygon(QStringLiteral("0,0,0,0;100,0,0,0;100,50,0,0;0,50,0,0"));
    ASSERT_TRUE(rectangle);
    SKRCustomPolyInfo drawn{0, {}, rectangle.get(), 50, 25, {}, {}, {}};
    ASSERT_TRUE(SKRSectionDbOperation(s_model->getProjectDB()).addCustomPoly(drawn));
    openDialog();
    auto* view = types();
    const QModelIndex title = view->model()->index(view->model()->rowCount() - 2, 0);
    EXPECT_EQ(title.data().toString(), QStringLiteral("自定义截面"));
    EXPECT_FALSE(view->model()->index(view->model()->rowCount() - 1, 0).data(Qt::DecorationRole).value<QPixmap>().isNull());

    m_dialog->setParameter(parse(drawn.description));
    click(QStringLiteral("确定"));
    EXPECT_EQ(m_boxes.size(), 1) << m_boxes.join(' ').toStdString();  // only the refusal above
    EXPECT_EQ(m_dialog->QDialog::result(), QDialog::Accepted);
    EXPECT_NE(m_dialog->result().paramManager, nullptr);
    const auto info = m_dialog->getSelSectionInfo();
    EXPECT_EQ(info.typeName, QStringLiteral("自定义截面"));
    EXPECT_EQ(info.specification, drawn.description);
    EXPECT_DOUBLE_EQ(info.insertPointX, 50);
    EXPECT_DOUBLE_EQ(info.insertPointY, 25);
    EXPECT_NEAR(info.weightPerMetre, 100 * 50 * 0.00785, 1e-9);
    EXPECT_NEAR(info.surfacePerMetre, 0.3, 1e-12);
    EXPECT_TRUE(saveScreen(*m_dialog, QStringLiteral("section_dialog_custom")));
}

// Last in the file: the translation stays installed for the rest of the process.
TEST_F(SectionPolyDialog, SpeaksTheInstalledLanguage) {
    bxqtest::ChineseAfterwards chinese;
    ASSERT_TRUE(BXQInstallTranslation(QStringLiteral("en")));
    SKRSectionPolyDialog dialog(s_model);
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Section Library"));
    EXPECT_EQ(dialog.findChild<QLineEdit*>(QStringLiteral("filterEdit"))->placeholderText(),
              QStringLiteral("Quick search, e.g. C 200*70*20*2"));
    dialog.setAcceptSectionalType({stWeldedH}, QStringLiteral("the column"));
    EXPECT_EQ(dialog.acceptMessage(),
              QStringLiteral("Only the column of type “Welded H” is supported, please choose a “Welded H” section"));
    dialog.show();
    EXPECT_TRUE(saveScreen(dialog, QStringLiteral("section_dialog_en")));

    // Every page of every section type shows English only (a user's custom drawing keeps the name
    // it was stored under: that is data, not the dialog's text).
    openDialog();
    for (const skr::section::SKRSectionTypeDescriptor& type : skr::section::sectionTypeTable()) {
        chooseType(type.type);
        QStringList chinese = bxqtest::chineseTexts(m_dialog.get());
        chinese = chinese.filter(QRegularExpression(QStringLiteral("^(?!自定义截面\\d+$)")));
        EXPECT_TRUE(chinese.isEmpty()) << type.type << ": " << chinese.join(QStringLiteral(" | ")).toStdString();
    }
}
