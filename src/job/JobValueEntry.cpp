// Syntax and value entry: a choice in the syntax list and a keystroke in a value box reach the
// current Jobs row and compose its line anew.
#include "job/Job.h"

#include "common/Format.h"
#include "common/Services.h"
#include "dialogs/EventsGuard.h"
#include "store/DataMod.h"

#include <QCheckBox>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>

#include <filesystem>
#include <functional>
#include <optional>
#include <system_error>

namespace {

// Hands the events of the controls it watches to a function; they go on to the control.
class EventHook : public QObject {
public:
    EventHook(QObject* parent, std::function<void(QObject*, QEvent*)> handler)
        : QObject(parent), handler_(std::move(handler)) {}

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        handler_(watched, event);
        return false;
    }

private:
    std::function<void(QObject*, QEvent*)> handler_;
};

// The character of a key that produces one (text, backspace, Enter, Esc); arrows, Delete and
// modifiers alone produce none.
std::optional<QChar> typedCharacter(const QKeyEvent* event) {
    if (event->key() == Qt::Key_Delete || event->text().isEmpty())
        return std::nullopt;
    return event->text().at(0);
}

// Focus that moves with the window's activation or a popup menu is no entering or leaving of
// the control.
bool windowFocusChange(const QFocusEvent* event) {
    return event->reason() == Qt::ActiveWindowFocusReason ||
           event->reason() == Qt::PopupFocusReason;
}

// The memo's text with CR LF between its lines, as the comment is stored and written.
std::string withCrLf(const QString& text) {
    std::string out;
    const std::string plain = text.toStdString();
    out.reserve(plain.size());
    for (std::size_t i = 0; i < plain.size(); ++i) {
        if (plain[i] == '\n' && (i == 0 || plain[i - 1] != '\r'))
            out += '\r';
        out += plain[i];
    }
    return out;
}

} // namespace

void TdlgJob::lstSyntaxClick(QObject* Sender) {
    if (!FEventsEnabled || FCurrentCode.empty())
        return;
    auto& jobs = DM().tableJobs;
    auto& syntax = DM().tableSyntax;
    const int index = lstSyntax->currentRow();

    jobs.edit();
    jobs.fieldByName(schema::Syntax_Item).setAsInteger(index + 1);
    jobs.post();
    syntax.findNearest({FCurrentCode, index + 1, FParentCode});
    dbeValue1->setUpperCase(FCurrentCode == "COMMENT");
    txtSyntaxDesc->setText(
        QString::fromStdString(syntax.fieldByName(schema::Description).asString()));

    QTreeWidgetItem* node = SelectedNode();
    const bool withSubItems = tree::NodeLevel(node) == 2 || (node && node->childCount() > 0);
    if (!pnlRadioButtons->isHidden()) {
        {
            const dialogs::EventsGuard<bool> quiet(FEventsEnabled, false, true);
            if (index >= 0 && index <= 5)
                RadioItem(index + 1)->setChecked(true);
        }
        if (withSubItems)
            ComposeCommandLine();
        else
            ComposeSyntaxLine(true);
        RefreshScriptListLine();
    } else if (!pnlEditBoxes->isHidden()) {
        {
            const dialogs::EventsGuard<bool> quiet(FEventsEnabled, false, true);
            btnFilename->setVisible(false);
            chkOption->setVisible(false);
            for (int n = 1; n <= 6; ++n)
                DefaultLabel(n)->setText("");
            // Only a real click loads the defaults over what the boxes hold.
            for (int n = 1; n <= 6; ++n)
                FillValueField(ValueLabel(n), ValueEdit(n), Sender != nullptr);
        }
        dbeValueChange(nullptr);
        for (int n = 1; n <= 6; ++n)
            UpdateDefaultMark(ValueEdit(n), DefaultLabel(n));
    }
    NumberSequenceValue();
    ComposeJoinedLine();

    // The line as shown now: the carry-over of the next choice of syntax.
    FSavedValues.clear();
    for (int k = 1; k <= 6; ++k) {
        FSavedValueTypes[static_cast<std::size_t>(k - 1)] =
            syntax.fieldByName(schema::ValueTypeColumn(k)).asInteger();
        FSavedValues.push_back(jobs.fieldByName(schema::ValueColumn(k)).asString());
    }
}

