// SPDX-License-Identifier: MIT
#include "platform/mac/MacSupport.h"

#include "platform/PlatformLog.h"
#include "platform/mac/CarbonEventDispatcherHandler.h"
#include "platform/mac/MacHotKeyCallback.h"

#include <QKeySequence>
#include <optional>

using namespace Qt::StringLiterals;

namespace
{

constexpr char16_t commandSymbol = 0x2318;
constexpr char16_t controlSymbol = 0x2303;
constexpr char16_t shiftSymbol = 0x21E7;
constexpr char16_t deleteSymbol = 0x232B;

// The hot key counts on these values: users keep the key's code in their settings.
constexpr UInt32 activationModifiers = cmdKey | controlKey;
static_assert(activationModifiers == 0x1100);
static_assert(kVK_Space == 49);

// The Process Manager is deprecated, but what replaces it can't bring the front window of another
// program forward without its other windows.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

static_assert(kSetFrontProcessFrontWindowOnly == 1);

/// Nothing when the Mac doesn't say.
std::optional<ProcessSerialNumber> currentProcess()
{
    ProcessSerialNumber process{};
    if (const OSErr error = GetCurrentProcess(&process); error != noErr) {
        qCDebug(platformLog) << "the Mac doesn't tell which process this is:" << error;
        return {};
    }
    return process;
}

std::optional<ProcessSerialNumber> frontProcess()
{
    ProcessSerialNumber process{};
    if (const OSErr error = GetFrontProcess(&process); error != noErr) {
        qCDebug(platformLog) << "the Mac doesn't tell which process is in front:" << error;
        return {};
    }
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
    const std::optional<ProcessSerialNumber> current = currentProcess();
    const std::optional<ProcessSerialNumber> front = frontProcess();
    return current && front && areSame(*current, *front);
}

void MacSupport::captureFrontProcessForRestore()
{
    const std::optional<ProcessSerialNumber> front = frontProcess();
    const std::optional<ProcessSerialNumber> current = currentProcess();
    m_captured = front && current && !areSame(*front, *current);
    if (m_captured)
        m_capturedProcess = *front;
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
    m_activationHotKey = m_dispatcher->registerHotKey(virtualKey, activationModifiers,
                                                      m_hotKeyCallback.get(), true);
    if (!m_activationHotKey)
        qCDebug(platformLog) << "the Mac refused the activation hotkey with key" << virtualKey;
}
