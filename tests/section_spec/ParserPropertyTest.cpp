// Generated and mutated specification texts, from a fixed seed, against the invariants that hold
// for every text the parser is given, however malformed.
#include "section_spec/SKRSectionPolyInfoParser.h"

#include "section_spec/QtPrinters.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

#include <cmath>
#include <random>
#include <vector>

namespace {

constexpr int kTextCount = 200000;
constexpr unsigned kSeed = 20240611u;
constexpr int kMaxReportedFailures = 20;

const QVector<int> kStandardTypes{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 1011, 1012, 1013};
const QVector<int> kWeldedTypes{11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21};

// Building blocks of the generated texts.
struct Pools {
    QStringList codes = QStringList({"I", "[", "L", "D", "HW", "HM", "HT", "HN", "HP", "C", "Z", "TN", "TW", "TM", "□",
                                  "H", "T", "B", "HD", "BS", "WS", "WSR", "BB", "TY", "H(", "ZDY", "自定义截面",
                                  "CustomSection", "X", "Q", "h", "hd", "wsr", "bb"});
    QStringList separators = QStringList({"*", "*", "*", "/", "~", "+H", "+", "(", ")", ")*", "(ZDY)", "**", "="});
    QStringList noise = QStringList({" ", "  ", "\t", "\n", "\r", "\x01", "\x1f", "\x7f", "\xc2\xa0", "\xe3\x80\x80",
                                  "\xf0\x9f\x98\x80", "\xf0\xa0\x80\x80", "ß", "ǅ", "ﬁ", "٣", "１", "nan", "inf",
                                  "e", "E", "-", ".", "..", "a", "z", "(ZDY)", "自定义截面", "[", "]", "\"", "'",
                                  ";", "\\", "%1", "$", "^"});
    QStringList corpus = QStringList({
        "H400*200*8*13", "H400*200*8*13*12", "hn 400*200*8*13", "B300*10*12", "B300*200*10*12", "L100*10",
        "L100*80*10", "L100", "D20", "D89*4", "200*300", "250", "i20a", "[20a", "C 200*70*20*2", "Z270*80*8*3(ZDY)",
        "(ZDY)H400*200*8*13", "H(400~300)*200*8*10", "H400/300*200*8*10*12", "H400*200/300*8*10", "D500~400*10",
        "BB400*300*200*150*10*12", "TY400*300*200*150*10", "H400*200*8*13+H300*150*6*10", "HD300*10", "T400*200*10",
        "BS300", "WS300*8", "WSR300*8", "自定义截面7", "□200*100*8", "TN200*200*8*12", "H400.5*200*8*13",
        "H400*200*8.*13", "H.5*200*8*13"});
};

struct TextGenerator {
    explicit TextGenerator(unsigned seed) : m_random(seed) {}

    QString next() {
        const int mode = pick(1000);
        if (mode < 5) return QString();
        if (mode < 8) return veryLong();
        QString text = mode < 400 ? structured() : mode < 800 ? mutate(oneOf(m_pools.corpus)) : soup();
        if (pick(8) == 0) text = text.toLower();
        if (pick(4) == 0) text = mutate(text);
        return text;
    }

    int pick(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(m_random); }

    const QString& oneOf(const QStringList& list) { return list[pick(list.size())]; }

    QString number() {
        switch (pick(12)) {
        case 0: return QStringLiteral(".5");
        case 1: return QString::number(pick(1000)) + QLatin1Char('.');
        case 2: return QString(pick(400) + 1, QLatin1Char('9'));
        case 3: return QStringLiteral("0");
        case 4: return QString::number(pick(100)) + QLatin1Char('.') + QString::number(pick(100));
        default: return QString::number(pick(2000) + 1);
        }
    }

    QString structured() {
        QString text = pick(10) == 0 ? QString() : oneOf(m_pools.codes);
        const int pieces = 1 + pick(12);
        for (int i = 0; i < pieces; ++i) {
            if (i > 0) text += oneOf(m_pools.separators);
            text += number();
        }
        if (pick(10) == 0) text += QStringLiteral("(ZDY)");
        return text;
    }

