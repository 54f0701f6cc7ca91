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
