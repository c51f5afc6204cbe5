// SPDX-License-Identifier: MIT
#pragma once

#include "platform/mac/CarbonHotKeyCallback.h"

#include <functional>
#include <utility>

/// Counts its calls and remembers with what it was called.
class CountingCallback : public CarbonHotKeyCallback
{
public:
    void execute(void *handler) override
    {
        ++calls;
        lastHandler = handler;
    }

    int calls = 0;
    void *lastHandler = nullptr;
};

/// Does what the test wants, such as throwing.
class ScriptedCallback : public CarbonHotKeyCallback
{
public:
    explicit ScriptedCallback(std::function<void()> script)
        : m_script(std::move(script))
    {
    }

    void execute(void *handler) override
    {
        Q_UNUSED(handler)
        m_script();
    }

private:
    std::function<void()> m_script;
};
