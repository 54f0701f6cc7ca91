// SKRSectionPolyDialog: the section library, the modal dialog in which the user chooses the
// cross-section of a member: section groups and types as pictures on the left; on the right the
// chosen type's parameters, or the catalogue of hot-rolled sections with a quick filter and the
// user's own sections (added, edited and deleted with undo), or the weld-ball forms. The host
// reads the choice back as a result record and a selected-section record.
#pragma once

#include "plugin/BXQExtendGlobal.h"
#include "section_data/SKRHotRollingSection.h"
#include "section_spec/EnSKRSectionType.h"
#include "section_spec/GSectionPolyInfo.h"
#include "ui/VantorFrame.h"

#include <QMap>
#include <QPixmap>
#include <QPointF>
#include <QVector>

#include <functional>
#include <memory>

class IVMPModel;
class QComboBox;
class QLabel;
class QModelIndex;
class QStackedWidget;
class SKRHotRollingFilterModel;
class SKRHotRollingInfoWidget;
class SKRHotRollingListModel;
class SKRParamEditor;
class SKRPolyImgTableModel;
class SKRSectionPreview;
class SKRPolyParamManger;
namespace ndp {
class CDatabase;
class CDBTable;
class CPolygon;
}  // namespace ndp

// What the dialog returns to the host.
struct BXQEXTEND_EXPORT SKRSectionPolyDlgResult {
    qint32 kind = 0;
    bool flag = false;
    bool singleMemberInput = false;                 // the "单构件输入" box, false when hidden
    SKRPolyParamManger* paramManager = nullptr;     // for a parametric choice only
    qint64 reserved = 0;
};

class BXQEXTEND_EXPORT SKRSectionPolyDialog : public VantorFrame {
    Q_OBJECT
public:
    using SectionHandler = std::function<void(const skr::section::SKRHotRollingSection&)>;

    // The selected section as the host stores it.
    struct BXQSelSectionInfo {
        QString typeName;        // "PolyName" of the section type
        QString specification;   // as the parameter manager writes it
        qint64 specificationKey = 0;
        double insertPointX = 0.0;
        double insertPointY = 0.0;
        double weightPerMetre = 0.0;   // kg/m, from the catalogue row when there is one
        double surfacePerMetre = 0.0;  // m2/m, likewise
    };

    explicit SKRSectionPolyDialog(IVMPModel* model, QWidget* parent = nullptr);
    ~SKRSectionPolyDialog() override;

    // Positions the dialog on a parsed section: its group and type, and its values in the
    // parameter panel, its catalogue row or its weld-ball form.
    void setParameter(const GSectionPolyInfo& info);
    // Only these types may be chosen; subject names what is being chosen in the refusal.
    void setAcceptSectionalType(QVector<EnSKRSectionType> types, QString subject);
    QString acceptMessage() const { return m_strAcceptMessage; }
    // Library mode: browsing and managing sections, without the single-member box.
    void isSectionLibrary(bool library);
    void setEditBtnVisible(bool visible);

    SKRSectionPolyDlgResult result() const;
    BXQSelSectionInfo getSelSectionInfo() const;
    BXQSelSectionInfo getResultSectionInfo(SKRPolyParamManger* manager) const;
    // The selection of a fresh dialog: section type 1 at its defaults. Sets the section
    // repository up first when the host has not.
    static BXQSelSectionInfo defaultSectionInfo(IVMPModel* model);

    void setSectionModifyHandler(SectionHandler handler) { m_fnModify = std::move(handler); }
    void deleteCustomSectionHandler(SectionHandler handler) { m_fnDelete = std::move(handler); }

    static double getAPMByNorm(const QString& norm);
    static double getWPMByNorm(const QString& norm);
    SKRPolyParamManger* polyParamManager() const { return m_pParamManager.get(); }
    // 0 for a parametric section held by the parameter manager, 1 for a catalogue row.
    qint32 selectionKind() const { return m_iSelectionKind; }

