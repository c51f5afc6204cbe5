// SPDX-License-Identifier: MIT
#include "ui/AbstractWindow.h"

#include "platform/NativeSupport.h"
#include "shared/Refusal.h"
#include "ui/RefusalFlash.h"
#include "ui/ScreenPlacement.h"

#include <QApplication>
#include <QHideEvent>
#include <QMoveEvent>
#include <QResizeEvent>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace
{
/// A window manager may shift a window it has just been given by about a frame's width.
constexpr int managerShift = 64;
/// By then even a busy window manager has framed a window that was just shown.
constexpr int settlingTimeMs = 3000;
constexpr int settlingPaceMs = 50;

/// Where the frame stands. QWidget::pos() goes on counting with the width of a frame that the
/// window manager took away when it hid the window.
QPoint framePosition(const QWidget *window)
{
    const QWindow *handle = window->windowHandle();
    return handle && window->isVisible() ? handle->framePosition() : window->pos();
}
} // namespace

AbstractWindow::AbstractWindow(QWidget *parent, Qt::WindowFlags flags)
    : QDialog(parent, flags)
    , m_refusalFlash(new RefusalFlash(this))
    , m_saveTimer(new QTimer(this))
    , m_settleTimer(new QTimer(this))
{
    m_settleTimer->setInterval(settlingPaceMs);
    connect(m_settleTimer, &QTimer::timeout, this, &AbstractWindow::settle);
    m_saveTimer->setSingleShot(true);
    m_saveTimer->setInterval(saveDelayMs);
    connect(m_saveTimer, &QTimer::timeout, this, &AbstractWindow::saveConfigInSettings);
}

QString AbstractWindow::getWindowPosSettingsKey() const
{
    return getWindowName() + u"/pos"_s;
}

QString AbstractWindow::getWindowSizeSettingsKey() const
{
    return getWindowName() + u"/size"_s;
}

void AbstractWindow::restoreSizeAndPos()
{
    if (m_settings.contains(getWindowPosSettingsKey()))
        move(m_settings.value(getWindowPosSettingsKey()).toPoint());
    if (m_settings.contains(getWindowSizeSettingsKey()))
        resize(m_settings.value(getWindowSizeSettingsKey()).toSize());
}

void AbstractWindow::restoreShowAndActivate()
{
    if (!isVisible()) {
        restoreSizeAndPos();
        moveOntoScreen();
        clearMinimized();
        beginToSettle();
        setVisible(true);
        if (m_hasNoPlaceYet) // only now the toolkit has chosen one
            m_settlingAt = pos();
        // Hidden and shown again at once, the window never lost the keyboard in the toolkit's eyes,
        // and no event tells the widgets that it has it.
        if (QGuiApplication::focusWindow() == windowHandle())
            QApplication::setActiveWindow(this);
    }
    AbstractWindow::activate();
}

void AbstractWindow::beginToSettle()
{
    m_hasNoPlaceYet = !m_settings.contains(getWindowPosSettingsKey());
    m_settlingAt = pos();
    m_settled.setRemainingTime(settlingTimeMs);
    m_settleTimer->start();
}

// A window of fixed size is resized once more when it is framed, and its frame slips by its own
// width then; some window managers put a hidden window back where its inside was. Other differences
// are the user's or the window manager's will.
void AbstractWindow::settle()
{
    if (m_settled.hasExpired() || !isVisible()) {
        m_settleTimer->stop();
        return;
    }
    const QMargins frame = windowHandle()->frameMargins();
    const QPoint frameWidth(frame.left(), frame.top());
    if (frameWidth.isNull())
        return;
    if (m_hasNoPlaceYet) {
        keepOnScreen();
        return;
    }
    fitCorrection();
    const QPoint slip = framePosition(this) - m_settlingAt;
    if (slip == frameWidth || slip == -frameWidth)
        move(m_settlingAt);
}

// Nobody has chosen this place. While the window manager frames the window, the toolkit can take
// the place within the frame for one on the screen, and asks for that when the window is resized.
void AbstractWindow::keepOnScreen()
{
    const QPoint fitted = placeOnScreen();
    if (NativeSupport::tellsWindowPlaces() && fitted != framePosition(this))
        move(fitted);
}

/// Where the frame is, or was to be when it sticks out of the screen.
QPoint AbstractWindow::placeOnScreen() const
{
    const QRect frame(framePosition(this), frameGeometry().size());
    if (ScreenPlacement::fittedPosition(frame) == frame.topLeft())
        return frame.topLeft();
    return ScreenPlacement::fittedPosition(QRect(m_settlingAt, frame.size()));
}

