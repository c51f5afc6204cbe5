// SPDX-License-Identifier: MIT
#include "model/HierarchyModel.h"

#include "shared/TextHelpers.h"
#include "store/FileManager.h"

#include <QMessageBox>
#include <QPushButton>
#include <algorithm>
#include <map>

using namespace Qt::StringLiterals;

namespace
{
constexpr int buttonTextLength = 20;
}

bool HierarchyModel::canRegisterShortcut()
{
    return writeEditedText() && m_currentEntryId != -1;
}

bool HierarchyModel::registerShortcut(int key, const QString &keyText)
{
    if (!canRegisterShortcut())
        return false;
    m_diskStore->registerShortcut(m_currentEntryId, key, keyText);
    m_shortcutKeyText = keyText;
    postStateChange();
    return true;
}

bool HierarchyModel::unregisterShortcut()
{
    if (!canRegisterShortcut())
        return false;
    m_diskStore->unregisterShortcut(m_currentEntryId);
    m_shortcutKeyText.clear();
    postStateChange();
    return true;
}

bool HierarchyModel::isShortcutRegistered(int key, bool ignoreCurrentEntry) const
{
    const QList<EntryAddress> addresses = m_fileManager->getEntriesByShortcutKey(key);
    return std::any_of(addresses.begin(), addresses.end(), [&](const EntryAddress &address) {
        return !ignoreCurrentEntry || address != getCurrentAddress();
    });
}

void HierarchyModel::goToEntryByShortcutKey(int key)
{
    if (!writeEditedText()) {
        refuse();
        return;
    }
    const QList<EntryAddress> addresses = m_fileManager->getEntriesByShortcutKey(key);
    if (addresses.isEmpty())
        throw "shortcut hasn't been registered";
    const EntryAddress address
        = addresses.size() == 1 ? addresses.first() : chooseBetween(addresses);
    if (address.entryId != -1)
        goToEntry(address, true);
}

EntryAddress HierarchyModel::chooseBetween(const QList<EntryAddress> &addresses) const
{
    QMessageBox box;
    box.setIcon(QMessageBox::Question);
    box.setText(tr("That shortcut is bound to entries in multiple files. Please click the button "
                   "for the one you wanted, and consider adjusting your shortcut bindings to avoid "
                   "such conflicts."));
    // The file behind a button may be closed by an error while the box is open.
    struct Choice {
        QPointer<DiskStore> store;
        qint64 entryId;
    };
    std::map<QAbstractButton *, Choice> choices;
    for (const EntryAddress &address : addresses) {
        DiskStore *store = m_fileManager->getFile(address.fileIndex);
        QString text;
        if (!store->getEntryInfo(address.entryId, &text, nullptr, nullptr, nullptr, nullptr,
                                 nullptr, nullptr))
            throw "entry not found?";
        text = Global::oneLineExcerpt(text, buttonTextLength).replace(u'&', u"&&"_s);
        QPushButton *button = box.addButton(text, QMessageBox::YesRole);
        button->setFocusPolicy(Qt::NoFocus);
        choices[button] = Choice{store, address.entryId};
    }
    box.addButton(QMessageBox::Cancel);
    box.setDefaultButton(static_cast<QPushButton *>(nullptr));
    box.exec();

    const auto chosen = choices.find(box.clickedButton());
    if (chosen == choices.end() || !chosen->second.store)
        return EntryAddress();
    for (int index = 0; index < m_fileManager->getFileCount(); ++index) {
        if (m_fileManager->getFile(index) == chosen->second.store)
            return EntryAddress{index, chosen->second.entryId};
    }
    return EntryAddress();
}
