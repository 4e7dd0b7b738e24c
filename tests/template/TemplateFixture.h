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

    CellFixture cell;
};

} // namespace testsupport
