// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <memory>

/// Turns SIGTERM, SIGINT and SIGHUP into a Qt signal on the GUI thread. One object at a time.
class TerminationSignals : public QObject
{
    Q_OBJECT

public:
    /// Installs the handlers; \a parent owns this object.
    explicit TerminationSignals(QObject *parent);
    ~TerminationSignals() override;

signals:
    void received();

private:
    std::unique_ptr<QSocketNotifier> m_notifier;
};
