// NewTemplate and ModifyTemplate as the host calls them.
#include "boundary/Exports.h"
#include "store/DataMod.h"
#include "support/CellFixture.h"
#include "template/Template.h"

#include <QApplication>
#include <gtest/gtest.h>

namespace {

class TemplateExportsTest : public ::testing::Test {
protected:
    TemplateExportsTest() : cell(true) {}
    void SetUp() override {
        boundary::LibraryLoad();
        boundary::Initialize(cell.dir(), cell.dir());
    }
    void TearDown() override {
        boundary::LibraryUnload();
        EXPECT_FALSE(DlgTemplateExists());
        EXPECT_TRUE(QApplication::topLevelWidgets().isEmpty());
    }
    static std::vector<std::string> ids() {
        auto q = DM().NewLocalQuery();
        q->setSql("select Template_ID, Name, Version from TemplateName order by Template_ID");
        q->open();
        std::vector<std::string> out;
        for (; !q->eof(); q->next())
            out.push_back(q->fields(0).asString() + "|" + q->fields(1).asString() + "|" +
                          q->fields(2).asString());
        return out;
    }
    // The user types a name and presses OK.
    void typeNameAndConfirm(const std::string& name) {
        cell.ui.onModal = [name](QWidget* form) {
            auto* editor = static_cast<TdlgTemplate*>(form);
            editor->FormActivate();
            editor->dbeTemplateName->setText(QString::fromStdString(name));
            editor->btnOK->click();
        };
        cell.ui.modalAnswers = {common::ModalResult::Ok};
    }
    testsupport::CellFixture cell;
};

} // namespace

TEST_F(TemplateExportsTest, NewTemplateTakesTheLowestFreeId) {
    ASSERT_TRUE(DlgTemplateExists()); // made at load: the test run has a QApplication
    std::string name;
    typeNameAndConfirm("Second plate");
    boundary::NewTemplate("FX-9", 2, name);
    EXPECT_EQ(name, "Second plate");

    // Ids 1, 2, 4 give 3; then ids 2, 3, 4 give 1.
    cell.run("Quorvel.db", "insert into TemplateName values(4, 'FX', 'Four', 1, False)");
    typeNameAndConfirm("Third");
    boundary::NewTemplate("FX", 1, name);
    cell.run("Quorvel.db", "delete from TemplateName where Template_ID = 1;"
                           "delete from TemplateData where Template_ID = 1;");
    typeNameAndConfirm("First again");
    boundary::NewTemplate("FX", 1, name);
    EXPECT_EQ(ids(), (std::vector<std::string>{"1|First again|1", "2|Second plate|1", "3|Third|1",
                                               "4|Four|1"}));
}

TEST_F(TemplateExportsTest, ModifyTemplateOpensTheTemplateOrTheNearestOne) {
    std::vector<int> nodes;
    cell.ui.onModal = [&](QWidget* form) {
        auto* editor = static_cast<TdlgTemplate*>(form);
        nodes.push_back(tree::NodeCount(editor->tvwTemplate));
        EXPECT_EQ(editor->txtPieceCount->text(), "3");
        EXPECT_EQ(DM().tableTemplateName.fieldByName("Template_ID").asInteger(), 1);
    };
    boundary::ModifyTemplate(99, 3, 1);
    boundary::ModifyTemplate(0, 3, 42); // unknown: the table stands on the nearest row
    EXPECT_EQ(nodes, (std::vector<int>{30, 5}));
    EXPECT_EQ(dlgTemplate().TemplateID(), 42);
    EXPECT_EQ(dlgTemplate().Version(), 1); // no rows under 42: the skeleton
}
