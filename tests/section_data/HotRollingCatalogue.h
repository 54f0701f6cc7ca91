// Small hot-rolled catalogues for the section_data tests: a system table holding I20a, I20b and
// D114*4, an empty user table, the providers on them, and helpers that fill and count tables and
// tell what a call threw.
#pragma once

#include "section_data/SKRHotRollingSectionDBProvider.h"

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"

#include "support/CatalogueTables.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

namespace cattest {

using skr::section::SKRHotRollingSection;
using Params = std::vector<std::pair<std::wstring, double>>;

const Params kUserParams{{L"h", 270}, {L"b", 80.25}};

inline SKRHotRollingSection userSection(const std::wstring& name, int type, int sub, double weight = 12.5) {
    SKRHotRollingSection section;
    section.sectionType = type;
    section.subId = sub;
    section.standardName = name;
    section.weightMeter = weight;
    section.area = 0.5;
    section.params = kUserParams;
    return section;
}

inline int rowCount(ndp::CDBTable* table) {
    ndp::CFileAddressList all;
    table->ListAll(all);
    return all.GetCount();
}

// A system row: the keys, name, weight and area, then the parameter texts in field order.
inline void addRow(ndp::CDBTable* table, int type, int sub, const std::wstring& name, double weight, double area,
                   const std::vector<std::wstring>& params) {
    ndp::CDBRecord* record = table->CreateRecord();
    record->SetInt(0, type);
    record->SetInt(1, sub);
    record->SetString(2, name);
    record->SetDouble(3, weight);
    record->SetDouble(4, area);
    for (size_t i = 0; i < params.size(); ++i) record->SetString(static_cast<int>(5 + i), params[i]);
    ASSERT_NE(table->AddRecord(record), ndp::kNullAddress);
    record->Release();
}

// What the call threw as E, "nothing thrown" when it returned.
template <typename E, typename F>
std::string thrown(F&& call) {
    try {
        call();
    } catch (const E& e) {
        return e.what();
    }
    return "nothing thrown";
}

class HotRollingCatalogue : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_db.Create(m_dir.filePath("sections.KDB")));
        m_system = m_db.CreateTable(L"SectionPolyInfor", bxqtest::systemCatalogueFields());
        m_user = m_db.CreateTable(L"CustomHotRolledSection", bxqtest::userCatalogueFields());
        ASSERT_TRUE(m_system && m_user);
        addRow(m_system, 1, 1, L"I20a", 27.9, 0.742, {L"200", L"100", L"7", L"11.4"});
        addRow(m_system, 1, 1, L"I20b", 31.1, 0.746, {L"200", L"102", L"9", L"11.4"});
        addRow(m_system, 5, 1, L"D114*4", 10.85, 0.358, {L"114", L"0", L"0", L"4"});
    }
    void TearDown() override {
        skr::util::UnRegisterInstance<skr::section::SKRUserHotRollingSectionDBProvider>(true);
        skr::util::UnRegisterInstance<skr::section::SKRHotRollingSectionDBProvider>(true);
    }
    // Registers providers on both tables (the user one only when asked), as the repository does.
    void registerProviders(bool user = true) {
        m_systemProvider = new skr::section::SKRHotRollingSectionDBProvider(m_system);
        ASSERT_TRUE(skr::util::RegisterInstance(m_systemProvider));
        if (!user) return;
        m_userProvider = new skr::section::SKRUserHotRollingSectionDBProvider(m_user);
        ASSERT_TRUE(skr::util::RegisterInstance(m_userProvider));
    }

    QTemporaryDir m_dir;
    ndp::CDatabase m_db;
    ndp::CDBTable* m_system = nullptr;
    ndp::CDBTable* m_user = nullptr;
    skr::section::SKRHotRollingSectionDBProvider* m_systemProvider = nullptr;
    skr::section::SKRUserHotRollingSectionDBProvider* m_userProvider = nullptr;
};

}  // namespace cattest
