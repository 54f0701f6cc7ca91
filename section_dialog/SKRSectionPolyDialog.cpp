// The section library dialog.
#include "section_dialog/SKRSectionPolyDialog.h"
#include "section_data/SKRProjectSchema.h"

#include "section_data/SKRQueryText.h"
#include "section_data/SKRDatabaseError.h"

#include "section_data/SKRHotRollingSectionDBProvider.h"
#include "section_data/SKRPerMetreLookup.h"
#include "section_data/SKRSectionPolyDBManager.h"
#include "section_data/SectionRepository.h"
#include "section_dialog/SKRHotRollingInfoWidget.h"
#include "section_dialog/SKRHotRollingList.h"
#include "section_dialog/SKRParamEditor.h"
#include "section_dialog/SKRPolyImgTableModel.h"
#include "section_spec/SKRSectionTypeTable.h"
#include "section_spec/SKRPolyParamManger.h"
#include "section_dialog/SKRSectionFiguresPanel.h"
#include "section_dialog/SKRSectionPreview.h"
#include "section_dialog/SKRUserHotRollingSectionDialog.h"
#include "section_spec/SKRSectionPolyInfoParser.h"

#include "ndp/NDPDBRecord.h"
#include "ndp/NDPDBTable.h"
#include "ndp/NDPDatabase.h"
#include "ndp/NDPPolygon.h"
#include "ndp/NDPRef.h"
#include "section_geometry/SKRSectionPolygonParser.h"
#include "section_geometry/SKRSpecificationOutline.h"
#include "section_geometry/SKRSectionFigures.h"
#include "section_geometry/SKRSectionPainter.h"
#include "ui/VMPMessageBox.h"
#include "vmp/IVMPModel.h"
#include "vmp/VMPCmdLogTool.h"
#include "vmp/VMPDBRecord.h"
#include "vmp/VMPModelException.h"
#include "vmp/VMPUserTrace.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QScrollArea>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <exception>

using skr::section::SKRHotRollingSection;

namespace {

QString text(const char* source) { return QCoreApplication::translate("SKRSectionPolyDlg", source); }

// A name the section database keeps in Chinese (groups, types, ball forms), in the user's language.
QString dbText(const QString& source) {
    return QCoreApplication::translate("SKRSectionPolyDB", source.toUtf8().constData());
}

QString filterPlaceholder() { return text("快速搜索，如:C 200*70*20*2"); }

// The hot-rolled catalogue types: those listed by name rather than edited by parameters.
bool isCatalogueType(int sectionType) {
    return skr::section::sectionTypeGroup(sectionType) == sgStandard && !skr::section::isBallType(sectionType);
}

using skr::section::isBallType;

// Registers the section repository when the host has not. False, registering nothing, when the
// section database is missing.
bool ensureRepository(IVMPModel* model) {
    if (skr::util::FetchInstance<skr::section::SectionRepository>()) return true;
    try {
        SKRSectionPolyDBManager::instance();
    } catch (const VMPModelException&) {
        return false;
    }
    skr::InitBXQSteelRepository(model);
    return true;
}

}  // namespace

// Outside any namespace: the resource initialiser is declared where this is called.
static void initPictureResources() { Q_INIT_RESOURCE(bxqextend_pictures); }

SKRSectionPolyDialog::SKRSectionPolyDialog(IVMPModel* model, QWidget* parent)
    : VantorFrame(parent, QString()), m_pModel(model) {
    initPictureResources();
    setWindowTitle(text("截面库"));
    setMoveEnabled(false);
    setResizeEnabled(false);
    ensureRepository(model);
    initDBTable();
    m_pParamManager = std::make_unique<SKRPolyParamManger>();
    initUI();
    initConnects();
    VMPUserTrace::record(QStringLiteral("打开截面库"), QStringLiteral("用户操作记录"));
}

SKRSectionPolyDialog::~SKRSectionPolyDialog() {
    // The members (the parameter manager among them) go before the widgets, which the QDialog
    // base destroys: a focused field still finishes its editing then, and a table still drops
    // its selection. Neither may reach this dialog's slots or its manager any more.
    for (QObject* child : findChildren<QObject*>()) child->disconnect(this);
    if (m_pParamEditor) m_pParamEditor->detachManager();
}

void SKRSectionPolyDialog::initDBTable() {
    try {
        m_pSectionPolyDB = SKRSectionPolyDBManager::instance()->sectionPolyDB();
    } catch (const VMPModelException& missing) {
        // The dialog still opens, empty, and says why.
        VMPMessageBox::warning(BXQCommon::getMainWindow(), text("提示"), missing.message());
        return;
    }
    if (!m_pSectionPolyDB) return;
    m_pGroupTable = m_pSectionPolyDB->GetTable(L"SectionPolyGroup");
    m_pPolyTable = m_pSectionPolyDB->GetTable(L"SectionPoly");
    m_pParamTable = m_pSectionPolyDB->GetTable(L"SectionPolyParam");
    m_pBallTable = m_pSectionPolyDB->GetTable(L"SectionBallType");
    initPolyGroupMap();
}

