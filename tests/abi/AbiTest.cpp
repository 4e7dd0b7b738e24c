// The module loaded as a foreign host would: dlopen, exports by name, C data only.
#include "AbiHost.h"
#include "RobocutAbi.h"

#include <dlfcn.h>
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

// The library, loaded for one test and unloaded after it.
class Library {
public:
    Library() : handle_(dlopen(QUORVEL_ABI_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {}
    ~Library() {
        if (handle_)
            dlclose(handle_);
    }
    bool loaded() const { return handle_ != nullptr; }
    template <typename F> F fn(const char* name) {
        void* symbol = dlsym(handle_, name);
        EXPECT_NE(symbol, nullptr) << name;
        return reinterpret_cast<F>(symbol);
    }

private:
    void* handle_;
};

// A cell made from the schema files with the engine's own API, as a host's installer would.
struct Cell {
    Cell() { abitest::makeCell(tmp, false); }
    void run(const std::string& file, const std::string& sql) const {
        abitest::sql(tmp.file(file), sql);
    }
    std::string dir() const { return tmp.str(); }
    testsupport::TempDir tmp;
};

} // namespace

TEST(CAbi, ExportsRunFromTheCallToTheStoreAndBack) {
    Cell cell;
    cell.run("Quorvel.db", "insert into TemplateName values (2, 'FX', 'Two', 1, 0);"
                           "insert into TemplateName values (4, 'FY', 'Four', 1, 0);");
    Library lib;
    ASSERT_TRUE(lib.loaded()) << dlerror();
    Messages messages;
    RcHostCallbacks callbacks{&messages, onTerminate, nullptr, onMessage};
    lib.fn<void (*)(const RcHostCallbacks*)>("RcSetHostCallbacks")(&callbacks);

    char small[4];
    auto pluginName = lib.fn<int32_t (*)(char*, int32_t)>("PluginName");
    EXPECT_EQ(pluginName(small, sizeof small), 13); // full length, text cut to fit
    EXPECT_STREQ(small, "FAN");
    char buffer[64];
    lib.fn<int32_t (*)(char*, int32_t)>("FileExtensions")(buffer, sizeof buffer);
    EXPECT_STREQ(buffer, ".NC");

    auto initialize = lib.fn<int32_t (*)(const char*, const char*, int32_t, int32_t)>("Initialize");
    ASSERT_EQ(initialize(cell.dir().c_str(), cell.dir().c_str(), 0, 0), 0);
    EXPECT_TRUE(messages.texts.empty());

    auto newList = lib.fn<RcStringList* (*)()>("RcStringListNew");
    auto freeList = lib.fn<void (*)(RcStringList*)>("RcStringListFree");
    auto count = lib.fn<int32_t (*)(const RcStringList*)>("RcStringListCount");
    auto at = lib.fn<const char* (*)(const RcStringList*, int32_t)>("RcStringListString");
    auto idAt = lib.fn<int32_t (*)(const RcStringList*, int32_t)>("RcStringListTemplateId");
    auto load = lib.fn<int32_t (*)(const char*, RcStringList*, int32_t)>("LoadTemplateNames");
    auto freeNames = lib.fn<void (*)(RcStringList*)>("FreeTemplateNames");
    auto lastError = lib.fn<const char* (*)()>("RcLastError");

    RcStringList* list = newList();
    ASSERT_EQ(load("FX", list, 1), 0);
    ASSERT_EQ(count(list), 2);
    EXPECT_STREQ(at(list, 1), "Two");
    EXPECT_EQ(idAt(list, 1), 2);
    EXPECT_EQ(at(list, 5), nullptr);
    EXPECT_EQ(load("it's", list, 1), -1);
    EXPECT_NE(std::string(lastError()).find("it's"), std::string::npos) << lastError();
    freeNames(list);
    EXPECT_EQ(count(list), 0);
    freeNames(nullptr);
    freeList(list);

    auto getName = lib.fn<int32_t (*)(int32_t, char*, int32_t)>("GetTemplateName");
    EXPECT_EQ(getName(4, buffer, sizeof buffer), 4);
    EXPECT_STREQ(buffer, "Four");
}

TEST(CAbi, MissingTableIsReportedThroughTheHost) {
    Cell cell;
    cell.run("Quorvel.db", "drop table Jobs;");
    Library lib;
    ASSERT_TRUE(lib.loaded()) << dlerror();
    Messages messages;
    RcHostCallbacks callbacks{&messages, onTerminate, nullptr, onMessage};
    lib.fn<void (*)(const RcHostCallbacks*)>("RcSetHostCallbacks")(&callbacks);
    auto initialize = lib.fn<int32_t (*)(const char*, const char*, int32_t, int32_t)>("Initialize");
    EXPECT_EQ(initialize(cell.dir().c_str(), cell.dir().c_str(), 0, 0), 0)
        << lib.fn<const char* (*)()>("RcLastError")();
    EXPECT_EQ(messages.texts, std::vector<std::string>{"Jobs is missing from Local"});
    EXPECT_EQ(messages.terminates, 1);
    EXPECT_EQ(lib.fn<int32_t (*)()>("RcTerminateRequested")(), 1);

    // A good initialisation ends the request to terminate.
    Cell good;
    EXPECT_EQ(initialize(good.dir().c_str(), good.dir().c_str(), 0, 0), 0);
    EXPECT_EQ(lib.fn<int32_t (*)()>("RcTerminateRequested")(), 0);

    testsupport::TempDir empty;
    EXPECT_EQ(initialize(empty.str().c_str(), empty.str().c_str(), 0, 0), -1);
    EXPECT_NE(std::string(lib.fn<const char* (*)()>("RcLastError")()).find("ZEL.db"),
              std::string::npos);
}

TEST(CAbi, UnloadingTheLibraryUnloadsItAndAReloadStartsAfresh) {
    Cell cell;
    {
        Library lib;
        ASSERT_TRUE(lib.loaded()) << dlerror();
        auto initialize =
            lib.fn<int32_t (*)(const char*, const char*, int32_t, int32_t)>("Initialize");
        ASSERT_EQ(initialize(cell.dir().c_str(), cell.dir().c_str(), 0, 0), 0);
    }
    // Gone from the process: its unload ran and nothing of it stays.
    EXPECT_EQ(dlopen(QUORVEL_ABI_LIBRARY, RTLD_NOW | RTLD_NOLOAD), nullptr);
    Library again;
    ASSERT_TRUE(again.loaded()) << dlerror();
    auto list = again.fn<RcStringList* (*)()>("RcStringListNew")();
    // A fresh module has no store open until it is initialised.
    EXPECT_EQ(again.fn<int32_t (*)(const char*, RcStringList*, int32_t)>("LoadTemplateNames")(
                  "", list, 0),
              -1);
    again.fn<void (*)(RcStringList*)>("RcStringListFree")(list);
}
