// The module loaded as a foreign host would: dlopen, exports by name, C data only.
#include "AbiHost.h"
#include "RobocutAbi.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct Messages {
    std::vector<std::string> texts;
    int terminates = 0;
};

int32_t onMessage(void* context, int32_t, const char* text, int32_t) {
    static_cast<Messages*>(context)->texts.push_back(text);
    return 1;
}

void onTerminate(void* context) { ++static_cast<Messages*>(context)->terminates; }

// A cell made from the schema files with the engine's own API, as a host's installer would.
struct Cell {
    Cell() { abitest::makeCell(tmp, false); }
    void run(const std::string& file, const std::string& sql) const {
        abitest::sql(tmp.file(file), sql);
    }
    const char* dir() const { return tmp.path().c_str(); }
    testsupport::TempDir tmp;
};

} // namespace

TEST(CAbi, ExportsRunFromTheCallToTheStoreAndBack) {
    Cell cell;
    cell.run("Quorvel.db", "insert into TemplateName values (2, 'FX', 'Two', 1, 0);"
                           "insert into TemplateName values (4, 'FY', 'Four', 1, 0);");
    void* lib = dlopen(QUORVEL_ABI_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(lib, nullptr) << dlerror();
    Messages messages;
    RcHostCallbacks callbacks{&messages, onTerminate, nullptr, onMessage};
    RC(RcSetHostCallbacks)(&callbacks);

    char small[4];
    EXPECT_EQ(RC(PluginName)(small, sizeof small), 13); // full length, text cut to fit
    EXPECT_STREQ(small, "FAN");
    char buffer[64];
    RC(FileExtensions)(buffer, sizeof buffer);
    EXPECT_STREQ(buffer, ".NC");

    ASSERT_EQ(RC(Initialize)(cell.dir(), cell.dir(), 0, 0), 0);
    EXPECT_TRUE(messages.texts.empty());

    auto load = RC(LoadTemplateNames);
    auto count = RC(RcStringListCount);
    auto lastError = RC(RcLastError);
    RcStringList* list = RC(RcStringListNew)();
    ASSERT_EQ(load("FX", list, 1), 0);
    ASSERT_EQ(count(list), 2);
    EXPECT_STREQ(RC(RcStringListString)(list, 1), "Two");
    EXPECT_EQ(RC(RcStringListTemplateId)(list, 1), 2);
    EXPECT_EQ(RC(RcStringListString)(list, 5), nullptr);
    EXPECT_EQ(load("it's", list, 1), -1);
    EXPECT_NE(std::string(lastError()).find("it's"), std::string::npos) << lastError();
    RC(FreeTemplateNames)(list);
    EXPECT_EQ(count(list), 0);
    RC(FreeTemplateNames)(nullptr);
    RC(RcStringListFree)(list);

    EXPECT_EQ(RC(GetTemplateName)(4, buffer, sizeof buffer), 4);
    EXPECT_STREQ(buffer, "Four");
    dlclose(lib);
}

// A missing table is reported through the host and asks it to terminate; unloading the library
// ends that, and a reloaded module has no store until it is initialised.
TEST(CAbi, MissingTableIsReportedAndAReloadStartsAfresh) {
    Cell cell;
    cell.run("Quorvel.db", "drop table Jobs;");
    Messages messages;
    RcHostCallbacks callbacks{&messages, onTerminate, nullptr, onMessage};
    void* lib = dlopen(QUORVEL_ABI_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(lib, nullptr) << dlerror();
    RC(RcSetHostCallbacks)(&callbacks);
    EXPECT_EQ(RC(Initialize)(cell.dir(), cell.dir(), 0, 0), 0);
    EXPECT_EQ(messages.texts, std::vector<std::string>{"Jobs is missing from Local"});
    EXPECT_EQ(messages.terminates, 1);
    EXPECT_EQ(RC(RcTerminateRequested)(), 1);
    dlclose(lib);
    // Gone from the process: its unload ran and nothing of it stays.
    EXPECT_EQ(dlopen(QUORVEL_ABI_LIBRARY, RTLD_NOW | RTLD_NOLOAD), nullptr);
    lib = dlopen(QUORVEL_ABI_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(lib, nullptr) << dlerror();
    EXPECT_EQ(RC(RcTerminateRequested)(), 0);
    RcStringList* list = RC(RcStringListNew)();
    EXPECT_EQ(RC(LoadTemplateNames)("", list, 0), -1);
    RC(RcStringListFree)(list);

    // A good initialisation ends a request to terminate; a folder without a cell is named.
    auto initialize = RC(Initialize);
    RC(RcSetHostCallbacks)(&callbacks);
    EXPECT_EQ(initialize(cell.dir(), cell.dir(), 0, 0), 0);
    EXPECT_EQ(RC(RcTerminateRequested)(), 1);
    Cell good;
    EXPECT_EQ(initialize(good.dir(), good.dir(), 0, 0), 0);
    EXPECT_EQ(RC(RcTerminateRequested)(), 0);
    testsupport::TempDir empty;
    EXPECT_EQ(initialize(empty.str().c_str(), empty.str().c_str(), 0, 0), -1);
    EXPECT_NE(std::string(RC(RcLastError)()).find("ZEL.db"), std::string::npos);
    dlclose(lib);
}
