// SPDX-License-Identifier: MIT
// The dictionaries of Core Foundation, kept by the FakeMac that lives.
#include "fakes/mac/FakeMac.h"

#include <algorithm>

namespace
{

template <typename Entries> auto findKey(Entries &entries, const void *key)
{
    return std::find_if(entries.begin(), entries.end(),
                        [key](const auto &entry) { return entry.first == key; });
}

} // namespace

const CFAllocatorRef kCFAllocatorDefault = nullptr;

void CFRelease(CFTypeRef object)
{
    for (const auto &dictionary : FakeMac::current().dictionaries) {
        if (dictionary.get() == object && !dictionary->released) {
            dictionary->released = true;
            return;
        }
    }
    qFatal("what was released is no living dictionary");
}

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                 const CFDictionaryKeyCallBacks *keyCallBacks,
                                                 const CFDictionaryValueCallBacks *valueCallBacks)
{
    Q_UNUSED(allocator)
    auto &dictionaries = FakeMac::current().dictionaries;
    dictionaries.push_back(std::make_unique<__CFDictionary>());
    dictionaries.back()->capacity = capacity;
    dictionaries.back()->hasCallBacks = keyCallBacks || valueCallBacks;
    return dictionaries.back().get();
}

CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary)
{
    return static_cast<CFIndex>(dictionary->entries.size());
}

const void *CFDictionaryGetValue(CFDictionaryRef dictionary, const void *key)
{
    const auto found = findKey(dictionary->entries, key);
    return found == dictionary->entries.end() ? nullptr : found->second;
}

void CFDictionaryGetKeysAndValues(CFDictionaryRef dictionary, const void **keys,
                                  const void **values)
{
    for (const auto &[key, value] : dictionary->entries) {
        if (keys)
            *keys++ = key;
        if (values)
            *values++ = value;
    }
}

void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void *key, const void *value)
{
    const auto found = findKey(dictionary->entries, key);
    if (found == dictionary->entries.end())
        dictionary->entries.emplace_back(key, value);
    else
        found->second = value;
}

void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void *key)
{
    const auto found = findKey(dictionary->entries, key);
    if (found != dictionary->entries.end())
        dictionary->entries.erase(found);
}
