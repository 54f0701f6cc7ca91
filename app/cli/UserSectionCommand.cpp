// bxq user-section: the user's own hot-rolled sections of a project ("CustomHotRolledSection"):
// add, update, remove and list, each change saved to the project file before the verb ends.
//
// Names are stored as the host's dialog stores them, so that the parser finds them: a section
// code of letters, a size of digits, "." and "*", no blanks, and the mark "(ZDY)" at the end,
// which add appends when it is not typed.
#include "app/cli/BXQCommand.h"
#include "section_data/SKRProjectSchema.h"
#include "app/BXQDataSession.h"

#include "section_data/SKRDatabaseError.h"
#include "section_data/SKRHotRollingSectionDBProvider.h"
#include "section_spec/SKRUserSectionMark.h"

#include "ndp/NDPDatabase.h"

#include <QMap>
#include <QRegularExpression>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <set>

namespace bxq {
namespace {

using skr::section::SKRHotRollingSection;
using skr::section::SKRUserHotRollingSectionDBProvider;

const QString kUserMark = skr::section::userSectionMark();

// Section types a user may define a hot-rolled section of: those of the shipped catalogue.
bool isHotRolledType(int type) { return (type >= 1 && type <= 10) || type == 1011; }

// The stored form of a user section name, or false when the text is not a code and a size.
bool storedName(const QString& text, QString* name) {
    QString bare = text.simplified();
    bare.remove(QLatin1Char(' '));
    if (bare.endsWith(kUserMark)) bare.chop(kUserMark.size());
    static const QRegularExpression form(QStringLiteral("^[A-Za-z]+[0-9][0-9.*]*$"));
    if (!form.match(bare).hasMatch()) return false;
    *name = bare + kUserMark;
    return true;
}

// A figure of the dialog's range [0, 10000).
bool readFigure(const QCommandLineParser& cli, const QString& option, double* value, QString* error) {
    if (!readNumber(cli.value(option), value) || *value < 0.0 || *value >= 10000.0) {
        *error = QStringLiteral("--%1 must be a number from 0 to below 10000, not '%2'").arg(option, cli.value(option));
        return false;
    }
    return true;
}

bool readParams(const QStringList& items, std::vector<std::pair<std::wstring, double>>* params, QString* error) {
    static const QRegularExpression form(QStringLiteral("^([A-Za-z][A-Za-z0-9]*)=(.+)$"));
    std::set<QString> seen;
    for (const QString& item : items) {
        const QRegularExpressionMatch match = form.match(item);
        double value = 0.0;
        if (!match.hasMatch() || !readNumber(match.captured(2), &value)) {
            *error = QStringLiteral("--param must be NAME=NUMBER with a name of letters and digits, not '%1'").arg(item);
            return false;
        }
        if (!seen.insert(match.captured(1)).second) {
            *error = QStringLiteral("parameter %1 is given twice").arg(match.captured(1));
            return false;
        }
        params->emplace_back(match.captured(1).toStdWString(), value);
    }
    return true;
}

void write(const QByteArray& out) {
    std::fwrite(out.constData(), 1, static_cast<size_t>(out.size()), stdout);
    std::fflush(stdout);
}

// The options each action takes besides --project; any other is a usage error.
bool onlyOptions(const QCommandLineParser& cli, const QString& action, const QStringList& allowed, QString* error) {
    for (const QString& option : cli.optionNames()) {
        if (option == QLatin1String("project") || option == QLatin1String("lang") || allowed.contains(option)) continue;
        *error = QStringLiteral("user-section %1 does not take --%2").arg(action, option);
        return false;
    }
    return true;
}

class UserSectionCommand {
public:
    explicit UserSectionCommand(const QCommandLineParser& cli) : m_cli(cli) {}

