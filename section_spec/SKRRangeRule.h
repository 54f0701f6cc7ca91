// The range rules of the section parameter table ("(%1 >= 1) And ( %1 <=10000)") as script:
// %1 stands for the value, And and Or are the logical operators.
#pragma once

#include <QRegularExpression>
#include <QString>

// The rule with subject (a number or a parameter name) in place of %1.
inline QString rangeRuleScript(const QString& rule, const QString& subject) {
    QString script = rule;
    script.replace(QRegularExpression(QStringLiteral("\\bAnd\\b")), QStringLiteral("&&"));
    script.replace(QRegularExpression(QStringLiteral("\\bOr\\b")), QStringLiteral("||"));
    return script.replace(QStringLiteral("%1"), QStringLiteral("(") + subject + QStringLiteral(")"));
}

// The interval a range rule allows: "(%1 >= 1) And ( %1 <=10000)" gives [1,10000]. Found is
// false for a rule that names no bound on both sides (it is then not an interval).
struct SKRRangeInterval {
    bool found = false;
    double bottom = 0.0;
    double top = 0.0;
    bool bottomClosed = true;
    bool topClosed = true;
};

inline SKRRangeInterval rangeRuleInterval(const QString& rule) {
    static const QRegularExpression lower(QStringLiteral("%1\\s*(>=|>)\\s*([-+0-9.eE]+)"));
    static const QRegularExpression upper(QStringLiteral("%1\\s*(<=|<)\\s*([-+0-9.eE]+)"));
    const QRegularExpressionMatch low = lower.match(rule);
    const QRegularExpressionMatch high = upper.match(rule);
    SKRRangeInterval interval;
    bool lowOk = false, highOk = false;
    if (low.hasMatch()) interval.bottom = low.captured(2).toDouble(&lowOk);
    if (high.hasMatch()) interval.top = high.captured(2).toDouble(&highOk);
    interval.found = lowOk && highOk && interval.bottom <= interval.top;
    interval.bottomClosed = low.captured(1) == QLatin1String(">=");
    interval.topClosed = high.captured(1) == QLatin1String("<=");
    return interval;
}
