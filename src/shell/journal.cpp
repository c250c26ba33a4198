#include "shell/journal.h"

#include "shell/appstate.h"
#include "shell/base/cp1252.h"
#include "shell/base/fichierspartages.h"
#include "shell/base/horloge.h"
#include "shell/base/support.h"

#include <QFile>

#include <fcntl.h>

namespace {

constexpr int LargeurAgenda = 30;
// Names tried in one call: 0 to 200.
constexpr int DernierEssai = 200;

QString texteAction(qint16 action)
{
    switch (action) {
    case JournalNouveau:
        return QStringLiteral("Nouveau     ");
    case JournalModification:
        return QStringLiteral("Modification");
    case JournalEffacement:
        return QStringLiteral("Effacement  ");
    default:
        return {};
    }
}

bool verrouiller(int descripteur, short genre)
{
    // Open-file-description locks: they conflict between two openings of the
    // same file even within one process, and go over network shares as
    // byte-range locks.
    struct flock f = {};
    f.l_type = genre;
    f.l_whence = SEEK_SET;
    f.l_start = 0;
    f.l_len = 0; // the whole file, however long it grows
    return ::fcntl(descripteur, F_OFD_SETLK, &f) == 0;
}

} // namespace

VerrouJournal::VerrouJournal(int descripteur)
    : m_descripteur(descripteur)
    , m_obtenu(descripteur >= 0 && verrouiller(descripteur, F_WRLCK))
{
}

VerrouJournal::~VerrouJournal()
{
    if (m_obtenu)
        verrouiller(m_descripteur, F_UNLCK);
}

QString LigneJournal(const QString &agendaName, const CalendarEvent &event, qint16 action)
{
    const QString separateur = QStringLiteral(" | ");
    QString ligne = agendaName.leftJustified(LargeurAgenda, u' ', true);
    ligne += separateur + event.StartDateTime().toString(QStringLiteral("dd/MM/yyyy HH:mm:ss"));
    ligne += separateur + texteAction(action);
    ligne += separateur + (event.IsMeeting() ? QStringLiteral("Déjà venu") : QString(9, u' '));
    ligne += separateur + (event.IsPrivate() ? QStringLiteral("Privé") : QString(5, u' '));
    ligne += separateur + event.Subject();
    ligne += separateur + event.Location();
    ligne += separateur;
    return ligne;
}

QString NomFichierJournal(const QDate &jour, int n)
{
    return jour.toString(QStringLiteral("yyyyMMdd")) + u'_' + QString::number(n) + QStringLiteral(".txt");
}

QString LigneStatutRappels(const QString &agendaName, const QDateTime &moment, const QString &statut)
{
    const QString separateur = QStringLiteral(" | ");
    return agendaName.leftJustified(LargeurAgenda, u' ', true) + separateur
           + moment.toString(QStringLiteral("dd/MM/yyyy HH:mm:ss")) + separateur
           + QStringLiteral("Rappels").leftJustified(12) + separateur + statut + separateur;
}

QString EcrireJournal(const QString &cheminLog, const QString &agendaName, const CalendarEvent &event, qint16 action)
{
    return EcrireLigneJournal(cheminLog, LigneJournal(agendaName, event, action));
}

QString EcrireLigneJournal(const QString &cheminLog, const QString &ligne)
{
    if (cheminLog.isEmpty())
        return {};
    const QDate aujourdhui = Horloge::aujourdhui();
    const QString dossier = AjouterSlash(AjouterSlash(cheminLog) + aujourdhui.toString(QStringLiteral("yyyy")));
    CreerDossiers(dossier);

    // The line is built once, whatever the number of tries.
    const QByteArray octets = VersCp1252(ligne + QStringLiteral("\r\n"));
    for (int n = 0; n <= DernierEssai; ++n) {
        QFile fichier(dossier + NomFichierJournal(aujourdhui, n));
        if (!fichier.open(QIODevice::WriteOnly | QIODevice::Append))
            continue;
        // A file just made is shared by the group only (patient names).
        if (fichier.size() == 0)
            PartagerDescripteur(fichier.handle());
        const VerrouJournal verrou(fichier.handle());
        if (!verrou.obtenu())
            continue; // another workstation is writing this file
        if (fichier.write(octets) == octets.size() && fichier.flush())
            return fichier.fileName();
    }
    return {};
}

void EcrireJournal(const CalendarEventPtr &event, qint16 action)
{
    if (!event)
        return;
    const AppState &etat = appState();
    EcrireJournal(etat.CheminLog, etat.AgendaName, *event, action);
}
