// SPDX-License-Identifier: MIT
#pragma once

#include "fakes/HierarchyDesk.h"
#include "model/TodoListModel.h"

#include <QAbstractItemModelTester>
#include <QMimeData>
#include <QtTest>
#include <utility>
#include <vector>

/// The to-do list on real files, wired as in the program, with Qt's model tester attached: it ends
/// the test when the model's signals contradict its rows.
class TodoDesk
{
public:
    static constexpr int unlisted = -1;
    using Entries = std::vector<std::pair<QString, int>>;

    TodoDesk() = default;
    TodoDesk(const TodoDesk &) = delete;
    TodoDesk &operator=(const TodoDesk &) = delete;
    ~TodoDesk() { stop(); }

    /// A data file with these entries and their numbers on the list; it is not opened.
    QString makeFile(const QString &name, const Entries &entries)
    {
        QString outline;
        for (const auto &entry : entries)
            outline += QStringLiteral("- %1\n").arg(entry.first);
        const QString path = hierarchy.makeFile(name, outline);
        for (const auto &[text, number] : entries) {
            if (number == unlisted)
                continue;
            Outline::runOnDisk(path,
                               {QStringLiteral("UPDATE entry SET todolistseq=%1 WHERE id=(SELECT "
                                               "docid FROM entrybody WHERE content='%2')")
                                    .arg(number)
                                    .arg(text)});
        }
        return path;
    }

    /// The same, open from the start.
    QString addFile(const QString &name, const Entries &entries)
    {
        const QString path = makeFile(name, entries);
        QSettings().setValue(QStringLiteral("loadfiles/%1").arg(m_listed++), path);
        return path;
    }

    void start()
    {
        hierarchy.start();
        attach();
    }

    void restart()
    {
        stop();
        hierarchy.restart();
        attach();
    }

    FileManager &files() { return *hierarchy.files; }
    qint64 idOf(const QString &text, int file = 0) { return hierarchy.idOf(text, file); }
    EntryAddress addressOf(const QString &text, int file = 0) { return {file, idOf(text, file)}; }

    /// The rows as "file:text".
    QStringList rows() const
    {
        QStringList result;
        for (int row = 0; row < todos->rowCount(); ++row) {
            const QModelIndex index = todos->index(row);
            result += QStringLiteral("%1:%2")
                          .arg(todos->getEntryAddressForIndex(index).fileIndex)
                          .arg(index.data().toString());
        }
        return result;
    }

    std::vector<int> numbers() const
    {
        std::vector<int> result;
        for (int row = 0; row < todos->rowCount(); ++row)
            result.push_back(todos->sequenceForIndex(todos->index(row)));
        return result;
    }

    /// What the open file holds, unsaved changes included, as "text=number" in the numbers' order.
    QStringList stored(int file = 0) { return read(hierarchy.store(file).dbFilePath()); }

    void drop(int sourceRow, int dropRow)
    {
        const std::unique_ptr<QMimeData> data(todos->mimeData({todos->index(sourceRow)}));
        QVERIFY(todos->dropMimeData(data.get(), Qt::MoveAction, dropRow, 0, QModelIndex()));
    }

    /// Makes every further write of a list number in \a file fail; reading goes on.
    void breakWriting(int file)
    {
        QSqlQuery query(QSqlDatabase::database(hierarchy.store(file).dbFilePath(), false));
        // Outside the transaction, which the store gives up before its first change.
        if (!query.exec(QStringLiteral("COMMIT"))
            || !query.exec(QStringLiteral(
                "CREATE TEMP TRIGGER broken BEFORE UPDATE OF todolistseq ON entry BEGIN SELECT "
                "RAISE(ABORT, 'broken'); END"))
            || !query.exec(QStringLiteral("BEGIN")))
            throw std::runtime_error("the trigger could not be made");
    }

    bool somethingWritten() const { return hierarchy.somethingWritten(); }
    int fileErrors() const { return m_fileErrors; }

    HierarchyDesk hierarchy;
    std::unique_ptr<TodoListModel> todos;

private:
    static QStringList read(const QString &connection)
    {
        QSqlQuery query(QSqlDatabase::database(connection, false));
        if (!query.exec(QStringLiteral("SELECT content, todolistseq FROM entry JOIN entrybody ON "
                                       "docid=id WHERE todolistseq IS NOT NULL ORDER BY "
                                       "todolistseq")))
            throw std::runtime_error("the numbers could not be read");
        QStringList result;
        while (query.next())
            result += query.value(0).toString() + u'=' + query.value(1).toString();
        return result;
    }

    void attach()
    {
        using Hierarchy = HierarchyModel;
        using Todos = TodoListModel;
        todos = std::make_unique<Todos>(&files());
        Todos *list = todos.get();
        QObject::connect(&files(), &FileManager::transactionRollback, list,
                         &Todos::tryToResetStateAfterDbRollback);
        Hierarchy *model = hierarchy.model.get();
        QObject::connect(model, &Hierarchy::addEntryToTodoListAndShow, list, &Todos::addTodo);
        QObject::connect(model, &Hierarchy::entryStateChanged, list, &Todos::entryStateChanged);
        QObject::connect(model, &Hierarchy::entryBodyChanged, list, &Todos::entryBodyChanged);
        QObject::connect(model, &Hierarchy::entryDeleted, list, &Todos::entryDeleted);
        m_tester = std::make_unique<QAbstractItemModelTester>(
            list, QAbstractItemModelTester::FailureReportingMode::Fatal);
        watchForErrors();
        QObject::connect(&files(), &FileManager::fileLoaded, list, [this] { watchForErrors(); });
    }

    void watchForErrors()
    {
        for (int index = 0; index < files().getFileCount(); ++index) {
            DiskStore *store = files().getFile(index);
            store->disconnect(todos.get());
            QObject::connect(store, &DiskStore::errorOccurred, todos.get(),
                             [this] { ++m_fileErrors; });
        }
    }

    void stop()
    {
        m_tester.reset();
        todos.reset();
    }

    int m_listed = 0;
    int m_fileErrors = 0;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
};

/// Three files, with two numbers that both the first and the second use.
inline void startThreeFiles(TodoDesk &desk)
{
    desk.addFile(QStringLiteral("one.bdl"),
                 {{QStringLiteral("a1"), 100},
                  {QStringLiteral("a2"), 200},
                  {QStringLiteral("a3"), TodoDesk::unlisted}});
    desk.addFile(QStringLiteral("two.bdl"),
                 {{QStringLiteral("b1"), 100},
                  {QStringLiteral("b2"), 150},
                  {QStringLiteral("b3"), TodoDesk::unlisted}});
    desk.addFile(QStringLiteral("three.bdl"),
                 {{QStringLiteral("c1"), 120},
                  {QStringLiteral("c2"), 200},
                  {QStringLiteral("c3"), TodoDesk::unlisted}});
    desk.start();
}

/// The rows then.
inline QStringList threeFilesInOrder()
{
    return {QStringLiteral("1:b1"), QStringLiteral("0:a1"), QStringLiteral("2:c1"),
            QStringLiteral("1:b2"), QStringLiteral("2:c2"), QStringLiteral("0:a2")};
}
