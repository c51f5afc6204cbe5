// SPDX-License-Identifier: MIT
#pragma once

#include "model/Command.h"

#include <QObject>

class AppActivationSupport;
class FileManager;
class HierarchyModel;
class HierarchyWindow;
class NativeSupport;
class QKeyEvent;

/// Event filter of the application object: it carries out the few commands that work whichever
/// window has the keyboard, and leaves all other keys to that window.
class AppCommandFilter : public QObject
{
    Q_OBJECT

public:
    /// All objects are borrowed and must outlive this one.
    AppCommandFilter(FileManager *fileManager, HierarchyWindow *mainWindow, HierarchyModel *model,
                     NativeSupport *nativeSupport, AppActivationSupport *activationSupport);

    bool eventFilter(QObject *watched, QEvent *event) override;

signals:
    /// Never emitted so far; a way for a later command to hide the application.
    void requestAppDeactivation();

private:
    void carryOut(Command command);
    void exitApplication();
    void refuseUnavailable(Command command);

    FileManager *m_fileManager;
    HierarchyModel *m_model;
    // For the windows that are made when their command is first given.
    HierarchyWindow *m_mainWindow;
    [[maybe_unused]] NativeSupport *m_nativeSupport;
    [[maybe_unused]] AppActivationSupport *m_activationSupport;
};
