// AddPlugin keeps only "Template Enhancement" libraries, in order, until the module is unloaded.
#include "boundary/Exports.h"
#include "template/TemplatePlugins.h"

#include <gtest/gtest.h>

#include <vector>

TEST(AddPluginTest, KeepsTemplateEnhancementsUntilUnload) {
    int a = 0, b = 0;
    boundary::AddPlugin({&a, "Template Enhancement"}); // before the load: no editor yet
    boundary::LibraryLoad();
    boundary::AddPlugin({&b, "Other"});
    boundary::AddPlugin({&b, "template enhancement"});
    boundary::AddPlugin({&b, "Template Enhancement "});
    boundary::AddPlugin({&b, "Template Enhancement"});
    boundary::AddPlugin({&a, "Template Enhancement"});
    EXPECT_EQ(TemplatePlugins(), (std::vector<void*>{&a, &b, &a}));
    boundary::LibraryUnload();
    EXPECT_TRUE(TemplatePlugins().empty());
}
