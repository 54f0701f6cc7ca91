// The main window of bxq gui.
#include "app/window/BXQMainWindow.h"
#include "section_data/SKRProjectSchema.h"

#include "app/cli/BXQCommand.h"
#include "app/view/BXQModelScene.h"
#include "body_builder/SKRMemberSolidShape.h"
#include "exchange/SKRIfcProjectExport.h"
#include "face_steel/BXQFaceSteelDialog.h"
#include "solid_split/SKRCuttingPlaneStore.h"
#include "ndp/NDPDatabase.h"
#include "section_data/SKRHotRollingSectionDBProvider.h"
#include "section_dialog/SKRSectionPolyDialog.h"
#include "ui/VMPMessageBox.h"
#include "ndp/NDPBody.h"
#include "ndp/NDPRef.h"
#include "scene/VMPViewerManager.h"
#include "vmp/VMPCmdLogTool.h"
#include "vmp/VMPMembers.h"
#include "vmp/VMPProjectModel.h"

#include <QAction>
#include <QApplication>
#include <QPushButton>
#include <QCloseEvent>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHeaderView>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QProgressDialog>
#include <QStackedWidget>
#include <QSplitter>
#include <QStatusBar>
#include <QTableWidget>
#include <QToolBar>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <exception>

namespace bxq {

namespace {

QString text(const char* source) { return QCoreApplication::translate("BXQMainWindow", source); }

QTableWidget* recordTable(const QStringList& headers, QWidget* parent) {
    auto* table = new QTableWidget(0, headers.size(), parent);
    table->setHorizontalHeaderLabels(headers);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->verticalHeader()->hide();
    table->horizontalHeader()->setStretchLastSection(true);
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    return table;
}

void appendRow(QTableWidget* table, const QStringList& cells) {
    const int row = table->rowCount();
    table->insertRow(row);
    for (int column = 0; column < cells.size(); ++column) table->setItem(row, column, new QTableWidgetItem(cells[column]));
    table->scrollToBottom();
}

QWidget* titled(const QString& title, QWidget* content, QWidget* parent) {
    auto* box = new QWidget(parent);
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(new QLabel(QStringLiteral("<b>%1</b>").arg(title), box));
    layout->addWidget(content);
    return box;
}

// "x,y,z" in mm.
bool readPoint(const QString& text, ndp::CVector3& point) {
    const QStringList parts = text.split(QLatin1Char(','));
    if (parts.size() != 3) return false;
    for (int i = 0; i < 3; ++i) {
        bool ok = false;
        point[static_cast<size_t>(i)] = parts[i].trimmed().toDouble(&ok);
        if (!ok || !std::isfinite(point[static_cast<size_t>(i)])) return false;
    }
    return true;
}

QString pointText(const ndp::CVector3& p) {
    return QStringLiteral("%1,%2,%3").arg(shortestNumber(p[0]), shortestNumber(p[1]), shortestNumber(p[2]));
}

}  // namespace

BXQMainWindow::BXQMainWindow(QWidget* parent) : QMainWindow(parent) {
    m_pSections = recordTable({text("截面类型"), text("规格"), text("插入点"), text("延米重(kg/m)"), text("表面积(m2/m)")}, this);
    m_pPlates = recordTable({text("面钢类别"), text("厚度(mm)"), text("重量(kg/m2)")}, this);
    m_pUserSections = recordTable({text("自定义截面"), text("类型"), text("延米重(kg/m)"), text("表面积(m2/m)")}, this);
    auto* split = new QSplitter(Qt::Vertical, this);
    split->addWidget(titled(text("所选截面"), m_pSections, split));
    split->addWidget(titled(text("所选面钢"), m_pPlates, split));
    split->addWidget(titled(text("项目的自定义截面"), m_pUserSections, split));
    // The 3D view beside the tables; where there is no OpenGL a text stands in its place.
    // Without OpenGL the view stays out of the window (an OpenGL child would make the whole
    // window draw through OpenGL); it still picks and its commands still work.
    const bool drawable = BXQModelView::openGLAvailable();
    m_pView = new BXQModelView(drawable ? this : nullptr);
    m_pViewStack = new QStackedWidget(this);
    m_pViewStack->addWidget(drawable ? static_cast<QWidget*>(m_pView) : new QWidget(m_pViewStack));
    auto* placeholder = new QLabel(BXQModelView::placeholderText(), m_pViewStack);
    placeholder->setObjectName(QStringLiteral("viewPlaceholder"));
    placeholder->setAlignment(Qt::AlignCenter);
    placeholder->setWordWrap(true);
    m_pViewStack->addWidget(placeholder);
    if (!drawable) {
        m_pView->resize(800, 600);
        useViewPlaceholder();
    }
    connect(m_pView, &BXQModelView::openGLMissing, this, &BXQMainWindow::useViewPlaceholder);
    connect(m_pView, &BXQModelView::picked, this, &BXQMainWindow::handlePick);
    auto* beside = new QSplitter(Qt::Horizontal, this);
    beside->addWidget(split);
    beside->addWidget(m_pViewStack);
    beside->setStretchFactor(0, 2);
    beside->setStretchFactor(1, 3);
    setCentralWidget(beside);

    QAction* library = new QAction(text("截面库..."), this);
    QAction* plates = new QAction(text("面钢..."), this);
    m_pUndo = new QAction(text("撤消"), this);
    m_pRedo = new QAction(text("恢复"), this);
    m_pSave = new QAction(text("保存"), this);
    QAction* quit = new QAction(text("退出"), this);
    QAction* exportIfcAction = new QAction(text("导出 IFC..."), this);
    connect(exportIfcAction, &QAction::triggered, this, &BXQMainWindow::exportIfcAsked);
    m_pUndo->setShortcut(QKeySequence::Undo);
    m_pRedo->setShortcut(QKeySequence::Redo);
    m_pSave->setShortcut(QKeySequence::Save);
    connect(library, &QAction::triggered, this, &BXQMainWindow::openSectionLibrary);
    connect(plates, &QAction::triggered, this, &BXQMainWindow::openFaceSteel);
    connect(m_pUndo, &QAction::triggered, this, &BXQMainWindow::undo);
    connect(m_pRedo, &QAction::triggered, this, &BXQMainWindow::redo);
    connect(m_pSave, &QAction::triggered, this, &BXQMainWindow::save);
    connect(quit, &QAction::triggered, this, &QWidget::close);
    QMenu* project = menuBar()->addMenu(text("项目"));
    project->addAction(m_pSave);
    project->addAction(exportIfcAction);
    project->addAction(quit);
    QMenu* edit = menuBar()->addMenu(text("编辑"));
    edit->addAction(m_pUndo);
    edit->addAction(m_pRedo);
    QMenu* sections = menuBar()->addMenu(text("截面"));
    sections->addAction(library);
    sections->addAction(plates);

    QMenu* viewMenu = menuBar()->addMenu(text("视图"));
    const std::pair<const char*, BXQStandardView> views[] = {{"轴测", BXQStandardView::Iso},
                                                             {"前视", BXQStandardView::Front},
                                                             {"俯视", BXQStandardView::Top},
                                                             {"右视", BXQStandardView::Right}};
    QList<QAction*> viewActions;
    for (const auto& view : views) {
        QAction* action = viewMenu->addAction(text(view.first));
        const BXQStandardView side = view.second;
        connect(action, &QAction::triggered, this, [this, side] { m_pView->showStandardView(side); });
        viewActions << action;
    }
    QAction* fit = viewMenu->addAction(text("全部显示"));
    connect(fit, &QAction::triggered, m_pView, &BXQModelView::fitAll);
    viewActions << fit;

    QMenu* model = menuBar()->addMenu(text("模型"));
    QAction* addMember = model->addAction(text("添加构件..."));
    m_pAddPlane = model->addAction(text("添加切割面"));
    m_pAddPlane->setObjectName(QStringLiteral("addPlane"));
    m_pAddPlane->setCheckable(true);
    m_pAddPlane->setToolTip(text("在构件上点取切割面的位置"));
    m_pMovePlane = model->addAction(text("移动切割面..."));
    m_pDeletePlane = model->addAction(text("删除切割面"));
    connect(addMember, &QAction::triggered, this, &BXQMainWindow::addMemberFromLibrary);
    connect(m_pAddPlane, &QAction::toggled, this, [this](bool on) {
        if (on) statusBar()->showMessage(text("点取构件上的一点以添加切割面"));
        else statusBar()->clearMessage();
    });
    connect(m_pMovePlane, &QAction::triggered, this, &BXQMainWindow::moveSelectedPlaneAsked);
    connect(m_pDeletePlane, &QAction::triggered, this, &BXQMainWindow::deleteSelectedPlaneAsked);

    QToolBar* tools = addToolBar(text("工具"));
    tools->setObjectName(QStringLiteral("tools"));
    for (QAction* action : {library, plates, m_pUndo, m_pRedo, m_pSave}) tools->addAction(action);
    tools->addSeparator();
    for (QAction* action : {addMember, m_pAddPlane, m_pMovePlane, m_pDeletePlane}) tools->addAction(action);
    tools->addSeparator();
    tools->addActions(viewActions);
    resize(1280, 760);
    BXQCommon::setMainWindow(this);
}

BXQMainWindow::~BXQMainWindow() {
    if (BXQCommon::getMainWindow() == this) BXQCommon::setMainWindow(nullptr);
    VMPCmdLogTool::getInstance()->setDatabase(nullptr);
    m_pView->setSceneData(nullptr);
    m_scene.reset();
    if (m_viewer) m_viewer->setRedrawRequest({});
    if (!m_pView->parent()) delete m_pView;
}

void BXQMainWindow::useViewPlaceholder() { m_pViewStack->setCurrentIndex(1); }

bool BXQMainWindow::buildScene(QString* error) {
    m_pView->setSceneData(nullptr);
    m_scene.reset();
    m_viewer = std::make_unique<VMPViewerManager>();
    BXQModelView* view = m_pView;
    m_viewer->setRedrawRequest([view] { view->update(); });
    m_scene = std::make_unique<BXQModelScene>(m_session.project(), m_viewer.get());
    // Shown only when the build takes over a second.
    QProgressDialog progress(text("正在生成三维视图..."), text("取消"), 0, 0, this);
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(1000);
    progress.setAutoClose(false);
    progress.setAutoReset(false);
    bool cancelled = false;
    const bool built = m_scene->build(error, [&progress, &cancelled](int done, int total) {
        progress.setMaximum(total);
        progress.setValue(done);
        cancelled = progress.wasCanceled();
        return !cancelled;
    });
    progress.close();
    m_scene->clearSelection();
    m_pView->setSceneData(m_viewer->getSceneRoot());
    m_pView->showStandardView(BXQStandardView::Iso);
    if (cancelled && error) *error = text("三维视图未完整生成（已取消）");
    return built;
}

bool BXQMainWindow::openProject(const QString& path, QString* error) {
    if (!m_session.openProject(path, true, error) || !m_session.openCatalogue(error)) return false;
    m_session.registerRepository();
    VMPCmdLogTool::getInstance()->setDatabase(m_session.projectDB());
    QString plateError;
    if (m_session.openSystemDatabase(QStringLiteral("SysInfo.KDB"), &plateError)) BXQFaceSteelDialog::loadData(nullptr);
    else statusBar()->showMessage(plateError);
    QString viewError;
    if (!buildScene(&viewError)) statusBar()->showMessage(viewError);
    refresh();
    return true;
}

bool BXQMainWindow::isModified() const {
    const ndp::CDatabase* project = m_session.projectDB();
    return project && project->HasUnflushedChanges();
}

void BXQMainWindow::refresh() {
    VMPCmdLogTool* log = VMPCmdLogTool::getInstance();
    m_pUndo->setEnabled(log->canUndo());
    m_pUndo->setText(log->canUndo() ? log->undoText() : text("撤消"));
    m_pRedo->setEnabled(log->canRedo());
    m_pRedo->setText(log->canRedo() ? log->redoText() : text("恢复"));
    const bool selected = selectedPlane() >= 0;
    m_pMovePlane->setEnabled(selected);
    m_pDeletePlane->setEnabled(selected);
    setWindowTitle(QStringLiteral("bxq - %1%2").arg(QDir::toNativeSeparators(m_session.projectPath()),
                                                   isModified() ? QStringLiteral(" *") : QString()));
    m_pUserSections->setRowCount(0);
    ndp::CDatabase* project = m_session.projectDB();
    ndp::CDBTable* table = project ? project->GetTable(skr::section::schema::user_section::table) : nullptr;
    if (!table) return;
    skr::section::SKRUserHotRollingSectionDBProvider reader(table);
    try {
        for (const auto& section : BXQDataSession::allSections(table, &reader))
            appendRow(m_pUserSections, {QString::fromStdWString(section.standardName), QString::number(section.sectionType),
                                        QString::number(section.weightMeter, 'f', 3), QString::number(section.area, 'f', 4)});
    } catch (const std::exception& e) {
        statusBar()->showMessage(QString::fromUtf8(e.what()));
    }
}

void BXQMainWindow::openSectionLibrary() {
    SKRSectionPolyDialog dialog(m_session.model(), this);
    dialog.deleteCustomSectionHandler([](const skr::section::SKRHotRollingSection& section) {
        // This host has no members to delete with the section: only its catalogue row goes.
        if (auto* user = skr::util::FetchInstance<skr::section::SKRUserHotRollingSectionDBProvider>())
            user->removeSection(section.sectionType, section.subId);
    });
    if (dialog.exec() == QDialog::Accepted) {
        const auto info = dialog.getSelSectionInfo();
        appendRow(m_pSections, {info.typeName, info.specification,
                                QStringLiteral("%1, %2").arg(shortestNumber(info.insertPointX), shortestNumber(info.insertPointY)),
                                QString::number(info.weightPerMetre, 'f', 3), QString::number(info.surfacePerMetre, 'f', 4)});
    }
    refresh();
}

void BXQMainWindow::openFaceSteel() {
    BXQFaceSteelDialog dialog(nullptr, this);
    if (dialog.exec() == QDialog::Accepted) {
        const BXQFaceSteelInfo& plate = dialog.getResult();
        appendRow(m_pPlates, {plate.className, shortestNumber(plate.thickness),
                              QString::number(BXQFaceSteelDialog::getFaceSteelQty(plate.className, plate.thickness), 'f', 3)});
    }
    refresh();
}

void BXQMainWindow::undo() {
    const auto before = memberStates();
    if (!VMPCmdLogTool::getInstance()->undo()) statusBar()->showMessage(text("无法撤消"), 4000);
    rebuildChanged(before);
    refresh();
}

void BXQMainWindow::redo() {
    const auto before = memberStates();
    if (!VMPCmdLogTool::getInstance()->redo()) statusBar()->showMessage(text("无法恢复"), 4000);
    rebuildChanged(before);
    refresh();
}

std::int64_t BXQMainWindow::selectedPlane() const {
    if (!m_scene) return -1;
    for (std::int64_t record : m_scene->planes().DisplayedRecords())
        if (m_scene->planes().IsSelected(record)) return record;
    return -1;
}

void BXQMainWindow::selectOnly(std::int64_t record) {
    if (!m_scene) return;
    auto& planes = m_scene->planes();
    for (std::int64_t shown : planes.DisplayedRecords())
        if (planes.IsSelected(shown) != (shown == record)) planes.ToggleSelection(shown, false);
}

void BXQMainWindow::rebuild(std::int64_t memberId) {
    if (!m_scene) return;
    QString error;
    if (!m_scene->rebuildMember(memberId, &error)) statusBar()->showMessage(error);
}

std::map<std::int64_t, QString> BXQMainWindow::memberStates() const {
    std::map<std::int64_t, QString> states;
    ndp::CDatabase* database = m_session.projectDB();
    std::vector<VMPMember> members;
    std::vector<skr::split::CuttingPlaneRecord> planes;
    if (!database || !VMPReadMembers(database, members, nullptr) ||
        !skr::split::ReadCuttingPlaneRecords(database, -1, planes, nullptr))
        return states;
    for (const VMPMember& m : members)
        states[m.id] = QStringLiteral("%1|%2|%3|%4").arg(m.section, pointText(m.start), pointText(m.end)).arg(m.roll, 0, 'g', 17);
    for (const auto& p : planes)
        states[p.elementId] += QStringLiteral("|%1:%2:%3:%4:%5")
                                   .arg(p.id)
                                   .arg(p.isTail)
                                   .arg(pointText(p.local.origin), pointText(p.local.xAxis), pointText(p.local.zAxis));
    return states;
}

void BXQMainWindow::rebuildChanged(const std::map<std::int64_t, QString>& before) {
    if (!m_scene) return;
    const std::int64_t selected = selectedPlane();
    const auto after = memberStates();
    bool changed = false;
    for (const auto& state : before) {
        const auto now = after.find(state.first);
        if (now == after.end() || now->second != state.second) rebuild(state.first), changed = true;
    }
    for (const auto& state : after)
        if (!before.count(state.first)) rebuild(state.first), changed = true;
    if (changed) selectOnly(selected);
}

bool BXQMainWindow::logged(const QString& what, const std::function<bool()>& change) {
    VMPCmdLogTool* log = VMPCmdLogTool::getInstance();
    const bool logging = log->beginCommandLog();
    const bool done = change();
    if (logging) log->endCommandLog(text("撤消“%1”操作").arg(what), text("恢复“%1”操作").arg(what));
    return done;
}

bool BXQMainWindow::addMember(const QString& section, const ndp::CVector3& start, const ndp::CVector3& end,
                              QString* error) {
    VMPMember member;
    member.section = section.trimmed();
    member.start = start;
    member.end = end;
    if (member.section.isEmpty()) {
        *error = text("构件没有截面");
        return false;
    }
    if (member.length() < 1.0) {
        *error = text("构件的起点和终点必须相距至少 1 mm");
        return false;
    }
    // The section must make a solid before it is stored.
    skr::body::SKRMemberSolidShape probe(member.section, member.length(), ndp::CoordinateSystem3());
    const ndp::CRef<ndp::CBody> solid(probe.createBody());
    if (!solid) {
        *error = text("截面“%1”无法生成构件：%2").arg(member.section, probe.lastError());
        return false;
    }
    const bool first = m_scene && m_scene->memberCount() == 0;
    if (!logged(text("添加构件"), [&] { return VMPAddMember(m_session.projectDB(), member, error); })) return false;
    rebuild(member.id);
    if (first) m_pView->showStandardView(BXQStandardView::Iso);
    refresh();
    return true;
}

bool BXQMainWindow::addCuttingPlaneAt(std::int64_t memberId, const ndp::CVector3& point, QString* error) {
    VMPMember member;
    QString reason;
    if (!VMPReadMember(m_session.projectDB(), memberId, member, &reason)) {
        *error = reason.isEmpty() ? text("项目中没有构件 %1").arg(memberId) : reason;
        return false;
    }
    const double length = member.length();
    if (!m_scene || length <= 0.0) {
        *error = text("构件 %1 没有长度").arg(memberId);
        return false;
    }
    using ndp::operator-;
    using ndp::operator+;
    using ndp::operator*;
    const ndp::CVector3 axis = ndp::Normalized(member.end - member.start);
    const double along = std::min(std::max(ndp::Dot(point - member.start, axis), 0.0), length);
    // The nearer end; the normal points from that end into the member.
    const bool tail = along > length / 2.0;
    const ndp::CVector3 normal = tail ? -axis : axis;
    const ndp::CoordinateSystem3 head = VMPMemberHeadFrame(member.start, member.end, member.roll);
    const ndp::CoordinateSystem3 frame =
        ndp::MakeFrame(member.start + along * axis, head.xAxis, ndp::Cross(normal, head.xAxis), normal);
    std::int64_t record = -1;
    if (!logged(text("添加切割面"), [&] { return m_scene->planes().AddCuttingPlane(memberId, frame, tail, &record); })) {
        *error = text("无法给构件 %1 添加切割面：%2").arg(memberId).arg(m_session.projectDB()->GetLastError());
        return false;
    }
    rebuild(memberId);
    selectOnly(record);
    refresh();
    return true;
}

bool BXQMainWindow::moveSelectedPlane(double distance, QString* error) {
    const std::int64_t record = selectedPlane();
    std::int64_t memberId = -1;
    if (record < 0 || !m_scene->planes().GetElementOfCuttingPlane(record, memberId)) {
        *error = text("没有选中的切割面");
        return false;
    }
    if (!std::isfinite(distance) || std::abs(distance) < 0.0001) {
        *error = text("移动距离必须不小于 0.0001 mm");
        return false;
    }
    if (!logged(text("移动切割面"), [&] { return m_scene->planes().MoveCuttingPlane(record, distance); })) {
        *error = text("无法移动切割面 %1").arg(record);
        return false;
    }
    rebuild(memberId);
    selectOnly(record);
    refresh();
    return true;
}

bool BXQMainWindow::deleteSelectedPlane(QString* error) {
    const std::int64_t record = selectedPlane();
    std::int64_t memberId = -1;
    if (record < 0 || !m_scene->planes().GetElementOfCuttingPlane(record, memberId)) {
        *error = text("没有选中的切割面");
        return false;
    }
    if (!logged(text("删除切割面"), [&] { return m_scene->planes().DeleteCuttingPlane(record); })) {
        *error = text("无法删除切割面 %1").arg(record);
        return false;
    }
    rebuild(memberId);
    selectOnly(-1);
    refresh();
    return true;
}

void BXQMainWindow::handlePick(const BXQPick& pick) {
    if (!m_scene) return;
    if (m_pAddPlane->isChecked()) {
        if (pick.kind != BXQPick::Member) return statusBar()->showMessage(text("请点取构件上的一点"), 4000);
        m_pAddPlane->setChecked(false);
        QString error;
        if (!addCuttingPlaneAt(pick.id, {pick.point.x(), pick.point.y(), pick.point.z()}, &error))
            VMPMessageBox::warning(this, text("提示"), error);
        return;
    }
    if (pick.kind == BXQPick::Plane) m_scene->planes().ToggleSelection(pick.id, true);
    else if (pick.kind == BXQPick::Member) statusBar()->showMessage(text("构件 %1").arg(pick.id), 4000);
    refresh();
}

void BXQMainWindow::addMemberFromLibrary() {
    SKRSectionPolyDialog library(m_session.model(), this);
    if (library.exec() != QDialog::Accepted) return refresh();
    const QString section = library.getSelSectionInfo().specification;
    QDialog points(this);
    points.setWindowTitle(text("添加构件"));
    auto* form = new QFormLayout(&points);
    auto* start = new QLineEdit(QStringLiteral("0,0,0"), &points);
    auto* end = new QLineEdit(QStringLiteral("6000,0,0"), &points);
    start->setObjectName(QStringLiteral("start"));
    end->setObjectName(QStringLiteral("end"));
    form->addRow(text("截面"), new QLabel(section, &points));
    form->addRow(text("起点 x,y,z (mm)"), start);
    form->addRow(text("终点 x,y,z (mm)"), end);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &points);
    buttons->button(QDialogButtonBox::Cancel)->setProperty("isOtherCommandButton", true);
    form->addRow(buttons);
    connect(buttons, &QDialogButtonBox::accepted, &points, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, &points, &QDialog::reject);
    if (points.exec() != QDialog::Accepted) return refresh();
    ndp::CVector3 a{}, b{};
    QString error;
    if (!readPoint(start->text(), a)) error = text("起点“%1”不是 x,y,z").arg(start->text());
    else if (!readPoint(end->text(), b)) error = text("终点“%1”不是 x,y,z").arg(end->text());
    if (!error.isEmpty() || !addMember(section, a, b, &error)) VMPMessageBox::warning(this, text("提示"), error);
}