void TdlgJob::dbeValueChange(QObject* Sender) {
    if (!FEventsEnabled)
        return;
    const dialogs::EventsGuard<bool> quiet(FEventsEnabled, false, true);
    auto* box = qobject_cast<QLineEdit*>(Sender);
    int selStart = 0;
    int selLength = 0;
    if (box) {
        selStart = box->hasSelectedText() ? box->selectionStart() : box->cursorPosition();
        selLength = static_cast<int>(box->selectedText().size());
    }
    if (FCurrentCode.empty())
        return;

    auto& jobs = DM().tableJobs;
    if (Sender) {
        SetNodeImage(SelectedNode(), 1, false);
        const int tag = Tag(Sender);
        auto* edit = dynamic_cast<dialogs::TDBEdit*>(Sender);
        if (auto* mark = findChild<QLabel*>(QString("textDefault%1").arg(tag)); mark && edit)
            UpdateDefaultMark(edit, mark);
        // A typed value forgets a browsed file.
        jobs.edit();
        jobs.fieldByName(schema::Path).setAsString("");
        jobs.post();
    }
    QTreeWidgetItem* node = SelectedNode();
    if (tree::NodeLevel(node) == 2 || (node && node->childCount() > 0))
        ComposeCommandLine();
    else
        ComposeScriptLine(true);
    ComposeJoinedLine();
    RefreshScriptListLine();

    // The bound box is rewritten when the row posts; the caret stays where the operator left it.
    if (box) {
        if (selLength > 0)
            box->setSelection(selStart, selLength);
        else
            box->setCursorPosition(selStart);
    }
}

void TdlgJob::lstSyntaxMouseDown(Qt::MouseButton Button, const QPoint& At) {
    if (Button != Qt::RightButton)
        return;
    // Existing rows only; the item index changes without a handler, as code sets it.
    if (QListWidgetItem* item = lstSyntax->itemAt(At)) {
        const QSignalBlocker blocker(lstSyntax);
        lstSyntax->setCurrentItem(item);
    }
    lstSyntaxClick(nullptr);
}

void TdlgJob::dbeValueEnter(QObject* Sender) { SetTag(mnuDefaultValue, Tag(Sender)); }

void TdlgJob::dbeValueMouseDown(QObject* Sender) {
    if (auto* control = qobject_cast<QWidget*>(Sender))
        control->setFocus(Qt::MouseFocusReason);
}

void TdlgJob::dbeValue1KeyPress(QChar Key) { FEventsEnabled = Key != QLatin1Char(' '); }

void TdlgJob::dbeValue1Exit() { FEventsEnabled = true; }

void TdlgJob::dbmCommentChange() {
    if (!FEventsEnabled || !pnlSection->isVisible() || pageScript->currentWidget() != tabTree)
        return;
    const std::string text = withCrLf(dbmComment->text());
    auto& jobs = DM().tableJobs;
    if (text.empty() || text.back() == ' ' || jobs.state() != store::DatasetState::Edit)
        return;
    const dialogs::EventsGuard<bool> quiet(FEventsEnabled, false, true);
    jobs.fieldByName(schema::Script_Line).setAsString(WrapComment(text));
    jobs.post();
    SetNodeImage(SelectedNode(), 1, false);
    RefreshScriptListLine();
}

void TdlgJob::btnFilenameClick() {
    const int k = Tag(btnFilename);
    common::FileDialogRequest request;
    request.filter = "All Files (*.*)|*.*|Command Files (*.NC)|*.NC";
    request.filterIndex = 2;
    std::error_code ec;
    request.initialDir = std::filesystem::is_directory(FInfo.InputDirectory, ec)
                             ? FInfo.InputDirectory
                             : common::platform().executableDirectory();
    std::string chosen;
    if (!common::ui().openFile(request, chosen))
        return;
    FBrowsedFileName = chosen;
    const std::string number = ReadProgramNumber(FBrowsedFileName);

    // Past the open table: the box shows the number a call line needs, Path keeps the file.
    auto& jobs = DM().tableJobs;
    auto query = DM().NewLocalQuery();
    query->setSql(common::format(
        "update Jobs set %s = '%s', Path = '%s' where Pallet_Number = %d and Job_Number = %d "
        "and Line_Number = %d",
        {schema::ValueColumn(k), number, FBrowsedFileName,
         jobs.fieldByName(schema::Pallet_Number).asInteger(),
         jobs.fieldByName(schema::Job_Number).asInteger(),
         jobs.fieldByName(schema::Line_Number).asInteger()}));
    query->execSQL();
    // A step away and back makes the bound boxes read the new text.
    const dialogs::EventsGuard<bool> quiet(FEventsEnabled, false, true);
    jobs.prior();
    jobs.next();
}

