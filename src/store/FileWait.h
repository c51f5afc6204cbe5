// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <functional>
#include <memory>

/// One wait for another process to let go of a file; it lasts as long as the object.
class FileWait
{
public:
    FileWait() = default;
    virtual ~FileWait() = default;
    Q_DISABLE_COPY_MOVE(FileWait)

    /// Lets a fraction of a second go by. Nothing may use the waiting store from in here but to
    /// read.
    virtual void pause() = 0;
};

/// Begins a wait for the file with the name given; null lets the store just sleep.
using FileWaitFactory = std::function<std::unique_ptr<FileWait>(const QString &fileName)>;
