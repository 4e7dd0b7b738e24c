#pragma once
// The list of template names that the copy and delete dialogs show, each entry with its template
// id in Qt::UserRole.
#include <string>

class QListWidget;

// Clears the list and fills it from a statement on TemplateName, without firing its signals.
void FillTemplateList(QListWidget* list, const std::string& statement);
