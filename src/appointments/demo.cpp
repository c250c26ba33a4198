#include "appointments/demo.h"

#include "appointments/miroir.h"
#include "appointments/paquetrdv.h"
#include "calendar/calendardataprovider.h"
#include "patients/patientcourant.h"
#include "patients/schemapatients.h"
#include "rules/regles.h"
#include "shell/appstate.h"
#include "shell/base/basesqlite.h"
#include "shell/base/config.h"
#include "shell/demarrage.h"
#include "shell/base/profilini.h"
#include "shell/base/support.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <vector>

namespace {

struct PatientDemo
{
    const char16_t *nom;
    const char16_t *prenom;
    bool homme;
    QDate naissance; // invalid: the baby, born 40 days before the week's day
};

// Fifty patients of a town practice; children are those born after 2010.
const std::vector<PatientDemo> &patientsDemo()
{
    static const std::vector<PatientDemo> liste{
        {u"MARTINEAU", u"Jeanne", false, {1938, 4, 12}},  {u"BERNARD", u"Pierre", true, {1951, 11, 3}},
        {u"THOMAS", u"Sophie", false, {1982, 6, 25}},     {u"PETIT", u"Lucas", true, {2015, 9, 8}},
        {u"ROBERT", u"Monique", false, {1947, 1, 30}},    {u"RICHARD", u"Alain", true, {1960, 7, 14}},
        {u"DURAND", u"Camille", false, {1995, 3, 2}},     {u"DUBOIS", u"Hugo", true, {2019, 12, 21}},
        {u"MOREAU", u"Catherine", false, {1966, 8, 9}},   {u"LAURENT", u"Philippe", true, {1958, 2, 17}},
        {u"SIMON", u"Léa", false, {2012, 5, 5}},          {u"MICHEL", u"Jacques", true, {1943, 10, 28}},
        {u"LEFEBVRE", u"Nathalie", false, {1974, 12, 1}}, {u"LEROY", u"Théo", true, {2017, 4, 19}},
        {u"ROUX", u"Isabelle", false, {1969, 9, 23}},     {u"DAVID", u"François", true, {1985, 1, 11}},
        {u"BERTRAND", u"Chloé", false, {2014, 7, 4}},     {u"MOREL", u"Gérard", true, {1949, 3, 6}},
        {u"FOURNIER", u"Sylvie", false, {1963, 11, 15}},  {u"GIRARD", u"Nicolas", true, {1990, 8, 30}},
        {u"BONNET", u"Manon", false, {2008, 2, 29}},      {u"DUPONT", u"Michel", true, {1955, 6, 2}},
        {u"LAMBERT", u"Céline", false, {1979, 10, 7}},    {u"FONTAINE", u"Arthur", true, {2021, 1, 26}},
        {u"ROUSSEAU", u"Brigitte", false, {1957, 5, 18}}, {u"VINCENT", u"Julien", true, {1988, 9, 12}},
        {u"MULLER", u"Emma", false, {2016, 11, 9}},       {u"LEFÈVRE", u"André", true, {1936, 8, 22}},
        {u"FAURE", u"Valérie", false, {1971, 4, 3}},      {u"ANDRÉ", u"Olivier", true, {1976, 12, 29}},
        {u"MERCIER", u"Inès", false, {2010, 10, 17}},     {u"BLANC", u"Bernard", true, {1945, 7, 8}},
        {u"GUÉRIN", u"Aurélie", false, {1987, 3, 27}},    {u"BOYER", u"Gabriel", true, {2018, 6, 13}},
        {u"GARNIER", u"Françoise", false, {1952, 9, 1}},  {u"CHEVALIER", u"Stéphane", true, {1972, 1, 20}},
        {u"FRANÇOIS", u"Zoé", false, {2013, 8, 24}},      {u"LEGRAND", u"Laurent", true, {1967, 5, 31}},
        {u"GAUTHIER", u"Christine", false, {1961, 2, 14}}, {u"GARCIA", u"Mathis", true, {2016, 3, 10}},
        {u"PERRIN", u"Élodie", false, {1992, 12, 12}},    {u"ROBIN", u"Louis", true, {2011, 11, 2}},
        {u"CLÉMENT", u"Juliette", false, {1999, 7, 19}},  {u"MORIN", u"Éric", true, {1964, 10, 5}},
        {u"NICOLAS", u"Louise", false, {}},               {u"HENRY", u"Thomas", true, {1983, 4, 28}},
        {u"ROUSSEL", u"Anaïs", false, {2003, 1, 15}},     {u"MATHIEU", u"Nathan", true, {2014, 12, 6}},
        {u"GAUTIER", u"Marie", false, {1940, 6, 16}},     {u"MASSON", u"Jean", true, {1950, 2, 9}},
    };
    return liste;
}

struct Ville
{
    const char16_t *codePostal;
    const char16_t *nom;
    const char16_t *indicatif; // first digits of a fixed line there
};

const std::vector<Ville> &villes()
{
    static const std::vector<Ville> liste{
        {u"69003", u"LYON", u"04 78"},           {u"69100", u"VILLEURBANNE", u"04 72"},
        {u"69500", u"BRON", u"04 78"},           {u"69200", u"VÉNISSIEUX", u"04 72"},
        {u"69300", u"CALUIRE-ET-CUIRE", u"04 78"}, {u"69600", u"OULLINS", u"04 72"},
    };
    return liste;
}

const char16_t *const rues[] = {u"rue Paul Bert",        u"avenue Jean Jaurès",  u"rue de la République",
                                u"chemin des Cerisiers", u"place Bellecour",     u"rue Victor Hugo",
                                u"boulevard des Belges", u"allée des Tilleuls"};

const char16_t *const motifs[] = {u"Consultation",           u"Renouvellement d'ordonnance", u"Certificat de sport",
                                  u"Vaccination",            u"Résultats d'analyses",        u"Suivi tension",
                                  u"Lombalgie",              u"Fièvre",                      u"Bilan annuel",
                                  u"Contrôle post-opératoire"};

const char16_t *const adressants[] = {u"Dr Lemoine (cardiologue)", u"Pharmacie du Centre", u"Urgences Édouard Herriot"};

const char16_t *const commentaires[] = {u"Apporter les résultats de la prise de sang", u"Première consultation",
                                        u"Vaccin à commander", u"Préfère être appelé sur le portable"};

QString s(const char16_t *texte)
{
    return QString::fromUtf16(texte);
}

// The seven types: colour for practitioner 1 and for practitioner 2
// (0xBBGGRR), pale families of the practice's palette.
constexpr quint32 couleursTypes[7][2] = {
    {0xFFE0E0, 0xE0FFE0}, // Consultation
    {0xFFC0C0, 0xC0FFC0}, // Visite
    {0xFFE0FF, 0xFFC0FF}, // Pédiatrie
    {0xFFFFE0, 0xE0FFFF}, // HAD
    {0xE0E0FF, 0xC0C0FF}, // Réservé
    {0x9090FF, 0x7070FF}, // Urgence
    {0xDCDCDC, 0xDCDCDC}, // Pause
};

constexpr int DureeRdv = 20;

// Gives the application state back as it was, whatever happens on the way.
class EtatSauve final
{
public:
    EtatSauve()
        : m_avant(appState())
        , m_config(ConfigOuverte())
    {
    }
    ~EtatSauve()
    {
        AppState &etat = appState();
        if (etat.Calendrier && etat.Calendrier != m_avant.Calendrier) {
            etat.Calendrier->Save();
            etat.Calendrier->Close();
        }
        if (ConfigOuverte() != m_config)
            FixerConfig(m_config);
        etat = m_avant;
    }
    EtatSauve(const EtatSauve &) = delete;
    EtatSauve &operator=(const EtatSauve &) = delete;

private:
    AppState m_avant;
    std::shared_ptr<ConfigIni> m_config;
};

std::optional<QString> ecrireReglages(ConfigIni &config)
{
    const AppState &etat = appState();
    struct Reglage
    {
        QString section, item, valeur;
    };
    std::vector<Reglage> reglages{
        {QStringLiteral("Praticien1"), QStringLiteral("Nom"), NomPraticienDemo(1)},
        {QStringLiteral("Praticien1"), QStringLiteral("Initiales"), QStringLiteral("HV")},
        {QStringLiteral("Praticien2"), QStringLiteral("Nom"), NomPraticienDemo(2)},
        {QStringLiteral("Praticien2"), QStringLiteral("Initiales"), QStringLiteral("JC")},
        {QStringLiteral("RDV"), QStringLiteral("Duree"), QString::number(DureeRdv)},
        {QStringLiteral("Ouverture"), QStringLiteral("Debut"), QStringLiteral("08:00:00")},
        {QStringLiteral("Ouverture"), QStringLiteral("Fin"), QStringLiteral("19:00:00")},
        {QStringLiteral("Ouverture"), QStringLiteral("PauseDebut"), QStringLiteral("12:00:00")},
        {QStringLiteral("Ouverture"), QStringLiteral("PauseFin"), QStringLiteral("14:00:00")},
    };
    for (int t = 0; t < 7; ++t) {
        const QString section = QStringLiteral("RDVType%1").arg(t + 1);
        reglages.push_back({section, QStringLiteral("Type"), etat.TypesRDV.at(static_cast<size_t>(t))});
        reglages.push_back({section, QStringLiteral("Couleur1"), QString::number(couleursTypes[t][0])});
        reglages.push_back({section, QStringLiteral("Couleur2"), QString::number(couleursTypes[t][1])});
    }
    for (const Reglage &r : reglages) {
        if (!config.ecrire(r.section, r.item, r.valeur))
            return config.derniereErreur();
    }
    return std::nullopt;
}

std::optional<QString> ecrireRegles(ConfigIni &config, const QDate &lundi, int &nombre)
{
    const AppState &etat = appState();
    auto regle = [&](int jour, int semaine, int praticien, int type, QTime debut, QTime fin) {
        Regle r;
        r.DateDebut = lundi.addYears(-1);
        r.DateFin = lundi.addYears(2);
        r.HeureDebut = debut;
        r.HeureFin = fin;
        r.JourNumero = static_cast<qint16>(jour);
        r.Jour = NomJourRegle(jour);
        r.Semaine = static_cast<qint16>(semaine);
        r.PraticienNumero = static_cast<qint16>(praticien);
        r.Praticien = NomPraticienDemo(praticien);
        r.TypeRV = static_cast<qint16>(type);
        r.TypeText = etat.TypesRDV.at(static_cast<size_t>(type));
        r.TypeColor = static_cast<qint32>(couleursTypes[type][praticien - 1]);
        return r;
    };
    std::vector<Regle> regles;
    // Monday (2) to Friday (6). The later rule wins where two hold.
    for (int jour = 2; jour <= 6; ++jour) {
        const int matin = (jour == 3 || jour == 5) ? 2 : 1; // Tuesday, Thursday: practitioner 2
        regles.push_back(regle(jour, 3, matin, 0, QTime(8, 0), QTime(11, 59, 59)));
        regles.push_back(regle(jour, 3, 1, 6, QTime(12, 0), QTime(13, 59, 59)));
        regles.push_back(regle(jour, 1, 1, 0, QTime(14, 0), QTime(18, 59, 59))); // odd weeks
        regles.push_back(regle(jour, 2, 2, 0, QTime(14, 0), QTime(18, 59, 59))); // even weeks
    }
    regles.push_back(regle(4, 3, 2, 2, QTime(14, 0), QTime(18, 59, 59))); // Wednesday: children
    regles.push_back(regle(5, 3, 1, 1, QTime(17, 0), QTime(18, 59, 59))); // Thursday: home visits
    for (const Regle &r : regles) {
        QString erreur;
        if (AjouterRegle(config, r, &erreur) == 0)
            return erreur;
        ++nombre;
    }
    return std::nullopt;
}

PatientCourantRecord fichePatient(int i, const QDate &lundi)
{
    const PatientDemo &p = patientsDemo().at(static_cast<size_t>(i));
    const Ville &v = villes().at(static_cast<size_t>(i) % villes().size());
    PatientCourantRecord f;
    f.Numero = i + 1;
    f.Nom = s(p.nom);
    f.Prenom = s(p.prenom);
    f.Sexe = p.homme;
    const QDate naissance = p.naissance.isValid() ? p.naissance : lundi.addDays(-40);
    f.DateNaissance = naissance.toString(QStringLiteral("dd/MM/yyyy"));
    f.Adresse1 = QStringLiteral("%1 %2").arg(3 + (i * 7) % 90).arg(s(rues[i % std::size(rues)]));
    if (i % 6 == 1)
        f.Adresse2 = QStringLiteral("Bâtiment %1").arg(QChar(u'A' + i % 4));
    f.CodePostal = s(v.codePostal);
    f.Ville = s(v.nom);
    auto paire = [](int n) { return QStringLiteral("%1").arg(n % 100, 2, 10, QLatin1Char('0')); };
    if (i % 4 != 3)
        f.Telephone1 = s(v.indicatif) + QStringLiteral(" %1 %2 %3").arg(paire(i * 13 + 11), paire(i * 29 + 7), paire(i * 17 + 40));
    if (i % 5 != 2)
        f.Telephone2 = QStringLiteral("0%1 %2 %3 %4 %5")
                           .arg(i % 3 == 0 ? 7 : 6)
                           .arg(paire(i * 37 + 12), paire(i * 11 + 3), paire(i * 23 + 56), paire(i * 31 + 9));
    if (i % 3 != 1) {
        QString local = (f.Prenom + u'.' + f.Nom).toLower();
        local = local.normalized(QString::NormalizationForm_D);
        local.remove(QRegularExpression(QStringLiteral("[^a-z.\\-]")));
        f.Mel = local + QStringLiteral("@example.org");
    }
    f.Base = QStringLiteral("Agenda");
    return f;
}

std::optional<QString> ecrirePatients(const std::vector<PatientCourantRecord> &fiches)
{
    QString erreur;
    const auto base =
        BaseSqlite::ouvrir(CheminPatientsMdb(appState().CheminBaseAgenda), BaseSqlite::Mode::Existante, &erreur);
    if (!base)
        return erreur;
    QSqlDatabase db = base->db();
    if (!base->executer(QStringLiteral("BEGIN IMMEDIATE"), &erreur))
        return erreur;
    QSqlQuery q(db);
    q.prepare(QStringLiteral("INSERT INTO Signaletiques (Nom, Prenom, \"Date de Naissance\", Sexe, Adresse1, Adresse2, "
                             "\"Code Postal\", Ville, Telephone1, Telephone2, \"mèl\", Numero, Base, Decede) "
                             "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, 0)"));
    for (const PatientCourantRecord &f : fiches) {
        q.addBindValue(f.Nom);
        q.addBindValue(f.Prenom);
        q.addBindValue(LireDateTexte(f.DateNaissance).toString(QStringLiteral("yyyy-MM-dd")));
        q.addBindValue(f.Sexe ? -1 : 0);
        q.addBindValue(f.Adresse1);
        q.addBindValue(f.Adresse2);
        q.addBindValue(f.CodePostal);
        q.addBindValue(f.Ville);
        q.addBindValue(f.Telephone1);
        q.addBindValue(f.Telephone2);
        q.addBindValue(f.Mel);
        q.addBindValue(f.Numero);
        q.addBindValue(f.Base);
        if (!q.exec()) {
            erreur = q.lastError().text();
            q.finish();
            base->executer(QStringLiteral("ROLLBACK"));
            return erreur;
        }
    }
    q.finish();
    if (!base->executer(QStringLiteral("COMMIT"), &erreur)) {
        base->executer(QStringLiteral("ROLLBACK"));
        return erreur;
    }
    return std::nullopt;
}

// An appointment as the editor makes it for a patient at a start.
CalendarEventPtr rendezVous(CalendarDataProvider &calendrier, const QDateTime &debut, const PatientCourantRecord &fiche,
                            int n, const QDate &lundi)
{
    const RegleMatch regle = GetRegleForDate(debut.addSecs(1));
    CalendarEventPtr e = calendrier.CreateNewEvent(debut, debut.addSecs(DureeRdv * 60));

    ChampsRdv champs;
    ChampsDuPatient(fiche, champs);
    if (n % 5 == 1)
        champs[ChampRdv::Commentaire] = s(commentaires[(n / 5) % std::size(commentaires)]);
    const QDateTime prise(lundi.addDays(-1 - n % 12), QTime(9, 0).addSecs(n * 7 * 60 + 13));
    champs[ChampRdv::DatePrise] = HorodatageRdv(prise);
    e->setCreationTime(prise);

    e->setBody(PackerBody(champs));
    e->setSubject(ConstruireSubject(champs));
    QString motif = s(motifs[n % std::size(motifs)]);
    if (regle.TypeRV == 1)
        motif = QStringLiteral("Visite à domicile");
    e->setLocation(PackerLocation(motif, n % 7 == 3 ? s(adressants[(n / 7) % std::size(adressants)]) : QString()));
    e->setLabelID(regle.TypeRV + (regle.PraticienNumero == 2 ? 8 : 0));
    e->setBusyStatus(1);
    e->setIsMeeting(n % 4 == 0);
    e->setIsPrivate(n == 17 || n == 41);
    return e;
}

} // namespace

