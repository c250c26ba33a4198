#include "app/commandesadmin.h"

#include "appointments/controlemiroir.h"
#include "appointments/agendaical.h"
#include "appointments/demo.h"
#include "appointments/editionrdv.h"
#include "appointments/miroir.h"
#include "appointments/paquetrdv.h"
#include "calendar/calendardataprovider.h"
#include "calendar/controlestore.h"
#include "calendar/reminderengine.h"
#include "cipher/encryptx.h"
#include "messaging/diagnosticmodem.h"
#include "messaging/gsmmodem.h"
#include "messaging/mailreminder.h"
#include "messaging/rappelsautomatiques.h"
#include "patients/gestiontype.h"
#include "patients/liaisons.h"
#include "patients/recherchepatients.h"
#include "patients/schemapatients.h"
#include "shell/appstate.h"
#include "shell/base/basesqlite.h"
#include "shell/base/config.h"
#include "shell/base/dossiers.h"
#include "shell/base/fichierspartages.h"
#include "shell/base/horloge.h"
#include "shell/base/profilini.h"
#include "shell/base/support.h"
#include "shell/demarrage.h"
#include "shell/sauvegarde.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QRegularExpression>
#include <QSaveFile>
#include <QThread>

namespace {

void usage(QTextStream &err)
{
    err << "Usage : tavonel-admin COMMANDE [ARGUMENTS]\n"
           "  launch-arg N [TEXTE]   argument de lancement qui ouvre l'agenda N\n"
           "  decipher HEX           texte en clair d'un argument de lancement\n"
           "  modem-check PORT       interroge le modem GSM du port PORT (numéro COM)\n"
           "  test-mail --smtp SERVEUR[:PORT] --from ADRESSE --to ADRESSE\n"
           "                         envoie un rappel d'exemple par ce serveur\n"
           "  search-patients agenda|linked NOM [PRENOM]\n"
           "                         recherche de patients de l'agenda par défaut, dans sa base\n"
           "                         ou dans les bases liées (Path1 à Path4 d'Agenda.ini)\n"
           "  store-check DOSSIER [--patients DOSSIER2] [--repair]\n"
           "                         compte les rendez-vous de DOSSIER/Events.mdb, vérifie les séries et\n"
           "                         les copies de Patients.mdb (de DOSSIER2, par défaut DOSSIER) ;\n"
           "                         --repair écrit les copies manquantes et efface les orphelines\n"
           "  book-test DOSSIER N [POSTE [PAUSE_MS]]\n"
           "                         démarre comme un poste sur DOSSIER et y réserve N rendez-vous d'essai\n"
           "                         (essai d'un dossier partagé : à faire sur un dossier d'essai)\n"
           "  hold-lock FICHIER SECONDES\n"
           "                         tient la base FICHIER verrouillée, comme un poste en pleine écriture\n"
           "  rappels DOSSIER [--agenda N]\n"
           "                         envoie les rappels dus de l'agenda (SMS et mails), comme le bouton\n"
           "                         d'envoi de la fenêtre des rappels, sans personne devant l'écran\n"
           "  sauvegarde DOSSIER [--agenda N]\n"
           "                         copie Events.mdb, Config.mdb et Patients.mdb de l'agenda dans un dossier\n"
           "                         daté sous CheminSauve (section Sauvegarge d'Agenda.ini), garde les 30\n"
           "                         dernières ; les postes peuvent rester ouverts\n"
           "  restaurer DOSSIER SAUVEGARDE [--agenda N]\n"
           "                         vérifie la sauvegarde puis la remet en place (les bases d'avant sont\n"
           "                         d'abord sauvegardées)\n"
           "  ical DOSSIER --praticien N [--semaines K] [--depuis AAAA-MM-JJ] [--noms] [--sortie FICHIER]\n"
           "                         [--agenda A]  écrit les rendez-vous du praticien N (1 ou 2) pour K semaines\n"
           "                         (4 par défaut) en iCalendar, pour le téléphone ; patients réduits à leurs\n"
           "                         initiales sauf avec --noms ; par défaut dans DOSSIER/PraticienN.ics\n"
           "  demo DOSSIER [AAAA-MM-JJ]\n"
           "                         crée dans DOSSIER un agenda de démonstration rempli pour la semaine\n"
           "                         du jour donné (par défaut aujourd'hui)\n";
}

// Sends the sample reminder of the configuration dialog, so that an
// installer can check the mail server without opening the program.
int CommandeTestMail(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    QString serveur;
    QString expediteur;
    QString destinataire;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &option = arguments.at(i);
        const QString valeur = arguments.value(i + 1);
        if (option == QLatin1String("--smtp"))
            serveur = valeur;
        else if (option == QLatin1String("--from"))
            expediteur = valeur;
        else if (option == QLatin1String("--to"))
            destinataire = valeur;
        else {
            err << "test-mail : option inconnue " << option << ".\n";
            return 2;
        }
        ++i;
    }
    if (serveur.trimmed().isEmpty() || expediteur.trimmed().isEmpty() || destinataire.trimmed().isEmpty()) {
        err << "test-mail : --smtp, --from et --to sont attendus.\n";
        return 2;
    }
    if (!destinataire.contains(u'@')) {
        err << "test-mail : l'adresse du destinataire doit contenir \"@\".\n";
        return 2;
    }

