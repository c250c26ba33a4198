#include "shell/base/basesqlite.h"

#include "shell/base/fichierspartages.h"
#include "shell/base/jettexte.h"

#include <QAtomicInteger>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <QVariant>

#include <sqlite3.h>

namespace {

// Several seconds: a station that writes holds the file for a moment only.
// TAVONEL_BUSY_TIMEOUT (milliseconds) sets another wait, for a slow share or
// a trial of the sharing.
int delaiOccupeInitial()
{
    bool ok = false;
    const int ms = qEnvironmentVariableIntValue("TAVONEL_BUSY_TIMEOUT", &ok);
    return ok && ms >= 0 ? ms : 8000;
}

int g_delaiOccupe = delaiOccupeInitial();
QAtomicInteger<quint64> g_compteur = 0;

QString texteArgument(sqlite3_value *v)
{
    const auto *u = static_cast<const char16_t *>(sqlite3_value_text16(v));
    if (!u)
        return {};
    return QString::fromUtf16(u, sqlite3_value_bytes16(v) / 2);
}

void detruireMotif(void *p)
{
    delete static_cast<MotifJet *>(p);
}

// like(motif, texte [, echappement]): the operator "texte LIKE motif".
void fonctionLike(sqlite3_context *ctx, int argc, sqlite3_value **argv)
{
    if (sqlite3_value_type(argv[0]) == SQLITE_NULL || sqlite3_value_type(argv[1]) == SQLITE_NULL) {
        sqlite3_result_null(ctx);
        return;
    }
    Q_UNUSED(argc);
    auto *motif = static_cast<MotifJet *>(sqlite3_get_auxdata(ctx, 0));
    if (!motif) {
        motif = new MotifJet(texteArgument(argv[0]));
        sqlite3_set_auxdata(ctx, 0, motif, detruireMotif);
        // SQLite may have destroyed it at once when it cannot keep it.
        motif = static_cast<MotifJet *>(sqlite3_get_auxdata(ctx, 0));
        if (!motif) {
            sqlite3_result_int(ctx, JetLike(texteArgument(argv[1]), texteArgument(argv[0])) ? 1 : 0);
            return;
        }
    }
    sqlite3_result_int(ctx, motif->correspond(texteArgument(argv[1])) ? 1 : 0);
}

void fonctionPlier(sqlite3_context *ctx, int, sqlite3_value **argv)
{
    if (sqlite3_value_type(argv[0]) == SQLITE_NULL) {
        sqlite3_result_null(ctx);
        return;
    }
    const QString plie = PlierTexte(texteArgument(argv[0]));
    sqlite3_result_text16(ctx, plie.utf16(), static_cast<int>(plie.size() * 2), SQLITE_TRANSIENT);
}

} // namespace

bool EnregistrerFonctionsJet(sqlite3 *poignee)
{
    if (!poignee)
        return false;
    const int drapeaux = SQLITE_UTF16 | SQLITE_DETERMINISTIC;
    bool ok = sqlite3_create_function_v2(poignee, "like", 2, drapeaux, nullptr, fonctionLike, nullptr, nullptr, nullptr) == SQLITE_OK;
    ok = ok && sqlite3_create_function_v2(poignee, "like", 3, drapeaux, nullptr, fonctionLike, nullptr, nullptr, nullptr) == SQLITE_OK;
    ok = ok && sqlite3_create_function_v2(poignee, "jet_like", 2, drapeaux, nullptr, fonctionLike, nullptr, nullptr, nullptr) == SQLITE_OK;
    ok = ok && sqlite3_create_function_v2(poignee, "plier", 1, drapeaux, nullptr, fonctionPlier, nullptr, nullptr, nullptr) == SQLITE_OK;
    return ok;
}

bool EstFichierSqlite(const QString &chemin)
{
    QFile f(chemin);
    if (!f.open(QIODevice::ReadOnly))
        return false;
    if (f.size() == 0)
        return true; // an empty file is an empty SQLite database
    return f.read(16) == QByteArray("SQLite format 3\0", 16);
}

void BaseSqlite::fixerDelaiOccupe(int millisecondes)
{
    g_delaiOccupe = millisecondes;
}

int BaseSqlite::delaiOccupe()
{
    return g_delaiOccupe;
}

BaseSqlite::BaseSqlite(QString chemin, QString connexion)
    : m_chemin(std::move(chemin))
    , m_connexion(std::move(connexion))
{
}

BaseSqlite::~BaseSqlite()
{
    {
        QSqlDatabase d = QSqlDatabase::database(m_connexion, false);
        if (d.isOpen())
            d.close();
    }
    QSqlDatabase::removeDatabase(m_connexion);
}

