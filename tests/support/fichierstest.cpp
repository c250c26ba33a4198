#include "support/fichierstest.h"

#include <QFile>

QByteArray lireOctets(const QString &chemin)
{
    QFile f(chemin);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<illisible>");
}

bool ecrireOctets(const QString &chemin, const QByteArray &octets)
{
    QFile f(chemin);
    return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(octets) == octets.size();
}

VariableTemporaire::VariableTemporaire(const char *nom, const QByteArray &valeur, bool definir)
    : m_nom(nom)
    , m_avait(qEnvironmentVariableIsSet(nom))
    , m_ancienne(qgetenv(nom))
{
    if (definir)
        qputenv(nom, valeur);
    else
        qunsetenv(nom);
}

VariableTemporaire::~VariableTemporaire()
{
    if (m_avait)
        qputenv(m_nom, m_ancienne);
    else
        qunsetenv(m_nom);
}