    const QString erreur = SendMailReminder(expediteur, destinataire, serveur, QString::fromUtf16(kSujetMailDefaut),
                                            QString::fromUtf16(kPremierTexteMailDefaut), DernierTexteMailDefaut(),
                                            DateExempleMail(Horloge::aujourdhui()),
                                            QString::fromUtf16(kPraticienExemple));
    if (!erreur.isEmpty()) {
        err << "L'envoi ne s'est pas correctement déroulé. Veuillez vérifier vos paramètres.\n" << erreur << '\n';
        return 1;
    }
    // Without its working file the reminder is silently not sent; the
    // program says nothing then, but an installer must know.
    if (!FichierExiste(DossierProgramme() + QStringLiteral("Html.htm"))) {
        err << "Aucun mail n'a été envoyé : le fichier de travail Html.htm ne peut pas être écrit dans "
            << DossierProgramme() << ".\n";
        return 1;
    }
    out << "L'envoi s'est correctement déroulé. Veuillez consulter votre boite mail pour vérification.\n";
    return 0;
}

// The patient search of the default agenda, as the search dialogs run it:
// one line a row, the seven columns of the grid separated by tabs.
int rechercherPatients(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    const QString ou = arguments.value(1);
    if ((ou != QLatin1String("agenda") && ou != QLatin1String("linked")) || arguments.size() < 3 || arguments.size() > 4) {
        err << "search-patients : agenda|linked NOM [PRENOM] attendu.\n";
        return 2;
    }
    AppState etat;
    etat.AgendaName = DefaultAgendaName;
    etat.CheminBaseAgenda = AjouterSlash(
        LireIni(QStringLiteral("Base"), QStringLiteral("BasePatientAG"), DossierProgramme(), CheminAgendaIni()));
    LireLiaisons(etat);
    ResultatRecherche resultat;
    const std::optional<ErreurRecherche> erreur =
        ou == QLatin1String("linked") ? RechercheBasesLiees(etat, arguments.at(2), arguments.value(3), resultat)
                                      : RechercheBaseAgenda(etat, arguments.at(2), arguments.value(3), resultat);
    if (erreur) {
        err << "Erreur " << erreur->numero << " lors de la recherche d'une fiche\n" << erreur->description << '\n';
        return 1;
    }
    for (qsizetype i = 0; i < resultat.size(); ++i) {
        const LigneRecherche &l = resultat.ligne(i);
        out << l.Base << '\t' << l.Nom << '\t' << l.Prenom << '\t' << TexteDateBase(l.DateNaissance).toString() << '\t'
            << TexteDateBase(l.DerniereVisite).toString() << '\t' << l.Numero.toString() << '\t' << l.Agenda.toString()
            << '\n';
    }
    out << resultat.size() << " patients\n";
    return 0;
}

