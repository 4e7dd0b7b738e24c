#include "JobScript.h"

#include "common/Convert.h"
#include "common/Format.h"
#include "dialogs/Message.h"
#include "job/Job.h"
#include "store/DataMod.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabWidget>

#include <filesystem>
#include <iostream>

namespace app {

namespace {

// Line breaks shown as the two characters \n.
std::string oneLine(const std::string& text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n')
            continue;
        if (text[i] == '\r' || text[i] == '\n')
            out += "\\n";
        else
            out += text[i];
    }
    return out;
}

int integerArgument(const std::string& argument, int low, int high) {
    const auto value = common::tryStrToInt(argument);
    if (!value || *value < low || *value > high)
        throw ScriptError("'" + argument + "' is not a number from " + std::to_string(low) +
                          " to " + std::to_string(high));
    return *value;
}

bool onOff(const std::string& argument) {
    if (argument == "on")
        return true;
    if (argument == "off")
        return false;
    throw ScriptError("'" + argument + "' is neither on nor off");
}

void noArgument(const std::string& argument) {
    if (!argument.empty())
        throw ScriptError("takes no argument, not '" + argument + "'");
}

void printList(const QListWidget* list) {
    for (int i = 0; i < list->count(); ++i)
        std::cout << list->item(i)->text().toStdString() << '\n';
}

// The job's rows as they stand in the store, without moving the form's cursor.
void printRows(const TdlgJob& form) {
    auto query = DM().NewLocalQuery();
    query->setSql(common::format(
        "select Line_Number, Node_Level, Code, Syntax_Item, Image, State, Value_1, Value_2, "
        "Value_3, Value_4, Value_5, Value_6, Script_Line from Jobs where Pallet_Number = %d and "
        "Job_Number = %d order by Line_Number",
        {form.PalletNumber(), form.JobNumber()}));
    query->open();
    for (; !query->eof(); query->next()) {
        for (int column = 0; column < query->fieldCount(); ++column)
            std::cout << (column ? "\t" : "") << query->fields(column).asString();
        std::cout << '\n';
    }
    std::cout.flush();
}

// One key as the operator types it: the key press reaches the control's own key handling.
void typeKey(QWidget* control, int key, const QString& text) {
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
    QApplication::sendEvent(control, &press);
    QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, text);
    QApplication::sendEvent(control, &release);
}

// Replaces what a control holds by typed keys: all selected, erased, then the text key by key.
void typeText(QWidget* control, const std::string& text) {
    control->setFocus();
    if (auto* edit = qobject_cast<QLineEdit*>(control))
        edit->selectAll();
    else if (auto* memo = qobject_cast<QPlainTextEdit*>(control))
        memo->selectAll();
    typeKey(control, Qt::Key_Backspace, "\b");
    for (const QChar ch : QString::fromStdString(text))
        typeKey(control, ch.toUpper().unicode(), QString(ch));
}

// A press of a mouse button in the middle of a control (or of a row of a list).
void pressMouse(QWidget* control, Qt::MouseButton button, QPoint at = {-1, -1}) {
    if (at.x() < 0)
        at = control->rect().center();
    QMouseEvent press(QEvent::MouseButtonPress, at, control->mapToGlobal(at), button, button,
                      Qt::NoModifier);
    QApplication::sendEvent(control, &press);
    QMouseEvent release(QEvent::MouseButtonRelease, at, control->mapToGlobal(at), button,
                        Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(control, &release);
}

// The operator walks the lines on the Tree View tab: a click on the tab brings it to the front.
void onTreeTab(TdlgJob& form) {
    if (form.pageScript->currentWidget() != form.tabTree)
        form.pageScript->setCurrentWidget(form.tabTree);
}

int listIndex(const std::string& argument, const QListWidget* list) {
    return integerArgument(argument, 1, std::max(1, list->count())) - 1;
}

} // namespace

std::optional<common::ModalResult> parseAnswer(const std::string& word) {
    if (word == "ok")
        return common::ModalResult::Ok;
    if (word == "cancel")
        return common::ModalResult::Cancel;
    if (word == "yes")
        return common::ModalResult::Yes;
    if (word == "no")
        return common::ModalResult::No;
    return std::nullopt;
}

ScriptUi::ScriptUi(std::vector<std::string> lines, std::optional<common::ModalResult> answer)
    : lines_(std::move(lines)), runAnswer_(answer) {
    addActions();
}

