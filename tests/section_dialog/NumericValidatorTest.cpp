// The numeric validator: open and closed ends of real and integer intervals, the tolerance at an
// open end, the leading decimal point, partial entries, and the interval and message texts.
#include "section_dialog/SKRNumericValidator.h"

#include "plugin/BXQTranslations.h"

#include <gtest/gtest.h>

namespace {

QValidator::State check(const SKRNumericValidator& validator, const char* text) {
    QString input = QString::fromLatin1(text);
    int pos = input.size();
    return validator.validate(input, pos);
}

}  // namespace

TEST(NumericValidator, RealIntervalWithAnOpenTop) {
    const SKRNumericValidator validator(0.0, 10000.0, 2, true, false);
    const struct {
        const char* text;
        QValidator::State state;
    } rows[] = {
        {"0", QValidator::Acceptable},       {"9999.99", QValidator::Acceptable},
        {"10000", QValidator::Invalid},      {".5", QValidator::Invalid},
        {"12.", QValidator::Acceptable},     {"", QValidator::Intermediate},
        {"1.234", QValidator::Invalid},      {"20000", QValidator::Intermediate},
        {"abc", QValidator::Invalid},
    };
    for (const auto& row : rows) EXPECT_EQ(check(validator, row.text), row.state) << row.text;
    EXPECT_EQ(validator.intervalText(), QStringLiteral("[0,10000)"));
}

TEST(NumericValidator, OpenBottomIsComparedWithItsTolerance) {
    const SKRNumericValidator validator(1.0, 2.0, 15, false, true);
    EXPECT_EQ(check(validator, "1"), QValidator::Invalid);
    EXPECT_EQ(check(validator, "1.0000000000001"), QValidator::Invalid);  // within 1e-12 of the bottom
    EXPECT_EQ(check(validator, "1.00000000001"), QValidator::Acceptable);
    EXPECT_EQ(check(validator, "2"), QValidator::Acceptable);
    EXPECT_EQ(validator.intervalText(), QStringLiteral("(1,2]"));
}

TEST(NumericValidator, IntegerIntervals) {
    const SKRNumericValidator openBottom(0, 100, false, true);
    EXPECT_EQ(check(openBottom, "0"), QValidator::Invalid);
    EXPECT_EQ(check(openBottom, "1"), QValidator::Acceptable);
    EXPECT_EQ(check(openBottom, "100"), QValidator::Acceptable);
    EXPECT_EQ(check(openBottom, "1.5"), QValidator::Invalid);
    EXPECT_EQ(openBottom.intervalText(), QStringLiteral("(0,100]"));
    const SKRNumericValidator openTop(1, 99, true, false);
    EXPECT_EQ(check(openTop, "99"), QValidator::Invalid);
    EXPECT_EQ(check(openTop, "98"), QValidator::Acceptable);
    EXPECT_FALSE(openTop.isReal());
}

TEST(NumericValidator, MessagesNameTheIntervalAndTheDecimals) {
    const SKRNumericValidator integers(1, 99, true, true);
    EXPECT_EQ(integers.invalidMessage(QString()), QStringLiteral("请输入[1,99]之间的整数。"));
    EXPECT_EQ(integers.invalidMessage(QStringLiteral("h: ")), QStringLiteral("h: 请输入[1,99]之间的整数。"));
    const SKRNumericValidator reals(0.5, 200.0, 3, true, false);
    EXPECT_EQ(reals.invalidMessage(QString()), QStringLiteral("请输入[0.5,200)之间的实数, 如果是小数请保留3位。"));
    const SKRNumericValidator wide(1.0, 1234567.0, 1, true, true);
    EXPECT_EQ(wide.intervalText(), QStringLiteral("[1,1.23457e+06]"));  // six significant digits
}

// Installs the English translation for the rest of the process: keep it the last test here.
TEST(NumericValidator, TranslatedInterfaceGivesItsOwnMessage) {
    ASSERT_TRUE(BXQInstallTranslation(QStringLiteral("en")));
    const SKRNumericValidator reals(0.0, 10000.0, 2, true, false);
    EXPECT_EQ(reals.invalidMessage(QString()), QStringLiteral("Please enter a real number in [0,10000), with at most 2 decimals."));
}
