// SPDX-License-Identifier: MIT
#pragma once

#include <QTextBrowser>

/// Shows HTML that comes from the network: it loads nothing that the page refers to, and opens its
/// links in the system's browser, http and https only.
class UpdateTextBrowser : public QTextBrowser
{
    Q_OBJECT

public:
    explicit UpdateTextBrowser(QWidget *parent = nullptr);

    QVariant loadResource(int type, const QUrl &name) override;

    /// Whether a link may be handed to the system's browser.
    static bool mayOpen(const QUrl &link);
};
