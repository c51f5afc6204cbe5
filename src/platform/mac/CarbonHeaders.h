// SPDX-License-Identifier: MIT
#pragma once

// The one place that includes the platform's umbrella header: unasked, it also defines macros with
// names as common as check and verify.
#ifndef __ASSERT_MACROS_DEFINE_VERSIONS_WITHOUT_UNDERSCORES
#define __ASSERT_MACROS_DEFINE_VERSIONS_WITHOUT_UNDERSCORES                                        \
    0 // NOLINT(bugprone-reserved-identifier)
#endif

#include <Carbon/Carbon.h>
#include <CoreFoundation/CoreFoundation.h>
