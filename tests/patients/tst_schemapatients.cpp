#include "patients/schemapatients.h"
#include "shell/basesqlite.h"
#include "support/repondeurscripte.h"

#include <QDir>
#include <QFile>
#include <QSqlError>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>
#include <utility>

class tst_schemapatients : public QObject
{
    Q_OBJECT

private:
    using Colonnes = QList<std::pair<QString, QString>>;

    static QByteArray octets(const QString &chemin)
    {
        QFile f(chemin);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }

    // Name and declared type of each column, in order.
    static Colonnes colonnes(const QSqlDatabase &db, const QString &table)
    {
        Colonnes l;
        QSqlQuery q(db);
        if (!q.exec(QStringLiteral("PRAGMA table_info(\"%1\")").arg(table)))
            return l;
        while (q.next())
            l.append({q.value(1).toString(), q.value(2).toString()});
        return l;
    }

    static QStringList noms(const Colonnes &c)
    {
        QStringList l;
        for (const auto &p : c)
            l << p.first;
        return l;
    }

    // A new base in a temporary folder, opened.
    struct BaseNeuve
    {
        QTemporaryDir dir;
        std::unique_ptr<BaseSqlite> base;

        bool creer()
        {
            if (!dir.isValid())
                return false;
            QString d = dir.path();
            if (!CreerBasePatients(d))
                return false;
            base = BaseSqlite::ouvrir(dir.path() + QStringLiteral("/Patients.mdb"), BaseSqlite::Mode::Existante);
            return base != nullptr;
        }
    };

private Q_SLOTS:
    void signaletiquesColonnesDansLOrdre()
    {
        RepondeurScripte repondeur;
        BaseNeuve b;
        QVERIFY(b.creer());
        const QString t64 = QStringLiteral("TEXT(64)");
        const QString date = QStringLiteral("DATETIME");
        const QString booleen = QStringLiteral("BOOLEAN");
        const QString entier = QStringLiteral("INTEGER");
        const QString memo = QStringLiteral("TEXT");
        const Colonnes attendues = {
            {QStringLiteral("Nom"), t64},
            {QStringLiteral("Prenom"), t64},
            {QStringLiteral("Date de Naissance"), date},
            {QStringLiteral("Nom de jeune fille"), t64},
            {QStringLiteral("Nom de l'assuré"), t64},
            {QStringLiteral("Sexe"), booleen},
            {QStringLiteral("Protection"), booleen},
            {QStringLiteral("Profession"), t64},
            {QStringLiteral("Adresse1"), t64},
            {QStringLiteral("Adresse2"), t64},
            {QStringLiteral("Code Postal"), QStringLiteral("TEXT(7)")},
            {QStringLiteral("Ville"), t64},
            {QStringLiteral("Telephone1"), QStringLiteral("TEXT(20)")},
            {QStringLiteral("Telephone2"), QStringLiteral("TEXT(20)")},
            {QStringLiteral("Notes"), QStringLiteral("TEXT(255)")},
            {QStringLiteral("Consultant1"), QStringLiteral("TEXT(30)")},
            {QStringLiteral("Consultant2"), QStringLiteral("TEXT(30)")},
            {QStringLiteral("Prise en charge"), QStringLiteral("TEXT(12)")},
            {QStringLiteral("Numero de secu"), QStringLiteral("TEXT(15)")},
            {QStringLiteral("Code CPAM"), QStringLiteral("TEXT(8)")},
            {QStringLiteral("Code Centre"), QStringLiteral("TEXT(8)")},
            {QStringLiteral("Debut ALD"), QStringLiteral("TEXT(12)")},
            {QStringLiteral("Fin ALD"), QStringLiteral("TEXT(12)")},
            {QStringLiteral("Fin de droit"), QStringLiteral("TEXT(12)")},
            {QStringLiteral("Derniere Visite"), date},
            {QStringLiteral("No Dossier Comptable"), entier},
            {QStringLiteral("Numero"), entier},
            {QStringLiteral("reseau"), QStringLiteral("TEXT(255)")},
            {QStringLiteral("adpar1"), booleen},
            {QStringLiteral("adpar2"), booleen},
            {QStringLiteral("Decede"), booleen},
            {QStringLiteral("Sesam_Vitale"), memo},
            {QStringLiteral("Nom_Sesam"), t64},
            {QStringLiteral("Prenom_Sesam"), t64},
            {QStringLiteral("Sesam_SFI"), memo},
            {QStringLiteral("Sesam_Mutuelle"), QStringLiteral("TEXT(30)")},
            {QStringLiteral("Sesam_MutContrat"), QStringLiteral("TEXT(30)")},
            {QStringLiteral("Sesam_MutAdherent"), QStringLiteral("TEXT(30)")},
            {QStringLiteral("Sesam_Divers"), QStringLiteral("TEXT(255)")},
            {QStringLiteral("IS_Assure"), booleen},
            {QStringLiteral("Photo"), memo},
            {QStringLiteral("mèl"), t64},
            {QStringLiteral("Pro_adresse1"), t64},
            {QStringLiteral("Pro_adresse2"), t64},
            {QStringLiteral("Pro_CP"), QStringLiteral("TEXT(7)")},
            {QStringLiteral("Pro_Ville"), t64},
            {QStringLiteral("Pro_Téléphone"), QStringLiteral("TEXT(50)")},
            {QStringLiteral("Pro_Portable"), QStringLiteral("TEXT(50)")},
            {QStringLiteral("Pro_Mèl"), QStringLiteral("TEXT(50)")},
            {QStringLiteral("Ville_naissance"), t64},
            {QStringLiteral("Note2"), QStringLiteral("TEXT(255)")},
            {QStringLiteral("Note3"), QStringLiteral("TEXT(255)")},
            {QStringLiteral("Contrat"), booleen},
            {QStringLiteral("Date_Contrat"), date},
            {QStringLiteral("CP_naissance"), QStringLiteral("TEXT(7)")},
            {QStringLiteral("Dentition"), QStringLiteral("TEXT(255)")},
            {QStringLiteral("Dentition2"), QStringLiteral("TEXT(255)")},
            {QStringLiteral("initial"), QStringLiteral("TEXT(255)")},
            {QStringLiteral("Sesam_Mutdebut"), QStringLiteral("TEXT(12)")},
            {QStringLiteral("Sesam_MutFin"), QStringLiteral("TEXT(12)")},
            {QStringLiteral("INS_A"), QStringLiteral("TEXT(32)")},
            {QStringLiteral("INS_C"), QStringLiteral("TEXT(32)")},
            {QStringLiteral("Situation"), QStringLiteral("TEXT(16)")},
            {QStringLiteral("Enfants"), QStringLiteral("TEXT(2)")},
            {QStringLiteral("Médecin traitant"), t64},
            {QStringLiteral("Compteur"), entier},
            {QStringLiteral("Agenda"), entier},
            {QStringLiteral("Base"), QStringLiteral("TEXT(32)")},
        };
        QCOMPARE(attendues.size(), 68);
        QCOMPARE(colonnes(b.base->db(), QStringLiteral("Signaletiques")), attendues);
        QCOMPARE(ColonnesSignaletiques(), noms(attendues));
        QVERIFY(repondeur.appels().isEmpty());
    }

