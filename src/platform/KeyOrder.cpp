// SPDX-License-Identifier: MIT
#include "platform/KeyOrder.h"

#include <algorithm>
#include <string_view>

namespace
{

using Group = PhysicalKey::Group;

bool isAsciiLetter(int key)
{
    return key >= Qt::Key_A && key <= Qt::Key_Z;
}

/// Keys that have a name rather than a symbol (Return, Escape, F1): they are what they are in
/// every layout. Dead keys are symbols that wait for a second one.
bool isNamedKey(int key)
{
    const bool dead = key >= Qt::Key_Dead_Grave && key <= Qt::Key_Dead_Longsolidusoverlay;
    return key >= Qt::Key_Escape && key != Qt::Key_unknown && !dead;
}

/// Collects keys in order, each once.
class Candidates
{
public:
    void add(int key)
    {
        if (key != 0 && !m_keys.contains(key))
            m_keys.append(key);
    }

    /// Lends a key of another keyboard. Letters are never lent: the user's own layout has them all,
    /// and Ctrl+A on a French keyboard must not become the Ctrl+Q of the key's place.
    void lend(int key)
    {
        if (!isAsciiLetter(key))
            add(key);
    }

    QList<int> m_keys;
};

/// The levels that count: AltGr makes other symbols, never those of the levels without it.
constexpr int firstLevel(bool altGr)
{
    return altGr ? 2 : 0;
}

bool bearsLetter(const Group &group)
{
    return isAsciiLetter(group.keys[0]) || isAsciiLetter(group.keys[1]);
}

/// The index of the group whose symbols the user means: the active one when it is Latin, else the
/// first Latin one; -1 when there is none.
int homeGroup(const PhysicalKey &physicalKey)
{
    const auto &groups = physicalKey.groups;
    const int active = physicalKey.activeGroup;
    if (active >= 0 && active < groups.size() && groups[active].latin)
        return active;
    const auto latin = std::find_if(groups.begin(), groups.end(),
                                    [](const Group &group) { return group.latin; });
    return latin == groups.end() ? -1 : static_cast<int>(latin - groups.begin());
}

void lendFromOtherKeyboards(Candidates &candidates, bool altGr, const PhysicalKey &physicalKey,
                            int home)
{
    const int first = firstLevel(altGr);
    for (int i = 0; i < physicalKey.groups.size(); ++i) {
        if (i == home || !physicalKey.groups[i].latin)
            continue;
        candidates.lend(physicalKey.groups[i].keys[first]);
        candidates.lend(physicalKey.groups[i].keys[first + 1]);
    }
    if (!altGr)
        candidates.lend(KeyOrder::usKey(physicalKey.code));
}

/// Without any Latin layout the places of a US keyboard count, letters too. A letter that comes all
/// the same is meant: on-screen keyboards make up layouts of a few keys, wherever these stand.
QList<int> keysByPlace(int toolkitKey, bool altGr, const PhysicalKey &physicalKey)
{
    Candidates candidates;
    if (isAsciiLetter(toolkitKey))
        candidates.add(toolkitKey);
    if (!altGr)
        candidates.add(KeyOrder::usKey(physicalKey.code));
    candidates.add(toolkitKey);
    return candidates.m_keys.isEmpty() ? QList<int>{toolkitKey} : candidates.m_keys;
}

/// Nothing is known about the layout: the toolkit's key tells whether it is a Latin one.
QList<int> keysWithoutLayout(int toolkitKey, bool altGr, const PhysicalKey &physicalKey)
{
    constexpr int firstBeyondLatin1 = 0x100;
    if (toolkitKey >= firstBeyondLatin1 && !altGr)
        return keysByPlace(toolkitKey, altGr, physicalKey);
    Candidates candidates;
    candidates.add(toolkitKey);
    if (!isAsciiLetter(toolkitKey) && !altGr)
        candidates.lend(KeyOrder::usKey(physicalKey.code));
    return candidates.m_keys.isEmpty() ? QList<int>{toolkitKey} : candidates.m_keys;
}

} // namespace

QList<int> KeyOrder::keys(int toolkitKey, bool altGr, const PhysicalKey &physicalKey)
{
    if (isNamedKey(toolkitKey))
        return {toolkitKey};
    if (physicalKey.groups.isEmpty())
        return keysWithoutLayout(toolkitKey, altGr, physicalKey);
    const int home = homeGroup(physicalKey);
    if (home < 0)
        return keysByPlace(toolkitKey, altGr, physicalKey);

    Candidates candidates;
    if (home == physicalKey.activeGroup)
        candidates.add(toolkitKey);
    const Group &group = physicalKey.groups[home];
    candidates.add(group.keys[firstLevel(altGr)]);
    candidates.add(group.keys[firstLevel(altGr) + 1]);
    if (!bearsLetter(group))
        lendFromOtherKeyboards(candidates, altGr, physicalKey, home);
    candidates.add(toolkitKey);
    return candidates.m_keys.isEmpty() ? QList<int>{toolkitKey} : candidates.m_keys;
}

int KeyOrder::usKey(quint32 code)
{
    struct Row {
        quint32 firstCode;
        std::string_view keys;
    };
    static constexpr std::array rows{Row{10, "1234567890-="}, Row{24, "QWERTYUIOP[]"},
                                     Row{38, "ASDFGHJKL;'`"}, Row{51, "\\ZXCVBNM,./"}};
    for (const Row &row : rows) {
        if (code >= row.firstCode && code - row.firstCode < row.keys.size())
            return row.keys[code - row.firstCode];
    }
    return 0;
}
