// SPDX-License-Identifier: MIT
#include "model/ReportTree.h"

#include "shared/TextHelpers.h"
#include "store/DiskStore.h"

#include <algorithm>
#include <memory>
#include <unordered_set>

namespace
{
constexpr int textLength = 80;
constexpr std::size_t topIndex = 0;
constexpr qint64 topId = -1;

qint64 sortKey(const QDateTime &date)
{
    return date.isValid() ? date.toMSecsSinceEpoch() : ReportTree::noDate;
}
} // namespace

ReportTree::ReportTree(DiskStore *store, const QDateTime &from, const QDateTime &to)
{
    m_nodes.emplace_back();
    m_indexById.emplace(topId, topIndex);
    const std::unique_ptr<QList<long long>> ids(store->getEntryIdsByDoneDate(from, to));
    for (const qint64 id : *ids)
        add(store, id);
    findLatestDates();
    sortChildren();
}

// Reads the done entry and then upwards until an ancestor is there already; what was read is put in
// from the top down. In a damaged file the way up may end at an entry that is missing or come back
// to one that it passed: the entry before is then shown at the top.
void ReportTree::add(DiskStore *store, qint64 id)
{
    const auto known = m_indexById.find(id);
    if (known != m_indexById.end()) {
        // Came in as the ancestor of another one.
        QDateTime &doneDate = m_nodes[known->second].doneDate;
        if (!store->getEntryInfo(id, nullptr, nullptr, nullptr, nullptr, nullptr, &doneDate,
                                 nullptr))
            throw "bad";
        return;
    }

    std::vector<LoadedEntry> way;
    std::unordered_set<qint64> visited;
    qint64 next = id;
    while (m_indexById.count(next) == 0 && visited.insert(next).second) {
        const bool isDone = next == id;
        LoadedEntry entry{next, {}};
        long long parentId = topId;
        if (!store->getEntryInfo(next, &entry.node.text, nullptr, nullptr, &parentId,
                                 isDone ? &entry.node.hasHiddenChildren : nullptr,
                                 isDone ? &entry.node.doneDate : nullptr, nullptr)) {
            if (isDone)
                throw "bad";
            break;
        }
        entry.node.text = Global::oneLineExcerpt(entry.node.text, textLength);
        way.push_back(std::move(entry));
        next = parentId;
    }

    const auto attachment = m_indexById.find(next);
    std::size_t parent = attachment == m_indexById.end() ? topIndex : attachment->second;
    for (auto entry = way.rbegin(); entry != way.rend(); ++entry) {
        parent = append(std::move(entry->node), parent);
        m_indexById.emplace(entry->id, parent);
    }
}

std::size_t ReportTree::append(Node node, std::size_t parent)
{
    const std::size_t index = m_nodes.size();
    node.parent = parent;
    m_nodes.push_back(std::move(node));
    m_nodes[parent].children.push_back(index);
    return index;
}

void ReportTree::findLatestDates()
{
    for (Node &node : m_nodes)
        node.latestDone = sortKey(node.doneDate);
    // Children come after their parent in the list, so each node is complete when it is passed on.
    for (std::size_t index = m_nodes.size() - 1; index > topIndex; --index) {
        qint64 &ofParent = m_nodes[m_nodes[index].parent].latestDone;
        ofParent = std::max(ofParent, m_nodes[index].latestDone);
    }
}

void ReportTree::sortChildren()
{
    for (Node &node : m_nodes) {
        std::stable_sort(node.children.begin(), node.children.end(),
                         [this](std::size_t a, std::size_t b) {
                             return m_nodes[a].latestDone < m_nodes[b].latestDone;
                         });
    }
}
