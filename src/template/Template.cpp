#include "template/Template.h"

#include "common/Services.h"
#include "store/DataMod.h"
#include "template/CopyTemplate.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFrame>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHideEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QShowEvent>
#include <QTimer>
#include <QVBoxLayout>

#include <stdexcept>

namespace {

std::unique_ptr<TdlgTemplate>& instance() {
    static std::unique_ptr<TdlgTemplate> form;
    return form;
}

bool haveApplication() { return qobject_cast<QApplication*>(QCoreApplication::instance()); }

// The form's image list: nothing for 0 and 1, then plain, preset and locked commands.
std::vector<QIcon> makeImages() {
    std::vector<QIcon> icons(2);
    for (QColor color : {QColor(160, 160, 160), QColor(40, 150, 60), QColor(190, 50, 40)}) {
        QPixmap pixmap(12, 12);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setBrush(color);
        painter.setPen(color.darker());
        painter.drawRect(1, 1, 9, 9);
        icons.emplace_back(pixmap);
    }
    return icons;
}

QPushButton* button(const char* name, const char* caption, const char* hint, QWidget* parent) {
    auto* b = new QPushButton(QString::fromUtf8(caption), parent);
    b->setObjectName(name);
    b->setToolTip(QString::fromUtf8(hint));
    b->setAutoDefault(false);
    return b;
}

} // namespace

TdlgTemplate::TdlgTemplate(QWidget* parent) : QDialog(parent) {
    setObjectName("dlgTemplate");
    setWindowTitle("Fixture Template Definition");
    buildControls();
    connectHandlers();
    CreateCopyTemplateDialog = NewCopyTemplateDialog;
    // FormCreate: the start values stand in the member initialisers; the lists start empty.
}

TdlgTemplate::~TdlgTemplate() = default;

void TdlgTemplate::buildControls() {
    dbeTemplateName = new dialogs::TDBEdit(this);
    dbeTemplateName->setObjectName("dbeTemplateName");
    // Room for a readable name even at the dialog's smallest size.
    dbeTemplateName->setMinimumWidth(dbeTemplateName->fontMetrics().averageCharWidth() * 24);
    btnCopyTemplate =
        button("btnCopyTemplate", "Copy an Existing Template", "Copy an Existing Template", this);
    txtPieceCount = new QLabel(this);
    txtPieceCount->setObjectName("txtPieceCount");
    pnlMachineType = new QLabel("FANUC", this);
    pnlMachineType->setObjectName("pnlMachineType");
    pnlMachineType->setFrameStyle(QFrame::Panel | QFrame::Sunken);
    tvwTemplate = new tree::TTreeView(this);
    tvwTemplate->setObjectName("tvwTemplate");
    tree::SetImageList(tvwTemplate, makeImages());
    dbgCommands = new TDBGrid(this);
    dbgCommands->setObjectName("dbgCommands");
    dbgCommands->setColumns({schema::Code, schema::Short_Desc}, {"Code", "Description"});
    dbmDesc = new dialogs::TDBMemo(this);
    dbmDesc->setObjectName("dbmDesc");
    dbmDesc->setReadOnly(true);
    btnAdd = button("btnAdd", "Add", "Add Command", this);
    btnAdd->setDefault(true);
    btnUp = button("btnUp", "Move Up", "Move Up", this);
    btnDown = button("btnDown", "Move Down", "Move Down", this);
    btnExpand = button("btnExpand", "Expand All", "Expand All", this);
    btnCollapse = button("btnCollapse", "Collapse All", "Collapse All", this);
    btnCut = button("btnCut", "Cut", "Cut", this);
    btnCopy = button("btnCopy", "Copy", "Copy", this);
    btnPaste = button("btnPaste", "Paste", "Paste", this);
    btnDelete = button("btnDelete", "Delete", "Delete", this);
    btnOK = button("btnOK", "OK", "Accept Changes", this);
    btnOK->setEnabled(false);
    btnCancel = button("btnCancel", "Cancel", "Cancel Changes", this);
    pnlPlugins = new QFrame(this);
    pnlPlugins->setObjectName("pnlPlugins");
    auto* pluginLayout = new QHBoxLayout(pnlPlugins); // plug-ins may add their controls to it
    pluginLayout->setContentsMargins(0, 0, 0, 0);
    Timer = new QTimer(this);
    Timer->setObjectName("Timer");
    Timer->setInterval(1500);

    auto* head = new QHBoxLayout;
    head->addWidget(new QLabel("Template Name:", this));
    head->addWidget(dbeTemplateName, 1);
    head->addWidget(btnCopyTemplate);
    head->addWidget(new QLabel("Workpieces:", this));
    head->addWidget(txtPieceCount);
    head->addWidget(new QLabel("Machine Type:", this));
    head->addWidget(pnlMachineType);

    auto* treeBox = new QGroupBox("Master Program Template", this);
    auto* treeLayout = new QVBoxLayout(treeBox);
    treeLayout->addWidget(tvwTemplate);

    auto* buttons = new QVBoxLayout;
    for (QPushButton* b :
         {btnAdd, btnUp, btnDown, btnExpand, btnCollapse, btnCut, btnCopy, btnPaste, btnDelete})
        buttons->addWidget(b);
    buttons->addStretch(1);

    auto* commandsBox = new QGroupBox("Available Commands", this);
    auto* commandsLayout = new QVBoxLayout(commandsBox);
    commandsLayout->addWidget(dbgCommands, 3);
    commandsLayout->addWidget(dbmDesc, 1);

    auto* middle = new QHBoxLayout;
    middle->addWidget(treeBox, 1);
    middle->addLayout(buttons);
    middle->addWidget(commandsBox, 1);

    auto* foot = new QHBoxLayout;
    foot->addWidget(pnlPlugins, 1);
    foot->addWidget(btnOK);
    foot->addWidget(btnCancel);

    auto* main = new QVBoxLayout(this);
    main->addLayout(head);
    main->addLayout(middle, 1);
    main->addLayout(foot);
    resize(820, 560);
}

