#include "patients/fichepatient.h"

#include "patients/gestiontype.h"
#include "patients/schemapatients.h"
#include "shell/appstate.h"
#include "shell/base/basesqlite.h"
#include "shell/base/support.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

#include <memory>

namespace {

const QString formatDateCarte = QStringLiteral("dd/MM/yyyy");
const QString formatDateBase = QStringLiteral("yyyy-MM-dd");
const QString baseAgenda = QStringLiteral("Agenda");

QString texteErreur(const QSqlError &e)
{
    return e.databaseText().isEmpty() ? e.text() : e.databaseText();
}

QString ident(const QString &nom)
{
    return u'"' + QString(nom).replace(u'"', QStringLiteral("\"\"")) + u'"';
}

std::unique_ptr<BaseSqlite> ouvrirAgenda(BaseSqlite::Mode mode, QString *erreur)
{
    return BaseSqlite::ouvrir(CheminPatientsMdb(appState().CheminBaseAgenda), mode, erreur);
}

void fixer(QString *cible, const QString &valeur)
{
    if (cible)
        *cible = valeur;
}

// A read of the own base; the base stays open while the rows are read.
struct Lecture
{
    std::unique_ptr<BaseSqlite> base;
    std::optional<QSqlQuery> q;
};

Lecture lireAgenda(const QString &sql, const QVariantList &valeurs, QString *erreur)
{
    Lecture l;
    l.base = ouvrirAgenda(BaseSqlite::Mode::Lecture, erreur);
    if (!l.base)
        return l;
    QSqlQuery q(l.base->db());
    q.setForwardOnly(true);
    q.prepare(sql);
    for (const QVariant &v : valeurs)
        q.addBindValue(v);
    if (q.exec())
        l.q = std::move(q);
    else
        fixer(erreur, texteErreur(q.lastError()));
    return l;
}

// A write transaction that takes the write lock at once, so that the busy
// wait applies when another station is writing; rolled back unless
// committed.
class Transaction final
{
public:
    explicit Transaction(BaseSqlite &base)
        : m_base(base)
    {
        m_ouverte = m_base.executer(QStringLiteral("BEGIN IMMEDIATE"), &m_erreur);
    }
    ~Transaction()
    {
        if (m_ouverte)
            m_base.executer(QStringLiteral("ROLLBACK"));
    }
    Transaction(const Transaction &) = delete;
    Transaction &operator=(const Transaction &) = delete;

