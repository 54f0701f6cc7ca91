// SKRSectionPreview: the live drawing of the chosen section in the section dialogs, drawn from
// its outline as the values change.
#pragma once

#include "ndp/NDPPolygon.h"

#include <QMap>
#include <QPainterPath>
#include <QWidget>

class SKRSectionPreview : public QWidget {
    Q_OBJECT
public:
    explicit SKRSectionPreview(QWidget* parent = nullptr);

    // The outline of the type for the values (a tapered type: its two ends side by side, with
    // both areas); with values that make none, an empty drawing with the reason as its caption.
    void setSection(int sectionType, const QMap<QString, double>& values);
    // A polygon as it is (a user-drawn custom section).
    void setPolygon(const ndp::CPolygon& polygon);
    void clear();

    // The section drawn, in its own units with y up; empty when there is none.
    const QPainterPath& drawnPath() const { return m_path; }

    QSize sizeHint() const override { return QSize(200, 200); }

signals:
    // The section now drawn, null when there is none (for the figures beside the drawing).
    void polygonChanged(const ndp::CPolygon* polygon);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void setOutline(const QString& outline, const QString& failure);
    // No drawing: the reason in its place.
    void showFailure(const QString& failure);

    QPainterPath m_path;
    QString m_caption;
};
