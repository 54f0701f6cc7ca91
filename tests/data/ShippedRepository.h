// A test suite fixture that registers the section repository on the shipped databases of the
// build tree once for the whole suite, with an empty project.
#pragma once

#include "section_data/SectionRepository.h"

#include "vmp/VMPNDDBManager.h"
#include "vmp/VMPProjectModel.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

class ShippedRepositoryTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        qputenv("BXQ_DATA_DIR", BXQ_SHIPPED_DATA_DIR);
        s_dir = new QTemporaryDir;
        s_model = new VMPProjectModel;
        ASSERT_TRUE(s_model->open(s_dir->filePath("project.KDB")));
        skr::InitBXQSteelRepository(s_model);
    }
    static void TearDownTestSuite() {
        delete skr::util::FetchInstance<skr::section::SectionRepository>();
        skr::UninitBXQSteelRepository();
        VMPNDDBManager::nddbMgr()->closeAll();
        delete s_model;
        delete s_dir;
        qunsetenv("BXQ_DATA_DIR");
    }

    static inline QTemporaryDir* s_dir = nullptr;
    static inline VMPProjectModel* s_model = nullptr;
};