QString NomPraticienDemo(int numero)
{
    return numero == 1 ? QStringLiteral("Dr Hélène VASSEUR") : QStringLiteral("Dr Julien CARRÉ");
}

std::optional<QString> CreerDemo(const QString &dossierDemande, const QDate &jour, BilanDemo *bilan)
{
    if (!jour.isValid())
        return QStringLiteral("La date de la semaine de démonstration n'est pas valide.");
    const QString dossier = AjouterSlash(dossierDemande);
    for (const QString &nom : {QStringLiteral("Config.mdb"), QStringLiteral("Events.mdb")}) {
        if (QFileInfo::exists(dossier + nom))
            return QStringLiteral("Le dossier %1 contient déjà un agenda (%2) : il n'est pas modifié.").arg(dossier, nom);
    }
    if (QFileInfo::exists(CheminPatientsMdb(dossier)))
        return QStringLiteral("Le dossier %1 contient déjà une base de patients : il n'est pas modifié.").arg(dossier);
    if (!QDir().mkpath(dossier))
        return QStringLiteral("Le dossier %1 ne peut pas être créé.").arg(dossier);

    const EtatSauve sauve;
    AppState &etat = appState();
    etat = AppState{};
    Demarrage demarrage(etat, dossier);
    if (const auto fatal = demarrage.initialiser(QString()))
        return *fatal;
    ParametresFenetre parametres;
    if (const auto fatal = demarrage.charger(parametres))
        return *fatal;
    if (!ConfigOuverte() || !etat.Calendrier || !etat.Calendrier->IsOpen())
        return QStringLiteral("Le calendrier de démonstration ne peut pas être ouvert dans %1.").arg(dossier);

    BilanDemo b;
    b.lundi = jour.addDays(1 - jour.dayOfWeek());
    if (const auto e = ecrireReglages(*ConfigOuverte()))
        return *e;
    if (const auto e = ecrireRegles(*ConfigOuverte(), b.lundi, b.regles))
        return *e;

    std::vector<PatientCourantRecord> fiches;
    std::vector<int> enfants;
    std::vector<int> adultes;
    for (int i = 0; i < static_cast<int>(patientsDemo().size()); ++i) {
        fiches.push_back(fichePatient(i, b.lundi));
        const QDate naissance = LireDateTexte(fiches.back().DateNaissance);
        (naissance.year() > 2010 ? enfants : adultes).push_back(i);
    }
    if (const auto e = ecrirePatients(fiches))
        return *e;
    b.patients = static_cast<int>(fiches.size());

    CalendarDataProvider &calendrier = *etat.Calendrier;
    calendrier.setLabelList(ConstruireLibelles(etat));
    BrancherMiroir(calendrier);

    // Past appointments have mostly arrived; a few never came.
    const QDateTime reference(jour, QTime(12, 0));
    int n = 0;
    size_t suivantEnfant = 0;
    size_t suivantAdulte = 0;
    for (int jourSemaine = 0; jourSemaine < 5; ++jourSemaine) {
        const QDate date = b.lundi.addDays(jourSemaine);
        std::vector<QTime> creneaux;
        for (QTime t(8, 30); t <= QTime(11, 30); t = t.addSecs(30 * 60))
            creneaux.push_back(t);
        for (QTime t(14, 0); t <= QTime(17, 30); t = t.addSecs(30 * 60))
            creneaux.push_back(t);
        for (size_t c = 0; c < creneaux.size(); ++c) {
            if ((jourSemaine * 15 + static_cast<int>(c)) % 5 == 2)
                continue; // a free slot
            const QDateTime debut(date, creneaux[c]);
            const bool pediatrie = GetRegleForDate(debut.addSecs(1)).TypeRV == 2;
            const int patient = pediatrie ? enfants[suivantEnfant++ % enfants.size()]
                                          : adultes[suivantAdulte++ % adultes.size()];
            CalendarEventPtr e = rendezVous(calendrier, debut, fiches[static_cast<size_t>(patient)], n, b.lundi);
            if (debut < reference)
                e->setBusyStatus(n % 9 == 4 ? 1 : 0);
            else if (!fiches[static_cast<size_t>(patient)].Telephone2.isEmpty() && n % 3 == 0) {
                e->setIsReminder(true);
                e->setReminderMinutesBeforeStart(1440);
            }
            if (!calendrier.AddEvent(e))
                return QStringLiteral("Le rendez-vous du %1 ne peut pas être enregistré.")
                    .arg(debut.toString(QStringLiteral("dd/MM/yyyy HH:mm")));
            ++b.rendezVous;
            ++n;
        }
    }

    // A dressing checked every Tuesday evening: ten weeks from two weeks back.
    {
        const QDateTime debut(b.lundi.addDays(1 - 14), QTime(18, 15));
        CalendarEventPtr serie = rendezVous(calendrier, debut, fiches[static_cast<size_t>(adultes.front())], n++, b.lundi);
        serie->setLocation(PackerLocation(QStringLiteral("Pansement"), QStringLiteral("Dr Lemoine (cardiologue)")));
        CalendarRecurrencePatternPtr motif = serie->CreateRecurrence();
        motif->Options().setRecurrenceType(CalendarRecurrenceOptions::Weekly);
        motif->Options().setIntervalWeeks(1);
        motif->Options().setDayOfWeekMask(CalendarRecurrenceOptions::Tuesday);
        motif->setEndMethod(CalendarRecurrencePattern::EndAfterOccurrencesCount);
        motif->setEndAfterOccurrences(10);
        serie->UpdateRecurrence(motif);
        if (!calendrier.AddEvent(serie))
            return QStringLiteral("La série de rendez-vous ne peut pas être enregistrée.");
        ++b.rendezVous;
    }

    // A staff meeting in Friday's pause: an appointment without a patient.
    {
        const QDateTime debut(b.lundi.addDays(4), QTime(12, 30));
        CalendarEventPtr reunion = calendrier.CreateNewEvent(debut, debut.addSecs(60 * 60));
        ChampsRdv champs;
        champs[ChampRdv::Nom] = QStringLiteral("Réunion de service");
        champs[ChampRdv::Prenom] = QStringLiteral("Cabinet");
        champs[ChampRdv::DateNaissance] = QString(MarqueSansPatient);
        champs[ChampRdv::DatePrise] = HorodatageRdv(QDateTime(b.lundi.addDays(-3), QTime(17, 45)));
        reunion->setBody(PackerBody(champs));
        reunion->setSubject(ConstruireSubject(champs));
        reunion->setLocation(PackerLocation(QStringLiteral("Point hebdomadaire"), QString()));
        reunion->setLabelID(4);
        reunion->setBusyStatus(1);
        if (!calendrier.AddEvent(reunion))
            return QStringLiteral("La réunion de démonstration ne peut pas être enregistrée.");
        ++b.rendezVous;
    }

    // The same data also serve as agenda 1, opened with its launch
    // argument: that start keeps the activity journal in Journal/.
    // Absolute paths: the agenda may be started from any folder.
    const QString absolu = AjouterSlash(QDir(dossier).absolutePath());
    const QString agendaIni = dossier + QStringLiteral("Agenda.ini");
    EcrireIni(QStringLiteral("Agenda1"), QStringLiteral("PathDB1"), absolu, agendaIni);
    EcrireIni(QStringLiteral("Agenda1"), QStringLiteral("AgendaName1"), NomAgendaDemo(), agendaIni);
    EcrireIni(QStringLiteral("Sauvegarge"), QStringLiteral("CheminLog"), absolu + QStringLiteral("Journal"), agendaIni);

    if (bilan)
        *bilan = b;
    return std::nullopt;
}

QString NomAgendaDemo()
{
    return QStringLiteral("Cabinet de démonstration");
}
