#pragma once

#include <QString>

// Turns the RTF text of a styled message into an HTML fragment for a mail
// body. It carries bold, italic, underline, strike-through, sub- and
// superscript, font face, size and colour, centre and right alignment (as a
// one-cell table), bullets and line breaks. It is a single pass over the
// tokens; the list of open tags is repaired as it goes so that the HTML nests
// although RTF switches formatting on and off in any order.
//
// Options, found anywhere in the options text:
//   "+CR"    a line end after each <br> and </li>
//   "+F=n"   n is the HTML size that needs no size attribute
//   "-FF"    no font faces in the output
//   "+I", "+H" are accepted and change nothing.
//
// Nothing is ever reported: unknown control words are ignored with their
// parameter, an unbalanced group is not detected.
[[nodiscard]] QString RtfToHtml(const QString &rtf, const QString &options = QString());

// What an escaped byte \'xx becomes, for two lowercase hexadecimal digits:
// an HTML entity, a few literal texts, "<rtf>:" followed by RTF to run in its
// place, or an empty text for a byte that has no entry (uppercase digits
// included).
[[nodiscard]] QString RtfOctetEchappe(const QString &hex);
