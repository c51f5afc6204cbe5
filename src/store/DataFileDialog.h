// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QFileDialog>
#include <QFileIconProvider>
#include <QString>

/// Asks the user for the path of a data file, in Qt's own dialog and starting in the home folder.
///
/// The dialog opens none of the files that it shows. A process that opens and closes a file loses
/// all its locks on that file, also those that SQLite holds for a store.
class DataFileDialog
{
    Q_DECLARE_TR_FUNCTIONS(DataFileDialog)

public:
    /// \return the absolute path, with the suffix; empty when cancelled. A file that exists there
    /// is one that the user agreed to replace.
    static QString askForNewFile();
    /// \return the absolute path; empty when cancelled.
    static QString askForExistingFile();

private:
    /// Tells icon and kind of a file by its name alone; Qt's own looks at what is in it.
    class NameOnlyIconProvider : public QFileIconProvider
    {
    public:
        using QFileIconProvider::icon;
        QIcon icon(const QFileInfo &info) const override;
        QString type(const QFileInfo &info) const override;
    };

    explicit DataFileDialog(const QString &caption);
    QString ask();
    static QString filter();

    NameOnlyIconProvider m_icons; ///< Outlives the dialog, which asks it from a thread.
    QFileDialog m_dialog;
};
