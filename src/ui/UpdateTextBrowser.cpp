// SPDX-License-Identifier: MIT
#include "ui/UpdateTextBrowser.h"

#include "ui/AnnouncementPage.h"

#include <QDesktopServices>
#include <QImage>

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

void UpdateTextBrowser::showPage(const QString &page)
{
    const AnnouncementPage announcement(page);
    if (const std::optional<QString> html = announcement.html())
        setHtml(*html);
    else
        setPlainText(announcement.plainText());
}

QVariant UpdateTextBrowser::loadResource(int type, const QUrl &name)
{
    Q_UNUSED(name)
    // A page from outside could otherwise show the user's own files, or call home at every layout.
    // The document opens the file itself when it is given nothing, or a picture that is empty.
    if (type == QTextDocument::ImageResource) {
        QImage blank(1, 1, QImage::Format_ARGB32_Premultiplied);
        blank.fill(Qt::transparent);
        return blank;
    }
    return QByteArray("");
}

bool UpdateTextBrowser::mayOpen(const QUrl &link)
{
    return link.scheme() == u"http"_s || link.scheme() == u"https"_s;
}
