// The host UI frame's widgets on Qt Widgets.
#include "ui/VantorFrame.h"

#include <QHeaderView>
#include <QItemSelectionModel>

VantorFrame::VantorFrame(QWidget* parent, const QString& name) : QDialog(parent) {
    setObjectName(name);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
}

void VantorFrame::setMoveEnabled(bool enabled) { m_moveEnabled = enabled; }

void VantorFrame::setResizeEnabled(bool enabled) {
    m_resizeEnabled = enabled;
    setSizeGripEnabled(enabled);
    if (!enabled && isVisible()) setFixedSize(size());
}

VantorTableView::VantorTableView(QWidget* parent) : QTableView(parent) {
    setSelectionBehavior(QAbstractItemView::SelectRows);
    verticalHeader()->setVisible(false);
}

BXQVantorTableView::BXQVantorTableView(QWidget* parent) : VantorTableView(parent) {
    setSelectionMode(QAbstractItemView::SingleSelection);
    connect(this, &QAbstractItemView::doubleClicked, this, &BXQVantorTableView::tableViewDoubleClicked);
}

void BXQVantorTableView::setModel(QAbstractItemModel* model) {
    VantorTableView::setModel(model);
    if (QItemSelectionModel* selection = selectionModel())
        connect(selection, &QItemSelectionModel::selectionChanged, this,
                [this] { emit selectTableView(selectionModel()->hasSelection()); });
}

VantorPushButton::VantorPushButton(const QString& text, QWidget* parent) : QPushButton(text, parent) {
    setAutoDefault(false);
}

VantorCheckBox::VantorCheckBox(const QString& text, QWidget* parent) : QCheckBox(text, parent) {}

VantorLineEdit::VantorLineEdit(QWidget* parent) : QLineEdit(parent) {}