// Only now the frame is known, which must not stick out of the screen either.
void AbstractWindow::fitCorrection()
{
    if (!m_correction)
        return;
    const QPoint fitted
        = ScreenPlacement::fittedPosition(QRect(m_settlingAt, frameGeometry().size()));
    if (fitted == m_settlingAt)
        return;
    m_settlingAt = fitted;
    m_correction = Correction{fitted};
    move(fitted);
}

bool AbstractWindow::isFirstSettling() const
{
    return m_hasNoPlaceYet && m_settleTimer->isActive();
}

// Once the window is hidden the toolkit no longer knows its frame.
void AbstractWindow::setVisible(bool visible)
{
    if (!visible && isVisible()) {
        savePendingPlace();
        untieFromOwner();
    }
    if (visible)
        tieToOwner();
    QDialog::setVisible(visible);
}

// Between windows that are tied the toolkit passes the keyboard on past the window manager, which
// then gives it to whom it sees fit when this one goes.
void AbstractWindow::untieFromOwner()
{
    if (m_owner && windowHandle())
        windowHandle()->setTransientParent(nullptr);
}

// Most window managers put a window that is clicked in front of all that aren't tied to it.
void AbstractWindow::tieToOwner()
{
    if (!m_owner || !m_owner->windowHandle() || NativeSupport::keepsToolWindowsInFront())
        return;
    winId(); // makes the handle, once the place is known
    windowHandle()->setTransientParent(m_owner->windowHandle());
}

// A hidden window is moved by the window manager alone, when it takes the frame off: with the
// frame's width counted once more, that is no place to come back to.
void AbstractWindow::saveLater(const QEvent &change)
{
    if (isVisible() || !change.spontaneous())
        m_saveTimer->start();
}

// The place the window was just moved to is the one to come back to.
void AbstractWindow::savePendingPlace()
{
    if (!m_saveTimer->isActive())
        return;
    m_saveTimer->stop();
    saveConfigInSettings();
}

void AbstractWindow::belongTo(QWidget &owner)
{
    m_owner = &owner;
}

void AbstractWindow::activate()
{
    clearMinimized();
    activateWindow();
    raise();
}

void AbstractWindow::hideOnDeactivate(bool isAppActive)
{
    if (!isAppActive && isVisible())
        setVisible(false);
}

void AbstractWindow::saveConfigInSettings()
{
    m_settings.setValue(getWindowSizeSettingsKey(), size());
    // A made-up place would be taken for a real one on the next desktop.
    if (NativeSupport::tellsWindowPlaces() && !standsAtCorrectedPlace())
        m_settings.setValue(getWindowPosSettingsKey(),
                            isFirstSettling() ? placeOnScreen() : framePosition(this));
    m_settings.sync();
}

bool AbstractWindow::event(QEvent *event)
{
    if (event->type() == Refusal::eventType()) {
        showRefusal();
        return true;
    }
    return QDialog::event(event);
}

void AbstractWindow::moveEvent(QMoveEvent *event)
{
    QDialog::moveEvent(event);
    saveLater(*event);
    if (m_settleTimer->isActive()) // mended at once; the frame is known only after this event
        QMetaObject::invokeMethod(this, &AbstractWindow::settle, Qt::QueuedConnection);
}

void AbstractWindow::resizeEvent(QResizeEvent *event)
{
    QDialog::resizeEvent(event);
    saveLater(*event);
}

void AbstractWindow::hideEvent(QHideEvent *event)
{
    QDialog::hideEvent(event);
    if (!event->spontaneous())
        emit hiding();
}

void AbstractWindow::showRefusal()
{
    flashAround(this);
}

void AbstractWindow::flashAround(const QWidget *part)
{
    m_refusalFlash->flashOver(part);
}

void AbstractWindow::moveOntoScreen()
{
    m_correction.reset();
    const std::optional<QPoint> onScreen = ScreenPlacement::correctedPosition(frameGeometry());
    if (!onScreen)
        return;
    move(*onScreen);
    m_correction = Correction{*onScreen};
}

// The stored place stays as it is until the user moves the window: the screen it belongs to may
// come back. Only what the window manager did to our own placing is forgiven, and only once.
bool AbstractWindow::standsAtCorrectedPlace()
{
    if (!m_correction)
        return false;
    const int distance = (pos() - m_correction->pos).manhattanLength();
    if (distance == 0 || (!m_correction->settled && distance <= managerShift)) {
        *m_correction = {pos(), true};
        return true;
    }
    m_correction.reset();
    return false;
}

void AbstractWindow::clearMinimized()
{
    if (isMinimized())
        setWindowState(windowState() & ~Qt::WindowMinimized);
}
