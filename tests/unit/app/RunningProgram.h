// SPDX-License-Identifier: MIT
#pragma once

#include "app/AppLifecycle.h"
#include "fakes/RecordingNativeSupport.h"
#include "fakes/TestSettings.h"
#include "store/DiskStore.h"
#include "ui/HierarchyWindow.h"

#include <QApplication>
#include <QPlainTextEdit>

/// The whole program but for its desktop, on a data file with the children "one" and "two".
class RunningProgram
{
public:
    RunningProgram()
    {
        const QString path = settings.filePath(QStringLiteral("a.bdl"));
        {
            DiskStore store(path);
            const long long root = store.getEntryId(-1, 0);
            store.insertEntry(root, QStringLiteral("one"), 0, EntryState::Todo, {});
            second = store.insertEntry(root, QStringLiteral("two"), 1, EntryState::Todo, {});
            store.commitAndRestartTransaction();
        }
        QSettings stored;
        stored.setValue(QStringLiteral("loadfiles/0"), path);
        stored.setValue(QStringLiteral("dontcheckforupdates"), true);
        stored.setValue(QStringLiteral("appstarted"), true);
        stored.sync();
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(settings.filePath(QStringLiteral("run"))));
    }

    void start()
    {
        lifecycle = std::make_unique<AppLifecycle>(qApp, &native, QStringList());
        lifecycle->startup();
    }

    template <typename Window> static Window *window()
    {
        const QWidgetList windows = QApplication::topLevelWidgets();
        for (QWidget *candidate : windows) {
            if (auto *found = qobject_cast<Window *>(candidate))
                return found;
        }
        return nullptr;
    }

    static QPlainTextEdit *editor()
    {
        return window<HierarchyWindow>()->findChild<QPlainTextEdit *>();
    }

    TestSettings settings;
    RecordingNativeSupport native;
    std::unique_ptr<AppLifecycle> lifecycle;
    qint64 second = -1;
};
