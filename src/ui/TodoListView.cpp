// SPDX-License-Identifier: MIT
#include "ui/TodoListView.h"

#include "model/TodoListModel.h"
#include "ui/KeyPress.h"

#include <QApplication>
#include <QKeyEvent>

TodoListWindow::TodoListView::TodoListView(TodoListModel *model, TodoListWindow *window)
    : QListView(window)
    , m_model(model)
    , m_window(window)
{
    setObjectName(QStringLiteral("todoListView"));
    setAccessibleName(tr("To-do list"));
    setModel(model);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setDragEnabled(true);
    setAcceptDrops(true);
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
