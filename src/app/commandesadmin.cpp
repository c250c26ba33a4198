#include "app/commandesadmin.h"

#include "appointments/demo.h"
#include "calendar/controlestore.h"
#include "cipher/encryptx.h"
#include "messaging/diagnosticmodem.h"
#include "messaging/mailreminder.h"
#include "patients/gestiontype.h"
#include "patients/liaisons.h"
#include "patients/recherchepatients.h"
#include "shell/appstate.h"
#include "shell/base/dossiers.h"
#include "shell/base/horloge.h"
#include "shell/base/profilini.h"
#include "shell/base/support.h"

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
           "  store-check DOSSIER    compte les rendez-vous de DOSSIER/Events.mdb et vérifie les séries\n"
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
    if (commande == QLatin1String("store-check")) {
        if (arguments.size() != 2) {
            err << "store-check : le dossier de Events.mdb est attendu.\n";
            return 2;
        }
        const ControleStore c = ControlerStore(arguments.at(1));
        if (!c.ouvert) {
            err << c.erreur << '\n';
            return 2;
        }
        out << "Rendez-vous : " << c.evenements << " (simples " << c.simples << ", maîtres de série " << c.maitres
            << ", exceptions " << c.exceptions << " dont " << c.supprimees << " suppressions)\n"
            << "Séries : " << c.series << '\n';
        for (const QString &p : c.problemes)
            out << "Problème : " << p << '\n';
        out << (c.sain() ? "Base cohérente.\n" : "Base incohérente.\n");
        return c.sain() ? 0 : 1;
    }
    if (commande == QLatin1String("search-patients"))
        return rechercherPatients(arguments, out, err);
    if (commande == QLatin1String("demo"))
        return creerDemo(arguments, out, err);
    usage(err);
    return commande.isEmpty() || commande == QLatin1String("--help") ? 0 : 2;
}
