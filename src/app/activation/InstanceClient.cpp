// SPDX-License-Identifier: MIT
#include "app/activation/InstanceClient.h"

#include "app/activation/BusInstance.h"
#include "app/activation/InstanceEndpoint.h"
#include "app/activation/RunningInstance.h"

namespace
{

using InstanceClient::Answer;
using InstanceClient::Outcome;

bool needsBus(const InstanceRequest &request)
{
    return request.kind != InstanceRequest::Kind::Activate || BusInstance::hasActivationToken();
}

BusInstance::Answer sendOverBus(const InstanceRequest &request)
{
    const BusInstance bus;
    return bus.isThere() ? bus.send(request) : BusInstance::Answer::Refused;
}

/// What is left to say when only "come forward" could be sent.
Answer answerForLess(InstanceRequest::Kind wanted)
{
    switch (wanted) {
    case InstanceRequest::Kind::Open:
        return {Outcome::Failed,
                "the running copy came forward, but can't be reached over the "
                "session bus to open files"};
    case InstanceRequest::Kind::Toggle:
        return {Outcome::Done,
                "the running copy can't be reached over the session bus to step "
                "back; it came forward"};
    default:
        return {};
    }
}

} // namespace

InstanceClient::Answer InstanceClient::handOver(const InstanceRequest &request)
{
    RunningInstance running(InstanceEndpoint().socketPaths(), patienceMs);
    if (!running.connect())
        return {Outcome::NobodyRuns, nullptr};
    return handOver(running, request);
}

InstanceClient::Answer InstanceClient::handOver(RunningInstance &running,
                                                const InstanceRequest &request)
{
    const Answer noAnswer{Outcome::Failed, "the running copy doesn't answer"};
    try {
        running.askVersion(); // whichever it is, but a copy that hangs must not go unnoticed
    } catch (const char *) {
        return noAnswer;
    }
    if (needsBus(request)) {
        const BusInstance::Answer answer = sendOverBus(request);
        if (answer == BusInstance::Answer::Taken)
            return {};
        // It may take the request yet: another on top of it would undo it.
        if (answer == BusInstance::Answer::None)
            return noAnswer;
    }
    if (!running.send(RunningInstance::Message::Activation))
        return noAnswer;
    return answerForLess(request.kind);
}
