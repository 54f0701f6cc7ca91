// The host's modal message boxes, its confirmation dialog and its main window, on Qt Widgets.
// Tests and scripted runs answer the boxes through an answerer instead of a person; every box
// shown is reported to it with its kind, title and text.
#pragma once

#include "PlatformGlobal.h"

#include <QMessageBox>
#include <QString>

#include <functional>

class QWidget;

class BXQPLATFORM_EXPORT VMPMessageBox {
public:
    static QMessageBox::StandardButton information(QWidget* parent, const QString& title, const QString& text,
                                                   QMessageBox::StandardButtons buttons = QMessageBox::Ok,
                                                   QMessageBox::StandardButton defaultButton = QMessageBox::NoButton);
    static QMessageBox::StandardButton warning(QWidget* parent, const QString& title, const QString& text,
                                               QMessageBox::StandardButtons buttons = QMessageBox::Ok,
                                               QMessageBox::StandardButton defaultButton = QMessageBox::NoButton);

    // What a box showed, for the answerer.
    struct Shown {
        QString kind;  // "information", "warning" or "confirm"
        QString title;
        QString text;
        QMessageBox::StandardButtons buttons;
    };
    using Answerer = std::function<QMessageBox::StandardButton(const Shown&)>;
    // With an answerer set, no box is shown: it is asked for the button instead. An empty one
    // restores real boxes.
    static void setAnswerer(Answerer answerer);
};

namespace vmp {
// A modal notice of message whose icon is given by type (the host's numbering: 5 a notice with
// OK); returns the QMessageBox button pressed.
BXQPLATFORM_EXPORT int confirmDlg(const QString& message, int type, QWidget* parent);
}  // namespace vmp

class BXQPLATFORM_EXPORT BXQCommon {
public:
    // The host's main window, the parent of every message box; null until the host sets one.
    static QWidget* getMainWindow();
    static void setMainWindow(QWidget* window);
};
