// SPDX-License-Identifier: MIT
#include "model/TodoListModel.h"

#include "model/ModelLogging.h"
#include "model/TodoSequences.h"
#include "shared/TextHelpers.h"
#include "store/FileErrorGuard.h"
#include "store/FileManager.h"

#include <QMimeData>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace
{
constexpr int bodyLength = 60;

QString rowMimeType()
{
    return u"application/x-bnrownumid"_s;
}

/// Rebuilds the numbers of \a items around a gap at \a row; see TodoSequences.
template <typename Items> int makeRoom(Items &items, int row, int wanted)
{
    // Mostly the wanted number fits, and nothing has to move.
    const auto place = static_cast<std::size_t>(row);
    const bool fitsBelow = row == 0 || items[place - 1].sequence < wanted;
    const bool fitsAbove = place == items.size() || wanted < items[place].sequence;
    if (wanted != -1 && fitsBelow && fitsAbove)
        return wanted;
    std::vector<int> numbers;
    numbers.reserve(items.size());
    for (const auto &item : items)
        numbers.push_back(item.sequence);
    TodoSequences sequences(std::move(numbers));
    const int selected = sequences.makeRoomForItemInsertionAndSelectSequence(row, wanted);
    for (std::size_t i = 0; i < items.size(); ++i)
        items[i].sequence = sequences.sequences()[i];
    return selected;
}
} // namespace

TodoListModel::TodoListModel(FileManager *fileManager)
    : m_fileManager(fileManager)
{
    setUpItemsListUsingFileManager();
    connect(fileManager, &FileManager::fileUnloaded, this, &TodoListModel::fileUnloaded);
    connect(fileManager, &FileManager::fileLoaded, this, &TodoListModel::fileLoaded);
    connect(fileManager, &FileManager::fileMoved, this, &TodoListModel::fileMoved);
}

void TodoListModel::setUpItemsListUsingFileManager()
{
    Items items;
    for (int index = 0; index < m_fileManager->getFileCount(); ++index) {
        // A file that fails is closed soon; the others keep their rows.
        guardAgainstFileErrors(lcModel(), "TodoListModel::setUpItemsListUsingFileManager",
                               [&] { loadFile(index, items); });
    }
    m_items = std::move(items);
}

void TodoListModel::loadFile(int fileIndex, Items &items) const
{
    const std::unique_ptr<DiskStore::EntryInfoList> todos(
        m_fileManager->getFile(fileIndex)->getAllTodosInList());
    for (const DiskStore::EntryInfo &todo : *todos) {
        // Numbers below zero come from other programs only; here they mean that there is none.
        const int wanted = std::max(todo.sequence, 0);
        const auto place = std::lower_bound(
            items.begin(), items.end(), wanted,
            [](const TodoItem &item, int sequence) { return item.sequence < sequence; });
        const auto row = place - items.begin();
        const int sequence = makeRoom(items, static_cast<int>(row), wanted);
        items.insert(items.begin() + row,
                     TodoItem{fileIndex, todo.id, Global::oneLineExcerpt(todo.body, bodyLength),
                              sequence, todo.sequence});
    }
}

DiskStore *TodoListModel::storeOf(const TodoItem &item) const
{
    return m_fileManager->getFile(item.fileIndex);
}

void TodoListModel::writeChangedSequences(Items &items) const
{
    for (int index = 0; index < m_fileManager->getFileCount(); ++index) {
        // A file that fails is closed soon; it must not keep the others from being in order.
        guardAgainstFileErrors(lcModel(), "TodoListModel::writeChangedSequences",
                               [&] { writeChangedSequencesOfFile(index, items); });
    }
}

void TodoListModel::writeChangedSequencesOfFile(int fileIndex, Items &items) const
{
    std::vector<TodoItem *> changed;
    for (TodoItem &item : items) {
        if (item.fileIndex == fileIndex && item.sequence != item.storedSequence)
            changed.push_back(&item);
    }
    DiskStore *store = m_fileManager->getFile(fileIndex);
    // First all away, then all new: numbers are unique in a file, and some may change places.
    for (const TodoItem *item : changed)
        store->clearTodoListSequence(item->entryId);
    for (TodoItem *item : changed) {
        store->updateTodoListSequence(item->entryId, item->sequence);
        item->storedSequence = item->sequence;
    }
}

