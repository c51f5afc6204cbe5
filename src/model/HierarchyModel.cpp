// SPDX-License-Identifier: MIT
#include "model/HierarchyModel.h"

#include "model/ModelLogging.h"
#include "shared/Refusal.h"
#include "shared/TextGuard.h"
#include "shared/TextHelpers.h"
#include "store/FileErrorGuard.h"
#include "store/FileManager.h"

#include <algorithm>

Q_LOGGING_CATEGORY(lcModel, "brindle.model")

namespace
{
constexpr int excerptLength = 70;
} // namespace

HierarchyModel::HierarchyModel(FileManager *fileManager)
    : m_fileManager(fileManager)
{
    goToFileRoot(0, fileManager->getFileCount() == 0);
    connect(fileManager, &FileManager::fileRootBodyChanged, this,
            &HierarchyModel::updateRootExcerpt);
    connect(fileManager, &FileManager::fileLoaded, this, &HierarchyModel::fileLoaded);
    connect(fileManager, &FileManager::fileUnloaded, this, &HierarchyModel::fileUnloaded);
}

QString HierarchyModel::getParentBody() const
{
    return Global::oneLineExcerpt(m_parentBody, excerptLength);
}

QString HierarchyModel::getPrecedingSiblingEntryBody() const
{
    return Global::oneLineExcerpt(m_precedingSiblingBody, excerptLength);
}

QString HierarchyModel::getFollowingSiblingEntryBody() const
{
    return Global::oneLineExcerpt(m_followingSiblingBody, excerptLength);
}

QString HierarchyModel::getFilePath() const
{
    return m_diskStore ? m_diskStore->dbFilePath() : QString();
}

QString HierarchyModel::getFileName() const
{
    return m_diskStore ? m_diskStore->dbFileName() : QString();
}

bool HierarchyModel::atRootOfFile() const
{
    return atTopLevel() && m_diskStore;
}

bool HierarchyModel::isLastFile() const
{
    return m_currentFileIndex == m_fileManager->getFileCount() - 1;
}

void HierarchyModel::updateCurrentBody(const QString &text)
{
    m_modifiedBody = text.trimmed();
}

bool HierarchyModel::getAndWriteModifiedBodyToDb()
{
    if (!m_diskStore)
        return true;
    emit requestBodyUpdate();
    if (m_modifiedBody == m_body)
        return true;
    if (m_currentEntryId != -1) {
        if (!writeStoredEntry())
            return false;
    } else if (!m_modifiedBody.isEmpty()) {
        m_currentEntryId
            = m_diskStore->insertEntry(m_parentId, m_modifiedBody, m_sequence, m_state, m_doneDate);
    }
    m_body = m_modifiedBody;
    return true;
}

bool HierarchyModel::writeEditedText()
{
    const EntryAddress before = getCurrentAddress();
    const bool written = getAndWriteModifiedBodyToDb();
    showIfNoLongerAt(before);
    return written;
}

void HierarchyModel::showIfNoLongerAt(EntryAddress before)
{
    if (getCurrentAddress() == before)
        return;
    m_modifiedBody = m_body;
    // A neighbour that can't be shown is no reason to stop what the text was written for.
    guardAgainstTexts(lcModel(), "showIfNoLongerAt", [this] { updateSiblingFields(); });
    emit changed();
}

bool HierarchyModel::writeStoredEntry()
{
    if (!m_modifiedBody.isEmpty()) {
        m_diskStore->updateEntryBody(m_currentEntryId, m_modifiedBody, atTopLevel());
        emit entryBodyChanged(m_currentFileIndex, m_currentEntryId);
        return true;
    }
    if (atTopLevel() || !m_diskStore->deleteEntry(m_currentEntryId))
        return false;
    const qint64 deletedId = m_currentEntryId;
    m_currentEntryId = -1;
    m_shortcutKeyText.clear();
    emit entryDeleted(m_currentFileIndex, deletedId);
    return true;
}

void HierarchyModel::setUpEverythingUsingCurrentEntryId()
{
    goTo(m_currentFileIndex, m_diskStore, m_currentEntryId);
}

// Everything is read before anything changes: an editor that still shows one entry while the model
// stands at another would write the one's text into the other.
void HierarchyModel::goTo(int fileIndex, DiskStore *store, qint64 entryId)
{
    if (entryId == -1 && store)
        throw "this method is not intended for when the current entry is new (where currentEntryId "
              "is -1 and diskStore is non-null)";
    if (store) {
        const StoredEntry entry = readEntry(store, entryId);
        const Parent parent = readParent(store, entry.parentId);
        m_rootExcerpt = store->getRootExcerpt();
        m_parentId = entry.parentId;
        takeParent(parent);
        takeEntry(entryId, entry);
    } else {
        clearToPanelPosition();
    }
    m_currentFileIndex = fileIndex;
    m_diskStore = store;
    m_modifiedBody = m_body;
    updateSiblingFields();
}

