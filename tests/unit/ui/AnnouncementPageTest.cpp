// SPDX-License-Identifier: MIT
#include "ui/AnnouncementPage.h"

#include "ui/UpdateTextBrowser.h"

#include <QAbstractTextDocumentLayout>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace
{

QString htmlOf(const QString &page)
{
    return AnnouncementPage(page).html().value_or(u"(beyond the bounds)"_s);
}

bool isBounded(const QString &plainText)
{
    const QStringList lines = plainText.split(u'\n');
    if (plainText.size() > AnnouncementPage::longestPlainText + 4
        || lines.size() > AnnouncementPage::mostPlainLines + 3)
        return false;
    return std::all_of(lines.begin(), lines.end(), [](const QString &line) {
        const QStringList words = line.split(u' ');
        return std::all_of(words.begin(), words.end(), [](const QString &word) {
            return word.size() <= AnnouncementPage::longestWord;
        });
    });
}

const QString picture = u"data:image/png;base64,iVBORw0KGgo="_s;

} // namespace

class AnnouncementPageTest : public QObject
{
    Q_OBJECT

private slots:
    void aPageWithinTheBoundsKeepsItsMarkup_data();
    void aPageWithinTheBoundsKeepsItsMarkup();
    void whatIsLeftOpenIsEnded_data();
    void whatIsLeftOpenIsEnded();
    void whatIsUnknownOrMeansNothingHereIsLeftOut_data();
    void whatIsUnknownOrMeansNothingHereIsLeftOut();
    void aPageBeyondABoundIsPlainText_data();
    void aPageBeyondABoundIsPlainText();
    void aPageRightAtABoundIsHtml_data();
    void aPageRightAtABoundIsHtml();
    void plainTextIsTheSource();
    void charactersThatDocumentsKeepForThemselvesAreLeftOut();
};

void AnnouncementPageTest::aPageWithinTheBoundsKeepsItsMarkup_data()
{
    QTest::addColumn<QString>("page");
    QTest::newRow("nothing") << QString();
    QTest::newRow("text") << u"Brindle 0.4 is out\nwith \u00e4"_s;
    QTest::newRow("headings") << u"<h1>Brindle 0.4</h1><p>is <b>out</b></p>"_s;
    QTest::newRow("link") << u"<a href=\"https://brindle.example/?a=b&amp;c=1234567\">link</a>"_s;
    QTest::newRow("table") << u"<table border=\"1\" cellpadding=\"3\" width=\"100%\"><tr><th "
                              u"colspan=\"2\">a</th></tr><tr><td>b</td><td>c</td></tr></table>"_s;
    QTest::newRow("cells over several rows")
        << u"<table><tr><td colspan=\"20\" rowspan=\"2\">a</td><td "
           u"colspan=\"10\">b</td></tr><tr><td "
           "colspan=\"10\">c</td></tr><tr><td colspan=\"30\">d</td></tr></table>"_s;
    QTest::newRow("long table") << u"<table>"_s
            + (u"<tr>"_s + u"<td>x</td>"_s.repeated(5) + u"</tr>"_s).repeated(150) + u"</table>"_s;
    QTest::newRow("lists") << u"<ol start=\"3\"><li>a<ul><li>b</li></ul></li></ol>"_s;
    QTest::newRow("style")
        << u"<p style=\"font-size:14pt;color:#ff0000;margin-left:40px;\">x</p>"_s;
    QTest::newRow("preformatted") << u"<pre>"_s + (u"word "_s.repeated(90) + u'\n').repeated(9)
            + (u"word "_s.repeated(90) + u"<br>"_s).repeated(9) + u"</pre>"_s
            + u"word "_s.repeated(1000) + u"<pre>word</pre>"_s;
    QTest::newRow("entities") << u"a &amp; b &lt; c &eacute;&nbsp;d"_s;
}

void AnnouncementPageTest::aPageWithinTheBoundsKeepsItsMarkup()
{
    QFETCH(QString, page);
    QCOMPARE(htmlOf(page), page);
}

