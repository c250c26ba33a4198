#include "messaging/gsmmodem.h"

#include "messaging/operateurs.h"
#include "shell/appstate.h"
#include "shell/base/cp1252.h"
#include "shell/base/nombres.h"
#include "shell/base/profilini.h"
#include "shell/base/prompt.h"
#include "shell/base/support.h"

#include <QCoreApplication>
#include <QCursor>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QGuiApplication>

#include <climits>

using namespace std::chrono;

namespace {

milliseconds g_unite = GsmModem::DureeUniteNormale;
bool g_sablier = false;

bool AvecPointeur()
{
    return qobject_cast<QGuiApplication *>(QCoreApplication::instance()) != nullptr;
}

void Sablier()
{
    if (g_sablier)
        return;
    g_sablier = true;
    if (AvecPointeur())
        QGuiApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
}

void LaisserPasser()
{
    if (QCoreApplication::instance())
        QCoreApplication::processEvents(QEventLoop::AllEvents);
}

const QString Ok = QStringLiteral("OK");
const QString Erreur = QStringLiteral("ERROR");

QString SansOkFinal(QString texte)
{
    if (texte.endsWith(Ok))
        texte.chop(2);
    return texte;
}

} // namespace

EtatModem &etatModem()
{
    static EtatModem etat;
    return etat;
}

GsmModem::GsmModem(Copie copie, LigneSerie *ligne, QObject *parent)
    : QObject(parent)
    , m_copie(copie)
    , m_ligne(ligne)
{
    if (!m_ligne) {
        m_ligne = new LigneSerieQt(this);
        m_ligneAMoi = true;
    }
    connect(m_ligne, &LigneSerie::evenement, this, &GsmModem::surEvenement);
}

GsmModem::~GsmModem()
{
    if (m_attente)
        m_attente->quit();
    if (!m_ligneAMoi)
        disconnect(m_ligne, nullptr, this, nullptr);
}

void GsmModem::fixerDureeUnite(milliseconds duree)
{
    g_unite = duree;
}

milliseconds GsmModem::dureeUnite()
{
    return g_unite;
}

bool GsmModem::pointeurOccupe()
{
    return g_sablier;
}

void GsmModem::restaurerPointeur()
{
    if (!g_sablier)
        return;
    g_sablier = false;
    if (AvecPointeur())
        QGuiApplication::restoreOverrideCursor();
}

int GsmModem::msComConnect(int port)
{
    // The modem maker's connection program keeps the port for itself: ask it
    // to quit and give it time to let go.
    if (FermerFenetreExterne(QStringLiteral("Modem USB HSPA"))) {
        Sablier();
        Attendre(3.0);
        restaurerPointeur();
    }
    if (m_ligne->estOuverte())
        m_ligne->fermer();
    LaisserPasser();
    const QString peripherique = PeripheriqueModem(port);
    LaisserPasser();
    if (!m_ligne->ouvrir(peripherique)) {
        m_port = 0;
        return 0;
    }
    LaisserPasser();
    m_port = port;
    return port;
}

bool GsmModem::msComDisconnect()
{
    m_ligne->fermer();
    m_port = 0;
    return true;
}

bool GsmModem::estConnecte() const
{
    return m_ligne->estOuverte();
}

bool GsmModem::sendIt(const QString &command, const QString &expected, const QString &error, int timeUnits)
{
    EtatModem &etat = etatModem();
    Sablier();
    LaisserPasser();
    etat.ExpectedText = expected;
    etat.ErrorText = error;
    // Whatever is still on its way belongs to the previous command: the
    // buffer starts empty before the command leaves.
    etat.CommDone = false;
    etat.CommOk = false;
    etat.CommBuffer.clear();

    if (m_copie == Copie::Diagnostic)
        emit journal(QStringLiteral("Envoi de la commande: ") + command);
    const bool ecrit = m_ligne->ecrire(VersCp1252(command) + '\r');

    const milliseconds limite = g_unite * std::max(timeUnits, 0);
    QElapsedTimer chrono;
    chrono.start();
    if (!ecrit) {
        etat.CommDone = true;
        return false;
    }

    QEventLoop boucle;
    QTimer minuterie;
    minuterie.setSingleShot(true);
    minuterie.setTimerType(Qt::PreciseTimer);
    connect(&minuterie, &QTimer::timeout, &boucle, &QEventLoop::quit);
    m_attente = &boucle;
    while (!etat.CommDone) {
        const milliseconds reste = limite - milliseconds(chrono.elapsed());
        if (reste <= milliseconds(0)) {
            // The busy pointer stays: the caller decides what comes next.
            etat.CommDone = true;
            m_attente = nullptr;
            return false;
        }
        minuterie.start(reste);
        boucle.exec();
    }
    m_attente = nullptr;
    const bool resultat = etat.CommOk;
    restaurerPointeur();
    LaisserPasser();
    return resultat;
}