sqlite3 *BaseSqlite::poignee() const
{
    const QVariant v = db().driver()->handle();
    if (!v.isValid() || qstrcmp(v.typeName(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3 *const *>(v.constData());
}

std::unique_ptr<BaseSqlite> BaseSqlite::ouvrir(const QString &chemin, Mode mode, QString *erreur, int *code, int delai)
{
    int numero = SQLITE_CANTOPEN;
    auto echec = [&](const QString &texte) -> std::unique_ptr<BaseSqlite> {
        if (erreur)
            *erreur = texte;
        if (code)
            *code = numero;
        return nullptr;
    };
    auto numeroDe = [](const QSqlError &e) {
        const int n = e.nativeErrorCode().toInt();
        return n != 0 ? n : SQLITE_ERROR;
    };

    const QFileInfo info(chemin);
    if (mode != Mode::Creer) {
        if (!info.exists() || !info.isFile())
            return echec(QStringLiteral("Le fichier %1 est introuvable.").arg(QDir::toNativeSeparators(chemin)));
        if (!EstFichierSqlite(chemin)) {
            numero = SQLITE_NOTADB;
            return echec(QStringLiteral("Le fichier %1 n'est pas une base de données utilisable.").arg(QDir::toNativeSeparators(chemin)));
        }
    } else if (info.exists()) {
        return echec(QStringLiteral("Le fichier %1 existe déjà.").arg(QDir::toNativeSeparators(chemin)));
    }

    const QString nom = QStringLiteral("tavonel-%1-%2").arg(info.fileName()).arg(++g_compteur);
    std::unique_ptr<BaseSqlite> base(new BaseSqlite(chemin, nom));
    {
        QSqlDatabase d = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), nom);
        d.setDatabaseName(chemin);
        QString options = QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(delai >= 0 ? delai : g_delaiOccupe);
        if (mode == Mode::Lecture)
            options += QStringLiteral(";QSQLITE_OPEN_READONLY");
        d.setConnectOptions(options);
        if (!d.open()) {
            numero = numeroDe(d.lastError());
            return echec(QStringLiteral("Impossible d'ouvrir %1 : %2").arg(QDir::toNativeSeparators(chemin), d.lastError().text()));
        }
    }
    // A failure here is a file of another kind, or a base that another
    // connection holds locked past the busy timeout: the text tells which.
    auto inutilisable = [&](const QSqlError &e) {
        numero = numeroDe(e);
        const int primaire = numero & 0xff;
        if (primaire == SQLITE_BUSY || primaire == SQLITE_LOCKED)
            return echec(QStringLiteral("La base %1 est verrouillée par un autre utilisateur (%2).")
                             .arg(QDir::toNativeSeparators(chemin), e.text()));
        return echec(QStringLiteral("Le fichier %1 n'est pas une base de données utilisable (%2).")
                         .arg(QDir::toNativeSeparators(chemin), e.text()));
    };
    QStringList reglages;
    // A read-only connection leaves the journal mode alone: changing it is a
    // write.
    if (mode != Mode::Lecture)
        reglages << QStringLiteral("PRAGMA journal_mode=DELETE");
    reglages << QStringLiteral("PRAGMA foreign_keys=OFF")
             // Reading the schema proves that the file is a database and not
             // merely a file with the right first bytes.
             << QStringLiteral("SELECT count(*) FROM sqlite_master");
    for (const QString &sql : reglages) {
        QSqlQuery q(base->db());
        if (!q.exec(sql))
            return inutilisable(q.lastError());
    }
    if (!EnregistrerFonctionsJet(base->poignee())) {
        numero = SQLITE_ERROR;
        return echec(QStringLiteral("Impossible de préparer la base %1.").arg(QDir::toNativeSeparators(chemin)));
    }
    return base;
}

BaseSqlite::Creation BaseSqlite::creer(const QString &chemin, const Remplissage &remplir, QString *erreur)
{
    if (QFileInfo::exists(chemin))
        return Creation::DejaLa;
    const QString temporaire = NomTemporaire(chemin);
    auto abandon = [&](const QString &texte) {
        QFile::remove(temporaire);
        QFile::remove(temporaire + QStringLiteral("-journal"));
        if (erreur)
            *erreur = texte;
        return Creation::Echec;
    };
    {
        // The empty file takes the shared mode before SQLite writes a byte;
        // its journal takes the mode of the database.
        QFile vide(temporaire);
        if (!vide.open(QIODevice::WriteOnly | QIODevice::NewOnly))
            return abandon(QStringLiteral("Création de %1 impossible : %2").arg(QDir::toNativeSeparators(chemin), vide.errorString()));
        PartagerDescripteur(vide.handle());
    }
    {
        QString detail;
        auto base = ouvrir(temporaire, Mode::Existante, &detail);
        if (!base || !remplir(*base, &detail)) {
            base.reset();
            return abandon(QStringLiteral("Création de %1 impossible : %2").arg(QDir::toNativeSeparators(chemin), detail));
        }
    }
    QString detail;
    switch (InstallerSansEcraser(temporaire, chemin, &detail)) {
    case Installation::Posee:
        return Creation::Creee;
    case Installation::DejaLa:
        QFile::remove(temporaire);
        return Creation::DejaLa;
    case Installation::Echec:
        break;
    }
    return abandon(detail);
}

bool BaseSqlite::executer(const QString &sql, QString *erreur)
{
    QSqlQuery q(db());
    if (q.exec(sql))
        return true;
    if (erreur)
        *erreur = q.lastError().text();
    return false;
}

bool BaseSqlite::tableExiste(const QString &table) const
{
    QSqlQuery q(db());
    q.prepare(QStringLiteral("SELECT 1 FROM sqlite_master WHERE type='table' AND name=? COLLATE NOCASE"));
    q.addBindValue(table);
    return q.exec() && q.next();
}