void SKRSectionPolyDialog::initPolyGroupMap() {
    m_oGroupMap.clear();
    ndp::CFileAddressList all;
    if (!m_pGroupTable || !m_pGroupTable->ListAll(all)) return;
    for (int i = 0; i < all.GetCount(); ++i) {
        const VMPDBRecord row(m_pGroupTable, all.GetItem(i));
        m_oGroupMap.insert(row.getInteger("GroupID", 0), dbText(row.getString("GroupName", QString())));
    }
}

void SKRSectionPolyDialog::initUI() {
    auto* body = new QHBoxLayout;
    body->addWidget(createLeftWidget());
    body->addWidget(createRightWidget(), 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(body, 1);
    layout->addLayout(createButtons());
    resize(1040, 640);
}

QWidget* SKRSectionPolyDialog::createLeftWidget() {
    QVector<SKRPolyImgTableModel::Item> groups, types;
    for (auto it = m_oGroupMap.cbegin(); it != m_oGroupMap.cend(); ++it) groups.push_back({it.key(), 0, it.value(), {}, {}});
    ndp::CFileAddressList all;
    if (m_pPolyTable && m_pPolyTable->ListAll(all)) {
        for (int i = 0; i < all.GetCount(); ++i) {
            const VMPDBRecord row(m_pPolyTable, all.GetItem(i));
            types.push_back({row.getInteger("GroupID", 0), row.getInteger("PolyID", 0),
                             dbText(row.getString("PolyName", QString())), row.getString("PolyPicName", QString()), {}});
            if (isCatalogueType(types.last().polyId)) m_oCatalogueTypes << types.last().polyId;
        }
    }
    readCustomSections();
    for (const CustomPolygon& custom : m_oCustomPolygons)
        types.push_back({sgCustom, stCustomBase + custom.id, custom.description, QString(), custom.picture});
    m_pPolyModel = new SKRPolyImgTableModel(3, this);
    m_pPolyModel->setGroups(groups, types);
    m_pPolyView = new VantorTableView(this);
    m_pPolyView->setObjectName(QStringLiteral("polyView"));
    m_pPolyView->setModel(m_pPolyModel);
    m_pPolyView->horizontalHeader()->hide();
    m_pPolyView->verticalHeader()->hide();
    m_pPolyView->setShowGrid(false);
    m_pPolyView->setIconSize(SKRPolyImgTableModel::iconSize());
    m_pPolyView->setItemDelegate(new SKRPolyImgDelegate(m_pPolyView));
    m_pPolyView->setSelectionMode(QAbstractItemView::SingleSelection);
    m_pPolyView->setSelectionBehavior(QAbstractItemView::SelectItems);
    m_pPolyView->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_pPolyView->horizontalHeader()->setDefaultSectionSize(112);
    m_pPolyView->setWordWrap(true);
    for (int row = 0; row < m_pPolyModel->rowCount(); ++row) {
        if (m_pPolyModel->isGroupRow(row)) {
            m_pPolyView->setSpan(row, 0, 1, m_pPolyModel->columnCount());
            m_pPolyView->setRowHeight(row, 26);
        } else {
            m_pPolyView->setRowHeight(row, 104);
        }
    }
    m_pPolyView->setFixedWidth(112 * m_pPolyModel->columnCount() + 22);
    m_pPolyView->installEventFilter(this);
    return m_pPolyView;
}

// The project's user-drawn polygons in the custom group, each drawn from its outline.
void SKRSectionPolyDialog::readCustomSections() {
    m_oCustomPolygons.clear();
    ndp::CDatabase* project = m_pModel ? m_pModel->getProjectDB() : nullptr;
    ndp::CDBTable* table = project ? project->GetTable(skr::section::schema::custom_poly::table) : nullptr;
    ndp::CFileAddressList all;
    if (!table || !table->ListAll(all)) return;
    const int polyData = table->FindField(skr::section::schema::custom_poly::polyData);
    for (int i = 0; i < all.GetCount(); ++i) {
        const VMPDBRecord row(table, all.GetItem(i));
        ndp::CRef<ndp::CDBRecord> record(table->GetRecord(all.GetItem(i)));
        CustomPolygon custom;
        custom.id = row.getInteger("ID", 0);
        custom.description = row.getString("Description", QString());
        custom.insertPoint = QPointF(row.getDouble("InsertPointX", 0.0), row.getDouble("InsertPointY", 0.0));
        custom.polygon = std::make_shared<ndp::CPolygon>();
        if (!record.get() || polyData < 0 || !record.get()->GetPolygon(polyData, *custom.polygon)) continue;
        custom.picture = QPixmap(SKRPolyImgTableModel::iconSize());
        custom.picture.fill(Qt::white);
        QPainter painter(&custom.picture);
        skr::geometry::paintSection(painter, skr::geometry::sectionPath(*custom.polygon),
                                    QRectF(QPointF(4, 4), QSizeF(custom.picture.size()) - QSizeF(8, 8)));
        painter.end();
        m_oCustomPolygons.insert(stCustomBase + custom.id, custom);
    }
}

QWidget* SKRSectionPolyDialog::createHotRolledPage() {
    m_pHotRolledPage = new QWidget(this);
    m_pFilterEdit = new VantorLineEdit(m_pHotRolledPage);
    m_pFilterEdit->setObjectName(QStringLiteral("filterEdit"));
    m_pFilterEdit->setPlaceholderText(filterPlaceholder());
    m_pFilterEdit->installEventFilter(this);
    auto* filterRow = new QHBoxLayout;
    filterRow->addWidget(new QLabel(text("截面规格："), m_pHotRolledPage));
    filterRow->addWidget(m_pFilterEdit, 1);

    m_pHotRolledModel = new SKRHotRollingListModel(this);
    m_pHotRolledFilter = new SKRHotRollingFilterModel(this);
    m_pHotRolledFilter->setSourceModel(m_pHotRolledModel);
    reloadHotRolledList();
    m_pHotRolledView = new BXQVantorTableView(m_pHotRolledPage);
    m_pHotRolledView->setObjectName(QStringLiteral("hotRolledView"));
    m_pHotRolledView->setModel(m_pHotRolledFilter);
    m_pHotRolledView->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_pHotRolledView->setSelectionMode(QAbstractItemView::SingleSelection);
    m_pHotRolledView->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_pHotRolledView->verticalHeader()->hide();
    m_pHotRolledView->verticalHeader()->setDefaultSectionSize(22);
    m_pHotRolledView->horizontalHeader()->setSectionResizeMode(SKRHotRollingListModel::NameColumn, QHeaderView::Stretch);
    // The figure columns as wide as their headers need, in either language and at any scaling.
    m_pHotRolledView->horizontalHeader()->setSectionResizeMode(SKRHotRollingListModel::WeightColumn,
                                                               QHeaderView::ResizeToContents);
    m_pHotRolledView->horizontalHeader()->setSectionResizeMode(SKRHotRollingListModel::SurfaceColumn,
                                                               QHeaderView::ResizeToContents);

    m_pInfoWidget = new SKRHotRollingInfoWidget(m_pHotRolledPage);
    m_pInfoWidget->setFixedHeight(190);
    m_pAddButton = new VantorPushButton(text("添加自定义截面"), m_pHotRolledPage);
    m_pEditButton = new VantorPushButton(text("编辑自定义截面"), m_pHotRolledPage);
    m_pDeleteButton = new VantorPushButton(text("删除自定义截面"), m_pHotRolledPage);
    auto* customRow = new QHBoxLayout;
    customRow->addWidget(m_pAddButton);
    customRow->addWidget(m_pEditButton);
    customRow->addWidget(m_pDeleteButton);
    customRow->addStretch();

    auto* layout = new QVBoxLayout(m_pHotRolledPage);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(filterRow);
    layout->addWidget(m_pHotRolledView, 1);
    layout->addWidget(m_pInfoWidget);
    layout->addLayout(customRow);
    return m_pHotRolledPage;
}

QWidget* SKRSectionPolyDialog::createParamPage() {
    m_pParamPage = new QWidget(this);
    m_pParamEditor = new SKRParamEditor(m_pParamPage);
    m_pBallRow = new QWidget(m_pParamPage);
    m_pBallCombo = new QComboBox(m_pBallRow);
    m_pBallCombo->setObjectName(QStringLiteral("ballCombo"));
    auto* ballLayout = new QHBoxLayout(m_pBallRow);
    ballLayout->setContentsMargins(0, 0, 0, 0);
    ballLayout->addWidget(new QLabel(text("焊接球形式："), m_pBallRow));
    ballLayout->addWidget(m_pBallCombo, 1);
    ballLayout->addStretch();
    auto* layout = new QVBoxLayout(m_pParamPage);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_pBallRow);
    layout->addWidget(m_pParamEditor, 1);
    return m_pParamPage;
}