    QString soup() {
        QString text;
        const int tokens = 1 + pick(30);
        for (int i = 0; i < tokens; ++i) {
            switch (pick(5)) {
            case 0: text += oneOf(m_pools.codes); break;
            case 1: text += oneOf(m_pools.separators); break;
            case 2: text += oneOf(m_pools.noise); break;
            case 3: text += QChar(static_cast<ushort>(pick(0x10000))); break;  // lone surrogates too
            default: text += number(); break;
            }
        }
        return text;
    }

    QString veryLong() {
        QString text = oneOf(m_pools.codes);
        const int target = 2000 + pick(8000);
        while (text.size() < target) text += number() + oneOf(m_pools.separators);
        return text;
    }

    QString mutate(QString text) {
        const int count = 1 + pick(4);
        for (int i = 0; i < count; ++i) {
            const int at = text.isEmpty() ? 0 : pick(text.size() + 1);
            switch (pick(7)) {
            case 0: text.insert(at, oneOf(m_pools.separators)); break;
            case 1: text.insert(at, oneOf(m_pools.noise)); break;
            case 2: text.insert(at, oneOf(m_pools.codes)); break;
            case 3: text.remove(at, 1 + pick(3)); break;
            case 4:
                if (at < text.size()) text[at] = text[at].isUpper() ? text[at].toLower() : text[at].toUpper();
                break;
            case 5: text.insert(at, text.mid(pick(text.size() + 1), 1 + pick(6))); break;
            default: text.truncate(at); break;
            }
        }
        return text;
    }

    std::mt19937 m_random;
    Pools m_pools;
};

// A text for a failure message: control and non-ASCII characters percent-encoded, separators kept.
std::string printable(const QString& text) { return text.toUtf8().toPercentEncoding(" *()/~+=.;[]").toStdString(); }

bool sameRecord(const GSectionPolyInfo& a, const GSectionPolyInfo& b) {
    return a.name == b.name && a.typeCode == b.typeCode && a.valueText == b.valueText &&
           a.paramCount == b.paramCount && a.typeIndex == b.typeIndex && a.weldBallCode == b.weldBallCode &&
           a.groupType == b.groupType && a.sectionType == b.sectionType && a.params == b.params;
}

int expectedTypeIndex(const GSectionPolyInfo& info) {
    switch (info.groupType) {
    case sgStandard: return kStandardTypes.indexOf(info.sectionType);
    case sgWelded: return kWeldedTypes.indexOf(info.sectionType);
    case sgNone: return info.sectionType == stNone ? 0 : -1;
    default: return -1;
    }
}

// Returns what is wrong with the record of text, or an empty string.
//
// Group and type: the group is polyGroupType(sectionType) except in these documented cases:
// - a user section (the text holds "(ZDY)" at position 1 or later) is in the standard group
//   whatever its type;
// - the type code "ZDY" names a user section that no registered catalogue holds: standard
//   group, type -1;
// - an angle "L" whose dimensions hold neither one nor two "*": standard group, type -1;
// - the custom keyword: custom group, type 7000 + n where n is the number after the keyword
//   (checked when n is plainly written); a sign could take it below 7000.
// Ball nodes are forced into the standard group, which agrees with polyGroupType.
QString violation(const QString& text, const GSectionPolyInfo& info) {
    const QString keyword = SKRSectionPolyInfoParser::customSectionKeyword();
    const bool userSection = text.indexOf(QStringLiteral("(ZDY)")) >= 1;

    if (info.paramCount != info.params.size()) return QStringLiteral("paramCount differs from params");
    for (QChar c : info.name)
        if (c.isSpace()) return QStringLiteral("space left in the name");
    if (!userSection && (info.name.contains(QLatin1Char('(')) || info.name.contains(QLatin1Char(')'))))
        return QStringLiteral("parenthesis left in the name of an ordinary section");
    if (info.weldBallCode != 0) return QStringLiteral("weld-ball code without a ball expression");

    if (userSection) {
        if (info.groupType != sgStandard) return QStringLiteral("user section outside the standard group");
    } else if (info.typeCode == QLatin1String("ZDY")) {
        if (info.groupType != sgStandard || info.sectionType != stInvalid)
            return QStringLiteral("uncatalogued ZDY name is not standard group with type -1");
    } else if (info.typeCode == QLatin1String("L") && info.valueText.count(QLatin1Char('*')) != 1 &&
               info.valueText.count(QLatin1Char('*')) != 2) {
        if (info.groupType != sgStandard || info.sectionType != stInvalid)
            return QStringLiteral("malformed angle is not standard group with type -1");
    } else if (!keyword.isEmpty() && info.typeCode == keyword) {
        if (info.groupType != sgCustom) return QStringLiteral("custom keyword outside the custom group");
        if (QRegularExpression(QStringLiteral("\\A[0-9]{1,6}\\z")).match(info.valueText).hasMatch() &&
            info.sectionType != stCustomBase + info.valueText.toInt())
            return QStringLiteral("custom type is not 7000 plus its number");
    } else if (info.groupType != SKRSectionPolyInfoParser::polyGroupType(info.sectionType)) {
        return QStringLiteral("group %1 does not belong to type %2").arg(info.groupType).arg(info.sectionType);
    }
    if (info.groupType == sgCustom && info.typeCode != keyword) return QStringLiteral("custom group without keyword");

    if (info.typeIndex != expectedTypeIndex(info))
        return QStringLiteral("typeIndex %1 is not the position of type %2 in group %3")
            .arg(info.typeIndex)
            .arg(info.sectionType)
            .arg(info.groupType);

    // The type code and the dimension text are cut from the front of the name.
    if (info.typeCode == QLatin1String("ZDY") && info.name.endsWith(QStringLiteral("(ZDY)"))) {
        if (!info.name.left(info.name.indexOf(QStringLiteral("(ZDY)"))).endsWith(info.valueText))
            return QStringLiteral("user-section dimensions are not the end of its name");
    } else if (info.typeCode.isEmpty()) {
        if (info.valueText != info.name && !(info.name.size() <= 2 && info.valueText.isEmpty()))
            return QStringLiteral("no type code, yet the dimensions are not the name");
    } else if (info.typeCode != keyword) {
        if (info.typeCode.size() > 3) return QStringLiteral("type code longer than three characters");
        if (info.typeCode + info.valueText != info.name) return QStringLiteral("code and dimensions do not make the name");
    }
    return QString();
}

}  // namespace

