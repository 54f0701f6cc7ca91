// The section dialog's parameter manager.
#include "section_spec/SKRPolyParamManger.h"

#include "section_spec/SKRRangeRule.h"

#include "ndp/NDPTolerance.h"
#include "section_data/SKRDatabaseError.h"
#include "section_data/SKRHotRollingSectionDBProvider.h"
#include "section_data/SKRPerMetreLookup.h"
#include "section_spec/SKRSectionParams.h"
#include "section_spec/SKRSectionTypeTable.h"
#include "section_spec/SKRScriptEvaluator.h"
#include "section_spec/SKRSectionPolyInfoParser.h"
#include "section_spec/WeldSectionNormParser.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QRegularExpression>

#include <cmath>
#include <cstring>
#include <exception>

using skr::section::SectionParam;
using skr::section::SKRHotRollingSection;
using skr::util::FetchInstance;

namespace {

// The written form of standard sections that are not looked up in the catalogue by their name
// alone: the code and the values joined by "*", radii left out.
QString standardCode(int sectionType) {
    const skr::section::SKRSectionTypeDescriptor* row = skr::section::sectionTypeDescriptor(sectionType);
    if (!row || !row->writtenByDimensions) return QString();
    return QString::fromUtf8(row->codes).section(QLatin1Char(','), 0, 0);
}

bool isNormType(int sectionType) {
    const skr::section::SKRSectionTypeDescriptor* row = skr::section::sectionTypeDescriptor(sectionType);
    return row && row->normChecked;
}

QString dialogText(const char* text) { return QCoreApplication::translate("SKRSectionPolyDlg", text); }

// The value of a type's insertion-point expression; 0 when it cannot be evaluated.
double expressionValue(const QString& expression, const QMap<QString, double>& values) {
    static const QString result = QStringLiteral("bxqInsertPointValue");
    const auto evaluated = skr::section::SKRScriptEvaluator::evaluate(
        values, QStringLiteral("var %1 = (%2); 0").arg(result, expression));
    return evaluated.ok ? evaluated.newValues.value(result, 0.0) : 0.0;
}

// The section type's row of the section database; not found without the scheme provider.
std::pair<bool, skr::section::SectionScheme> typeScheme(int sectionType) {
    auto* schemes = FetchInstance<skr::section::SectionSchemeProvider>();
    return schemes ? schemes->findScheme(sectionType) : std::make_pair(false, skr::section::SectionScheme());
}

}  // namespace

SKRPolyParamManger::SKRPolyParamManger() = default;

bool SKRPolyParamManger::setSectionType(int sectionType) {
    auto* provider = FetchInstance<skr::section::SectionParamProvider>();
    if (!provider) return false;
    const std::vector<SectionParam> params = provider->paramsOf(sectionType);
    if (params.empty()) return false;
    m_iSectionType = sectionType;
    m_oParams = QVector<SectionParam>(params.begin(), params.end());
    m_oValues.clear();
    for (const SectionParam& param : m_oParams) m_oValues << param.defVal;
    m_bCatalogue = false;
    m_oCatalogue = SKRHotRollingSection();
    m_bCustom = false;
    return true;
}

void SKRPolyParamManger::setCustomSection(int id, const QString& description, double insertPointX,
                                          double insertPointY) {
    m_iSectionType = stCustomBase + id;
    m_oParams.clear();
    m_oValues.clear();
    m_bCatalogue = false;
    m_oCatalogue = SKRHotRollingSection();
    m_bCustom = true;
    m_strCustomName = description;
    m_strCustomInsertPoint = QString::number(insertPointX, 'g', 15) + QLatin1Char(',') +
                             QString::number(insertPointY, 'g', 15);
}

bool SKRPolyParamManger::setParamValue(int index, const QString& text) {
    if (index < 0 || index >= m_oValues.size()) return false;
    m_oValues[index] = text.trimmed();
    m_bCatalogue = false;  // typed values make a parametric section of their own
    return true;
}

bool SKRPolyParamManger::setCatalogueSection(const SKRHotRollingSection& row) {
    if (!setSectionType(row.sectionType)) return false;
    for (const auto& param : row.params)
        for (int i = 0; i < m_oParams.size(); ++i)
            if (m_oParams[i].paramCode == QString::fromStdWString(param.first) && param.second != 0)
                m_oValues[i] = QString::number(param.second, 'g', 15);
    m_bCatalogue = true;
    m_oCatalogue = row;
    return true;
}

bool SKRPolyParamManger::matchCatalogueRow() { return matchCatalogueRow(nullptr); }

bool SKRPolyParamManger::matchCatalogueRow(QString* error) {
    auto* catalogue = FetchInstance<skr::section::SKRHotRollingSectionDBProvider>();
    if (!catalogue) return false;
    const QMap<QString, double> values = numericValues();
    std::vector<SKRHotRollingSection> rows;
    try {
        rows = catalogue->listByType(m_iSectionType);
    } catch (const std::exception& failure) {
        if (error) *error = skr::section::failureText(catalogue->table(), failure);
        return false;
    }
    for (const SKRHotRollingSection& row : rows) {
        bool same = !row.params.empty();
        for (const auto& param : row.params) {
            const QString code = QString::fromStdWString(param.first);
            if (param.second != 0 && (!values.contains(code) || std::abs(values.value(code) - param.second) > 1e-9))
                same = false;
        }
        if (same) return setCatalogueSection(row);
    }
    return false;
}

