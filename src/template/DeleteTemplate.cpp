#include "template/DeleteTemplate.h"

#include "common/Format.h"
#include "common/Services.h"
#include "store/DataMod.h"
#include "template/TemplateList.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <exception>
#include <memory>
#include <stdexcept>

namespace {

// Runs a handler for a signal: an error is shown, as the event loop's default handler does.
template <typename F> void guarded(F&& handler) {
    try {
        handler();
    } catch (const std::exception& e) {
        common::ui().error(e.what());
    }
}

} // namespace

TdlgDeleteTemplate::TdlgDeleteTemplate(QWidget* parent) : QDialog(parent) {
    setObjectName("dlgDeleteTemplate");
    setWindowTitle("Delete Template");
    setModal(true);

    txtFixtureType = new QLabel("Template Name:", this);
    txtFixtureType->setObjectName("txtFixtureType");
    lstTemplateName = new QListWidget(this);
    lstTemplateName->setObjectName("lstTemplateName");
    pnlMessage = new QLabel(this);
    pnlMessage->setObjectName("pnlMessage");
    pnlMessage->setFrameStyle(QFrame::Panel | QFrame::Sunken);
    btnDelete = new QPushButton("Delete", this);
    btnDelete->setObjectName("btnDelete");
    btnDelete->setToolTip("Delete Template");
    btnDelete->setDefault(true);
    btnDelete->setEnabled(false);
    btnExit = new QPushButton("Done", this);
    btnExit->setObjectName("btnExit");
    btnExit->setToolTip("Close Dialog");
    btnExit->setAutoDefault(false);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(btnDelete);
    buttons->addWidget(btnExit);
    auto* main = new QVBoxLayout(this);
    main->addWidget(txtFixtureType);
    main->addWidget(lstTemplateName, 1);
    main->addWidget(pnlMessage);
    main->addLayout(buttons);
    resize(320, 320);

    // Only a change of the current entry by the user reaches the handler; code blocks the signal.
    connect(lstTemplateName, &QListWidget::currentRowChanged, this,
            [this] { guarded([&] { lstTemplateNameClick(); }); });
    connect(btnDelete, &QPushButton::clicked, this, [this] { guarded([&] { btnDeleteClick(); }); });
    connect(btnExit, &QPushButton::clicked, this, [this] {
        FModalResult = common::ModalResult::Ok;
        done(static_cast<int>(FModalResult));
    });
}

void TdlgDeleteTemplate::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    FModalResult = common::ModalResult::None;
    guarded([&] { FormShow(); });
}

void TdlgDeleteTemplate::reject() { btnExit->click(); }

void TdlgDeleteTemplate::FormShow() {
    LoadList();
    UpdateButton();
}

void TdlgDeleteTemplate::LoadList() {
    FillTemplateList(lstTemplateName, "select * from TemplateName");
    if (lstTemplateName->count() > 0) {
        lstTemplateName->setCurrentRow(0);
        lstTemplateNameClick();
    }
}

void TdlgDeleteTemplate::lstTemplateNameClick() {
    QListWidgetItem* entry = lstTemplateName->currentItem();
    const std::string text = entry ? UseText(entry->data(Qt::UserRole).toInt()) : std::string();
    pnlMessage->setText(QString::fromStdString(text));
    UpdateButton();
}

std::string TdlgDeleteTemplate::UseText(int templateId) {
    auto query = DM().NewSharedQuery();
    query->setSql(common::format("select count(*) from JobList where Template = %d", {templateId}));
    query->open();
    const int count = query->fields(0).asInteger();
    query->close();
    if (count == 1)
        return "This template is being used by 1 job";
    if (count >= 2)
        return common::format("This template is being used by %d jobs", {count});
    return {};
}

void TdlgDeleteTemplate::UpdateButton() {
    btnDelete->setEnabled(lstTemplateName->count() > 0 && pnlMessage->text().isEmpty());
}

void TdlgDeleteTemplate::btnDeleteClick() {
    QListWidgetItem* entry = lstTemplateName->currentItem();
    if (!entry)
        throw std::runtime_error("No template is selected to delete");
    const int id = entry->data(Qt::UserRole).toInt();
    const std::string name = entry->text().toStdString();
    common::ui().beep();
    if (common::ui().message(common::MessageKind::Confirmation,
                             common::format("Delete the %s template?", {name}),
                             common::MessageButtons::YesNo) == common::ModalResult::No)
        return;
    {
        store::Transaction transaction(DM().LocalDatabase);
        auto query = DM().NewLocalQuery();
        for (const char* text : {"delete from TemplateData where Template_ID = %d",
                                 "delete from TemplateDefaults where Template_ID = %d",
                                 "delete from TemplateVersion where Template_ID = %d",
                                 "delete from TemplateName where Template_ID = %d"}) {
            query->setSql(common::format(text, {id}));
            query->execSQL();
        }
        transaction.commit();
    }
    LoadList();
}

void ShowDeleteTemplateDialog() {
    if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
        throw std::logic_error("The template deletion dialog needs a running QApplication");
    auto form = std::make_unique<TdlgDeleteTemplate>();
    common::ui().showModal(form.get());
}
