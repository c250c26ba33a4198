#include "patients/gestiontype.h"

#include "patients/recherchepatients.h"
#include "patients/schemapatients.h"
#include "shell/appstate.h"
#include "shell/base/basesqlite.h"

#include <QDateTime>
#include <QSqlQuery>
#include <QSqlRecord>

qint16 RetourRecherche = 0;

LegendePatient &LegendePatient::instance()
{
    static LegendePatient legende;
    return legende;
}

void LegendePatient::fixer(const QString &texte)
{
    m_texte = texte;
    emit changee(texte);
}

QVariant TexteDateBase(const QVariant &valeur)
{
    if (valeur.isNull())
        return {};
    const QString texte = valeur.toString().trimmed();
    const QDate date = QDate::fromString(texte.left(10), QStringLiteral("yyyy-MM-dd"));
    if (!date.isValid())
        return texte;
    QString sortie = date.toString(QStringLiteral("dd/MM/yyyy"));
    if (texte.size() > 10) {
        const QTime heure = QTime::fromString(texte.mid(11, 8), QStringLiteral("HH:mm:ss"));
        if (heure.isValid() && heure != QTime(0, 0))
            sortie += u' ' + heure.toString(QStringLiteral("HH:mm:ss"));
    }
    return sortie;
}

namespace {

// A failure of the load: it ends at the first one, leaving the record
// filled as far as it got.
struct Arret
{
};

QVariant champ(const QSqlRecord &ligne, const QString &nom)
{
    const int i = ligne.indexOf(nom);
    if (i < 0)
        throw Arret{};
    return ligne.value(i);
}

// Taken as it is: a null cannot go into the record and ends the load.
QString texteStrict(const QSqlRecord &ligne, const QString &nom)
{
    const QVariant v = champ(ligne, nom);
    if (v.isNull())
        throw Arret{};
    return v.toString();
}

// Joined with an empty text first, so that a null becomes empty.
QString texteSouple(const QSqlRecord &ligne, const QString &nom)
{
    const QVariant v = champ(ligne, nom);
    return v.isNull() ? QString() : v.toString();
}

bool booleen(const QVariant &v)
{
    if (v.typeId() == QMetaType::Bool)
        return v.toBool();
    const QString t = v.toString().trimmed();
    if (t.compare(QStringLiteral("true"), Qt::CaseInsensitive) == 0 || t.compare(QStringLiteral("vrai"), Qt::CaseInsensitive) == 0)
        return true;
    return t.toLongLong() != 0;
}

qint32 numero(const QSqlRecord &ligne)
{
    const QVariant v = champ(ligne, QStringLiteral("Numero"));
    if (v.isNull())
        throw Arret{};
    return static_cast<qint32>(v.toLongLong());
}

enum class FormeIdentifiant { Construite, Numero };

void charger(const QSqlRecord &ligne, FormeIdentifiant forme)
{
    PatientCourantRecord &p = appState().PatientCourant;
    try {
        p.Nom = texteStrict(ligne, QStringLiteral("Nom"));
        p.Prenom = texteStrict(ligne, QStringLiteral("Prenom"));
        {
            const QVariant d = TexteDateBase(champ(ligne, QStringLiteral("Date de Naissance")));
            if (d.isNull())
                throw Arret{};
            p.DateNaissance = d.toString();
        }
        p.NomJeuneFille = texteSouple(ligne, QStringLiteral("Nom de jeune fille"));
        p.Numero = numero(ligne);
        {
            const QVariant s = champ(ligne, QStringLiteral("Sexe"));
            if (s.isNull())
                throw Arret{};
            p.Sexe = booleen(s);
        }
        p.NomAssure = texteSouple(ligne, QStringLiteral("Nom de l'assuré"));
        p.NomSesam = texteSouple(ligne, QStringLiteral("Nom_Sesam"));
        p.PrenomSesam = texteSouple(ligne, QStringLiteral("Prenom_Sesam"));
        {
            const QVariant c = champ(ligne, QStringLiteral("Contrat"));
            p.Contrat = c.isNull() ? QString() : (booleen(c) ? QStringLiteral("Vrai") : QStringLiteral("Faux"));
        }
        p.Profession = texteSouple(ligne, QStringLiteral("Profession"));
        p.Adresse1 = texteSouple(ligne, QStringLiteral("Adresse1"));
        p.Adresse2 = texteSouple(ligne, QStringLiteral("Adresse2"));
        p.CodePostal = texteSouple(ligne, QStringLiteral("Code Postal"));
        p.Ville = texteSouple(ligne, QStringLiteral("Ville"));
        p.Telephone1 = texteSouple(ligne, QStringLiteral("Telephone1"));
        p.Telephone2 = texteSouple(ligne, QStringLiteral("Telephone2"));
        p.Mel = texteSouple(ligne, QStringLiteral("mèl"));
        p.NumeroSecu = texteSouple(ligne, QStringLiteral("Numero de secu"));
        p.InsC = texteSouple(ligne, QStringLiteral("INS_C"));
        p.InsA = texteSouple(ligne, QStringLiteral("INS_A"));
        // The identifier is built before Base is read: its prefix is the
        // Base that the record held until now.
        qint32 n = numero(ligne);
        p.Identifiant = forme == FormeIdentifiant::Construite ? IdentifiantPatient(n) : QString::number(n);
        p.Base = texteSouple(ligne, QStringLiteral("Base"));
    } catch (const Arret &) {
        return;
    }
    LegendePatient::instance().fixer(p.Prenom + u' ' + p.Nom);
}

} // namespace