void TdlgJob::chkOptionClick(QObject* Sender) {
    if (!FEventsEnabled)
        return;
    if (Sender)
        SetNodeImage(SelectedNode(), 1, false);
    SyncJobRow(nullptr);
    auto& jobs = DM().tableJobs;
    {
        const dialogs::EventsGuard<bool> quiet(FEventsEnabled, false, true);
        jobs.edit();
        jobs.fieldByName(schema::ValueColumn(Tag(chkOption)))
            .setAsString(chkOption->isChecked() ? "1" : "0");
        jobs.post();
    }
    if (FCurrentCode == "M98" || FCurrentCode == "G65") {
        // "Include File": the browsed file travels with the master program.
        if (!FBrowsedFileName.empty()) {
            jobs.edit();
            jobs.fieldByName(schema::Path).setAsString(FBrowsedFileName);
            jobs.post();
        }
        return;
    }
    // The box continues this line on the next: the lines before, at and after it are joined
    // anew, each from its own selection, and the selection comes back.
    QTreeWidgetItem* selected = SelectedNode();
    if (!selected)
        return;
    const int line = tree::AbsoluteIndex(selected);
    for (int step : {-1, 0, 1}) {
        SelectNode(tree::FindNodeByIndex(tvwTemplate, line + step));
        ComposeJoinedLine();
    }
    SelectNode(selected);
}

void TdlgJob::radItemClick(QObject* Sender) {
    if (!FEventsEnabled)
        return;
    SetNodeImage(SelectedNode(), 1, false);
    {
        const QSignalBlocker blocker(lstSyntax);
        lstSyntax->setCurrentRow(Tag(Sender) - 1);
    }
    lstSyntaxClick(nullptr);
}

void TdlgJob::txtItemClick(QObject* Sender) {
    if (!FEventsEnabled)
        return;
    // Ticking an unticked radio button runs its own handler first.
    ByCode([&] { RadioItem(Tag(Sender))->setChecked(true); });
    lstSyntaxClick(nullptr);
}

void TdlgJob::connectEntryHandlers() {
    // The syntax list: a real click passes the list as sender.
    connect(lstSyntax, &QListWidget::itemClicked, this,
            [this] { Event([&] { lstSyntaxClick(lstSyntax); }); });
    for (int n = 1; n <= 6; ++n) {
        dialogs::TDBEdit* box = ValueEdit(n);
        connect(box, &QLineEdit::textChanged, this,
                [this, box] { Event([&] { dbeValueChange(box); }); });
    }
    connect(dbmComment, &QPlainTextEdit::textChanged, this,
            [this] { Event([&] { dbmCommentChange(); }); });
    connect(btnFilename, &QPushButton::clicked, this,
            [this] { Event([&] { btnFilenameClick(); }); });
    // A check box runs its click handler whenever its state changes, by the operator or by
    // code; a radio button whenever it becomes ticked.
    connect(chkOption, &QCheckBox::toggled, this,
            [this] { Event([&] { chkOptionClick(chkOption); }); });
    for (int n = 1; n <= 6; ++n) {
        QRadioButton* radio = RadioItem(n);
        connect(radio, &QRadioButton::toggled, this, [this, radio](bool checked) {
            if (checked)
                Event([&] { radItemClick(radio); });
        });
    }

    // Presses, keys and focus changes that Qt reports only as events.
    const auto isValueControl = [this](const QObject* watched) {
        return watched == chkOption || dynamic_cast<const dialogs::TDBEdit*>(watched);
    };
    auto* hook = new EventHook(this, [this, isValueControl](QObject* watched, QEvent* event) {
        switch (event->type()) {
        case QEvent::MouseButtonPress: {
            const auto* mouse = static_cast<QMouseEvent*>(event);
            if (watched == lstSyntax->viewport())
                Event([&] { lstSyntaxMouseDown(mouse->button(), mouse->position().toPoint()); });
            else if (isValueControl(watched))
                Event([&] { dbeValueMouseDown(watched); });
            break;
        }
        case QEvent::MouseButtonRelease: {
            const auto* mouse = static_cast<QMouseEvent*>(event);
            auto* label = qobject_cast<QLabel*>(watched);
            if (label && mouse->button() == Qt::LeftButton &&
                label->rect().contains(mouse->position().toPoint()))
                Event([&] { txtItemClick(watched); });
            break;
        }
        case QEvent::KeyPress:
            // The first box only: blanks compose at once in the others.
            if (watched != dbeValue1)
                break;
            if (const auto key = typedCharacter(static_cast<QKeyEvent*>(event)))
                Event([&] { dbeValue1KeyPress(*key); });
            break;
        case QEvent::FocusIn:
            if (isValueControl(watched) && !windowFocusChange(static_cast<QFocusEvent*>(event)))
                Event([&] { dbeValueEnter(watched); });
            break;
        case QEvent::FocusOut:
            // Focus that leaves a box being hidden by code is no leaving by the operator: it
            // would switch events on inside a routine that keeps them off.
            if (watched == dbeValue1 && dbeValue1->isVisible() &&
                !windowFocusChange(static_cast<QFocusEvent*>(event)))
                Event([&] { dbeValue1Exit(); });
            break;
        default:
            break;
        }
    });
    lstSyntax->viewport()->installEventFilter(hook);
    for (int n = 1; n <= 6; ++n) {
        ValueEdit(n)->installEventFilter(hook);
        ItemLabel(n)->installEventFilter(hook);
    }
    chkOption->installEventFilter(hook);
}
