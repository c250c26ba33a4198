#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

#include <array>
#include <cstdint>

// Blowfish in cipher block chaining mode under a text key. An enciphered
// array is laid out as a random first block (two random words), the
// original length L (little-endian 32-bit) at offset 8, the data, and
// padding up to a multiple of 8: the first block plays the part of an
// initialisation vector.
//
// Key texts and plain texts are taken in Windows-1252. The string form of a
// cipher array holds one character per byte, with the byte's value as its
// code, so that the hexadecimal form is exact.
//
// A key schedules on top of the state left by the previous key: use one
// instance per key.
class EnCryptX final : public QObject
{
    Q_OBJECT

public:
    explicit EnCryptX(QObject *parent = nullptr);

    void EncryptByte(QByteArray &donnees, const QString &cle = QString());
    // Deciphers in place. A wrong size descriptor (a wrong key, damaged
    // input) ends silently and leaves the array deciphered at full length.
    void DecryptByte(QByteArray &donnees, const QString &cle = QString());
    [[nodiscard]] QString EncryptString(const QString &texte, const QString &cle = QString(), bool sortieHexa = false);
    // With entreeHexa the caller's text is replaced by its decoded form.
    [[nodiscard]] QString DecryptString(QString &texte, const QString &cle = QString(), bool entreeHexa = false);
    void setKey(const QString &cle); // the write-only property Key
    // Schedules raw key bytes on top of the present state, as setKey does
    // with the Windows-1252 bytes of its text (binary keys, such as the
    // published test vectors, cannot all pass through a text). No bytes
    // leave the state as it is.
    void setKeyBytes(const QByteArray &octets);
    bool EncryptFile(const QString &source, const QString &cible, bool ecraser, const QString &cle = QString());
    // An existing longer target keeps its tail beyond the written bytes.
    bool DecryptFile(const QString &source, const QString &cible, bool ecraser, const QString &cle = QString());

    // The block functions, for the published test vectors.
    void encipherBlock(quint32 &gauche, quint32 &droite) const;
    void decipherBlock(quint32 &gauche, quint32 &droite) const;

    [[nodiscard]] static QString ToHex(const QString &texte);
    [[nodiscard]] static QString FromHex(const QString &texte);

Q_SIGNALS:
    void Progress(int pourcent);

private:
    void appliquerCle(const QString &cle);
    bool chiffrer(QByteArray &donnees);
    bool dechiffrer(QByteArray &donnees);
    void avancer(qsizetype bloc, qsizetype blocs);
    void terminerProgres();
    [[nodiscard]] quint32 F(quint32 x) const;

    std::array<quint32, 18> m_p;
    std::array<std::array<quint32, 256>, 4> m_s;
    QString m_cleCourante;
    int m_dernierProgres = -1;
};

// The launch argument: the hexadecimal text of a cipher array under the
// program's fixed key. Returns the deciphered plain text (meaningless text,
// never a failure, for a wrong argument).
[[nodiscard]] QString DecoderArgument(const QString &argument);
// The reverse, for launchers: the argument that opens with the given text.
[[nodiscard]] QString EncoderArgument(const QString &texte);
