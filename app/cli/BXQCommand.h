// The verbs of the bxq reference host and what they share: usage errors and the language.
#pragma once

#include <QCommandLineParser>
#include <QJsonArray>
#include <QString>
#include <QStringList>

#include <array>
#include <functional>
#include <vector>

namespace skr {
namespace section {
struct SKRHotRollingSection;
}
}  // namespace skr

namespace bxq {

// Exit status of a command line that cannot be understood.
constexpr int kUsageError = 2;
// Exit status of a verb that could not do its work: a missing or unreadable database or project,
// a refused change. Nothing has been written to standard output or to the files then.
constexpr int kDataError = 1;

// Prints "bxq: message" on standard error and returns kUsageError.
int usageError(const QString& message);
// Prints "bxq: message" on standard error and returns kDataError.
int dataError(const QString& message);
// Prints "bxq: message" on standard error.
void warn(const QString& message);

// A number in its shortest form that reads back as the same double (27.929, 0.5, 1e-07).
QString shortestNumber(double value);
// A number argument: finite, whole text; false otherwise.
bool readNumber(const QString& text, double* value);

// A triple "x,y,z" of finite numbers.
bool readTriple(const QString& text, std::array<double, 3>& out);
// A triple as "x,y,z" in shortest numbers, and as a JSON array.
QString tripleText(const std::array<double, 3>& v);
QJsonArray tripleJson(const std::array<double, 3>& v);
// An id: a whole number.
bool readId(const QString& text, qint64* id);
// Writes text to standard output at once.
void print(const QByteArray& text);

// Calls take for each argument, and for each line of standard input in place of an argument "-".
void forEachInput(const QStringList& arguments, const std::function<void(const QString&)>& take);

// Hot-rolled sections, one per line: the name (padded to a column), "type=", "sub=", "kg/m=",
// "m2/m=" and the parameters as name=value in field order, those of value 0 (a dimension the
// family does not have) left out.
QByteArray sectionLines(const std::vector<skr::section::SKRHotRollingSection>& sections);
// The same as a JSON array of {"name", "type", "sub", "weight", "surface", "params"}, params an
// object of the non-zero parameters.
QByteArray sectionJson(const std::vector<skr::section::SKRHotRollingSection>& sections);

// Adds --lang to a verb's parser.
void addLanguageOption(QCommandLineParser& parser);
// Installs the translation --lang asked for; false (with a message printed) when there is none.
bool applyLanguageOption(const QCommandLineParser& parser);

// Thrown once a verb's --help has been printed; the run ends with status 0.
struct HelpShown {};

// Parses a verb's arguments (arguments[0] is the verb); false on a usage error, message printed.
// --help (on every verb) prints the verb's usage with an example and throws HelpShown.
bool parseArguments(QCommandLineParser& parser, const QStringList& arguments);

int runParse(const QStringList& arguments);
int runCatalogue(const QStringList& arguments);
int runWeightPerMetre(const QStringList& arguments);
int runSurfacePerMetre(const QStringList& arguments);
int runUserSection(const QStringList& arguments);
int runMember(const QStringList& arguments);
int runCutPlane(const QStringList& arguments);
int runView(const QStringList& arguments);
int runFaceSteel(const QStringList& arguments);
int runExport(const QStringList& arguments);
int runOutline(const QStringList& arguments);
int runProperties(const QStringList& arguments);

}  // namespace bxq
