#pragma once

#include <QString>

// The leading-number rule used wherever the system reads a number out of a
// text: blanks are passed over, then an optional sign, digits, one decimal
// point and an exponent are taken up to the first character that cannot
// continue the number; "&H" and "&O" introduce hexadecimal and octal numbers.
// No number at all reads as 0. "1,5" is 1, "1.5" is 1.5, "&HFF" is 255,
// "12abc" is 12, "abc" is 0.
[[nodiscard]] double LireNombre(const QString &texte);

// The same, rounded to the nearest integer (ties to the even number), as the
// system does when a leading number goes into an integer field.
[[nodiscard]] qint64 LireEntier(const QString &texte);

// A number as plain text, without grouping, with "." as decimal point:
// 2 gives "2", 2.5 gives "2.5".
[[nodiscard]] QString TexteNombre(double valeur);

// Rounds to the nearest integer, ties to the even number.
[[nodiscard]] qint64 ArrondiBancaire(double valeur);