void ScriptUi::addActions() {
    // The program page and the options page: the operator sets the controls; their handlers run.
    actions_["program"] = [](TdlgJob& form, const std::string& argument) {
        form.spnProgramNumber->setValue(integerArgument(argument, 0, 7999));
    };
    actions_["numbers"] = [](TdlgJob& form, const std::string& argument) {
        form.chkLineNumbers->setChecked(onOff(argument));
    };
    actions_["increment"] = [](TdlgJob& form, const std::string& argument) {
        form.spinIncrement->setValue(integerArgument(argument, 1, 500));
    };
    actions_["answer"] = [this](TdlgJob&, const std::string& argument) {
        const auto answer = parseAnswer(argument);
        if (!answer)
            throw ScriptError("'" + argument + "' is no answer (ok, cancel, yes, no)");
        nextAnswer_ = answer;
    };
    actions_["rows"] = [](TdlgJob& form, const std::string& argument) {
        noArgument(argument);
        printRows(form);
    };
    actions_["sample"] = [](TdlgJob& form, const std::string& argument) {
        noArgument(argument);
        printList(form.lstSample);
    };
    actions_["machines"] = [](TdlgJob& form, const std::string& argument) {
        noArgument(argument);
        for (int i = 0; i < form.cmbMachines->count(); ++i)
            std::cout << form.cmbMachines->itemText(i).toStdString() << '\n';
    };
    // Entry K as "machines" prints them, from 1: the operator's choice, so its handler runs.
    actions_["machine"] = [](TdlgJob& form, const std::string& argument) {
        const int entry = integerArgument(argument, 1, std::max(1, form.cmbMachines->count())) - 1;
        if (entry >= form.cmbMachines->count())
            throw ScriptError("the machine list has no entry " + argument);
        form.cmbMachines->setCurrentIndex(entry);
        emit form.cmbMachines->activated(entry);
    };
    actions_["programs"] = [](TdlgJob& form, const std::string& argument) {
        noArgument(argument);
        printList(form.lstPrograms);
    };
    addWalkActions();
}

void ScriptUi::addWalkActions() {
    // The tree and the syntax list, as the operator clicks them.
    actions_["select"] = [](TdlgJob& form, const std::string& argument) {
        onTreeTab(form);
        if (argument == "none") {
            tree::Select(form.tvwTemplate, nullptr);
            return;
        }
        const int last = std::max(0, tree::NodeCount(form.tvwTemplate) - 1);
        tree::Select(form.tvwTemplate,
                     tree::FindNodeByIndex(form.tvwTemplate, integerArgument(argument, 0, last)));
    };
    actions_["syntax"] = [this](TdlgJob& form, const std::string& argument) {
        const int row = listIndex(argument, form.lstSyntax);
        if (row >= form.lstSyntax->count())
            throw ScriptError("the syntax list has no entry " + argument);
        form.lstSyntax->setCurrentRow(row);
        emit form.lstSyntax->itemClicked(form.lstSyntax->item(row));
        addressed_ = form.lstSyntax;
    };
    actions_["value"] = [this](TdlgJob& form, const std::string& argument) {
        const auto space = argument.find(' ');
        const int box = integerArgument(argument.substr(0, space), 1, 6);
        QWidget* edit = form.ValueEdit(box);
        pressMouse(edit, Qt::LeftButton);
        typeText(edit, space == std::string::npos ? std::string() : argument.substr(space + 1));
        addressed_ = edit;
    };
    actions_["comment"] = [this](TdlgJob& form, const std::string& argument) {
        pressMouse(form.dbmComment, Qt::LeftButton);
        typeText(form.dbmComment, argument);
        addressed_ = form.dbmComment;
    };
    actions_["option"] = [this](TdlgJob& form, const std::string& argument) {
        if (form.chkOption->isChecked() != onOff(argument))
            form.chkOption->click();
        addressed_ = form.chkOption;
    };
    actions_["radio"] = [](TdlgJob& form, const std::string& argument) {
        form.RadioItem(integerArgument(argument, 1, 6))->click();
    };
    const auto press = [](QPushButton* TdlgJob::*button) {
        return [button](TdlgJob& form, const std::string& argument) {
            noArgument(argument);
            onTreeTab(form);
            (form.*button)->click();
        };
    };
    actions_["next"] = press(&TdlgJob::btnNext);
    actions_["expand"] = press(&TdlgJob::btnExpand);
    actions_["collapse"] = press(&TdlgJob::btnCollapse);
    actions_["skip"] = press(&TdlgJob::btnSkip);
    actions_["skipdown"] = press(&TdlgJob::btnSkipDown);
    actions_["copy"] = press(&TdlgJob::btnCopy);
    actions_["paste"] = press(&TdlgJob::btnPaste);
    actions_["menu"] = [this](TdlgJob& form, const std::string& argument) {
        auto* item = form.findChild<QAction*>(QString::fromStdString(argument));
        if (argument.empty() || !item)
            throw ScriptError("there is no menu item '" + argument + "'");
        if (!addressed_)
            throw ScriptError("no box or list to open the menu on");
        // The right click that opens the menu, on the row or box last addressed.
        QPoint at(-1, -1);
        if (addressed_ == form.lstSyntax && form.lstSyntax->currentItem())
            at = form.lstSyntax->visualItemRect(form.lstSyntax->currentItem()).center();
        pressMouse(addressed_ == form.lstSyntax ? form.lstSyntax->viewport() : addressed_,
                   Qt::RightButton, at);
        for (QMenu* menu : {form.mnuDefaultValue, form.mnuDefaultSyntax})
            if (menu->actions().contains(item))
                emit menu->aboutToShow();
        if (item->isEnabled())
            item->trigger();
    };
    actions_["write"] = [this](TdlgJob& form, const std::string& argument) {
        if (argument.empty())
            throw ScriptError("needs the file name that answers the save dialog");
        namespace fs = std::filesystem;
        saveAnswer_ = argument;
        const auto started = fs::file_time_type::clock::now();
        form.btnWrite->click();
        const bool asked = !saveAnswer_;
        saveAnswer_.reset();
        std::error_code ec;
        if (asked && fs::is_regular_file(form.FProgramFileName, ec) &&
            fs::last_write_time(form.FProgramFileName, ec) >= started - std::chrono::seconds(2))
            std::cout << form.FProgramFileName << '\n';
    };
    actions_["view"] = [](TdlgJob& form, const std::string& argument) {
        noArgument(argument);
        // The Script View tab and back to the Tree View, as the operator clicks them.
        form.pageScript->setCurrentWidget(form.tabScript);
        for (int i = 0; i < form.lstScript->count(); ++i)
            std::cout << form.lstScript->item(i)->text().toStdString() << '\n';
        form.pageScript->setCurrentWidget(form.tabTree);
    };
}

