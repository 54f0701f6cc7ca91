// SKRSectionPolyInfoParser: normalising, splitting and reading section specification texts.
#include "section_spec/SKRSectionPolyInfoParser.h"

#include "section_data/SKRCatalogueLookup.h"
#include "section_spec/SKRScriptEvaluator.h"
#include "section_spec/SKRSectionTypeTable.h"
#include "section_spec/SKRUserSectionMark.h"
#include "section_spec/WeldSectionNormParser.h"

#include <QAtomicInt>
#include <QCoreApplication>
#include <QEvent>
#include <QThread>
#include <QLocale>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <cstdint>

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

// A piece's number as QString::toDouble reads it after trimming, or 0 where the piece is not a
// finite number ("nan" and "inf" convert, but they are not dimensions). Plain decimals ("400",
// "-8.5") of up to 15 digits are read by hand, as they are typed per keystroke: a whole number
// below 2^53 divided by an exact power of ten is rounded once, as the full conversion rounds.
double plainNumber(const QStringRef& piece) {
    static constexpr double kPowersOfTen[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                              1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    const QChar* c = piece.unicode();
    int begin = 0, end = piece.size();
    while (begin < end && c[begin].isSpace()) ++begin;
    while (end > begin && c[end - 1].isSpace()) --end;
    const bool negative = begin < end && c[begin] == QLatin1Char('-');
    int i = negative ? begin + 1 : begin;
    const auto digit = [c, end](int at) { return at < end && c[at] >= QLatin1Char('0') && c[at] <= QLatin1Char('9'); };
    // A leading zero before another digit is left to the full conversion, as is anything unusual.
    const bool plain = digit(i) && !(c[i] == QLatin1Char('0') && digit(i + 1));
    std::uint64_t whole = 0;
    int digits = 0, fraction = -1;
    for (; plain && i < end && digits <= 15; ++i) {
        if (digit(i)) {
            whole = whole * 10 + (c[i].unicode() - '0');
            ++digits;
            if (fraction >= 0) ++fraction;
        } else if (c[i] == QLatin1Char('.') && fraction < 0 && digit(i + 1)) {
            fraction = 0;
        } else {
            break;
        }
    }
    if (plain && i == end && digits <= 15) {
        const double value = static_cast<double>(whole) / kPowersOfTen[std::max(fraction, 0)];
        return negative ? -value : value;
    }
    bool ok = false;
    const double value = piece.trimmed().toDouble(&ok);
    return ok && std::isfinite(value) ? value : 0.0;
}

// Whether s holds keyword in any case; most texts are ruled out by the keyword's first character.
bool containsKeyword(const QString& s, const QString& keyword) {
    if (keyword.isEmpty()) return false;
    const ushort k = keyword[0].unicode();
    const uint first = QChar::toCaseFolded(k);
    const ushort other = QChar(k).isUpper() ? QChar(k).toLower().unicode() : QChar(k).toUpper().unicode();
    for (const QChar c : s) {
        const ushort u = c.unicode();
        // Letters other than the keyword's two cases are only checked by folding outside ASCII.
        if (u == k || u == other || (u >= 0x80 && QChar::toCaseFolded(u) == first))
            return s.contains(keyword, Qt::CaseInsensitive);
    }
    return false;
}

// The text without white space, shared when it has none.
QString withoutSpaces(const QString& text) {
    int i = 0;
    while (i < text.size() && !text[i].isSpace()) ++i;
    if (i == text.size()) return text;
    QString out = text.left(i);
    for (; i < text.size(); ++i)
        if (!text[i].isSpace()) out.append(text[i]);
    return out;
}

// Calls take(value) for each piece of text between separators, left to right.
template <typename Take>
void eachNumber(const QString& text, QChar separator, Take take) {
    const QChar* c = text.unicode();
    const int n = text.size();
    int start = 0;
    for (int i = 0; i <= n; ++i)
        if (i == n || c[i] == separator) {
            take(plainNumber(text.midRef(start, i - start)));
            start = i + 1;
        }
}

}  // namespace

