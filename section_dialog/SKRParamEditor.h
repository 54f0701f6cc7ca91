// SKRParamEditor: the parameter panel of the section dialog: the type's dimensioned picture with
// one line edit per parameter standing where the section database places it, each with a numeric
// validator for the parameter's range, a hint, the refusal message and a live drawing.
// SKRParamLineEdit: one such line edit, knowing its parameter's index.
#pragma once

#include "ui/VantorFrame.h"

#include <QVector>
#include <QWidget>

class QLabel;
class QSignalMapper;
class SKRNumericValidator;
class SKRPolyParamManger;
class SKRSectionPreview;

class SKRParamLineEdit : public VantorLineEdit {
    Q_OBJECT
public:
    SKRParamLineEdit(int index, QWidget* parent = nullptr);
    int index() const { return m_iIndex; }
    // Attaches a real-number validator for the range rule ("(%1 >= 1) And ( %1 <=10000)"); a
    // rule that is no interval leaves the field unvalidated.
    void setRangeRule(const QString& validExpr);
    SKRNumericValidator* numericValidator() const { return m_pValidator; }

private:
    int m_iIndex;
    SKRNumericValidator* m_pValidator = nullptr;
};

class SKRParamEditor : public QWidget {
    Q_OBJECT
public:
    explicit SKRParamEditor(QWidget* parent = nullptr);

    // Shows the manager's section type with its values (the manager is not owned). Call again
    // after the manager changed type or values.
    void setManager(SKRPolyParamManger* manager);
    // Forgets the manager, leaving the fields as they are: its owner calls this before the
    // manager goes, since a focused field still finishes its editing while it is destroyed.
    void detachManager() { m_pManager = nullptr; }
    void refresh();

    int lineEditCount() const { return m_oEdits.size(); }
    SKRParamLineEdit* lineEdit(int index) const { return m_oEdits.value(index); }
    // The refusal shown under the fields (empty when the last keystroke was taken).
    QString message() const;
    // The line under the fields: the specification the current values make, which is what the
    // dialog returns ("规格示例：H400*300*8*13"); the type's example while they make none.
    QString hint() const;

public slots:
    // A field finished with an acceptable value: the manager takes it and the drawing follows.
    void editingFinish(int index);
    // Return moves on to the next field (the last one keeps the focus).
    void returnPressedSolt(int index);

private slots:
    void inputRefused(int index);

private:
    void clearFields();
    void showSection();

    SKRPolyParamManger* m_pManager = nullptr;
    QWidget* m_pFieldArea = nullptr;
    QLabel* m_pPicture = nullptr;
    QLabel* m_pHint = nullptr;
    QLabel* m_pMessage = nullptr;
    SKRSectionPreview* m_pPreview = nullptr;
    QVector<SKRParamLineEdit*> m_oEdits;
    QVector<QWidget*> m_oFieldWidgets;
    QSignalMapper* m_pFinishMapper;
    QSignalMapper* m_pReturnMapper;
    QSignalMapper* m_pRefusalMapper;
};
