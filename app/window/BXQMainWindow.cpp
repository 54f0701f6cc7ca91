// The main window of bxq gui.
#include "app/window/BXQMainWindow.h"

#include "app/cli/BXQCommand.h"
#include "face_steel/BXQFaceSteelDialog.h"
#include "ndp/NDPDatabase.h"
#include "section_data/SKRHotRollingSectionDBProvider.h"
#include "section_dialog/SKRSectionPolyDialog.h"
#include "ui/VMPMessageBox.h"
#include "vmp/VMPCmdLogTool.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QHeaderView>
#include <QLabel>
#include <QMenuBar>
#include <QSplitter>
#include <QStatusBar>
#include <QTableWidget>
#include <QToolBar>
#include <QVBoxLayout>

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

}  // namespace

BXQMainWindow::BXQMainWindow(QWidget* parent) : QMainWindow(parent) {
    m_pSections = recordTable({text("截面类型"), text("规格"), text("插入点"), text("延米重(kg/m)"), text("表面积(m2/m)")}, this);
    m_pPlates = recordTable({text("面钢类别"), text("厚度(mm)"), text("重量(kg/m2)")}, this);
    m_pUserSections = recordTable({text("自定义截面"), text("类型"), text("延米重(kg/m)"), text("表面积(m2/m)")}, this);
    auto* split = new QSplitter(Qt::Vertical, this);
    split->addWidget(titled(text("所选截面"), m_pSections, split));
    split->addWidget(titled(text("所选面钢"), m_pPlates, split));
    split->addWidget(titled(text("项目的自定义截面"), m_pUserSections, split));
    setCentralWidget(split);

    QAction* library = new QAction(text("截面库..."), this);
    QAction* plates = new QAction(text("面钢..."), this);
    m_pUndo = new QAction(text("撤消"), this);
    m_pRedo = new QAction(text("恢复"), this);
    m_pSave = new QAction(text("保存"), this);
    QAction* quit = new QAction(text("退出"), this);
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
    project->addAction(quit);
    QMenu* edit = menuBar()->addMenu(text("编辑"));
    edit->addAction(m_pUndo);
    edit->addAction(m_pRedo);
    QMenu* sections = menuBar()->addMenu(text("截面"));
    sections->addAction(library);
    sections->addAction(plates);
    QToolBar* tools = addToolBar(text("工具"));
    tools->setObjectName(QStringLiteral("tools"));
    for (QAction* action : {library, plates, m_pUndo, m_pRedo, m_pSave}) tools->addAction(action);
    resize(900, 640);
    BXQCommon::setMainWindow(this);
}

BXQMainWindow::~BXQMainWindow() {
    if (BXQCommon::getMainWindow() == this) BXQCommon::setMainWindow(nullptr);
    VMPCmdLogTool::getInstance()->setDatabase(nullptr);
}

bool BXQMainWindow::openProject(const QString& path, QString* error) {
    if (!m_session.openProject(path, true, error) || !m_session.openCatalogue(error)) return false;
    m_session.registerRepository();
    VMPCmdLogTool::getInstance()->setDatabase(m_session.projectDB());
    QString plateError;
    if (m_session.openSystemDatabase(QStringLiteral("SysInfo.KDB"), &plateError)) BXQFaceSteelDialog::loadData(nullptr);
    else statusBar()->showMessage(plateError);
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
    setWindowTitle(QStringLiteral("bxq - %1%2").arg(QDir::toNativeSeparators(m_session.projectPath()),
                                                   isModified() ? QStringLiteral(" *") : QString()));
    m_pUserSections->setRowCount(0);
    ndp::CDatabase* project = m_session.projectDB();
    ndp::CDBTable* table = project ? project->GetTable(L"CustomHotRolledSection") : nullptr;
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
    if (!VMPCmdLogTool::getInstance()->undo()) statusBar()->showMessage(text("无法撤消"), 4000);
    refresh();
}

void BXQMainWindow::redo() {
    if (!VMPCmdLogTool::getInstance()->redo()) statusBar()->showMessage(text("无法恢复"), 4000);
    refresh();
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
