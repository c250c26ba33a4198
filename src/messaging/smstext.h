#pragma once

#include <QDateTime>
#include <QString>

// The SMS reminder text: its four lines, the folding into what the modem's
// GSM character set carries, the phone number cleaning and the length hint.

// Folds a text for the modem: a few accented letters become the single
// character whose Windows-1252 byte is the letter's GSM code (é goes out as
// byte 133), other accented letters lose their accent, "€" becomes "Euro".
// Letters not named by the folding table keep their own byte. The result is
// as long as the text or longer; each character of it is one byte on the line.
[[nodiscard]] QString FoldSMSText(const QString &texte);

// The date line of a reminder: "Le " + "dddd dd mmmm yyyy" in French + " à "
// + the time as hh"H"nn followed by a blank, e.g.
// "Le lundi 03 août 2026 à 09H05 ". The same line heads the reminder mail.
[[nodiscard]] QString TexteDateRendezVous(const QDateTime &debut);

// The four lines First, practitioner, date line and Last joined by carriage
// returns, folded in one pass and cut to 159 characters (one under a single
// SMS; "Euro" counts four, so the cut is on the folded text).
[[nodiscard]] QString BuildSMSText(const QString &first, const QString &praticien,
                                   const QString &ligneDate, const QString &last);

// Every "." and every " " removed; nothing else is checked or added.
[[nodiscard]] QString CleanPhoneNumber(const QString &numero);

// A number of at least this many characters gets a reminder from the batch.
inline constexpr int LongueurMinimaleNumero = 10;

// The length hint of the messaging settings: the two texts and the two sample
// lines before any folding, without the three carriage returns.
struct LongueurIndication
{
    int longueur = 0;
    bool alerte = false;     // above 150: bold red
    quint32 couleur = 0;     // 0xBBGGRR: red 192 when alerte, else black
};
[[nodiscard]] LongueurIndication LongueurMessage(const QString &first, const QString &ligneAuteur,
                                                 const QString &ligneDate, const QString &last);
