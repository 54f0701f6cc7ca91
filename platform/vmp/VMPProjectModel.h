// VMPProjectModel: a model that owns one project database file, created with the project
// tables when new. Saving is a flush; closing without one discards the changes.
#pragma once

#include "PlatformGlobal.h"
#include "vmp/IVMPModel.h"

#include <QString>

#include <memory>

class BXQPLATFORM_EXPORT VMPProjectModel : public IVMPModel {
public:
    VMPProjectModel();
    ~VMPProjectModel() override;

    // Opens the project file, creating it with the project tables when missing; false with
    // lastError() saying why.
    bool open(const QString& path);
    bool save();
    const QString& lastError() const { return m_lastError; }

    ndp::CDatabase* getProjectDB() override;
    bool isAutoCalculate() const override { return false; }

    // Creates any project table the database lacks.
    static bool createProjectTables(ndp::CDatabase* database);

private:
    std::unique_ptr<ndp::CDatabase> m_database;
    QString m_lastError;
};