    [[nodiscard]] bool ouverte() const { return m_ouverte; }
    [[nodiscard]] const QString &erreur() const { return m_erreur; }
    bool valider(QString *erreur)
    {
        if (!m_base.executer(QStringLiteral("COMMIT"), erreur))
            return false;
        m_ouverte = false;
        return true;
    }

private:
    BaseSqlite &m_base;
    bool m_ouverte = false;
    QString m_erreur;
};

bool executer(QSqlQuery &q, QString *erreur)
{
    if (q.exec())
        return true;
    fixer(erreur, texteErreur(q.lastError()));
    return false;
}

// The columns of the values that a card writes: those of Signaletiques, less
// the auto-number.
QList<QPair<QString, QVariant>> colonnesEcrites(const ValeursFiche &valeurs, QString *erreur, bool *ok)
{
    QList<QPair<QString, QVariant>> sortie;
    *ok = true;
    for (auto it = valeurs.cbegin(); it != valeurs.cend(); ++it) {
        if (it.key() == QLatin1String("Compteur") || !ColonnesSignaletiques().contains(it.key()))
            continue;
        const std::optional<QVariant> v = ValeurStockee(it.key(), it.value(), erreur);
        if (!v) {
            *ok = false;
            return {};
        }
        sortie.append({it.key(), *v});
    }
    return sortie;
}

// A patient's identity (Nom, Prenom, birth date) is one row of a base, the
// names compared as the search compares them: no regard to case or accents,
// accented capitals included. The unique index of the base folds only the
// ASCII letters, and the bases made before carry that index as it is, so
// the rule is checked here, inside the write transaction, once the row is
// written: a double rolls the whole save back.
bool identiteUnique(const QSqlDatabase &db, const QString &colonneLigne, const QVariant &cle, QString *erreur)
{
    QSqlQuery q(db);
    q.setForwardOnly(true);
    q.prepare(QStringLiteral("SELECT COUNT(*) FROM Signaletiques n JOIN Signaletiques s "
                             "ON substr(s.\"Date de Naissance\", 1, 10) = substr(n.\"Date de Naissance\", 1, 10) "
                             "AND s.rowid <> n.rowid AND plier(s.Nom) = plier(n.Nom) AND plier(s.Prenom) = plier(n.Prenom) "
                             "WHERE n.%1 = ?")
                  .arg(colonneLigne));
    q.addBindValue(cle);
    if (!executer(q, erreur))
        return false;
    if (q.next() && q.value(0).toInt() == 0)
        return true;
    fixer(erreur, QStringLiteral("un patient de même nom, prénom et date de naissance existe déjà dans la base."));
    return false;
}

bool mettreAJour(const QSqlDatabase &db, const ValeursFiche &valeurs, qint32 numero, QString *erreur)
{
    bool ok = false;
    const auto colonnes = colonnesEcrites(valeurs, erreur, &ok);
    if (!ok)
        return false;
    if (colonnes.isEmpty())
        return true;
    QStringList affectations;
    for (const auto &c : colonnes)
        affectations << ident(c.first) + QStringLiteral(" = ?");
    QSqlQuery q(db);
    q.prepare(QStringLiteral("UPDATE Signaletiques SET %1 WHERE Numero = ?").arg(affectations.join(QStringLiteral(", "))));
    for (const auto &c : colonnes)
        q.addBindValue(c.second);
    q.addBindValue(numero);
    if (!executer(q, erreur))
        return false;
    if (q.numRowsAffected() != 1) {
        fixer(erreur, QStringLiteral("la fiche n° %1 n'existe plus dans la base.").arg(numero));
        return false;
    }
    return identiteUnique(db, QStringLiteral("Numero"), numero, erreur);
}

bool inserer(const QSqlDatabase &db, const ValeursFiche &valeurs, QString *erreur)
{
    bool ok = false;
    const auto colonnes = colonnesEcrites(valeurs, erreur, &ok);
    if (!ok)
        return false;
    QStringList noms;
    QStringList marques;
    for (const auto &c : colonnes) {
        noms << ident(c.first);
        marques << QStringLiteral("?");
    }
    QSqlQuery q(db);
    q.prepare(QStringLiteral("INSERT INTO Signaletiques (%1) VALUES (%2)")
                  .arg(noms.join(QStringLiteral(", ")), marques.join(QStringLiteral(", "))));
    for (const auto &c : colonnes)
        q.addBindValue(c.second);
    return executer(q, erreur) && identiteUnique(db, QStringLiteral("rowid"), q.lastInsertId(), erreur);
}

bool ecrireNote(const QSqlDatabase &db, qint32 numero, const NoteSaisie &note, QString *erreur)
{
    QSqlQuery q(db);
    q.prepare(QStringLiteral("INSERT INTO Notes (Numero, Texte, Txt) VALUES (?, ?, ?) "
                             "ON CONFLICT (Numero) DO UPDATE SET Texte = excluded.Texte, Txt = excluded.Txt"));
    q.addBindValue(numero);
    q.addBindValue(note.texte);
    q.addBindValue(note.txt);
    return executer(q, erreur);
}

bool creerNoteVide(const QSqlDatabase &db, qint32 numero, QString *erreur)
{
    QSqlQuery q(db);
    q.prepare(QStringLiteral("INSERT OR IGNORE INTO Notes (Numero) VALUES (?)"));
    q.addBindValue(numero);
    return executer(q, erreur);
}

std::optional<QSqlRecord> ligneParNumero(const QSqlDatabase &db, qint32 numero, QString *erreur)
{
    QSqlQuery q(db);
    q.setForwardOnly(true);
    q.prepare(QStringLiteral("SELECT * FROM Signaletiques WHERE Numero = ?"));
    q.addBindValue(numero);
    if (!executer(q, erreur) || !q.next())
        return std::nullopt;
    return q.record();
}

// The auto-number that the next row of Signaletiques will get: the counter
// is never given twice, so it follows the highest ever given.
qint32 prochainCompteur(const QSqlDatabase &db)
{
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (q.exec(QStringLiteral("SELECT seq FROM sqlite_sequence WHERE name = 'Signaletiques'")) && q.next())
        return static_cast<qint32>(q.value(0).toLongLong() + 1);
    if (q.exec(QStringLiteral("SELECT COALESCE(MAX(Compteur), 0) + 1 FROM Signaletiques")) && q.next())
        return static_cast<qint32>(q.value(0).toLongLong());
    return 1;
}

QString texteDate(const QVariant &v)
{
    if (v.isNull())
        return {};
    const QString t = v.toString().trimmed();
    const QDate d = QDate::fromString(t.left(10), formatDateBase);
    return d.isValid() ? d.toString(formatDateCarte) : t;
}

} // namespace

