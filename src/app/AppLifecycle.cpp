// SPDX-License-Identifier: MIT
#include "app/AppLifecycle.h"

#include "app/SplashScreen.h"
#include "app/TerminationSignals.h"
#include "app/activation/AppActivationSupport.h"
#include "model/GlobalKeyMap.h"
#include "model/HierarchyModel.h"
#include "model/TodoListModel.h"
#include "platform/DisplayLoss.h"
#include "platform/NativeSupport.h"
#include "shared/Identity.h"
#include "shared/Maker.h"
#include "shared/ProgramEnd.h"
#include "shared/TextGuard.h"
#include "shared/TextHelpers.h"
#include "shared/Version.h"
#include "store/FileErrorGuard.h"
#include "store/FileManager.h"
#include "store/WaitNotice.h"
#include "ui/AppCommandFilter.h"
#include "ui/CheckForUpdates.h"
#include "ui/FindWindow.h"
#include "ui/HierarchyWindow.h"
#include "ui/TodoListWindow.h"

#include <QApplication>
#include <QFileInfo>
#include <QFileOpenEvent>
#include <QIcon>
#include <QPixmap>
#include <QSessionManager>
#include <QSettings>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace
{
Q_LOGGING_CATEGORY(lcApp, "brindle.app")

constexpr int splashStepMs = 2000;
constexpr int retryAfterBoxMs = 250;

void printError(const QString &text)
{
    std::fprintf(stderr, "brindle: %s\n", qPrintable(text));
}
} // namespace

AppLifecycle::AppLifecycle(QApplication *app, NativeSupport *nativeSupport, QStringList filesToOpen)
    : m_app(app)
    , m_nativeSupport(nativeSupport)
    , m_splash(std::make_unique<SplashScreen>(QPixmap(u":/images/brindle_splash.png"_s), this))
    , m_filesToOpen(std::move(filesToOpen))
{
    connect(&m_splashTimer, &QTimer::timeout, this, &AppLifecycle::nextSplashScreenState);
    m_app->installEventFilter(this);
}

AppLifecycle::~AppLifecycle() = default;

bool AppLifecycle::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_app)
        return false;
    if (event->type() == QEvent::Quit) {
        // The toolkit would ask the windows, and the main window refuses to close; a session
        // manager would then go on without us.
        saveAndEnd();
        return true;
    }
    if (event->type() != QEvent::FileOpen || m_startupDone)
        return false;
    const QString file = static_cast<QFileOpenEvent *>(event)->file();
    if (file.isEmpty()) // an address on the net, perhaps
        return false;
    m_filesToOpen.append(file);
    return true;
}

void AppLifecycle::startup()
{
    setIdentity();
    QApplication::setQuitOnLastWindowClosed(false);
    m_activationSupport = std::make_unique<AppActivationSupport>(m_nativeSupport);
    if (!becomeTheOneInstance())
        return;
    showSplashScreen();
    clearLegacySettings();
    m_activationSupport->installHotkey();
    if (!openFileSet() || !createComponents())
        return;
    connectComponents();
    connect(m_app, &QCoreApplication::aboutToQuit, this, &AppLifecycle::shutdown);
    openFilesFromCommandLine();
    m_startupDone = true;
    if (m_splashDone)
        activate();
    m_activationSupport->acceptRequests();
}

bool AppLifecycle::becomeTheOneInstance()
{
    if (!m_asksQuestions)
        m_activationSupport->askNoQuestions(InstanceRequest::toOpen(m_filesToOpen));
    try {
        if (!m_activationSupport->checkForOtherInstances())
            return true;
        endProgram();
    } catch (const char *text) {
        endAfterError(text);
    }
    return false;
}

void AppLifecycle::setIdentity()
{
    setApplicationIdentity();
    QApplication::setWindowIcon(QIcon(u":/images/brindle.png"_s));
    // How a compositor finds the program's .desktop file; it is asked with the first window.
    QGuiApplication::setDesktopFileName(QString::fromLatin1(Maker::applicationId));
}

void AppLifecycle::showSplashScreen()
{
    m_splash->show();
    m_splash->activateWindow();
    m_splash->raise();
    m_splashTimer.start(splashStepMs);
}

void AppLifecycle::clearLegacySettings()
{
    // Earlier versions kept a flag there.
    const QString key = u"appstarted"_s;
    QSettings settings;
    if (settings.contains(key))
        settings.remove(key);
    settings.sync();
}

