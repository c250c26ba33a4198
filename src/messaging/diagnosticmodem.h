#pragma once

#include <QString>
#include <QTextStream>

#include <functional>

class GsmModem;

// The modem checks of the messaging settings, without their window: the test
// message and the status line after connecting, and the command-line check of
// tavonel-admin.

// The test message: First, the sample practitioner line, the sample date line
// and Last joined by carriage returns and folded, not cut; "AT+CMGF=1" puts
// the modem in text mode first; the number goes as typed. statut receives the
// status texts in turn. True when the modem took the message; on failure the
// box "Une erreur s'est produite lors de l'envoi du message..." has been shown.
bool EnvoyerSMSTest(GsmModem &modem, const QString &first, const QString &ligneAuteur, const QString &ligneDate,
                    const QString &last, const QString &numero, const std::function<void(const QString &)> &statut);

// The status once the identity has been read.
[[nodiscard]] QString StatutConnexion(int port, bool modemHasGsm);

// tavonel-admin modem-check PORT: opens port PORT, runs the identity sequence
// and prints what it found. 0 when the modem answers and offers the GSM
// character set; 1 otherwise, with the reason in French on err.
int VerifierModem(int port, QTextStream &out, QTextStream &err);
