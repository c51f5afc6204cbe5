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

    /// Shows \a page as HTML, or as plain text when it exceeds the bounds of AnnouncementPage.
    void showPage(const QString &page);

    QVariant loadResource(int type, const QUrl &name) override;

    /// Whether a link may be handed to the system's browser.
    static bool mayOpen(const QUrl &link);
};
