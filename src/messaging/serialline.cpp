#include "messaging/serialline.h"

#include "shell/base/profilini.h"

#include <QFileInfo>

#include <sys/stat.h>

LigneSerieQt::LigneSerieQt(QObject *parent)
    : LigneSerie(parent)
{
    connect(&m_port, &QSerialPort::readyRead, this, [this] { emit evenement(EvenementReception); });
    connect(&m_port, &QSerialPort::errorOccurred, this, [this](QSerialPort::SerialPortError e) {
        if (e != QSerialPort::NoError && m_port.isOpen())
            emit evenement(1000 + static_cast<int>(e));
    });
}

bool LigneSerieQt::ouvrir(const QString &peripherique)
{
    m_erreur.clear();
    if (m_port.isOpen())
        m_port.close();
    if (peripherique.isEmpty()) {
        m_erreur = QStringLiteral("Port inexistant");
        return false;
    }
    m_port.setPortName(peripherique);
    m_port.setBaudRate(QSerialPort::Baud19200);
    m_port.setDataBits(QSerialPort::Data8);
    m_port.setParity(QSerialPort::NoParity);
    m_port.setStopBits(QSerialPort::OneStop);
    m_port.setFlowControl(QSerialPort::NoFlowControl);
    if (!m_port.open(QIODevice::ReadWrite)) {
        m_erreur = m_port.errorString();
        return false;
    }
    // A pseudo-terminal has no modem control lines; the modem on the other
    // end does not need them, so their absence is not a failure.
    m_port.setDataTerminalReady(true);
    m_port.setRequestToSend(true);
    m_port.clearError();
    return true;
}

void LigneSerieQt::fermer()
{
    if (m_port.isOpen())
        m_port.close();
}

bool LigneSerieQt::estOuverte() const
{
    return m_port.isOpen();
}

bool LigneSerieQt::ecrire(const QByteArray &octets)
{
    if (!m_port.isOpen()) {
        m_erreur = QStringLiteral("Port fermé");
        return false;
    }
    if (m_port.write(octets) != octets.size()) {
        m_erreur = m_port.errorString();
        return false;
    }
    m_port.flush();
    return true;
}

QByteArray LigneSerieQt::toutLire()
{
    return m_port.readAll();
}

QString PeripheriqueModem(int n)
{
    if (n < 1)
        return {};
    const QString variable = QStringLiteral("TAVONEL_MODEM_DEVICE_%1").arg(n);
    const QString env = qEnvironmentVariable(variable.toLatin1().constData()).trimmed();
    if (!env.isEmpty())
        return env;
    const QString ini = LireAgendaIni(QStringLiteral("Ports"), QStringLiteral("COM%1").arg(n), QString()).trimmed();
    if (!ini.isEmpty())
        return ini;
#ifdef Q_OS_WIN
    // Ports above 9 too are plain "COM10": the serial layer adds the device
    // prefix itself.
    return QStringLiteral("COM%1").arg(n);
#else
    return QStringLiteral("/dev/ttyUSB%1").arg(n - 1);
#endif
}

bool PortExists(int n)
{
    const QString peripherique = PeripheriqueModem(n);
    if (peripherique.isEmpty())
        return false;
#ifdef Q_OS_WIN
    QSerialPort essai(peripherique);
    if (!essai.open(QIODevice::ReadWrite))
        return essai.error() == QSerialPort::PermissionError; // held by another program
    essai.close();
    return true;
#else
    // A bare name is a name under /dev, as the serial layer takes it.
    const QString chemin = peripherique.startsWith(u'/') ? peripherique : QStringLiteral("/dev/") + peripherique;
    struct stat infos {};
    if (::stat(QFile::encodeName(chemin).constData(), &infos) != 0)
        return false;
    return S_ISCHR(infos.st_mode);
#endif
}
