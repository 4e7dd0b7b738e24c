// The wizard's controls, built by tab and panel at their design places and sizes, and the signals
// that reach the handlers. FormResize moves the right-hand column and the top buttons with the
// form; everything else keeps its design place.
#include "job/Job.h"

#include "job/StatusPanel.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QStatusBar>
#include <QStyle>
#include <QTabWidget>

namespace {

// Design size of the form's client area.
constexpr int DesignWidth = 800;
constexpr int DesignHeight = 580;
// Width of the right-hand column (pageValues, grpSyntax, grpResult).
constexpr int ValuesWidth = 340;

template <typename W> W* named(W* widget, const char* name) {
    widget->setObjectName(name);
    return widget;
}

QLabel* label(QWidget* parent, const char* name, const QString& text, int x, int y, int w = 0) {
    auto* l = named(new QLabel(text, parent), name);
    l->move(x, y);
    if (w > 0)
        l->resize(w, l->sizeHint().height());
    else
        l->adjustSize();
    return l;
}

QPushButton* button(QWidget* parent, const char* name, const QString& caption, const QRect& r,
                    const QString& hint = {}) {
    auto* b = named(new QPushButton(caption, parent), name);
    b->setGeometry(r);
    b->setAutoDefault(false);
    if (!hint.isEmpty())
        b->setToolTip(hint);
    return b;
}

// A round status mark of the tree's image lists.
QIcon markIcon(const QColor& color, bool ring = false) {
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(color.darker(140), 1.5));
    p.setBrush(ring ? QBrush(Qt::white) : QBrush(color));
    p.drawEllipse(QRectF(2.5, 2.5, 11, 11));
    return QIcon(pixmap);
}

// A check box picture of the tree's state images.
QIcon checkIcon(bool checked) {
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setPen(QPen(QColor(90, 90, 90), 1));
    p.setBrush(Qt::white);
    p.drawRect(2, 2, 11, 11);
    if (checked) {
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(QPen(QColor(30, 110, 200), 2));
        p.drawPolyline(QPolygonF({QPointF(4.5, 8), QPointF(7, 10.5), QPointF(11.5, 4.5)}));
    }
    return QIcon(pixmap);
}

} // namespace

TdlgJob::TdlgJob(QWidget* parent) : QDialog(parent) {
    setObjectName("dlgJob");
    setWindowTitle("Master Program Wizard");
    resize(DesignWidth, DesignHeight);
    setMinimumSize(640, 480);
    buildTopPanel();
    buildProgramTab();
    buildOptionsTab();
    buildTreeTab();
    buildScriptTab();
    buildSyntaxGroup();
    buildValuePages();
    buildResultAndStatus();
    buildMenus();
    connectHandlers();
    FormCreate();
}

TdlgJob::~TdlgJob() { FormDestroy(); }

void TdlgJob::buildTopPanel() {
    pnlTop = named(new QWidget(this), "pnlTop");
    pnlTop->setGeometry(0, 0, DesignWidth, 38);
    txtTemplateName = label(pnlTop, "txtTemplateName", "Template Name:", 8, 11);
    dbtTemplateName = named(new dialogs::TDBText(pnlTop), "dbtTemplateName");
    dbtTemplateName->setGeometry(txtTemplateName->geometry().right() + 8, 11, 300, 17);
    QFont bold = dbtTemplateName->font();
    bold.setBold(true);
    dbtTemplateName->setFont(bold);
    btnExit = button(pnlTop, "btnExit", "Exit", QRect(0, 5, 76, 28), "Close the wizard");
    btnEdit = button(pnlTop, "btnEdit", "Edit", QRect(0, 5, 76, 28), "Open the master program");
    btnEdit->setEnabled(false);
    btnWrite = button(pnlTop, "btnWrite", "Write", QRect(0, 5, 76, 28), "Write the master program");
    btnFind = button(pnlTop, "btnFind", "Find", QRect(0, 5, 76, 28), "Search for files");

    txtTemplate = label(this, "txtTemplate", "Fixture Template", 4, 42);
    txtValues = label(this, "txtValues", "Values", 0, 42);
    pageScript = named(new QTabWidget(this), "pageScript");
    pageScript->setGeometry(4, 60, DesignWidth - ValuesWidth - 9, 400);
}

