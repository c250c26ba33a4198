#include "shell/demarrage.h"

#include "calendar/calendardataprovider.h"
#include "calendar/choixstore.h"
#include "calendar/openprovider.h"
#include "calendar/reminderengine.h"
#include "cipher/encryptx.h"
#include "patients/liaisons.h"
#include "patients/schemapatients.h"
#include "rules/regles.h"
#include "shell/appstate.h"
#include "shell/base/basesqlite.h"
#include "shell/base/config.h"
#include "shell/base/joursferies.h"
#include "shell/base/nombres.h"
#include "shell/base/profilini.h"
#include "shell/base/registre.h"
#include "shell/base/support.h"

#include <QFile>
#include <QFileInfo>

namespace {

QTime heure(const QString &texte, QTime defaut)
{
    const QTime t = QTime::fromString(texte.trimmed(), QStringLiteral("HH:mm:ss"));
    if (t.isValid())
        return t;
    const QTime courte = QTime::fromString(texte.trimmed(), QStringLiteral("H:mm"));
    return courte.isValid() ? courte : defaut;
}

} // namespace

Demarrage::Demarrage(AppState &etat, QString dossierProgramme)
    : m_etat(etat)
    , m_dossierProgramme(AjouterSlash(dossierProgramme))
{
}

QString Demarrage::texteAgendaNonConfigure()
{
    return QStringLiteral("Agenda non configuré !");
}

QString Demarrage::texteBaseIntrouvable(const QString &pathDB)
{
    return QStringLiteral("La base de donnée n'est pas trouvée dans le chemin : ") + QStringLiteral("\n  ") + pathDB;
}

QString Demarrage::texteConfigEndommagee(const QString &chemin, const QString &detail)
{
    return QStringLiteral("Le fichier de configuration %1 est endommagé ou illisible :\n%2\n\nL'agenda ne peut pas "
                          "démarrer sans lui. Restaurez ce fichier depuis une sauvegarde, ou renommez-le pour qu'un "
                          "fichier neuf soit créé au prochain démarrage (les réglages et les règles seront alors à "
                          "refaire).")
        .arg(chemin, detail);
}

QString NumeroAgenda(const QString &texteDechiffre)
{
    return TexteNombre(LireNombre(texteDechiffre));
}

std::optional<QString> Demarrage::initialiser(const QString &argument)
{
    InitTables(m_etat);
    const QString agendaIni = m_dossierProgramme + QStringLiteral("Agenda.ini");
    if (!argument.isEmpty()) {
        const QString n = NumeroAgenda(DecoderArgument(argument));
        const QString section = QStringLiteral("Agenda") + n;
        m_etat.PathDB = LireIni(section, QStringLiteral("PathDB") + n, QString(), agendaIni);
        m_etat.AgendaName = LireIni(section, QStringLiteral("AgendaName") + n, QString(), agendaIni);
    } else {
        m_etat.PathDB = m_dossierProgramme;
        m_etat.AgendaName = DefaultAgendaName;
    }
    if (m_etat.PathDB.isEmpty() || m_etat.AgendaName.isEmpty())
        return texteAgendaNonConfigure();

    m_etat.PathDB = AjouterSlash(m_etat.PathDB);
    if (m_etat.AgendaName != DefaultAgendaName) {
        const QString s = QStringLiteral("Sauvegarge");
        m_etat.CheminSauve = LireIni(s, QStringLiteral("CheminSauve"), QString(), agendaIni);
        m_etat.CheminSauvePartiel = LireIni(s, QStringLiteral("CheminSauvePartiel"), QString(), agendaIni);
        m_etat.CheminLog = LireIni(s, QStringLiteral("CheminLog"), QString(), agendaIni);
    }
    m_etat.CheminBaseAgenda =
        AjouterSlash(LireIni(QStringLiteral("Base"), QStringLiteral("BasePatientAG"), m_dossierProgramme, agendaIni));
    return std::nullopt;
}

