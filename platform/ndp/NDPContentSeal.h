// The seal of a shipped, read-only database: a SHA-256 digest of every table's content, written
// by the generator when it makes the file and checked when the application opens it, so that a
// damaged file (a flipped byte in a weight) is refused instead of read as if it were whole.
// A sealed file says so in its header (SQLite's application id), so a seal cannot go missing
// unnoticed with the rest of the file intact.
#pragma once

#include "PlatformGlobal.h"

class QString;

namespace ndp {

class CDatabase;

// Writes the seal of the database's current content (in its open transaction; flush after).
BXQPLATFORM_EXPORT bool SealDatabase(CDatabase& database, QString* error);
// True for an unsealed database and for a sealed one whose content matches its seal and whose
// indexes agree with its tables; false, with
// the reason naming the file, otherwise (damaged, or unreadable under the check).
BXQPLATFORM_EXPORT bool CheckDatabaseSeal(CDatabase& database, QString* error);
// Whether the database carries a seal (it is a shipped file, never written).
BXQPLATFORM_EXPORT bool IsDatabaseSealed(CDatabase& database);
// Keeps the read lock of a database nobody writes between its reads (SQLite's exclusive locking
// mode), sparing every look-up the file-lock calls of taking and dropping it.
BXQPLATFORM_EXPORT void HoldReadLock(CDatabase& database);

}  // namespace ndp
