// The dialogs' parts and their pictures. The numeric validator: open and closed ends of real and
// integer intervals, the tolerance at an open end, the leading decimal point, partial entries, and
// the interval and message texts. The section figures beside the dialogs' drawings: exact figures
// at once in table units, the finite-element ones once typing pauses, both following the values as
// they change. Every dialog of the library torn down the ways a host tears windows down: deleted
// while shown with a half-typed field focused, deleteLater while shown, closed with a field
// focused, and its parent destroyed first; each must go without touching what it has already freed
// (the AddressSanitizer build runs this suite) and leave none of its widgets behind. Last, every
// state of the section dialog a user reaches by choosing in its type list, the code table and the
// face-steel dialog, each pictured (BXQ_SCREENS_DIR) in the language BXQ_SCREENS_LANG names ("en";
// Chinese when unset, file names then without a suffix). Each chosen type must show its section in
// the preview, and the tapered H the depths typed at its two ends.
#include "SectionDialogFixture.h"

#include "face_steel/BXQFaceSteelDialog.h"
#include "plugin/BXQTranslations.h"
#include "section_dialog/SKRHotRollingInfoWidget.h"
#include "section_dialog/SKRNumericValidator.h"
#include "section_dialog/SKRSectionFiguresPanel.h"
#include "section_dialog/SKRUserHotRollingSectionDialog.h"
#include "section_spec/EnSKRSectionType.h"
#include "section_spec/QtPrinters.h"

#include "support/ChineseAfterwards.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPainterPath>
#include <QPointer>

#include <functional>

