// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <memory>

/// Frees what xcb hands out.
struct XcbFree {
    void operator()(void *memory) const { std::free(memory); }
};

/// A reply, an event or an error of xcb; null when the server refused or is gone.
template <typename T> using XcbReply = std::unique_ptr<T, XcbFree>;
