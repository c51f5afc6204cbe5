// SPDX-License-Identifier: MIT
#include "platform/mac/MacKeyboardLayout.h"

#include "platform/KeyOrder.h"

#include <QKeyEvent>
#include <string_view>

namespace
{

/// What a US keyboard has at each of the Mac's virtual key codes, from 0 on; a blank where it is no
/// symbol (0x0A, Return, Tab).
constexpr std::string_view usKeys = "ASDFHGZXCV BQWERYT123465=97-80]OU[IP LJ'K;\\,/NM.  `";

/// The code by which the rest of the program knows the place of a US keyboard's \a key; 0 for none.
quint32 codeOfPlace(char key)
{
    constexpr quint32 lastCode = 61;
    for (quint32 code = 1; code <= lastCode; ++code) {
        if (KeyOrder::usKey(code) == key)
            return code;
    }
    return 0;
}

} // namespace

PhysicalKey MacKeyboardLayout::physicalKey(const QKeyEvent &event)
{
    // The Mac has no scan codes; the virtual key code stands for the place instead.
    const quint32 virtualKey = event.nativeVirtualKey();
    return PhysicalKey{virtualKey < usKeys.size() ? codeOfPlace(usKeys[virtualKey]) : 0, {}, 0};
}
