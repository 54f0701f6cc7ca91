// Rule evaluation: declaring matched values as script variables, judging every rule of a norm,
// refusing broken scripts, evaluating expressions, and stopping scripts that do not finish.
#include "section_spec/SKRScriptEvaluator.h"
#include "section_spec/WeldSectionNormParser.h"

#include "section_spec/QtPrinters.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

using namespace skr::section;

namespace {

// Short enough to keep the suite quick, long enough for any honest rule.
constexpr int kShortTimeoutMs = 200;
// Far above kShortTimeoutMs; only catches an evaluation that is never stopped.
constexpr qint64 kGenerousBoundMs = 60000;

}  // namespace

TEST(NormRules, SoundSectionsHoldAndEveryBrokenRuleIsListedInTheEntrysOrder) {
    const struct { const char* text; QStringList failed; } rows[] = {
        {"H400*200*8*13", {}}, {"H400.5*200*8*13", {}}, {"B300*10*12", {}}, {"H(400~300)*200*8*10", {}},
        {"WSR300*8", {}}, {"BS300", {}}, {"H400*200*8*13+H300*150*6*10", {}}, {"T400*200*10*12", {}},
        {"H20*200*8*13", {"h>2*t2", "h>2*t1"}}, {"H20*200*8*13*5", {"h>2*t1"}}, {"H400*200*300*13", {"b>tw"}},
        {"B300*200*160*10", {"b2>2*t1"}},      {"B300*10*160", {"b1>2*t2"}},  {"HD20*10", {"d>2*t"}},
        {"WS16*8", {"D>2*t"}},                 {"T10*200*300*12", {"h>t2", "b>t1"}},
        {"H(300~400)*200*8*10", {"h1>h2"}},    {"D400~500*300", {"R1>R2", "R1>2*t", "R2>2*t"}},
        {"BB100*100*200*200*10*12", {"B1>b1", "B2>b2"}}, {"TY400*300*200*150*100", {"r1>2*t", "r2>2*t"}},
        {"H300/400*200*8*10*12", {"h1>h2"}},
        // Values compare as numbers: as texts "9" > "10", and 400.5 > 2*200.2 only with the decimals.
        {"H400*9*10*13", {"b>tw"}}, {"H400.5*200*8*200.2", {}}, {"H400.3*200*8*200.2", {"h>2*t2", "h>2*t1"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        WeldSectionNormParser parser;
        ASSERT_TRUE(parser.match(QString::fromLatin1(row.text)));
        QStringList failed;
        EXPECT_EQ(parser.checkRules(&failed), row.failed.isEmpty());
        EXPECT_EQ(failed, row.failed);
    }
    // Nothing matched means no check.
    WeldSectionNormParser parser;
    QStringList failed;
    EXPECT_FALSE(parser.checkRules(&failed));
    EXPECT_FALSE(parser.match(QStringLiteral("I20a")));
    EXPECT_FALSE(parser.checkRules(&failed));
    EXPECT_TRUE(failed.isEmpty());
}

TEST(Declarations, DeclaredNumbersReadBackExactlyInTheirShortestForm) {
    for (double value : {0.1 + 0.2, 1.0 / 3.0, 400.5, 1e-7, 123456789012.5, 0.0}) {
        SCOPED_TRACE(value);
        const QString line = SKRScriptEvaluator::declarations({{"x", value}});
        ASSERT_TRUE(line.startsWith(QStringLiteral("var x = ")));
        ASSERT_TRUE(line.endsWith(QStringLiteral(";\n")));
        const QString number = line.mid(8, line.size() - 10);
        bool ok = false;
        EXPECT_EQ(number.toDouble(&ok), value);
        EXPECT_TRUE(ok);
        EXPECT_LE(number.size(), QString::number(value, 'g', 17).size());
    }
}

// A script that is not valid (broken syntax, a name that is no identifier or is a keyword) fails
// the whole check and lists no rule.
TEST(CheckRules, EveryRuleIsJudgedFalseOrThrowingOnesAreListedAndAnInvalidScriptFailsTheWholeCheck) {
    const struct { QMap<QString, double> values; QStringList rules, failed; bool invalid = false; } rows[] = {
        {{{"h", 400}}, {"h>2*x", "h>0"}, {"h>2*x"}},  // an undeclared name
        {{{"a", 1}, {"b", 2}},
         {"a>b", "a<b", "a==b", "b==2", "undefinedName", "a+b==3"},
         {"a>b", "a==b", "undefinedName"}},
        // Checks do not share variables.
        {{{"h", 1}}, {"h==1", "(x = 5) == 5"}, {}},
        {{{"h", 1}}, {"x==5"}, {"x==5"}},
        {{{"h", 400}}, {"h>", "h>0"}, {"h>"}},     {{{"h", 400}}, {"h>0", "h>1", "(h>2"}, {}, true},
        {{{"1h", 400}}, {"true"}, {}, true},       {{{"var", 1}}, {"true"}, {}, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.rules.join(QLatin1Char(' ')).toStdString());
        QStringList failed;
        EXPECT_EQ(SKRScriptEvaluator::checkRules(row.values, row.rules, &failed), !row.invalid && row.failed.isEmpty());
        EXPECT_EQ(failed, row.failed);
    }
}

TEST(CheckRules, RuleThatNeverFinishesIsStoppedCountsAsFailedAndLaterRulesAreStillJudged) {
    QElapsedTimer clock;
    clock.start();
    QStringList failed;
    EXPECT_FALSE(SKRScriptEvaluator::checkRules({{"h", 1}}, {"h>0", "while(true){}"}, &failed, kShortTimeoutMs));
    EXPECT_LT(clock.elapsed(), kGenerousBoundMs);
    EXPECT_EQ(failed, QStringList{"while(true){}"});
    failed.clear();
    EXPECT_FALSE(SKRScriptEvaluator::checkRules({{"h", 1}}, {"while(true){}", "h>0", "h>5"}, &failed,
                                                kShortTimeoutMs));
    EXPECT_EQ(failed, (QStringList{"while(true){}", "h>5"}));
}

TEST(Evaluate, BrokenThrowingOrEndlessExpressionsAreReportedNotThrown) {
    for (const char* expression : {"D +", "undefinedName + 1", "throw 5", "null.x", "while(true){}"}) {
        SCOPED_TRACE(expression);
        QElapsedTimer clock;
        clock.start();
        const auto result =
            SKRScriptEvaluator::evaluate({{"D", 300}}, QString::fromLatin1(expression), kShortTimeoutMs);
        EXPECT_LT(clock.elapsed(), kGenerousBoundMs);
        EXPECT_FALSE(result.ok);
        EXPECT_FALSE(result.error.isEmpty());
    }
}
