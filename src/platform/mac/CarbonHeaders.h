// SPDX-License-Identifier: MIT
#pragma once

// The one place that includes the platform's umbrella headers: unasked, they also define macros
// with names as common as check and verify.
#ifndef __ASSERT_MACROS_DEFINE_VERSIONS_WITHOUT_UNDERSCORES
// NOLINTNEXTLINE(bugprone-reserved-identifier): the platform's name
#define __ASSERT_MACROS_DEFINE_VERSIONS_WITHOUT_UNDERSCORES 0
#endif

#include <Carbon/Carbon.h>
#include <CoreFoundation/CoreFoundation.h>
