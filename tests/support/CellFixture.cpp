#include "support/CellFixture.h"

#include "store/Database.h"

namespace testsupport {

CellFixture::CellFixture(bool demoData) {
    store::CellOptions options;
    options.demoData = demoData;
    store::createCell(tmp.str(), options);
    services_ = std::make_unique<common::ScopedServices>(common::Services{&ui, &platform, &host});
}

void CellFixture::run(const std::string& file, const std::string& sql) const {
    store::Database db("fixture", "fixture");
    db.setFileName(tmp.file(file));
    db.open();
    db.executeScript(sql);
}

} // namespace testsupport
