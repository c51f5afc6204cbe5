// SPDX-License-Identifier: MIT
#pragma once

#include "app/activation/InstanceRequest.h"

#include <memory>

/// The running copy, as another copy reaches it over the session bus: for what its socket has no
/// words for. Blocks, and needs no event loop.
class BusInstance
{
public:
    BusInstance();
    ~BusInstance();

    enum class Answer { Taken, Refused, None };

    /// Whether a copy can be reached this way; never starts one.
    bool isThere() const;
    /// Sends Activate, Toggle or Open, with what the environment holds as proof of the user's
    /// action. Without an answer in time the copy may still take it later.
    Answer send(const InstanceRequest &request) const;

    /// Whether the environment holds such a proof.
    static bool hasActivationToken();

private:
    class Bus;
    std::unique_ptr<Bus> m_bus;
};
