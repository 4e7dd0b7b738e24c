// The FOCAS link on the stand-in library, loaded through the real platform: directory records as
// list lines, and the calls that reach the library.
#include "machine/Focus1Comm.h"

#include "common/Scripted.h"
#include "common/Services.h"

#include <QListWidget>
#include <gtest/gtest.h>

#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>

namespace {

class Focus1CommTest : public ::testing::Test {
protected:
    void SetUp() override {
        standIn = dlopen(FOCAS_STANDIN, RTLD_NOW);
        ASSERT_NE(standIn, nullptr) << dlerror();
        clear();
    }
    void TearDown() override {
        ExitFocasProcess();
        for (const char* name : {"FOCAS_STANDIN_PROGRAMS", "FOCAS_STANDIN_COUNT"})
            unsetenv(name);
        if (standIn)
            dlclose(standIn);
    }

    std::string log() const {
        return reinterpret_cast<const char* (*)()>(dlsym(standIn, "standin_log"))();
    }
    void clear() const { reinterpret_cast<void (*)()>(dlsym(standIn, "standin_clear"))(); }

    // Connects, reads the directory the stand-in is given and returns the list's lines.
    QStringList read(const std::string& records, const char* count) {
        setenv("FOCAS_STANDIN_PROGRAMS", records.c_str(), 1);
        if (count)
            setenv("FOCAS_STANDIN_COUNT", count, 1);
        else
            unsetenv("FOCAS_STANDIN_COUNT");
        QListWidget list;
        TFocus1Comm link(FOCAS_STANDIN);
        if (link.Connect("127.0.0.1", 8193))
            link.ReadPrograms(&list);
        QStringList lines;
        for (int i = 0; i < list.count(); ++i)
            lines << list.item(i)->text();
        return lines;
    }

    common::ScriptedUi ui;
    common::ScopedServices services{{&ui, nullptr, nullptr}}; // the real platform
    void* standIn = nullptr;
};

} // namespace

TEST_F(Focus1CommTest, DirectoryRecordsBecomeListLines) {
    const std::string longComment(60, 'X');
    const struct {
        std::string records;
        const char* count;
        QStringList lines;
    } cases[] = {
        // Number in the low 16 bits (65548 is 0x1000C); only the first "(" and ")" go.
        {"12=(ROUGH)|12=|12=ROUGH|7=(AB(C))|65548=)(",
         nullptr,
         {"0012    (ROUGH)", "0012    ", "0012    (ROUGH)", "0007    (AB(C))", "0012    "}},
        // No zero byte in the comment: the forced one at byte 59 ends it after 51 characters.
        {"12=" + longComment, nullptr, {"0012    (" + QString(51, QChar('X')) + ")"}},
        {"12=A", "0", {}},
        {"1=A", "-3", {}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(read(c.records, c.count), c.lines) << c.records;

    // A count beyond the buffer's 1000 records is taken as far as the buffer goes.
    const QStringList full = read("1=A|2=B", "1500");
    ASSERT_EQ(full.size(), 1000);
    EXPECT_EQ(full[999], "0000    ");
    EXPECT_TRUE(ui.messages().empty());
}

TEST_F(Focus1CommTest, CallsReachTheLibraryInOrderAndTheHandleIsFreed) {
    for (int i = 0; i < 2; ++i) {
        TFocus1Comm link(FOCAS_STANDIN);
        ASSERT_TRUE(link.Connect("127.0.0.1", 8193));
        QListWidget list;
        link.ReadPrograms(&list);
    }
    // The process state starts once, before any other call, and ends with the module.
    const std::string logFile = (std::filesystem::temp_directory_path() / "focas.log").string();
    const std::string session =
        "connect 127.0.0.1 8193 5\nread 77 type 1 top 0 num 1000\nfree 77\n";
    EXPECT_EQ(log(), "startup 0 " + logFile + "\n" + session + session);
    clear();
    ExitFocasProcess();
    ExitFocasProcess();
    EXPECT_EQ(log(), "exit\n");
}
