// The cell window's views: the selected job's master program and the host's last report.
#include "CellWindow.h"

#include "CellHostStore.h"

#include "common/Windows1252.h"
#include "dialogs/WaitCursor.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QPlainTextEdit>
#include <QSettings>
#include <QTextDocument>

namespace app {

namespace {

// When the module's job store last changed: its database file or, in WAL mode, its log.
QDateTime storeChanged(const QString& cellDir) {
    QDateTime latest;
    for (const char* name : {"Quorvel.db", "Quorvel.db-wal"}) {
        const QFileInfo file(QDir(cellDir).filePath(name));
        if (file.exists() && (!latest.isValid() || file.lastModified() > latest))
            latest = file.lastModified();
    }
    return latest;
}

} // namespace

QString fromWindows1252(const QByteArray& bytes) {
    return QString::fromStdString(
        common::fromWindows1252(std::string_view(bytes.constData(), bytes.size())));
}

void CellWindow::showProgram() {
    lblProgramNote->hide();
    txtProgram->clear();
    const CellJob* job = selectedJob();
    if (!job) {
        lblProgram->setText("No job selected");
        return;
    }
    if (job->program.empty()) {
        lblProgram->setText(QString("Pallet %1, job %2: no master program written yet")
                                .arg(job->pallet)
                                .arg(job->job));
        return;
    }
    const QString path = QString::fromStdString(job->program);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        lblProgram->setText(QFileInfo(path).fileName() + ": cannot be read");
        lblProgramNote->setText("The program " + path +
                                " is missing or cannot be read: " + file.errorString());
        lblProgramNote->show();
        return;
    }
    const dialogs::WaitCursor wait;
    const QString text = fromWindows1252(file.readAll());
    txtProgram->setPlainText(text);
    const int lines = txtProgram->document()->blockCount() - (text.endsWith('\n') ? 1 : 0);
    const QFileInfo info(path);
    lblProgram->setText(QString("%1 - %2 lines, written %3")
                            .arg(info.fileName())
                            .arg(lines)
                            .arg(info.lastModified().toString("yyyy-MM-dd hh:mm:ss")));
    lblProgram->setToolTip(path);
    // The store keeps no time per row. A program whose report the window received is compared
    // with the rows as they were then; any other with the last change of the job store, given a
    // few seconds for the store to settle after the write.
    QString note;
    const auto known = writtenRows(job->pallet, job->job);
    if (known && known->program == job->program) {
        if (JobRowsDigest(job->pallet, job->job) != known->digest)
            note = "The job's rows changed after this program was written: open the job and "
                   "write it again.";
    } else if (const QDateTime changed = storeChanged(cellDir_);
               job->hasRows && changed.isValid() && changed > info.lastModified().addSecs(5)) {
        note = "The job store changed after this program was written (" +
               changed.toString("yyyy-MM-dd hh:mm:ss") +
               "): the job may differ from it. Open the job and write it again to be sure.";
    }
    lblProgramNote->setText(note);
    lblProgramNote->setVisible(!note.isEmpty());
}

void CellWindow::showReport(const TAutomationInfo& info) {
    QString text;
    auto line = [&text](const char* field, const QString& value) {
        text += QString("%1: %2\n").arg(field, value);
    };
    auto str = [](const std::string& s) { return QString::fromStdString(s); };
    line("HostTag", QString::number(info.HostTag));
    line("JobNumber", QString::number(info.JobNumber));
    line("PalletNumber", str(info.PalletNumber));
    line("MachineText", str(info.MachineText));
    line("CommandFile", str(info.CommandFile));
    line("FileList", str(info.FileList));
    line("CommandText", str(info.CommandText));
    line("HostText1", str(info.HostText1));
    line("HostText2", str(info.HostText2));
    line("AutomationText1", str(info.AutomationText1));
    line("AutomationText2", str(info.AutomationText2));
    line("AutomationFlag1", QString::number(int(info.AutomationFlag1)));
    line("AutomationFlag2", QString::number(int(info.AutomationFlag2)));
    line("HostFlag1", QString::number(int(info.HostFlag1)));
    line("HostFlag2", QString::number(int(info.HostFlag2)));
    txtReport->setPlainText(text);
    lblReport->setText(QString("Pallet %1, job %2, received %3")
                           .arg(str(info.PalletNumber))
                           .arg(info.JobNumber)
                           .arg(QDateTime::currentDateTime().toString("hh:mm:ss")));
    // The host queues what the module reported: the program and the files that go with it.
    bool isNumber = false;
    const int pallet = str(info.PalletNumber).toInt(&isNumber);
    if (hostStore_ && isNumber && !info.CommandFile.empty()) {
        guarded("Cannot queue the job's files", [&] {
            hostStore_->queueJob(pallet, info.JobNumber, info.CommandFile, info.FileList);
            rememberWrittenRows(pallet, info.JobNumber,
                                {info.CommandFile, JobRowsDigest(pallet, info.JobNumber)});
        });
    }
}

QString CellWindow::writtenKey(int pallet, int job) const {
    return QString("written/%1/%2-%3")
        .arg(QString::fromLatin1(
            QCryptographicHash::hash(cellDir_.toUtf8(), QCryptographicHash::Sha1).toHex()))
        .arg(pallet)
        .arg(job);
}

std::optional<CellWindow::WrittenRows> CellWindow::writtenRows(int pallet, int job) const {
    if (!settings) {
        const auto found = written_.find({pallet, job});
        return found == written_.end() ? std::nullopt : std::optional(found->second);
    }
    const QString key = writtenKey(pallet, job);
    if (!settings->contains(key + "/program"))
        return std::nullopt;
    return WrittenRows{settings->value(key + "/program").toString().toStdString(),
                       static_cast<std::size_t>(settings->value(key + "/digest").toULongLong())};
}

void CellWindow::rememberWrittenRows(int pallet, int job, const WrittenRows& rows) {
    if (!settings) {
        written_[{pallet, job}] = rows;
        return;
    }
    const QString key = writtenKey(pallet, job);
    settings->setValue(key + "/program", QString::fromStdString(rows.program));
    settings->setValue(key + "/digest", static_cast<qulonglong>(rows.digest));
}

} // namespace app