void TdlgTemplate::connectHandlers() {
    using Self = TdlgTemplate;
    auto on = [this](QPushButton* b, void (Self::*handler)()) {
        connect(b, &QPushButton::clicked, this,
                [this, handler] { guarded([&] { (this->*handler)(); }); });
    };
    on(btnAdd, &Self::btnAddClick);
    on(btnUp, &Self::btnUpClick);
    connect(btnDown, &QPushButton::clicked, this,
            [this] { guarded([&] { btnDownClick(btnDown); }); });
    on(btnExpand, &Self::btnExpandClick);
    on(btnCollapse, &Self::btnCollapseClick);
    on(btnCut, &Self::btnCutClick);
    on(btnCopy, &Self::btnCopyClick);
    on(btnPaste, &Self::btnPasteClick);
    on(btnDelete, &Self::btnDeleteClick);
    on(btnCopyTemplate, &Self::btnCopyTemplateClick);
    connect(btnOK, &QPushButton::clicked, this,
            [this] { modalButtonClick(common::ModalResult::Ok, &Self::btnOKClick); });
    connect(btnCancel, &QPushButton::clicked, this,
            [this] { modalButtonClick(common::ModalResult::Cancel, &Self::btnCancelClick); });
    connect(tvwTemplate, &QTreeWidget::currentItemChanged, this,
            [this] { guarded([&] { tvwTemplateChange(); }); });
    connect(dbeTemplateName, &QLineEdit::textChanged, this,
            [this] { guarded([&] { dbeTemplateNameChange(); }); });
    connect(dbgCommands, &QTableWidget::cellDoubleClicked, this,
            [this] { guarded([&] { dbgCommandsDblClick(); }); });
    dbgCommands->keyPress = [this](QChar key) { guarded([&] { dbgCommandsKeyPress(key); }); };
    connect(Timer, &QTimer::timeout, this, [this] { guarded([&] { TimerTimer(); }); });
    tvwTemplate->dragOver = [this](QObject* source, const QPoint& pos) {
        bool accept = false;
        guarded([&] { accept = tvwTemplateDragOver(source, pos); });
        return accept;
    };
    tvwTemplate->dragDrop = [this](QObject* source, const QPoint& pos) {
        guarded([&] { tvwTemplateDragDrop(tvwTemplate, source, pos); });
    };
}

template <typename F> void TdlgTemplate::guarded(F&& handler) {
    try {
        handler();
    } catch (const std::exception& e) {
        common::ui().message(common::MessageKind::Error, e.what());
    }
}

void TdlgTemplate::modalButtonClick(common::ModalResult result, void (TdlgTemplate::*handler)()) {
    FModalResult = result;
    guarded([&] { (this->*handler)(); });
    if (FModalResult != common::ModalResult::None)
        closeModal();
}

void TdlgTemplate::closeModal() {
    bool canClose = false;
    guarded([&] { canClose = FormCloseQuery(); });
    if (!canClose) {
        FModalResult = common::ModalResult::None;
        return;
    }
    FClosing = true;
    done(static_cast<int>(FModalResult));
    FClosing = false;
}

void TdlgTemplate::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    FModalResult = common::ModalResult::None;
    // A window restored by the window system is no new opening.
    if (!event->spontaneous())
        guarded([&] { FormShow(); });
    guarded([&] { FormActivate(); });
}

