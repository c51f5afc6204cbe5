// SPDX-License-Identifier: MIT
#pragma once

#include "fakes/TestSettings.h"
#include "shared/Refusal.h"
#include "store/FileManager.h"

#include <QtTest>

/// Counts how often \a window was told to show a refusal; goes with the window.
class RefusalWatch : public QObject
{
public:
    explicit RefusalWatch(QWidget *window)
        : QObject(window)
    {
        window->installEventFilter(this);
    }
    int count() const { return m_count; }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == Refusal::eventType())
            ++m_count;
        return false;
    }

private:
    int m_count = 0;
};

/// Open files and settings for a window that needs no more than those.
class DialogDesk
{
public:
    /// Opens a new file after those that are open. \return the id of its root entry.
    qint64 addFile(const QString &name)
    {
        const int index = files.getFileCount();
        files.openFile(settings.filePath(name), index);
        return files.getFile(index)->getEntryId(-1, 0);
    }

    qint64 addDone(qint64 parent, const QString &text, int sequence, const QDateTime &doneDate)
    {
        return files.getFile(0)->insertEntry(parent, text, sequence, EntryState::Done, doneDate);
    }

    /// Takes the text of an entry away, as no store would.
    void damage(qint64 entry)
    {
        QSqlQuery query(QSqlDatabase::database(files.getFile(0)->dbFilePath(), false));
        if (!query.exec(QStringLiteral("DELETE FROM entrybody WHERE docid=%1").arg(entry)))
            qFatal("the entry could not be damaged");
    }

    TestSettings settings;
    FileManager files;
};
