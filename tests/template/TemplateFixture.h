#pragma once
// The demo cell opened in the store, with the one template editor, for the tests of the editor.
#include "store/DataMod.h"
#include "support/CellFixture.h"
#include "template/Template.h"

#include <QApplication>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace testsupport {

class TemplateTest : public ::testing::Test {
protected:
    TemplateTest() : cell(true) {}
    // The test main keeps one QApplication for the whole run.
    void SetUp() override {
        CreateDM();
        DM().OpenStore(cell.dir(), cell.dir(), 0, 0);
        ASSERT_TRUE(CreateDlgTemplate());
    }
    void TearDown() override {
        FreeDlgTemplate();
        FreeDM();
        EXPECT_TRUE(QApplication::topLevelWidgets().isEmpty());
    }

    TdlgTemplate& dlg() { return dlgTemplate(); }
    QTreeWidget* tv() { return dlg().tvwTemplate; }

    // Rows of a query, each as its columns joined by "|" (null as "~").
    static std::vector<std::string> select(const std::string& sql) {
        auto q = DM().NewLocalQuery();
        q->setSql(sql);
        q->open();
        std::vector<std::string> rows;
        for (; !q->eof(); q->next()) {
            std::string row;
            for (int i = 0; i < q->fieldCount(); ++i)
                row += (i ? "|" : "") + (q->fields(i).isNull() ? "~" : q->fields(i).asString());
            rows.push_back(row);
        }
        return rows;
    }
    static void exec(const std::string& sql) {
        auto q = DM().NewLocalQuery();
        q->setSql(sql);
        q->execSQL();
    }
    static std::vector<std::string> templateRows(int id) {
        return select("select * from TemplateData where Template_ID = " + std::to_string(id) +
                      " order by Item");
    }
    static std::string templateVersion(int id) {
        return select("select Version from TemplateName where Template_ID = " + std::to_string(id))
            .at(0);
    }
    // Journal rows of a template: Version|Sequence|Item|Action|Value|Number, in table order.
    static std::vector<std::string> journal(int id) {
        return select("select Version, Sequence, Item, Action, Value, Number from TemplateVersion"
                      " where Template_ID = " +
                      std::to_string(id) + " order by Template_ID, Version, Sequence, rowid");
    }
    // The tree in absolute order, one node a line: indentation by level, text, image index.
    static std::vector<std::string> outline(QTreeWidget* tree) {
        std::vector<std::string> lines;
        for (int i = 0; i < tree::NodeCount(tree); ++i) {
            QTreeWidgetItem* n = tree::FindNodeByIndex(tree, i);
            lines.push_back(std::string(2 * tree::NodeLevel(n), ' ') +
                            tree::NodeText(n).toStdString() + " " +
                            std::to_string(tree::ImageIndex(n)));
        }
        return lines;
    }
    // Selects the node at an absolute index.
    void selectAt(int index) { tree::Select(tv(), tree::FindNodeByIndex(tv(), index)); }

    // The demo template opened as the host opens it: working version 2.
    void open() {
        dlg().LoadTemplate(3, 1);
        dlg().FormActivate();
    }
    void chooseCommand(const std::string& code) {
        ASSERT_TRUE(DM().tableCommands.findKey({code})) << code;
    }
    std::string selectedText() { return tree::NodeText(tree::Selected(tv())).toStdString(); }
    int selectedIndex() { return tree::AbsoluteIndex(tree::Selected(tv())); }
    // Enabled states of Add, Up, Down, Cut, Copy, Paste, Delete, OK as "1"/"0".
    std::string buttons() {
        std::string s;
        for (QWidget* b : {dlg().btnAdd, dlg().btnUp, dlg().btnDown, dlg().btnCut, dlg().btnCopy,
                           dlg().btnPaste, dlg().btnDelete, dlg().btnOK})
            s += b->isEnabled() ? '1' : '0';
        return s;
    }

    CellFixture cell;
};

} // namespace testsupport
