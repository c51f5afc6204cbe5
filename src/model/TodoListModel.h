// SPDX-License-Identifier: MIT
#pragma once

#include "shared/EntryAddress.h"
#include "shared/EntryState.h"
#include "store/DiskStore.h"

#include <QAbstractListModel>
#include <QPointer>
#include <vector>

class FileManager;

/// The to-do list: one ordered list of references to entries of all open files.
///
/// Each file stores a number per listed entry; the list is their union in ascending order. Numbers
/// are sparse, so that an insertion seldom has to renumber neighbours. Numbers of several files can
/// clash when they are loaded together: the list then carries others in memory, and the first real
/// change writes all that differ.
class TodoListModel : public QAbstractListModel
{
    Q_OBJECT

public:
    /// An entry and the open file it lies in; unlike an address it stays true when files come, go
    /// or move.
    struct Entry {
        QPointer<DiskStore> store;
        qint64 id = -1;
    };

    /// \a fileManager is borrowed and must outlive this object.
    explicit TodoListModel(FileManager *fileManager);

    /// Takes the row off the list. \return the row that now stands there, invalid when none does.
    QModelIndex deleteItem(const QModelIndex &index);
    QModelIndex getFirstEntryIndex() const;
    /// The row of an entry; invalid when it isn't listed.
    QModelIndex getIndexForEntry(int fileIndex, qlonglong entryId) const;
    EntryAddress getEntryAddressForIndex(const QModelIndex &index) const;

    /// The entry in a row; none for an invalid index.
    Entry entryAt(const QModelIndex &index) const;
    /// The row of \a entry, wherever its file stands now; invalid when it isn't listed.
    QModelIndex indexOf(const Entry &entry) const;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    Qt::DropActions supportedDropActions() const override;
    QStringList mimeTypes() const override;
    /// \throws const char* for other than one index.
    QMimeData *mimeData(const QModelIndexList &indexes) const override;
    bool dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                      const QModelIndex &parent) override;

    /// The number an item carries in memory, for tests and diagnostics; -1 for an invalid index.
    int sequenceForIndex(const QModelIndex &index) const;

public slots:
    /// Puts an entry on top of the list, unless it is listed.
    /// \throws const char* "bad" when it can't be read.
    void addTodo(EntryAddress address);
    void entryStateChanged(int fileIndex, qlonglong entryId, EntryState oldState,
                           EntryState newState);
    void entryBodyChanged(int fileIndex, qlonglong entryId);
    void entryDeleted(int fileIndex, qlonglong entryId);
    void fileUnloaded(int fileIndex);
    void fileLoaded(int fileIndex);
    void fileMoved(int fromIndex, int toIndex);
    void tryToResetStateAfterDbRollback();

signals:
    void jumpToEntryInTodoList(EntryAddress address);

private:
    struct TodoItem {
        int fileIndex = -1;
        qint64 entryId = -1;
        QString body;
        int sequence = -1; ///< The number in the list.
        int storedSequence = -1; ///< The number in the file; -1 when it has none.
    };
    using Items = std::vector<TodoItem>;

    void setUpItemsListUsingFileManager();
    void loadFile(int fileIndex, Items &items) const;
    void writeChangedSequences(Items &items) const;
    void writeChangedSequencesOfFile(int fileIndex, Items &items) const;
    QString readBody(int fileIndex, qint64 entryId) const;
    int rowOf(int fileIndex, qint64 entryId) const;
    static void updateFileIndexes(Items &items, int oldIndex, int newIndex);
    DiskStore *storeOf(const TodoItem &item) const;
    void moveItem(int sourceRow, int dropRow);

    FileManager *m_fileManager;
    Items m_items;
};
