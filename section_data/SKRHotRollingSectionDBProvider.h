// SKRHotRollingSectionDBProvider: reads the system hot-rolled catalogue ("SectionPolyInfor") by
// name, by keys (cached) and by type.
#pragma once

#include "section_data/SKRHotRollingSection.h"
#include "section_data/SKRRegistryInstance.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace ndp {
class CDBRecord;
class CDBTable;
class CFileAddressList;
}  // namespace ndp

namespace skr {
namespace section {

class SKRHotRollingSectionDBProvider {
public:
    explicit SKRHotRollingSectionDBProvider(ndp::CDBTable* table);
    virtual ~SKRHotRollingSectionDBProvider();
    // Reads one row; throws std::invalid_argument for a missing field or a non-numeric parameter.
    virtual SKRHotRollingSection fromRecord(ndp::CDBRecord* record);

    // Every look-up throws SKRDatabaseError when the database fails under it (a damaged page, a
    // busy file): a failed read never passes for a row that is absent or a list that is whole.

    // Query SameString(name field, "name"); a refused query or no match finds nothing.
    SKRHotRollingLookup findByName(const std::wstring& name);
    // Query on the key fields, answered from the cache when asked before; a refused query throws.
    SKRHotRollingLookup findByKeys(int sectionType, int subId);
    std::vector<SKRHotRollingSection> listByType(int sectionType);
    // Every row in table order.
    std::vector<SKRHotRollingSection> listAll();

    ndp::CDBTable* table() const { return m_pTable; }
    // A number no other provider of this process has had, and a count of the writes to the user's
    // sections by any provider of the process: together they tell an index of the rows whether it
    // is still that of this table as it is.
    std::uint64_t serial() const { return m_serial; }
    static std::uint64_t userSectionWrites();

    // The query text findByKeys builds, e.g. "PolyID == 5 && SubClassID == 1".
    std::wstring keyQuery(int sectionType, int subId) const;
    // The query text of a look-up by name: SameString(StandardName,"name"), the name as it is.
    std::wstring sameStringQuery(const std::wstring& name) const;

protected:
    SKRHotRollingLookup readFirst(const ndp::CFileAddressList& found);
    std::vector<SKRHotRollingSection> readAll(const ndp::CFileAddressList& found);
    SKRHotRollingSection readLeadingFields(ndp::CDBRecord* record) const;
    static double toDouble(const std::wstring& text);
    static void noteUserSectionWrite();
    std::wstring readText(ndp::CDBRecord* record, const std::wstring& field) const;

    ndp::CDBTable* m_pTable;
    std::wstring m_nameField;
    std::wstring m_firstKeyField;
    std::wstring m_secondKeyField;
    std::unordered_map<std::wstring, SKRHotRollingSection>* m_pCache;
    std::uint64_t m_serial;
};

// SKRUserHotRollingSectionDBProvider: the user's own hot-rolled sections in the project
// ("CustomHotRolledSection"), which it also adds, updates and removes. Each change takes the
// file's write lock before it checks anything (SKRDatabaseError when the file stays busy or
// cannot be written); nothing is flushed here.
class SKRUserHotRollingSectionDBProvider : public SKRHotRollingSectionDBProvider {
public:
    explicit SKRUserHotRollingSectionDBProvider(ndp::CDBTable* table);
    ~SKRUserHotRollingSectionDBProvider() override;
    SKRHotRollingSection fromRecord(ndp::CDBRecord* record) override;

    // False, writing nothing, when the name exists already.
    bool addSection(const SKRHotRollingSection& section);
    // New weight and surface for the section of that name; name, keys and parameters unchanged.
    bool updateSection(const SKRHotRollingSection& section);
    // Deletes every row with these keys; the result of the last deletion, false when none matched.
    bool removeSection(int sectionType, int subId);
    // The sub-class a new section of the type gets: one past the largest in use, 1 for the first.
    int nextSubId(int sectionType);
};

}  // namespace section
}  // namespace skr

template <>
struct skr::util::RegistryKey<skr::section::SKRHotRollingSectionDBProvider> {
    static std::string name() { return "class skr::section::SKRHotRollingSectionDBProvider"; }
};
template <>
struct skr::util::RegistryKey<skr::section::SKRUserHotRollingSectionDBProvider> {
    static std::string name() { return "class skr::section::SKRUserHotRollingSectionDBProvider"; }
};