HierarchyModel::StoredEntry HierarchyModel::readEntry(DiskStore *store, qint64 id) const
{
    StoredEntry entry;
    if (!store->getEntryInfo(id, &entry.body, &entry.sequence, &entry.state, &entry.parentId,
                             &entry.hasChildren, &entry.doneDate, &entry.shortcutKeyText))
        throw "bad";
    return entry;
}

HierarchyModel::Parent HierarchyModel::readParent(DiskStore *store, qint64 parentId) const
{
    Parent parent;
    if (parentId != -1
        && !store->getEntryInfo(parentId, &parent.body, nullptr, &parent.state, nullptr, nullptr,
                                nullptr, &parent.shortcutKeyText))
        throw "bad";
    return parent;
}

void HierarchyModel::takeEntry(qint64 id, const StoredEntry &entry)
{
    m_currentEntryId = id;
    m_body = entry.body;
    m_sequence = entry.sequence;
    m_state = entry.state;
    m_hasChildren = entry.hasChildren;
    m_doneDate = entry.doneDate;
    m_shortcutKeyText = entry.shortcutKeyText;
}

void HierarchyModel::takeParent(const Parent &parent)
{
    m_parentBody = parent.body;
    m_parentState = parent.state;
    m_parentShortcutKeyText = parent.shortcutKeyText;
}

void HierarchyModel::clearToPanelPosition()
{
    m_parentId = -1;
    m_rootExcerpt.clear();
    takeParent(Parent());
    takeEntry(-1, StoredEntry());
}

void HierarchyModel::updateSiblingFields()
{
    if (atTopLevel())
        readSiblingFieldsAtTopLevel();
    else
        readSiblingFieldsBelowTopLevel();
}

void HierarchyModel::readSiblingFieldsBelowTopLevel()
{
    const Neighbour preceding = readNeighbour(
        m_diskStore, m_parentId, m_diskStore->getMaxEntrySequence(m_parentId, m_sequence - 1));
    const Neighbour following
        = readNeighbour(m_diskStore, m_parentId, getFollowingSiblingEntrySequence());
    takeNeighbours(preceding, following);
}

void HierarchyModel::readSiblingFieldsAtTopLevel()
{
    // The panel sits before the file whose index it carries.
    const int followingIndex = m_diskStore ? m_currentFileIndex + 1 : m_currentFileIndex;
    const Neighbour preceding
        = m_currentFileIndex > 0 ? readRoot(m_currentFileIndex - 1) : Neighbour();
    const Neighbour following
        = followingIndex < m_fileManager->getFileCount() ? readRoot(followingIndex) : Neighbour();
    takeNeighbours(preceding, following);
}

void HierarchyModel::takeNeighbours(const Neighbour &preceding, const Neighbour &following)
{
    m_precedingSiblingBody = preceding.body;
    m_precedingSiblingState = preceding.state;
    m_followingSiblingBody = following.body;
    m_followingSiblingState = following.state;
}

HierarchyModel::Neighbour HierarchyModel::readNeighbour(DiskStore *store, qint64 parentId,
                                                        int sequence) const
{
    Neighbour neighbour;
    if (sequence == -1)
        return neighbour;
    const qint64 id = store->getEntryId(parentId, sequence);
    if (!store->getEntryInfo(id, &neighbour.body, nullptr, &neighbour.state, nullptr, nullptr,
                             nullptr, nullptr))
        throw "entry not found";
    return neighbour;
}

HierarchyModel::Neighbour HierarchyModel::readRoot(int fileIndex) const
{
    return readNeighbour(m_fileManager->getFile(fileIndex), -1, 0);
}

int HierarchyModel::getFollowingSiblingEntrySequence()
{
    if (atTopLevel())
        throw "this method can only be used for non-root entries";
    // A new entry has no row yet: what now holds its place comes after it.
    if (m_currentEntryId == -1)
        return m_diskStore->getMinEntrySequence(m_parentId, m_sequence);
    if (m_sequence == DiskStore::highestSequence)
        return -1;
    return m_diskStore->getMinEntrySequence(m_parentId, m_sequence + 1);
}

void HierarchyModel::goToSiblingBySequence(int sequence)
{
    const qint64 id = m_diskStore->getEntryId(m_parentId, sequence);
    takeEntry(id, readEntry(m_diskStore, id));
}

void HierarchyModel::goToParent()
{
    if (atTopLevel())
        throw "this method should only be used when there is a parent";
    const StoredEntry entry = readEntry(m_diskStore, m_parentId);
    const Parent parent = readParent(m_diskStore, entry.parentId);
    takeEntry(m_parentId, entry);
    m_parentId = entry.parentId;
    takeParent(parent);
}

int HierarchyModel::getChildSequenceToJumpTo(qint64 entryId)
{
    return childToJumpTo(m_diskStore, entryId);
}