void GsmModem::surEvenement(int numero)
{
    EtatModem &etat = etatModem();
    if (m_copie == Copie::Envoi)
        etat.LastResponse.clear();
    if (numero != LigneSerie::EvenementReception)
        return;

    etat.CommBuffer += DepuisCp1252(m_ligne->toutLire());
    // The whole buffer is looked at, the modem's echo of the command
    // included; a ">" anywhere ends any wait with success.
    if (etat.CommBuffer.contains(etat.ExpectedText)) {
        etat.CommDone = true;
        etat.CommOk = true;
    } else if (etat.CommBuffer.contains(etat.ErrorText)) {
        etat.CommDone = true;
        etat.CommOk = false;
    } else if (etat.CommBuffer.contains(u'>')) {
        etat.CommDone = true;
        etat.CommOk = true;
    }

    if (m_copie == Copie::Envoi) {
        etat.LastResponse = etat.CommBuffer;
    } else {
        emit journal(QStringLiteral("-Réponse :"));
        if (!etat.CommBuffer.isEmpty())
            emit journal(QStringLiteral("--> ") + etat.CommBuffer);
        emit sortie(etat.CommBuffer);
    }
    if (etat.CommDone && m_attente)
        m_attente->quit();
}

bool GsmModem::InitMobile()
{
    EtatModem &etat = etatModem();
    if (!sendIt(QStringLiteral("AT"), Ok, Erreur, 2)) {
        Prompt::informer(QStringLiteral("Tavonel"), QStringLiteral("Pas de Mobile GSM trouvé"),
                         Prompt::Icone::Exclamation);
        restaurerPointeur();
        return false;
    }
    // A modem just plugged in needs a few seconds to register with its
    // network; after eight rounds it goes on, registered or not.
    for (int tour = 1; tour <= 8; ++tour) {
        if (!sendIt(QStringLiteral("AT+COPS?"), Ok, Erreur, 2))
            return false;
        if (GetOperatorName(etat.LastResponse) != QLatin1String("Inconnu"))
            break;
        Attendre(1.0);
    }
    // SMS-SUBMIT, validity one day, protocol 0, GSM 7-bit class 0.
    if (!sendIt(QStringLiteral("AT+CSMP=17,167,0,16"), Ok, Erreur, 2))
        return false;
    if (!sendIt(QStringLiteral("AT+CSCS=?"), Ok, Erreur, 2))
        return false;
    if (!etat.LastResponse.contains(QLatin1String("GSM")))
        return false;
    return sendIt(QStringLiteral("AT+CSCS=\"GSM\""), Ok, Erreur, 2);
}

bool GsmModem::SendSMS(const QString &number, const QString &text)
{
    if (!sendIt(QStringLiteral("AT+CMGS=\"") + number + u'"', QStringLiteral(">"), Erreur, 2))
        return false;
    const int unites = m_copie == Copie::Envoi ? 3 : 2;
    return sendIt(text + QChar(26), Ok, Erreur, unites);
}