void TdlgJob::buildProgramTab() {
    tabProgram = named(new QWidget, "tabProgram");
    pageScript->addTab(tabProgram, "Program");
    label(tabProgram, "txtProgramNumber", "Program Number:", 12, 14);
    spnProgramNumber = named(new QSpinBox(tabProgram), "spnProgramNumber");
    spnProgramNumber->setGeometry(12, 34, 90, 26);
    spnProgramNumber->setRange(0, 7999); // at most four digits
    spnProgramNumber->setValue(1);
    QFont bold = spnProgramNumber->font();
    bold.setBold(true);
    spnProgramNumber->setFont(bold);
    btnProgramNumber = button(tabProgram, "btnProgramNumber", "Continue", QRect(112, 33, 90, 28),
                              "Accept program number and continue");
    label(tabProgram, "txtPrograms", "Programs on Machine:", 12, 74);
    cmbMachines = named(new QComboBox(tabProgram), "cmbMachines");
    cmbMachines->setGeometry(12, 94, 300, 26);
    lstPrograms = named(new QListWidget(tabProgram), "lstPrograms");
    lstPrograms->setGeometry(12, 126, 300, 230);
    // Program numbers and comments stand in columns.
    lstPrograms->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
}

void TdlgJob::buildOptionsTab() {
    tabOptions = named(new QWidget, "tabOptions");
    pageScript->addTab(tabOptions, "Options");
    chkLineNumbers = named(new QCheckBox("Implement Line Numbers", tabOptions), "chkLineNumbers");
    chkLineNumbers->setGeometry(12, 14, 220, 22);
    chkLineNumbers->setChecked(true);
    label(tabOptions, "txtIncrement", "Increment:", 12, 48);
    spinIncrement = named(new QSpinBox(tabOptions), "spinIncrement");
    spinIncrement->setGeometry(90, 44, 70, 26);
    spinIncrement->setRange(1, 500); // at most three digits
    spinIncrement->setValue(1);
    label(tabOptions, "txtSample", "Sample", 250, 14);
    lstSample = named(new QListWidget(tabOptions), "lstSample");
    lstSample->setGeometry(250, 34, 160, 110);
    lstSample->addItems({"%", "O1234"});
    btnLineNumbers = button(tabOptions, "btnLineNumbers", "Continue", QRect(12, 116, 90, 28),
                            "Accept selections and continue");

    grpAuxLoad = named(new QGroupBox("Auxiliary Loaded Basket", tabOptions), "grpAuxLoad");
    grpAuxLoad->setGeometry(12, 160, 300, 90);
    label(grpAuxLoad, "txtBasketNumber", "Basket Number:", 10, 28);
    cmbAuxPallet = named(new QComboBox(grpAuxLoad), "cmbAuxPallet");
    cmbAuxPallet->setGeometry(116, 24, 80, 26);
    editBasketStatus = named(new QLineEdit(grpAuxLoad), "editBasketStatus");
    editBasketStatus->setGeometry(206, 24, 80, 26);
    editBasketStatus->setReadOnly(true);
    grpAuxLoad->setVisible(false);
}

void TdlgJob::buildTreeTab() {
    tabTree = named(new QWidget, "tabTree");
    pageScript->addTab(tabTree, "Tree View");
    tvwTemplate = named(new tree::TTreeView(tabTree), "tvwTemplate");
    tvwTemplate->setHeaderHidden(true);
    tvwTemplate->setGeometry(4, 4, 240, 360);
    tvwTemplate->setFocusPolicy(Qt::StrongFocus);
    // Every line is one row of text: the view lays out thousands of lines without measuring each.
    tvwTemplate->setUniformRowHeights(true);
    // Images by Image: 1 open, 2 finished, 3 skipped.
    tree::SetImageList(tvwTemplate,
                       {QIcon(), markIcon(QColor(230, 160, 30), true),
                        markIcon(QColor(40, 160, 60)), markIcon(QColor(150, 150, 150))});
    // States by State: 1 a sub-item left out of the line, 2 one in use.
    tree::SetStateImageList(tvwTemplate, {QIcon(), checkIcon(false), checkIcon(true)});
    const int x = 250;
    btnExpand = button(tabTree, "btnExpand", "Expand All", QRect(x, 4, 190, 28));
    btnCollapse = button(tabTree, "btnCollapse", "Collapse All", QRect(x, 36, 190, 28));
    btnCopy = button(tabTree, "btnCopy", "Copy", QRect(x, 80, 190, 28));
    btnPaste = button(tabTree, "btnPaste", "Paste", QRect(x, 112, 190, 28));
    btnSkip = button(tabTree, "btnSkip", "Skip This Workpiece", QRect(x, 156, 190, 28));
    btnSkip->setCheckable(true);
    btnSkipDown =
        button(tabTree, "btnSkipDown", "Skip Remaining Workpieces", QRect(x, 188, 190, 28));
    btnUnskip = button(tabTree, "btnUnskip", "Unskip All Workpieces", QRect(x, 220, 190, 28));
    btnUnskip->setCheckable(true);
    btnNext = button(tabTree, "btnNext", "Check Syntax and Advance", QRect(x, 300, 190, 40));
    btnNext->setDefault(true);
    QFont bold = btnNext->font();
    bold.setBold(true);
    btnNext->setFont(bold);
}