// A demonstration agenda in a program folder of its own, for the week of the
// given day.
int creerDemo(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    if (arguments.size() < 2 || arguments.size() > 3) {
        err << "demo : DOSSIER [AAAA-MM-JJ] attendu.\n";
        return 2;
    }
    QDate jour = Horloge::aujourdhui();
    if (arguments.size() == 3) {
        jour = QDate::fromString(arguments.at(2), Qt::ISODate);
        if (!jour.isValid()) {
            err << "demo : la date " << arguments.at(2) << " n'est pas au format AAAA-MM-JJ.\n";
            return 2;
        }
    }
    BilanDemo bilan;
    if (const auto erreur = CreerDemo(arguments.at(1), jour, &bilan)) {
        err << *erreur << '\n';
        return 1;
    }
    out << "Agenda de démonstration créé dans " << AjouterSlash(arguments.at(1)) << " : " << bilan.regles
        << " règles, " << bilan.patients << " patients, " << bilan.rendezVous << " rendez-vous (semaine du lundi "
        << bilan.lundi.toString(QStringLiteral("dd/MM/yyyy")) << ").\n";
    return 0;
}

// The mirror part of store-check.
int controlerCopies(const QString &dossier, const QString &dossierPatients, bool reparer, QTextStream &out, QTextStream &err)
{
    if (!QFileInfo::exists(CheminPatientsMdb(AjouterSlash(dossierPatients))))
        return 0;
    const ControleMiroir m = ControlerMiroir(dossier, dossierPatients, reparer);
    if (!m.ouvert) {
        err << m.erreur << '\n';
        return 2;
    }
    auto liste = [](const QList<int> &cles) {
        QStringList l;
        for (qsizetype i = 0; i < cles.size() && i < 20; ++i)
            l << QString::number(cles.at(i));
        return l.join(QStringLiteral(", ")) + (cles.size() > 20 ? QStringLiteral(", ...") : QString());
    };
    out << "Copies dans Patients.mdb : " << m.copies << " (rendez-vous de patients : " << m.attendues << ")\n";
    if (!m.manquantes.isEmpty())
        out << "Problème : " << m.manquantes.size() << " rendez-vous sans copie dans Patients.mdb (" << liste(m.manquantes) << ")\n";
    if (!m.orphelines.isEmpty())
        out << "Problème : " << m.orphelines.size() << " copies orphelines dans Patients.mdb (" << liste(m.orphelines) << ")\n";
    if (reparer) {
        out << "Réparation : " << m.ecrites << " copies écrites, " << m.effacees << " copies effacées.\n";
        if (!m.erreur.isEmpty()) {
            err << m.erreur << '\n';
            return 1;
        }
        return m.ecrites == m.manquantes.size() && m.effacees == m.orphelines.size() ? 0 : 1;
    }
    return m.sain() ? 0 : 1;
}

int controlerStore(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    QString dossier;
    QString patients;
    bool reparer = false;
    bool compris = true;
    for (qsizetype i = 1; i < arguments.size() && compris; ++i) {
        const QString &a = arguments.at(i);
        if (a == QLatin1String("--repair"))
            reparer = true;
        else if (a == QLatin1String("--patients") && i + 1 < arguments.size())
            patients = arguments.at(++i);
        else if (dossier.isEmpty() && !a.startsWith(QLatin1String("--")))
            dossier = a;
        else
            compris = false;
    }
    if (dossier.isEmpty() || !compris) {
        err << "store-check : le dossier de Events.mdb est attendu.\n";
        return 2;
    }
    const ControleStore c = ControlerStore(dossier);
    if (!c.ouvert) {
        err << c.erreur << '\n';
        return 2;
    }
    out << "Rendez-vous : " << c.evenements << " (simples " << c.simples << ", maîtres de série " << c.maitres
        << ", exceptions " << c.exceptions << " dont " << c.supprimees << " suppressions)\n"
        << "Séries : " << c.series << '\n';
    for (const QString &p : c.problemes)
        out << "Problème : " << p << '\n';
    const int copies = controlerCopies(dossier, patients.isEmpty() ? dossier : patients, reparer, out, err);
    const bool sain = c.sain() && copies == 0;
    out << (sain ? "Base cohérente.\n" : "Base incohérente.\n");
    return copies == 2 ? 2 : (sain ? 0 : 1);
}

