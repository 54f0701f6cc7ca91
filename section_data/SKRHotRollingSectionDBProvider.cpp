// The system and user hot-rolled section providers.
#include "section_data/SKRHotRollingSectionDBProvider.h"

#include "section_data/SKRProjectSchema.h"
#include "section_data/SKRQueryText.h"

#include "section_data/SKRDatabaseError.h"

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPRef.h"
#include "ndp/NDPDBTable.h"

#include <QLocale>
#include <QString>

#include <algorithm>
#include <atomic>

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cwchar>
#include <stdexcept>

namespace skr {
namespace section {
namespace {

const char kInvalidQuery[] = "Invalid Query String!";
const char kInvalidField[] = "Invalid Field Name!";

int fieldIndex(ndp::CDBTable* table, const std::wstring& name) {
    const int index = table->FindField(name);
    if (index < 0) throw std::invalid_argument(kInvalidField);
    return index;
}

std::wstring shortest(double value) {
    return QString::number(value, 'g', QLocale::FloatingPointShortest).toStdWString();
}

std::atomic<std::uint64_t> g_userSectionWrites{0};

std::uint64_t nextSerial() {
    static std::atomic<std::uint64_t> serials{0};
    return ++serials;
}

}  // namespace

std::uint64_t SKRHotRollingSectionDBProvider::userSectionWrites() { return g_userSectionWrites.load(); }

void SKRHotRollingSectionDBProvider::noteUserSectionWrite() { ++g_userSectionWrites; }

SKRHotRollingSectionDBProvider::SKRHotRollingSectionDBProvider(ndp::CDBTable* table)
    : m_pTable(table),
      m_nameField(L"StandardName"),
      m_firstKeyField(L"PolyID"),
      m_secondKeyField(L"SubClassID"),
      m_pCache(new std::unordered_map<std::wstring, SKRHotRollingSection>),
      m_serial(nextSerial()) {}

SKRHotRollingSectionDBProvider::~SKRHotRollingSectionDBProvider() { delete m_pCache; }

double SKRHotRollingSectionDBProvider::toDouble(const std::wstring& text) {
    // Plain decimal text, as the catalogue writes its numbers, read without the locale-aware
    // parser (the same correctly rounded value); anything else (blanks, a plus sign, hexadecimal,
    // trailing letters, out of range) goes the long way.
    char narrow[40];
    if (!text.empty() && text.size() < sizeof narrow) {
        bool plain = true;
        for (size_t i = 0; plain && i < text.size(); ++i) {
            const wchar_t c = text[i];
            plain = (c >= L'0' && c <= L'9') || c == L'.' || c == L'-' || c == L'e' || c == L'E';
            narrow[i] = static_cast<char>(c);
        }
        double value = 0.0;
        const char* end = narrow + text.size();
        if (plain) {
            const std::from_chars_result read = std::from_chars(narrow, end, value);
            // A subnormal result is an underflow to the long way, which refuses it.
            if (read.ec == std::errc() && read.ptr == end && std::fpclassify(value) != FP_SUBNORMAL) return value;
        }
    }
    const wchar_t* begin = text.c_str();
    wchar_t* end = nullptr;
    errno = 0;
    const double value = std::wcstod(begin, &end);
    if (end == begin) throw std::invalid_argument("invalid stod argument");
    if (errno == ERANGE) throw std::out_of_range("stod argument out of range");
    return value;
}

std::wstring SKRHotRollingSectionDBProvider::readText(ndp::CDBRecord* record, const std::wstring& field) const {
    const int index = fieldIndex(m_pTable, field);
    if (m_pTable->GetField(index).GetKind() != ndp::EnDBFieldKind::Text) throw std::invalid_argument(kInvalidField);
    return record->GetString(index);
}

SKRHotRollingSection SKRHotRollingSectionDBProvider::readLeadingFields(ndp::CDBRecord* record) const {
    SKRHotRollingSection section;
    section.sectionType = record->GetInt(fieldIndex(m_pTable, m_firstKeyField));
    section.subId = record->GetInt(fieldIndex(m_pTable, m_secondKeyField));
    section.standardName = readText(record, m_nameField);
    section.weightMeter = record->GetDouble(fieldIndex(m_pTable, L"WeightMeter"));
    section.area = record->GetDouble(fieldIndex(m_pTable, L"AreaVal"));
    return section;
}

SKRHotRollingSection SKRHotRollingSectionDBProvider::fromRecord(ndp::CDBRecord* record) {
    SKRHotRollingSection section = readLeadingFields(record);
    // Every field after "AreaVal" is one parameter: its name, and a number written as text.
    // Read by position: a catalogue row has a dozen parameters and is read on every look-up.
    const int first = fieldIndex(m_pTable, L"AreaVal") + 1;
    section.params.reserve(static_cast<size_t>(m_pTable->GetFieldCount() - first));
    for (int i = first; i < m_pTable->GetFieldCount(); ++i) {
        const ndp::CDBField& field = m_pTable->GetField(i);
        if (field.GetKind() != ndp::EnDBFieldKind::Text) throw std::invalid_argument(kInvalidField);
        section.params.emplace_back(field.GetName(), toDouble(record->GetString(i)));
    }
    return section;
}

SKRHotRollingLookup SKRHotRollingSectionDBProvider::findByName(const std::wstring& name) {
    if (!m_pTable) return {false, SKRHotRollingSection()};
    const SKRDatabaseCheck failed(m_pTable);
    ndp::CFileAddressList found;
    const bool accepted = m_pTable->Query(sameStringQuery(name), found);
    failed.check();
    if (!accepted || found.GetCount() == 0) return {false, SKRHotRollingSection()};
    return readFirst(found);
}

SKRHotRollingLookup SKRHotRollingSectionDBProvider::readFirst(const ndp::CFileAddressList& found) {
    const SKRDatabaseCheck failed(m_pTable);
    ndp::CRef<ndp::CDBRecord> ref(m_pTable->GetRecord(found.GetItem(0)));
    failed.check();
    if (!ref.get()) return {false, SKRHotRollingSection()};
    return {true, fromRecord(ref.get())};
}

std::vector<SKRHotRollingSection> SKRHotRollingSectionDBProvider::readAll(const ndp::CFileAddressList& found) {
    // A row listed but not read is a failed read, never a shorter list.
    const SKRDatabaseCheck failed(m_pTable);
    std::vector<SKRHotRollingSection> sections;
    sections.reserve(static_cast<size_t>(found.GetCount()));
    for (int i = 0; i < found.GetCount(); ++i) {
        ndp::CRef<ndp::CDBRecord> ref(m_pTable->GetRecord(found.GetItem(i)));
        failed.check();
        if (ref.get()) sections.push_back(fromRecord(ref.get()));
    }
    return sections;
}

std::wstring SKRHotRollingSectionDBProvider::sameStringQuery(const std::wstring& name) const {
    return skr::section::query::sameString(m_nameField, name);
}

std::wstring SKRHotRollingSectionDBProvider::keyQuery(int sectionType, int subId) const {
    return skr::section::query::keyFieldsEqual(m_firstKeyField, sectionType, m_secondKeyField, subId);
}

SKRHotRollingLookup SKRHotRollingSectionDBProvider::findByKeys(int sectionType, int subId) {
    if (!m_pTable) return {false, SKRHotRollingSection()};
    const std::wstring query = keyQuery(sectionType, subId);
    const auto cached = m_pCache->find(query);
    if (cached != m_pCache->end()) return {true, cached->second};
    const SKRDatabaseCheck failed(m_pTable);
    ndp::CFileAddressList found;
    const bool accepted = m_pTable->Query(query, found);
    failed.check();
    if (!accepted) throw std::invalid_argument(kInvalidQuery);
    if (found.GetCount() == 0) return {false, SKRHotRollingSection()};
    const SKRHotRollingLookup row = readFirst(found);
    if (row.first) m_pCache->emplace(query, row.second);
    return row;
}

std::vector<SKRHotRollingSection> SKRHotRollingSectionDBProvider::listByType(int sectionType) {
    if (!m_pTable) return {};
    const int field = fieldIndex(m_pTable, m_firstKeyField);
    const SKRDatabaseCheck failed(m_pTable);
    ndp::CFileAddressList found;
    m_pTable->Search(field, sectionType, found);
    failed.check();
    return readAll(found);
}

std::vector<SKRHotRollingSection> SKRHotRollingSectionDBProvider::listAll() {
    if (!m_pTable) return {};
    const SKRDatabaseCheck failed(m_pTable);
    ndp::CFileAddressList found;
    m_pTable->ListAll(found);
    failed.check();
    return readAll(found);
}

SKRUserHotRollingSectionDBProvider::SKRUserHotRollingSectionDBProvider(ndp::CDBTable* table)
    : SKRHotRollingSectionDBProvider(table) {
    m_firstKeyField = schema::user_section::sectionType;
    m_secondKeyField = schema::user_section::subId;
}

SKRUserHotRollingSectionDBProvider::~SKRUserHotRollingSectionDBProvider() = default;

SKRHotRollingSection SKRUserHotRollingSectionDBProvider::fromRecord(ndp::CDBRecord* record) {
    SKRHotRollingSection section = readLeadingFields(record);
    // "SectionParam": name=value items joined by ";" (a trailing ";" is accepted).
    const QString text = QString::fromStdWString(readText(record, schema::user_section::params));
    for (const QString& item : text.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        const QString name = item.section(QLatin1Char('='), 0, 0);
        const QString value = item.section(QLatin1Char('='), 1, 1);
        section.params.emplace_back(name.toStdWString(), toDouble(value.toStdWString()));
    }
    return section;
}

bool SKRUserHotRollingSectionDBProvider::addSection(const SKRHotRollingSection& section) {
    if (!m_pTable) return false;
    noteUserSectionWrite();
    // The write lock first, so that the name found free stays free until the row is added.
    beginWrite(m_pTable);
    if (findByName(section.standardName).first) return false;
    const SKRDatabaseCheck failed(m_pTable);
    std::wstring params;
    for (const auto& param : section.params) params += param.first + L"=" + shortest(param.second) + L";";
    ndp::CRef<ndp::CDBRecord> ref(m_pTable->CreateRecord());
    ref.get()->SetInt(fieldIndex(m_pTable, m_firstKeyField), section.sectionType);
    ref.get()->SetInt(fieldIndex(m_pTable, m_secondKeyField), section.subId);
    ref.get()->SetString(fieldIndex(m_pTable, m_nameField), section.standardName);
    ref.get()->SetDouble(fieldIndex(m_pTable, L"WeightMeter"), section.weightMeter);
    ref.get()->SetDouble(fieldIndex(m_pTable, L"AreaVal"), section.area);
    ref.get()->SetString(fieldIndex(m_pTable, schema::user_section::params), params);
    const bool added = m_pTable->AddRecord(ref.get()) != ndp::kNullAddress;
    failed.check();
    return added;
}

bool SKRUserHotRollingSectionDBProvider::updateSection(const SKRHotRollingSection& section) {
    if (!m_pTable) return false;
    noteUserSectionWrite();
    beginWrite(m_pTable);
    const SKRDatabaseCheck failed(m_pTable);
    ndp::CFileAddressList found;
    const bool accepted = m_pTable->Query(sameStringQuery(section.standardName), found);
    failed.check();
    if (!accepted) throw std::invalid_argument(kInvalidQuery);
    if (found.GetCount() == 0) return false;  // nothing of that name to update
    ndp::CRef<ndp::CDBRecord> ref(m_pTable->GetRecord(found.GetItem(0)));
    failed.check();
    if (!ref.get()) return false;
    ref.get()->SetDouble(fieldIndex(m_pTable, L"WeightMeter"), section.weightMeter);
    ref.get()->SetDouble(fieldIndex(m_pTable, L"AreaVal"), section.area);
    const bool modified = m_pTable->ModifyRecord(ref.get());
    failed.check();
    return modified;
}

bool SKRUserHotRollingSectionDBProvider::removeSection(int sectionType, int subId) {
    if (!m_pTable) return false;
    noteUserSectionWrite();
    const std::wstring query = skr::section::query::fieldsEqual(m_firstKeyField, sectionType, m_secondKeyField, subId);
    beginWrite(m_pTable);
    const SKRDatabaseCheck failed(m_pTable);
    ndp::CFileAddressList found;
    const bool accepted = m_pTable->Query(query, found);
    failed.check();
    if (!accepted) return false;
    bool removed = false;
    for (int i = 0; i < found.GetCount(); ++i) removed = m_pTable->DeleteRecord(found.GetItem(i));
    failed.check();
    return removed;
}

int SKRUserHotRollingSectionDBProvider::nextSubId(int sectionType) {
    int last = 0;
    for (const SKRHotRollingSection& row : listByType(sectionType)) last = std::max(last, row.subId);
    return last + 1;
}

}  // namespace section
}  // namespace skr