TEST(ParserProperty, GeneratedTextsKeepTheParserInvariants) {
    TextGenerator generator(kSeed);
    SKRSectionPolyInfoParser reused;  // has always parsed the previous text first
    int failures = 0, longest = 0, nonEmptyTypes = 0;
    for (int i = 0; i < kTextCount && failures < kMaxReportedFailures; ++i) {
        const QString text = generator.next();
        longest = std::max(longest, int(text.size()));
        try {
            SKRSectionPolyInfoParser fresh;
            fresh.parser(text);
            const GSectionPolyInfo info = fresh.sectionPolyInfo();
            reused.parser(text);
            const GSectionPolyInfo again = reused.sectionPolyInfo();

            QString problem = violation(text, info);
            if (problem.isEmpty() && !sameRecord(info, again))
                problem = QStringLiteral("a second parse of the same text gave another record");
            if (problem.isEmpty()) {
                const QList<double> values = SKRSectionPolyInfoParser::parserValue(text, QLatin1Char('*'));
                if (values.size() != text.count(QLatin1Char('*')) + 1)
                    problem = QStringLiteral("parserValue count is not separators plus one");
                for (double value : values)
                    if (!std::isfinite(value)) problem = QStringLiteral("parserValue gave a non-finite value");
            }
            if (!problem.isEmpty()) {
                ++failures;
                ADD_FAILURE() << "text #" << i << " \"" << printable(text)
                              << "\": " << problem.toStdString() << " (name \""
                              << printable(info.name) << "\", type " << info.sectionType
                              << ", group " << info.groupType << ")";
            }
            if (info.sectionType != stInvalid) ++nonEmptyTypes;
        } catch (...) {
            ++failures;
            ADD_FAILURE() << "text #" << i << " \"" << printable(text) << "\" threw";
        }
    }
    // The generator must reach both recognised and rejected texts, and some long ones.
    EXPECT_GT(nonEmptyTypes, kTextCount / 10);
    EXPECT_LT(nonEmptyTypes, kTextCount - kTextCount / 10);
    EXPECT_GE(longest, 2000);
}
