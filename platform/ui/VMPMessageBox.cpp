// Message boxes, the confirmation dialog and the main window of the host frame.
#include "ui/VMPMessageBox.h"

#include <QCoreApplication>
#include <QPointer>
#include <QWidget>

namespace {

VMPMessageBox::Answerer& answerer() {
    static VMPMessageBox::Answerer instance;
    return instance;
}

QPointer<QWidget>& mainWindow() {
    static QPointer<QWidget> window;
    return window;
}

QMessageBox::StandardButton show(QMessageBox::Icon icon, const QString& kind, QWidget* parent, const QString& title,
                                 const QString& text, QMessageBox::StandardButtons buttons,
                                 QMessageBox::StandardButton defaultButton) {
    if (answerer()) return answerer()({kind, title, text, buttons});
    QMessageBox box(icon, title, text, buttons, parent);
    box.setDefaultButton(defaultButton);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

}  // namespace

QMessageBox::StandardButton VMPMessageBox::information(QWidget* parent, const QString& title, const QString& text,
                                                       QMessageBox::StandardButtons buttons,
                                                       QMessageBox::StandardButton defaultButton) {
    return show(QMessageBox::Information, QStringLiteral("information"), parent, title, text, buttons, defaultButton);
}

QMessageBox::StandardButton VMPMessageBox::warning(QWidget* parent, const QString& title, const QString& text,
                                                   QMessageBox::StandardButtons buttons,
                                                   QMessageBox::StandardButton defaultButton) {
    return show(QMessageBox::Warning, QStringLiteral("warning"), parent, title, text, buttons, defaultButton);
}

void VMPMessageBox::setAnswerer(Answerer answerer) { ::answerer() = std::move(answerer); }

int vmp::confirmDlg(const QString& message, int type, QWidget* parent) {
    const QMessageBox::Icon icon = type == 5 ? QMessageBox::Information : QMessageBox::Warning;
    return show(icon, QStringLiteral("confirm"), parent, QCoreApplication::translate("VMPMessageBox", "提示"), message,
                QMessageBox::Ok, QMessageBox::Ok);
}

QWidget* BXQCommon::getMainWindow() { return mainWindow(); }

void BXQCommon::setMainWindow(QWidget* window) { mainWindow() = window; }
