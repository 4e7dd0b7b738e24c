// A quiet build's remembered default lookups end exactly as a build that runs every lookup.
#include "JobFixture.h"

#include <string>
#include <vector>

namespace {

struct Outcome {
    std::vector<std::vector<std::string>> rows; // the job's rows in key order, every column
    std::vector<std::string> jobsRow;           // the current rows after the build
    std::vector<std::string> defaultsRow;
    std::vector<std::string> commandsRow;
    std::vector<std::string> syntaxRow;
    std::string defaultsFilter;
    bool defaultsFiltered = false;
    std::vector<std::string> boxes;

    bool operator==(const Outcome&) const = default;
};

std::vector<std::string> currentRow(store::Dataset& table) {
    std::vector<std::string> row;
    for (int i = 0; i < table.fieldCount(); ++i)
        row.push_back(table.fields(i).asString());
    return row;
}

class BuildDefaultsTest : public jobtest::JobFixture {
protected:
    Outcome buildWith(bool eventsEnabled) {
        form->FEventsEnabled = eventsEnabled;
        build();
        form->FEventsEnabled = false;
        Outcome out;
        auto& jobs = DM().tableJobs;
        out.jobsRow = currentRow(jobs);
        out.defaultsRow = currentRow(DM().tableTemplateDefaults);
        out.commandsRow = currentRow(DM().tableCommands);
        out.syntaxRow = currentRow(DM().tableSyntax);
        out.defaultsFilter = DM().tableTemplateDefaults.filter();
        out.defaultsFiltered = DM().tableTemplateDefaults.filtered();
        for (int n = 1; n <= 6; ++n)
            out.boxes.push_back(form->ValueEdit(n)->text().toStdString());
        for (jobs.first(); !jobs.eof(); jobs.next())
            out.rows.push_back(currentRow(jobs));
        return out;
    }
};

} // namespace

TEST_F(BuildDefaultsTest, RemembersLookupsWithoutChangingTheOutcome) {
    // Later lines repeat codes and value types (G00, M98, PIECE, UV), so lookups are answered
    // from memory, the last ones of the build among them.
    const Outcome remembered = buildWith(false);
    ASSERT_EQ(remembered.rows.size(), 30u);
    const Outcome looked = buildWith(true);
    EXPECT_TRUE(remembered == looked);
    EXPECT_EQ(remembered.defaultsFilter, looked.defaultsFilter);
    EXPECT_EQ(remembered.commandsRow, looked.commandsRow);
    EXPECT_EQ(remembered.defaultsRow, looked.defaultsRow);
}
