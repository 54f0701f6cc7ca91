// BXQFaceSteelDialog: the modal dialog in which the user picks a face-steel plate (class and
// thickness) from the plate catalogue, and the catalogue's process-wide tables and quantity query
// as the host calls them, with or without a dialog.
#pragma once

#include "face_steel/BXQFaceSteelData.h"
#include "plugin/BXQExtendGlobal.h"
#include "ui/VantorFrame.h"

#include <QTableWidget>

class VantorPushButton;

// The plate dialog's tables: whole rows, one at a time, read only, fixed headers.
class BXQFaceTableWidget : public QTableWidget {
    Q_OBJECT
public:
    explicit BXQFaceTableWidget(QWidget* parent = nullptr);
};

class BXQEXTEND_EXPORT BXQFaceSteelDialog : public VantorFrame {
    Q_OBJECT
public:
    BXQFaceSteelDialog(IVMPService* service, QWidget* parent);
    // Positioned on the given choice.
    BXQFaceSteelDialog(IVMPService* service, QString className, double thickness, QWidget* parent);

    // The choice; meaningful after the dialog was accepted.
    const BXQFaceSteelInfo& getResult() const { return m_oResult; }

    static void loadData(IVMPService* service);
    static double getFaceSteelQty(QString className, double thickness);
    static BXQFaceSteelInfo defaultFaceInfo();
    // The catalogue tables, shared with the quantity query (one storage for the process).
    static QMap<int, QString>& m_oClassName;
    static QMap<int, QList<QSharedPointer<BXQFaceSteelInner>>>& m_oData;

public slots:
    void okSlot();
    void cancelSlot();
    void changeClassSlot(QTableWidgetItem* item);
    void doubleClickSlot(QTableWidgetItem* item);

private:
    void initUI();
    void connectSlot();
    void locatItem(QString className, double thickness);
    void takeChoice(int row);

    BXQFaceSteelInfo m_oResult;
    BXQFaceTableWidget* m_pClassTable = nullptr;
    BXQFaceTableWidget* m_pThicknessTable = nullptr;
    VantorPushButton* m_pOkButton = nullptr;
    VantorPushButton* m_pCancelButton = nullptr;
};
