// DeleteTemplate as the host calls it: the dialog is made, shown through the Ui seam and freed.
#include "boundary/Exports.h"
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
    testsupport::CellFixture cell;
};

// What the dialog does is tested with the dialog; here only that the export shows it and frees it.
TEST_F(DeleteTemplateExportTest, ShowsTheDialogAndFreesIt) {
    bool shown = false;
    cell.ui.onModal = [&](QWidget* form) { shown = qobject_cast<TdlgDeleteTemplate*>(form); };
    cell.ui.modalAnswers = {common::ModalResult::Ok};
    boundary::DeleteTemplate();
    EXPECT_TRUE(shown); // freed: TearDown finds no window left
}

} // namespace
