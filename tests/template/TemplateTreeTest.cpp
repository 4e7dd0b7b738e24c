// The template tree and its rows: load, the skeleton of an empty template, save and reload.
#include "TemplateFixture.h"

#include <memory>

using testsupport::TemplateTest;

// Node i is row Item i (SaveWritesTheTreeBack reads them back unchanged).
TEST_F(TemplateTest, LoadsDemoTemplateWithImagesFromSyntaxAndLock) {
    dlg().LoadTemplate(3, 1);
    EXPECT_EQ(dlg().txtPieceCount->text(), "3");
    EXPECT_EQ(dlg().TemplateID(), 1);
    EXPECT_EQ(dlg().Version(), 2); // stored Version 1, plus one
    EXPECT_FALSE(dlg().Modified());
    const auto out = outline(tv());
    ASSERT_EQ(out.size(), 30u);
    // A preset, no syntax chosen, locked; sections plain; sub-items under their command.
    EXPECT_EQ(
        std::vector(out.begin(), out.begin() + 5),
        (std::vector<std::string>{"Header 2", "  COMMENT 3", "  G90 3", "  G54 2", "  WIRE 4"}));
    EXPECT_EQ(out[7], "Workpiece1 2");
    EXPECT_EQ(out[10], "    UV 3");
    EXPECT_EQ(tree::NodeObject(tree::FindNodeByIndex(tv(), 1))->Value_1, "DEMO WIRE-CUT PLATE");
    EXPECT_EQ(tree::NodeObject(tree::FindNodeByIndex(tv(), 26))->Special, 1); // FLUSH
}

TEST_F(TemplateTest, EmptyTemplateOpensAsSkeletonWhoseNamesLoseTheBlankAfterSaveAndReload) {
    exec("insert into TemplateName values(2, 'FX-200', 'Second', 1, False)");
    dlg().LoadTemplate(2, 2);
    EXPECT_EQ(dlg().Version(), 1);
    EXPECT_EQ(outline(tv()),
              (std::vector<std::string>{"Header 0", "Workpiece 1 0", "Workpiece 2 0", "Footer 0"}));
    EXPECT_EQ(tree::Selected(tv()), tree::FindNodeByIndex(tv(), 0));

    dlg().SaveTemplateTree();
    EXPECT_EQ(select("select Code, Node_Level, Syntax, Locked from TemplateData where "
                     "Template_ID = 2 order by Item"),
              (std::vector<std::string>{"HDR|0|~|~", "WRK|0|~|~", "WRK|0|~|~", "FTR|0|~|~"}));
    dlg().LoadTemplate(5, 2); // sections are not added to match the count
    EXPECT_EQ(outline(tv()),
              (std::vector<std::string>{"Header 2", "Workpiece1 2", "Workpiece2 2", "Footer 2"}));
    EXPECT_EQ(dlg().Version(), 2);
}

TEST_F(TemplateTest, SaveWritesTheTreeBackRowForRowAndRenumbersItems) {
    const auto before = templateRows(1);
    dlg().LoadTemplate(3, 1);
    dlg().SaveTemplateTree();
    EXPECT_EQ(templateRows(1), before);

    // Move WIRE (4) to the end of the Footer, delete G04 (11): Items close up, 0..n-1 again.
    tree::MoveToLastChild(tree::FindNodeByIndex(tv(), 4), tree::FindNodeByIndex(tv(), 25));
    tree::DeleteNode(tree::FindNodeByIndex(tv(), 10)); // G04, now one place up
    dlg().SaveTemplateTree();
    const auto after = select("select Item, Node_Level, Code from TemplateData where "
                              "Template_ID = 1 order by Item");
    ASSERT_EQ(after.size(), before.size() - 1);
    for (std::size_t i = 0; i < after.size(); ++i)
        EXPECT_EQ(after[i].substr(0, after[i].find('|')), std::to_string(i));
    EXPECT_EQ(templateRows(1).back(), "1|28|1|WIRE|0||||||||1|0");
}