QWidget* SKRSectionPolyDialog::createRightWidget() {
    auto* right = new QWidget(this);
    m_pStack = new QStackedWidget(right);
    m_pHintPage = new QLabel(text("请在左侧选择截面类型"), right);
    static_cast<QLabel*>(m_pHintPage)->setAlignment(Qt::AlignCenter);
    m_pStack->addWidget(m_pHintPage);
    m_pStack->addWidget(createHotRolledPage());
    m_pStack->addWidget(createParamPage());
    auto* customPage = new QWidget(right);
    m_pCustomPreview = new SKRSectionPreview(customPage);
    auto* customFigures = new SKRSectionFiguresPanel(customPage);
    auto* customLayout = new QHBoxLayout(customPage);
    customLayout->setContentsMargins(0, 0, 0, 0);
    customLayout->addWidget(m_pCustomPreview, 1);
    customLayout->addWidget(customFigures);
    connect(m_pCustomPreview, &SKRSectionPreview::polygonChanged, customFigures, &SKRSectionFiguresPanel::showPolygon);
    m_pStack->addWidget(customPage);

    m_pSingleMember = new VantorCheckBox(text("单构件输入"), right);
    m_pSingleMember->setChecked(false);
    m_pNormCodeButton = new VantorPushButton(text("查看型钢代号表"), right);
    m_pNormCodeButton->setFixedSize(100, 23);
    m_pSectionStyleButton = new VantorPushButton(text("查看截面样式"), right);
    m_pSectionStyleButton->setEnabled(false);
    auto* optionRow = new QHBoxLayout;
    optionRow->addWidget(m_pSingleMember);
    optionRow->addSpacing(30);
    optionRow->addWidget(m_pNormCodeButton);
    optionRow->addWidget(m_pSectionStyleButton);
    optionRow->addStretch();

    auto* layout = new QVBoxLayout(right);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_pStack, 1);
    layout->addLayout(optionRow);
    return right;
}

