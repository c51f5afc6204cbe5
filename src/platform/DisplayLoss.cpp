// SPDX-License-Identifier: MIT
#include "platform/DisplayLoss.h"

#include <QThread>
#include <QtGlobal>
#include <atomic>

namespace
{
/// Longer than a save that waits for another program's reading (some seconds for each file that is
/// held); the process must end some day.
constexpr int longestWaitMs = 20'000;

// A message handler can reach nothing but such variables.
std::atomic<DisplayLoss *> receiver = nullptr;
QtMessageHandler handlerBefore = nullptr;

bool saysThatTheDisplayIsLost(const QString &text)
{
    return text.startsWith(QLatin1String("The Wayland connection "))
        || text.startsWith(QLatin1String("The X11 connection broke"));
}
} // namespace

DisplayLoss::DisplayLoss(QObject *parent)
    : QObject(parent)
{
    receiver = this;
    handlerBefore = qInstallMessageHandler(handleMessage);
}

DisplayLoss::~DisplayLoss()
{
    qInstallMessageHandler(handlerBefore);
    receiver = nullptr;
}

void DisplayLoss::handleMessage(QtMsgType type, const QMessageLogContext &context,
                                const QString &text)
{
    if (handlerBefore)
        handlerBefore(type, context, text);
    DisplayLoss *const told = receiver;
    if (!told || !saysThatTheDisplayIsLost(text))
        return;
    if (QThread::currentThread() == told->thread()) {
        told->tell();
        return;
    }
    // The toolkit reads from the display in a thread of its own and ends the process there.
    QMetaObject::invokeMethod(told, &DisplayLoss::tell, Qt::QueuedConnection);
    told->m_done.tryAcquire(1, longestWaitMs);
}

void DisplayLoss::tell()
{
    if (m_told)
        return;
    m_told = true;
    emit lost();
    m_done.release();
}