ValeursFiche ValeursDeLigne(const QSqlRecord &ligne)
{
    ValeursFiche v;
    for (int i = 0; i < ligne.count(); ++i) {
        const QString nom = ligne.fieldName(i);
        const QVariant valeur = ligne.value(i);
        switch (ColonneSignaletiques(nom).genre) {
        case GenreColonne::DateHeure:
            v.insert(nom, texteDate(valeur));
            break;
        case GenreColonne::Booleen:
            v.insert(nom, !valeur.isNull() && valeur.toString() != QLatin1String("0")
                              && valeur.toString().compare(QLatin1String("false"), Qt::CaseInsensitive) != 0);
            break;
        case GenreColonne::Long:
        case GenreColonne::Compteur:
            v.insert(nom, valeur.isNull() ? QVariant() : QVariant(valeur.toLongLong()));
            break;
        default:
            v.insert(nom, valeur.isNull() ? QString() : valeur.toString());
        }
    }
    return v;
}

std::optional<ValeursFiche> LireSignaletique(const QString &cheminBase, qint32 numero, QString *erreur,
                                             ChargementPatient chargement)
{
    auto base = BaseSqlite::ouvrir(cheminBase, BaseSqlite::Mode::Lecture, erreur);
    if (!base)
        return std::nullopt;
    const auto ligne = ligneParNumero(base->db(), numero, erreur);
    if (!ligne)
        return std::nullopt;
    if (chargement == ChargementPatient::Carte)
        ChargerDepuisCarte(*ligne);
    else if (chargement == ChargementPatient::Carte2)
        ChargerDepuisCarte2(*ligne);
    return ValeursDeLigne(*ligne);
}

std::optional<QVariant> ValeurStockee(const QString &colonne, const QVariant &valeur, QString *erreur)
{
    switch (ColonneSignaletiques(colonne).genre) {
    case GenreColonne::DateHeure: {
        const QString t = valeur.toString().trimmed();
        if (t.isEmpty() || t == MasqueDateVide)
            return QVariant();
        const QDate d = LireDateTexte(t);
        if (!d.isValid()) {
            fixer(erreur, QStringLiteral("la date « %1 » (%2) n'est pas valide.").arg(t, colonne));
            return std::nullopt;
        }
        return QVariant(d.toString(formatDateBase));
    }
    case GenreColonne::Booleen:
        return QVariant(valeur.toBool() ? -1 : 0);
    case GenreColonne::Long:
    case GenreColonne::Compteur:
        return valeur.isNull() || valeur.toString().isEmpty() ? QVariant() : QVariant(valeur.toLongLong());
    default:
        return QVariant(valeur.toString());
    }
}

