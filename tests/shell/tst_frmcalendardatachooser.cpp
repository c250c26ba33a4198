#include "calendar/calendardataprovider.h"
#include "calendar/openprovider.h"
#include "calendar/view/calendarview.h"
#include "shell/base/modal.h"
#include "shell/base/registre.h"
#include "shell/window/frmcalendardatachooser.h"
#include "support/postetest.h"
#include "support/serveurmariadb.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSettings>
#include <QTimer>
#include <QToolBar>
#include <QtTest>

// "Fichier > Ouvrir" and the store chooser, driven through their controls on
// a started program.
class tst_frmcalendardatachooser : public QObject
{
    Q_OBJECT

    struct Poste : PosteTest
    {
        Poste() : PosteTest(QDateTime(QDate(2026, 11, 23), QTime(10, 0))) {}
    };

    static void cliquer(QDialog &d, const char *nom)
    {
        auto *b = d.findChild<QAbstractButton *>(QString::fromLatin1(nom));
        QVERIFY2(b, nom);
        QTest::mouseClick(b, Qt::LeftButton);
    }

private Q_SLOTS:
    void init()
    {
        // The strings of an earlier run are not this run's defaults.
        QSettings(QStringLiteral("Tavonel"), QStringLiteral("Tavonel")).remove(QStringLiteral("Provider"));
    }
    void choisirUneAutreBase()
    {
        Poste p;
        QCOMPARE(appState().TypeFournisseur, 2);
        QStringList vus;
        ExecuteurInstalle executeur([&](QDialog &d) {
            auto *texte = d.findChild<QLineEdit *>(QStringLiteral("txtConnectionStr"));
            auto *haut = d.findChild<QLabel *>(QStringLiteral("txtLabelTop"));
            vus << haut->text() + QLatin1Char('|') + texte->text();
            cliquer(d, "rdDP_MySQL");
            vus << haut->text() + QLatin1Char('|') + texte->text();
            texte->setText(QStringLiteral("DSN=Cabinet"));
            cliquer(d, "rdDP_MAPI");
            vus << QString::number(texte->isEnabled()) + QLatin1Char('|') + texte->text();
            cliquer(d, "rdDP_MySQL");
            // What was typed for a kind is still there on coming back.
            vus << texte->text();
            cliquer(d, "rdDP_Access");
            texte->setText(QStringLiteral("autre.mdb"));
            cliquer(d, "cmdOK");
            return d.result();
        });
        p.f->findChild<QAction *>(QStringLiteral("mnuOpenDataProvider"))->trigger();
        QCOMPARE(vus, (QStringList{QStringLiteral("DataBase file (*.mdb):|events.mdb"),
                                   QStringLiteral("Connection string:|DSN=Calendar_MySQL"), QStringLiteral("0|"),
                                   QStringLiteral("DSN=Cabinet")}));
        QCOMPARE(appState().TypeFournisseur, 2);
        QCOMPARE(appState().Calendrier->ConnectionString(),
                 QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source='") + p.prog.chemin() + QStringLiteral("autre.mdb';"));
        QVERIFY(QFile::exists(p.prog.chemin() + QStringLiteral("autre.mdb")));
        const QString section = QStringLiteral("Provider");
        QCOMPARE(LireParametreUtilisateur(section, QStringLiteral("MySQL"), {}), QStringLiteral("DSN=Cabinet"));
        QCOMPARE(LireParametreUtilisateur(section, QStringLiteral("Access"), {}), QStringLiteral("autre.mdb"));
        QCOMPARE(LireParametreUtilisateur(section, QStringLiteral("Active"), {}), QStringLiteral("2"));
        QCOMPARE(LireParametreUtilisateur(section, QStringLiteral("ActivePath"), {}), QStringLiteral("autre.mdb"));

        // Cancelled from toolbar button 12: nothing saved, the store stays.
        ExecuteurInstalle annule([&](QDialog &d) {
            d.findChild<QLineEdit *>(QStringLiteral("txtConnectionStr"))->setText(QStringLiteral("encore.mdb"));
            cliquer(d, "cmdCancel");
            return d.result();
        });
        auto *barre = p.f->findChild<QToolBar *>(QStringLiteral("Toolbar"));
        QAction *bouton = barre->findChild<QAction *>(QStringLiteral("Toolbar(12)"));
        QVERIFY(bouton && bouton->isEnabled());
        bouton->trigger();
        QCOMPARE(LireParametreUtilisateur(section, QStringLiteral("Access"), {}), QStringLiteral("autre.mdb"));
        QVERIFY(appState().Calendrier->ConnectionString().endsWith(QStringLiteral("autre.mdb';")));
        QVERIFY(!QFile::exists(p.prog.chemin() + QStringLiteral("encore.mdb")));
        QCOMPARE(p.repondeur.textes(), QStringList());
    }

    // A practice moves its book to a MariaDB server through the chooser; what
    // another station books there shows at the next refresh.
    void versUnServeurMariaDb()
    {
        ServeurMariaDb serveur;
        QVERIFY2(serveur.demarre(), qPrintable(serveur.erreur()));
        Poste p;
        ExecuteurInstalle executeur([&](QDialog &d) {
            cliquer(d, "rdDP_MariaDB");
            d.findChild<QLineEdit *>(QStringLiteral("txtConnectionStr"))->setText(serveur.parametresMariaDb());
            cliquer(d, "cmdOK");
            return d.result();
        });
        p.f->mnuOpenDataProvider->trigger();
        QCOMPARE(appState().TypeFournisseur, 6);
        QVERIFY(appState().Calendrier->IsOpen());
        CalendarDataProvider poste2;
        QVERIFY(OpenProvider(poste2, 6, MarqueMariaDb + serveur.parametresMariaDb()));
        CalendarEventPtr e = poste2.CreateNewEvent(QDateTime(QDate(2026, 11, 23), QTime(11, 0)), QDateTime(QDate(2026, 11, 23), QTime(11, 30)));
        e->setSubject(QStringLiteral("Poste 2"));
        QVERIFY(poste2.AddEvent(e));
        QVERIFY(QMetaObject::invokeMethod(p.f->Timer1, "timeout"));
        QCOMPARE(p.f->CalendarControl->shownEvents().size(), 1);
        QCOMPARE(p.f->CalendarControl->shownEvents().first()->Subject(), QStringLiteral("Poste 2"));
        QCOMPARE(p.repondeur.textes(), QStringList());
        // Started again, the station is back on the server, not on Events.mdb.
        p.f.reset();
        FermerConfig();
        appState() = AppState{};
        Poste redemarre;
        QCOMPARE(appState().TypeFournisseur, 6);
        QVERIFY(QMetaObject::invokeMethod(redemarre.f->Timer1, "timeout"));
        QCOMPARE(redemarre.f->CalendarControl->shownEvents().size(), 1);
    }
};

QTEST_MAIN(tst_frmcalendardatachooser)
#include "tst_frmcalendardatachooser.moc"
