// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QStringList>
#include <QTimer>
#include <memory>

class AppActivationSupport;
class AppCommandFilter;
class FileManager;
class HierarchyModel;
class HierarchyWindow;
class NativeSupport;
class QApplication;

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

public slots:
    void startup();
    void shutdown();
    void activate();
    void stopSplashScreen();
    void nextSplashScreenState();

private:
    void setIdentity();
    void clearLegacySettings();
    void showSplashScreen();
    bool openFileSet();
    bool createComponents();
    void createModelsAndWindows();
    void connectComponents();
    void openFilesFromCommandLine();
    void openAndGoTo(const QString &path);
    void endAfterError(const char *text);
    void exitOnRequest();
    void saveAndEnd();
    bool saveEverything();

    QApplication *m_app;
    NativeSupport *m_nativeSupport;
    std::unique_ptr<AppActivationSupport> m_activationSupport;
    std::unique_ptr<FileManager> m_fileManager;
    std::unique_ptr<HierarchyModel> m_hierarchyModel;
    std::unique_ptr<HierarchyWindow> m_mainWindow;
    std::unique_ptr<AppCommandFilter> m_commandFilter;
    std::unique_ptr<SplashScreen> m_splash;
    QTimer m_splashTimer{this};
    int m_splashState = -1;
    bool m_splashDone = false;
    bool m_startupDone = false;
    QStringList m_filesToOpen;
};
