// SKRSectionPolyInfoParser: turns a section specification text as a user types it into a
// GSectionPolyInfo, and prints specifications back from a type and its parameters.
#pragma once

#include "plugin/BXQExtendGlobal.h"
#include "section_spec/GSectionPolyInfo.h"
#include "section_spec/SKRWeldBallInfo.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

class BXQEXTEND_EXPORT SKRSectionPolyInfoParser {
public:
    SKRSectionPolyInfoParser();

    // Parses text; never throws. Results are read with sectionPolyInfo().
    void parser(const QString& text);
    // Parses a ball-node text and evaluates expression with its "D" and "t".
    SKRWeldBallInfo parser(const QString& text, const QString& expression);

    GSectionPolyInfo sectionPolyInfo() const;
    EnSKRSectionGroupType analyseGroupType() const;

    static EnSKRSectionGroupType polyGroupType(int sectionType);
    static QString weldingSteelMark(int sectionType, int ribFlag);
    static QList<double> parserValue(const QString& text, QChar separator);
    static QMap<QString, QString> parserParamEqualString(const QString& text, const QString& separator,
                                                         QList<QString>& keysInOrder);
    static QString standardNameToUpper(const QString& text);
    static QString parseStandardName(int sectionType, int ribFlag, const QString& paramText);

    // The custom-section keyword in the current user-interface language.
    static QString customSectionKeyword();

    // The largest dimension a text may give, in millimetres: no section of a building is larger,
    // and figures derived from larger ones (areas, moments) could overflow.
    static constexpr double kMaxDimension = 1e6;
    // The first number of text beyond kMaxDimension (or one too long to read), as written;
    // empty when there is none. parser() refuses such a text as it refuses one it cannot read:
    // section type -1, type index -1, every parameter 0, and group -1 unless the text's form
    // decides its group (a user section stays in the standard group, the custom keyword in its own).
    static QString outOfRangeDimension(const QString& text);
    // The one line that refuses such a text, naming it and the number; empty for any other.
    static QString rangeRefusal(const QString& text);

private:
    void parserType(const QString& text);
    EnSKRSectionType analysePolyID();
    void parserParamValue(const EnSKRSectionGroupType& groupType, const EnSKRSectionType& sectionType);
    void analyseComplexValue(const QString& text, const QString& pieceSeparator);
    void applyModified(const EnSKRSectionType& sectionType, QList<double>& values);
    void pushBackParamValues(const QList<double>& values);
    void applyWeldedNorm(const QString& text);
    void reset();

    QString m_name;
    QString m_typeCode;
    QString m_valueText;
    QVector<double> m_params;
    QVector<std::int32_t> m_standardTypes;
    QVector<std::int32_t> m_weldedTypes;
    std::int32_t m_paramCount = 0;
    std::int32_t m_typeIndex = -1;
    std::int32_t m_groupType = 0;
    std::int32_t m_weldBallCode = 0;
    QString m_rawText;
    std::int32_t m_sectionType = stInvalid;
};
