// SKRDatabaseError: a section database that failed under a read or a write (a damaged page, a
// file held by another program, no permission, a full disk). It carries the database's one-line
// reason, which names the file. The stores throw it so that a failed read is never taken for a
// row that is absent or a listing that is whole.
#pragma once

#include <QString>

#include <exception>
#include <stdexcept>

namespace ndp {
class CDBTable;
}

namespace skr {
namespace section {

class SKRDatabaseError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Notes the failure count of a table's database when made; check() throws SKRDatabaseError
// with the database's reason when an operation has failed since.
class SKRDatabaseCheck {
public:
    explicit SKRDatabaseCheck(ndp::CDBTable* table);
    void check() const;

private:
    ndp::CDBTable* m_pTable;
    unsigned m_failures;
};

// Takes the write lock of the table's database before a change is checked and made; throws
// SKRDatabaseError when the file is busy or cannot be written.
void beginWrite(ndp::CDBTable* table);

// One line for a failed look-up in a table: the database's reason for a database failure, else
// the file and table named with what could not be read (a malformed number).
QString failureText(ndp::CDBTable* table, const std::exception& failure);

}  // namespace section
}  // namespace skr