void ChargerDepuisCarte(const QSqlRecord &ligne)
{
    charger(ligne, FormeIdentifiant::Construite);
}

void ChargerDepuisCarte2(const QSqlRecord &ligne)
{
    charger(ligne, FormeIdentifiant::Construite);
}

void ChargerParNumero(qint32 &numero)
{
    auto base = BaseSqlite::ouvrir(CheminPatientsMdb(appState().CheminBaseAgenda), BaseSqlite::Mode::Lecture);
    if (!base)
        return;
    QSqlQuery q(base->db());
    q.setForwardOnly(true);
    q.prepare(QStringLiteral("SELECT * FROM Signaletiques WHERE Numero = ?"));
    q.addBindValue(numero);
    if (!q.exec() || !q.next())
        return;
    charger(q.record(), FormeIdentifiant::Numero);
}

void ChargerDepuisLigne(const LigneRecherche &l, bool viderAvant)
{
    if (viderAvant)
        ViderPatientCourant();
    PatientCourantRecord &p = appState().PatientCourant;
    p.Nom = l.Nom;
    p.Prenom = l.Prenom;
    p.DateNaissance = TexteDateBase(l.DateNaissance).toString();
    p.Numero = static_cast<qint32>(l.Numero.toLongLong());
    p.Base = l.Base;
}

void ViderPatientCourant()
{
    appState().PatientCourant = PatientCourantRecord{};
    LegendePatient::instance().fixer(QString());
}

qint32 NumeroSuivant(qint32 &borneBasse)
{
    auto base = BaseSqlite::ouvrir(CheminPatientsMdb(appState().CheminBaseAgenda), BaseSqlite::Mode::Lecture);
    if (!base)
        return 0;
    return NumeroSuivantSur(base->db(), borneBasse);
}

qint32 NumeroSuivantSur(const QSqlDatabase &db, qint32 borneBasse)
{
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.exec(QStringLiteral("SELECT Numero FROM Signaletiques ORDER BY Numero DESC LIMIT 1")))
        return 0;
    if (!q.next())
        return borneBasse;
    if (q.value(0).isNull())
        return 0;
    const qint64 suivant = q.value(0).toLongLong() + 1;
    return static_cast<qint32>(std::max<qint64>(borneBasse, suivant));
}

QString IdentifiantPatient(qint32 &numero)
{
    if (numero <= 0)
        return {};
    const QString &base = appState().PatientCourant.Base;
    return (base.isEmpty() ? QStringLiteral("Agenda") : base) + QStringLiteral("%1").arg(numero, 8, 10, QLatin1Char('0'));
}