void AnnouncementPageTest::whatIsLeftOpenIsEnded_data()
{
    QTest::addColumn<QString>("page");
    QTest::addColumn<QString>("html");
    QTest::newRow("paragraphs") << u"<p>a<p>b"_s << u"<p>a</p><p>b</p>"_s;
    QTest::newRow("items") << u"<ul><li>a<li>b</ul>c"_s << u"<ul><li>a</li><li>b</li></ul>c"_s;
    QTest::newRow("terms") << u"<dl><dt>a<dd>b<dt>c"_s
                           << u"<dl><dt>a</dt><dd>b</dd><dt>c</dt></dl>"_s;
    QTest::newRow("cells") << u"<TABLE><TR><TD>a<TD>b<TR><TD>c"_s
                           << u"<table><tr><td>a</td><td>b</td></tr><tr><td>c</td></tr></table>"_s;
    QTest::newRow("groups of rows")
        << u"<table><thead><tr><td>a<tbody><tr><td>b</table>"_s
        << u"<table><thead><tr><td>a</td></tr></thead><tbody><tr><td>b</td></tr></tbody></table>"_s;
    QTest::newRow("crossing") << u"<b>a<i>b</b>c</i>"_s << u"<b>a<i>b</i></b>c"_s;
    QTest::newRow("out of a cell")
        << u"<div><table><tr><td>a</div>b"_s << u"<div><table><tr><td>ab</td></tr></table></div>"_s;
}

void AnnouncementPageTest::whatIsLeftOpenIsEnded()
{
    QFETCH(QString, page);
    QFETCH(QString, html);
    QCOMPARE(htmlOf(page), html);
}

void AnnouncementPageTest::whatIsUnknownOrMeansNothingHereIsLeftOut_data()
{
    QTest::addColumn<QString>("page");
    QTest::addColumn<QString>("html");
    QTest::newRow("comment") << u"a<!-- <table> -->b"_s << u"ab"_s;
    QTest::newRow("comment that only seems to end") << u"a<!-->b"_s << u"a"_s;
    QTest::newRow("comment without end") << u"a<!-- <table>"_s << u"a"_s;
    QTest::newRow("declaration") << u"<!DOCTYPE html>a<?xml?>"_s << u"a"_s;
    QTest::newRow("style sheet") << u"<STYLE>p{margin:99999px}</style >a"_s << u"a"_s;
    QTest::newRow("style sheet without end") << u"a<style>p{}"_s << u"a"_s;
    QTest::newRow("title") << u"<html><head><title>t</title></head><body>a</body></html>"_s
                           << u"a"_s;
    QTest::newRow("size of what is no font") << u"<hr size=7>a"_s << u"<hr>a"_s;
    QTest::newRow("unknown element") << u"<section>a</section>"_s << u"a"_s;
    QTest::newRow("picture") << u"<img src=\"http://x/y.png\" alt=\"a <b>\">"_s << u"a &lt;b&gt;"_s;
    QTest::newRow("background") << u"<table background=x.png><tr><td>a</table>"_s
                                << u"<table><tr><td>a</td></tr></table>"_s;
    QTest::newRow("address in a style")
        << u"<p style=\"background-image:url(x.png);color:red\">a</p>"_s
        << u"<p style=\"color:red;\">a</p>"_s;
    QTest::newRow("handler") << u"<p onclick=\"x()\">a</p>"_s << u"<p>a</p>"_s;
    QTest::newRow("handler with a number") << u"<p onclick=\"f(5000)\">a</p>"_s << u"<p>a</p>"_s;
    QTest::newRow("encoding") << u"<meta charset=\"iso-8859-1\">a"_s << u"a"_s;
    QTest::newRow("date") << u"<time datetime=\"2026-11-21\">a</time>"_s << u"a"_s;
    QTest::newRow("number of a script's own") << u"<p data-id=12345>a</p>"_s << u"<p>a</p>"_s;
    QTest::newRow("caption")
        << u"<table border=\"1\"><caption align=center>all <b>of</b> it</caption>"
           "<tr><td>a</table>b"_s
        << u"<div align=\"center\">all <b>of</b> it</div>"
           "<table border=\"1\"><tr><td>a</td></tr></table>b"_s;
    QTest::newRow("caption without end")
        << u"<div><table><caption>a</div><p>b<tr><td>c</table>"_s
        << u"<div><div>a<p>b</p></div><table><tr><td>c</td></tr></table></div>"_s;
    QTest::newRow("captions within each other")
        << u"<table><caption>a<table><caption>b</table>c<tbody><tr><td>d"_s
        << u"<div>a<div>b</div><table></table>c</div>"
           "<table><tbody><tr><td>d</td></tr></tbody></table>"_s;
    QTest::newRow("two captions")
        << u"<table><caption>a<caption>b<tr><td>c"_s
        << u"<div>a</div><div>b</div><table><tr><td>c</td></tr></table>"_s;
    QTest::newRow("cell outside a table") << u"<td>a</td><li>b"_s << u"ab"_s;
    QTest::newRow("tag without end") << u"a <table border"_s << u"a &lt;table border"_s;
    QTest::newRow("no tag at all") << u"1 < 2 > <3"_s << u"1 &lt; 2 &gt; &lt;3"_s;
    QTest::newRow("markup by references") << u"&#60;table&#x3E;"_s << u"&lt;table&gt;"_s;
    QTest::newRow("ampersand by a reference") << u"&#38;lt;"_s << u"&lt;"_s;
    QTest::newRow("quotation mark in an address")
        << u"<a href='http://x/\"><table>'>a</a>"_s
        << u"<a href=\"http://x/&quot;&gt;&lt;table&gt;\">a</a>"_s;
    QTest::newRow("the same attribute twice")
        << u"<td><table border=1 border=9><tr><td>a</table>"_s
        << u"<table border=\"1\"><tr><td>a</td></tr></table>"_s;
}

