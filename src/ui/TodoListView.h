// SPDX-License-Identifier: MIT
#pragma once

#include "model/TodoListModel.h"
#include "ui/TodoListWindow.h"

#include <QListView>

/// The rows of the to-do list.
class TodoListWindow::TodoListView : public QListView
{
    Q_OBJECT

public:
    TodoListView(TodoListModel *model, TodoListWindow *window);

    void selectRow(const QModelIndex &index);
    void selectFirstIfNoneSelected();

protected:
    /// \throws const char* when more than one row is selected.
    void keyPressEvent(QKeyEvent *event) override;

private:
    void restoreSelection();
    bool handlePlainKey(int key, const QModelIndex &selected);

    TodoListModel *m_model;
    TodoListWindow *m_window;
    TodoListModel::Entry m_selectedEntry;
    int m_rowBeforeReset = -1;
};
