// The template tree and its rows: select, load, the skeleton of a new template, and save.
#include "common/Format.h"
#include "store/DataMod.h"
#include "template/Template.h"

#include <QApplication>
#include <QLabel>

#include <stdexcept>
#include <utility>

void TdlgTemplate::SelectTemplate(std::int32_t templateId) {
    FTemplateID = templateId;
    auto& dm = DM();
    dm.tableTemplateName.findKey({templateId});
    dm.tableTemplateData.setFiltered(false);
    dm.tableTemplateData.setFilter(common::format("Template_ID = %d", {templateId}));
    dm.tableTemplateData.setFiltered(true);
}

void TdlgTemplate::LoadTemplateTree(QTreeWidget* tree, std::int32_t templateId) {
    SelectTemplate(templateId);
    tree::ClearTree(tree);
    int sections = 0;
    QTreeWidgetItem* section = nullptr;
    QTreeWidgetItem* command = nullptr;
    auto& data = DM().tableTemplateData;
    // Large templates fill without a repaint per node.
    const bool updates = tree->updatesEnabled();
    tree->setUpdatesEnabled(false);
    try {
        for (data.first(); !data.eof(); data.next()) {
            const std::string code = data.fieldByName(schema::Code).asString();
            const int level = data.fieldByName(schema::Node_Level).asInteger();
            if (level == 0) {
                QString text;
                if (code == schema::HeaderCode)
                    text = "Header";
                else if (code == schema::FooterCode)
                    text = "Footer";
                else
                    text = "Workpiece" + QString::number(sections);
                section = tree::AddRootNode(tree, text);
                ++sections; // the Header counts, so the first workpiece is 1
                tree::SetImageIndex(section, tree::ImagePlain);
                continue;
            }
            auto setup = std::make_shared<TCommandSetup>(code);
            const auto syntax = data.fieldByName(schema::Syntax_);
            setup->Syntax = syntax.isNull() ? -1 : syntax.asInteger();
            for (int n = 1; n <= 6; ++n)
                setup->Value(n) = data.fieldByName(schema::ValueColumn(n)).asString();
            setup->Locked = data.fieldByName(schema::Locked).asBoolean();
            setup->Special = data.fieldByName(schema::Special).asInteger();
            const int image = tree::CommandImage(*setup);
            // A row with no section (or command) before it becomes a root node, as a tree view
            // adds a child of no parent.
            QTreeWidgetItem* parent = level == 1 ? section : command;
            const QString text = QString::fromStdString(code);
            QTreeWidgetItem* node = parent ? tree::AddChildNode(parent, text, std::move(setup))
                                           : tree::AddRootNode(tree, text);
            if (!parent)
                tree::SetNodeSetup(node, std::move(setup));
            if (level == 1)
                command = node;
            tree::SetImageIndex(node, image);
        }
    } catch (...) {
        tree->setUpdatesEnabled(updates);
        throw;
    }
    tree->setUpdatesEnabled(updates);
    FModified = false;
}

void TdlgTemplate::NewTemplateTree(int workpieces) {
    FModified = false;
    tvwTemplate->setVisible(false);
    tree::ClearTree(tvwTemplate);
    QApplication::setOverrideCursor(Qt::WaitCursor);
    tree::AddRootNode(tvwTemplate, "Header");
    for (int n = 1; n <= workpieces; ++n)
        tree::AddRootNode(tvwTemplate, "Workpiece " + QString::number(n));
    tree::AddRootNode(tvwTemplate, "Footer");
    tree::Select(tvwTemplate, tree::FindNodeByIndex(tvwTemplate, 0));
    QApplication::restoreOverrideCursor();
    tvwTemplate->setVisible(true);
}

void TdlgTemplate::LoadTemplate(int workpieces, std::int32_t templateId) {
    txtPieceCount->setText(QString::number(workpieces));
    LoadTemplateTree(tvwTemplate, templateId);
    if (tree::NodeCount(tvwTemplate) > 0) {
        FVersion = DM().tableTemplateName.fieldByName(schema::Version).asInteger() + 1;
    } else {
        FVersion = 1;
        NewTemplateTree(workpieces);
    }
}

void TdlgTemplate::SaveTemplateTree() {
    auto& dm = DM();
    store::Transaction transaction(dm.LocalDatabase);
    const auto templateId = dm.tableTemplateName.fieldByName(schema::Template_ID).asInteger();
    auto& data = dm.tableTemplateData;
    data.first();
    while (data.recordCount() > 0)
        data.deleteRecord();
    const int count = tree::NodeCount(tvwTemplate);
    for (int i = 0; i < count; ++i) {
        QTreeWidgetItem* node = tree::FindNodeByIndex(tvwTemplate, i);
        const int level = tree::NodeLevel(node);
        const std::string text = tree::NodeText(node).toStdString();
        if (level == 0) {
            const char* code = text == "Header"   ? schema::HeaderCode
                               : text == "Footer" ? schema::FooterCode
                                                  : schema::WorkpieceCode;
            data.insertRecord({templateId, i, 0, code});
            continue;
        }
        const TCommandSetup* setup = tree::NodeObject(node);
        if (!setup)
            throw std::runtime_error(
                common::format("Node %d (%s) of the template has no command setup", {i, text}));
        data.insertRecord({templateId, i, level, text, setup->Syntax, setup->Value_1,
                           setup->Value_2, setup->Value_3, setup->Value_4, setup->Value_5,
                           setup->Value_6, "", setup->Locked, setup->Special});
    }
    transaction.commit();
}
