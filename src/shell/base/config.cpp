#include "shell/base/config.h"

#include "shell/base/basesqlite.h"
#include "shell/base/prompt.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <utility>

std::shared_ptr<ConfigIni> ConfigIni::ouvrir(const QString &chemin, QString *erreur)
{
    auto base = BaseSqlite::ouvrir(chemin, BaseSqlite::Mode::Existante, erreur);
    if (!base)
        return nullptr;
    if (!base->tableExiste(QStringLiteral("Ini"))) {
        if (erreur)
            *erreur = QStringLiteral("La table Ini est absente de %1.").arg(chemin);
        return nullptr;
    }
    // A file whose pages were damaged (zeroed by a disk or a copy) opens and
    // lists its tables, then fails every read: it is refused here, once,
    // rather than at each of the settings read afterwards.
    {
        QSqlQuery q(base->db());
        if (!q.exec(QStringLiteral("PRAGMA quick_check(1)")) || !q.next()
            || q.value(0).toString().compare(QLatin1String("ok"), Qt::CaseInsensitive) != 0) {
            if (erreur) {
                const QSqlError e = q.lastError();
                const int primaire = e.nativeErrorCode().toInt() & 0xff;
                if (e.isValid() && (primaire == 5 || primaire == 6)) // SQLITE_BUSY, SQLITE_LOCKED
                    *erreur = QStringLiteral("La base %1 est verrouillée par un autre utilisateur (%2).").arg(chemin, e.text());
                else
                    *erreur = QStringLiteral("Le fichier %1 est endommagé (%2).").arg(chemin, e.isValid() ? e.text() : q.value(0).toString());
            }
            return nullptr;
        }
    }
    return std::shared_ptr<ConfigIni>(new ConfigIni(std::move(base)));
}

ConfigIni::ConfigIni(std::unique_ptr<BaseSqlite> base)
    : m_base(std::move(base))
{
}

ConfigIni::~ConfigIni()
{
    // Prepared statements go before the connection that holds them.
    m_requetes.clear();
}

QSqlQuery &ConfigIni::requete(const QString &sql)
{
    auto it = m_requetes.find(sql);
    if (it == m_requetes.end()) {
        auto q = std::make_unique<QSqlQuery>(m_base->db());
        q->setForwardOnly(true);
        q->prepare(sql);
        it = m_requetes.emplace(sql, std::move(q)).first;
    }
    return *it->second;
}

bool ConfigIni::echec(const QSqlQuery &q)
{
    m_erreur = q.lastError().text();
    return false;
}

// Sections and items match without regard to case, accented letters
// included: the index of the table folds ASCII only, so a row that it misses
// is looked for again through the practice's folding ("plier").
namespace {

const QString selectionExacte = QStringLiteral("Section = ? AND Item = ?");
const QString selectionPliee = QStringLiteral("plier(Section) = plier(?) AND plier(Item) = plier(?)");

} // namespace

QString ConfigIni::lire(const QString &section, const QString &item, const QString &defaut)
{
    for (const QString &selection : {selectionExacte, selectionPliee}) {
        QSqlQuery &q = requete(QStringLiteral("SELECT Valeur FROM Ini WHERE ") + selection);
        q.bindValue(0, section);
        q.bindValue(1, item);
        if (!q.exec()) {
            echec(q);
            // Told once: the settings read after it would fail alike, each
            // with its own box.
            if (!std::exchange(m_lectureSignalee, true))
                Prompt::informer(QStringLiteral("Erreur"),
                                 QStringLiteral("Lecture de la configuration impossible (%1 / %2) :\n%3\n\nLes valeurs par "
                                                "défaut sont utilisées tant que le fichier ne peut pas être lu.")
                                     .arg(section, item, m_erreur),
                                 Prompt::Icone::Critique);
            return defaut;
        }
        if (q.next()) {
            const QString valeur = q.value(0).toString();
            q.finish();
            return valeur.isEmpty() ? defaut : valeur;
        }
        q.finish();
    }
    return defaut;
}

