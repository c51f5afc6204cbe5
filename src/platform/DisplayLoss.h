// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QSemaphore>

/// Tells that the desktop has gone away, at a log-out or by a crash, while there is still time to
/// save. One object at a time.
///
/// The toolkit ends the process on the spot then, and the warning that it prints first is all that
/// it offers to hook on.
class DisplayLoss : public QObject
{
    Q_OBJECT

public:
    /// \a parent owns this object.
    explicit DisplayLoss(QObject *parent);
    ~DisplayLoss() override;

signals:
    /// Once, on the GUI thread; the process ends when its receivers return. Windows can't be shown
    /// any more.
    void lost();

private:
    static void handleMessage(QtMsgType type, const QMessageLogContext &context,
                              const QString &text);

    void tell();

    bool m_told = false;
    QSemaphore m_done;
};
