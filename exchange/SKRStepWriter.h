// SKRStepWriter: the text of an ISO 10303-21 (STEP Part 21) exchange file: numbered entity
// instances written as they are made, with the argument forms the standard allows (reals in their
// shortest exact form, escaped strings, enumerations, references, lists) and GlobalIds derived
// from stable keys, so that the same content always gives the same bytes.
#pragma once

#include <QByteArray>
#include <QString>

#include <initializer_list>
#include <vector>

namespace skr {
namespace exchange {

// An entity instance of the file: #id.
struct StepRef {
    int id = 0;
    bool isSet() const { return id > 0; }
};

// One argument, already in its Part 21 form.
struct StepArg {
    QByteArray text;
};

// The argument forms.
StepArg stepReal(double value);  // shortest round-trip digits, always with a point: 1., 0.25, 1.E-05
StepArg stepInteger(long long value);
StepArg stepString(const QString& value);  // quoted; ' and \ doubled, non-ASCII as \X2\...\X0\ (\X4\ beyond U+FFFF)
StepArg stepEnum(const char* name);        // .NAME.
StepArg stepBool(bool value);              // .T. or .F.
StepArg stepRef(StepRef ref);              // #id, or $ for an unset reference
StepArg stepUnset();                       // $
StepArg stepDerived();                     // *
StepArg stepList(const std::vector<StepArg>& items);
StepArg stepRefList(const std::vector<StepRef>& refs);
StepArg stepRealList(std::initializer_list<double> values);
StepArg stepTyped(const char* type, const StepArg& value);  // a select value: TYPE(value)

// A 22-character IFC GlobalId (128 bits in IFC's base-64 alphabet, the first character 0 to 3)
// derived from key: the same key gives the same id.
QString stepGlobalId(const QByteArray& key);

class SKRStepWriter {
public:
    // Appends "#n=ENTITY(args);" and returns #n.
    StepRef add(const char* entity, std::initializer_list<StepArg> args);
    // The whole file: the header (description, name, schema) and the data section. The time stamp
    // is fixed so that the same content gives the same file.
    QByteArray document(const QString& description, const QString& fileName, const QString& originatingSystem,
                        const char* schema) const;
    int count() const { return m_next - 1; }

private:
    QByteArray m_data;
    int m_next = 1;
};

}  // namespace exchange
}  // namespace skr
