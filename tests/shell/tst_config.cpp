#include "rules/regles.h"
#include "shell/appstate.h"
#include "shell/base/basesqlite.h"
#include "shell/base/config.h"
#include "support/fichierstest.h"
#include "support/repondeurscripte.h"

#include <QFile>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

class tst_config : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;

    QString dossier() const { return m_dir.path() + u'/'; }

    static int lignes(const QString &sql)
    {
        QSqlQuery q(ConfigOuverte()->base().db());
        if (!q.exec(sql) || !q.next())
            return -1;
        return q.value(0).toInt();
    }

private Q_SLOTS:
    void init()
    {
        QFile::remove(dossier() + QStringLiteral("Config.mdb"));
        QVERIFY(CreerBaseConfig(dossier()));
        QVERIFY(OuvrirConfig(dossier() + QStringLiteral("Config.mdb")));
    }

    void cleanup() { FermerConfig(); }

    void premiereEcritureAjouteSecondeRemplace()
    {
        EcrireConfig(QStringLiteral("RDV"), QStringLiteral("Duree"), QStringLiteral("15"));
        QCOMPARE(LireConfig(QStringLiteral("RDV"), QStringLiteral("Duree"), QStringLiteral("0")), QStringLiteral("15"));
        EcrireConfig(QStringLiteral("RDV"), QStringLiteral("Duree"), QStringLiteral("20"));
        QCOMPARE(LireConfig(QStringLiteral("RDV"), QStringLiteral("Duree"), QStringLiteral("0")), QStringLiteral("20"));
        QCOMPARE(lignes(QStringLiteral("SELECT count(*) FROM Ini")), 1);
    }

    // Nothing stored, or an empty value stored: the default is read.
    void valeurVideLitLeDefaut()
    {
        QCOMPARE(LireConfig(QStringLiteral("Ouverture"), QStringLiteral("Debut"), QStringLiteral("08:00:00")), QStringLiteral("08:00:00"));
        EcrireConfig(QStringLiteral("Mails"), QStringLiteral("From"), QString());
        QCOMPARE(LireConfig(QStringLiteral("Mails"), QStringLiteral("From"), QStringLiteral("defaut")), QStringLiteral("defaut"));
        QCOMPARE(lignes(QStringLiteral("SELECT count(*) FROM Ini WHERE Section='Mails'")), 1);
    }

    void sectionEtItemSansCasse()
    {
        EcrireConfig(QStringLiteral("Praticien1"), QStringLiteral("Nom"), QStringLiteral("Dr Martin"));
        QCOMPARE(LireConfig(QStringLiteral("PRATICIEN1"), QStringLiteral("nom"), QString()), QStringLiteral("Dr Martin"));
        EcrireConfig(QStringLiteral("praticien1"), QStringLiteral("NOM"), QStringLiteral("Dr Durand"));
        QCOMPARE(lignes(QStringLiteral("SELECT count(*) FROM Ini")), 1);
        QCOMPARE(LireConfig(QStringLiteral("Praticien1"), QStringLiteral("Nom"), QString()), QStringLiteral("Dr Durand"));
        // Accented letters too: one row, found and replaced whatever the case.
        EcrireConfig(QString::fromUtf8("Réservé"), QString::fromUtf8("Élément"), QStringLiteral("1"));
        QCOMPARE(LireConfig(QString::fromUtf8("RÉSERVÉ"), QString::fromUtf8("élément"), QString()), QStringLiteral("1"));
        EcrireConfig(QString::fromUtf8("rÉservé"), QString::fromUtf8("ÉLÉMENT"), QStringLiteral("2"));
        QCOMPARE(lignes(QStringLiteral("SELECT count(*) FROM Ini")), 2);
        QCOMPARE(LireConfig(QString::fromUtf8("Réservé"), QString::fromUtf8("Élément"), QString()), QStringLiteral("2"));
        // The same item in two sections is two values.
        EcrireConfig(QStringLiteral("SMS"), QStringLiteral("First"), QStringLiteral("A"));
        EcrireConfig(QStringLiteral("Mails"), QStringLiteral("First"), QStringLiteral("B"));
        QCOMPARE(LireConfig(QStringLiteral("SMS"), QStringLiteral("First"), QString()), QStringLiteral("A"));
        QCOMPARE(LireConfig(QStringLiteral("Mails"), QStringLiteral("First"), QString()), QStringLiteral("B"));
    }

    void supprimerReservationToutesSections()
    {
        const QString moi = QStringLiteral("POSTE1 - secretariat");
        EcrireConfig(QStringLiteral("2026-11-23 09:00:00"), QString::fromUtf8("Réservation"), moi);
        EcrireConfig(QStringLiteral("2026-11-24 10:30:00"), QString::fromUtf8("Réservation"), moi);
        EcrireConfig(QStringLiteral("2026-11-24 11:00:00"), QString::fromUtf8("Réservation"), QStringLiteral("POSTE2 - docteur"));
        EcrireConfig(QStringLiteral("RDV"), QStringLiteral("Duree"), QStringLiteral("15"));
        SupprimerReservation(moi);
        QCOMPARE(lignes(QStringLiteral("SELECT count(*) FROM Ini")), 2);
        QCOMPARE(LireConfig(QStringLiteral("2026-11-24 11:00:00"), QString::fromUtf8("Réservation"), QString()),
                 QStringLiteral("POSTE2 - docteur"));
    }

    void autreConnexionVoitLesEcritures()
    {
        EcrireConfig(QStringLiteral("Ouverture"), QStringLiteral("Fin"), QStringLiteral("19:00:00"));
        auto autre = ConfigIni::ouvrir(dossier() + QStringLiteral("Config.mdb"));
        QVERIFY(autre);
        QCOMPARE(autre->lire(QStringLiteral("Ouverture"), QStringLiteral("Fin"), QString()), QStringLiteral("19:00:00"));
        autre->ecrire(QStringLiteral("Ouverture"), QStringLiteral("Fin"), QStringLiteral("18:00:00"));
        QCOMPARE(LireConfig(QStringLiteral("Ouverture"), QStringLiteral("Fin"), QString()), QStringLiteral("18:00:00"));
    }

    void ouvertureRefusee_data()
    {
        QTest::addColumn<QByteArray>("contenu");
        QTest::newRow("fichier Jet") << QByteArray("\x00\x01\x00\x00Standard Jet DB\x00", 20) + QByteArray(2000, '\x11');
        QTest::newRow("texte") << QByteArray("ceci n'est pas une base");
        QTest::newRow("fichier absent, pas cree") << QByteArray();
    }

    void ouvertureRefusee()
    {
        QFETCH(QByteArray, contenu);
        QTemporaryDir dir;
        const QString chemin = dir.filePath(QStringLiteral("Config.mdb"));
        QVERIFY(contenu.isNull() || ecrireOctets(chemin, contenu));
        FermerConfig();
        QVERIFY(!OuvrirConfig(chemin));
        QVERIFY(!ConfigOuverte());
        QCOMPARE(QFile::exists(chemin), !contenu.isNull());
        if (!contenu.isNull())
            QCOMPARE(lireOctets(chemin), contenu); // not a byte changed
    }

    void baseSansTableIniRefusee()
    {
        QTemporaryDir dir;
        const QString chemin = dir.filePath(QStringLiteral("Config.mdb"));
        {
            auto b = BaseSqlite::ouvrir(chemin, BaseSqlite::Mode::Creer);
            QVERIFY(b);
            QVERIFY(b->executer(QStringLiteral("CREATE TABLE Autre (x)")));
        }
        QVERIFY(!ConfigIni::ouvrir(chemin));
    }
};

QTEST_GUILESS_MAIN(tst_config)
#include "tst_config.moc"