SKRSectionPolyInfoParser::SKRSectionPolyInfoParser()
    : m_standardTypes(standardTypes()), m_weldedTypes(weldedTypes()) {}

namespace {

// Counts the language changes the application has seen, so that the keyword is translated again
// only after a translator comes or goes (it is looked for in every text typed).
QAtomicInt g_languageChanges;
// The application whose language changes are counted; cleared when it goes.
QAtomicPointer<QCoreApplication> g_watched;

class LanguageWatcher : public QObject {
public:
    using QObject::QObject;
    ~LanguageWatcher() override { g_watched.storeRelease(nullptr); }
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::LanguageChange) g_languageChanges.fetchAndAddOrdered(1);
        return QObject::eventFilter(watched, event);
    }
};

// Whether language changes are being counted; the watcher is installed from the application's
// own thread, again for each new application (which may bring other translators).
bool watchingLanguage() {
    QCoreApplication* app = QCoreApplication::instance();
    if (!app) return false;
    if (g_watched.loadAcquire() == app) return true;
    if (QThread::currentThread() != app->thread()) return false;
    app->installEventFilter(new LanguageWatcher(app));
    g_languageChanges.fetchAndAddOrdered(1);
    g_watched.storeRelease(app);
    return true;
}

QString translatedKeyword() { return QCoreApplication::translate("SKRSectionPolyDlg", "自定义截面"); }

}  // namespace

