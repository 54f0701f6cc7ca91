// The section dialog's parameter panel.
#include "section_dialog/SKRParamEditor.h"

#include "section_dialog/SKRNumericValidator.h"
#include "section_spec/SKRPolyParamManger.h"
#include "section_spec/SKRRangeRule.h"
#include "section_dialog/SKRSectionFiguresPanel.h"
#include "section_dialog/SKRSectionPreview.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPixmap>
#include <QSignalMapper>
#include <QVBoxLayout>

namespace {
// Section pictures are 240 pixels square; the fields stand right of them.
constexpr int kPictureSize = 240;
constexpr int kCodeWidth = 30;
constexpr int kEditWidth = 72;
// Parameters are real numbers kept to two decimals.
constexpr int kDecimals = 2;
}  // namespace

SKRParamLineEdit::SKRParamLineEdit(int index, QWidget* parent) : VantorLineEdit(parent), m_iIndex(index) {}

void SKRParamLineEdit::setRangeRule(const QString& validExpr) {
    const SKRRangeInterval range = rangeRuleInterval(validExpr);
    if (!range.found) return;
    m_pValidator =
        new SKRNumericValidator(range.bottom, range.top, kDecimals, range.bottomClosed, range.topClosed, this);
    setValidator(m_pValidator);
}

SKRParamEditor::SKRParamEditor(QWidget* parent)
    : QWidget(parent),
      m_pFinishMapper(new QSignalMapper(this)),
      m_pReturnMapper(new QSignalMapper(this)),
      m_pRefusalMapper(new QSignalMapper(this)) {
    m_pFieldArea = new QWidget(this);
    m_pPicture = new QLabel(m_pFieldArea);
    m_pPicture->setGeometry(0, 0, kPictureSize, kPictureSize);
    m_pHint = new QLabel(this);
    m_pMessage = new QLabel(this);
    m_pMessage->setWordWrap(true);
    m_pMessage->setStyleSheet(QStringLiteral("color: #b00020;"));
    m_pPreview = new SKRSectionPreview(this);
    auto* layout = new QVBoxLayout(this);
    auto* top = new QHBoxLayout;
    top->addWidget(m_pFieldArea);
    top->addWidget(m_pPreview, 1);
    auto* figures = new SKRSectionFiguresPanel(this);
    connect(m_pPreview, &SKRSectionPreview::polygonChanged, figures, &SKRSectionFiguresPanel::showPolygon);
    layout->addLayout(top);
    layout->addWidget(figures);
    layout->addWidget(m_pHint);
    layout->addWidget(m_pMessage);
    connect(m_pFinishMapper, &QSignalMapper::mappedInt, this, &SKRParamEditor::editingFinish);
    connect(m_pReturnMapper, &QSignalMapper::mappedInt, this, &SKRParamEditor::returnPressedSolt);
    connect(m_pRefusalMapper, &QSignalMapper::mappedInt, this, &SKRParamEditor::inputRefused);
}

void SKRParamEditor::setManager(SKRPolyParamManger* manager) {
    m_pManager = manager;
    refresh();
}

void SKRParamEditor::clearFields() {
    for (QWidget* widget : m_oFieldWidgets) delete widget;
    m_oFieldWidgets.clear();
    m_oEdits.clear();
}

void SKRParamEditor::refresh() {
    clearFields();
    m_pMessage->clear();
    if (!m_pManager) return;
    m_pPicture->setPixmap(QPixmap(QStringLiteral(":/images/SKRSectionPoly/") + m_pManager->pictureName()));
    int right = kPictureSize, bottom = kPictureSize;
    for (int i = 0; i < m_pManager->paramCount(); ++i) {
        const auto& param = m_pManager->paramDef(i);
        // Fields without a place of their own line up under the picture's right edge.
        const int x = param.editorPtX > 0 ? param.editorPtX : kPictureSize + 10;
        const int y = param.editorPtY > 0 ? param.editorPtY : 24 + 22 * i;
        auto* code = new QLabel(param.paramCode, m_pFieldArea);
        code->setGeometry(x, y - 10, kCodeWidth, 20);
        auto* edit = new SKRParamLineEdit(i, m_pFieldArea);
        edit->setObjectName(QStringLiteral("param_") + param.paramCode);
        edit->setRangeRule(param.validExpr);
        edit->setText(m_pManager->paramValue(i));
        edit->setGeometry(x + kCodeWidth, y - 11, kEditWidth, 22);
        auto* unit = new QLabel(param.unit, m_pFieldArea);
        unit->setGeometry(x + kCodeWidth + kEditWidth + 4, y - 10, 30, 20);
        for (QWidget* widget : {static_cast<QWidget*>(code), static_cast<QWidget*>(edit), static_cast<QWidget*>(unit)}) {
            widget->show();
            m_oFieldWidgets << widget;
        }
        m_oEdits << edit;
        m_pFinishMapper->setMapping(edit, i);
        m_pReturnMapper->setMapping(edit, i);
        m_pRefusalMapper->setMapping(edit, i);
        connect(edit, &QLineEdit::editingFinished, m_pFinishMapper, qOverload<>(&QSignalMapper::map));
        connect(edit, &QLineEdit::returnPressed, m_pReturnMapper, qOverload<>(&QSignalMapper::map));
        connect(edit, &QLineEdit::inputRejected, m_pRefusalMapper, qOverload<>(&QSignalMapper::map));
        right = std::max(right, x + kCodeWidth + kEditWidth + 34);
        bottom = std::max(bottom, y + 14);
    }
    m_pFieldArea->setFixedSize(right, bottom);
    showSection();
}

void SKRParamEditor::showSection() {
    const QString specification = m_pManager->specification();
    m_pHint->setText(specification.isEmpty()
                         ? m_pManager->hintText()
                         : QCoreApplication::translate("SKRSectionPolyDlg", "规格示例：%1").arg(specification));
    m_pPreview->setSection(m_pManager->sectionType(), m_pManager->numericValues());
}

QString SKRParamEditor::hint() const { return m_pHint->text(); }

QString SKRParamEditor::message() const { return m_pMessage->text(); }

void SKRParamEditor::editingFinish(int index) {
    SKRParamLineEdit* edit = m_oEdits.value(index);
    if (!edit || !m_pManager) return;
    m_pMessage->clear();
    m_pManager->setParamValue(index, edit->text());
    showSection();
}

void SKRParamEditor::returnPressedSolt(int index) {
    if (index + 1 >= m_oEdits.size()) return;
    m_oEdits[index + 1]->setFocus(Qt::TabFocusReason);
    m_oEdits[index + 1]->selectAll();
}

void SKRParamEditor::inputRefused(int index) {
    SKRParamLineEdit* edit = m_oEdits.value(index);
    if (!edit || !edit->numericValidator()) return;
    m_pMessage->setText(edit->numericValidator()->invalidMessage(m_pManager->paramDef(index).paramCode + QLatin1Char(':')));
}
