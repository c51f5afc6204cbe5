// SPDX-License-Identifier: MIT
// Without a session bus: a Mac tells the running copy by an event which file the user has chosen.
#include "app/activation/DesktopApplication.h"

#include <QCoreApplication>
#include <QFileOpenEvent>

class DesktopApplication::Bus : public QObject
{
public:
    explicit Bus(DesktopApplication *owner)
        : m_owner(owner)
    {
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        Q_UNUSED(watched)
        if (event->type() != QEvent::FileOpen)
            return false;
        const QString file = static_cast<QFileOpenEvent *>(event)->file();
        if (file.isEmpty()) // an address on the net, perhaps
            return false;
        emit m_owner->requested(InstanceRequest::toOpen({file}));
        return true;
    }

private:
    DesktopApplication *m_owner;
};

DesktopApplication::DesktopApplication()
    : m_bus(std::make_unique<Bus>(this))
{
}

DesktopApplication::~DesktopApplication() = default;

bool DesktopApplication::serve()
{
    QCoreApplication::instance()->installEventFilter(m_bus.get());
    return true;
}