    void autresTables_data()
    {
        QTest::addColumn<QString>("table");
        QTest::addColumn<QStringList>("attendues");
        QTest::newRow("Events") << "Events"
                                << QStringList{"Numero", "DateRv", "HeureRV", "Praticien", "DatePrise", "Motif", "ID", "DateModif"};
        QTest::newRow("Notes") << "Notes" << QStringList{"Numero", "Texte", "Txt"};
        QTest::newRow("Brenwick") << "Brenwick" << QStringList{"Type", "Version", "Password", "Serial"};
    }

    void autresTables()
    {
        QFETCH(QString, table);
        QFETCH(QStringList, attendues);
        BaseNeuve b;
        QVERIFY(b.creer());
        QCOMPARE(noms(colonnes(b.base->db(), table)), attendues);
    }

    void index_data()
    {
        QTest::addColumn<QString>("table");
        QTest::addColumn<QString>("index");
        QTest::addColumn<QStringList>("champs");
        QTest::addColumn<bool>("unique");
        QTest::newRow("Index Numero") << "Signaletiques" << "Index Numero" << QStringList{"Numero"} << true;
        QTest::newRow("Index Sesam") << "Signaletiques" << "Index Sesam"
                                     << QStringList{"Nom_Sesam", "Prenom_Sesam", "Date de Naissance"} << false;
        QTest::newRow("Index Signaletiques") << "Signaletiques" << "Index Signaletiques"
                                             << QStringList{"Nom", "Prenom", "Date de Naissance"} << true;
        QTest::newRow("IdxID") << "Events" << "IdxID" << QStringList{"ID"} << true;
        QTest::newRow("IdxPatient") << "Events" << "IdxPatient" << QStringList{"Numero", "DateRv", "HeureRV"} << false;
        QTest::newRow("Idx") << "Notes" << "Idx" << QStringList{"Numero"} << true;
    }

