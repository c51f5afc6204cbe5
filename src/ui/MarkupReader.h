// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <QStringView>
#include <optional>

/// Takes a page of HTML apart into tags and the text between them, in one pass and without ever
/// failing: what is no tag is text. Comments, declarations and what stands in style, script and
/// title elements are left out.
class MarkupReader
{
public:
    struct Attribute {
        QString name; ///< In lower case.
        QString value; ///< As it stands in the page, without its quotation marks.
    };

    struct Token {
        enum class Kind { Text, Start, End };
        Kind kind = Kind::Text;
        QString text; ///< The text as it stands in the page, or the tag's name in lower case.
        QList<Attribute> attributes;
    };

    /// \a page is borrowed and must outlive the reader.
    explicit MarkupReader(QStringView page);

    /// The next token; nothing at the end of the page.
    std::optional<Token> next();

private:
    std::optional<Token> readText();
    std::optional<Token> readTag();
    std::optional<Attribute> readAttribute();
    QString readValue();
    void skipDeclaration();
    void skipContent(const QString &element);
    void skipPast(QStringView end);
    void skipSpace();
    QChar charAt(qsizetype position) const;

    QStringView m_page;
    qsizetype m_position = 0;
};
