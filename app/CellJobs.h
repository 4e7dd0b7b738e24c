#pragma once
// What the host reads of its cell through the open module: the fixtures, and one entry per pallet
// and job from the module's Jobs rows and the shared database's JobList and JobQueue. Shared by
// `quorvel jobs` and the cell window.
#include <cstddef>
#include <string>
#include <vector>

namespace app {

struct CellJob {
    int pallet = 0;
    int job = 0;
    int templateId = 0;       // from JobList; 0 when the host has no entry for the job
    std::string templateName; // empty when unlisted or when the template no longer exists
    int lines = 0;            // lines of the job's rows (levels above 0)
    int linesFinished = 0;
    std::string program;  // master program last written: the job's stored path, else JobQueue's
    bool hasRows = false; // the module holds rows for the job
    bool templateMissing() const { return templateId != 0 && templateName.empty(); }
};

struct CellFixture {
    std::string partNumber;
    std::string description;
};

// The jobs of the open cell in pallet and job order.
std::vector<CellJob> ListCellJobs();
// The fixtures of the open cell's list in name order.
std::vector<CellFixture> ListCellFixtures();

// The fixture a template of the open cell is made for; empty when there is no such template.
std::string TemplateFixture(int templateId);

// A digest of every value of a job's rows: equal digests, equal rows.
std::size_t JobRowsDigest(int pallet, int job);

} // namespace app
