#include "patients/schemapatients.h"
#include "shell/base/basesqlite.h"
#include "support/fichierstest.h"
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
            if (!CreerBasePatients(d) || d != dir.path() + u'/') // the folder comes back with its separator
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
        // Name and declared type of each column, in order.
        const QString attendues = QStringLiteral(
            "Nom:TEXT(64);Prenom:TEXT(64);Date de Naissance:DATETIME;Nom de jeune fille:TEXT(64);"
            "Nom de l'assuré:TEXT(64);Sexe:BOOLEAN;Protection:BOOLEAN;Profession:TEXT(64);Adresse1:TEXT(64);"
            "Adresse2:TEXT(64);Code Postal:TEXT(7);Ville:TEXT(64);Telephone1:TEXT(20);Telephone2:TEXT(20);"
            "Notes:TEXT(255);Consultant1:TEXT(30);Consultant2:TEXT(30);Prise en charge:TEXT(12);"
            "Numero de secu:TEXT(15);Code CPAM:TEXT(8);Code Centre:TEXT(8);Debut ALD:TEXT(12);"
            "Fin ALD:TEXT(12);Fin de droit:TEXT(12);Derniere Visite:DATETIME;No Dossier Comptable:INTEGER;"
            "Numero:INTEGER;reseau:TEXT(255);adpar1:BOOLEAN;adpar2:BOOLEAN;Decede:BOOLEAN;Sesam_Vitale:TEXT;"
            "Nom_Sesam:TEXT(64);Prenom_Sesam:TEXT(64);Sesam_SFI:TEXT;Sesam_Mutuelle:TEXT(30);"
            "Sesam_MutContrat:TEXT(30);Sesam_MutAdherent:TEXT(30);Sesam_Divers:TEXT(255);IS_Assure:BOOLEAN;"
            "Photo:TEXT;mèl:TEXT(64);Pro_adresse1:TEXT(64);Pro_adresse2:TEXT(64);Pro_CP:TEXT(7);"
            "Pro_Ville:TEXT(64);Pro_Téléphone:TEXT(50);Pro_Portable:TEXT(50);Pro_Mèl:TEXT(50);"
            "Ville_naissance:TEXT(64);Note2:TEXT(255);Note3:TEXT(255);Contrat:BOOLEAN;Date_Contrat:DATETIME;"
            "CP_naissance:TEXT(7);Dentition:TEXT(255);Dentition2:TEXT(255);initial:TEXT(255);"
            "Sesam_Mutdebut:TEXT(12);Sesam_MutFin:TEXT(12);INS_A:TEXT(32);INS_C:TEXT(32);Situation:TEXT(16);"
            "Enfants:TEXT(2);Médecin traitant:TEXT(64);Compteur:INTEGER;Agenda:INTEGER;Base:TEXT(32)");
        Colonnes c;
        for (const QString &x : attendues.split(u';'))
            c.append({x.section(u':', 0, 0), x.section(u':', 1)});
        QCOMPARE(c.size(), 68);
        QCOMPARE(colonnes(b.base->db(), QStringLiteral("Signaletiques")), c);
        QCOMPARE(ColonnesSignaletiques(), noms(c));
        QVERIFY(repondeur.appels().isEmpty());
    }

    // The columns of the other tables; every index of each table: its name,
    // unique or not, and its fields.
    void index_data()
    {
        QTest::addColumn<QString>("table");
        QTest::addColumn<QStringList>("colonnes");
        QTest::addColumn<QStringList>("attendus");
        QTest::newRow("Signaletiques") << "Signaletiques" << ColonnesSignaletiques()
                                       << QStringList{"Index Numero unique: Numero",
                                                      "Index Sesam: Nom_Sesam, Prenom_Sesam, Date de Naissance",
                                                      "Index Signaletiques unique: Nom, Prenom, Date de Naissance"};
        QTest::newRow("Events") << "Events"
                                << QStringList{"Numero", "DateRv", "HeureRV", "Praticien", "DatePrise", "Motif", "ID", "DateModif"}
                                << QStringList{"IdxID unique: ID", "IdxPatient: Numero, DateRv, HeureRV"};
        QTest::newRow("Notes") << "Notes" << QStringList{"Numero", "Texte", "Txt"} << QStringList{"Idx unique: Numero"};
        QTest::newRow("Brenwick") << "Brenwick" << QStringList{"Type", "Version", "Password", "Serial"} << QStringList{};
    }

    void index()
    {
        QFETCH(QString, table);
        QFETCH(QStringList, colonnes);
        QFETCH(QStringList, attendus);
        BaseNeuve b;
        QVERIFY(b.creer());
        QCOMPARE(noms(tst_schemapatients::colonnes(b.base->db(), table)), colonnes);
        QSqlQuery q(b.base->db()), champs(b.base->db());
        QVERIFY(q.exec(QStringLiteral("PRAGMA index_list(\"%1\")").arg(table)));
        QStringList lus;
        while (q.next()) {
            QVERIFY(champs.exec(QStringLiteral("PRAGMA index_info(\"%1\")").arg(q.value(1).toString())));
            QStringList f;
            while (champs.next())
                f << champs.value(2).toString();
            lus << q.value(1).toString() + (q.value(2).toBool() ? QStringLiteral(" unique: ") : QStringLiteral(": "))
                    + f.join(QStringLiteral(", "));
        }
        lus.sort();
        QCOMPARE(lus, attendus);
    }

    void ligneBrenwick()
    {
        BaseNeuve b;
        QVERIFY(b.creer());
        QSqlQuery q(b.base->db());
        QVERIFY(q.exec(QStringLiteral("SELECT Type || '|' || Version || '|' || Password || '|' || Serial FROM Brenwick")) && q.next());
        QCOMPARE(q.value(0).toString(), QStringLiteral("Patients|Agenda|") + QString(16, u' ') + u'|' + QString(16, u' '));
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
        for (const int compteur : {1, 2}) {
            QVERIFY(q.exec(QStringLiteral("INSERT INTO Signaletiques (Nom, Prenom, \"Date de Naissance\", Numero) "
                                          "VALUES ('A', 'B', '1970-01-01', 7)")));
            QCOMPARE(q.lastInsertId().toInt(), compteur);
            QVERIFY(q.exec(QStringLiteral("DELETE FROM Signaletiques")));
        }
    }

    // An existing base, or a file written by another program and spelled in
    // lower case, is left as it is: neither rebuilt nor doubled.
    void fichierExistantIntact_data()
    {
        QTest::addColumn<QString>("nom");
        QTest::newRow("Patients.mdb") << "Patients.mdb";
        QTest::newRow("patients.mdb") << "patients.mdb";
    }

    void fichierExistantIntact()
    {
        QFETCH(QString, nom);
        RepondeurScripte repondeur;
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        QString d = dir.path() + u'/';
        QVERIFY(ecrireOctets(d + nom, "pas une base"));
        QVERIFY(!CreerBasePatients(d));
        QCOMPARE(lireOctets(d + nom), QByteArray("pas une base"));
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{nom});
        QVERIFY(repondeur.appels().isEmpty());
    }

    void cheminPatientsMdb()
    {
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        const QString d = dir.path() + u'/';
        QCOMPARE(CheminPatientsMdb(d), d + QStringLiteral("Patients.mdb"));
        QCOMPARE(CheminPatientsMdb(dir.path()), d + QStringLiteral("Patients.mdb"));
        QVERIFY(ecrireOctets(d + QStringLiteral("patients.mdb"), {}));
        QCOMPARE(CheminPatientsMdb(d), d + QStringLiteral("patients.mdb"));
        QVERIFY(ecrireOctets(d + QStringLiteral("Patients.mdb"), {}));
        QCOMPARE(CheminPatientsMdb(d), d + QStringLiteral("Patients.mdb"));
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
