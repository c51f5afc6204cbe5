// SPDX-License-Identifier: MIT
#include "platform/mac/MacSupport.h"

#include "platform/PlatformLog.h"
#include "platform/mac/CarbonEventDispatcherHandler.h"
#include "platform/mac/MacHotKeyCallback.h"

#include <QKeySequence>

using namespace Qt::StringLiterals;

namespace
{

constexpr char16_t commandSymbol = 0x2318;
constexpr char16_t controlSymbol = 0x2303;
constexpr char16_t shiftSymbol = 0x21E7;
constexpr char16_t deleteSymbol = 0x232B;

// The Process Manager is deprecated, but what replaces it can't bring the front window of another
// program forward without its other windows.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

ProcessSerialNumber currentProcess()
{
    ProcessSerialNumber process{};
    GetCurrentProcess(&process);
    return process;
}

ProcessSerialNumber frontProcess()
{
    ProcessSerialNumber process{};
    GetFrontProcess(&process);
    return process;
}

void bringForward(const ProcessSerialNumber &process)
{
    SetFrontProcessWithOptions(&process, kSetFrontProcessFrontWindowOnly);
}

#pragma GCC diagnostic pop

bool areSame(const ProcessSerialNumber &a, const ProcessSerialNumber &b)
{
    return a.highLongOfPSN == b.highLongOfPSN && a.lowLongOfPSN == b.lowLongOfPSN;
}

} // namespace

MacSupport::MacSupport()
    : m_hotKeyCallback(std::make_unique<MacHotKeyCallback>(this))
    , m_dispatcher(std::make_unique<CarbonEventDispatcherHandler>())
{
}

MacSupport::~MacSupport() = default;

bool MacSupport::areWeFrontProcess()
{
    return areSame(currentProcess(), frontProcess());
}

void MacSupport::captureFrontProcessForRestore()
{
    const ProcessSerialNumber front = frontProcess();
    m_captured = !areSame(front, currentProcess());
    if (m_captured)
        m_capturedProcess = front;
}

void MacSupport::restoreCapturedProcess()
{
    if (m_captured)
        bringForward(m_capturedProcess);
}

QString MacSupport::renderKeyCombo(KeyCommandMap::KeyCombo *combo)
{
    if (!combo)
        throw "bad";
    // Only the modifiers that the key map itself uses are drawn.
    QString text;
    if (combo->modifiers.testFlag(Qt::ControlModifier))
        text += commandSymbol;
    if (combo->modifiers.testFlag(Qt::ShiftModifier))
        text += shiftSymbol;
    if (combo->key == Qt::Key_Delete)
        return text + deleteSymbol;
    return text + QKeySequence(combo->key).toString(QKeySequence::PortableText);
}

QString MacSupport::getModifierSeparator()
{
    return u""_s;
}

Qt::KeyboardModifiers MacSupport::getShortcutModifier()
{
    return Qt::MetaModifier;
}

int MacSupport::getShortcutModifierKey()
{
    return Qt::Key_Meta;
}

QString MacSupport::getShortcutModifierKeySymbol()
{
    return QString(controlSymbol);
}

QString MacSupport::getActivationHotkeyPrefix()
{
    return QString(commandSymbol) + controlSymbol;
}

int MacSupport::getSpaceVirtualKey()
{
    return kVK_Space;
}

void MacSupport::setActivationHotkey(unsigned int virtualKey)
{
    if (m_activationHotKey)
        m_dispatcher->unregisterHotKey(m_activationHotKey);
    m_activationHotKey = m_dispatcher->registerHotKey(virtualKey, cmdKey | controlKey,
                                                      m_hotKeyCallback.get(), true);
    if (!m_activationHotKey)
        qCDebug(platformLog) << "the Mac refused the activation hotkey with key" << virtualKey;
}
