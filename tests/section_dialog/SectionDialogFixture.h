// Fixtures of the section dialog suites, on the shipped databases: message boxes answered without
// showing (their texts kept in m_boxes), and the section library dialog shown, with the ways a
// user reaches its parts: the type pictures, the catalogue list, the parameter editor, buttons by
// their text.
#pragma once

#include "section_dialog/SKRParamEditor.h"
#include "section_dialog/SKRSectionPolyDialog.h"
#include "section_dialog/SKRSectionPreview.h"
#include "ui/VMPMessageBox.h"

#include "data/ShippedRepository.h"
#include "support/Screens.h"

#include <QPushButton>
#include <QTableView>
#include <QTest>

#include <memory>

class AnsweredBoxesTest : public ShippedRepositoryTest {
protected:
    void SetUp() override {
        VMPMessageBox::setAnswerer([this](const VMPMessageBox::Shown& box) {
            m_boxes << box.text;
            return m_answer;
        });
    }
    void TearDown() override { VMPMessageBox::setAnswerer({}); }

    static QPushButton* button(const QWidget& parent, const QString& text) {
        for (QPushButton* b : parent.findChildren<QPushButton*>())
            if (b->text() == text) return b;
        return nullptr;
    }

    QStringList m_boxes;
    QMessageBox::StandardButton m_answer = QMessageBox::Ok;
};

class SectionDialogTest : public AnsweredBoxesTest {
protected:
    void SetUp() override {
        AnsweredBoxesTest::SetUp();
        openDialog();
    }
    void TearDown() override {
        m_dialog.reset();
        AnsweredBoxesTest::TearDown();
    }
    // A new dialog, which lists what the project and catalogues hold when it opens.
    void openDialog() {
        m_dialog = std::make_unique<SKRSectionPolyDialog>(s_model);
        m_dialog->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(m_dialog.get()));
    }

    template <typename T> T* child(const QString& name) const { return m_dialog->findChild<T*>(name); }
    QPushButton* button(const QString& text) const { return AnsweredBoxesTest::button(*m_dialog, text); }
    void click(const QString& buttonText) { QTest::mouseClick(button(buttonText), Qt::LeftButton); }
    QTableView* types() const { return child<QTableView>(QStringLiteral("polyView")); }
    QModelIndex indexOfType(int polyId) const {
        const QAbstractItemModel* model = types()->model();
        for (int row = 0; row < model->rowCount(); ++row)
            for (int column = 0; column < model->columnCount(); ++column)
                if (model->index(row, column).data(Qt::UserRole + 1).toInt() == polyId) return model->index(row, column);
        return QModelIndex();
    }
    // Clicks a picture in the type table.
    void choose(const QModelIndex& index) {
        types()->scrollTo(index);
        QTest::mouseClick(types()->viewport(), Qt::LeftButton, {}, types()->visualRect(index).center());
    }
    void chooseType(int polyId) {
        const QModelIndex index = indexOfType(polyId);
        ASSERT_TRUE(index.isValid()) << "no picture of type " << polyId;
        choose(index);
    }
    QTableView* list() const { return child<QTableView>(QStringLiteral("hotRolledView")); }
    QStringList listedNames() const {
        QStringList names;
        for (int row = 0; row < list()->model()->rowCount(); ++row) names << list()->model()->index(row, 0).data().toString();
        return names;
    }
    int rowOf(const QString& name) const { return listedNames().indexOf(name); }
    // Clicks a catalogue row, and double-clicks it when asked (a double click begins with a click).
    void clickRow(int row, bool twice = false) {
        const QModelIndex index = list()->model()->index(row, 0);
        list()->scrollTo(index);
        const QPoint at = list()->visualRect(index).center();
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, at);
        if (twice) QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {}, at);
    }
    SKRParamEditor* editor() const { return m_dialog->findChild<SKRParamEditor*>(); }
    // The preview on show; null when none is.
    SKRSectionPreview* shownPreview() const {
        for (SKRSectionPreview* preview : m_dialog->findChildren<SKRSectionPreview*>())
            if (preview->isVisible()) return preview;
        return nullptr;
    }

    std::unique_ptr<SKRSectionPolyDialog> m_dialog;
};
