// SKRPolyParamManger: the section type and parameter values the section dialog is editing: the
// type's parameters and defaults from the section database, the specification text they make,
// the insertion point of the type's expressions, and the check the dialog runs on accepting
// (each value against its range, then the norm rules of welded and ball sections).
#pragma once

#include "plugin/BXQExtendGlobal.h"
#include "section_data/SKRHotRollingSection.h"
#include "section_data/SectionSchemeProvider.h"

#include <QString>
#include <QVector>

class BXQEXTEND_EXPORT SKRPolyParamManger {
public:
    SKRPolyParamManger();

    // Takes a section type with its parameters at their defaults. False, changing nothing, for
    // a type without parameters in the section database.
    bool setSectionType(int sectionType);
    int sectionType() const { return m_iSectionType; }
    // Welded balls: non-zero for the form with a stiffening rib (WSR).
    void setRibFlag(int ribFlag) { m_iRibFlag = ribFlag; }
    int ribFlag() const { return m_iRibFlag; }

    int paramCount() const { return m_oParams.size(); }
    const skr::section::SectionParam& paramDef(int index) const { return m_oParams.at(index); }
    QString paramValue(int index) const { return m_oValues.value(index); }
    // The type's name ("PolyName"; the custom keyword for a custom section), its picture in the
    // dialog's resources and its hint ("规格示例：I20a"); empty when unknown.
    QString typeName() const;
    QString pictureName() const;
    QString hintText() const;
    // The value of parameter index as typed; false for an index out of range.
    bool setParamValue(int index, const QString& text);

    // A catalogue row: its type, its dimensions where the type has them, its name as the text.
    bool setCatalogueSection(const skr::section::SKRHotRollingSection& row);
    bool isCatalogueSection() const { return m_bCatalogue; }
    // A user-drawn custom polygon section (type 7000 + id): its description is its specification
    // and its stored insertion point is used as it is.
    void setCustomSection(int id, const QString& description, double insertPointX, double insertPointY);
    bool isCustomSection() const { return m_bCustom; }
    // Positions on the shipped catalogue row of the type whose dimensions are the current values
    // (type 1 at its defaults is I20a); false, changing nothing, when none is.
    bool matchCatalogueRow();
    // The same; a catalogue that cannot be read also answers false, with the reason in error.
    bool matchCatalogueRow(QString* error);
    // Positions on a specification text: a catalogue name selects its row, anything else its type
    // with the text's values. False, changing nothing, for a text that is no known section.
    bool setSpecification(const QString& text);

    // The specification text of the section (spaces simplified); empty when the values make none.
    QString specification() const;
    // An identity of the section: the catalogue row's (type in the high and sub-class in the low
    // 32 bits) for a catalogue section, else a 64-bit hash of the specification text; 0 without
    // a specification.
    qint64 specificationKey() const;
    // The insertion point of the type's "InsPointX"/"InsPointY" expressions for the current
    // values, "x,y"; "0,0" when an expression cannot be evaluated.
    QString insertPoint() const;

    // Every value against its range ("ValidExpr", failing with its "InvalidMsg"), then for welded
    // and ball sections the norm and its rules. False with the message and the index of the
    // offending parameter (-1 when no single one is to blame).
    bool checkParams(QString* message, int* index) const;

    // The values read as numbers, by parameter code (text that is no number reads 0).
    QMap<QString, double> numericValues() const;

private:

    int m_iSectionType = -1;
    int m_iRibFlag = 0;
    QVector<skr::section::SectionParam> m_oParams;
    QVector<QString> m_oValues;
    bool m_bCatalogue = false;
    skr::section::SKRHotRollingSection m_oCatalogue;
    bool m_bCustom = false;
    QString m_strCustomName;
    QString m_strCustomInsertPoint;
};
