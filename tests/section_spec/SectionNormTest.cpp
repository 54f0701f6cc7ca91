// Section norms: the welded and ball formats with their captures and completions, the order in
// which entries are tried, the validity test, matching by hand against the expressions, and
// catalogue norms built from parameter lists.
#include "section_spec/HotRollingSectionNormParser.h"
#include "section_spec/WeldSectionNormParser.h"

#include "section_spec/QtPrinters.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

using namespace skr::section;

namespace {

using Values = QMap<QString, QString>;

Values matchedValues(SectionNormParser& parser) {
    Values values;
    parser.namedValues(values);
    return values;
}

// "h=400 b=200" as a map.
Values valuesOf(const char* pairs) {
    Values values;
    for (const QString& pair : QString::fromLatin1(pairs).split(QLatin1Char(' '), Qt::SkipEmptyParts))
        values.insert(pair.section(QLatin1Char('='), 0, 0), pair.section(QLatin1Char('='), 1));
    return values;
}

}  // namespace

// The first entry whose format matches decides the type; the values are those after completion.
TEST(WeldedNormFormats, EachFormatAcceptsItsTextAndCapturesTheNamedValues) {
    const struct { const char* text; int type; const char* values; } rows[] = {
        {"H400*200*8*13", 11, "h=400 b=200 tw=8 t1=13 t2=13"},
        {"H400*200*8*13*12", 11, "h=400 b=200 tw=8 t1=13 t2=12"},
        // Values need a leading digit and may end with a point.
        {"H400*200*8.*13", 11, "h=400 b=200 tw=8. t1=13 t2=13"},
        {"H400.5*200*8*13", 11, "h=400.5 b=200 tw=8 t1=13 t2=13"},
        {"H400*200/300*8*10", 12, "h=400 b1=200 b2=300 tw=8 t1=10 t2=10"},
        {"H400*200/300*8*10*12", 12, "h=400 b1=200 b2=300 tw=8 t1=10 t2=12"},
        {"B300*10*12", 13, "b1=300 b2=300 t1=10 t2=12"}, {"B300*200*10*12", 13, "b1=300 b2=200 t1=10 t2=12"},
        {"HD300*10", 14, "d=300 t=10"},
        {"H400*200*8*13+H300*150*6*10", 15, "h1=400 b1=200 tw1=8 t1=13 t2=13 h2=300 b2=150 tw2=6 t3=10 t4=10"},
        {"H400*200*8*13*12+H300*150*6*10", 15, "h1=400 b1=200 tw1=8 t1=13 t2=12 h2=300 b2=150 tw2=6 t3=10 t4=10"},
        {"H400*200*8*13+H300*150*6*10*9", 15, "h1=400 b1=200 tw1=8 t1=13 t2=13 h2=300 b2=150 tw2=6 t3=10 t4=9"},
        {"H400*200*8*13*12+H300*150*6*10*9", 15, "h1=400 b1=200 tw1=8 t1=13 t2=12 h2=300 b2=150 tw2=6 t3=10 t4=9"},
        {"T400*200*10", 16, "h=400 b=200 t1=10 t2=10"}, {"T400*200*10*12", 16, "h=400 b=200 t1=10 t2=12"},
        {"H(400~300)*200*8*10", 17, "h1=400 h2=300 b=200 tw=8 t1=10 t2=10"},
        {"H(400~300)*200*8*10*12", 17, "h1=400 h2=300 b=200 tw=8 t1=10 t2=12"}, {"BS300", 1012, "D=300"},
        {"WS300*8", 1013, "D=300 t=8"}, {"WSR300*8", 1013, "D=300 t=8"}, {"D500~400*10", 18, "R1=500 R2=400 t=10"},
        {"BB400*300*200*150*10*12", 19, "B1=400 B2=300 b1=200 b2=150 t1=10 t2=12"},
        {"TY400*300*200*150*10", 21, "R1=400 R2=300 r1=200 r2=150 t=10"},
        {"H400/300*200*8*10*12", 20, "h1=400 h2=300 b=200 tw=8 t1=10 t2=12"},  // slash between depths, not widths
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        WeldSectionNormParser parser;
        const QString text = QString::fromLatin1(row.text);
        EXPECT_TRUE(parser.isValid(text));
        ASSERT_TRUE(parser.match(text));
        EXPECT_EQ(parser.matchedType(), row.type);
        EXPECT_EQ(matchedValues(parser), valuesOf(row.values));
    }
}

