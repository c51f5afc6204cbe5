// SPDX-License-Identifier: MIT
#include "app/DisplayLoss.h"

#include <QThread>
#include <QtGlobal>

namespace
{
/// Longer than a save that waits for another program's reading; the process must end some day.
constexpr int longestWaitMs = 20'000;

// A message handler can reach nothing but such variables.
DisplayLoss *receiver = nullptr;
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
    if (!receiver || !saysThatTheDisplayIsLost(text))
        return;
    if (QThread::currentThread() == receiver->thread()) {
        receiver->tell();
        return;
    }
    // The toolkit reads from the display in a thread of its own and ends the process there.
    QMetaObject::invokeMethod(receiver, &DisplayLoss::tell, Qt::QueuedConnection);
    receiver->m_done.tryAcquire(1, longestWaitMs);
}

void DisplayLoss::tell()
{
    if (m_told)
        return;
    m_told = true;
    emit lost();
    m_done.release();
}
