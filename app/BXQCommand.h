// The verbs of the bxq reference host and what they share: usage errors and the language.
#pragma once

#include <QCommandLineParser>
#include <QString>
#include <QStringList>

namespace bxq {

// Exit status of a command line that cannot be understood.
constexpr int kUsageError = 2;

// Prints "bxq: message" on standard error and returns kUsageError.
int usageError(const QString& message);

// Adds --lang to a verb's parser.
void addLanguageOption(QCommandLineParser& parser);
// Installs the translation --lang asked for; false (with a message printed) when there is none.
bool applyLanguageOption(const QCommandLineParser& parser);

// Parses a verb's arguments (arguments[0] is the verb); false on a usage error, message printed.
bool parseArguments(QCommandLineParser& parser, const QStringList& arguments);

int runParse(const QStringList& arguments);

}  // namespace bxq
