// SKRSectionPolyInfoParser: normalising, splitting and reading section specification texts.
#include "section_spec/SKRSectionPolyInfoParser.h"

#include "section_data/SKRCatalogueLookup.h"
#include "section_spec/SKRScriptEvaluator.h"
#include "section_spec/SKRSectionTypeTable.h"
#include "section_spec/SKRUserSectionMark.h"
#include "section_spec/WeldSectionNormParser.h"

#include <QCoreApplication>
#include <QLocale>
#include <QRegularExpression>

#include <cmath>

using skr::section::SKRSectionTypeDescriptor;

namespace {

const QString kUserMark = skr::section::userSectionMark();
const QString kUserTypeCode = QStringLiteral("ZDY");

QVector<std::int32_t> typesOfGroup(EnSKRSectionGroupType group) {
    QVector<std::int32_t> types;
    for (EnSKRSectionType type : skr::section::sectionTypesOfGroup(group)) types.append(type);
    return types;
}

// Made once and shared (implicitly) by every parser.
const QVector<std::int32_t>& standardTypes() {
    static const QVector<std::int32_t> types = typesOfGroup(sgStandard);
    return types;
}

const QVector<std::int32_t>& weldedTypes() {
    static const QVector<std::int32_t> types = typesOfGroup(sgWelded);
    return types;
}

bool starsMatch(skr::section::SKRStarRule rule, int stars) {
    using skr::section::SKRStarRule;
    switch (rule) {
    case SKRStarRule::Any: return true;
    case SKRStarRule::None: return stars == 0;
    case SKRStarRule::Some: return stars > 0;
    case SKRStarRule::One: return stars == 1;
    case SKRStarRule::Two: return stars == 2;
    }
    return false;
}

bool isDigitAt(const QString& s, int i) { return i < s.size() && s[i].isDigit(); }

int firstDigit(const QString& s) {
    for (int i = 0; i < s.size(); ++i)
        if (s[i].isDigit()) return i;
    return -1;
}

double plainNumber(const QStringRef& piece) {
    bool ok = false;
    const double value = piece.trimmed().toDouble(&ok);
    // "nan" and "inf" convert, but they are not dimensions.
    return ok && std::isfinite(value) ? value : 0.0;
}

}  // namespace

SKRSectionPolyInfoParser::SKRSectionPolyInfoParser()
    : m_standardTypes(standardTypes()), m_weldedTypes(weldedTypes()) {}

QString SKRSectionPolyInfoParser::customSectionKeyword() {
    return QCoreApplication::translate("SKRSectionPolyDlg", "自定义截面");
}

void SKRSectionPolyInfoParser::reset() {
    m_name.clear();
    m_typeCode.clear();
    m_valueText.clear();
    m_params.clear();
    m_paramCount = 0;
    m_typeIndex = -1;
    m_groupType = 0;
    m_weldBallCode = 0;
    m_sectionType = stInvalid;
}

void SKRSectionPolyInfoParser::parser(const QString& text) {
    reset();
    m_rawText = text;
    const bool userSection = text.indexOf(kUserMark) >= 1;
    m_rawText = m_rawText.simplified();
    m_rawText.remove(QLatin1Char(' '));
    const QString compact = m_rawText;
    if (userSection) {
        m_name = m_rawText;
        parserType(m_rawText);
        m_groupType = sgStandard;
    } else {
        m_rawText.remove(QLatin1Char('('));
        m_rawText.remove(QLatin1Char(')'));
        m_rawText = standardNameToUpper(m_rawText);
        m_name = m_rawText;
        parserType(m_rawText);
        m_groupType = analyseGroupType();
    }
    m_sectionType = analysePolyID();
    parserParamValue(static_cast<EnSKRSectionGroupType>(m_groupType), static_cast<EnSKRSectionType>(m_sectionType));
    m_paramCount = m_params.size();
    applyWeldedNorm(compact.toUpper());
    // Ball nodes are matched by their norms but listed with the catalogue sections.
    if (skr::section::isBallType(m_sectionType)) m_groupType = sgStandard;
    // Nothing made from a section may hold an infinite or overflowing figure: such a text is
    // an unknown type, in the group it would have had where that does not follow from the type
    // (user sections, the custom keyword).
    if (!outOfRangeDimension(text).isEmpty()) {
        if (!userSection && m_groupType != sgCustom && m_groupType == polyGroupType(m_sectionType))
            m_groupType = polyGroupType(stInvalid);
        m_sectionType = stInvalid;
        m_typeIndex = -1;
        for (double& value : m_params) value = 0.0;
    }
}

