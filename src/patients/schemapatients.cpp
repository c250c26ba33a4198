#include "patients/schemapatients.h"

#include "shell/base/basesqlite.h"
#include "shell/base/prompt.h"
#include "shell/base/support.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <sqlite3.h>

#include <vector>

// How the patient base is laid out on SQLite, and how values are stored in it
// (every reader and writer of the base keeps to this):
// - Text(n): TEXT with a CHECK on the length in characters, so that an
//   over-long text is refused by the base as the practice's format refuses
//   it; the empty text is allowed.
// - Memo: TEXT without limit.
// - Boolean: -1 for true and 0 for false, as the practice-management product
//   writes them.
// - Long: INTEGER.
// - Date/Time: text "yyyy-MM-dd HH:mm:ss" (DatePrise, DateModif); the columns
//   that hold only a date ("Date de Naissance", "Derniere Visite",
//   "Date_Contrat", DateRv) hold "yyyy-MM-dd", and HeureRV holds "HH:mm:ss".
// - Counter (Compteur of Signaletiques): the rowid, AUTOINCREMENT so that a
//   number is never given twice.
// No column has a default. The indexes keep their names; a column of a
// required index is NOT NULL, and the text columns of a unique index compare
// without regard to case (two rows "DUPONT" and "Dupont" born the same day
// are the same patient).
namespace {

// In the order of GenreColonne, which is this type seen from outside.
enum class TypeJet { Texte, Memo, Booleen, Long, DateHeure, Compteur };

struct Colonne
{
    QString nom;
    TypeJet type;
    int longueur = 0; // Text only
};

struct Index
{
    QString nom;
    QStringList champs;
    bool unique;
    bool requis;
};

struct Table
{
    QString nom;
    std::vector<Colonne> colonnes;
    std::vector<Index> index;
};

Colonne texte(const char16_t *nom, int longueur)
{
    return {QString::fromUtf16(nom), TypeJet::Texte, longueur};
}

Colonne de(const char16_t *nom, TypeJet type)
{
    return {QString::fromUtf16(nom), type, 0};
}

const Table &tableSignaletiques()
{
    static const Table t{
        QStringLiteral("Signaletiques"),
        {
            texte(u"Nom", 64),
            texte(u"Prenom", 64),
            de(u"Date de Naissance", TypeJet::DateHeure),
            texte(u"Nom de jeune fille", 64),
            texte(u"Nom de l'assuré", 64),
            de(u"Sexe", TypeJet::Booleen),
            de(u"Protection", TypeJet::Booleen),
            texte(u"Profession", 64),
            texte(u"Adresse1", 64),
            texte(u"Adresse2", 64),
            texte(u"Code Postal", 7),
            texte(u"Ville", 64),
            texte(u"Telephone1", 20),
            texte(u"Telephone2", 20),
            texte(u"Notes", 255),
            texte(u"Consultant1", 30),
            texte(u"Consultant2", 30),
            texte(u"Prise en charge", 12),
            texte(u"Numero de secu", 15),
            texte(u"Code CPAM", 8),
            texte(u"Code Centre", 8),
            texte(u"Debut ALD", 12),
            texte(u"Fin ALD", 12),
            texte(u"Fin de droit", 12),
            de(u"Derniere Visite", TypeJet::DateHeure),
            de(u"No Dossier Comptable", TypeJet::Long),
            de(u"Numero", TypeJet::Long),
            texte(u"reseau", 255),
            de(u"adpar1", TypeJet::Booleen),
            de(u"adpar2", TypeJet::Booleen),
            de(u"Decede", TypeJet::Booleen),
            de(u"Sesam_Vitale", TypeJet::Memo),
            texte(u"Nom_Sesam", 64),
            texte(u"Prenom_Sesam", 64),
            de(u"Sesam_SFI", TypeJet::Memo),
            texte(u"Sesam_Mutuelle", 30),
            texte(u"Sesam_MutContrat", 30),
            texte(u"Sesam_MutAdherent", 30),
            texte(u"Sesam_Divers", 255),
            de(u"IS_Assure", TypeJet::Booleen),
            de(u"Photo", TypeJet::Memo),
            texte(u"mèl", 64),
            texte(u"Pro_adresse1", 64),
            texte(u"Pro_adresse2", 64),
            texte(u"Pro_CP", 7),
            texte(u"Pro_Ville", 64),
            texte(u"Pro_Téléphone", 50),
            texte(u"Pro_Portable", 50),
            texte(u"Pro_Mèl", 50),
            texte(u"Ville_naissance", 64),
            texte(u"Note2", 255),
            texte(u"Note3", 255),
            de(u"Contrat", TypeJet::Booleen),
            de(u"Date_Contrat", TypeJet::DateHeure),
            texte(u"CP_naissance", 7),
            texte(u"Dentition", 255),
            texte(u"Dentition2", 255),
            texte(u"initial", 255),
            texte(u"Sesam_Mutdebut", 12),
            texte(u"Sesam_MutFin", 12),
            texte(u"INS_A", 32),
            texte(u"INS_C", 32),
            texte(u"Situation", 16),
            texte(u"Enfants", 2),
            texte(u"Médecin traitant", 64),
            de(u"Compteur", TypeJet::Compteur),
            de(u"Agenda", TypeJet::Long),
            texte(u"Base", 32),
        },
        {
            {QStringLiteral("Index Numero"), {QStringLiteral("Numero")}, true, true},
            {QStringLiteral("Index Sesam"),
             {QStringLiteral("Nom_Sesam"), QStringLiteral("Prenom_Sesam"), QStringLiteral("Date de Naissance")},
             false,
             false},
            // The identity of a patient, the primary key of the format.
            {QStringLiteral("Index Signaletiques"),
             {QStringLiteral("Nom"), QStringLiteral("Prenom"), QStringLiteral("Date de Naissance")},
             true,
             true},
        },
    };
    return t;
}

const Table &tableBrenwick()
{
    static const Table t{
        QStringLiteral("Brenwick"),
        {texte(u"Type", 16), texte(u"Version", 16), texte(u"Password", 16), texte(u"Serial", 16)},
        {},
    };
    return t;
}

const Table &tableEvents()
{
    static const Table t{
        QStringLiteral("Events"),
        {
            de(u"Numero", TypeJet::Long),
            de(u"DateRv", TypeJet::DateHeure),
            de(u"HeureRV", TypeJet::DateHeure),
            texte(u"Praticien", 64),
            de(u"DatePrise", TypeJet::DateHeure),
            texte(u"Motif", 64),
            de(u"ID", TypeJet::Long),
            de(u"DateModif", TypeJet::DateHeure),
        },
        {
            {QStringLiteral("IdxID"), {QStringLiteral("ID")}, true, true},
            // Not unique: one patient may have two appointments at one time.
            {QStringLiteral("IdxPatient"),
             {QStringLiteral("Numero"), QStringLiteral("DateRv"), QStringLiteral("HeureRV")},
             false,
             false},
        },
    };
    return t;
}

const Table &tableNotes()
{
    static const Table t{
        QStringLiteral("Notes"),
        {de(u"Numero", TypeJet::Long), de(u"Texte", TypeJet::Memo), de(u"Txt", TypeJet::Memo)},
        {{QStringLiteral("Idx"), {QStringLiteral("Numero")}, true, true}},
    };
    return t;
}

QString ident(const QString &nom)
{
    return u'"' + QString(nom).replace(u'"', QStringLiteral("\"\"")) + u'"';
}

QString definitionColonne(const Table &table, const Colonne &c)
{
    bool requis = false;
    bool dansUnique = false;
    for (const Index &i : table.index) {
        if (!i.champs.contains(c.nom))
            continue;
        requis = requis || i.requis;
        dansUnique = dansUnique || i.unique;
    }
    const QString n = ident(c.nom);
    QString def = n + u' ';
    switch (c.type) {
    case TypeJet::Texte:
        def += QStringLiteral("TEXT(%1)").arg(c.longueur);
        break;
    case TypeJet::Memo:
        def += QStringLiteral("TEXT");
        break;
    case TypeJet::Booleen:
        def += QStringLiteral("BOOLEAN");
        break;
    case TypeJet::Long:
        def += QStringLiteral("INTEGER");
        break;
    case TypeJet::DateHeure:
        def += QStringLiteral("DATETIME");
        break;
    case TypeJet::Compteur:
        return def + QStringLiteral("INTEGER PRIMARY KEY AUTOINCREMENT");
    }
    if (requis)
        def += QStringLiteral(" NOT NULL");
    if (c.type == TypeJet::Texte && dansUnique)
        def += QStringLiteral(" COLLATE NOCASE");
    if (c.type == TypeJet::Texte)
        def += QStringLiteral(" CHECK (length(%1) <= %2)").arg(n).arg(c.longueur);
    // A date cannot be empty: a required date refuses the empty text as it
    // refuses NULL.
    if (c.type == TypeJet::DateHeure && requis)
        def += QStringLiteral(" CHECK (%1 <> '')").arg(n);
    return def;
}

QStringList instructionsTable(const Table &table)
{
    QStringList colonnes;
    for (const Colonne &c : table.colonnes)
        colonnes << definitionColonne(table, c);
    QStringList sql{QStringLiteral("CREATE TABLE %1 (%2)").arg(ident(table.nom), colonnes.join(QStringLiteral(", ")))};
    for (const Index &i : table.index) {
        QStringList champs;
        for (const QString &champ : i.champs)
            champs << ident(champ);
        sql << QStringLiteral("CREATE %1INDEX %2 ON %3 (%4)")
                   .arg(i.unique ? QStringLiteral("UNIQUE ") : QString(), ident(i.nom), ident(table.nom),
                        champs.join(QStringLiteral(", ")));
    }
    return sql;
}

void afficherErreur(int numero, const QString &description)
{
    Prompt::informer(QStringLiteral("Tavonel"), QStringLiteral("%1\n\n%2").arg(numero).arg(description),
                     Prompt::Icone::Critique);
}

struct Echec
{
    int numero = 0;
    QString description;
};

bool executer(const QSqlDatabase &db, const QString &sql, Echec &echec)
{
    QSqlQuery q(db);
    if (q.exec(sql))
        return true;
    const QSqlError e = q.lastError();
    echec.numero = e.nativeErrorCode().toInt();
    if (echec.numero == 0)
        echec.numero = SQLITE_ERROR;
    echec.description = e.databaseText().isEmpty() ? e.text() : e.databaseText();
    return false;
}

} // namespace

