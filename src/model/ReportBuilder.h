// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QLocale>
#include <QTimeZone>

class FileManager;
class ReportTree;

/// Writes the report of what was done in a range of time: every entry marked done in it, in all
/// open files, each below its ancestors, the branch with the latest work last.
///
/// One line per entry: date columns (blank for an ancestor), " | ", indentation, text. Two blanks
/// of indentation per level; only in a report so deep and so long that blanks would fill the memory
/// does the indentation stop growing.
class ReportBuilder
{
public:
    /// An invalid \a zone stands for the computer's local time. \a files is borrowed.
    explicit ReportBuilder(const FileManager *files, const QLocale &locale = QLocale::system(),
                           const QTimeZone &zone = {});

    /// The report of the entries done between \a from and \a to, both included.
    /// \throws const char* "bad" when a file names an entry as done that it can't read.
    /// \throws DiskStore::FileException
    QString build(const QDateTime &from, const QDateTime &to) const;

private:
    QString textOf(const ReportTree &tree) const;
    QString columns(const QDateTime &doneDate) const;

    const FileManager *m_files;
    QLocale m_locale;
    QTimeZone m_zone;
    QString m_dateFormat;
    QString m_timeFormat;
    qsizetype m_dateWidth;
    qsizetype m_timeWidth;
    QString m_blankColumns;
};
