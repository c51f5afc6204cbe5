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
/// Holding the keys must not ask again and again, nor discard or save what is typed in between; and
/// the key that has closed one window must not step back from the next.
bool isNeverRepeated(Command command)
{
    switch (command) {
    case Command::Hide:
    case Command::SaveChangesAndHide:
    case Command::DiscardChanges:
    case Command::RegisterShortcut:
    case Command::Exit:
        return true;
    default:
        return false;
    }
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
    if (event->type() == QEvent::KeyRelease)
        m_repeats.noteRelease(*static_cast<QKeyEvent *>(event));
    return event->type() == QEvent::KeyPress && takesPress(*static_cast<QKeyEvent *>(event));
}

bool AppCommandFilter::takesPress(const QKeyEvent &press)
{
    const bool repeated = m_repeats.isRepeat(press);
    if (repeated && m_lastPressWasForTheWait)
        return true;
    const bool awaited = m_mainWindow->isRegisteringShortcut() && m_mainWindow->isActiveWindow();
    // The key of a held Ctrl+S is not the one that is waited for.
    if (repeated && awaited)
        return true;
    m_lastPressWasForTheWait = awaited;
    const Command command = KeyPress::command(press, QApplication::keyboardModifiers());
    if (repeated && isNeverRepeated(command))
        return true;
    const Action action = actionFor(command);
    if (!action)
        return false;
    // Under an open box nothing may change: what the box asks about would no longer hold.
    if (!QApplication::activeModalWidget())
        guardAgainstTexts(lcCommands(), "eventFilter", [&] { carryOut(command, action); });
    return true;
}

AppCommandFilter::Action AppCommandFilter::actionFor(Command command)
{
    switch (command) {
    case Command::DiscardChanges:
        return &AppCommandFilter::discardChanges;
    case Command::ActivateTodoListWindow:
        return &AppCommandFilter::showTodoList;
    case Command::ShowFindWindow:
        return &AppCommandFilter::showFindWindow;
    case Command::ShowCreateReportDialog:
        return &AppCommandFilter::showCreateReportDialog;
    case Command::ShowSettingsDialog:
        return &AppCommandFilter::showSettings;
    case Command::ShowHelp:
        return &AppCommandFilter::showHelp;
    case Command::Exit:
        return &AppCommandFilter::exitApplication;
    default:
        return nullptr;
    }
}

void AppCommandFilter::carryOut(Command command, Action action)
{
    logCommand(command);
    m_mainWindow->setRegisterShortcut(false);
    (this->*action)();
}

void AppCommandFilter::discardChanges()
{
    m_fileManager->rollbackAndRestartTransactions();
}

void AppCommandFilter::showTodoList()
{
    bringForward();
    m_todoListWindow->showWindow(EntryAddress());
}

void AppCommandFilter::showFindWindow()
{
    bringForward();
    m_findWindow->activateAndSelectQuery();
}

void AppCommandFilter::showCreateReportDialog()
{
    showWindow(m_createReportDialog, m_fileManager);
}

void AppCommandFilter::showSettings()
{
    showWindow(m_settings, m_activationSupport);
}

void AppCommandFilter::showHelp()
{
    showWindow(m_help, m_nativeSupport);
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
    if (!m_model->writeEditedText())
        Refusal::refuse(m_mainWindow);
    else
        m_fileManager->promptUserToMaybeSaveChangesAndExit();
}