void TdlgJob::buildScriptTab() {
    tabScript = named(new QWidget, "tabScript");
    pageScript->addTab(tabScript, "Script View");
    lstScript = named(new QListWidget(tabScript), "lstScript");
    lstScript->setGeometry(0, 0, 300, 300);
    lstScript->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
}

void TdlgJob::buildSyntaxGroup() {
    const int left = DesignWidth - (ValuesWidth + 2);
    grpSyntax = named(new QGroupBox("Item Syntax Options", this), "grpSyntax");
    grpSyntax->setGeometry(left, 60, ValuesWidth, 150);
    lstSyntax = named(new QListWidget(grpSyntax), "lstSyntax");
    lstSyntax->setGeometry(26, 22, ValuesWidth - 34, 120);
    lstSyntax->setUniformItemSizes(true);
    lstSyntax->setStyleSheet("QListWidget::item { height: 18px; }");
    lstSyntax->setContextMenuPolicy(Qt::CustomContextMenu);
    // A marker beside each of the first five rows.
    for (int i = 0; i < 5; ++i) {
        auto* mark = new QLabel(grpSyntax);
        mark->setObjectName(QString("textDefSyn%1").arg(i));
        mark->setGeometry(8, 24 + i * 18, 16, 16);
        QFont bold = mark->font();
        bold.setBold(true);
        mark->setFont(bold);
        textDefSyn[static_cast<std::size_t>(i)] = mark;
    }
}

