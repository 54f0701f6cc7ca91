// The dialog of user hot-rolled sections.
#include "section_dialog/SKRUserHotRollingSectionDialog.h"

#include "section_data/SKRDatabaseError.h"
#include "section_spec/SKRRangeRule.h"
#include "section_spec/SKRUserSectionMark.h"

#include "section_data/SKRHotRollingSectionDBProvider.h"
#include "section_data/SectionSchemeProvider.h"
#include "section_spec/HotRollingSectionNormParser.h"
#include "ui/VMPMessageBox.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QRegularExpression>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

#include <exception>

using skr::section::SKRHotRollingSection;

namespace {

const QString kMark = skr::section::userSectionMark();
// Figures: at most 4 integer digits and 20 decimals.
const QString kFigurePattern = QStringLiteral("([0-9]{1,4}[\\.][0-9]{1,20})|([0-9]{1,4})");

QString text(const char* source) { return QCoreApplication::translate("SKRUserHotRollingSectionDialog", source); }

// The parameters a specification size writes for the type (its radii are the catalogue's own)
// with the range rules of the section parameter table written over the parameter names.
skr::section::SectionNormEntry sizeNorm(int sectionType) {
    QStringList names, rules;
    if (auto* provider = skr::util::FetchInstance<skr::section::SectionParamProvider>()) {
        for (const auto& param : provider->paramsOf(sectionType)) {
            if (param.paramCode == QLatin1String("r") || param.paramCode == QLatin1String("r1")) continue;
            names << param.paramCode;
            if (param.validExpr.isEmpty()) continue;
            rules << rangeRuleScript(param.validExpr, param.paramCode);
        }
    }
    return skr::section::HotRollingSectionNormParser::starSeparatedNorm(
        QString(), static_cast<EnSKRSectionType>(sectionType), names, rules);
}

}  // namespace

SKRUserHotRollingSectionDialog::SKRUserHotRollingSectionDialog(int sectionType, int subId, QWidget* parent)
    : VantorFrame(parent, QString()), m_iSectionType(sectionType), m_iSubId(subId), m_bEdit(false) {
    initUI();
}

SKRUserHotRollingSectionDialog::SKRUserHotRollingSectionDialog(int sectionType, int subId,
                                                               const QString& standardName, QWidget* parent)
    : VantorFrame(parent, QString()), m_iSectionType(sectionType), m_iSubId(subId), m_bEdit(true) {
    initUI();
    fillFromStored(standardName);
}

SKRUserHotRollingSectionDialog::~SKRUserHotRollingSectionDialog() = default;

void SKRUserHotRollingSectionDialog::initUI() {
    m_pNormParser = std::make_unique<skr::section::HotRollingSectionNormParser>(
        QVector<skr::section::SectionNormEntry>{sizeNorm(m_iSectionType)});
    m_pProvider = skr::util::FetchInstance<skr::section::SKRUserHotRollingSectionDBProvider>();

    setWindowTitle(m_bEdit ? text("编辑自定义截面") : text("添加自定义截面"));
    setWindowFlags(Qt::Dialog | Qt::WindowCloseButtonHint);
    setMoveEnabled(false);
    setResizeEnabled(false);

    m_pCodeEdit = new VantorLineEdit(this);
    m_pCodeEdit->setPlaceholderText(kMark);
    // The host's pattern names the ideographs too, but they are lost to its code page: the
    // code takes Latin letters only.
    m_pCodeEdit->setValidator(
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("^[a-zA-Z]+$")), m_pCodeEdit));
    m_pSizeEdit = new VantorLineEdit(this);
    m_pSizeEdit->setPlaceholderText(
        skr::section::SectionNormParser::exampleText(m_pNormParser->entries().value(0)));
    m_pSizeEdit->setValidator(
        new QRegularExpressionValidator(QRegularExpression(QStringLiteral("^[0-9\\.\\*]+$")), m_pSizeEdit));
    m_pWeightEdit = new VantorLineEdit(this);
    m_pSurfaceEdit = new VantorLineEdit(this);
    for (VantorLineEdit* figure : {m_pWeightEdit, m_pSurfaceEdit}) {
        figure->setPlaceholderText(QStringLiteral("[0,10000)"));
        figure->setValidator(new QRegularExpressionValidator(QRegularExpression(kFigurePattern), figure));
    }
    m_pCodeEdit->setEnabled(!m_bEdit);
    m_pSizeEdit->setEnabled(!m_bEdit);

    m_pNote = new QLabel(m_bEdit ? text("注:编辑自定义截面,无法修改截面代号和规格尺寸.")
                                 : text("注:自定义截面会在规格字符串后自动增加-(ZDY),如Z270*80*8*3(ZDY)"),
                         this);
    m_pNote->setWordWrap(true);
    m_pOkButton = new VantorPushButton(text("确定"), this);
    m_pCancelButton = new VantorPushButton(text("取消"), this);
    m_pCancelButton->setProperty("isOtherCommandButton", true);

    auto* form = new QFormLayout;
    form->addRow(text("截面代号(ZDY)"), m_pCodeEdit);
    form->addRow(text("规格尺寸:"), m_pSizeEdit);
    form->addRow(text("延米重(kg/m):"), m_pWeightEdit);
    form->addRow(text("表面积(m2/m):"), m_pSurfaceEdit);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_pOkButton);
    buttons->addWidget(m_pCancelButton);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_pNote);
    layout->addLayout(buttons);

    connect(m_pOkButton, &QPushButton::clicked, this, &SKRUserHotRollingSectionDialog::okSlot);
    connect(m_pCancelButton, &QPushButton::clicked, this, &SKRUserHotRollingSectionDialog::cancelSlot);
}

