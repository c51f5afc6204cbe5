// SPDX-License-Identifier: MIT
#pragma once

#include "ui/AbstractWindow.h"

#include <memory>

class QPushButton;
namespace Ui
{
class UpdatesAvailable;
}

/// Announces a newer version in the words of the maker's server.
class UpdatesAvailable : public AbstractWindow
{
    Q_OBJECT

public:
    /// Shows \a html as far as it stays within bounds; an announcement still on the screen is
    /// closed first.
    UpdatesAvailable(const QString &html, AbstractWindow *parent);
    ~UpdatesAvailable() override;

    QString getWindowName() const override;

public slots:
    void stopCheckingForUpdatesAndClose();

private:
    std::unique_ptr<Ui::UpdatesAvailable> m_form;
    // Owned by the button box.
    QPushButton *m_laterButton;
    QPushButton *m_stopButton;
};
