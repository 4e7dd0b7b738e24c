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

// What the dialog does is tested with the dialog; here only that the export shows it and frees it.
TEST_F(DeleteTemplateExportTest, ShowsTheDialogWhichDeletesUntilClosed) {
    cell.run("Quorvel.db", "insert into TemplateName values (2, 'FX-2', 'Spare', 1, False)");
    QWidget* shown = nullptr;
    cell.ui.onModal = [&](QWidget* form) {
        shown = form;
        auto* dialog = qobject_cast<TdlgDeleteTemplate*>(form);
        ASSERT_NE(dialog, nullptr);
        dialog->FormShow();
        dialog->lstTemplateName->setCurrentRow(1);
        dialog->btnDelete->click();
        dialog->btnExit->click();
    };
    cell.ui.modalAnswers = {common::ModalResult::Ok};
    boundary::DeleteTemplate();
    EXPECT_NE(shown, nullptr);
    EXPECT_EQ(count("select count(*) from TemplateName"), 1);
}

} // namespace
