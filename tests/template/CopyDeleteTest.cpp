// The copy and delete template dialogs on the demo cell with two more templates.
#include "TemplateFixture.h"

#include "template/CopyTemplate.h"
#include "template/DeleteTemplate.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class CopyDeleteTest : public testsupport::TemplateTest {
protected:
    void SetUp() override {
        TemplateTest::SetUp();
        cell.run("Quorvel.db",
                 "insert into TemplateName values (2, 'FX-200', 'Small plate', 4, False),"
                 " (3, 'FX-300', 'Third', 1, False);"
                 "insert into TemplateData (Template_ID, Item, Node_Level, Code) values"
                 " (2, 0, 0, 'HDR'), (2, 2, 0, 'WRK'), (2, 3, 0, 'FTR'), (3, 0, 0, 'HDR'),"
                 " (3, 1, 0, 'FTR');"
                 "insert into TemplateData values (2, 1, 1, 'G90', 0, '1', '', '', '', '', '', "
                 "'', False, 0);"
                 "insert into TemplateDefaults values (2, 'G54', '3');"
                 "insert into TemplateVersion values (2, 3, 1, 1, 'Add', 'G90', 0),"
                 " (1, 1, 1, 4, 'Delete', 'G92', 0);");
    }

    // Everything a template owns in the four tables, for before/after comparisons.
    static std::vector<std::string> owned(int id) {
        const std::string where = " where Template_ID = " + std::to_string(id);
        std::vector<std::string> all;
        for (const char* table :
             {"TemplateName", "TemplateData", "TemplateDefaults", "TemplateVersion"})
            for (const std::string& row : select(std::string("select * from ") + table + where))
                all.push_back(std::string(table) + ":" + row);
        return all;
    }
    // A template's rows as another id would hold them.
    static std::vector<std::string> rowsAs(int id, int as) {
        std::vector<std::string> rows = templateRows(id);
        for (std::string& row : rows)
            row = std::to_string(as) + row.substr(row.find('|'));
        return rows;
    }
    static std::vector<std::string> entries(QListWidget* list) {
        std::vector<std::string> out;
        for (int i = 0; i < list->count(); ++i)
            out.push_back(list->item(i)->text().toStdString() + "/" +
                          list->item(i)->data(Qt::UserRole).toString().toStdString());
        return out;
    }
    void addJob(int pallet, int job, int templateId) {
        cell.run("ZEL.db", "insert into JobList values (" + std::to_string(pallet) + ", " +
                               std::to_string(job) + ", " + std::to_string(templateId) +
                               ", 'P', 'M', '')");
    }
    static void failOn(const std::string& event) {
        exec("create trigger fail_here " + event +
             " begin select raise(abort, 'refused by the test'); end");
    }
};

// ---- Copy ----

TEST_F(CopyDeleteTest, CopyListsOtherTemplatesAndReplacesOnlyTheTargetsRows) {
    SelectTemplateRows(1);
    TdlgCopyTemplate form;
    form.FormActivate();
    EXPECT_EQ(form.TargetID(), 1);
    EXPECT_THAT(entries(form.lstTemplateName), ElementsAre("Small plate/2", "Third/3"));
    EXPECT_EQ(form.SourceID(), 2);

    // Everything but the target's rows stays; the work table's leftover row goes.
    const auto others = [] {
        auto all = select("select * from TemplateData where Template_ID <> 1");
        for (const char* table : {"TemplateName", "TemplateDefaults", "TemplateVersion"})
            for (const auto& row : select(std::string("select * from ") + table))
                all.push_back(row);
        return all;
    };
    const auto before = others();
    exec("insert into TemplateCopy select * from TemplateData where Template_ID = 3");
    form.btnOKClick();
    EXPECT_EQ(templateRows(1), rowsAs(2, 1));
    EXPECT_EQ(others(), before);
    EXPECT_EQ(select("select * from TemplateCopy order by Item"), rowsAs(2, 1));

    // Whichever template is current, it is the target and left out of the list.
    SelectTemplateRows(3);
    TdlgCopyTemplate toThird;
    toThird.FormActivate();
    EXPECT_EQ(toThird.TargetID(), 3);
    EXPECT_THAT(entries(toThird.lstTemplateName),
                ElementsAre("Demo wire-cut plate/1", "Small plate/2"));

    // With no other template the target is emptied, and its defaults stay.
    exec("delete from TemplateName where Template_ID <> 3");
    const auto defaults = select("select * from TemplateDefaults");
    TdlgCopyTemplate alone;
    alone.FormActivate();
    EXPECT_EQ(alone.SourceID(), 0);
    alone.btnOKClick();
    EXPECT_THAT(templateRows(3), IsEmpty());
    EXPECT_EQ(select("select * from TemplateDefaults"), defaults);
}