void BXQMainWindow::moveSelectedPlaneAsked() {
    if (selectedPlane() < 0) return;
    bool ok = false;
    const double distance = QInputDialog::getDouble(this, text("移动切割面"), text("沿法向移动的距离 (mm)"), 100.0,
                                                    -1.0e6, 1.0e6, 1, &ok);
    if (!ok) return;
    QString error;
    if (!moveSelectedPlane(distance, &error)) VMPMessageBox::warning(this, text("提示"), error);
}

void BXQMainWindow::deleteSelectedPlaneAsked() {
    QString error;
    if (selectedPlane() >= 0 && !deleteSelectedPlane(&error)) VMPMessageBox::warning(this, text("提示"), error);
}

bool BXQMainWindow::exportIfc(const QString& path, QString* error) {
    QProgressDialog progress(text("正在导出 IFC..."), text("取消"), 0, 0, this);
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(1000);
    skr::exchange::SKRIfcExportOptions options;
    options.projectName = QFileInfo(m_session.projectPath()).completeBaseName();
    options.progress = [&progress](int done, int total) {
        progress.setMaximum(total);
        progress.setValue(done);
        return !progress.wasCanceled();
    };
    const bool written = skr::exchange::exportProjectIfc(m_session.project(), path, options, nullptr, error);
    progress.close();
    return written;
}

