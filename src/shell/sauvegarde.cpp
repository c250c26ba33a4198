#include "shell/sauvegarde.h"

#include "calendar/controlestore.h"
#include "patients/schemapatients.h"
#include "shell/base/basesqlite.h"
#include "shell/base/fichierspartages.h"
#include "shell/base/support.h"

#include <sqlite3.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QThread>

#include <algorithm>

namespace {

// A raw connection, closed when it goes.
class Connexion final
{
public:
    Connexion(const QString &chemin, int drapeaux)
    {
        m_code = sqlite3_open_v2(QFile::encodeName(chemin).constData(), &m_db, drapeaux, nullptr);
        if (m_db)
            sqlite3_busy_timeout(m_db, BaseSqlite::delaiOccupe());
    }
    ~Connexion() { sqlite3_close_v2(m_db); }
    Connexion(const Connexion &) = delete;
    Connexion &operator=(const Connexion &) = delete;

    [[nodiscard]] bool ouverte() const { return m_code == SQLITE_OK; }
    [[nodiscard]] sqlite3 *db() const { return m_db; }
    [[nodiscard]] QString erreur() const { return QString::fromUtf8(sqlite3_errmsg(m_db)); }

private:
    sqlite3 *m_db = nullptr;
    int m_code = SQLITE_ERROR;
};

// All the pages of source into destination in one step: one consistent
// state of the source, and a destination changed in one transaction. A file
// held by a station is waited for, a while.
std::optional<QString> copierPages(sqlite3 *source, sqlite3 *destination)
{
    sqlite3_backup *b = sqlite3_backup_init(destination, "main", source, "main");
    if (!b)
        return QString::fromUtf8(sqlite3_errmsg(destination));
    int rc = SQLITE_OK;
    for (QDeadlineTimer limite(60000);;) {
        rc = sqlite3_backup_step(b, -1);
        if ((rc != SQLITE_BUSY && rc != SQLITE_LOCKED) || limite.hasExpired())
            break;
        QThread::msleep(50);
    }
    sqlite3_backup_finish(b);
    if (rc != SQLITE_DONE)
        return QString::fromUtf8(sqlite3_errstr(rc));
    return std::nullopt;
}

// SQLite's own check of a file: empty when sound.
QString integrite(const QString &chemin)
{
    if (!EstFichierSqlite(chemin))
        return QStringLiteral("ce n'est pas une base de données");
    Connexion c(chemin, SQLITE_OPEN_READONLY);
    if (!c.ouverte())
        return c.erreur();
    sqlite3_stmt *st = nullptr;
    if (sqlite3_prepare_v2(c.db(), "PRAGMA integrity_check", -1, &st, nullptr) != SQLITE_OK)
        return c.erreur();
    QStringList messages;
    int rc = SQLITE_ROW;
    while ((rc = sqlite3_step(st)) == SQLITE_ROW)
        messages << QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(st, 0)));
    sqlite3_finalize(st);
    if (rc != SQLITE_DONE)
        return c.erreur();
    return messages == QStringList{QStringLiteral("ok")} ? QString() : messages.join(QStringLiteral(" ; "));
}

} // namespace

QList<StoreAgenda> StoresAgenda(const QString &pathDB, const QString &cheminBaseAgenda)
{
    return {{QStringLiteral("Events.mdb"), AjouterSlash(pathDB) + QStringLiteral("Events.mdb")},
            {QStringLiteral("Config.mdb"), AjouterSlash(pathDB) + QStringLiteral("Config.mdb")},
            {QStringLiteral("Patients.mdb"), CheminPatientsMdb(AjouterSlash(cheminBaseAgenda))}};
}

