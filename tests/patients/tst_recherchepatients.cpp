#include "basestest.h"

#include "patients/recherchepatients.h"
#include "shell/appstate.h"
#include "shell/base/jettexte.h"
#include "support/fichierstest.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <sqlite3.h>

class tst_recherchepatients : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;

    QString dossier(const QString &nom) const { return m_dir.path() + u'/' + nom + u'/'; }

    static QStringList noms(const QList<LigneRecherche> &lignes)
    {
        QStringList l;
        for (const LigneRecherche &r : lignes)
            l << r.Base + u':' + r.Nom + u' ' + r.Prenom;
        return l;
    }

    static QByteArray empreinte(const QString &chemin)
    {
        return QCryptographicHash::hash(lireOctets(chemin), QCryptographicHash::Sha1);
    }

private slots:
    void initTestCase()
    {
        QVERIFY2(m_dir.isValid(), "no temporary folder");
        AppState &etat = appState();
        etat.CheminBaseAgenda = dossier(QStringLiteral("agenda"));
        QString err = CreerBaseTest(etat.CheminBaseAgenda,
                                    {{"DUPONT", "Jean", "1970-01-01", 7}, {"Dupond", "Anne", "1981-02-03", 3}, {"Élodie", "Zoé", "1990-05-06", 9},
                                     {"ELOI", "Marc", "1950-07-08", 11}, {"d'Argent", "Luc", "1960-01-01", 12},
                                     {"Martin", "Hélène", "1975-03-04", 13}, {"MARTINEZ", "héloïse", "1977-03-04", 14},
                                     {"Œuvray", "Paul", "1977-03-04", 15}, {"A%B_C", "X", "1977-03-04", 16}, {"Zéro", "Anonyme", "1977-03-04", 0}});
        QVERIFY2(err.isEmpty(), qPrintable(err));
        // Two linked bases; DUPONT Jean stands in both, and in the own base.
        err = CreerBaseTest(dossier(QStringLiteral("cab1")), {{"Durand", "Paul", "1960-01-01", 2, "CAB1"},
                                                              {"DUPONT", "Jean", "1970-01-01", 1, "CAB1", 7},
                                                              {"Bernard", "Léa", "1999-09-09", 3, "CAB1"}});
        QVERIFY2(err.isEmpty(), qPrintable(err));
        err = CreerBaseTest(dossier(QStringLiteral("cab2")), {{"Dubois", "Eve", "1960-01-01", 5, "CAB2"},
                                                              {"dupont", "Jean", "1970-01-01", 4, "CAB2"},
                                                              {"Abel", "Noé", "1999-09-09", 6, "CAB2"}});
        QVERIFY2(err.isEmpty(), qPrintable(err));
        // Names equal but for case and accents, long common starts, letters
        // that do not decompose; Base tells the rows apart.
        QList<PatientTest> ordre;
        for (const auto &[n, p, naissance, base] : std::initializer_list<std::array<const char *, 4>>{
                 {"Dupont", "Zoé", "1970", "a"}, {"DUPONT", "anne", "1960", "b"}, {"Dupont", "Anne", "1980", "c"},
                 {"Dupont", "Anne", "1970", "d"}, {"Élodie", "Marie", "1970", "e"}, {"Elodie", "Marie", "1971", "f"},
                 {"Dupont-Martinez", "Al", "1970", "g"}, {"Dupont-Martin", "Zed", "1970", "h"}, {"ELODIE", "marie", "1972", "l"},
                 {"DUPONT-MARTINEZ", "al", "1971", "i"}, {"Đorđe", "A", "1970", "j"}, {"Zz", "A", "1970", "k"},
                 {"de la Tour", "A", "1970", "m"}, {"Delatour", "A", "1970", "n"}, {"Œuvray", "A", "1970", "o"}})
            ordre.append({QString::fromUtf8(n), QString::fromUtf8(p), naissance + QStringLiteral("-01-01"), 1 + int(ordre.size()), base});
        err = CreerBaseTest(dossier(QStringLiteral("ordre")), ordre);
        QVERIFY2(err.isEmpty(), qPrintable(err));
        BaseSqlite::fixerDelaiOccupe(300);
    }

    void echapperApostrophes_data()
    {
        QTest::addColumn<QString>("texte");
        QTest::addColumn<QString>("attendu");
        QTest::newRow("sans") << "Dupont" << "Dupont";
        QTest::newRow("une") << "d'Argent" << "d''Argent";
        QTest::newRow("deux de suite") << "a''b" << "a''''b";
        QTest::newRow("jokers intacts") << "D*?'" << "D*?''";
        QTest::newRow("vide") << "" << "";
    }
    void echapperApostrophes()
    {
        QFETCH(QString, texte);
        QFETCH(QString, attendu);
        QCOMPARE(EchapperApostrophes(texte), attendu);
    }

    void construireUnion_texte()
    {
        QString p1 = QStringLiteral("/b1/Patients.mdb"), vide;
        QString nom = QStringLiteral("DU"), prenom = QStringLiteral("J");
        const QString t = ConstruireUnion(p1, vide, vide, vide, nom, prenom, false);
        QCOMPARE(t, QStringLiteral("(SELECT Signaletiques.Base, Signaletiques.Nom, Signaletiques.Prenom, "
                                   "Signaletiques.[Date de Naissance], Signaletiques.[Derniere Visite], "
                                   "Signaletiques.Numero, Signaletiques.Agenda FROM [;Database=/b1/Patients.mdb].Signaletiques "
                                   "WHERE Nom LIKE 'DU*' AND Prenom LIKE 'J*' ORDER BY Nom, Prenom ) "));
    }

    // Which bases a union holds, in order, for the four paths.
    void construireUnion_bases_data()
    {
        QTest::addColumn<QStringList>("paths");
        QTest::addColumn<bool>("avecAgenda");
        QTest::addColumn<QStringList>("attendu");
        QTest::newRow("quatre") << QStringList{"a", "b", "c", "d"} << false << QStringList{"a", "b", "c", "d"};
        QTest::newRow("quatre et agenda") << QStringList{"a", "b", "c", "d"} << true << QStringList{"a", "b", "c", "d", "AG/Patients.mdb"};
        QTest::newRow("path1 vide") << QStringList{"", "b", "c", "d"} << true << QStringList{};
        QTest::newRow("path2 vide cache 3 et 4") << QStringList{"a", "", "c", "d"} << false << QStringList{"a"};
        QTest::newRow("path3 vide cache 4") << QStringList{"a", "b", "", "d"} << false << QStringList{"a", "b"};
        QTest::newRow("path2 vide, agenda") << QStringList{"a", "", "c", ""} << true << QStringList{"a", "AG/Patients.mdb"};
        QTest::newRow("seul") << QStringList{"a", "", "", ""} << false << QStringList{"a"};
    }
    void construireUnion_bases()
    {
        QFETCH(QStringList, paths);
        QFETCH(bool, avecAgenda);
        QFETCH(QStringList, attendu);
        AppState &etat = appState();
        const QString ancien = etat.CheminBaseAgenda;
        etat.CheminBaseAgenda = QStringLiteral("AG/");
        QString n = QStringLiteral("X"), p = QStringLiteral("Y");
        const QString t = ConstruireUnion(paths[0], paths[1], paths[2], paths[3], n, p, avecAgenda);
        etat.CheminBaseAgenda = ancien;

        QStringList trouves;
        const QRegularExpression re(QStringLiteral(R"(\[;Database=([^\]]*)\])"));
        for (auto it = re.globalMatch(t); it.hasNext();)
            trouves << it.next().captured(1);
        QCOMPARE(trouves, attendu);
        QCOMPARE(t.count(QStringLiteral("UNION ALL ")), std::max<qsizetype>(0, attendu.size() - 1));

        std::array<QString, 5> tableau{QString(), paths[0], paths[1], paths[2], paths[3]};
        QStringList branches;
        for (const BrancheRecherche &b : BranchesUnion(tableau, n, p, avecAgenda, QStringLiteral("AG/")))
            branches << b.chemin;
        QCOMPARE(branches, attendu);
    }

    // The replacements run over the whole statement: the per-base search must
    // give each base the very path and patterns that the statement holds.
    void branchesCommeLUnion_data()
    {
        QTest::addColumn<QString>("nom");
        QTest::addColumn<QString>("prenom");
        QTest::addColumn<QString>("path1");
        QTest::addColumn<QString>("motifNom");
        QTest::addColumn<QString>("motifPrenom");
        QTest::addColumn<QString>("chemin1");
        QTest::newRow("simple") << "DU" << "J" << "/b/Patients.mdb" << "DU*" << "J*" << "/b/Patients.mdb";
        QTest::newRow("p% dans le nom") << "Ap%" << "Z" << "/b/Patients.mdb" << "AZ*" << "Z*" << "/b/Patients.mdb";
        QTest::newRow("n% dans le prénom reste") << "A" << "Bn%" << "/b/Patients.mdb" << "A*" << "Bn%*" << "/b/Patients.mdb";
        QTest::newRow("n% dans le chemin") << "DU" << "J" << "/n%/Patients.mdb" << "DU*" << "J*" << "/DU/Patients.mdb";
        QTest::newRow("p% dans le chemin") << "DU" << "J" << "/p%x/Patients.mdb" << "DU*" << "J*" << "/Jx/Patients.mdb";
        QTest::newRow("apostrophe") << "d'A" << "" << "/b/Patients.mdb" << "d'A*" << "*" << "/b/Patients.mdb";
        QTest::newRow("jokers") << "D?P*T" << "" << "/b/Patients.mdb" << "D?P*T*" << "*" << "/b/Patients.mdb";
    }
    void branchesCommeLUnion()
    {
        QFETCH(QString, nom);
        QFETCH(QString, prenom);
        QFETCH(QString, path1);
        QFETCH(QString, motifNom);
        QFETCH(QString, motifPrenom);
        QFETCH(QString, chemin1);
        QString en = EchapperApostrophes(nom), ep = EchapperApostrophes(prenom), vide;
        QString p1 = path1, p2 = QStringLiteral("/autre/Patients.mdb");
        const QString texte = ConstruireUnion(p1, p2, vide, vide, en, ep, false);
        const QRegularExpression re(QStringLiteral(R"(\[;Database=([^\]]*)\]\.Signaletiques WHERE Nom LIKE '((?:[^']|'')*)' AND Prenom LIKE '((?:[^']|'')*)')"));
        QList<QStringList> attendues;
        for (auto it = re.globalMatch(texte); it.hasNext();) {
            const auto m = it.next();
            attendues << QStringList{m.captured(1), m.captured(2).replace(QStringLiteral("''"), QStringLiteral("'")),
                                     m.captured(3).replace(QStringLiteral("''"), QStringLiteral("'"))};
        }
        const QList<BrancheRecherche> branches =
            BranchesUnion({QString(), p1, p2, QString(), QString()}, en, ep, false, QString());
        QCOMPARE(branches.size(), attendues.size());
        for (qsizetype i = 0; i < branches.size(); ++i) {
            QCOMPARE(branches[i].chemin, attendues[i][0]);
            QCOMPARE(branches[i].motifNom, attendues[i][1]);
            QCOMPARE(branches[i].motifPrenom, attendues[i][2]);
        }
        QCOMPARE(branches[0].chemin, chemin1);
        QCOMPARE(branches[0].motifNom, motifNom);
        QCOMPARE(branches[0].motifPrenom, motifPrenom);
    }

    void rechercheAgenda_data()
    {
        QTest::addColumn<QString>("nom");
        QTest::addColumn<QString>("prenom");
        QTest::addColumn<QStringList>("attendu");
        QTest::newRow("préfixe, sans casse") << "dup" << "" << QStringList{"Agenda:Dupond Anne", "Agenda:DUPONT Jean"};
        QTest::newRow("prénom") << "dup" << "j" << QStringList{"Agenda:DUPONT Jean"};
        QTest::newRow("accent trouvé sans accent") << "elo" << "" << QStringList{"Agenda:Élodie Zoé", "Agenda:ELOI Marc"};
        QTest::newRow("accent dans le motif") << "ÉLO" << "zoe" << QStringList{"Agenda:Élodie Zoé"};
        QTest::newRow("prénom accentué") << "mart" << "HEL" << QStringList{"Agenda:Martin Hélène", "Agenda:MARTINEZ héloïse"};
        QTest::newRow("ligature") << "oeuv" << "" << QStringList{"Agenda:Œuvray Paul"};
        QTest::newRow("apostrophe") << "d'a" << "" << QStringList{"Agenda:d'Argent Luc"};
        QTest::newRow("étoile") << "d*t" << "" << QStringList{"Agenda:d'Argent Luc", "Agenda:DUPONT Jean"};
        QTest::newRow("point d'interrogation") << "dupon?" << "" << QStringList{"Agenda:Dupond Anne", "Agenda:DUPONT Jean"};
        QTest::newRow("joker en tête") << "?upon" << "" << QStringList{"Agenda:Dupond Anne", "Agenda:DUPONT Jean"};
        QTest::newRow("% et _ littéraux") << "a%b_" << "" << QStringList{"Agenda:A%B_C X"};
        QTest::newRow("% n'est pas un joker") << "%" << "" << QStringList{};
        QTest::newRow("rien") << "xyz" << "" << QStringList{};
        QTest::newRow("tout") << "" << "" << QStringList{"Agenda:A%B_C X", "Agenda:d'Argent Luc", "Agenda:Dupond Anne",
                                                            "Agenda:DUPONT Jean", "Agenda:Élodie Zoé", "Agenda:ELOI Marc",
                                                            "Agenda:Martin Hélène", "Agenda:MARTINEZ héloïse",
                                                            "Agenda:Œuvray Paul", "Agenda:Zéro Anonyme"};
    }
    void rechercheAgenda()
    {
        QFETCH(QString, nom);
        QFETCH(QString, prenom);
        QFETCH(QStringList, attendu);
        ResultatRecherche r;
        const auto erreur = RechercheBaseAgenda(appState(), nom, prenom, r);
        QVERIFY2(!erreur, erreur ? qPrintable(erreur->description) : "");
        QCOMPARE(noms(r.toutes()), attendu);
    }

    void rechercheLiee_data()
    {
        QTest::addColumn<QStringList>("paths");
        QTest::addColumn<QString>("nom");
        QTest::addColumn<QStringList>("attendu");
        const QString c1 = dossier(QStringLiteral("cab1")) + QStringLiteral("Patients.mdb");
        const QString c2 = dossier(QStringLiteral("cab2")) + QStringLiteral("Patients.mdb");
        // Each base in its own sort, in slot order; doubles stay.
        QTest::newRow("deux bases") << QStringList{c1, c2, "", ""} << "d"
                                    << QStringList{"CAB1:DUPONT Jean", "CAB1:Durand Paul", "CAB2:Dubois Eve", "CAB2:dupont Jean"};
        QTest::newRow("ordre des emplacements") << QStringList{c2, c1, "", ""} << "dup"
                                                << QStringList{"CAB2:dupont Jean", "CAB1:DUPONT Jean"};
        QTest::newRow("même base deux fois") << QStringList{c1, c1, "", ""} << "dup" << QStringList{"CAB1:DUPONT Jean", "CAB1:DUPONT Jean"};
        QTest::newRow("path2 vide: seul path1") << QStringList{c1, "", c2, ""} << "d" << QStringList{"CAB1:DUPONT Jean", "CAB1:Durand Paul"};
        QTest::newRow("path1 vide: rien") << QStringList{"", c1, c2, ""} << "d" << QStringList{};
        QTest::newRow("ordre") << QStringList{dossier(QStringLiteral("ordre")) + "Patients.mdb", "", "", ""} << ""
                               << QStringList{"m:de la Tour A", "n:Delatour A", "b:DUPONT anne", "d:Dupont Anne", "c:Dupont Anne",
                                              "a:Dupont Zoé", "h:Dupont-Martin Zed", "i:DUPONT-MARTINEZ al", "g:Dupont-Martinez Al",
                                              "l:ELODIE marie", "f:Elodie Marie", "e:Élodie Marie", "o:Œuvray A", "k:Zz A", "j:Đorđe A"};
        QTest::newRow("base propre jamais") << QStringList{c1, "", "", ""} << "Élo" << QStringList{};
    }
    void rechercheLiee()
    {
        QFETCH(QStringList, paths);
        QFETCH(QString, nom);
        QFETCH(QStringList, attendu);
        AppState etat;
        etat.CheminBaseAgenda = appState().CheminBaseAgenda;
        for (int i = 0; i < 4; ++i)
            etat.Path[i + 1] = paths[i];
        ResultatRecherche r;
        const auto erreur = RechercheBasesLiees(etat, nom, QString(), r);
        QVERIFY2(!erreur, erreur ? qPrintable(erreur->description) : "");
        QCOMPARE(noms(r.toutes()), attendu);
    }

    void colonnesDeLaLigne()
    {
        AppState etat;
        etat.Path[1] = dossier(QStringLiteral("cab1")) + QStringLiteral("Patients.mdb");
        ResultatRecherche r;
        QVERIFY(!RechercheBasesLiees(etat, QStringLiteral("DUPONT"), QStringLiteral("jean"), r));
        QCOMPARE(r.size(), 1);
        const LigneRecherche &l = r.ligne(0);
        QCOMPARE((QVariantList{l.Base, l.Numero.toInt(), l.Agenda.toInt(), l.DateNaissance.toString(), l.DerniereVisite.isNull()}),
                 (QVariantList{"CAB1", 1, 7, "1970-01-01", true}));
    }

    // Every name that the pattern matches is found, whatever its spelling:
    // the index ranges never leave one out.
    void plagesNeManquentRien_data()
    {
        QTest::addColumn<QString>("motif");
        for (const char *m : {"d", "du", "DUP", "é", "ÉL", "el", "oe", "œu", "ss", "s", "a%", "z", "ǆ", "dz", "ﬁ", "fi",
                              "d'a", "d ", "1", "-", "ü", "y", "dj", "de la"})
            QTest::newRow(m) << QString::fromUtf8(m);
    }
    void plagesNeManquentRien()
    {
        QFETCH(QString, motif);
        static const QStringList tous = [] {
            QStringList l{QStringLiteral("Dupont"), QStringLiteral("DUPRÉ"), QStringLiteral("dùpont"), QStringLiteral("Ďumas"),
                          QStringLiteral("D\u0301upuis"), QStringLiteral("Du\u0308rr"), QStringLiteral("Élodie"),
                          QStringLiteral("E\u0301lise"), QStringLiteral("ELOI"), QStringLiteral("éloïse"), QStringLiteral("Œuvray"),
                          QStringLiteral("oeuvre"), QStringLiteral("Strauß"), QStringLiteral("SSO"), QStringLiteral("Ǆuro"),
                          QStringLiteral("ǅan"), QStringLiteral("Dzeko"), QStringLiteral("ﬁlou"), QStringLiteral("Filou"),
                          QStringLiteral("d'Argent"), QStringLiteral("D'ARTOIS"), QStringLiteral("de la Tour"),
                          QStringLiteral("De La Rue"), QStringLiteral("1er"), QStringLiteral("-tiret"), QStringLiteral("Über"),
                          QStringLiteral("üzel"), QStringLiteral("Ÿves"), QStringLiteral("yann"), QStringLiteral("Zoé"),
                          QStringLiteral("ZZ"), QStringLiteral("Ａlpha"), QStringLiteral("Đorđe"), QStringLiteral("Djamel"),
                          QStringLiteral("a%b"), QStringLiteral("A%C")};
            QRandomGenerator g(42);
            const QString lettres = QStringLiteral("aAdDeEéÉèuUùüsSßzZœŒ'- ");
            for (int i = 0; i < 300; ++i) {
                QString n;
                const int longueur = g.bounded(1, 6);
                for (int k = 0; k < longueur; ++k)
                    n += lettres.at(g.bounded(lettres.size()));
                l << n;
            }
            return l;
        }();
        const QString d = dossier(QStringLiteral("plages"));
        if (!QFileInfo::exists(d + QStringLiteral("Patients.mdb"))) {
            QList<PatientTest> p;
            int numero = 1;
            for (const QString &n : tous)
                p.append({n, QString::number(numero), QStringLiteral("1970-01-01"), numero}), ++numero;
            const QString err = CreerBaseTest(d, p);
            QVERIFY2(err.isEmpty(), qPrintable(err));
        }
        QStringList attendus;
        for (const QString &n : tous) {
            if (JetLike(n, motif + u'*'))
                attendus << n;
        }
        ResultatRecherche r;
        ErreurRecherche e;
        QVERIFY2(r.ajouterBase(d + QStringLiteral("Patients.mdb"), motif + u'*', QStringLiteral("*"), &e),
                 qPrintable(e.description));
        QStringList trouves;
        for (const LigneRecherche &l : r.toutes())
            trouves << l.Nom;
        attendus.sort();
        trouves.sort();
        QCOMPARE(trouves, attendus);
        QVERIFY(PlagesDuMotif(motif + u'*').has_value());
    }

    // A base of the other product may compare names with case (no NOCASE
    // collation, no index): the same rows are found, in the same order.
    void baseSansIndexNiCollation()
    {
        const QString d = dossier(QStringLiteral("sans-index"));
        QDir().mkpath(d);
        {
            auto b = BaseSqlite::ouvrir(d + QStringLiteral("Patients.mdb"), BaseSqlite::Mode::Creer);
            QVERIFY(b);
            QVERIFY(b->executer(QStringLiteral("CREATE TABLE Signaletiques (Nom TEXT, Prenom TEXT, \"Date de Naissance\" TEXT, "
                                               "\"Derniere Visite\" TEXT, Numero INTEGER, Agenda INTEGER, Base TEXT)")));
            QVERIFY(b->executer(QStringLiteral("INSERT INTO Signaletiques VALUES ('dupont', 'jean', '1970-01-01', NULL, 1, NULL, 'X'), "
                                               "('DUPRE', 'Anne', '1971-01-01', NULL, 2, NULL, 'X'), "
                                               "('Dùpuis', 'Eve', '1972-01-01', NULL, 3, NULL, 'X'), "
                                               "(NULL, 'Nul', '1972-01-01', NULL, 4, NULL, 'X'), "
                                               "('Martin', 'Luc', '1973-01-01', NULL, 5, NULL, 'X')")));
        }
        ResultatRecherche r;
        ErreurRecherche e;
        QVERIFY2(r.ajouterBase(d + QStringLiteral("Patients.mdb"), QStringLiteral("DU*"), QStringLiteral("*"), &e),
                 qPrintable(e.description));
        QCOMPARE(noms(r.toutes()), (QStringList{"X:dupont jean", "X:DUPRE Anne", "X:Dùpuis Eve"}));
    }

    // A linked base that cannot be read fails the whole search with its
    // error, and nothing is written to any base.
    void basesLieesInutilisables_data()
    {
        QTest::addColumn<QString>("genre");
        QTest::addColumn<int>("numero");
        QTest::addColumn<QString>("motDescription");
        QTest::newRow("absente") << "absente" << SQLITE_CANTOPEN << "introuvable";
        QTest::newRow("pas une base") << "texte" << SQLITE_NOTADB << "pas une base";
        QTest::newRow("en-tête puis déchets") << "dechets" << SQLITE_NOTADB << "pas une base";
        QTest::newRow("sans table") << "vide" << SQLITE_ERROR << "pas une base de patients";
        QTest::newRow("verrouillée") << "verrou" << SQLITE_BUSY << "verrouillée";
    }
    void basesLieesInutilisables()
    {
        QFETCH(QString, genre);
        QFETCH(int, numero);
        QFETCH(QString, motDescription);
        const QString d = dossier(QStringLiteral("mauvaise-") + genre);
        QDir().mkpath(d);
        const QString chemin = d + QStringLiteral("Patients.mdb");
        std::unique_ptr<BaseSqlite> verrou;
        if (genre == QStringLiteral("texte")) {
            QVERIFY(ecrireOctets(chemin, "Standard Jet DB, not ours\n"));
        } else if (genre == QStringLiteral("dechets")) {
            QVERIFY(ecrireOctets(chemin, QByteArray("SQLite format 3\0", 16) + QByteArray(4080, '\x7f')));
        } else if (genre == QStringLiteral("vide")) {
            auto b = BaseSqlite::ouvrir(chemin, BaseSqlite::Mode::Creer);
            QVERIFY(b);
            QVERIFY(b->executer(QStringLiteral("CREATE TABLE Autre (x)")));
        } else if (genre == QStringLiteral("verrou")) {
            QVERIFY(CreerBaseTest(d, {{QStringLiteral("Dupont"), QStringLiteral("A"), QStringLiteral("1970-01-01"), 1}}).isEmpty());
            verrou = BaseSqlite::ouvrir(chemin, BaseSqlite::Mode::Existante);
            QVERIFY(verrou);
            QVERIFY(verrou->executer(QStringLiteral("BEGIN EXCLUSIVE")));
        }
        const QByteArray avantAgenda = empreinte(CheminPatientsMdb(appState().CheminBaseAgenda));
        const QByteArray avantCab1 = empreinte(dossier(QStringLiteral("cab1")) + QStringLiteral("Patients.mdb"));
        const QByteArray avant = empreinte(chemin);

        AppState etat;
        etat.Path[1] = dossier(QStringLiteral("cab1")) + QStringLiteral("Patients.mdb");
        etat.Path[2] = chemin;
        ResultatRecherche r;
        QVERIFY(!RechercheBaseAgenda(appState(), QStringLiteral("d"), QString(), r));
        const qsizetype avantRecherche = r.size();
        QCOMPARE(avantRecherche, 3);
        const auto erreur = RechercheBasesLiees(etat, QStringLiteral("d"), QString(), r);
        QVERIFY2(erreur, "the search went through");
        QCOMPARE(erreur->numero & 0xff, numero);
        QVERIFY2(erreur->description.contains(motDescription), qPrintable(erreur->description));
        // The result of before is left as it was: no partial list.
        QCOMPARE(r.size(), avantRecherche);
        if (verrou)
            QVERIFY(verrou->executer(QStringLiteral("ROLLBACK")));
        QCOMPARE(empreinte(chemin), avant);
        QCOMPARE(empreinte(CheminPatientsMdb(appState().CheminBaseAgenda)), avantAgenda);
        QCOMPARE(empreinte(dossier(QStringLiteral("cab1")) + QStringLiteral("Patients.mdb")), avantCab1);
        QCOMPARE(QFileInfo::exists(chemin), genre != QStringLiteral("absente"));
        QVERIFY(!QFileInfo::exists(chemin + QStringLiteral("-journal")) || verrou);
    }

    // The columns beyond the names are read when a row is asked for; a row
    // removed in between gives empty columns, no failure.
    void lectureALaDemande()
    {
        const QString d = dossier(QStringLiteral("demande"));
        QList<PatientTest> p;
        for (int i = 1; i <= 150; ++i)
            p.append({QStringLiteral("NOM%1").arg(i, 3, 10, QLatin1Char('0')), QStringLiteral("P"), QStringLiteral("1970-01-01"), i,
                      QStringLiteral("B")});
        QVERIFY(CreerBaseTest(d, p).isEmpty());
        ResultatRecherche r;
        QVERIFY(r.ajouterBase(d + QStringLiteral("Patients.mdb"), QStringLiteral("nom*"), QStringLiteral("*")));
        QCOMPARE(r.size(), 150);
        {
            auto b = BaseSqlite::ouvrir(d + QStringLiteral("Patients.mdb"), BaseSqlite::Mode::Existante);
            QVERIFY(b);
            QVERIFY(b->executer(QStringLiteral("DELETE FROM Signaletiques WHERE Numero = 140")));
            QVERIFY(b->executer(QStringLiteral("UPDATE Signaletiques SET Base = 'C' WHERE Numero = 2")));
        }
        QCOMPARE(r.ligne(1).Base, QStringLiteral("C"));
        QCOMPARE(r.ligne(139).Nom, QStringLiteral("NOM140"));
        ErreurRecherche e;
        QVERIFY(r.lire(139, &e));
        QVERIFY(r.ligne(139).Numero.isNull());
        QCOMPARE(r.ligne(149).Numero.toInt(), 150);
    }
};

QTEST_GUILESS_MAIN(tst_recherchepatients)
#include "tst_recherchepatients.moc"
