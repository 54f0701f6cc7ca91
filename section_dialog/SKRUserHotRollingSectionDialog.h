// SKRUserHotRollingSectionDialog: adding a hot-rolled section the shipped catalogue lacks, or
// editing the figures of one added before; user sections carry the mark "(ZDY)" behind their
// specification text and live in the project's user catalogue.
#pragma once

#include "section_data/SKRHotRollingSection.h"
#include "ui/VantorFrame.h"

#include <functional>
#include <memory>

class QLabel;
class VantorLineEdit;
class VantorPushButton;
namespace skr {
namespace section {
class HotRollingSectionNormParser;
class SKRUserHotRollingSectionDBProvider;
}  // namespace section
}  // namespace skr

class SKRUserHotRollingSectionDialog : public VantorFrame {
    Q_OBJECT
public:
    using Handler = std::function<void(const skr::section::SKRHotRollingSection&)>;

    // Add mode: a new section of the type and sub-class.
    SKRUserHotRollingSectionDialog(int sectionType, int subId, QWidget* parent = nullptr);
    // Edit mode: the stored user section of that name.
    SKRUserHotRollingSectionDialog(int sectionType, int subId, const QString& standardName, QWidget* parent = nullptr);
    ~SKRUserHotRollingSectionDialog() override;

    void setSectionModifyHandler(Handler handler) { m_fnModify = std::move(handler); }
    bool isEditMode() const { return m_bEdit; }

signals:
    // The section added or edited, for the section dialog to refresh its list.
    void sectionSaved(const skr::section::SKRHotRollingSection& section);

public slots:
    void okSlot();
    void cancelSlot();

private:
    void initUI();
    void fillFromStored(const QString& standardName);
    bool readSection(skr::section::SKRHotRollingSection& section) const;

    int m_iSectionType;
    int m_iSubId;
    bool m_bEdit;
    std::unique_ptr<skr::section::HotRollingSectionNormParser> m_pNormParser;
    skr::section::SKRUserHotRollingSectionDBProvider* m_pProvider = nullptr;
    Handler m_fnModify;
    VantorLineEdit* m_pCodeEdit = nullptr;
    VantorLineEdit* m_pSizeEdit = nullptr;
    VantorLineEdit* m_pWeightEdit = nullptr;
    VantorLineEdit* m_pSurfaceEdit = nullptr;
    QLabel* m_pNote = nullptr;
    VantorPushButton* m_pOkButton = nullptr;
    VantorPushButton* m_pCancelButton = nullptr;
};
