#include <QtTest>
class tst_profilini : public QObject { Q_OBJECT private Q_SLOTS: void vide() { QVERIFY(true); } };
QTEST_GUILESS_MAIN(tst_profilini)
#include "tst_profilini.moc"
