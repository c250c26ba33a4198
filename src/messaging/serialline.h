#pragma once

#include <QByteArray>
#include <QObject>
#include <QSerialPort>
#include <QString>

// The serial line of the GSM modem, reduced to what the modem dialogue uses:
// open with the line's settings, close, write bytes, read all that waits, and
// an event for each arrival. The program uses the QSerialPort line; a test may
// put another line behind the driver.
class LigneSerie : public QObject
{
    Q_OBJECT

public:
    // Event number of an arrival of data, as the dialogue knows it.
    static constexpr int EvenementReception = 2;

    using QObject::QObject;

    // Opens the device at 19200 bauds, 8 data bits, no parity, one stop bit,
    // no handshaking, with data-terminal-ready and request-to-send on.
    virtual bool ouvrir(const QString &peripherique) = 0;
    virtual void fermer() = 0;
    [[nodiscard]] virtual bool estOuverte() const = 0;
    virtual bool ecrire(const QByteArray &octets) = 0;
    [[nodiscard]] virtual QByteArray toutLire() = 0;
    // The last failure, in words, for the callers' messages.
    [[nodiscard]] virtual QString erreur() const = 0;

signals:
    // numero is EvenementReception when data arrived; other numbers are line
    // events (errors) that carry no data.
    void evenement(int numero);
};

class LigneSerieQt final : public LigneSerie
{
    Q_OBJECT

public:
    explicit LigneSerieQt(QObject *parent = nullptr);

    bool ouvrir(const QString &peripherique) override;
    void fermer() override;
    [[nodiscard]] bool estOuverte() const override;
    bool ecrire(const QByteArray &octets) override;
    [[nodiscard]] QByteArray toutLire() override;
    [[nodiscard]] QString erreur() const override { return m_erreur; }

private:
    QSerialPort m_port;
    QString m_erreur;
};

// The device behind port number n: the environment variable
// TAVONEL_MODEM_DEVICE_<n> when set, else key "COM<n>" of section "Ports" of
// Agenda.ini, else the platform's own name ("COM<n>" on Windows,
// "/dev/ttyUSB<n-1>" elsewhere). Empty for n below 1: such a port never opens.
[[nodiscard]] QString PeripheriqueModem(int n);

// Whether port n is there: its device exists and is a character device (or a
// link to one). Nothing is opened.
[[nodiscard]] bool PortExists(int n);
