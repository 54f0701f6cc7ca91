// Pictures of widgets for people to look at: when BXQ_SCREENS_DIR is set, a test saves the widget
// it drives as <name>.png there; otherwise nothing happens.
#pragma once

#include <QCoreApplication>
#include <QDir>
#include <QPixmap>
#include <QWidget>

inline bool saveScreen(QWidget& widget, const QString& name) {
    const QString dir = qEnvironmentVariable("BXQ_SCREENS_DIR");
    if (dir.isEmpty()) return true;
    QDir().mkpath(dir);
    // Layout requests posted by the last change are settled first, as the event loop would.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    return widget.grab().save(QDir(dir).filePath(name + QStringLiteral(".png")));
}
