#pragma once
// The demo cell's store open and a job wizard form for pallet 7, job 1; no window left behind.
#include "job/Job.h"
#include "store/DataMod.h"
#include "support/CellFixture.h"
#include "template/Template.h"

#include <QApplication>
#include <QKeyEvent>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace jobtest {

// The wizard's settings for job 1 of `pallet` on template `templateId`.
inline TJobWizardInfo wizardInfo(common::BoolMessageGate* gate, int templateId = 1,
                                 const std::string& pallet = "7") {
    TJobWizardInfo info;
    info.TemplateID = templateId;
    info.JobNumber = 1;
    info.PalletNumber = pallet;
    info.MessageGate = gate;
    return info;
}

// Every row of a query on the local database, each column as text.
inline std::vector<std::vector<std::string>> rows(const std::string& sql) {
    auto q = DM().NewLocalQuery();
    q->setSql(sql);
    q->open();
    std::vector<std::vector<std::string>> out;
    for (; !q->eof(); q->next()) {
        out.emplace_back();
        for (int i = 0; i < q->fieldCount(); ++i)
            out.back().push_back(q->fields(i).asString());
    }
    return out;
}

class JobFixture : public ::testing::Test {
protected:
    void SetUp() override {
        CreateDM();
        DM().OpenStore(cell.dir(), cell.dir(), 0, 0);
        DM().PositionTemplate(1);
        form = std::make_unique<TdlgJob>();
        form->SetWizardInfo(wizardInfo(&gate));
        form->TakeJobKeys();
    }
    void TearDown() override {
        form.reset();
        FreeDlgTemplate(); // opening a job loads the tree through the template editor
        FreeDM();
        EXPECT_TRUE(QApplication::topLevelWidgets().isEmpty());
    }

    // Opens the job's tables as the wizard does, then builds the job.
    void build() {
        form->BindDataControls();
        form->FilterJobTables();
        form->BuildJobFromTemplate();
    }
    // A column of the job's row of `line`.
    std::string jobField(int line, const char* column) {
        auto& jobs = DM().tableJobs;
        EXPECT_TRUE(jobs.findKey({form->PalletNumber(), form->JobNumber(), line})) << line;
        return jobs.fieldByName(column).asString();
    }

    // Statements on the local database, past the wizard's tables so that no bound box moves.
    static void exec(const std::string& sql) {
        auto q = DM().NewLocalQuery();
        q->setSql(sql);
        q->execSQL();
    }
    // The first column of a query's first row; "(no row)" when there is none.
    static std::string read(const std::string& sql) {
        const auto found = rows(sql);
        return found.empty() ? "(no row)" : found[0][0];
    }
    // A column of a row of pallet 7, job 1, and columns set on some of its lines ("15, 16").
    static std::string row(int line, const std::string& column) {
        return read("select " + column + " from Jobs where Pallet_Number = 7 and Job_Number = 1 " +
                    "and Line_Number = " + std::to_string(line));
    }
    static void update(const std::string& set, const std::string& lines) {
        exec("update Jobs set " + set + " where Pallet_Number = 7 and Job_Number = 1 and " +
             "Line_Number in (" + lines + ")");
    }
    static void update(const std::string& set, int line) { update(set, std::to_string(line)); }

    // The node of a line, and its selection as code selects it.
    QTreeWidgetItem* node(int line) { return tree::FindNodeByIndex(form->tvwTemplate, line); }
    void select(int line) { form->SelectNode(node(line)); }
    int selected() { return tree::AbsoluteIndex(form->SelectedNode()); }

    // Keys as typed: "\n" is Enter, "\b" Backspace.
    static void type(QWidget* control, const QString& text) {
        for (const QChar ch : text) {
            const bool enter = ch == '\n';
            const int key = enter        ? int(Qt::Key_Return)
                            : ch == '\b' ? int(Qt::Key_Backspace)
                                         : ch.toUpper().unicode();
            QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, enter ? "\r" : QString(ch));
            QApplication::sendEvent(control, &press);
        }
    }
    // The operator replaces the text of the first value box.
    void retype(const QString& text) {
        form->dbeValue1->selectAll();
        type(form->dbeValue1, "\b" + text);
    }

    testsupport::CellFixture cell{true};
    common::BoolMessageGate gate{true};
    std::unique_ptr<TdlgJob> form;
};

} // namespace jobtest