QString SKRSectionPolyInfoParser::outOfRangeDimension(const QString& text) {
    // Every number as written, left to right: digits with an optional point and fraction, or a
    // point and a fraction, then an optional exponent (scanned by hand: this runs per keystroke).
    const auto ascii = [&text](int i) { return i < text.size() && text[i] >= QLatin1Char('0') && text[i] <= QLatin1Char('9'); };
    const auto digits = [&](int i) {
        while (ascii(i)) ++i;
        return i;
    };
    const int n = text.size();
    for (int i = 0; i < n;) {
        int end;
        if (ascii(i)) {
            end = digits(i);
            if (end < n && text[end] == QLatin1Char('.')) end = digits(end + 1);
        } else if (text[i] == QLatin1Char('.') && ascii(i + 1)) {
            end = digits(i + 1);
        } else {
            ++i;
            continue;
        }
        if (end < n && (text[end] == QLatin1Char('e') || text[end] == QLatin1Char('E'))) {
            int exponent = end + 1;
            if (exponent < n && (text[exponent] == QLatin1Char('+') || text[exponent] == QLatin1Char('-'))) ++exponent;
            if (ascii(exponent)) end = digits(exponent);
        }
        const QStringRef written = text.midRef(i, end - i);
        // Up to six digits before any point and no exponent: below the limit without reading it.
        int whole = 0;
        bool exponent = false;
        bool point = false;
        for (const QChar c : written) {
            if (c == QLatin1Char('e') || c == QLatin1Char('E')) exponent = true;
            point = point || c == QLatin1Char('.');
            if (!point && !exponent && c.isDigit() && (whole > 0 || c != QLatin1Char('0'))) ++whole;
        }
        if (!exponent && whole <= 6) {
            i = end;
            continue;
        }
        bool ok = false;
        const double value = written.toDouble(&ok);
        if (!ok || !std::isfinite(value) || value > kMaxDimension) return written.toString();
        i = end;
    }
    return QString();
}

QString SKRSectionPolyInfoParser::rangeRefusal(const QString& text) {
    const QString dimension = outOfRangeDimension(text);
    if (dimension.isEmpty()) return dimension;
    const auto shortened = [](const QString& s) { return s.size() > 40 ? s.left(36) + QStringLiteral("...") : s; };
    return QStringLiteral("section '%1': dimension %2 is beyond %3 mm")
        .arg(shortened(text), shortened(dimension))
        .arg(kMaxDimension, 0, 'f', 0);
}

// The welded norms decide types 18 to 21 and confirm the others; they see the text with its
// brackets, which only the tapered H is written with.
void SKRSectionPolyInfoParser::applyWeldedNorm(const QString& copy) {
    skr::section::WeldSectionNormParser norms;
    if (!norms.isValid(copy) || !norms.match(copy)) return;
    m_sectionType = norms.matchedType();
    m_groupType = sgWelded;
    const SKRSectionTypeDescriptor* row = skr::section::sectionTypeDescriptor(m_sectionType);
    if (row && !*row->codes) {
        m_params.clear();
        const QMap<QString, double> values = norms.numericValues();  // ascending by name
        for (double value : values) m_params.append(value);
        m_paramCount = m_params.size();
        m_typeIndex = skr::section::sectionTypeGroup(m_sectionType) == sgWelded
                          ? skr::section::sectionTypeIndex(m_sectionType)
                          : m_weldedTypes.size();
    }
}

SKRWeldBallInfo SKRSectionPolyInfoParser::parser(const QString& text, const QString& expression) {
    parser(text);
    SKRWeldBallInfo info;
    if (!skr::section::isBallType(m_sectionType)) {
        m_paramCount = m_params.size();
        return info;
    }
    QMap<QString, double> variables;
    if (!m_params.isEmpty()) variables.insert(QStringLiteral("D"), m_params[0]);
    if (!expression.isEmpty()) {
        if (m_params.size() > 1) variables.insert(QStringLiteral("t"), m_params[1]);
        const auto result = skr::section::SKRScriptEvaluator::evaluate(variables, expression);
        if (result.ok) {
            info.code = result.code;
            for (auto it = result.newValues.constBegin(); it != result.newValues.constEnd(); ++it)
                variables.insert(it.key(), it.value());
        } else {
            info.code = -1;
            qWarning("%s: %s", qUtf8Printable(QCoreApplication::translate("SKRSectionPolyDlg", "表达式有误")),
                     qUtf8Printable(result.error));
        }
        m_weldBallCode = info.code;
    }
    for (auto it = variables.constBegin(); it != variables.constEnd(); ++it)
        info.values[it.key().toStdWString()] = it.value();
    m_params.clear();
    for (const auto& value : info.values) m_params.append(value.second);
    m_paramCount = m_params.size();
    return info;
}

