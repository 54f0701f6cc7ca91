// CDBTable: one table of a database: its ordered fields, its records in table order, look-ups by
// key field and the query expressions the library builds.
#pragma once

#include "PlatformGlobal.h"
#include "ndp/NDPDBField.h"
#include "ndp/NDPFileAddressList.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace ndp {

class CDatabase;
class CDBRecord;

class BXQPLATFORM_EXPORT CDBTable {
public:
    ~CDBTable();

    const std::wstring& GetName() const { return m_name; }
    CDatabase* GetDatabase() const { return m_database; }
    int GetFieldCount() const { return static_cast<int>(m_fields.size()); }
    const CDBField& GetField(int index) const { return m_fields.at(static_cast<size_t>(index)); }
    std::wstring GetFieldName(int index) const;
    // Index of the field, -1 when the table has none of that name.
    int FindField(const std::wstring& name) const;

    // A new record with every value null, not yet in the table.
    CDBRecord* CreateRecord();
    // Stores a record created by CreateRecord; its address on success, kNullAddress otherwise.
    CFileAddress AddRecord(CDBRecord* record, bool notify = false);
    // Writes the values of a record read from this table back to its row.
    bool ModifyRecord(CDBRecord* record);
    bool DeleteRecord(CFileAddress address);
    // The record at address (Release it), or null: when there is none, or when the read failed,
    // which the database counts among its failures.
    CDBRecord* GetRecord(CFileAddress address);

    // Every record in table order.
    bool ListAll(CFileAddressList& addresses);
    // The largest value of an integer field (0 in an empty table); false when it cannot be read.
    bool GetMaxInt64(int field, std::int64_t& max);
    // The first record whose integer field equals key.
    bool Find(int field, std::int64_t key, CFileAddress& address, bool notify = false);
    // Every record whose integer field equals key, in table order.
    bool Search(int field, std::int64_t key, CFileAddressList& addresses, bool notify = false);
    // Records matching a query expression: "F==1", "F==1 && G==2", "F == 1 && G == 2" or
    // SameString(F,"text"). False, with nothing listed, for any other expression.
    bool Query(const std::wstring& expression, CFileAddressList& addresses, bool notify = false);

private:
    friend class CDatabase;
    CDBTable(CDatabase* database, std::wstring name, std::vector<CDBField> fields);
    sqlite3_stmt* statement(const std::string& sql);
    bool listAddresses(sqlite3_stmt* statement, CFileAddressList& addresses);
    bool searchKey(int field, std::int64_t key, CFileAddressList& addresses, bool firstOnly);
    const std::string& quotedTable() const { return m_quotedTable; }

    CDatabase* m_database;
    std::wstring m_name;
    std::vector<CDBField> m_fields;
    std::vector<std::string> m_columns;  // quoted SQLite column of each field
    std::string m_quotedTable;           // quoted SQLite table name
    std::string m_recordSql;             // the SELECT that GetRecord runs
    std::map<std::string, sqlite3_stmt*> m_statements;  // prepared once, reused
};

}  // namespace ndp
