#include "template/CopyTemplate.h"

#include "common/Format.h"
#include "common/Services.h"
#include "store/DataMod.h"
#include "template/TemplateList.h"

#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <exception>

TdlgCopyTemplate::TdlgCopyTemplate(QWidget* parent) : QDialog(parent) {
    setObjectName("dlgCopyTemplate");
    setWindowTitle("Copy Template");
    setModal(true);

    txtFixtureType = new QLabel("Template Name:", this);
    txtFixtureType->setObjectName("txtFixtureType");
    lstTemplateName = new QListWidget(this);
    lstTemplateName->setObjectName("lstTemplateName");
    btnOK = new QPushButton("OK", this);
    btnOK->setObjectName("btnOK");
    btnOK->setToolTip("Accept Changes");
    btnOK->setDefault(true);
    btnCancel = new QPushButton("Cancel", this);
    btnCancel->setObjectName("btnCancel");
    btnCancel->setToolTip("Cancel Changes");
    btnCancel->setAutoDefault(false);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(btnOK);
    buttons->addWidget(btnCancel);
    auto* main = new QVBoxLayout(this);
    main->addWidget(txtFixtureType);
    main->addWidget(lstTemplateName, 1);
    main->addLayout(buttons);
    resize(320, 300);

    // Only a change of the current entry by the user reaches the handler; code blocks the signal.
    connect(lstTemplateName, &QListWidget::currentRowChanged, this, [this] {
        try {
            lstTemplateNameClick();
        } catch (const std::exception& e) {
            common::ui().error(e.what());
        }
    });
    connect(btnOK, &QPushButton::clicked, this,
            [this] { modalButtonClick(common::ModalResult::Ok, &TdlgCopyTemplate::btnOKClick); });
    connect(btnCancel, &QPushButton::clicked, this,
            [this] { modalButtonClick(common::ModalResult::Cancel, nullptr); });
}

// The result is set before the handler runs; an error is shown and the form still closes.
void TdlgCopyTemplate::modalButtonClick(common::ModalResult result,
                                        void (TdlgCopyTemplate::*handler)()) {
    FModalResult = result;
    if (handler) {
        try {
            (this->*handler)();
        } catch (const std::exception& e) {
            common::ui().error(e.what());
        }
    }
    done(static_cast<int>(FModalResult));
}

// The form opens no other window, so it is activated once: when it shows.
void TdlgCopyTemplate::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    FModalResult = common::ModalResult::None;
    try {
        FormActivate();
    } catch (const std::exception& e) {
        common::ui().error(e.what());
    }
}

void TdlgCopyTemplate::reject() { btnCancel->click(); }

void TdlgCopyTemplate::FormActivate() {
    FTargetID = DM().tableTemplateName.fieldByName(schema::Template_ID).asInteger();
    FillTemplateList(
        lstTemplateName,
        common::format("select * from TemplateName where Template_ID <> %d", {FTargetID}));
    if (lstTemplateName->count() > 0) {
        lstTemplateName->setCurrentRow(0);
        lstTemplateNameClick();
    }
}

void TdlgCopyTemplate::lstTemplateNameClick() {
    if (QListWidgetItem* entry = lstTemplateName->currentItem())
        FSourceID = entry->data(Qt::UserRole).toInt();
}

void TdlgCopyTemplate::btnOKClick() {
    store::Transaction transaction(DM().LocalDatabase);
    auto query = DM().NewLocalQuery();
    auto run = [&](const char* text, std::int32_t id) {
        query->setSql(common::format(text, {id}));
        query->execSQL();
    };
    run("delete from TemplateData where Template_ID = %d", FTargetID);
    query->setSql("truncate TemplateCopy");
    query->execSQL();
    run("insert into TemplateCopy (select * from TemplateData where Template_ID = %d)", FSourceID);
    run("update TemplateCopy set Template_ID = %d", FTargetID);
    query->setSql("insert into TemplateData (select * from TemplateCopy)");
    query->execSQL();
    transaction.commit();
}

std::unique_ptr<QDialog> NewCopyTemplateDialog(QWidget* owner) {
    return std::make_unique<TdlgCopyTemplate>(owner);
}