// Each refusal follows a successful match, which it must forget.
TEST(WeldedNormFormats, TextsOutsideEveryFormatAreRefusedAndForgetThePreviousMatch) {
    const char* refused[] = {
        "", "H", "H400*200*8", "H400*200*8*13*12*11",  // too few values, too many
        "H400*200*8*13 ",                               // the caller removes spaces, the norm does not
        "h400*200*8*13", "XH400*200*8*13", "H400*200*8*13X",  // upper-case marks at the start, nothing after
        "H400~300*200*8*10", "H(400~300*200*8*10",      // the tapered H needs its brackets
        "H400**8*13", "H-400*200*8*13", "D89*4" /* a catalogue pipe */, "D500*400*10", "HN400*200*8*13", "BS300*8",
        "WS300", "H400/300*200*8*10" /* the two-depth H has one, long format */, "HD300", "BB400*300*200*150*10",
        "TY400*300*200*150", "H400*200*8*13+300*150*6*10",
        // Values need a leading digit and at most one point.
        "H.5*200*8*13", "H400*200*.8*13", "B.300*10*12", "WS300*.8", "H400*200*8*13.5.", "H400*200*8..5*13",
    };
    WeldSectionNormParser parser;
    for (const char* text : refused) {
        SCOPED_TRACE(text);
        ASSERT_TRUE(parser.match(QStringLiteral("H400*200*8*13")));
        EXPECT_FALSE(parser.match(QString::fromLatin1(text)));
        EXPECT_EQ(parser.matchedType(), -1);
        EXPECT_EQ(parser.matchedEntry(), nullptr);
        EXPECT_TRUE(matchedValues(parser).isEmpty());
    }
}

TEST(WeldedNormValidity, TextMustStartWithTheKeyOfSomeEntry) {
    const struct { const char* text; bool valid; } rows[] = {
        {"H400*200*8*13", true}, {"HN400*200*8*13", true}, {"H", true},          {"B", true},
        {"T", true},             {"D20", true},            {"BS", true},         {"WSR", true},
        {"WS", true},            {"BB", true},             {"TY", true},         {"HD", true},
        {"", false},             {"I20a", false},          {"h400", false},      {"b300", false},
        {"XH400", false},        {"(H400", false},         {" H400", false},     {"W", false},
        {"C200", false},         {"L100*10", false},
    };
    WeldSectionNormParser parser;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(parser.isValid(QString::fromLatin1(row.text)), row.valid);
    }
}

// The example of every entry matches that entry and keeps its rules. The norms match texts without
// running their expressions; every text, well or badly formed, gets the entry and values the
// expressions give.
TEST(WeldedNormTable, ExamplesMatchTheirEntriesAndMatchingByHandAgreesWithTheExpressions) {
    const SectionNormTable table(WeldSectionNormParser::weldedNorms());
    ASSERT_EQ(table.entries().size(), 14);
    QStringList texts;
    for (const SectionNormEntry& entry : table.entries()) {
        const QString example = SectionNormParser::exampleText(entry);
        WeldSectionNormParser own;
        QStringList failed;
        ASSERT_TRUE(own.match(example)) << example.toStdString();
        EXPECT_EQ(own.matchedEntry() - own.entries().data(), &entry - table.entries().data()) << example.toStdString();
        EXPECT_TRUE(own.checkRules(&failed)) << example.toStdString() << ": " << failed.join(' ').toStdString();
        texts << example << example + QStringLiteral(".5") << example + QStringLiteral("*") << example.chopped(1)
              << QString(example).replace(QStringLiteral("*"), QStringLiteral(".5*"))
              << QString(example).replace(QStringLiteral("*"), QStringLiteral("*.5"))
              << QString(example).replace(QStringLiteral("0"), QStringLiteral("0.")) << example + QStringLiteral("x");
    }
    texts << QStringLiteral("H") << QStringLiteral("H(600~400)*200*8*12") << QStringLiteral("H(600~400*200*8*12")
          << QStringLiteral("WSR300*8") << QStringLiteral("BS100.") << QStringLiteral("H400*200*8*13+H");
    for (const QString& text : texts) {
        int expectedEntry = -1;
        Values expected;
        for (int e = 0; e < table.entries().size() && expectedEntry < 0; ++e)
            for (const auto& format : table.formatsOf(e)) {
                const QRegularExpressionMatch found = format.expression.match(text);
                if (!found.hasMatch()) continue;
                expectedEntry = e;
                for (const QString& name : table.entries()[e].paramNames)
                    if (!found.captured(name).isNull()) expected.insert(name, found.captured(name));
                break;
            }
        WeldSectionNormParser parser;
        const bool matched = parser.match(text);
        Values values = matchedValues(parser);
        // Completions fill values a short form leaves out; compare what the text itself gave.
        for (auto it = values.begin(); it != values.end();)
            it = expected.contains(it.key()) ? std::next(it) : values.erase(it);
        SCOPED_TRACE(text.toStdString());
        EXPECT_EQ(matched, expectedEntry >= 0);
        EXPECT_EQ(parser.matchedType(), expectedEntry < 0 ? -1 : table.entries()[expectedEntry].sectionType);
        EXPECT_EQ(values, expected);
    }
}

