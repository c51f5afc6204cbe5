// SPDX-License-Identifier: MIT
// The entrance of pages from the maker's server: any bytes at all are judged, laid out and drawn.
#include "ui/AnnouncementPage.h"
#include "ui/UpdateTextBrowser.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextTable>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace
{

void startToolkit()
{
    // Clang's engine has a main function of its own.
    if (QCoreApplication::instance())
        return;
    static int count = 1;
    static char name[] = "AnnouncementFuzz";
    static char *arguments[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QApplication application(count, arguments);
}

void require(bool holds, const char *what)
{
    if (holds)
        return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

bool holdsPicture(const QTextDocument &document)
{
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        for (auto part = block.begin(); !part.atEnd(); ++part) {
            if (part.fragment().charFormat().isImageFormat())
                return true;
        }
    }
    return false;
}

/// Cells of all tables in \a frame, as they are laid out.
int cellsIn(const QTextFrame &frame)
{
    int cells = 0;
    for (const QTextFrame *child : frame.childFrames()) {
        if (const auto *table = qobject_cast<const QTextTable *>(child)) {
            require(table->columns() <= AnnouncementPage::mostColumns, "too many columns");
            cells += table->rows() * table->columns();
        }
        cells += cellsIn(*child);
    }
    return cells;
}

int mostBlocks(bool isHtml)
{
    if (!isHtml)
        return AnnouncementPage::mostPlainLines + 2; // What was cut is three dots on a line.
    // Most elements stand in a block of their own, and what follows them in another.
    return AnnouncementPage::mostLines + 2 * AnnouncementPage::mostElements
        + AnnouncementPage::mostCells;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    startToolkit();
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const QString source = QString::fromLatin1(bytes.constData());
    const AnnouncementPage page(source);
    if (page.html()) {
        require(source.size() <= AnnouncementPage::longestPage, "a page that is too long");
        // Twice the size, since each bare ampersand and bracket grows.
        require(page.html()->size() <= 8 * AnnouncementPage::longestPage, "markup that grew");
    }
    UpdateTextBrowser browser;
    browser.resize(480, 300);
    browser.showPage(source);
    require(browser.document()->documentLayout()->documentSize().isValid(), "no layout");
    require(browser.document()->blockCount() <= mostBlocks(page.html().has_value()),
            "too many blocks");
    require(cellsIn(*browser.document()->rootFrame()) <= AnnouncementPage::mostCells,
            "too many cells");
    require(!holdsPicture(*browser.document()), "a picture");
    browser.grab();
    return 0;
}