QLayout* SKRSectionPolyDialog::createButtons() {
    m_pOkButton = new VantorPushButton(text("确定"), this);
    m_pCancelButton = new VantorPushButton(text("取消"), this);
    m_pCancelButton->setProperty("isOtherCommandButton", true);
    auto* row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(m_pOkButton);
    row->addWidget(m_pCancelButton);
    showEditCustomBtn(false);
    return row;
}

void SKRSectionPolyDialog::initConnects() {
    connect(m_pPolyView, &QAbstractItemView::clicked, this, &SKRSectionPolyDialog::showHotRollWidget);
    connect(m_pFilterEdit, &QLineEdit::textChanged, this, &SKRSectionPolyDialog::setLineEditFilter);
    connect(m_pSectionStyleButton, &QPushButton::clicked, this, &SKRSectionPolyDialog::showHotSetionWidget);
    connect(m_pNormCodeButton, &QPushButton::clicked, this, &SKRSectionPolyDialog::showNormCodeWidget);
    connect(m_pOkButton, &QPushButton::clicked, this, &SKRSectionPolyDialog::accept);
    connect(m_pCancelButton, &QPushButton::clicked, this, &SKRSectionPolyDialog::reject);
    connect(m_pBallCombo, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &SKRSectionPolyDialog::OnWeldBallIndexChanged);
    connect(m_pAddButton, &QPushButton::clicked, this, &SKRSectionPolyDialog::showCustomSectionWidget);
    connect(m_pEditButton, &QPushButton::clicked, this, &SKRSectionPolyDialog::showEditCustomSectionWidget);
    connect(m_pHotRolledView, &BXQVantorTableView::selectTableView, this, &SKRSectionPolyDialog::showEditCustomBtn);
    connect(m_pHotRolledView, &BXQVantorTableView::tableViewDoubleClicked, this, &SKRSectionPolyDialog::accept);
    connect(m_pInfoWidget, &SKRHotRollingInfoWidget::initTableView, this, &SKRSectionPolyDialog::updataTableView);
    connect(m_pDeleteButton, &QPushButton::clicked, this, &SKRSectionPolyDialog::deleteCustomSection);
    // The chosen row follows the selection, whatever moved it (click, keys, setParameter).
    connect(m_pHotRolledView->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] { catalogueRowChanged(); });
}

QString SKRSectionPolyDialog::polyName(int sectionType) const {
    ndp::CFileAddress address = ndp::kNullAddress;
    if (!m_pPolyTable || !m_pPolyTable->Find(m_pPolyTable->FindField(L"PolyID"), sectionType, address)) return QString();
    return VMPDBRecord(m_pPolyTable, address).getString("PolyName", QString());
}

// --- choosing a section ----------------------------------------------------------------------