const QStringList &ColonnesSignaletiques()
{
    static const QStringList noms = [] {
        QStringList l;
        for (const Colonne &c : tableSignaletiques().colonnes)
            l << c.nom;
        return l;
    }();
    return noms;
}

DescriptionColonne ColonneSignaletiques(const QString &nom)
{
    for (const Colonne &c : tableSignaletiques().colonnes) {
        if (c.nom == nom)
            return {static_cast<GenreColonne>(c.type), c.longueur};
    }
    return {GenreColonne::Memo, 0};
}

QString CheminPatientsMdb(const QString &dossier)
{
    const QString d = dossier.isEmpty() ? dossier : AjouterSlash(dossier);
    const QString nom = QStringLiteral("Patients.mdb");
    if (QFileInfo(d + nom).isFile())
        return d + nom;
    // Name filters of QDir are case-insensitive unless asked otherwise.
    const QDir rep(d.isEmpty() ? QStringLiteral(".") : d);
    const QStringList trouves = rep.entryList({nom}, QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    for (const QString &f : trouves) {
        if (f.compare(nom, Qt::CaseInsensitive) == 0)
            return d + f;
    }
    return d + nom;
}

bool CreerBasePatients(QString &dossier)
{
    dossier = AjouterSlash(dossier);
    // An existing base, of either spelling, is never touched: not extended,
    // not upgraded. Nothing is made, so the answer is false, with no box.
    if (QFileInfo::exists(CheminPatientsMdb(dossier)))
        return false;

    const QString chemin = dossier + QStringLiteral("Patients.mdb");
    QStringList instructions{QStringLiteral("BEGIN IMMEDIATE")};
    for (const Table *t : {&tableBrenwick(), &tableSignaletiques(), &tableEvents(), &tableNotes()})
        instructions << instructionsTable(*t);
    // The row that names the file is written with the tables, so that the
    // base never exists without it.
    const QString blancs(16, u' ');
    instructions << QStringLiteral("INSERT INTO \"Brenwick\" (\"Type\", \"Version\", \"Password\", \"Serial\") "
                                   "VALUES ('Patients', 'Agenda', '%1', '%1')")
                        .arg(blancs);
    instructions << QStringLiteral("COMMIT");

    // Two workstations of a fresh installation may start at the same moment:
    // each builds its base under a name of its own, and the first one put in
    // place is the base of both; the other drops its own copy.
    Echec echec{SQLITE_CANTOPEN, {}};
    const auto remplir = [&](BaseSqlite &base, QString *) {
        for (const QString &sql : instructions) {
            if (!executer(base.db(), sql, echec))
                return false;
        }
        return true;
    };
    QString detail;
    switch (BaseSqlite::creer(chemin, remplir, &detail)) {
    case BaseSqlite::Creation::Creee:
        return true;
    case BaseSqlite::Creation::DejaLa:
        return false;
    case BaseSqlite::Creation::Echec:
        break;
    }
    afficherErreur(echec.numero, echec.description.isEmpty() ? detail : echec.description);
    return false;
}
