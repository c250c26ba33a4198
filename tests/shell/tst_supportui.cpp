#include "shell/base/supportui.h"
#include "support/repondeurscripte.h"

#include <QComboBox>
#include <QFontMetrics>
#include <QLabel>
#include <QListWidget>
#include <QScrollBar>
#include <QStringListModel>
#include <QtTest>

namespace {

const QString kInvalide = QStringLiteral("mListBoxAdjustHScroll: Invalid argument value for ctlControl.");

} // namespace

class tst_supportui : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void remplirCombosDuree_data()
    {
        QTest::addColumn<bool>("sans1minute");
        QTest::addColumn<bool>("joursSeuls");
        QTest::addColumn<QStringList>("entrees");
        const QStringList toutes{"5 minutes", "10 minutes", "15 minutes", "30 minutes", "1 heure",
                                 "2 heures",  "4 heures",   "8 heures",   "0.5 jour",   "1 jour",
                                 "2 jours",   "3 jours",    "4 jours",    "1 semaine",  "2 semaines"};
        QTest::newRow("editeur sans messages") << false << false << (QStringList{"1 minute"} + toutes);
        QTest::newRow("fenetres de rappel") << true << false << toutes;
        QTest::newRow("editeur avec messages")
            << false << true << QStringList{"1 minute", "3 jours", "4 jours", "1 semaine", "2 semaines"};
        QTest::newRow("jours seuls sans minute")
            << true << true << QStringList{"3 jours", "4 jours", "1 semaine", "2 semaines"};
    }

    void remplirCombosDuree()
    {
        QFETCH(bool, sans1minute);
        QFETCH(bool, joursSeuls);
        QFETCH(QStringList, entrees);
        QComboBox combo;
        combo.addItem(QStringLiteral("déjà là"));
        RemplirCombosDuree(&combo, sans1minute, joursSeuls);
        QStringList lues;
        for (int i = 0; i < combo.count(); ++i)
            lues << combo.itemText(i);
        // Added after what the box held.
        QCOMPARE(lues, QStringList{QStringLiteral("déjà là")} + entrees);
    }

    void ajusterControleInvalide()
    {
        RepondeurScripte repondeur;
        QLabel etiquette(QStringLiteral("un texte assez long pour une liste"));
        mListBoxAdjustHScroll(&etiquette);
        mListBoxAdjustHScroll(nullptr);
        QCOMPARE(repondeur.textes(), (QStringList{kInvalide, kInvalide}));
    }

    void ajusterListe()
    {
        RepondeurScripte repondeur;
        QListWidget liste;
        // Uniform sizes take the first entry's size for every entry, so the
        // list alone would not scroll far enough for the long one.
        liste.setUniformItemSizes(true);
        const QString longue = QStringLiteral("Dupont Jean-Baptiste, 12 rue des Lilas, 75011 Paris — rappel SMS");
        liste.addItems({QStringLiteral("court"), longue, QStringLiteral("moyen texte")});
        liste.setFixedSize(120, 100);
        liste.show();
        QVERIFY(QTest::qWaitForWindowExposed(&liste));

        const int etendue = QFontMetrics(liste.font()).horizontalAdvance(longue) + 4;
        const int visible = liste.viewport()->width();
        QVERIFY(liste.horizontalScrollBar()->maximum() < etendue - visible);

        mListBoxAdjustHScroll(&liste);
        QCOMPARE(liste.horizontalScrollBar()->maximum(), etendue - visible);

        // The extent holds when the list lays itself out again.
        liste.setFixedSize(200, 100);
        liste.addItem(QStringLiteral("x"));
        QTRY_COMPARE(liste.horizontalScrollBar()->maximum(), etendue - liste.viewport()->width());
        QVERIFY(repondeur.appels().isEmpty());
    }

    void ajusterVueSurModele()
    {
        QStringListModel modele({QStringLiteral("a"), QStringLiteral("une ligne nettement plus longue que la vue")});
        QListView vue;
        vue.setModel(&modele);
        vue.setUniformItemSizes(true);
        vue.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        vue.setFixedSize(100, 80);
        vue.show();
        QVERIFY(QTest::qWaitForWindowExposed(&vue));

        mListBoxAdjustHScroll(&vue);
        const int etendue = QFontMetrics(vue.font()).horizontalAdvance(modele.stringList().at(1)) + 4;
        QCOMPARE(vue.horizontalScrollBarPolicy(), Qt::ScrollBarAsNeeded);
        QCOMPARE(vue.horizontalScrollBar()->maximum(), etendue - vue.viewport()->width());
    }

    void ajusterListeVide()
    {
        // Nothing to measure: the list is left as it was.
        QListWidget liste;
        liste.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        mListBoxAdjustHScroll(&liste);
        QCOMPARE(liste.horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    }

    void ajusterCombo()
    {
        QComboBox combo;
        // The longest entry is the one with the most characters, even when a
        // shorter one is wider on screen.
        const QString large = QStringLiteral("WWWWWWWW");
        const QString longue = QStringLiteral("iiiiiiiiiiiiiiii");
        combo.addItems({large, longue});
        const QFontMetrics mesure(combo.font());
        QVERIFY(mesure.horizontalAdvance(large) != mesure.horizontalAdvance(longue));
        mListBoxAdjustHScroll(&combo);
        QCOMPARE(combo.view()->minimumWidth(), mesure.horizontalAdvance(longue) + 4);
    }

    void mesurerTexte()
    {
        QLabel petit;
        QLabel grand;
        QFont f = petit.font();
        f.setPixelSize(10);
        petit.setFont(f);
        f.setPixelSize(30);
        grand.setFont(f);
        const QString texte = QStringLiteral("Rendez-vous");
        QCOMPARE(mlStringLenInControl(&petit, QString()), 0);
        QVERIFY(mlStringLenInControl(&petit, texte) > 0);
        // Measured in the control's own font.
        QVERIFY(mlStringLenInControl(&grand, texte) > 2 * mlStringLenInControl(&petit, texte));
        QVERIFY(mlStringLenInControl(&petit, texte + texte) > mlStringLenInControl(&petit, texte));
        QVERIFY(mlStringLenInControl(nullptr, texte) > 0);
    }
};

QTEST_MAIN(tst_supportui)
#include "tst_supportui.moc"
