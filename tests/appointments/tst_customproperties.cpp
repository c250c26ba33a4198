#include "appointments/frmcustomeventproperties.h"
#include "calendar/calendarevent.h"
#include "patients/dialoguesouverts.h"
#include "shell/base/modal.h"

#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

namespace {

using Lignes = QList<QPair<QString, QString>>;

QString Texte(const CustomProperties &sac)
{
    QStringList t;
    for (const auto &[nom, valeur] : sac.Entries())
        t << nom + u'=' + valeur.toString();
    return t.join(u';');
}

CalendarEventPtr AvecSac(const Lignes &entrees)
{
    const CalendarEventPtr rdv = CalendarEvent::create(7);
    for (const auto &[nom, valeur] : entrees)
        rdv->CustomProperties().SetProperty(nom, valeur);
    return rdv;
}

QLineEdit *Champ(QDialog &d, const QString &nom)
{
    auto *champ = d.findChild<QLineEdit *>(nom);
    if (!champ)
        qFatal("no control %s", qPrintable(nom));
    return champ;
}

} // namespace

class tst_customproperties : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void chargement()
    {
        static int ouverts = 0;
        FixerCompteurDialogues(&ouverts);
        frmCustomEventProperties d;
        d.show();
        QCOMPARE(ouverts, 1);
        QCOMPARE(d.windowTitle(), QStringLiteral("Custom Event Properties"));

        // Six entries: the rows show the first five, in the bag's order.
        const CalendarEventPtr rdv = AvecSac({{"xtpMarkupText", "<b>Urgent</b>"}, {"b", "2"}, {"c", "3"},
                                               {"d", "4"}, {"e", "5"}, {"f", "6"}});
        d.SetEvent(rdv);
        d.SetEvent(CalendarEventPtr());
        QStringList vues;
        for (int i = 0; i < 5; ++i)
            vues << Champ(d, QStringLiteral("editPropName(%1)").arg(i))->text() + u'='
                        + Champ(d, QStringLiteral("editPropValue(%1)").arg(i))->text();
        QCOMPARE(vues, QStringList({"xtpMarkupText=<b>Urgent</b>", "b=2", "c=3", "d=4", "e=5"}));

        // Cancel leaves the bag as it was.
        QTest::mouseClick(d.findChild<QPushButton *>(QStringLiteral("cmdCancel")), Qt::LeftButton);
        QCOMPARE(d.result(), int(QDialog::Rejected));
        QCOMPARE(rdv->CustomProperties().Count(), 6);
        QCOMPARE(ouverts, 0);
    }

    // OK replaces the whole bag by the named rows, as typed.
    void validation_data()
    {
        QTest::addColumn<Lignes>("sac");
        QTest::addColumn<Lignes>("saisie"); // rows 0..4 as typed over the bag's
        QTest::addColumn<QString>("attendu");

        QTest::newRow("six entries keep five") << Lignes{{"a", "1"}, {"b", "2"}, {"c", "3"}, {"d", "4"}, {"e", "5"},
                                                         {"f", "6"}}
                                               << Lignes{} << QStringLiteral("a=1;b=2;c=3;d=4;e=5");
        QTest::newRow("value without a name is dropped")
            << Lignes{{"a", "1"}} << Lignes{{"a", "1"}, {"", "orphelin"}, {"c", " 3 "}}
            << QStringLiteral("a=1;c= 3 ");
        QTest::newRow("same name twice: the later wins")
            << Lignes{} << Lignes{{"Salle", "1"}, {"Autre", "x"}, {"Salle", "2"}}
            << QStringLiteral("Salle=2;Autre=x");
        QTest::newRow("blank name counts as empty, names trimmed")
            << Lignes{{"a", "1"}} << Lignes{{"   ", "1"}, {"  Salle ", "B"}} << QStringLiteral("Salle=B");
        QTest::newRow("all rows emptied empties the bag")
            << Lignes{{"a", "1"}, {"b", "2"}} << Lignes{{"", ""}, {"", ""}} << QString();
    }

    void validation()
    {
        QFETCH(Lignes, sac);
        QFETCH(Lignes, saisie);
        QFETCH(QString, attendu);

        const CalendarEventPtr rdv = AvecSac(sac);
        // The dialog is run as the editor runs it; the test types and clicks.
        ExecuteurInstalle executeur([&](QDialog &d) {
            for (qsizetype i = 0; i < saisie.size(); ++i) {
                QLineEdit *nom = Champ(d, QStringLiteral("editPropName(%1)").arg(i));
                QLineEdit *valeur = Champ(d, QStringLiteral("editPropValue(%1)").arg(i));
                nom->clear();
                valeur->clear();
                QTest::keyClicks(nom, saisie[i].first);
                QTest::keyClicks(valeur, saisie[i].second);
            }
            QTest::mouseClick(d.findChild<QPushButton *>(QStringLiteral("cmdOk")), Qt::LeftButton);
            return d.result();
        });
        QVERIFY(EditerProprietesPersonnalisees(rdv));
        QCOMPARE(Texte(rdv->CustomProperties()), attendu);
    }
};

QTEST_MAIN(tst_customproperties)
#include "tst_customproperties.moc"
