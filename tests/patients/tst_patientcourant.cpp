#include "basestest.h"

#include "patients/gestiontype.h"
#include "shell/appstate.h"

#include <QSignalSpy>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <QtTest>

class tst_patientcourant : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    int m_compteur = 0;

    // A new own base with these rows, made the state's own base.
    QString nouvelleBase(const QList<PatientTest> &patients)
    {
        const QString d = m_dir.path() + QStringLiteral("/b%1/").arg(++m_compteur);
        const QString err = CreerBaseTest(d, patients);
        appState().CheminBaseAgenda = d;
        return err;
    }

    static QSqlRecord ligne(const QString &dossier, qint32 numero)
    {
        auto base = BaseSqlite::ouvrir(CheminPatientsMdb(dossier), BaseSqlite::Mode::Existante);
        if (!base)
            return {};
        QSqlQuery q(base->db());
        q.prepare(QStringLiteral("SELECT * FROM Signaletiques WHERE Numero = ?"));
        q.addBindValue(numero);
        if (!q.exec() || !q.next())
            return {};
        return q.record();
    }

    static bool executer(const QString &dossier, const QString &sql)
    {
        auto base = BaseSqlite::ouvrir(CheminPatientsMdb(dossier), BaseSqlite::Mode::Existante);
        return base && base->executer(sql);
    }

