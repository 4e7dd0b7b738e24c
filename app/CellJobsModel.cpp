#include "CellJobsModel.h"

#include <QDateTime>
#include <QFileInfo>

namespace app {

QString templateText(const CellJob& job) {
    if (job.templateId == 0)
        return "(not listed)";
    if (job.templateMissing())
        return QString("template %1 (deleted)").arg(job.templateId);
    return QString::fromStdString(job.templateName);
}

void CellJobsModel::setJobs(std::vector<CellJob> jobs) {
    beginResetModel();
    jobs_ = std::move(jobs);
    endResetModel();
}

const CellJob* CellJobsModel::job(int row) const {
    return row >= 0 && row < static_cast<int>(jobs_.size()) ? &jobs_[static_cast<std::size_t>(row)]
                                                            : nullptr;
}

int CellJobsModel::rowOf(int pallet, int job) const {
    for (std::size_t i = 0; i < jobs_.size(); ++i)
        if (jobs_[i].pallet == pallet && jobs_[i].job == job)
            return static_cast<int>(i);
    return -1;
}

int CellJobsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(jobs_.size());
}

int CellJobsModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant CellJobsModel::data(const QModelIndex& index, int role) const {
    const CellJob* entry = job(index.row());
    if (!entry)
        return {};
    if (role == Qt::TextAlignmentRole && index.column() <= Job)
        return int(Qt::AlignRight | Qt::AlignVCenter);
    if (role == Qt::ToolTipRole && index.column() == Program)
        return QString::fromStdString(entry->program);
    if (role != Qt::DisplayRole)
        return {};
    const QFileInfo program(QString::fromStdString(entry->program));
    switch (index.column()) {
    case Pallet:
        return entry->pallet;
    case Job:
        return entry->job;
    case Template:
        return templateText(*entry);
    case Lines:
        return entry->hasRows ? QString("%1 of %2").arg(entry->linesFinished).arg(entry->lines)
                              : QString("not built");
    case Program:
        return entry->program.empty() ? QString("-") : program.fileName();
    case Written:
        if (entry->program.empty())
            return {};
        return program.exists() ? program.lastModified().toString("yyyy-MM-dd hh:mm")
                                : QString("missing");
    default:
        return {};
    }
}

QVariant CellJobsModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    static const char* const titles[] = {"Pallet",     "Job",     "Template",
                                         "Lines done", "Program", "Written"};
    return section >= 0 && section < ColumnCount ? QString(titles[section]) : QVariant();
}

} // namespace app
