// DeleteTemplate as the host calls it: the dialog is made, shown through the Ui seam and freed.
#include "boundary/Exports.h"
#include "store/DataMod.h"
#include "support/CellFixture.h"
#include "template/DeleteTemplate.h"

#include <QApplication>
#include <gtest/gtest.h>

namespace {

class DeleteTemplateExportTest : public ::testing::Test {
protected:
    DeleteTemplateExportTest() : cell(true) {}
    void SetUp() override {
        boundary::LibraryLoad();
        boundary::Initialize(cell.dir(), cell.dir());
    }
    void TearDown() override {
        boundary::LibraryUnload();
        EXPECT_TRUE(QApplication::topLevelWidgets().isEmpty());
    }
    static int count(const std::string& sql) {
        auto q = DM().NewLocalQuery();
        q->setSql(sql);
        q->open();
        return q->fields(0).asInteger();
    }
    testsupport::CellFixture cell;
};

TEST_F(DeleteTemplateExportTest, ShowsTheDialogWhichDeletesUntilClosed) {
    cell.run("Quorvel.db", "insert into TemplateName values (2, 'FX-2', 'Spare', 1, False)");
    cell.run("ZEL.db", "insert into JobList values (1, 1, 1, 'P', 'M', '')");
    QWidget* shown = nullptr;
    cell.ui.onModal = [&](QWidget* form) {
        shown = form;
        auto* dialog = qobject_cast<TdlgDeleteTemplate*>(form);
        ASSERT_NE(dialog, nullptr);
        EXPECT_FALSE(dialog->isVisible());
        dialog->FormShow();
        // The demo template is in use by the job: only the spare one can go.
        EXPECT_FALSE(dialog->btnDelete->isEnabled());
        dialog->lstTemplateName->setCurrentRow(1);
        dialog->btnDelete->click();
        dialog->btnExit->click();
        EXPECT_EQ(dialog->ModalResult(), common::ModalResult::Ok);
    };
    cell.ui.modalAnswers = {common::ModalResult::Ok};
    boundary::DeleteTemplate();
    EXPECT_NE(shown, nullptr);
    EXPECT_EQ(cell.ui.messages(), std::vector<std::string>{"Delete the Spare template?"});
    EXPECT_EQ(count("select count(*) from TemplateName where Template_ID = 2"), 0);
    EXPECT_EQ(count("select count(*) from TemplateName where Template_ID = 1"), 1);
    EXPECT_EQ(count("select count(*) from TemplateData where Template_ID = 1"), 30);
}

} // namespace