    int add(const QString& text) {
        QString name, error;
        if (!storedName(text, &name))
            return usageError(QStringLiteral("a user section name is a code of letters and a size of digits, '.' and "
                                             "'*' (Z270*80*8*3), not '%1'").arg(text));
        SKRHotRollingSection section;
        section.standardName = name.toStdWString();
        bool ok = false;
        section.sectionType = m_cli.value(QStringLiteral("type")).toInt(&ok);
        if (!ok || !isHotRolledType(section.sectionType))
            return usageError(QStringLiteral("add needs --type, a hot-rolled section type (1 to 10 or 1011), not '%1'")
                                  .arg(m_cli.value(QStringLiteral("type"))));
        const bool subGiven = m_cli.isSet(QStringLiteral("sub"));
        if (subGiven) {
            section.subId = m_cli.value(QStringLiteral("sub")).toInt(&ok);
            if (!ok || section.subId < 1)
                return usageError(QStringLiteral("--sub must be a number from 1, not '%1'").arg(m_cli.value("sub")));
        }
        if (!m_cli.isSet(QStringLiteral("weight")) || !m_cli.isSet(QStringLiteral("area")))
            return usageError(QStringLiteral("add needs --weight and --area"));
        if (!readFigure(m_cli, QStringLiteral("weight"), &section.weightMeter, &error) ||
            !readFigure(m_cli, QStringLiteral("area"), &section.area, &error) ||
            !readParams(m_cli.values(QStringLiteral("param")), &section.params, &error))
            return usageError(error);

        if (!open(true, &error) || !m_session.beginProjectChange(&error)) return dataError(error);
        if (m_provider->findByName(section.standardName).first)
            return dataError(QStringLiteral("a user section %1 exists already in %2").arg(name, project()));
        // The type's rows decide the sub number; a taken one is refused, as removing goes by both.
        int lastSub = 0;
        for (const SKRHotRollingSection& row : m_provider->listByType(section.sectionType)) {
            if (subGiven && row.subId == section.subId)
                return dataError(QStringLiteral("type %1 sub %2 is taken by %3 in %4")
                                     .arg(section.sectionType)
                                     .arg(section.subId)
                                     .arg(QString::fromStdWString(row.standardName), project()));
            lastSub = std::max(lastSub, row.subId);
        }
        if (!subGiven) section.subId = lastSub + 1;
        if (!m_provider->addSection(section))
            return dataError(QStringLiteral("cannot add %1 to %2: %3").arg(name, project(), databaseError()));
        if (!m_session.saveProject(&error)) return dataError(error);
        write(sectionLines({m_provider->findByName(section.standardName).second}));
        return 0;
    }

    int update(const QString& text) {
        QString error;
        const bool weightGiven = m_cli.isSet(QStringLiteral("weight"));
        const bool areaGiven = m_cli.isSet(QStringLiteral("area"));
        if (!weightGiven && !areaGiven) return usageError(QStringLiteral("update needs --weight or --area"));
        double weight = 0.0, area = 0.0;
        if ((weightGiven && !readFigure(m_cli, QStringLiteral("weight"), &weight, &error)) ||
            (areaGiven && !readFigure(m_cli, QStringLiteral("area"), &area, &error)))
            return usageError(error);

        if (!open(false, &error) || !m_session.beginProjectChange(&error)) return dataError(error);
        // The name as typed, else in its stored form (the mark appended).
        skr::section::SKRHotRollingLookup found = m_provider->findByName(text.toStdWString());
        QString name;
        if (!found.first && storedName(text, &name)) found = m_provider->findByName(name.toStdWString());
        if (!found.first) return dataError(QStringLiteral("no user section %1 in %2").arg(text, project()));
        SKRHotRollingSection section = found.second;
        if (weightGiven) section.weightMeter = weight;
        if (areaGiven) section.area = area;
        if (!m_provider->updateSection(section))
            return dataError(QStringLiteral("cannot update %1 in %2: %3")
                                 .arg(QString::fromStdWString(section.standardName), project(), databaseError()));
        if (!m_session.saveProject(&error)) return dataError(error);
        write(sectionLines({m_provider->findByName(section.standardName).second}));
        return 0;
    }

    int remove() {
        QString error;
        bool typeOk = false, subOk = false;
        const int type = m_cli.value(QStringLiteral("type")).toInt(&typeOk);
        const int sub = m_cli.value(QStringLiteral("sub")).toInt(&subOk);
        if (!typeOk || !subOk) return usageError(QStringLiteral("remove needs --type N and --sub K"));

        if (!open(false, &error) || !m_session.beginProjectChange(&error)) return dataError(error);
        std::vector<SKRHotRollingSection> removed;
        for (const SKRHotRollingSection& row : m_provider->listByType(type))
            if (row.subId == sub) removed.push_back(row);
        if (removed.empty())
            return dataError(QStringLiteral("no user section of type %1 sub %2 in %3").arg(type).arg(sub).arg(project()));
        if (!m_provider->removeSection(type, sub))
            return dataError(QStringLiteral("cannot remove type %1 sub %2 from %3: %4").arg(type).arg(sub).arg(project(), databaseError()));
        if (!m_session.saveProject(&error)) return dataError(error);
        write(sectionLines(removed));
        return 0;
    }

