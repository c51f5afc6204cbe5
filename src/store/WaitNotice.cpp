// SPDX-License-Identifier: MIT
#include "store/WaitNotice.h"

#include <QApplication>
#include <QThread>

using namespace Qt::StringLiterals;

namespace
{
constexpr unsigned long pauseMs = 50;
constexpr int marginPixels = 24;
const QString noticeName = u"WaitNotice"_s;
} // namespace

WaitNotice::WaitNotice(const QString &fileName)
    : m_notice(tr("Waiting for another program to finish with “%1”…").arg(fileName))
{
    m_waited.start();
    m_notice.setObjectName(noticeName);
    m_notice.setTextFormat(Qt::PlainText);
    m_notice.setMargin(marginPixels);
    // A dialog without buttons: there is nothing to answer.
    m_notice.setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint);
    m_notice.setWindowTitle(tr("Please wait"));
    // What must not begin while a box is open doesn't begin now either.
    m_notice.setWindowModality(Qt::ApplicationModal);
}

void WaitNotice::pause()
{
    QThread::msleep(pauseMs);
    if (m_waited.elapsed() < silentMs)
        return;
    m_notice.show();
    // For painting's sake: the caller is in the middle of a change, so no key and no timer may be
    // dealt with here. Some event loops let sockets through all the same: whoever acts on a signal
    // or another program's message asks isShown() before it writes.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents
                                    | QEventLoop::ExcludeSocketNotifiers
                                    | QEventLoop::X11ExcludeTimers);
}

bool WaitNotice::isShown()
{
    const QWidget *modal = QApplication::activeModalWidget();
    return modal && modal->objectName() == noticeName;
}
