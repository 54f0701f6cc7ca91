// VMPProjectModel: a model that owns one project database file, created with the project
// tables when new. Saving is a flush; closing without one discards the changes.
#pragma once

#include "PlatformGlobal.h"
#include "vmp/IVMPModel.h"
#include "vmp/VMPMembers.h"
#include "vmp/VMPModelTables.h"

#include <QString>

#include <map>
#include <memory>
#include <vector>

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

    // Creates any project table the database lacks: the model's own and the plug-ins'.
    static bool createProjectTables(ndp::CDatabase* database);
    // Tables a plug-in keeps in every project, created with the model's own whenever a project
    // opens; a plug-in registers them as it is loaded. A table already registered stays as it is.
    static void registerProjectTables(const std::vector<VMPTableDefinition>& tables);

    // Members are elements: looked up by id in the "Member" table, their solids built by the
    // factory the host sets.
    IVMPElementDrawObj* getElementDrawObj(std::int64_t id) override;
    void setSolidShapeFactory(VMPSolidShapeFactory factory) { m_shapeFactory = std::move(factory); }

    void attachObserver(VMPObserver* observer) override;
    void detachObserver(VMPObserver* observer) override;
    void attachListener(IVMPListener* listener) override;
    void detachListener(IVMPListener* listener) override;
    // Tells every observer that the model was updated (flags: EnVMPModelUpdate bits).
    void notifyUpdate(std::uint32_t flags, void* data = nullptr);
    // Tells every listener that an element changed.
    void notifyElementChange(int kind, IVMPElementDrawObj* element, const std::wstring& property, bool refreshAll);

private:
    std::unique_ptr<ndp::CDatabase> m_database;
    QString m_lastError;
    VMPSolidShapeFactory m_shapeFactory;
    // Element objects stay alive as long as the model, so that pointers handed out stay valid.
    std::map<std::int64_t, std::unique_ptr<VMPMemberElement>> m_elements;
    std::vector<VMPObserver*> m_observers;
    std::vector<IVMPListener*> m_listeners;
};