int HierarchyModel::childToJumpTo(DiskStore *store, qint64 entryId) const
{
    if (entryId == -1)
        throw "entryId cannot be -1";
    const auto firstWithState = [&](EntryState state) {
        const int found
            = store->getMinEntrySequenceWithState(entryId, state, DiskStore::lowestSequence);
        return found == -1 ? DiskStore::highestSequence : found;
    };
    const int firstOpen
        = std::min(firstWithState(EntryState::Todo), firstWithState(EntryState::Category));
    return firstOpen != DiskStore::highestSequence
        ? firstOpen
        : store->getMaxEntrySequence(entryId, DiskStore::highestSequence);
}

void HierarchyModel::refuse()
{
    Refusal::refuse();
    emit refused();
}

void HierarchyModel::goToEntry(EntryAddress address, bool jumpToChild)
{
    if (address.entryId == -1)
        throw "-1 not allowed";
    if (!writeEditedText()) {
        refuse();
        return;
    }
    // Writing the text may just have deleted the target, and an address kept elsewhere may be old;
    // nothing changes before the target is known to exist.
    DiskStore *store = m_fileManager->getFile(address.fileIndex);
    if (!store || !store->contains(address.entryId)) {
        refuse();
        return;
    }
    redrawWhenItFails([&] {
        const int sequence = jumpToChild ? childToJumpTo(store, address.entryId) : -1;
        goTo(address.fileIndex, store,
             sequence == -1 ? address.entryId : store->getEntryId(address.entryId, sequence));
    });
    emit changed();
}

void HierarchyModel::goToFileRoot(int index, bool openCreatePanel)
{
    DiskStore *store = openCreatePanel ? nullptr : m_fileManager->getFile(index);
    goTo(index, store, store ? store->getEntryId(-1, 0) : -1);
}

int HierarchyModel::fileIndexOf(const DiskStore *store) const
{
    for (int index = 0; index < m_fileManager->getFileCount(); ++index) {
        if (m_fileManager->getFile(index) == store)
            return index;
    }
    return -1;
}

// When an action fails the position may have moved all the same: the editor must not go on showing
// the text of another entry, or it would be written there.
void HierarchyModel::redrawWhenItFails(const std::function<void()> &action)
{
    const EntryAddress before = getCurrentAddress();
    try {
        action();
    } catch (...) {
        if (getCurrentAddress() != before) {
            m_modifiedBody = m_body;
            emit changed();
        }
        throw;
    }
}

// What the file set announces must be followed to the end, whatever fails on the way: the failing
// file's error is queued already.
void HierarchyModel::followFileSet(const char *where, const std::function<void()> &action)
{
    guardAgainstFileErrors(lcModel(), where, [&] { guardAgainstTexts(lcModel(), where, action); });
    emit changed();
}

void HierarchyModel::updateRootExcerpt()
{
    followFileSet("updateRootExcerpt", [this] {
        m_rootExcerpt = m_diskStore ? m_diskStore->getRootExcerpt() : QString();
    });
}

void HierarchyModel::fileLoaded(int index)
{
    followFileSet("fileLoaded", [this, index] {
        if (!m_diskStore) {
            goToFileRoot(index, false);
            return;
        }
        m_currentFileIndex = fileIndexOf(m_diskStore);
        // What the user is typing must survive the redraw.
        emit requestBodyUpdate();
        updateSiblingFields();
    });
}

void HierarchyModel::fileUnloaded(int index)
{
    followFileSet("fileUnloaded", [this, index] {
        const int position = fileIndexOf(m_diskStore);
        if (m_diskStore && position == -1) {
            goToNeighbourOfClosedFile(index);
            return;
        }
        if (m_diskStore) {
            m_currentFileIndex = position;
            emit requestBodyUpdate();
        } else if (index < m_currentFileIndex) {
            --m_currentFileIndex;
        }
        if (atTopLevel())
            updateSiblingFields();
    });
}

void HierarchyModel::goToNeighbourOfClosedFile(int index)
{
    // Should the neighbour fail as well, there is nothing left to show of the closed one.
    m_diskStore = nullptr;
    clearToPanelPosition();
    m_modifiedBody = m_body;
    m_currentFileIndex = std::min(index, m_fileManager->getFileCount());
    takeNeighbours(Neighbour(), Neighbour());
    for (int next = std::min(index, m_fileManager->getFileCount() - 1); next >= 0; --next) {
        const auto goToNext = [this, next] { goToFileRoot(next, false); };
        guardAgainstFileErrors(lcModel(), "goToNeighbourOfClosedFile", [&] {
            guardAgainstTexts(lcModel(), "goToNeighbourOfClosedFile", goToNext);
        });
        if (m_diskStore)
            return;
    }
}

void HierarchyModel::tryToResetStateAfterDbRollback()
{
    followFileSet("tryToResetStateAfterDbRollback", [this] {
        m_modifiedBody = m_body;
        qint64 id = m_currentEntryId;
        if (m_diskStore && !m_diskStore->contains(id))
            id = m_diskStore->contains(m_parentId) ? m_parentId : m_diskStore->getEntryId(-1, 0);
        goTo(m_currentFileIndex, m_diskStore, id);
    });
}
