#include "common/FileSearch.h"

#include <algorithm>
#include <filesystem>

namespace common {

std::vector<FoundFile> FindFiles(const std::string& directory) {
    namespace fs = std::filesystem;
    std::vector<FoundFile> found;
    std::error_code ec;
    fs::directory_iterator it(directory.empty() ? fs::path(".") : fs::path(directory), ec);
    if (ec)
        return found;
    for (; it != fs::directory_iterator(); it.increment(ec)) {
        if (ec)
            break;
        FoundFile entry;
        entry.name = it->path().filename().string();
        std::error_code statError;
        entry.attributes = it->is_directory(statError) ? faDirectory : faArchive;
        if (!entry.name.empty() && entry.name[0] == '.')
            entry.attributes |= faHidden;
        const auto perms = it->status(statError).permissions();
        if (!statError && (perms & fs::perms::owner_write) == fs::perms::none)
            entry.attributes |= faReadOnly;
        found.push_back(std::move(entry));
    }
    std::sort(found.begin(), found.end(),
              [](const FoundFile& a, const FoundFile& b) { return a.name < b.name; });
    return found;
}

} // namespace common