bool AppLifecycle::openFileSet()
{
    try {
        m_fileManager = std::make_unique<FileManager>();
        return true;
    } catch (const char *text) {
        m_splashTimer.stop();
        m_splash->hide();
        const QString file = QSettings().fileName();
        printError(tr("corrupt settings in %1: %2").arg(file, QString::fromLatin1(text)));
        QMessageBox box(QMessageBox::Critical, tr("Brindle"),
                        tr("The list of open files in Brindle's settings is corrupt (%1). Please "
                           "correct or remove the settings file, then start Brindle again:\n%2")
                            .arg(QString::fromLatin1(text), file));
        box.setTextFormat(Qt::PlainText);
        box.exec();
        QCoreApplication::exit(1);
        return false;
    }
}

bool AppLifecycle::createComponents()
{
    // A file found damaged only now is closed like any other that fails, and the rest goes on.
    for (int attempts = m_fileManager->getFileCount(); attempts >= 0; --attempts) {
        try {
            createModelsAndWindows();
            return true;
        } catch (const DiskStore::FileException &) {
            dropModelsAndWindows();
            m_fileManager->handlePendingFileErrors();
        } catch (const char *text) {
            endAfterError(text);
            return false;
        }
    }
    endAfterError("the data files could not be read");
    return false;
}

void AppLifecycle::endAfterError(const char *text)
{
    printError(QString::fromLatin1(text));
    QCoreApplication::exit(1);
}

void AppLifecycle::createModelsAndWindows()
{
    m_todoListModel = std::make_unique<TodoListModel>(m_fileManager.get());
    m_todoListWindow = std::make_unique<TodoListWindow>(m_todoListModel.get());
    m_hierarchyModel = std::make_unique<HierarchyModel>(m_fileManager.get());
    m_mainWindow = std::make_unique<HierarchyWindow>(
        m_hierarchyModel.get(), m_activationSupport.get(),
        static_cast<int>(m_nativeSupport->getShortcutModifier().toInt()),
        m_nativeSupport->getShortcutModifierKey());
    m_findWindow = std::make_unique<FindWindow>(m_fileManager.get(), nullptr);
    m_todoListWindow->belongTo(*m_mainWindow);
    m_findWindow->belongTo(*m_mainWindow);
    m_commandFilter = std::make_unique<AppCommandFilter>(
        m_fileManager.get(), m_mainWindow.get(), m_hierarchyModel.get(), m_todoListWindow.get(),
        m_findWindow.get(), m_nativeSupport, m_activationSupport.get());
    m_app->installEventFilter(m_commandFilter.get());
}

void AppLifecycle::dropModelsAndWindows()
{
    m_commandFilter.reset();
    m_findWindow.reset();
    m_mainWindow.reset();
    m_hierarchyModel.reset();
    m_todoListWindow.reset();
    m_todoListModel.reset();
}

// The order counts where one signal has two receivers: an entry is on the list before the list
// shows it, and the main window is in front before the model goes to the entry.
void AppLifecycle::connectComponents()
{
    connectActivation();
    connectModels();
    connectWindows();
    connectEndOfSession();
}

void AppLifecycle::connectActivation()
{
    AppActivationSupport *activation = m_activationSupport.get();
    connect(activation, &AppActivationSupport::requestTermination, this, &AppLifecycle::askToExit);
    connect(activation, &AppActivationSupport::requestOpenFiles, this,
            [this](const QStringList &files) {
                m_filesToOpen += files;
                openFilesOnceNothingIsAsked();
            });
    connect(activation, &AppActivationSupport::activeAgain, this, &AppLifecycle::comeForwardAgain);
    // Asked for during the splash screen, the main window would stand in front of the picture.
    connect(
        activation, &AppActivationSupport::activationChanged, this,
        [this] {
            if (m_activationSupport && m_activationSupport->isAppActive())
                stopSplashScreen();
        },
        Qt::QueuedConnection);
    connect(activation, &AppActivationSupport::activationChanged, m_todoListWindow.get(),
            &AbstractWindow::hideOnDeactivate);
    connect(activation, &AppActivationSupport::activationChanged, m_findWindow.get(),
            &AbstractWindow::hideOnDeactivate);
    connect(m_nativeSupport, &NativeSupport::hotKeyPressed, activation,
            &AppActivationSupport::toggleActivationWithProcessHandling);
    connect(m_commandFilter.get(), &AppCommandFilter::requestAppDeactivation, activation,
            qOverload<>(&AppActivationSupport::deactivateApp));
}

