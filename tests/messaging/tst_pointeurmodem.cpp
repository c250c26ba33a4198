#include "messaging/gsmmodem.h"
#include "messaging/serialline.h"

#include <QCursor>
#include <QGuiApplication>
#include <QTimer>
#include <QtTest>

using namespace std::chrono_literals;

namespace {

// A line in memory: what the driver writes is kept; answers are handed in by
// the test and arrive on the next turn of the event loop.
class LigneMemoire final : public LigneSerie
{
public:
    bool ouvrir(const QString &peripherique) override
    {
        m_ouverte = !peripherique.isEmpty();
        return m_ouverte;
    }
    void fermer() override { m_ouverte = false; }
    [[nodiscard]] bool estOuverte() const override { return m_ouverte; }
    bool ecrire(const QByteArray &octets) override
    {
        m_ecrit += octets;
        if (!m_reponse.isEmpty()) {
            const QByteArray r = m_reponse;
            QTimer::singleShot(0, this, [this, r] { arriver(r); });
        }
        return m_ouverte;
    }
    [[nodiscard]] QByteArray toutLire() override { return std::exchange(m_entrant, {}); }
    [[nodiscard]] QString erreur() const override { return {}; }

    void repondre(const QByteArray &reponse) { m_reponse = reponse; }
    void arriver(const QByteArray &octets, int evenementNumero = EvenementReception)
    {
        m_entrant += octets;
        emit evenement(evenementNumero);
    }

private:
    bool m_ouverte = false;
    QByteArray m_ecrit;
    QByteArray m_entrant;
    QByteArray m_reponse;
};

Qt::CursorShape Pointeur()
{
    const QCursor *c = QGuiApplication::overrideCursor();
    return c ? c->shape() : Qt::ArrowCursor;
}

} // namespace

// The busy pointer of the modem dialogue in the windowed program, and the
// events of the line that carry no data.
class TstPointeurModem : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        GsmModem::fixerDureeUnite(200ms);
        etatModem() = EtatModem();
    }
    void cleanup()
    {
        GsmModem::restaurerPointeur();
        GsmModem::fixerDureeUnite(GsmModem::DureeUniteNormale);
        while (QGuiApplication::overrideCursor())
            QGuiApplication::restoreOverrideCursor();
    }

    void sablierApresDelai()
    {
        LigneMemoire ligne;
        GsmModem modem(GsmModem::Copie::Envoi, &ligne);
        qputenv("TAVONEL_MODEM_DEVICE_1", "memoire");
        QCOMPARE(modem.msComConnect(1), 1);
        QCOMPARE(Pointeur(), Qt::ArrowCursor);

        QVERIFY(!modem.sendIt(QStringLiteral("AT"), QStringLiteral("OK"), QStringLiteral("ERROR"), 1));
        QCOMPARE(Pointeur(), Qt::WaitCursor);
        // A second time-out does not pile up pointers: one normal end is
        // enough to get the arrow back.
        QVERIFY(!modem.sendIt(QStringLiteral("AT"), QStringLiteral("OK"), QStringLiteral("ERROR"), 1));
        ligne.repondre("\r\nOK\r\n");
        QVERIFY(modem.sendIt(QStringLiteral("AT"), QStringLiteral("OK"), QStringLiteral("ERROR"), 1));
        QCOMPARE(QGuiApplication::overrideCursor(), nullptr);
        qunsetenv("TAVONEL_MODEM_DEVICE_1");
    }

    void evenementSansDonnees()
    {
        LigneMemoire ligne;
        GsmModem modem(GsmModem::Copie::Envoi, &ligne);
        qputenv("TAVONEL_MODEM_DEVICE_1", "memoire");
        QCOMPARE(modem.msComConnect(1), 1);
        ligne.repondre("\r\n+COPS: 0,2,\"20801\"\r\n\r\nOK\r\n");
        QVERIFY(modem.sendIt(QStringLiteral("AT+COPS?"), QStringLiteral("OK"), QStringLiteral("ERROR"), 1));
        QVERIFY(etatModem().LastResponse.contains(QLatin1String("20801")));

        // A line event that is no arrival empties the last answer and reads
        // nothing.
        ligne.arriver("\r\nRING\r\n", 1001);
        QVERIFY(etatModem().LastResponse.isEmpty());
        QCOMPARE(etatModem().CommBuffer, QStringLiteral("\r\n+COPS: 0,2,\"20801\"\r\n\r\nOK\r\n"));
        // The next arrival reads what waited.
        ligne.arriver("");
        QVERIFY(etatModem().CommBuffer.endsWith(QLatin1String("OK\r\n\r\nRING\r\n")));
        QCOMPARE(etatModem().LastResponse, etatModem().CommBuffer);
        qunsetenv("TAVONEL_MODEM_DEVICE_1");
    }
};

QTEST_MAIN(TstPointeurModem)
#include "tst_pointeurmodem.moc"
