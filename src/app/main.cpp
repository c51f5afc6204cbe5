// SPDX-License-Identifier: MIT
#include "app/AppLifecycle.h"
#include "app/Application.h"
#include "app/CommandLine.h"
#include "app/EnvironmentVariable.h"
#include "platform/NativeSupport.h"
#include "store/DiskStore.h"

#include <QTimer>
#include <cstdio>
#include <cstdlib>
#include <ctime>

int main(int argc, char **argv)
{
    CommandLine::answerWithoutDisplay(argc, argv);
    if (const std::optional<int> status = CommandLine::handOverToRunningCopy(argc, argv))
        return *status;

    const EnvironmentVariable platform("QT_QPA_PLATFORM");
    // Never deleted: the desktop may call it until the process ends.
    NativeSupport *nativeSupport = NativeSupport::create().release();
    if (!NativeSupport::hasDisplay()) {
        std::fputs("brindle: there is no display to show windows on\n", stderr);
        return EXIT_FAILURE;
    }
    nativeSupport->captureFrontProcessForRestore();

    std::srand(static_cast<unsigned int>(std::time(nullptr)));
    qRegisterMetaType<DiskStore::FileException>("DiskStore::FileException");

    Application app(argc, argv);
    // Programs that links start make their own choice.
    platform.restore();
    const CommandLine::Arguments arguments = CommandLine::arguments();
    AppLifecycle lifecycle(&app, nativeSupport, arguments.files);
    // A copy that has just been started beside this one is told the same as one that ran already.
    if (arguments.wish != CommandLine::Arguments::Wish::Start)
        lifecycle.askNoQuestions();

    // Start-up runs inside the event loop, because it may open message boxes.
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &lifecycle, &AppLifecycle::startup);
    timer.start(0);
    return QApplication::exec();
}