namespace {

QMap<QString, double> weldedH(double b) {
    return {{QStringLiteral("h"), 400}, {QStringLiteral("b"), b}, {QStringLiteral("tw"), 8},
            {QStringLiteral("t1"), 13}, {QStringLiteral("t2"), 13}};
}

QString line(const QString& text, const QString& name) {
    for (const QString& l : text.split(QLatin1Char('\n')))
        if (l.startsWith(name + QLatin1Char(' '))) return l;
    return QString();
}

using Factory = std::function<QDialog*(QWidget* parent)>;

enum class Teardown { DeleteWhileFocused, DeleteLaterWhileShown, CloseThenDelete, ParentFirst };

// Shows the dialog, types into its first visible field (or focuses its first focusable widget
// where it has no field) and leaves the focus there.
QPointer<QWidget> typeIntoAField(QDialog* dialog) {
    dialog->show();
    QApplication::setActiveWindow(dialog);
    EXPECT_TRUE(QTest::qWaitForWindowExposed(dialog));
    for (QLineEdit* field : dialog->findChildren<QLineEdit*>()) {
        if (!field->isVisible() || !field->isEnabled()) continue;
        field->setFocus(Qt::OtherFocusReason);
        QTest::keyClicks(field, QStringLiteral("3"));
        return field;
    }
    for (QWidget* widget : dialog->findChildren<QWidget*>()) {
        if (!widget->isVisible() || widget->focusPolicy() == Qt::NoFocus) continue;
        widget->setFocus(Qt::OtherFocusReason);
        return widget;
    }
    return nullptr;
}

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

TEST(NumericValidator, EndsDecimalsAndPartialEntriesDecideTheStateAndMessagesNameTheInterval) {
    const SKRNumericValidator realOpenTop(0.0, 10000.0, 2, true, false);
    const SKRNumericValidator realOpenBottom(1.0, 2.0, 15, false, true);
    const SKRNumericValidator intOpenBottom(0, 100, false, true);
    const SKRNumericValidator intOpenTop(1, 99, true, false);
    const struct { const SKRNumericValidator& validator; const char* text; QValidator::State state; } rows[] = {
        {realOpenTop, "0", QValidator::Acceptable},         {realOpenTop, "9999.99", QValidator::Acceptable},
        {realOpenTop, "10000", QValidator::Invalid},        {realOpenTop, ".5", QValidator::Invalid},
        {realOpenTop, "12.", QValidator::Acceptable},       {realOpenTop, "", QValidator::Intermediate},
        {realOpenTop, "1.234", QValidator::Invalid},        {realOpenTop, "20000", QValidator::Intermediate},
        {realOpenTop, "abc", QValidator::Invalid},          {realOpenBottom, "1", QValidator::Invalid},
        {realOpenBottom, "1.0000000000001", QValidator::Invalid},  // within 1e-12 of the open bottom
        {realOpenBottom, "1.00000000001", QValidator::Acceptable}, {realOpenBottom, "2", QValidator::Acceptable},
        {intOpenBottom, "0", QValidator::Invalid},          {intOpenBottom, "1", QValidator::Acceptable},
        {intOpenBottom, "100", QValidator::Acceptable},     {intOpenBottom, "1.5", QValidator::Invalid},
        {intOpenTop, "99", QValidator::Invalid},            {intOpenTop, "98", QValidator::Acceptable},
    };
    for (const auto& row : rows) {
        QString input = QString::fromLatin1(row.text);
        int pos = input.size();
        EXPECT_EQ(row.validator.validate(input, pos), row.state) << row.validator.intervalText().toStdString() << " " << row.text;
    }
    const std::pair<const SKRNumericValidator&, const char*> intervals[] = {
        {realOpenTop, "[0,10000)"}, {realOpenBottom, "(1,2]"}, {intOpenBottom, "(0,100]"}};
    for (const auto& interval : intervals) EXPECT_EQ(interval.first.intervalText(), QString(interval.second));

    // The messages name the interval and the decimals in the installed language.
    const SKRNumericValidator integers(1, 99, true, true);
    EXPECT_EQ(integers.invalidMessage(QString()), QStringLiteral("请输入[1,99]之间的整数。"));
    EXPECT_EQ(integers.invalidMessage(QStringLiteral("h: ")), QStringLiteral("h: 请输入[1,99]之间的整数。"));
    const SKRNumericValidator reals(0.5, 200.0, 3, true, false);
    EXPECT_EQ(reals.invalidMessage(QString()), QStringLiteral("请输入[0.5,200)之间的实数, 如果是小数请保留3位。"));
    const SKRNumericValidator wide(1.0, 1234567.0, 1, true, true);
    EXPECT_EQ(wide.intervalText(), QStringLiteral("[1,1.23457e+06]"));  // six significant digits

    // A translated interface gives its own message.
    bxqtest::ChineseAfterwards chinese;
    ASSERT_TRUE(BXQInstallTranslation(QStringLiteral("en")));
    const SKRNumericValidator translated(0.0, 10000.0, 2, true, false);
    EXPECT_EQ(translated.invalidMessage(QString()), QStringLiteral("Please enter a real number in [0,10000), with at most 2 decimals."));
}

TEST(SectionFiguresPanel, FollowsTheDrawnSectionInTableUnitsAndShowsTheCatalogueRowsFigures) {
    SKRSectionPreview preview;
    SKRSectionFiguresPanel panel;
    QObject::connect(&preview, &SKRSectionPreview::polygonChanged, &panel, &SKRSectionFiguresPanel::showPolygon);

    preview.setSection(11, weldedH(200));
    EXPECT_EQ(line(panel.figuresText(), "A"), QStringLiteral("A 81.92 cm²"));
    EXPECT_EQ(line(panel.figuresText(), "Ix"), QStringLiteral("Ix 22965 cm⁴"));
    EXPECT_TRUE(panel.warpingPending());
    EXPECT_TRUE(line(panel.figuresText(), "It").isEmpty());
    // J of H400*200*8*13 is 35.07 cm4 and Iw 648687 cm6 (0.05 % from If h^2 / 2).
    QTRY_VERIFY_WITH_TIMEOUT(!panel.warpingPending(), 5000);
    EXPECT_EQ(line(panel.figuresText(), "It"), QStringLiteral("It 35.07 cm⁴"));
    EXPECT_EQ(line(panel.figuresText(), "Iw"), QStringLiteral("Iw 648687 cm⁶"));

    // A value typed anew: the exact figures change at once, the others wait again.
    preview.setSection(11, weldedH(300));
    EXPECT_EQ(line(panel.figuresText(), "A"), QStringLiteral("A 107.9 cm²"));
    EXPECT_TRUE(panel.warpingPending());

    // Values that make no section clear the figures.
    preview.setSection(11, weldedH(4));
    EXPECT_TRUE(panel.figuresText().isEmpty());

    // The catalogue's info row, as low as the dialog makes it, holds the figures beside the drawing.
    skr::section::SKRHotRollingSection row{
        7, 0, L"HN400*200*8*13", 65.4, 1.56, {{L"h", 400}, {L"b", 200}, {L"tw", 8}, {L"t", 13}, {L"r", 13}}};
    SKRHotRollingInfoWidget info;
    info.resize(650, 190);
    info.showSection(&row);
    auto* rowPanel = info.findChild<SKRSectionFiguresPanel*>(QStringLiteral("sectionFigures"));
    ASSERT_NE(rowPanel, nullptr);
    // The published row: A 83.37 cm2, Ix 23500 cm4.
    EXPECT_EQ(line(rowPanel->figuresText(), "A"), QStringLiteral("A 83.37 cm²"));
    QTRY_VERIFY_WITH_TIMEOUT(!rowPanel->warpingPending(), 5000);
    info.show();
    EXPECT_TRUE(saveScreen(info, QStringLiteral("section_figures_catalogue")));
}

// The drawing of typed figures has the area those figures give by hand, plate by plate.
TEST(SectionPreview, DrawsTheAreaTheTypedFiguresGive) {
    const double pi = 3.14159265358979323846;
    const struct { int type; QMap<QString, double> values; double area; } cases[] = {
        {11, {{"h", 400}, {"b", 200}, {"tw", 8}, {"t1", 13}, {"t2", 16}}, 200 * 29 + 371 * 8},
        {12, {{"h", 500}, {"b1", 250}, {"b2", 300}, {"tw", 10}, {"t1", 14}, {"t2", 18}}, 250 * 14 + 300 * 18 + 468 * 10},
        {13, {{"b1", 400}, {"b2", 300}, {"t1", 10}, {"t2", 12}}, 400 * 300 - 280 * 376},
        {14, {{"d", 325}, {"t", 10}}, pi / 4 * (325 * 325 - 305 * 305)},
        {16, {{"h", 300}, {"b", 200}, {"t1", 8}, {"t2", 12}}, 200 * 12 + 288 * 8},
        {15, {{"h1", 600}, {"b1", 250}, {"tw1", 10}, {"t1", 16}, {"t2", 16}, {"h2", 500}, {"b2", 200}, {"tw2", 8}, {"t3", 14}, {"t4", 14}},
         250 * 32 + 568 * 10 + 200 * 28 + 472 * 8 - 10 * 8},
    };
    for (const auto& c : cases) {
        SKRSectionPreview preview;
        double drawn = -1;
        QObject::connect(&preview, &SKRSectionPreview::polygonChanged, [&drawn](const ndp::CPolygon* polygon) {
            drawn = polygon ? polygon->Area() : 0.0;
        });
        preview.setSection(c.type, c.values);
        EXPECT_NEAR(drawn, c.area, 1e-9 * c.area) << "type " << c.type;
    }
}

TEST_F(DialogScreens, EveryDialogGoesWholeHoweverItIsTornDown) {
    const std::pair<const char*, Factory> dialogs[] = {
        {"section library on a welded H",
         [](QWidget* parent) {
             auto* dialog = new SKRSectionPolyDialog(s_model, parent);
             dialog->setParameter(parse(QStringLiteral("H400*200*8*13")));
             return dialog;
         }},
        {"section library", [](QWidget* parent) { return new SKRSectionPolyDialog(s_model, parent); }},
        {"user section", [](QWidget* parent) { return new SKRUserHotRollingSectionDialog(1, 0, parent); }},
        {"face steel", [](QWidget* parent) { return new BXQFaceSteelDialog(nullptr, parent); }},
    };
    const Teardown ways[] = {Teardown::DeleteWhileFocused, Teardown::DeleteLaterWhileShown, Teardown::CloseThenDelete,
                             Teardown::ParentFirst};
    for (const auto& entry : dialogs) {
        for (Teardown way : ways) {
            SCOPED_TRACE(std::string(entry.first) + ", way " + std::to_string(static_cast<int>(way)));
            auto* parent = way == Teardown::ParentFirst ? new QWidget : nullptr;
            QPointer<QDialog> dialog = entry.second(parent);
            QPointer<QWidget> field = typeIntoAField(dialog);
            EXPECT_FALSE(field.isNull());
            switch (way) {
            case Teardown::DeleteWhileFocused: delete dialog.data(); break;
            case Teardown::DeleteLaterWhileShown: dialog->deleteLater(); break;
            case Teardown::CloseThenDelete:
                dialog->close();
                delete dialog.data();
                break;
            case Teardown::ParentFirst: delete parent; break;
            }
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            QCoreApplication::processEvents();
            EXPECT_TRUE(dialog.isNull());
            EXPECT_TRUE(field.isNull());
        }
    }
}

TEST_F(DialogScreens, EveryTypeShowsItsSectionTheTaperedHItsTypedDepthsThenTheCodeTableAndFaceSteel) {
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

    // The tapered H shows the depths typed at its two ends.
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

    // The code table and the face-steel dialog.
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
