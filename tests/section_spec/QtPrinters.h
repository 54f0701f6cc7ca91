// Shared by the section-specification suites: readable GoogleTest messages for Qt texts, and
// parsing a text into its record in one call.
#pragma once

#include "section_spec/SKRSectionPolyInfoParser.h"

#include <QString>

#include <ostream>

inline void PrintTo(const QString& text, std::ostream* out) { *out << '"' << text.toStdString() << '"'; }

inline GSectionPolyInfo parse(const QString& text) {
    SKRSectionPolyInfoParser parser;
    parser.parser(text);
    return parser.sectionPolyInfo();
}
