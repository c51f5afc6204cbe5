// SPDX-License-Identifier: MIT
#include "PlainOutline.h"

#include "fakes/Outline.h"
#include "shared/TextHelpers.h"

#include <algorithm>

using namespace Qt::StringLiterals;

bool PlainOutline::isAllowed(EntryState parent, EntryState child)
{
    if (parent == EntryState::Done)
        return child == EntryState::Done || child == EntryState::WontDo;
    if (parent == EntryState::Todo || parent == EntryState::WontDo)
        return child != EntryState::Category;
    return true;
}

PlainOutline::Node *PlainOutline::find(Node &root, qint64 id)
{
    if (root.id == id)
        return &root;
    for (Node &child : root.children) {
        if (Node *found = find(child, id))
            return found;
    }
    return nullptr;
}

PlainOutline::Node *PlainOutline::parentOf(Node &root, qint64 id)
{
    for (Node &child : root.children) {
        if (child.id == id)
            return &root;
        if (Node *found = parentOf(child, id))
            return found;
    }
    return nullptr;
}

int PlainOutline::indexOf(const Node &parent, qint64 id)
{
    const auto found = std::find_if(parent.children.begin(), parent.children.end(),
                                    [id](const Node &child) { return child.id == id; });
    return static_cast<int>(found - parent.children.begin());
}

qint64 PlainOutline::highestId(const Node &root)
{
    qint64 highest = root.id;
    for (const Node &child : root.children)
        highest = std::max(highest, highestId(child));
    return highest;
}

PlainOutline::Node *PlainOutline::current() const
{
    return m_kind == Kind::Stored ? find(const_cast<PlainOutline *>(this)->root(), m_id) : nullptr;
}

PlainOutline::Node *PlainOutline::parent() const
{
    Node &top = const_cast<PlainOutline *>(this)->root();
    return m_kind == Kind::New ? find(top, m_parentId) : parentOf(top, m_id);
}

bool PlainOutline::atTopLevel() const
{
    return m_kind == Kind::Panel || (m_kind == Kind::Stored && parent() == nullptr);
}

int PlainOutline::place() const
{
    return m_kind == Kind::New ? m_place : indexOf(*parent(), m_id);
}

EntryState PlainOutline::state() const
{
    return m_kind == Kind::New   ? m_state
        : m_kind == Kind::Stored ? current()->state
                                 : EntryState::None;
}

const PlainOutline::Node *PlainOutline::preceding() const
{
    if (atTopLevel())
        return m_file > 0 ? &file(m_file - 1).root : nullptr;
    return place() > 0 ? &parent()->children[static_cast<size_t>(place() - 1)] : nullptr;
}

const PlainOutline::Node *PlainOutline::following() const
{
    const int next = (atTopLevel() ? m_file : place()) + (m_kind == Kind::Stored ? 1 : 0);
    if (atTopLevel())
        return next < fileCount() ? &file(next).root : nullptr;
    const std::vector<Node> &siblings = parent()->children;
    return next < static_cast<int>(siblings.size()) ? &siblings[static_cast<size_t>(next)]
                                                    : nullptr;
}

QString PlainOutline::text() const
{
    const Node *node = current();
    return node ? node->text : QString();
}

void PlainOutline::addFile(const QString &name, int index)
{
    const Node root{1, name, EntryState::Category, {}};
    reopen({name, root, root}, index);
}

void PlainOutline::reopen(const File &file, int index)
{
    m_files.insert(m_files.begin() + index, file);
    if (m_kind == Kind::Panel)
        goToRoot(index);
    else if (m_file >= index)
        ++m_file;
}

PlainOutline::File PlainOutline::close(int index)
{
    File closed = file(index);
    closed.root = closed.saved;
    m_files.erase(m_files.begin() + index);
    if (m_kind != Kind::Panel && m_file == index) {
        if (fileCount() == 0)
            goToPanel(0);
        else
            goToRoot(std::min(index, fileCount() - 1));
    } else if (index < m_file) {
        --m_file;
    }
    return closed;
}

void PlainOutline::save()
{
    for (File &file : m_files)
        file.saved = file.root;
}

void PlainOutline::discard()
{
    const Node *above = atTopLevel() ? nullptr : parent();
    const qint64 parentId = above ? above->id : -1;
    for (File &file : m_files)
        file.root = file.saved;
    if (m_kind == Kind::Panel || (m_kind == Kind::Stored && find(root(), m_id)))
        return;
    goTo(find(root(), parentId) ? find(root(), parentId) : &root());
}

