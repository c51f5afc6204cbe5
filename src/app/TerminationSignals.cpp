// SPDX-License-Identifier: MIT
#include "app/TerminationSignals.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace
{
constexpr std::array handledSignals = {SIGTERM, SIGINT, SIGHUP};

// A signal handler can reach nothing but such a variable.
std::array<int, 2> wakeUpPipe = {-1, -1};

void wakeUp(int)
{
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(wakeUpPipe[1], &byte, 1);
}

/// Neither end blocks, and no program that is started inherits them. (pipe2() is Linux' own.)
bool openWakeUpPipe()
{
    if (::pipe(wakeUpPipe.data()) != 0)
        return false;
    for (const int end : wakeUpPipe) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
        ::fcntl(end, F_SETFL, O_NONBLOCK);
    }
    return true;
}

void setHandler(void (*handler)(int))
{
    struct sigaction action {
    };
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int number : handledSignals)
        ::sigaction(number, &action, nullptr);
}
} // namespace

TerminationSignals::TerminationSignals(QObject *parent)
    : QObject(parent)
{
    if (!openWakeUpPipe()) {
        qWarning("no pipe for termination signals; they will end the program without saving");
        return;
    }
    m_notifier = std::make_unique<QSocketNotifier>(wakeUpPipe[0], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        while (::read(wakeUpPipe[0], &byte, 1) > 0) { }
        emit received();
    });
    setHandler(wakeUp);
}

TerminationSignals::~TerminationSignals()
{
    setHandler(SIG_DFL);
    m_notifier.reset();
    for (int &end : wakeUpPipe) {
        if (end != -1)
            ::close(end);
        end = -1;
    }
}
