// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QStringList>
#include <QTimer>
#include <memory>

class AppActivationSupport;
class AppCommandFilter;
class CheckForUpdates;
class FileManager;
class FindWindow;
class HierarchyModel;
class HierarchyWindow;
class NativeSupport;
class QApplication;
class TodoListModel;
class TodoListWindow;

/// Builds every component in order inside the event loop, wires them together, shows the splash
/// screen and takes the long-lived owners down when the program ends.
class AppLifecycle : public QObject
{
    Q_OBJECT

public:
    class SplashScreen;

    /// \a app and \a nativeSupport are borrowed. \a filesToOpen are opened beside the stored ones.
    AppLifecycle(QApplication *app, NativeSupport *nativeSupport, QStringList filesToOpen);
    ~AppLifecycle() override;

    /// A running copy gets the files, or just comes forward, without the user being asked.
    void askNoQuestions() { m_asksQuestions = false; }

    /// The desktop's word that the program is to end, which must cost nobody's work; and until
    /// start-up has opened its files, one that a Mac names by an event is among them.
    bool eventFilter(QObject *watched, QEvent *event) override;

public slots:
    void startup();
    void shutdown();
    void activate();
    void stopSplashScreen();
    void nextSplashScreenState();

private:
    void setIdentity();
    bool becomeTheOneInstance();
    void clearLegacySettings();
    void showSplashScreen();
    bool openFileSet();
    bool createComponents();
    void createModelsAndWindows();
    void dropModelsAndWindows();
    void connectComponents();
    void connectActivation();
    void connectModels();
    void connectWindows();
    void connectEndOfSession();
    void openFilesFromCommandLine();
    void openFilesOnceNothingIsAsked();
    void openAndGoTo(const QString &path);
    void goToRootOf(const QString &path);
    void comeForwardAgain();
    void endAfterError(const char *text);
    void askToExit();
    void exitOnceNothingIsAsked();
    void saveAndEnd();
    void saveForEndOfSession();
    bool saveEverything();

    QApplication *m_app;
    NativeSupport *m_nativeSupport;
    std::unique_ptr<AppActivationSupport> m_activationSupport;
    std::unique_ptr<FileManager> m_fileManager;
    std::unique_ptr<TodoListModel> m_todoListModel;
    std::unique_ptr<TodoListWindow> m_todoListWindow;
    std::unique_ptr<HierarchyModel> m_hierarchyModel;
    std::unique_ptr<HierarchyWindow> m_mainWindow;
    std::unique_ptr<FindWindow> m_findWindow;
    std::unique_ptr<AppCommandFilter> m_commandFilter;
    std::unique_ptr<CheckForUpdates> m_updateCheck;
    std::unique_ptr<SplashScreen> m_splash;
    QTimer m_splashTimer{this};
    int m_splashState = -1;
    bool m_splashDone = false;
    bool m_startupDone = false;
    bool m_askedToExit = false;
    QStringList m_filesToOpen;
    bool m_asksQuestions = true;
};
