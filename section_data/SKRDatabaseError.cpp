// Turning the database's failure count and reason into SKRDatabaseError.
#include "section_data/SKRDatabaseError.h"

#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"

namespace skr {
namespace section {

SKRDatabaseCheck::SKRDatabaseCheck(ndp::CDBTable* table)
    : m_pTable(table), m_failures(table ? table->GetDatabase()->GetFailureCount() : 0) {}

void SKRDatabaseCheck::check() const {
    if (!m_pTable) return;
    const ndp::CDatabase* database = m_pTable->GetDatabase();
    if (database->GetFailureCount() != m_failures) throw SKRDatabaseError(database->GetLastError().toStdString());
}

void beginWrite(ndp::CDBTable* table) {
    if (table && !table->GetDatabase()->BeginTransaction())
        throw SKRDatabaseError(table->GetDatabase()->GetLastError().toStdString());
}

QString failureText(ndp::CDBTable* table, const std::exception& failure) {
    const QString what = QString::fromUtf8(failure.what());
    if (dynamic_cast<const SKRDatabaseError*>(&failure) || !table) return what;
    return QStringLiteral("%1: a row of table %2 cannot be read (%3)")
        .arg(table->GetDatabase()->GetPath(), QString::fromStdWString(table->GetName()), what);
}

}  // namespace section
}  // namespace skr