bool PlainOutline::write(const QString &typed)
{
    const QString text = typed.trimmed();
    if (m_kind == Kind::Stored && text.isEmpty()) {
        Node *node = current();
        Node *above = parent();
        if (!above || !node->children.empty())
            return false;
        const EntryState state = node->state;
        const int at = place();
        above->children.erase(above->children.begin() + at);
        goToNew(above->id, at);
        m_state = state;
    } else if (m_kind == Kind::Stored) {
        current()->text = text;
    } else if (m_kind == Kind::New && !text.isEmpty()) {
        const qint64 id = highestId(root()) + 1;
        std::vector<Node> &siblings = parent()->children;
        siblings.insert(siblings.begin() + m_place, Node{id, text, m_state, {}});
        m_kind = Kind::Stored;
        m_id = id;
    }
    return true;
}

bool PlainOutline::command(Command command, const QString &typed)
{
    return command == Command::Hide || (write(typed) && carryOut(command));
}

bool PlainOutline::carryOut(Command command)
{
    switch (command) {
    case Command::GoToParent:
        return !atTopLevel() && goTo(parent());
    case Command::GoToFirst:
        return goToEnd(false);
    case Command::GoToLast:
        return goToEnd(true);
    case Command::GoToPrevious:
        return atTopLevel() ? goAlongTopLevel(-1) : goAlong(-1);
    case Command::GoToNext:
        return atTopLevel() ? goAlongTopLevel(1) : goAlong(1);
    case Command::GoToChild:
        return goToChild();
    case Command::MoveCurrentLeft:
        return !atTopLevel() && moveLeft();
    case Command::MoveCurrentRight:
        return !atTopLevel() && moveRight();
    case Command::NewSibling:
        if (atTopLevel())
            return m_kind == Kind::Stored && goToPanel(m_file + 1);
        return m_kind == Kind::Stored && goToNew(parent()->id, place() + 1);
    case Command::SaveChangesAndHide:
        save();
        return true;
    case Command::MarkCurrentDone:
        return mark(EntryState::Done);
    case Command::MarkCurrentTodo:
        return mark(EntryState::Todo);
    case Command::MarkCurrentWontDo:
        return mark(EntryState::WontDo);
    case Command::MarkCurrentCategory:
        return mark(EntryState::Category);
    case Command::AddEntryToTodoListAndShow:
        return m_kind == Kind::Stored && state() == EntryState::Todo;
    case Command::CommitEdit:
        return true;
    default:
        return moveAlong(command);
    }
}

bool PlainOutline::goTo(const Node *node)
{
    m_kind = Kind::Stored;
    m_id = node->id;
    return true;
}

bool PlainOutline::goToRoot(int file)
{
    m_file = file;
    return goTo(&root());
}

bool PlainOutline::goToPanel(int slot)
{
    m_kind = Kind::Panel;
    m_file = slot;
    return true;
}

bool PlainOutline::goToNew(qint64 parentId, int place)
{
    m_kind = Kind::New;
    m_parentId = parentId;
    m_place = place;
    m_state = parent()->state == EntryState::Done ? EntryState::Done : EntryState::Todo;
    return true;
}

bool PlainOutline::goAlong(int direction)
{
    if (const Node *next = direction < 0 ? preceding() : following())
        return goTo(next);
    return m_kind == Kind::Stored && goToNew(parent()->id, place() + (direction < 0 ? 0 : 1));
}

bool PlainOutline::goAlongTopLevel(int direction)
{
    if (m_kind == Kind::Panel) {
        const int next = direction < 0 ? m_file - 1 : m_file;
        return next >= 0 && next < fileCount() && goToRoot(next);
    }
    const int next = m_file + direction;
    if (next < 0 || next == fileCount())
        return goToPanel(std::max(next, 0));
    return goToRoot(next);
}

bool PlainOutline::goToEnd(bool last)
{
    if (atTopLevel())
        return fileCount() == 0 || goToRoot(last ? fileCount() - 1 : 0);
    const std::vector<Node> &siblings = parent()->children;
    return siblings.empty() || goTo(last ? &siblings.back() : &siblings.front());
}

const PlainOutline::Node *PlainOutline::childToJumpTo(const Node &node) const
{
    const auto open = std::find_if(node.children.begin(), node.children.end(), [](const Node &n) {
        return n.state == EntryState::Todo || n.state == EntryState::Category;
    });
    if (open != node.children.end())
        return &*open;
    return node.children.empty() ? nullptr : &node.children.back();
}

bool PlainOutline::goToChild()
{
    if (m_kind != Kind::Stored)
        return false;
    const Node *child = childToJumpTo(*current());
    return child ? goTo(child) : goToNew(m_id, 0);
}

