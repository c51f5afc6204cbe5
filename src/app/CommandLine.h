// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

/// The program's arguments: brindle [FILE…], --help, --version.
namespace CommandLine
{

/// Answers --help and --version and ends the process, without needing a display; returns when
/// neither was given.
void answerWithoutDisplay(int argc, char **argv);

/// The files named on the command line of the running application; an unknown option ends the
/// process with a message and status 1.
QStringList filesToOpen();

} // namespace CommandLine
