// SPDX-License-Identifier: MIT
#include "ui/AppCommandFilter.h"

#include "model/HierarchyModel.h"
#include "shared/Refusal.h"
#include "shared/TextGuard.h"
#include "store/FileManager.h"
#include "ui/CommandLog.h"
#include "ui/HierarchyWindow.h"
#include "ui/KeyPress.h"

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

const char *nameOf(Command command)
{
    switch (command) {
    case Command::ActivateTodoListWindow:
        return "ActivateTodoListWindow";
    case Command::ShowFindWindow:
        return "ShowFindWindow";
    case Command::ShowCreateReportDialog:
        return "ShowCreateReportDialog";
    case Command::ShowSettingsDialog:
        return "ShowSettingsDialog";
    default:
        return "ShowHelp";
    }
}
} // namespace

AppCommandFilter::AppCommandFilter(FileManager *fileManager, HierarchyWindow *mainWindow,
                                   HierarchyModel *model, NativeSupport *nativeSupport,
                                   AppActivationSupport *activationSupport)
    : m_fileManager(fileManager)
    , m_model(model)
    , m_mainWindow(mainWindow)
    , m_nativeSupport(nativeSupport)
    , m_activationSupport(activationSupport)
{
}

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
    case Command::Exit:
        exitApplication();
        break;
    default:
        refuseUnavailable(command);
    }
}

void AppCommandFilter::exitApplication()
{
    if (m_model->getAndWriteModifiedBodyToDb())
        m_fileManager->promptUserToMaybeSaveChangesAndExit();
    else
        Refusal::refuse();
}

void AppCommandFilter::refuseUnavailable(Command command)
{
    qCDebug(lcCommands).nospace() << "command not available yet: " << nameOf(command);
    Refusal::refuse();
}
