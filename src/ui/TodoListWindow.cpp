// SPDX-License-Identifier: MIT
#include "ui/TodoListWindow.h"

#include "model/TodoListModel.h"
#include "shared/TextGuard.h"
#include "ui/CommandLog.h"
#include "ui/TodoListView.h"

#include <QVBoxLayout>

using namespace Qt::StringLiterals;

TodoListWindow::TodoListWindow(TodoListModel *model)
    : AbstractWindow(nullptr, Qt::Tool)
    , m_model(model)
    , m_view(new TodoListView(model, this))
{
    setObjectName(u"TodoListWindow"_s);
    setWindowTitle(tr("To-do List"));
    setModal(false);
    setSizeGripEnabled(false);
    setMinimumHeight(35);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->addWidget(m_view);
}

QString TodoListWindow::getWindowName() const
{
    return u"TodoListWindow"_s;
}

void TodoListWindow::showWindow(EntryAddress entryAddress)
{
    restoreShowAndActivate();
    if (entryAddress.fileIndex != -1) {
        const QModelIndex index
            = m_model->getIndexForEntry(entryAddress.fileIndex, entryAddress.entryId);
        if (index.isValid())
            m_view->selectRow(index);
    }
    m_view->setFocus();
    m_view->selectFirstIfNoneSelected();
}

void TodoListWindow::jumpToEntryInHierarchyAndHideTodoList(const QModelIndex &index)
{
    const EntryAddress address = m_model->getEntryAddressForIndex(index);
    guardAgainstTexts(lcCommands(), "jumpToEntryInHierarchy",
                      [&] { emit jumpToEntryInHierarchy(address); });
    setVisible(false);
}