void AppLifecycle::connectModels()
{
    FileManager *files = m_fileManager.get();
    HierarchyModel *hierarchy = m_hierarchyModel.get();
    TodoListModel *todos = m_todoListModel.get();
    connect(files, &FileManager::transactionRollback, hierarchy,
            &HierarchyModel::tryToResetStateAfterDbRollback);
    connect(files, &FileManager::transactionRollback, todos,
            &TodoListModel::tryToResetStateAfterDbRollback);
    connect(hierarchy, &HierarchyModel::changed, m_mainWindow.get(), &HierarchyWindow::refresh);
    connect(hierarchy, &HierarchyModel::requestBodyUpdate, m_mainWindow.get(),
            &HierarchyWindow::updateModelBody);
    connect(hierarchy, &HierarchyModel::addEntryToTodoListAndShow, todos, &TodoListModel::addTodo);
    connect(hierarchy, &HierarchyModel::addEntryToTodoListAndShow, m_todoListWindow.get(),
            &TodoListWindow::showWindow);
    connect(hierarchy, &HierarchyModel::entryStateChanged, todos,
            &TodoListModel::entryStateChanged);
    connect(hierarchy, &HierarchyModel::entryBodyChanged, todos, &TodoListModel::entryBodyChanged);
    connect(hierarchy, &HierarchyModel::entryDeleted, todos, &TodoListModel::entryDeleted);
    // A result that is gone must not stay on the screen.
    connect(hierarchy, &HierarchyModel::entryDeleted, m_findWindow.get(),
            &FindWindow::searchAgainIfShown);
    connect(hierarchy, &HierarchyModel::requestAppDeactivation, m_activationSupport.get(),
            qOverload<>(&AppActivationSupport::deactivateApp));
    connect(todos, &TodoListModel::jumpToEntryInTodoList, m_todoListWindow.get(),
            &TodoListWindow::showWindow);
}

void AppLifecycle::connectWindows()
{
    const auto activateMainWindow = [this] { m_mainWindow->activate(); };
    const auto goToEntry = [this](EntryAddress address) { m_hierarchyModel->goToEntry(address); };
    connect(m_todoListWindow.get(), &TodoListWindow::jumpToEntryInHierarchy, m_mainWindow.get(),
            activateMainWindow);
    connect(m_todoListWindow.get(), &TodoListWindow::jumpToEntryInHierarchy, m_hierarchyModel.get(),
            goToEntry);
    connect(m_findWindow.get(), &FindWindow::jumpToEntryInHierarchy, m_mainWindow.get(),
            activateMainWindow);
    connect(m_findWindow.get(), &FindWindow::jumpToEntryInHierarchy, m_hierarchyModel.get(),
            goToEntry);
    connect(m_todoListWindow.get(), &AbstractWindow::hiding, m_mainWindow.get(),
            &HierarchyWindow::activate);
    connect(m_findWindow.get(), &AbstractWindow::hiding, m_mainWindow.get(),
            &HierarchyWindow::activate);
}

void AppLifecycle::connectEndOfSession()
{
    const auto *signalReceiver = new TerminationSignals(this);
    connect(signalReceiver, &TerminationSignals::received, this, &AppLifecycle::saveAndEnd);
    const auto *displayLoss = new DisplayLoss(this);
    connect(displayLoss, &DisplayLoss::lost, this, &AppLifecycle::saveEverything);
    // The session waits for the answer, so this can't be queued.
    connect(
        m_app, &QGuiApplication::commitDataRequest, this,
        [this](QSessionManager &) { saveForEndOfSession(); }, Qt::DirectConnection);
}

void AppLifecycle::openFilesFromCommandLine()
{
    const QStringList files = std::exchange(m_filesToOpen, {});
    for (const QString &path : files) {
        // One bad file must not keep the program from coming up.
        guardAgainstFileErrors(lcApp(), "openFilesFromCommandLine", [&] {
            guardAgainstTexts(lcApp(), "openFilesFromCommandLine", [&] { openAndGoTo(path); });
        });
    }
}

void AppLifecycle::openFilesOnceNothingIsAsked()
{
    // A box may be about the very files that are open; it is answered first.
    if (QApplication::activeModalWidget())
        QTimer::singleShot(retryAfterBoxMs, this, &AppLifecycle::openFilesOnceNothingIsAsked);
    else
        openFilesFromCommandLine();
}

void AppLifecycle::openAndGoTo(const QString &path)
{
    const int filesBefore = m_fileManager->getFileCount();
    m_fileManager->openFileFromCommandLine(path);
    // At start-up one that is known already changes nothing; asked for later, it is wanted now.
    if (m_startupDone || m_fileManager->getFileCount() > filesBefore)
        goToRootOf(path);
}

