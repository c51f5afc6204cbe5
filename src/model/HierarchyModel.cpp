// SPDX-License-Identifier: MIT
#include "model/HierarchyModel.h"

#include "model/ModelLogging.h"
#include "shared/Refusal.h"
#include "shared/TextGuard.h"
#include "shared/TextHelpers.h"
#include "store/FileManager.h"

#include <limits>

Q_LOGGING_CATEGORY(lcModel, "brindle.model")

namespace
{
constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();
constexpr int excerptLength = 70;
} // namespace

/// A sibling as the window shows it; an empty text means that there is none.
struct HierarchyModel::Neighbour {
    QString body;
    EntryState state = EntryState::None;
};

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
    return Global::truncateWithEllipsis(m_parentBody, excerptLength);
}

QString HierarchyModel::getPrecedingSiblingEntryBody() const
{
    return Global::truncateWithEllipsis(m_precedingSiblingBody, excerptLength);
}

QString HierarchyModel::getFollowingSiblingEntryBody() const
{
    return Global::truncateWithEllipsis(m_followingSiblingBody, excerptLength);
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
    if (m_currentEntryId != -1) {
        if (!m_diskStore->getEntryInfo(m_currentEntryId, &m_body, &m_sequence, &m_state,
                                       &m_parentId, &m_hasChildren, &m_doneDate,
                                       &m_shortcutKeyText))
            throw "bad";
        readParentFields();
        m_rootExcerpt = m_diskStore->getRootExcerpt();
    } else if (m_diskStore) {
        throw "this method is not intended for when the current entry is new (where currentEntryId "
              "is -1 and diskStore is non-null)";
    } else {
        clearToPanelPosition();
    }
    m_modifiedBody = m_body;
    updateSiblingFields();
}

void HierarchyModel::clearToPanelPosition()
{
    m_parentId = -1;
    m_sequence = -1;
    m_state = EntryState::None;
    m_doneDate = QDateTime();
    m_body.clear();
    clearParentFields();
    m_shortcutKeyText.clear();
    m_rootExcerpt.clear();
    m_hasChildren = false;
}

void HierarchyModel::clearParentFields()
{
    m_parentBody.clear();
    m_parentState = EntryState::None;
    m_parentShortcutKeyText.clear();
}

void HierarchyModel::readParentFields()
{
    if (atTopLevel()) {
        clearParentFields();
    } else if (!m_diskStore->getEntryInfo(m_parentId, &m_parentBody, nullptr, &m_parentState,
                                          nullptr, nullptr, nullptr, &m_parentShortcutKeyText)) {
        throw "bad";
    }
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
    m_precedingSiblingBody = preceding.body;
    m_precedingSiblingState = preceding.state;
    m_followingSiblingBody = following.body;
    m_followingSiblingState = following.state;
}

void HierarchyModel::readSiblingFieldsAtTopLevel()
{
    // The panel sits before the file whose index it carries.
    const int followingIndex = m_diskStore ? m_currentFileIndex + 1 : m_currentFileIndex;
    const Neighbour preceding
        = m_currentFileIndex > 0 ? readRoot(m_currentFileIndex - 1) : Neighbour();
    const Neighbour following
        = followingIndex < m_fileManager->getFileCount() ? readRoot(followingIndex) : Neighbour();
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
    if (m_sequence == highest)
        return -1;
    return m_diskStore->getMinEntrySequence(m_parentId, m_sequence + 1);
}

void HierarchyModel::goToSiblingBySequence(int sequence)
{
    const qint64 id = m_diskStore->getEntryId(m_parentId, sequence);
    m_sequence = sequence;
    m_currentEntryId = id;
    if (!m_diskStore->getEntryInfo(id, &m_body, nullptr, &m_state, nullptr, &m_hasChildren,
                                   &m_doneDate, &m_shortcutKeyText))
        throw "bad";
}

void HierarchyModel::goToParent()
{
    if (atTopLevel())
        throw "this method should only be used when there is a parent";
    m_currentEntryId = m_parentId;
    if (!m_diskStore->getEntryInfo(m_currentEntryId, &m_body, &m_sequence, &m_state, &m_parentId,
                                   &m_hasChildren, &m_doneDate, &m_shortcutKeyText))
        throw "bad";
    readParentFields();
}