TEST_F(CopyDeleteTest, EditorReloadsItsTreeAndRestartsTheVersionAfterACopy) {
    open();
    const auto before = outline(tv());
    // The user picks "Third" and presses the button the answer names.
    cell.ui.onModal = [&](QWidget* form) {
        auto* copy = qobject_cast<TdlgCopyTemplate*>(form);
        ASSERT_NE(copy, nullptr);
        copy->FormActivate();
        copy->lstTemplateName->setCurrentRow(1);
        const bool ok = cell.ui.modalAnswers.front() == common::ModalResult::Ok;
        (ok ? copy->btnOK : copy->btnCancel)->click();
    };
    // Cancel: nothing is copied, the tree and the version stay.
    cell.ui.modalAnswers = {common::ModalResult::Cancel, common::ModalResult::Ok};
    dlg().btnCopyTemplateClick();
    EXPECT_EQ(outline(tv()), before);
    EXPECT_EQ(dlg().Version(), 2);
    // OK: the chosen template's two sections replace the demo tree at once.
    dlg().btnCopyTemplateClick();
    EXPECT_EQ(dlg().Version(), 1);
    EXPECT_EQ(tree::NodeCount(tv()), 2);
}

TEST_F(CopyDeleteTest, FailedCopyLeavesTheStoreAsItWas) {
    SelectTemplateRows(1);
    exec("insert into TemplateCopy select * from TemplateData where Template_ID = 3");
    const auto target = templateRows(1);
    const auto work = select("select * from TemplateCopy");
    failOn("before insert on TemplateData"); // the last of the five statements fails
    TdlgCopyTemplate form;
    form.FormActivate();
    EXPECT_THROW(form.btnOKClick(), std::exception);
    EXPECT_EQ(templateRows(1), target);
    EXPECT_EQ(select("select * from TemplateCopy"), work);

    // Pressed: the error is shown and the form still closes with OK.
    form.btnOK->click();
    EXPECT_EQ(form.ModalResult(), common::ModalResult::Ok);
    ASSERT_EQ(cell.ui.messages().size(), 1u);
    EXPECT_THAT(cell.ui.messages()[0], ::testing::HasSubstr("refused by the test"));
}

// ---- Delete ----

TEST_F(CopyDeleteTest, DeleteShowsHowManyJobsUseATemplateAsksAndRemovesOnlyThatOne) {
    addJob(1, 1, 2);
    addJob(1, 2, 3);
    addJob(2, 1, 3);
    const auto first = owned(1), second = owned(2), third = owned(3);
    TdlgDeleteTemplate form;
    EXPECT_FALSE(form.btnDelete->isEnabled());
    form.FormShow();
    form.lstTemplateName->setCurrentRow(1);
    EXPECT_EQ(form.pnlMessage->text(), "This template is being used by 1 job");
    EXPECT_FALSE(form.btnDelete->isEnabled());
    form.lstTemplateName->setCurrentRow(2);
    EXPECT_EQ(form.pnlMessage->text(), "This template is being used by 2 jobs");
    form.lstTemplateName->setCurrentRow(0);
    EXPECT_EQ(form.pnlMessage->text(), "");
    EXPECT_TRUE(form.btnDelete->isEnabled());

    // The count is read at selection: a job added since does not block the press.
    addJob(3, 1, 1);
    cell.ui.messageAnswers = {common::ModalResult::No};
    form.btnDeleteClick();
    EXPECT_EQ(owned(1), first);
    ASSERT_EQ(cell.ui.calls.size(), 2u); // a beep, then the question
    EXPECT_EQ(cell.ui.calls[1].text, "Delete the Demo wire-cut plate template?");
    EXPECT_EQ(cell.ui.calls[1].buttons, common::MessageButtons::YesNo);
    form.btnDeleteClick(); // an empty answer queue answers Yes
    EXPECT_THAT(owned(1), IsEmpty());
    EXPECT_EQ(owned(2), second);
    EXPECT_EQ(owned(3), third);
    // The list reloads and shows the use of its new first entry.
    EXPECT_THAT(entries(form.lstTemplateName), ElementsAre("Small plate/2", "Third/3"));
    EXPECT_EQ(form.pnlMessage->text(), "This template is being used by 1 job");
    EXPECT_FALSE(form.btnDelete->isEnabled());
}

TEST_F(CopyDeleteTest, FailedDeleteChangesNothingAndAPressOnAnEmptyListIsAClearError) {
    const auto before = owned(2);
    failOn("before delete on TemplateName"); // the last of the four statements fails
    TdlgDeleteTemplate form;
    form.FormShow();
    form.lstTemplateName->setCurrentRow(1);
    EXPECT_THROW(form.btnDeleteClick(), std::exception);
    EXPECT_EQ(owned(2), before);
    EXPECT_EQ(form.lstTemplateName->count(), 3);

    exec("drop trigger fail_here");
    for (int i = 0; i < 3; ++i)
        form.btnDeleteClick();
    EXPECT_THAT(select("select * from TemplateName"), IsEmpty());
    EXPECT_EQ(form.lstTemplateName->count(), 0);
    EXPECT_TRUE(form.btnDelete->isEnabled()); // the click routine did not run on an empty list
    cell.ui.calls.clear();
    EXPECT_THROW(form.btnDeleteClick(), std::runtime_error);
    form.btnDelete->click();
    EXPECT_THAT(cell.ui.messages(), ElementsAre("No template is selected to delete"));
    EXPECT_EQ(cell.ui.beeps(), 0);

    // A fresh showing has an empty list and a disabled button.
    form.FormShow();
    EXPECT_FALSE(form.btnDelete->isEnabled());
    form.btnExit->click();
    EXPECT_EQ(form.ModalResult(), common::ModalResult::Ok);
}

} // namespace