// Every way an opening ends (OK, Cancel, the close box, Esc) hides the form through done().
void TdlgTemplate::hideEvent(QHideEvent* event) {
    QDialog::hideEvent(event);
    if (!event->spontaneous())
        guarded([&] { FormClose(); });
}

void TdlgTemplate::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow() && isVisible())
        guarded([&] { FormActivate(); });
}

void TdlgTemplate::closeEvent(QCloseEvent* event) {
    // The close box: the result is Cancel whatever the answer to the save question.
    event->ignore();
    if (FClosing)
        return;
    FModalResult = common::ModalResult::Cancel;
    closeModal();
}

// Esc is the cancel key: it presses btnCancel.
void TdlgTemplate::reject() { btnCancel->click(); }

void TdlgTemplate::FormActivate() {
    if (DM().tableTemplateName.fieldByName(schema::Name).asString().empty())
        dbeTemplateName->setFocus();
    else
        tvwTemplate->setFocus();
    if (!dbgCommands->bound())
        dbgCommands->setDataSource(&DM().sourceCommands);
    if (!dbmDesc->bound()) {
        dbmDesc->setDataSource(&DM().sourceCommands);
        dbmDesc->setDataField(schema::Long_Desc);
    }
    if (!dbeTemplateName->bound()) {
        dbeTemplateName->setDataSource(&DM().sourceTemplateName);
        dbeTemplateName->setDataField(schema::Name);
    }
    // Without a row there is nothing to edit; the activation after an error box would fail again.
    auto& names = DM().tableTemplateName;
    if (names.hasRow() && names.state() != store::DatasetState::Edit)
        names.edit();
    UpdateButtons();
}

QTreeWidgetItem* TdlgTemplate::selectedNode() const { return tree::Selected(tvwTemplate); }

QTreeWidgetItem* TdlgTemplate::requireSelected() const {
    QTreeWidgetItem* node = selectedNode();
    if (!node)
        throw std::runtime_error("No node of the template is selected");
    return node;
}

void TdlgTemplate::UpdateButtons() {
    if (QTreeWidgetItem* node = selectedNode()) {
        const int level = tree::NodeLevel(node);
        const bool command = level == 1;
        QTreeWidgetItem* section = command ? node->parent() : nullptr;
        btnAdd->setEnabled(level < 2);
        btnUp->setEnabled(command && (tree::PrevSibling(node) || tree::PrevSibling(section)));
        btnDown->setEnabled(command && (tree::NextSibling(node) || tree::NextSibling(section)));
        btnCut->setEnabled(command);
        btnDelete->setEnabled(command);
        btnCopy->setEnabled(level <= 1);
        btnPaste->setEnabled((level <= 1 && FCopiedLevel == 1) ||
                             (level == 0 && FCopiedLevel == 0));
    } else {
        for (QPushButton* b : {btnUp, btnDown, btnCut, btnCopy, btnDelete, btnPaste})
            b->setEnabled(false);
    }
    btnOK->setEnabled(!dbeTemplateName->text().isEmpty());
}

void TdlgTemplate::dbeTemplateNameChange() { UpdateButtons(); }

// ---- The one instance ----

void SelectTemplateRows(std::int32_t templateId) {
    auto& dm = DM();
    dm.tableTemplateName.findKey({templateId});
    dm.tableTemplateData.setFiltered(false);
    dm.tableTemplateData.setFilter("Template_ID = " + std::to_string(templateId));
    dm.tableTemplateData.setFiltered(true);
}

bool CreateDlgTemplate() {
    if (DMExists()) {
        DM().SelectTemplate = [] {
            const auto id = DM().tableTemplateName.fieldByName(schema::Template_ID).asInteger();
            if (haveApplication())
                dlgTemplate().SelectTemplate(id);
            else
                SelectTemplateRows(id);
        };
    }
    if (!instance() && haveApplication())
        instance() = std::make_unique<TdlgTemplate>();
    return instance() != nullptr;
}

void FreeDlgTemplate() {
    // Widgets cannot be destroyed once the application object is gone (a host that ended its
    // QApplication before unloading the library): the form is then left to the process's end.
    if (!QCoreApplication::instance())
        (void)instance().release();
    instance().reset();
    if (DMExists())
        DM().SelectTemplate = nullptr;
}

bool DlgTemplateExists() { return instance() != nullptr; }

TdlgTemplate& dlgTemplate() {
    if (!instance()) {
        if (!haveApplication())
            throw std::logic_error("The template editor needs a running QApplication");
        instance() = std::make_unique<TdlgTemplate>();
    }
    return *instance();
}