void SKRSectionPolyDialog::showHotRollWidget(const QModelIndex& index) {
    const SKRPolyImgTableModel::Item* item = m_pPolyModel->itemAt(index);
    if (!item) return;
    if (item->polyId == 0) {
        // A group's title: the catalogue group lists every catalogue section.
        if (item->groupId != sgStandard) return;
        m_pHotRolledFilter->setSectionType(0);
        m_iSelectionKind = 1;
        m_pStack->setCurrentWidget(m_pHotRolledPage);
        catalogueRowChanged();
        return;
    }
    if (m_oCustomPolygons.contains(item->polyId)) {
        const CustomPolygon& custom = m_oCustomPolygons[item->polyId];
        m_pParamManager->setCustomSection(custom.id, custom.description, custom.insertPoint.x(), custom.insertPoint.y());
        m_pCustomPreview->setPolygon(*custom.polygon);
        m_iSelectionKind = 0;
        m_pSectionStyleButton->setEnabled(false);
        m_pStack->setCurrentWidget(m_pCustomPreview->parentWidget());
    } else if (isCatalogueType(item->polyId)) {
        m_pParamManager->setSectionType(item->polyId);
        m_pHotRolledFilter->setSectionType(item->polyId);
        m_iSelectionKind = 1;
        m_pStack->setCurrentWidget(m_pHotRolledPage);
        catalogueRowChanged();
    } else if (isBallType(item->polyId)) {
        m_pParamManager->setSectionType(item->polyId);
        showBallParamWidget();
    } else {
        m_pParamManager->setSectionType(item->polyId);
        showWeldWidget();
    }
}

void SKRSectionPolyDialog::showWeldWidget() {
    m_iSelectionKind = 0;
    m_pBallRow->hide();
    m_pParamEditor->setManager(m_pParamManager.get());
    m_pSectionStyleButton->setEnabled(false);
    m_pStack->setCurrentWidget(m_pParamPage);
}

void SKRSectionPolyDialog::showBallParamWidget() {
    m_iSelectionKind = 0;
    const int ribFlag = m_pParamManager->ribFlag();
    const QSignalBlocker blocker(m_pBallCombo);
    m_pBallCombo->clear();
    m_oBallRibFlags.clear();
    ndp::CFileAddressList found;
    const std::wstring query = skr::section::query::fieldEquals(L"PolyID", m_pParamManager->sectionType());
    if (m_pBallTable && m_pBallTable->Query(query, found)) {
        for (int i = 0; i < found.GetCount(); ++i) {
            const VMPDBRecord row(m_pBallTable, found.GetItem(i));
            m_pBallCombo->addItem(dbText(row.getString("TypeName", QString())));
            m_oBallRibFlags << row.getInteger("RibFlag", 0);
        }
    }
    const int current = std::max(0, m_oBallRibFlags.indexOf(ribFlag));
    m_pBallCombo->setCurrentIndex(m_oBallRibFlags.isEmpty() ? -1 : current);
    m_pParamManager->setRibFlag(m_oBallRibFlags.value(current, 0));
    m_pBallRow->show();
    m_pParamEditor->setManager(m_pParamManager.get());
    m_pSectionStyleButton->setEnabled(false);
    m_pStack->setCurrentWidget(m_pParamPage);
}

void SKRSectionPolyDialog::OnWeldBallIndexChanged(int index) {
    if (index < 0 || index >= m_oBallRibFlags.size()) return;
    m_pParamManager->setRibFlag(m_oBallRibFlags[index]);
}

const SKRHotRollingSection* SKRSectionPolyDialog::selectedSection() const {
    const QModelIndexList rows = m_pHotRolledView->selectionModel()->selectedRows();
    if (rows.isEmpty()) return nullptr;
    return &m_pHotRolledModel->section(m_pHotRolledFilter->mapToSource(rows.first()).row());
}

void SKRSectionPolyDialog::catalogueRowChanged() {
    const SKRHotRollingSection* section = selectedSection();
    if (section) m_pParamManager->setCatalogueSection(*section);
    m_pInfoWidget->showSection(section);
    m_pSectionStyleButton->setEnabled(section != nullptr);
    showEditCustomBtn(section != nullptr);
}

void SKRSectionPolyDialog::reloadHotRolledList() {
    m_pHotRolledModel->load(m_oCatalogueTypes);
    // A list that lost rows to a failed read says so rather than look whole.
    if (!m_pHotRolledModel->loadError().isEmpty())
        VMPMessageBox::warning(BXQCommon::getMainWindow(), text("提示"), m_pHotRolledModel->loadError());
}

void SKRSectionPolyDialog::selectCatalogueRow(const QString& standardName) {
    const int sourceRow = m_pHotRolledModel->rowOf(standardName);
    if (sourceRow < 0) return;
    const QModelIndex index = m_pHotRolledFilter->mapFromSource(m_pHotRolledModel->index(sourceRow, 0));
    if (!index.isValid()) return;
    m_pHotRolledView->selectRow(index.row());
    m_pHotRolledView->setCurrentIndex(index);
    m_pHotRolledView->scrollTo(index);
    catalogueRowChanged();
}

