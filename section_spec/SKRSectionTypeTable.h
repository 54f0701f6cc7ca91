// What each section type is, in one table: the codes it is written with, its group, its parameter
// codes, how its standard name is printed, how short texts are completed, and what the catalogue
// knows of it. The parser, the printer of standard names, the parameter manager, the outline code
// and the database generator all read it; adding a type is one row here plus its outline corners.
#pragma once

#include "section_spec/EnSKRSectionType.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <vector>

namespace skr {
namespace section {

// How many "*" the dimensions hold, where types share a code (L: equal or unequal angle).
enum class SKRStarRule { Any, None, Some, One, Two };

// How a welded text written without its last (or first) value is completed, per piece.
enum class SKRPadRule { None, RepeatLast, RepeatFirst };

struct SKRSectionTypeDescriptor {
    EnSKRSectionType type;
    EnSKRSectionGroupType group;
    // Type codes read as this type, comma-separated; empty for types only a norm recognises.
    // Rows sharing a code are tried in table order; the first whose selector and star rule the
    // dimensions satisfy wins.
    const char* codes;
    const char* selector;  // a character the dimensions must contain ("+", "~", "/"); "" for any
    SKRStarRule stars;
    // Compound texts: the separator between the pieces of their dimensions ("/", "+H", "~").
    const char* pieceSeparator;
    SKRPadRule pad;
    int padWhen;  // the piece size that is completed
    // The parameter codes in the order the parser delivers values.
    const char* paramCodes;
    // The mark printed before a standard name (welded and ball types), and the ribbed form's.
    const char* mark;
    const char* ribbedMark;
    // The printed standard name: items separated by spaces, each "separator:key|key" (the first
    // key present wins; an absent key is left out with its separator). Empty: the values in the
    // order given, joined by "*".
    const char* nameLayout;
    // Written back as its first code and its dimensions without radii (angles, pipes, bars, cold
    // formed, box tubes); other catalogue types are written by their catalogue name.
    bool writtenByDimensions;
    // Named by the catalogue alone (I20a): the dimensions come from the catalogue row.
    bool catalogueNamed;
    // Rolled shapes whose root radii only the catalogue knows.
    bool catalogueRadii;
    // Checked against a norm (welded sections and ball nodes).
    bool normChecked;
};

// The table, in the order rows sharing a code are tried.
const std::vector<SKRSectionTypeDescriptor>& sectionTypeTable();
// The row of a type; null for a type without one (none, plain numbers, custom, user sections).
const SKRSectionTypeDescriptor* sectionTypeDescriptor(int sectionType);
// The group of a type value: its row's, none for plain texts, custom from the custom base.
EnSKRSectionGroupType sectionTypeGroup(int sectionType);
// The position of a type among the types of its group in ascending order of value (the dialog's
// list order); -1 without a row.
int sectionTypeIndex(int sectionType);
// The types of a group in ascending order of value.
std::vector<EnSKRSectionType> sectionTypesOfGroup(EnSKRSectionGroupType group);
// Ball nodes: the catalogue-group types checked against a norm (their weight is an expression).
bool isBallType(int sectionType);
// The parameter codes of a type; empty without a row.
QStringList sectionTypeParamCodes(int sectionType);
// The rows written with a type code, in table order; empty for an unknown code.
const QVector<const SKRSectionTypeDescriptor*>& sectionTypesOfCode(const QString& code);

}  // namespace section
}  // namespace skr
