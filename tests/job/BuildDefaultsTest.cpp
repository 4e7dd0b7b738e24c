// A quiet build's remembered default lookups end exactly as a build that runs every lookup.
#include "JobFixture.h"

#include <string>
#include <vector>

namespace {

using Rows = std::vector<std::vector<std::string>>;

std::vector<std::string> currentRow(store::Dataset& table) {
    std::vector<std::string> row;
    for (int i = 0; i < table.fieldCount(); ++i)
        row.push_back(table.fields(i).asString());
    return row;
}

class BuildDefaultsTest : public jobtest::JobFixture {
protected:
    // The current rows of the tables the build moves, the defaults' filter and the value boxes
    // after the build; then the job's rows in key order, every column.
    Rows buildWith(bool eventsEnabled) {
        form->FEventsEnabled = eventsEnabled;
        build();
        form->FEventsEnabled = false;
        auto& jobs = DM().tableJobs;
        Rows out{currentRow(jobs),
                 currentRow(DM().tableTemplateDefaults),
                 currentRow(DM().tableCommands),
                 currentRow(DM().tableSyntax),
                 {DM().tableTemplateDefaults.filter(),
                  DM().tableTemplateDefaults.filtered() ? "filtered" : "all"},
                 {}};
        for (int n = 1; n <= 6; ++n)
            out.back().push_back(form->ValueEdit(n)->text().toStdString());
        for (jobs.first(); !jobs.eof(); jobs.next())
            out.push_back(currentRow(jobs));
        return out;
    }
};

} // namespace

TEST_F(BuildDefaultsTest, RemembersLookupsWithoutChangingTheOutcome) {
    // Later lines repeat codes and value types (G00, M98, PIECE, UV), so lookups are answered
    // from memory, the last ones of the build among them.
    const Rows remembered = buildWith(false);
    ASSERT_EQ(remembered.size(), 6u + 30u);
    EXPECT_EQ(remembered, buildWith(true));
}
