// Timing of the patient search: an own base and four linked bases of 50,000
// patients each, built in a temporary folder; a search on a two-letter start
// of the family name over the linked bases and over the own base, and the
// list of every patient that an empty name gives, each beside a bare read
// of the same rows from the same bases.
//
//   bench_patients [patients per base] [start of family name] [folder of the bases]

#include "patients/recherchepatients.h"
#include "patients/schemapatients.h"
#include "shell/appstate.h"
#include "shell/base/basesqlite.h"
#include "shell/base/processus.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <vector>

namespace {

const QStringList noms = {
    QStringLiteral("Dupont"), QStringLiteral("Durand"), QStringLiteral("Dubois"), QStringLiteral("Duval"),
    QStringLiteral("Martin"), QStringLiteral("Bernard"), QStringLiteral("Thomas"), QStringLiteral("Petit"),
    QStringLiteral("Robert"), QStringLiteral("Richard"), QStringLiteral("Lefèvre"), QStringLiteral("Léger"),
    QStringLiteral("Moreau"), QStringLiteral("Laurent"), QStringLiteral("Simon"), QStringLiteral("Michel"),
    QStringLiteral("Garçon"), QStringLiteral("Gauthier"), QStringLiteral("Éluard"), QStringLiteral("Émery"),
    QStringLiteral("Rousseau"), QStringLiteral("Vincent"), QStringLiteral("Fournier"), QStringLiteral("Girard"),
    QStringLiteral("Bonnet"), QStringLiteral("Dupré"), QStringLiteral("Lambert"), QStringLiteral("Fontaine"),
    QStringLiteral("Chevalier"), QStringLiteral("Mercier"), QStringLiteral("Blanc"), QStringLiteral("Guérin"),
    QStringLiteral("Boyer"), QStringLiteral("Garnier"), QStringLiteral("Chauvin"), QStringLiteral("Clément"),
    QStringLiteral("Perrin"), QStringLiteral("Morin"), QStringLiteral("Noël"), QStringLiteral("Masson"),
};
const QStringList prenoms = {
    QStringLiteral("Jean"), QStringLiteral("Marie"), QStringLiteral("Élodie"), QStringLiteral("Hélène"),
    QStringLiteral("François"), QStringLiteral("Zoé"), QStringLiteral("Jérôme"), QStringLiteral("Chloé"),
    QStringLiteral("Léa"), QStringLiteral("Noémie"), QStringLiteral("Théo"), QStringLiteral("Anaïs"),
    QStringLiteral("Gaël"), QStringLiteral("Loïc"), QStringLiteral("Pierre"), QStringLiteral("Sophie"),
};
const QString syllabes = QStringLiteral("abcdefghijklmnopqrstuvwxyzéèàç");

QString nomAleatoire(QRandomGenerator &g)
{
    QString n = noms.at(g.bounded(noms.size()));
    // A random tail makes most names unique, as in a real base.
    const int longueur = g.bounded(0, 4);
    for (int i = 0; i < longueur; ++i)
        n += syllabes.at(g.bounded(syllabes.size()));
    if (g.bounded(4) == 0)
        n = n.toUpper();
    return n;
}

bool remplir(const QString &dossier, const QString &identifiant, int nombre, QRandomGenerator &g)
{
    QString d = dossier;
    if (!CreerBasePatients(d))
        return false;
    auto base = BaseSqlite::ouvrir(CheminPatientsMdb(d), BaseSqlite::Mode::Existante);
    if (!base)
        return false;
    base->executer(QStringLiteral("BEGIN"));
    QSqlQuery q(base->db());
    q.prepare(QStringLiteral("INSERT OR IGNORE INTO Signaletiques (Nom, Prenom, \"Date de Naissance\", "
                             "\"Derniere Visite\", Sexe, Numero, Agenda, Base) VALUES (?, ?, ?, ?, ?, ?, ?, ?)"));
    for (int i = 1; i <= nombre; ++i) {
        const QDate naissance = QDate(1930, 1, 1).addDays(g.bounded(30000));
        q.addBindValue(nomAleatoire(g));
        q.addBindValue(prenoms.at(g.bounded(prenoms.size())));
        q.addBindValue(naissance.toString(QStringLiteral("yyyy-MM-dd")));
        q.addBindValue(QDate(2020, 1, 1).addDays(g.bounded(2000)).toString(QStringLiteral("yyyy-MM-dd")));
        q.addBindValue(g.bounded(2) ? -1 : 0);
        q.addBindValue(i);
        q.addBindValue(g.bounded(3) == 0 ? QVariant(i) : QVariant());
        q.addBindValue(identifiant);
        if (!q.exec())
            return false;
    }
    return base->executer(QStringLiteral("COMMIT"));
}

// The anchor: the rows whose family name begins with debut (every row for
// an empty debut), read straight from each base through its index on the
// name, with their names and row number, and nothing more done with them.
qsizetype scanNu(const std::vector<QString> &fichiers, const QString &debut)
{
    qsizetype n = 0;
    for (const QString &f : fichiers) {
        sqlite3 *db = nullptr;
        if (sqlite3_open_v2(f.toUtf8().constData(), &db, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX, nullptr) != SQLITE_OK) {
            std::fprintf(stderr, "cannot open %s\n", qPrintable(f));
            std::exit(1);
        }
        const char *sql = debut.isEmpty()
                              ? "SELECT Nom, Prenom, rowid FROM Signaletiques"
                              : "SELECT Nom, Prenom, rowid FROM Signaletiques WHERE Nom >= ?1 AND Nom < ?2";
        sqlite3_stmt *s = nullptr;
        sqlite3_prepare_v2(db, sql, -1, &s, nullptr);
        if (!debut.isEmpty()) {
            QString fin = debut;
            fin.back() = QChar(char16_t(fin.back().unicode() + 1));
            sqlite3_bind_text16(s, 1, debut.utf16(), int(debut.size() * 2), SQLITE_TRANSIENT);
            sqlite3_bind_text16(s, 2, fin.utf16(), int(fin.size() * 2), SQLITE_TRANSIENT);
        }
        while (sqlite3_step(s) == SQLITE_ROW) {
            n += sqlite3_column_text(s, 0) && sqlite3_column_text(s, 1) && sqlite3_column_int64(s, 2);
        }
        sqlite3_finalize(s);
        sqlite3_close(db);
    }
    return n;
}

double mediane(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

} // namespace

int main(int argc, char **argv)
{
    PreparerProcessus();
    QCoreApplication app(argc, argv);
    const int nombre = argc > 1 ? QString::fromLocal8Bit(argv[1]).toInt() : 50000;
    const QString debut = argc > 2 ? QString::fromLocal8Bit(argv[2]) : QStringLiteral("du");

    // A third argument keeps the bases in that folder, to be read again by
    // the next run instead of being built anew.
    QTemporaryDir tempDir;
    if (!tempDir.isValid())
        return 1;
    const QString racine = argc > 3 ? QString::fromLocal8Bit(argv[3]) : tempDir.path();
    QRandomGenerator g(20261123);
    AppState &etat = appState();
    QElapsedTimer chrono;
    chrono.start();
    const QStringList dossiers = {QStringLiteral("agenda"), QStringLiteral("lien1"), QStringLiteral("lien2"),
                                  QStringLiteral("lien3"), QStringLiteral("lien4")};
    for (int i = 0; i < dossiers.size(); ++i) {
        const QString dossier = racine + u'/' + dossiers.at(i) + u'/';
        QDir().mkpath(dossier);
        if (!QFileInfo::exists(dossier + QStringLiteral("Patients.mdb")) && !remplir(dossier, i == 0 ? QStringLiteral("Agenda") : QStringLiteral("CAB%1").arg(i), nombre, g)) {
            std::fprintf(stderr, "cannot build the base %s\n", qPrintable(dossier));
            return 1;
        }
        if (i == 0)
            etat.CheminBaseAgenda = dossier;
        else
            etat.Path[i] = dossier + QStringLiteral("Patients.mdb");
    }
    std::printf("built 5 bases of %d patients in %lld ms\n", nombre, chrono.elapsed());

    const int tours = qEnvironmentVariableIntValue("TOURS") > 0 ? qEnvironmentVariableIntValue("TOURS") : 9;
    std::vector<QString> fichiers;
    for (const QString &dossier : dossiers)
        fichiers.push_back(racine + u'/' + dossier + QStringLiteral("/Patients.mdb"));

    // Each measure runs the linked bases then the own base, as the two
    // buttons do, beside a bare read of the same rows from the same bases.
    struct Mesure
    {
        std::vector<double> murale, processeur;
        qsizetype lignes = 0;
    };
    auto mesurer = [&](Mesure &m, const std::function<qsizetype()> &travail) {
        const std::clock_t debutCpu = std::clock();
        chrono.restart();
        m.lignes = travail();
        m.murale.push_back(chrono.nsecsElapsed() / 1e6);
        m.processeur.push_back(double(std::clock() - debutCpu) * 1000.0 / CLOCKS_PER_SEC);
    };
    auto rechercher = [&](const QString &nom) -> qsizetype {
        ResultatRecherche l1, l2;
        if (RechercheBasesLiees(etat, nom, QString(), l1) || RechercheBaseAgenda(etat, nom, QString(), l2)) {
            std::fprintf(stderr, "search failed\n");
            std::exit(1);
        }
        // The grid shows its first rows at once.
        if (!l1.isEmpty())
            (void)l1.ligne(0);
        if (!l2.isEmpty())
            (void)l2.ligne(0);
        return l1.size() + l2.size();
    };
    Mesure recherche, nue, liste, listeNue;
    for (int t = 0; t < tours; ++t) {
        mesurer(nue, [&] { return scanNu(fichiers, debut); });
        mesurer(recherche, [&] { return rechercher(debut); });
        mesurer(listeNue, [&] { return scanNu(fichiers, QString()); });
        mesurer(liste, [&] { return rechercher(QString()); });
    }
    auto afficher = [&](const char *quoi, const Mesure &m, const Mesure &ancre) {
        std::printf("%-22s %7lld rows  wall median %7.1f ms (bare %6.1f ms, x%.1f)  "
                    "processor median %7.1f ms (bare %6.1f ms, x%.1f)\n",
                    quoi, static_cast<long long>(m.lignes), mediane(m.murale), mediane(ancre.murale),
                    mediane(m.murale) / mediane(ancre.murale), mediane(m.processeur), mediane(ancre.processeur),
                    mediane(m.processeur) / mediane(ancre.processeur));
    };
    std::printf("five bases, %d runs; bare = the same rows read straight from the bases\n", tours);
    afficher(qPrintable(QStringLiteral("start \"%1\"").arg(debut)), recherche, nue);
    afficher("empty name (all rows)", liste, listeNue);
    // The machine may be shared: the processor time tells what the search
    // itself costs.
    const double rapport = mediane(recherche.processeur) / mediane(nue.processeur);
    std::printf("target search at most 3 x bare scan: %s (x%.1f)\n", rapport <= 3.0 ? "met" : "NOT met", rapport);
    std::printf("target empty-name list under 100 ms: %s (%.1f ms)\n",
                mediane(liste.processeur) < 100.0 ? "met" : "NOT met", mediane(liste.processeur));
    return 0;
}
