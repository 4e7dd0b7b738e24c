// Choosing a machine: its programs over the stand-in FOCAS library, or its failure boxes in order.
#include "JobFixture.h"

#include "machine/Focus1Comm.h"
#include "machine/MachineInfo.h"

#include <QComboBox>
#include <QListWidget>

#include <dlfcn.h>

#include <cstdlib>

namespace {

// The real platform, with the library's bare name leading to a stand-in.
class StandInPlatform : public common::RealPlatform {
public:
    void* loadLibrary(const std::string& path) override {
        return RealPlatform::loadLibrary(path == FocasLibraryName ? target : path);
    }
    std::string target;
};

class MachineLinkTest : public jobtest::JobFixture {
protected:
    void SetUp() override {
        JobFixture::SetUp();
        standIn = dlopen(FOCAS_STANDIN, RTLD_NOW);
        ASSERT_NE(standIn, nullptr) << dlerror();
        services = std::make_unique<common::ScopedServices>(
            common::Services{&cell.ui, &platform, &cell.host});
    }
    void TearDown() override {
        ExitFocasProcess();
        services.reset();
        for (const char* name : {"FOCAS_STANDIN_CONNECT", "FOCAS_STANDIN_READ",
                                 "FOCAS_STANDIN_PROGRAMS", "FOCAS_STANDIN_COUNT"})
            unsetenv(name);
        if (standIn)
            dlclose(standIn);
        JobFixture::TearDown();
    }

    // The operator chooses entry `index` of the machines listed with the port text given.
    void choose(int index, const std::string& port = "8193") {
        cell.run("ZEL.db", "update Config set Value = '" + port +
                               "' where Unit_Number = 2 and Item = 'Port'");
        LoadMachines(form->cmbMachines);
        cell.ui.calls.clear();
        reinterpret_cast<void (*)()>(dlsym(standIn, "standin_clear"))();
        form->cmbMachines->setCurrentIndex(index);
        emit form->cmbMachines->activated(index);
    }
    std::string calls() const {
        return reinterpret_cast<const char* (*)()>(dlsym(standIn, "standin_log"))();
    }
    QStringList programs() const {
        QStringList lines;
        for (int i = 0; i < form->lstPrograms->count(); ++i)
            lines << form->lstPrograms->item(i)->text();
        return lines;
    }

    StandInPlatform platform;
    std::unique_ptr<common::ScopedServices> services;
    void* standIn = nullptr;
};

} // namespace

TEST_F(MachineLinkTest, ChoosingAMachineListsItsProgramsOrShowsWhyNot) {
    // Boxes as "E text" for an error box, "P text" for a plain one, each behind a "|".
    const std::string full = FOCAS_STANDIN, bare = FOCAS_STANDIN_BARE, gone = "/none/libfwlib32.so",
                      noLink = "|E Unable to connect to 127.0.0.1.";
    const struct {
        std::string library, port, connectCode, readCode, boxes;
        QStringList lines = {};
    } cases[] = {
        {full, "8193", "0", "0", "", {"0012    (ROUGH)", "0003    "}},
        {gone, "8193", "0", "0", "|E Unable to open FwLib32.dll" + noLink + "8193"},
        {bare, "8193", "0", "0",
         "|P cnc_allclibhndl3 is not exported|P cnc_rdprogdir2 is not exported" + noLink + "8193"},
        {full, "8193", "-16", "0", "|E Error:-16" + noLink + "8193"},
        // A failed read counts as connected: no connect box.
        {full, "8193", "0", "-1", "|E Error:-1"},
        // A port that is no number, or none of 0..65535, skips the link.
        {full, "x81", "0", "0", noLink + "x81"},
        {full, "70000", "0", "0", noLink + "70000"},
    };
    setenv("FOCAS_STANDIN_PROGRAMS", "12=(ROUGH)|3=", 1);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.library + " port " + c.port);
        platform.target = c.library;
        setenv("FOCAS_STANDIN_CONNECT", c.connectCode.c_str(), 1);
        setenv("FOCAS_STANDIN_READ", c.readCode.c_str(), 1);
        form->lstPrograms->addItem("left over");
        choose(1, c.port);
        std::string boxes;
        for (const auto& call : cell.ui.calls)
            boxes += (call.kind == common::MessageKind::Plain ? "|P " : "|E ") + call.text;
        EXPECT_EQ(boxes, c.boxes);
        EXPECT_EQ(programs(), c.lines);
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);
        // The handle the library gave is always freed; a skipped link calls nothing.
        const std::string log = calls();
        if (c.port != "8193") {
            EXPECT_EQ(log, "");
        } else if (c.library == full && c.connectCode == "0") {
            EXPECT_TRUE(log.ends_with("free 77\n")) << log;
        }
    }

    // "(Select a machine)" clears the list and connects to nothing.
    form->lstPrograms->addItem("left over");
    choose(0);
    EXPECT_TRUE(programs().isEmpty());
    EXPECT_TRUE(cell.ui.calls.empty());
    EXPECT_EQ(calls(), "");
}
