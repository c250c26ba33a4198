#pragma once

#include <QString>


// Text comparison as the practice's databases have always done it: names are
// compared without regard to case or accents ("élodie" matches "ELODIE").
[[nodiscard]] QString PlierTexte(const QString &texte);

// The LIKE operator of the practice's databases: "*" any run of characters,
// "?" one character, "#" one digit, "[abc]" / "[a-c]" / "[!abc]" one character
// of (or not of) a set; "%" and "_" are plain characters. Case and accents are
// not regarded.
[[nodiscard]] bool JetLike(const QString &texte, const QString &motif);

// A pattern compiled once, for matching many texts.
class MotifJet final
{
public:
    explicit MotifJet(const QString &motif);
    ~MotifJet();
    MotifJet(const MotifJet &) = delete;
    MotifJet &operator=(const MotifJet &) = delete;
    [[nodiscard]] bool correspond(const QString &texte) const;
    // The same for a text already given through PlierTexte (saves folding
    // it twice when the caller keeps the folded form).
    [[nodiscard]] bool correspondPlie(QStringView textePlie) const;

private:
    struct Elements;
    Elements *m_elements;
};
