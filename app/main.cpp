// bxq: the reference host of the BXQExtend library, on the command line.
#include "app/BXQCommand.h"

#include <QCoreApplication>

#include <cstdio>
#include <functional>
#include <map>

namespace {

const char kUsage[] =
    "usage: bxq VERB [options] [arguments]\n"
    "verbs:\n"
    "  parse [--json] [--lang en] [--ball-expr EXPR] TEXT...   parse section texts (- reads stdin)\n";

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("bxq"));
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 2 || arguments[1] == QLatin1String("--help") || arguments[1] == QLatin1String("-h")) {
        std::fputs(kUsage, arguments.size() < 2 ? stderr : stdout);
        return arguments.size() < 2 ? bxq::kUsageError : 0;
    }
    const std::map<QString, std::function<int(const QStringList&)>> verbs{
        {QStringLiteral("parse"), bxq::runParse},
    };
    const auto verb = verbs.find(arguments[1]);
    if (verb == verbs.end()) return bxq::usageError(QStringLiteral("unknown verb '%1' (try bxq --help)").arg(arguments[1]));
    return verb->second(arguments.mid(1));
}
