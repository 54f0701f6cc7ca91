// SectionNormParser: format expressions, matching with named captures, completions, rules.
#include "section_spec/SectionNormParser.h"

#include "section_spec/SKRScriptEvaluator.h"


namespace skr {
namespace section {
namespace {

bool asciiDigit(const QString& text, int i) {
    return i < text.size() && text[i] >= QLatin1Char('0') && text[i] <= QLatin1Char('9');
}

// "^token...$" with each parameter a number (\d+\.?\d*), for formats matched by hand: the start
// and length of each parameter's number go to numbers. Most formats tried fail, so values are
// only made from these when asked for.
bool matchTokens(const QString& text, const QVector<QPair<QString, bool>>& tokens, QPair<int, int>* numbers,
                 int capacity) {
    int at = 0, n = 0;
    for (const auto& token : tokens) {
        if (!token.second) {
            if (text.midRef(at, token.first.size()) != token.first) return false;
            at += token.first.size();
            continue;
        }
        const int start = at;
        if (!asciiDigit(text, at) || n == capacity) return false;
        while (asciiDigit(text, at)) ++at;
        if (at < text.size() && text[at] == QLatin1Char('.')) {
            ++at;
            while (asciiDigit(text, at)) ++at;
        }
        numbers[n++] = {start, at - start};
    }
    return at == text.size();
}

}  // namespace

SectionNormTable::SectionNormTable(QVector<SectionNormEntry> entries) : m_entries(std::move(entries)) {
    m_compiled.reserve(m_entries.size());
    for (const SectionNormEntry& entry : m_entries) {
        QVector<CompiledFormat> formats;
        for (const QStringList& format : entry.formats) {
            CompiledFormat compiled;
            if (!format.isEmpty() && !entry.paramNames.contains(format.first())) {
                compiled.literalPrefix = format.first();
                compiled.digitAfterPrefix = format.size() > 1 && entry.paramNames.contains(format[1]);
            }
            compiled.expression.setPattern(SectionNormParser::expressionOf(entry, format));
            compiled.expression.optimize();
            compiled.byHand = true;
            for (int t = 0; t < format.size(); ++t) {
                const bool isParam = entry.paramNames.contains(format[t]);
                compiled.tokens.append({format[t], isParam});
                if (t == 0) continue;
                const bool previousParam = compiled.tokens[t - 1].second;
                const QChar first = format[t].isEmpty() ? QChar() : format[t][0];
                if (previousParam && (isParam || first.isDigit() || first == QLatin1Char('.'))) compiled.byHand = false;
            }
            formats.append(compiled);
        }
        m_compiled.append(formats);
    }
    // Each first character of a leading literal gets the formats it can start, in table order.
    QVector<QPair<int, int>> all;
    for (int e = 0; e < m_compiled.size(); ++e)
        for (int f = 0; f < m_compiled[e].size(); ++f) {
            all.append({e, f});
            const QString& prefix = m_compiled[e][f].literalPrefix;
            if (prefix.isEmpty()) m_unprefixed.append({e, f});
            else m_candidatesByFirst.insert(prefix[0].unicode(), {});
        }
    for (auto it = m_candidatesByFirst.begin(); it != m_candidatesByFirst.end(); ++it)
        for (const auto& pair : all) {
            const QString& prefix = m_compiled[pair.first][pair.second].literalPrefix;
            if (prefix.isEmpty() || prefix[0].unicode() == it.key()) it.value().append(pair);
        }
}

const QVector<QPair<int, int>>& SectionNormTable::candidates(QChar first) const {
    const auto it = m_candidatesByFirst.constFind(first.unicode());
    return it == m_candidatesByFirst.constEnd() ? m_unprefixed : it.value();
}

SectionNormParser::SectionNormParser(QSharedPointer<const SectionNormTable> table) : m_table(std::move(table)) {}

SectionNormParser::~SectionNormParser() = default;

const QVector<SectionNormEntry>& SectionNormParser::entries() const { return m_table->entries(); }

QString SectionNormParser::expressionOf(const SectionNormEntry& entry, const QStringList& format) {
    QString pattern = QStringLiteral("^");
    for (const QString& token : format) {
        if (entry.paramNames.contains(token))
            pattern += QStringLiteral("(?<%1>\\d+\\.?\\d*)").arg(token);
        else
            pattern += QRegularExpression::escape(token);
    }
    pattern += QLatin1Char('$');
    return pattern;
}

bool SectionNormParser::match(const QString& text) {
    m_matchedEntry = -1;
    m_matchedFormat = nullptr;
    m_values.clear();
    m_valuesMade = true;
    if (text.isEmpty()) return false;
    const QVector<SectionNormEntry>& all = m_table->entries();
    for (const auto& candidate : m_table->candidates(text[0])) {
        const int e = candidate.first;
        const SectionNormTable::CompiledFormat& format = m_table->formatsOf(e)[candidate.second];
        // Cheap rejection before running the expression: most texts fail on their mark.
        if (!format.literalPrefix.isEmpty()) {
            if (!text.startsWith(format.literalPrefix)) continue;
            if (format.digitAfterPrefix) {
                const int at = format.literalPrefix.size();
                if (at >= text.size() || !text[at].isDigit()) continue;
            }
        }
        if (format.byHand) {
            if (!matchTokens(text, format.tokens, m_numbers, kMaxNumbers)) continue;
            m_matchedText = text;
            m_matchedFormat = &format;
            m_valuesMade = false;
        } else {
            const QRegularExpressionMatch found = format.expression.match(text);
            if (!found.hasMatch()) continue;
            for (const QString& name : all[e].paramNames) {
                const QString value = found.captured(name);
                if (!value.isNull()) m_values.insert(name, value);
            }
            complete(all[e], m_values);
        }
        m_matchedEntry = e;
        return true;
    }
    return false;
}

void SectionNormParser::complete(const SectionNormEntry& entry, QMap<QString, QString>& values) {
    for (const auto& completion : entry.completions)
        if (!values.contains(completion.first) && values.contains(completion.second))
            values.insert(completion.first, values.value(completion.second));
}

const QMap<QString, QString>& SectionNormParser::values() const {
    if (!m_valuesMade) {
        int n = 0;
        for (const auto& token : m_matchedFormat->tokens)
            if (token.second) {
                m_values.insert(token.first, m_matchedText.mid(m_numbers[n].first, m_numbers[n].second));
                ++n;
            }
        complete(m_table->entries()[m_matchedEntry], m_values);
        m_valuesMade = true;
    }
    return m_values;
}

int SectionNormParser::matchedType() const {
    return m_matchedEntry < 0 ? -1 : m_table->entries()[m_matchedEntry].sectionType;
}

void SectionNormParser::namedValues(QMap<QString, QString>& out) const { out = values(); }

const SectionNormEntry* SectionNormParser::matchedEntry() const {
    return m_matchedEntry < 0 ? nullptr : &m_table->entries()[m_matchedEntry];
}

QMap<QString, double> SectionNormParser::numericValues() const {
    QMap<QString, double> numbers;
    const QMap<QString, QString>& named = values();
    for (auto it = named.constBegin(); it != named.constEnd(); ++it) numbers.insert(it.key(), it.value().toDouble());
    return numbers;
}

bool SectionNormParser::checkRules(QStringList* failedRules) const {
    const SectionNormEntry* entry = matchedEntry();
    if (!entry) return false;
    return SKRScriptEvaluator::checkRules(numericValues(), entry->rules, failedRules);
}

QString SectionNormParser::exampleText(const SectionNormEntry& entry) {
    if (entry.formats.isEmpty()) return {};
    const QStringList* longest = &entry.formats.first();
    for (const QStringList& format : entry.formats)
        if (format.size() > longest->size()) longest = &format;
    // Sample values that satisfy the welded rules: depths large, widths middle, plates thin.
    auto sample = [](const QString& name) -> QString {
        const QChar c = name.isEmpty() ? QChar() : name[0];
        if (name == QLatin1String("h2") || name == QLatin1String("R2") || name == QLatin1String("B2"))
            return QStringLiteral("300");
        if (c == QLatin1Char('h') || c == QLatin1Char('R') || c == QLatin1Char('B') || c == QLatin1Char('D') ||
            c == QLatin1Char('d'))
            return QStringLiteral("400");
        if (c == QLatin1Char('b') || c == QLatin1Char('r')) return QStringLiteral("200");
        return QStringLiteral("10");
    };
    QString text;
    for (const QString& token : *longest) text += entry.paramNames.contains(token) ? sample(token) : token;
    return text;
}

}  // namespace section
}  // namespace skr