void ScriptUi::run(TdlgJob& form) {
    for (std::size_t number = 1; number <= lines_.size(); ++number) {
        std::string line = common::trim(lines_[number - 1]);
        if (line.empty() || line[0] == '#')
            continue;
        const auto space = line.find(' ');
        const std::string name = line.substr(0, space);
        const std::string argument =
            space == std::string::npos ? std::string() : common::trim(line.substr(space + 1));
        const auto action = actions_.find(name);
        try {
            if (action == actions_.end())
                throw ScriptError("unknown action '" + name + "'");
            action->second(form, argument);
            QApplication::processEvents();
        } catch (const ScriptError& e) {
            throw ScriptError("script line " + std::to_string(number) + ": " + name + ": " +
                              e.what());
        }
        std::cout.flush();
    }
}

common::ModalResult ScriptUi::take(common::ModalResult fallback) {
    if (nextAnswer_) {
        const auto answer = *nextAnswer_;
        nextAnswer_.reset();
        return answer;
    }
    return runAnswer_.value_or(fallback);
}

common::ModalResult ScriptUi::message(common::MessageKind, const std::string& text,
                                      common::MessageButtons buttons, const std::string&) {
    std::cout.flush();
    std::cerr << "message: " << oneLine(text) << std::endl;
    const bool okFirst =
        buttons == common::MessageButtons::Ok || buttons == common::MessageButtons::OkCancel;
    return take(okFirst ? common::ModalResult::Ok : common::ModalResult::Yes);
}

bool ScriptUi::openFile(const common::FileDialogRequest&, std::string&) { return false; }

bool ScriptUi::saveFile(const common::FileDialogRequest&, std::string& fileName) {
    if (!saveAnswer_)
        return false;
    fileName = *saveAnswer_;
    saveAnswer_.reset();
    return true;
}

common::ModalResult ScriptUi::showModal(QWidget* form) {
    if (auto* wizard = qobject_cast<TdlgJob*>(form); wizard && windowUi_)
        return windowUi_->showModal(wizard);
    if (auto* wizard = qobject_cast<TdlgJob*>(form)) {
        // The showing, on the offscreen screen: the form activates, the operator acts, the form
        // closes.
        wizard->show();
        wizard->activateWindow();
        QApplication::processEvents();
        run(*wizard);
        wizard->done(QDialog::Rejected);
        return common::ModalResult::Cancel;
    }
    // The gated notice is a message like any other for the reader of standard error.
    if (auto* box = qobject_cast<TdlgMessage*>(form)) {
        std::cout.flush();
        std::cerr << "message: " << oneLine(box->txtMessage->text().toStdString()) << std::endl;
    } else if (form) {
        std::cout.flush();
        std::cerr << "dialog: " << form->windowTitle().toStdString() << std::endl;
    }
    const QVariant fallback = form ? form->property("defaultModalResult") : QVariant();
    return take(fallback.isValid() ? static_cast<common::ModalResult>(fallback.toInt())
                                   : common::ModalResult::Cancel);
}

} // namespace app