bool SKRPolyParamManger::setSpecification(const QString& text) {
    SKRSectionPolyInfoParser parser;
    parser.parser(text);
    const GSectionPolyInfo info = parser.sectionPolyInfo();
    if (info.sectionType <= 0) return false;
    QString unread;
    const skr::section::SKRHotRollingLookup row = skr::section::SKRPerMetreLookup::findSection(info.name, &unread);
    if (row.first) return setCatalogueSection(row.second);
    if (!unread.isEmpty()) return false;  // whether it is a catalogue row is unknown: take nothing
    QMap<QString, double> values;
    if (!skr::section::sectionParamsByCode(info, values) || !setSectionType(info.sectionType)) return false;
    for (int i = 0; i < m_oParams.size(); ++i)
        if (values.contains(m_oParams[i].paramCode))
            m_oValues[i] = QString::number(values.value(m_oParams[i].paramCode), 'g', 15);
    m_iRibFlag = info.typeCode == QLatin1String("WSR") ? 1 : 0;
    return true;
}

QString SKRPolyParamManger::typeName() const {
    if (m_bCustom) return SKRSectionPolyInfoParser::customSectionKeyword();
    const auto scheme = typeScheme(m_iSectionType);
    return scheme.first ? scheme.second.polyName : QString();
}

QString SKRPolyParamManger::pictureName() const {
    const auto scheme = typeScheme(m_iSectionType);
    return scheme.first ? scheme.second.polyPicName : QString();
}

QString SKRPolyParamManger::hintText() const {
    const auto scheme = typeScheme(m_iSectionType);
    return scheme.first ? scheme.second.hintMsg : QString();
}

QMap<QString, double> SKRPolyParamManger::numericValues() const {
    QMap<QString, double> values;
    for (int i = 0; i < m_oParams.size(); ++i) values.insert(m_oParams[i].paramCode, m_oValues[i].toDouble());
    return values;
}

QString SKRPolyParamManger::specification() const {
    if (m_bCustom) return m_strCustomName.simplified();
    if (m_bCatalogue) return QString::fromStdWString(m_oCatalogue.standardName).simplified();
    if (isNormType(m_iSectionType)) {
        QStringList pieces;
        for (int i = 0; i < m_oParams.size(); ++i) pieces << m_oParams[i].paramCode + QLatin1Char('=') + m_oValues[i];
        return SKRSectionPolyInfoParser::parseStandardName(m_iSectionType, m_iRibFlag, pieces.join(QLatin1Char(';')))
            .simplified();
    }
    const QString code = standardCode(m_iSectionType);
    if (code.isEmpty()) return QString();
    QStringList dimensions;
    for (int i = 0; i < m_oParams.size(); ++i)
        if (m_oParams[i].paramCode != QLatin1String("r") && m_oParams[i].paramCode != QLatin1String("r1"))
            dimensions << m_oValues[i];
    return (code + dimensions.join(QLatin1Char('*'))).simplified();
}

qint64 SKRPolyParamManger::specificationKey() const {
    if (m_bCatalogue)
        return (static_cast<qint64>(m_oCatalogue.sectionType) << 32) | static_cast<quint32>(m_oCatalogue.subId);
    const QString text = specification();
    if (text.isEmpty()) return 0;
    const QByteArray digest = QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha256);
    qint64 key = 0;
    std::memcpy(&key, digest.constData(), sizeof key);
    return key;
}

QString SKRPolyParamManger::insertPoint() const {
    if (m_bCustom) return m_strCustomInsertPoint;
    const auto scheme = typeScheme(m_iSectionType);
    if (!scheme.first) return QStringLiteral("0,0");
    const QMap<QString, double> values = numericValues();
    return QString::number(expressionValue(scheme.second.insPointX, values), 'g', 15) + QLatin1Char(',') +
           QString::number(expressionValue(scheme.second.insPointY, values), 'g', 15);
}

bool SKRPolyParamManger::checkParams(QString* message, int* index) const {
    const auto fail = [message, index](const QString& text, int at) {
        if (message) *message = text;
        if (index) *index = at;
        return false;
    };
    if (index) *index = -1;
    if (m_bCatalogue || m_bCustom) return true;
    if (m_oParams.isEmpty()) return fail(dialogText("截面规格输入错误，请重新输入截面信息"), -1);
    for (int i = 0; i < m_oParams.size(); ++i) {
        bool number = false;
        m_oValues[i].toDouble(&number);
        const QString rule = m_oParams[i].validExpr;
        if (!number || (!rule.isEmpty() && !skr::section::SKRScriptEvaluator::checkRules(
                                               {}, {rangeRuleScript(rule, m_oValues[i])})))
            return fail(m_oParams[i].invalidMsg.isEmpty() ? dialogText("截面规格输入错误，请重新输入截面信息")
                                                          : m_oParams[i].invalidMsg,
                        i);
    }
    if (!isNormType(m_iSectionType)) return true;
    const QMap<QString, double> values = numericValues();
    if (values.contains(QStringLiteral("h1")) && values.contains(QStringLiteral("h2")) &&
        !(values.value(QStringLiteral("h1")) > values.value(QStringLiteral("h2")) + ndp::g_DistEpsilon)) {
        int at = -1;
        for (int i = 0; i < m_oParams.size(); ++i)
            if (m_oParams[i].paramCode == QLatin1String("h1")) at = i;
        return fail(dialogText("截面规格输入错误，h1必须大于h2"), at);
    }
    // The rules of the type's norm, on the values as they are (every parameter is present here).
    for (const skr::section::SectionNormEntry& entry : skr::section::WeldSectionNormParser::weldedNorms())
        if (entry.sectionType == m_iSectionType)
            return skr::section::SKRScriptEvaluator::checkRules(values, entry.rules)
                       ? true
                       : fail(dialogText("截面规格输入错误，请重新输入截面信息"), -1);
    return true;
}
