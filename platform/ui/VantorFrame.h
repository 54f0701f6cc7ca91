// The host UI frame's widgets: a dialog frame with move and resize switches, and the frame's
// table views, buttons, check box and line edit, all plain Qt widgets under the host's names.
#pragma once

#include "PlatformGlobal.h"

#include <QCheckBox>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>

class BXQPLATFORM_EXPORT VantorFrame : public QDialog {
    Q_OBJECT
public:
    explicit VantorFrame(QWidget* parent = nullptr, const QString& name = QString());

    // Whether the user may move the frame by its title bar, and resize it by its edges.
    void setMoveEnabled(bool enabled);
    void setResizeEnabled(bool enabled);
    bool isMoveEnabled() const { return m_moveEnabled; }
    bool isResizeEnabled() const { return m_resizeEnabled; }

private:
    bool m_moveEnabled = true;
    bool m_resizeEnabled = true;
};

class BXQPLATFORM_EXPORT VantorTableView : public QTableView {
    Q_OBJECT
public:
    explicit VantorTableView(QWidget* parent = nullptr);
};

// A table view that tells whether a row is selected and which index was double-clicked.
class BXQPLATFORM_EXPORT BXQVantorTableView : public VantorTableView {
    Q_OBJECT
public:
    explicit BXQVantorTableView(QWidget* parent = nullptr);
    void setModel(QAbstractItemModel* model) override;

signals:
    void selectTableView(bool hasSelection);
    void tableViewDoubleClicked(const QModelIndex& index);
};

class BXQPLATFORM_EXPORT VantorPushButton : public QPushButton {
    Q_OBJECT
public:
    explicit VantorPushButton(const QString& text = QString(), QWidget* parent = nullptr);
};

class BXQPLATFORM_EXPORT VantorCheckBox : public QCheckBox {
    Q_OBJECT
public:
    explicit VantorCheckBox(const QString& text = QString(), QWidget* parent = nullptr);
};

class BXQPLATFORM_EXPORT VantorLineEdit : public QLineEdit {
    Q_OBJECT
public:
    explicit VantorLineEdit(QWidget* parent = nullptr);
};
