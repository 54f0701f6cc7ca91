// SKRScriptEvaluator: norm rules and ball expressions on a fresh Qt Script engine.
#include "section_spec/SKRScriptEvaluator.h"

#include <QCoreApplication>
#include <QLocale>
#include <QScriptEngine>
#include <QScriptValueIterator>
#include <QSet>
#include <QTimer>

namespace skr {
namespace section {
namespace {

// A script engine that aborts any evaluation running longer than the time limit. The engine
// polls the event loop only once a script has run for kPollMs, so ordinary scripts never
// process events; a runaway one lets the timer fire and is aborted.
class BoundedEngine {
public:
    explicit BoundedEngine(int timeoutMs) {
        constexpr int kPollMs = 50;
        m_engine.setProcessEventsInterval(kPollMs);
        m_timer.setSingleShot(true);
        m_timer.setInterval(timeoutMs);
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            m_timedOut = true;
            m_engine.abortEvaluation();
        });
    }

    QScriptValue evaluate(const QString& script) {
        m_timer.start();
        QScriptValue value = m_engine.evaluate(script);
        m_timer.stop();
        return value;
    }
    bool failed() {
        if (m_timedOut) return true;
        if (m_engine.hasUncaughtException()) {
            m_engine.clearExceptions();
            return true;
        }
        return false;
    }
    bool timedOut() const { return m_timedOut; }
    QScriptEngine& engine() { return m_engine; }

private:
    QScriptEngine m_engine;
    QTimer m_timer;
    bool m_timedOut = false;
};

bool canRunScripts() {
    // Qt Script needs an application object; without one the check fails instead of crashing.
    return QCoreApplication::instance() != nullptr;
}

}  // namespace

QString SKRScriptEvaluator::declarations(const QMap<QString, double>& values) {
    QString script;
    for (auto it = values.constBegin(); it != values.constEnd(); ++it)
        script += QStringLiteral("var %1 = %2;\n")
                      .arg(it.key(), QString::number(it.value(), 'g', QLocale::FloatingPointShortest));
    return script;
}

bool SKRScriptEvaluator::checkRules(const QMap<QString, double>& values, const QStringList& rules,
                                    QStringList* failedRules, int timeoutMs) {
    if (!canRunScripts()) return false;
    BoundedEngine bounded(timeoutMs);
    const QString declared = declarations(values);
    if (QScriptEngine::checkSyntax(declared).state() != QScriptSyntaxCheckResult::Valid) return false;
    bounded.evaluate(declared);
    if (bounded.failed()) return false;
    if (QScriptEngine::checkSyntax(declared + rules.join(QLatin1Char('\n'))).state() !=
        QScriptSyntaxCheckResult::Valid)
        return false;

    bool allHold = true;
    for (int i = 0; i < rules.size(); ++i) {
        const QScriptValue value = bounded.evaluate(rules[i]);
        const bool holds = !bounded.failed() && value.toBoolean();
        if (!holds) {
            allHold = false;
            if (failedRules) failedRules->append(rules[i]);
        }
        if (bounded.timedOut()) {
            // An aborted engine cannot judge the remaining rules: they count as failed too.
            if (failedRules) failedRules->append(rules.mid(i + 1));
            break;
        }
    }
    return allHold;
}

SKRScriptEvaluator::Result SKRScriptEvaluator::evaluate(const QMap<QString, double>& variables,
                                                        const QString& expression, int timeoutMs) {
    Result result;
    if (!canRunScripts()) {
        result.error = QStringLiteral("no application object for the script engine");
        return result;
    }
    const QString declared = declarations(variables);
    const QScriptSyntaxCheckResult syntax = QScriptEngine::checkSyntax(declared + expression);
    if (syntax.state() != QScriptSyntaxCheckResult::Valid) {
        result.error = syntax.errorMessage();
        return result;
    }
    BoundedEngine bounded(timeoutMs);
    bounded.evaluate(declared);
    QSet<QString> before;
    for (QScriptValueIterator it(bounded.engine().globalObject()); it.hasNext();) {
        it.next();
        before.insert(it.name());
    }
    const QScriptValue value = bounded.evaluate(expression);
    if (bounded.timedOut()) {
        result.error = QStringLiteral("expression did not finish within %1 ms").arg(timeoutMs);
        return result;
    }
    if (bounded.failed()) {
        result.error = value.toString();
        return result;
    }
    result.ok = true;
    result.code = value.toInt32();
    for (QScriptValueIterator it(bounded.engine().globalObject()); it.hasNext();) {
        it.next();
        if (!before.contains(it.name()) && it.value().isNumber())
            result.newValues.insert(it.name(), it.value().toNumber());
    }
    return result;
}

}  // namespace section
}  // namespace skr