int TodoListModel::rowOf(int fileIndex, qint64 entryId) const
{
    const auto found = std::find_if(m_items.begin(), m_items.end(), [&](const TodoItem &item) {
        return item.fileIndex == fileIndex && item.entryId == entryId;
    });
    return found == m_items.end() ? -1 : static_cast<int>(found - m_items.begin());
}

QString TodoListModel::readBody(int fileIndex, qint64 entryId) const
{
    DiskStore *store = m_fileManager->getFile(fileIndex);
    QString body;
    if (!store
        || !store->getEntryInfo(entryId, &body, nullptr, nullptr, nullptr, nullptr, nullptr,
                                nullptr))
        throw "bad";
    return Global::oneLineExcerpt(body, bodyLength);
}

void TodoListModel::addTodo(EntryAddress address)
{
    if (rowOf(address.fileIndex, address.entryId) != -1)
        return;
    Items items = m_items;
    const QString body = readBody(address.fileIndex, address.entryId);
    const int sequence = makeRoom(items, 0, -1);
    items.insert(items.begin(), TodoItem{address.fileIndex, address.entryId, body, sequence, -1});
    writeChangedSequences(items);

    beginInsertRows(QModelIndex(), 0, 0);
    m_items = std::move(items);
    endInsertRows();
}

QModelIndex TodoListModel::deleteItem(const QModelIndex &index)
{
    const int row = index.row();
    if (row < 0 || row >= rowCount())
        return QModelIndex();
    Items items = m_items;
    writeChangedSequences(items);
    const auto removed = items.begin() + row;
    storeOf(*removed)->clearTodoListSequence(removed->entryId);
    items.erase(removed);

    beginRemoveRows(QModelIndex(), row, row);
    m_items = std::move(items);
    endRemoveRows();
    return row < rowCount() ? this->index(row) : QModelIndex();
}

void TodoListModel::entryStateChanged(int fileIndex, qlonglong entryId, EntryState oldState,
                                      EntryState newState)
{
    if (oldState != EntryState::Todo || newState == EntryState::Todo)
        return;
    const int row = rowOf(fileIndex, entryId);
    if (row == -1)
        return;
    deleteItem(index(row));
    if (newState == EntryState::Done && row == 0 && !m_items.empty())
        emit jumpToEntryInTodoList(EntryAddress{fileIndex, m_items.front().entryId});
}

void TodoListModel::entryBodyChanged(int fileIndex, qlonglong entryId)
{
    const int row = rowOf(fileIndex, entryId);
    if (row == -1)
        return;
    m_items[static_cast<std::size_t>(row)].body = readBody(fileIndex, entryId);
    emit dataChanged(index(row), index(row));
}

void TodoListModel::entryDeleted(int fileIndex, qlonglong entryId)
{
    const int row = rowOf(fileIndex, entryId);
    if (row != -1)
        deleteItem(index(row));
}

void TodoListModel::updateFileIndexes(Items &items, int oldIndex, int newIndex)
{
    for (TodoItem &item : items) {
        if (item.fileIndex == oldIndex)
            item.fileIndex = newIndex;
    }
}

void TodoListModel::fileLoaded(int)
{
    beginResetModel();
    // Nothing is written here, so the order must be the one in which the next start finds the rows.
    setUpItemsListUsingFileManager();
    endResetModel();
}

void TodoListModel::fileUnloaded(int fileIndex)
{
    Items items = m_items;
    std::erase_if(items, [fileIndex](const TodoItem &item) { return item.fileIndex == fileIndex; });
    for (int j = fileIndex + 1; j <= m_fileManager->getFileCount(); ++j)
        updateFileIndexes(items, j, j - 1);
    // Rows may owe their place to numbers that the closed file held.
    writeChangedSequences(items);
    beginResetModel();
    m_items = std::move(items);
    endResetModel();
}

void TodoListModel::fileMoved(int fromIndex, int toIndex)
{
    constexpr int parked = -1;
    Items items = m_items;
    updateFileIndexes(items, fromIndex, parked);
    if (fromIndex >= toIndex) {
        for (int j = fromIndex - 1; j >= toIndex; --j)
            updateFileIndexes(items, j, j + 1);
    } else {
        for (int j = fromIndex + 1; j <= toIndex; ++j)
            updateFileIndexes(items, j, j - 1);
    }
    updateFileIndexes(items, parked, toIndex);
    // Equal numbers of two files are told apart by the files' order, which has just changed.
    writeChangedSequences(items);
    beginResetModel();
    m_items = std::move(items);
    endResetModel();
}

