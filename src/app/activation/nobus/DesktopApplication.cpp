// SPDX-License-Identifier: MIT
// Without a session bus: a Mac tells the running copy by events which file the user has chosen, and
// that the program is to end.
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
        if (watched != QCoreApplication::instance())
            return false;
        if (event->type() == QEvent::FileOpen)
            return open(static_cast<QFileOpenEvent *>(event)->file());
        if (event->type() != QEvent::Quit)
            return false;
        // The toolkit would ask the windows, and the main window refuses to close.
        event->ignore();
        emit m_owner->requested({InstanceRequest::Kind::Terminate, {}, {}});
        return true;
    }

private:
    bool open(const QString &file)
    {
        if (file.isEmpty()) // an address on the net, perhaps
            return false;
        emit m_owner->requested(InstanceRequest::toOpen({file}));
        return true;
    }

    DesktopApplication *m_owner;
};

DesktopApplication::DesktopApplication()
    : m_bus(std::make_unique<Bus>(this))
{
}

DesktopApplication::~DesktopApplication() = default;

void DesktopApplication::serve()
{
    QCoreApplication::instance()->installEventFilter(m_bus.get());
}
