// SPDX-License-Identifier: MIT
#pragma once

#include "app/activation/AppActivationSupport.h"
#include "fakes/RecordingNativeSupport.h"
#include "fakes/TestSettings.h"
#include "model/HierarchyModel.h"
#include "model/TodoListModel.h"
#include "shared/Refusal.h"
#include "store/FileManager.h"
#include "ui/AppCommandFilter.h"
#include "ui/FindWindow.h"
#include "ui/HierarchyWindow.h"
#include "ui/TodoListWindow.h"

#include <QtTest>
#include <QtWidgets>
#include <memory>

/// Collects the lines of the debug output while it lives.
class LogLines
{
public:
    LogLines();
    ~LogLines();
    LogLines(const LogLines &) = delete;
    LogLines &operator=(const LogLines &) = delete;

    const QStringList &all() const;
    int count(const QString &start) const;

private:
    QtMessageHandler m_previous;
};

/// Counts how often a window was told to show a refusal.
class RefusalCounter : public QObject
{
public:
    explicit RefusalCounter(QWidget *window);
    int count() const { return m_count; }
    /// The refusals since the last call.
    int take() { return std::exchange(m_count, 0); }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    int m_count = 0;
};

/// Presses and releases \a key in \a window. Keys go to the window handle: the handlers read the
/// modifiers held, which only keys that come in from below set; no modifier stays held.
void pressIn(QWidget &window, int key, Qt::KeyboardModifiers modifiers = {});

/// Waits until \a window itself has the keyboard; for the toolkit's own wait it is enough that the
/// window has which it is tied to.
bool waitUntilActive(const QWidget &window);

/// X key codes of the physical keys with these symbols on a US keyboard.
namespace KeyCode
{
inline constexpr quint32 equal = 21;
inline constexpr quint32 bracketLeft = 34;
inline constexpr quint32 bracketRight = 35;
inline constexpr quint32 f = 41;
inline constexpr quint32 slash = 61;
} // namespace KeyCode

/// The main window with real model, files and activation behind it, wired as in the program, on
/// settings and files of its own.
class UiDesk
{
public:
    UiDesk();
    ~UiDesk();

    /// Opens a new file after those that are open. \return the id of its root entry.
    qint64 addFile(const QString &name);
    qint64 addEntry(qint64 parent, const QString &body, int sequence,
                    EntryState state = EntryState::Todo, int file = 0);
    QString storedBody(qint64 id, int file = 0) const;
    void goTo(qint64 id, int file = 0) { model.goToEntry({file, id}); }

    /// Brings the application to the front and waits until the window has the keyboard.
    void show();
    void press(int key, Qt::KeyboardModifiers modifiers = {});
    /// A press as the X server reports it, with the physical key's \a code.
    void pressNative(int key, quint32 code, Qt::KeyboardModifiers modifiers,
                     const QString &text = {});
    /// A press that the keyboard repeats while \a modifiers are held.
    void pressRepeated(int key, Qt::KeyboardModifiers modifiers);
    void type(const QString &text);

    template <typename Widget> Widget *child(const char *name) const
    {
        auto *widget = window->findChild<Widget *>(QString::fromLatin1(name));
        if (!widget)
            qFatal("no %s", name);
        return widget;
    }
    QString label(const char *name) const { return child<QLabel>(name)->text(); }
    QPlainTextEdit *editor() const { return child<QPlainTextEdit>("entryEdit"); }
    bool flashing() const { return isFlashing(*window); }
    static bool isFlashing(const QWidget &window)
    {
        return window.findChild<QWidget *>(QStringLiteral("refusalFlash"))->isVisible();
    }

    TestSettings settings;
    FileManager files;
    HierarchyModel model{&files};
    TodoListModel todos{&files};
    RecordingNativeSupport native;
    AppActivationSupport activation{&native};
    std::unique_ptr<HierarchyWindow> window;
    std::unique_ptr<TodoListWindow> todoWindow;
    std::unique_ptr<FindWindow> findWindow;
    std::unique_ptr<AppCommandFilter> filter;
    std::unique_ptr<RefusalCounter> refusals;

private:
    void connectModels();
    void connectWindows();
};