void TdlgJob::buildValuePages() {
    const int left = DesignWidth - (ValuesWidth + 2);
    pageValues = named(new QTabWidget(this), "pageValues");
    pageValues->setGeometry(left, 214, ValuesWidth, 262);
    tabValues = named(new QWidget, "tabValues");
    pageValues->addTab(tabValues, "Item Values");
    tabDescription = named(new QWidget, "tabDescription");
    pageValues->addTab(tabDescription, "Description");
    txtSyntaxDesc = named(new QLabel(tabDescription), "txtSyntaxDesc");
    txtSyntaxDesc->setGeometry(8, 8, ValuesWidth - 24, 200);
    txtSyntaxDesc->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    txtSyntaxDesc->setWordWrap(true);

    // The section page: a comment.
    pnlSection = named(new QWidget(tabValues), "pnlSection");
    txtComment = label(pnlSection, "txtComment", "Comment:", 8, 8);
    dbmComment = named(new dialogs::TDBMemo(pnlSection), "dbmComment");
    dbmComment->setGeometry(8, 28, ValuesWidth - 28, 150);
    dbmComment->setUpperCase(true);

    // The value page: six labelled boxes with their markers, the option and the browse button.
    pnlEditBoxes = named(new QWidget(tabValues), "pnlEditBoxes");
    QLabel** labels[] = {&txtValue1, &txtValue2, &txtValue3, &txtValue4, &txtValue5, &txtValue6};
    dialogs::TDBEdit** boxes[] = {&dbeValue1, &dbeValue2, &dbeValue3,
                                  &dbeValue4, &dbeValue5, &dbeValue6};
    QLabel** marks[] = {&textDefault1, &textDefault2, &textDefault3,
                        &textDefault4, &textDefault5, &textDefault6};
    for (int n = 1; n <= 6; ++n) {
        const int top = 6 + (n - 1) * 36;
        auto* text = new QLabel(pnlEditBoxes);
        text->setObjectName(QString("txtValue%1").arg(n));
        text->setGeometry(8, top, 280, 14);
        auto* box = new dialogs::TDBEdit(pnlEditBoxes);
        box->setObjectName(QString("dbeValue%1").arg(n));
        box->setGeometry(8, top + 14, 243, 20);
        box->setContextMenuPolicy(Qt::CustomContextMenu);
        SetTag(box, n);
        auto* mark = new QLabel(pnlEditBoxes);
        mark->setObjectName(QString("textDefault%1").arg(n));
        mark->setGeometry(290, top + 16, 16, 16);
        QFont bold = mark->font();
        bold.setBold(true);
        mark->setFont(bold);
        *labels[n - 1] = text;
        *boxes[n - 1] = box;
        *marks[n - 1] = mark;
    }
    chkOption = named(new QCheckBox("Include File", pnlEditBoxes), "chkOption");
    chkOption->setGeometry(8, 0, 280, 20);
    chkOption->setContextMenuPolicy(Qt::CustomContextMenu);
    chkOption->setVisible(false);
    btnFilename = button(pnlEditBoxes, "btnFilename", "...", QRect(255, 0, 28, 20), "Browse");
    btnFilename->setVisible(false);

    // The selection page: up to six radio buttons, each with a label that wraps its description.
    pnlRadioButtons = named(new QWidget(tabValues), "pnlRadioButtons");
    QRadioButton** radios[] = {&radItem1, &radItem2, &radItem3, &radItem4, &radItem5, &radItem6};
    QLabel** items[] = {&txtItem1, &txtItem2, &txtItem3, &txtItem4, &txtItem5, &txtItem6};
    for (int n = 1; n <= 6; ++n) {
        const int top = 8 + (n - 1) * 34;
        auto* radio = new QRadioButton(pnlRadioButtons);
        radio->setObjectName(QString("radItem%1").arg(n));
        radio->setGeometry(8, top, 20, 20);
        SetTag(radio, n);
        auto* text = new QLabel(pnlRadioButtons);
        text->setObjectName(QString("txtItem%1").arg(n));
        text->setGeometry(30, top + 2, ValuesWidth - 52, 16);
        text->setBuddy(radio);
        text->setAlignment(Qt::AlignLeft | Qt::AlignTop);
        SetTag(text, n);
        *radios[n - 1] = radio;
        *items[n - 1] = text;
    }
}

void TdlgJob::buildResultAndStatus() {
    const int left = DesignWidth - (ValuesWidth + 2);
    grpResult = named(new QGroupBox("Composed Line Item", this), "grpResult");
    grpResult->setGeometry(left, 480, ValuesWidth, 70);
    dbtScriptLine = named(new dialogs::TDBText(grpResult), "dbtScriptLine");
    dbtScriptLine->setGeometry(8, 22, ValuesWidth - 16, 40);
    dbtScriptLine->setWordWrap(true);
    dbtScriptLine->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    dbtScriptLine->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));

    StatusBar = named(new QStatusBar(this), "StatusBar");
    StatusBar->setGeometry(0, DesignHeight - 24, DesignWidth, 24);
    const int widths[] = {160, 140};
    for (int i = 0; i < 2; ++i) {
        auto* panel = new QLabel(StatusBar);
        panel->setObjectName(QString("StatusPanel%1").arg(i));
        panel->setFixedWidth(widths[i]);
        panel->setFrameStyle(QFrame::Panel | QFrame::Sunken);
        StatusBar->addWidget(panel);
        StatusPanels[static_cast<std::size_t>(i)] = panel;
    }
    auto* drawn = new job::StatusPanel(StatusBar);
    drawn->setObjectName("StatusDrawPanel");
    drawn->setMinimumWidth(50);
    drawn->text = [this] { return FStatusMessage; };
    drawn->progress = [this] { return FProgress; };
    StatusBar->addWidget(drawn, 1);
    StatusDrawPanel = drawn;
}

