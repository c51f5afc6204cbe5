// SPDX-License-Identifier: MIT
#include "ui/UpdateTextBrowser.h"

#include <QDesktopServices>

using namespace Qt::StringLiterals;

UpdateTextBrowser::UpdateTextBrowser(QWidget *parent)
    : QTextBrowser(parent)
{
    setOpenLinks(false);
    connect(this, &QTextBrowser::anchorClicked, this, [](const QUrl &link) {
        if (mayOpen(link))
            QDesktopServices::openUrl(link);
    });
}

QVariant UpdateTextBrowser::loadResource(int, const QUrl &)
{
    // A page from outside could otherwise show the user's own files, or call home at every layout.
    return QVariant();
}

bool UpdateTextBrowser::mayOpen(const QUrl &link)
{
    return link.scheme() == u"http"_s || link.scheme() == u"https"_s;
}