private slots:
    void initTestCase() { QVERIFY2(m_dir.isValid(), "no temporary folder"); }
    void init() { ViderPatientCourant(); }

    void numeroSuivant_data()
    {
        QTest::addColumn<QList<int>>("numeros");
        QTest::addColumn<int>("borne");
        QTest::addColumn<int>("attendu");
        QTest::newRow("base vide: le compteur") << QList<int>{} << 1 << 1;
        QTest::newRow("base vide: borne quelconque") << QList<int>{} << 57 << 57;
        QTest::newRow("suit le plus haut") << QList<int>{1, 2, 3} << 4 << 4;
        QTest::newRow("numéros en avance") << QList<int>{1, 500, 20} << 4 << 501;
        QTest::newRow("compteur en avance") << QList<int>{1, 2} << 90 << 90;
        QTest::newRow("égalité") << QList<int>{9} << 10 << 10;
        QTest::newRow("pas de base: zéro") << QList<int>{-1} << 5 << 0; // -1: no base file at all
    }
    void numeroSuivant()
    {
        QFETCH(QList<int>, numeros);
        QFETCH(int, borne);
        QFETCH(int, attendu);
        QList<PatientTest> p;
        for (int n : numeros)
            p.append({QStringLiteral("N%1").arg(n), QStringLiteral("P"), QStringLiteral("1970-01-01"), n});
        if (numeros == QList<int>{-1}) {
            appState().CheminBaseAgenda = m_dir.path() + QStringLiteral("/absente/");
        } else {
            const QString err = nouvelleBase(p);
            QVERIFY2(err.isEmpty(), qPrintable(err));
        }
        qint32 b = borne;
        QCOMPARE(NumeroSuivant(b), attendu);
    }

    void identifiantPatient_data()
    {
        QTest::addColumn<QString>("base");
        QTest::addColumn<int>("numero");
        QTest::addColumn<QString>("attendu");
        QTest::newRow("base vide") << "" << 42 << "Agenda00000042";
        QTest::newRow("agenda") << "Agenda" << 1 << "Agenda00000001";
        QTest::newRow("base liée") << "CAB1" << 123456 << "CAB100123456";
        QTest::newRow("plus de huit chiffres") << "" << 123456789 << "Agenda123456789";
        QTest::newRow("zéro") << "CAB1" << 0 << "";
        QTest::newRow("négatif") << "" << -3 << "";
    }
    void identifiantPatient()
    {
        QFETCH(QString, base);
        QFETCH(int, numero);
        QFETCH(QString, attendu);
        appState().PatientCourant.Base = base;
        qint32 n = numero;
        QCOMPARE(IdentifiantPatient(n), attendu);
    }

    void chargerDepuisCarte()
    {
        const QString err = nouvelleBase({{QStringLiteral("DUPONT"), QStringLiteral("Jean"), QStringLiteral("1970-03-25"), 42,
                                           QStringLiteral("CAB1")}});
        QVERIFY2(err.isEmpty(), qPrintable(err));
        const QString d = appState().CheminBaseAgenda;
        QVERIFY(executer(d, QStringLiteral("UPDATE Signaletiques SET Telephone1 = '0102030405', \"mèl\" = 'j@d.fr', "
                                           "Contrat = -1, \"Nom de l'assuré\" = NULL, INS_C = 'C1', Sexe = 0")));
        QSignalSpy legende(&LegendePatient::instance(), &LegendePatient::changee);
        ChargerDepuisCarte2(ligne(d, 42));
        const PatientCourantRecord &p = appState().PatientCourant;
        QCOMPARE(p.Nom, QStringLiteral("DUPONT"));
        QCOMPARE(p.Prenom, QStringLiteral("Jean"));
        QCOMPARE(p.DateNaissance, QStringLiteral("25/03/1970"));
        QCOMPARE(p.Numero, 42);
        QCOMPARE(p.Sexe, false);
        QCOMPARE(p.Telephone1, QStringLiteral("0102030405"));
        QCOMPARE(p.Mel, QStringLiteral("j@d.fr"));
        QCOMPARE(p.Contrat, QStringLiteral("Vrai"));
        QCOMPARE(p.NomAssure, QString());
        QCOMPARE(p.InsC, QStringLiteral("C1"));
        QCOMPARE(p.Base, QStringLiteral("CAB1"));
        // The identifier is built before Base is read: after a reset its
        // prefix is "Agenda"; loading again gives the row's own base.
        QCOMPARE(p.Identifiant, QStringLiteral("Agenda00000042"));
        ChargerDepuisCarte(ligne(d, 42));
        QCOMPARE(p.Identifiant, QStringLiteral("CAB100000042"));
        QCOMPARE(legende.count(), 2);
        QCOMPARE(legende.last().at(0).toString(), QStringLiteral("Jean DUPONT"));
        QCOMPARE(LegendePatient::instance().texte(), QStringLiteral("Jean DUPONT"));
    }

    // A null in a column that is taken as it is ends the load there.
    void chargerArreteSurNull()
    {
        const QString err = nouvelleBase({{QStringLiteral("MARTIN"), QStringLiteral("Léa"), QStringLiteral("1980-01-02"), 5}});
        QVERIFY2(err.isEmpty(), qPrintable(err));
        const QString d = appState().CheminBaseAgenda;
        QVERIFY(executer(d, QStringLiteral("UPDATE Signaletiques SET Sexe = NULL, Ville = 'Lyon'")));
        appState().PatientCourant.Ville = QStringLiteral("Paris");
        QSignalSpy legende(&LegendePatient::instance(), &LegendePatient::changee);
        ChargerDepuisCarte(ligne(d, 5));
        const PatientCourantRecord &p = appState().PatientCourant;
        QCOMPARE(p.Nom, QStringLiteral("MARTIN"));
        QCOMPARE(p.Numero, 5);
        QCOMPARE(p.Ville, QStringLiteral("Paris"));
        QCOMPARE(legende.count(), 0);
    }

    void chargerParNumero()
    {
        const QString err = nouvelleBase({{QStringLiteral("DURAND"), QStringLiteral("Paul"), QStringLiteral("1960-12-31"), 7},
                                          {QStringLiteral("DURAND"), QStringLiteral("Marie"), QStringLiteral("1961-01-01"), 8}});
        QVERIFY2(err.isEmpty(), qPrintable(err));
        qint32 n = 8;
        ChargerParNumero(n);
        const PatientCourantRecord &p = appState().PatientCourant;
        QCOMPARE(p.Prenom, QStringLiteral("Marie"));
        QCOMPARE(p.DateNaissance, QStringLiteral("01/01/1961"));
        QCOMPARE(p.Identifiant, QStringLiteral("8"));
        QCOMPARE(p.Base, QStringLiteral("Agenda"));
        QCOMPARE(LegendePatient::instance().texte(), QStringLiteral("Marie DURAND"));
        ChargerDepuisCarte(ligne(appState().CheminBaseAgenda, 8));
        QCOMPARE(p.Identifiant, QStringLiteral("Agenda00000008"));

        // An unknown number leaves the record alone.
        qint32 inconnu = 99;
        ChargerParNumero(inconnu);
        QCOMPARE(p.Numero, 8);
    }

    void vider()
    {
        PatientCourantRecord &p = appState().PatientCourant;
        p.Nom = QStringLiteral("X");
        p.Numero = 3;
        p.Base = QStringLiteral("CAB1");
        LegendePatient::instance().fixer(QStringLiteral("Y X"));
        QSignalSpy legende(&LegendePatient::instance(), &LegendePatient::changee);
        ViderPatientCourant();
        QCOMPARE(p.Nom, QString());
        QCOMPARE(p.Numero, 0);
        QCOMPARE(p.Base, QString());
        QCOMPARE(legende.count(), 1);
        QCOMPARE(LegendePatient::instance().texte(), QString());
    }

    void texteDateBase_data()
    {
        QTest::addColumn<QVariant>("valeur");
        QTest::addColumn<QVariant>("attendu");
        QTest::newRow("date") << QVariant(QStringLiteral("1970-03-25")) << QVariant(QStringLiteral("25/03/1970"));
        QTest::newRow("minuit") << QVariant(QStringLiteral("1970-03-25 00:00:00")) << QVariant(QStringLiteral("25/03/1970"));
        QTest::newRow("heure") << QVariant(QStringLiteral("2026-11-23 14:05:00")) << QVariant(QStringLiteral("23/11/2026 14:05:00"));
        QTest::newRow("null") << QVariant() << QVariant();
        QTest::newRow("pas une date") << QVariant(QStringLiteral("hier")) << QVariant(QStringLiteral("hier"));
    }
    void texteDateBase()
    {
        QFETCH(QVariant, valeur);
        QFETCH(QVariant, attendu);
        QCOMPARE(TexteDateBase(valeur), attendu);
    }
};

QTEST_GUILESS_MAIN(tst_patientcourant)
#include "tst_patientcourant.moc"
