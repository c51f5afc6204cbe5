// SPDX-License-Identifier: MIT
#pragma once

#include "app/activation/InstanceRequest.h"

class RunningInstance;

/// Hands a request over to the running copy without asking the user anything: over the socket what
/// that can say, and the rest over the session bus.
namespace InstanceClient
{

enum class Outcome { NobodyRuns, Done, Failed };

struct Answer {
    Outcome outcome = Outcome::Done;
    const char *text = nullptr; ///< What the user should know, if anything.
};

/// A copy that is busy, starting for instance, gets longer than one that a question is about.
inline constexpr int patienceMs = 5000;

/// Looks for the running copy and hands \a request over.
Answer handOver(const InstanceRequest &request);

/// The same for a copy that is connected already.
Answer handOver(RunningInstance &running, const InstanceRequest &request);

} // namespace InstanceClient