void AppLifecycle::goToRootOf(const QString &path)
{
    for (int index = 0; index < m_fileManager->getFileCount(); ++index) {
        DiskStore *store = m_fileManager->getFile(index);
        if (store->isSameFile(path)) {
            m_hierarchyModel->goToEntry(EntryAddress{index, store->getEntryId(-1, 0)});
            return;
        }
    }
}

void AppLifecycle::nextSplashScreenState()
{
    const auto showText = [this](const QString &text) {
        m_splash->showMessage(text, Qt::AlignLeft | Qt::AlignBottom, Qt::black);
    };
    ++m_splashState;
    if (m_splashState == 0) {
        showText(tr("Brindle, v") + Version::text());
    } else if (m_splashState == 1) {
        showText(Global::getCopyrightString(false));
    } else if (m_splashState == 2) {
        KeyCommandMap::KeyCombo *help = Global::getPreferredKeyComboByName(u"ShowHelp"_s);
        showText(tr("press ") + m_nativeSupport->renderKeyCombo(help) + tr(" for help"));
    } else {
        stopSplashScreen();
    }
}

void AppLifecycle::stopSplashScreen()
{
    m_splashTimer.stop();
    if (m_splashDone)
        return;
    m_splashDone = true;
    if (m_startupDone)
        activate();
}

void AppLifecycle::activate()
{
    if (m_activationSupport->isAppActive())
        m_mainWindow->refresh(); // came forward already, during the splash
    else
        m_activationSupport->activateApp(false);
    // Waiting for a window that isn't shown would hold the program up.
    if (m_mainWindow->isVisible())
        m_splash->finish(m_mainWindow.get());
    else
        m_splash->close();
    m_updateCheck = std::make_unique<CheckForUpdates>(m_mainWindow.get());
}

void AppLifecycle::comeForwardAgain()
{
    // The window that had the keyboard last, a list perhaps. The toolkit learns only after a while
    // that another program has taken it, so the desktop is asked in any case. A modal box follows
    // the main window, which is then the next one in front once the box is answered.
    QWidget *window = QApplication::activeWindow();
    if (!window || QApplication::activeModalWidget())
        window = m_mainWindow.get();
    if (!QApplication::activeWindow())
        m_mainWindow->activate();
    m_activationSupport->requestFront(window->windowHandle());
}

void AppLifecycle::shutdown()
{
    m_fileManager.reset();
    m_activationSupport.reset();
}

// However often another copy asks while this one is busy with it, the user is asked once.
void AppLifecycle::askToExit()
{
    if (!std::exchange(m_askedToExit, true))
        exitOnceNothingIsAsked();
}

void AppLifecycle::exitOnceNothingIsAsked()
{
    // What a box asks about would no longer hold; the other copy's request waits for the answer.
    if (QApplication::activeModalWidget()) {
        QTimer::singleShot(retryAfterBoxMs, this, &AppLifecycle::exitOnceNothingIsAsked);
        return;
    }
    const auto answered = qScopeGuard([this] { m_askedToExit = false; });
    guardAgainstTexts(lcApp(), "exitApplication", [this] { m_commandFilter->exitApplication(); });
}

void AppLifecycle::saveAndEnd()
{
    // A wait for another program lets the signal through in the middle of a change: the text that
    // is just being written would be written twice.
    if (WaitNotice::isShown()) {
        QTimer::singleShot(retryAfterBoxMs, this, &AppLifecycle::saveAndEnd);
        return;
    }
    saveEverything();
    endProgram();
}

void AppLifecycle::saveForEndOfSession()
{
    if (WaitNotice::isShown())
        QTimer::singleShot(retryAfterBoxMs, this, &AppLifecycle::saveForEndOfSession);
    else
        saveEverything();
}

bool AppLifecycle::saveEverything()
{
    if (!m_fileManager || !m_hierarchyModel) // nothing has been typed yet, or all is closed
        return true;
    m_fileManager->setWaitsInSilence(true);
    const auto notSilentAgain = qScopeGuard([this] { m_fileManager->setWaitsInSilence(false); });
    QObject errorContext;
    for (int index = 0; index < m_fileManager->getFileCount(); ++index) {
        connect(
            m_fileManager->getFile(index), &DiskStore::errorOccurred, &errorContext,
            [](const DiskStore::FileException &e) { printError(e.message + u'\n' + e.details); });
    }
    bool textWritten = false;
    try {
        guardAgainstTexts(lcApp(), "saveEverything",
                          [&] { textWritten = m_hierarchyModel->getAndWriteModifiedBodyToDb(); });
    } catch (const DiskStore::FileException &) {
        // printed above
    }
    if (!textWritten)
        printError(tr("the text of the current entry could not be saved"));
    return m_fileManager->commitAndRestartTransactions() && textWritten;
}
