// SPDX-License-Identifier: MIT
#pragma once

// Stands in for the header of the same name on a Mac: what src/platform/mac uses of it, with the
// names, types and signatures it has there. FakeMac carries it out.

using Boolean = unsigned char;
using CFIndex = long;
using CFTypeRef = const void *;
using CFAllocatorRef = const struct __CFAllocator *;
using CFDictionaryRef = const struct __CFDictionary *;
using CFMutableDictionaryRef = struct __CFDictionary *;

// Callers pass null for these; nothing needs to know what is inside.
struct CFDictionaryKeyCallBacks;
struct CFDictionaryValueCallBacks;

extern "C" {

extern const CFAllocatorRef kCFAllocatorDefault;

void CFRelease(CFTypeRef object);

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                 const CFDictionaryKeyCallBacks *keyCallBacks,
                                                 const CFDictionaryValueCallBacks *valueCallBacks);
CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary);
const void *CFDictionaryGetValue(CFDictionaryRef dictionary, const void *key);
void CFDictionaryGetKeysAndValues(CFDictionaryRef dictionary, const void **keys,
                                  const void **values);
void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void *key, const void *value);
void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void *key);
}
