#include "messaging/rappelsautomatiques.h"

#include "calendar/reminderengine.h"
#include "messaging/envoirappels.h"
#include "shell/base/horloge.h"
#include "shell/journal.h"

#include <QEventLoop>

BilanRappelsAuto EnvoyerRappelsAutomatiques(CalendarDataProvider &calendrier, const QString &agendaName,
                                            const QString &cheminLog)
{
    BilanRappelsAuto bilan;
    ReminderEngine moteur(&calendrier);
    // One reading of the store is the run's list; the periodic poll of a
    // station has no use here.
    moteur.setInterval(3600 * 1000);
    moteur.setEnabled(true);
    // A poll waits half a second for a store held by a station: a busy
    // moment of the practice is waited out for a while.
    for (int essai = 0; essai < 40 && !bilan.lu; ++essai)
        bilan.lu = moteur.Poll();
    if (!bilan.lu) {
        bilan.statut = QStringLiteral("Agenda occupé par un autre poste : aucun rappel envoyé");
        bilan.raisons << bilan.statut;
    } else if ((bilan.dus = moteur.Count()) == 0) {
        bilan.statut = QStringLiteral("Pas de rappel à effectuer ! ");
    } else {
        EnvoiRappels envoi(moteur);
        QEventLoop boucle;
        QObject::connect(&envoi, &EnvoiRappels::statut, &boucle, [&bilan](const QString &texte) { bilan.statut = texte; });
        QObject::connect(&envoi, &EnvoiRappels::termine, &boucle, &QEventLoop::quit);
        envoi.lancer();
        if (envoi.BatchRunning())
            boucle.exec();
        bilan.laissesAilleurs = envoi.laissesAilleurs();
        bilan.raisons = envoi.raisons();
    }
    moteur.setEnabled(false);
    EcrireLigneJournal(cheminLog, LigneStatutRappels(agendaName, Horloge::maintenant(), bilan.statut));
    return bilan;
}
