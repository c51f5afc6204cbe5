// SPDX-License-Identifier: MIT
#pragma once

#include "store/DiskStore.h"

#include <QDateTime>
#include <QList>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariant>
#include <algorithm>
#include <stdexcept>

/// Outlines as text, so that a test can say what a file holds and compare it at a glance. One line
/// per entry, two blanks of indentation per level, a mark for the state ("-" to-do, "/" won't do,
/// "x" done, "*" category), the text, and, where the sibling's number matters, "@" and the number.
///
/// Reading goes through plain SQL rather than through the store's own queries: what a test expects
/// then never depends on the code that it checks.
namespace Outline
{

enum class Numbers { Hidden, Shown };

struct Row {
    qint64 id = -1;
    qint64 parentId = -1;
    int sequence = -1;
    EntryState state = EntryState::None;
    QString doneDate; ///< As the file holds it.
    QString keyText;
    QString text;
};

using Rows = QList<Row>;

/// The date at which outlines built here were done.
inline QDateTime builtDoneDate()
{
    return {QDate(2020, 1, 2), QTime(3, 4, 5), Qt::UTC};
}

inline EntryState stateOf(QChar mark)
{
    switch (mark.unicode()) {
    case '-':
        return EntryState::Todo;
    case '/':
        return EntryState::WontDo;
    case 'x':
        return EntryState::Done;
    case '*':
        return EntryState::Category;
    default:
        throw std::invalid_argument("unknown mark in an outline");
    }
}

inline QChar markOf(EntryState state)
{
    switch (state) {
    case EntryState::Todo:
        return u'-';
    case EntryState::WontDo:
        return u'/';
    case EntryState::Done:
        return u'x';
    case EntryState::Category:
        return u'*';
    case EntryState::None:
        break;
    }
    return u'?';
}

/// Adds the entries of \a outline below \a parentId; siblings are numbered on from zero.
inline void build(DiskStore &store, qint64 parentId, const QString &outline)
{
    struct Level {
        qint64 parentId;
        qint64 nextSequence; ///< Wide enough to be one beyond the highest number.
    };
    QList<Level> levels{{parentId, 0}};
    const QStringList lines = outline.split(u'\n', Qt::SkipEmptyParts);
    qint64 latestId = parentId;
    for (const QString &line : lines) {
        const auto mark = std::find_if(line.begin(), line.end(), [](QChar c) { return c != u' '; });
        const qsizetype depth = (mark - line.begin()) / 2;
        while (levels.size() > depth + 1)
            levels.removeLast();
        if (levels.size() < depth + 1)
            levels.append({latestId, 0});
        QString text = line.mid(depth * 2 + 2);
        Level &level = levels.last();
        if (const qsizetype at = text.lastIndexOf(u'@'); at != -1) {
            level.nextSequence = text.mid(at + 1).toInt();
            text = text.left(at).trimmed();
        }
        const EntryState state = stateOf(*mark);
        latestId
            = store.insertEntry(level.parentId, text, static_cast<int>(level.nextSequence), state,
                                state == EntryState::Done ? builtDoneDate() : QDateTime());
        ++level.nextSequence;
    }
}

/// All entries, in the order of their parents and numbers; an entry without a text row shows as
/// "(no text)".
inline Rows read(const QSqlDatabase &database)
{
    QSqlQuery query(database);
    query.setForwardOnly(true);
    const bool done = query.exec(QStringLiteral(
        "SELECT e.id, e.parentid, e.sequence, e.state, e.donedate, e.hotkeytext, eb.content "
        "FROM entry e LEFT JOIN entrybody eb ON eb.docid=e.id ORDER BY e.parentid, e.sequence"));
    if (!done)
        throw std::runtime_error("the entries could not be read");
    Rows rows;
    while (query.next()) {
        rows.append({query.value(0).toLongLong(), query.value(1).toLongLong(),
                     query.value(2).toInt(), static_cast<EntryState>(query.value(3).toInt()),
                     query.value(4).toString(), query.value(5).toString(),
                     query.isNull(6) ? QStringLiteral("(no text)") : query.value(6).toString()});
    }
    return rows;
}

/// What the open file holds, unsaved changes included.
inline Rows read(const DiskStore &store)
{
    return read(QSqlDatabase::database(store.dbFilePath(), false));
}

/// Runs \a action on a connection of its own to the file at \a path.
template <typename Action> auto onDisk(const QString &path, Action &&action)
{
    static int number = 0;
    const QString name = QStringLiteral("outline on disk %1").arg(++number);
    struct Closer {
        QString name;
        ~Closer() { QSqlDatabase::removeDatabase(name); }
    } closer{name};
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
    database.setDatabaseName(path);
    if (!database.open())
        throw std::runtime_error("the file could not be opened");
    return action(database);
}

/// What was saved to the file at \a path.
inline Rows readFromDisk(const QString &path)
{
    return onDisk(path, [](const QSqlDatabase &database) { return read(database); });
}

/// Changes the closed file at \a path as another program would.
inline void runOnDisk(const QString &path, const QStringList &statements)
{
    onDisk(path, [&statements](const QSqlDatabase &database) {
        for (const QString &statement : statements) {
            QSqlQuery query(database);
            if (!query.exec(statement))
                throw std::runtime_error(qPrintable(statement));
        }
    });
}

inline qint64 rootOf(const Rows &rows)
{
    for (const Row &row : rows) {
        if (row.parentId == -1)
            return row.id;
    }
    return -1;
}

inline Row rowWithText(const Rows &rows, const QString &text)
{
    const auto found = std::find_if(rows.begin(), rows.end(),
                                    [&text](const Row &row) { return row.text == text; });
    return found == rows.end() ? Row{} : *found;
}

inline void dumpChildren(const Rows &rows, qint64 parentId, int depth, Numbers numbers,
                         QString *result)
{
    for (const Row &row : rows) {
        if (row.parentId != parentId)
            continue;
        *result += QString(depth * 2, u' ') + markOf(row.state) + u' ' + row.text;
        if (numbers == Numbers::Shown)
            *result += QStringLiteral(" @%1").arg(row.sequence);
        *result += u'\n';
        dumpChildren(rows, row.id, depth + 1, numbers, result);
    }
}

/// The outline below \a parentId, by default below the file's root.
inline QString dump(const Rows &rows, Numbers numbers = Numbers::Hidden, qint64 parentId = -1)
{
    QString result;
    dumpChildren(rows, parentId == -1 ? rootOf(rows) : parentId, 0, numbers, &result);
    return result;
}

/// Whether any two siblings share a number, or a number is out of range.
inline bool hasBadNumbers(const Rows &rows)
{
    for (qsizetype i = 0; i < rows.size(); ++i) {
        if (rows[i].sequence < 0)
            return true;
        // Rows come ordered by parent and number.
        if (i > 0 && rows[i].parentId == rows[i - 1].parentId
            && rows[i].sequence == rows[i - 1].sequence)
            return true;
    }
    return false;
}

} // namespace Outline
