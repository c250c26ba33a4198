#include "appointments/paquetrdv.h"
#include "calendar/calendardataprovider.h"
#include "calendar/reminderengine.h"
#include "messaging/envoirappels.h"
#include "messaging/mailreminder.h"
#include "messaging/smtpsink.h"
#include "shell/appstate.h"
#include "shell/base/config.h"
#include "shell/base/horloge.h"
#include "shell/base/prompt.h"
#include "shell/demarrage.h"
#include "shell/base/processus.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>

// A batch of reminders sent by mail only (no modem) to a local SMTP server:
// the whole batch, and the program's own share of it once the one-second
// pauses and the server's dialogue are taken away.
//
//   bench_rappels [reminders]      (100 by default; about as many seconds)

namespace {

class RepondeurOui final : public Prompt::Repondeur
{
public:
    Prompt::Reponse message(const Prompt::Message &) override { return Prompt::Reponse::Oui; }
};

const QDateTime kMaintenant(QDate(2026, 11, 23), QTime(8, 0));

} // namespace

int main(int argc, char *argv[])
{
    PreparerProcessus();
    QCoreApplication app(argc, argv);
    const int nombre = argc > 1 ? std::max(1, std::atoi(argv[1])) : 100;
    Horloge::fixer(kMaintenant);
    RepondeurOui oui;
    Prompt::installer(&oui);

    QTemporaryDir dossier;
    qputenv("TAVONEL_PROGRAM_DIR", QFile::encodeName(dossier.path()));
    QFile ini(dossier.filePath(QStringLiteral("Agenda.ini")));
    if (!ini.open(QIODevice::WriteOnly) || ini.write("[Agenda]\r\nRemindersManEnabled=Vrai\r\nMAILS=Oui\r\nCOM=0\r\n") < 0) {
        std::fprintf(stderr, "Agenda.ini ne s'écrit pas dans %s\n", qPrintable(dossier.path()));
        return 1;
    }
    ini.close();
    SmtpSink serveur;
    QString raison;
    if (!serveur.demarrer(&raison)) {
        std::fprintf(stderr, "le serveur SMTP local ne démarre pas : %s\n", qPrintable(raison));
        return 1;
    }

    AppState &etat = appState();
    Demarrage demarrage(etat, dossier.path());
    ParametresFenetre parametres;
    if (demarrage.initialiser(QString()) || demarrage.charger(parametres)) {
        std::fprintf(stderr, "l'agenda ne démarre pas dans %s\n", qPrintable(dossier.path()));
        return 1;
    }
    EcrireConfig(QStringLiteral("Mails"), QStringLiteral("SMTP"), serveur.adresse());
    EcrireConfig(QStringLiteral("Mails"), QStringLiteral("From"), QStringLiteral("secretariat@cabinet.example.org"));
    EcrireConfig(QStringLiteral("Mails"), QStringLiteral("Subject"), QString::fromUtf16(kSujetMailDefaut));
    EcrireConfig(QStringLiteral("Mails"), QStringLiteral("First"), QString::fromUtf16(kPremierTexteMailDefaut));
    EcrireConfig(QStringLiteral("Mails"), QStringLiteral("Last"), DernierTexteMailDefaut());

    // Appointments of the morning, each with its patient's address, all due.
    CalendarDataProvider &agenda = *etat.Calendrier;
    for (int i = 0; i < nombre; ++i) {
        const QDateTime debut = kMaintenant.addSecs(3600 + 300 * i);
        const CalendarEventPtr e = agenda.CreateNewEvent(debut, debut.addSecs(900));
        ChampsRdv champs;
        champs[ChampRdv::Nom] = QStringLiteral("PATIENT %1").arg(i);
        champs[ChampRdv::Prenom] = QStringLiteral("Hélène");
        champs[ChampRdv::Mel] = QStringLiteral("patient%1@example.org").arg(i);
        e->setSubject(champs[ChampRdv::Nom]);
        e->setBody(PackerBody(champs));
        e->setIsReminder(true);
        e->setReminderMinutesBeforeStart(10080);
        agenda.AddEvent(e);
    }
    ReminderEngine &moteur = *etat.MoteurRappels;
    moteur.Poll();
    if (moteur.Count() != nombre) {
        std::fprintf(stderr, "%d rappels dus au lieu de %d\n", moteur.Count(), nombre);
        return 1;
    }

    // What composing the mails costs, to tell it from the server's dialogue.
    QElapsedTimer chrono;
    chrono.start();
    for (int i = 0; i < nombre; ++i)
        (void)ComposerHtmlRappel(QString::fromUtf16(kPremierTexteMailDefaut), QStringLiteral("Praticien 2"),
                                 QStringLiteral("Le lundi 23 novembre 2026 à 09H00 "), DernierTexteMailDefaut());
    const qint64 composition = chrono.elapsed();

    EnvoiRappels envoi(moteur);
    QString statut;
    QObject::connect(&envoi, &EnvoiRappels::statut, [&statut](const QString &s) { statut = s; });
    QEventLoop boucle;
    QObject::connect(&envoi, &EnvoiRappels::termine, &boucle, &QEventLoop::quit);
    chrono.restart();
    envoi.demarrer(nombre);
    boucle.exec();
    const qint64 total = chrono.elapsed();

    const qint64 dialogue = std::max<qint64>(0, envoi.mailsMs() - composition);
    const qint64 propre = total - envoi.attentesMs() - dialogue;
    std::printf("lot de %d rappels par mail : \"%s\", %lld mails reçus par le serveur, %d rappels restants\n", nombre,
                qPrintable(statut), static_cast<long long>(serveur.messages().size()), moteur.Count());
    std::printf("durée totale : %lld ms\n", static_cast<long long>(total));
    std::printf("pauses d'une seconde : %lld ms\n", static_cast<long long>(envoi.attentesMs()));
    std::printf("envoi des mails : %lld ms (composition %lld ms, dialogue SMTP %lld ms)\n",
                static_cast<long long>(envoi.mailsMs()), static_cast<long long>(composition), static_cast<long long>(dialogue));
    std::printf("part propre du programme (total - pauses - dialogue) : %lld ms, %.1f ms par rappel\n",
                static_cast<long long>(propre), double(propre) / nombre);
    const bool ok = statut == QLatin1String("Envois Mails OK / Envois SMS OK") && moteur.Count() == 0;
    // The store closes while the application is still there.
    demarrage.arreter(false);
    etat = AppState{};
    return ok ? 0 : 1;
}
