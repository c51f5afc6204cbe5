// SPDX-License-Identifier: MIT
#pragma once

#include "shared/Clock.h"
#include "ui/AbstractWindow.h"

#include <QPointer>
#include <memory>
#include <vector>

class FileManager;
class Ui_CreateReportDialog;
class ViewReport;

/// Asks for the range of a report and opens the report. It starts with the range of the last one.
class CreateReportDialog : public AbstractWindow
{
    Q_OBJECT

public:
    /// \a files is borrowed.
    explicit CreateReportDialog(FileManager *files, QWidget *parent = nullptr);
    ~CreateReportDialog() override;

    QString getWindowName() const override;
    /// Replaces the clock behind the quick ranges.
    void setClock(Clock clock) { m_clock = std::move(clock); }

protected:
    void showEvent(QShowEvent *event) override;
    void changeEvent(QEvent *event) override;

private slots:
    void on_latestBtn_clicked();
    void on_todayBtn_clicked();
    void on_yesterdayBtn_clicked();
    void on_lastWeekBtn_clicked();
    void on_buttonBox_accepted();
    void on_buttonBox_rejected();

private:
    void setRange(const QDateTime &from, const QDateTime &to);
    void openReport(const QDateTime &from, const QDateTime &to);

    std::unique_ptr<Ui_CreateReportDialog> m_ui;
    FileManager *m_files;
    Clock m_clock = systemClock();
    std::vector<QPointer<ViewReport>> m_reports; ///< They close by themselves, or end with this.
};
