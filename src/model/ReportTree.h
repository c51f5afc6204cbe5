// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QString>
#include <limits>
#include <unordered_map>
#include <vector>

class DiskStore;

/// The done entries of one file with all their ancestors. Nodes lie in one list, every parent
/// before its children, so that no depth of a hierarchy costs any depth of calls.
class ReportTree
{
public:
    /// Sorts before every real date.
    static constexpr qint64 noDate = std::numeric_limits<qint64>::min();

    struct Node {
        QString text;
        QDateTime doneDate; ///< Null for an entry that is only an ancestor.
        qint64 latestDone = noDate; ///< Of the node and everything below, in milliseconds.
        std::size_t parent = 0;
        std::vector<std::size_t> children;
        bool hasHiddenChildren = true;
    };

    /// Reads the entries of \a store that were done between \a from and \a to, both included.
    /// \throws const char* "bad" when one of them can't be read.
    ReportTree(DiskStore *store, const QDateTime &from, const QDateTime &to);

    /// Node 0 stands for the parent of the file's root.
    const std::vector<Node> &nodes() const { return m_nodes; }
    qint64 latestDone() const { return m_nodes.front().latestDone; }

private:
    struct LoadedEntry {
        qint64 id = -1;
        Node node;
    };

    void add(DiskStore *store, qint64 id);
    std::size_t append(Node node, std::size_t parent);
    void findLatestDates();
    void sortChildren();

    std::vector<Node> m_nodes;
    std::unordered_map<qint64, std::size_t> m_indexById;
};
