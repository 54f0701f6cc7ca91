// SKRScriptEvaluator: norm rules and ball expressions on a fresh Qt Script engine.
#include "section_spec/SKRScriptEvaluator.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QHash>
#include <QLocale>
#include <QPointer>
#include <QScriptEngine>
#include <QScriptValueIterator>
#include <QSet>

namespace skr {
namespace section {
namespace {

// A script engine that aborts any evaluation running longer than its time limit. Once a script
// has run for kPollMs the engine polls the event loop; the dispatcher then wakes up and the
// watchdog below aborts the script if its time is up. Ordinary scripts never poll, so the bound
// costs nothing but a clock start per evaluation.
class BoundedEngine {
public:
    explicit BoundedEngine(int timeoutMs) : m_timeoutMs(timeoutMs) {
        constexpr int kPollMs = 50;
        m_engine.setProcessEventsInterval(kPollMs);
        watchDispatcher();
    }

    QScriptValue evaluate(const QString& script) {
        m_timedOut = false;
        m_clock.start();
        BoundedEngine* outer = s_running;  // an event handled while polling may check rules too
        s_running = this;
        QScriptValue value = m_engine.evaluate(script);
        s_running = outer;
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
    static void watchDispatcher() {
        static QPointer<QAbstractEventDispatcher> watched;
        QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance();
        if (!dispatcher || dispatcher == watched) return;
        watched = dispatcher;
        QObject::connect(dispatcher, &QAbstractEventDispatcher::awake, [] {
            BoundedEngine* running = s_running;
            if (running && running->m_clock.elapsed() > running->m_timeoutMs) {
                running->m_timedOut = true;
                running->m_engine.abortEvaluation();
            }
        });
    }

    static BoundedEngine* s_running;
    QScriptEngine m_engine;
    QElapsedTimer m_clock;
    int m_timeoutMs;
    bool m_timedOut = false;
};

BoundedEngine* BoundedEngine::s_running = nullptr;

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

// Whether declarations of these names followed by these rules are valid script. The values
// never change the answer (they are always written as numbers), so it is kept per names and rules.
static bool rulesAreValidScript(const QMap<QString, double>& values, const QStringList& rules) {
    static QHash<QString, bool> known;
    const QString key = QStringList(values.keys()).join(QLatin1Char(',')) + QLatin1Char('\n') +
                        rules.join(QLatin1Char('\n'));
    const auto found = known.constFind(key);
    if (found != known.constEnd()) return *found;
    const QString declared = SKRScriptEvaluator::declarations(values);
    const bool valid =
        QScriptEngine::checkSyntax(declared).state() == QScriptSyntaxCheckResult::Valid &&
        QScriptEngine::checkSyntax(declared + rules.join(QLatin1Char('\n'))).state() == QScriptSyntaxCheckResult::Valid;
    if (known.size() > 4096) known.clear();
    known.insert(key, valid);
    return valid;
}

bool SKRScriptEvaluator::checkRules(const QMap<QString, double>& values, const QStringList& rules,
                                    QStringList* failedRules, int timeoutMs) {
    if (!canRunScripts() || !rulesAreValidScript(values, rules)) return false;
    BoundedEngine bounded(timeoutMs);
    const QString declared = declarations(values);

    // Usually every rule holds: one evaluation of the declarations and all rules joined by &&
    // answers that at once. Otherwise the rules are evaluated one by one to name the failures;
    // rules have no side effects, so the outcome is the same either way.
    QStringList joined;
    for (const QString& rule : rules) joined << QLatin1Char('(') + rule + QLatin1Char(')');
    const QString all = joined.isEmpty() ? QStringLiteral("true") : joined.join(QStringLiteral(" && "));
    const QScriptValue together = bounded.evaluate(declared + all);
    if (!bounded.failed() && together.toBoolean()) return true;

    // The joined text may not have run at all (a rule that is a statement is no operand of &&),
    // so the values are declared again before the rules are judged one by one.
    bounded.evaluate(declared);

    bool allHold = true;
    for (int i = 0; i < rules.size(); ++i) {
        const QScriptValue value = bounded.evaluate(rules[i]);
        const bool holds = !bounded.failed() && value.toBoolean();
        if (!holds) {
            allHold = false;
            if (failedRules) failedRules->append(rules[i]);
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
        // An unfinished expression ("D +") is Intermediate and comes without a message.
        result.error = syntax.errorMessage().isEmpty() ? QStringLiteral("incomplete expression") : syntax.errorMessage();
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
