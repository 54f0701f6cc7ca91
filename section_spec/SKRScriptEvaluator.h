// SKRScriptEvaluator: evaluates norm rules and ball expressions with Qt Script, each call on a
// fresh engine, with named values declared as script variables and a bound on running time.
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

namespace skr {
namespace section {

class SKRScriptEvaluator {
public:
    // How long one script may run before it is aborted (rules and expressions come from data).
    static constexpr int kDefaultTimeoutMs = 2000;

    // "var name = value;\n" for every value, in the map's order, values in shortest form.
    static QString declarations(const QMap<QString, double>& values);

    // True when every rule holds. A rule that is false, throws (an undefined name) or runs too
    // long is appended to failedRules. Invalid script anywhere makes the whole check false.
    static bool checkRules(const QMap<QString, double>& values, const QStringList& rules,
                           QStringList* failedRules = nullptr, int timeoutMs = kDefaultTimeoutMs);

    struct Result {
        bool ok = false;
        int code = -1;                     // the expression's value as an integer
        QMap<QString, double> newValues;   // numeric variables the expression defined
        QString error;                     // why it failed, when !ok
    };
    // Evaluates expression with the variables declared first.
    static Result evaluate(const QMap<QString, double>& variables, const QString& expression,
                           int timeoutMs = kDefaultTimeoutMs);
};

}  // namespace section
}  // namespace skr