void TodoListModel::tryToResetStateAfterDbRollback()
{
    beginResetModel();
    setUpItemsListUsingFileManager();
    endResetModel();
}

QModelIndex TodoListModel::getFirstEntryIndex() const
{
    return index(0, 0);
}

QModelIndex TodoListModel::getIndexForEntry(int fileIndex, qlonglong entryId) const
{
    const int row = rowOf(fileIndex, entryId);
    return row == -1 ? QModelIndex() : index(row);
}

EntryAddress TodoListModel::getEntryAddressForIndex(const QModelIndex &index) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return EntryAddress();
    const TodoItem &item = m_items[static_cast<std::size_t>(index.row())];
    return EntryAddress{item.fileIndex, item.entryId};
}

TodoListModel::Entry TodoListModel::entryAt(const QModelIndex &index) const
{
    if (!index.isValid())
        return Entry();
    const EntryAddress address = getEntryAddressForIndex(index);
    return {m_fileManager->getFile(address.fileIndex), address.entryId};
}

QModelIndex TodoListModel::indexOf(const Entry &entry) const
{
    for (int file = 0; entry.store && file < m_fileManager->getFileCount(); ++file) {
        if (m_fileManager->getFile(file) == entry.store)
            return getIndexForEntry(file, entry.id);
    }
    return QModelIndex();
}

int TodoListModel::sequenceForIndex(const QModelIndex &index) const
{
    return checkIndex(index, CheckIndexOption::IndexIsValid)
        ? m_items[static_cast<std::size_t>(index.row())].sequence
        : -1;
}

int TodoListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_items.size());
}

QVariant TodoListModel::data(const QModelIndex &index, int role) const
{
    if (role != Qt::DisplayRole || !checkIndex(index, CheckIndexOption::IndexIsValid))
        return QVariant();
    return m_items[static_cast<std::size_t>(index.row())].body;
}

QVariant TodoListModel::headerData(int, Qt::Orientation, int role) const
{
    return role == Qt::DisplayRole ? QVariant(tr("todo entries (don't show this in the ui)"))
                                   : QVariant();
}

Qt::ItemFlags TodoListModel::flags(const QModelIndex &index) const
{
    return QAbstractListModel::flags(index)
        | (index.isValid() ? Qt::ItemIsDragEnabled : Qt::ItemIsDropEnabled);
}

Qt::DropActions TodoListModel::supportedDropActions() const
{
    return Qt::MoveAction;
}

QStringList TodoListModel::mimeTypes() const
{
    return QAbstractListModel::mimeTypes() << rowMimeType();
}

QMimeData *TodoListModel::mimeData(const QModelIndexList &indexes) const
{
    if (indexes.size() != 1)
        throw "unsupported number of indexes";
    QMimeData *data = QAbstractListModel::mimeData(indexes);
    data->setData(rowMimeType(), QByteArray::number(indexes.first().row(), 10));
    return data;
}

bool TodoListModel::dropMimeData(const QMimeData *data, Qt::DropAction, int row, int,
                                 const QModelIndex &)
{
    // Up to the first zero byte, which is where C ends a text.
    const QByteArray bytes = data->data(rowMimeType());
    bool isNumber = false;
    const int sourceRow = QByteArray(bytes.constData()).toInt(&isNumber, 10);
    const bool known = isNumber && sourceRow >= 0 && sourceRow < rowCount() && row <= rowCount();
    if (known && row != -1 && row != sourceRow && row != sourceRow + 1)
        guardAgainstFileErrors(lcModel(), "TodoListModel::dropMimeData",
                               [=, this] { moveItem(sourceRow, row); });
    return true;
}

void TodoListModel::moveItem(int sourceRow, int dropRow)
{
    Items items = m_items;
    TodoItem moved = items[static_cast<std::size_t>(sourceRow)];
    items.erase(items.begin() + sourceRow);
    const int destination = sourceRow < dropRow ? dropRow - 1 : dropRow;
    moved.sequence = makeRoom(items, destination, -1);
    items.insert(items.begin() + destination, moved);
    writeChangedSequences(items);

    beginMoveRows(QModelIndex(), sourceRow, sourceRow, QModelIndex(), dropRow);
    m_items = std::move(items);
    endMoveRows();
}
