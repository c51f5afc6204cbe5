// SPDX-License-Identifier: MIT
#include "store/DataFileDialog.h"

#include <QAbstractItemView>
#include <QDir>
#include <QMimeDatabase>
#include <QShortcut>

using namespace Qt::StringLiterals;

QIcon DataFileDialog::NameOnlyIconProvider::icon(const QFileInfo &info) const
{
    return info.isDir() ? QFileIconProvider::icon(info) : icon(File);
}

QString DataFileDialog::NameOnlyIconProvider::type(const QFileInfo &info) const
{
    if (info.isDir())
        return QFileIconProvider::type(info);
    return QMimeDatabase().mimeTypeForFile(info, QMimeDatabase::MatchExtension).comment();
}

// The dialog is made without a folder: it begins to read one at once, before it can be told of the
// icons.
DataFileDialog::DataFileDialog(const QString &caption)
    : m_dialog(nullptr, Qt::WindowFlags())
{
    // Desktops' own dialogs look into files as they like. They also add the suffix only after their
    // question, and would replace a file unasked.
    m_dialog.setOption(QFileDialog::DontUseNativeDialog);
    m_dialog.setIconProvider(&m_icons);
    m_dialog.setWindowTitle(caption);
    m_dialog.setDirectory(QDir::homePath());
    // A file that is dragged to another folder is copied, and one that can't be renamed as well;
    // and what is deleted here may be open.
    for (const QString &name : {u"listView"_s, u"treeView"_s}) {
        auto *view = m_dialog.findChild<QAbstractItemView *>(name);
        view->setDragDropMode(QAbstractItemView::NoDragDrop);
        view->setEditTriggers(QAbstractItemView::NoEditTriggers);
        view->setContextMenuPolicy(Qt::NoContextMenu);
        // The Delete key.
        for (QShortcut *shortcut : view->findChildren<QShortcut *>())
            shortcut->setEnabled(false);
    }
}

QString DataFileDialog::filter()
{
    return tr("Brindle files (*.bdl)");
}

QString DataFileDialog::ask()
{
    return m_dialog.exec() == QDialog::Accepted ? m_dialog.selectedFiles().value(0) : QString();
}

QString DataFileDialog::askForNewFile()
{
    DataFileDialog question(tr("Create a new file"));
    QFileDialog &dialog = question.m_dialog;
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setNameFilter(filter());
    // Before the dialog asks whether to replace an existing file.
    dialog.setDefaultSuffix(u"bdl"_s);
    dialog.selectFile(u"data.bdl"_s);
    return question.ask();
}

QString DataFileDialog::askForExistingFile()
{
    DataFileDialog question(tr("Open an existing file"));
    QFileDialog &dialog = question.m_dialog;
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setNameFilters({tr("Any file (*)"), filter()});
    dialog.selectNameFilter(filter());
    return question.ask();
}
