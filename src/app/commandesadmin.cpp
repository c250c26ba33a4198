#include "app/commandesadmin.h"

#include "cipher/encryptx.h"
#include "messaging/diagnosticmodem.h"

namespace {

void usage(QTextStream &err)
{
    err << "Usage : tavonel-admin COMMANDE [ARGUMENTS]\n"
           "  launch-arg N [TEXTE]   argument de lancement qui ouvre l'agenda N\n"
           "  decipher HEX           texte en clair d'un argument de lancement\n"
           "  modem-check PORT       interroge le modem GSM du port PORT (numéro COM)\n";
}

} // namespace

int ExecuterCommandeAdmin(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    const QString commande = arguments.value(0);
    if (commande == QLatin1String("launch-arg")) {
        bool ok = false;
        const int n = arguments.value(1).toInt(&ok);
        if (!ok || n < 0) {
            err << "launch-arg : numéro d'agenda attendu (entier positif).\n";
            return 2;
        }
        QString texte = QString::number(n);
        if (arguments.size() > 2)
            texte += u';' + arguments.mid(2).join(u' ');
        out << EncoderArgument(texte) << '\n';
        return 0;
    }
    if (commande == QLatin1String("decipher")) {
        if (arguments.size() != 2) {
            err << "decipher : un argument hexadécimal est attendu.\n";
            return 2;
        }
        out << DecoderArgument(arguments.at(1)) << '\n';
        return 0;
    }
    if (commande == QLatin1String("modem-check")) {
        bool ok = false;
        const int port = arguments.value(1).toInt(&ok);
        if (arguments.size() != 2 || !ok || port < 1) {
            err << "modem-check : numéro de port attendu (1, 2, ...).\n";
            return 2;
        }
        return VerifierModem(port, out, err);
    }
    usage(err);
    return commande.isEmpty() || commande == QLatin1String("--help") ? 0 : 2;
}
