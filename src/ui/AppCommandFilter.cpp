// SPDX-License-Identifier: MIT
#include "ui/AppCommandFilter.h"

#include "app/activation/AppActivationSupport.h"
#include "model/HierarchyModel.h"
#include "platform/NativeSupport.h"
#include "shared/Refusal.h"
#include "shared/TextGuard.h"
#include "store/FileManager.h"
#include "ui/CommandLog.h"
#include "ui/CreateReportDialog.h"
#include "ui/FindWindow.h"
#include "ui/Help.h"
#include "ui/HierarchyWindow.h"
#include "ui/KeyPress.h"
#include "ui/Settings.h"
#include "ui/TodoListWindow.h"

#include <QApplication>
#include <QKeyEvent>

namespace
{
bool isApplicationWide(Command command)
{
    switch (command) {
    case Command::DiscardChanges:
    case Command::ActivateTodoListWindow:
    case Command::ShowFindWindow:
    case Command::ShowCreateReportDialog:
    case Command::ShowSettingsDialog:
    case Command::ShowHelp:
    case Command::Exit:
        return true;
    default:
        return false;
    }
}

/// Holding the keys must not ask again and again, nor discard what is typed in between.
bool isNeverRepeated(Command command)
{
    return command == Command::Exit || command == Command::DiscardChanges;
}
} // namespace

AppCommandFilter::AppCommandFilter(FileManager *fileManager, HierarchyWindow *mainWindow,
                                   HierarchyModel *model, TodoListWindow *todoListWindow,
                                   FindWindow *findWindow, NativeSupport *nativeSupport,
                                   AppActivationSupport *activationSupport)
    : m_fileManager(fileManager)
    , m_mainWindow(mainWindow)
    , m_model(model)
    , m_todoListWindow(todoListWindow)
    , m_findWindow(findWindow)
    , m_nativeSupport(nativeSupport)
    , m_activationSupport(activationSupport)
{
}

AppCommandFilter::~AppCommandFilter() = default;

bool AppCommandFilter::eventFilter(QObject *, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return false;
    const auto *keyEvent = static_cast<QKeyEvent *>(event);
    const Command command = KeyPress::command(*keyEvent, QApplication::keyboardModifiers());
    if (!isApplicationWide(command))
        return false;
    // Under an open box nothing may change: what the box asks about would no longer hold.
    const bool blocked = QApplication::activeModalWidget() != nullptr;
    if (!blocked && !(keyEvent->isAutoRepeat() && isNeverRepeated(command)))
        guardAgainstTexts(lcCommands(), "eventFilter", [this, command] { carryOut(command); });
    return true;
}

void AppCommandFilter::carryOut(Command command)
{
    logCommand(command);
    m_mainWindow->setRegisterShortcut(false);
    switch (command) {
    case Command::DiscardChanges:
        m_fileManager->rollbackAndRestartTransactions();
        break;
    case Command::ActivateTodoListWindow:
        bringForward();
        m_todoListWindow->showWindow(EntryAddress());
        break;
    case Command::ShowFindWindow:
        bringForward();
        m_findWindow->activateAndSelectQuery();
        break;
    case Command::ShowCreateReportDialog:
        showWindow(m_createReportDialog, m_fileManager);
        break;
    case Command::ShowSettingsDialog:
        showWindow(m_settings, m_activationSupport);
        break;
    case Command::ShowHelp:
        showWindow(m_help, m_nativeSupport);
        break;
    default:
        exitApplication();
    }
}

// A dialog can outlive the application's stepping back; what it opens would be hidden at once.
void AppCommandFilter::bringForward()
{
    if (!m_activationSupport->isAppActive())
        m_activationSupport->activateApp(true);
}

template <typename Window, typename Source>
void AppCommandFilter::showWindow(std::unique_ptr<Window> &window, Source *source)
{
    bringForward();
    if (!window) {
        window = std::make_unique<Window>(source, nullptr);
        connect(window.get(), &AbstractWindow::hiding, m_mainWindow, &HierarchyWindow::activate);
    }
    window->restoreShowAndActivate();
}

void AppCommandFilter::exitApplication()
{
    if (!m_model->getAndWriteModifiedBodyToDb())
        Refusal::refuse(m_mainWindow);
    else
        m_fileManager->promptUserToMaybeSaveChangesAndExit();
}
