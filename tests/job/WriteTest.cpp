// The master program against hand-written files (tests/data), and Write as the operator presses it.
#include "JobFixture.h"

#include "common/Convert.h"
#include "common/Format.h"
#include "dialogs/DeleteFiles.h"

#include <QCheckBox>
#include <QSpinBox>
#include <QStatusBar>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

namespace fs = std::filesystem;

std::vector<TAutomationInfo> received;
void GetJobInfo(TAutomationInfo* info) { received.push_back(*info); }

// "\r" and "\n" written out in a case file stand for CR and LF.
std::string unescape(std::string text) {
    for (const auto& [from, to] : {std::pair{"\\r", "\r"}, std::pair{"\\n", "\n"}})
        for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at))
            text.replace(at, 2, to);
    return text;
}

class WriteTest : public jobtest::JobFixture {
protected:
    void SetUp() override {
        JobFixture::SetUp();
        received.clear();
        cell.platform.exeDir = cell.dir() + "/";
        cell.platform.libraries["host"]["GetJobInfo"] = reinterpret_cast<void*>(&GetJobInfo);
    }
    // Opens the demo job with its directories and the host.
    void open() {
        TJobWizardInfo info = form->WizardInfo();
        info.LocalDirectory = local.str();
        info.InputDirectory = cell.dir();
        info.HostModule = cell.platform.loadLibrary("host");
        info.HostText1 = "cell A";
        ASSERT_TRUE(form->OpenJob(info));
    }
    // The job's rows replaced by the rows of a case file.
    void loadRows(const std::string& file) {
        exec("delete from Jobs");
        std::ifstream in(file);
        for (std::string line; std::getline(in, line);) {
            if (line.empty() || line[0] == '#')
                continue;
            std::vector<std::string> f;
            std::istringstream fields(line);
            for (std::string field; std::getline(fields, field, '\t');)
                f.push_back(field);
            f.resize(12);
            exec(common::format(
                "insert into Jobs (Pallet_Number, Job_Number, Line_Number, Node_Level, Code, "
                "Syntax_Item, Image, Value_1, Value_2, Value_3, Value_4, Value_5, Value_6, "
                "Script_Line, State) values (7, 1, %s, %s, '%s', %s, %s, '%s', '%s', '%s', '%s', "
                "'%s', '%s', '%s', 0)",
                {f[0], f[1], f[2], f[3], f[4], f[5], f[6], f[7], f[8], f[9], f[10],
                 unescape(f[11])}));
        }
    }
    std::string program() const { return local.file("Pal00007.NC"); }

    testsupport::TempDir local;
};

TEST_F(WriteTest, FilesFromRowsMatchTheHandWrittenPrograms) {
    form->BindDataControls();
    form->FilterJobTables();
    int cases = 0;
    for (const auto& entry : fs::directory_iterator(QUORVEL_TEST_DATA_DIR)) {
        if (!fs::exists(entry.path() / "rows.tsv"))
            continue;
        SCOPED_TRACE(entry.path().filename().string());
        ++cases;
        loadRows((entry.path() / "rows.tsv").string());
        std::ifstream settings(entry.path() / "settings");
        for (std::string word, value; settings >> word >> value;) {
            if (word == "program")
                form->spnProgramNumber->setValue(common::strToIntDef(value, -1));
            else if (word == "numbers")
                form->chkLineNumbers->setChecked(value == "on");
            else if (word == "increment")
                form->spinIncrement->setValue(common::strToIntDef(value, -1));
        }
        const std::string written = local.file(entry.path().filename().string() + ".NC");
        form->WriteMasterProgram(written);
        // Byte for byte; a difference is shown line by line.
        EXPECT_EQ(testsupport::readFile((entry.path() / "expected.NC").string()),
                  testsupport::readFile(written));
        EXPECT_FALSE(form->FWriting);
        EXPECT_TRUE(form->FEventsEnabled);
    }
    EXPECT_GE(cases, 7);
}

