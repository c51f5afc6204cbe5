// SPDX-License-Identifier: MIT
// Feeds the fuzz entrance without a fuzzing engine: pages put together at random, the same ones for
// the same seed. "AnnouncementFuzz COUNT SEED" says how many and which; enough of them must stay
// within the bounds, since the others are laid out as plain text; files named instead are fed as
// they are.
#include "ui/AnnouncementPage.h"

#include <QApplication>
#include <QByteArray>
#include <QByteArrayList>
#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace
{

/// One page in so many, at least, must be laid out as HTML.
constexpr int leastHtmlShare = 4;

const QByteArrayList names{"table", "tr",   "td",  "th",    "tbody", "thead",  "ul",   "ol",
                           "li",    "dl",   "dt",  "dd",    "p",     "div",    "span", "font",
                           "b",     "i",    "a",   "img",   "br",    "hr",     "pre",  "blockquote",
                           "h1",    "body", "sub", "style", "TABLE", "center", "x-y"};
const QByteArrayList attributes{"width",   "height", "colspan", "rowspan",    "cellpadding",
                                "border",  "start",  "size",    "style",      "href",
                                "src",     "align",  "bgcolor", "background", "cellspacing",
                                "COLSPAN", "value"};
const QByteArrayList values{"1",
                            "3",
                            "\"7\"",
                            "'40'",
                            "60000",
                            "1000000000",
                            "-5",
                            "1e9",
                            "100%",
                            "&#49;000000",
                            "\"&#x36;0000\"",
                            "\"data:image/png;base64,iVBORw0KGgo=\"",
                            "\"da\nta:text/html,x\"",
                            "\"margin-left:9999999px\"",
                            "\"margin-left:40px; font-size:30pt; color:red\"",
                            "\"background-image:url(data:image/gif;base64,R0lGOD)\"",
                            "\"unclosed"};
const QByteArrayList pieces{"text ",     "&nbsp;",  "&#65532;", "&#xFDD0;", "&#x2028;",  "&#8233;",
                            "&#x202E;",  "&#x5D0;", "&lt;",     "&",        "<!--",      "-->",
                            "<!doctype", "<",       ">",        "\n",       "\t",        "\xff\xa0",
                            "&#x1F600;", "&#0;",    "</",       "=\"",      "wwwwwwwww", "\r",
                            "\r\n",      "&#13;"};

class PageMaker
{
public:
    explicit PageMaker(quint32 seed)
        : m_random(seed)
    {
    }

    QByteArray page()
    {
        QByteArray page;
        m_open.clear();
        const int parts = m_random.bounded(1, m_random.bounded(2, 1200));
        for (int i = 0; i < parts; ++i)
            page += part();
        return page;
    }

private:
    const QByteArray &anyOf(const QByteArrayList &list)
    {
        return list.at(m_random.bounded(static_cast<int>(list.size())));
    }

    QByteArray part()
    {
        const int kind = m_random.bounded(30);
        if (kind < 12)
            return end();
        if (kind < 18)
            return tag();
        if (kind < 24)
            return anyOf(pieces);
        switch (kind) {
        case 24:
            return "</" + anyOf(names) + ">";
        case 25: // a word that is rarely too long
            return QByteArray(m_random.bounded(201), 'w') + ' ';
        case 26:
            return QByteArray("<tr>").repeated(m_random.bounded(30));
        case 27:
            return rows();
        default: // a small table, so that there are whole ones
            return "<table><tr><td>" + anyOf(pieces) + "<td>" + anyOf(pieces) + "</table>";
        }
    }

    /// A table whose cells span columns and rows, the cells below perhaps left out.
    QByteArray rows()
    {
        QByteArray table = "<table>";
        for (int row = m_random.bounded(1, 8); row > 0; --row) {
            table += "<tr>";
            for (int cell = m_random.bounded(4); cell > 0; --cell)
                table += "<td colspan=" + QByteArray::number(m_random.bounded(1, 5)) + " rowspan="
                    + QByteArray::number(m_random.bounded(1, 5)) + '>' + anyOf(pieces);
        }
        return table + "</table>";
    }

    QByteArray tag()
    {
        m_open << anyOf(names);
        QByteArray tag = "<" + m_open.last();
        // Most attributes exceed a bound; a page of many tags is to get through now and then.
        for (int i = m_random.bounded(40); i < 1; ++i)
            tag += ' ' + anyOf(attributes) + '=' + anyOf(values);
        return tag + '>';
    }

    /// Of the element that was opened last: pages of which little is closed are too deep.
    QByteArray end() { return m_open.isEmpty() ? QByteArray() : "</" + m_open.takeLast() + '>'; }

    QRandomGenerator m_random;
    QByteArrayList m_open;
};

qint64 feed(const QByteArray &page)
{
    QElapsedTimer time;
    time.start();
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(page.constData()),
                           static_cast<std::size_t>(page.size()));
    return time.elapsed();
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Gone before the process ends: what the toolkit keeps would be taken for leaks.
    const QApplication application(argc, argv);
    const int count = argc > 1 ? std::atoi(argv[1]) : 0;
    if (argc > 1 && count == 0) {
        for (int i = 1; i < argc; ++i) {
            QFile file(QString::fromLocal8Bit(argv[i]));
            if (!file.open(QIODevice::ReadOnly))
                return 1;
            std::printf("%s: %lld ms\n", argv[i], feed(file.readAll()));
        }
        return 0;
    }
    const quint32 seed = argc > 2 ? static_cast<quint32>(std::atoi(argv[2])) : 1;
    PageMaker maker(seed);
    qint64 slowest = 0;
    int htmlCount = 0;
    for (int i = 0; i < count; ++i) {
        const QByteArray page = maker.page();
        const qint64 time = feed(page);
        htmlCount += AnnouncementPage(QString::fromLatin1(page)).html().has_value() ? 1 : 0;
        if (time > slowest) {
            slowest = time;
            QFile file(QStringLiteral("slowest-page.html"));
            if (file.open(QIODevice::WriteOnly))
                file.write(page);
        }
    }
    std::printf("%d pages of seed %u, %d of them within the bounds; the slowest took %lld ms\n",
                count, seed, htmlCount, slowest);
    return htmlCount * leastHtmlShare >= count ? 0 : 1;
}
