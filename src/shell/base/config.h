#pragma once

#include <QList>
#include <QString>

#include <array>

#include <map>
#include <memory>

class BaseSqlite;
class QSqlQuery;

// Config.mdb with its table Ini, open for the whole run: the practice's shared
// settings (one row a setting: Section, Item, Valeur) and the slot
// reservations of the appointment editor. Sections and items are matched
// without regard to case, as the index idxPrimary does.
class ConfigIni final
{
public:
    [[nodiscard]] static std::shared_ptr<ConfigIni> ouvrir(const QString &chemin, QString *erreur = nullptr);
    ~ConfigIni();
    ConfigIni(const ConfigIni &) = delete;
    ConfigIni &operator=(const ConfigIni &) = delete;

    [[nodiscard]] BaseSqlite &base() const { return *m_base; }

    // An empty stored value reads as the default, like a missing row.
    [[nodiscard]] QString lire(const QString &section, const QString &item, const QString &defaut);
    // Adds or replaces the row. False on a database failure (reported by the
    // caller).
    bool ecrire(const QString &section, const QString &item, const QString &valeur);
    // Deletes every row whose Valeur matches the pattern, whatever its section.
    bool supprimerReservation(const QString &valeur);

    // A statement prepared once for the whole run (the rule lookup runs for
    // every cell drawn). The query must be bound and executed by the caller.
    [[nodiscard]] QSqlQuery &requete(const QString &sql);

    // Text of the last failure, in French.
    [[nodiscard]] const QString &derniereErreur() const { return m_erreur; }

private:
    explicit ConfigIni(std::unique_ptr<BaseSqlite> base);
    bool echec(const QSqlQuery &q);
    std::unique_ptr<BaseSqlite> m_base;
    std::map<QString, std::unique_ptr<QSqlQuery>> m_requetes;
    QString m_erreur;
    bool m_lectureSignalee = false;
};

// The settings of table Ini through the configuration opened at start-up.
bool OuvrirConfig(const QString &chemin, QString *erreur = nullptr);
void FermerConfig();
// The configuration opened by OuvrirConfig, null when none is.
[[nodiscard]] std::shared_ptr<ConfigIni> ConfigOuverte();
// Puts another configuration in its place (null closes it): a tool that
// borrows the state gives back the one it found.
void FixerConfig(std::shared_ptr<ConfigIni> config);
// A failure of the table is reported to the user ("Erreur" box) and reads as
// the default; nothing else stops.
[[nodiscard]] QString LireConfig(const QString &section, const QString &item, const QString &defaut);
void EcrireConfig(const QString &section, const QString &item, const QString &valeur);
// Writes rows (section, item, value) of the opened configuration in one
// transaction that takes its write lock first: all of them or none, so that
// another station never reads half a set. False with the reason otherwise.
bool EcrireConfigEnBloc(const QList<std::array<QString, 3>> &lignes, QString *erreur);
void SupprimerReservation(const QString &valeur);
