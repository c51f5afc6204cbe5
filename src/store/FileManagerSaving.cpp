// SPDX-License-Identifier: MIT
#include "store/FileManager.h"

#include "shared/ProgramEnd.h"
#include "store/StoreLogging.h"

namespace
{
constexpr qint64 reminderAfterSeconds = 14400;
}

void FileManager::firstUpdateOfTransaction()
{
    if (m_unsavedSince.isNull())
        m_unsavedSince = m_clock();
}

bool FileManager::commitAndRestartTransactions()
{
    bool allSaved = true;
    // One for all, so that the user doesn't wait for each locked file in turn.
    const QDeadlineTimer deadline(m_patienceMs);
    for (const auto &file : m_files) {
        try {
            file->commitAndRestartTransaction(deadline);
        } catch (const DiskStore::FileException &) {
            // The store has reported it; fileError() will tell the user.
            allSaved = false;
        }
    }
    m_unsavedSince = QDateTime();
    return allSaved;
}

void FileManager::rollbackAndRestartTransactions()
{
    for (const auto &file : m_files) {
        try {
            file->rollbackAndRestartTransaction();
        } catch (const DiskStore::FileException &) {
            qCDebug(lcStore) << "could not discard the changes in" << file->dbFilePath();
        }
    }
    m_unsavedSince = QDateTime();
    emit transactionRollback();
}

QMessageBox::StandardButton FileManager::prompUserToMaybeSaveChanges()
{
    return QMessageBox::information(
        nullptr, tr("Save changes?"),
        tr("Some of your changes have not been saved. What would you like to do?"),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
}

void FileManager::promptUserToMaybeSaveChangesAndExit()
{
    const QMessageBox::StandardButton answer
        = m_unsavedSince.isNull() ? QMessageBox::Save : prompUserToMaybeSaveChanges();
    if (answer == QMessageBox::Discard) {
        rollbackAndRestartTransactions();
        endProgram();
    } else if (answer == QMessageBox::Save && commitAndRestartTransactions()) {
        // When a file could not be saved its error speaks first, and the program stays.
        endProgram();
    }
}

void FileManager::maybePromptUserToPeriodicallySaveChanges()
{
    if (m_unsavedSince.isNull() || m_unsavedSince.addSecs(reminderAfterSeconds) >= m_clock())
        return;
    const QMessageBox::StandardButton answer = QMessageBox::information(
        nullptr, tr("Save changes?"),
        tr("You haven't saved your changes for a long time. You can always save by pressing Return "
           "in the main window, which helps protect your data in case Brindle terminates "
           "unexpectedly. Would you like to save now?"),
        QMessageBox::Save | QMessageBox::No, QMessageBox::Save);
    if (answer == QMessageBox::Save)
        commitAndRestartTransactions();
    else if (!m_unsavedSince.isNull())
        m_unsavedSince = m_clock();
}