    // True when the text holds no Chinese ideograph (U+4E00 to U+9FA5), also for an empty text.
    static bool isChineseCode(const QString& text);

public slots:
    void accept() override;
    void showHotRollWidget(const QModelIndex& index);
    void setLineEditFilter();
    void showHotSetionWidget();
    void showNormCodeWidget();
    void OnWeldBallIndexChanged(int index);
    void showCustomSectionWidget();
    void showEditCustomSectionWidget();
    void showEditCustomBtn(bool hasSelection);
    void updataTableView(const skr::section::SKRHotRollingSection& section);
    void deleteCustomSection();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void initDBTable();
    void initPolyGroupMap();
    void initUI();
    QWidget* createLeftWidget();
    void readCustomSections();
    QWidget* createRightWidget();
    QWidget* createHotRolledPage();
    QWidget* createParamPage();
    QLayout* createButtons();
    QWidget* createNormCodeWidget();
    void initConnects();
    void showWeldWidget();
    void showBallParamWidget();
    void catalogueRowChanged();
    void reloadHotRolledList();
    void selectCatalogueRow(const QString& standardName);
    const skr::section::SKRHotRollingSection* selectedSection() const;
    QString polyName(int sectionType) const;
    // custom: the outline of a custom polygon section, whose figures give its kg/m and m2/m.
    static BXQSelSectionInfo sectionInfoOf(const SKRPolyParamManger& manager, const ndp::CPolygon* custom = nullptr);
    // Runs an edit of the project's user sections as one undoable command.
    void runLogged(const QString& what, const std::function<void()>& edit);

    IVMPModel* m_pModel;
    ndp::CDatabase* m_pSectionPolyDB = nullptr;
    ndp::CDBTable* m_pGroupTable = nullptr;
    ndp::CDBTable* m_pPolyTable = nullptr;
    ndp::CDBTable* m_pParamTable = nullptr;
    ndp::CDBTable* m_pBallTable = nullptr;
    QMap<int, QString> m_oGroupMap;
    std::unique_ptr<SKRPolyParamManger> m_pParamManager;
    QVector<EnSKRSectionType> m_oAcceptTypes;
    QString m_strAcceptMessage;
    qint32 m_iSelectionKind = 0;
    SectionHandler m_fnModify;
    SectionHandler m_fnDelete;
    QVector<int> m_oBallRibFlags;    // the rib flag of each weld-ball form listed
    QVector<int> m_oCatalogueTypes;  // the types listed by name, in table order
    struct CustomPolygon {
        int id = 0;
        QString description;
        QPointF insertPoint;
        std::shared_ptr<ndp::CPolygon> polygon;
        QPixmap picture;
    };
    QMap<int, CustomPolygon> m_oCustomPolygons;  // by section type, 7000 + id

    VantorTableView* m_pPolyView = nullptr;
    SKRPolyImgTableModel* m_pPolyModel = nullptr;
    QStackedWidget* m_pStack = nullptr;
    QWidget* m_pHintPage = nullptr;
    QWidget* m_pHotRolledPage = nullptr;
    QWidget* m_pParamPage = nullptr;
    SKRParamEditor* m_pParamEditor = nullptr;
    SKRSectionPreview* m_pCustomPreview = nullptr;
    VantorLineEdit* m_pFilterEdit = nullptr;
    BXQVantorTableView* m_pHotRolledView = nullptr;
    SKRHotRollingListModel* m_pHotRolledModel = nullptr;
    SKRHotRollingFilterModel* m_pHotRolledFilter = nullptr;
    SKRHotRollingInfoWidget* m_pInfoWidget = nullptr;
    QWidget* m_pBallRow = nullptr;
    QComboBox* m_pBallCombo = nullptr;
    VantorPushButton* m_pAddButton = nullptr;
    VantorPushButton* m_pEditButton = nullptr;
    VantorPushButton* m_pDeleteButton = nullptr;
    VantorCheckBox* m_pSingleMember = nullptr;
    VantorPushButton* m_pNormCodeButton = nullptr;
    VantorPushButton* m_pSectionStyleButton = nullptr;
    VantorPushButton* m_pOkButton = nullptr;
    VantorPushButton* m_pCancelButton = nullptr;
};