QString SKRSectionPolyInfoParser::customSectionKeyword() {
    if (!watchingLanguage()) return translatedKeyword();
    thread_local int seen = -1;
    thread_local QString keyword;
    const int changes = g_languageChanges.loadAcquire();
    if (changes != seen) {
        keyword = translatedKeyword();
        seen = changes;
    }
    return keyword;
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
    const bool userSection = text.indexOf(kUserMark) >= 1;
    m_rawText = withoutSpaces(text);
    // The norms see the text upper-cased with its brackets: that is the name made below when
    // there are no brackets and the last character (which the name keeps) has no capital.
    const QChar last = m_rawText.isEmpty() ? QChar() : m_rawText.back();
    const bool nameIsUpper = !userSection && !m_rawText.contains(QLatin1Char('(')) &&
                             !m_rawText.contains(QLatin1Char(')')) && last.unicode() < 0x80 &&
                             !(last >= QLatin1Char('a') && last <= QLatin1Char('z'));
    const QString normText = nameIsUpper ? QString() : m_rawText.toUpper();
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
    applyWeldedNorm(nameIsUpper ? m_rawText : normText);
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
    // point and a fraction, then an optional exponent. Scanned by hand, as this runs per keystroke:
    // up to six whole digits (leading zeros aside) and no exponent is below the limit unread.
    const QChar* c = text.unicode();
    const int n = text.size();
    const auto ascii = [c, n](int i) { return i < n && c[i] >= QLatin1Char('0') && c[i] <= QLatin1Char('9'); };
    for (int i = 0; i < n;) {
        int end = i, whole = 0;
        if (ascii(i)) {
            for (; ascii(end); ++end)
                if (whole > 0 || c[end] != QLatin1Char('0')) ++whole;
            if (end < n && c[end] == QLatin1Char('.'))
                for (++end; ascii(end); ++end) {}
        } else if (c[i] == QLatin1Char('.') && ascii(i + 1)) {
            for (end = i + 1; ascii(end); ++end) {}
        } else {
            ++i;
            continue;
        }
        bool exponent = false;
        if (end < n && (c[end] == QLatin1Char('e') || c[end] == QLatin1Char('E'))) {
            int digits = end + 1;
            if (digits < n && (c[digits] == QLatin1Char('+') || c[digits] == QLatin1Char('-'))) ++digits;
            if (ascii(digits)) {
                exponent = true;
                for (end = digits; ascii(end); ++end) {}
            }
        }
        if (exponent || whole > 6) {
            const QStringRef written = text.midRef(i, end - i);
            bool ok = false;
            const double value = written.toDouble(&ok);
            if (!ok || !std::isfinite(value) || value > kMaxDimension) return written.toString();
        }
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
    // One matcher per thread, reused: every parse tries the norms.
    thread_local skr::section::WeldSectionNormParser norms;
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
    // Built in one piece: copy-constructing the strings is cheaper than assigning them.
    return GSectionPolyInfo{m_name,         m_typeCode,    m_valueText,
                            m_paramCount,   m_typeIndex,   m_weldBallCode,
                            static_cast<EnSKRSectionGroupType>(m_groupType),
                            static_cast<EnSKRSectionType>(m_sectionType),
                            m_params};
}

QString SKRSectionPolyInfoParser::standardNameToUpper(const QString& text) {
    if (text.isEmpty()) return text;
    // ASCII (nearly every text) is upper-cased in place; anything else takes Qt's full case
    // mapping, which may change the length.
    const int last = text.size() - 1;
    bool lower = false;
    for (int i = 0; i < last; ++i) {
        const ushort c = text[i].unicode();
        if (c >= 0x80) return text.left(last).toUpper() + text.right(1);
        lower = lower || (c >= 'a' && c <= 'z');
    }
    if (!lower) return text;
    QString upper = text;
    QChar* c = upper.data();
    for (int i = 0; i < last; ++i)
        if (c[i] >= QLatin1Char('a') && c[i] <= QLatin1Char('z')) c[i] = QChar(c[i].unicode() - 'a' + 'A');
    return upper;
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
    if (containsKeyword(s, keyword)) {
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
    eachNumber(text, separator, [&values](double value) { values.append(value); });
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

namespace {

// Completes the figures values[first..] that a text may shorten, as the type's row says (a
// repeated thickness or width).
template <typename Values>
void padShortened(const SKRSectionTypeDescriptor* row, Values& values, int first) {
    const int count = values.size() - first;
    if (!row || count != row->padWhen || count == 0) return;
    if (row->pad == skr::section::SKRPadRule::RepeatLast) {
        const double last = values.last();
        values.append(last);
    } else if (row->pad == skr::section::SKRPadRule::RepeatFirst) {
        const double head = values[first];
        values.insert(first, head);
    }
}

}  // namespace

void SKRSectionPolyInfoParser::applyModified(const EnSKRSectionType& type, QList<double>& values) {
    padShortened(skr::section::sectionTypeDescriptor(type), values, 0);
}

void SKRSectionPolyInfoParser::parserParamValue(const EnSKRSectionGroupType& group, const EnSKRSectionType& type) {
    m_params.reserve(8);  // one allocation for any section's figures
    const SKRSectionTypeDescriptor* row = skr::section::sectionTypeDescriptor(type);
    if (group == sgStandard) {
        if (row && row->group == group) m_typeIndex = skr::section::sectionTypeIndex(type);
        if (row && row->catalogueNamed) {
            QVector<double> dimensions;
            if (skr::section::SKRCatalogueLookup::hotRolledDimensions(m_name, type, &dimensions))
                m_params += dimensions;
            return;
        }
        eachNumber(m_valueText, QLatin1Char('*'), [this](double value) { m_params.append(value); });
        return;
    }
    if (group == sgWelded) {
        m_typeIndex = row && row->group == group ? skr::section::sectionTypeIndex(type) : -1;
        if (row && *row->pieceSeparator) {
            analyseComplexValue(m_valueText, QString::fromLatin1(row->pieceSeparator));
        } else {
            // parserValue, applyModified and pushBackParamValues in one pass, without a list.
            const int first = m_params.size();
            eachNumber(m_valueText, QLatin1Char('*'), [this](double value) { m_params.append(value); });
            padShortened(row, m_params, first);
        }
        return;
    }
    if (type == stNone) m_typeIndex = 0;
    eachNumber(m_valueText, QLatin1Char('*'), [this](double value) { m_params.append(value); });
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
