// The cell window: its controls and menus, and the cell it shows.
#include "CellWindow.h"

#include "CellHostStore.h"
#include "CellJobInfo.h"

#include "common/Ui.h"
#include "dialogs/WaitCursor.h"
#include "store/CellInit.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFontDatabase>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QSplitter>
#include <QStatusBar>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>

#include <stdexcept>

namespace app {

namespace {

// The host's check box of the update notice, as the module reads and sets it.
class CheckBoxGate : public common::MessageGate {
public:
    explicit CheckBoxGate(QCheckBox* box) : box_(box) {}
    bool checked() const override { return box_->isChecked(); }
    void setChecked(bool value) override { box_->setChecked(value); }

private:
    QCheckBox* box_;
};

QPushButton* button(const QString& name, const QString& text, QWidget* parent) {
    auto* result = new QPushButton(text, parent);
    result->setObjectName(name);
    return result;
}

} // namespace

CellWindow::CellWindow(ModuleExports& exports, common::Ui& ui, QWidget* parent)
    : QMainWindow(parent), exports_(exports), ui_(ui) {
    setObjectName("frmCell");
    setWindowTitle("quorvel - cell");
    chooseFolder = [this](const QString& title, const QString& start) {
        return QFileDialog::getExistingDirectory(this, title, start);
    };
    buildControls();
    buildMenus();
    gate_ = std::make_unique<CheckBoxGate>(chkUpdateNotices);
    SetJobInfoReceiver([this](const TAutomationInfo& info) { showReport(info); });
    updateActions();
}

CellWindow::~CellWindow() {
    SetJobInfoReceiver({});
    hostStore_.reset();
    exports_.closeCell();
}

void CellWindow::buildControls() {
    auto* templatesBox = new QGroupBox("Templates", this);
    templatesBox->setObjectName("grpTemplates");
    cmbFixture = new QComboBox(templatesBox);
    cmbFixture->setObjectName("cmbFixture");
    cmbFixture->setMinimumContentsLength(12);
    spnWorkpieces = new QSpinBox(templatesBox);
    spnWorkpieces->setObjectName("spnWorkpieces");
    spnWorkpieces->setRange(1, 100);
    spnWorkpieces->setToolTip("Workpieces the template editor shows");
    lstTemplates = new QListWidget(templatesBox);
    lstTemplates->setObjectName("lstTemplates");
    btnNewTemplate = button("btnNewTemplate", "&New...", templatesBox);
    btnModifyTemplate = button("btnModifyTemplate", "&Modify...", templatesBox);
    btnDeleteTemplate = button("btnDeleteTemplate", "De&lete...", templatesBox);
    auto* fixtureLabel = new QLabel("&Fixture:", templatesBox);
    fixtureLabel->setObjectName("lblFixture");
    fixtureLabel->setBuddy(cmbFixture);
    auto* workpiecesLabel = new QLabel("&Workpieces:", templatesBox);
    workpiecesLabel->setObjectName("lblWorkpieces");
    workpiecesLabel->setBuddy(spnWorkpieces);
    auto* templatesLayout = new QGridLayout(templatesBox);
    templatesLayout->addWidget(fixtureLabel, 0, 0);
    templatesLayout->addWidget(cmbFixture, 0, 1);
    templatesLayout->addWidget(workpiecesLabel, 0, 2);
    templatesLayout->addWidget(spnWorkpieces, 0, 3);
    templatesLayout->addWidget(lstTemplates, 1, 0, 1, 4);
    auto* templateButtons = new QHBoxLayout;
    for (auto* b : {btnNewTemplate, btnModifyTemplate, btnDeleteTemplate})
        templateButtons->addWidget(b);
    templateButtons->addStretch();
    templatesLayout->addLayout(templateButtons, 2, 0, 1, 4);
    templatesLayout->setColumnStretch(1, 1);

    auto* jobsBox = new QGroupBox("Jobs", this);
    jobsBox->setObjectName("grpJobs");
    tblJobs = new QTableView(jobsBox);
    tblJobs->setObjectName("tblJobs");
    tblJobs->setModel(&jobsModel_);
    tblJobs->setSelectionBehavior(QAbstractItemView::SelectRows);
    tblJobs->setSelectionMode(QAbstractItemView::SingleSelection);
    tblJobs->setEditTriggers(QAbstractItemView::NoEditTriggers);
    tblJobs->setTabKeyNavigation(false);
    tblJobs->verticalHeader()->hide();
    tblJobs->horizontalHeader()->setStretchLastSection(false);
    btnNewJob = button("btnNewJob", "New &Job...", jobsBox);
    btnOpenJob = button("btnOpenJob", "&Open...", jobsBox);
    btnDeleteJob = button("btnDeleteJob", "&Delete", jobsBox);
    btnCopyFiles = button("btnCopyFiles", "&Copy Files...", jobsBox);
    chkUpdateNotices = new QCheckBox("Show &update notices", jobsBox);
    chkUpdateNotices->setObjectName("chkUpdateNotices");
    chkUpdateNotices->setChecked(true);
    chkUpdateNotices->setToolTip("Let the wizard say when a job is updated to a changed template");
    auto* jobsLayout = new QVBoxLayout(jobsBox);
    jobsLayout->addWidget(tblJobs);
    auto* jobButtons = new QHBoxLayout;
    for (auto* b : {btnNewJob, btnOpenJob, btnDeleteJob, btnCopyFiles})
        jobButtons->addWidget(b);
    jobButtons->addStretch();
    jobButtons->addWidget(chkUpdateNotices);
    jobsLayout->addLayout(jobButtons);

    const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    auto* programBox = new QGroupBox("Master program", this);
    programBox->setObjectName("grpProgram");
    lblProgram = new QLabel(programBox);
    lblProgram->setObjectName("lblProgram");
    lblProgram->setTextInteractionFlags(Qt::TextSelectableByMouse);
    lblProgramNote = new QLabel(programBox);
    lblProgramNote->setObjectName("lblProgramNote");
    lblProgramNote->setWordWrap(true);
    lblProgramNote->setStyleSheet("color: #a04000;");
    lblProgramNote->hide();
    txtProgram = new QPlainTextEdit(programBox);
    txtProgram->setObjectName("txtProgram");
    txtProgram->setReadOnly(true);
    txtProgram->setLineWrapMode(QPlainTextEdit::NoWrap);
    txtProgram->setFont(fixed);
    auto* programLayout = new QVBoxLayout(programBox);
    programLayout->addWidget(lblProgram);
    programLayout->addWidget(lblProgramNote);
    programLayout->addWidget(txtProgram);

    auto* reportBox = new QGroupBox("Last report to GetJobInfo", this);
    reportBox->setObjectName("grpReport");
    lblReport = new QLabel("No report yet", reportBox);
    lblReport->setObjectName("lblReport");
    txtReport = new QPlainTextEdit(reportBox);
    txtReport->setObjectName("txtReport");
    txtReport->setReadOnly(true);
    txtReport->setLineWrapMode(QPlainTextEdit::NoWrap);
    txtReport->setFont(fixed);
    auto* reportLayout = new QVBoxLayout(reportBox);
    reportLayout->addWidget(lblReport);
    reportLayout->addWidget(txtReport);

    auto* left = new QSplitter(Qt::Vertical, this);
    left->setObjectName("splLeft");
    left->addWidget(templatesBox);
    left->addWidget(jobsBox);
    left->setStretchFactor(0, 2);
    left->setStretchFactor(1, 3);
    auto* right = new QSplitter(Qt::Vertical, this);
    right->setObjectName("splRight");
    right->addWidget(programBox);
    right->addWidget(reportBox);
    right->setStretchFactor(0, 3);
    right->setStretchFactor(1, 2);
    auto* main = new QSplitter(Qt::Horizontal, this);
    main->setObjectName("splMain");
    main->addWidget(left);
    main->addWidget(right);
    main->setStretchFactor(0, 1);
    main->setStretchFactor(1, 1);
    setCentralWidget(main);

    lblCell = new QLabel(this);
    lblCell->setObjectName("lblCell");
    statusBar()->setObjectName("sbrCell");
    statusBar()->addPermanentWidget(lblCell);

    setTabOrder(cmbFixture, spnWorkpieces);
    setTabOrder(spnWorkpieces, lstTemplates);
    setTabOrder(lstTemplates, btnNewTemplate);
    setTabOrder(btnNewTemplate, btnModifyTemplate);
    setTabOrder(btnModifyTemplate, btnDeleteTemplate);
    setTabOrder(btnDeleteTemplate, tblJobs);
    setTabOrder(tblJobs, btnNewJob);
    setTabOrder(btnNewJob, btnOpenJob);
    setTabOrder(btnOpenJob, btnDeleteJob);
    setTabOrder(btnDeleteJob, btnCopyFiles);
    setTabOrder(btnCopyFiles, chkUpdateNotices);
    setTabOrder(chkUpdateNotices, txtProgram);
    setTabOrder(txtProgram, txtReport);

    connect(cmbFixture, &QComboBox::currentIndexChanged, this,
            [this] { guarded("Cannot list the templates", [this] { loadTemplates(); }); });
    connect(lstTemplates, &QListWidget::itemActivated, this, &CellWindow::modifyTemplate);
    connect(lstTemplates, &QListWidget::currentRowChanged, this, &CellWindow::updateActions);
    connect(tblJobs, &QTableView::activated, this, &CellWindow::openJob);
    connect(tblJobs->selectionModel(), &QItemSelectionModel::currentRowChanged, this, [this] {
        updateActions();
        showProgram();
    });
    connect(btnNewTemplate, &QPushButton::clicked, this, &CellWindow::newTemplate);
    connect(btnModifyTemplate, &QPushButton::clicked, this, &CellWindow::modifyTemplate);
    connect(btnDeleteTemplate, &QPushButton::clicked, this, &CellWindow::deleteTemplate);
    connect(btnNewJob, &QPushButton::clicked, this, &CellWindow::newJob);
    connect(btnOpenJob, &QPushButton::clicked, this, &CellWindow::openJob);
    connect(btnDeleteJob, &QPushButton::clicked, this, &CellWindow::deleteJob);
    connect(btnCopyFiles, &QPushButton::clicked, this, &CellWindow::copyFiles);
}

void CellWindow::buildMenus() {
    auto action = [this](QMenu* menu, const QString& name, const QString& text,
                         const QList<QKeySequence>& keys, void (CellWindow::*slot)()) {
        auto* result = menu->addAction(text);
        result->setObjectName(name);
        result->setShortcuts(keys);
        connect(result, &QAction::triggered, this, slot);
        return result;
    };
    menuBar()->setObjectName("mnuMain");
    auto* file = menuBar()->addMenu("&File");
    file->setObjectName("mnuFile");
    actOpenCell = action(file, "actOpenCell", "&Open Cell...", {QKeySequence("Ctrl+Shift+O")},
                         &CellWindow::openCellAction);
    actNewDemoCell = action(file, "actNewDemoCell", "&New Demo Cell...",
                            {QKeySequence("Ctrl+Shift+N")}, &CellWindow::newDemoCell);
    file->addSeparator();
    actQuit = file->addAction("&Quit");
    actQuit->setObjectName("actQuit");
    actQuit->setShortcut(QKeySequence("Ctrl+Q"));
    connect(actQuit, &QAction::triggered, this, &QWidget::close);

    auto* templates = menuBar()->addMenu("&Templates");
    templates->setObjectName("mnuTemplates");
    actNewTemplate = action(templates, "actNewTemplate", "&New Template...",
                            {QKeySequence("Ctrl+T")}, &CellWindow::newTemplate);
    actModifyTemplate = action(templates, "actModifyTemplate", "&Modify Template...",
                               {QKeySequence("Ctrl+M")}, &CellWindow::modifyTemplate);
    actDeleteTemplate = action(templates, "actDeleteTemplate", "&Delete Templates...",
                               {QKeySequence("Ctrl+Shift+T")}, &CellWindow::deleteTemplate);

    auto* jobs = menuBar()->addMenu("&Jobs");
    jobs->setObjectName("mnuJobs");
    actNewJob =
        action(jobs, "actNewJob", "&New Job...", {QKeySequence("Ctrl+N")}, &CellWindow::newJob);
    actOpenJob =
        action(jobs, "actOpenJob", "&Open Job...", {QKeySequence("Ctrl+O")}, &CellWindow::openJob);
    actDeleteJob =
        action(jobs, "actDeleteJob", "&Delete Job", {QKeySequence::Delete}, &CellWindow::deleteJob);
    actCopyFiles = action(jobs, "actCopyFiles", "&Copy Files...", {QKeySequence("Ctrl+Shift+C")},
                          &CellWindow::copyFiles);
    jobs->addSeparator();
    actRefresh =
        action(jobs, "actRefresh", "&Refresh", {QKeySequence(Qt::Key_F5)}, &CellWindow::refresh);
}

void CellWindow::updateActions() {
    const bool open = exports_.cellOpen();
    const bool hasTemplate = open && selectedTemplateId() != 0;
    const bool hasJob = open && selectedJob() != nullptr;
    for (QAction* a : {actNewTemplate, actDeleteTemplate, actNewJob, actCopyFiles, actRefresh})
        a->setEnabled(open);
    actModifyTemplate->setEnabled(hasTemplate);
    actOpenJob->setEnabled(hasJob);
    actDeleteJob->setEnabled(hasJob);
    btnNewTemplate->setEnabled(open);
    btnDeleteTemplate->setEnabled(open);
    btnModifyTemplate->setEnabled(hasTemplate);
    btnNewJob->setEnabled(open);
    btnCopyFiles->setEnabled(open);
    btnOpenJob->setEnabled(hasJob);
    btnDeleteJob->setEnabled(hasJob);
}

void CellWindow::guarded(const QString& what, const std::function<void()>& action) {
    try {
        action();
    } catch (const std::exception& e) {
        const QString text = what + ": " + QString::fromStdString(e.what());
        statusBar()->showMessage(text, 10000);
        ui_.message(common::MessageKind::Error, text.toStdString(), common::MessageButtons::Ok,
                    "quorvel");
    }
    updateActions();
}

bool CellWindow::openCell(const QString& dir) {
    const QString previous = cellDir_;
    hostStore_.reset();
    jobsModel_.setJobs({});
    lstTemplates->clear();
    bool opened = false;
    guarded("Cannot open the cell in " + dir, [&] {
        const dialogs::WaitCursor wait;
        exports_.openCell(dir.toStdString(), ui_);
        cellDir_ = dir;
        hostStore_ = std::make_unique<CellHostStore>(dir.toStdString());
        loadAll();
        opened = true;
    });
    if (!opened && !previous.isEmpty() && previous != dir) {
        // Back to the cell that was open: the window stays as it was.
        guarded("Cannot open the cell in " + previous, [&] {
            exports_.openCell(previous.toStdString(), ui_);
            cellDir_ = previous;
            hostStore_ = std::make_unique<CellHostStore>(previous.toStdString());
            loadAll();
        });
    } else if (!opened) {
        exports_.closeCell();
        cellDir_.clear();
    }
    lblCell->setText(cellDir_.isEmpty() ? QString("No cell open") : "Cell: " + cellDir_);
    setWindowTitle(cellDir_.isEmpty() ? QString("quorvel - cell")
                                      : "quorvel - " + QDir(cellDir_).dirName());
    updateActions();
    return opened;
}

void CellWindow::openCellAction() {
    const QString dir = chooseFolder("Open Cell", cellDir_);
    if (!dir.isEmpty())
        openCell(dir);
}

void CellWindow::newDemoCell() {
    const QString dir = chooseFolder("New Demo Cell", QDir::homePath());
    if (dir.isEmpty())
        return;
    bool made = false;
    guarded("Cannot create a cell in " + dir, [&] {
        // A cell gets a folder of its own: other files would be mistaken for the cell's.
        if (!QDir(dir).isEmpty())
            throw std::runtime_error("the folder is not empty; choose or make an empty folder");
        store::createCell(dir.toStdString(), {});
        made = true;
    });
    if (made)
        openCell(dir);
}

void CellWindow::refresh() {
    if (!exports_.cellOpen())
        return;
    guarded("Cannot read the cell", [this] { loadAll(); });
}

void CellWindow::loadAll() {
    const dialogs::WaitCursor wait;
    const QString fixture = cmbFixture->currentData().toString();
    {
        const QSignalBlocker blocker(cmbFixture);
        cmbFixture->clear();
        cmbFixture->addItem("All fixtures", QString());
        for (const auto& entry : ListCellFixtures()) {
            cmbFixture->addItem(QString::fromStdString(entry.partNumber),
                                QString::fromStdString(entry.partNumber));
            cmbFixture->setItemData(cmbFixture->count() - 1,
                                    QString::fromStdString(entry.description), Qt::ToolTipRole);
        }
        cmbFixture->setCurrentIndex(std::max(0, cmbFixture->findData(fixture)));
    }
    loadTemplates();
    loadJobs();
}

void CellWindow::loadTemplates() {
    const int selected = selectedTemplateId();
    const QString fixture = cmbFixture->currentData().toString();
    const QSignalBlocker blocker(lstTemplates);
    lstTemplates->clear();
    for (const auto& entry : exports_.templateNames(fixture.toStdString(), !fixture.isEmpty())) {
        if (entry.id == 0)
            continue; // the "(New)" entry: New Template stands for it
        auto* item = new QListWidgetItem(QString::fromStdString(entry.name), lstTemplates);
        item->setData(Qt::UserRole, entry.id);
        item->setToolTip(QString("Template %1").arg(entry.id));
        if (entry.id == selected)
            lstTemplates->setCurrentItem(item);
    }
    if (!lstTemplates->currentItem() && lstTemplates->count() > 0)
        lstTemplates->setCurrentRow(0);
    updateActions();
}

void CellWindow::loadJobs() {
    const CellJob* current = selectedJob();
    const int pallet = current ? current->pallet : 0;
    const int job = current ? current->job : 0;
    jobsModel_.setJobs(ListCellJobs());
    tblJobs->resizeColumnsToContents();
    tblJobs->horizontalHeader()->setSectionResizeMode(CellJobsModel::Template,
                                                      QHeaderView::Stretch);
    if (jobsModel_.rowOf(pallet, job) >= 0)
        selectJob(pallet, job);
    else if (jobsModel_.rowCount() > 0)
        tblJobs->selectRow(0);
    showProgram();
    updateActions();
}

int CellWindow::selectedTemplateId() const {
    const auto* item = lstTemplates->currentItem();
    return item ? item->data(Qt::UserRole).toInt() : 0;
}

const CellJob* CellWindow::selectedJob() const {
    const QModelIndex index = tblJobs->selectionModel()->currentIndex();
    return index.isValid() ? jobsModel_.job(index.row()) : nullptr;
}

void CellWindow::selectJob(int pallet, int job) {
    const int row = jobsModel_.rowOf(pallet, job);
    if (row >= 0)
        tblJobs->selectRow(row);
}

} // namespace app
