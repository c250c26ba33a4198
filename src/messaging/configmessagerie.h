#pragma once

#include <QString>
#include <QStringList>

// The reminder messaging settings as the messaging settings dialog edits
// them: the mail texts and server (table Ini, section "Mails"), the SMS texts
// (section "SMS"), the test address and number, and the modem's port (key
// COM of the agenda's section of Agenda.ini).

// The sender offered until the practice types its own.
inline constexpr char16_t kExpediteurMailDefaut[] = u"ne-pas-repondre@cabinet-medical.example";

struct ConfigMessagerie
{
    QString from;      // Mails/From
    QString smtp;      // Mails/SMTP
    QString subject;   // Mails/Subject
    QString mailFirst; // Mails/First
    QString mailLast;  // Mails/Last
    QString mailTest;  // Mails/MailTest
    QString smsFirst;  // SMS/First
    QString smsLast;   // SMS/Last
    QString smsTest;   // SMS/SMSTest
    QString com;       // Agenda.ini, COM
};

// The settings with the defaults that the dialog shows where nothing is stored.
[[nodiscard]] ConfigMessagerie LireConfigMessagerie();

// Writes every key: table Ini in one transaction, then COM in Agenda.ini.
// False with the reason in French when either refuses; nothing is checked
// beforehand.
bool EcrireConfigMessagerie(const ConfigMessagerie &config, QString *erreur);

// The SMTP servers of the main French internet providers, offered in the
// server list; any other name may be typed.
[[nodiscard]] const QStringList &ServeursSmtpFournisseurs();

// The practitioner line of the test messages and of the length hint: the
// name of practitioner 1, or the sample name. (The date line is
// DateExempleMail of today.)
[[nodiscard]] QString LignePraticienExemple();

// What stops a test mail before anything is sent.
enum class DefautMailTest { Aucun, Adresse, Serveur };
[[nodiscard]] DefautMailTest VerifierMailTest(const QString &adresse, const QString &serveur);

// Sends the sample reminder of the settings to the test address and returns
// the text of the "Test" box: success, or failure followed by the reason.
[[nodiscard]] QString EnvoyerMailTest(const ConfigMessagerie &config, const QString &lignePraticien,
                                      const QString &ligneDate, bool *reussi = nullptr);