void SKRSectionPolyDialog::setParameter(const GSectionPolyInfo& info) {
    const QModelIndex cell = m_pPolyModel->indexOfType(info.sectionType);
    if (!cell.isValid()) return;
    m_pPolyView->setCurrentIndex(cell);
    m_pPolyView->scrollTo(cell);
    if (m_oCustomPolygons.contains(info.sectionType)) return showHotRollWidget(cell);
    if (isCatalogueType(info.sectionType)) {
        m_pFilterEdit->clear();
        showHotRollWidget(cell);
        QString error;
        const skr::section::SKRHotRollingLookup row = skr::section::SKRPerMetreLookup::findSection(info.name, &error);
        if (row.first) selectCatalogueRow(QString::fromStdWString(row.second.standardName));
        if (!error.isEmpty()) VMPMessageBox::warning(BXQCommon::getMainWindow(), text("提示"), error);
        return;
    }
    if (!m_pParamManager->setSpecification(info.name)) m_pParamManager->setSectionType(info.sectionType);
    if (isBallType(info.sectionType))
        showBallParamWidget();
    else
        showWeldWidget();
}

void SKRSectionPolyDialog::setLineEditFilter() {
    const QString typed = m_pFilterEdit->text();
    if (typed.isEmpty()) m_pFilterEdit->setPlaceholderText(filterPlaceholder());
    m_pHotRolledFilter->setFilterFixedString(isChineseCode(typed) ? typed : QString());
}

bool SKRSectionPolyDialog::isChineseCode(const QString& text) {
    for (const QChar c : text)
        if (c.unicode() >= 0x4E00 && c.unicode() <= 0x9FA5) return false;
    return true;
}

// --- restrictions, accepting and the result --------------------------------------------------

void SKRSectionPolyDialog::setAcceptSectionalType(QVector<EnSKRSectionType> types, QString subject) {
    m_oAcceptTypes = std::move(types);
    QStringList names;
    for (EnSKRSectionType type : m_oAcceptTypes) {
        const QString name = dbText(polyName(type));
        if (!names.contains(name)) names << name;
    }
    const QString joined = names.join(QLatin1Char(','));
    m_strAcceptMessage = text("仅支持") + subject + text("为“") + joined + text("”,请选择“") + joined + text("”截面");
}

void SKRSectionPolyDialog::accept() {
    if (m_pStack->currentWidget() == m_pParamPage && m_pParamEditor->lineEditCount() == m_pParamManager->paramCount())
        for (int i = 0; i < m_pParamEditor->lineEditCount(); ++i)
            m_pParamManager->setParamValue(i, m_pParamEditor->lineEdit(i)->text().trimmed());
    if (!m_oAcceptTypes.isEmpty() &&
        !m_oAcceptTypes.contains(static_cast<EnSKRSectionType>(m_pParamManager->sectionType()))) {
        vmp::confirmDlg(m_strAcceptMessage, 5, BXQCommon::getMainWindow());
        return;
    }
    if (m_iSelectionKind == 0) {
        QString message;
        int index = -1;
        if (!m_pParamManager->checkParams(&message, &index)) {
            vmp::confirmDlg(message, 5, BXQCommon::getMainWindow());
            if (SKRParamLineEdit* edit = m_pParamEditor->lineEdit(index)) edit->setFocus();
            return;
        }
    } else if (!selectedSection()) {
        vmp::confirmDlg(text("请在列表中选择一个截面规格"), 5, BXQCommon::getMainWindow());
        return;
    }
    VantorFrame::accept();
}

void SKRSectionPolyDialog::closeEvent(QCloseEvent* event) {
    // Closing the window is cancelling.
    event->accept();
    reject();
}

SKRSectionPolyDlgResult SKRSectionPolyDialog::result() const {
    SKRSectionPolyDlgResult result;
    result.singleMemberInput = !m_pSingleMember->isHidden() && m_pSingleMember->isChecked();
    result.paramManager = m_iSelectionKind == 0 ? m_pParamManager.get() : nullptr;
    return result;
}

SKRSectionPolyDialog::BXQSelSectionInfo SKRSectionPolyDialog::getSelSectionInfo() const {
    return getResultSectionInfo(m_pParamManager.get());
}

SKRSectionPolyDialog::BXQSelSectionInfo SKRSectionPolyDialog::getResultSectionInfo(SKRPolyParamManger* manager) const {
    if (!manager) return BXQSelSectionInfo();
    const auto custom = m_oCustomPolygons.constFind(manager->sectionType());
    return sectionInfoOf(*manager, manager->isCustomSection() && custom != m_oCustomPolygons.constEnd()
                                       ? custom->polygon.get()
                                       : nullptr);
}