GSectionPolyInfo SKRSectionPolyInfoParser::sectionPolyInfo() const {
    GSectionPolyInfo info;
    info.name = m_name;
    info.typeCode = m_typeCode;
    info.valueText = m_valueText;
    info.paramCount = m_paramCount;
    info.typeIndex = m_typeIndex;
    info.weldBallCode = m_weldBallCode;
    info.groupType = static_cast<EnSKRSectionGroupType>(m_groupType);
    info.sectionType = static_cast<EnSKRSectionType>(m_sectionType);
    info.params = m_params;
    return info;
}

QString SKRSectionPolyInfoParser::standardNameToUpper(const QString& text) {
    if (text.isEmpty()) return text;
    return text.left(text.size() - 1).toUpper() + text.right(1);
}

void SKRSectionPolyInfoParser::parserType(const QString& s) {
    if (s.endsWith(kUserMark)) {
        m_typeCode = kUserTypeCode;
        const QString dimensions = s.left(s.indexOf(kUserMark));
        const int digit = firstDigit(dimensions);
        const int prefixLength = digit < 0 ? dimensions.size() : digit;
        m_valueText = dimensions.mid(prefixLength);
        return;
    }
    if (isDigitAt(s, 0)) {
        m_typeCode.clear();
        m_valueText = s;
        return;
    }
    const QString keyword = customSectionKeyword();
    if (!keyword.isEmpty() && s.contains(keyword, Qt::CaseInsensitive)) {
        m_typeCode = keyword;
        m_valueText = s;
        m_valueText.remove(keyword, Qt::CaseInsensitive);
        return;
    }
    const int n = s.size();
    if (n == 1) {
        m_typeCode = s;
    } else if (n >= 2 && isDigitAt(s, 1)) {
        m_typeCode = s.left(1);
        m_valueText = s.mid(1);
    } else if (n >= 3) {
        m_typeCode = s.left(2);
        m_valueText = s.mid(2);
        if (!isDigitAt(s, 2)) {
            m_typeCode = s.left(3);
            m_valueText = s.mid(3);
        }
    }
}

EnSKRSectionType SKRSectionPolyInfoParser::analysePolyID() {
    const QString& code = m_typeCode;
    if (code.isEmpty()) return m_valueText.contains(QLatin1Char('*')) ? stNone : stPlainNumber;
    const QVector<const SKRSectionTypeDescriptor*>& rows = skr::section::sectionTypesOfCode(code);
    if (!rows.isEmpty()) {
        const int stars = m_valueText.count(QLatin1Char('*'));
        for (const SKRSectionTypeDescriptor* row : rows)
            if ((!*row->selector || m_valueText.contains(QLatin1String(row->selector))) && starsMatch(row->stars, stars))
                return row->type;
        return stInvalid;
    }
    if (code == customSectionKeyword()) {
        bool ok = false;
        const int n = m_valueText.toInt(&ok, 10);
        // Beyond this the sum leaves the 32-bit type range; such a number names no section.
        if (!ok || n < 0 || n > INT32_MAX - stCustomBase) return static_cast<EnSKRSectionType>(stCustomBase);
        return static_cast<EnSKRSectionType>(stCustomBase + n);
    }
    if (code == kUserTypeCode) {
        int id = stInvalid;
        if (skr::section::SKRCatalogueLookup::userSectionId(m_name, &id)) return static_cast<EnSKRSectionType>(id);
    }
    return stInvalid;
}

EnSKRSectionGroupType SKRSectionPolyInfoParser::analyseGroupType() const {
    if (m_typeCode.isEmpty()) return sgNone;
    const QVector<const SKRSectionTypeDescriptor*>& rows = skr::section::sectionTypesOfCode(m_typeCode);
    if (!rows.isEmpty()) return rows.first()->group;
    if (m_typeCode == kUserTypeCode) return sgStandard;
    if (m_typeCode == customSectionKeyword()) return sgCustom;
    return sgInvalid;
}

EnSKRSectionGroupType SKRSectionPolyInfoParser::polyGroupType(int type) { return skr::section::sectionTypeGroup(type); }

QString SKRSectionPolyInfoParser::weldingSteelMark(int type, int ribFlag) {
    const SKRSectionTypeDescriptor* row = skr::section::sectionTypeDescriptor(type);
    if (!row) return QString();
    return QString::fromLatin1(ribFlag != 0 && *row->ribbedMark ? row->ribbedMark : row->mark);
}

