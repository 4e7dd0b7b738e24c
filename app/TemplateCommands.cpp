#include "TemplateCommands.h"

#include "CellCommands.h"
#include "CellSession.h"
#include "Console.h"
#include "boundary/Exports.h"
#include "dialogs/QtServices.h"
#include "store/DataMod.h"
#include "template/DeleteTemplate.h"
#include "template/Template.h"

#include <QApplication>
#include <QTimer>

#include <iostream>

namespace app {

namespace {
int countTemplates() {
    auto query = DM().NewLocalQuery();
    query->setSql("select count(*) from TemplateName");
    query->open();
    return query->fields(0).asInteger();
}
} // namespace

TemplateCommands::TemplateCommands(CLI::App& cli, std::string& cellDir) : cellDir_(cellDir) {
    template_ = cli.add_subcommand("template", "Open the template editor in a window");
    template_->require_subcommand(1);
    template_->add_option("--cell", cellDir_, "Cell directory")->capture_default_str();

    new_ = template_->add_subcommand("new", "Create a template for a fixture and edit it");
    new_->add_option("--fixture", fixture_, "Fixture (part) name")->required();
    new_->add_option("--workpieces", workpieces_, "Number of workpieces on the fixture")
        ->check(CLI::Range(1, 100))
        ->capture_default_str();

    modify_ = template_->add_subcommand("modify", "Edit an existing template");
    modify_->add_option("--id", templateId_, "Template id")
        ->required()
        ->check(CLI::Range(1, 32767));
    modify_->add_option("--workpieces", workpieces_, "Number of workpieces shown")
        ->check(CLI::Range(1, 100))
        ->capture_default_str();

    delete_ = template_->add_subcommand("delete", "Delete templates that no job uses");
    delete_->add_option("--cell", cellDir_, "Cell directory")->capture_default_str();
    delete_->add_flag("--close", close_, "Close the dialog as soon as it shows (for scripts)");

    for (auto* sub : {new_, modify_}) {
        sub->add_option("--cell", cellDir_, "Cell directory")->capture_default_str();
        sub->add_option("--name", name_, "Template name to fill in");
        sub->add_flag("--accept", accept_, "Confirm the editor as soon as it shows (for scripts)");
    }
}

std::optional<int> TemplateCommands::run(int argc, char** argv) {
    if (!*template_)
        return std::nullopt;
    if (*new_ && accept_ && name_.empty()) {
        std::cerr << "quorvel template new: --accept needs --name: a template is saved with a "
                     "name\n";
        return 2;
    }
    requireDisplay();
    prepareQtEnvironment();
    QApplication application(argc, argv);
    dialogs::QtUi ui;
    CellSession session(cellDir_, &ui);
    if (!name_.empty() || accept_) {
        // Runs once the editor's modal loop has started.
        QTimer::singleShot(0, [this] {
            auto& editor = dlgTemplate();
            if (!name_.empty()) {
                DM().tableTemplateName.edit();
                editor.dbeTemplateName->setText(QString::fromStdString(name_));
                DM().sourceTemplateName.updateRecord();
            }
            if (accept_)
                editor.btnOK->click();
        });
    }
    if (*delete_) {
        if (close_) {
            QTimer::singleShot(0, [] {
                if (auto* dialog =
                        qobject_cast<TdlgDeleteTemplate*>(QApplication::activeModalWidget()))
                    dialog->btnExit->click();
            });
        }
        boundary::DeleteTemplate();
        std::cout << "Templates left: " << countTemplates() << '\n';
        return 0;
    }
    if (*new_) {
        if (!FixtureListed(fixture_))
            throw std::runtime_error("the fixture '" + fixture_ +
                                     "' is not in the cell's fixture list (quorvel fixtures "
                                     "lists them)");
        std::string name;
        boundary::NewTemplate(fixture_, workpieces_, name);
        if (name.empty()) {
            std::cout << "No template was created\n";
            return 1;
        }
        std::cout << "Created template " << name << '\n';
        return 0;
    }
    std::string before;
    boundary::GetTemplateName(templateId_, before);
    if (before.empty()) {
        std::cerr << "quorvel: no template with id " << templateId_ << '\n';
        return 1;
    }
    boundary::ModifyTemplate(0, workpieces_, templateId_);
    std::string after;
    boundary::GetTemplateName(templateId_, after);
    const bool saved = dlgTemplate().ModalResult() == common::ModalResult::Ok;
    std::cout << "Template " << templateId_ << ": " << after
              << (saved ? " (saved)" : " (cancelled)") << '\n';
    return 0;
}

} // namespace app