// A station that books appointments one after the other, as the editor does:
// a refused write is told and tried again (the secretary clicks OK again),
// and copies refused by the patient base are written again before the end.
int reserverEssais(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    bool ok = false;
    const int n = arguments.value(2).toInt(&ok);
    const int poste = arguments.value(3, QStringLiteral("1")).toInt();
    const int pause = arguments.value(4, QStringLiteral("0")).toInt();
    if (arguments.size() < 3 || arguments.size() > 5 || !ok || n < 0) {
        err << "book-test : DOSSIER N [POSTE [PAUSE_MS]] attendu.\n";
        return 2;
    }
    AppState &etat = appState();
    Demarrage demarrage(etat, arguments.at(1));
    ParametresFenetre parametres;
    std::optional<QString> fatal = demarrage.initialiser(QString());
    if (!fatal)
        fatal = demarrage.charger(parametres);
    // A store held by another station at the start is tried again, as the
    // window does at each refresh.
    for (QDeadlineTimer limite(30000); !fatal && etat.Calendrier && !etat.Calendrier->IsOpen() && !limite.hasExpired();) {
        err << "Poste " << poste << " : " << TexteAgendaOccupe() << '\n';
        QThread::msleep(200);
        etat.Calendrier->Open();
    }
    if (fatal || !etat.Calendrier || !etat.Calendrier->IsOpen()) {
        err << "Poste " << poste << " : " << (fatal ? *fatal : QStringLiteral("le calendrier ne peut pas être ouvert."))
            << '\n';
        return 1;
    }
    BrancherMiroir(*etat.Calendrier);
    RattraperMiroir(etat.PathDB, etat.CheminBaseAgenda, Horloge::maintenant().addDays(-JoursRattrapageMiroir));
    int signales = 0;
    int perdus = 0;
    const QDateTime origine(QDate(2030, 1, 7), QTime(8, 0));
    for (int i = 0; i < n; ++i) {
        const QDateTime debut = origine.addSecs(qint64(poste * n + i) * 300);
        ChampsRdv c;
        c[ChampRdv::Nom] = QStringLiteral("ESSAI");
        c[ChampRdv::Prenom] = QStringLiteral("Poste %1").arg(poste);
        c[ChampRdv::DateNaissance] = QStringLiteral("01/01/1980");
        c[ChampRdv::NumeroPatient] = QString::number(poste * 100000 + i + 1);
        c[ChampRdv::Base] = QStringLiteral("Agenda");
        bool enregistre = false;
        for (int essai = 0; essai < 20 && !enregistre; ++essai) {
            const CalendarEventPtr e = etat.Calendrier->CreateNewEvent(debut, debut.addSecs(900));
            e->setBody(PackerBody(c));
            e->setSubject(QStringLiteral("ESSAI %1-%2").arg(poste).arg(i));
            enregistre = etat.Calendrier->AddEvent(e);
            if (!enregistre) {
                ++signales;
                err << TexteEchecEnregistrement(etat.Calendrier->store()->LastErrorText()) << '\n';
                QThread::msleep(200);
            }
        }
        perdus += enregistre ? 0 : 1;
        QThread::msleep(static_cast<unsigned long>(std::max(pause, 0)));
    }
    QDeadlineTimer limite(30000);
    int attente = RejouerMiroir(etat.CheminBaseAgenda);
    while (attente > 0 && !limite.hasExpired()) {
        QThread::msleep(200);
        attente = RejouerMiroir(etat.CheminBaseAgenda);
    }
    out << "Poste " << poste << " : " << (n - perdus) << " rendez-vous enregistrés, " << signales << " échecs signalés, "
        << perdus << " perdus, " << attente << " copies en attente.\n";
    demarrage.arreter(false);
    return perdus == 0 && attente == 0 ? 0 : 1;
}

