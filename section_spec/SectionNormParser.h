// SectionNormParser: matches a specification against the formats of section norms (named
// regular-expression captures) and checks the matched values against the norm's rules.
#pragma once

#include "section_spec/EnSKRSectionType.h"

#include <QHash>
#include <QMap>
#include <QRegularExpression>
#include <QSharedPointer>
#include <QString>
#include <QStringList>
#include <QVector>

namespace skr {
namespace section {

// One norm: the written forms, parameters and rules of one section type.
struct SectionNormEntry {
    QString key;                       // leading mark that selects the entry ("H", "HD", "H(" ...)
    EnSKRSectionType sectionType = stInvalid;
    QStringList paramNames;
    QStringList rules;                 // comparisons over parameter names, e.g. "h>2*t2"
    QVector<QStringList> formats;      // tokens: parameter names or literal texts
    QVector<QPair<QString, QString>> completions;  // (missing parameter, parameter it copies)
};

// Norm entries with their formats compiled into regular expressions, built once and shared.
class SectionNormTable {
public:
    explicit SectionNormTable(QVector<SectionNormEntry> entries);

    struct CompiledFormat {
        QString literalPrefix;       // leading literal token, tested before the expression runs
        bool digitAfterPrefix = false;
        QRegularExpression expression;
        // The format as tokens: a literal, or (isParam) a parameter's number. Matched by hand when
        // no number can run into what follows it (no two numbers adjacent, no literal starting
        // with a digit or a point), which is when the expression has one way to match only.
        QVector<QPair<QString, bool>> tokens;
        bool byHand = false;
    };

    const QVector<SectionNormEntry>& entries() const { return m_entries; }
    const QVector<CompiledFormat>& formatsOf(int entryIndex) const { return m_compiled[entryIndex]; }
    // The (entry, format) pairs a text starting with `first` can match, in table order.
    const QVector<QPair<int, int>>& candidates(QChar first) const;

private:
    QVector<SectionNormEntry> m_entries;
    QVector<QVector<CompiledFormat>> m_compiled;
    QHash<ushort, QVector<QPair<int, int>>> m_candidatesByFirst;
    QVector<QPair<int, int>> m_unprefixed;  // formats that begin with a parameter
};

class SectionNormParser {
public:
    virtual ~SectionNormParser();

    // Whether the text is written in the family of this parser's norms.
    virtual bool isValid(const QString& text) const = 0;
    // Tries the entries in table order; the first entry with a matching format wins.
    virtual bool match(const QString& text);
    virtual const QVector<SectionNormEntry>& entries() const;
    // Section type of the matched entry, -1 when nothing matched.
    virtual int matchedType() const;
    // Named values of the last match after completions, ordered by name.
    virtual void namedValues(QMap<QString, QString>& values) const;

    // The regular expression of one format of an entry.
    static QString expressionOf(const SectionNormEntry& entry, const QStringList& format);

    const SectionNormEntry* matchedEntry() const;
    QMap<QString, double> numericValues() const;
    // Evaluates every rule of the matched entry on a fresh script engine; the rules that do
    // not hold go to failedRules in the entry's order. False when nothing matched.
    bool checkRules(QStringList* failedRules = nullptr) const;
    // A text written in the entry's longest format with sample values, e.g. H400*200*8*12*12.
    static QString exampleText(const SectionNormEntry& entry);

protected:
    explicit SectionNormParser(QSharedPointer<const SectionNormTable> table);

    QSharedPointer<const SectionNormTable> m_table;
    int m_matchedEntry = -1;
    // The matched values, made on first use: a parse often needs only the matched type.
    const QMap<QString, QString>& values() const;
    // Fills the entry's missing parameters from the ones they copy.
    static void complete(const SectionNormEntry& entry, QMap<QString, QString>& values);
    mutable QMap<QString, QString> m_values;

private:
    mutable bool m_valuesMade = true;
    QString m_matchedText;
    const SectionNormTable::CompiledFormat* m_matchedFormat = nullptr;
    static constexpr int kMaxNumbers = 16;
    QPair<int, int> m_numbers[kMaxNumbers];  // start and length of each parameter's number
};

}  // namespace section
}  // namespace skr