int HierarchyModel::getChildSequenceToJumpTo(qint64 entryId)
{
    if (entryId == -1)
        throw "entryId cannot be -1";
    const auto firstWithState = [&](EntryState state) {
        const int found = m_diskStore->getMinEntrySequenceWithState(entryId, state, lowest);
        return found == -1 ? highest : found;
    };
    const int firstOpen
        = std::min(firstWithState(EntryState::Todo), firstWithState(EntryState::Category));
    return firstOpen != highest ? firstOpen : m_diskStore->getMaxEntrySequence(entryId, highest);
}

void HierarchyModel::goToEntry(EntryAddress address, bool jumpToChild)
{
    if (address.entryId == -1)
        throw "-1 not allowed";
    if (!getAndWriteModifiedBodyToDb()) {
        Refusal::refuse();
        return;
    }
    // Writing the text may just have deleted the target, and an address kept elsewhere may be old;
    // nothing changes before the target is known to exist.
    DiskStore *store = m_fileManager->getFile(address.fileIndex);
    if (!store
        || !store->getEntryInfo(address.entryId, nullptr, nullptr, nullptr, nullptr, nullptr,
                                nullptr, nullptr)) {
        Refusal::refuse();
        return;
    }
    m_currentFileIndex = address.fileIndex;
    m_diskStore = store;
    m_currentEntryId = address.entryId;
    if (jumpToChild) {
        const int sequence = getChildSequenceToJumpTo(address.entryId);
        if (sequence != -1)
            m_currentEntryId = m_diskStore->getEntryId(address.entryId, sequence);
    }
    setUpEverythingUsingCurrentEntryId();
    emit changed();
}

void HierarchyModel::goToFileRoot(int index, bool openCreatePanel)
{
    m_currentFileIndex = index;
    m_diskStore = openCreatePanel ? nullptr : m_fileManager->getFile(index);
    m_currentEntryId = m_diskStore ? m_diskStore->getEntryId(-1, 0) : -1;
    setUpEverythingUsingCurrentEntryId();
}

void HierarchyModel::updateRootExcerpt()
{
    guardAgainstTexts(lcModel(), "updateRootExcerpt", [this] {
        m_rootExcerpt = m_diskStore ? m_diskStore->getRootExcerpt() : QString();
        emit changed();
    });
}

void HierarchyModel::fileLoaded(int index)
{
    guardAgainstTexts(lcModel(), "fileLoaded", [this, index] {
        if (!m_diskStore) {
            goToFileRoot(index, false);
        } else {
            if (m_currentFileIndex >= index)
                ++m_currentFileIndex;
            // What the user is typing must survive the redraw.
            emit requestBodyUpdate();
            updateSiblingFields();
        }
        emit changed();
    });
}

void HierarchyModel::fileUnloaded(int index)
{
    guardAgainstTexts(lcModel(), "fileUnloaded", [this, index] {
        if (m_diskStore && index == m_currentFileIndex) {
            const int next = std::min(index, m_fileManager->getFileCount() - 1);
            goToFileRoot(std::max(next, 0), next < 0);
        } else {
            if (index < m_currentFileIndex)
                --m_currentFileIndex;
            if (m_diskStore)
                emit requestBodyUpdate();
            if (atTopLevel())
                updateSiblingFields();
        }
        emit changed();
    });
}

void HierarchyModel::tryToResetStateAfterDbRollback()
{
    guardAgainstTexts(lcModel(), "tryToResetStateAfterDbRollback", [this] {
        const auto exists = [this](qint64 id) {
            return m_diskStore->getEntryInfo(id, nullptr, nullptr, nullptr, nullptr, nullptr,
                                             nullptr, nullptr);
        };
        if (m_diskStore && !exists(m_currentEntryId)) {
            m_currentEntryId = exists(m_parentId) ? m_parentId : m_diskStore->getEntryId(-1, 0);
        }
        setUpEverythingUsingCurrentEntryId();
        emit changed();
    });
}