// The folder and the agenda number of the commands that serve one agenda as
// a station does: "DOSSIER [--agenda N]". The argument is the enciphered
// launch argument of agenda N (empty for the default agenda).
bool lireAgenda(const QStringList &arguments, QString *dossier, QString *argument)
{
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const QString &a = arguments.at(i);
        bool ok = false;
        if (a == QLatin1String("--agenda") && arguments.value(i + 1).toInt(&ok) >= 0 && ok)
            *argument = EncoderArgument(arguments.at(++i));
        else if (dossier->isEmpty() && !a.startsWith(QLatin1String("--")))
            *dossier = a;
        else
            return false;
    }
    if (dossier->isEmpty())
        return false;
    // The folder given is the program folder for everything this process
    // reads (Agenda.ini, the working files of the mail), as for a station
    // started from there.
    qputenv("TAVONEL_PROGRAM_DIR", QFile::encodeName(QDir(*dossier).absolutePath()));
    return true;
}

// The start of a station on the folder, without a window; the text of the
// failure when the agenda cannot be served.
std::optional<QString> demarrerAgenda(Demarrage &demarrage, const QString &argument)
{
    AppState &etat = appState();
    ParametresFenetre parametres;
    std::optional<QString> fatal = demarrage.initialiser(argument);
    if (!fatal)
        fatal = demarrage.charger(parametres);
    if (!fatal && etat.MoteurRappels)
        etat.MoteurRappels->setEnabled(false);
    for (QDeadlineTimer limite(30000); !fatal && etat.Calendrier && !etat.Calendrier->IsOpen() && !limite.hasExpired();) {
        QThread::msleep(200);
        etat.Calendrier->Open();
    }
    if (!fatal && (!etat.Calendrier || !etat.Calendrier->IsOpen()))
        fatal = QStringLiteral("Le calendrier %1Events.mdb ne peut pas être ouvert.").arg(etat.PathDB);
    return fatal;
}

// The end of a run of demarrerAgenda, on every path: the stores closed while
// the application object still lives.
void arreterAgenda()
{
    AppState &etat = appState();
    if (etat.Calendrier)
        etat.Calendrier->Close();
    etat.MoteurRappels.reset();
    etat.Calendrier.reset();
    FermerConfig();
}

// An agenda served by a command for the length of a scope: started as a
// station starts, its stores closed on every way out of the scope.
class AgendaServi
{
public:
    AgendaServi()
        : m_demarrage(appState(), DossierProgramme())
    {
    }
    ~AgendaServi() { arreterAgenda(); }
    AgendaServi(const AgendaServi &) = delete;
    AgendaServi &operator=(const AgendaServi &) = delete;

    // False, with the reason written after the command's name, when the
    // agenda cannot be served.
    bool demarrer(const char *commande, const QString &argument, QTextStream &err)
    {
        const std::optional<QString> fatal = demarrerAgenda(m_demarrage, argument);
        if (fatal)
            err << commande << " : " << *fatal << '\n';
        return !fatal;
    }

private:
    Demarrage m_demarrage;
};

// The reminders of an agenda sent with nobody at the window (a timer of the
// system runs it). One run at a time on a machine, for the modem's sake.
int envoyerRappels(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    QString dossier;
    QString argument;
    if (!lireAgenda(arguments, &dossier, &argument)) {
        err << "rappels : DOSSIER [--agenda N] attendu.\n";
        return 2;
    }
    AgendaServi agenda;
    if (!agenda.demarrer("rappels", argument, err))
        return 2;
    AppState &etat = appState();
    if (!etat.RappelsSMS && !etat.RappelsMails) {
        err << "rappels : l'agenda " << etat.AgendaName
            << " n'envoie ni SMS ni mails (SMS et MAILS ne sont pas à \"Oui\" dans Agenda.ini) : rien n'est envoyé.\n";
        return 1;
    }
    QLockFile verrou(QDir::tempPath() + QStringLiteral("/tavonel-rappels-COM%1.lock").arg(PortModem()));
    verrou.setStaleLockTime(0);
    if (!verrou.tryLock(15 * 60 * 1000)) {
        err << "rappels : un autre envoi de rappels occupe ce poste depuis plus d'un quart d'heure.\n";
        return 1;
    }
    BrancherMiroir(*etat.Calendrier);
    const BilanRappelsAuto bilan = EnvoyerRappelsAutomatiques(*etat.Calendrier, etat.AgendaName, etat.CheminLog);
    out << bilan.statut << '\n' << "Rappels dus : " << bilan.dus << ", laissés à un autre poste : " << bilan.laissesAilleurs << '\n';
    for (const QString &r : bilan.raisons)
        err << r << '\n';
    return bilan.reussi() ? 0 : 1;
}