bool ConfigIni::ecrire(const QString &section, const QString &item, const QString &valeur)
{
    // The row found either way takes the value; only a row found by neither
    // is added (one statement, so that two stations never add it twice).
    for (const QString &selection : {selectionExacte, selectionPliee}) {
        QSqlQuery q(m_base->db());
        q.prepare(QStringLiteral("UPDATE Ini SET Valeur = ? WHERE ") + selection);
        q.addBindValue(valeur);
        q.addBindValue(section);
        q.addBindValue(item);
        if (!q.exec())
            return echec(q);
        if (q.numRowsAffected() > 0)
            return true;
    }
    QSqlQuery q(m_base->db());
    q.prepare(QStringLiteral("INSERT INTO Ini (Section, Item, Valeur) VALUES (?, ?, ?) "
                             "ON CONFLICT (Section, Item) DO UPDATE SET Valeur = excluded.Valeur"));
    q.addBindValue(section);
    q.addBindValue(item);
    q.addBindValue(valeur);
    return q.exec() || echec(q);
}

bool ConfigIni::supprimerReservation(const QString &valeur)
{
    QSqlQuery q(m_base->db());
    q.prepare(QStringLiteral("DELETE FROM Ini WHERE Valeur LIKE ?"));
    q.addBindValue(valeur);
    return q.exec() || echec(q);
}

namespace {

std::shared_ptr<ConfigIni> &configCourante()
{
    static std::shared_ptr<ConfigIni> config;
    return config;
}

} // namespace

std::shared_ptr<ConfigIni> ConfigOuverte()
{
    return configCourante();
}

bool EcrireConfigEnBloc(const QList<std::array<QString, 3>> &lignes, QString *erreur)
{
    const auto config = ConfigOuverte();
    if (!config) {
        if (erreur)
            *erreur = QStringLiteral("la configuration du cabinet (Config.mdb) n'est pas ouverte.");
        return false;
    }
    if (!config->base().executer(QStringLiteral("BEGIN IMMEDIATE"), erreur))
        return false;
    for (const auto &[section, item, valeur] : lignes) {
        if (!config->ecrire(section, item, valeur)) {
            if (erreur)
                *erreur = config->derniereErreur();
            config->base().executer(QStringLiteral("ROLLBACK"));
            return false;
        }
    }
    return config->base().executer(QStringLiteral("COMMIT"), erreur);
}

void FixerConfig(std::shared_ptr<ConfigIni> config)
{
    configCourante() = std::move(config);
}

bool OuvrirConfig(const QString &chemin, QString *erreur)
{
    auto config = ConfigIni::ouvrir(chemin, erreur);
    if (!config)
        return false;
    configCourante() = std::move(config);
    return true;
}

void FermerConfig()
{
    configCourante().reset();
}

// A table that cannot be read or written is our decision, not a fatal
// error: the user is told in French and the program goes on (a read answers
// the default), so that one locked or damaged Config.mdb never ends the
// session and loses what is on screen.
QString LireConfig(const QString &section, const QString &item, const QString &defaut)
{
    auto &config = configCourante();
    if (!config)
        return defaut;
    return config->lire(section, item, defaut);
}

void EcrireConfig(const QString &section, const QString &item, const QString &valeur)
{
    auto &config = configCourante();
    if (!config)
        return;
    if (!config->ecrire(section, item, valeur))
        Prompt::informer(QStringLiteral("Erreur"),
                         QStringLiteral("Enregistrement de la configuration impossible (%1 / %2) :\n%3")
                             .arg(section, item, config->derniereErreur()),
                         Prompt::Icone::Critique);
}

void SupprimerReservation(const QString &valeur)
{
    auto &config = configCourante();
    if (config)
        config->supprimerReservation(valeur);
}
