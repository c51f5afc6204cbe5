// SPDX-License-Identifier: MIT
#include "unit/ui/UiDesk.h"

using namespace Qt::StringLiterals;

namespace
{
QStringList &collectedLines()
{
    static QStringList lines;
    return lines;
}

void holdModifiers(QWidget &window, Qt::KeyboardModifiers modifiers)
{
    QTest::simulateEvent(window.windowHandle(), true, Qt::Key_Control, modifiers, QString(), false);
}

void releaseModifiers(QWidget &window)
{
    QTest::simulateEvent(window.windowHandle(), false, Qt::Key_Control, Qt::NoModifier, QString(),
                         false);
}
} // namespace

LogLines::LogLines()
{
    collectedLines().clear();
    m_previous = qInstallMessageHandler([](QtMsgType, const QMessageLogContext &,
                                           const QString &text) { collectedLines().append(text); });
}

LogLines::~LogLines()
{
    qInstallMessageHandler(m_previous);
}

const QStringList &LogLines::all() const
{
    return collectedLines();
}

int LogLines::count(const QString &start) const
{
    return static_cast<int>(std::count_if(
        all().begin(), all().end(), [&](const QString &line) { return line.startsWith(start); }));
}

RefusalCounter::RefusalCounter(QWidget *window)
    : QObject(window)
{
    window->installEventFilter(this);
}

bool RefusalCounter::eventFilter(QObject *, QEvent *event)
{
    if (event->type() == Refusal::eventType())
        ++m_count;
    return false;
}

bool waitUntilActive(const QWidget &window)
{
    return QTest::qWaitFor([&window] { return QApplication::activeWindow() == &window; });
}

UiDesk::UiDesk()
{
    window = std::make_unique<HierarchyWindow>(
        &model, &activation, native.getShortcutModifier().toInt(), native.getShortcutModifierKey());
    todoWindow = std::make_unique<TodoListWindow>(&todos);
    findWindow = std::make_unique<FindWindow>(&files, nullptr);
    todoWindow->belongTo(*window);
    findWindow->belongTo(*window);
    filter = std::make_unique<AppCommandFilter>(&files, window.get(), &model, todoWindow.get(),
                                                findWindow.get(), &native, &activation);
    refusals = std::make_unique<RefusalCounter>(window.get());
    qApp->installEventFilter(filter.get());
    QObject::connect(&activation, &AppActivationSupport::activationChanged, todoWindow.get(),
                     &AbstractWindow::hideOnDeactivate);
    QObject::connect(&activation, &AppActivationSupport::activationChanged, findWindow.get(),
                     &AbstractWindow::hideOnDeactivate);
    connectModels();
    connectWindows();
}

void UiDesk::connectModels()
{
    using Hierarchy = HierarchyModel;
    using Todos = TodoListModel;
    QObject::connect(&files, &FileManager::transactionRollback, &model,
                     &Hierarchy::tryToResetStateAfterDbRollback);
    QObject::connect(&files, &FileManager::transactionRollback, &todos,
                     &Todos::tryToResetStateAfterDbRollback);
    QObject::connect(&model, &Hierarchy::changed, window.get(), &HierarchyWindow::refresh);
    QObject::connect(&model, &Hierarchy::requestBodyUpdate, window.get(),
                     &HierarchyWindow::updateModelBody);
    QObject::connect(&model, &Hierarchy::requestAppDeactivation, &activation,
                     qOverload<>(&AppActivationSupport::deactivateApp));
    QObject::connect(&model, &Hierarchy::addEntryToTodoListAndShow, &todos, &Todos::addTodo);
    QObject::connect(&model, &Hierarchy::addEntryToTodoListAndShow, todoWindow.get(),
                     &TodoListWindow::showWindow);
    QObject::connect(&model, &Hierarchy::entryStateChanged, &todos, &Todos::entryStateChanged);
    QObject::connect(&model, &Hierarchy::entryBodyChanged, &todos, &Todos::entryBodyChanged);
    QObject::connect(&model, &Hierarchy::entryDeleted, &todos, &Todos::entryDeleted);
    QObject::connect(&model, &Hierarchy::entryDeleted, findWindow.get(),
                     &FindWindow::searchAgainIfShown);
    QObject::connect(&todos, &Todos::jumpToEntryInTodoList, todoWindow.get(),
                     &TodoListWindow::showWindow);
}

void UiDesk::connectWindows()
{
    const auto activateMainWindow = [this] { window->activate(); };
    const auto goToEntry = [this](EntryAddress address) { model.goToEntry(address); };
    QObject::connect(todoWindow.get(), &TodoListWindow::jumpToEntryInHierarchy, window.get(),
                     activateMainWindow);
    QObject::connect(todoWindow.get(), &TodoListWindow::jumpToEntryInHierarchy, &model, goToEntry);
    QObject::connect(findWindow.get(), &FindWindow::jumpToEntryInHierarchy, window.get(),
                     activateMainWindow);
    QObject::connect(findWindow.get(), &FindWindow::jumpToEntryInHierarchy, &model, goToEntry);
    QObject::connect(todoWindow.get(), &AbstractWindow::hiding, window.get(),
                     &HierarchyWindow::activate);
    QObject::connect(findWindow.get(), &AbstractWindow::hiding, window.get(),
                     &HierarchyWindow::activate);
}

// The window's counter is a child of the window and goes with it.
UiDesk::~UiDesk()
{
    filter.reset();
    findWindow.reset();
    todoWindow.reset();
    refusals.release();
}

qint64 UiDesk::addFile(const QString &name)
{
    const int index = files.getFileCount();
    files.openFile(settings.filePath(name), index);
    return files.getFile(index)->getEntryId(-1, 0);
}

qint64 UiDesk::addEntry(qint64 parent, const QString &body, int sequence, EntryState state,
                        int file)
{
    return files.getFile(file)->insertEntry(parent, body, sequence, state, QDateTime());
}

QString UiDesk::storedBody(qint64 id, int file) const
{
    QString body;
    files.getFile(file)->getEntryInfo(id, &body, nullptr, nullptr, nullptr, nullptr, nullptr,
                                      nullptr);
    return body;
}

void UiDesk::show()
{
    activation.activateApp(false);
    if (!QTest::qWaitForWindowActive(window.get()))
        qFatal("the window does not become active");
}

void pressIn(QWidget &window, int key, Qt::KeyboardModifiers modifiers)
{
    QTest::keyClick(window.windowHandle(), static_cast<Qt::Key>(key), modifiers);
    releaseModifiers(window);
}

void UiDesk::press(int key, Qt::KeyboardModifiers modifiers)
{
    pressIn(*window, key, modifiers);
}

void UiDesk::pressNative(int key, quint32 code, Qt::KeyboardModifiers modifiers,
                         const QString &text)
{
    holdModifiers(*window, modifiers);
    QKeyEvent event(QEvent::KeyPress, key, modifiers, code, 0, 0, text);
    QCoreApplication::sendEvent(window->windowHandle(), &event);
    releaseModifiers(*window);
}

void UiDesk::pressRepeated(int key, Qt::KeyboardModifiers modifiers)
{
    holdModifiers(*window, modifiers);
    QKeyEvent event(QEvent::KeyPress, key, modifiers, QString(), true);
    QCoreApplication::sendEvent(window->windowHandle(), &event);
    releaseModifiers(*window);
}

void UiDesk::type(const QString &text)
{
    for (const QChar character : text)
        QTest::sendKeyEvent(QTest::Click, window->windowHandle(), Qt::Key_unknown, character,
                            Qt::NoModifier);
}
