#include "patients/liaisons.h"

#include "shell/appstate.h"
#include "shell/base/basesqlite.h"
#include "shell/base/dossiers.h"
#include "shell/base/profilini.h"
#include "shell/base/support.h"

#include <QDir>
#include <QFileInfo>
#include <QSqlQuery>
#include <QVariant>

QString DossierConfig;
QString ChoixBase;
bool ChoixBaseValide = false;

namespace {

const char *const familles[] = {"Path", "Identity", "Zek"};

// A file of the folder whatever the case of its name, as the platform of the
// other product finds it.
QString fichierSansCasse(const QString &dossier, const QString &nom)
{
    if (QFileInfo::exists(dossier + nom))
        return dossier + nom;
    const QStringList trouves = QDir(dossier).entryList({nom}, QDir::Files);
    return trouves.isEmpty() ? dossier + nom : dossier + trouves.first();
}

} // namespace

CleLiaisons LireCleLiaisons(const QString &agenda, const QString &fichierAgendaIni)
{
    const QString agendaIni = fichierAgendaIni.isEmpty() ? CheminAgendaIni() : fichierAgendaIni;
    CleLiaisons l;
    std::array<QString, 5> *cibles[] = {&l.paths, &l.identites, &l.zeks};
    for (int f = 0; f < 3; ++f) {
        for (int i = 1; i <= 4; ++i)
            (*cibles[f])[i] =
                LireIni(agenda, QStringLiteral("%1%2").arg(QLatin1String(familles[f])).arg(i), QString(), agendaIni);
    }
    return l;
}

void LireLiaisons(AppState &etat, const QString &agendaIni)
{
    CleLiaisons l = LireCleLiaisons(etat.AgendaName, agendaIni);
    etat.Path = std::move(l.paths);
    etat.Identity = std::move(l.identites);
    etat.Zek = std::move(l.zeks);
}

void EcrireLiaisons(AppState &etat, const std::array<QString, 5> &paths, const std::array<QString, 5> &identites,
                    const std::array<QString, 5> &zeks)
{
    const std::array<QString, 5> *sources[] = {&paths, &identites, &zeks};
    for (int f = 0; f < 3; ++f) {
        for (int i = 1; i <= 4; ++i)
            EcrireAgendaIni(etat.AgendaName, QStringLiteral("%1%2").arg(QLatin1String(familles[f])).arg(i),
                            (*sources[f])[i]);
    }
    LireLiaisons(etat);
}

QString DossierProfilsSysteme()
{
    const QString env = qEnvironmentVariable("TAVONEL_DOSSIER_PROFILS");
    if (!env.isEmpty())
        return AjouterSlash(env);
    const QString etc = QStringLiteral("/etc/tavonel/");
    if (QFileInfo::exists(fichierSansCasse(etc, QStringLiteral("Kelmoreg.reg"))))
        return etc;
    return AjouterSlash(DossierProgramme() + QStringLiteral("System"));
}

QString LireDossierConfig()
{
    const QString reg = fichierSansCasse(DossierProfilsSysteme(), QStringLiteral("Kelmoreg.reg"));
    return LireIni(QStringLiteral("Brenwick.32"), QStringLiteral("Path"), QString(), reg);
}

QList<UtilisateurZek> UtilisateursZek(const QString &dossierConfig)
{
    QList<UtilisateurZek> liste;
    if (dossierConfig.isEmpty())
        return liste;
    const QString dossier = AjouterSlash(dossierConfig);
    const QStringList fichiers =
        QDir(dossier).entryList({QStringLiteral("*.zek")}, QDir::Files, QDir::Name | QDir::IgnoreCase);
    // The list holds 101 users (0 to 100); a further file ends it.
    for (qsizetype i = 0; i < fichiers.size() && i <= 100; ++i) {
        const QString &f = fichiers.at(i);
        const qsizetype point = f.indexOf(u'.');
        if (point < 0)
            break;
        // A fixed field of 8 characters: the list uses a fixed font, and the
        // names line up.
        const QString nom = f.left(point).left(8).leftJustified(8, u' ');
        const QString chemin = dossier + f;
        const QString section = QStringLiteral("Medecin");
        const QString titre = LireIni(section, QStringLiteral("Titre"), QString(), chemin);
        const QString nomMedecin = LireIni(section, QStringLiteral("Nom"), QString(), chemin);
        const QString prenom = LireIni(section, QStringLiteral("Prenom"), QString(), chemin);
        liste.append({f, nom + QStringLiteral(" : ") + titre + u' ' + nomMedecin + u' ' + prenom});
    }
    return liste;
}

LiaisonZek LireLiaisonZek(const QString &fichierZek)
{
    LiaisonZek l;
    l.path = LireIni(QStringLiteral("Base"), QStringLiteral("Patients"), QString(), fichierZek);
    if (!l.path.isEmpty())
        l.path = AjouterSlash(l.path) + QStringLiteral("Patients.mdb");
    l.identity = LireIni(QStringLiteral("Base"), QStringLiteral("IdentifiantBase"), QString(), fichierZek);
    return l;
}

QString IdentifiantDansBase(const QString &cheminPatients)
{
    auto base = BaseSqlite::ouvrir(cheminPatients, BaseSqlite::Mode::Lecture);
    if (!base)
        return {};
    QSqlQuery q(base->db());
    q.setForwardOnly(true);
    if (!q.exec(QStringLiteral("SELECT Base FROM Signaletiques WHERE Base <> 'Agenda' AND Base <> '' "
                               "GROUP BY Base ORDER BY count(*) DESC LIMIT 1"))
        || !q.next())
        return {};
    return q.value(0).toString();
}