std::optional<QString> CopierBase(const QString &source, const QString &destination)
{
    if (!EstFichierSqlite(source))
        return QStringLiteral("%1 n'est pas une base de données.").arg(source);
    Connexion s(source, SQLITE_OPEN_READONLY);
    if (!s.ouverte())
        return QStringLiteral("%1 : %2").arg(source, s.erreur());
    Connexion d(destination, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    if (!d.ouverte())
        return QStringLiteral("%1 : %2").arg(destination, d.erreur());
    if (const auto erreur = copierPages(s.db(), d.db()))
        return QStringLiteral("copie de %1 : %2").arg(source, *erreur);
    PartagerFichier(destination);
    return std::nullopt;
}

ResultatSauvegarde Sauvegarder(const QList<StoreAgenda> &stores, const QString &racine, const QDateTime &moment, int garder)
{
    ResultatSauvegarde r;
    if (racine.trimmed().isEmpty()) {
        r.erreur = QStringLiteral("Le dossier des sauvegardes (CheminSauve, section Sauvegarge d'Agenda.ini) n'est pas renseigné.");
        return r;
    }
    const QString nom = moment.toString(QStringLiteral("yyyyMMdd-HHmmss"));
    const QString dossier = AjouterSlash(racine) + nom;
    const QString partiel = AjouterSlash(racine) + u'.' + nom + QStringLiteral(".partielle");
    if (QFileInfo::exists(dossier)) {
        r.erreur = QStringLiteral("La sauvegarde %1 existe déjà.").arg(dossier);
        return r;
    }
    QDir(partiel).removeRecursively();
    if (!QDir().mkpath(partiel)) {
        r.erreur = QStringLiteral("Le dossier %1 ne peut pas être créé.").arg(partiel);
        return r;
    }
    for (const StoreAgenda &s : stores) {
        if (const auto erreur = CopierBase(s.chemin, AjouterSlash(partiel) + s.nom)) {
            QDir(partiel).removeRecursively();
            r.erreur = *erreur;
            return r;
        }
    }
    if (!QDir().rename(partiel, dossier)) {
        QDir(partiel).removeRecursively();
        r.erreur = QStringLiteral("Le dossier %1 ne peut pas être renommé en %2.").arg(partiel, dossier);
        return r;
    }
    r.dossier = dossier;

    static const QRegularExpression date(QStringLiteral("^\\d{8}-\\d{6}$"));
    QStringList faites = QDir(racine).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    faites.removeIf([](const QString &n) { return !date.match(n).hasMatch(); });
    for (qsizetype i = 0; i + garder < faites.size(); ++i) {
        if (QDir(AjouterSlash(racine) + faites.at(i)).removeRecursively())
            r.supprimees << faites.at(i);
    }
    return r;
}

QStringList VerifierSauvegarde(const QString &dossier, const QList<StoreAgenda> &stores)
{
    QStringList problemes;
    for (const StoreAgenda &s : stores) {
        const QString chemin = AjouterSlash(dossier) + s.nom;
        if (!QFileInfo(chemin).isFile())
            problemes << QStringLiteral("%1 manque dans la sauvegarde.").arg(s.nom);
        else if (const QString erreur = integrite(chemin); !erreur.isEmpty())
            problemes << QStringLiteral("%1 est endommagé : %2").arg(s.nom, erreur);
    }
    if (!problemes.isEmpty())
        return problemes;
    const ControleStore c = ControlerStore(dossier);
    if (!c.ouvert)
        problemes << c.erreur;
    for (const QString &p : c.problemes)
        problemes << QStringLiteral("Events.mdb : ") + p;
    return problemes;
}

ResultatRestauration Restaurer(const QString &dossier, const QList<StoreAgenda> &stores, const QString &racine,
                               const QDateTime &moment)
{
    ResultatRestauration r;
    r.problemes = VerifierSauvegarde(dossier, stores);
    if (!r.problemes.isEmpty())
        return r;
    const ResultatSauvegarde avant = Sauvegarder(stores, racine, moment);
    if (avant.erreur) {
        r.erreur = QStringLiteral("Les bases actuelles n'ont pas pu être sauvegardées avant la restauration : ") + *avant.erreur;
        return r;
    }
    r.sauvegardeAvant = avant.dossier;
    for (const StoreAgenda &s : stores) {
        const QString copie = s.chemin + QStringLiteral(".restauration");
        QFile::remove(copie);
        std::optional<QString> erreur = CopierBase(AjouterSlash(dossier) + s.nom, copie);
        if (!erreur) {
            if (const QString e = integrite(copie); !e.isEmpty())
                erreur = QStringLiteral("%1 : %2").arg(copie, e);
        }
        if (!erreur && QFileInfo(s.chemin).isFile() && EstFichierSqlite(s.chemin)) {
            Connexion source(copie, SQLITE_OPEN_READONLY);
            Connexion vivante(s.chemin, SQLITE_OPEN_READWRITE);
            if (!source.ouverte() || !vivante.ouverte())
                erreur = source.ouverte() ? vivante.erreur() : source.erreur();
            else if (const auto e = copierPages(source.db(), vivante.db()))
                erreur = QStringLiteral("%1 : %2").arg(s.chemin, *e);
            QFile::remove(copie);
        } else if (!erreur) {
            // Nothing a station could hold open: the copy is renamed in place,
            // whatever stood there kept aside.
            if (QFileInfo::exists(s.chemin))
                QFile::rename(s.chemin, s.chemin + QStringLiteral(".illisible-") + moment.toString(QStringLiteral("yyyyMMdd-HHmmss")));
            if (!QFile::rename(copie, s.chemin))
                erreur = QStringLiteral("%1 ne peut pas être renommé en %2.").arg(copie, s.chemin);
        }
        if (erreur) {
            QFile::remove(copie);
            r.erreur = QStringLiteral("Restauration de %1 interrompue : %2 (les bases d'avant sont dans %3)")
                           .arg(s.nom, *erreur, r.sauvegardeAvant);
            return r;
        }
    }
    return r;
}
