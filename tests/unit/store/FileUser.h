// SPDX-License-Identifier: MIT
#pragma once

#include "StoreTestSupport.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <functional>

/// How a file dialog looked when it came up.
struct SeenDialog {
    QString title;
    QString folder;
    QString fileName;
    QStringList filters;
    QString selectedFilter;
    QFileDialog::AcceptMode mode = QFileDialog::AcceptOpen;
    bool hasParent = false;
};

/// A home folder of the test's own, with a user who answers file dialogs by typing names: the first
/// for the first dialog and so on; an empty one, or none, cancels.
class FileUser
{
public:
    explicit FileUser(const QStringList &typed,
                      const QList<QMessageBox::StandardButton> &boxAnswers = {})
        : boxes(boxAnswers)
        , m_typed(typed)
    {
        qputenv("HOME", QFile::encodeName(m_home.path()));
        boxes.onOtherModal([this](QWidget *modal) {
            if (auto *dialog = qobject_cast<QFileDialog *>(modal))
                answer(dialog);
        });
    }

    QString home(const QString &name) const { return m_home.filePath(name); }

    /// Runs while a dialog is on the screen, before it is answered, which waits for it to return
    /// true.
    void beforeAnswering(const std::function<bool(QFileDialog *)> &action) { m_before = action; }

    StoreTest::BoxAnswers boxes;
    QList<SeenDialog> dialogs;

private:
    void answer(QFileDialog *dialog)
    {
        // Back after the user didn't like what its question said.
        const QVariant boxesBefore = dialog->property("boxesBefore");
        if (boxesBefore.isValid() && boxes.seen().size() > boxesBefore.toInt())
            dialog->reject();
        if (boxesBefore.isValid() || (m_before && !m_before(dialog)))
            return;
        dialog->setProperty("boxesBefore", boxes.seen().size());
        auto *edit = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
        auto *buttons = dialog->findChild<QDialogButtonBox *>();
        const QString name = m_typed.value(dialogs.size());
        dialogs << SeenDialog{dialog->windowTitle(),
                              dialog->directory().absolutePath(),
                              edit->text(),
                              dialog->nameFilters(),
                              dialog->selectedNameFilter(),
                              dialog->acceptMode(),
                              dialog->parentWidget() != nullptr};
        QPushButton *button = buttons->button(QDialogButtonBox::Cancel);
        if (!name.isEmpty()) {
            edit->setText(name);
            const auto accept = dialog->acceptMode() == QFileDialog::AcceptSave
                ? QDialogButtonBox::Save
                : QDialogButtonBox::Open;
            button = buttons->button(accept);
        }
        // Not from in here: the dialog may ask a question of its own.
        QTimer::singleShot(0, button, &QPushButton::click);
    }

    QTemporaryDir m_home;
    QStringList m_typed;
    std::function<bool(QFileDialog *)> m_before;
};
