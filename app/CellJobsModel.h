#pragma once
// The jobs of the cell as the window's table shows them: pallet, job, template, lines finished of
// all lines, the master program last written and its time.
#include "CellJobs.h"

#include <QAbstractTableModel>

#include <vector>

namespace app {

class CellJobsModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { Pallet, Job, Template, Lines, Program, Written, ColumnCount };

    using QAbstractTableModel::QAbstractTableModel;

    void setJobs(std::vector<CellJob> jobs);
    const std::vector<CellJob>& jobs() const { return jobs_; }
    // The job of a row; null outside the table.
    const CellJob* job(int row) const;
    // The row of a pallet's job, or -1.
    int rowOf(int pallet, int job) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    std::vector<CellJob> jobs_;
};

// The text of a job's template for the list: its name, "(not listed)" when the host has no
// entry (Open then asks for the template), and a
// note when the template was deleted.
QString templateText(const CellJob& job);

} // namespace app
