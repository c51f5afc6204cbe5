// SPDX-License-Identifier: MIT
#include "ui/TodoListView.h"

#include "ui/KeyPress.h"

#include <QApplication>
#include <QKeyEvent>
#include <algorithm>

TodoListWindow::TodoListView::TodoListView(TodoListModel *model, TodoListWindow *window)
    : QListView(window)
    , m_model(model)
    , m_window(window)
{
    setObjectName(QStringLiteral("todoListView"));
    setAccessibleName(tr("To-do list"));
    setModel(model);
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex &current) { m_selectedEntry = m_model->entryAt(current); });
    connect(model, &QAbstractItemModel::modelAboutToBeReset, this,
            [this] { m_rowBeforeReset = selectedIndexes().value(0).row(); });
    connect(model, &QAbstractItemModel::modelReset, this, &TodoListView::restoreSelection);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setDropIndicatorShown(true);
    setDragDropMode(QAbstractItemView::InternalMove);
    connect(this, &QListView::doubleClicked, window,
            &TodoListWindow::jumpToEntryInHierarchyAndHideTodoList);
}

void TodoListWindow::TodoListView::selectRow(const QModelIndex &index)
{
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    scrollTo(index, QAbstractItemView::PositionAtCenter);
}

void TodoListWindow::TodoListView::selectFirstIfNoneSelected()
{
    const QModelIndex first = m_model->getFirstEntryIndex();
    if (!selectionModel()->hasSelection() && first.isValid())
        selectRow(first);
}

// A discard, or a file that comes, goes or moves, must not leave the user without a row: the same
// entry as far as it is still there, else what stands in its place.
void TodoListWindow::TodoListView::restoreSelection()
{
    const QModelIndex sameEntry = m_model->indexOf(m_selectedEntry);
    if (m_rowBeforeReset == -1) {
        if (isVisible())
            selectFirstIfNoneSelected();
    } else if (sameEntry.isValid()) {
        selectRow(sameEntry);
    } else if (m_model->rowCount() > 0) {
        selectRow(m_model->index(std::min(m_rowBeforeReset, m_model->rowCount() - 1)));
    }
}

void TodoListWindow::TodoListView::keyPressEvent(QKeyEvent *event)
{
    const QModelIndexList selected = selectedIndexes();
    if (selected.size() > 1)
        throw "multiple selections not allowed";
    const bool plain
        = KeyPress::withoutKeypadAndGroup(QApplication::keyboardModifiers()) == Qt::NoModifier;
    if (plain && handlePlainKey(event->key(), selected.value(0)))
        event->accept();
    else
        QListView::keyPressEvent(event);
}

bool TodoListWindow::TodoListView::handlePlainKey(int key, const QModelIndex &selected)
{
    switch (key) {
    case Qt::Key_Delete:
    case Qt::Key_Backspace: {
        if (!selected.isValid())
            return false;
        const QModelIndex next = m_model->deleteItem(selected);
        if (next.isValid())
            selectRow(next);
        else
            clearSelection();
        return true;
    }
    case Qt::Key_Enter:
    case Qt::Key_Return:
        if (!selected.isValid())
            return false;
        m_window->jumpToEntryInHierarchyAndHideTodoList(selected);
        return true;
    case Qt::Key_Escape:
        m_window->setVisible(false);
        return true;
    default:
        return false;
    }
}