void AnnouncementPageTest::whatIsUnknownOrMeansNothingHereIsLeftOut()
{
    QFETCH(QString, page);
    QFETCH(QString, html);
    QCOMPARE(htmlOf(page), html);
}

void AnnouncementPageTest::aPageBeyondABoundIsPlainText_data()
{
    QTest::addColumn<QString>("page");
    const auto row = [](const char *name, const QString &page) { QTest::newRow(name) << page; };
    row("3,000 nested tables", u"<table><tr><td>"_s.repeated(3000));
    row("24 nested tables",
        u"<table><tr><td>"_s.repeated(24) + u"x"_s + u"</td></tr></table>"_s.repeated(24));
    row("a word of a mebibyte", QString(1 << 20, u'w'));
    row("a long word", QString(60'000, u'w'));
    row("a long word in pieces", u"<b>wwwwwwwwww</b>"_s.repeated(50));
    row("a long word of no-break spaces", u"&nbsp;"_s.repeated(500));
    row("a long word by references", u"&#119;"_s.repeated(500));
    row("cells padded by 1,000,000,000",
        u"<table cellpadding=1000000000><tr><td>x</td></tr></table>"_s);
    row("50 rows of 60,000 columns",
        u"<table>"_s + u"<tr><td colspan=60000>x</td></tr>"_s.repeated(50) + u"</table>"_s);
    row("seven pictures inside the page", (u"<img src=\""_s + picture + u"\">"_s).repeated(7));
    row("a page that is too long", u"word "_s.repeated(20'000));
    row("many elements", u"<br>"_s.repeated(5000));
    row("many cells", u"<table>"_s + u"<tr><td>x<td>x"_s.repeated(1000));
    row("many columns", u"<table><tr>"_s + u"<td>x"_s.repeated(100));
    row("spans that add up", u"<table>"_s + u"<tr><td colspan=20 rowspan=15>x"_s.repeated(20));
    row("a wide row above many empty ones",
        u"<table><tr><td colspan=30>x"_s + u"<tr>"_s.repeated(990));
    row("empty rows above a wide one",
        u"<table>"_s + u"<tr>"_s.repeated(990) + u"<tr><td colspan=30>x"_s);
    row("columns carried down by rows above",
        u"<table><tr><td colspan=20 rowspan=5>x<tr><td colspan=30 rowspan=4>x"
        "<tr><td colspan=30 rowspan=3>x<tr><td colspan=30 rowspan=2>x<tr><td colspan=30>x"_s);
    row("many tables of empty rows",
        (u"<table><tr><td colspan=30>x"_s + u"<tr>"_s.repeated(10) + u"</table>"_s).repeated(10));
    row("a long preformatted line", u"<pre>"_s + u"word "_s.repeated(1000));
    row("a long preformatted line in pieces",
        u"<pre>"_s + u"<b>word <i> </i></b>&eacute; "_s.repeated(200));
    row("a long preformatted line of tabulators", u"<pre>"_s + u"\t"_s.repeated(100));
    row("a long preformatted line in a table",
        u"<pre><table><tr><td>"_s + u"word "_s.repeated(200));
    row("many nested quotations", u"<blockquote>"_s.repeated(100));
    row("many nested lists", u"<ul><li>"_s.repeated(100));
    row("many nested divisions", u"<div>"_s.repeated(2000));
    row("many nested fonts", u"<font size=+1>"_s.repeated(2000));
    row("many lines", u"\n"_s.repeated(60'000));
    row("many carriage returns", u"\r"_s.repeated(60'000));
    row("many lines of carriage returns and line feeds", u"\r\n"_s.repeated(30'000));
    row("many lines, many of them by references",
        u"\n"_s.repeated(1500) + u"&#10;&#xD;"_s.repeated(400));
    row("many pictures with lines for words",
        (u"<img alt=\""_s + u"\r"_s.repeated(500) + u"\">"_s).repeated(20));
    row("carriage returns in a page beyond the bounds",
        u"<img width=1e9>"_s + u"a\r"_s.repeated(5000));
    row("separators in a page beyond the bounds",
        u"<img width=1e9>"_s + u"a\u2028b\u2029c\ufdd0d\ufdd1"_s.repeated(2000));
    row("many ampersands", u"& "_s.repeated(30'000));
    row("many references", u"&eacute; "_s.repeated(5000));
    row("text among the rows", u"<table>text<tr><td>a</table>"_s);
    row("a caption below a row",
        u"<table><tr><td>a</tr><caption>text</caption><tr><td>b</table>"_s);
    row("many captions", u"<table><caption>a"_s.repeated(600));
    row("a cell as high as a tower", u"<table><tr><td height=1000000>x"_s);
    row("a picture's distance", u"<img hspace=1000000 vspace=1000000>"_s);
    row("wide", u"<table width=1000000><tr><td>x"_s);
    row("wide in other letters", u"<TABLE WIDTH=1000000><tr><td>x"_s);
    row("wide without blanks between", u"<hr/width=\"1000000\"/>"_s);
    row("wide by references", u"<table width=\"&#49;&#x30;00000\"><tr><td>x"_s);
    row("wide on a line of its own", u"<table\nwidth\n=\n'\n1000000\n'><tr><td>x"_s);
    row("a picture's size", u"<img width=1e9 height=1e9>"_s);
    row("a picture's size in full", u"<img width=1000000000 height=1000000000>"_s);
    row("a margin", u"<p style=\"margin-left:1000000000px\">x"_s);
    row("a margin with a fraction", u"<p style='MARGIN : 0 0 0 99999.5px'>x"_s);
    row("a font", u"<p style='font-size: 100000pt'>x"_s);
    row("an indent", u"<p style=\"-qt-block-indent:100000\">x"_s);
    row("an exponent", u"<p style=\"margin-left:1e9px\">x"_s);
    row("a list's first number", u"<ol start=2147483647><li>x"_s);
    row("data: in other letters", u"<img src=DaTa:image/png;base64,xx>"_s);
    row("data: by references", u"<img src=\"&#100;&#x61;ta&#58;image/png;base64,xx\">"_s);
    row("data: with blanks", u"<img src=\" \n\tda\nta :image/png;base64,xx\">"_s);
    row("data: in a style", u"<p style=\"background-image: url( 'data:image/png;base64,xx')\">"_s);
    row("data: as a background", u"<body background=\""_s + picture + u"\">"_s);
    row("data: as a link", u"<a href=\"data:text/html,x\">x</a>"_s);
}

void AnnouncementPageTest::aPageBeyondABoundIsPlainText()
{
    QFETCH(QString, page);
    const AnnouncementPage announcement(page);
    QVERIFY(!announcement.html());
    QVERIFY(isBounded(announcement.plainText()));
    UpdateTextBrowser browser;
    browser.showPage(page);
    QCOMPARE(browser.toPlainText(), announcement.plainText());
    QVERIFY(browser.document()->documentLayout()->documentSize().isValid());
}

void AnnouncementPageTest::aPageRightAtABoundIsHtml_data()
{
    QTest::addColumn<QString>("page");
    QTest::addColumn<bool>("isHtml");
    const auto rows = [](const char *name, const auto &page, int bound) {
        QTest::addRow("%s, at the bound", name) << page(bound) << true;
        QTest::addRow("%s, beyond it", name) << page(bound + 1) << false;
    };
    using Page = AnnouncementPage;
    const auto repeated
        = [](const QString &text) { return [text](int count) { return text.repeated(count); }; };
    rows(
        "characters", [](int count) { return u"a "_s.repeated(count).left(count); },
        Page::longestPage);
    rows("word", repeated(u"w"_s), Page::longestWord);
    rows(
        "preformatted line",
        [](int count) { return u"<pre>"_s + u"a "_s.repeated(count).left(count); },
        Page::longestPreformattedLine);
    rows("elements", repeated(u"<hr>"_s), Page::mostElements);
    rows("lines", repeated(u"\n"_s), Page::mostLines);
    rows("lines of carriage returns", repeated(u"\r"_s), Page::mostLines);
    rows("lines of both", repeated(u"\r\n"_s), Page::mostLines);
    rows("references", repeated(u"&eacute; "_s), Page::mostCharacterReferences);
    rows("nesting", repeated(u"<div>"_s), Page::deepestNesting);
    rows("indentation", repeated(u"<blockquote>"_s), Page::deepestIndentation);
    rows("tables", repeated(u"<table><tr><td>"_s), Page::deepestTables);
    rows(
        "columns", [](int count) { return u"<table><tr>"_s + u"<td>x"_s.repeated(count); },
        Page::mostColumns);
    rows(
        "cells", [](int count) { return u"<table><tr><td>x"_s + u"<tr>"_s.repeated(count - 1); },
        Page::mostCells);
    rows(
        "span", [](int count) { return u"<table><tr><td colspan=%1>x"_s.arg(count); },
        Page::mostColumns);
    rows(
        "width", [](int count) { return u"<table width=%1><tr><td>x"_s.arg(count); },
        Page::largestNumber);
    rows(
        "spacing", [](int count) { return u"<table border=%1><tr><td>x"_s.arg(count); },
        Page::largestSpacing);
    rows(
        "margin", [](int count) { return u"<p style='margin-top:%1px'>x"_s.arg(count); },
        Page::largestSpacing);
}

void AnnouncementPageTest::aPageRightAtABoundIsHtml()
{
    QFETCH(QString, page);
    QFETCH(bool, isHtml);
    QCOMPARE(AnnouncementPage(page).html().has_value(), isHtml);
}

void AnnouncementPageTest::plainTextIsTheSource()
{
    const QString page = u"<img width=1e9>\nBrindle 0.4"_s;
    QCOMPARE(AnnouncementPage(page).plainText(), page);
    const QString word(AnnouncementPage::longestWord, u'w');
    QCOMPARE(AnnouncementPage(word + word).plainText(), word + u'\n' + word);
    QCOMPARE(AnnouncementPage(page + u"\r\na\rb\u2028c\u2029d\ufdd0e\ufdd1f"_s).plainText(),
             page + u"\na\nb\nc\nd\ne\nf"_s);
    QVERIFY(AnnouncementPage(QString(100'000, u'w')).plainText().endsWith(u"w\n..."_s));
}

void AnnouncementPageTest::charactersThatDocumentsKeepForThemselvesAreLeftOut()
{
    QCOMPARE(htmlOf(u"a&#65532;&#xFDD0;&#xFDD1;&#x2029;&#x2028;&#0;&#7;&#xD800;&#x110000;b"_s),
             u"ab"_s);
    QCOMPARE(htmlOf(u"&#x1F600; &#228"_s), u"\U0001F600 \u00e4"_s);
}

QTEST_MAIN(AnnouncementPageTest)
#include "AnnouncementPageTest.moc"
