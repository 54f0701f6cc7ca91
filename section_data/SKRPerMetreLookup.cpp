// Per-metre look-ups in the user and then the system hot-rolled catalogue, answered from an index
// of each catalogue by name: the host asks per member and per keystroke, on its user-interface
// thread. The system catalogue is read-only; the user's is indexed again after any write to it.
#include "section_data/SKRPerMetreLookup.h"

#include "section_data/SKRDatabaseError.h"
#include "section_data/SKRHotRollingSectionDBProvider.h"

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPFileAddressList.h"
#include "ndp/NDPRef.h"

#include <QHash>
#include <QtGlobal>

#include <exception>
#include <mutex>

namespace skr {
namespace section {
namespace {

// The rows of one provider's table by name, the first of a name in table order (as a look-up by
// name finds it). A table with a row that cannot be read is not indexed: its look-ups go to the
// database one by one, so that only that row's name fails.
struct NameIndex {
    std::uint64_t serial = 0;
    std::uint64_t writes = 0;
    bool usable = false;
    QHash<QString, SKRHotRollingSection> rows;
};

struct Indexes {
    std::mutex lock;
    NameIndex user;
    NameIndex system;
};

Indexes& indexes() {
    static Indexes all;
    return all;
}

void rebuild(SKRHotRollingSectionDBProvider* provider, NameIndex& index, std::uint64_t writes) {
    index.serial = provider->serial();
    index.writes = writes;
    index.usable = false;
    index.rows.clear();
    ndp::CDBTable* table = provider->table();
    ndp::CFileAddressList all;
    if (!table || !table->ListAll(all)) return;
    QHash<QString, SKRHotRollingSection> rows;
    rows.reserve(all.GetCount());
    try {
        for (int i = 0; i < all.GetCount(); ++i) {
            ndp::CRef<ndp::CDBRecord> record(table->GetRecord(all.GetItem(i)));
            if (!record.get()) return;
            SKRHotRollingSection row = provider->fromRecord(record.get());
            const QString name = QString::fromStdWString(row.standardName);
            if (!rows.contains(name)) rows.insert(name, std::move(row));
        }
    } catch (const std::exception&) {
        return;  // looked up row by row instead, where the failing row's name reports it
    }
    index.rows.swap(rows);
    index.usable = true;
}

// The row of that name: from the index when the table could be indexed (pointing into it), else
// read from the database into spare.
const SKRHotRollingSection* find(SKRHotRollingSectionDBProvider* provider, NameIndex& index, std::uint64_t writes,
                                 const QString& norm, SKRHotRollingSection& spare) {
    if (index.serial != provider->serial() || index.writes != writes) rebuild(provider, index, writes);
    if (index.usable) {
        const auto found = index.rows.constFind(norm);
        return found == index.rows.constEnd() ? nullptr : &*found;
    }
    try {
        SKRHotRollingLookup found = provider->findByName(norm.toStdWString());
        if (!found.first) return nullptr;
        spare = std::move(found.second);
        return &spare;
    } catch (const std::exception& failure) {
        throw SKRDatabaseError(failureText(provider->table(), failure).toStdString());
    }
}

// User sections shadow system sections of the same name; an absent provider finds nothing. use
// sees the row while the indexes are held.
template <typename Use>
void withSection(const QString& norm, Use use) {
    Indexes& all = indexes();
    const std::lock_guard<std::mutex> hold(all.lock);
    SKRHotRollingSection spare;
    const SKRHotRollingSection* row = nullptr;
    if (auto* user = util::FetchInstance<SKRUserHotRollingSectionDBProvider>())
        row = find(user, all.user, SKRHotRollingSectionDBProvider::userSectionWrites(), norm, spare);
    if (!row)
        if (auto* system = util::FetchInstance<SKRHotRollingSectionDBProvider>())
            row = find(system, all.system, 0, norm, spare);
    if (row) use(*row);
}

// A figure of the row of that name; 0 when there is none or it cannot be read (the reason goes to
// the log: the host has no channel for a failure here).
template <typename Figure>
double figureOf(const QString& norm, Figure figure) {
    double value = 0.0;
    try {
        withSection(norm, [&](const SKRHotRollingSection& row) { value = figure(row); });
    } catch (const std::exception& failure) {
        qWarning("%s", failure.what());
    }
    return value;
}

}  // namespace

SKRHotRollingLookup SKRPerMetreLookup::lookUp(const QString& norm) {
    SKRHotRollingLookup found{false, SKRHotRollingSection()};
    withSection(norm, [&found](const SKRHotRollingSection& row) { found = {true, row}; });
    return found;
}

SKRHotRollingLookup SKRPerMetreLookup::findSection(const QString& norm, QString* error) {
    try {
        return lookUp(norm);
    } catch (const std::exception& failure) {
        if (error) *error = QString::fromLocal8Bit(failure.what());
    }
    return {false, SKRHotRollingSection()};
}

double SKRPerMetreLookup::weightPerMetre(const QString& norm) {
    return figureOf(norm, [](const SKRHotRollingSection& row) { return row.weightMeter; });
}

double SKRPerMetreLookup::surfacePerMetre(const QString& norm) {
    return figureOf(norm, [](const SKRHotRollingSection& row) { return row.area; });
}

}  // namespace section
}  // namespace skr
