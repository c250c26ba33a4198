#include "messaging/envoirappels.h"

#include "appointments/paquetrdv.h"
#include "messaging/gsmmodem.h"
#include "messaging/mailreminder.h"
#include "messaging/smstext.h"
#include "shell/base/config.h"
#include "shell/base/prompt.h"

#include <QCursor>
#include <QGuiApplication>

#include <algorithm>

namespace {

bool avecPointeur()
{
    return qobject_cast<QGuiApplication *>(QCoreApplication::instance()) != nullptr;
}

QString position(qsizetype index)
{
    return QString::number(index + 1) + u';';
}

} // namespace

ParametresEnvoi LireParametresEnvoi()
{
    ParametresEnvoi p;
    const QString mails = QStringLiteral("Mails");
    const QString sms = QStringLiteral("SMS");
    p.mailFrom = LireConfig(mails, QStringLiteral("From"), QString());
    p.smtp = LireConfig(mails, QStringLiteral("SMTP"), QString());
    p.mailSujet = LireConfig(mails, QStringLiteral("Subject"), QString());
    p.mailFirst = LireConfig(mails, QStringLiteral("First"), QString());
    p.mailLast = LireConfig(mails, QStringLiteral("Last"), QString());
    p.smsFirst = LireConfig(sms, QStringLiteral("First"),
                            QStringLiteral("Le secrétariat du Cabinet médical vous rappelle votre rendez-vous avec le"));
    p.smsLast = LireConfig(sms, QStringLiteral("Last"), QString());
    p.praticien1 = LireConfig(QStringLiteral("Praticien1"), QStringLiteral("Nom"), QStringLiteral("Praticien 1"));
    p.praticien2 = LireConfig(QStringLiteral("Praticien2"), QStringLiteral("Nom"), QStringLiteral("Praticien 2"));
    return p;
}

QString PraticienRappel(int labelId, const ParametresEnvoi &parametres)
{
    return QString::number(labelId).contains(QLatin1String("Praticien 1")) ? parametres.praticien1 : parametres.praticien2;
}

QString StatutEnvoi(const QString &mailErrors, const QString &smsErrors)
{
    const QString mail = mailErrors.isEmpty() ? QStringLiteral("Envois Mails OK") : QStringLiteral("Erreur Mail RdV :") + mailErrors;
    const QString sms = smsErrors.isEmpty() ? QStringLiteral("Envois SMS OK") : QStringLiteral("Erreur SMS RdV :") + smsErrors;
    return mail + QStringLiteral(" / ") + sms;
}

QString CleRappel(const Reminder &rappel)
{
    return rappel.key();
}

EnvoiRappels::EnvoiRappels(ReminderEngine &moteur, QObject *parent)
    : QObject(parent)
    , m_moteur(moteur)
{
    m_minuterie.setSingleShot(true);
    // The pause between reminders is a full second, never a little less.
    m_minuterie.setTimerType(Qt::PreciseTimer);
    connect(&m_minuterie, &QTimer::timeout, this, &EnvoiRappels::avancer);
}

EnvoiRappels::~EnvoiRappels()
{
    if (m_sablier && avecPointeur())
        QGuiApplication::restoreOverrideCursor();
}

void EnvoiRappels::demarrer(int lignes)
{
    if (BatchRunning())
        return;
    if (lignes <= 0) {
        emit statut(QStringLiteral("Pas de rappel à effectuer ! "));
        return;
    }
    emit statut(QString());
    if (!Prompt::confirmer(QStringLiteral("Envoi..."), QStringLiteral("Êtes-vous sur de vouloir envoyer tous les rappels ? "),
                           Prompt::Reponse::Oui))
        return;
    lancer();
}

void EnvoiRappels::lancer()
{
    if (BatchRunning())
        return;
    m_etape = Etape::InitModem;
    m_smsReady = false;
    m_mailErrors.clear();
    m_smsErrors.clear();
    m_raisons.clear();
    m_attentesMs = 0;
    m_mailsMs = 0;
    const int port = PortModem();
    m_modem = std::make_unique<GsmModem>(GsmModem::Copie::Envoi);
    // Without a modem the batch goes on with the mails alone, and says
    // nothing of it: the status shows "Envois SMS OK".
    planifier(m_modem->msComConnect(port) >= 1 ? Etape::InitModem : Etape::Lecture);
}

void EnvoiRappels::planifier(Etape etape, int delaiMs)
{
    m_etape = etape;
    m_minuterie.start(delaiMs);
}

void EnvoiRappels::avancer()
{
    switch (m_etape) {
    case Etape::InitModem:
        initialiserModem();
        break;
    case Etape::Lecture:
        lireEtPreparer();
        break;
    case Etape::Element:
        envoyerElement();
        break;
    case Etape::FinAttente:
        finAttente();
        break;
    case Etape::Fin:
        terminer();
        break;
    case Etape::Inactif:
        break;
    }
}

void EnvoiRappels::initialiserModem()
{
    m_smsReady = m_modem->InitMobile();
    GsmModem::restaurerPointeur();
    planifier(Etape::Lecture);
}

void EnvoiRappels::lireEtPreparer()
{
    m_parametres = LireParametresEnvoi();
    // The engine's list as it stands now is the batch; reminders that fall
    // due meanwhile wait for the next one.
    m_lot = m_moteur.ActiveReminders();
    m_pris.clear();
    m_ailleurs.clear();
    m_index = 0;
    m_doneIds = QStringLiteral(";");
    emit progression(0, int(m_lot.size()));
    planifier(Etape::Element);
}