TEST(NormExpression, LiteralTokensMatchThemselvesAndNamesCaptureNumbers) {
    SectionNormEntry entry;
    entry.paramNames = QStringList{"a", "b"};
    const QRegularExpression expression(
        SectionNormParser::expressionOf(entry, QStringList{"X(", "a", "+H", "b", ")*"}));
    ASSERT_TRUE(expression.isValid()) << expression.errorString().toStdString();
    const QRegularExpressionMatch found = expression.match(QStringLiteral("X(12.5+H3)*"));
    ASSERT_TRUE(found.hasMatch());
    EXPECT_EQ(found.captured("a"), QStringLiteral("12.5"));
    EXPECT_EQ(found.captured("b"), QStringLiteral("3"));
    for (const char* text : {"X12.5+H3)*", "X(12.5H3)*", "X(12.5++H3)*", "X(12.5+H3)", "X(12.5+H3)**",
                             "X(12.5+H3)*)", "YX(1+H3)*", "X(+H3)*", "X(1+H.3)*"}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(expression.match(QString::fromLatin1(text)).hasMatch());
    }
}

TEST(HotRollingNorms, EveryTextIsValidButStarSeparatedNormsMatchTheirOwnTextsOnly) {
    HotRollingSectionNormParser empty({});
    for (const char* text : {"", "H400*200*8*13", "I20a", "anything at all", "(ZDY)"})
        EXPECT_TRUE(empty.isValid(QString::fromLatin1(text))) << text;
    EXPECT_FALSE(empty.match(QStringLiteral("HN400*200*8*13")));
    EXPECT_EQ(empty.matchedType(), -1);

    HotRollingSectionNormParser parser({
        HotRollingSectionNormParser::starSeparatedNorm("HN", stHotRolledH, {"h", "b", "tw", "t"}, {"h>2*t"}),
        HotRollingSectionNormParser::starSeparatedNorm("C", stCSection, {"h", "b", "c", "t"}),
        HotRollingSectionNormParser::starSeparatedNorm("", stNone, {"a", "b"}),
    });
    ASSERT_TRUE(parser.match(QStringLiteral("HN400*200*8*13")));
    EXPECT_EQ(parser.matchedType(), stHotRolledH);
    EXPECT_EQ(matchedValues(parser), valuesOf("h=400 b=200 tw=8 t=13"));
    EXPECT_TRUE(parser.checkRules());
    ASSERT_TRUE(parser.match(QStringLiteral("HN20*200*8*13")));
    QStringList failed;
    EXPECT_FALSE(parser.checkRules(&failed));
    EXPECT_EQ(failed, QStringList{"h>2*t"});
    ASSERT_TRUE(parser.match(QStringLiteral("C200*70*20*2")));
    EXPECT_EQ(parser.matchedType(), stCSection);
    EXPECT_TRUE(parser.checkRules());  // no rules
    ASSERT_TRUE(parser.match(QStringLiteral("200*300")));
    EXPECT_EQ(parser.matchedType(), stNone);
    EXPECT_EQ(matchedValues(parser), valuesOf("a=200 b=300"));
    for (const char* text : {"HN400*200*8", "HN400*200*8*13*1", "HN400/200*8*13", "C200*70*20", "200", "200*300*4"}) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(parser.match(QString::fromLatin1(text)));
        EXPECT_EQ(parser.matchedType(), -1);
        EXPECT_FALSE(parser.checkRules());
    }
    // A broken rule in a table fails the check of every match.
    HotRollingSectionNormParser broken(
        {HotRollingSectionNormParser::starSeparatedNorm("C", stCSection, {"h", "b"}, {"h>b", "h>"})});
    ASSERT_TRUE(broken.match(QStringLiteral("C200*70")));
    EXPECT_FALSE(broken.checkRules());
}