QList<double> SKRSectionPolyInfoParser::parserValue(const QString& text, QChar separator) {
    QList<double> values;
    const QVector<QStringRef> pieces = text.splitRef(separator, Qt::KeepEmptyParts, Qt::CaseSensitive);
    values.reserve(pieces.size());
    for (const QStringRef& piece : pieces) values.append(plainNumber(piece));
    return values;
}

void SKRSectionPolyInfoParser::pushBackParamValues(const QList<double>& values) {
    for (double value : values) m_params.append(value);
}

void SKRSectionPolyInfoParser::analyseComplexValue(const QString& text, const QString& pieceSeparator) {
    const QStringList pieces = text.split(pieceSeparator, Qt::KeepEmptyParts, Qt::CaseSensitive);
    for (const QString& piece : pieces) {
        QList<double> values = parserValue(piece.trimmed(), QLatin1Char('*'));
        applyModified(static_cast<EnSKRSectionType>(m_sectionType), values);
        pushBackParamValues(values);
    }
}

void SKRSectionPolyInfoParser::applyModified(const EnSKRSectionType& type, QList<double>& values) {
    const SKRSectionTypeDescriptor* row = skr::section::sectionTypeDescriptor(type);
    if (!row || values.size() != row->padWhen || values.isEmpty()) return;
    if (row->pad == skr::section::SKRPadRule::RepeatLast) values.append(values.last());
    else if (row->pad == skr::section::SKRPadRule::RepeatFirst) values.prepend(values.first());
}

void SKRSectionPolyInfoParser::parserParamValue(const EnSKRSectionGroupType& group, const EnSKRSectionType& type) {
    const SKRSectionTypeDescriptor* row = skr::section::sectionTypeDescriptor(type);
    if (group == sgStandard) {
        if (row && row->group == group) m_typeIndex = skr::section::sectionTypeIndex(type);
        if (row && row->catalogueNamed) {
            QVector<double> dimensions;
            if (skr::section::SKRCatalogueLookup::hotRolledDimensions(m_name, type, &dimensions))
                m_params += dimensions;
            return;
        }
        pushBackParamValues(parserValue(m_valueText, QLatin1Char('*')));
        return;
    }
    if (group == sgWelded) {
        m_typeIndex = row && row->group == group ? skr::section::sectionTypeIndex(type) : -1;
        if (row && *row->pieceSeparator) {
            analyseComplexValue(m_valueText, QString::fromLatin1(row->pieceSeparator));
        } else {
            QList<double> values = parserValue(m_valueText, QLatin1Char('*'));
            applyModified(type, values);
            pushBackParamValues(values);
        }
        return;
    }
    if (type == stNone) m_typeIndex = 0;
    pushBackParamValues(parserValue(m_valueText, QLatin1Char('*')));
}

QMap<QString, QString> SKRSectionPolyInfoParser::parserParamEqualString(const QString& text, const QString& separator,
                                                                         QList<QString>& keysInOrder) {
    QMap<QString, QString> map;
    const QStringList pieces = text.simplified().trimmed().split(separator, Qt::SkipEmptyParts, Qt::CaseSensitive);
    for (const QString& rawPiece : pieces) {
        const QString piece = rawPiece.trimmed();
        const QString key = piece.section(QLatin1Char('='), 0, 0).trimmed();
        map.insert(key, piece.section(QLatin1Char('='), 1, 1).trimmed());
        keysInOrder.append(key);
    }
    return map;
}

QString SKRSectionPolyInfoParser::parseStandardName(int sectionType, int ribFlag, const QString& paramText) {
    QList<QString> keys;
    const QMap<QString, QString> values = parserParamEqualString(paramText, QStringLiteral(";"), keys);
    const SKRSectionTypeDescriptor* row = skr::section::sectionTypeDescriptor(sectionType);
    QString name = weldingSteelMark(sectionType, ribFlag);
    if (row && *row->nameLayout) {
        // Each item: the separator written before the value, then the keys it may be given by (the
        // first present wins); a key missing from the text is left out with its separator.
        for (const QString& item : QString::fromLatin1(row->nameLayout).split(QLatin1Char(' '))) {
            const int colon = item.indexOf(QLatin1Char(':'));
            for (const QString& key : item.mid(colon + 1).split(QLatin1Char('|'))) {
                if (!values.contains(key)) continue;
                name += item.left(colon) + values.value(key);
                break;
            }
        }
    } else {
        // Types without a layout: their values in the order given, joined by "*".
        QStringList written;
        for (const QString& key : keys) written << values.value(key);
        name += written.join(QLatin1Char('*'));
    }
    name.remove(QLatin1Char('('));
    name.remove(QLatin1Char('['));
    name.remove(QLatin1Char(')'));
    name.remove(QLatin1Char(']'));
    return name;
}
