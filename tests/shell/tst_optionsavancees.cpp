#include "calendar/fuseaux.h"
#include "shell/optionsavancees.h"

#include <QtTest>

Q_DECLARE_METATYPE(MarqueHeure)

// The time mark number and where the line shows, and the zone table: change
// dates, daylight and adjustment rules, and the shift of the second scale.
class tst_optionsavancees : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void marqueHeure_data()
    {
        QTest::addColumn<MarqueHeure>("choix");
        QTest::addColumn<bool>("imprimee");
        QTest::addColumn<int>("numero");
        // Today's column on screen, another column on screen, today on paper.
        QTest::addColumn<QString>("lignes");
        QTest::newRow("jamais") << MarqueHeure::Jamais << false << 0 << "---";
        QTest::newRow("jamais, impression sans effet") << MarqueHeure::Jamais << true << 0 << "---";
        QTest::newRow("aujourd'hui") << MarqueHeure::PourAujourdhui << false << 1 << "X--";
        QTest::newRow("aujourd'hui imprimée") << MarqueHeure::PourAujourdhui << true << 5 << "X-X";
        QTest::newRow("toujours") << MarqueHeure::Toujours << false << 2 << "XX-";
        QTest::newRow("toujours imprimée") << MarqueHeure::Toujours << true << 6 << "XXX";
    }

    void marqueHeure()
    {
        QFETCH(MarqueHeure, choix);
        QFETCH(bool, imprimee);
        QFETCH(int, numero);
        QFETCH(QString, lignes);
        QCOMPARE(NumeroMarqueHeure(choix, imprimee), numero);
        QCOMPARE(ChoixMarqueHeure(numero), choix);
        const QDate lundi(2026, 11, 23);
        const auto x = [](bool b) { return b ? QLatin1Char('X') : QLatin1Char('-'); };
        const QString vu = QString(x(MarqueHeureSurJour(numero, lundi, lundi, false)))
                           + x(MarqueHeureSurJour(numero, lundi.addDays(1), lundi, false))
                           + x(MarqueHeureSurJour(numero, lundi, lundi, true));
        QCOMPARE(vu, lignes);
    }

    void fuseaux_data()
    {
        QTest::addColumn<QByteArray>("id");
        QTest::addColumn<QString>("nom");
        // "biais/été biaisEté/standard biaisStandard", dates as month.week.weekday hour.
        QTest::addColumn<QString>("regles");
        QTest::addColumn<bool>("heureEte");
        QTest::addColumn<bool>("ajustement");
        QTest::newRow("Paris") << QByteArray("Europe/Paris") << "(UTC+01:00) Europe/Paris" << "60/3.5.0 2h 60/10.5.0 3h 0"
                               << true << true;
        QTest::newRow("New York") << QByteArray("America/New_York") << "(UTC-05:00) America/New_York"
                                  << "-300/3.2.0 2h 60/11.1.0 2h 0" << true << true;
        QTest::newRow("Sydney, hémisphère sud") << QByteArray("Australia/Sydney") << "(UTC+10:00) Australia/Sydney"
                                                << "600/10.1.0 2h 60/4.1.0 3h 0" << true << true;
        QTest::newRow("Dublin, hiver compté à part") << QByteArray("Europe/Dublin") << "(UTC+00:00) Europe/Dublin"
                                                     << "0/3.5.0 1h 60/10.5.0 2h 0" << true << true;
        QTest::newRow("Tokyo, sans heure d'été") << QByteArray("Asia/Tokyo") << "(UTC+09:00) Asia/Tokyo"
                                                 << "540/0.0.0 0h 0/0.0.0 0h 0" << false << false;
        QTest::newRow("Kolkata, demi-heure") << QByteArray("Asia/Kolkata") << "(UTC+05:30) Asia/Kolkata"
                                             << "330/0.0.0 0h 0/0.0.0 0h 0" << false << false;
        QTest::newRow("inconnu") << QByteArray("Nowhere/Town") << QString() << "0/0.0.0 0h 0/0.0.0 0h 0" << false << false;
    }

    void fuseaux()
    {
        QFETCH(QByteArray, id);
        QFETCH(QString, nom);
        QFETCH(QString, regles);
        QFETCH(bool, heureEte);
        QFETCH(bool, ajustement);
        const FuseauHoraire f = FuseauDepuis(id, 2026);
        const auto date = [](const DateTransition &d) {
            return QStringLiteral("%1.%2.%3 %4h").arg(d.mois).arg(d.semaine).arg(d.jourSemaine).arg(d.heure);
        };
        QCOMPARE(f.nom, nom);
        QCOMPARE(QStringLiteral("%1/%2 %3/%4 %5")
                     .arg(f.biais)
                     .arg(date(f.dateEte))
                     .arg(f.biaisEte)
                     .arg(date(f.dateStandard))
                     .arg(f.biaisStandard),
                 regles);
        QCOMPARE(AHeureEte(f), heureEte);
        QCOMPARE(AjustementActif(f), ajustement);
    }

    // The rules on zones made by hand: both months for daylight saving; a
    // positive daylight shift or any standard shift for the adjustment.
    void regles_data()
    {
        QTest::addColumn<int>("moisEte");
        QTest::addColumn<int>("moisStandard");
        QTest::addColumn<int>("biaisEte");
        QTest::addColumn<int>("biaisStandard");
        QTest::addColumn<bool>("heureEte");
        QTest::addColumn<bool>("ajustement");
        QTest::newRow("complète") << 3 << 10 << 60 << 0 << true << true;
        QTest::newRow("un seul mois") << 3 << 0 << 60 << 0 << false << true;
        QTest::newRow("standard décalé") << 3 << 10 << 0 << -30 << true << true;
        QTest::newRow("été négatif") << 3 << 10 << -60 << 0 << true << false;
        QTest::newRow("rien") << 0 << 0 << 0 << 0 << false << false;
    }

    void regles()
    {
        QFETCH(int, moisEte);
        QFETCH(int, moisStandard);
        QFETCH(int, biaisEte);
        QFETCH(int, biaisStandard);
        FuseauHoraire f;
        f.dateEte.mois = moisEte;
        f.dateStandard.mois = moisStandard;
        f.biaisEte = biaisEte;
        f.biaisStandard = biaisStandard;
        QTEST(AHeureEte(f), "heureEte");
        QTEST(AjustementActif(f), "ajustement");
    }

    // Minutes from Paris to the other zone on a day; a zone whose adjustment
    // was turned off keeps its winter offset all year.
    void decalage_data()
    {
        QTest::addColumn<QByteArray>("id");
        QTest::addColumn<bool>("ajuste");
        QTest::addColumn<QDate>("jour");
        QTest::addColumn<int>("minutes");
        QTest::newRow("Tokyo en hiver") << QByteArray("Asia/Tokyo") << true << QDate(2026, 1, 15) << 480;
        QTest::newRow("Tokyo en été") << QByteArray("Asia/Tokyo") << true << QDate(2026, 7, 15) << 420;
        QTest::newRow("New York en été") << QByteArray("America/New_York") << true << QDate(2026, 7, 15) << -360;
        QTest::newRow("New York sans ajustement") << QByteArray("America/New_York") << false << QDate(2026, 7, 15) << -420;
        QTest::newRow("semaine où seuls les USA ont changé") << QByteArray("America/New_York") << true << QDate(2026, 3, 20) << -300;
        QTest::newRow("Kolkata") << QByteArray("Asia/Kolkata") << true << QDate(2026, 11, 23) << 270;
    }

    void decalage()
    {
        QFETCH(QByteArray, id);
        QFETCH(bool, ajuste);
        QFETCH(QDate, jour);
        FuseauHoraire autre = FuseauDepuis(id, 2026);
        if (!ajuste)
            autre.biaisEte = autre.biaisStandard = 0;
        QTEST(DecalageEntre(FuseauDepuis("Europe/Paris", 2026), autre, QDateTime(jour, QTime(12, 0))), "minutes");
    }
};

QTEST_GUILESS_MAIN(tst_optionsavancees)
#include "tst_optionsavancees.moc"
