#include "messaging/diagnosticmodem.h"

#include "messaging/gsmmodem.h"
#include "messaging/serialline.h"
#include "messaging/smstext.h"
#include "shell/base/prompt.h"

#include <QRegularExpression>

bool EnvoyerSMSTest(GsmModem &modem, const QString &first, const QString &ligneAuteur, const QString &ligneDate,
                    const QString &last, const QString &numero, const std::function<void(const QString &)> &statut)
{
    const auto dire = [&](const QString &texte) {
        if (statut)
            statut(texte);
    };
    dire(QStringLiteral("Envoi du Message... "));
    const QChar cr(u'\r');
    // Not cut: a test may go through where a reminder of the same texts
    // would lose its end.
    const QString texte = FoldSMSText(first + cr + ligneAuteur + cr + ligneDate + cr + last);
    if (!modem.sendIt(QStringLiteral("AT+CMGF=1"), QStringLiteral("OK"), QStringLiteral("ERROR"), 2)) {
        dire(QStringLiteral("Une erreur s'est produite lors de la configuration du Modem..."));
        return false;
    }
    dire(QStringLiteral("Envoi en cours au ") + numero + QStringLiteral("..."));
    if (modem.SendSMS(numero, texte)) {
        dire(QStringLiteral("Envoi effectué."));
        return true;
    }
    const QString echec = QStringLiteral("Une erreur s'est produite lors de l'envoi du message...");
    dire(echec);
    // No run-time error stands behind a refused message: the box has the
    // sentence alone.
    Prompt::informer(QStringLiteral("Tavonel"), echec, Prompt::Icone::Exclamation);
    return false;
}

QString StatutConnexion(int port, bool modemHasGsm)
{
    return QStringLiteral("...Connecté au port COM") + QString::number(port)
        + (modemHasGsm ? QStringLiteral(" : Le modem possède la fonction GSM-SMS.")
                       : QStringLiteral(" : Le modem ne possède PAS la fonction GSM-SMS."));
}

namespace {

// The boxes of the driver go to the command's error output.
class RepondeurFlux final : public Prompt::Repondeur
{
public:
    explicit RepondeurFlux(QTextStream &err)
        : m_err(err)
    {
    }
    Prompt::Reponse message(const Prompt::Message &m) override
    {
        m_err << m.texte << '\n';
        m_err.flush();
        return m.parDefaut;
    }

private:
    QTextStream &m_err;
};

// A multi-line answer on one line of the terminal.
QString SurUneLigne(const QString &texte)
{
    static const QRegularExpression finsDeLigne(QStringLiteral("[\\x00-\\x0D]+"));
    return QString(texte).replace(finsDeLigne, QStringLiteral(" | "));
}

} // namespace

int VerifierModem(int port, QTextStream &out, QTextStream &err)
{
    RepondeurFlux repondeur(err);
    Prompt::Installation installation(&repondeur);

    GsmModem modem(GsmModem::Copie::Diagnostic);
    const QString peripherique = PeripheriqueModem(port);
    out << "Port COM" << port << " : " << (peripherique.isEmpty() ? QStringLiteral("(aucun)") : peripherique)
        << '\n';
    out.flush();
    if (modem.msComConnect(port) == 0) {
        err << "Désolé, connexion impossible. Vérifiez la configuration des ports et vos connections avec le "
               "Modem GSM.\n";
        const QString raison = modem.ligne().erreur();
        if (!raison.isEmpty())
            err << "(" << raison << ")\n";
        return 1;
    }
    InfosModem infos;
    const bool repond = modem.getMobileInfo(infos);
    modem.msComDisconnect();
    GsmModem::restaurerPointeur();
    if (!repond)
        return 1;

    out << "Type : " << SurUneLigne(infos.devType) << '\n'
        << "Fabricant : " << SurUneLigne(infos.manufacturer) << '\n'
        << "Opérateur : " << SurUneLigne(infos.provider) << '\n'
        << "Vitesse : " << SurUneLigne(infos.bauds) << '\n'
        << "Jeux de caractères : " << SurUneLigne(infos.protocoles) << '\n'
        << "Mode texte GSM : " << (etatModem().ModemHasGSM ? "disponible" : "non disponible") << '\n'
        << StatutConnexion(port, etatModem().ModemHasGSM) << '\n';
    out.flush();
    if (!etatModem().ModemHasGSM) {
        err << "Le modem ne possède PAS la fonction GSM-SMS.\n";
        return 1;
    }
    return 0;
}