void BXQMainWindow::exportIfcAsked() {
    const QString suggested = QFileInfo(m_session.projectPath()).completeBaseName() + QStringLiteral(".ifc");
    const QString path = QFileDialog::getSaveFileName(this, text("导出 IFC"), suggested, QStringLiteral("IFC (*.ifc)"));
    if (path.isEmpty()) return;
    QString error;
    if (exportIfc(path, &error))
        statusBar()->showMessage(text("已导出 %1").arg(QDir::toNativeSeparators(path)), 4000);
    else
        VMPMessageBox::warning(this, text("提示"), error);
}

bool BXQMainWindow::save() {
    QString error;
    const bool saved = m_session.saveProject(&error);
    if (saved)
        statusBar()->showMessage(text("已保存"), 4000);
    else
        VMPMessageBox::warning(this, text("提示"), error);
    refresh();
    return saved;
}

void BXQMainWindow::closeEvent(QCloseEvent* event) {
    if (!isModified()) return event->accept();
    const auto answer = VMPMessageBox::information(this, text("提示"), text("项目已修改，是否保存？"),
                                                   QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel,
                                                   QMessageBox::Save);
    if (answer == QMessageBox::Cancel || (answer == QMessageBox::Save && !save())) return event->ignore();
    event->accept();
}

int runGui(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("bxq"));
    QCommandLineParser cli;
    cli.addOption({QStringLiteral("project"), QStringLiteral("The project file (created when missing)."),
                   QStringLiteral("FILE"), QStringLiteral("bxq-project.KDB")});
    addLanguageOption(cli);
    if (!parseArguments(cli, QApplication::arguments().mid(1)) || !applyLanguageOption(cli)) return kUsageError;
    BXQMainWindow window;
    QString error;
    if (!window.openProject(cli.value(QStringLiteral("project")), &error)) return dataError(error);
    window.show();
    return app.exec();
}

}  // namespace bxq