// The backups of an agenda go to a folder of their own under CheminSauve,
// named after the agenda, so that several agendas may share CheminSauve.
QString racineSauvegardes(const AppState &etat)
{
    const QString chemin = LireIni(QStringLiteral("Sauvegarge"), QStringLiteral("CheminSauve"), QString(), CheminAgendaIni());
    if (chemin.trimmed().isEmpty())
        return {};
    QString nom = etat.AgendaName;
    nom.replace(QRegularExpression(QStringLiteral("[^\\w .-]")), QStringLiteral("_"));
    return AjouterSlash(chemin) + nom;
}

int sauvegarder(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    QString dossier;
    QString argument;
    QString sauvegarde;
    const bool restaurer = arguments.value(0) == QLatin1String("restaurer");
    QStringList reste = arguments;
    if (restaurer && reste.size() > 2)
        sauvegarde = reste.takeAt(2);
    if (!lireAgenda(reste, &dossier, &argument) || (restaurer && sauvegarde.isEmpty())) {
        err << (restaurer ? "restaurer : DOSSIER SAUVEGARDE [--agenda N] attendu.\n" : "sauvegarde : DOSSIER [--agenda N] attendu.\n");
        return 2;
    }
    AppState &etat = appState();
    Demarrage demarrage(etat, DossierProgramme());
    if (const std::optional<QString> fatal = demarrage.initialiser(argument)) {
        err << arguments.value(0) << " : " << *fatal << '\n';
        return 2;
    }
    const QList<StoreAgenda> stores = StoresAgenda(etat.PathDB, etat.CheminBaseAgenda);
    const QString racine = racineSauvegardes(etat);
    if (!restaurer) {
        const ResultatSauvegarde r = Sauvegarder(stores, racine, Horloge::maintenant());
        if (r.erreur) {
            err << "sauvegarde : " << *r.erreur << '\n';
            return 1;
        }
        out << "Sauvegarde faite : " << r.dossier << '\n';
        for (const QString &n : r.supprimees)
            out << "Ancienne sauvegarde supprimée : " << n << '\n';
        return 0;
    }
    const ResultatRestauration r = Restaurer(sauvegarde, stores, racine, Horloge::maintenant());
    if (!r.problemes.isEmpty()) {
        err << "restaurer : la sauvegarde " << sauvegarde << " est refusée, rien n'a été changé :\n";
        for (const QString &p : r.problemes)
            err << "Problème : " << p << '\n';
        return 1;
    }
    if (r.erreur) {
        err << "restaurer : " << *r.erreur << '\n';
        return 1;
    }
    out << "Bases d'avant la restauration sauvegardées dans " << r.sauvegardeAvant << '\n'
        << "Sauvegarde " << sauvegarde << " remise en place. Les postes ouverts la montrent à leur prochaine mise à jour.\n";
    return 0;
}