void SKRUserHotRollingSectionDialog::fillFromStored(const QString& standardName) {
    skr::section::SKRHotRollingLookup found;
    try {
        if (m_pProvider) found = m_pProvider->findByName(standardName.toStdWString());
    } catch (const std::exception& failure) {
        VMPMessageBox::warning(BXQCommon::getMainWindow(), text("提示"),
                               skr::section::failureText(m_pProvider->table(), failure));
        return;
    }
    if (!found.first || found.second.sectionType != m_iSectionType || found.second.subId != m_iSubId) return;
    QString name = QString::fromStdWString(found.second.standardName);
    if (name.contains(kMark)) name = name.left(name.indexOf(kMark));
    const int digit = name.indexOf(QRegularExpression(QStringLiteral("[0-9].*")));
    m_pCodeEdit->setText(digit < 0 ? name : name.left(digit));
    m_pSizeEdit->setText(digit < 0 ? QString() : name.mid(digit));
    m_pWeightEdit->setText(QString::number(found.second.weightMeter, 'g', 15));
    m_pSurfaceEdit->setText(QString::number(found.second.area, 'g', 15));
}

// The section the fields describe; false when its size does not write the type's dimensions
// within their ranges.
bool SKRUserHotRollingSectionDialog::readSection(SKRHotRollingSection& section) const {
    const QString size = m_pSizeEdit->text().trimmed();
    if (!m_pNormParser->match(size) || !m_pNormParser->checkRules()) return false;
    const QMap<QString, double> values = m_pNormParser->numericValues();
    section.sectionType = m_iSectionType;
    section.subId = m_iSubId;
    section.standardName = (m_pCodeEdit->text().trimmed() + size + kMark).toStdWString();
    section.weightMeter = m_pWeightEdit->text().toDouble();
    section.area = m_pSurfaceEdit->text().toDouble();
    section.params.clear();
    for (const QString& name : m_pNormParser->entries().value(0).paramNames)
        section.params.emplace_back(name.toStdWString(), values.value(name));
    return true;
}

void SKRUserHotRollingSectionDialog::okSlot() {
    SKRHotRollingSection section;
    if (!readSection(section)) {
        VMPMessageBox::information(BXQCommon::getMainWindow(), text("提示"), text("输入的“规格尺寸”有误，请查证。"),
                                   QMessageBox::Ok);
        return;
    }
    if (!m_bEdit) {
        bool added = false;
        try {
            added = m_pProvider && m_pProvider->addSection(section);
        } catch (const std::exception& failure) {
            // The database's own reason (busy, no permission, damaged), not "the name exists".
            VMPMessageBox::warning(BXQCommon::getMainWindow(), text("提示"),
                                   skr::section::failureText(m_pProvider->table(), failure));
            return;
        }
        if (!added) {
            VMPMessageBox::information(BXQCommon::getMainWindow(), text("提示"), text("注：规格名称已存在,请重新输入."),
                                       QMessageBox::Ok);
            return;
        }
    } else if (m_fnModify) {
        m_fnModify(section);
    }
    emit sectionSaved(section);
    accept();
}

void SKRUserHotRollingSectionDialog::cancelSlot() { reject(); }