TEST_F(TemplateTest, OddRowsLoadAsTheTreeAllowsAndSaveBackFlattened) {
    exec("insert into TemplateName values(3, 'FX', 'Odd', 4, False)");
    exec("insert into TemplateData (Template_ID, Item, Node_Level, Code, Syntax, Locked, Special) "
         "values (3, 0, 0, 'HDR', NULL, NULL, NULL), (3, 1, 1, 'G90', NULL, 0, 0),"
         " (3, 2, 3, 'UV', 0, 0, 0), (3, 3, 0, 'WRK', NULL, NULL, NULL),"
         " (3, 4, 2, 'ARGC', 1, 1, 7), (3, 5, 0, 'XYZ', NULL, NULL, NULL)");
    dlg().LoadTemplate(1, 3);
    EXPECT_EQ(dlg().Version(), 5);
    // Level 3 stays under the last command; level 2 after a section joins the Header's command;
    // an unknown section code is a workpiece, numbered by the sections before it.
    EXPECT_EQ(outline(tv()),
              (std::vector<std::string>{"Header 2", "  G90 2", "    UV 3", "    ARGC 4",
                                        "Workpiece1 2", "Workpiece2 2"}));
    EXPECT_EQ(tree::NodeObject(tree::FindNodeByIndex(tv(), 1))->Syntax, -1); // null syntax
    EXPECT_EQ(tree::NodeObject(tree::FindNodeByIndex(tv(), 3))->Special, 7);

    dlg().SaveTemplateTree();
    EXPECT_EQ(select("select Item, Node_Level, Code, Syntax from TemplateData where "
                     "Template_ID = 3 order by Item"),
              (std::vector<std::string>{"0|0|HDR|~", "1|1|G90|-1", "2|2|UV|0", "3|2|ARGC|1",
                                        "4|0|WRK|~", "5|0|WRK|~"}));

    // Without a Header row the first workpiece counts from 0.
    exec("delete from TemplateData where Template_ID = 3 and Item < 4");
    dlg().LoadTemplateTree(tv(), 3);
    EXPECT_EQ(outline(tv()), (std::vector<std::string>{"Workpiece0 2", "Workpiece1 2"}));
}

TEST_F(TemplateTest, SaveTakesTheIdFromTheCurrentNameRowAndFailsWhole) {
    exec("insert into TemplateName values(2, 'FX', 'Other', 1, False)");
    const auto demo = templateRows(1);
    dlg().LoadTemplate(3, 1);

    // A failing insert in the middle: the old rows stay, nothing of the new ones is left.
    cell.run("Quorvel.db", "create trigger refuse before insert on TemplateData when new.Item = 20 "
                           "begin select raise(abort, 'refused'); end;");
    tree::DeleteNode(tree::FindNodeByIndex(tv(), 2));
    EXPECT_THROW(dlg().SaveTemplateTree(), store::StoreError);
    EXPECT_EQ(templateRows(1), demo);
    // So does OK: the version stays with the rows.
    EXPECT_THROW(dlg().btnOKClick(), store::StoreError);
    EXPECT_EQ(select("select Version from TemplateName where Template_ID = 1"),
              std::vector<std::string>{"1"});
    EXPECT_EQ(templateRows(1), demo);
    cell.run("Quorvel.db", "drop trigger refuse;");

    // The rows go to the template the name table stands on, not to FTemplateID.
    DM().tableTemplateName.findKey({2});
    dlg().SaveTemplateTree();
    EXPECT_TRUE(templateRows(1).empty());
    EXPECT_EQ(templateRows(2).size(), demo.size() - 1);
    EXPECT_EQ(dlg().TemplateID(), 1);
}

TEST_F(TemplateTest, LoadsIntoAnotherTreeAndSelectsThroughTheStoreHook) {
    dlg().LoadTemplate(3, 1);
    tree::Select(tv(), tree::FindNodeByIndex(tv(), 5));
    exec("insert into TemplateName values(2, 'FX', 'Other', 1, False)");
    exec("insert into TemplateData (Template_ID, Item, Node_Level, Code) values (2, 0, 0, 'HDR')");

    auto wizardTree = std::make_unique<tree::TTreeView>();
    dlg().LoadTemplateTree(wizardTree.get(), 2);
    EXPECT_EQ(outline(wizardTree.get()), std::vector<std::string>{"Header 2"});
    EXPECT_EQ(dlg().TemplateID(), 2); // the editor's state follows the wizard's load
    EXPECT_EQ(DM().tableTemplateData.filter(), "Template_ID = 2");
    EXPECT_EQ(tree::NodeCount(tv()), 30); // the editor's own tree is left alone

    DM().PositionTemplate(1);
    EXPECT_EQ(dlg().TemplateID(), 1);
    EXPECT_EQ(DM().tableTemplateData.recordCount(), 30);
}
