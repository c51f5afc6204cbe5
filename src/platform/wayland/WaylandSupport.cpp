// SPDX-License-Identifier: MIT
#include "platform/wayland/WaylandSupport.h"

#include "platform/FrontRequests.h"
#include "platform/PlatformLog.h"
#include "platform/SettlingFront.h"
#include "platform/portal/PortalHotkey.h"
#include "platform/wayland/ModalBoxFocus.h"
#include "platform/wayland/WaylandSession.h"

#include <QGuiApplication>
#include <QTimer>
#include <QWindow>
#include <array>
#include <xkbcommon/xkbcommon.h>

using namespace Qt::StringLiterals;

namespace
{

/// From here the toolkit takes the proof that it shows to the compositor.
constexpr const char *tokenVariable = "XDG_ACTIVATION_TOKEN";

bool toolkitSaysActive()
{
    return QGuiApplication::applicationState() == Qt::ApplicationActive;
}

/// The fixed modifiers and the key with the keysym \a symbol, as portals write shortcuts.
QString trigger(quint32 symbol)
{
    std::array<char, 64> name{};
    xkb_keysym_get_name(symbol, name.data(), name.size());
    return u"CTRL+ALT+"_s + QString::fromLatin1(name.data());
}

} // namespace

std::unique_ptr<NativeSupport> WaylandSupport::open()
{
    if (!WaylandSession::toolkitKnowsIt() || !WaylandSession::isThere())
        return nullptr;
    return std::unique_ptr<NativeSupport>(new WaylandSupport);
}

WaylandSupport::WaylandSupport() = default;
WaylandSupport::~WaylandSupport() = default;

/// What needs the toolkit is made as soon as it is there: this object is older than it.
/// \return whether it is there.
bool WaylandSupport::attach()
{
    auto *application = qobject_cast<QGuiApplication *>(QCoreApplication::instance());
    if (!application)
        return false;
    if (m_attachedTo == application)
        return true;
    m_attachedTo = application;
    m_front = std::make_unique<SettlingFront>(toolkitSaysActive);
    connect(application, &QGuiApplication::applicationStateChanged, m_front.get(),
            &SettlingFront::frontChanged);
    connect(m_front.get(), &SettlingFront::notInFront, this, &NativeSupport::notInFront);
    m_requests = std::make_unique<FrontRequests>([this](QWindow *window) { bringForward(window); });
    m_boxFocus = std::make_unique<ModalBoxFocus>();
    m_hotkey = std::make_unique<PortalHotkey>();
    connect(m_hotkey.get(), &PortalHotkey::pressed, this, [this](const QByteArray &token) {
        setActivationToken(token);
        settleFront();
        emit hotKeyPressed();
        m_token.clear(); // the press has hidden us
    });
    return true;
}

bool WaylandSupport::areWeFrontProcess()
{
    return attach() && m_front->areWeInFront();
}

void WaylandSupport::captureFrontProcessForRestore() { }

void WaylandSupport::restoreCapturedProcess() { }

void WaylandSupport::setActivationHotkey(unsigned int virtualKey)
{
    if (attach())
        m_hotkey->setTrigger(trigger(virtualKey));
}

QString WaylandSupport::getActivationHotkeyNotice()
{
    if (!attach() || !m_hotkey->isUnavailable())
        return {};
    return tr("This desktop does not give Brindle the hotkey. Instead, bind the command "
              "“brindle --toggle” or “brindle --activate” to a key in the desktop's own keyboard "
              "settings.");
}

void WaylandSupport::setActivationToken(const QByteArray &token)
{
    // Far beyond any real one; a longer one could break the connection to the compositor.
    constexpr qsizetype longestToken = 1000;
    m_token = token.size() <= longestToken ? token : QByteArray();
}

void WaylandSupport::requestFront(QWindow *window)
{
    if (!attach())
        return;
    m_front->expectToComeForward();
    if (!m_token.isEmpty())
        m_requestsToken = std::exchange(m_token, {});
    m_requests->request(window);
}

void WaylandSupport::settleFront()
{
    if (attach())
        m_front->settleNow();
}

void WaylandSupport::bringForward(QWindow *window)
{
    // For the compositor the window is there only after its first picture, which follows now.
    QTimer::singleShot(0, window, [this, window] {
        if (!m_requestsToken.isEmpty())
            qputenv(tokenVariable, std::exchange(m_requestsToken, {}));
        window->requestActivate();
        qunsetenv(tokenVariable);
    });
}