bool EnvoiRappels::envoyerMail(const QString &body, const QString &praticien,
                               const QString &dateTexte, QString *raison)
{
    const std::optional<QString> mel = MelBody(body);
    if (!mel) {
        *raison = QStringLiteral("le rendez-vous n'a pas ses quatorze champs (pas d'adresse mail lisible)");
        return false;
    }
    // An address that is no address is no error: no mail goes.
    if (mel->isEmpty() || !mel->contains(u'@') || !mel->contains(u'.'))
        return true;
    QElapsedTimer chrono;
    chrono.start();
    const QString erreur = SendMailReminder(m_parametres.mailFrom, *mel, m_parametres.smtp, m_parametres.mailSujet,
                                            m_parametres.mailFirst, m_parametres.mailLast, dateTexte, praticien);
    m_mailsMs += chrono.elapsed();
    if (!erreur.isEmpty()) {
        *raison = QStringLiteral("mail à ") + *mel + QStringLiteral(" : ") + erreur;
        return false;
    }
    return true;
}

void EnvoiRappels::envoyerElement()
{
    if (m_index >= m_lot.size()) {
        planifier(Etape::Fin);
        return;
    }
    Reminder &rappel = m_lot[m_index];
    m_itemFailed = false;
    emit progression(int(m_index + 1), int(m_lot.size()));
    if (!m_moteur.Claim(rappel)) {
        // Another sender has it, or it was dismissed meanwhile.
        m_ailleurs.append(rappel);
        ++m_index;
        planifier(Etape::Element);
        return;
    }
    m_pris.append(rappel);

    const QString body = rappel.Event ? rappel.Event->Body() : QString();
    if (!body.contains(SeparateurRdv)) {
        // No packed patient: nothing to send, no pause.
        ++m_index;
        planifier(Etape::Element);
        return;
    }
    const QString praticien = PraticienRappel(rappel.Event->LabelID(), m_parametres);
    const QString dateTexte = TexteDateRendezVous(rappel.Event->StartDateTime());
    const QString rdv = QStringLiteral("RdV %1 : ").arg(m_index + 1);

    QString raison;
    if (!envoyerMail(body, praticien, dateTexte, &raison)) {
        m_mailErrors += position(m_index);
        m_raisons << rdv + raison;
        m_itemFailed = true;
    }
    if (m_smsReady) {
        const QString numero = CleanPhoneNumber(PortableBody(body).value_or(QString()));
        if (numero.size() >= LongueurMinimaleNumero) {
            const QString texte = BuildSMSText(m_parametres.smsFirst, praticien, dateTexte, m_parametres.smsLast);
            // The modem may have dropped out since the last message; what
            // the message itself gives decides.
            (void)m_modem->InitMobile();
            if (!m_modem->SendSMS(numero, texte)) {
                m_smsErrors += position(m_index);
                m_raisons << rdv + QStringLiteral("le modem n'a pas accepté le SMS pour le ") + numero;
                m_itemFailed = true;
            }
        }
    }

    if (avecPointeur() && !m_sablier) {
        QGuiApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
        m_sablier = true;
    }
    m_attente.start();
    planifier(Etape::FinAttente, PauseMs);
}

void EnvoiRappels::finAttente()
{
    m_attentesMs += m_attente.elapsed();
    if (m_sablier) {
        if (avecPointeur())
            QGuiApplication::restoreOverrideCursor();
        m_sablier = false;
    }
    if (!m_itemFailed)
        m_doneIds += CleRappel(m_lot.at(m_index)) + u';';
    ++m_index;
    planifier(Etape::Element);
}

void EnvoiRappels::rejeter()
{
    const QList<Reminder> actifs = m_moteur.ActiveReminders();
    const auto dansLot = [this](const Reminder &r) {
        const auto meme = [&r](const Reminder &l) { return l.sameAs(r); };
        return std::any_of(m_lot.begin(), m_lot.end(), meme) && std::none_of(m_ailleurs.begin(), m_ailleurs.end(), meme);
    };
    const bool sansErreur = m_mailErrors.isEmpty() && m_smsErrors.isEmpty();
    if (sansErreur && std::all_of(actifs.begin(), actifs.end(), dansLot)) {
        m_moteur.DismissAll();
        return;
    }
    // From the end, so that the positions still to come do not move. A
    // reminder that fell due during the batch was not sent: it stays.
    for (qsizetype i = actifs.size() - 1; i >= 0; --i) {
        const Reminder &r = actifs.at(i);
        const bool fait = sansErreur ? dansLot(r) : m_doneIds.contains(u';' + CleRappel(r) + u';');
        if (fait)
            m_moteur.Dismiss(int(i));
    }
}

void EnvoiRappels::terminer()
{
    m_etape = Etape::Inactif;
    rejeter();
    // What went out is dismissed by now, and what failed is for the next
    // batch: the claims have done their work.
    for (const Reminder &r : std::as_const(m_pris))
        m_moteur.Release(r);
    m_modem->msComDisconnect();
    m_modem.reset();
    GsmModem::restaurerPointeur();
    m_lot.clear();
    emit statut(StatutEnvoi(m_mailErrors, m_smsErrors));
    emit termine();
}
