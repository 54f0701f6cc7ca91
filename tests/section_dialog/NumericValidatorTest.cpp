// The numeric validator: open and closed ends of real and integer intervals, the tolerance at an
// open end, the leading decimal point, partial entries, and the interval and message texts.
#include "section_dialog/SKRNumericValidator.h"

#include "plugin/BXQTranslations.h"
#include "support/ChineseAfterwards.h"

#include <gtest/gtest.h>

TEST(NumericValidator, EndsDecimalsAndPartialEntriesDecideTheState) {
    const SKRNumericValidator realOpenTop(0.0, 10000.0, 2, true, false);
    const SKRNumericValidator realOpenBottom(1.0, 2.0, 15, false, true);
    const SKRNumericValidator intOpenBottom(0, 100, false, true);
    const SKRNumericValidator intOpenTop(1, 99, true, false);
    const struct { const SKRNumericValidator& validator; const char* text; QValidator::State state; } rows[] = {
        {realOpenTop, "0", QValidator::Acceptable},         {realOpenTop, "9999.99", QValidator::Acceptable},
        {realOpenTop, "10000", QValidator::Invalid},        {realOpenTop, ".5", QValidator::Invalid},
        {realOpenTop, "12.", QValidator::Acceptable},       {realOpenTop, "", QValidator::Intermediate},
        {realOpenTop, "1.234", QValidator::Invalid},        {realOpenTop, "20000", QValidator::Intermediate},
        {realOpenTop, "abc", QValidator::Invalid},          {realOpenBottom, "1", QValidator::Invalid},
        {realOpenBottom, "1.0000000000001", QValidator::Invalid},  // within 1e-12 of the open bottom
        {realOpenBottom, "1.00000000001", QValidator::Acceptable}, {realOpenBottom, "2", QValidator::Acceptable},
        {intOpenBottom, "0", QValidator::Invalid},          {intOpenBottom, "1", QValidator::Acceptable},
        {intOpenBottom, "100", QValidator::Acceptable},     {intOpenBottom, "1.5", QValidator::Invalid},
        {intOpenTop, "99", QValidator::Invalid},            {intOpenTop, "98", QValidator::Acceptable},
    };
    for (const auto& row : rows) {
        QString input = QString::fromLatin1(row.text);
        int pos = input.size();
        EXPECT_EQ(row.validator.validate(input, pos), row.state) << row.validator.intervalText().toStdString() << " " << row.text;
    }
    const std::pair<const SKRNumericValidator&, const char*> intervals[] = {
        {realOpenTop, "[0,10000)"}, {realOpenBottom, "(1,2]"}, {intOpenBottom, "(0,100]"}};
    for (const auto& interval : intervals) EXPECT_EQ(interval.first.intervalText(), QString(interval.second));
}

TEST(NumericValidator, MessagesNameTheIntervalAndTheDecimalsInTheInstalledLanguage) {
    const SKRNumericValidator integers(1, 99, true, true);
    EXPECT_EQ(integers.invalidMessage(QString()), QStringLiteral("请输入[1,99]之间的整数。"));
    EXPECT_EQ(integers.invalidMessage(QStringLiteral("h: ")), QStringLiteral("h: 请输入[1,99]之间的整数。"));
    const SKRNumericValidator reals(0.5, 200.0, 3, true, false);
    EXPECT_EQ(reals.invalidMessage(QString()), QStringLiteral("请输入[0.5,200)之间的实数, 如果是小数请保留3位。"));
    const SKRNumericValidator wide(1.0, 1234567.0, 1, true, true);
    EXPECT_EQ(wide.intervalText(), QStringLiteral("[1,1.23457e+06]"));  // six significant digits

    // A translated interface gives its own message.
    bxqtest::ChineseAfterwards chinese;
    ASSERT_TRUE(BXQInstallTranslation(QStringLiteral("en")));
    const SKRNumericValidator translated(0.0, 10000.0, 2, true, false);
    EXPECT_EQ(translated.invalidMessage(QString()), QStringLiteral("Please enter a real number in [0,10000), with at most 2 decimals."));
}