    void index()
    {
        QFETCH(QString, table);
        QFETCH(QString, index);
        QFETCH(QStringList, champs);
        QFETCH(bool, unique);
        BaseNeuve b;
        QVERIFY(b.creer());
        QSqlQuery q(b.base->db());
        QVERIFY(q.exec(QStringLiteral("PRAGMA index_list(\"%1\")").arg(table)));
        bool trouve = false;
        while (q.next()) {
            if (q.value(1).toString() != index)
                continue;
            trouve = true;
            QCOMPARE(q.value(2).toBool(), unique);
        }
        QVERIFY2(trouve, qPrintable(index));
        QVERIFY(q.exec(QStringLiteral("PRAGMA index_info(\"%1\")").arg(index)));
        QStringList lus;
        while (q.next())
            lus << q.value(2).toString();
        QCOMPARE(lus, champs);
    }

    // No index beyond the named ones (Brenwick has none).
    void pasDAutreIndex_data()
    {
        QTest::addColumn<QString>("table");
        QTest::addColumn<QStringList>("index");
        QTest::newRow("Signaletiques") << "Signaletiques" << QStringList{"Index Numero", "Index Sesam", "Index Signaletiques"};
        QTest::newRow("Events") << "Events" << QStringList{"IdxID", "IdxPatient"};
        QTest::newRow("Notes") << "Notes" << QStringList{"Idx"};
        QTest::newRow("Brenwick") << "Brenwick" << QStringList{};
    }

    void pasDAutreIndex()
    {
        QFETCH(QString, table);
        QFETCH(QStringList, index);
        BaseNeuve b;
        QVERIFY(b.creer());
        QSqlQuery q(b.base->db());
        QVERIFY(q.exec(QStringLiteral("PRAGMA index_list(\"%1\")").arg(table)));
        QStringList lus;
        while (q.next())
            lus << q.value(1).toString();
        lus.sort();
        QCOMPARE(lus, index);
    }

    void ligneBrenwick()
    {
        BaseNeuve b;
        QVERIFY(b.creer());
        QSqlQuery q(b.base->db());
        QVERIFY(q.exec(QStringLiteral("SELECT Type, Version, Password, Serial FROM Brenwick")));
        QVERIFY(q.next());
        QCOMPARE(q.value(0).toString(), QStringLiteral("Patients"));
        QCOMPARE(q.value(1).toString(), QStringLiteral("Agenda"));
        QCOMPARE(q.value(2).toString(), QStringLiteral("                "));
        QCOMPARE(q.value(3).toString(), QStringLiteral("                "));
        QVERIFY(!q.next());
    }

