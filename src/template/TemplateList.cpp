#include "template/TemplateList.h"

#include "store/DataMod.h"

#include <QListWidget>
#include <QSignalBlocker>

void FillTemplateList(QListWidget* list, const std::string& statement) {
    const QSignalBlocker blocker(list);
    list->clear();
    auto query = DM().NewLocalQuery();
    query->setSql(statement);
    query->open();
    for (; !query->eof(); query->next()) {
        auto* entry = new QListWidgetItem(
            QString::fromStdString(query->fieldByName(schema::Name).asString()), list);
        entry->setData(Qt::UserRole, query->fieldByName(schema::Template_ID).asInteger());
    }
}