SKRSectionPolyDialog::BXQSelSectionInfo SKRSectionPolyDialog::defaultSectionInfo(IVMPModel* model) {
    if (!ensureRepository(model)) return BXQSelSectionInfo();
    SKRPolyParamManger manager;
    manager.setSectionType(stI);
    // A static entry point of the host without an error channel: the reason goes to the log.
    QString error;
    if (!manager.matchCatalogueRow(&error) && !error.isEmpty()) qWarning("%s", qUtf8Printable(error));
    return sectionInfoOf(manager);
}

SKRSectionPolyDialog::BXQSelSectionInfo SKRSectionPolyDialog::sectionInfoOf(const SKRPolyParamManger& manager,
                                                                            const ndp::CPolygon* custom) {
    BXQSelSectionInfo info;
    info.typeName = manager.typeName();
    info.specification = manager.specification();
    info.specificationKey = manager.specificationKey();
    const QStringList point = manager.insertPoint().split(QLatin1Char(','));
    info.insertPointX = point.value(0).toDouble();
    info.insertPointY = point.value(1).toDouble();
    QString error;
    const skr::section::SKRHotRollingLookup row =
        skr::section::SKRPerMetreLookup::findSection(info.specification, &error);
    if (!error.isEmpty()) qWarning("%s", qUtf8Printable(error));  // no error channel in the result
    if (row.first) {
        info.weightPerMetre = row.second.weightMeter;
        info.surfacePerMetre = row.second.area;
        return info;
    }
    // Any other section: from its outline, area x 7.85 t/m3 and the outer perimeter.
    std::unique_ptr<ndp::CPolygon> drawn;
    if (!custom && !info.specification.isEmpty()) {
        skr::geometry::SKROutline outline;
        if (skr::geometry::specificationOutline(info.specification, outline, nullptr))
            drawn = skr::geometry::outlinePolygon(outline);
        custom = drawn.get();
    }
    if (custom) {
        const skr::geometry::SKRExactFigures figures = skr::geometry::ExactSectionFigures(*custom);
        info.weightPerMetre = figures.massPerMetre;
        info.surfacePerMetre = figures.outerPerimeter / 1000.0;
    }
    return info;
}

double SKRSectionPolyDialog::getAPMByNorm(const QString& norm) {
    return skr::section::SKRPerMetreLookup::surfacePerMetre(norm);
}

double SKRSectionPolyDialog::getWPMByNorm(const QString& norm) {
    return skr::section::SKRPerMetreLookup::weightPerMetre(norm);
}

// --- modes and pop-ups -----------------------------------------------------------------------

void SKRSectionPolyDialog::isSectionLibrary(bool library) { m_pSingleMember->setVisible(!library); }

void SKRSectionPolyDialog::setEditBtnVisible(bool visible) {
    for (VantorPushButton* button : {m_pAddButton, m_pEditButton, m_pDeleteButton}) button->setVisible(visible);
}

QWidget* SKRSectionPolyDialog::createNormCodeWidget() {
    auto* frame = new VantorFrame(this, QString());
    frame->setWindowTitle(text("型钢代号表"));
    frame->setAttribute(Qt::WA_DeleteOnClose);
    auto* picture = new QLabel(frame);
    picture->setObjectName(QStringLiteral("normCodePicture"));
    // The table in the user's language: its translation names the picture drawn in that language.
    const QPixmap table(QStringLiteral(":/images/SKRSectionPoly/") + text("ShowNormCode.jpg"));
    picture->setPixmap(table);
    auto* scroll = new QScrollArea(frame);
    scroll->setWidget(picture);
    auto* layout = new QVBoxLayout(frame);
    layout->addWidget(scroll);
    frame->resize(table.width() + 40, std::min(table.height() + 40, 640));
    return frame;
}

void SKRSectionPolyDialog::showNormCodeWidget() { createNormCodeWidget()->show(); }

void SKRSectionPolyDialog::showHotSetionWidget() {
    const SKRHotRollingSection* section = selectedSection();
    if (!section) return;
    auto* frame = new VantorFrame(this, QString());
    frame->setObjectName(QStringLiteral("sectionStyle"));
    frame->setWindowTitle(QString::fromStdWString(section->standardName));
    frame->setAttribute(Qt::WA_DeleteOnClose);
    auto* info = new SKRHotRollingInfoWidget(frame);
    info->showSection(section);
    auto* layout = new QVBoxLayout(frame);
    layout->addWidget(info);
    frame->resize(560, 420);
    frame->show();
}

// --- the user's own sections -----------------------------------------------------------------

void SKRSectionPolyDialog::showEditCustomBtn(bool hasSelection) {
    const SKRHotRollingSection* section = hasSelection ? selectedSection() : nullptr;
    const bool user = section && SKRHotRollingListModel::isUserSection(*section);
    m_pAddButton->setEnabled(m_pHotRolledFilter->sectionType() != 0);
    m_pEditButton->setEnabled(user);
    m_pDeleteButton->setEnabled(user && m_fnDelete != nullptr);
}

