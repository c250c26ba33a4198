#include "rules/regles.h"
#include "shell/appstate.h"
#include "shell/base/basesqlite.h"
#include "shell/base/config.h"
#include "support/fichierstest.h"

#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

// A rule as the tests write it: dates, hours, weekday (1 = Sunday), parity,
// and what it says (practitioner, type, colour).
struct RegleTest
{
    QString dateDebut, dateFin, heureDebut, heureFin;
    int jour, semaine, praticienNumero;
    QString praticien;
    int typeRV;
    QString typeText;
    qint32 couleur;
};
Q_DECLARE_METATYPE(RegleTest)

class tst_regles : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    std::shared_ptr<ConfigIni> m_config;

    QString dossier() const { return m_dir.path() + u'/'; }

    static Regle versRegle(const RegleTest &t)
    {
        Regle r;
        r.DateDebut = QDate::fromString(t.dateDebut, Qt::ISODate);
        r.DateFin = QDate::fromString(t.dateFin, Qt::ISODate);
        r.HeureDebut = QTime::fromString(t.heureDebut, QStringLiteral("HH:mm:ss"));
        r.HeureFin = QTime::fromString(t.heureFin, QStringLiteral("HH:mm:ss"));
        r.JourNumero = static_cast<qint16>(t.jour);
        r.Semaine = static_cast<qint16>(t.semaine);
        r.PraticienNumero = static_cast<qint16>(t.praticienNumero);
        r.Praticien = t.praticien;
        r.TypeRV = static_cast<qint16>(t.typeRV);
        r.TypeText = t.typeText;
        r.TypeColor = t.couleur;
        return r;
    }

    // A lookup that found no rule: nothing of a rule in it.
    static void verifierSansRegle(const RegleMatch &r)
    {
        QCOMPARE((QVariantList{int(r.PraticienNumero), r.Praticien, int(r.TypeRV), r.TypeText, r.TypeColor}),
                 (QVariantList{0, QString(), 0, QString(), 0}));
    }

    // What the lookup says of the moment: date, hour, weekday, week and parity.
    static QVariantList champsMoment(const RegleMatch &r)
    {
        return {r.Date, r.Heure, int(r.JourNumero), r.Jour, int(r.NumeroSemaine), int(r.Semaine)};
    }

    static QDateTime moment(const char *texte)
    {
        return QDateTime::fromString(QString::fromLatin1(texte), QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz"));
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        QString erreur;
        QVERIFY2(CreerBaseConfig(dossier(), &erreur), qPrintable(erreur));
        m_config = ConfigIni::ouvrir(dossier() + QStringLiteral("Config.mdb"), &erreur);
        QVERIFY2(m_config, qPrintable(erreur));
    }

    void init()
    {
        QSqlQuery q(m_config->base().db());
        QVERIFY(q.exec(QStringLiteral("DELETE FROM Regles")));
    }

    void cleanupTestCase()
    {
        FermerConfig();
        m_config.reset();
    }

    void baseConfigExistanteIntacte()
    {
        QTemporaryDir autre;
        QVERIFY(autre.isValid());
        const QString d = autre.path() + u'/';
        const QString chemin = d + QStringLiteral("Config.mdb");
        QVERIFY(CreerBaseConfig(d));
        const QByteArray avant = lireOctets(chemin);
        QVERIFY(!avant.isEmpty());
        QString erreur;
        QVERIFY(!CreerBaseConfig(d, &erreur));
        QVERIFY(!erreur.isEmpty());
        QCOMPARE(lireOctets(chemin), avant);
    }

    // What the lookup says of the moment itself, with no rule in the table.
    void champsDuMoment_data()
    {
        QTest::addColumn<QDateTime>("quand");
        QTest::addColumn<int>("jourNumero");
        QTest::addColumn<QString>("jour");
        QTest::addColumn<int>("numeroSemaine");
        QTest::addColumn<int>("semaine");

        QTest::newRow("1er janvier 2016, semaine 53 impaire") << moment("2016-01-01 10:30:15.000") << 6 << "Vendredi" << 53 << 1;
        QTest::newRow("dimanche 3 janvier 2016, encore la 53") << moment("2016-01-03 08:00:00.000") << 1 << "Dimanche" << 53 << 1;
        QTest::newRow("lundi 4 janvier 2016, semaine 1") << moment("2016-01-04 00:00:00.000") << 2 << "Lundi" << 1 << 1;
        QTest::newRow("lundi 11 janvier 2016, semaine paire") << moment("2016-01-11 14:00:00.000") << 2 << "Lundi" << 2 << 2;
        QTest::newRow("lundi 30 decembre 2024, semaine 1 de 2025") << moment("2024-12-30 09:00:00.000") << 2 << "Lundi" << 1 << 1;
        QTest::newRow("mercredi 10 juin 2026, semaine 24") << moment("2026-06-10 11:15:00.000") << 4 << "Mercredi" << 24 << 2;
        QTest::newRow("mardi, millisecondes laissees") << moment("2016-01-05 12:00:00.750") << 3 << "Mardi" << 1 << 1;
    }

    void champsDuMoment()
    {
        QFETCH(QDateTime, quand);
        QFETCH(int, jourNumero);
        QFETCH(QString, jour);
        QFETCH(int, numeroSemaine);
        QFETCH(int, semaine);
        QVERIFY(quand.isValid());

        const RegleMatch r = GetRegleForDate(*m_config, quand);
        // The moment's own date and time, to the second.
        const QTime heure(quand.time().hour(), quand.time().minute(), quand.time().second());
        QCOMPARE(champsMoment(r), (QVariantList{quand.date(), heure, jourNumero, jour, numeroSemaine, semaine}));
        verifierSansRegle(r);
    }

    // The rules are added in the order of the list (the last is the newest);
    // "gagnante" is the index of the rule that must answer, -1 for none.
    void regleGagnante_data()
    {
        QTest::addColumn<QList<RegleTest>>("regles");
        QTest::addColumn<QDateTime>("quand");
        QTest::addColumn<int>("gagnante");

        // Monday mornings of January 2016, every week.
        const RegleTest lundiMatin{"2016-01-01", "2016-01-31", "08:00:00", "12:00:00", 2, 3, 1, "Dr Martin", 1, "Visite", 0x00C0FF};
        // Tuesdays of the first week of January 2016 only (dates 5 to 5).
        const RegleTest mardi5{"2016-01-05", "2016-01-05", "08:00:00", "20:00:00", 3, 3, 2, "Dr Leroy", 2, "Pédiatrie", 0x80FF80};
        const RegleTest large{"2016-01-01", "2016-12-31", "08:00:00", "18:00:00", 2, 3, 1, "Dr Martin", 0, "Consultation", 0xFFC0C0};
        const RegleTest etroite{"2016-01-01", "2016-12-31", "10:00:00", "11:00:00", 2, 3, 2, "Dr Leroy", 5, "Urgence", 0x4040FF};
        const RegleTest finMidi{"2016-01-01", "2016-12-31", "08:00:00", "12:00:00", 2, 3, 1, "Dr Martin", 0, "Consultation", 0x0000FF};
        const RegleTest debutMidi{"2016-01-01", "2016-12-31", "12:00:00", "14:00:00", 2, 3, 2, "Dr Leroy", 3, "HAD", 0x00FF00};
        auto parite = [](int semaine, int jour) {
            return RegleTest{"2015-12-01", "2016-12-31", "08:00:00", "20:00:00", jour, semaine, 2, "Dr Leroy", 4, "Réservé", 0x123456};
        };

        QTest::newRow("aucune regle") << QList<RegleTest>{} << moment("2016-01-04 09:00:00.000") << -1;
        QTest::newRow("dans la regle") << QList<RegleTest>{lundiMatin} << moment("2016-01-11 09:00:00.000") << 0;
        QTest::newRow("autre jour de la semaine") << QList<RegleTest>{lundiMatin} << moment("2016-01-12 09:00:00.000") << -1;
        QTest::newRow("date de debut incluse") << QList<RegleTest>{mardi5} << moment("2016-01-05 08:00:00.000") << 0;
        QTest::newRow("date de fin incluse, soir") << QList<RegleTest>{mardi5} << moment("2016-01-05 20:00:00.000") << 0;
        QTest::newRow("le mardi suivant") << QList<RegleTest>{mardi5} << moment("2016-01-12 10:00:00.000") << -1;
        QTest::newRow("apres la date de fin") << QList<RegleTest>{lundiMatin} << moment("2016-02-01 09:00:00.000") << -1;
        QTest::newRow("heure de debut incluse") << QList<RegleTest>{lundiMatin} << moment("2016-01-04 08:00:00.000") << 0;
        QTest::newRow("une seconde avant le debut") << QList<RegleTest>{lundiMatin} << moment("2016-01-04 07:59:59.000") << -1;
        QTest::newRow("heure de fin incluse") << QList<RegleTest>{lundiMatin} << moment("2016-01-04 12:00:00.000") << 0;
        QTest::newRow("une seconde apres la fin") << QList<RegleTest>{lundiMatin} << moment("2016-01-04 12:00:01.000") << -1;
        QTest::newRow("fin a la seconde, millisecondes laissees") << QList<RegleTest>{lundiMatin} << moment("2016-01-04 12:00:00.900") << 0;

        QTest::newRow("la plus recente gagne, plus etroite") << QList<RegleTest>{large, etroite} << moment("2016-03-07 10:30:00.000") << 1;
        QTest::newRow("la plus recente gagne, plus large") << QList<RegleTest>{etroite, large} << moment("2016-03-07 10:30:00.000") << 1;
        QTest::newRow("hors de la plus recente, l'ancienne") << QList<RegleTest>{large, etroite} << moment("2016-03-07 11:30:00.000") << 0;

        QTest::newRow("midi: les deux, la plus recente (debut)")
            << QList<RegleTest>{finMidi, debutMidi} << moment("2016-03-07 12:00:00.000") << 1;
        QTest::newRow("midi: les deux, la plus recente (fin)")
            << QList<RegleTest>{debutMidi, finMidi} << moment("2016-03-07 12:00:00.000") << 1;
        QTest::newRow("midi et une seconde: seulement la seconde regle")
            << QList<RegleTest>{debutMidi, finMidi} << moment("2016-03-07 12:00:01.000") << 0;

        // 4 January 2016 is in week 1, 11 January in week 2, 1 January in
        // week 53 (a Friday).
        QTest::newRow("semaine 1, semaine impaire") << QList<RegleTest>{parite(1, 2)} << moment("2016-01-04 10:00:00.000") << 0;
        QTest::newRow("semaine 1, semaine paire") << QList<RegleTest>{parite(1, 2)} << moment("2016-01-11 10:00:00.000") << -1;
        QTest::newRow("semaine 2, semaine paire") << QList<RegleTest>{parite(2, 2)} << moment("2016-01-11 10:00:00.000") << 0;
        QTest::newRow("semaine 3, semaine impaire") << QList<RegleTest>{parite(3, 2)} << moment("2016-01-04 10:00:00.000") << 0;
        QTest::newRow("semaine 3, semaine paire") << QList<RegleTest>{parite(3, 2)} << moment("2016-01-11 10:00:00.000") << 0;
        QTest::newRow("1er janvier 2016, semaine impaire") << QList<RegleTest>{parite(1, 6)} << moment("2016-01-01 10:00:00.000") << 0;
        QTest::newRow("1er janvier 2016, pas paire") << QList<RegleTest>{parite(2, 6)} << moment("2016-01-01 10:00:00.000") << -1;
        QTest::newRow("paire en tete, impaire plus recente")
            << QList<RegleTest>{parite(2, 2), parite(1, 2)} << moment("2016-01-11 10:00:00.000") << 0;
    }

    void regleGagnante()
    {
        QFETCH(QList<RegleTest>, regles);
        QFETCH(QDateTime, quand);
        QFETCH(int, gagnante);
        QVERIFY(quand.isValid());

        qint32 precedent = 0;
        for (const RegleTest &t : regles) {
            QString erreur;
            const qint32 compteur = AjouterRegle(*m_config, versRegle(t), &erreur);
            QVERIFY2(compteur > precedent, qPrintable(erreur));
            precedent = compteur;
        }

        QString erreur = QStringLiteral("non vide");
        const RegleMatch r = GetRegleForDate(*m_config, quand, &erreur);
        QCOMPARE(erreur, QString());
        QCOMPARE(r.Date, quand.date());
        if (gagnante < 0)
            return verifierSansRegle(r);
        const RegleTest &g = regles.at(gagnante);
        QCOMPARE((QVariantList{int(r.PraticienNumero), r.Praticien, int(r.TypeRV), r.TypeText, r.TypeColor}),
                 (QVariantList{g.praticienNumero, g.praticien, g.typeRV, g.typeText, g.couleur}));
    }

    // Rows written by another tool may hold nulls: they read as 0 and empty.
    void nullsLusCommeVides()
    {
        QSqlQuery q(m_config->base().db());
        QVERIFY(q.exec(QStringLiteral("INSERT INTO Regles (DateDebut, DateFin, HeureDebut, HeureFin, JourNumero, Semaine) "
                                      "VALUES ('2016-01-01', '2016-12-31', '08:00:00', '12:00:00', 2, 3)")));
        const RegleMatch r = GetRegleForDate(*m_config, moment("2016-01-04 09:00:00.000"));
        verifierSansRegle(r);
        QCOMPARE(r.Jour, QStringLiteral("Lundi"));
    }

    // The rule editing and other tools compare the stored texts: they must
    // be zero-padded dates and hours to the second.
    void regleEnregistreeEnTextes()
    {
        const RegleTest t{"2016-01-04", "2016-02-29", "08:05:00", "12:00:00", 2, 1, 1, "Dr Martin", 1, "Visite", 0x00C0FF};
        Regle r = versRegle(t);
        r.Jour = QStringLiteral("Lundi");
        const qint32 premier = AjouterRegle(*m_config, r);
        const qint32 second = AjouterRegle(*m_config, r);
        QVERIFY(premier > 0);
        QCOMPARE(second, premier + 1);
        QSqlQuery q(m_config->base().db());
        QVERIFY(q.exec(QStringLiteral("SELECT DateDebut, DateFin, HeureDebut, HeureFin, JourNumero, Jour, Semaine, "
                                      "PraticienNumero, Praticien, TypeRV, TypeText, TypeColor FROM Regles WHERE Compteur = %1")
                           .arg(premier)));
        QVERIFY(q.next());
        QStringList lus;
        for (int i = 0; i < 12; ++i)
            lus << q.value(i).toString();
        QCOMPARE(lus.join(u'|'), QStringLiteral("2016-01-04|2016-02-29|08:05:00|12:00:00|2|Lundi|1|1|Dr Martin|1|Visite|49407"));
    }

    void dateInvalideDonneUnRecordVide()
    {
        QVERIFY(AjouterRegle(*m_config,
                             versRegle({"2016-01-01", "2016-12-31", "00:00:00", "23:59:59", 2, 3, 1, "Dr Martin", 1, "Visite", 1})) > 0);
        const RegleMatch r = GetRegleForDate(*m_config, QDateTime());
        QCOMPARE(champsMoment(r), (QVariantList{QDate(), QTime(), 0, QString(), 0, 0}));
        verifierSansRegle(r);
    }

    void configurationDuDemarrage()
    {
        QVERIFY(AjouterRegle(*m_config,
                             versRegle({"2016-01-01", "2016-12-31", "08:00:00", "12:00:00", 2, 3, 2, "Dr Leroy", 3, "HAD", 0x00FF00})) > 0);
        const QDateTime quand = moment("2016-01-04 09:00:00.000");

        FermerConfig();
        RegleMatch r = GetRegleForDate(quand);
        QCOMPARE(champsMoment(r), (QVariantList{QDate(2016, 1, 4), QTime(9, 0), 2, "Lundi", 1, 1}));
        QCOMPARE(r.Praticien, QString());

        QVERIFY(OuvrirConfig(dossier() + QStringLiteral("Config.mdb")));
        r = GetRegleForDate(quand);
        QCOMPARE(r.Praticien, QStringLiteral("Dr Leroy"));
        QCOMPARE(int(r.PraticienNumero), 2);
        QCOMPARE(r.TypeColor, 0x00FF00);
        FermerConfig();
    }

    void couleurCellule_data()
    {
        QTest::addColumn<QDateTime>("debut");
        QTest::addColumn<bool>("selectionnee");
        QTest::addColumn<qint32>("couleurRegle");
        QTest::addColumn<QString>("pauseDebut");
        QTest::addColumn<QString>("pauseFin");
        QTest::addColumn<quint32>("couleur");
        QTest::addColumn<bool>("modifiee");

        const quint32 calendrier = 0xF0F0F0; // the calendar's own colour
        const quint32 gris = 198 | (198 << 8) | (198 << 16);
        const QString midi = QStringLiteral("12:00:00");
        const QString deux = QStringLiteral("14:00:00");
        // 2016-03-07 is a Monday, 2016-03-12 a Saturday, 2016-03-13 a Sunday.
        QTest::newRow("selectionnee dans la pause avec regle")
            << moment("2016-03-07 12:30:00.000") << true << 0x00FF00 << midi << deux << calendrier << false;
        QTest::newRow("selectionnee hors pause") << moment("2016-03-07 09:00:00.000") << true << 0 << midi << deux << calendrier << false;
        QTest::newRow("pause en semaine") << moment("2016-03-07 12:30:00.000") << false << 0 << midi << deux << gris << true;
        QTest::newRow("pause le samedi") << moment("2016-03-12 13:00:00.000") << false << 0 << midi << deux << gris << true;
        QTest::newRow("pause le dimanche") << moment("2016-03-13 12:30:00.000") << false << 0 << midi << deux << calendrier << false;
        QTest::newRow("dimanche avec regle") << moment("2016-03-13 12:30:00.000") << false << 0x0000FF << midi << deux << 0x0000FFu << true;
        QTest::newRow("la regle passe sur la pause") << moment("2016-03-07 12:30:00.000") << false << 0xFF8000 << midi << deux << 0xFF8000u << true;
        QTest::newRow("regle hors pause") << moment("2016-03-07 09:00:00.000") << false << 0x80FF80 << midi << deux << 0x80FF80u << true;
        QTest::newRow("couleur 0 hors pause") << moment("2016-03-07 09:00:00.000") << false << 0 << midi << deux << calendrier << false;
        QTest::newRow("debut de pause inclus") << moment("2016-03-07 12:00:00.000") << false << 0 << midi << deux << gris << true;
        QTest::newRow("juste avant la pause") << moment("2016-03-07 11:59:59.000") << false << 0 << midi << deux << calendrier << false;
        QTest::newRow("derniere seconde de la pause") << moment("2016-03-07 13:59:59.000") << false << 0 << midi << deux << gris << true;
        QTest::newRow("fin de pause exclue") << moment("2016-03-07 14:00:00.000") << false << 0 << midi << deux << calendrier << false;
        QTest::newRow("pause reglee 12:30-13:30, 12:15")
            << moment("2016-03-07 12:15:00.000") << false << 0 << "12:30:00" << "13:30:00" << calendrier << false;
        QTest::newRow("pause reglee 12:30-13:30, 13:15")
            << moment("2016-03-07 13:15:00.000") << false << 0 << "12:30:00" << "13:30:00" << gris << true;
    }

    void couleurCellule()
    {
        QFETCH(QDateTime, debut);
        QFETCH(bool, selectionnee);
        QFETCH(qint32, couleurRegle);
        QFETCH(QString, pauseDebut);
        QFETCH(QString, pauseFin);
        QFETCH(quint32, couleur);
        QFETCH(bool, modifiee);
        QVERIFY(debut.isValid());

        RegleMatch regle;
        regle.TypeColor = couleurRegle;
        const CouleurCellule c = CouleurCelluleJour(debut, selectionnee, 0xF0F0F0, regle, pauseDebut, pauseFin);
        QCOMPARE(c.couleur, couleur);
        QCOMPARE(c.modifiee, modifiee);
    }
};

QTEST_GUILESS_MAIN(tst_regles)
#include "tst_regles.moc"