bool PlainOutline::jump(int file, qint64 id, bool toChild, const QString &typed)
{
    if (!write(typed))
        return false;
    if (file < 0 || file >= fileCount())
        return false;
    Node *target = find(m_files[static_cast<size_t>(file)].root, id);
    if (!target)
        return false;
    m_file = file;
    const Node *child = toChild ? childToJumpTo(*target) : nullptr;
    return goTo(child ? child : target);
}

bool PlainOutline::moveTo(qint64 parentId, int place)
{
    if (m_kind == Kind::New) {
        m_parentId = parentId;
        m_place = place;
        return true;
    }
    Node *from = parent();
    const int at = this->place();
    Node moved = from->children[static_cast<size_t>(at)];
    from->children.erase(from->children.begin() + at);
    std::vector<Node> &siblings = find(root(), parentId)->children;
    siblings.insert(siblings.begin() + place, std::move(moved));
    return true;
}

bool PlainOutline::moveFile(int to)
{
    if (m_kind == Kind::Stored) {
        to = std::min(to, fileCount() - 1);
        File moved = file(m_file);
        m_files.erase(m_files.begin() + m_file);
        m_files.insert(m_files.begin() + to, std::move(moved));
    }
    m_file = to;
    return true;
}

bool PlainOutline::moveAlong(Command command)
{
    const bool back = command == Command::MoveCurrentUp || command == Command::MoveCurrentToTop;
    if (back ? !preceding() : !following())
        return false;
    const bool far
        = command == Command::MoveCurrentToTop || command == Command::MoveCurrentToBottom;
    if (atTopLevel())
        return moveFile(far ? (back ? 0 : fileCount()) : m_file + (back ? -1 : 1));
    const int end = static_cast<int>(parent()->children.size()) - (m_kind == Kind::Stored ? 1 : 0);
    return moveTo(parent()->id, far ? (back ? 0 : end) : place() + (back ? -1 : 1));
}

bool PlainOutline::moveLeft()
{
    const Node *above = parent();
    const Node *twoAbove = parentOf(root(), above->id);
    if (!twoAbove || !isAllowed(twoAbove->state, state()))
        return false;
    return moveTo(twoAbove->id, indexOf(*twoAbove, above->id) + 1);
}

bool PlainOutline::moveRight()
{
    const Node *before = preceding();
    if (!before || !isAllowed(before->state, state()))
        return false;
    return moveTo(before->id, static_cast<int>(before->children.size()));
}

bool PlainOutline::mark(EntryState wanted)
{
    if (m_kind == Kind::Panel)
        return false;
    const EntryState old = state();
    const Node *above = parent();
    if (wanted == old || (above && !isAllowed(above->state, wanted)))
        return false;
    if (m_kind == Kind::New) {
        m_state = wanted;
        return true;
    }
    Node *node = current();
    for (const Node &child : node->children) {
        if (!isAllowed(wanted, child.state))
            return false;
    }
    node->state = wanted;
    if (wanted != EntryState::Done || old != EntryState::Todo || !above)
        return true;
    const auto isTodo = [](const Node &n) { return n.state == EntryState::Todo; };
    const std::vector<Node> &siblings = above->children;
    const auto next = std::find_if(siblings.begin() + place() + 1, siblings.end(), isTodo);
    if (next != siblings.end())
        return goTo(&*next);
    const bool noneLeft = std::none_of(siblings.begin(), siblings.end(), isTodo);
    return noneLeft && isTodo(*above) ? goTo(above) : true;
}

QString PlainOutline::where(const QString &shownText) const
{
    const auto shown = [](const Node *node) {
        if (!node)
            return u"-"_s;
        return Global::truncateWithEllipsis(node->text, 70);
    };
    const auto mark
        = [](const Node *node) { return QString(node ? Outline::markOf(node->state) : u'?'); };
    const Node *above = m_kind == Kind::Panel ? nullptr : parent();
    const QString level = m_kind == Kind::Panel ? u"panel"_s : above ? shown(above) : u"top"_s;
    const Node *node = current();
    return u"%1: %2 <%3> %4"_s.arg(level, shown(preceding()), shownText, shown(following()))
        + u" states "_s + mark(above) + mark(preceding()) + Outline::markOf(state())
        + mark(following()) + (node && !node->children.empty() ? u" with children"_s : QString());
}

void PlainOutline::dumpChildren(const Node &parent, int depth, QString *result)
{
    for (const Node &child : parent.children) {
        *result
            += QString(depth * 2, u' ') + Outline::markOf(child.state) + u' ' + child.text + u'\n';
        dumpChildren(child, depth + 1, result);
    }
}

QString PlainOutline::dump(int index) const
{
    QString result;
    dumpChildren(file(index).root, 0, &result);
    return result;
}

int PlainOutline::size() const
{
    int entries = 0;
    for (const File &file : m_files)
        entries += static_cast<int>(highestId(file.root));
    return entries;
}
