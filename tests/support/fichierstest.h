#pragma once

#include <QByteArray>
#include <QString>

// Small file and environment helpers shared by the tests.

// The bytes of a file, or "<illisible>" when it cannot be opened.
QByteArray lireOctets(const QString &chemin);
// Writes (and truncates) a file; false when it cannot be written whole.
bool ecrireOctets(const QString &chemin, const QByteArray &octets);

// Sets (or removes, with definir false) an environment variable for the
// lifetime of the object, then puts back what was there.
class VariableTemporaire final
{
public:
    VariableTemporaire(const char *nom, const QByteArray &valeur, bool definir = true);
    ~VariableTemporaire();
    VariableTemporaire(const VariableTemporaire &) = delete;
    VariableTemporaire &operator=(const VariableTemporaire &) = delete;

private:
    const char *m_nom;
    bool m_avait;
    QByteArray m_ancienne;
};
