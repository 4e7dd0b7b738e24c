// Copying a job's files between directories, with the progress window.
#include "boundary/Exports.h"

#include "common/Convert.h"
#include "common/FileNames.h"
#include "common/FileSearch.h"
#include "common/Services.h"
#include "dialogs/Export.h"

#include <QApplication>

#include <memory>
#include <stdexcept>

namespace boundary {

bool IsProgramFile(const std::string& fileName) {
    return common::upperCase(common::extractFileExt(fileName)) == ".NC";
}

void PumpMessages(std::uint32_t milliseconds) {
    // The first reading as signed, the later ones as unsigned: kept as the original counts.
    const std::int32_t start = static_cast<std::int32_t>(common::platform().tickCount());
    std::int64_t elapsed = 0;
    do {
        common::hostApplication().processMessages();
        elapsed = static_cast<std::int64_t>(common::platform().tickCount()) - start;
    } while (elapsed < static_cast<std::int64_t>(milliseconds));
}

std::vector<std::string> JobFilesToCopy(const std::string& source, bool filter) {
    std::vector<std::string> names;
    for (const common::FoundFile& found : common::FindFiles(source)) {
        // Only a plain directory is recognised as one; the copy of any other fails in silence.
        if (found.attributes == common::faDirectory)
            continue;
        if (filter) {
            const std::string upper = common::upperCase(found.name);
            if (IsProgramFile(found.name) || upper == "JOB.DAT" || upper == "JOB.IDX")
                continue;
        }
        names.push_back(found.name);
    }
    return names;
}

bool CopyJobFile(const std::string& source, const std::string& destination,
                 const std::string& name) {
    return common::platform().copyFile(common::includeTrailingPathDelimiter(source) + name,
                                       common::includeTrailingPathDelimiter(destination) + name,
                                       false);
}

void CopyJobFiles(TdlgExport& form, const std::string& source, const std::string& destination,
                  bool filter) {
    form.txtFromDir->setText(QString::fromStdString(source));
    form.FDone = false;
    for (const auto& name : JobFilesToCopy(source, filter)) {
        form.txtFileName->setText(QString::fromStdString(name));
        CopyJobFile(source, destination, name); // a failed copy is passed over
        common::hostApplication().processMessages();
        if (form.FDone)
            return; // cancelled: the files copied so far stay
    }
    form.FDone = true;
}

void CopyFiles(const std::string& source, const std::string& destination) {
    if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
        throw std::logic_error("CopyFiles needs the host's Qt application");
    auto form = std::make_unique<TdlgExport>();
    form->show();
    form->repaint();
    common::hostApplication().processMessages();
    CopyJobFiles(*form, source, destination, true);
    // The window stays up one more second, so that a short copy can still be seen.
    do
        PumpMessages(1000);
    while (!form->FDone);
}

} // namespace boundary