QString NomEnCapitales(const QString &nom)
{
    return nom.toUpper();
}

QString PrenomCapitalise(const QString &prenom)
{
    QString sortie = prenom;
    for (qsizetype i = 0; i < sortie.size(); ++i) {
        if (i == 0 || sortie[i - 1] == u'-' || sortie[i - 1] == u' ')
            sortie[i] = sortie[i].toUpper();
    }
    return sortie;
}

ControleNaissance ControlerNaissance(const QString &texteMasque, const QDate &aujourdhui)
{
    ControleNaissance c;
    c.texte = texteMasque;
    if (texteMasque == MasqueDateVide || texteMasque.trimmed().isEmpty())
        return c;
    QDate date = LireDateTexte(texteMasque);
    if (!date.isValid()) {
        // Day, month and a two-digit year with the mask's last two places
        // left open still count.
        date = LireDateTexte(texteMasque.left(8));
        if (!date.isValid()) {
            c.etat = ControleNaissance::Etat::Erronee;
            return c;
        }
        c.texte = date.toString(formatDateCarte);
    }
    c.etat = date > aujourdhui ? ControleNaissance::Etat::Future : ControleNaissance::Etat::Valide;
    return c;
}

std::optional<MedecinTraitant> SeparerSesamDivers(const QString &sesamDivers)
{
    const qsizetype at = sesamDivers.indexOf(u'@');
    if (at < 0)
        return std::nullopt;
    return MedecinTraitant{sesamDivers.left(at), sesamDivers.mid(at + 1)};
}

QString JoindreSesamDivers(const QString &nom, const QString &prenom)
{
    return nom + u'@' + prenom;
}

QString StockerAMC(const BlocAMC &bloc)
{
    QString sortie;
    for (const QString &v : bloc)
        sortie += v + u'|';
    return sortie + u'§';
}

QStringList GetAMC(const QString &photo)
{
    const qsizetype fin = photo.indexOf(u'§');
    if (fin < 0)
        return {};
    const QString bloc = photo.left(fin);
    if (!bloc.contains(u'|'))
        return {};
    return bloc.split(u'|').mid(0, NombreValeursAMC);
}

QList<QStringList> RendezVousDuPatient(qint32 numero, QString *erreur)
{
    QList<QStringList> lignes;
    Lecture l = lireAgenda(QStringLiteral("SELECT DateRv, HeureRV, Praticien, Motif, DatePrise, DateModif, Numero FROM Events "
                                          "WHERE Numero = ? ORDER BY DateRv DESC, HeureRV DESC"),
                           {numero}, erreur);
    if (!l.q)
        return lignes;
    QSqlQuery &q = *l.q;
    const auto moment = [](const QVariant &v) {
        const QDateTime m = QDateTime::fromString(v.toString(), QStringLiteral("yyyy-MM-dd HH:mm:ss"));
        return m.isValid() ? m.toString(QStringLiteral("dd/MM/yyyy HH:mm:ss")) : v.toString();
    };
    while (q.next()) {
        lignes.append({texteDate(q.value(0)), q.value(1).toString().right(8).left(5), q.value(2).toString(),
                       q.value(3).toString(), moment(q.value(4)), moment(q.value(5)), q.value(6).toString()});
    }
    return lignes;
}

QStringList MedecinsConnus(const QString &debut, QString *erreur)
{
    QStringList noms;
    Lecture l = lireAgenda(QStringLiteral("SELECT Sesam_Divers FROM Signaletiques WHERE Sesam_Divers LIKE ? "
                                          "GROUP BY Sesam_Divers ORDER BY Sesam_Divers"),
                           {debut + u'*'}, erreur);
    if (!l.q)
        return noms;
    QSqlQuery &q = *l.q;
    while (q.next())
        noms << q.value(0).toString();
    return noms;
}