std::optional<QString> Demarrage::charger(ParametresFenetre &p)
{
    const QString config = m_etat.PathDB + QStringLiteral("Config.mdb");
    if (!FichierExiste(config)) {
        // A folder that does not exist or refuses the file ends at the fatal
        // box of the next step.
        p.premierLancement = CreerBaseConfig(m_etat.PathDB);
    }
    QString erreur;
    if (!OuvrirConfig(config, &erreur)) {
        // A database of ours that is damaged is told as such, in one box:
        // nothing can be read from it, and a new one must not replace it
        // behind the practice's back.
        if (FichierExiste(config) && EstFichierSqlite(config) && !erreur.isEmpty()) {
            if (erreur.contains(QLatin1String("verrouillée")))
                return QStringLiteral("Le fichier de configuration %1 est occupé par un autre poste :\n%2\n\nRelancez "
                                      "l'agenda dans un instant.")
                    .arg(config, erreur);
            return texteConfigEndommagee(config, erreur);
        }
        // A file wiped to zeros (a disk or a copy that failed) is no other
        // program's file: it is told as damaged.
        QFile fichier(config);
        if (fichier.open(QIODevice::ReadOnly)) {
            const QByteArray debut = fichier.read(100);
            if (!debut.isEmpty() && debut.count('\0') == debut.size())
                return texteConfigEndommagee(config, QStringLiteral("son contenu a été effacé (octets à zéro)."));
        }
        return texteBaseIntrouvable(m_etat.PathDB);
    }

    if (!FichierExiste(CheminPatientsMdb(m_etat.CheminBaseAgenda))) {
        QString dossier = m_etat.CheminBaseAgenda;
        CreerBasePatients(dossier);
    }

    // The calendar store: Events.mdb in PathDB, opened or created.
    // A store that can be neither opened nor created leaves an empty book.
    // A station that chose the MariaDB store comes back to it: its book is
    // on the server, and booking into Events.mdb after a restart would split
    // it in two. The other kinds of the chooser are not reopened.
    const QString section = QStringLiteral("Provider");
    if (LireParametreUtilisateur(section, QStringLiteral("Active"), {}).toInt() == CalendarDataProvider::MariaDB)
        OpenProvider(m_etat.Calendrier, m_etat.TypeFournisseur, CalendarDataProvider::MariaDB,
                     ChaineDeConnexion(CalendarDataProvider::MariaDB,
                                       LireParametreUtilisateur(section, QStringLiteral("ActivePath"), {}), m_dossierProgramme));
    else
        OpenProvider(m_etat.Calendrier, m_etat.TypeFournisseur, CalendarDataProvider::Access, connexionEvenements());

    p.libelles = ConstruireLibelles(m_etat);
    m_etat.Calendrier->setLabelList(p.libelles);
    m_etat.DureeDefaut = static_cast<qint16>(LireEntier(LireConfig(QStringLiteral("RDV"), QStringLiteral("Duree"), QStringLiteral("0"))));

    const QString agenda = m_etat.AgendaName;
    const QString agendaIni = m_dossierProgramme + QStringLiteral("Agenda.ini");
    p.rappelsActifs = LireIni(agenda, QStringLiteral("RemindersManEnabled"), QStringLiteral("Faux"), agendaIni) == TexteBooleen(true);
    m_etat.RappelsMails = LireIni(agenda, QStringLiteral("MAILS"), QStringLiteral("Non"), agendaIni) == QStringLiteral("Oui");
    m_etat.RappelsSMS = LireIni(agenda, QStringLiteral("SMS"), QStringLiteral("Non"), agendaIni) == QStringLiteral("Oui");
    if (!m_etat.MoteurRappels)
        m_etat.MoteurRappels = std::make_shared<ReminderEngine>(m_etat.Calendrier.get());
    m_etat.MoteurRappels->setEnabled(p.rappelsActifs);

    const QString ouverture = QStringLiteral("Ouverture");
    p.debutJournee = heure(LireConfig(ouverture, QStringLiteral("Debut"), QStringLiteral("08:00:00")), QTime(8, 0));
    p.finJournee = heure(LireConfig(ouverture, QStringLiteral("Fin"), QStringLiteral("20:00:00")), QTime(20, 0));

    p.printFrom = LireIni(agenda, QStringLiteral("PrintOptions.PrintFrom"), QStringLiteral("08:00:00"), agendaIni);
    p.printTo = LireIni(agenda, QStringLiteral("PrintOptions.PrintTo"), QStringLiteral("20:00:00"), agendaIni);
    p.printFromToExactly =
        static_cast<int>(LireEntier(LireIni(agenda, QStringLiteral("PrintOptions.PrintFromToExactly"), QStringLiteral("-1"), agendaIni)));

    m_etat.PauseDebut = LireConfig(ouverture, QStringLiteral("PauseDebut"), QStringLiteral("12:00:00"));
    m_etat.PauseFin = LireConfig(ouverture, QStringLiteral("PauseFin"), QStringLiteral("14:00:00"));
    FixerFeriesAlsaceMoselle(LireConfig(QStringLiteral("JoursFeries"), QStringLiteral("AlsaceMoselle"), QStringLiteral("0"))
                             == QStringLiteral("1"));

    LireLiaisons(m_etat, agendaIni);
    return std::nullopt;
}

QString Demarrage::connexionEvenements() const
{
    return QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source='") + m_etat.PathDB + QStringLiteral("Events.mdb';");
}

void Demarrage::arreter(bool rappelsActifs)
{
    if (m_etat.MoteurRappels)
        m_etat.MoteurRappels->setEnabled(false);
    if (m_etat.Calendrier) {
        m_etat.Calendrier->Save();
        m_etat.Calendrier->Close();
    }
    const QString texte = TexteBooleen(rappelsActifs);
    EcrireParametreUtilisateur(QStringLiteral("AdvancedOptions"), QStringLiteral("RemindersEnabled"), texte);
    if (!m_etat.AgendaName.isEmpty())
        EcrireIni(m_etat.AgendaName, QStringLiteral("RemindersManEnabled"), texte, m_dossierProgramme + QStringLiteral("Agenda.ini"));
    FermerConfig();
}

CalendarLabelList ConstruireLibelles(const AppState &etat)
{
    CalendarLabelList libelles;
    auto type = [&](int index) {
        return LireConfig(QStringLiteral("RDVType%1").arg(index + 1), QStringLiteral("Type"), etat.TypesRDV.at(index));
    };
    auto couleur = [&](int index, const QString &item) {
        return static_cast<quint32>(LireEntier(LireConfig(QStringLiteral("RDVType%1").arg(index + 1), item, QStringLiteral("&HFFFFFF"))))
               & 0xFFFFFF;
    };
    for (int id = 0; id <= 6; ++id)
        libelles.append({id, QStringLiteral("Praticien 1:") + type(id), couleur(id, QStringLiteral("Couleur1"))});
    libelles.append({7, QStringLiteral("Praticien 1: Absent"), 0xFFFFFF});
    for (int id = 8; id <= 14; ++id)
        libelles.append({id, QStringLiteral("Praticien 2:") + type(id - 8), couleur(id - 8, QStringLiteral("Couleur2"))});
    libelles.append({15, QStringLiteral("Praticien 2: Absent"), 0xFFFFFF});
    libelles.append({16, QStringLiteral("Praticien 1: VU"), 0xFFFFFF});
    libelles.append({17, QStringLiteral("Praticien 2: VU"), 0xFFFFFF});
    return libelles;
}
