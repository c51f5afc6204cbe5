// SPDX-License-Identifier: MIT
#pragma once

#include "model/KeyCommandMap.h"
#include "platform/FrontLoss.h"

#include <QObject>
#include <memory>

class QWindow;

/// The one seam between the program and the desktop: the global activation hotkey, who is in front,
/// and how keys are named. Nothing above this folder knows which desktop it runs on.
class NativeSupport : public QObject
{
    Q_OBJECT

public:
    /// The implementation for the desktop at hand. Works before the application object exists and
    /// without any display.
    static std::unique_ptr<NativeSupport> create();

    /// Whether there is a display to show windows on. Without one the toolkit would abort the
    /// process, so main asks before it builds the application object.
    static bool hasDisplay();

    /// Whether the desktop tells programs where their windows stand, and lets them choose. Needs
    /// the application object.
    static bool tellsWindowPlaces();

    /// Whether the desktop keeps tool windows in front of the program's others by their kind alone.
    /// Needs the application object.
    static bool keepsToolWindowsInFront();

    /// Whether this application is the one in front.
    virtual bool areWeFrontProcess() = 0;
    /// Remembers who is in front, unless it is this application (then nobody is remembered).
    virtual void captureFrontProcessForRestore() = 0;
    /// Brings the remembered one back to the front; it stays remembered.
    virtual void restoreCapturedProcess() = 0;
    /// Text of a key combination for display, such as "Ctrl+Shift+D".
    /// \throws const char* "bad" when \a combo is null.
    virtual QString renderKeyCombo(KeyCommandMap::KeyCombo *combo) = 0;
    /// Text between a modifier and what follows it.
    virtual QString getModifierSeparator() = 0;
    /// The modifier that, held with a key, jumps to the entry bound to that key.
    virtual Qt::KeyboardModifiers getShortcutModifier() = 0;
    /// The Qt key code of that modifier pressed alone.
    virtual int getShortcutModifierKey() = 0;
    /// The name of that modifier for display.
    virtual QString getShortcutModifierKeySymbol() = 0;
    /// The fixed modifiers of the activation hotkey, for display before the key's name.
    virtual QString getActivationHotkeyPrefix() = 0;
    /// The platform's own code of the space bar, the default activation key.
    virtual int getSpaceVirtualKey() = 0;
    /// Makes \a virtualKey (the platform's own code) with the fixed modifiers the one system-wide
    /// activation hotkey. Failure is silent; the reason goes to the debug output.
    virtual void setActivationHotkey(unsigned int virtualKey) = 0;

    /// Asks the desktop to bring \a window, just shown because the application became active, to
    /// the front with the keyboard, also when no user action is at hand to justify it (the timer).
    /// Desktops that need no asking keep this empty body.
    virtual void requestFront(QWindow *window);

    /// Takes the proof of the user's action (an xdg-activation token, or a startup notification id
    /// on X11) that came along with a request to come forward; the next requestFront() shows it to
    /// the desktop. Empty forgets the last one. Desktops without such a thing keep this empty body.
    virtual void setActivationToken(const QByteArray &token);

    /// The user does something that depends on who is in front: a loss of the front that the
    /// desktop has still to prove counts from now on. Desktops that know at once keep this empty
    /// body.
    virtual void settleFront();

    /// One sentence or two for the user when the activation hotkey does not work on this desktop,
    /// saying why and what to use instead; empty when it works, or when that is not known yet.
    virtual QString getActivationHotkeyNotice();

signals:
    /// The activation hotkey was pressed; once per press, on the GUI thread.
    void hotKeyPressed();

    /// This application isn't in front, as areWeFrontProcess() said a moment ago. Desktops that
    /// know at once leave it to the toolkit's ApplicationDeactivate event.
    void notInFront(FrontLoss reason);
};