QList<ValeursFiche> MemeFamille(const QString &debutNom, QString *erreur)
{
    QList<ValeursFiche> lignes;
    Lecture l = lireAgenda(QStringLiteral("SELECT * FROM Signaletiques WHERE Nom LIKE ? ORDER BY Nom, Prenom"),
                           {debutNom + u'*'}, erreur);
    if (!l.q)
        return lignes;
    QSqlQuery &q = *l.q;
    while (q.next())
        lignes.append(ValeursDeLigne(q.record()));
    return lignes;
}

NoteFiche LireNote(qint32 numero, QString *erreur)
{
    NoteFiche note;
    Lecture l = lireAgenda(QStringLiteral("SELECT Texte FROM Notes WHERE Numero = ?"), {numero}, erreur);
    if (l.q && l.q->next()) {
        note.existe = true;
        note.texte = l.q->value(0).toString();
    }
    return note;
}

qint32 NumeroNouvelleFiche()
{
    auto base = ouvrirAgenda(BaseSqlite::Mode::Lecture, nullptr);
    if (!base)
        return 0;
    return NumeroSuivantSur(base->db(), prochainCompteur(base->db()));
}

bool EnregistrerFicheAgenda(const ValeursFiche &valeurs, qint32 numero, bool nouvelle,
                            const std::optional<NoteSaisie> &note, QString *erreur)
{
    auto base = ouvrirAgenda(BaseSqlite::Mode::Existante, erreur);
    if (!base)
        return false;
    Transaction t(*base);
    if (!t.ouverte()) {
        fixer(erreur, t.erreur());
        return false;
    }
    ValeursFiche v = valeurs;
    v.insert(QStringLiteral("Base"), baseAgenda);
    v.insert(QStringLiteral("Numero"), numero);
    const QSqlDatabase db = base->db();
    if (!(nouvelle ? inserer(db, v, erreur) : mettreAJour(db, v, numero, erreur)))
        return false;
    if (note && !ecrireNote(db, numero, *note, erreur))
        return false;
    const auto ligne = ligneParNumero(db, numero, erreur);
    if (!ligne || !t.valider(erreur))
        return false;
    ChargerDepuisCarte(*ligne);
    return true;
}

QString BaseDuPatientLie(const QString &base)
{
    const AppState &etat = appState();
    for (std::size_t i = 1; i <= 4; ++i) {
        if (etat.Identity[i] == base)
            return etat.Path[i];
    }
    return CheminPatientsMdb(etat.CheminBaseAgenda);
}

