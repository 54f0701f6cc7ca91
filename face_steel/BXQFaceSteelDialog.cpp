// The face-steel plate dialog.
#include "face_steel/BXQFaceSteelDialog.h"

#include "ui/VMPMessageBox.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QVBoxLayout>

#include <cmath>

namespace {

constexpr int kClassIdRole = Qt::UserRole + 1;
constexpr double kTolerance = 1e-12;

QTableWidgetItem* textItem(const QString& text) { return new QTableWidgetItem(text); }

// The dialog's texts in the user's language; plate class names are translated for display only
// (the host asks for quantities by the Chinese name the dialog returns).
QString text(const char* source) { return QCoreApplication::translate("BXQFaceSteelDialog", source); }

}  // namespace

QMap<int, QString>& BXQFaceSteelDialog::m_oClassName = BXQFaceSteelData::m_oClassName;
QMap<int, QList<QSharedPointer<BXQFaceSteelInner>>>& BXQFaceSteelDialog::m_oData = BXQFaceSteelData::m_oData;

BXQFaceTableWidget::BXQFaceTableWidget(QWidget* parent) : QTableWidget(parent) {
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    horizontalHeader()->setStretchLastSection(true);
    horizontalHeader()->setSectionsMovable(false);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
}

BXQFaceSteelDialog::BXQFaceSteelDialog(IVMPService* service, QWidget* parent) : VantorFrame(parent, QString()) {
    loadData(service);
    initUI();
    connectSlot();
    m_pClassTable->setCurrentCell(0, 0);
    if (QTableWidgetItem* first = m_pClassTable->currentItem()) changeClassSlot(first);
}

BXQFaceSteelDialog::BXQFaceSteelDialog(IVMPService* service, QString className, double thickness, QWidget* parent)
    : VantorFrame(parent, QString()) {
    loadData(service);
    initUI();
    connectSlot();
    locatItem(className, thickness);
}

void BXQFaceSteelDialog::loadData(IVMPService* service) { BXQFaceSteelData::loadData(service); }

double BXQFaceSteelDialog::getFaceSteelQty(QString className, double thickness) {
    return BXQFaceSteelData::getFaceSteelQty(className, thickness);
}

BXQFaceSteelInfo BXQFaceSteelDialog::defaultFaceInfo() { return BXQFaceSteelData::defaultFaceInfo(); }

void BXQFaceSteelDialog::initUI() {
    setWindowTitle(text("钢板类型库"));
    setWindowFlags(Qt::Dialog | Qt::WindowCloseButtonHint | Qt::MSWindowsFixedSizeDialogHint);
    setMoveEnabled(false);
    setResizeEnabled(false);
    setFixedSize(440, 560);

    m_pClassTable = new BXQFaceTableWidget(this);
    m_pClassTable->setFixedWidth(180);
    m_pClassTable->setColumnCount(1);
    m_pClassTable->setHorizontalHeaderLabels({text("钢板分类")});
    m_pThicknessTable = new BXQFaceTableWidget(this);
    m_pThicknessTable->setColumnCount(2);
    m_pThicknessTable->setHorizontalHeaderLabels({text("厚度(mm)"), text("重量(kg/m2)")});
    // Both columns share the width, whatever the language makes of their headers.
    m_pThicknessTable->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    m_pClassTable->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    for (auto it = m_oClassName.constBegin(); it != m_oClassName.constEnd(); ++it) {
        const int row = qBound(0, it.key() - 1, m_pClassTable->rowCount());
        m_pClassTable->insertRow(row);
        QTableWidgetItem* item = textItem(QCoreApplication::translate("BXQFaceSteelDialog", it.value().toUtf8().constData()));
        item->setData(kClassIdRole, it.key());
        m_pClassTable->setItem(row, 0, item);
    }

    m_pOkButton = new VantorPushButton(text("确定"), this);
    m_pCancelButton = new VantorPushButton(text("取消"), this);
    m_pCancelButton->setProperty("isOtherCommandButton", true);

    auto* tables = new QHBoxLayout;
    tables->addWidget(m_pClassTable);
    tables->addWidget(m_pThicknessTable);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_pOkButton);
    buttons->addWidget(m_pCancelButton);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(tables);
    layout->addLayout(buttons);
}

void BXQFaceSteelDialog::connectSlot() {
    connect(m_pOkButton, &QPushButton::clicked, this, &BXQFaceSteelDialog::okSlot);
    connect(m_pCancelButton, &QPushButton::clicked, this, &BXQFaceSteelDialog::cancelSlot);
    // Queued: the thickness list is refilled after the click has been fully handled.
    connect(m_pClassTable, &QTableWidget::itemClicked, this, &BXQFaceSteelDialog::changeClassSlot, Qt::QueuedConnection);
    connect(m_pThicknessTable, &QTableWidget::itemDoubleClicked, this, &BXQFaceSteelDialog::doubleClickSlot);
}

void BXQFaceSteelDialog::changeClassSlot(QTableWidgetItem* item) {
    if (!item) return;
    const int id = item->data(kClassIdRole).toInt();
    for (int row = m_pThicknessTable->rowCount() - 1; row >= 0; --row) m_pThicknessTable->removeRow(row);
    const QList<QSharedPointer<BXQFaceSteelInner>> rows = m_oData[id];
    for (int i = 0; i < rows.size(); ++i) {
        m_pThicknessTable->insertRow(i);
        m_pThicknessTable->setItem(i, 0, textItem(QString::number(rows[i]->thickness, 'g', 6)));
        m_pThicknessTable->setItem(i, 1, textItem(QString::number(rows[i]->weight, 'g', 6)));
    }
}

void BXQFaceSteelDialog::takeChoice(int row) {
    const QTableWidgetItem* cls = m_pClassTable->currentItem();
    const QTableWidgetItem* thickness = m_pThicknessTable->item(row, 0);
    if (!cls || !thickness) return;
    m_oResult.className = m_oClassName.value(cls->data(kClassIdRole).toInt());
    m_oResult.thickness = thickness->text().toDouble();
    accept();
}

void BXQFaceSteelDialog::doubleClickSlot(QTableWidgetItem* item) {
    if (item) takeChoice(item->row());
}

void BXQFaceSteelDialog::okSlot() {
    if (!m_pThicknessTable->currentItem() || !m_pClassTable->currentItem()) {
        VMPMessageBox::warning(BXQCommon::getMainWindow(), text("提示"), text("请先选中钢板信息"),
                               QMessageBox::Ok);
        return;
    }
    takeChoice(m_pThicknessTable->currentItem()->row());
}

void BXQFaceSteelDialog::cancelSlot() { reject(); }

void BXQFaceSteelDialog::locatItem(QString className, double thickness) {
    int key = 0;
    for (auto it = m_oClassName.constBegin(); it != m_oClassName.constEnd(); ++it)
        if (it.value() == className) {
            key = it.key();
            break;
        }
    m_pClassTable->setCurrentCell(key - 1, 0);
    QTableWidgetItem* current = m_pClassTable->currentItem();
    if (!current) return;
    changeClassSlot(current);
    const QList<QSharedPointer<BXQFaceSteelInner>> rows = m_oData[current->data(kClassIdRole).toInt()];
    int index = 0;
    for (int i = 0; i < rows.size(); ++i)
        if (std::abs(rows[i]->thickness - thickness) < kTolerance) {
            index = i;
            break;
        }
    m_pThicknessTable->setCurrentCell(index, 0);
}
