// SPDX-License-Identifier: MIT
#pragma once

#include "shared/EntryAddress.h"
#include "ui/AbstractWindow.h"

#include <QModelIndex>

class TodoListModel;

/// The to-do list in a small tool window: rows are dragged with the mouse, taken off with Delete
/// and jumped to with Enter or a double click.
class TodoListWindow : public AbstractWindow
{
    Q_OBJECT

public:
    class TodoListView;

    /// \a model is borrowed and must outlive this window.
    explicit TodoListWindow(TodoListModel *model);

    QString getWindowName() const override;

public slots:
    /// Shows the list with the row of \a entryAddress selected, or with the first when there is
    /// none selected.
    void showWindow(EntryAddress entryAddress = EntryAddress());
    void jumpToEntryInHierarchyAndHideTodoList(const QModelIndex &index);

signals:
    void jumpToEntryInHierarchy(EntryAddress entryAddress);

private:
    TodoListModel *m_model;
    TodoListView *m_view; ///< Owned through Qt's parents.
};