qint32 EcrireMiroirPatient(QString *erreur)
{
    const PatientCourantRecord &p = appState().PatientCourant;
    auto base = ouvrirAgenda(BaseSqlite::Mode::Existante, erreur);
    if (!base)
        return 0;
    Transaction t(*base);
    if (!t.ouverte()) {
        fixer(erreur, t.erreur());
        return 0;
    }
    const QSqlDatabase db = base->db();
    const std::optional<QVariant> naissance = ValeurStockee(QStringLiteral("Date de Naissance"), p.DateNaissance, erreur);
    if (!naissance)
        return 0;

    // The mirror is the row of the same identity: the names are patterns of
    // the base's LIKE (no regard to case or accents; a "*" in a name acts as
    // a wildcard), the birth date is equal.
    QSqlQuery q(db);
    q.setForwardOnly(true);
    q.prepare(QStringLiteral("SELECT Numero FROM Signaletiques WHERE Nom LIKE ? AND Prenom LIKE ? "
                             "AND substr(\"Date de Naissance\", 1, 10) = ?"));
    q.addBindValue(p.Nom);
    q.addBindValue(p.Prenom);
    q.addBindValue(*naissance);
    if (!executer(q, erreur))
        return 0;
    QList<qint32> trouves;
    while (q.next())
        trouves << static_cast<qint32>(q.value(0).toLongLong());
    q.finish();

    const bool nouveau = trouves.size() != 1;
    const qint32 n = nouveau ? NumeroSuivantSur(db, prochainCompteur(db)) : trouves.first();
    if (n <= 0) {
        fixer(erreur, QStringLiteral("aucun numéro de patient n'a pu être donné."));
        return 0;
    }

    ValeursFiche v{
        {QStringLiteral("Nom"), p.Nom},
        {QStringLiteral("Prenom"), p.Prenom},
        {QStringLiteral("Date de Naissance"), p.DateNaissance},
        {QStringLiteral("Numero"), n},
        {QStringLiteral("Sexe"), p.Sexe},
        {QStringLiteral("Contrat"), p.Contrat == QLatin1String("Vrai")},
        {QStringLiteral("Base"), baseAgenda},
    };
    // An empty value of the linked row leaves the mirror's value alone.
    const QList<QPair<QString, const QString *>> siRempli{
        {QStringLiteral("Nom de jeune fille"), &p.NomJeuneFille},
        {QStringLiteral("Nom de l'assuré"), &p.NomAssure},
        {QStringLiteral("Nom_Sesam"), &p.NomSesam},
        {QStringLiteral("Prenom_Sesam"), &p.PrenomSesam},
        {QStringLiteral("Profession"), &p.Profession},
        {QStringLiteral("Adresse1"), &p.Adresse1},
        {QStringLiteral("Adresse2"), &p.Adresse2},
        {QStringLiteral("Code Postal"), &p.CodePostal},
        {QStringLiteral("Ville"), &p.Ville},
        {QStringLiteral("Telephone1"), &p.Telephone1},
        {QStringLiteral("Telephone2"), &p.Telephone2},
        {QStringLiteral("mèl"), &p.Mel},
        {QStringLiteral("Numero de secu"), &p.NumeroSecu},
        {QStringLiteral("INS_A"), &p.InsA},
        {QStringLiteral("INS_C"), &p.InsC},
    };
    for (const auto &[colonne, valeur] : siRempli) {
        if (!valeur->isEmpty())
            v.insert(colonne, *valeur);
    }
    if (nouveau) {
        if (!inserer(db, v, erreur) || !creerNoteVide(db, n, erreur))
            return 0;
    } else if (!mettreAJour(db, v, n, erreur)) {
        return 0;
    }
    return t.valider(erreur) ? n : 0;
}

bool EnregistrerFicheLiee(const QString &cheminBaseLiee, qint32 numeroLie, const ValeursFiche &valeurs,
                          QString *erreur)
{
    auto liee = BaseSqlite::ouvrir(cheminBaseLiee, BaseSqlite::Mode::Existante, erreur);
    if (!liee)
        return false;
    {
        Transaction t(*liee);
        if (!t.ouverte()) {
            fixer(erreur, t.erreur());
            return false;
        }
        if (!mettreAJour(liee->db(), valeurs, numeroLie, erreur))
            return false;
        const auto ligne = ligneParNumero(liee->db(), numeroLie, erreur);
        if (!ligne || !t.valider(erreur))
            return false;
        ChargerDepuisCarte2(*ligne);
    }

    const qint32 n = EcrireMiroirPatient(erreur);
    if (n <= 0)
        return false;

    Transaction t(*liee);
    if (!t.ouverte()) {
        fixer(erreur, t.erreur());
        return false;
    }
    QSqlQuery q(liee->db());
    q.prepare(QStringLiteral("UPDATE Signaletiques SET Agenda = ? WHERE Numero = ?"));
    q.addBindValue(n);
    q.addBindValue(numeroLie);
    if (!executer(q, erreur) || !t.valider(erreur))
        return false;
    // From here on the caller sees the number of the own base.
    appState().PatientCourant.Numero = n;
    return true;
}
