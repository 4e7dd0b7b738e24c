// Random edit sessions: build, edit the template, update the job, compare with a journal model.
#include "JobFixture.h"

#include <functional>
#include <random>

namespace {

using jobtest::rows;

// The job's lines as code, level and the operator's mark (empty on a new line).
std::vector<std::vector<std::string>> jobLines() {
    return rows("select Code, Node_Level, ifnull(Path, '') from Jobs where Pallet_Number = 7 and "
                "Job_Number = 1 order by Line_Number");
}

// The journal's rules on a plain list: ADD inserts a line, DEL removes a block, MOV takes a block
// out and puts it back so that its first line stands at the target.
void applyJournal(std::vector<std::vector<std::string>>& lines) {
    for (auto& r : rows("select Item, Action, Value, Number from TemplateVersion where "
                        "Template_ID = 1 and Version = 2 order by Sequence, rowid")) {
        const auto item = lines.begin() + std::min<long>(std::stol(r[0]), long(lines.size()));
        const int number = std::stoi(r[3]);
        if (r[1] == "ADD") {
            lines.insert(item, std::vector<std::string>{r[2], r[3], ""});
        } else {
            const std::vector block(item, item + number);
            lines.erase(item, item + number);
            if (r[1] == "MOV")
                lines.insert(lines.begin() + std::stoi(r[2]), block.begin(), block.end());
        }
    }
}

class EditSession {
public:
    explicit EditSession(unsigned seed) : random_(seed) {
        CreateDM();
        DM().OpenStore(cell_.dir(), cell_.dir(), 0, 0);
        CreateDlgTemplate();
        DM().PositionTemplate(1);
        form_ = std::make_unique<TdlgJob>();
        EXPECT_TRUE(form_->OpenJob(jobtest::wizardInfo(&gate_)));
        // The operator's work, one mark per line in a column the build leaves empty.
        auto q = DM().NewLocalQuery();
        q->setSql("update Jobs set Path = 'op' || Line_Number");
        q->execSQL();
        DM().tableJobs.first();
    }
    ~EditSession() {
        form_.reset();
        FreeDlgTemplate();
        FreeDM();
    }

    // Random edits: first moves, deletes and clipboard work (journal rows of sequence 0), then
    // adds (numbered rows), so that the journal's order is the order of the edits.
    void edit(int changes, int adds, bool clipboard) {
        auto& dlg = dlgTemplate();
        dlg.LoadTemplate(3, 1);
        dlg.FormActivate();
        const std::pair<QWidget*, std::function<void()>> presses[] = {
            {dlg.btnDelete, [&] { dlg.btnDeleteClick(); }},
            {dlg.btnUp, [&] { dlg.btnUpClick(); }},
            {dlg.btnDown, [&] { dlg.btnDownClick(dlg.btnDown); }},
            {dlg.btnCut, [&] { dlg.btnCutClick(); }},
            {dlg.btnCopy, [&] { dlg.btnCopyClick(); }},
        };
        for (int n = 0; n < changes; ++n) {
            select(pickNode(false));
            const unsigned kind = random_() % (clipboard ? 5 : 3);
            if (kind == 4)
                select(pickNode(true)); // a section is copied whole
            const auto& [button, click] = presses[kind];
            if (button->isEnabled()) {
                click();
                if (kind >= 3)
                    paste();
            }
        }
        static const char* codes[] = {"G00", "G04", "M98", "COMMENT", "VAR", "WIRE", "FLUSH"};
        for (int n = 0; n < adds; ++n) {
            select(pickNode(true));
            DM().tableCommands.findKey({codes[random_() % 7]});
            if (dlg.btnAdd->isEnabled())
                dlg.btnAddClick();
        }
        dlg.btnOKClick();
        DM().PositionTemplate(1);
        form_->FilterJobTables();
        form_->UpdateJobFromJournal(1);
    }

    bool pasted = false;

private:
    int pickNode(bool sectionsToo) {
        auto* tv = dlgTemplate().tvwTemplate;
        std::vector<int> candidates;
        for (int i = 0; i < tree::NodeCount(tv); ++i)
            if (sectionsToo || tree::NodeLevel(tree::FindNodeByIndex(tv, i)) > 0)
                candidates.push_back(i);
        return candidates[random_() % candidates.size()];
    }
    void select(int index) {
        auto* tv = dlgTemplate().tvwTemplate;
        tree::Select(tv, tree::FindNodeByIndex(tv, index));
    }
    void paste() {
        select(pickNode(true));
        if (dlgTemplate().btnPaste->isEnabled()) {
            dlgTemplate().btnPasteClick();
            pasted = true;
        }
    }

    testsupport::CellFixture cell_{true};
    std::mt19937 random_;
    common::BoolMessageGate gate_{false};
    std::unique_ptr<TdlgJob> form_;
};

} // namespace

TEST(EditSessions, JobFollowsTheJournalAndKeepsOperatorValues) {
    int withoutPaste = 0;
    std::size_t journalRows = 0;
    for (unsigned seed = 1; seed <= 60; ++seed) {
        EditSession session(seed);
        auto model = jobLines();
        ASSERT_EQ(model.size(), 30u);
        session.edit(6 + static_cast<int>(seed % 7), static_cast<int>(seed % 4), seed % 3 != 0);
        journalRows += rows("select * from TemplateVersion").size();
        applyJournal(model);
        ASSERT_EQ(jobLines(), model) << "seed " << seed;
        // Line 0 notes the version; new lines start incomplete, kept ones keep their status.
        EXPECT_EQ(rows("select Value_2 from Jobs where Line_Number = 0")[0][0], "2");
        for (auto& r : rows("select Image from Jobs where Path is null"))
            EXPECT_EQ(r[0], "1") << "seed " << seed;
        // Without pastes, whose rows carry offset positions, the job's lines are the tree's nodes.
        if (!session.pasted) {
            ++withoutPaste;
            EXPECT_EQ(rows("select Code, Node_Level from Jobs order by Line_Number"),
                      rows("select Code, Node_Level from TemplateData where Template_ID = 1 "
                           "order by Item"))
                << "seed " << seed;
        }
    }
    EXPECT_GE(withoutPaste, 20);
    EXPECT_GT(journalRows, 400u);
    EXPECT_TRUE(QApplication::topLevelWidgets().isEmpty());
}