void SKRSectionPolyDialog::runLogged(const QString& what, const std::function<void()>& edit) {
    VMPCmdLogTool* log = VMPCmdLogTool::getInstance();
    const bool logging = log->beginCommandLog();
    edit();
    if (logging) log->endCommandLog(text("撤消“%1”操作").arg(what), text("恢复“%1”操作").arg(what));
}

void SKRSectionPolyDialog::showCustomSectionWidget() {
    const int type = m_pHotRolledFilter->sectionType();
    auto* provider = skr::util::FetchInstance<skr::section::SKRUserHotRollingSectionDBProvider>();
    if (type == 0 || !provider) return;
    int subId = 1;
    try {
        subId = provider->nextSubId(type);
    } catch (const std::exception& failure) {
        // A sub number guessed past a failed read could take one in use: say why, add nothing.
        VMPMessageBox::warning(BXQCommon::getMainWindow(), text("提示"),
                               skr::section::failureText(provider->table(), failure));
        return;
    }
    SKRUserHotRollingSectionDialog dialog(type, subId, this);
    connect(&dialog, &SKRUserHotRollingSectionDialog::sectionSaved, m_pInfoWidget, &SKRHotRollingInfoWidget::sectionSaved);
    // The add itself happens inside the dialog: it is logged as one command.
    runLogged(text("添加自定义热轧截面"), [&] { dialog.exec(); });
}

void SKRSectionPolyDialog::showEditCustomSectionWidget() {
    const SKRHotRollingSection* section = selectedSection();
    if (!section || !SKRHotRollingListModel::isUserSection(*section)) return;
    SKRUserHotRollingSectionDialog dialog(section->sectionType, section->subId,
                                          QString::fromStdWString(section->standardName), this);
    // The host's handler when it gave one, else the figures are rewritten in the user catalogue.
    dialog.setSectionModifyHandler([this](const SKRHotRollingSection& edited) {
        runLogged(text("编辑自定义热轧截面"), [&] {
            if (m_fnModify) {
                m_fnModify(edited);
            } else if (auto* provider = skr::util::FetchInstance<skr::section::SKRUserHotRollingSectionDBProvider>()) {
                try {
                    provider->updateSection(edited);
                } catch (const std::exception& failure) {
                    VMPMessageBox::warning(BXQCommon::getMainWindow(), text("提示"),
                                           skr::section::failureText(provider->table(), failure));
                }
            }
        });
    });
    connect(&dialog, &SKRUserHotRollingSectionDialog::sectionSaved, m_pInfoWidget, &SKRHotRollingInfoWidget::sectionSaved);
    dialog.exec();
}

void SKRSectionPolyDialog::updataTableView(const SKRHotRollingSection& section) {
    reloadHotRolledList();
    m_pFilterEdit->clear();
    m_pHotRolledFilter->setSectionType(section.sectionType);
    selectCatalogueRow(QString::fromStdWString(section.standardName));
}

void SKRSectionPolyDialog::deleteCustomSection() {
    const SKRHotRollingSection* selected = selectedSection();
    if (!selected || !m_fnDelete) return;
    const SKRHotRollingSection section = *selected;
    if (VMPMessageBox::information(BXQCommon::getMainWindow(), text("提示"),
                                   text("删除该自定义截面，将会删除三维模型中的所有该截面图元和构件"),
                                   QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Ok) != QMessageBox::Ok)
        return;
    runLogged(text("删除自定义热轧截面"), [&] { m_fnDelete(section); });
    const int type = m_pHotRolledFilter->sectionType();
    reloadHotRolledList();
    m_pHotRolledFilter->setSectionType(type);
    m_pHotRolledView->clearSelection();
    catalogueRowChanged();
}

// --- keyboard and mouse ----------------------------------------------------------------------

bool SKRSectionPolyDialog::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_pFilterEdit) {
        if (event->type() == QEvent::MouseButtonPress) {
            m_pFilterEdit->setPlaceholderText(QString());
            m_pFilterEdit->setFocus(Qt::MouseFocusReason);
            return true;
        }
        if (event->type() == QEvent::FocusOut) {
            m_pFilterEdit->setPlaceholderText(filterPlaceholder());
            return true;
        }
    } else if (watched == m_pPolyView && event->type() == QEvent::KeyPress &&
               static_cast<QKeyEvent*>(event)->key() == Qt::Key_Tab) {
        if (SKRParamLineEdit* first = m_pParamEditor->lineEdit(0); first && m_pStack->currentWidget() == m_pParamPage)
            first->setFocus(Qt::TabFocusReason);
        else
            m_pFilterEdit->setFocus(Qt::TabFocusReason);
        return true;
    }
    return VantorFrame::eventFilter(watched, event);
}
