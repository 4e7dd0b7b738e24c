#pragma once
// The cell window: a small desktop host of the module. Templates per fixture, the cell's jobs,
// the selected job's master program and the last report "GetJobInfo" received. Everything it
// changes goes through the module's exports; the host's own job list and queue live in ZEL.db.
#include "CellJobsModel.h"
#include "ModuleExports.h"

#include "common/HostApplication.h"

#include <QMainWindow>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

class QAction;
class QCheckBox;
class QComboBox;
class QLabel;
class QListWidget;
class QPlainTextEdit;
class QPushButton;
class QSettings;
class QSpinBox;
class QTableView;

namespace common {
class Ui;
}

namespace app {

class CellHostStore;

class CellWindow : public QMainWindow {
    Q_OBJECT
public:
    // `exports` and `ui` outlive the window; messages of the window and the module go to `ui`.
    CellWindow(ModuleExports& exports, common::Ui& ui, QWidget* parent = nullptr);
    ~CellWindow() override;

    // Opens a cell. On failure the message is shown, the cell open before (if any) stays, and
    // false is returned.
    bool openCell(const QString& dir);
    QString cellDir() const { return cellDir_; }

    // Where the window keeps what outlives it (the rows each reported program was written from);
    // null keeps them for the window's life only.
    QSettings* settings = nullptr;

    // Chooses a folder; an empty text when cancelled. The platform's folder dialog by default.
    std::function<QString(const QString& title, const QString& start)> chooseFolder;

    // Actions, in the order of the menus.
    void openCellAction();
    void newDemoCell();
    void newTemplate();
    void modifyTemplate();
    void deleteTemplate();
    void newJob();
    void openJob();
    void deleteJob();
    void copyFiles();
    void refresh();

    // The job selected in the table, or null.
    const CellJob* selectedJob() const;
    // Selects a pallet's job in the table (when listed).
    void selectJob(int pallet, int job);

    QComboBox* cmbFixture;
    QSpinBox* spnWorkpieces;
    QListWidget* lstTemplates;
    QPushButton* btnNewTemplate;
    QPushButton* btnModifyTemplate;
    QPushButton* btnDeleteTemplate;
    QTableView* tblJobs;
    QPushButton* btnNewJob;
    QPushButton* btnOpenJob;
    QPushButton* btnDeleteJob;
    QPushButton* btnCopyFiles;
    QCheckBox* chkUpdateNotices;
    QLabel* lblProgram;
    QLabel* lblProgramNote;
    QPlainTextEdit* txtProgram;
    QLabel* lblReport;
    QPlainTextEdit* txtReport;
    QLabel* lblCell;

    QAction* actOpenCell;
    QAction* actNewDemoCell;
    QAction* actQuit;
    QAction* actNewTemplate;
    QAction* actModifyTemplate;
    QAction* actDeleteTemplate;
    QAction* actNewJob;
    QAction* actOpenJob;
    QAction* actDeleteJob;
    QAction* actCopyFiles;
    QAction* actRefresh;

private:
    void buildControls();
    void buildMenus();
    void updateActions();
    // Runs an action; an error is shown in words and the window stays as it is.
    void guarded(const QString& what, const std::function<void()>& action);
    // Fixtures, templates and jobs from the open cell; raises on failure.
    void loadAll();
    void loadTemplates();
    void loadJobs();
    void showProgram();
    void showReport(const TAutomationInfo& info);
    int selectedTemplateId() const;
    // Runs the job wizard on a pallet's job with a template, as a host does.
    void runWizard(int pallet, int job, int templateId);
    // Asks for pallet, job and template; with a job given only the template is asked.
    void askNewJob(int fixedPallet, int fixedJob);

    ModuleExports& exports_;
    common::Ui& ui_;
    QString cellDir_;
    CellJobsModel jobsModel_;
    std::unique_ptr<CellHostStore> hostStore_;
    std::unique_ptr<common::MessageGate> gate_;
    // The rows of each job as they were when the window received the report of its program; kept
    // in `settings` when given, so that they outlive the window.
    struct WrittenRows {
        std::string program;
        std::size_t digest = 0;
    };
    std::optional<WrittenRows> writtenRows(int pallet, int job) const;
    void rememberWrittenRows(int pallet, int job, const WrittenRows& rows);
    QString writtenKey(int pallet, int job) const;
    std::map<std::pair<int, int>, WrittenRows> written_;
};

// Windows-1252 bytes as text.
QString fromWindows1252(const QByteArray& bytes);

} // namespace app