void TdlgJob::buildMenus() {
    mnuDefaultValue = named(new QMenu(this), "mnuDefaultValue");
    const auto item = [](QMenu* menu, const char* name, const char* caption) {
        QAction* action = menu->addAction(caption);
        action->setObjectName(name);
        return action;
    };
    itemSetGlobal = item(mnuDefaultValue, "itemSetGlobal", "Set as Global Default");
    itemLoadGlobal = item(mnuDefaultValue, "itemLoadGlobal", "Load Global Default Value");
    mnuDefaultValue->addSeparator();
    itemSetLocal = item(mnuDefaultValue, "itemSetLocal", "Set as Local Default");
    itemLoadLocal = item(mnuDefaultValue, "itemLoadLocal", "Load Local Default Value");
    itemClearLocal = item(mnuDefaultValue, "itemClearLocal", "Clear Local Default Value");
    mnuDefaultValue->addSeparator();
    itemCancelDefault = item(mnuDefaultValue, "itemCancelDefault", "Cancel");

    mnuDefaultSyntax = named(new QMenu(this), "mnuDefaultSyntax");
    itemSetGlobalDefSyn = item(mnuDefaultSyntax, "itemSetGlobalDefSyn", "Set as Global Default");
    mnuDefaultSyntax->addSeparator();
    itemSetLocalDefSyn = item(mnuDefaultSyntax, "itemSetLocalDefSyn", "Set as Local Default");
    itemClearLocalDefSyn =
        item(mnuDefaultSyntax, "itemClearLocalDefSyn", "Clear Local Default Syntax");
    mnuDefaultSyntax->addSeparator();
    itemCancelSyntax = item(mnuDefaultSyntax, "itemCancelSyntax", "Cancel");
}

void TdlgJob::connectHandlers() {
    using Self = TdlgJob;
    const auto click = [this](QPushButton* b, void (Self::*handler)()) {
        connect(b, &QPushButton::clicked, this,
                [this, handler] { Event([&] { (this->*handler)(); }); });
    };
    click(btnProgramNumber, &Self::btnProgramNumberClick);
    click(btnLineNumbers, &Self::btnLineNumbersClick);
    click(btnWrite, &Self::btnWriteClick);
    click(btnEdit, &Self::btnEditClick);
    click(btnFind, &Self::btnFindClick);
    click(btnExit, &Self::btnExitClick);
    // Spin edits and the check box run their handlers also when code sets them.
    connect(spnProgramNumber, &QSpinBox::valueChanged, this,
            [this] { Event([&] { spnProgramNumberChange(); }); });
    connect(spinIncrement, &QSpinBox::textChanged, this,
            [this] { Event([&] { spinIncrementChange(); }); });
    connect(chkLineNumbers, &QCheckBox::toggled, this,
            [this] { Event([&] { chkLineNumbersClick(); }); });
    // Combo boxes: only the operator's choice runs a handler.
    connect(cmbAuxPallet, &QComboBox::activated, this,
            [this] { Event([&] { cmbAuxPalletChange(); }); });
    connect(cmbMachines, &QComboBox::activated, this,
            [this] { Event([&] { cmbMachinesChange(); }); });
    connectNavigationHandlers();
    connectEntryHandlers();
    connectDefaultMenus();
    connectSkipHandlers();
}

void TdlgJob::SetTag(QObject* Control, int Tag) { Control->setProperty("tag", Tag); }

int TdlgJob::Tag(const QObject* Control) { return Control ? Control->property("tag").toInt() : 0; }

namespace {

// The control of a number 1..6 among six.
template <typename T> T* numbered(const std::array<T*, 6>& controls, int number, const char* what) {
    if (number < 1 || number > 6)
        throw JobError(std::string("There is no ") + what + " " + std::to_string(number));
    return controls[static_cast<std::size_t>(number - 1)];
}

} // namespace

dialogs::TDBEdit* TdlgJob::ValueEdit(int Number) const {
    return numbered<dialogs::TDBEdit>(
        {dbeValue1, dbeValue2, dbeValue3, dbeValue4, dbeValue5, dbeValue6}, Number, "value box");
}

QLabel* TdlgJob::ValueLabel(int Number) const {
    return numbered<QLabel>({txtValue1, txtValue2, txtValue3, txtValue4, txtValue5, txtValue6},
                            Number, "value label");
}

QLabel* TdlgJob::DefaultLabel(int Number) const {
    return numbered<QLabel>(
        {textDefault1, textDefault2, textDefault3, textDefault4, textDefault5, textDefault6},
        Number, "default marker");
}

QRadioButton* TdlgJob::RadioItem(int Number) const {
    return numbered<QRadioButton>({radItem1, radItem2, radItem3, radItem4, radItem5, radItem6},
                                  Number, "radio item");
}

QLabel* TdlgJob::ItemLabel(int Number) const {
    return numbered<QLabel>({txtItem1, txtItem2, txtItem3, txtItem4, txtItem5, txtItem6}, Number,
                            "item label");
}