    int list() {
        QString error;
        if (!open(false, &error)) return dataError(error);
        const auto sections =
            BXQDataSession::allSections(m_session.projectDB()->GetTable(skr::section::schema::user_section::table), m_provider);
        write(m_cli.isSet(QStringLiteral("json")) ? sectionJson(sections) : sectionLines(sections));
        return 0;
    }

private:
    bool open(bool create, QString* error) {
        if (!m_session.openProject(project(), create, error)) return false;
        m_session.registerRepository();
        m_provider = skr::util::FetchInstance<SKRUserHotRollingSectionDBProvider>();
        if (!m_provider) *error = QStringLiteral("%1 has no table \"CustomHotRolledSection\"").arg(project());
        return m_provider != nullptr;
    }
    QString project() const { return m_cli.value(QStringLiteral("project")); }

public:
    // One line for a failure that ended the action: a database's own reason names the file; a
    // row that cannot be read is named with the project.
    QString failure(const std::exception& e) const {
        if (dynamic_cast<const skr::section::SKRDatabaseError*>(&e)) return QString::fromUtf8(e.what());
        return QStringLiteral("%1: %2").arg(project(), QString::fromUtf8(e.what()));
    }

private:
    QString databaseError() const {
        const QString reason = m_session.projectDB() ? m_session.projectDB()->GetLastError() : QString();
        return reason.isEmpty() ? QStringLiteral("the project cannot be written") : reason;
    }

    const QCommandLineParser& m_cli;
    BXQDataSession m_session;
    SKRUserHotRollingSectionDBProvider* m_provider = nullptr;
};

}  // namespace

int runUserSection(const QStringList& arguments) {
    QCommandLineParser cli;
    cli.setApplicationDescription(QStringLiteral("Adds, updates, removes and lists a project's user sections."));
    cli.addOption({QStringLiteral("project"), QStringLiteral("The project file."), QStringLiteral("FILE")});
    cli.addOption({QStringLiteral("type"), QStringLiteral("Section type."), QStringLiteral("N")});
    cli.addOption({QStringLiteral("sub"), QStringLiteral("Sub number within the type."), QStringLiteral("K")});
    cli.addOption({QStringLiteral("weight"), QStringLiteral("Weight per metre, kg/m."), QStringLiteral("W")});
    cli.addOption({QStringLiteral("area"), QStringLiteral("Surface per metre, m2/m."), QStringLiteral("A")});
    cli.addOption({QStringLiteral("param"), QStringLiteral("A parameter, name=value (repeatable)."),
                   QStringLiteral("name=value")});
    cli.addOption({QStringLiteral("json"), QStringLiteral("list: one JSON array of the rows.")});
    addLanguageOption(cli);
    cli.addPositionalArgument(QStringLiteral("action"), QStringLiteral("add NAME, update NAME, remove or list."));
    if (!parseArguments(cli, arguments)) return kUsageError;

    const QStringList positional = cli.positionalArguments();
    const QString action = positional.value(0);
    const bool named = action == QLatin1String("add") || action == QLatin1String("update");
    if (!named && action != QLatin1String("remove") && action != QLatin1String("list"))
        return usageError(QStringLiteral("user-section needs an action: add, update, remove or list"));
    if (positional.size() != (named ? 2 : 1))
        return usageError(named ? QStringLiteral("user-section %1 needs one NAME").arg(action)
                                : QStringLiteral("user-section %1 takes no NAME").arg(action));
    if (!cli.isSet(QStringLiteral("project"))) return usageError(QStringLiteral("user-section needs --project FILE"));
    static const QMap<QString, QStringList> allowed{
        {QStringLiteral("add"), {"type", "sub", "weight", "area", "param"}},
        {QStringLiteral("update"), {"weight", "area"}},
        {QStringLiteral("remove"), {"type", "sub"}},
        {QStringLiteral("list"), {"json"}}};
    QString error;
    if (!onlyOptions(cli, action, allowed.value(action), &error)) return usageError(error);
    if (!applyLanguageOption(cli)) return kUsageError;

    UserSectionCommand command(cli);
    try {
        if (action == QLatin1String("add")) return command.add(positional[1]);
        if (action == QLatin1String("update")) return command.update(positional[1]);
        if (action == QLatin1String("remove")) return command.remove();
        return command.list();
    } catch (const std::exception& e) {
        // A row or database that cannot be read or written; the project is left as it was.
        return dataError(command.failure(e));
    }
}

}  // namespace bxq