    // Statements run in order on a new base; all but the last must pass, and
    // the last passes or is refused by the base.
    void contraintes_data()
    {
        QTest::addColumn<QStringList>("avant");
        QTest::addColumn<QString>("derniere");
        QTest::addColumn<bool>("acceptee");

        auto patient = [](const QString &nom, const QString &prenom, const QString &naissance, const QString &numero) {
            return QStringLiteral("INSERT INTO Signaletiques (Nom, Prenom, \"Date de Naissance\", Numero) VALUES (%1, %2, %3, %4)")
                .arg(nom, prenom, naissance, numero);
        };
        const QString dupont = patient("'DUPONT'", "'Jean'", "'1970-05-12'", "1");
        auto rv = [](const QString &numero, const QString &jour, const QString &heure, const QString &id) {
            return QStringLiteral("INSERT INTO Events (Numero, DateRv, HeureRV, Praticien, ID) VALUES (%1, '%2', '%3', 'Dr Martin', %4)")
                .arg(numero, jour, heure, id);
        };

        QTest::newRow("un patient") << QStringList{} << dupont << true;
        QTest::newRow("meme identite, autre numero") << QStringList{dupont} << patient("'DUPONT'", "'Jean'", "'1970-05-12'", "2") << false;
        QTest::newRow("meme identite, autre casse") << QStringList{dupont} << patient("'Dupont'", "'JEAN'", "'1970-05-12'", "2") << false;
        QTest::newRow("meme nom, autre naissance") << QStringList{dupont} << patient("'DUPONT'", "'Jean'", "'1971-05-12'", "2") << true;
        QTest::newRow("sans date de naissance") << QStringList{} << patient("'DUPONT'", "'Jean'", "NULL", "1") << false;
        QTest::newRow("date de naissance vide") << QStringList{} << patient("'DUPONT'", "'Jean'", "''", "1") << false;
        QTest::newRow("nom et prenom vides acceptes") << QStringList{} << patient("''", "''", "'1970-05-12'", "1") << true;
        QTest::newRow("sans nom") << QStringList{} << patient("NULL", "'Jean'", "'1970-05-12'", "1") << false;
        QTest::newRow("numero en double") << QStringList{dupont} << patient("'MARTIN'", "'Paul'", "'1980-01-01'", "1") << false;
        QTest::newRow("sans numero") << QStringList{} << patient("'MARTIN'", "'Paul'", "'1980-01-01'", "NULL") << false;
        QTest::newRow("nom de 64 lettres accentuees")
            << QStringList{} << patient(u'\'' + QString(64, QChar(0xC9)) + u'\'', "'Paul'", "'1980-01-01'", "1") << true;
        QTest::newRow("nom de 65 lettres") << QStringList{} << patient(u'\'' + QString(65, u'A') + u'\'', "'Paul'", "'1980-01-01'", "1") << false;
        QTest::newRow("code postal de 8 caracteres")
            << QStringList{dupont} << "UPDATE Signaletiques SET \"Code Postal\" = '75001012' WHERE Numero = 1" << false;
        QTest::newRow("code postal de 7 caracteres")
            << QStringList{dupont} << "UPDATE Signaletiques SET \"Code Postal\" = '75001 X' WHERE Numero = 1" << true;
        QTest::newRow("enfants sur 3 caracteres") << QStringList{dupont} << "UPDATE Signaletiques SET Enfants = '100' WHERE Numero = 1" << false;
        QTest::newRow("memo long") << QStringList{dupont}
                                   << QStringLiteral("UPDATE Signaletiques SET Photo = '%1' WHERE Numero = 1").arg(QString(5000, u'x')) << true;
        QTest::newRow("rendez-vous") << QStringList{} << rv("1", "2016-01-04", "09:00:00", "100") << true;
        QTest::newRow("meme ID de rendez-vous")
            << QStringList{rv("1", "2016-01-04", "09:00:00", "100")} << rv("2", "2016-01-05", "10:00:00", "100") << false;
        QTest::newRow("meme patient, meme jour, meme heure")
            << QStringList{rv("1", "2016-01-04", "09:00:00", "100")} << rv("1", "2016-01-04", "09:00:00", "101") << true;
        QTest::newRow("rendez-vous sans ID") << QStringList{} << rv("1", "2016-01-04", "09:00:00", "NULL") << false;
        QTest::newRow("une note") << QStringList{} << "INSERT INTO Notes (Numero, Texte, Txt) VALUES (1, 'a', 'a')" << true;
        QTest::newRow("deux notes pour un patient") << QStringList{"INSERT INTO Notes (Numero, Txt) VALUES (1, 'a')"}
                                                    << "INSERT INTO Notes (Numero, Txt) VALUES (1, 'b')" << false;
        QTest::newRow("note sans numero") << QStringList{} << "INSERT INTO Notes (Txt) VALUES ('a')" << false;
    }

    void contraintes()
    {
        QFETCH(QStringList, avant);
        QFETCH(QString, derniere);
        QFETCH(bool, acceptee);
        BaseNeuve b;
        QVERIFY(b.creer());
        QSqlQuery q(b.base->db());
        for (const QString &sql : avant)
            QVERIFY2(q.exec(sql), qPrintable(q.lastError().text()));
        const bool ok = q.exec(derniere);
        QVERIFY2(ok == acceptee, qPrintable(q.lastError().text()));
    }

