// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <optional>

/// The program's arguments: brindle [FILE…], --activate [FILE…], --toggle, --help, --version.
namespace CommandLine
{

struct Arguments {
    enum class Wish { Start, Activate, Toggle };

    Wish wish = Wish::Start;
    QStringList files;
};

/// Answers --help and --version and ends the process, without needing a display; returns when
/// neither was given.
void answerWithoutDisplay(int argc, char **argv);

/// Hands --activate or --toggle over to the running copy, without needing a display. \return the
/// exit status of this process; nothing when it is to go on as a start of the program.
std::optional<int> handOverToRunningCopy(int argc, char **argv);

/// What the running application was started with; arguments that are unknown or don't go together
/// end the process with a message and status 1.
Arguments arguments();

} // namespace CommandLine
