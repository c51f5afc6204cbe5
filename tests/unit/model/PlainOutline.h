// SPDX-License-Identifier: MIT
#pragma once

#include "model/Command.h"
#include "shared/EntryState.h"

#include <QString>
#include <QStringList>
#include <vector>

/// The hierarchy told once more in the plainest way, trees of values without numbers or a database,
/// to compare the model with.
class PlainOutline
{
public:
    struct Node {
        qint64 id = -1;
        QString text;
        EntryState state = EntryState::Todo;
        std::vector<Node> children;
    };

    struct File {
        QString name;
        Node root;
        Node saved; ///< The root as it was saved last.
    };

    static bool isAllowed(EntryState parent, EntryState child);

    /// Adds a saved file that holds nothing but its root, at \a index.
    void addFile(const QString &name, int index);

    /// Each does what the model is to do with \a typed in the editor; false where it is to refuse.
    bool command(Command command, const QString &typed);
    bool jump(int file, qint64 id, bool toChild, const QString &typed);
    void discard();
    void save();
    /// Opens at \a index what was closed before.
    void reopen(const File &file, int index);
    File close(int index);

    int fileCount() const { return static_cast<int>(m_files.size()); }
    const File &file(int index) const { return m_files[static_cast<size_t>(index)]; }
    int currentFile() const { return m_kind == Kind::Panel ? -1 : m_file; }
    bool atNewEntry() const { return m_kind == Kind::New; }
    /// The stored text of the current entry.
    QString text() const;
    /// Everything around the position, in HierarchyDesk::where()'s form, with the states and
    /// \a shownText in the place of the current text.
    QString where(const QString &shownText) const;
    QString dump(int index) const;
    int size() const;

private:
    enum class Kind { Panel, Stored, New };

    static Node *find(Node &root, qint64 id);
    static Node *parentOf(Node &root, qint64 id);
    static int indexOf(const Node &parent, qint64 id);
    static qint64 highestId(const Node &root);
    static void dumpChildren(const Node &parent, int depth, QString *result);

    Node &root() { return m_files[static_cast<size_t>(m_file)].root; }
    Node *current() const;
    Node *parent() const;
    bool atTopLevel() const;
    int place() const;
    EntryState state() const;
    const Node *preceding() const;
    const Node *following() const;

    bool write(const QString &typed);
    bool carryOut(Command command);
    bool goTo(const Node *node);
    bool goToRoot(int file);
    bool goToPanel(int slot);
    bool goToNew(qint64 parentId, int place);
    bool goAlong(int direction);
    bool goAlongTopLevel(int direction);
    bool goToEnd(bool last);
    bool goToChild();
    const Node *childToJumpTo(const Node &node) const;
    bool moveTo(qint64 parentId, int place);
    bool moveAlong(Command command);
    bool moveFile(int to);
    bool moveLeft();
    bool moveRight();
    bool mark(EntryState state);

    std::vector<File> m_files;
    Kind m_kind = Kind::Panel;
    int m_file = 0; ///< At the panel, its slot.
    qint64 m_id = -1;
    qint64 m_parentId = -1; ///< Of a new entry, as the next two.
    int m_place = 0;
    EntryState m_state = EntryState::Todo;
};