TEST_F(WriteTest, WriteChecksEveryLineThenStoresWritesAndReports) {
    open();
    form->SelectNode(node(16)); // deep in the tree: the walk starts at the top all the same
    cell.ui.fileAnswers.push_back("/elsewhere/Pal00007"); // the folder is dropped, ".NC" added
    form->btnWriteClick();

    ASSERT_TRUE(fs::exists(program()));
    EXPECT_EQ(row(0, "Path"), program());
    EXPECT_EQ(form->SelectedNode(), node(0));
    EXPECT_TRUE(form->btnEdit->isEnabled());
    // Every line was walked and finished; every line that is not skipped or joined is written.
    EXPECT_EQ(read("select count(*) from Jobs where Node_Level > 0 and Image <> 2"), "0");
    EXPECT_NE(testsupport::readFile(program()).find("\r\nO0001 (CMS MAIN PROGRAM)\r\n"),
              std::string::npos);
    EXPECT_EQ(cell.ui.fileRequests.back().fileName, "Pal00007");
    EXPECT_EQ(cell.ui.fileRequests.back().initialDir, local.str());

    ASSERT_EQ(received.size(), 1u);
    EXPECT_EQ(received[0].CommandFile, program());
    EXPECT_EQ(received[0].HostText1, "cell A");
    EXPECT_EQ(received[0].CommandText, "Basket=");
}

TEST_F(WriteTest, BadValueCancelAndFileErrorsLeaveNoProgram) {
    open();
    // A bad value stops the walk on its line; no dialog, no file, no report.
    update("Value_1 = 'abc'", 9);
    form->btnWriteClick();
    EXPECT_TRUE(form->FStopFlag);
    EXPECT_EQ(selected(), 9);
    EXPECT_FALSE(form->StatusBar->isSizeGripEnabled());
    EXPECT_TRUE(cell.ui.fileRequests.empty());
    update("Value_1 = '10'", 9);

    // A cancelled save dialog: the lines are marked, nothing is written.
    form->SelectNode(node(0));
    form->btnWriteClick();
    EXPECT_FALSE(form->FStopFlag);
    EXPECT_EQ(form->FProgress, 100);
    EXPECT_FALSE(fs::exists(program()));
    EXPECT_EQ(row(0, "Path"), "");

    // A directory in the way of the file: the error names it, an older program stays, the
    // flags come back and nothing is reported.
    fs::create_directory(program());
    cell.ui.fileAnswers.push_back("Pal00007.NC");
    try {
        form->btnWriteClick();
        ADD_FAILURE() << "no error";
    } catch (const JobError& e) {
        EXPECT_NE(std::string(e.what()).find(program()), std::string::npos) << e.what();
    }
    EXPECT_TRUE(fs::is_directory(program()));
    EXPECT_FALSE(fs::exists(program() + ".partial"));
    EXPECT_FALSE(form->FWriting);
    EXPECT_TRUE(received.empty());
}

TEST_F(WriteTest, PreviousFilesAreDeletedKeptOrAskedAbout) {
    open();
    const fs::path pallet = fs::path(cell.dir()) / "Pallet7";
    fs::create_directories(pallet / "sub");
    for (const char* name : {"A.NC", "B.NC"})
        testsupport::writeFile((pallet / name).string(), "x");
    const auto left = [&] {
        std::vector<std::string> names;
        for (const auto& e : fs::directory_iterator(pallet))
            names.push_back(e.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    };
    int shown = 0;
    int option = 0;
    cell.ui.onModal = [&](QWidget* w) {
        auto* question = qobject_cast<TdlgDeleteFiles*>(w);
        ASSERT_NE(question, nullptr);
        question->SetItemIndex(option);
        ++shown;
    };
    // The question's answer and option, then the files left.
    const auto clear = [&](common::ModalResult answer, int chosen) {
        option = chosen;
        cell.ui.modalAnswers = {answer};
        return form->ClearPalletFiles();
    };

    EXPECT_FALSE(clear(common::ModalResult::Cancel, TdlgDeleteFiles::DeleteAll));
    EXPECT_EQ(left(), (std::vector<std::string>{"A.NC", "B.NC", "sub"}));
    EXPECT_TRUE(clear(common::ModalResult::Ok, TdlgDeleteFiles::RetainAll));
    EXPECT_EQ(left().size(), 3u);
    cell.ui.messageAnswers = {common::ModalResult::No, common::ModalResult::Yes};
    EXPECT_TRUE(clear(common::ModalResult::Ok, TdlgDeleteFiles::PromptEach));
    EXPECT_EQ(left(), (std::vector<std::string>{"A.NC", "sub"}));
    EXPECT_EQ(cell.ui.messages(), (std::vector<std::string>{"JOB_S0015A.NC?", "JOB_S0015B.NC?"}));
    EXPECT_TRUE(clear(common::ModalResult::Ok, TdlgDeleteFiles::DeleteAll));
    EXPECT_EQ(left(), (std::vector<std::string>{"sub"}));
    EXPECT_TRUE(clear(common::ModalResult::Ok, TdlgDeleteFiles::DeleteAll));
    EXPECT_EQ(shown, 4); // once per call, never for a folder alone
}

} // namespace
