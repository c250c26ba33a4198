#include "appointments/frmoccurrenceserieschooser.h"
#include "shell/base/modal.h"

#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QtTest>

// The dialog as the main window uses it: built offscreen, answered by
// clicking its own controls from the modal runner.
class tst_frmoccurrenceserieschooser : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textes_data()
    {
        QTest::addColumn<bool>("suppression");
        QTest::addColumn<QString>("action");
        QTest::addColumn<QString>("occurrence");
        QTest::addColumn<QString>("serie");
        QTest::newRow("ouverture") << false << QStringLiteral("Voulerz vous ouvrir l'occurence ou la série ?")
                                   << QStringLiteral("Ouvrir l'Occurrence") << QStringLiteral("Ouvrir la Série");
        QTest::newRow("suppression") << true << QStringLiteral("Voulez-vous éffacer cette occurence ou la série ?")
                                     << QStringLiteral("Effacer l'Occurrence") << QStringLiteral("Effacer la Série");
    }

    void textes()
    {
        QFETCH(bool, suppression);
        QFETCH(QString, action);
        QFETCH(QString, occurrence);
        QFETCH(QString, serie);
        frmOccurrenceSeriesChooser d;
        d.modeSuppression = suppression;
        d.sujetEvenement = QStringLiteral("DUPONT Jean");
        d.occurrenceChoisie = false;
        d.confirme = true;
        d.charger();
        QCOMPARE(d.windowTitle(), QStringLiteral("Evènement récurrent : "));
        QCOMPARE(d.findChild<QLabel *>(QStringLiteral("txtAction"))->text(), action);
        QCOMPARE(d.findChild<QLabel *>(QStringLiteral("txtDescription"))->text(),
                 QStringLiteral("'DUPONT Jean' est un évènement récurent."));
        auto *opt = d.findChild<QRadioButton *>(QStringLiteral("optOccurrence"));
        auto *ser = d.findChild<QRadioButton *>(QStringLiteral("optSeries"));
        QCOMPARE(opt->text(), occurrence);
        QCOMPARE(ser->text(), serie);
        QVERIFY(!opt->isChecked());
        QVERIFY(ser->isChecked());
        QVERIFY(!d.confirme);
        QCOMPARE(d.findChild<QPushButton *>(QStringLiteral("btnCancel"))->text(), QStringLiteral("Annuler"));
        QVERIFY(d.findChild<QPushButton *>(QStringLiteral("btnOK")));
    }

    void reponses_data()
    {
        QTest::addColumn<QString>("option");   // clicked before the button, or empty
        QTest::addColumn<QString>("bouton");
        QTest::addColumn<int>("choix");
        QTest::newRow("OK tel quel") << QString() << QStringLiteral("btnOK") << int(ChoixOccurrence::Occurrence);
        QTest::newRow("série") << QStringLiteral("optSeries") << QStringLiteral("btnOK") << int(ChoixOccurrence::Serie);
        QTest::newRow("série puis occurrence") << QStringLiteral("optOccurrence") << QStringLiteral("btnOK")
                                                 << int(ChoixOccurrence::Occurrence);
        QTest::newRow("annuler après choix") << QStringLiteral("optSeries") << QStringLiteral("btnCancel")
                                               << int(ChoixOccurrence::Annule);
        QTest::newRow("fermeture") << QString() << QString() << int(ChoixOccurrence::Annule);
    }

    void reponses()
    {
        QFETCH(QString, option);
        QFETCH(QString, bouton);
        QFETCH(int, choix);
        QString titreVu;
        ExecuteurInstalle executeur([&](QDialog &d) {
            d.show();
            titreVu = d.findChild<QLabel *>(QStringLiteral("txtAction"))->text();
            // A radio button reacts on its indicator and text, not on the
            // blank stretch at its right.
            auto cocher = [&](const QString &nom) {
                auto *r = d.findChild<QRadioButton *>(nom);
                QTest::mouseClick(r, Qt::LeftButton, {}, QPoint(6, r->height() / 2));
            };
            if (option == QStringLiteral("optOccurrence"))
                cocher(QStringLiteral("optSeries"));
            if (!option.isEmpty())
                cocher(option);
            if (bouton.isEmpty())
                d.close();
            else
                QTest::mouseClick(d.findChild<QPushButton *>(bouton), Qt::LeftButton);
            return d.result();
        });
        QCOMPARE(int(frmOccurrenceSeriesChooser::demander(nullptr, true, QStringLiteral("X"))), choix);
        QCOMPARE(titreVu, QStringLiteral("Voulez-vous éffacer cette occurence ou la série ?"));
    }
};

QTEST_MAIN(tst_frmoccurrenceserieschooser)
#include "tst_frmoccurrenceserieschooser.moc"
