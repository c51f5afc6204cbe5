// SPDX-License-Identifier: MIT
#include "shared/TextHelpers.h"

#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

/// The text helpers that every room shares.
class TextHelpersTest : public QObject
{
    Q_OBJECT

private slots:
    void truncateWithEllipsis_data();
    void truncateWithEllipsis();
    void anExcerptIsOneLineWhateverBreaksTheText();
    void copyrightIsOneLineWithTheYearOfTheBuild();
    void copyrightForHtmlHasTheEntity();
};

void TextHelpersTest::truncateWithEllipsis_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("maxLength");
    QTest::addColumn<QString>("expected");
    QTest::newRow("empty") << QString() << 5 << QString();
    QTest::newRow("shorter") << u"abcd"_s << 5 << u"abcd"_s;
    QTest::newRow("exactly as long") << u"abcde"_s << 5 << u"abcde"_s;
    QTest::newRow("one longer") << u"abcdef"_s << 5 << u"abcde ..."_s;
    QTest::newRow("line break counts as one") << u"ab\ncd"_s << 5 << u"ab cd"_s;
    QTest::newRow("run of line breaks is one blank") << u"ab\n\r\n\rcd"_s << 5 << u"ab cd"_s;
    QTest::newRow("two runs") << u"a\nb\r\nc"_s << 5 << u"a b c"_s;
    QTest::newRow("joined first, then counted") << u"a\n\n\n\nbcdef"_s << 5 << u"a bcd ..."_s;
    QTest::newRow("line breaks at both ends") << u"\nabc\n"_s << 5 << u" abc "_s;
    QTest::newRow("line breaks only") << u"\n\n\n"_s << 5 << u" "_s;
    QTest::newRow("blanks and tabs stay") << u"a  \tb"_s << 5 << u"a  \tb"_s;
    QTest::newRow("cut behind a blank") << u"abcd efg"_s << 5 << u"abcd  ..."_s;
    QTest::newRow("nothing may stay") << u"ab"_s << 0 << u" ..."_s;
    QTest::newRow("empty with no room") << QString() << 0 << QString();
    QTest::newRow("other separators are no line breaks") << u"a\u2028b"_s << 5 << u"a\u2028b"_s;
    QTest::newRow("emoji that just fits") << u"abc\U0001F600"_s << 5 << u"abc\U0001F600"_s;
    QTest::newRow("cut behind an emoji") << u"abc\U0001F600d"_s << 5 << u"abc\U0001F600 ..."_s;
    QTest::newRow("cut within an emoji") << u"abcd\U0001F600"_s << 5 << u"abcd ..."_s;
    QTest::newRow("nothing but an emoji") << u"\U0001F600"_s << 1 << u" ..."_s;
    QTest::newRow("half an emoji of its own")
        << u"abcd"_s + QChar(0xD83D) + u"efg"_s << 5 << u"abcd"_s + QChar(0xD83D) + u" ..."_s;
    QTest::newRow("seventy") << QString(70, u'x') << 70 << QString(70, u'x');
    QTest::newRow("seventy-one") << QString(71, u'x') << 70 << QString(70, u'x') + u" ..."_s;
}

void TextHelpersTest::truncateWithEllipsis()
{
    QFETCH(QString, text);
    QFETCH(int, maxLength);
    QFETCH(QString, expected);
    QCOMPARE(Global::truncateWithEllipsis(text, maxLength), expected);
}

void TextHelpersTest::anExcerptIsOneLineWhateverBreaksTheText()
{
    QCOMPARE(Global::oneLineExcerpt(u"a\u2028\u2029b\n\u2028\rc"_s, 5), u"a b c"_s);
    QCOMPARE(Global::oneLineExcerpt(u"a\u2028bcdef"_s, 5), u"a bcd ..."_s);
}

void TextHelpersTest::copyrightIsOneLineWithTheYearOfTheBuild()
{
    const QString text = Global::getCopyrightString(false);
    static const QRegularExpression form(u"^Copyright \u00A9 (\\d{4}) \\S.*$"_s);
    const QRegularExpressionMatch match = form.match(text);
    QVERIFY2(match.hasMatch(), qPrintable(text));
    QVERIFY(!text.contains(u'\n'));
    // This file and the helper may be compiled on both sides of a New Year.
    const int here = QString::fromLatin1(__DATE__).right(4).toInt();
    QVERIFY(qAbs(match.captured(1).toInt() - here) <= 1);
}

void TextHelpersTest::copyrightForHtmlHasTheEntity()
{
    QString html = Global::getCopyrightString(true);
    QVERIFY(html.startsWith(u"Copyright &copy; "_s));
    QVERIFY(!html.contains(QChar(0x00A9)));
    QCOMPARE(html.replace(u"&copy;"_s, u"\u00A9"_s), Global::getCopyrightString(false));
}

QTEST_APPLESS_MAIN(TextHelpersTest)
#include "TextHelpersTest.moc"
