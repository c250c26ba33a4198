#pragma once

#include "messaging/smtpmail.h"

#include <QDate>
#include <QString>

// The reminder mail: a centred message in Arial, first text at 11 points,
// practitioner and date at 14, last text at 11 followed by an empty line,
// and the bold italic warning at 9 points. It is written as RTF, converted
// to HTML and sent over SMTP.

inline constexpr char16_t kNomExpediteurRappel[] = u"Rappel de Rendez-Vous";
inline constexpr char16_t kLigneNePasRepondre[] =
    u"Ne pas répondre : Aucune demande ne pourra être traitée en réponse à cet e-mail";

// Sample texts offered until the practice types its own (section "Mails").
inline constexpr char16_t kSujetMailDefaut[] = u"Rappel de votre Rendez-Vous";
inline constexpr char16_t kPremierTexteMailDefaut[] =
    u"Le secrétariat du Cabinet médical vous rappelle votre rendez-vous avec le";
[[nodiscard]] QString DernierTexteMailDefaut();
// The sample lines of a test mail: practitioner, and the date line of the
// given day at 18h:15.
inline constexpr char16_t kPraticienExemple[] = u"Docteur Xxxxxx YYYYYYYY";
[[nodiscard]] QString DateExempleMail(const QDate &jour);

// The RTF text of the message, in the form a rich-text control saves it:
// line ends ("\r\n", also a lone "\r" or "\n") in the texts become
// paragraph marks, accented letters escaped bytes of Windows-1252.
[[nodiscard]] QString ComposerRtfRappel(const QString &premier, const QString &praticien,
                                        const QString &dateTexte, const QString &dernier);

// The HTML body of the mail.
[[nodiscard]] QString ComposerHtmlRappel(const QString &premier, const QString &praticien,
                                         const QString &dateTexte, const QString &dernier);

// Sends one reminder mail. Returns an empty text when nothing went wrong,
// otherwise the reason in French (callers show their own message and may add
// it). The working file Html.htm in the program folder is written first; when
// it cannot be written nothing is sent and no error is returned.
[[nodiscard]] QString SendMailReminder(const QString &expediteur, const QString &destinataire,
                                       const QString &serveurSmtp, const QString &sujet,
                                       const QString &premier, const QString &dernier,
                                       const QString &dateTexte, const QString &praticien,
                                       const OptionsSmtp &options = {});
