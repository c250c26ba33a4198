#include "calendar/view/calendarview.h"
#include "calendar/view/colorationregles.h"
#include "calendar/view/daypane.h"
#include "rules/regles.h"
#include "shell/appstate.h"
#include "shell/base/config.h"
#include "shell/base/horloge.h"
#include "support/configtest.h"

#include <QElapsedTimer>
#include <QFile>
#include <QtTest>

#include <sqlite3.h>

// Day-view cells coloured by the schedule rules of a real Config.mdb: the
// rule of the cell's begin gives the colour, the pause greys the cells of
// weekdays and Saturdays, a selected cell is left alone.
class tst_colorationregles : public QObject
{
    Q_OBJECT

private:
    ConfigTest m_config;

    // 23 November 2026 is a Monday.
    static QDateTime lundi(int h, int m) { return QDateTime(QDate(2026, 11, 23), QTime(h, m)); }

    static void regle(int jour, QTime debut, QTime fin, qint32 couleur)
    {
        Regle r = RegleDe2026(jour, debut, fin, 1, 1, QStringLiteral("Dr Martin"));
        r.TypeText = QStringLiteral("Consultation");
        r.TypeColor = couleur;
        QString erreur;
        QVERIFY2(AjouterRegle(*ConfigOuverte(), r, &erreur) != 0, qPrintable(erreur));
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_config.estOuverte());
        // Monday mornings green (0xBBGGRR: red 0x80, green 0xFF, blue 0x00),
        // a red-ish slot inside Monday's pause.
        regle(2, QTime(9, 0), QTime(12, 0), 0x00FF80);
        regle(2, QTime(13, 0), QTime(13, 29, 59), 0x4040C0);
        // A rule of colour 0 (black) leaves the cell as it is.
        regle(3, QTime(9, 0), QTime(10, 0), 0);
    }


    void cellule_data()
    {
        QTest::addColumn<QDateTime>("debut");
        QTest::addColumn<bool>("selectionnee");
        QTest::addColumn<QString>("pauseDebut");
        QTest::addColumn<QColor>("attendue");

        const QColor propre(250, 250, 250);
        const QColor vert(0x80, 0xFF, 0x00);
        const QColor gris(198, 198, 198);
        QTest::newRow("règle du lundi matin") << lundi(10, 0) << false << "12:00:00" << vert;
        QTest::newRow("fin de règle incluse, avant la pause") << lundi(11, 55) << false << "12:00:00" << vert;
        QTest::newRow("la règle l'emporte sur la pause") << lundi(12, 0) << false << "12:00:00" << vert;
        QTest::newRow("pause sans règle") << lundi(12, 30) << false << "12:00:00" << gris;
        QTest::newRow("règle dans la pause") << lundi(13, 0) << false << "12:00:00" << QColor(0xC0, 0x40, 0x40);
        QTest::newRow("fin de pause exclue") << lundi(14, 0) << false << "12:00:00" << propre;
        QTest::newRow("cellule choisie intacte") << lundi(10, 0) << true << "12:00:00" << propre;
        QTest::newRow("cellule choisie dans la pause") << lundi(12, 30) << true << "12:00:00" << propre;
        QTest::newRow("pas de pause le dimanche") << lundi(12, 30).addDays(-1) << false << "12:00:00" << propre;
        QTest::newRow("pause le samedi") << lundi(12, 30).addDays(5) << false << "12:00:00" << gris;
        QTest::newRow("règle noire sans effet") << lundi(9, 30).addDays(1) << false << "12:00:00" << propre;
        QTest::newRow("autre pause") << lundi(12, 15).addDays(1) << false << "12:30:00" << propre;
        QTest::newRow("hors des dates des règles") << QDateTime(QDate(2027, 1, 4), QTime(10, 0)) << false << "12:00:00"
                                                 << propre;
    }
    void cellule()
    {
        QFETCH(QDateTime, debut);
        QFETCH(bool, selectionnee);
        QFETCH(QString, pauseDebut);
        QFETCH(QColor, attendue);
        appState().PauseDebut = pauseDebut;
        appState().PauseFin = QStringLiteral("14:00:00");
        DayViewCell c{debut, debut.addSecs(30 * 60), selectionnee, QColor(250, 250, 250)};
        ColorerCelluleSelonRegles(c);
        QCOMPARE(c.background, attendue);
    }

    // Every type colour of the palette over every rule colour, the pause
    // grey and the theme's cells: the block stands out from its cell and its
    // text from the block; only a timed appointment shows the waiting room.
    void blocsLisibles()
    {
        const CalendarTheme theme = CalendarTheme::forNumber(3);
        InitTables(appState());
        QList<QColor> cellules{theme.workingHours, theme.window, QColor(198, 198, 198)};
        for (quint32 c : appState().Nuancier)
            cellules << CouleurDepuisBGR(c);
        for (quint32 type : appState().Nuancier) {
            for (const QColor &cellule : std::as_const(cellules)) {
                const EventBlockStyle s = EventBlockColors(CouleurDepuisBGR(type), cellule, 1, false, theme);
                QVERIFY2(ColourDistance(s.fill, cellule) >= 60, qPrintable(s.fill.name() + u' ' + cellule.name()));
                const auto luma = [](const QColor &c) { return 0.299 * c.red() + 0.587 * c.green() + 0.114 * c.blue(); };
                QVERIFY2(std::abs(luma(s.text) - luma(s.fill)) >= 100, qPrintable(s.fill.name()));
            }
        }
        QVERIFY(EventBlockColors(Qt::white, Qt::white, 0, false, theme).waiting);
        QVERIFY(!EventBlockColors(Qt::white, Qt::white, 0, true, theme).waiting);
        QVERIFY(!EventBlockColors(Qt::white, Qt::white, 1, false, theme).waiting);
    }

    // The view runs the painter on every cell it draws: the grabbed pixels
    // carry the rule colours, the pause, the theme's working hours and the
    // selection.
    void vueColoree()
    {
        appState().PauseDebut = QStringLiteral("12:00:00");
        appState().PauseFin = QStringLiteral("14:00:00");
        Horloge::Fixee horloge(lundi(7, 0));
        CalendarView vue;
        vue.resize(900, 1400);
        vue.setTimeScale(30);
        vue.setWorkingHours(QTime(8, 0), QTime(18, 0));
        vue.ShowDay(QDate(2026, 11, 25));
        int appels = 0;
        vue.setCellPainter([&](DayViewCell &c) {
            ++appels;
            ColorerCelluleSelonRegles(c);
        });
        auto *volet = vue.findChild<DayPane *>();
        QVERIFY(volet);
        vue.show();
        QVERIFY(QTest::qWaitForWindowExposed(&vue));
        vue.setScrollPosition(0);
        appels = 0;
        const QImage image = vue.grab().toImage();
        // Every cell on show went through the painter, once.
        const int lignes = (volet->bodyRect().height() + volet->rowHeight() - 1) / volet->rowHeight();
        QCOMPARE(appels, 5 * std::min(48, lignes));

        const CalendarTheme theme = vue.themeColors();
        auto pixel = [&](const QDateTime &t) {
            const QRect r = volet->cellRect(t);
            return image.pixelColor(volet->mapTo(&vue, r.center()));
        };
        QCOMPARE(pixel(lundi(10, 0)), QColor(0x80, 0xFF, 0x00));
        QCOMPARE(pixel(lundi(12, 30)), QColor(198, 198, 198));
        QCOMPARE(pixel(lundi(13, 0)), QColor(0xC0, 0x40, 0x40));
        QCOMPARE(pixel(lundi(16, 0)), theme.workingHours);
        QCOMPARE(pixel(lundi(6, 0)), theme.window);
        QCOMPARE(pixel(lundi(12, 30).addDays(4)), QColor(198, 198, 198));
        // ShowDay selected the working day's begin of Wednesday.
        QCOMPARE(pixel(lundi(8, 0).addDays(2)), theme.selection);
    }

    // Another station holding Config.mdb: the drawing gets the colour last
    // read at once instead of waiting the full busy time.
    void configTenueParUnAutrePoste()
    {
        const QDateTime t = lundi(10, 0);
        QCOMPARE(GetRegleAffichee(t).TypeColor, 0x00FF80);
        sqlite3 *autre = nullptr;
        QCOMPARE(sqlite3_open(QFile::encodeName(m_config.dossier() + QStringLiteral("Config.mdb")).constData(), &autre), SQLITE_OK);
        QCOMPARE(sqlite3_exec(autre, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
        QElapsedTimer chrono;
        chrono.start();
        for (int i = 0; i < 50; ++i)
            QCOMPARE(GetRegleAffichee(t).TypeColor, 0x00FF80);
        QVERIFY2(chrono.elapsed() < 1500, qPrintable(QString::number(chrono.elapsed())));
        sqlite3_exec(autre, "ROLLBACK", nullptr, nullptr, nullptr);
        sqlite3_close(autre);
    }
};

QTEST_MAIN(tst_colorationregles)
#include "tst_colorationregles.moc"
