// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QDialog>
#include <memory>

class FileManager;
class Ui_ViewReport;

/// A window with the report of what was done in a range of time. Made once; later changes don't
/// show.
class ViewReport : public QDialog
{
    Q_OBJECT

public:
    /// \a files is borrowed, and only until the report is made; \a from and \a to are UTC.
    /// \throws const char* when a file is damaged, DiskStore::FileException when it can't be read.
    ViewReport(FileManager *files, const QDateTime &from, const QDateTime &to,
               QWidget *parent = nullptr);
    ~ViewReport() override;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    std::unique_ptr<Ui_ViewReport> m_ui;
};
