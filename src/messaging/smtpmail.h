#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

// Mail over SMTP without authentication, with an HTML body. The transfer is
// synchronous for the caller: it returns once the server has taken the
// message or refused it, with bounded waits so that a dead server never
// hangs the program.

struct MessageMail
{
    QString expediteur;    // address only
    QString nomExpediteur; // display name of the sender
    QString destinataire;  // address only
    QString sujet;
    QString html;          // the body as it is sent
};

struct OptionsSmtp
{
    int delaiConnexionMs = 15000; // to reach the server
    int delaiTotalMs = 60000;     // for the whole dialogue
};

// "host", "host:port" or "[v6 address]:port"; port 25 when none is given.
struct ServeurSmtp
{
    QString hote;
    int port = 25;
};
[[nodiscard]] ServeurSmtp LireServeurSmtp(const QString &texte);

// A header value as RFC 2047 encoded words when it holds anything beyond
// printable ASCII, otherwise as it is. Long values are folded.
[[nodiscard]] QByteArray EncoderEnTete(const QString &valeur);

// Quoted-printable with CRLF line ends and lines of at most 76 characters.
[[nodiscard]] QByteArray EncoderQuotedPrintable(const QByteArray &octets);

// The whole message text: headers (Date, From with display name, To,
// Subject, Message-ID, MIME) and the HTML body in UTF-8, quoted-printable.
[[nodiscard]] QByteArray ComposerMessageMail(const MessageMail &message, const QDateTime &date,
                                             const QString &idMessage);

// Sends the message through the server ("host[:port]"). Returns an empty
// text when the server took it, otherwise the reason in French. Called from
// the interface thread, it keeps the event loop running for timers and
// painting (not for user input) while the transfer runs on a worker thread.
[[nodiscard]] QString EnvoyerMailSmtp(const QString &serveur, const MessageMail &message,
                                      const OptionsSmtp &options = {});
