// Bound controls: they follow the cursor, start the edit at the first keystroke, fire their change
// signal when the row changes their text, and write back before a post.
#include "dialogs/DBControls.h"
#include "store/Database.h"
#include "store/Table.h"
#include "support/CellFixture.h"

#include <QApplication>
#include <QTest>
#include <gtest/gtest.h>

namespace {

class DBControlsTest : public ::testing::Test {
protected:
    void SetUp() override {
        db.setFileName(dir.file("c.db"));
        db.open(true);
        db.executeScript(
            "create table Jobs(Line_Number integer not null, Value_1 text, Value_2 text);"
            "create unique index \"Jobs.Primary\" on Jobs(Line_Number);"
            "insert into Jobs values (0, 'a', 'x'), (1, 'b', 'x'), (2, 'b', 'y');");
        table.open();
        table.setIndexName("Primary");
        source.setDataSet(&table);
    }
    void TearDown() override { EXPECT_TRUE(QApplication::topLevelWidgets().isEmpty()); }

    // Binds a control to a column of the table.
    template <typename Control> void bind(Control& control, const char* column) {
        control.setDataSource(&source);
        control.setDataField(column);
    }
    std::string rowValue(int line, const char* column) {
        table.findKey({line});
        return table.fieldByName(column).asString();
    }

    testsupport::TempDir dir;
    store::Database db{"Local", "Default"};
    store::Table table{db, "Jobs"};
    store::DataSource source;
};

} // namespace

TEST_F(DBControlsTest, FollowsCursorAndFiresOnlyWhenTextChanges) {
    dialogs::TDBEdit edit;
    int changes = 0;
    QObject::connect(&edit, &QLineEdit::textChanged, [&] { ++changes; });
    bind(edit, "Value_1");
    EXPECT_EQ(edit.text(), "a");
    EXPECT_EQ(changes, 1);
    table.next();
    EXPECT_EQ(edit.text(), "b");
    EXPECT_EQ(changes, 2);
    table.next(); // same text on the next row: no change signal
    EXPECT_EQ(changes, 2);
    // A statement's change shows at the next move.
    db.execute("update Jobs set Value_1 = 'q' where Line_Number = 0");
    table.first();
    EXPECT_EQ(edit.text(), "q");
    EXPECT_EQ(changes, 3);
    dialogs::TDBText label;
    bind(label, "Value_2");
    table.last();
    EXPECT_EQ(label.text(), "y");
}

TEST_F(DBControlsTest, KeystrokeStartsEditBeforeHandlerPostWritesTextAnotherColumnKeepsIt) {
    dialogs::TDBEdit edit;
    bind(edit, "Value_1");
    std::vector<store::DatasetState> statesSeen;
    QObject::connect(&edit, &QLineEdit::textChanged, [&] { statesSeen.push_back(table.state()); });
    QTest::keyClicks(&edit, "Z");
    ASSERT_EQ(statesSeen.size(), 1u);
    EXPECT_EQ(statesSeen[0], store::DatasetState::Edit);
    EXPECT_TRUE(edit.modified());
    table.post();
    // Arrow keys start nothing.
    QTest::keyClick(&edit, Qt::Key_Left);
    EXPECT_EQ(table.state(), store::DatasetState::Browse);
    // A move posts what was typed.
    table.first();
    edit.end(false);
    QTest::keyClicks(&edit, "9");
    table.next();
    EXPECT_EQ(rowValue(0, "Value_1"), "aZ9");
    // Code setting the text while editing reaches the row at the post.
    table.first();
    table.edit();
    edit.setText("");
    table.post();
    EXPECT_EQ(rowValue(0, "Value_1"), "");
    // Writing another column keeps the text typed in this one.
    dialogs::TDBEdit second;
    bind(second, "Value_2");
    QTest::keyClicks(&edit, "7");
    table.fieldByName("Value_2").setAsString("code");
    EXPECT_EQ(second.text(), "code"); // the written column shows at once
    EXPECT_EQ(edit.text(), "7");      // the typed text stays
    table.post();
    EXPECT_EQ(rowValue(0, "Value_1"), "7");
    EXPECT_EQ(rowValue(0, "Value_2"), "code");
}

TEST_F(DBControlsTest, UpperCaseControlsConvertEverything) {
    dialogs::TDBMemo memo;
    memo.setUpperCase(true);
    bind(memo, "Value_2");
    EXPECT_EQ(memo.text(), "X"); // from the row
    dialogs::TDBEdit edit;
    edit.setUpperCase(true);
    bind(edit, "Value_1");
    int changes = 0;
    QObject::connect(&edit, &QLineEdit::textChanged, [&] { ++changes; });
    edit.setCursorPosition(1);
    QTest::keyClicks(&edit, "cd");
    EXPECT_EQ(edit.text(), "ACD");
    EXPECT_EQ(changes, 2); // one per key, already upper-cased
}
