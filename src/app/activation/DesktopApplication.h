// SPDX-License-Identifier: MIT
#pragma once

#include "app/activation/InstanceRequest.h"

#include <QObject>
#include <memory>

/// The running copy as desktops know a program: the interface org.freedesktop.Application on the
/// session bus, under the program's own name. Where there is no session bus the toolkit's events
/// that a file is to be opened and that the program is to end take its place.
class DesktopApplication : public QObject
{
    Q_OBJECT

public:
    DesktopApplication();
    ~DesktopApplication() override;

    /// Takes the name and offers the interface. Without a bus, or when the name is taken, the
    /// reason goes to the debug output, and no requests come.
    void serve();

signals:
    /// Somebody asks for something; emitted from within the call, so it had better be queued.
    void requested(const InstanceRequest &request);

private:
    class Bus;
    std::unique_ptr<Bus> m_bus;
};
