// SPDX-License-Identifier: MIT
#pragma once

#include "model/Command.h"
#include "ui/KeyRepeats.h"

#include <QObject>
#include <memory>

class AbstractWindow;
class AppActivationSupport;
class CreateReportDialog;
class FileManager;
class FindWindow;
class Help;
class HierarchyModel;
class HierarchyWindow;
class NativeSupport;
class QKeyEvent;
class Settings;
class TodoListWindow;

/// Event filter of the application object: it carries out the few commands that work whichever
/// window has the keyboard, and leaves all other keys to that window, but for those that a held key
/// repeats and that must not be.
class AppCommandFilter : public QObject
{
    Q_OBJECT

public:
    /// All objects are borrowed and must outlive this one.
    AppCommandFilter(FileManager *fileManager, HierarchyWindow *mainWindow, HierarchyModel *model,
                     TodoListWindow *todoListWindow, FindWindow *findWindow,
                     NativeSupport *nativeSupport, AppActivationSupport *activationSupport);
    ~AppCommandFilter() override;

    bool eventFilter(QObject *watched, QEvent *event) override;

public slots:
    /// Writes the edited text and ends the program, asking about unsaved changes.
    void exitApplication();

signals:
    /// Never emitted so far; a way for a later command to hide the application.
    void requestAppDeactivation();

private:
    using Action = void (AppCommandFilter::*)();

    bool takesPress(const QKeyEvent &press);
    /// What carries \a command out in every window; null when the window with the keyboard does.
    static Action actionFor(Command command);
    void carryOut(Command command, Action action);
    void discardChanges();
    void showTodoList();
    void showFindWindow();
    void showCreateReportDialog();
    void showSettings();
    void showHelp();
    void bringForward();
    template <typename Window, typename Source>
    void showWindow(std::unique_ptr<Window> &window, Source *source);

    FileManager *m_fileManager;
    HierarchyWindow *m_mainWindow;
    HierarchyModel *m_model;
    TodoListWindow *m_todoListWindow;
    FindWindow *m_findWindow;
    NativeSupport *m_nativeSupport;
    AppActivationSupport *m_activationSupport;
    KeyRepeats m_repeats;
    bool m_lastPressWasForTheWait = false; ///< For a shortcut key; held, it must type nothing.

    // Made when their command is first given, and kept.
    std::unique_ptr<Help> m_help;
    std::unique_ptr<CreateReportDialog> m_createReportDialog;
    std::unique_ptr<Settings> m_settings;
};
