// SPDX-License-Identifier: MIT
#include "app/AppLifecycle.h"

#include "app/SplashScreen.h"
#include "app/TerminationSignals.h"
#include "app/activation/AppActivationSupport.h"
#include "model/GlobalKeyMap.h"
#include "model/HierarchyModel.h"
#include "platform/NativeSupport.h"
#include "shared/ProgramEnd.h"
#include "shared/Refusal.h"
#include "shared/TextGuard.h"
#include "shared/TextHelpers.h"
#include "shared/Version.h"
#include "store/FileErrorGuard.h"
#include "store/FileManager.h"
#include "ui/AppCommandFilter.h"
#include "ui/HierarchyWindow.h"

#include <QApplication>
#include <QFileInfo>
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
}

AppLifecycle::~AppLifecycle() = default;

void AppLifecycle::startup()
{
    setIdentity();
    QApplication::setQuitOnLastWindowClosed(false);
    m_activationSupport = std::make_unique<AppActivationSupport>(m_nativeSupport);
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
}

void AppLifecycle::setIdentity()
{
    QCoreApplication::setOrganizationName(u"Osterlane"_s);
    QCoreApplication::setOrganizationDomain(QStringLiteral(BRINDLE_MAKER_DOMAIN));
    QCoreApplication::setApplicationName(u"Brindle"_s);
    QApplication::setWindowIcon(QIcon(u":/images/brindle.png"_s));
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
        } catch (const DiskStore::FileException &e) {
            m_commandFilter.reset();
            m_mainWindow.reset();
            m_hierarchyModel.reset();
            m_fileManager->fileError(e);
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
    m_hierarchyModel = std::make_unique<HierarchyModel>(m_fileManager.get());
    m_mainWindow = std::make_unique<HierarchyWindow>(
        m_hierarchyModel.get(), m_activationSupport.get(),
        static_cast<int>(m_nativeSupport->getShortcutModifier().toInt()),
        m_nativeSupport->getShortcutModifierKey());
    m_commandFilter = std::make_unique<AppCommandFilter>(m_fileManager.get(), m_mainWindow.get(),
                                                         m_hierarchyModel.get(), m_nativeSupport,
                                                         m_activationSupport.get());
    m_app->installEventFilter(m_commandFilter.get());
}

void AppLifecycle::connectComponents()
{
    connect(m_activationSupport.get(), &AppActivationSupport::requestTermination, this,
            &AppLifecycle::exitOnRequest);
    connect(m_nativeSupport, &NativeSupport::hotKeyPressed, m_activationSupport.get(),
            &AppActivationSupport::toggleActivationWithProcessHandling);
    connect(m_commandFilter.get(), &AppCommandFilter::requestAppDeactivation,
            m_activationSupport.get(), qOverload<>(&AppActivationSupport::deactivateApp));
    connect(m_fileManager.get(), &FileManager::transactionRollback, m_hierarchyModel.get(),
            &HierarchyModel::tryToResetStateAfterDbRollback);
    connect(m_hierarchyModel.get(), &HierarchyModel::changed, m_mainWindow.get(),
            &HierarchyWindow::refresh);
    connect(m_hierarchyModel.get(), &HierarchyModel::requestBodyUpdate, m_mainWindow.get(),
            &HierarchyWindow::updateModelBody);
    connect(m_hierarchyModel.get(), &HierarchyModel::requestAppDeactivation,
            m_activationSupport.get(), qOverload<>(&AppActivationSupport::deactivateApp));

    const auto *signalReceiver = new TerminationSignals(this);
    connect(signalReceiver, &TerminationSignals::received, this, &AppLifecycle::saveAndEnd);
    // The session waits for the answer, so this can't be queued.
    connect(
        m_app, &QGuiApplication::commitDataRequest, this,
        [this](QSessionManager &) { saveEverything(); }, Qt::DirectConnection);
}

void AppLifecycle::openFilesFromCommandLine()
{
    for (const QString &path : std::as_const(m_filesToOpen)) {
        // One bad file must not keep the program from coming up.
        guardAgainstFileErrors(lcApp(), "openFilesFromCommandLine", [&] {
            guardAgainstTexts(lcApp(), "openFilesFromCommandLine", [&] { openAndGoTo(path); });
        });
    }
}

void AppLifecycle::openAndGoTo(const QString &path)
{
    const int filesBefore = m_fileManager->getFileCount();
    m_fileManager->openFileFromCommandLine(path);
    const int last = m_fileManager->getFileCount() - 1;
    if (last + 1 > filesBefore) {
        const qint64 root = m_fileManager->getFile(last)->getEntryId(-1, 0);
        m_hierarchyModel->goToEntry(EntryAddress{last, root});
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
}

void AppLifecycle::shutdown()
{
    m_fileManager.reset();
    m_activationSupport.reset();
}

void AppLifecycle::exitOnRequest()
{
    guardAgainstTexts(lcApp(), "exitOnRequest", [this] {
        if (m_hierarchyModel->getAndWriteModifiedBodyToDb())
            m_fileManager->promptUserToMaybeSaveChangesAndExit();
        else
            Refusal::refuse();
    });
}

void AppLifecycle::saveAndEnd()
{
    saveEverything();
    endProgram();
}

bool AppLifecycle::saveEverything()
{
    if (!m_fileManager)
        return true;
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