bool GsmModem::getMobileInfo(InfosModem &infos)
{
    EtatModem &etat = etatModem();
    infos = InfosModem();
    etat.ModemHasGSM = false;
    const auto commande = [&](const QString &texte) {
        emit sortie(QString());
        return sendIt(texte, Ok, Erreur, 2);
    };

    if (!commande(QStringLiteral("AT"))) {
        Prompt::informer(QStringLiteral("Tavonel"), QStringLiteral("Pas de Modem GSM trouvé"),
                         Prompt::Icone::Exclamation);
        emit deconnexionDemandee();
        restaurerPointeur();
        return false;
    }
    if (commande(QStringLiteral("ATI")))
        infos.devType = getDevType(etat.CommBuffer);
    if (commande(QStringLiteral("AT+CGMI")))
        infos.manufacturer = getManufacturer(etat.CommBuffer);
    if (commande(QStringLiteral("AT+COPS?")))
        infos.provider = GetOperatorName(etat.CommBuffer);
    commande(QStringLiteral("AT+COPN=?"));
    if (commande(QStringLiteral("AT+IPR?")))
        infos.bauds = GetBauds(etat.CommBuffer);
    commande(QStringLiteral("AT+CSCA?"));
    commande(QStringLiteral("AT+CSDH?"));
    commande(QStringLiteral("AT+CSMP?"));
    commande(QStringLiteral("AT+CSMP=17,167,0,16"));
    commande(QStringLiteral("AT+CSMP?"));
    if (commande(QStringLiteral("AT+CSCS=?"))) {
        bool gsm = false;
        infos.protocoles = GetProtocles(etat.CommBuffer, &gsm);
        if (gsm)
            etat.ModemHasGSM = true;
    }
    commande(QStringLiteral("AT+CSCS=\"GSM\""));
    return true;
}

QString EnvoyerSMSSeul(GsmModem &modem, int port, const QString &numero, const QString &texte)
{
    if (modem.msComConnect(port) == 0)
        return QStringLiteral("Port Com %1 inaccessible").arg(port);
    QString statut;
    if (!modem.InitMobile())
        statut = QStringLiteral("Echec d'accès au Mobile GSM");
    else if (!modem.SendSMS(numero, texte))
        statut = QStringLiteral("Echec de l'envoi du SMS");
    else
        statut = QStringLiteral("Envoi du SMS : OK");
    modem.msComDisconnect();
    return statut;
}

int PortModem()
{
    const qint64 port = LireEntier(LireAgendaIni(appState().AgendaName, QStringLiteral("COM"), QStringLiteral("0")));
    return port > 0 && port <= INT_MAX ? static_cast<int>(port) : 0;
}

QString getManufacturer(const QString &reponse)
{
    QString texte = reponse;
    texte.remove(QStringLiteral("AT+CGMI"));
    // The line end is looked for past the answer's own leading one.
    qsizetype fin = texte.indexOf(u'\r', 2);
    if (fin < 0)
        fin = texte.indexOf(u'\n');
    if (fin >= 0)
        texte.truncate(fin);
    return SansControles(SansOkFinal(texte));
}

QString getDevType(const QString &reponse)
{
    // All the lines of the answer are shown, the echo included.
    return SansControles(SansOkFinal(reponse));
}

QString GetBauds(const QString &reponse)
{
    QString texte = reponse;
    texte.remove(Ok);
    texte.remove(QStringLiteral("+IPR: "));
    return SansControles(texte + QStringLiteral(" Bauds"));
}

QString GetProtocles(const QString &reponse, bool *gsm)
{
    QString texte = reponse;
    texte.remove(Ok);
    texte.remove(QStringLiteral("+CSCS: ("));
    texte.remove(u')');
    if (gsm)
        *gsm = texte.contains(QLatin1String("GSM"));
    return SansControles(texte);
}

QList<int> RechercherPorts(bool depuisBouton, const std::function<void(const QString &)> &statut)
{
    const auto dire = [&](const QString &texte) {
        if (statut)
            statut(texte);
    };
    if (depuisBouton)
        dire(QStringLiteral("Recherche des ports Com..."));
    dire(QStringLiteral("Rechercher des Ports Com Disponibles..."));
    QList<int> ports;
    for (int n = 1; n <= 16; ++n) {
        if (PortExists(n)) {
            ports.append(n);
            dire(QStringLiteral("Com %1 trouvé").arg(n));
        }
    }
    dire(QStringLiteral("%1 Port(s) COM trouvé(s)").arg(ports.size()));
    return ports;
}
