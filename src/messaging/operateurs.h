#pragma once

#include <QString>

// The operator's name out of the modem's answer to "AT+COPS?": the text
// between the first two double quotes (the whole answer when it has none),
// freed of line ends and of a final "OK", then turned into a name by the
// operator list. "Inconnu" when the modem names no operator.
[[nodiscard]] QString GetOperatorName(const QString &reponse);

// Turns a numeric operator code into a name with the list System/Opérateurs.txt
// ("20801; Orange F" lines). Codes are compared as numbers by the
// leading-number rule, so a name that is no number matches only lines that do
// not begin with one; the last matching line wins. A missing list leaves the
// name as it is.
[[nodiscard]] QString LookupOperator(const QString &nom);
[[nodiscard]] QString LookupOperator(const QString &nom, const QString &cheminListe);

// Removes the control characters (code under 14) from both ends.
[[nodiscard]] QString SansControles(const QString &texte);