int ecrireIcal(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    OptionsIcal options;
    options.praticien = 0;
    options.depuis = Horloge::aujourdhui();
    QString sortie;
    QStringList reste{arguments.value(0)};
    bool compris = true;
    for (qsizetype i = 1; i < arguments.size() && compris; ++i) {
        const QString &a = arguments.at(i);
        const QString valeur = arguments.value(i + 1);
        bool ok = true;
        if (a == QLatin1String("--praticien"))
            options.praticien = valeur.toInt(&ok);
        else if (a == QLatin1String("--semaines"))
            options.semaines = valeur.toInt(&ok);
        else if (a == QLatin1String("--depuis"))
            ok = (options.depuis = QDate::fromString(valeur, Qt::ISODate)).isValid();
        else if (a == QLatin1String("--sortie"))
            ok = !(sortie = valeur).isEmpty();
        else if (a == QLatin1String("--noms"))
            options.noms = true;
        else if (a == QLatin1String("--agenda"))
            reste << a << valeur;
        else
            reste << a;
        if (a.startsWith(QLatin1String("--")) && a != QLatin1String("--noms"))
            ++i;
        compris = ok;
    }
    QString dossier;
    QString argument;
    if (!compris || (options.praticien != 1 && options.praticien != 2) || options.semaines < 1 || options.semaines > 520
        || !lireAgenda(reste, &dossier, &argument)) {
        err << "ical : DOSSIER --praticien 1|2 [--semaines K] [--depuis AAAA-MM-JJ] [--noms] [--sortie FICHIER] "
               "[--agenda N] attendu.\n";
        return 2;
    }
    int evenements = 0;
    QByteArray texte;
    {
        AgendaServi agenda;
        if (!agenda.demarrer("ical", argument, err))
            return 2;
        options.nomCalendrier = LireConfig(QStringLiteral("Praticien%1").arg(options.praticien), QStringLiteral("Nom"),
                                           QStringLiteral("Praticien %1").arg(options.praticien));
        options.horodatage = Horloge::maintenant();
        texte = AgendaIcal(*appState().Calendrier, options, &evenements);
    }
    if (sortie.isEmpty())
        sortie = DossierProgramme() + QStringLiteral("Praticien%1.ics").arg(options.praticien);
    QSaveFile fichier(sortie);
    if (!fichier.open(QIODevice::WriteOnly) || fichier.write(texte) != texte.size() || !fichier.commit()) {
        err << "ical : " << sortie << " ne peut pas être écrit : " << fichier.errorString() << '\n';
        return 1;
    }
    PartagerFichier(sortie);
    out << sortie << " : " << evenements << " événements pour " << options.nomCalendrier << ".\n";
    return 0;
}

int tenirVerrou(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    bool ok = false;
    const double secondes = arguments.value(2).toDouble(&ok);
    if (arguments.size() != 3 || !ok || secondes < 0) {
        err << "hold-lock : FICHIER SECONDES attendu.\n";
        return 2;
    }
    QString erreur;
    const auto base = BaseSqlite::ouvrir(arguments.at(1), BaseSqlite::Mode::Existante, &erreur);
    if (!base || !base->executer(QStringLiteral("BEGIN EXCLUSIVE"), &erreur)) {
        err << erreur << '\n';
        return 1;
    }
    out << "Verrouillé : " << arguments.at(1) << '\n';
    out.flush();
    QThread::msleep(static_cast<unsigned long>(secondes * 1000));
    base->executer(QStringLiteral("ROLLBACK"));
    out << "Libéré.\n";
    return 0;
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
    if (commande == QLatin1String("test-mail"))
        return CommandeTestMail(arguments.mid(1), out, err);
    if (commande == QLatin1String("modem-check")) {
        bool ok = false;
        const int port = arguments.value(1).toInt(&ok);
        if (arguments.size() != 2 || !ok || port < 1) {
            err << "modem-check : numéro de port attendu (1, 2, ...).\n";
            return 2;
        }
        return VerifierModem(port, out, err);
    }
    if (commande == QLatin1String("store-check"))
        return controlerStore(arguments, out, err);
    if (commande == QLatin1String("book-test"))
        return reserverEssais(arguments, out, err);
    if (commande == QLatin1String("hold-lock"))
        return tenirVerrou(arguments, out, err);
    if (commande == QLatin1String("search-patients"))
        return rechercherPatients(arguments, out, err);
    if (commande == QLatin1String("rappels"))
        return envoyerRappels(arguments, out, err);
    if (commande == QLatin1String("sauvegarde") || commande == QLatin1String("restaurer"))
        return sauvegarder(arguments, out, err);
    if (commande == QLatin1String("ical"))
        return ecrireIcal(arguments, out, err);
    if (commande == QLatin1String("demo"))
        return creerDemo(arguments, out, err);
    usage(err);
    return commande.isEmpty() || commande == QLatin1String("--help") ? 0 : 2;
}