    // The counter gives the next number even after the last row is deleted.
    void compteurJamaisRedonne()
    {
        BaseNeuve b;
        QVERIFY(b.creer());
        QSqlQuery q(b.base->db());
        QVERIFY(q.exec(QStringLiteral("INSERT INTO Signaletiques (Nom, Prenom, \"Date de Naissance\", Numero) "
                                      "VALUES ('A', 'B', '1970-01-01', 7)")));
        QCOMPARE(q.lastInsertId().toInt(), 1);
        QVERIFY(q.exec(QStringLiteral("DELETE FROM Signaletiques")));
        QVERIFY(q.exec(QStringLiteral("INSERT INTO Signaletiques (Nom, Prenom, \"Date de Naissance\", Numero) "
                                      "VALUES ('A', 'B', '1970-01-01', 7)")));
        QCOMPARE(q.lastInsertId().toInt(), 2);
    }

    void fichierExistantIntact()
    {
        RepondeurScripte repondeur;
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        QString d = dir.path() + u'/';
        QVERIFY(CreerBasePatients(d));
        const QString chemin = dir.path() + QStringLiteral("/Patients.mdb");
        const QByteArray avant = octets(chemin);
        QVERIFY(!avant.isEmpty());
        QVERIFY(!CreerBasePatients(d));
        QCOMPARE(octets(chemin), avant);
        QVERIFY(repondeur.appels().isEmpty());
    }

    // A file written by another program, spelled in lower case, is the base:
    // it is neither rebuilt nor doubled by a "Patients.mdb".
    void fichierMinusculeIntact()
    {
        RepondeurScripte repondeur;
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        const QString minuscule = dir.path() + QStringLiteral("/patients.mdb");
        {
            QFile f(minuscule);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write("pas une base");
        }
        QString d = dir.path();
        QVERIFY(!CreerBasePatients(d));
        QCOMPARE(octets(minuscule), QByteArray("pas une base"));
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{QStringLiteral("patients.mdb")});
        QVERIFY(repondeur.appels().isEmpty());
    }

    void cheminPatientsMdb()
    {
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        const QString d = dir.path() + u'/';
        QCOMPARE(CheminPatientsMdb(d), d + QStringLiteral("Patients.mdb"));
        QCOMPARE(CheminPatientsMdb(dir.path()), d + QStringLiteral("Patients.mdb"));
        {
            QFile f(d + QStringLiteral("patients.mdb"));
            QVERIFY(f.open(QIODevice::WriteOnly));
        }
        QCOMPARE(CheminPatientsMdb(d), d + QStringLiteral("patients.mdb"));
        {
            QFile f(d + QStringLiteral("Patients.mdb"));
            QVERIFY(f.open(QIODevice::WriteOnly));
        }
        QCOMPARE(CheminPatientsMdb(d), d + QStringLiteral("Patients.mdb"));
    }

    void dossierRenduAvecSeparateur()
    {
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        QString d = dir.path();
        QVERIFY(CreerBasePatients(d));
        QCOMPARE(d, dir.path() + u'/');
        QVERIFY(QFile::exists(dir.path() + QStringLiteral("/Patients.mdb")));
    }

    void echecDansUnDossierAbsent()
    {
        RepondeurScripte repondeur;
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        QString d = dir.path() + QStringLiteral("/absent/");
        QVERIFY(!CreerBasePatients(d));
        QCOMPARE(repondeur.appels().size(), 1);
        const RepondeurScripte::Appel &a = repondeur.appels().constFirst();
        QCOMPARE(a.titre, QStringLiteral("Tavonel"));
        QCOMPARE(a.icone, Prompt::Icone::Critique);
        // SQLITE_CANTOPEN, two line breaks, then the description.
        QVERIFY2(a.texte.startsWith(QStringLiteral("14\n\n")), qPrintable(a.texte));
        QVERIFY(a.texte.size() > 4);
        QVERIFY(!QFile::exists(d + QStringLiteral("Patients.mdb")));
    }
};

QTEST_GUILESS_MAIN(tst_schemapatients)
#include "tst_schemapatients.moc"
